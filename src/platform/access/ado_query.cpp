#include "platform/access/ado.h"
#include "platform/text/compare.h"
#include "platform/text/windows1252.h"

namespace vyn {

const ClassInfo& TADOQuery::StaticClass() {
    static const ClassInfo info =
        DefineClass<TADOQuery, TCustomADODataSet>("TADOQuery")
            .Published("CommandTimeout", &TADOQuery::CommandTimeout, &TADOQuery::CommandTimeout)
            .Default(30)
            .Published("DataSource", &TADOQuery::DataSource, &TADOQuery::SetDataSource)
            .Published("EnableBCD", &TADOQuery::EnableBCD, &TADOQuery::EnableBCD)
            .Default(true)
            .Published("ParamCheck", &TADOQuery::ParamCheck, &TADOQuery::SetParamCheck)
            .Default(true)
            .Published("Parameters", &TADOQuery::Parameters, &TADOQuery::SetParameters)
            .Published("Prepared", &TADOQuery::Prepared, &TADOQuery::Prepared)
            .Default(false)
            .Published("SQL", &TADOQuery::SQL, &TADOQuery::SetSQL);
    return info;
}

TADOQuery::TADOQuery(TComponent* owner) : TCustomADODataSet(owner), parameters_(std::make_unique<TParameters>(this)) {
    // Another statement is another result.
    sql_.OnChanging = [this](TObject*) {
        if (!HasState(csLoading)) Close();
    };
    sql_.OnChange = [this](TObject*) { SqlChanged(); };
}

TADOQuery::~TADOQuery() { BeginDestruction(); }

void TADOQuery::SqlChanged() {
    // A form's stored parameters come before or after its statement.
    if (ParamCheck() && !HasState(csLoading)) parameters_->ParseSQL(sql_.Text());
}

void TADOQuery::Loaded() {
    if (ParamCheck()) parameters_->ParseSQL(sql_.Text());
    TCustomADODataSet::Loaded();
}

AnsiString TADOQuery::CommandText() {
    const AnsiString text = sql_.Text();
    if (Trim(text).empty()) DatabaseError("Missing SQL property");
    return text;
}

namespace ado_query_detail {

// A text that Windows-1252 cannot hold goes as it is stored.
Variant MasterValue(const TField& field) {
    if (field.DataType() != ftString || field.IsNull()) return field.Value();
    AnsiString text;
    size_t position = 0;
    return TryUtf8ToAnsi(field.RawBytes(), text, position) ? Variant(text) : Variant(Utf8ToWide(field.RawBytes()));
}

}  // namespace ado_query_detail

bool TADOQuery::TakeMasterValues() {
    const TDataSet* master = Master();
    if (!master) return false;
    bool changed = false;
    for (int i = 0; i < parameters_->Count(); ++i) {
        TParameter* parameter = parameters_->Items(i);
        const TField* field = master->FindField(parameter->Name);
        if (!field) continue;
        const Variant value = ado_query_detail::MasterValue(*field);
        changed = changed || parameter->DataType != field->DataType() || parameter->Value().Type() != value.Type() ||
                  !VarSameValue(parameter->Value(), value);
        parameter->DataType = field->DataType();
        parameter->SetValue(value);
    }
    return changed;
}

void TADOQuery::MasterChanged() {
    if (!TakeMasterValues()) return;
    CheckBrowseMode();
    Requery();
}

std::vector<ProviderValue> TADOQuery::ParameterValues(const EngineSql& sql, int count) {
    TakeMasterValues();
    const auto valueOf = [](const TParameter& parameter) {
        const Variant& value = parameter.Value();
        TFieldType type = parameter.DataType == ftUnknown ? FieldTypeOf(value) : parameter.DataType;
        if (type == ftString && value.Type() == varOleStr) type = ftWideString;
        return ProviderValue{type, CellOf(value, type)};
    };
    std::vector<ProviderValue> values;
    if (ParamCheck()) {
        for (const AnsiString& name : sql.ParameterNames) values.push_back(valueOf(*parameters_->ParamByName(name)));
        return values;
    }
    for (int i = 0; i < parameters_->Count() && i < count; ++i) values.push_back(valueOf(*parameters_->Items(i)));
    return values;
}

int64_t TADOQuery::ExecSQL() {
    Close();
    ProviderConnection& provider = RequireConnection();
    const EngineSql sql = TranslateSql(CommandText(), provider.Dialect(), Parsing());
    FinishReading();
    if (parameters_->Count() == 0) return rowsAffected_ = provider.Execute(sql.Text);
    const auto statement = provider.Prepare(sql.Text);
    statement->Bind(ParameterValues(sql, statement->ParameterCount()));
    return rowsAffected_ = statement->Execute();
}

}  // namespace vyn
