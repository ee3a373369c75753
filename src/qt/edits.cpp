#include "qt/edit_peer.h"

#include <QInputMethodEvent>

#include "qt/factory.h"

namespace vyn::qt {

namespace edit_detail {

constexpr int kUnbounded = 32767;  // the toolkit's own bound

}  // namespace edit_detail

QLineEdit* EditPeer::NewLineEdit(QWidget* parent) {
    return new Native<QLineEdit>(this, ToQt(Self().Text()), parent);  // quicker than setting it
}

QWidget* EditPeer::MakeWidget(QWidget* parent) {
    edit_ = NewLineEdit(parent);
    QObject::connect(edit_, &QLineEdit::textEdited, Context(), [this] { Edited(); });
    QObject::connect(edit_, &QLineEdit::selectionChanged, Context(), [this] { SelectionMoved(); });
    QObject::connect(edit_, &QLineEdit::cursorPositionChanged, Context(), [this] { SelectionMoved(); });
    return edit_;
}

void EditPeer::ApplyText() {
    const QString text = ToQt(Self().Text());
    if (edit_->text() == text) return;
    edit_->setText(text);
    ApplySelection();
}

void EditPeer::ApplySelection() {
    const int start = Self().SelStart();
    const int length = Self().SelLength();
    if (length > 0) {
        if (edit_->selectionStart() != start || edit_->selectionLength() != length) edit_->setSelection(start, length);
    } else if (edit_->hasSelectedText() || edit_->cursorPosition() != start) {
        edit_->setCursorPosition(start);  // ends a selection, too
    }
}

void EditPeer::ApplyStyle() {
    const TCustomEdit& edit = Self();
    if (const int most = edit.MostCharacters() > 0 ? edit.MostCharacters() : edit_detail::kUnbounded;
        edit_->maxLength() != most)
        edit_->setMaxLength(most);
    if (edit_->isReadOnly() != edit.ReadOnly()) edit_->setReadOnly(edit.ReadOnly());
    const QLineEdit::EchoMode echo = edit.PasswordChar() != 0 ? QLineEdit::Password : QLineEdit::Normal;
    if (edit_->echoMode() != echo) edit_->setEchoMode(echo);
    const bool framed = edit.BorderStyle() == TBorderStyle::bsSingle;
    if (edit_->hasFrame() != framed) edit_->setFrame(framed);
    if (edit.Alignment() != taLeftJustify || shownAlignment_ != taLeftJustify) {
        shownAlignment_ = edit.Alignment();
        edit_->setAlignment(static_cast<Qt::Alignment>(AlignmentFlags(shownAlignment_)) | Qt::AlignVCenter);
    }
    if (const QMargins margins(0, 0, edit.RightTextMargin(), 0); edit_->textMargins() != margins)
        edit_->setTextMargins(margins);
    if (!edit.TabStop()) edit_->setFocusPolicy(Qt::ClickFocus);
}

void EditPeer::Edited() {
    if (updating_ > 0) return;
    const QString before = edit_->text();
    const bool selected = edit_->hasSelectedText();
    const int start = selected ? edit_->selectionStart() : edit_->cursorPosition();
    const int length = selected ? edit_->selectionLength() : 0;
    const Watch alive(*this);
    Guard(&Self(), [&] { Self().ProcessTextEdit(FromQt(before), start, length); });
    if (!alive) return;
    // The code page may lack what was typed: the control's text is the one that counts.
    if (edit_->text() != ToQt(Self().Text())) {
        const Updating updating(*this);
        ApplyText();
    }
}

void EditPeer::SelectionMoved() {
    if (updating_ > 0) return;
    const bool selected = edit_->hasSelectedText();
    const int start = selected ? edit_->selectionStart() : edit_->cursorPosition();
    if (edit_->text().size() != static_cast<qsizetype>(Self().Text().size())) return;  // the edit is told next
    Guard(&Self(), [&] { Self().ProcessSelection(start, selected ? edit_->selectionLength() : 0); });
}

// A text that an input method is in the middle of belongs to it: what else would be put in place waits.
bool EditPeer::TextComposed(QInputMethodEvent& event, const NativeCall& native) {
    composing_ = !event.preeditString().isEmpty();
    return PeerOf::TextComposed(event, native);
}

void EditPeer::FocusChanged(QWidget& widget, bool in) {
    if (!in) composing_ = false;
    PeerOf::FocusChanged(widget, in);
}

void RegisterEditPeers() { RegisterPeer(&TCustomEdit::StaticClass(), &NewPeer<EditPeer>); }

}  // namespace vyn::qt
