#include <algorithm>

#include "tree/Utarbrevyn.h"

namespace vyn {

const ClassInfo& TCustomTreeVynLink::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomTreeVynLink, TComponent>("TCustomTreeVynLink");
    return info;
}

const ClassInfo& TComponentListNexus::StaticClass() {
    static const ClassInfo info = DefineClass<TComponentListNexus, TComponent>("TComponentListNexus");
    return info;
}

void TTreeVyn::NotifyLinks(TTreeVynNodeCange kind, int IDNode) {
    if (disableds_ > 0) {
        pending_ = true;
        return;
    }
    for (size_t i = links_.size(); i > 0;) {
        --i;
        links_[i]->NotifyChange(kind, IDNode);
        i = std::min(i, links_.size());  // a link may have left
    }
}

void TTreeVyn::Enable() {
    if (disableds_ == 0) Error("Disableds desorder");
    if (--disableds_ > 0 || !pending_) return;
    pending_ = false;
    NotifyLinks(mncChanged, -1);
}

TCustomTreeVynLink::~TCustomTreeVynLink() { SetTreeVyn(nullptr); }

void TCustomTreeVynLink::SetTreeVyn(TTreeVyn* tree) {
    if (tree == treeVyn_) return;
    if (treeVyn_) std::erase(treeVyn_->links_, this);
    treeVyn_ = tree;
    if (tree) tree->links_.push_back(this);
}

void TComponentListNexus::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove) OnRemove(this, component);
}

}  // namespace vyn
