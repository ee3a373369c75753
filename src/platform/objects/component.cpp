#include "platform/objects/component.h"

#include <algorithm>
#include <unordered_map>

#include "platform/objects/component_handle.h"
#include "platform/objects/filer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

// Gives numbers to components and finds them again.
class ComponentHandles {
  public:
    static ComponentHandles& Instance() {
        static ComponentHandles handles;
        return handles;
    }
    int HandleOf(const TComponent& component) {
        if (component.handle_ == 0) {
            component.handle_ = ++last_;
            live_.emplace(component.handle_, const_cast<TComponent*>(&component));
        }
        return component.handle_;
    }
    TComponent* Find(int64_t handle) const {
        if (handle <= 0 || handle > last_) return nullptr;
        const auto found = live_.find(static_cast<int>(handle));
        return found == live_.end() ? nullptr : found->second;
    }
    void Forget(const TComponent& component) {
        if (component.handle_ != 0) live_.erase(component.handle_);
    }

  private:
    std::unordered_map<int, TComponent*> live_;
    int last_ = 0;
};

TComponent* ComponentFromHandle(int64_t handle) { return ComponentHandles::Instance().Find(handle); }

namespace {

// From this many components on, an owner keeps an index of their names.
constexpr size_t kIndexedFrom = 16;

bool IsValidIdentifier(std::string_view name) {
    const auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
    if (name.empty() || !letter(name[0])) return false;
    return std::all_of(name.begin(), name.end(), [&](char c) { return letter(c) || (c >= '0' && c <= '9'); });
}

void EraseLast(std::vector<TComponent*>& list, const TComponent* component) {
    // From the end: what came last usually goes first.
    const auto found = std::find(list.rbegin(), list.rend(), component);
    if (found != list.rend()) list.erase(std::next(found).base());
}

}  // namespace

const ClassInfo& TComponent::StaticClass() {
    static const ClassInfo info = DefineClass<TComponent, TPersistent>("TComponent")
                                      .Published("Name", &TComponent::Name, &TComponent::SetName)
                                      .NeverStored()
                                      .Published("Tag", &TComponent::Tag, &TComponent::Tag)
                                      .Default(0);
    return info;
}

TComponent::TComponent(TComponent* owner) {
    if (owner) owner->InsertComponent(this);
}

TComponent::~TComponent() {
    BeginDestruction();
    DestroyComponents();
    if (owner_) owner_->RemoveComponent(this);
    ComponentHandles::Instance().Forget(*this);
}

void TComponent::BeginDestruction() {
    Destroying();
    while (!freeNotifies_.empty()) {
        TComponent* listener = freeNotifies_.back();
        freeNotifies_.pop_back();
        EraseLast(listener->freeNotifies_, this);
        listener->Notification(this, opRemove);
    }
}

void TComponent::Destroying() {
    if (HasState(csDestroying)) return;
    ComponentState.Include(csDestroying);
    for (TComponent* component : components_) component->Destroying();
}

void TComponent::DestroyComponents() {
    while (!components_.empty()) {
        TComponent* component = components_.back();
        if (component->HasState(csFreeNotification) || HasState(csDesigning))
            RemoveComponent(component);
        else
            Remove(component);
        delete component;
    }
}

TComponent* TComponent::Components(int index) const {
    if (index < 0 || index >= ComponentCount()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return components_[static_cast<size_t>(index)];
}

TComponent* TComponent::FindComponent(std::string_view name) const {
    if (name.empty()) return nullptr;
    if (nameIndex_) {
        const uint32_t at = nameIndex_->Find(name);
        return at == NameIndex::NotFound ? nullptr : indexedComponents_[at];
    }
    for (TComponent* component : components_)
        if (SameText(component->name_, name)) return component;
    return nullptr;
}

void TComponent::IndexName(TComponent* component) {
    if (component->name_.empty()) return;
    if (!nameIndex_) {
        if (components_.size() < kIndexedFrom) return;
        nameIndex_ = std::make_unique<NameIndex>();
        indexedComponents_.clear();
        for (TComponent* each : components_)
            if (each != component) IndexName(each);
    }
    if (nameIndex_->Insert(component->name_, static_cast<uint32_t>(indexedComponents_.size())))
        indexedComponents_.push_back(component);
}

void TComponent::UnindexName(TComponent* component) {
    if (nameIndex_ && !component->name_.empty()) nameIndex_->Erase(component->name_);
}

void TComponent::Insert(TComponent* component) {
    components_.push_back(component);
    component->owner_ = this;
    IndexName(component);
}

void TComponent::Remove(TComponent* component) {
    UnindexName(component);
    component->owner_ = nullptr;
    EraseLast(components_, component);
    EraseLast(insertionListeners_, component);
    if (components_.empty()) {
        nameIndex_.reset();
        indexedComponents_.clear();
    }
}

void TComponent::InsertComponent(TComponent* component) {
    if (component->owner_ == this) return;
    ValidateRename(component, AnsiString(), component->name_);
    if (component->owner_) component->owner_->RemoveComponent(component);
    Insert(component);
    if (component->hearsInsertions_) insertionListeners_.push_back(component);
    if (HasState(csDesigning)) component->SetDesigning(true);
    Notification(component, opInsert);
}

void TComponent::RemoveComponent(TComponent* component) {
    ValidateRename(component, component->name_, AnsiString());
    Notification(component, opRemove);
    component->SetDesigning(false);
    Remove(component);
}

void TComponent::Notification(TComponent* component, TOperation operation) {
    if (operation == opRemove) RemoveFreeNotification(component);
    // A listener may remove itself: walk from the end.
    std::vector<TComponent*>& listeners = operation == opInsert ? insertionListeners_ : components_;
    for (size_t i = listeners.size(); i-- > 0;) {
        if (i >= listeners.size()) continue;
        if (operation == opInsert && listeners[i] == component) continue;
        listeners[i]->Notification(component, operation);
    }
}

void TComponent::HearInsertions() {
    if (hearsInsertions_) return;
    hearsInsertions_ = true;
    if (owner_) owner_->insertionListeners_.push_back(this);
}

int TComponent::ComponentIndex() const {
    if (!owner_) return -1;
    const auto& siblings = owner_->components_;
    return static_cast<int>(std::find(siblings.begin(), siblings.end(), this) - siblings.begin());
}

void TComponent::SetComponentIndex(int index) {
    if (!owner_) return;
    auto& siblings = owner_->components_;
    const int last = static_cast<int>(siblings.size()) - 1;
    index = std::clamp(index, 0, last);
    siblings.erase(std::find(siblings.begin(), siblings.end(), this));
    siblings.insert(siblings.begin() + index, this);
}

void TComponent::SetName(const AnsiString& name) {
    if (name == name_) return;
    if (!name.empty() && !IsValidIdentifier(name))
        throw EComponentError("'" + name + "' is not a valid component name");
    if (owner_)
        owner_->ValidateRename(this, name_, name);
    else
        ValidateRename(nullptr, name_, name);
    if (owner_) owner_->UnindexName(this);
    name_ = name;
    if (owner_) owner_->IndexName(this);
}

void TComponent::ValidateRename(TComponent* component, const AnsiString& oldName, const AnsiString& newName) {
    if (component && !newName.empty() && !SameText(oldName, newName)) {
        const TComponent* holder = FindComponent(newName);
        if (holder && holder != component) throw EComponentError("A component named " + newName + " already exists");
    }
    if (HasState(csDesigning) && owner_) owner_->ValidateRename(component, oldName, newName);
}

int TComponent::Handle() const { return ComponentHandles::Instance().HandleOf(*this); }

void TComponent::FreeNotification(TComponent* listener) {
    if (!listener || listener == this) return;
    const auto add = [](TComponent* to, TComponent* what) {
        if (std::find(to->freeNotifies_.begin(), to->freeNotifies_.end(), what) == to->freeNotifies_.end())
            to->freeNotifies_.push_back(what);
    };
    add(this, listener);
    add(listener, this);
    ComponentState.Include(csFreeNotification);
    listener->ComponentState.Include(csFreeNotification);
}

void TComponent::RemoveFreeNotification(TComponent* listener) {
    EraseLast(freeNotifies_, listener);
    EraseLast(listener->freeNotifies_, this);
}

void TComponent::ReadState(TFiler& reader) { reader.FileComponentData(*this); }
void TComponent::WriteState(TFiler& writer) { writer.FileComponentData(*this); }

void TComponent::Loaded() { ComponentState.Exclude(csLoading); }

void TComponent::Updating() { ComponentState.Include(csUpdating); }
void TComponent::Updated() { ComponentState.Exclude(csUpdating); }

void TComponent::SetDesigning(bool value) {
    if (value)
        ComponentState.Include(csDesigning);
    else
        ComponentState.Exclude(csDesigning);
    for (TComponent* component : components_) component->SetDesigning(value);
}

void TComponent::DefineProperties(TFiler& filer) {
    const TComponent* ancestor = ObjectCast<TComponent>(filer.Ancestor);
    const int left = ancestor ? ancestor->DesignLeft : 0;
    const int top = ancestor ? ancestor->DesignTop : 0;
    filer.DefineIntegerProperty(
        "Left", [this](int value) { DesignLeft = value; }, DesignLeft, DesignLeft != left);
    filer.DefineIntegerProperty(
        "Top", [this](int value) { DesignTop = value; }, DesignTop, DesignTop != top);
}

}  // namespace vyn
