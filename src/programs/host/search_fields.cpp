#include "programs/host/search_fields.h"

#include <algorithm>

#include "events/Ucampsbuscar.h"
#include "platform/objects/class_info.h"
#include "platform/text/compare.h"

namespace vyn {

namespace search_fields_detail {

// A published property of a component, of this kind; null when there is none.
const PropertyInfo* PropertyOf(const TComponent& component, const char* name, PropertyKind kind) {
    const PropertyInfo* property = component.ClassType()->FindProperty(name);
    return property && property->Kind == kind ? property : nullptr;
}

// Whether a control shows records of the dataset.
bool Shows(const TComponent& control, const TDataSet& data) {
    for (const char* name : {"DataSource", "VynDataSource"})
        if (const PropertyInfo* source = PropertyOf(control, name, PropertyKind::Class))
            if (const auto* shown = ObjectCast<TDataSource>((*source)->GetObject(control)))
                return shown->DataSet() == &data;
    return false;
}

const TField* FieldOf(const TComponent* component, const TDataSet& data) {
    if (!component) return nullptr;
    if (const auto* field = ObjectCast<TField>(component)) return field->DataSet() == &data ? field : nullptr;
    const PropertyInfo* name = PropertyOf(*component, "DataField", PropertyKind::String);
    return name && Shows(*component, data) ? data.FindField((*name)->GetString(*component)) : nullptr;
}

bool Has(const std::vector<AnsiString>& names, const AnsiString& name) {
    return std::any_of(names.begin(), names.end(), [&](const AnsiString& each) { return SameText(each, name); });
}

}  // namespace search_fields_detail

using namespace search_fields_detail;

std::vector<AnsiString> SearchFieldsOf(const TComponent& form, const TDataSet& data) {
    std::vector<AnsiString> names;
    for (int i = 0; i < form.ComponentCount(); ++i) {
        auto* list = ObjectCast<TCampsBuscar>(form.Components(i));
        for (int at = 0; list && at < list->Count(); ++at) {
            const TField* field = FieldOf(list->GetCampsBuscarComponent(at).Component, data);
            if (field && !Has(names, field->FieldName())) names.push_back(field->FieldName());
        }
    }
    return names;
}

void ShowFirst(TCustomDBGrid& grid, const std::vector<AnsiString>& fieldNames) {
    if (fieldNames.empty()) return;
    TDBGridColumns& columns = *grid.Columns();
    if (!grid.HasOwnColumns()) {
        std::vector<AnsiString> shown;
        for (const TColumn* column : grid.ShownColumns()) shown.push_back(column->FieldName());
        for (const AnsiString& name : shown) columns.Add()->SetFieldName(name);
    }
    for (size_t i = 0; i < fieldNames.size(); ++i) {
        TColumn* found = nullptr;
        for (int at = 0; at < columns.Count() && !found; ++at)
            if (SameText(columns.Items(at)->FieldName(), fieldNames[i])) found = columns.Items(at);
        if (!found) {
            found = columns.Add();
            found->SetFieldName(fieldNames[i]);
        }
        found->SetVisible(true);
        found->SetIndex(static_cast<int>(i));
    }
}

}  // namespace vyn
