#include "platform/controls/tree_nodes.h"

#include <algorithm>

#include "platform/controls/tree_views.h"
#include "platform/objects/class_info.h"
#include "platform/objects/filer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace tree_detail {

constexpr int kDeepest = 256;        // levels that are read
constexpr int64_t kNodeHeader = 28;  // the least bytes of a stored node

[[noreturn]] void RaiseIndex() { throw ETreeViewError("Invalid item index"); }
[[noreturn]] void RaiseStored() { throw ETreeViewError("Invalid stored tree nodes"); }

uint32_t Get32(TStream& stream) {
    uint8_t raw[4];
    stream.ReadBuffer(raw, sizeof raw);
    return raw[0] | uint32_t{raw[1]} << 8 | uint32_t{raw[2]} << 16 | uint32_t{raw[3]} << 24;
}

void Put32(TStream& stream, uint32_t value) {
    const uint8_t raw[4] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
                            static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
    stream.WriteBuffer(raw, sizeof raw);
}

}  // namespace tree_detail

const ClassInfo& TTreeNode::StaticClass() {
    static const ClassInfo info = DefineClass<TTreeNode, TPersistent>("TTreeNode");
    return info;
}

const ClassInfo& TTreeNodes::StaticClass() {
    static const ClassInfo info = DefineClass<TTreeNodes, TPersistent>("TTreeNodes");
    return info;
}

TTreeNode::~TTreeNode() = default;

TCustomTreeView* TTreeNode::TreeView() const { return owner_->treeView_; }
void TTreeNode::Changed() { owner_->Changed(); }

void TTreeNode::SetText(const AnsiString& value) {
    if (text_ == value) return;
    text_ = value;
    Changed();
}
void TTreeNode::SetImageIndex(int value) {
    imageIndex_ = value;
    Changed();
}
void TTreeNode::SetSelectedIndex(int value) {
    selectedIndex_ = value;
    Changed();
}
void TTreeNode::SetStateIndex(int value) {
    stateIndex_ = value;
    Changed();
}
void TTreeNode::SetOverlayIndex(int value) {
    overlayIndex_ = value;
    Changed();
}
void TTreeNode::SetCut(bool value) {
    cut_ = value;
    Changed();
}
void TTreeNode::SetHasChildren(bool value) {
    hasChildren_ = value;
    Changed();
}

TTreeNode* TTreeNode::Item(int index) const {
    if (index < 0 || index >= count_) tree_detail::RaiseIndex();
    const TTreeNode* at = firstChild_;
    int place = 0;
    if (lastItem_ && std::abs(index - lastItemIndex_) < index) {
        at = lastItem_;
        place = lastItemIndex_;
    }
    for (; place < index; ++place) at = at->next_;
    for (; place > index; --place) at = at->previous_;
    lastItem_ = at;
    lastItemIndex_ = index;
    return const_cast<TTreeNode*>(at);
}

int TTreeNode::Index() const {
    int index = 0;
    for (const TTreeNode* at = previous_; at; at = at->previous_) ++index;
    return index;
}

int TTreeNode::IndexOf(const TTreeNode* child) const { return child && child->parent_ == this ? child->Index() : -1; }

int TTreeNode::AbsoluteIndex() const {
    int index = 0;
    for (const TTreeNode* at = owner_->GetFirstNode(); at && at != this; at = at->GetNext()) ++index;
    return index;
}

int TTreeNode::Level() const {
    int level = 0;
    for (const TTreeNode* at = parent_; at; at = at->parent_) ++level;
    return level;
}

TTreeNode* TTreeNode::GetNext() const {
    if (firstChild_) return firstChild_;
    for (const TTreeNode* at = this; at; at = at->parent_)
        if (at->next_) return at->next_;
    return nullptr;
}

TTreeNode* TTreeNode::GetPrev() const {
    if (!previous_) return parent_;
    TTreeNode* at = previous_;
    while (at->lastChild_) at = at->lastChild_;
    return at;
}

TTreeNode* TTreeNode::GetNextVisible() const {
    if (expanded_ && firstChild_) return firstChild_;
    for (const TTreeNode* at = this; at; at = at->parent_)
        if (at->next_) return at->next_;
    return nullptr;
}

TTreeNode* TTreeNode::GetPrevVisible() const {
    if (!previous_) return parent_;
    TTreeNode* at = previous_;
    while (at->expanded_ && at->lastChild_) at = at->lastChild_;
    return at;
}

bool TTreeNode::HasAsParent(const TTreeNode* node) const {
    for (const TTreeNode* at = parent_; at; at = at->parent_)
        if (at == node) return true;
    return false;
}

bool TTreeNode::Expand(bool recurse) {
    if (recurse)
        for (TTreeNode* child = firstChild_; child; child = child->next_) child->Expand(true);
    if (expanded_) return true;
    if (!HasChildren()) return false;
    TCustomTreeView* view = TreeView();
    if (view && !view->CanExpand(this)) return false;
    if (!firstChild_) {
        // OnExpanding brought none: the button goes.
        hasChildren_ = false;
        Changed();
        return false;
    }
    expanded_ = true;
    Changed();
    if (view) view->OnExpanded(view, this);
    return true;
}

bool TTreeNode::Collapse(bool recurse) {
    if (expanded_) {
        TCustomTreeView* view = TreeView();
        if (view && !view->CanCollapse(this)) return false;
        expanded_ = false;
        // A selection that went out of sight comes up to this node.
        if (view && view->selected_ && view->selected_->HasAsParent(this)) view->SetSelected(this);
        Changed();
        if (view) view->OnCollapsed(view, this);
    }
    if (recurse)
        for (TTreeNode* child = firstChild_; child; child = child->next_) child->Collapse(true);
    return true;
}

void TTreeNode::SetExpanded(bool value) {
    if (value)
        Expand(false);
    else
        Collapse(false);
}

bool TTreeNode::IsVisible() const {
    for (const TTreeNode* at = parent_; at; at = at->parent_)
        if (!at->expanded_) return false;
    return true;
}

void TTreeNode::MakeVisible() {
    for (TTreeNode* at = parent_; at; at = at->parent_) at->Expand(false);
    if (TCustomTreeView* view = TreeView()) view->PeerChanged(PeerChange::Scroll);
}

bool TTreeNode::Selected() const { return TreeView() && TreeView()->selected_ == this; }

void TTreeNode::SetSelected(bool value) {
    TCustomTreeView* view = TreeView();
    if (!view) return;
    if (value)
        view->SetSelected(this);
    else if (Selected())
        view->SetSelected(nullptr);
}

bool TTreeNode::EditText() {
    TCustomTreeView* view = TreeView();
    if (!view || !view->ProcessBeginEdit(this)) return false;
    view->PeerChanged(PeerChange::EditLabel);
    return true;
}

void TTreeNode::EndEdit(bool cancel) {
    TCustomTreeView* view = TreeView();
    if (view && view->editing_ == this) view->ProcessEndEdit(text_, cancel);
}

void TTreeNode::Delete() { owner_->Delete(this); }
void TTreeNode::DeleteChildren() {
    owner_->FreeChildren(this);
    hasChildren_ = false;
    expanded_ = false;
    Changed();
}

void TTreeNode::MoveTo(TTreeNode* destination, TNodeAttachMode mode) {
    if (destination == this || (destination && destination->HasAsParent(this)))
        throw ETreeViewError("A node cannot be moved below itself");
    TTreeNode* root = &owner_->root_;
    TTreeNode* parent = root;
    TTreeNode* before = nullptr;
    if (destination) {
        TTreeNode* siblings = destination->parent_ ? destination->parent_ : root;
        switch (mode) {
            case naAdd:
                parent = siblings;
                break;
            case naAddFirst:
                parent = siblings;
                before = siblings->firstChild_;
                break;
            case naAddChild:
                parent = destination;
                break;
            case naAddChildFirst:
                parent = destination;
                before = destination->firstChild_;
                break;
            case naInsert:
                parent = siblings;
                before = destination;
                break;
        }
    }
    if (before == this) before = next_;
    owner_->Unlink(this);
    owner_->Link(this, parent, before);
    Changed();
}

void TTreeNode::CustomSort(const std::function<int(TTreeNode&, TTreeNode&)>& compare, bool recurse) {
    if (count_ > 1) {
        std::vector<TTreeNode*> children;
        children.reserve(static_cast<size_t>(count_));
        for (TTreeNode* child = firstChild_; child; child = child->next_) children.push_back(child);
        std::stable_sort(children.begin(), children.end(),
                         [&](TTreeNode* a, TTreeNode* b) { return compare(*a, *b) < 0; });
        TTreeNode* previous = nullptr;
        for (TTreeNode* child : children) {
            child->previous_ = previous;
            child->next_ = nullptr;
            if (previous) previous->next_ = child;
            previous = child;
        }
        firstChild_ = children.front();
        lastChild_ = children.back();
        lastItem_ = nullptr;
        owner_->lastItem_ = nullptr;
    }
    if (recurse)
        for (TTreeNode* child = firstChild_; child; child = child->next_) child->CustomSort(compare, true);
    Changed();
}

void TTreeNode::AlphaSort(bool recurse) {
    TCustomTreeView* view = TreeView();
    CustomSort(
        [view](TTreeNode& a, TTreeNode& b) { return view ? view->Compare(a, b) : AnsiCompareText(a.Text(), b.Text()); },
        recurse);
}

void TTreeNode::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TTreeNode>(source);
    if (!other) {
        TPersistent::Assign(source);
        return;
    }
    text_ = other->text_;
    Data = other->Data;
    imageIndex_ = other->imageIndex_;
    selectedIndex_ = other->selectedIndex_;
    stateIndex_ = other->stateIndex_;
    overlayIndex_ = other->overlayIndex_;
    hasChildren_ = other->hasChildren_;
    Changed();
}

// The nodes.

TTreeNodes::~TTreeNodes() {
    ++updateCount_;
    treeView_ = nullptr;
    FreeChildren(&root_);
}

TPersistent* TTreeNodes::GetOwner() const { return treeView_; }

void TTreeNodes::Changed() {
    if (updateCount_ == 0 && treeView_ && !treeView_->HasState(csDestroying)) treeView_->PeerChanged(PeerChange::Items);
}

void TTreeNodes::EndUpdate() {
    if (updateCount_ > 0 && --updateCount_ == 0) {
        if (treeView_ && treeView_->SortsByItself()) treeView_->AlphaSort();
        Changed();
    }
}

TTreeNode* TTreeNodes::Item(int absoluteIndex) const {
    if (absoluteIndex < 0 || absoluteIndex >= count_) tree_detail::RaiseIndex();
    TTreeNode* at = root_.firstChild_;
    int place = 0;
    if (lastItem_ && std::abs(absoluteIndex - lastItemIndex_) < absoluteIndex) {
        at = lastItem_;
        place = lastItemIndex_;
    }
    for (; place < absoluteIndex; ++place) at = at->GetNext();
    for (; place > absoluteIndex; --place) at = at->GetPrev();
    lastItem_ = at;
    lastItemIndex_ = absoluteIndex;
    return at;
}

TTreeNode* TTreeNodes::NewNode(const AnsiString& text, intptr_t data) {
    auto* node = new TTreeNode(this);
    node->text_ = text;
    node->Data = data;
    return node;
}

// Puts a node among the parent's children, before one of them or (null) last.
void TTreeNodes::Link(TTreeNode* node, TTreeNode* parent, TTreeNode* before) {
    node->parent_ = parent == &root_ ? nullptr : parent;
    node->next_ = before;
    node->previous_ = before ? before->previous_ : parent->lastChild_;
    if (node->previous_)
        node->previous_->next_ = node;
    else
        parent->firstChild_ = node;
    if (before)
        before->previous_ = node;
    else
        parent->lastChild_ = node;
    ++parent->count_;
    parent->lastItem_ = nullptr;
    lastItem_ = nullptr;
}

void TTreeNodes::Unlink(TTreeNode* node) {
    TTreeNode* parent = node->parent_ ? node->parent_ : &root_;
    if (node->previous_)
        node->previous_->next_ = node->next_;
    else
        parent->firstChild_ = node->next_;
    if (node->next_)
        node->next_->previous_ = node->previous_;
    else
        parent->lastChild_ = node->previous_;
    node->previous_ = node->next_ = nullptr;
    --parent->count_;
    parent->lastItem_ = nullptr;
    lastItem_ = nullptr;
}

TTreeNode* TTreeNodes::Place(TTreeNode* node, TTreeNode* parent, TTreeNode* before) {
    if (treeView_ && updateCount_ == 0 && !before && treeView_->SortsByItself()) {
        // Sorted as they come.
        for (before = parent->firstChild_; before && treeView_->Compare(*node, *before) >= 0;) before = before->next_;
    }
    Link(node, parent, before);
    ++count_;
    Changed();
    return node;
}

TTreeNode* TTreeNodes::AddObject(TTreeNode* sibling, const AnsiString& text, intptr_t data) {
    TTreeNode* parent = sibling && sibling->parent_ ? sibling->parent_ : &root_;
    return Place(NewNode(text, data), parent, nullptr);
}

TTreeNode* TTreeNodes::AddFirst(TTreeNode* sibling, const AnsiString& text) {
    TTreeNode* parent = sibling && sibling->parent_ ? sibling->parent_ : &root_;
    return Place(NewNode(text, 0), parent, parent->firstChild_);
}

TTreeNode* TTreeNodes::AddChildObject(TTreeNode* parent, const AnsiString& text, intptr_t data) {
    return Place(NewNode(text, data), parent ? parent : &root_, nullptr);
}

TTreeNode* TTreeNodes::AddChildFirst(TTreeNode* parent, const AnsiString& text) {
    TTreeNode* holder = parent ? parent : &root_;
    return Place(NewNode(text, 0), holder, holder->firstChild_);
}

TTreeNode* TTreeNodes::Insert(TTreeNode* before, const AnsiString& text) {
    TTreeNode* parent = before && before->parent_ ? before->parent_ : &root_;
    return Place(NewNode(text, 0), parent, before);
}

// Without recursion: a chain of nodes may be as deep as there are nodes.
void TTreeNodes::FreeChildren(TTreeNode* top) {
    TTreeNode* at = top;
    for (;;) {
        while (at->lastChild_) at = at->lastChild_;
        if (at == top) return;
        TTreeNode* above = at->parent_ ? at->parent_ : &root_;
        if (treeView_) treeView_->NodeGoes(at);
        Unlink(at);
        --count_;
        delete at;
        at = above;
    }
}

void TTreeNodes::Delete(TTreeNode* node) {
    if (!node) return;
    ++updateCount_;
    FreeChildren(node);
    if (treeView_) treeView_->NodeGoes(node);
    --updateCount_;
    Unlink(node);
    --count_;
    delete node;
    Changed();
}

void TTreeNodes::Clear() {
    if (count_ == 0) return;
    ++updateCount_;
    FreeChildren(&root_);
    --updateCount_;
    Changed();
}

TTreeNode* TTreeNodes::FindText(const AnsiString& text) const {
    for (TTreeNode* at = GetFirstNode(); at; at = at->GetNext())
        if (AnsiSameText(at->Text(), text)) return at;
    return nullptr;
}

// Storing: per node its size-free record - image, selected, state and overlay index, data, count of children, length
// and bytes of the text - then its children.

void TTreeNodes::WriteNode(const TTreeNode* node, TStream& stream) const {
    for (const int value : {node->imageIndex_, node->selectedIndex_, node->stateIndex_, node->overlayIndex_,
                            static_cast<int>(node->Data), node->count_})
        tree_detail::Put32(stream, static_cast<uint32_t>(value));
    tree_detail::Put32(stream, static_cast<uint32_t>(node->text_.size()));
    if (!node->text_.empty()) stream.WriteBuffer(node->text_.data(), static_cast<int64_t>(node->text_.size()));
    for (const TTreeNode* child = node->firstChild_; child; child = child->next_) WriteNode(child, stream);
}

void TTreeNodes::WriteData(TStream& stream) const {
    tree_detail::Put32(stream, static_cast<uint32_t>(root_.count_));
    for (const TTreeNode* node = root_.firstChild_; node; node = node->next_) WriteNode(node, stream);
}

void TTreeNodes::ReadNode(TTreeNode* parent, TStream& stream, int depth) {
    if (depth > tree_detail::kDeepest) tree_detail::RaiseStored();
    TTreeNode* node = NewNode(AnsiString(), 0);
    Link(node, parent, nullptr);
    ++count_;
    node->imageIndex_ = static_cast<int>(tree_detail::Get32(stream));
    node->selectedIndex_ = static_cast<int>(tree_detail::Get32(stream));
    node->stateIndex_ = static_cast<int>(tree_detail::Get32(stream));
    node->overlayIndex_ = static_cast<int>(tree_detail::Get32(stream));
    node->Data = static_cast<int>(tree_detail::Get32(stream));
    const uint32_t children = tree_detail::Get32(stream);
    const int64_t length = tree_detail::Get32(stream);
    if (length > stream.Size() - stream.Position()) tree_detail::RaiseStored();
    node->text_.resize(static_cast<size_t>(length));
    if (length > 0) stream.ReadBuffer(node->text_.data(), length);
    if (children > static_cast<uint64_t>(stream.Size() - stream.Position()) / tree_detail::kNodeHeader)
        tree_detail::RaiseStored();
    for (uint32_t i = 0; i < children; ++i) ReadNode(node, stream, depth + 1);
}

void TTreeNodes::ReadData(TStream& stream) {
    BeginUpdate();
    try {
        Clear();
        const uint32_t count = tree_detail::Get32(stream);
        if (count > static_cast<uint64_t>(stream.Size() - stream.Position()) / tree_detail::kNodeHeader)
            tree_detail::RaiseStored();
        for (uint32_t i = 0; i < count; ++i) ReadNode(&root_, stream, 0);
    } catch (...) {
        Clear();
        EndUpdate();
        throw;
    }
    EndUpdate();
}

void TTreeNodes::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "Data", [this](TStream& stream) { ReadData(stream); }, [this](TStream& stream) { WriteData(stream); },
        count_ > 0);
}

void TTreeNodes::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TTreeNodes>(source);
    if (!other) {
        TPersistent::Assign(source);
        return;
    }
    TMemoryStream stream;
    other->WriteData(stream);
    stream.SetPosition(0);
    ReadData(stream);
}

}  // namespace vyn
