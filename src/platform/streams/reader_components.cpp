#include <algorithm>

#include "platform/objects/collection.h"
#include "platform/objects/component_handle.h"
#include "platform/streams/reader.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace reader_detail {

constexpr char kSignature[] = "TPF0";
constexpr int64_t kSignatureSize = 4;
constexpr uint8_t kPrefixMask = 0xF0;
constexpr uint8_t kFlagMask = 0x0F;

FindGlobalComponentFunction& GlobalFinder() {
    static FindGlobalComponentFunction find;
    return find;
}

// A reference out of a form to one that is not open yet; kept until it is, or until its holder goes.
struct PendingReference {
    int holder;  // handle of the component that holds the reference, itself or in a part
    TPersistent* instance;
    const PropertyInfo* property;
    AnsiString name;
};

std::vector<PendingReference>& PendingReferences() {
    static std::vector<PendingReference> pending;
    return pending;
}

const TComponent* HolderOf(const TPersistent* instance) {
    for (const TPersistent* at = instance; at; at = at->GetOwner())
        if (const auto* component = ObjectCast<TComponent>(at)) return component;
    return nullptr;
}

void ResolvePendingReferences() {
    if (PendingReferences().empty() || !GlobalFinder()) return;
    std::vector<PendingReference> pending = std::move(PendingReferences());
    PendingReferences().clear();
    for (PendingReference& reference : pending) {
        if (!ComponentFromHandle(reference.holder)) continue;
        TComponent* found = GlobalFinder()(reference.name);
        if (found && found->InheritsFrom(&reference.property->Class()))
            (*reference.property)->SetObject(*reference.instance, found);
        else
            PendingReferences().push_back(std::move(reference));
    }
}

}  // namespace reader_detail

void SetFindGlobalComponent(FindGlobalComponentFunction find) { reader_detail::GlobalFinder() = std::move(find); }

TComponent* FindGlobalComponent(std::string_view name) {
    return reader_detail::GlobalFinder() ? reader_detail::GlobalFinder()(name) : nullptr;
}

TComponent* ReadComponentFromStream(TStream& stream, TComponent* root) {
    TReader reader(stream);
    return reader.ReadRootComponent(root);
}

void TReader::ReadSignature() {
    if (BytesLeft() < reader_detail::kSignatureSize ||
        std::string_view(Take(reader_detail::kSignatureSize), reader_detail::kSignatureSize) !=
            reader_detail::kSignature) {
        Error("Invalid stream format");
    }
}

void TReader::ReadPrefix(uint8_t& flags, int& childPos) {
    flags = 0;
    childPos = -1;
    if ((static_cast<uint8_t>(NextValue()) & reader_detail::kPrefixMask) == reader_detail::kPrefixMask) {
        flags = static_cast<uint8_t>(ReadValue()) & reader_detail::kFlagMask;
        if (flags & ffChildPos) childPos = ReadInteger();
    }
}

AnsiString TReader::ComponentPath() const {
    AnsiString path;
    for (const auto& [className, name] : path_) {
        if (!path.empty()) path += '.';
        path += name.empty() ? className : name;
    }
    return path;
}

bool TReader::HandleError(const AnsiString& message) {
    bool handled = false;
    OnError(*this, message, handled);
    return handled;
}

TClass TReader::FindComponentClass(const AnsiString& className) {
    TClass found = GetClass(className);
    OnFindComponentClass(*this, className, found);
    if (found && !found->InheritsFrom(&TComponent::StaticClass())) found = nullptr;
    return found;
}

void TReader::SetComponentName(TComponent* component, AnsiString name) {
    OnSetName(*this, component, name);
    component->SetName(name);
}

TComponent* TReader::ReadRootComponent(TComponent* root) {
    ReadSignature();
    uint8_t flags = 0;
    int childPos = -1;
    const int64_t headerAt = Position();
    ReadPrefix(flags, childPos);
    AnsiString className(ReadNameView());
    AnsiString name(ReadNameView());
    TComponent* result = root;
    if (!result) {
        TClass found = FindComponentClass(className);
        if (!found)
            throw EClassNotFound("Class " + className + " not found (" + stream_.Description() + ", position " +
                                 IntToStr(headerAt) + ")");
        result = static_cast<TComponent*>(found->Create(nullptr));
    }
    path_.assign(1, {className, name});
    Root = LookupRoot = result;
    Owner = result;
    Parent = nullptr;
    try {
        result->ComponentState.Include(csLoading);
        result->ComponentState.Include(csReading);
        if (!root || root->Name().empty()) {
            // Another of the same name may live under a given owner: the newcomer gets a number.
            AnsiString unique = name;
            for (int number = 1; result->Owner() && result->Owner()->FindComponent(unique) &&
                                 result->Owner()->FindComponent(unique) != result;
                 ++number)
                unique = name + "_" + IntToStr(number);
            SetComponentName(result, unique);
        }
        loaded_.assign(1, result);
        result->ReadState(*this);
        result->ComponentState.Exclude(csReading);
        ResolveFixups();
        for (size_t i = 0; i < loaded_.size(); ++i) loaded_[i]->Loaded();
        loaded_.clear();
    } catch (...) {
        fixups_.clear();
        loaded_.clear();
        path_.clear();
        if (!root)
            delete result;
        else
            result->ComponentState.Exclude(csReading);
        throw;
    }
    path_.clear();
    reader_detail::ResolvePendingReferences();
    return result;
}

TComponent* TReader::CreateComponent(const AnsiString& className, const AnsiString& name, TComponent* existing,
                                     uint8_t flags, bool& created) {
    created = false;
    if (existing) return existing;
    if (flags & ffInherited) {
        TComponent* found = LookupRoot ? LookupRoot->FindComponent(name) : nullptr;
        if (!found) throw EReadError("Ancestor for '" + name + "' not found");
        return found;
    }
    TClass found = FindComponentClass(className);
    if (!found) throw EClassNotFound("Class " + className + " not found");
    auto* component = static_cast<TComponent*>(found->Create(Owner));
    created = true;
    component->ComponentState.Include(csLoading);
    if (flags & ffInline) component->ComponentState.Include(csInline);
    try {
        component->SetParentComponent(Parent);
        SetComponentName(component, name);
    } catch (...) {
        delete component;
        throw;
    }
    return component;
}

TComponent* TReader::ReadComponent(TComponent* component) {
    Nesting deeper(*this);
    const int64_t start = Position();
    uint8_t flags = 0;
    int childPos = -1;
    ReadPrefix(flags, childPos);
    AnsiString className(ReadNameView());
    AnsiString name(ReadNameView());
    path_.emplace_back(className, name);
    bool created = false;
    TComponent* result = nullptr;
    try {
        result = CreateComponent(className, name, component, flags, created);
    } catch (const Exception& error) {
        const AnsiString where = "Error reading " + ComponentPath() + ": " + error.Message();
        path_.pop_back();
        if (HandleError(where)) {
            Seek(start);
            SkipComponent();
            return nullptr;
        }
        if (dynamic_cast<const EClassNotFound*>(&error))
            throw EClassNotFound(where + " (" + stream_.Description() + ", position " + IntToStr(start) + ")");
        Error(where);
    }
    TComponent* outerLookup = LookupRoot;
    TComponent* outerRoot = Root;
    if (flags & ffInline) LookupRoot = Root = result;
    try {
        result->ComponentState.Include(csLoading);
        result->ComponentState.Include(csReading);
        result->ReadState(*this);
        result->ComponentState.Exclude(csReading);
        if ((flags & ffChildPos) && Parent) Parent->SetChildOrder(result, childPos);
        if (created || std::find(loaded_.begin(), loaded_.end(), result) == loaded_.end()) loaded_.push_back(result);
    } catch (...) {
        LookupRoot = outerLookup;
        Root = outerRoot;
        throw;  // the owner frees what was made
    }
    LookupRoot = outerLookup;
    Root = outerRoot;
    path_.pop_back();
    return result;
}

void TReader::FileComponentData(TComponent& component) {
    TComponent* outerParent = Parent;
    TComponent* outerOwner = Owner;
    Parent = component.GetChildParent();
    Owner = component.GetChildOwner();
    if (!Owner) Owner = Root;
    try {
        ReadDataInner(component);
    } catch (...) {
        Parent = outerParent;
        Owner = outerOwner;
        throw;
    }
    Parent = outerParent;
    Owner = outerOwner;
}

void TReader::ReadDataInner(TComponent& component) {
    ReadProperties(component);
    while (!EndOfList()) ReadComponent(nullptr);
    ReadListEnd();
}

void TReader::ReadProperties(TPersistent& instance) {
    while (!EndOfList()) ReadProperty(instance);
    ReadListEnd();
}

void TReader::ReadCollection(TCollection& collection) {
    Nesting deeper(*this);
    collection.BeginUpdate();
    try {
        collection.Clear();
        while (!EndOfList()) {
            if (NextValue() != vaList) ReadInteger();  // a position, which the order says already
            TCollectionItem* item = collection.Add();
            ReadListBegin();
            ReadProperties(*item);
        }
        ReadListEnd();
    } catch (...) {
        collection.EndUpdate();
        throw;
    }
    collection.EndUpdate();
}

void TReader::ReadProperty(TPersistent& instance) {
    const AnsiString path(ReadNameView());
    const int64_t valueAt = Position();
    const size_t depth = path_.size();
    AnsiString failure;
    try {
        ReadPropertyPath(instance, path);
        return;
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        if (path_.size() > depth) path_.resize(depth);
        failure = error.Message();
        const AnsiString message = "Error reading " + ComponentPath() + "." + path + ": " + failure;
        if (!HandleError(message)) throw EReadError(message);
    }
    Seek(valueAt);
    SkipValue();
}

void TReader::ReadPropertyPath(TPersistent& instance, std::string_view path) {
    TPersistent* part = &instance;
    for (;;) {
        const size_t dot = path.find('.');
        const std::string_view name = path.substr(0, dot);
        const PropertyInfo* property = part->GetClassInfo().FindProperty(name);
        if (dot == std::string_view::npos) {
            if (property) {
                ReadPropertyValue(*part, *property);
            } else if (!ReadDefinedProperty(*part, name)) {
                throw EReadError("Property " + AnsiString(name) + " does not exist");
            }
            return;
        }
        if (!property) throw EReadError("Property " + AnsiString(name) + " does not exist");
        if (property->Kind != PropertyKind::Class) throw EReadError("Property " + AnsiString(name) + " has no parts");
        part = (*property)->GetObject(*part);
        if (!part) throw EReadError("Property " + AnsiString(name) + " is empty");
        path.remove_prefix(dot + 1);
    }
}

bool TReader::ReadDefinedProperty(TPersistent& instance, std::string_view name) {
    const std::string_view outerName = definedName_;
    const bool outerFound = definedFound_;
    TPersistent* outerInstance = definedInstance_;
    definedName_ = name;
    definedFound_ = false;
    definedInstance_ = &instance;
    bool found = false;
    try {
        instance.DefineProperties(*this);
        found = definedFound_;
    } catch (...) {
        definedName_ = outerName;
        definedFound_ = outerFound;
        definedInstance_ = outerInstance;
        throw;
    }
    definedName_ = outerName;
    definedFound_ = outerFound;
    definedInstance_ = outerInstance;
    return found;
}

void TReader::DefineProperty(const AnsiString& name, const ReadData& read, const WriteData&, bool) {
    if (definedFound_ || !SameText(name, definedName_)) return;
    definedFound_ = true;
    definedName_ = {};
    if (read) read(*this);
}

void TReader::DefineBinaryProperty(const AnsiString& name, const std::function<void(TStream&)>& read,
                                   const std::function<void(TStream&)>&, bool) {
    if (definedFound_ || !SameText(name, definedName_)) return;
    definedFound_ = true;
    definedName_ = {};
    TViewStream bytes(ReadBinaryView());
    if (read) read(bytes);
}

void TReader::DefineIntegerProperty(const AnsiString& name, const std::function<void(int)>& set, int, bool) {
    if (definedFound_ || !SameText(name, definedName_)) return;
    definedFound_ = true;
    definedName_ = {};
    set(ReadInteger());
}

void TReader::DefineStringListProperty(const AnsiString& name, const std::function<void(std::vector<AnsiString>)>& set,
                                       const std::function<std::vector<AnsiString>()>&, bool) {
    if (definedFound_ || !SameText(name, definedName_)) return;
    definedFound_ = true;
    definedName_ = {};
    ReadListBegin();
    std::vector<AnsiString> lines;
    while (!EndOfList()) lines.push_back(ReadString());
    ReadListEnd();
    set(std::move(lines));
}

uint64_t TReader::ReadSetBits(const EnumType& type) {
    const TValueType found = ReadValue();
    if (found != vaSet) Unexpected("a set", found);
    uint64_t bits = 0;
    for (;;) {
        const std::string_view name = ReadNameView();
        if (name.empty()) return bits;
        const int value = type.ValueOf(name);
        if (value < 0) Error("Invalid property value: " + AnsiString(name) + " is no value of " + type.Name());
        bits |= uint64_t{1} << value;
    }
}

int64_t TReader::ReadNamedInteger(const PropertyInfo& property) {
    const std::string_view name = ReadIdentView();
    int64_t value = 0;
    if (property.Integer && property.Integer->ValueOf(name, value)) return value;
    Error("Invalid property value: " + AnsiString(name) + " is unknown");
}

void TReader::ReadPropertyValue(TPersistent& instance, const PropertyInfo& property) {
    const bool isPart =
        property.Kind == PropertyKind::Class && !property.Class().InheritsFrom(&TComponent::StaticClass());
    if (property.ReadOnly && !isPart) throw EReadError("Property " + property.Name + " is read-only");
    switch (property.Kind) {
        case PropertyKind::Integer:
            property->SetOrdinal(instance, NextValue() == vaIdent ? ReadNamedInteger(property) : ReadInteger());
            return;
        case PropertyKind::Int64:
            property->SetOrdinal(instance, ReadInt64());
            return;
        case PropertyKind::Character:
            property->SetOrdinal(instance, static_cast<unsigned char>(ReadChar()));
            return;
        case PropertyKind::Enumeration: {
            const std::string_view name = ReadIdentView();
            const int value = property.Enum->ValueOf(name);
            if (value < 0)
                Error("Invalid property value: " + AnsiString(name) + " is no value of " + property.Enum->Name());
            property->SetOrdinal(instance, value);
            return;
        }
        case PropertyKind::Set:
            property->SetOrdinal(instance, static_cast<int64_t>(ReadSetBits(*property.Enum)));
            return;
        case PropertyKind::Float:
            property->SetFloat(instance, ReadFloat());
            return;
        case PropertyKind::String:
            property->SetString(instance, ReadString());
            return;
        case PropertyKind::WideText:
            property->SetWideString(instance, ReadWideString());
            return;
        case PropertyKind::Variant:
            property->SetVariant(instance, ReadVariant());
            return;
        case PropertyKind::Method:
            ReadEventValue(instance, property);
            return;
        case PropertyKind::Class:
            break;
    }
    switch (NextValue()) {
        case vaNil:
            ReadValue();
            property->SetObject(instance, nullptr);
            return;
        case vaCollection: {
            auto* collection = ObjectCast<TCollection>(property->GetObject(instance));
            if (!collection) Error("Invalid property value: the property is no collection");
            ReadValue();
            ReadCollection(*collection);
            return;
        }
        default: {
            AnsiString name = ReadIdent();
            OnReferenceName(*this, name);
            fixups_.push_back({&instance, &property, std::move(name)});
        }
    }
}

void TReader::ReadEventValue(TPersistent& instance, const PropertyInfo& property) {
    if (NextValue() == vaNil) {
        ReadValue();
        property->ClearEvent(instance);
        return;
    }
    const AnsiString name = ReadIdent();
    const MethodInfo* method = Root ? Root->GetClassInfo().FindMethod(name) : nullptr;
    bool error = method == nullptr;
    OnFindMethod(*this, name, &instance, property, method, error);
    if (method)
        property->BindEvent(instance, *method, *Root);
    else if (error)
        throw EMethodNotFound("Method " + name + " not found");
}

TComponent* TReader::FindReferenced(std::string_view name) const {
    if (SameText(name, "Self")) return LookupRoot;
    TComponent* at = LookupRoot;
    std::string_view rest = name;
    while (at && !rest.empty()) {
        const size_t dot = rest.find('.');
        const std::string_view part = rest.substr(0, dot);
        TComponent* found = at->FindComponent(part);
        if (!found && at == LookupRoot && SameText(at->Name(), part)) found = at;
        at = found;
        rest = dot == std::string_view::npos ? std::string_view() : rest.substr(dot + 1);
    }
    return at;
}

void TReader::ResolveFixups() {
    const std::vector<Fixup> fixups = std::move(fixups_);
    fixups_.clear();
    for (const Fixup& fixup : fixups) {
        TComponent* found = FindReferenced(fixup.name);
        if (!found && reader_detail::GlobalFinder()) found = reader_detail::GlobalFinder()(fixup.name);
        const auto complain = [&](const AnsiString& why) {
            const TComponent* holder = reader_detail::HolderOf(fixup.instance);
            const AnsiString message = "Error reading " + (holder ? holder->Name() : fixup.instance->ClassName()) +
                                       "." + fixup.property->Name + ": " + why;
            if (!HandleError(message)) throw EReadError(message);
        };
        if (found && !found->InheritsFrom(&fixup.property->Class())) {
            complain(fixup.name + " is a " + found->ClassName() + ", a " + fixup.property->Class().Name() +
                     " was expected");
        } else if (found) {
            (*fixup.property)->SetObject(*fixup.instance, found);
        } else if (fixup.name.find('.') != AnsiString::npos) {
            // A reference into another form, which may not be open yet.
            const TComponent* holder = reader_detail::HolderOf(fixup.instance);
            if (holder)
                reader_detail::PendingReferences().push_back(
                    {holder->Handle(), fixup.instance, fixup.property, fixup.name});
        } else {
            complain("the component " + fixup.name + " was not found");
        }
    }
}

}  // namespace vyn
