#include "tree/Utarbrevyn.h"

#include <algorithm>
#include <limits>

#include "platform/text/numbers.h"
#include "tree/node_store.h"

namespace vyn {

bool NodeTypeIsTransparent(int nodeType) {
    return nodeType == 14 || nodeType == 18 || nodeType == tnAccesDirecte || nodeType == 28;
}

const ClassInfo& TTreeVyn::StaticClass() {
    static const ClassInfo info = DefineClass<TTreeVyn, TPersistent>("TTreeVyn")
                                      .Published("FirstIdNode", &TTreeVyn::FirstIdNode, &TTreeVyn::SetFirstIdNode)
                                      .Default(1);
    return info;
}

TTreeVyn::TTreeVyn() : nodes_(std::make_unique<NodeStore>()) {}

TTreeVyn::~TTreeVyn() {
    while (!links_.empty()) links_.back()->SetTreeVyn(nullptr);
}

void TTreeVyn::Error(const AnsiString& message) { throw ETreeVyn("Error in TTreeVyn:\n" + message); }

// Changes.

void TTreeVyn::Add(const TNodeArbre& node) {
    if (FindNode(node.IDNode) < 0) {
        InternalCheckNode(node);
        InternalDoAdd(node);
    } else {
        ModifyTVynTreeNode(node.IDNode, node.IDParent, node.Child, node.IDComponent, node.NodeType, node.Name);
    }
    modified_ = true;
}

void TTreeVyn::InternalDoAdd(const TNodeArbre& node) {
    const auto checkFree = [&] {
        if (nodes_->Find(node.IDNode)) Error("IDNode duplicado: " + IntToStr(node.IDNode));
    };
    checkFree();
    NotifyLinks(mncBeforeAdd, node.IDNode);
    checkFree();  // a link may have added it
    nodes_->Insert(node, !buildingVirtual_);
    NotifyLinks(mncAfterAdd, node.IDNode);
}

void TTreeVyn::SetIDNode(int IDNode, const TNodeArbre& node) {
    TNodeArbre numbered = node;
    numbered.IDNode = IDNode;
    Add(numbered);
}

void TTreeVyn::ModifyTVynTreeNode(int IDNode, int IDParent, int child, int IDComponent, int nodeType,
                                  const AnsiString& name) {
    const auto existing = [&] {
        NodeElement* element = nodes_->Find(IDNode);
        if (!element) Error("Node:" + IntToStr(IDNode) + " not find");
        if (!element->Real) Error("Could not modify virtual nodes");
        return element;
    };
    existing();
    const TNodeArbre node{IDNode, IDParent, child, IDComponent, nodeType, name};
    InternalCheckNode(node);
    NotifyLinks(mncBeforeModify, IDNode);
    NodeElement* element = existing();
    const bool wasShortcut = element->Node.NodeType == tnAccesDirecte;
    nodes_->Modify(*element, node);
    modified_ = true;
    if (wasShortcut && nodeType != tnAccesDirecte) DeleteCopies(IDNode);
    NotifyLinks(mncAfterModify, IDNode);
}

void TTreeVyn::Delete(int IDNode) {
    const int position = FindNode(IDNode);
    if (position < 0) Error("Node:" + IntToStr(IDNode) + " not find");
    DoDelete(position);
}

void TTreeVyn::DoDelete(int position) {
    const int number = GetIdxNodeArbre(position).IDNode;
    NotifyLinks(mncBeforeDel, number);
    Disable();
    try {
        DeleteDependents(number);
    } catch (...) {
        Enable();
        throw;
    }
    Enable();
    nodes_->Remove(number);
    modified_ = true;
    NotifyLinks(mncAfterDel, number);
}

namespace arbre_detail {

// The nodes that go with a node: its children and the shortcuts to it, the highest number first.
std::vector<int> DependentsOf(const NodeStore& nodes, int IDNode) {
    std::vector<int> numbers;
    for (const NodeElement* child : nodes.Children(IDNode))
        if (child->Node.IDParent == IDNode) numbers.push_back(child->Node.IDNode);
    for (const NodeElement* shortcut : nodes.ShortcutsTo(IDNode)) numbers.push_back(shortcut->Node.IDNode);
    std::sort(numbers.begin(), numbers.end(), std::greater<int>());
    return numbers;
}

}  // namespace arbre_detail

// Each node goes after all that goes with it, as deleting one inside the other would have it; the order is found
// first, so that each deletion finds nothing left to delete and a deep branch needs no deep stack.
void TTreeVyn::DeleteDependents(int IDNode) {
    struct Visit {
        int Number;
        std::vector<int> Dependents;
        size_t Next;
    };
    std::unordered_set<int> seen{IDNode};
    std::vector<int> order;
    std::vector<Visit> path;
    path.push_back({IDNode, arbre_detail::DependentsOf(*nodes_, IDNode), 0});
    while (!path.empty()) {
        Visit& visit = path.back();
        if (visit.Next == visit.Dependents.size()) {
            if (visit.Number != IDNode) order.push_back(visit.Number);
            path.pop_back();
            continue;
        }
        const int number = visit.Dependents[visit.Next++];
        if (seen.insert(number).second) path.push_back({number, arbre_detail::DependentsOf(*nodes_, number), 0});
    }
    for (int number : order)
        if (nodes_->Find(number)) Delete(number);
}

// A shortcut that becomes something else in virtual mode loses its copies.
void TTreeVyn::DeleteCopies(int IDNode) {
    std::vector<int> copies;
    for (const NodeElement* child : nodes_->Children(IDNode))
        if (!child->Real) copies.push_back(child->Node.IDNode);
    Disable();
    try {
        for (int number : copies) Delete(number);
    } catch (...) {
        Enable();
        throw;
    }
    Enable();
}

void TTreeVyn::Clear() {
    nodes_->Clear();
    NotifyLinks(mncChanged, -1);
}

void TTreeVyn::CopyStructure(int IDNode, int IDParentDestination) {
    const NodeElement* origin = nodes_->Find(IDNode);
    if (origin ? !origin->Real : !IsNodeReal(IDNode)) Error("El nodo a copiar no es real (virtual)");
    for (int number : {IDNode, IDParentDestination})
        if (number >= 1 && !nodes_->Find(number)) Error("Node:" + IntToStr(number) + " not find");

    struct Copy {
        TNodeArbre Node;
        size_t Parent;  // among the copies; npos: the destination
    };
    constexpr size_t npos = std::numeric_limits<size_t>::max();
    std::vector<Copy> copies;
    std::unordered_set<int> seen;
    const auto gather = [&](int IDParent, size_t parent) {
        for (const NodeElement* child : GatherChildren(IDParent, true))
            if (child->Real && seen.insert(child->Node.IDNode).second) copies.push_back({child->Node, parent});
    };
    gather(IDNode, npos);
    for (size_t i = 0; i < copies.size(); ++i) gather(copies[i].Node.IDNode, i);

    int key = MaxNFillNode(IDParentDestination);
    size_t done = 0;
    TNodeArbre original;
    const auto undo = [&] {
        for (size_t i = done; i-- > 0;)
            if (FindIDNode(copies[i].Node.IDNode)) Delete(copies[i].Node.IDNode);
    };
    try {
        for (; done < copies.size(); ++done) {
            Copy& copy = copies[done];
            original = copy.Node;
            TNodeArbre node = original;
            node.IDParent = copy.Parent == npos ? IDParentDestination : copies[copy.Parent].Node.IDNode;
            if (copy.Parent == npos && key < std::numeric_limits<int>::max()) node.Child = ++key;
            node.IDNode = GetNewIDNode();
            Add(node);
            copy.Node.IDNode = node.IDNode;
        }
    } catch (const EAbort&) {
        undo();
        throw;
    } catch (const Exception&) {
        undo();
        Error("Ocurrió un error al copiar los hijos en la estructura de árbol\nNodo del error-> Hijo: "_w +
              IntToStr(original.Child) + " ID: " + IntToStr(original.IDNode) + " Nombre: " + original.Name);
    }
}

// Look-ups.

int TTreeVyn::Count() const { return nodes_->Count(); }

NodeElement* TTreeVyn::FindElement(int IDNode) const { return nodes_->Find(IDNode); }

int TTreeVyn::FindNode(int IDNode) const { return nodes_->PositionOf(IDNode); }

TNodeArbre TTreeVyn::GetIDNode(int IDNode) const {
    const NodeElement* element = FindElement(IDNode);
    return element ? element->Node : TNodeArbre();
}

TNodeArbre TTreeVyn::GetIdxNodeArbre(int index) const {
    if (index < 0 || index >= Count()) Error("Index out of range in GetIdxNodeArbre: " + IntToStr(index));
    return nodes_->Ordered()[static_cast<size_t>(index)]->Node;
}

bool TTreeVyn::IsNodeReal(int IDNode) const {
    if (IDNode >= MaxRealNode) return false;
    const NodeElement* element = FindElement(IDNode);
    return !element || element->Real;
}

int TTreeVyn::GetNewIDNode() const {
    const std::vector<NodeElement*>& ordered = nodes_->Ordered();
    const auto end =
        std::lower_bound(ordered.begin(), ordered.end(), MaxRealNode,
                         [](const NodeElement* element, int number) { return element->Node.IDNode < number; });
    const int result = end == ordered.begin() ? 1 : std::max(1, (*std::prev(end))->Node.IDNode + 1);
    if (result >= MaxRealNode) Error("No more nodes available");
    return result;
}

int TTreeVyn::GetNewIDNodeForVirtual() const {
    const std::vector<NodeElement*>& ordered = nodes_->Ordered();
    if (ordered.empty() || ordered.back()->Node.IDNode <= MaxRealNode) return FirstVirtualNode;
    return ordered.back()->Node.IDNode + 1;
}

// Each transparent child's own list is sorted, then stands in its place, then all is sorted.
std::vector<NodeElement*> TTreeVyn::GatherChildren(int IDParent, bool raw) const {
    struct Level {
        const std::vector<NodeElement*>* Children;
        size_t Next;
        std::vector<NodeElement*> Result;
    };
    std::vector<Level> levels;
    levels.push_back({&nodes_->Children(IDParent), 0, {}});
    for (;;) {
        Level& level = levels.back();
        if (level.Next < level.Children->size()) {
            NodeElement* child = (*level.Children)[level.Next++];
            if (raw || !NodeTypeIsTransparent(child->Node.NodeType)) {
                level.Result.push_back(child);
            } else {
                if (levels.size() > static_cast<size_t>(Count())) Error("Nodo circular no permitido");
                levels.push_back({&nodes_->Children(child->Node.IDNode), 0, {}});
            }
            continue;
        }
        std::vector<NodeElement*> result = std::move(level.Result);
        SortElementsByChild(result);
        levels.pop_back();
        if (levels.empty()) return result;
        std::vector<NodeElement*>& outer = levels.back().Result;
        outer.insert(outer.end(), result.begin(), result.end());
    }
}

TArrayDeNodes TTreeVyn::Childs(int IDParent, bool raw) const {
    TArrayDeNodes result;
    const std::vector<NodeElement*> children = GatherChildren(IDParent, raw);
    result.reserve(children.size());
    for (const NodeElement* child : children) result.push_back(child->Node);
    return result;
}

TArrayDeNodes TTreeVyn::Childs(int IDParent, const TSetTipusNodes& nodeTypes, bool raw) const {
    TArrayDeNodes result = Childs(IDParent, raw);
    std::erase_if(result, [&](const TNodeArbre& node) { return !nodeTypes.Contains(node.NodeType); });
    return result;
}

TNodeArbre TTreeVyn::Child(int IDParent, int childKey) const {
    const TArrayDeNodes children = Childs(IDParent, false);
    const auto found =
        std::find_if(children.begin(), children.end(), [&](const TNodeArbre& node) { return node.Child == childKey; });
    return found == children.end() ? TNodeArbre() : *found;
}

int TTreeVyn::CountChilds(int IDParent, bool raw) const { return static_cast<int>(Childs(IDParent, raw).size()); }

int TTreeVyn::CountChilds(int IDParent, const TSetTipusNodes& nodeTypes, bool raw) const {
    return static_cast<int>(Childs(IDParent, nodeTypes, raw).size());
}

int TTreeVyn::MaxNFillNode(int IDParent) const {
    bool any = false;
    int result = 0;
    std::unordered_set<int> seen;
    std::vector<int> parents{IDParent};
    while (!parents.empty()) {
        const int parent = parents.back();
        parents.pop_back();
        for (const NodeElement* child : nodes_->Children(parent)) {
            const TNodeArbre& node = child->Node;
            result = any ? std::max(result, node.Child) : node.Child;
            any = true;
            if (NodeTypeIsTransparent(node.NodeType) && seen.insert(node.IDNode).second) parents.push_back(node.IDNode);
        }
    }
    return result;
}

}  // namespace vyn
