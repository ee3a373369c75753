#pragma once

#include "database/Uvyndb.h"
#include "platform/access/ado.h"

namespace vyn {

// A database behind a TADOConnection: which dataset serves which purpose, with which lock and cursor, and how a detail
// is linked to its master. What is misused raises a plain Exception; errors of the connection and of the engine pass
// unchanged. Main thread only.
class TDataBaseVynADO : public TDataBaseVyn {
    VYN_OBJECT
  public:
    explicit TDataBaseVynADO(TComponent* owner);
    ~TDataBaseVynADO() override;

    // Not owned; forgotten when it goes.
    TADOConnection* ADOConnection() const { return connection_; }
    void SetADOConnection(TADOConnection* value);
    // Raises "ADO Connection not assigned".
    void CheckDB() const;

    // A query: read-only, or with optimistic locks and a keyset; its cursor is on the client.
    TDataSet* DoGetTSQLDataSet(const AnsiString& SQL, TComponent* owner, bool readOnly) override;
    TDataSet* DoGetTDataSet(const AnsiString& tableName, TComponent* owner, bool readOnly) override;
    // Other than queries raise "DataSet <> TADOQuery to execute".
    void DoExecuteSQL(TDataSet* dataSet) override;
    void DoStartTransaction() override;
    void DoCommitTransaction() override;
    void DoRollbackTransaction() override;
    // Other than queries raise "DataSet is not a TADOQuery", other than tables "DataSet is not a TADOTable". A
    // statement that is set has the colons of its times doubled, also when that was done already.
    void SetSQLToDataSet(const AnsiString& SQL, TDataSet* dataSet) override;
    void GetSQLFromDataSet(TDataSet* dataSet, AnsiString& SQL) override;
    void SetTableToDataSet(const AnsiString& tableName, TDataSet* dataSet) override;
    void GetTableFromDataSet(TDataSet* dataSet, AnsiString& tableName) override;
    // Pattern and flag choose nothing.
    void GetTableNames(const AnsiString& pattern, bool flag, bool systemTables, TStrings* list) override;
    void GetStoredProcNames(TStrings* list) override;
    // None: parameters are reached through the dataset itself.
    TCollection* GetTDataSetParams(TDataSet* dataSet) override;
    // Of a query, the parameter named masterFields (made when it is not there) takes type and value of the master's
    // field of that name; without such a field it has neither. Other datasets than queries and tables are left alone.
    void AssignDataSourceToDataSet(TDataSet* dataSet, TDataSource* source, const AnsiString& masterFields,
                                   const AnsiString& indexFieldNames) override;
    // A setting of queries and tables alike; datasets of other kinds have none, and never look for parameters.
    void AllowParamCheck(TDataSet* dataSet, bool value) override;
    bool DataSetAllowParamCheck(TDataSet* dataSet) override;

    void Notification(TComponent* component, TOperation operation) override;

  private:
    TADOConnection* connection_ = nullptr;
};

// A connection to a desktop database file, not opened; its owner frees it.
TADOConnection* CreateADOConnection(TComponent* owner, const AnsiString& fileName);

// The unit's start-up and shut-down: the dataset classes in the class registry. Counted: the first start-up and the
// last shut-down do it.
void InitializeDb_ado();
void FinalizeDb_ado();

}  // namespace vyn
