#include "platform/controls/edits.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/text_metrics.h"
#include "platform/system/clipboard.h"
#include "platform/system/message_dialogs.h"
#include "platform/text/compare.h"

namespace vyn {

namespace edit_detail {

constexpr int kBorder = 8;       // what the frame and its inner margin add to a line's height
constexpr int kPlainMargin = 2;  // without a frame
constexpr char kCtrlA = 1;
constexpr char kCtrlC = 3;
constexpr char kCtrlV = 22;
constexpr char kCtrlX = 24;
constexpr char kCtrlZ = 26;
constexpr char kEnter = 13;
constexpr char kTab = 9;

}  // namespace edit_detail

VYN_ENUM_NAMES(TEditCharCase, "ecNormal", "ecUpperCase", "ecLowerCase")

const PropertyCatalogue& EditProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Edit = TCustomEdit;
        PropertyCatalogue made(&WinControlProperties());
        made.Add("AutoSelect", &Edit::AutoSelect, &Edit::SetAutoSelect).Default(true);
        made.Add("AutoSize", &TControl::AutoSize, &TControl::SetAutoSize).Default(true);
        made.Add("BorderStyle", &Edit::BorderStyle, &Edit::SetBorderStyle).Default(TBorderStyle::bsSingle);
        made.Add("CharCase", &Edit::CharCase, &Edit::SetCharCase).Default(ecNormal);
        made.Add("HideSelection", &Edit::HideSelection, &Edit::SetHideSelection).Default(true);
        made.Add("MaxLength", &Edit::MaxLength, &Edit::SetMaxLength).Default(0);
        made.Add("OEMConvert", &Edit::OEMConvert, &Edit::OEMConvert).Default(false);
        made.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(false);
        made.Add("PasswordChar", &Edit::PasswordChar, &Edit::SetPasswordChar).Default(0);
        made.Add("ReadOnly", &Edit::ReadOnly, &Edit::SetReadOnly).Default(false);
        made.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        made.Event("OnChange", &Edit::OnChange);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomEdit::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TCustomEdit, TWinControl>("TCustomEdit"), EditProperties(), "TabStop");
    return info;
}

const ClassInfo& TEdit::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TEdit, TCustomEdit>("TEdit"), EditProperties(),
                "Anchors AutoSelect AutoSize BiDiMode BorderStyle CharCase Color Constraints Ctl3D DragCursor DragKind "
                "DragMode Enabled Font HideSelection ImeMode ImeName MaxLength OEMConvert ParentBiDiMode ParentColor "
                "ParentCtl3D ParentFont ParentShowHint PasswordChar PopupMenu ReadOnly ShowHint TabOrder TabStop Text "
                "Visible OnChange OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter "
                "OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    return info;
}

TCustomEdit::TCustomEdit(TComponent* owner) : TWinControl(owner) {
    ControlStyle = {csClickEvents, csSetCaption, csDoubleClicks};
    SetInitialSize(121, 25);
    SetDefaultColor(clWindow, false);
    SetTabStop(true);
    TControl::SetAutoSize(true);
}

void TCustomEdit::SetBorderStyle(TBorderStyle value) {
    if (borderStyle_ == value) return;
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
    if (!HasState(csReading)) AdjustSize();
}

void TCustomEdit::SetCharCase(TEditCharCase value) {
    if (charCase_ == value) return;
    charCase_ = value;
    PeerChanged(PeerChange::Style);
    if (value != ecNormal && !HasState(csLoading)) SetCaption(Cased(Text()));
}
void TCustomEdit::SetHideSelection(bool value) {
    hideSelection_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomEdit::SetMaxLength(int value) {
    maxLength_ = std::max(value, 0);
    PeerChanged(PeerChange::Style);
}
void TCustomEdit::SetPasswordChar(char value) {
    passwordChar_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomEdit::SetReadOnly(bool value) {
    if (readOnly_ == value) return;
    readOnly_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomEdit::SetAlignment(TAlignment value) {
    alignment_ = value;
    PeerChanged(PeerChange::Style);
}

bool TCustomEdit::CanAutoSize(int&, int& newHeight) {
    if (IsMultiLine()) return false;
    newHeight = EffectiveFont().LineHeight() +
                (borderStyle_ == TBorderStyle::bsSingle ? edit_detail::kBorder : edit_detail::kPlainMargin);
    return true;
}

void TCustomEdit::FontChanged() {
    TWinControl::FontChanged();
    if (!HasState(csReading) && Parent()) AdjustSize();
}

void TCustomEdit::Loaded() {
    TWinControl::Loaded();
    modified_ = false;
}

AnsiString TCustomEdit::Cased(const AnsiString& text) const {
    switch (charCase_) {
        case ecUpperCase:
            return AnsiUpperCase(text);
        case ecLowerCase:
            return AnsiLowerCase(text);
        case ecNormal:
            return text;
    }
    return text;
}

// Set by the program: a change is told, but is none of the user's.
void TCustomEdit::SetCaption(const AnsiString& text) {
    const AnsiString cased = HasState(csLoading) ? text : Cased(text);
    if (cased == Text()) return;
    selStart_ = selLength_ = 0;
    caretAtStart_ = false;
    ClearUndo();
    PutText(cased);
    modified_ = false;
    TextChanged();
}

void TCustomEdit::TextChanged() {
    TWinControl::TextChanged();
    if (!HasState(csLoading) && !changing_) Change();
}

void TCustomEdit::ProcessTextEdit(const AnsiString& text, int selStart, int selLength) {
    const AnsiString cased = Cased(text);
    const bool differs = cased != Text();
    if (differs && !BeginChange()) {
        PeerChanged(PeerChange::Text);
        return;
    }
    if (differs) {
        undoText_ = Text();
        canUndo_ = true;
        PutText(cased);
        modified_ = true;
    }
    const int length = static_cast<int>(cased.size());
    selStart_ = std::clamp(selStart, 0, length);
    selLength_ = std::clamp(selLength, 0, length - selStart_);
    caretAtStart_ = false;
    if (cased != text) PeerChanged(PeerChange::Text);
    if (differs) Change();
}

void TCustomEdit::ProcessSelection(int selStart, int selLength) {
    const int length = static_cast<int>(Text().size());
    selStart_ = std::clamp(selStart, 0, length);
    selLength_ = std::clamp(selLength, 0, length - selStart_);
    caretAtStart_ = false;
}

void TCustomEdit::SetSelStart(int value) {
    selStart_ = std::clamp(value, 0, static_cast<int>(Text().size()));
    selLength_ = 0;
    caretAtStart_ = false;
    PeerChanged(PeerChange::Selection);
}

void TCustomEdit::SetSelLength(int value) {
    // A negative length selects to the left.
    if (value < 0) {
        const int start = std::max(selStart_ + value, 0);
        value = selStart_ - start;
        selStart_ = start;
        caretAtStart_ = true;
    } else {
        caretAtStart_ = false;
    }
    selLength_ = std::min(value, static_cast<int>(Text().size()) - selStart_);
    PeerChanged(PeerChange::Selection);
}

void TCustomEdit::SelectAll() {
    selStart_ = 0;
    selLength_ = static_cast<int>(Text().size());
    caretAtStart_ = false;
    PeerChanged(PeerChange::Selection);
}

AnsiString TCustomEdit::SelText() const {
    return Text().substr(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_));
}

void TCustomEdit::SetSelText(const AnsiString& text) { ReplaceSelection(text, false); }
void TCustomEdit::ClearSelection() { ReplaceSelection(AnsiString(), true); }

void TCustomEdit::ReplaceSelection(const AnsiString& text, bool byUser) {
    AnsiString inserted = Cased(text);
    const int rest = static_cast<int>(Text().size()) - selLength_;
    const int most = MostCharacters();
    if (byUser && most > 0 && rest + static_cast<int>(inserted.size()) > most)
        inserted.resize(static_cast<size_t>(std::max(most - rest, 0)));
    if (inserted.empty() && selLength_ == 0) {
        if (byUser && !text.empty()) MessageBeep();
        return;
    }
    if (byUser && !BeginChange()) return;
    AnsiString whole = Text();
    whole.replace(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_), inserted);
    undoText_ = Text();
    canUndo_ = true;
    selStart_ += static_cast<int>(inserted.size());
    selLength_ = 0;
    caretAtStart_ = false;
    PutText(whole);
    modified_ = true;
    changing_ = true;
    TextChanged();
    changing_ = false;
    PeerChanged(PeerChange::Selection);
    if (!HasState(csLoading)) Change();
}

void TCustomEdit::CopyToClipboard() {
    if (selLength_ > 0 && passwordChar_ == 0) Clipboard()->SetAsText(SelText());
}

void TCustomEdit::CutToClipboard() {
    if (selLength_ == 0 || passwordChar_ != 0) return;
    CopyToClipboard();
    if (!ReadOnly()) ClearSelection();
}

void TCustomEdit::PasteFromClipboard() {
    if (ReadOnly() || !Clipboard()->HasText()) return;
    AnsiString text = Clipboard()->AsText();
    if (!IsMultiLine()) text = text.substr(0, text.find_first_of("\r\n"));
    ReplaceSelection(text, true);
}

// The last change is taken back; undoing again brings it forth.
void TCustomEdit::Undo() {
    if (!canUndo_ || ReadOnly() || !BeginChange()) return;
    const AnsiString now = Text();
    PutText(undoText_);
    undoText_ = now;
    selStart_ = static_cast<int>(Text().size());
    selLength_ = 0;
    modified_ = true;
    TextChanged();
}

void TCustomEdit::ClearUndo() {
    undoText_.clear();
    canUndo_ = false;
}

void TCustomEdit::MoveCaret(int position, bool extend) {
    position = std::clamp(position, 0, static_cast<int>(Text().size()));
    if (!extend) {
        selStart_ = position;
        selLength_ = 0;
        caretAtStart_ = false;
    } else {
        const int anchor = caretAtStart_ ? selStart_ + selLength_ : selStart_;
        selStart_ = std::min(anchor, position);
        selLength_ = std::max(anchor, position) - selStart_;
        caretAtStart_ = position < anchor;
    }
    PeerChanged(PeerChange::Selection);
}

void TCustomEdit::DoEnter() {
    if (autoSelect_ && !IsMultiLine()) SelectAll();
    TWinControl::DoEnter();
}

bool TCustomEdit::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_LEFT || key == VK_RIGHT || key == VK_UP || key == VK_DOWN || TWinControl::WantsKey(key, shift);
}

void TCustomEdit::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key == 0 || !EditsByItself() || shift.Contains(ssAlt)) return;
    const bool extend = shift.Contains(ssShift);
    const bool ctrl = shift.Contains(ssCtrl);
    switch (key) {
        case VK_LEFT:
            if (!extend && selLength_ > 0)
                MoveCaret(selStart_, false);
            else
                MoveCaret(CaretPosition() - 1, extend);
            break;
        case VK_RIGHT:
            if (!extend && selLength_ > 0)
                MoveCaret(selStart_ + selLength_, false);
            else
                MoveCaret(CaretPosition() + 1, extend);
            break;
        case VK_HOME:
            MoveCaret(0, extend);
            break;
        case VK_END:
            MoveCaret(static_cast<int>(Text().size()), extend);
            break;
        case VK_DELETE:
            if (ReadOnly()) break;
            if (extend) {
                CutToClipboard();
                break;
            }
            if (selLength_ == 0) selLength_ = selStart_ < static_cast<int>(Text().size()) ? 1 : 0;
            ClearSelection();
            break;
        case VK_INSERT:
            if (extend) PasteFromClipboard();
            if (ctrl) CopyToClipboard();
            break;
        default:
            return;
    }
    key = 0;
}

void TCustomEdit::KeyPress(char& key) {
    TWinControl::KeyPress(key);
    if (key != 0) AcceptKey(key);
    if (key == 0 || !EditsByItself()) return;
    constexpr char kBackspace = 8;
    const auto code = static_cast<unsigned char>(key);
    if (key == edit_detail::kCtrlA) {
        SelectAll();
    } else if (key == edit_detail::kCtrlC) {
        CopyToClipboard();
    } else if (key == edit_detail::kCtrlX) {
        CutToClipboard();
    } else if (key == edit_detail::kCtrlV) {
        PasteFromClipboard();
    } else if (key == edit_detail::kCtrlZ) {
        Undo();
    } else if (ReadOnly()) {
        return;
    } else if (key == kBackspace) {
        if (selLength_ == 0 && selStart_ > 0) {
            --selStart_;
            selLength_ = 1;
        }
        ClearSelection();
    } else if (code >= ' ' || (IsMultiLine() && key == edit_detail::kTab)) {
        ReplaceSelection(AnsiString(1, key), true);
    } else if (IsMultiLine() && key == edit_detail::kEnter) {
        ReplaceSelection("\r\n", true);
    } else {
        return;
    }
    key = 0;
}

}  // namespace vyn
