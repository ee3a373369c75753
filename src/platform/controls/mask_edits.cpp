#include "platform/controls/mask_edits.h"

#include <algorithm>

#include "platform/controls/shortcuts.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

namespace mask_edit_detail {

constexpr char kBackspace = 8;
constexpr char kEscape = 27;

}  // namespace mask_edit_detail

const ClassInfo& TCustomMaskEdit::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomMaskEdit, TCustomEdit>("TCustomMaskEdit");
    return info;
}

const ClassInfo& TMaskEdit::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&EditProperties());
        own.Add("EditMask", &TCustomMaskEdit::EditMask, &TCustomMaskEdit::SetEditMask);
        own.Add("Text", &TCustomMaskEdit::Text, &TCustomMaskEdit::SetText);
        return Publish(
            DefineClass<TMaskEdit, TCustomMaskEdit>("TMaskEdit"), own,
            "Anchors AutoSelect AutoSize BiDiMode BorderStyle CharCase Color Constraints Ctl3D DragCursor DragKind "
            "DragMode Enabled EditMask Font ImeMode ImeName MaxLength ParentBiDiMode ParentColor ParentCtl3D "
            "ParentFont ParentShowHint PasswordChar PopupMenu ReadOnly ShowHint TabOrder TabStop Text Visible "
            "OnChange OnClick OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown "
            "OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

void TCustomMaskEdit::SetEditMask(const AnsiString& value) {
    if (value == maskText_) return;
    const AnsiString kept = Text();
    maskText_ = value;
    mask_ = vyn::EditMask(value);
    SetText(kept);
}

AnsiString TCustomMaskEdit::Text() const { return IsMasked() ? mask_.Value(EditText()) : EditText(); }

void TCustomMaskEdit::SetText(const AnsiString& value) { SetEditText(IsMasked() ? mask_.Shown(value) : value); }

void TCustomMaskEdit::SetCaption(const AnsiString& text) { SetText(text); }

void TCustomMaskEdit::ValidateEdit() {
    if (!IsMasked() || Text().empty()) return;
    const int missing = mask_.FirstMissing(EditText());
    if (missing < 0) return;
    SetSelStart(missing);
    throw EDBEditError("\"" + EditText() +
                       "\" is not complete: fill the empty places, or press Escape to take your "
                       "changes back");
}

void TCustomMaskEdit::CheckCursor() {
    if (!IsMasked() || SelLength() > 0) return;
    if (const int place = mask_.Next(SelStart()); place < mask_.Length()) SetSelStart(place);
}

void TCustomMaskEdit::Reset() {
    SetEditText(entered_);
    SelectAll();
}

void TCustomMaskEdit::DoEnter() {
    entered_ = EditText();
    TCustomEdit::DoEnter();
    if (IsMasked() && SelLength() == 0) SetSelStart(mask_.Next(0));
}

void TCustomMaskEdit::DoExit() {
    if (Modified()) ValidateEdit();
    TCustomEdit::DoExit();
}

bool TCustomMaskEdit::WantsKey(uint16_t key, TShiftState shift) const {
    if (key == VK_ESCAPE && IsMasked() && Modified() && EditText() != entered_) return true;
    return TCustomEdit::WantsKey(key, shift);
}

void TCustomMaskEdit::PutShown(const AnsiString& shown, int caret) {
    TCustomEdit::ProcessTextEdit(shown, caret, 0);
    PeerChanged(PeerChange::Text);
    PeerChanged(PeerChange::Selection);
}

void TCustomMaskEdit::Put(int start, int end, std::string_view typed, int caret) {
    AnsiString shown = EditText();
    // An empty field shows nothing, not even the mask's literals.
    const auto length = static_cast<size_t>(mask_.Length());
    if (shown.size() < length) shown += mask_.Shown({}).substr(shown.size());
    shown.resize(length);
    for (int place = start; place < std::min(end, mask_.Length()); ++place)
        if (mask_.IsEditable(place)) shown[static_cast<size_t>(place)] = mask_.Blank();
    int place = start;
    bool taken = typed.empty();
    for (const char c : typed) {
        const int next = mask_.Next(place);
        if (const char accepted = mask_.Accept(next, c)) {
            shown[static_cast<size_t>(next)] = accepted;
            place = next + 1;
        } else if (const int behind = mask_.BehindLiteral(place, c); behind >= 0) {
            place = behind;
        } else {
            continue;
        }
        taken = true;
    }
    if (!taken) MessageBeep();
    PutShown(shown, caret >= 0 ? caret : mask_.Next(place));
}

// What the widget did to the text by itself: pasted, cut, composed.
void TCustomMaskEdit::ProcessTextEdit(const AnsiString& text, int selStart, int selLength) {
    if (!IsMasked()) {
        TCustomEdit::ProcessTextEdit(text, selStart, selLength);
        return;
    }
    const AnsiString& before = EditText();
    const size_t shorter = std::min(before.size(), text.size());
    size_t head = 0;
    while (head < shorter && before[head] == text[head]) ++head;
    size_t tail = 0;
    while (tail < shorter - head && before[before.size() - 1 - tail] == text[text.size() - 1 - tail]) ++tail;
    Put(static_cast<int>(head), static_cast<int>(before.size() - tail),
        std::string_view(text).substr(head, text.size() - head - tail));
}

void TCustomMaskEdit::KeyDown(uint16_t& key, TShiftState shift) {
    if (!IsMasked() || key != VK_DELETE || !shift.Empty()) {
        TCustomEdit::KeyDown(key, shift);
        return;
    }
    TWinControl::KeyDown(key, shift);
    if (key == 0 || ReadOnly()) return;
    key = 0;
    const int caret = CaretPosition();
    if (SelLength() > 0)
        Put(SelStart(), SelStart() + SelLength(), {}, SelStart());
    else if (const int place = mask_.Next(caret); place < mask_.Length())
        Put(place, place + 1, {}, caret);
}

void TCustomMaskEdit::KeyPress(char& key) {
    const bool typed = static_cast<unsigned char>(key) >= ' ' || key == mask_edit_detail::kBackspace;
    if (!IsMasked() || (!typed && key != mask_edit_detail::kEscape)) {
        TCustomEdit::KeyPress(key);
        return;
    }
    TWinControl::KeyPress(key);
    if (key != 0) AcceptKey(key);
    if (key == 0) return;
    if (key == mask_edit_detail::kEscape) {
        if (Modified() && EditText() != entered_) {
            Reset();
            key = 0;
        }
        return;
    }
    if (ReadOnly()) return;
    const int start = SelStart();
    const int end = start + SelLength();
    if (key != mask_edit_detail::kBackspace) {
        Put(start, end, std::string_view(&key, 1));
    } else if (end > start) {
        Put(start, end, {}, start);
    } else if (const int place = mask_.Previous(start); place >= 0) {
        Put(place, place + 1, {}, place);
    }
    key = 0;
}

}  // namespace vyn
