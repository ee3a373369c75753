#pragma once

#include "platform/controls/image_lists.h"
#include "platform/controls/tree_nodes.h"
#include "platform/controls/win_control.h"

namespace vyn {

using TTVChangedEvent = Event<void(TObject* Sender, TTreeNode* Node)>;
using TTVChangingEvent = Event<void(TObject* Sender, TTreeNode* Node, bool& AllowChange)>;
using TTVExpandingEvent = Event<void(TObject* Sender, TTreeNode* Node, bool& AllowExpansion)>;
using TTVCollapsingEvent = Event<void(TObject* Sender, TTreeNode* Node, bool& AllowCollapse)>;
using TTVEditingEvent = Event<void(TObject* Sender, TTreeNode* Node, bool& AllowEdit)>;
using TTVEditedEvent = Event<void(TObject* Sender, TTreeNode* Node, AnsiString& S)>;
using TTVCompareEvent = Event<void(TObject* Sender, TTreeNode* Node1, TTreeNode* Node2, int Data, int& Compare)>;

// A tree of nodes, of which one may be selected.
class TCustomTreeView : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomTreeView(TComponent* owner);
    ~TCustomTreeView() override;

    TTreeNodes* Items() { return items_.get(); }
    const TTreeNodes& ItemsRef() const { return *items_; }
    void SetItems(TTreeNodes* value);
    TTreeNode* Selected() const { return selected_; }
    // Asks OnChanging, then fires OnChange.
    void SetSelected(TTreeNode* node);
    TTreeNode* TopItem() const { return topItem_; }
    void SetTopItem(TTreeNode* node);
    TTreeNode* DropTarget() const { return dropTarget_; }
    void SetDropTarget(TTreeNode* node);
    void FullExpand();
    void FullCollapse();
    bool IsEditing() const { return editing_ != nullptr; }
    // Sorts all levels by text, or by OnCompare.
    bool AlphaSort();
    // The node at a place of the client area, or null.
    TTreeNode* GetNodeAt(int x, int y) const;
    void LoadFromStream(TStream& stream);
    void SaveToStream(TStream& stream) const;

    bool AutoExpand = false;
    TBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TBorderStyle value);
    int ChangeDelay = 0;
    bool HideSelection() const { return hideSelection_; }
    void SetHideSelection(bool value);
    bool HotTrack() const { return hotTrack_; }
    void SetHotTrack(bool value);
    TCustomImageList* Images() const { return images_; }
    void SetImages(TCustomImageList* value);
    TCustomImageList* StateImages() const { return stateImages_; }
    void SetStateImages(TCustomImageList* value);
    int Indent() const { return indent_; }
    void SetIndent(int value);
    bool ReadOnly() const { return readOnly_; }
    void SetReadOnly(bool value) { readOnly_ = value; }
    bool RightClickSelect = false;
    bool RowSelect() const { return rowSelect_; }
    void SetRowSelect(bool value);
    bool ShowButtons() const { return showButtons_; }
    void SetShowButtons(bool value);
    bool ShowLines() const { return showLines_; }
    void SetShowLines(bool value);
    bool ShowRoot() const { return showRoot_; }
    void SetShowRoot(bool value);
    TSortType SortType() const { return sortType_; }
    void SetSortType(TSortType value);
    bool ToolTips = true;

    TTVChangedEvent OnChange;
    TTVChangingEvent OnChanging;
    TTVExpandingEvent OnExpanding;
    TTVChangedEvent OnExpanded;
    TTVCollapsingEvent OnCollapsing;
    TTVChangedEvent OnCollapsed;
    TTVChangedEvent OnDeletion;
    TTVEditingEvent OnEditing;
    TTVEditedEvent OnEdited;
    TTVCompareEvent OnCompare;
    TTVChangedEvent OnGetImageIndex;
    TTVChangedEvent OnGetSelectedIndex;

    // The user selected; expanded or collapsed (false when refused); ended editing in place.
    bool ProcessSelect(TTreeNode* node);
    bool ProcessExpand(TTreeNode* node, bool expand);
    // False when the node may not be edited.
    bool ProcessBeginEdit(TTreeNode* node);
    void ProcessEndEdit(const AnsiString& text, bool cancel);
    void KeyDown(uint16_t& key, TShiftState shift) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    void Loaded() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    virtual bool CanChange(TTreeNode* node);
    virtual void Change(TTreeNode* node) { OnChange(this, node); }

  private:
    friend class TTreeNode;
    friend class TTreeNodes;
    bool CanExpand(TTreeNode* node);
    bool CanCollapse(TTreeNode* node);
    int Compare(TTreeNode& a, TTreeNode& b);
    void NodeGoes(TTreeNode* node);
    bool SortsByItself() const { return sortType_ == stText || sortType_ == stBoth; }

    std::unique_ptr<TTreeNodes> items_;
    TTreeNode* selected_ = nullptr;
    TTreeNode* topItem_ = nullptr;
    TTreeNode* dropTarget_ = nullptr;
    TTreeNode* editing_ = nullptr;
    TCustomImageList* images_ = nullptr;
    TCustomImageList* stateImages_ = nullptr;
    int indent_ = 19;
    TBorderStyle borderStyle_ = TBorderStyle::bsSingle;
    TSortType sortType_ = stNone;
    bool hideSelection_ = true;
    bool hotTrack_ = false;
    bool readOnly_ = false;
    bool rowSelect_ = false;
    bool showButtons_ = true;
    bool showLines_ = true;
    bool showRoot_ = true;
};

class TTreeView : public TCustomTreeView {
    VYN_OBJECT
  public:
    explicit TTreeView(TComponent* owner) : TCustomTreeView(owner) {}
};

}  // namespace vyn
