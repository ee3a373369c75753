// Memos: edits of several lines (edits.h).

#include <algorithm>

#include "platform/controls/edits.h"
#include "platform/controls/shortcuts.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

// The lines of a memo's text. A line ends with CR LF, CR or LF; what follows the last line end is a line unless it is
// empty.
class MemoStrings : public TStrings {
  public:
    explicit MemoStrings(TCustomMemo& memo) : memo_(memo) {}

    int Count() const override { return static_cast<int>(Lines().size()); }
    AnsiString Get(int index) const override {
        Check(index);
        const Line& line = Lines()[static_cast<size_t>(index)];
        return memo_.Text().substr(line.start, line.length);
    }
    void Put(int index, const AnsiString& text) override {
        Check(index);
        const Line line = Lines()[static_cast<size_t>(index)];
        AnsiString whole = memo_.Text();
        memo_.SetCaption(whole.replace(line.start, line.length, text));
    }
    TObject* GetObject(int index) const override {
        Check(index);
        return nullptr;  // a memo keeps text alone
    }
    void PutObject(int index, TObject*) override { Check(index); }
    void Insert(int index, const AnsiString& text) override {
        if (index < 0 || index > Count()) IndexError(index);
        AnsiString whole = memo_.Text();
        if (index < Count()) {
            memo_.SetCaption(whole.insert(Lines()[static_cast<size_t>(index)].start, text + "\r\n"));
            return;
        }
        if (!whole.empty() && whole.back() != '\n' && whole.back() != '\r') whole += "\r\n";
        memo_.SetCaption(whole + text + "\r\n");
    }
    void Delete(int index) override {
        Check(index);
        const Line line = Lines()[static_cast<size_t>(index)];
        AnsiString whole = memo_.Text();
        memo_.SetCaption(whole.erase(line.start, line.end - line.start));
    }
    void Clear() override { memo_.SetCaption(AnsiString()); }

  private:
    struct Line {
        size_t start;
        size_t length;
        size_t end;  // behind its line end
    };

    const std::vector<Line>& Lines() const {
        const AnsiString& text = memo_.Text();
        if (valid_ && text == seen_) return lines_;
        seen_ = text;
        valid_ = true;
        lines_.clear();
        size_t start = 0;
        while (start < text.size()) {
            const size_t at = text.find_first_of("\r\n", start);
            if (at == AnsiString::npos) {
                lines_.push_back({start, text.size() - start, text.size()});
                break;
            }
            const size_t end = at + (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1);
            lines_.push_back({start, at - start, end});
            start = end;
        }
        return lines_;
    }
    void Check(int index) const {
        if (index < 0 || index >= Count()) IndexError(index);
    }
    void SetUpdateState(bool) override {}

    TCustomMemo& memo_;
    mutable AnsiString seen_;
    mutable std::vector<Line> lines_;
    mutable bool valid_ = false;
};

const PropertyCatalogue& MemoProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Memo = TCustomMemo;
        PropertyCatalogue made(&EditProperties());
        made.Add("Alignment", &TCustomEdit::Alignment, &TCustomEdit::SetAlignment).Default(taLeftJustify);
        made.Add("Lines", &Memo::Lines, &Memo::SetLines);
        made.Add("ScrollBars", &Memo::ScrollBars, &Memo::SetScrollBars).Default(ssNone);
        made.Add("WantReturns", &Memo::WantReturns, &Memo::SetWantReturns).Default(true);
        made.Add("WantTabs", &Memo::WantTabs, &Memo::SetWantTabs).Default(false);
        made.Add("WordWrap", &Memo::WordWrap, &Memo::SetWordWrap).Default(true);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomMemo::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomMemo, TCustomEdit>("TCustomMemo");
    return info;
}

const ClassInfo& TMemo::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TMemo, TCustomMemo>("TMemo"), MemoProperties(),
                "Align Alignment Anchors BiDiMode BorderStyle Color Constraints Ctl3D DragCursor DragKind DragMode "
                "Enabled Font HideSelection ImeMode ImeName Lines MaxLength OEMConvert ParentBiDiMode ParentColor "
                "ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly ScrollBars ShowHint TabOrder TabStop "
                "Visible WantReturns WantTabs WordWrap OnChange OnClick OnContextPopup OnDblClick OnDragDrop "
                "OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove "
                "OnMouseUp OnStartDock OnStartDrag");
    return info;
}

TCustomMemo::TCustomMemo(TComponent* owner) : TCustomEdit(owner), lines_(std::make_unique<MemoStrings>(*this)) {
    SetInitialSize(185, 89);
    TControl::SetAutoSize(false);
    SetAutoSelect(false);
}

TCustomMemo::~TCustomMemo() = default;

void TCustomMemo::SetLines(TStrings* value) { lines_->Assign(value); }

void TCustomMemo::SetScrollBars(TScrollStyle value) {
    scrollBars_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomMemo::SetWordWrap(bool value) {
    wordWrap_ = value;
    PeerChanged(PeerChange::Style);
}

TPoint TCustomMemo::CaretPos() const {
    const AnsiString& text = Text();
    const auto caret = static_cast<size_t>(CaretPosition());
    int line = 0;
    size_t start = 0;
    for (size_t at = text.find_first_of("\r\n"); at < caret; at = text.find_first_of("\r\n", start)) {
        start = at + (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1);
        if (start > caret) break;
        ++line;
    }
    return {static_cast<int>(caret - std::min(start, caret)), line};
}

bool TCustomMemo::WantsKey(uint16_t key, TShiftState shift) const {
    if (key == VK_RETURN) return wantReturns_ || shift.Contains(ssCtrl);
    if (key == VK_TAB) return wantTabs_ && !shift.Contains(ssCtrl);
    return TCustomEdit::WantsKey(key, shift);
}

void TCustomMemo::KeyDown(uint16_t& key, TShiftState shift) {
    if (EditsByItself() && (key == VK_UP || key == VK_DOWN || key == VK_HOME || key == VK_END) &&
        !shift.Contains(ssCtrl) && !shift.Contains(ssAlt)) {
        TWinControl::KeyDown(key, shift);
        if (key == 0) return;
        // Up and down keep the column; Home and End stay on the line.
        const TPoint caret = CaretPos();
        int line = caret.y;
        int column = caret.x;
        if (key == VK_UP) --line;
        if (key == VK_DOWN) ++line;
        if (key == VK_HOME) column = 0;
        const int count = lines_->Count();
        if (line >= 0 && line < std::max(count, 1)) {
            const AnsiString& text = Text();
            size_t start = 0;
            for (int i = 0; i < line; ++i) {
                const size_t at = text.find_first_of("\r\n", start);
                start = at + (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1);
            }
            const int length = line < count ? static_cast<int>(lines_->Get(line).size()) : 0;
            if (key == VK_END) column = length;
            MoveCaret(static_cast<int>(start) + std::min(column, length), shift.Contains(ssShift));
        }
        key = 0;
        return;
    }
    TCustomEdit::KeyDown(key, shift);
}

void TCustomMemo::KeyPress(char& key) {
    constexpr char kEnter = 13;
    constexpr char kTab = 9;
    if ((key == kEnter && !wantReturns_) || (key == kTab && !wantTabs_)) {
        TWinControl::KeyPress(key);
        key = 0;
        return;
    }
    TCustomEdit::KeyPress(key);
}

}  // namespace vyn
