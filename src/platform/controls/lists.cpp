#include "platform/controls/lists.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/ticks.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace list_detail {

constexpr uint32_t kTypingPause = 1000;  // milliseconds after which letters start a new search
constexpr int kSunkenEdge = 2;

// The next line behind `from` that begins with the text; -1 when there is none.
int FindPrefix(const TStrings& items, const AnsiString& prefix, int from) {
    const int count = items.Count();
    for (int step = 0; step < count; ++step) {
        const int at = (from + step) % count;
        if (AnsiSameText(items.Get(at).substr(0, prefix.size()), prefix)) return at;
    }
    return -1;
}

}  // namespace list_detail

VYN_ENUM_NAMES(TListBoxStyle, "lbStandard", "lbOwnerDrawFixed", "lbOwnerDrawVariable")

// The lines of a list box, with what of them is selected.
class ListBoxStrings : public TStringList {
  public:
    explicit ListBoxStrings(TCustomListBox& box) : box_(box) {
        Duplicates = dupAccept;
        OnChange = [this](TObject*) { box_.ItemsChanged(); };
    }
    void Insert(int index, const AnsiString& text) override {
        TStringList::Insert(index, text);
        Inserted(index);
    }
    int Add(const AnsiString& text) override {
        const int index = TStringList::Add(text);
        Inserted(index);
        return index;
    }
    void Delete(int index) override {
        TStringList::Delete(index);
        if (static_cast<size_t>(index) < selected.size()) selected.erase(selected.begin() + index);
        if (box_.itemIndex_ == index) box_.itemIndex_ = -1;
        if (box_.itemIndex_ > index) --box_.itemIndex_;
    }
    void Clear() override {
        selected.clear();
        box_.itemIndex_ = -1;
        box_.topIndex_ = 0;
        TStringList::Clear();
    }

    std::vector<bool> selected;

  private:
    void Inserted(int index) {
        if (static_cast<size_t>(index) < selected.size()) selected.insert(selected.begin() + index, false);
        if (box_.itemIndex_ >= index && Count() > 1 && box_.itemIndex_ < Count() - 1) ++box_.itemIndex_;
    }
    TCustomListBox& box_;
};

const PropertyCatalogue& ListBoxProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Box = TCustomListBox;
        PropertyCatalogue made(&WinControlProperties());
        made.Add("BorderStyle", &Box::BorderStyle, &Box::SetBorderStyle).Default(TBorderStyle::bsSingle);
        made.Add("Columns", &Box::Columns, &Box::SetColumns).Default(0);
        made.Add("ExtendedSelect", &Box::ExtendedSelect, &Box::SetExtendedSelect).Default(true);
        made.Add("IntegralHeight", &Box::IntegralHeight, &Box::SetIntegralHeight).Default(false);
        made.Add("ItemHeight", &Box::ItemHeight, &Box::SetItemHeight);
        made.Add("Items", &Box::Items, &Box::SetItems);
        made.Add("MultiSelect", &Box::MultiSelect, &Box::SetMultiSelect).Default(false);
        made.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(false);
        made.Add("Sorted", &Box::Sorted, &Box::SetSorted).Default(false);
        made.Add("Style", &Box::Style, &Box::SetStyle).Default(lbStandard);
        made.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        made.Add("TabWidth", &Box::TabWidth, &Box::SetTabWidth).Default(0);
        made.Event("OnDrawItem", &Box::OnDrawItem);
        made.Event("OnMeasureItem", &Box::OnMeasureItem);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomListBox::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomListBox, TWinControl>("TCustomListBox");
    return info;
}

const ClassInfo& TListBox::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TListBox, TCustomListBox>("TListBox"), ListBoxProperties(),
                "Align Anchors BiDiMode BorderStyle Color Columns Constraints Ctl3D DragCursor DragKind DragMode "
                "Enabled ExtendedSelect Font ImeMode ImeName IntegralHeight ItemHeight Items MultiSelect "
                "ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu ShowHint Sorted Style "
                "TabOrder TabStop TabWidth Visible OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnDrawItem "
                "OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMeasureItem OnMouseDown OnMouseMove "
                "OnMouseUp OnStartDock OnStartDrag");
    return info;
}

TCustomListBox::TCustomListBox(TComponent* owner)
    : TWinControl(owner), items_(std::make_unique<ListBoxStrings>(*this)) {
    ControlStyle = {csSetCaption, csDoubleClicks, csOpaque};
    SetInitialSize(121, 97);
    SetDefaultColor(clWindow, false);
    SetTabStop(true);
}

TCustomListBox::~TCustomListBox() { static_cast<ListBoxStrings&>(*items_).OnChange.Clear(); }

void TCustomListBox::SetItems(TStrings* value) { items_->Assign(value); }
int TCustomListBox::Count() const { return items_->Count(); }

void TCustomListBox::ItemsChanged() {
    if (topIndex_ >= Count()) topIndex_ = std::max(Count() - 1, 0);
    PeerChanged(PeerChange::Items);
}

void TCustomListBox::SetItemIndex(int value) {
    if (value < -1 || value >= Count()) throw EListError("List index out of bounds (" + IntToStr(value) + ")");
    if (itemIndex_ == value) return;
    itemIndex_ = value;
    anchorIndex_ = value;
    PeerChanged(PeerChange::Selection);
}

bool TCustomListBox::Selected(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    if (!multiSelect_) return index == itemIndex_;
    const auto& selected = static_cast<const ListBoxStrings&>(*items_).selected;
    return static_cast<size_t>(index) < selected.size() && selected[static_cast<size_t>(index)];
}

void TCustomListBox::SetSelected(int index, bool value) {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    if (!multiSelect_) {
        if (value)
            SetItemIndex(index);
        else if (itemIndex_ == index)
            SetItemIndex(-1);
        return;
    }
    auto& selected = static_cast<ListBoxStrings&>(*items_).selected;
    selected.resize(static_cast<size_t>(Count()), false);
    selected[static_cast<size_t>(index)] = value;
    PeerChanged(PeerChange::Selection);
}

int TCustomListBox::SelCount() const {
    if (!multiSelect_) return itemIndex_ >= 0 ? 1 : 0;
    const auto& selected = static_cast<const ListBoxStrings&>(*items_).selected;
    return static_cast<int>(std::count(selected.begin(), selected.end(), true));
}

void TCustomListBox::Clear() { items_->Clear(); }

void TCustomListBox::ClearSelection() {
    static_cast<ListBoxStrings&>(*items_).selected.clear();
    if (!multiSelect_) itemIndex_ = -1;
    PeerChanged(PeerChange::Selection);
}

void TCustomListBox::SelectAll() {
    if (!multiSelect_) return;
    static_cast<ListBoxStrings&>(*items_).selected.assign(static_cast<size_t>(Count()), true);
    PeerChanged(PeerChange::Selection);
}

void TCustomListBox::SetTopIndex(int value) {
    topIndex_ = std::clamp(value, 0, std::max(Count() - 1, 0));
    PeerChanged(PeerChange::Scroll);
}

int TCustomListBox::ItemHeight() const {
    return style_ == lbStandard && !HasState(csWriting) && Parent() ? EffectiveFont().LineHeight() : itemHeight_;
}

TRect TCustomListBox::ItemRect(int index) const {
    const int height = std::max(ItemHeight(), 1);
    const int inner = Width() - 2 * list_detail::kSunkenEdge;
    const int top = (index - topIndex_) * height;
    return {0, top, inner, top + height};
}

int TCustomListBox::ItemAtPos(TPoint at, bool existing) const {
    if (at.x < 0 || at.y < 0 || at.x >= Width() || at.y >= Height()) return -1;
    const int index = topIndex_ + at.y / std::max(ItemHeight(), 1);
    if (index < Count()) return index;
    return existing ? -1 : Count();
}

void TCustomListBox::SetBorderStyle(TBorderStyle value) {
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetColumns(int value) {
    columns_ = std::max(value, 0);
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetExtendedSelect(bool value) {
    extendedSelect_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetIntegralHeight(bool value) {
    integralHeight_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetItemHeight(int value) {
    if (value <= 0) return;
    itemHeight_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetMultiSelect(bool value) {
    multiSelect_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetSorted(bool value) {
    if (sorted_ == value) return;
    sorted_ = value;
    const AnsiString chosen = itemIndex_ >= 0 ? items_->Get(itemIndex_) : AnsiString();
    static_cast<ListBoxStrings&>(*items_).SetSorted(value);
    if (itemIndex_ >= 0) itemIndex_ = items_->IndexOf(chosen);
}
void TCustomListBox::SetStyle(TListBoxStyle value) {
    style_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomListBox::SetTabWidth(int value) {
    tabWidth_ = std::max(value, 0);
    PeerChanged(PeerChange::Style);
}

void TCustomListBox::ProcessSelect(int itemIndex, const std::vector<int>& selected) {
    itemIndex_ = std::clamp(itemIndex, -1, Count() - 1);
    if (multiSelect_) {
        auto& flags = static_cast<ListBoxStrings&>(*items_).selected;
        flags.assign(static_cast<size_t>(Count()), false);
        for (const int index : selected)
            if (index >= 0 && index < Count()) flags[static_cast<size_t>(index)] = true;
    }
    Click();
}

void TCustomListBox::SelectByUser(int index, TShiftState shift) {
    index = std::clamp(index, -1, Count() - 1);
    std::vector<int> selected;
    if (multiSelect_ && index >= 0) {
        if (shift.Contains(ssShift) && extendedSelect_) {
            const int anchor = anchorIndex_ < 0 ? index : anchorIndex_;
            for (int i = std::min(anchor, index); i <= std::max(anchor, index); ++i) selected.push_back(i);
        } else if (shift.Contains(ssCtrl) || !extendedSelect_) {
            for (int i = 0; i < Count(); ++i)
                if (Selected(i) != (i == index)) selected.push_back(i);
            anchorIndex_ = index;
        } else {
            selected.push_back(index);
            anchorIndex_ = index;
        }
    }
    ProcessSelect(index, selected);
    PeerChanged(PeerChange::Selection);
}

bool TCustomListBox::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_UP || key == VK_DOWN || key == VK_LEFT || key == VK_RIGHT || TWinControl::WantsKey(key, shift);
}

void TCustomListBox::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key == 0 || peer_ || Count() == 0 || shift.Contains(ssAlt)) return;
    const int page = std::max(Height() / std::max(ItemHeight(), 1), 1);
    int index = itemIndex_;
    switch (key) {
        case VK_UP:
        case VK_LEFT:
            index = std::max(index - 1, 0);
            break;
        case VK_DOWN:
        case VK_RIGHT:
            ++index;
            break;
        case VK_HOME:
            index = 0;
            break;
        case VK_END:
            index = Count() - 1;
            break;
        case VK_PRIOR:
            index = std::max(index - page, 0);
            break;
        case VK_NEXT:
            index += page;
            break;
        default:
            return;
    }
    key = 0;
    index = std::min(index, Count() - 1);
    if (index != itemIndex_) SelectByUser(index, shift);
}

void TCustomListBox::KeyPress(char& key) {
    TWinControl::KeyPress(key);
    if (key == 0 || peer_ || static_cast<unsigned char>(key) < ' ' || Count() == 0) return;
    // Letters typed one after the other look for the line that begins with them.
    const uint32_t now = TickCount();
    if (now - typedAt_ > list_detail::kTypingPause) typed_.clear();
    typedAt_ = now;
    typed_ += key;
    key = 0;
    const int start = typed_.size() == 1 ? itemIndex_ + 1 : std::max(itemIndex_, 0);
    const int found = list_detail::FindPrefix(*items_, typed_, start);
    if (found >= 0 && found != itemIndex_) SelectByUser(found, {});
}

void TCustomListBox::MouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    if (!peer_ && button == mbLeft) {
        const int index = ItemAtPos({x, y}, true);
        if (index >= 0) SelectByUser(index, shift);
    }
    TWinControl::MouseDown(button, shift, x, y);
}

}  // namespace vyn
