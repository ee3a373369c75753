#include "database/Udb_ado.h"

#include "database/sql_lines.h"
#include "persistence/Uvynclss.h"

namespace vyn {

namespace db_ado_detail {

TADOQuery& RequireQuery(TDataSet* dataSet, const char* otherwise = "DataSet is not a TADOQuery") {
    if (auto* query = ObjectCast<TADOQuery>(dataSet)) return *query;
    throw Exception(otherwise);
}

TADOTable& RequireTable(TDataSet* dataSet) {
    if (auto* table = ObjectCast<TADOTable>(dataSet)) return *table;
    throw Exception("DataSet is not a TADOTable");
}

int& Starts() {
    static int starts = 0;
    return starts;
}

TClass DataSetClasses(int index) { return index == 0 ? &TADOQuery::StaticClass() : &TADOTable::StaticClass(); }
constexpr int kDataSetClasses = 2;

}  // namespace db_ado_detail

const ClassInfo& TDataBaseVynADO::StaticClass() {
    static const ClassInfo info =
        DefineClass<TDataBaseVynADO, TDataBaseVyn>("TDataBaseVynADO")
            .Published("ADOConnection", &TDataBaseVynADO::ADOConnection, &TDataBaseVynADO::SetADOConnection);
    return info;
}

TDataBaseVynADO::TDataBaseVynADO(TComponent* owner) : TDataBaseVyn(owner) { IsBDEBased = false; }

TDataBaseVynADO::~TDataBaseVynADO() { BeginDestruction(); }

void TDataBaseVynADO::SetADOConnection(TADOConnection* value) {
    connection_ = value;
    if (value) value->FreeNotification(this);
}

void TDataBaseVynADO::Notification(TComponent* component, TOperation operation) {
    TDataBaseVyn::Notification(component, operation);
    if (operation == opRemove && component == connection_) connection_ = nullptr;
}

void TDataBaseVynADO::CheckDB() const {
    if (!connection_) throw Exception("ADO Connection not assigned");
}

TDataSet* TDataBaseVynADO::DoGetTSQLDataSet(const AnsiString& SQL, TComponent* owner, bool readOnly) {
    CheckDB();
    auto* query = new TADOQuery(owner);
    query->SetConnection(connection_);
    AssignSqlLines(*query->SQL(), SQL, SQLStringSeparator);
    query->SetCursorLocation(clUseClient);
    query->SetLockType(readOnly ? ltReadOnly : ltOptimistic);
    if (!readOnly) query->SetCursorType(ctKeyset);
    return query;
}

TDataSet* TDataBaseVynADO::DoGetTDataSet(const AnsiString& tableName, TComponent* owner, bool readOnly) {
    CheckDB();
    auto* table = new TADOTable(owner);
    table->SetConnection(connection_);
    table->SetTableName(tableName);
    table->SetReadOnly(readOnly);
    table->SetLockType(readOnly ? ltReadOnly : ltOptimistic);
    table->SetCursorLocation(clUseClient);
    return table;
}

void TDataBaseVynADO::DoExecuteSQL(TDataSet* dataSet) {
    CheckDB();
    db_ado_detail::RequireQuery(dataSet, "DataSet <> TADOQuery to execute").ExecSQL();
}

void TDataBaseVynADO::DoStartTransaction() {
    CheckDB();
    connection_->BeginTrans();
}

void TDataBaseVynADO::DoCommitTransaction() {
    CheckDB();
    connection_->CommitTrans();
}

void TDataBaseVynADO::DoRollbackTransaction() {
    CheckDB();
    connection_->RollbackTrans();
}

void TDataBaseVynADO::SetSQLToDataSet(const AnsiString& SQL, TDataSet* dataSet) {
    CheckDB();
    const AnsiString statement = SQLForDataSet(dataSet, SQL);
    AssignSqlLines(*db_ado_detail::RequireQuery(dataSet).SQL(), statement, SQLStringSeparator);
}

void TDataBaseVynADO::GetSQLFromDataSet(TDataSet* dataSet, AnsiString& SQL) {
    SQL = db_ado_detail::RequireQuery(dataSet).SQL()->Text();
}

void TDataBaseVynADO::SetTableToDataSet(const AnsiString& tableName, TDataSet* dataSet) {
    CheckDB();
    db_ado_detail::RequireTable(dataSet).SetTableName(tableName);
}

void TDataBaseVynADO::GetTableFromDataSet(TDataSet* dataSet, AnsiString& tableName) {
    CheckDB();
    tableName = db_ado_detail::RequireTable(dataSet).TableName();
}

void TDataBaseVynADO::GetTableNames(const AnsiString&, bool, bool systemTables, TStrings* list) {
    CheckDB();
    connection_->GetTableNames(*list, systemTables);
}

void TDataBaseVynADO::GetStoredProcNames(TStrings* list) {
    CheckDB();
    connection_->GetProcedureNames(*list);
}

TCollection* TDataBaseVynADO::GetTDataSetParams(TDataSet*) { return nullptr; }

void TDataBaseVynADO::AssignDataSourceToDataSet(TDataSet* dataSet, TDataSource* source, const AnsiString& masterFields,
                                                const AnsiString& indexFieldNames) {
    CheckDB();
    if (auto* table = ObjectCast<TADOTable>(dataSet)) {
        // The fields first: an open table is read again with each.
        table->SetMasterSource(nullptr);
        table->SetIndexFieldNames(indexFieldNames);
        table->SetMasterFields(masterFields);
        table->SetMasterSource(source);
        return;
    }
    auto* query = ObjectCast<TADOQuery>(dataSet);
    if (!query) return;
    query->SetDataSource(source);
    TParameter* parameter = query->Parameters()->FindParam(masterFields);
    if (!parameter) {
        parameter = query->Parameters()->AddParameter();
        parameter->Name = masterFields;
    }
    const TDataSet* master = source ? source->DataSet() : nullptr;
    const TField* field = master ? master->FindField(masterFields) : nullptr;
    if (!field) return;
    parameter->DataType = field->DataType();
    if (master->Active()) parameter->SetValue(field->Value());
}

void TDataBaseVynADO::AllowParamCheck(TDataSet* dataSet, bool value) {
    if (auto* data = ObjectCast<TCustomADODataSet>(dataSet)) data->SetParamCheck(value);
}

bool TDataBaseVynADO::DataSetAllowParamCheck(TDataSet* dataSet) {
    const auto* data = ObjectCast<TCustomADODataSet>(dataSet);
    return data && data->ParamCheck();
}

TADOConnection* CreateADOConnection(TComponent* owner, const AnsiString& fileName) {
    auto* connection = new TADOConnection(owner);
    connection->SetConnectionString("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + fileName);
    return connection;
}

void InitializeDb_ado() {
    if (db_ado_detail::Starts()++ > 0) return;
    for (int i = 0; i < db_ado_detail::kDataSetClasses; ++i)
        RegistraClasse(TTipusClasse::DataAccess, db_ado_detail::DataSetClasses(i), false, TNotifyEvent());
}

void FinalizeDb_ado() {
    if (db_ado_detail::Starts() == 0 || --db_ado_detail::Starts() > 0) return;
    TVynClassesRegistrades* registry = VynRegisteredClasses();
    if (!registry) return;
    for (int i = 0; i < db_ado_detail::kDataSetClasses; ++i) {
        const int index = registry->IndexOfClasse(db_ado_detail::DataSetClasses(i));
        if (index >= 0) registry->DelClasse(index);
    }
}

}  // namespace vyn
