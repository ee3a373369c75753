#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "tree/Utarbrevyn.h"

namespace vyn {

// A component that was opened from a tree node.
struct TNodeListItem {
    int IDNode = 0;
    TComponent* Component = nullptr;
};

// The components that were opened from nodes, at most one a node, in the order in which they came. Watching, it drops
// a component that is freed elsewhere. Owns none of them.
class TNodesList {
  public:
    explicit TNodesList(bool watch);

    // The position; a node that is there already keeps its component.
    int Add(const TNodeListItem& item);
    void Delete(int idNode);
    // Raises EListError outside 0 to Count - 1, as the two below.
    void Remove(int index);
    TNodeListItem GetItem(int index) const;
    void SetItem(int index, const TNodeListItem& item);
    int IndexOf(int idNode) const;
    int IndexOf(const TComponent* component) const;
    int Count() const { return static_cast<int>(items_.size()); }
    void NexusSaysThatElimines(TObject* sender, TComponent* component);

  private:
    void CheckIndex(int index) const;

    std::vector<TNodeListItem> items_;
    std::unique_ptr<TComponentListNexus> nexus_;
};

}  // namespace vyn
