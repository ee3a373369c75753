// Combo boxes (lists.h).

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/lists.h"
#include "platform/controls/shortcuts.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace combo_detail {

constexpr int kFrame = 8;  // what frame and margins add to a line's height

}  // namespace combo_detail

VYN_ENUM_NAMES(TComboBoxStyle, "csDropDown", "csSimple", "csDropDownList", "csOwnerDrawFixed", "csOwnerDrawVariable")

class ComboBoxStrings : public TStringList {
  public:
    explicit ComboBoxStrings(TCustomComboBox& box) : box_(box) {
        Duplicates = dupAccept;
        OnChange = [this](TObject*) { box_.ItemsChanged(); };
    }
    void Delete(int index) override {
        TStringList::Delete(index);
        if (box_.itemIndex_ == index) box_.itemIndex_ = -1;
        if (box_.itemIndex_ > index) --box_.itemIndex_;
    }
    void Clear() override {
        if (!box_.HasState(csLoading)) box_.itemIndex_ = -1;  // a stored index comes before its lines
        TStringList::Clear();
    }

  private:
    TCustomComboBox& box_;
};

const PropertyCatalogue& ComboBoxProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Box = TCustomComboBox;
        PropertyCatalogue made(&WinControlProperties());
        made.Add("CharCase", &Box::CharCase, &Box::SetCharCase).Default(ecNormal);
        made.Add("DropDownCount", &Box::DropDownCount, &Box::SetDropDownCount).Default(8);
        made.Add("ItemHeight", &Box::ItemHeight, &Box::SetItemHeight);
        made.Add("ItemIndex", &Box::ItemIndex, &Box::SetItemIndex).Default(-1);
        made.Add("Items", &Box::Items, &Box::SetItems);
        made.Add("MaxLength", &Box::MaxLength, &Box::SetMaxLength).Default(0);
        made.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(false);
        made.Add("Sorted", &Box::Sorted, &Box::SetSorted).Default(false);
        made.Add("Style", &Box::Style, &Box::SetStyle).Default(csDropDown);
        made.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        made.Event("OnChange", &Box::OnChange);
        made.Event("OnDrawItem", &Box::OnDrawItem);
        made.Event("OnDropDown", &Box::OnDropDown);
        made.Event("OnMeasureItem", &Box::OnMeasureItem);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomComboBox::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomComboBox, TWinControl>("TCustomComboBox");
    return info;
}

// Items come behind Text and ItemIndex behind Items, so that reading finds what it needs.
const ClassInfo& TComboBox::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TComboBox, TCustomComboBox>("TComboBox"), ComboBoxProperties(),
                "Style Anchors BiDiMode CharCase Color Constraints Ctl3D DragCursor DragKind DragMode DropDownCount "
                "Enabled Font ImeMode ImeName ItemHeight ItemIndex MaxLength ParentBiDiMode ParentColor ParentCtl3D "
                "ParentFont ParentShowHint PopupMenu ShowHint Sorted TabOrder TabStop Text Visible OnChange OnClick "
                "OnContextPopup OnDblClick OnDragDrop OnDragOver OnDrawItem OnDropDown OnEndDock OnEndDrag OnEnter "
                "OnExit OnKeyDown OnKeyPress OnKeyUp OnMeasureItem OnStartDock OnStartDrag Items");
    return info;
}

TCustomComboBox::TCustomComboBox(TComponent* owner)
    : TWinControl(owner), items_(std::make_unique<ComboBoxStrings>(*this)) {
    ControlStyle = {csCaptureMouse, csSetCaption, csDoubleClicks};
    SetInitialSize(145, 25);
    SetDefaultColor(clWindow, false);
    SetTabStop(true);
}

TCustomComboBox::~TCustomComboBox() { static_cast<ComboBoxStrings&>(*items_).OnChange.Clear(); }

void TCustomComboBox::SetItems(TStrings* value) { items_->Assign(value); }

void TCustomComboBox::ItemsChanged() {
    if (!HasState(csLoading) && itemIndex_ >= items_->Count()) itemIndex_ = -1;
    PeerChanged(PeerChange::Items);
}

void TCustomComboBox::PutItemIndex(int value) {
    itemIndex_ = value;
    PutText(value >= 0 ? items_->Get(value) : AnsiString());
    selStart_ = 0;
    selLength_ = 0;
    PeerChanged(PeerChange::Selection);
    PeerChanged(PeerChange::Text);
}

void TCustomComboBox::SetItemIndex(int value) {
    if (HasState(csLoading)) {
        itemIndex_ = value;  // the lines come later
        return;
    }
    if (value < -1 || value >= items_->Count()) value = -1;
    if (itemIndex_ == value && (value < 0 || Text() == items_->Get(value))) return;
    PutItemIndex(value);
}

void TCustomComboBox::Loaded() {
    TWinControl::Loaded();
    if (itemIndex_ >= items_->Count()) itemIndex_ = -1;
    if (itemIndex_ >= 0 && (!HasEdit() || Text().empty()))
        PutItemIndex(itemIndex_);
    else if (!HasEdit())
        SetCaption(Text());
}

// Without an edit the text is a line of the list: any other chooses nothing.
void TCustomComboBox::SetCaption(const AnsiString& text) {
    if (HasState(csLoading)) {
        PutText(text);
        return;
    }
    if (!HasEdit()) {
        PutItemIndex(items_->IndexOf(text));
        return;
    }
    if (Text() == text) return;
    PutText(text);
    itemIndex_ = items_->IndexOf(text);
    if (itemIndex_ >= 0 && items_->Get(itemIndex_) != text) itemIndex_ = -1;
    selStart_ = selLength_ = 0;
    TextChanged();
    Change();
}

void TCustomComboBox::Clear() {
    items_->Clear();
    SetCaption(AnsiString());
}

void TCustomComboBox::SetDroppedDown(bool value) {
    if (value == droppedDown_) return;
    ProcessDropDown(value);
    PeerChanged(value ? PeerChange::DropDown : PeerChange::Close);
}

void TCustomComboBox::ProcessDropDown(bool open) {
    if (open == droppedDown_) return;
    if (open) DropDown();
    droppedDown_ = open;
}

void TCustomComboBox::SelectAll() {
    selStart_ = 0;
    selLength_ = static_cast<int>(Text().size());
    PeerChanged(PeerChange::Selection);
}
void TCustomComboBox::SetSelStart(int value) {
    selStart_ = std::clamp(value, 0, static_cast<int>(Text().size()));
    selLength_ = 0;
    PeerChanged(PeerChange::Selection);
}
void TCustomComboBox::SetSelLength(int value) {
    selLength_ = std::clamp(value, 0, static_cast<int>(Text().size()) - selStart_);
    PeerChanged(PeerChange::Selection);
}
AnsiString TCustomComboBox::SelText() const {
    return HasEdit() ? Text().substr(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_)) : AnsiString();
}
void TCustomComboBox::SetSelText(const AnsiString& text) {
    if (!HasEdit()) return;
    AnsiString whole = Text();
    whole.replace(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_), text);
    const int caret = selStart_ + static_cast<int>(text.size());
    ProcessTextEdit(whole, caret, 0);
    PeerChanged(PeerChange::Text);
}

void TCustomComboBox::SetCharCase(TEditCharCase value) {
    charCase_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomComboBox::SetDropDownCount(int value) {
    dropDownCount_ = std::max(value, 1);
    PeerChanged(PeerChange::Style);
}
void TCustomComboBox::SetItemHeight(int value) {
    if (value <= 0) return;
    itemHeight_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomComboBox::SetMaxLength(int value) {
    maxLength_ = std::max(value, 0);
    PeerChanged(PeerChange::Style);
}
void TCustomComboBox::SetSorted(bool value) {
    if (sorted_ == value) return;
    sorted_ = value;
    const AnsiString chosen = itemIndex_ >= 0 && itemIndex_ < items_->Count() ? items_->Get(itemIndex_) : AnsiString();
    static_cast<ComboBoxStrings&>(*items_).SetSorted(value);
    if (itemIndex_ >= 0 && !HasState(csLoading)) itemIndex_ = items_->IndexOf(chosen);
}
void TCustomComboBox::SetStyle(TComboBoxStyle value) {
    if (style_ == value) return;
    style_ = value;
    PeerChanged(PeerChange::Style);
    if (!HasState(csLoading) && !HasEdit()) SetCaption(Text());
}

void TCustomComboBox::FontChanged() {
    TWinControl::FontChanged();
    if (HasState(csReading) || !Parent() || style_ == csSimple) return;
    SetHeight(EffectiveFont().LineHeight() + combo_detail::kFrame);
}

void TCustomComboBox::ProcessTextEdit(const AnsiString& text, int selStart, int selLength) {
    AnsiString cased = text;
    if (charCase_ == ecUpperCase) cased = AnsiUpperCase(text);
    if (charCase_ == ecLowerCase) cased = AnsiLowerCase(text);
    const bool differs = cased != Text();
    if (differs) {
        PutText(cased);
        itemIndex_ = -1;  // typing chooses no line
    }
    const int length = static_cast<int>(cased.size());
    selStart_ = std::clamp(selStart, 0, length);
    selLength_ = std::clamp(selLength, 0, length - selStart_);
    if (cased != text) PeerChanged(PeerChange::Text);
    if (differs) Change();
}

void TCustomComboBox::ProcessSelect(int index) {
    if (index < 0 || index >= items_->Count()) return;
    PutItemIndex(index);
    if (HasEdit()) SelectAll();
    Click();
    Change();
}

bool TCustomComboBox::WantsKey(uint16_t key, TShiftState shift) const {
    if (droppedDown_ && (key == VK_RETURN || key == VK_ESCAPE)) return true;
    return key == VK_UP || key == VK_DOWN || (HasEdit() && (key == VK_LEFT || key == VK_RIGHT)) ||
           TWinControl::WantsKey(key, shift);
}

void TCustomComboBox::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key == 0 || peer_) return;
    if (key == VK_F4 || ((key == VK_DOWN || key == VK_UP) && shift.Contains(ssAlt))) {
        SetDroppedDown(!droppedDown_);
        key = 0;
        return;
    }
    if (droppedDown_ && (key == VK_RETURN || key == VK_ESCAPE)) {
        SetDroppedDown(false);
        key = 0;
        return;
    }
    const int count = items_->Count();
    int index = itemIndex_;
    if (key == VK_DOWN)
        index = std::min(index + 1, count - 1);
    else if (key == VK_UP)
        index = std::max(index - 1, 0);
    else
        return;
    key = 0;
    if (index != itemIndex_ && index < count) ProcessSelect(index);
}

void TCustomComboBox::KeyPress(char& key) {
    TWinControl::KeyPress(key);
    if (key == 0 || peer_) return;
    constexpr char kBackspace = 8;
    const auto code = static_cast<unsigned char>(key);
    if (!HasEdit()) {
        if (code < ' ') return;
        const int count = items_->Count();
        for (int step = 1; step <= count; ++step) {
            const int at = (itemIndex_ + step + count) % count;
            const AnsiString line = items_->Get(at);
            if (line.empty() || AnsiUpperChar(line[0]) != AnsiUpperChar(key)) continue;
            if (at != itemIndex_) ProcessSelect(at);
            break;
        }
        key = 0;
        return;
    }
    AnsiString whole = Text();
    if (key == kBackspace) {
        if (selLength_ == 0 && selStart_ > 0) {
            --selStart_;
            selLength_ = 1;
        }
        whole.erase(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_));
        ProcessTextEdit(whole, selStart_, 0);
    } else if (code >= ' ') {
        if (maxLength_ > 0 && static_cast<int>(whole.size()) - selLength_ >= maxLength_) {
            key = 0;
            return;
        }
        whole.replace(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_), AnsiString(1, key));
        ProcessTextEdit(whole, selStart_ + 1, 0);
    } else {
        return;
    }
    PeerChanged(PeerChange::Text);
    key = 0;
}

}  // namespace vyn
