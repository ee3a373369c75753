#include "platform/objects/collection.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace writer_detail {

constexpr char kSignature[] = "TPF0";
constexpr uint8_t kPrefix = 0xF0;

// Sets a field for as long as it stands.
template <class T>
class Restorer {
  public:
    Restorer(T& field, T value) : field_(field), old_(std::move(field)) { field_ = std::move(value); }
    ~Restorer() { field_ = std::move(old_); }
    Restorer(const Restorer&) = delete;
    Restorer& operator=(const Restorer&) = delete;

  private:
    T& field_;
    T old_;
};

// Marks a component as being stored for as long as it stands.
class WritingMark {
  public:
    explicit WritingMark(TComponent& component) : component_(component) {
        component_.ComponentState.Include(csWriting);
    }
    ~WritingMark() { component_.ComponentState.Exclude(csWriting); }
    WritingMark(const WritingMark&) = delete;
    WritingMark& operator=(const WritingMark&) = delete;

  private:
    TComponent& component_;
};

bool IsComponentClass(const PropertyInfo& property) {
    return property.Class().InheritsFrom(&TComponent::StaticClass());
}

}  // namespace writer_detail

void WriteComponentToStream(TStream& stream, TComponent& root) {
    TWriter writer(stream);
    writer.WriteRootComponent(root);
    writer.Flush();
}

void TWriter::WriteSignature() { WriteRaw(writer_detail::kSignature); }

void TWriter::WritePrefix(uint8_t flags, int childPos, std::string_view className) {
    if (flags == 0 && className.size() < writer_detail::kPrefix) return;
    PutByte(writer_detail::kPrefix | flags);
    if (flags & ffChildPos) WriteInteger(childPos);
}

void TWriter::WriteDescendent(TComponent& root, TComponent* ancestor) {
    writer_detail::Restorer<TPersistent*> keepAncestor(Ancestor, ancestor);
    writer_detail::Restorer<TComponent*> keepRootAncestor(RootAncestor, ancestor);
    writer_detail::Restorer<TComponent*> keepRoot(Root, &root);
    WriteSignature();
    WriteComponent(root);
}

TComponent* TWriter::AncestorChild(const TComponent& component) const {
    if (!RootAncestor) return nullptr;
    if (&component == Root) return RootAncestor;
    return RootAncestor->FindComponent(component.Name());
}

void TWriter::WriteComponent(TComponent& component) {
    writer_detail::WritingMark mark(component);
    TComponent* ancestor = AncestorChild(component);
    writer_detail::Restorer<TPersistent*> keepAncestor(Ancestor, ancestor);
    uint8_t flags = 0;
    if (ancestor) flags |= ffInherited;
    if (component.HasState(csInline)) flags |= ffInline;
    const AnsiString& className = component.ClassName();
    WritePrefix(flags, -1, className);
    WriteName(className);
    WriteName(component.Name());
    component.WriteState(*this);
}

void TWriter::FileComponentData(TComponent& component) {
    WriteProperties(component);
    WriteName({});
    if (!IgnoreChildren) WriteChildren(component);
    WriteListEnd();
}

void TWriter::WriteChildren(TComponent& component) {
    TComponent* lookup = component.HasState(csInline) ? &component : Root;
    writer_detail::Restorer<TComponent*> keepRoot(Root, lookup);
    component.GetChildren([this](TComponent* child) { WriteComponent(*child); }, lookup);
}

void TWriter::WritePropertyName(const AnsiString& name) {
    if (propertyPrefix_.empty())
        WriteName(name);
    else
        WriteName(propertyPrefix_ + name);
}

void TWriter::WriteProperties(TPersistent& instance) {
    for (const PropertyInfo& property : instance.GetClassInfo().Properties())
        if (property.IsStored(instance)) WriteProperty(instance, property);
    instance.DefineProperties(*this);
}

bool TWriter::IsDefault(const TPersistent& instance, const PropertyInfo& property) const {
    if (StoreDefaults && property.Kind != PropertyKind::Method) return false;
    // An ancestor of another class says nothing about this object's properties.
    const TPersistent* ancestor = Ancestor && Ancestor->ClassType() == instance.ClassType() ? Ancestor : nullptr;
    switch (property.Kind) {
        case PropertyKind::Integer:
        case PropertyKind::Character:
        case PropertyKind::Enumeration:
        case PropertyKind::Set:
            if (ancestor) return property->GetOrdinal(instance) == property->GetOrdinal(*ancestor);
            return property.HasDefault && property->GetOrdinal(instance) == property.Default;
        case PropertyKind::Int64:
            return property->GetOrdinal(instance) == (ancestor ? property->GetOrdinal(*ancestor) : property.Default);
        case PropertyKind::Float:
            return property->GetFloat(instance) == (ancestor ? property->GetFloat(*ancestor) : 0.0L);
        case PropertyKind::String:
            return property->GetString(instance) == (ancestor ? property->GetString(*ancestor) : AnsiString());
        case PropertyKind::WideText:
            return property->GetWideString(instance) == (ancestor ? property->GetWideString(*ancestor) : WideString());
        case PropertyKind::Variant: {
            const Variant value = property->GetVariant(instance);
            const Variant other = ancestor ? property->GetVariant(*ancestor) : Variant();
            return value.Type() == other.Type() && value == other;
        }
        case PropertyKind::Method:
            return ancestor ? property->GetEvent(instance).SameHandler(property->GetEvent(*ancestor))
                            : property->GetEvent(instance).HandlerName().empty();
        case PropertyKind::Class:
            return false;
    }
    return false;
}

void TWriter::WriteProperty(TPersistent& instance, const PropertyInfo& property) {
    if (property.Kind == PropertyKind::Class) {
        WriteObjectProperty(instance, property);
        return;
    }
    if (property.ReadOnly || IsDefault(instance, property)) return;
    WritePropertyName(property.Name);
    switch (property.Kind) {
        case PropertyKind::Integer: {
            const int64_t value = property->GetOrdinal(instance);
            const AnsiString* name = property.Integer ? property.Integer->NameOf(value) : nullptr;
            if (name)
                WriteIdent(*name);
            else
                WriteInteger(value);
            return;
        }
        case PropertyKind::Int64:
            WriteInteger(property->GetOrdinal(instance));
            return;
        case PropertyKind::Character:
            WriteChar(static_cast<char>(property->GetOrdinal(instance)));
            return;
        case PropertyKind::Enumeration:
            if (property.Enum == &TypeInfoOf(TypeTag<bool>{}))
                WriteBoolean(property->GetOrdinal(instance) != 0);
            else
                WriteIdent(property.Enum->NameOf(property->GetOrdinal(instance)));
            return;
        case PropertyKind::Set:
            WriteSet(static_cast<uint64_t>(property->GetOrdinal(instance)), *property.Enum);
            return;
        case PropertyKind::Float:
            WriteFloat(property->GetFloat(instance));
            return;
        case PropertyKind::String:
            WriteString(property->GetString(instance));
            return;
        case PropertyKind::WideText:
            WriteWideString(property->GetWideString(instance));
            return;
        case PropertyKind::Variant:
            WriteVariant(property->GetVariant(instance));
            return;
        case PropertyKind::Method: {
            const AnsiString& name = property->GetEvent(instance).HandlerName();
            if (name.empty())
                WriteNil();
            else
                WriteIdent(name);
            return;
        }
        case PropertyKind::Class:
            return;
    }
}

AnsiString TWriter::ReferenceName(const TComponent& component) const {
    if (component.Owner() == Root || !Root) return component.Name();
    if (&component == Root) return "Self";
    // A component of another form, or of a form inside this one.
    AnsiString path = component.Name();
    for (const TComponent* owner = component.Owner(); owner && owner != Root; owner = owner->Owner()) {
        if (owner->Name().empty()) break;
        path = owner->Name() + "." + path;
        if (!owner->HasState(csInline)) break;
    }
    return path;
}

void TWriter::WriteObjectProperty(TPersistent& instance, const PropertyInfo& property) {
    TPersistent* value = property->GetObject(instance);
    TPersistent* ancestorValue =
        Ancestor && Ancestor->ClassType() == instance.ClassType() ? property->GetObject(*Ancestor) : nullptr;
    auto* reference = ObjectCast<TComponent>(value);
    if (!value || reference) {
        if (property.ReadOnly) return;
        const auto* ancestorReference = ObjectCast<TComponent>(ancestorValue);
        // References to parts of the same form are the same when their names are.
        const bool same =
            reference == ancestorReference ||
            (reference && ancestorReference && reference->Owner() == Root &&
             ancestorReference->Owner() == RootAncestor && SameText(reference->Name(), ancestorReference->Name()));
        if (same && !(StoreDefaults && !reference)) return;
        if (!reference) {
            WritePropertyName(property.Name);
            WriteNil();
        } else if (const AnsiString name = ReferenceName(*reference); !name.empty()) {
            WritePropertyName(property.Name);
            WriteIdent(name);
        }
        return;
    }
    if (const auto* collection = ObjectCast<TCollection>(value)) {
        const auto* other = ObjectCast<TCollection>(ancestorValue);
        if (!other && collection->Count() == 0 && !StoreDefaults) return;
        if (other) {
            TMemoryStream mine, theirs;
            {
                TWriter mineWriter(mine), theirsWriter(theirs);
                mineWriter.WriteCollection(*collection);
                theirsWriter.WriteCollection(*other);
            }
            if (mine.Bytes() == theirs.Bytes()) return;
        }
        WritePropertyName(property.Name);
        writer_detail::Restorer<AnsiString> keepPrefix(propertyPrefix_, AnsiString());
        writer_detail::Restorer<TPersistent*> keepAncestor(Ancestor, nullptr);
        WriteCollection(*collection);
        return;
    }
    writer_detail::Restorer<AnsiString> keepPrefix(propertyPrefix_, propertyPrefix_ + property.Name + ".");
    writer_detail::Restorer<TPersistent*> keepAncestor(Ancestor, ancestorValue);
    WriteProperties(*value);
}

void TWriter::WriteCollection(const TCollection& collection) {
    WriteValue(vaCollection);
    for (int i = 0; i < collection.Count(); ++i) {
        WriteListBegin();
        WriteProperties(*collection.Items(i));
        WriteName({});
    }
    WriteListEnd();
}

void TWriter::DefineProperty(const AnsiString& name, const ReadData&, const WriteData& write, bool hasData) {
    if (!hasData || !write) return;
    WritePropertyName(name);
    writer_detail::Restorer<AnsiString> keepPrefix(propertyPrefix_, AnsiString());
    write(*this);
}

void TWriter::DefineBinaryProperty(const AnsiString& name, const std::function<void(TStream&)>&,
                                   const std::function<void(TStream&)>& write, bool hasData) {
    if (!hasData || !write) return;
    WritePropertyName(name);
    TMemoryStream bytes;
    write(bytes);
    WriteBinary(bytes.Bytes());
}

void TWriter::DefineIntegerProperty(const AnsiString& name, const std::function<void(int)>&, int value, bool hasData) {
    if (!hasData) return;
    WritePropertyName(name);
    WriteInteger(value);
}

void TWriter::DefineStringListProperty(const AnsiString& name, const std::function<void(std::vector<AnsiString>)>&,
                                       const std::function<std::vector<AnsiString>()>& get, bool hasData) {
    if (!hasData) return;
    WritePropertyName(name);
    WriteListBegin();
    for (const AnsiString& line : get()) WriteString(line);
    WriteListEnd();
}

}  // namespace vyn
