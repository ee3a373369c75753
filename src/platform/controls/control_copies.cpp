#include "platform/controls/control_copies.h"

#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "platform/objects/strings.h"
#include "platform/text/compare.h"

namespace vyn {

namespace control_copy_detail {

// Places among siblings are their own.
bool IsOwn(const PropertyInfo& property) {
    return property.Kind == PropertyKind::Method || SameText(property.Name, "Name") ||
           SameText(property.Name, "TabOrder");
}

// Whether parts that change while a program runs are alike; all others are as they were made.
bool SameParts(const TPersistent& a, const TPersistent& b) {
    if (const auto* font = ObjectCast<TFont>(&a)) {
        const auto* other = ObjectCast<TFont>(&b);
        return other && font->Name() == other->Name() && font->Height() == other->Height() &&
               font->Color() == other->Color() && font->Style() == other->Style();
    }
    if (const auto* lines = ObjectCast<TStrings>(&a)) {
        const auto* other = ObjectCast<TStrings>(&b);
        return other && const_cast<TStrings*>(lines)->Text() == const_cast<TStrings*>(other)->Text();
    }
    return true;
}

enum class Parts { All, Changed };

void CopyProperty(const PropertyInfo& property, TControl& from, TControl& to, Parts parts) {
    switch (property.Kind) {
        case PropertyKind::Integer:
        case PropertyKind::Int64:
        case PropertyKind::Character:
        case PropertyKind::Enumeration:
        case PropertyKind::Set:
            if (const int64_t value = property->GetOrdinal(from); value != property->GetOrdinal(to))
                property->SetOrdinal(to, value);
            break;
        case PropertyKind::Float:
            if (const long double value = property->GetFloat(from); value != property->GetFloat(to))
                property->SetFloat(to, value);
            break;
        case PropertyKind::String:
            if (AnsiString value = property->GetString(from); value != property->GetString(to))
                property->SetString(to, std::move(value));
            break;
        case PropertyKind::WideText:
            if (WideString value = property->GetWideString(from); value != property->GetWideString(to))
                property->SetWideString(to, std::move(value));
            break;
        case PropertyKind::Variant:
            if (Variant value = property->GetVariant(from); value != property->GetVariant(to))
                property->SetVariant(to, std::move(value));
            break;
        case PropertyKind::Class: {
            TPersistent* value = property->GetObject(from);
            TPersistent* held = property->GetObject(to);
            if (!value || ObjectCast<TComponent>(value)) {
                if (value != held) property->SetObject(to, value);
            } else if (held && (parts == Parts::All || !SameParts(*value, *held))) {
                held->Assign(value);
            }
            break;
        }
        case PropertyKind::Method:
            break;
    }
}

}  // namespace control_copy_detail

void ControlCopies::Make(TControl& original, TWinControl& parent) {
    using namespace control_copy_detail;
    const ClassInfo& info = original.GetClassInfo();
    if (!info.CanCreate() || ObjectCast<TCustomForm>(&original)) return;
    auto* copy = static_cast<TControl*>(info.Create(nullptr));
    copy->SetParent(&parent);
    pairs_.push_back({original.TComponent::Handle(), copy});
    for (const PropertyInfo& property : info.Properties())
        if (!IsOwn(property) && !property.ReadOnly && property.IsStored(original))
            CopyProperty(property, original, *copy, Parts::All);
    // What a control makes for itself its copy has made too; the others stand in it by the form.
    auto* window = ObjectCast<TWinControl>(&original);
    if (!window || !original.Owner()) return;
    window->GetChildren(
        [&](TComponent* child) {
            if (auto* control = ObjectCast<TControl>(child)) Make(*control, static_cast<TWinControl&>(*copy));
        },
        original.Owner());
}

bool ControlCopies::AllThere() const {
    for (const Pair& pair : pairs_)
        if (!ComponentFromHandle(pair.original)) return false;
    return true;
}

void ControlCopies::Update(TDataSource* source, TDataSource* copySource) {
    using namespace control_copy_detail;
    if (!valid_ || source != source_ || !AllThere()) {
        while (into_.ControlCount() > 0) delete into_.Controls(into_.ControlCount() - 1);
        pairs_.clear();
        for (int i = 0; i < from_.ControlCount(); ++i) Make(*from_.Controls(i), into_);
        valid_ = true;
        source_ = source;
    }
    for (const Pair& pair : pairs_) {
        auto& original = static_cast<TControl&>(*ComponentFromHandle(pair.original));
        for (const PropertyInfo& property : original.GetClassInfo().Properties()) {
            if (IsOwn(property) || property.ReadOnly || !property.IsStored(original)) continue;
            if (property.Kind == PropertyKind::Class && property->GetObject(original) == source && source) {
                if (auto* plain = dynamic_cast<CopyOverPlainSource*>(pair.copy))
                    plain->TakeCopySource(copySource);
                else if (property->GetObject(*pair.copy) != copySource)
                    property->SetObject(*pair.copy, copySource);
            } else {
                CopyProperty(property, original, *pair.copy, Parts::Changed);
            }
        }
    }
}

}  // namespace vyn
