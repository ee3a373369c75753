#pragma once

#include <memory>
#include <vector>

#include "platform/objects/persistent.h"

namespace vyn {

class TCollection;

// One item of a collection: a persistent part that is owned by its collection and knows its place in it.
class TCollectionItem : public TPersistent {
    VYN_OBJECT
  public:
    // A null collection makes a free item that the caller owns.
    explicit TCollectionItem(TCollection* collection);
    ~TCollectionItem() override;

    TCollection* Collection() const { return collection_; }
    // Moves the item out of its old collection and to the end of the new one.
    virtual void SetCollection(TCollection* collection);
    int ID() const { return id_; }
    int Index() const;
    virtual void SetIndex(int index);
    virtual AnsiString DisplayName() const;
    AnsiString GetNamePath() const override;
    TPersistent* GetOwner() const override;

  protected:
    // Announces a change: of this item, or (allItems) of the order.
    void Changed(bool allItems);

  private:
    friend class TCollection;
    TCollection* collection_ = nullptr;
    int id_ = 0;
};

// An ordered list of items of one class, stored as a property of its owner. Owns the items.
class TCollection : public TPersistent {
    VYN_OBJECT
  public:
    using ItemFactory = TCollectionItem* (*)(TCollection*);

    // itemClass and makeItem belong together: makeItem makes an instance of the class in the collection.
    TCollection(TClass itemClass, ItemFactory makeItem, TPersistent* owner = nullptr);
    ~TCollection() override;

    TClass ItemClass() const { return itemClass_; }
    int Count() const { return static_cast<int>(items_.size()); }
    // 0 to Count - 1; outside: EListError.
    TCollectionItem* Items(int index) const;
    TCollectionItem* Add();
    TCollectionItem* Insert(int index);
    void Delete(int index);
    void Clear();
    TCollectionItem* FindItemID(int id) const;

    void BeginUpdate() { ++updateCount_; }
    void EndUpdate();

    void Assign(const TPersistent* source) override;
    TPersistent* GetOwner() const override { return owner_; }
    // The name of the property that publishes this collection, for paths in messages.
    AnsiString PropertyName;
    AnsiString GetNamePath() const override;

  protected:
    // One item changed, or (null) several or their order.
    virtual void Update(TCollectionItem* item) {}
    void Changed();

  private:
    friend class TCollectionItem;
    void InsertItem(TCollectionItem* item);
    void RemoveItem(TCollectionItem* item);

    TClass itemClass_;
    ItemFactory makeItem_;
    TPersistent* owner_;
    std::vector<TCollectionItem*> items_;
    int nextId_ = 0;
    int updateCount_ = 0;
};

// A collection whose items are of the C++ class T; the way collections are declared.
template <class T>
class TOwnedCollection : public TCollection {
  public:
    explicit TOwnedCollection(TPersistent* owner)
        : TCollection(
              &T::StaticClass(), [](TCollection* c) -> TCollectionItem* { return new T(c); }, owner) {}
    T* Add() { return static_cast<T*>(TCollection::Add()); }
    T* Items(int index) const { return static_cast<T*>(TCollection::Items(index)); }
};

}  // namespace vyn
