#include "registry/walk.h"

#include <algorithm>

#include "platform/controls/data_modules.h"
#include "platform/objects/collection.h"
#include "platform/streams/writer.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn::registry {

namespace {

// Sets the value and tells whether it reads back.
template <class Value, class Get, class Set>
bool Takes(const Value& value, Get get, Set set) {
    try {
        set(value);
        return get() == value;
    } catch (const Exception&) {
        return false;
    }
}

std::vector<int64_t> Candidates(const PropertyInfo& property, int64_t now) {
    std::vector<int64_t> values;
    switch (property.Kind) {
        case PropertyKind::Enumeration:
            for (int64_t value = 0; value < property.Enum->Count(); ++value) values.push_back(value);
            break;
        case PropertyKind::Set:
            for (int element = 0; element < property.Enum->Count(); ++element)
                values.push_back(now ^ (int64_t{1} << element));
            break;
        case PropertyKind::Character:
            values = {'*', '#', 'x'};
            break;
        default:
            if (property.Integer)
                for (const auto& named : property.Integer->Names()) values.push_back(named.second);
            for (int64_t other : {now + 1, now - 1, now + 10, int64_t{50}, int64_t{2}, int64_t{1}, int64_t{0}})
                values.push_back(other);
    }
    values.erase(std::remove(values.begin(), values.end(), now), values.end());
    return values;
}

}  // namespace

std::vector<TClass> ComponentClasses() {
    std::vector<TClass> classes = LinkedClasses();
    const std::vector<TClass> registered = RegisteredClasses();
    classes.insert(classes.end(), registered.begin(), registered.end());
    std::sort(classes.begin(), classes.end(), [](TClass a, TClass b) { return a->Name() < b->Name(); });
    classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
    classes.erase(std::remove_if(classes.begin(), classes.end(),
                                 [](TClass each) {
                                     return !each->CanCreate() || !each->InheritsFrom(&TComponent::StaticClass());
                                 }),
                  classes.end());
    return classes;
}

std::vector<Published> PropertiesOf(TPersistent& instance, const AnsiString& prefix, bool stored) {
    std::vector<Published> list;
    for (const PropertyInfo& property : instance.GetClassInfo().Properties()) {
        const bool mayBeStored = stored && property.IsStored(instance);
        list.push_back({&instance, &property, prefix + property.Name, mayBeStored});
        if (property.Kind != PropertyKind::Class) continue;
        TPersistent* part = property->GetObject(instance);
        if (!part || ObjectCast<TComponent>(part) || ObjectCast<TCollection>(part)) continue;
        for (Published& inner : PropertiesOf(*part, prefix + property.Name + ".", mayBeStored))
            list.push_back(std::move(inner));
    }
    return list;
}

std::vector<AnsiString> SettablePaths(TClass classInfo) {
    OnForm place(classInfo);
    std::vector<AnsiString> paths;
    for (const Published& published : PropertiesOf(place.Component()))
        if (!published.Property->ReadOnly && IsPlain(*published.Property)) paths.push_back(published.Path);
    return paths;
}

Published PropertyAt(TPersistent& instance, const AnsiString& path) {
    for (const Published& published : PropertiesOf(instance))
        if (published.Path == path) return published;
    throw EPropertyError("There is no property " + path);
}

bool IsPlain(const PropertyInfo& property) {
    switch (property.Kind) {
        case PropertyKind::Integer:
        case PropertyKind::Int64:
        case PropertyKind::Character:
        case PropertyKind::Enumeration:
        case PropertyKind::Set:
        case PropertyKind::Float:
        case PropertyKind::String:
        case PropertyKind::WideText:
            return true;
        case PropertyKind::Variant:
        case PropertyKind::Class:
        case PropertyKind::Method:
            return false;
    }
    return false;
}

AnsiString ValueText(const Published& published) {
    const PropertyInfo& property = *published.Property;
    const TPersistent& instance = *published.Instance;
    switch (property.Kind) {
        case PropertyKind::Float:
            return std::to_string(property->GetFloat(instance));
        case PropertyKind::String:
            return property->GetString(instance);
        case PropertyKind::WideText: {
            AnsiString text;
            for (char16_t letter : property->GetWideString(instance)) text += static_cast<char>(letter);
            return text;
        }
        case PropertyKind::Variant:
            return property->GetVariant(instance).IsEmpty() ? "" : "a value";
        case PropertyKind::Class:
            return property->GetObject(instance) ? "an object" : "";
        case PropertyKind::Method:
            return property->GetEvent(instance).HandlerName();
        default:
            return IntToStr(property->GetOrdinal(instance));
    }
}

bool SetAnother(const Published& published) {
    const PropertyInfo& property = *published.Property;
    TPersistent& instance = *published.Instance;
    const auto any = [](const auto& values, auto get, auto set) {
        return std::any_of(values.begin(), values.end(), [&](const auto& value) { return Takes(value, get, set); });
    };
    switch (property.Kind) {
        case PropertyKind::Float: {
            const long double now = property->GetFloat(instance);
            return any(
                std::vector<long double>{now + 1.5L, now + 1, 0.5L, 40000},
                [&] { return property->GetFloat(instance); },
                [&](long double value) { property->SetFloat(instance, value); });
        }
        case PropertyKind::String:
            return any(
                std::vector<AnsiString>{property->GetString(instance) + "Altre", "Altre"},
                [&] { return property->GetString(instance); },
                [&](const AnsiString& value) { property->SetString(instance, value); });
        case PropertyKind::WideText:
            return Takes(
                WideString(u"Altre"), [&] { return property->GetWideString(instance); },
                [&](const WideString& value) { property->SetWideString(instance, value); });
        default:
            return any(
                Candidates(property, property->GetOrdinal(instance)), [&] { return property->GetOrdinal(instance); },
                [&](int64_t value) { property->SetOrdinal(instance, value); });
    }
}

OnForm::OnForm(TClass classInfo) {
    const bool isRoot =
        classInfo->InheritsFrom(&TCustomForm::StaticClass()) || classInfo->InheritsFrom(&TDataModule::StaticClass());
    if (!isRoot) {
        form_ = std::make_unique<TForm>(nullptr);
        form_->SetName("Formulari");
        component_ = static_cast<TComponent*>(classInfo->Create(form_.get()));
        component_->SetParentComponent(form_.get());
    } else {
        component_ = static_cast<TComponent*>(classInfo->Create(nullptr));
    }
    component_->SetName("Peca");
}

OnForm::~OnForm() {
    if (!form_) delete component_;
}

AnsiString Written(TComponent& root) {
    TMemoryStream stream;
    WriteComponentToStream(stream, root);
    return AnsiString(stream.Bytes());
}

}  // namespace vyn::registry
