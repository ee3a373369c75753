#pragma once

#include "platform/access/ado_connection.h"
#include "platform/access/parameters.h"
#include "platform/data/data_set.h"

namespace vyn {

class TableWriter;

enum class TCursorType { ctUnspecified, ctOpenForwardOnly, ctKeyset, ctDynamic, ctStatic };
using enum TCursorType;
const EnumType& TypeInfoOf(TypeTag<TCursorType>);

enum class TADOLockType { ltUnspecified, ltReadOnly, ltPessimistic, ltOptimistic, ltBatchOptimistic };
using enum TADOLockType;
const EnumType& TypeInfoOf(TypeTag<TADOLockType>);

enum class TExecuteOption { eoAsyncExecute, eoAsyncFetch, eoAsyncFetchNonBlocking, eoExecuteNoRecords };
using enum TExecuteOption;
using TExecuteOptions = Set<TExecuteOption>;
const EnumType& TypeInfoOf(TypeTag<TExecuteOption>);

enum class TMarshalOption { moMarshalAll, moMarshalModifiedOnly };
using enum TMarshalOption;
const EnumType& TypeInfoOf(TypeTag<TMarshalOption>);

// A dataset over a statement of a connection: its own ConnectionString, or a shared connection. Records of one table
// are written back through TableWriter; others are read-only and say why.
//
// Of a query over one large table that shows its primary key, only the records around those that are looked at are read
// and kept (TablePages), by the engine's indexes: it opens, goes to its end and finds records in a large table as in a
// small one. Others are read from the beginning on, as far as they are asked for, and kept.
class TCustomADODataSet : public TDataSet {
    VYN_OBJECT
  public:
    explicit TCustomADODataSet(TComponent* owner);
    ~TCustomADODataSet() override;

    TADOConnection* Connection() const { return connection_; }
    void SetConnection(TADOConnection* value);
    const AnsiString& ConnectionString() const { return connectionString_; }
    void SetConnectionString(const AnsiString& value);
    // ltReadOnly: nothing is written; ltPessimistic: a record is read anew when its editing begins.
    TADOLockType LockType() const { return lockType_; }
    void SetLockType(TADOLockType value);
    TCursorLocation CursorLocation() const { return cursorLocation_; }
    void SetCursorLocation(TCursorLocation value);
    // ctOpenForwardOnly and ctStatic read and keep everything, also of large tables.
    TCursorType CursorType() const { return cursorType_; }
    void SetCursorType(TCursorType value);
    // Whether parameters are looked for in the statement; without it colons are nothing special, and parameters go by
    // order to the marks "?". Tables have no statement of their own: they only keep the setting.
    bool ParamCheck() const { return paramCheck_; }
    void SetParamCheck(bool value);
    int32_t CacheSize = 1;
    int32_t CommandTimeout = 30;
    TExecuteOptions ExecuteOptions;
    TMarshalOption MarshalOptions = moMarshalAll;
    int32_t MaxRecords = 0;  // 0: all
    bool EnableBCD = true;
    bool Prepared = false;
    // Tables with about so many records, or more, are read in pages when they are opened.
    static constexpr int64_t kLargeTable = 20000;
    static int64_t PagedFrom;

    TDataSource* GetDataSource() const override;

  protected:
    class MasterLink;
    virtual AnsiString CommandText() = 0;
    virtual ParameterParsing Parsing() const { return paramCheck_ ? ParameterParsing::On : ParameterParsing::Off; }
    virtual void ParamCheckChanged() {}
    // The values of a statement's parameters, by its marks.
    virtual std::vector<ProviderValue> ParameterValues(const EngineSql& sql, int count) = 0;
    // The master moved, changed, opened or closed.
    virtual void MasterChanged() = 0;
    void SetMaster(TDataSource* value);
    // The master while it is open, or null.
    TDataSet* Master() const;
    ProviderConnection& RequireConnection();
    // Before anything is written.
    void FinishReading();

    std::vector<FieldDefinition> InternalOpen() override;
    std::vector<FieldDefinition> InternalReopen() override {
        // Some engines show a former state as long as a result is half read.
        statement_.reset();
        return InternalOpen();
    }
    bool IsOpenStill() const override { return writer_ != nullptr; }
    bool InternalFetch(RowStore& rows, int64_t count) override;
    std::unique_ptr<RowPages> InternalPages(const std::vector<SortPart>& order) override;
    void InternalClose() override;
    AnsiString ReasonNotToModify() const override;
    void InternalEdit(Record& record) override;
    void InternalInsert(Record& record) override;
    void InternalUpdate(const Record& original, Record& record) override;
    void InternalDelete(const Record& original) override;
    void Notification(TComponent* component, TOperation operation) override;

  private:
    friend class TADOConnection;
    TADOConnection* connection_ = nullptr;
    AnsiString connectionString_;
    std::unique_ptr<TADOConnection> ownConnection_;
    std::unique_ptr<ProviderStatement> statement_;
    // What it runs, and with which values.
    AnsiString engineSql_;
    std::vector<ProviderValue> engineValues_;
    std::vector<FieldDefinition> columns_;
    std::unique_ptr<TableWriter> writer_;
    std::unique_ptr<MasterLink> master_;
    TADOLockType lockType_ = ltOptimistic;
    TCursorLocation cursorLocation_ = clUseClient;
    TCursorType cursorType_ = ctKeyset;
    bool paramCheck_ = true;
};

// The rows of a SELECT statement. Its parameters (":name") take their values from Parameters, and from the fields of
// the same names of DataSource's dataset, whenever another record of that is current.
class TADOQuery : public TCustomADODataSet {
    VYN_OBJECT
  public:
    explicit TADOQuery(TComponent* owner);
    ~TADOQuery() override;

    TStrings* SQL() const { return const_cast<TStringList*>(&sql_); }
    void SetSQL(TStrings* value) { sql_.Assign(value); }
    TParameters* Parameters() const { return parameters_.get(); }
    void SetParameters(TParameters* value) { parameters_->Assign(value); }
    TDataSource* DataSource() const { return GetDataSource(); }
    void SetDataSource(TDataSource* value) { SetMaster(value); }
    // Runs a statement that gives no rows; gives the number of rows that changed.
    int64_t ExecSQL();
    int64_t RowsAffected() const { return rowsAffected_; }

    void Loaded() override;

  protected:
    AnsiString CommandText() override;
    void ParamCheckChanged() override { SqlChanged(); }
    std::vector<ProviderValue> ParameterValues(const EngineSql& sql, int count) override;
    void MasterChanged() override;

  private:
    void SqlChanged();
    // Whether a parameter has another value now.
    bool TakeMasterValues();

    TStringList sql_;
    std::unique_ptr<TParameters> parameters_;
    int64_t rowsAffected_ = 0;
};

// The records of a table; with a master, those whose IndexFieldNames are as the master's MasterFields.
class TADOTable : public TCustomADODataSet {
    VYN_OBJECT
  public:
    explicit TADOTable(TComponent* owner) : TCustomADODataSet(owner) {}
    ~TADOTable() override;

    const AnsiString& TableName() const { return tableName_; }
    void SetTableName(const AnsiString& value);
    // The order of the records: names of fields, separated by semicolons, or an index; without either that of their
    // making, or of the primary key where the engine keeps no order.
    const AnsiString& IndexFieldNames() const { return indexFieldNames_; }
    void SetIndexFieldNames(const AnsiString& value);
    const AnsiString& IndexName() const { return indexName_; }
    void SetIndexName(const AnsiString& value);
    const AnsiString& MasterFields() const { return masterFields_; }
    void SetMasterFields(const AnsiString& value);
    TDataSource* MasterSource() const { return GetDataSource(); }
    void SetMasterSource(TDataSource* value) { SetMaster(value); }
    bool ReadOnly() const { return readOnly_; }
    void SetReadOnly(bool value);
    bool TableDirect = false;

  protected:
    AnsiString CommandText() override;
    ParameterParsing Parsing() const override { return ParameterParsing::Off; }
    std::vector<ProviderValue> ParameterValues(const EngineSql& sql, int count) override;
    void MasterChanged() override;
    void InternalNewRecord() override;
    AnsiString ReasonNotToModify() const override;

  private:
    struct Pair {
        AnsiString detail;
        TField* master;
    };
    // How detail and master hang together; empty without an open master.
    std::vector<Pair> Links() const;
    std::vector<AnsiString> OrderFields();
    void ChangeResult(AnsiString& member, const AnsiString& value);

    AnsiString tableName_;
    AnsiString indexFieldNames_;
    AnsiString indexName_;
    AnsiString masterFields_;
    std::vector<ProviderValue> shownFor_;  // the master's values of the records that are there
    bool readOnly_ = false;
};

// Links the classes of this room.
void RegisterAccessClasses();

}  // namespace vyn
