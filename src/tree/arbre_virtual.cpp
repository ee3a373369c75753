#include <algorithm>

#include "platform/text/numbers.h"
#include "tree/node_store.h"

namespace vyn {

void TTreeVyn::SetRealTree(bool value) {
    if (value == realTree_) return;
    const bool modified = modified_;
    realTree_ = value;
    NodeElement* root = FindElement(firstIdNode_);
    // The root may have gone while its copies, or another root's, still stand.
    const bool rebuild = root || (value && nodes_->VirtualCount() > 0);
    if (!rebuild) return;
    Disable();
    NotifyLinks(mncChanged, -1);
    try {
        if (value) {
            DoRealTree();
        } else {
            buildingVirtual_ = true;
            DoVirtualTree(*root);
            buildingVirtual_ = false;
        }
    } catch (...) {
        buildingVirtual_ = false;
        if (!value) nodes_->RemoveVirtual();
        realTree_ = !value;
        modified_ = modified;
        Enable();
        throw;
    }
    modified_ = modified;
    Enable();
}

void TTreeVyn::SetFirstIdNode(int value) {
    if (value == firstIdNode_) return;
    if (realTree_) {
        firstIdNode_ = value;
        return;
    }
    const int former = firstIdNode_;
    SetRealTree(true);
    try {
        firstIdNode_ = value;
        SetRealTree(false);
    } catch (...) {
        firstIdNode_ = former;
        SetRealTree(false);
        throw;
    }
}

void TTreeVyn::InternalAssignParentChildPointers() {
    const std::vector<NodeElement*>& ordered = nodes_->Ordered();
    for (NodeElement* element : ordered) {
        element->Parent = nullptr;
        element->Childs.clear();
    }
    std::vector<NodeElement*> reached;
    for (NodeElement* element : ordered) {
        if (element->Node.IDParent < 1) {
            reached.push_back(element);
            continue;
        }
        element->Parent = FindElement(element->Node.IDParent);
        if (!element->Parent) Error("ERROR INTERNO GRAVE: UTArbreVyn.InternalAssignParentChildPointers.161008.1");
        element->Parent->Childs.push_back(element);
    }
    for (NodeElement* element : ordered) SortElementsByChild(element->Childs);
    // Nodes on a circle belong to no list that begins at the top.
    for (size_t i = 0; i < reached.size(); ++i)
        reached.insert(reached.end(), reached[i]->Childs.begin(), reached[i]->Childs.end());
    if (reached.size() != ordered.size())
        Error("ERROR INTERNO GRAVE: UTArbreVyn.InternalAssignParentChildPointers.161008.2");
}

void TTreeVyn::DoVirtualTree(NodeElement& root) {
    InternalAssignParentChildPointers();
    std::vector<NodeElement*> waiting{&root};
    while (!waiting.empty()) {
        NodeElement* element = waiting.back();
        waiting.pop_back();
        if (element->Node.NodeType == tnAccesDirecte)
            ExpandShortcut(*element);
        else
            waiting.insert(waiting.end(), element->Childs.rbegin(), element->Childs.rend());
    }
}

void TTreeVyn::ExpandAccesDirecte(int IDNode) {
    const NodeElement* element = FindElement(IDNode);
    if (!element) Error("Node:" + IntToStr(IDNode) + " not find");
    ExpandShortcut(*element);
}

void TTreeVyn::ExpandShortcut(const NodeElement& shortcut) {
    if (shortcut.Node.NodeType != tnAccesDirecte) Error("ERROR 161008.3 is not AccesDirecte");
    struct Step {
        const NodeElement* Original;  // null: the branch of Number is done
        int Number;                   // of the copy's parent
        int Child;
    };
    std::vector<Step> steps;
    std::unordered_set<int> open;  // targets whose branches are being copied
    const auto begin = [&](const TNodeArbre& node, int IDParent) {
        const NodeElement* target = FindElement(node.IDComponent);
        if (!target) return;
        if (!open.insert(node.IDComponent).second) Error("Dentro de los hijos existe un acceso directo circular");
        steps.push_back({nullptr, node.IDComponent, 0});
        steps.push_back({target, IDParent, node.Child});
    };
    begin(shortcut.Node, shortcut.Node.IDNode);
    while (!steps.empty()) {
        const Step step = steps.back();
        steps.pop_back();
        if (!step.Original) {
            open.erase(step.Number);
            continue;
        }
        const int copy = AddVirtual(*step.Original, step.Number, step.Child);
        if (step.Original->Node.NodeType == tnAccesDirecte) {
            TNodeArbre node = step.Original->Node;
            node.Child = step.Child;
            begin(node, copy);
            continue;
        }
        const std::vector<NodeElement*>& children = step.Original->Childs;
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            steps.push_back({*child, copy, (*child)->Node.Child});
    }
}

int TTreeVyn::AddVirtual(const NodeElement& original, int IDParent, int child) {
    if (nodes_->VirtualCount() >= MaxVirtualNodes)
        Error("The shortcuts need more than " + IntToStr(MaxVirtualNodes) + " virtual nodes");
    TNodeArbre node = original.Node;
    node.IDNode = GetNewIDNodeForVirtual();
    node.IDParent = IDParent;
    node.Child = child;
    InternalCheckNode(node);
    InternalDoAdd(node);
    return node.IDNode;
}

void TTreeVyn::DoRealTree() {
    for (const NodeElement* element : nodes_->Ordered()) {
        if (element->Real) continue;
        const std::vector<NodeElement*>& children = nodes_->Children(element->Node.IDNode);
        // A stored node below a copy would be lost with it.
        if (std::all_of(children.begin(), children.end(), [](const NodeElement* child) { return !child->Real; }))
            continue;
        const TNodeArbre& node = element->Node;
        Error("Error TTreeVyn.DoRealTree.161008.4 ID:" + IntToStr(node.IDNode) +
              " IDComponent: " + IntToStr(node.IDComponent) + " Name: " + node.Name + " Count: " + IntToStr(Count()));
    }
    nodes_->RemoveVirtual();
}

}  // namespace vyn
