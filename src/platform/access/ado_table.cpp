#include <algorithm>

#include "platform/access/ado.h"
#include "platform/text/compare.h"

namespace vyn {

namespace ado_table_detail {

std::vector<AnsiString> SplitNames(const AnsiString& names) {
    std::vector<AnsiString> parts;
    for (size_t at = 0; at <= names.size();) {
        const size_t end = std::min(names.find(';', at), names.size());
        const AnsiString name = Trim(names.substr(at, end - at));
        if (!name.empty()) parts.push_back(name);
        at = end + 1;
    }
    return parts;
}

}  // namespace ado_table_detail

const ClassInfo& TADOTable::StaticClass() {
    static const ClassInfo info =
        DefineClass<TADOTable, TCustomADODataSet>("TADOTable")
            .Published("CommandTimeout", &TADOTable::CommandTimeout, &TADOTable::CommandTimeout)
            .Default(30)
            .Published("EnableBCD", &TADOTable::EnableBCD, &TADOTable::EnableBCD)
            .Default(true)
            .Published("IndexFieldNames", &TADOTable::IndexFieldNames, &TADOTable::SetIndexFieldNames)
            .Published("IndexName", &TADOTable::IndexName, &TADOTable::SetIndexName)
            .Published("MasterFields", &TADOTable::MasterFields, &TADOTable::SetMasterFields)
            .Published("MasterSource", &TADOTable::MasterSource, &TADOTable::SetMasterSource)
            .Published("ReadOnly", &TADOTable::ReadOnly, &TADOTable::SetReadOnly)
            .Default(false)
            .Published("TableDirect", &TADOTable::TableDirect, &TADOTable::TableDirect)
            .Default(false)
            .Published("TableName", &TADOTable::TableName, &TADOTable::SetTableName);
    return info;
}

TADOTable::~TADOTable() { BeginDestruction(); }

void TADOTable::SetTableName(const AnsiString& value) {
    if (value == tableName_) return;
    CheckInactive();
    tableName_ = value;
}

void TADOTable::SetReadOnly(bool value) {
    if (value == readOnly_) return;
    CheckInactive();
    readOnly_ = value;
}

void TADOTable::ChangeResult(AnsiString& member, const AnsiString& value) {
    if (value == member) return;
    if (!Active()) {
        member = value;
        return;
    }
    CheckBrowseMode();
    member = value;
    Requery();
}

void TADOTable::SetIndexFieldNames(const AnsiString& value) {
    // An order is said in one way or the other.
    if (!value.empty()) indexName_.clear();
    ChangeResult(indexFieldNames_, value);
}

void TADOTable::SetIndexName(const AnsiString& value) {
    if (!value.empty()) indexFieldNames_.clear();
    ChangeResult(indexName_, value);
}

void TADOTable::SetMasterFields(const AnsiString& value) { ChangeResult(masterFields_, value); }

std::vector<TADOTable::Pair> TADOTable::Links() const {
    std::vector<Pair> links;
    const TDataSet* master = Master();
    if (!master) return links;
    const auto masterNames = ado_table_detail::SplitNames(masterFields_);
    auto detailNames = ado_table_detail::SplitNames(indexFieldNames_);
    // Without fields of its own the detail has the same names as the master.
    if (detailNames.empty()) detailNames = masterNames;
    for (size_t i = 0; i < std::min(masterNames.size(), detailNames.size()); ++i)
        links.push_back({detailNames[i], master->FieldByName(masterNames[i])});
    return links;
}

std::vector<AnsiString> TADOTable::OrderFields() {
    if (indexName_.empty()) {
        std::vector<AnsiString> names = ado_table_detail::SplitNames(indexFieldNames_);
        if (names.empty() && !RequireConnection().Dialect().KeepsOrder)
            names = RequireConnection().KeyColumns(tableName_);
        return names;
    }
    std::vector<AnsiString> columns = RequireConnection().IndexColumns(tableName_, indexName_);
    if (columns.empty()) DatabaseError("Index '" + indexName_ + "' not found");
    return columns;
}

AnsiString TADOTable::CommandText() {
    if (Trim(tableName_).empty()) DatabaseError("Missing TableName property");
    const EngineDialect& dialect = RequireConnection().Dialect();
    AnsiString conditions, order;
    for (const Pair& pair : Links())
        // Plainly equal where it can be: engines find that by an index.
        conditions += (conditions.empty() ? " WHERE " : " AND ") + dialect.QuotedName(pair.detail) +
                      (pair.master->IsNull() ? dialect.SameValue : AnsiString(" = ")) + "?";
    for (const AnsiString& name : OrderFields())
        order += (order.empty() ? " ORDER BY " : ", ") + dialect.QuotedName(name);
    return "SELECT * FROM " + dialect.QuotedName(tableName_) + conditions + order;
}

std::vector<ProviderValue> TADOTable::ParameterValues(const EngineSql&, int) {
    std::vector<ProviderValue> values;
    for (const Pair& pair : Links()) {
        const TFieldType type = pair.master->DataType();
        const bool isText = ColumnKindOf(type) == ColumnKind::Text && !pair.master->IsNull();
        // Texts go as they are stored.
        values.push_back(
            {type, isText ? Cell::Bytes(std::string(pair.master->RawBytes())) : CellOf(pair.master->Value(), type)});
    }
    shownFor_ = values;
    return values;
}

void TADOTable::MasterChanged() {
    const std::vector<ProviderValue> before = shownFor_;
    const std::vector<ProviderValue> now = ParameterValues({}, 0);
    if (std::equal(before.begin(), before.end(), now.begin(), now.end(),
                   [](const ProviderValue& a, const ProviderValue& b) { return a.Value == b.Value; }))
        return;
    CheckBrowseMode();
    Requery();
}

void TADOTable::InternalNewRecord() {
    for (const Pair& pair : Links()) {
        TField* field = FindField(pair.detail);
        if (field && field->CanModify() && !pair.master->IsNull()) field->SetValue(pair.master->Value());
    }
}

AnsiString TADOTable::ReasonNotToModify() const {
    return readOnly_ ? TDataSet::ReasonNotToModify() : TCustomADODataSet::ReasonNotToModify();
}

}  // namespace vyn
