#include "app/nodes_list.h"

#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

TNodesList::TNodesList(bool watch) {
    if (!watch) return;
    nexus_ = std::make_unique<TComponentListNexus>(nullptr);
    nexus_->OnRemove = [this](TObject* sender, TComponent* component) { NexusSaysThatElimines(sender, component); };
}

void TNodesList::CheckIndex(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
}

int TNodesList::Add(const TNodeListItem& item) {
    const int at = IndexOf(item.IDNode);
    if (at >= 0) return at;
    items_.push_back(item);
    if (nexus_ && item.Component) item.Component->FreeNotification(nexus_.get());
    return Count() - 1;
}

void TNodesList::Delete(int idNode) {
    const int at = IndexOf(idNode);
    if (at >= 0) Remove(at);
}

void TNodesList::Remove(int index) {
    CheckIndex(index);
    items_.erase(items_.begin() + index);
}

TNodeListItem TNodesList::GetItem(int index) const {
    CheckIndex(index);
    return items_[static_cast<size_t>(index)];
}

void TNodesList::SetItem(int index, const TNodeListItem& item) {
    CheckIndex(index);
    items_[static_cast<size_t>(index)] = item;
    if (nexus_ && item.Component) item.Component->FreeNotification(nexus_.get());
}

int TNodesList::IndexOf(int idNode) const {
    for (int i = Count() - 1; i >= 0; --i)
        if (items_[static_cast<size_t>(i)].IDNode == idNode) return i;
    return -1;
}

int TNodesList::IndexOf(const TComponent* component) const {
    for (int i = Count() - 1; i >= 0; --i)
        if (items_[static_cast<size_t>(i)].Component == component) return i;
    return -1;
}

void TNodesList::NexusSaysThatElimines(TObject*, TComponent* component) {
    for (int at = IndexOf(component); at >= 0; at = IndexOf(component)) Remove(at);
}

}  // namespace vyn
