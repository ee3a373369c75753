#include "platform/objects/filer.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "tree/node_store.h"

namespace vyn {

namespace arbre_streams_detail {

constexpr char kHiddenProperty[] = "Tree";

[[noreturn]] void ErrorNesting(const char* what) {
    throw ETreeVyn(AnsiString("Error in TTreeVyn:\nThe tree cannot be ") + what + ": more than " +
                   IntToStr(MaxStreamNesting) + " levels of nodes");
}

void WriteNode(TWriter& writer, const TNodeArbre& node) {
    writer.WriteIdent("IDNode");
    writer.WriteInteger(node.IDNode);
    writer.WriteIdent("Child");
    writer.WriteInteger(node.Child);
    writer.WriteIdent("IDComponent");
    writer.WriteInteger(node.IDComponent);
    writer.WriteIdent("NodeType");
    writer.WriteInteger(node.NodeType);
    writer.WriteIdent("Name");
    writer.WriteString(node.Name);
}

// The names of the entries are there for whoever looks at the file; their order is what counts.
TNodeArbre ReadNode(TReader& reader) {
    TNodeArbre node;
    for (int32_t* field : {&node.IDNode, &node.Child, &node.IDComponent, &node.NodeType}) {
        reader.ReadIdentView();
        *field = reader.ReadInteger();
    }
    reader.ReadIdentView();
    node.Name = reader.ReadString();
    return node;
}

}  // namespace arbre_streams_detail

void TTreeVyn::InRealMode(const std::function<void()>& work) {
    const bool former = realTree_;
    SetRealTree(true);
    try {
        work();
    } catch (...) {
        try {
            SetRealTree(former);
        } catch (const ETreeVyn&) {
            // What was read cannot be expanded: the tree stays real, and the first error says why.
        }
        throw;
    }
    SetRealTree(former);
}

void TTreeVyn::SaveToStream(TStream* stream) {
    if (!stream) return;
    TWriter writer(*stream);
    writer.WriteString(CT_TreeVyn);
    SaveToWriter(writer);
    writer.Flush();
}

void TTreeVyn::SaveToWriter(TWriter& writer) {
    InRealMode([&] { WriteNodes(writer); });
}

void TTreeVyn::LoadFromStream(TStream* stream) {
    if (!stream) return;
    TReader reader(*stream);
    if (!SameText(reader.ReadString(), CT_TreeVyn)) Error("Stream is not a TTreeVyn");
    // A tree without nodes is its tag alone, at the end of the stream or before what others wrote.
    if (reader.BytesLeft() == 0 || reader.NextValue() != vaList) return;
    InRealMode([&] { ReadNodes(reader, StoredParent()); });
}

void TTreeVyn::LoadFromReader(TReader& reader) {
    if (reader.BytesLeft() == 0 || reader.NextValue() != vaList) return;
    InRealMode([&] { ReadNodes(reader, -1); });
}

// The node whose children the top level of a stored tree is: the root's parent.
int TTreeVyn::StoredParent() const { return GetIDNode(firstIdNode_).IDParent; }

// The nodes of the circle that a number stands on; none when it stands on none.
std::unordered_set<int> TTreeVyn::CycleOf(int IDNode) const {
    std::unordered_set<int> ancestors;
    for (const NodeElement* element = FindElement(IDNode); element; element = FindElement(element->Node.IDParent)) {
        if (ancestors.insert(element->Node.IDNode).second) continue;
        return ancestors;
    }
    return {};
}

std::vector<NodeElement*> TTreeVyn::StoredChildren(int IDParent, const std::unordered_set<int>& onCycle) const {
    std::vector<NodeElement*> children = GatherChildren(IDParent, true);
    std::erase_if(children,
                  [&](const NodeElement* child) { return !child->Real || onCycle.count(child->Node.IDNode); });
    return children;
}

void TTreeVyn::WriteNodes(TWriter& writer) {
    struct Level {
        std::vector<NodeElement*> Children;
        size_t Next;
    };
    const int top = StoredParent();
    const std::unordered_set<int> onCycle = CycleOf(top);
    std::vector<Level> levels;
    const auto begin = [&](int IDParent) {
        std::vector<NodeElement*> children = StoredChildren(IDParent, onCycle);
        if (children.empty()) return;
        if (levels.size() == MaxStreamNesting) arbre_streams_detail::ErrorNesting("stored");
        writer.WriteListBegin();
        levels.push_back({std::move(children), 0});
    };
    begin(top);
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.Next == level.Children.size()) {
            writer.WriteListEnd();
            levels.pop_back();
            continue;
        }
        const TNodeArbre& node = level.Children[level.Next++]->Node;
        arbre_streams_detail::WriteNode(writer, node);
        begin(node.IDNode);
    }
}

void TTreeVyn::ReadNodes(TReader& reader, int IDParent) {
    reader.ReadListBegin();
    std::vector<int> parents{IDParent};
    while (!parents.empty()) {
        if (reader.EndOfList()) {
            reader.ReadListEnd();
            parents.pop_back();
            continue;
        }
        TNodeArbre node = arbre_streams_detail::ReadNode(reader);
        node.IDParent = parents.back();
        Add(node);
        if (reader.NextValue() != vaList) continue;
        if (parents.size() == MaxStreamNesting) arbre_streams_detail::ErrorNesting("read");
        reader.ReadListBegin();
        parents.push_back(node.IDNode);
    }
}

void TTreeVyn::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    const int top = StoredParent();
    const bool hasData = !filer.IsReader() && !StoredChildren(top, CycleOf(top)).empty();
    filer.DefineProperty(
        arbre_streams_detail::kHiddenProperty, [this](TReader& reader) { InRealMode([&] { ReadNodes(reader, -1); }); },
        [this](TWriter& writer) { SaveToWriter(writer); }, hasData);
}

}  // namespace vyn
