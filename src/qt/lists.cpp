#include "platform/controls/lists.h"

#include <QItemSelectionModel>
#include <QListView>
#include <QScrollBar>

#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/strings_model.h"
#include "qt/text.h"

namespace vyn::qt {

QVariant StringsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= strings_.Count()) return {};
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return ToQt(strings_.Get(index.row()));
        case Qt::SizeHintRole:
            // No wider than the list: long lines are cut, as the control's places have it.
            return rowHeight_ > 0 ? QVariant(QSize(1, rowHeight_)) : QVariant();
        default:
            return {};
    }
}

namespace list_box_detail {

class ListBoxPeer final : public PeerOf<TCustomListBox> {
  public:
    using PeerOf::PeerOf;

    bool WheelsByItself() const override { return true; }

    void Changed(PeerChange what) override {
        PeerOf::Changed(what);
        if (!widget_ || (what != PeerChange::Scroll && what != PeerChange::Font)) return;
        const Updating updating(*this);
        if (what == PeerChange::Font) ApplyStyle();
        if (const int top = Self().TopIndex(); top < Self().Count())
            view_->scrollTo(model_->index(top), QAbstractItemView::PositionAtTop);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        view_ = new NativeScrolling<QListView>(this, parent);
        model_ = new StringsModel(*Self().Items(), view_);
        view_->setModel(model_);
        view_->setUniformItemSizes(true);
        view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view_->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
        QObject::connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, Context(),
                         [this] { Selected(); });
        QObject::connect(view_->verticalScrollBar(), &QScrollBar::valueChanged, Context(), [this](int top) {
            if (updating_ == 0) Self().ProcessTopIndex(top);
        });
        return view_;
    }

    void ApplyStyle() override {
        const TCustomListBox& list = Self();
        view_->setFrameShape(list.BorderStyle() == TBorderStyle::bsSingle ? QFrame::StyledPanel : QFrame::NoFrame);
        QAbstractItemView::SelectionMode mode = QAbstractItemView::SingleSelection;
        if (list.MultiSelect())
            mode = list.ExtendedSelect() ? QAbstractItemView::ExtendedSelection : QAbstractItemView::MultiSelection;
        view_->setSelectionMode(mode);
        model_->SetRowHeight(list.ItemHeight());
        const bool columns = list.Columns() > 0;
        view_->setFlow(QListView::TopToBottom);
        view_->setWrapping(columns);
        view_->setHorizontalScrollBarPolicy(columns ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
        view_->setGridSize(columns ? QSize(std::max(list.Width() / list.Columns(), 1), list.ItemHeight()) : QSize());
        view_->setFocusPolicy(FocusPolicyOf(list));
        view_->doItemsLayout();
    }

    void ApplyItems() override {
        model_->Reset();
        ApplySelection();
    }

    void ApplySelection() override {
        TCustomListBox& list = Self();
        QItemSelectionModel& selection = *view_->selectionModel();
        if (!list.MultiSelect()) {
            const QModelIndex chosen = list.ItemIndex() >= 0 ? model_->index(list.ItemIndex()) : QModelIndex();
            if (selection.currentIndex() != chosen || selection.selectedRows().value(0) != chosen)
                selection.setCurrentIndex(chosen, QItemSelectionModel::ClearAndSelect);
            if (chosen.isValid()) view_->scrollTo(chosen);
            return;
        }
        QItemSelection rows;
        for (int i = 0; i < list.Count(); ++i) {
            if (!list.Selected(i)) continue;
            const int first = i;
            while (i + 1 < list.Count() && list.Selected(i + 1)) ++i;
            rows.select(model_->index(first), model_->index(i));
        }
        selection.select(rows, QItemSelectionModel::ClearAndSelect);
        if (list.ItemIndex() >= 0)
            selection.setCurrentIndex(model_->index(list.ItemIndex()), QItemSelectionModel::NoUpdate);
    }

    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    void Selected() {
        if (updating_ > 0) return;
        std::vector<int> rows;
        for (const QModelIndex& index : view_->selectionModel()->selectedRows()) rows.push_back(index.row());
        int current = view_->selectionModel()->currentIndex().row();
        if (!Self().MultiSelect()) current = rows.empty() ? -1 : rows.front();
        Guard(&Self(), [&] { Self().ProcessSelect(current, rows); });
    }

    QListView* view_ = nullptr;
    StringsModel* model_ = nullptr;
};

}  // namespace list_box_detail

void RegisterListPeers() { RegisterPeer(&TCustomListBox::StaticClass(), &NewPeer<list_box_detail::ListBoxPeer>); }

}  // namespace vyn::qt
