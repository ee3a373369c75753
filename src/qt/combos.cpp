#include <QComboBox>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>

#include "platform/controls/lists.h"
#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/strings_model.h"
#include "qt/text.h"

namespace vyn::qt {

namespace combo_detail {

class ComboPeer;

class ComboWidget final : public Native<QComboBox> {
  public:
    ComboWidget(ComboPeer* peer, QWidget* parent);
    void showPopup() override;
    void hidePopup() override;
    // A key that the line edit had no use for.
    void GiveKey(QKeyEvent& event) { keyPressEvent(&event); }
};

// The line edit of a combo box; what the toolkit chooses because of it is no choice of the user's.
class ComboEdit final : public Native<QLineEdit> {
  public:
    ComboEdit(ComboPeer* peer, QWidget* parent);
    bool event(QEvent* event) override;

  private:
    ComboPeer& combo_;
};

class ComboPeer final : public PeerOf<TCustomComboBox> {
  public:
    using PeerOf::PeerOf;

    bool EditsText() const override { return true; }
    // A combo box that has not the keyboard leaves the wheel to the form, so that scrolling changes no data.
    bool WheelsByItself() const override { return FocusTarget()->hasFocus(); }
    QWidget* FocusTarget() const override { return edit_ ? static_cast<QWidget*>(edit_) : combo_; }

    void Changed(PeerChange what) override {
        if (widget_ && what == PeerChange::DropDown) {
            combo_->showPopup();
            return;
        }
        if (widget_ && what == PeerChange::Close) {
            combo_->hidePopup();
            return;
        }
        PeerOf::Changed(what);
    }

    bool KeyPressed(QKeyEvent& event, const NativeCall& native) override {
        if (!edit_) return PeerOf::KeyPressed(event, native);
        const Watch alive(*this);
        return PeerOf::KeyPressed(event, [&](QEvent* e) {
            native(e);
            if (alive && edit_ && !e->isAccepted()) {
                const bool inEdit = std::exchange(inEdit_, false);
                combo_->GiveKey(static_cast<QKeyEvent&>(*e));
                if (alive) inEdit_ = inEdit;
            }
            return true;
        });
    }

    void DropDown(bool open) {
        Guard(&Self(), [&] { Self().ProcessDropDown(open); });
    }

    bool inEdit_ = false;

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        combo_ = new ComboWidget(this, parent);
        model_ = new StringsModel(*Self().Items(), combo_);
        combo_->setModel(model_);
        combo_->setInsertPolicy(QComboBox::NoInsert);
        combo_->setDuplicatesEnabled(true);
        combo_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        QObject::connect(combo_, &QComboBox::activated, Context(), [this](int index) { Chosen(index); });
        return combo_;
    }

    void ApplyStyle() override {
        const TCustomComboBox& control = Self();
        if (control.HasEdit() && !edit_) {
            edit_ = new ComboEdit(this, combo_);
            combo_->setLineEdit(edit_);
            combo_->setCompleter(nullptr);
            edit_->setMouseTracking(true);
            QObject::connect(edit_, &QLineEdit::textEdited, Context(), [this] { Edited(); });
        } else if (!control.HasEdit() && edit_) {
            combo_->setEditable(false);
            edit_ = nullptr;
        }
        combo_->setMaxVisibleItems(control.DropDownCount());
        if (edit_ && control.MaxLength() > 0) edit_->setMaxLength(control.MaxLength());
        combo_->setFocusPolicy(FocusPolicyOf(control));
        ApplyText();
    }

    void ApplyItems() override {
        model_->Reset();
        ApplySelection();
    }

    void ApplyText() override {
        if (!edit_) {
            ApplySelection();
            return;
        }
        const QString text = ToQt(Self().Text());
        if (edit_->text() != text) edit_->setText(text);
    }

    void ApplySelection() override {
        const TCustomComboBox& control = Self();
        const int index = control.ItemIndex() < LineCount() ? control.ItemIndex() : -1;
        if (combo_->currentIndex() != index) combo_->setCurrentIndex(index);
        if (!edit_) return;
        ApplyText();
        const int start = control.SelStart();
        const int length = control.SelLength();
        if (length > 0)
            edit_->setSelection(start, length);
        else if (edit_->hasSelectedText() || edit_->cursorPosition() != start)
            edit_->setCursorPosition(start);
    }

    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    int LineCount() const { return Self().Items()->Count(); }

    void Chosen(int index) {
        if (updating_ > 0) return;
        if (inEdit_) {
            // The toolkit found the typed text among the lines; the control has its own rule for that.
            const Updating updating(*this);
            ApplySelection();
            return;
        }
        Guard(&Self(), [&] { Self().ProcessSelect(index); });
    }

    void Edited() {
        if (updating_ > 0) return;
        const bool selected = edit_->hasSelectedText();
        const int start = selected ? edit_->selectionStart() : edit_->cursorPosition();
        const int length = selected ? edit_->selectionLength() : 0;
        const Watch alive(*this);
        Guard(&Self(), [&] { Self().ProcessTextEdit(FromQt(edit_->text()), start, length); });
        if (!alive || edit_->text() == ToQt(Self().Text())) return;
        const Updating updating(*this);
        const int caret = edit_->cursorPosition();
        ApplyText();
        edit_->setCursorPosition(std::min<int>(caret, static_cast<int>(edit_->text().size())));
    }

    ComboWidget* combo_ = nullptr;
    ComboEdit* edit_ = nullptr;
    StringsModel* model_ = nullptr;
};

ComboWidget::ComboWidget(ComboPeer* peer, QWidget* parent) : Native<QComboBox>(peer, parent) {}

void ComboWidget::showPopup() {
    const QPointer<QWidget> alive(this);
    if (auto* peer = static_cast<ComboPeer*>(Peer())) peer->DropDown(true);
    if (alive && Peer()) Native<QComboBox>::showPopup();
}

void ComboWidget::hidePopup() {
    Native<QComboBox>::hidePopup();
    if (auto* peer = static_cast<ComboPeer*>(Peer())) peer->DropDown(false);
}

ComboEdit::ComboEdit(ComboPeer* peer, QWidget* parent) : Native<QLineEdit>(peer, parent), combo_(*peer) {}

bool ComboEdit::event(QEvent* event) {
    if (!Peer()) return Native<QLineEdit>::event(event);
    const QPointer<QWidget> alive(this);
    const bool before = std::exchange(combo_.inEdit_, true);
    const bool result = Native<QLineEdit>::event(event);
    if (alive && Peer()) combo_.inEdit_ = before;
    return result;
}

// The style with the list always open below the edit.
class SimpleComboPeer final : public PeerOf<TCustomComboBox> {
  public:
    using PeerOf::PeerOf;

    bool EditsText() const override { return true; }
    bool WheelsByItself() const override { return true; }
    QWidget* FocusTarget() const override { return edit_; }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* box = new Native<QWidget>(this, parent);
        edit_ = new Native<QLineEdit>(this, box);
        list_ = new QListView(box);
        model_ = new StringsModel(*Self().Items(), list_);
        list_->setModel(model_);
        list_->setUniformItemSizes(true);
        list_->setFocusPolicy(Qt::NoFocus);
        list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        QObject::connect(edit_, &QLineEdit::textEdited, Context(), [this] {
            if (updating_ > 0) return;
            Guard(&Self(), [&] { Self().ProcessTextEdit(FromQt(edit_->text()), edit_->cursorPosition(), 0); });
        });
        QObject::connect(list_, &QListView::clicked, Context(), [this](const QModelIndex& index) {
            Guard(&Self(), [&] { Self().ProcessSelect(index.row()); });
        });
        return box;
    }
    void ApplyBounds() override {
        PeerOf::ApplyBounds();
        const int line = edit_->sizeHint().height();
        edit_->setGeometry(0, 0, widget_->width(), line);
        list_->setGeometry(0, line, widget_->width(), std::max(widget_->height() - line, 0));
    }
    void ApplyItems() override {
        model_->Reset();
        ApplySelection();
    }
    void ApplyText() override {
        const QString text = ToQt(Self().Text());
        if (edit_->text() != text) edit_->setText(text);
    }
    void ApplySelection() override {
        const int index = Self().ItemIndex();
        list_->selectionModel()->setCurrentIndex(
            index >= 0 && index < Self().Items()->Count() ? model_->index(index) : QModelIndex(),
            QItemSelectionModel::ClearAndSelect);
    }
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    QLineEdit* edit_ = nullptr;
    QListView* list_ = nullptr;
    StringsModel* model_ = nullptr;
};

std::unique_ptr<WidgetPeer> MakeComboPeer(TControl& control) {
    if (static_cast<TCustomComboBox&>(control).Style() == csSimple) return std::make_unique<SimpleComboPeer>(control);
    return std::make_unique<ComboPeer>(control);
}

}  // namespace combo_detail

void RegisterComboPeers() { RegisterPeer(&TCustomComboBox::StaticClass(), &combo_detail::MakeComboPeer); }

}  // namespace vyn::qt
