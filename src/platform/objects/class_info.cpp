#include "platform/objects/class_info.h"

#include "platform/objects/persistent.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace {

[[noreturn]] void RaiseWrongKind(const char* wanted) {
    throw EPropertyError(AnsiString("The property is not of the kind ") + wanted);
}

}  // namespace

int64_t PropertyAccessor::GetOrdinal(const TObject&) const { RaiseWrongKind("integer"); }
void PropertyAccessor::SetOrdinal(TObject&, int64_t) const { RaiseWrongKind("integer"); }
long double PropertyAccessor::GetFloat(const TObject&) const { RaiseWrongKind("real number"); }
void PropertyAccessor::SetFloat(TObject&, long double) const { RaiseWrongKind("real number"); }
AnsiString PropertyAccessor::GetString(const TObject&) const { RaiseWrongKind("string"); }
void PropertyAccessor::SetString(TObject&, AnsiString) const { RaiseWrongKind("string"); }
WideString PropertyAccessor::GetWideString(const TObject&) const { RaiseWrongKind("wide string"); }
void PropertyAccessor::SetWideString(TObject&, WideString) const { RaiseWrongKind("wide string"); }
Variant PropertyAccessor::GetVariant(const TObject&) const { RaiseWrongKind("variant"); }
void PropertyAccessor::SetVariant(TObject&, Variant) const { RaiseWrongKind("variant"); }
TPersistent* PropertyAccessor::GetObject(const TObject&) const { RaiseWrongKind("object"); }
void PropertyAccessor::SetObject(TObject&, TPersistent*) const { RaiseWrongKind("object that can be set"); }
const EventBase& PropertyAccessor::GetEvent(const TObject&) const { RaiseWrongKind("event"); }
void PropertyAccessor::ClearEvent(TObject&) const { RaiseWrongKind("event"); }
void PropertyAccessor::BindEvent(TObject&, const MethodInfo&, TObject&) const { RaiseWrongKind("event"); }
void PropertyAccessor::BindEventSenderOnly(TObject&, AnsiString, std::function<void(TObject*)>) const {
    RaiseWrongKind("event");
}
void PropertyAccessor::CopyEvent(TObject&, const EventBase&) const { RaiseWrongKind("event"); }

namespace property_detail {

const TObject* AsObject(const TPersistent* persistent) { return persistent; }

void RaiseReadOnlyProperty(const TObject& object) {
    throw EPropertyError("A property of " + object.ClassName() + " is read-only");
}

void RequirePropertyClass(const TObject& value, const ClassInfo& wanted) {
    if (!value.InheritsFrom(&wanted))
        throw EInvalidCast("Invalid class typecast: a " + value.ClassName() + " is no " + wanted.Name());
}

void RequireMethodSignature(const MethodInfo& method, const std::type_info& wanted) {
    if (method.Signature != std::type_index(wanted))
        throw EPropertyError("The method " + method.Name + " does not take this event's arguments");
}

}  // namespace property_detail

const AnsiString& EventBase::HandlerName() const {
    static const AnsiString none;
    return handler_ ? handler_->Name : none;
}

bool EventBase::SameHandler(const EventBase& other) const {
    if (handler_ == other.handler_) return true;
    if (!handler_ || !other.handler_) return false;
    return !HandlerName().empty() && HandlerName() == other.HandlerName();
}

ClassInfo::ClassInfo(AnsiString name, const ClassInfo* parent, Factory factory, std::vector<PropertyInfo> ownProperties,
                     std::vector<MethodInfo> ownMethods)
    : name_(std::move(name)), parent_(parent), factory_(factory) {
    if (parent) {
        ancestors_ = parent->ancestors_;
        ancestors_.push_back(parent);
        properties_ = parent->properties_;
        propertyIndex_ = parent->propertyIndex_;
        methods_ = parent->methods_;
        methodIndex_ = parent->methodIndex_;
    }
    for (PropertyInfo& property : ownProperties) {
        const uint32_t at = propertyIndex_.Find(property.Name);
        if (at != NameIndex::NotFound) {
            properties_[at] = std::move(property);
        } else {
            propertyIndex_.Insert(property.Name, static_cast<uint32_t>(properties_.size()));
            properties_.push_back(std::move(property));
        }
    }
    for (MethodInfo& method : ownMethods) {
        const uint32_t at = methodIndex_.Find(method.Name);
        if (at != NameIndex::NotFound) {
            methods_[at] = std::move(method);
        } else {
            methodIndex_.Insert(method.Name, static_cast<uint32_t>(methods_.size()));
            methods_.push_back(std::move(method));
        }
    }
}

TObject* ClassInfo::Create(TComponent* owner) const {
    if (!factory_) throw EAbstractError("The class " + name_ + " cannot be created");
    return factory_(owner);
}

const PropertyInfo* ClassInfo::FindProperty(std::string_view name) const {
    const uint32_t at = propertyIndex_.Find(name);
    return at == NameIndex::NotFound ? nullptr : &properties_[at];
}

const MethodInfo* ClassInfo::FindMethod(std::string_view name) const {
    const uint32_t at = methodIndex_.Find(name);
    return at == NameIndex::NotFound ? nullptr : &methods_[at];
}

}  // namespace vyn
