#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/objects/persistent.h"
#include "platform/streams/stream.h"
#include "platform/text/ansi_string.h"

namespace vyn {

class TCustomTreeView;
class TTreeNodes;

enum class TNodeAttachMode { naAdd, naAddFirst, naAddChild, naAddChildFirst, naInsert };
using enum TNodeAttachMode;

// One node of a tree: text, pictures, a value of the program's, and the nodes below it. The nodes own each other; the
// topmost ones belong to TTreeNodes. Adding a last child takes the same time however many there are.
class TTreeNode : public TPersistent {
    VYN_OBJECT
  public:
    explicit TTreeNode(TTreeNodes* owner) : owner_(owner) {}
    ~TTreeNode() override;

    const AnsiString& Text() const { return text_; }
    void SetText(const AnsiString& value);
    // The program's; not stored as an address but as its 32-bit value.
    intptr_t Data = 0;
    int ImageIndex() const { return imageIndex_; }
    void SetImageIndex(int value);
    int SelectedIndex() const { return selectedIndex_; }
    void SetSelectedIndex(int value);
    int StateIndex() const { return stateIndex_; }
    void SetStateIndex(int value);
    int OverlayIndex() const { return overlayIndex_; }
    void SetOverlayIndex(int value);
    bool Cut() const { return cut_; }
    void SetCut(bool value);

    TTreeNode* Parent() const { return parent_; }
    int Count() const { return count_; }
    bool HasChildren() const { return hasChildren_ || firstChild_ != nullptr; }
    // Shows a button though there are no children yet (they come in OnExpanding).
    void SetHasChildren(bool value);
    // Raises ETreeViewError outside 0 to Count - 1. Constant time for the neighbour of the one asked for last.
    TTreeNode* Item(int index) const;
    int Index() const;          // among its siblings
    int AbsoluteIndex() const;  // among all nodes, in the order of GetNext
    int Level() const;
    TTreeNode* GetFirstChild() const { return firstChild_; }
    TTreeNode* GetLastChild() const { return lastChild_; }
    TTreeNode* GetNextSibling() const { return next_; }
    TTreeNode* GetPrevSibling() const { return previous_; }
    TTreeNode* GetNextChild(const TTreeNode* child) const { return child ? child->next_ : nullptr; }
    // The next in reading order: first child, sibling, parent's sibling.
    TTreeNode* GetNext() const;
    TTreeNode* GetPrev() const;
    TTreeNode* GetNextVisible() const;
    TTreeNode* GetPrevVisible() const;
    bool HasAsParent(const TTreeNode* node) const;
    int IndexOf(const TTreeNode* child) const;

    bool Expanded() const { return expanded_; }
    void SetExpanded(bool value);
    // Expanding asks OnExpanding; false when it was refused or there is nothing below.
    bool Expand(bool recurse);
    bool Collapse(bool recurse);
    // Every node above it is expanded.
    bool IsVisible() const;
    // Expands those above and scrolls there.
    void MakeVisible();
    bool Selected() const;
    void SetSelected(bool value);
    bool Focused() const { return Selected(); }
    bool EditText();
    void EndEdit(bool cancel);
    void Delete();
    void DeleteChildren();
    void MoveTo(TTreeNode* destination, TNodeAttachMode mode);
    // Sorts the children by text (all levels when recurse).
    void AlphaSort(bool recurse = false);
    void CustomSort(const std::function<int(TTreeNode&, TTreeNode&)>& compare, bool recurse = false);
    TTreeNodes* Owner() const { return owner_; }
    TCustomTreeView* TreeView() const;
    void Assign(const TPersistent* source) override;

  private:
    friend class TTreeNodes;
    friend class TCustomTreeView;
    void Changed();

    TTreeNodes* owner_;
    TTreeNode* parent_ = nullptr;
    TTreeNode* firstChild_ = nullptr;
    TTreeNode* lastChild_ = nullptr;
    TTreeNode* previous_ = nullptr;
    TTreeNode* next_ = nullptr;
    int count_ = 0;
    mutable const TTreeNode* lastItem_ = nullptr;  // Item's last answer and its place
    mutable int lastItemIndex_ = 0;
    AnsiString text_;
    int imageIndex_ = 0;
    int selectedIndex_ = 0;
    int stateIndex_ = -1;
    int overlayIndex_ = -1;
    bool hasChildren_ = false;
    bool expanded_ = false;
    bool cut_ = false;
};

// The nodes of a tree. Stored as the hidden property Data of Items; docs/formats/tree-nodes.md.
class TTreeNodes : public TPersistent {
    VYN_OBJECT
  public:
    explicit TTreeNodes(TCustomTreeView* owner) : treeView_(owner), root_(this) {}
    ~TTreeNodes() override;

    int Count() const { return count_; }
    TTreeNode* Item(int absoluteIndex) const;  // raises ETreeViewError
    TTreeNode* GetFirstNode() const { return root_.firstChild_; }
    // As a sibling of `sibling` (null: at the top), last or first.
    TTreeNode* Add(TTreeNode* sibling, const AnsiString& text) { return AddObject(sibling, text, 0); }
    TTreeNode* AddFirst(TTreeNode* sibling, const AnsiString& text);
    TTreeNode* AddChild(TTreeNode* parent, const AnsiString& text) { return AddChildObject(parent, text, 0); }
    TTreeNode* AddChildFirst(TTreeNode* parent, const AnsiString& text);
    TTreeNode* AddObject(TTreeNode* sibling, const AnsiString& text, intptr_t data);
    TTreeNode* AddChildObject(TTreeNode* parent, const AnsiString& text, intptr_t data);
    TTreeNode* Insert(TTreeNode* before, const AnsiString& text);
    void Delete(TTreeNode* node);
    void Clear();
    TTreeNode* FindText(const AnsiString& text) const;
    void BeginUpdate() { ++updateCount_; }
    void EndUpdate();
    TCustomTreeView* Owner() const { return treeView_; }
    TPersistent* GetOwner() const override;
    void Assign(const TPersistent* source) override;
    void DefineProperties(TFiler& filer) override;

  private:
    friend class TTreeNode;
    friend class TCustomTreeView;
    TTreeNode* NewNode(const AnsiString& text, intptr_t data);
    void Link(TTreeNode* node, TTreeNode* parent, TTreeNode* before);
    void Unlink(TTreeNode* node);
    void FreeChildren(TTreeNode* node);
    TTreeNode* Place(TTreeNode* node, TTreeNode* parent, TTreeNode* before);
    void Changed();
    void ReadNode(TTreeNode* parent, TStream& stream, int depth);
    void WriteNode(const TTreeNode* node, TStream& stream) const;
    void ReadData(TStream& stream);
    void WriteData(TStream& stream) const;

    TCustomTreeView* treeView_;
    mutable TTreeNode root_;  // never seen; holds the topmost nodes
    int count_ = 0;
    int updateCount_ = 0;
    mutable TTreeNode* lastItem_ = nullptr;
    mutable int lastItemIndex_ = 0;
};

}  // namespace vyn
