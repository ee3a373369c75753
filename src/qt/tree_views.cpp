#include "platform/controls/tree_views.h"

#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/tree_widget.h"

namespace vyn::qt {

void TreePeer::Changed(PeerChange what) {
    if (!widget_) return;
    switch (what) {
        case PeerChange::Scroll:
            tree_->ShowTop();
            break;
        case PeerChange::EditLabel:
            tree_->BeginEdit();
            break;
        case PeerChange::Close:
            tree_->EndEdit();
            break;
        case PeerChange::Invalidate:
            tree_->viewport()->update();
            break;
        default:
            PeerOf::Changed(what);
            break;
    }
}

QWidget* TreePeer::MakeWidget(QWidget* parent) {
    tree_ = new TreeWidget(this, parent);
    return tree_;
}

void TreePeer::ApplyItems() { tree_->NodesChanged(); }
void TreePeer::ApplySelection() { tree_->ShowSelected(); }

void TreePeer::ApplyStyle() {
    tree_->setFrameShape(Self().BorderStyle() == TBorderStyle::bsSingle ? QFrame::StyledPanel : QFrame::NoFrame);
    tree_->setFocusPolicy(FocusPolicyOf(Self()));
    tree_->RefreshLooks();
}

void TreePeer::ApplyFont() {
    PeerOf::ApplyFont();
    tree_->RefreshLooks();
}

void RegisterTreePeers() { RegisterPeer(&TCustomTreeView::StaticClass(), &NewPeer<TreePeer>); }

}  // namespace vyn::qt
