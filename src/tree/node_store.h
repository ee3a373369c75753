#pragma once

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tree/Utarbrevyn.h"

namespace vyn {

// A node inside its tree.
struct NodeElement {
    TNodeArbre Node;
    bool Real = true;  // stored; else made by expanding a shortcut
    // Of real nodes, as of the last switch to virtual mode; only that switch uses them.
    NodeElement* Parent = nullptr;
    std::vector<NodeElement*> Childs;
};

// Elements in ascending order of their numbers. What comes out of order waits, and is merged when the order is asked
// for: a file's nodes come in any order, and putting each in its place would cost the square of their number.
class ElementList {
  public:
    bool Empty() const { return items_.empty() && late_.empty(); }
    const std::vector<NodeElement*>& Ordered() const;
    void Insert(NodeElement* element);
    void Remove(const NodeElement* element);
    void RemoveVirtual();

  private:
    mutable std::vector<NodeElement*> items_;
    mutable std::vector<NodeElement*> late_;
};

// A tree's nodes with their indexes: by number, by parent, and shortcuts by target. Top-level nodes are the children
// of 0, whatever number below 1 they name. Owns the elements.
class NodeStore {
  public:
    int Count() const { return static_cast<int>(elements_.size()); }
    int VirtualCount() const { return virtualCount_; }
    bool HasShortcuts() const { return !shortcutsByTarget_.empty(); }
    NodeElement* Find(int IDNode) const;
    // -1 when there is none.
    int PositionOf(int IDNode) const;
    const std::vector<NodeElement*>& Ordered() const { return nodes_.Ordered(); }
    // The list stays valid while the children of this parent do not change.
    const std::vector<NodeElement*>& Children(int IDParent) const;
    bool HasChildren(int IDParent) const { return childrenByParent_.count(ParentKey(IDParent)) != 0; }
    const std::vector<NodeElement*>& ShortcutsTo(int IDNode) const;

    // The number must be free.
    void Insert(const TNodeArbre& node, bool real);
    // The number stays.
    void Modify(NodeElement& element, const TNodeArbre& node);
    void Remove(int IDNode);
    void RemoveVirtual();
    void Clear();

  private:
    using Index = std::unordered_map<int, ElementList>;
    static int ParentKey(int IDParent) { return IDParent < 1 ? 0 : IDParent; }
    static const std::vector<NodeElement*>& Entry(const Index& index, int key);
    static void RemoveEntry(Index& index, int key, const NodeElement* element);
    static void RemoveVirtualEntries(Index& index);
    void Link(NodeElement* element);
    void Unlink(const NodeElement* element);

    std::unordered_map<int, std::unique_ptr<NodeElement>> elements_;
    ElementList nodes_;
    Index childrenByParent_;  // no empty lists
    Index shortcutsByTarget_;
    int virtualCount_ = 0;
};

// The children in the order in which they are shown.
void SortElementsByChild(std::vector<NodeElement*>& elements);

}  // namespace vyn
