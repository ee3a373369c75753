#include "platform/text/numbers.h"
#include "tree/node_store.h"

namespace vyn {

void TTreeVyn::InternalCheckNode(const TNodeArbre& node) const {
    if (node.IDNode < 1) Error("IDNode must be >=1");
    if (node.IDNode > MaxRealNode && !buildingVirtual_) Error("IDNode must be <=100000");
    CheckParents(node.IDNode, node.IDParent);
    // Copies stand below shortcuts, and what they copy has been checked.
    if (buildingVirtual_) return;
    if (node.NodeType == tnAccesDirecte)
        CheckShortcut(node);
    else
        CheckMove(node);
    const NodeElement* parent = FindElement(node.IDParent);
    if (parent && !parent->Real) Error("Could not modify virtual nodes");
}

// Only a node with children can be its own ancestor: adding a leaf walks nowhere, however deep it stands.
void TTreeVyn::CheckParents(int IDNode, int IDParent) const {
    if (IDParent < 1) return;
    if (IDParent == IDNode) Error("Nodo circular no permitido");
    const NodeElement* parent = FindElement(IDParent);
    if (nodes_->HasChildren(IDNode)) {
        const NodeElement* ancestor = parent;
        for (int steps = Count(); ancestor && steps > 0; --steps) {
            if (ancestor->Node.IDParent == IDNode) Error("Nodo circular no permitido");
            ancestor = FindElement(ancestor->Node.IDParent);
        }
    }
    if (parent && parent->Node.NodeType == tnAccesDirecte && !buildingVirtual_)
        Error("El nodo padre no puede ser un Acceso Directo");
}

void TTreeVyn::CheckShortcut(const TNodeArbre& node) const {
    for (const NodeElement* child : nodes_->Children(node.IDNode))
        if (child->Real && child->Node.IDParent == node.IDNode) Error("Este tipo de nodo no puede tener hijos");
    CheckParents(node.IDComponent, node.IDParent);
    if (node.IDComponent == node.IDNode) Error("Nodo circular dentro de los hijos");
    if (ReachedThroughShortcuts(node.IDNode, node.IDParent, true, node.IDComponent))
        Error("Dentro de los hijos existe un acceso directo circular");
    if (realTree_) return;
    const NodeElement* existing = FindElement(node.IDNode);
    const bool asBefore =
        existing && existing->Node.NodeType == tnAccesDirecte && existing->Node.IDComponent == node.IDComponent;
    if (!asBefore) Error("Cannot insert tnAccesDirecte while are in Virtual Mode");
}

// A branch that comes to stand elsewhere may hold the shortcut that closes a circle.
void TTreeVyn::CheckMove(const TNodeArbre& node) const {
    if (!nodes_->HasShortcuts() || !nodes_->HasChildren(node.IDNode)) return;
    const NodeElement* existing = FindElement(node.IDNode);
    if (existing && existing->Node.IDParent == node.IDParent) return;
    if (ReachedThroughShortcuts(node.IDNode, node.IDParent, false, node.IDNode))
        Error("Dentro de los hijos existe un acceso directo circular");
}

// Whether the branch of `wanted` leads, through at least one other shortcut, to IDParent or what is above it (or to
// IDNode itself). Looks from both ends in turn: backwards from the ancestors to the shortcuts that point to them and on
// to the ancestors of these, and forwards down the branch and through its shortcuts. The end that has seen all it can
// reach decides, so that neither a large branch nor a long row of shortcuts is walked where the other end is short.
bool TTreeVyn::ReachedThroughShortcuts(int IDNode, int IDParent, bool withNode, int wanted) const {
    if (!nodes_->HasShortcuts()) return false;
    struct Walk {
        const std::vector<NodeElement*>* Elements;
        size_t Next = 0;
    };
    std::unordered_set<int> above;
    std::vector<Walk> backward;
    const auto reachUp = [&](int number) {
        while (number >= 1 && above.insert(number).second) {
            const std::vector<NodeElement*>& shortcuts = nodes_->ShortcutsTo(number);
            if (!shortcuts.empty()) backward.push_back({&shortcuts});
            const NodeElement* element = FindElement(number);
            number = element ? element->Node.IDParent : 0;
        }
    };
    if (withNode) {
        above.insert(IDNode);
        backward.push_back({&nodes_->ShortcutsTo(IDNode)});
    }
    reachUp(IDParent);
    const std::unordered_set<int> goals = above;

    std::unordered_set<int> below;
    std::vector<Walk> forward;
    const auto reachDown = [&](int number) {
        for (;;) {
            if (goals.count(number)) return true;
            if (!below.insert(number).second) return false;
            const NodeElement* element = FindElement(number);
            if (!element || element->Node.NodeType != tnAccesDirecte || number == IDNode) break;
            number = element->Node.IDComponent;
        }
        const std::vector<NodeElement*>& children = nodes_->Children(number);
        if (number >= 1 && !children.empty()) forward.push_back({&children});
        return false;
    };
    if (reachDown(wanted)) return true;

    while (!backward.empty() && !forward.empty()) {
        Walk& up = backward.back();
        if (up.Next == up.Elements->size()) {
            backward.pop_back();
        } else {
            const NodeElement* shortcut = (*up.Elements)[up.Next++];
            // Where the node itself points to now is what is being changed.
            if (shortcut->Real && shortcut->Node.IDNode != IDNode) reachUp(shortcut->Node.IDNode);
            if (above.count(wanted)) return true;
        }
        Walk& down = forward.back();
        if (down.Next == down.Elements->size()) {
            forward.pop_back();
        } else {
            const NodeElement* child = (*down.Elements)[down.Next++];
            // Where the node itself stands now is being changed too.
            const int number = child->Node.IDNode;
            if (child->Real && number != IDNode && !below.count(number) && reachDown(number)) return true;
        }
    }
    return false;
}

}  // namespace vyn
