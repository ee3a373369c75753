#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/objects/name_index.h"
#include "platform/objects/persistent.h"

namespace vyn {

enum class TOperation { opInsert, opRemove };
using enum TOperation;

enum class TComponentStateFlag {
    csLoading,     // being read; Loaded has not run yet
    csReading,     // its properties are being read
    csWriting,     // being stored
    csDestroying,  // its destructor runs, or its owner's
    csDesigning,   // edited in a designer
    csAncestor,    // came from, or is compared with, an ancestor
    csUpdating,    //
    csFixups,      // waits for references
    csFreeNotification,
    csInline,  // a form inside a form
};
using enum TComponentStateFlag;
using TComponentState = Set<TComponentStateFlag>;

// An object with a name and an owner. The owner frees what it owns, last made first; whoever refers to a component
// that it does not own asks for its FreeNotification and drops the reference in Notification. Main thread only.
class TComponent : public TPersistent {
    VYN_OBJECT
  public:
    explicit TComponent(TComponent* owner);
    ~TComponent() override;

    // Ownership.
    TComponent* Owner() const { return owner_; }
    int ComponentCount() const { return static_cast<int>(components_.size()); }
    // 0 to ComponentCount - 1, in the order in which they came; raises EListError outside.
    TComponent* Components(int index) const;
    // The owned component of a name (without regard to case), or null.
    TComponent* FindComponent(std::string_view name) const;
    // Moves a component into this owner. Raises EComponentError when its name is taken here.
    void InsertComponent(TComponent* component);
    void RemoveComponent(TComponent* component);
    // Frees what it owns, last made first.
    void DestroyComponents();
    // Marks this component, and all that it owns, as going.
    void Destroying();
    int ComponentIndex() const;
    void SetComponentIndex(int index);

    // Identity.
    const AnsiString& Name() const { return name_; }
    // Raises EComponentError for a name that is no identifier, or is taken in the owner.
    virtual void SetName(const AnsiString& name);
    int64_t Tag = 0;
    AnsiString GetNamePath() const override { return name_; }
    TPersistent* GetOwner() const override { return owner_; }
    // The number by which scripts and parameters refer to this component (component_handle.h).
    int Handle() const;

    // Notices.
    // Asks that `listener` (and this component) hear through Notification when the other goes.
    void FreeNotification(TComponent* listener);
    void RemoveFreeNotification(TComponent* listener);

    // State and streaming.
    TComponentState ComponentState;
    bool HasState(TComponentStateFlag flag) const { return ComponentState.Contains(flag); }
    virtual bool HasParent() const { return false; }
    virtual TComponent* GetParentComponent() const { return nullptr; }
    virtual void SetParentComponent(TComponent* parent) {}
    // Calls `visit` with each component that is stored inside this one, in order. `root` is the stream's root.
    virtual void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {}
    virtual TComponent* GetChildOwner() { return nullptr; }
    virtual TComponent* GetChildParent() { return this; }
    virtual void SetChildOrder(TComponent* child, int order) {}
    // Reads (writes) this component's part of a stream; overriders surround the inherited operation.
    virtual void ReadState(TFiler& reader);
    virtual void WriteState(TFiler& writer);
    // The whole form has been read and references are in place.
    virtual void Loaded();
    virtual void Updating();
    virtual void Updated();
    void SetDesigning(bool value);
    // Where a designer shows a component that is no control; stored as the hidden properties Left and Top.
    int DesignLeft = 0;
    int DesignTop = 0;
    void DefineProperties(TFiler& filer) override;

    // Answers a notice: `component` came into the owner (only for those who call HearInsertions), or is going.
    // Passes it on to the owned components; overriders call the inherited operation first.
    virtual void Notification(TComponent* component, TOperation operation);
    // The position of a control that is not visual, and names, are validated here; raises EComponentError.
    virtual void ValidateRename(TComponent* component, const AnsiString& oldName, const AnsiString& newName);

  protected:
    // Insertions into the owner are announced only to components that ask for them: announcing each to every
    // sibling would cost the square of the form's size while it opens, and nearly nobody listens.
    void HearInsertions();
    // For classes that must let go of what they own before their own fields die; called by their destructor first.
    void BeginDestruction();

  private:
    friend class ComponentHandles;
    void Insert(TComponent* component);
    void Remove(TComponent* component);
    void IndexName(TComponent* component);
    void UnindexName(TComponent* component);

    AnsiString name_;
    TComponent* owner_ = nullptr;
    std::vector<TComponent*> components_;
    std::vector<TComponent*> freeNotifies_;
    std::vector<TComponent*> insertionListeners_;
    std::unique_ptr<NameIndex> nameIndex_;        // made when the owner holds many
    std::vector<TComponent*> indexedComponents_;  // numbers of nameIndex_
    mutable int handle_ = 0;
    bool hearsInsertions_ = false;
};

}  // namespace vyn
