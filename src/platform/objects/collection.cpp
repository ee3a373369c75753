#include "platform/objects/collection.h"

#include <algorithm>

#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

const ClassInfo& TCollectionItem::StaticClass() {
    static const ClassInfo info = DefineClass<TCollectionItem, TPersistent>("TCollectionItem");
    return info;
}

const ClassInfo& TCollection::StaticClass() {
    static const ClassInfo info = DefineClass<TCollection, TPersistent>("TCollection");
    return info;
}

TCollectionItem::TCollectionItem(TCollection* collection) {
    // Unchecked: the item's own class is not there yet.
    if (collection) collection->InsertItem(this);
}

TCollectionItem::~TCollectionItem() { TCollectionItem::SetCollection(nullptr); }

void TCollectionItem::SetCollection(TCollection* collection) {
    if (collection_ == collection) return;
    if (collection && !InheritsFrom(collection->ItemClass()))
        throw EListError("Item class " + ClassName() + " does not fit a collection of " +
                         collection->ItemClass()->Name());
    if (collection_) collection_->RemoveItem(this);
    if (collection) collection->InsertItem(this);
}

int TCollectionItem::Index() const {
    if (!collection_) return -1;
    const auto& items = collection_->items_;
    return static_cast<int>(std::find(items.begin(), items.end(), this) - items.begin());
}

void TCollectionItem::SetIndex(int index) {
    if (!collection_ || index == Index()) return;
    auto& items = collection_->items_;
    index = std::clamp(index, 0, static_cast<int>(items.size()) - 1);
    items.erase(items.begin() + Index());
    items.insert(items.begin() + index, this);
    Changed(true);
}

AnsiString TCollectionItem::DisplayName() const { return ClassName(); }

AnsiString TCollectionItem::GetNamePath() const {
    if (!collection_) return ClassName();
    return collection_->GetNamePath() + "[" + IntToStr(Index()) + "]";
}

TPersistent* TCollectionItem::GetOwner() const { return collection_; }

void TCollectionItem::Changed(bool allItems) {
    if (collection_ && collection_->updateCount_ == 0) collection_->Update(allItems ? nullptr : this);
}

TCollection::TCollection(TClass itemClass, ItemFactory makeItem, TPersistent* owner)
    : itemClass_(itemClass), makeItem_(makeItem), owner_(owner) {}

TCollection::~TCollection() {
    // Without announcements: whoever would draw them is going too.
    ++updateCount_;
    while (!items_.empty()) delete items_.back();
}

TCollectionItem* TCollection::Items(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return items_[static_cast<size_t>(index)];
}

TCollectionItem* TCollection::Add() {
    // Announced when the item is whole, not while its own class is still being made.
    BeginUpdate();
    TCollectionItem* item = nullptr;
    try {
        item = makeItem_(this);
    } catch (...) {
        EndUpdate();
        throw;
    }
    EndUpdate();
    return item;
}

TCollectionItem* TCollection::Insert(int index) {
    TCollectionItem* item = Add();
    item->SetIndex(index);
    return item;
}

void TCollection::Delete(int index) { delete Items(index); }

void TCollection::Clear() {
    if (items_.empty()) return;
    BeginUpdate();
    while (!items_.empty()) delete items_.back();
    EndUpdate();
}

TCollectionItem* TCollection::FindItemID(int id) const {
    for (TCollectionItem* item : items_)
        if (item->ID() == id) return item;
    return nullptr;
}

void TCollection::EndUpdate() {
    if (updateCount_ > 0) --updateCount_;
    Changed();
}

void TCollection::Changed() {
    if (updateCount_ == 0) Update(nullptr);
}

void TCollection::InsertItem(TCollectionItem* item) {
    items_.push_back(item);
    item->collection_ = this;
    item->id_ = nextId_++;
    Changed();
}

void TCollection::RemoveItem(TCollectionItem* item) {
    // From the end: clearing, which takes the last item each time, stays linear.
    if (items_.back() == item)
        items_.pop_back();
    else
        std::erase(items_, item);
    item->collection_ = nullptr;
    Changed();
}

void TCollection::Assign(const TPersistent* source) {
    const auto* collection = ObjectCast<TCollection>(source);
    if (!collection) {
        TPersistent::Assign(source);
        return;
    }
    if (collection == this) return;
    BeginUpdate();
    Clear();
    for (const TCollectionItem* item : collection->items_) Add()->Assign(item);
    EndUpdate();
}

AnsiString TCollection::GetNamePath() const {
    if (!owner_ || PropertyName.empty()) return ClassName();
    return owner_->GetNamePath() + "." + PropertyName;
}

}  // namespace vyn
