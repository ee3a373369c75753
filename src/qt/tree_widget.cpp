#include "qt/tree_widget.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <algorithm>

#include "platform/system/ticks.h"
#include "qt/looks.h"
#include "qt/pictures.h"
#include "qt/text.h"

namespace vyn::qt {

namespace tree_widget_detail {

constexpr int kLinePadding = 3;
constexpr int kTextMargin = 3;
constexpr int kPictureGap = 3;
constexpr uint32_t kTypingPause = 1000;

// An editor in place: Enter and leaving it keep the text, Escape does not.
class NodeEditor final : public QLineEdit {
  public:
    NodeEditor(TreeWidget& tree, QWidget* parent) : QLineEdit(parent), tree_(tree) {}

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            tree_.FinishEdit(false);
        else if (event->key() == Qt::Key_Escape)
            tree_.FinishEdit(true);
        else
            QLineEdit::keyPressEvent(event);
        event->accept();
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        if (event->reason() != Qt::PopupFocusReason) tree_.FinishEdit(false);
    }

  private:
    TreeWidget& tree_;
};

}  // namespace tree_widget_detail

TreeWidget::TreeWidget(TreePeer* peer, QWidget* parent) : NativeScrolling<QAbstractScrollArea>(peer, parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    viewport()->setMouseTracking(true);
}

TCustomTreeView& TreeWidget::Tree() const { return static_cast<TreePeer*>(Peer())->Tree(); }

const std::vector<TTreeNode*>& TreeWidget::Rows() {
    if (!rowsValid_) {
        rows_.clear();
        rowsValid_ = true;
        if (Peer())
            for (TTreeNode* node = Tree().Items()->GetFirstNode(); node; node = node->GetNextVisible())
                rows_.push_back(node);
    }
    return rows_;
}

void TreeWidget::NodesChanged() {
    if (painting_) return;  // a picture was chosen for a node that is being drawn
    rowsValid_ = false;
    UpdateBars();
    viewport()->update();
}

int TreeWidget::RowOf(const TTreeNode* node) {
    if (!node) return -1;
    const auto& rows = Rows();
    const auto at = std::find(rows.begin(), rows.end(), node);
    return at == rows.end() ? -1 : static_cast<int>(at - rows.begin());
}

int TreeWidget::RowHeight() const {
    int height = fontMetrics().height() + tree_widget_detail::kLinePadding;
    if (Peer() && Tree().Images()) height = std::max(height, Tree().Images()->Height() + 1);
    return height;
}

int TreeWidget::VisibleRows() const { return std::max(viewport()->height() / RowHeight(), 1); }

void TreeWidget::UpdateBars() {
    const int count = RowCount();
    verticalScrollBar()->setRange(0, std::max(count - VisibleRows(), 0));
    verticalScrollBar()->setPageStep(VisibleRows());
    verticalScrollBar()->setSingleStep(1);
    horizontalScrollBar()->setRange(0, std::max(widest_ - viewport()->width(), 0));
    horizontalScrollBar()->setPageStep(std::max(viewport()->width(), 1));
    horizontalScrollBar()->setSingleStep(RowHeight());
}

void TreeWidget::RefreshLooks() {
    widest_ = 0;
    UpdateBars();
    viewport()->update();
}

void TreeWidget::ScrollToRow(int row) {
    if (row < 0) return;
    const int top = verticalScrollBar()->value();
    if (row < top)
        verticalScrollBar()->setValue(row);
    else if (row >= top + VisibleRows())
        verticalScrollBar()->setValue(row - VisibleRows() + 1);
}

void TreeWidget::ShowSelected() {
    if (painting_) return;
    ScrollToRow(RowOf(Tree().Selected()));
    viewport()->update();
}

void TreeWidget::ShowTop() {
    if (painting_) return;
    if (const int row = RowOf(Tree().TopItem()); row >= 0)
        verticalScrollBar()->setValue(row);
    else
        ShowSelected();
}

void TreeWidget::scrollContentsBy(int, int) {
    if (editor_) FinishEdit(false);
    viewport()->update();
}

void TreeWidget::resizeEvent(QResizeEvent* event) {
    NativeScrolling<QAbstractScrollArea>::resizeEvent(event);
    if (Peer()) UpdateBars();
}

// Places.

int TreeWidget::LevelLeft(const TTreeNode& node) const {
    const int level = node.Level() - (Tree().ShowRoot() ? 0 : 1);
    return level * Tree().Indent() - horizontalScrollBar()->value();
}

int TreeWidget::TextLeft(const TTreeNode& node) const {
    int left = LevelLeft(node) + Tree().Indent();
    const auto room = [](const TCustomImageList* list) {
        return list ? list->Width() + tree_widget_detail::kPictureGap : 0;
    };
    if (Tree().StateImages() && node.StateIndex() > 0) left += room(Tree().StateImages());
    return left + room(Tree().Images());
}

int TreeWidget::TextWidth(const TTreeNode& node) const {
    return fontMetrics().horizontalAdvance(ToQt(node.Text())) + 2 * tree_widget_detail::kTextMargin;
}

bool TreeWidget::OnButton(const TTreeNode& node, int x) const {
    const int left = LevelLeft(node);
    return Tree().ShowButtons() && node.HasChildren() && x >= left && x < left + Tree().Indent();
}

int TreeWidget::RowAt(const QPoint& at) {
    if (at.y() < 0) return -1;
    const int row = verticalScrollBar()->value() + at.y() / RowHeight();
    return row < RowCount() ? row : -1;
}

int TreeWidget::RowCount() { return static_cast<int>(Rows().size()); }

QString TreeWidget::RowText(int row) {
    const auto& rows = Rows();
    return row >= 0 && row < static_cast<int>(rows.size()) ? ToQt(rows[static_cast<size_t>(row)]->Text()) : QString();
}

QRect TreeWidget::RowRect(int row) {
    const int top = (row - verticalScrollBar()->value()) * RowHeight();
    if (row < 0 || row >= RowCount() || top < 0 || top >= viewport()->height()) return {};
    return QRect(0, top, viewport()->width(), RowHeight()).translated(viewport()->pos());
}

bool TreeWidget::RowSelected(int row) { return Rows()[static_cast<size_t>(row)] == Tree().Selected(); }
bool TreeWidget::RowExpandable(int row) { return Rows()[static_cast<size_t>(row)]->HasChildren(); }
bool TreeWidget::RowExpanded(int row) { return Rows()[static_cast<size_t>(row)]->Expanded(); }

void TreeWidget::SelectRow(int row) {
    if (!Peer() || row < 0 || row >= RowCount()) return;
    TTreeNode* node = Rows()[static_cast<size_t>(row)];
    TCustomTreeView& tree = Tree();
    Guard(&tree, [&] { tree.ProcessSelect(node); });
}

void TreeWidget::ExpandRow(int row, bool expand) {
    if (!Peer() || row < 0 || row >= RowCount()) return;
    TTreeNode* node = Rows()[static_cast<size_t>(row)];
    TCustomTreeView& tree = Tree();
    const QPointer<QWidget> alive(this);
    Guard(&tree, [&] { tree.ProcessExpand(node, expand); });
    if (alive && Peer()) NodesChanged();
}

// Drawing.

void TreeWidget::paintEvent(QPaintEvent*) {
    if (!Peer()) return;
    QPainter painter(viewport());
    painting_ = true;
    const int height = RowHeight();
    const int first = verticalScrollBar()->value();
    const int last = std::min(first + viewport()->height() / height + 1, RowCount());
    int widest = widest_;
    for (int row = first; row < last && row < static_cast<int>(rows_.size()); ++row) {
        TTreeNode& node = *rows_[static_cast<size_t>(row)];
        // The program may choose the pictures at the last moment.
        if (Tree().OnGetImageIndex) Guard(&Tree(), [&] { Tree().OnGetImageIndex(&Tree(), &node); });
        DrawRow(painter, node, {0, (row - first) * height, viewport()->width(), height});
        widest = std::max(widest, TextLeft(node) + horizontalScrollBar()->value() + TextWidth(node));
    }
    painting_ = false;
    if (widest == widest_) return;
    widest_ = widest;
    UpdateBars();
}

void TreeWidget::DrawRow(QPainter& painter, TTreeNode& node, const QRect& row) {
    const TCustomTreeView& tree = Tree();
    const bool selected = tree.Selected() == &node;
    const bool lit = (selected && (hasFocus() || !tree.HideSelection() || editor_)) || tree.DropTarget() == &node;
    const int textLeft = TextLeft(node);
    const QRect text(textLeft, row.top(), TextWidth(node), row.height());
    const QPalette::ColorGroup group = !isEnabled() ? QPalette::Disabled
                                       : hasFocus() ? QPalette::Active
                                                    : QPalette::Inactive;
    const QRect bar = tree.RowSelect() ? row : text;
    if (lit) painter.fillRect(bar, palette().brush(group, QPalette::Highlight));
    if (tree.ShowButtons() && node.HasChildren()) {
        QStyleOptionViewItem branch;
        branch.initFrom(this);
        branch.rect = QRect(LevelLeft(node), row.top(), std::max(tree.Indent(), 1), row.height());
        branch.state = QStyle::State_Item | QStyle::State_Children;
        if (isEnabled()) branch.state |= QStyle::State_Enabled;
        if (node.Expanded()) branch.state |= QStyle::State_Open;
        if (node.GetNextSibling()) branch.state |= QStyle::State_Sibling;
        style()->drawPrimitive(QStyle::PE_IndicatorBranch, &branch, &painter, this);
    }
    int left = LevelLeft(node) + tree.Indent();
    const auto picture = [&](const TCustomImageList* list, int index) {
        if (!list) return;
        if (index >= 0 && index < list->Count())
            painter.drawImage(left, row.top() + (row.height() - list->Height()) / 2, ToQImage(list->Image(index)));
        left += list->Width() + tree_widget_detail::kPictureGap;
    };
    if (node.StateIndex() > 0) picture(tree.StateImages(), node.StateIndex());
    picture(tree.Images(), selected ? node.SelectedIndex() : node.ImageIndex());
    painter.setPen(palette().color(group, lit ? QPalette::HighlightedText : QPalette::Text));
    painter.drawText(text.adjusted(tree_widget_detail::kTextMargin, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     ToQt(node.Text()));
    if (!selected || !hasFocus()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect = bar;
    focus.backgroundColor = palette().color(QPalette::Highlight);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

void TreeWidget::focusInEvent(QFocusEvent* event) {
    NativeScrolling<QAbstractScrollArea>::focusInEvent(event);
    viewport()->update();
}

void TreeWidget::focusOutEvent(QFocusEvent* event) {
    NativeScrolling<QAbstractScrollArea>::focusOutEvent(event);
    viewport()->update();
}

// What the user does.

void TreeWidget::mousePressEvent(QMouseEvent* event) {
    if (!Peer()) return;
    const int row = RowAt(event->position().toPoint());
    if (row < 0) return;
    TTreeNode& node = *Rows()[static_cast<size_t>(row)];
    const int x = event->position().toPoint().x();
    if (event->button() == Qt::LeftButton && OnButton(node, x)) {
        ExpandRow(row, !node.Expanded());
        return;
    }
    if (event->button() != Qt::LeftButton && !(event->button() == Qt::RightButton && Tree().RightClickSelect)) return;
    const bool onNode = x >= LevelLeft(node) + Tree().Indent() && x < TextLeft(node) + TextWidth(node);
    if (onNode || Tree().RowSelect()) SelectRow(row);
}

void TreeWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!Peer() || event->button() != Qt::LeftButton) return;
    const int row = RowAt(event->position().toPoint());
    if (row < 0) return;
    const TTreeNode& node = *Rows()[static_cast<size_t>(row)];
    ExpandRow(row, !node.Expanded());
}

void TreeWidget::keyPressEvent(QKeyEvent* event) {
    const auto& rows = Rows();
    if (!Peer() || rows.empty()) {
        event->ignore();
        return;
    }
    const int count = static_cast<int>(rows.size());
    const int row = RowOf(Tree().Selected());
    const TTreeNode* node = row >= 0 ? rows[static_cast<size_t>(row)] : nullptr;
    const int page = std::max(VisibleRows() - 1, 1);
    switch (event->key()) {
        case Qt::Key_Down:
            SelectRow(std::min(row + 1, count - 1));
            break;
        case Qt::Key_Up:
            SelectRow(std::max(row - 1, 0));
            break;
        case Qt::Key_Home:
            SelectRow(0);
            break;
        case Qt::Key_End:
            SelectRow(count - 1);
            break;
        case Qt::Key_PageDown:
            SelectRow(std::min(std::max(row, 0) + page, count - 1));
            break;
        case Qt::Key_PageUp:
            SelectRow(std::max(row - page, 0));
            break;
        case Qt::Key_Right:
        case Qt::Key_Plus:
            if (!node) break;
            if (!node->Expanded())
                ExpandRow(row, true);
            else if (event->key() == Qt::Key_Right)
                SelectRow(row + 1);
            break;
        case Qt::Key_Left:
        case Qt::Key_Minus:
            if (!node) break;
            if (node->Expanded())
                ExpandRow(row, false);
            else if (event->key() == Qt::Key_Left)
                SelectRow(RowOf(node->Parent()));
            break;
        case Qt::Key_F2:
            BeginEdit();
            break;
        default:
            if (event->text().isEmpty() || !event->text()[0].isPrint())
                event->ignore();
            else
                Search(event->text());
            break;
    }
}

// Letters typed one after the other look for the node that begins with them, from the selected one on.
void TreeWidget::Search(const QString& text) {
    const uint32_t now = TickCount();
    if (now - typedAt_ > tree_widget_detail::kTypingPause) typed_.clear();
    typedAt_ = now;
    typed_ += text;
    const int count = RowCount();
    const int start = std::max(RowOf(Tree().Selected()), 0) + (typed_.size() == 1 ? 1 : 0);
    for (int step = 0; step < count; ++step) {
        const int row = (start + step) % count;
        if (!RowText(row).startsWith(typed_, Qt::CaseInsensitive)) continue;
        SelectRow(row);
        return;
    }
}

// Editing in place.

void TreeWidget::BeginEdit() {
    TTreeNode* node = Tree().Selected();
    const int row = RowOf(node);
    if (row < 0 || editor_) return;
    if (!Tree().IsEditing()) {
        const QPointer<QWidget> alive(this);
        bool allowed = false;
        Guard(&Tree(), [&] { allowed = Tree().ProcessBeginEdit(node); });
        if (!allowed || !alive || !Peer() || RowOf(node) != row) return;
    }
    ScrollToRow(row);
    const int top = (row - verticalScrollBar()->value()) * RowHeight();
    editor_ = new tree_widget_detail::NodeEditor(*this, viewport());
    editor_->setText(ToQt(node->Text()));
    const int left = TextLeft(*node);
    constexpr int kRoom = 24;
    editor_->setGeometry(left, top, std::min(TextWidth(*node) + kRoom, viewport()->width() - left), RowHeight());
    editor_->selectAll();
    editor_->show();
    editor_->setFocus(Qt::OtherFocusReason);
}

void TreeWidget::EndEdit() {
    QLineEdit* editor = std::exchange(editor_, nullptr);
    if (!editor) return;
    const bool focused = editor->hasFocus();
    editor->hide();
    editor->deleteLater();
    if (focused) setFocus(Qt::OtherFocusReason);
    viewport()->update();
}

void TreeWidget::FinishEdit(bool cancel) {
    if (!editor_) return;
    const AnsiString text = FromQt(editor_->text());
    EndEdit();
    if (Peer()) Guard(&Tree(), [&] { Tree().ProcessEndEdit(text, cancel); });
}

}  // namespace vyn::qt
