#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

#include "platform/controls/edits.h"
#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/text.h"

namespace vyn::qt {

namespace memo_detail {

// The control's lines end with two characters, the widget's with one.
QString ToLines(const AnsiString& text) {
    QString lines = ToQt(text);
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return lines;
}

AnsiString FromLines(const QString& lines) {
    AnsiString text = FromQt(lines);
    AnsiString joined;
    joined.reserve(text.size() + static_cast<size_t>(std::count(text.begin(), text.end(), '\n')));
    for (const char c : text) {
        if (c == '\n') joined += '\r';
        joined += c;
    }
    return joined;
}

// A place in the widget's text as the control counts, and the other way round.
int ToControl(const QTextDocument& document, int position) {
    return position + document.findBlock(position).blockNumber();
}

int ToWidget(const AnsiString& text, int position) {
    const auto end = text.begin() + std::clamp(position, 0, static_cast<int>(text.size()));
    return static_cast<int>(end - text.begin()) - static_cast<int>(std::count(text.begin(), end, '\n'));
}

class MemoPeer final : public PeerOf<TCustomMemo> {
  public:
    using PeerOf::PeerOf;

    bool EditsText() const override { return true; }
    bool WheelsByItself() const override { return true; }

    void Changed(PeerChange what) override { PeerOf::Changed(what == PeerChange::Items ? PeerChange::Text : what); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        memo_ = new NativeScrolling<QPlainTextEdit>(this, parent);
        memo_->setTabChangesFocus(false);
        QObject::connect(memo_, &QPlainTextEdit::textChanged, Context(), [this] { Edited(); });
        QObject::connect(memo_, &QPlainTextEdit::selectionChanged, Context(), [this] { SelectionMoved(); });
        QObject::connect(memo_, &QPlainTextEdit::cursorPositionChanged, Context(), [this] { SelectionMoved(); });
        return memo_;
    }

    void ApplyText() override {
        const QString text = ToLines(Self().Text());
        if (memo_->toPlainText() == text) return;
        memo_->setPlainText(text);
        ApplySelection();
    }

    void ApplySelection() override {
        const int start = ToWidget(Self().Text(), Self().SelStart());
        const int end = ToWidget(Self().Text(), Self().SelStart() + Self().SelLength());
        QTextCursor cursor = memo_->textCursor();
        if (cursor.selectionStart() == start && cursor.selectionEnd() == end) return;
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        memo_->setTextCursor(cursor);
    }

    void ApplyStyle() override {
        const TCustomMemo& memo = Self();
        const TScrollStyle bars = memo.ScrollBars();
        memo_->setReadOnly(memo.ReadOnly());
        if (memo.ReadOnly())  // the caret stays, so that the text can be read and copied by keyboard
            memo_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        memo_->setFrameShape(memo.BorderStyle() == TBorderStyle::bsSingle ? QFrame::StyledPanel : QFrame::NoFrame);
        memo_->setVerticalScrollBarPolicy(bars == ssVertical || bars == ssBoth ? Qt::ScrollBarAsNeeded
                                                                               : Qt::ScrollBarAlwaysOff);
        const bool wide = bars == ssHorizontal || bars == ssBoth;
        memo_->setHorizontalScrollBarPolicy(wide ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
        memo_->setLineWrapMode(memo.WordWrap() && !wide ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
        memo_->setFocusPolicy(FocusPolicyOf(memo));
    }

    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    void Edited() {
        if (updating_ > 0) return;
        const QTextCursor cursor = memo_->textCursor();
        const QTextDocument& document = *memo_->document();
        QString lines = memo_->toPlainText();
        const int most = Self().MostCharacters();
        if (AnsiString text = FromLines(lines); most > 0 && static_cast<int>(text.size()) > most) {
            // Too long: back to what it was.
            const Updating updating(*this);
            memo_->undo();
            return;
        }
        const int start = ToControl(document, cursor.selectionStart());
        const int end = ToControl(document, cursor.selectionEnd());
        const Watch alive(*this);
        Guard(&Self(), [&] { Self().ProcessTextEdit(FromLines(lines), start, end - start); });
        if (!alive) return;
        if (memo_->toPlainText() != ToLines(Self().Text())) {
            const Updating updating(*this);
            ApplyText();
        }
    }

    void SelectionMoved() {
        if (updating_ > 0) return;
        const QTextCursor cursor = memo_->textCursor();
        const QTextDocument& document = *memo_->document();
        // While text goes in or out, the edit is told next.
        if (document.characterCount() - 1 + document.blockCount() - 1 != static_cast<int>(Self().Text().size())) return;
        const int start = ToControl(document, cursor.selectionStart());
        const int end = ToControl(document, cursor.selectionEnd());
        Guard(&Self(), [&] { Self().ProcessSelection(start, end - start); });
    }

    QPlainTextEdit* memo_ = nullptr;
};

}  // namespace memo_detail

void RegisterMemoPeers() { RegisterPeer(&TCustomMemo::StaticClass(), &NewPeer<memo_detail::MemoPeer>); }

}  // namespace vyn::qt
