#pragma once

#include "platform/access/provider.h"
#include "platform/data/data_set.h"
#include "platform/objects/strings.h"

namespace vyn {

class TCustomADODataSet;

// A connection to a database through a provider. Opened when it is first needed; closing it closes its datasets.
class TADOConnection : public TComponent {
    VYN_OBJECT
  public:
    explicit TADOConnection(TComponent* owner) : TComponent(owner) {}
    ~TADOConnection() override;

    const AnsiString& ConnectionString() const { return connectionString_; }
    // Raises EDatabaseError while connected.
    void SetConnectionString(const AnsiString& value);
    bool Connected() const { return connection_ != nullptr; }
    // While the form is being read, connecting waits until it is loaded.
    void SetConnected(bool value);
    void Open() { SetConnected(true); }
    void Close() { SetConnected(false); }
    bool LoginPrompt = true;

    // Runs statements that give no rows; gives the number of rows that changed. Connects when needed.
    int64_t Execute(const AnsiString& sql);
    void GetTableNames(TStrings& list);
    // The provider's connection, made when it is not there.
    ProviderConnection& Provider();

    TNotifyEvent BeforeConnect;
    TNotifyEvent AfterConnect;
    TNotifyEvent BeforeDisconnect;
    TNotifyEvent AfterDisconnect;

    void Loaded() override;

  private:
    friend class TCustomADODataSet;
    AnsiString connectionString_;
    std::unique_ptr<ProviderConnection> connection_;
    std::vector<TCustomADODataSet*> dataSets_;
    bool connectWhenLoaded_ = false;
};

// A dataset over a statement of a connection: its own ConnectionString, or a shared connection.
class TCustomADODataSet : public TDataSet {
    VYN_OBJECT
  public:
    explicit TCustomADODataSet(TComponent* owner) : TDataSet(owner) {}
    ~TCustomADODataSet() override;

    TADOConnection* Connection() const { return connection_; }
    void SetConnection(TADOConnection* value);
    const AnsiString& ConnectionString() const { return connectionString_; }
    void SetConnectionString(const AnsiString& value);

  protected:
    virtual AnsiString CommandText() = 0;
    virtual std::vector<Variant> ParameterValues() { return {}; }
    std::vector<FieldDefinition> InternalOpen() override;
    bool InternalFetch(RowStore& rows, int64_t count) override;
    void InternalClose() override;
    void Notification(TComponent* component, TOperation operation) override;
    ProviderConnection& RequireConnection();

  private:
    TADOConnection* connection_ = nullptr;
    AnsiString connectionString_;
    std::unique_ptr<TADOConnection> ownConnection_;
    std::unique_ptr<ProviderStatement> statement_;
};

// The rows of a SELECT statement.
class TADOQuery : public TCustomADODataSet {
    VYN_OBJECT
  public:
    explicit TADOQuery(TComponent* owner);
    ~TADOQuery() override;

    TStrings* SQL() const { return const_cast<TStringList*>(&sql_); }
    void SetSQL(TStrings* value) { sql_.Assign(value); }
    // Runs a statement that gives no rows; gives the number of rows that changed.
    int64_t ExecSQL();

  protected:
    AnsiString CommandText() override;

  private:
    TStringList sql_;
};

// All rows of a table.
class TADOTable : public TCustomADODataSet {
    VYN_OBJECT
  public:
    explicit TADOTable(TComponent* owner) : TCustomADODataSet(owner) {}
    ~TADOTable() override;

    const AnsiString& TableName() const { return tableName_; }
    void SetTableName(const AnsiString& value);

  protected:
    AnsiString CommandText() override;

  private:
    AnsiString tableName_;
};

// Links the classes of this room.
void RegisterAccessClasses();

}  // namespace vyn
