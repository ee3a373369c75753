#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <unordered_set>
#include <vector>

#include "platform/objects/component.h"
#include "platform/objects/event.h"
#include "platform/streams/stream.h"
#include "platform/text/exceptions.h"

namespace vyn {

class NodeStore;
class TCustomTreeVynLink;
class TReader;
class TWriter;
struct NodeElement;

VYN_EXCEPTION(ETreeVyn, Exception);

// The tag of a stored tree (docs/formats/tree.md).
constexpr char CT_TreeVyn[] = "TTreeVyn";

constexpr int MaxRealNode = 100000;  // stored nodes are numbered 1 to this, virtual nodes above it
constexpr int FirstVirtualNode = MaxRealNode + 1;
constexpr int tnAccesDirecte = 23;  // the type code of a shortcut
// Shortcuts to branches that are full of shortcuts multiply: a tree that would need more copies than this is refused.
constexpr int MaxVirtualNodes = 1000000;

// One node. The default is the null record that look-ups give when they find nothing.
struct TNodeArbre {
    int32_t IDNode = -1;
    int32_t IDParent = -1;     // below 1: a top-level node
    int32_t Child = -1;        // order among the siblings, ascending
    int32_t IDComponent = -1;  // what the node opens; for a shortcut, the node that it points to
    int32_t NodeType = -1;
    AnsiString Name;  // caption
};
using TArrayDeNodes = std::vector<TNodeArbre>;

// A set of type codes, 0 to 255; a code stands for the set of itself.
class TSetTipusNodes {
  public:
    TSetTipusNodes() = default;
    TSetTipusNodes(int nodeType) { Include(nodeType); }
    TSetTipusNodes(std::initializer_list<int> nodeTypes) {
        for (int nodeType : nodeTypes) Include(nodeType);
    }
    bool Contains(int nodeType) const { return Valid(nodeType) && types_[static_cast<size_t>(nodeType)]; }
    // Codes that no set holds are passed over.
    void Include(int nodeType) {
        if (Valid(nodeType)) types_.set(static_cast<size_t>(nodeType));
    }

  private:
    static constexpr int kTypes = 256;
    static bool Valid(int nodeType) { return nodeType >= 0 && nodeType < kTypes; }
    std::bitset<kTypes> types_;
};

// The types whose nodes do not show: their children show in their place (14, 18, 23, 28).
bool NodeTypeIsTransparent(int nodeType);

// What a tree tells its links; the numbers are 0 to 6.
enum class TTreeVynNodeCange {
    mncBeforeAdd,
    mncAfterAdd,
    mncBeforeDel,
    mncAfterDel,
    mncBeforeModify,
    mncAfterModify,
    mncChanged,  // anything may have changed; the number is -1
};
using enum TTreeVynNodeCange;

// The tree of an application: numbered, typed nodes, kept in ascending order of their numbers.
//
// Two modes. The real tree holds the stored nodes. The virtual tree also holds, below each shortcut that the root
// (FirstIdNode) reaches, copies of the branch that the shortcut points to, so that it can be shown like any other:
// - The copy of the target itself is the shortcut's one child and takes the shortcut's order key, so that it shows
// where
//   the shortcut stands; all else of a copy but its number and parent is as in the original.
// - Copies are numbered from 100001 in the order of the walk: depth first, siblings by order key. Only real nodes are
//   copied; a shortcut among them is copied and expanded in turn. A target that does not exist expands to nothing.
// - Copies are made when the mode is entered: what changes in the branch afterwards shows at the next switch.
// - A switch that fails leaves the mode and the nodes as they were.
// In virtual mode real nodes can be added and changed, but no shortcut added or pointed elsewhere, nor anything put
// below a virtual node.
//
// A parent, or a shortcut's target, need not exist yet. Deleting a node deletes its branch and every shortcut to it.
// Errors are ETreeVyn ("Error in TTreeVyn:", a new line, the text) and change nothing; reading adds node by node and
// keeps what it has read. Look-ups go through indexes beside the list. Nothing here recurses: branches may be as deep
// as there are numbers, while stored trees nest MaxStreamNesting levels. Main thread only.
class TTreeVyn : public TPersistent {
    VYN_OBJECT
  public:
    TTreeVyn();
    // Detaches the links, the last first.
    ~TTreeVyn() override;

    // Changes.
    // Adds the node, or modifies the one of that number.
    void Add(const TNodeArbre& node);
    void Delete(int IDNode);
    // The node's number stays. Links hear mncBeforeModify and mncAfterModify.
    virtual void ModifyTVynTreeNode(int IDNode, int IDParent, int child, int IDComponent, int nodeType,
                                    const AnsiString& name);
    // Adds or modifies as Add does, under this number whatever number the record holds.
    void SetIDNode(int IDNode, const TNodeArbre& node);
    // Copies the children of one node, with their branches, below another: after its children, under new numbers, as
    // they were before the first was copied (a node may be copied into itself). When it fails, nothing has been copied.
    void CopyStructure(int IDNode, int IDParentDestination);
    void Clear();

    // Look-ups. A null record (IDNode -1) when there is none.
    // The position of a number in the list, or -1.
    virtual int FindNode(int IDNode) const;
    bool FindIDNode(int IDNode) const { return FindNode(IDNode) >= 0; }
    virtual TNodeArbre GetIDNode(int IDNode) const;
    int Count() const;
    TNodeArbre GetIdxNodeArbre(int index) const;
    // False from 100000 upward; true for a number that is not in the tree.
    bool IsNodeReal(int IDNode) const;
    int GetNewIDNode() const;
    int GetNewIDNodeForVirtual() const;

    // The children by order key. Raw: as they are; else transparent children are replaced by their own.
    virtual TArrayDeNodes Childs(int IDParent, bool raw) const;
    TArrayDeNodes Childs(int IDParent, const TSetTipusNodes& nodeTypes, bool raw) const;
    // The first child with this order key; as shown, so also below transparent children.
    TNodeArbre Child(int IDParent, int childKey) const;
    int CountChilds(int IDParent, bool raw) const;
    int CountChilds(int IDParent, const TSetTipusNodes& nodeTypes, bool raw) const;
    // The largest order key among the children and the children of transparent ones; 0 without children.
    int MaxNFillNode(int IDParent) const;
    static void SortTArrayDeNodesByChild(TArrayDeNodes& nodes, int low, int high);

    // Mode. A switch is no modification; links hear one mncChanged.
    bool RealTree() const { return realTree_; }
    void SetRealTree(bool value);
    // The root's number. In virtual mode the tree is expanded again from the new root.
    int FirstIdNode() const { return firstIdNode_; }
    void SetFirstIdNode(int value);

    bool Modified() const { return modified_; }
    void SetModified(bool value) { modified_ = value; }

    // Notifications, to the last link first. While disabled they are only remembered; the last Enable then sends one
    // mncChanged with -1.
    void Disable() { ++disableds_; }
    void Enable();
    int Disableds() const { return disableds_; }
    void NotifyLinks(TTreeVynNodeCange kind, int IDNode);
    const std::vector<TCustomTreeVynLink*>& Links() const { return links_; }

    // Streams. No stream: nothing happens. Loading adds to what is there. Only real nodes are stored; both work in real
    // mode and come back to the former one.
    void SaveToStream(TStream* stream);
    void LoadFromStream(TStream* stream);
    // The list without its tag; nothing when there is nothing to store, and reading takes that as it is.
    void SaveToWriter(TWriter& writer);
    void LoadFromReader(TReader& reader);
    // The hidden property "Tree", written when there are nodes to store.
    void DefineProperties(TFiler& filer) override;

  protected:
    // Deletes the node at a position, after its branch and the shortcuts to it.
    virtual void DoDelete(int position);
    // Raises when the node cannot stand where it says. Every addition and modification passes here, copies included.
    virtual void InternalCheckNode(const TNodeArbre& node) const;
    void InternalDoAdd(const TNodeArbre& node);
    // Expands the shortcut of this number; its branch must have been walked by a switch of mode.
    void ExpandAccesDirecte(int IDNode);
    bool BuildingVirtual() const { return buildingVirtual_; }
    [[noreturn]] static void Error(const AnsiString& message);

  private:
    friend class TCustomTreeVynLink;

    // Checks.
    void CheckParents(int IDNode, int IDParent) const;
    void CheckShortcut(const TNodeArbre& node) const;
    void CheckMove(const TNodeArbre& node) const;
    bool ReachedThroughShortcuts(int IDNode, int IDParent, bool withNode, int wanted) const;

    NodeElement* FindElement(int IDNode) const;
    std::vector<NodeElement*> GatherChildren(int IDParent, bool raw) const;
    void DeleteDependents(int IDNode);
    void DeleteCopies(int IDNode);

    // Mode.
    void DoVirtualTree(NodeElement& root);
    void DoRealTree();
    void InternalAssignParentChildPointers();
    void ExpandShortcut(const NodeElement& shortcut);
    int AddVirtual(const NodeElement& original, int IDParent, int child);

    // Streams.
    int StoredParent() const;
    std::vector<NodeElement*> StoredChildren(int IDParent, const std::unordered_set<int>& onCycle) const;
    std::unordered_set<int> CycleOf(int IDNode) const;
    void WriteNodes(TWriter& writer);
    void ReadNodes(TReader& reader, int IDParent);
    void InRealMode(const std::function<void()>& work);

    std::vector<TCustomTreeVynLink*> links_;
    std::unique_ptr<NodeStore> nodes_;
    int firstIdNode_ = 1;
    bool modified_ = false;
    bool realTree_ = true;
    int disableds_ = 0;
    bool pending_ = false;
    bool buildingVirtual_ = false;
};

// Hears what changes in one tree. The tree and its links live apart: whichever goes first lets go of the other.
class TCustomTreeVynLink : public TComponent {
    VYN_OBJECT
  public:
    explicit TCustomTreeVynLink(TComponent* owner) : TComponent(owner) {}
    ~TCustomTreeVynLink() override;

    TTreeVyn* TreeVyn() const { return treeVyn_; }
    // The link attached last hears a change first.
    void SetTreeVyn(TTreeVyn* tree);

    virtual void NotifyChange(TTreeVynNodeCange kind, int IDNode) {}

  private:
    TTreeVyn* treeVyn_ = nullptr;
};

using TComponentListNexusEvent = Event<void(TObject* Sender, TComponent* AComponent)>;

// Passes the notices of components that go on to a handler, for lists that are no components. The owner of the list
// asks each component that it adds for its FreeNotification to the nexus.
class TComponentListNexus : public TComponent {
    VYN_OBJECT
  public:
    explicit TComponentListNexus(TComponent* owner) : TComponent(owner) {}

    void Notification(TComponent* component, TOperation operation) override;

    // Compare the component's address only: its class may be gone already.
    TComponentListNexusEvent OnRemove;
};

}  // namespace vyn
