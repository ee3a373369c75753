#pragma once

#include <QAbstractScrollArea>
#include <vector>

#include "platform/controls/tree_views.h"
#include "qt/rows_accessibility.h"
#include "qt/widget_peer.h"

class QLineEdit;
class QStyleOptionViewItem;

namespace vyn::qt {

class TreePeer;

// Draws the nodes that are in sight and tells what the user does to them. The list of visible nodes is made when it is
// first needed after a change, in one walk; only the rows in the window are measured and drawn, so a tree of many
// thousand nodes shows at once. Nodes may go in any handler: none is kept across a call into the control.
class TreeWidget final : public NativeScrolling<QAbstractScrollArea>, public AccessibleRows {
  public:
    TreeWidget(TreePeer* peer, QWidget* parent);

    // Nodes came, went, opened or closed.
    void NodesChanged();
    void ShowSelected();
    void ShowTop();
    void RefreshLooks();
    void BeginEdit();
    void EndEdit();
    // The editor closes and the control hears of it.
    void FinishEdit(bool cancel);
    bool Editing() const { return editor_ != nullptr; }

    int RowCount() override;
    QString RowText(int row) override;
    QRect RowRect(int row) override;
    int RowAt(const QPoint& at) override;
    bool RowSelected(int row) override;
    bool RowExpandable(int row) override;
    bool RowExpanded(int row) override;
    void SelectRow(int row) override;
    void ExpandRow(int row, bool expand) override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void scrollContentsBy(int, int) override;

  private:
    TCustomTreeView& Tree() const;
    const std::vector<TTreeNode*>& Rows();
    int RowOf(const TTreeNode* node);
    int RowHeight() const;
    int VisibleRows() const;
    void UpdateBars();
    void ScrollToRow(int row);
    // Where a node's button, pictures and text stand in its row.
    int LevelLeft(const TTreeNode& node) const;
    int TextLeft(const TTreeNode& node) const;
    int TextWidth(const TTreeNode& node) const;
    bool OnButton(const TTreeNode& node, int x) const;
    void DrawRow(QPainter& painter, TTreeNode& node, const QRect& row);
    void Search(const QString& text);

    std::vector<TTreeNode*> rows_;
    bool rowsValid_ = false;
    bool painting_ = false;
    int widest_ = 0;
    QLineEdit* editor_ = nullptr;
    QString typed_;
    uint32_t typedAt_ = 0;
};

// The tree's peer.
class TreePeer final : public PeerOf<TCustomTreeView> {
  public:
    using PeerOf::PeerOf;

    bool WheelsByItself() const override { return true; }
    void Changed(PeerChange what) override;
    TCustomTreeView& Tree() const { return Self(); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override;
    void ApplyItems() override;
    void ApplySelection() override;
    void ApplyStyle() override;
    void ApplyFont() override;
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    TreeWidget* tree_ = nullptr;
};

}  // namespace vyn::qt
