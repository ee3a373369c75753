#include "tree/node_store.h"

#include <algorithm>

namespace vyn {

namespace node_store_detail {

// So few are put in their places one by one.
constexpr size_t kFewElements = 8;

bool ByNumber(const NodeElement* a, const NodeElement* b) { return a->Node.IDNode < b->Node.IDNode; }

}  // namespace node_store_detail

const std::vector<NodeElement*>& ElementList::Ordered() const {
    using node_store_detail::ByNumber;
    if (late_.size() <= node_store_detail::kFewElements) {
        for (NodeElement* element : late_)
            items_.insert(std::upper_bound(items_.begin(), items_.end(), element, ByNumber), element);
    } else {
        std::sort(late_.begin(), late_.end(), ByNumber);
        const auto middle = items_.insert(items_.end(), late_.begin(), late_.end());
        std::inplace_merge(items_.begin(), middle, items_.end(), ByNumber);
    }
    late_.clear();
    return items_;
}

void ElementList::Insert(NodeElement* element) {
    const bool last = late_.empty() && (items_.empty() || node_store_detail::ByNumber(items_.back(), element));
    (last ? items_ : late_).push_back(element);
}

void ElementList::Remove(const NodeElement* element) {
    Ordered();
    const auto at = std::lower_bound(items_.begin(), items_.end(), element, node_store_detail::ByNumber);
    items_.erase(at);
}

void ElementList::RemoveVirtual() {
    const auto isVirtual = [](const NodeElement* element) { return !element->Real; };
    std::erase_if(items_, isVirtual);
    std::erase_if(late_, isVirtual);
}

NodeElement* NodeStore::Find(int IDNode) const {
    const auto found = elements_.find(IDNode);
    return found == elements_.end() ? nullptr : found->second.get();
}

int NodeStore::PositionOf(int IDNode) const {
    const NodeElement* element = Find(IDNode);
    if (!element) return -1;
    const std::vector<NodeElement*>& ordered = nodes_.Ordered();
    const auto at = std::lower_bound(ordered.begin(), ordered.end(), element, node_store_detail::ByNumber);
    return static_cast<int>(at - ordered.begin());
}

const std::vector<NodeElement*>& NodeStore::Entry(const Index& index, int key) {
    static const std::vector<NodeElement*> none;
    const auto found = index.find(key);
    return found == index.end() ? none : found->second.Ordered();
}

const std::vector<NodeElement*>& NodeStore::Children(int IDParent) const {
    return Entry(childrenByParent_, ParentKey(IDParent));
}

const std::vector<NodeElement*>& NodeStore::ShortcutsTo(int IDNode) const { return Entry(shortcutsByTarget_, IDNode); }

void NodeStore::Link(NodeElement* element) {
    childrenByParent_[ParentKey(element->Node.IDParent)].Insert(element);
    if (element->Node.NodeType == tnAccesDirecte) shortcutsByTarget_[element->Node.IDComponent].Insert(element);
}

void NodeStore::Unlink(const NodeElement* element) {
    RemoveEntry(childrenByParent_, ParentKey(element->Node.IDParent), element);
    if (element->Node.NodeType == tnAccesDirecte) RemoveEntry(shortcutsByTarget_, element->Node.IDComponent, element);
}

void NodeStore::RemoveEntry(Index& index, int key, const NodeElement* element) {
    const auto found = index.find(key);
    found->second.Remove(element);
    if (found->second.Empty()) index.erase(found);
}

void NodeStore::RemoveVirtualEntries(Index& index) {
    for (auto at = index.begin(); at != index.end();) {
        at->second.RemoveVirtual();
        at = at->second.Empty() ? index.erase(at) : std::next(at);
    }
}

void NodeStore::Insert(const TNodeArbre& node, bool real) {
    auto element = std::make_unique<NodeElement>();
    element->Node = node;
    element->Real = real;
    NodeElement* added = element.get();
    elements_.emplace(node.IDNode, std::move(element));
    nodes_.Insert(added);
    Link(added);
    if (!real) ++virtualCount_;
}

void NodeStore::Modify(NodeElement& element, const TNodeArbre& node) {
    Unlink(&element);
    const int32_t number = element.Node.IDNode;
    element.Node = node;
    element.Node.IDNode = number;
    Link(&element);
}

void NodeStore::Remove(int IDNode) {
    const auto found = elements_.find(IDNode);
    if (found == elements_.end()) return;
    const NodeElement* element = found->second.get();
    Unlink(element);
    nodes_.Remove(element);
    if (!element->Real) --virtualCount_;
    elements_.erase(found);
}

void NodeStore::RemoveVirtual() {
    RemoveVirtualEntries(childrenByParent_);
    RemoveVirtualEntries(shortcutsByTarget_);
    nodes_.RemoveVirtual();
    std::erase_if(elements_, [](const auto& entry) { return !entry.second->Real; });
    virtualCount_ = 0;
}

void NodeStore::Clear() {
    childrenByParent_.clear();
    shortcutsByTarget_.clear();
    nodes_ = ElementList();
    elements_.clear();
    virtualCount_ = 0;
}

}  // namespace vyn
