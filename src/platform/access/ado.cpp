#include "platform/access/ado.h"

#include <algorithm>

#include "platform/objects/class_table.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace access_detail {

struct RegisteredProvider {
    AnsiString name;
    ProviderFactory factory;
};

std::vector<RegisteredProvider>& Providers() {
    static std::vector<RegisteredProvider> providers;
    return providers;
}

// The provider of a connection string that names none.
constexpr char kDefaultProvider[] = "SQLite";

}  // namespace access_detail

void RegisterProvider(const AnsiString& name, ProviderFactory factory) {
    auto& providers = access_detail::Providers();
    std::erase_if(providers, [&](const auto& each) { return SameText(each.name, name); });
    providers.push_back({name, std::move(factory)});
}

std::unique_ptr<ProviderConnection> OpenProvider(const ConnectionString& settings) {
    const AnsiString wanted = settings.Value("Provider", access_detail::kDefaultProvider);
    AnsiString known;
    for (const auto& provider : access_detail::Providers()) {
        if (SameText(provider.name, wanted)) return provider.factory(settings);
        known += (known.empty() ? "" : ", ") + provider.name;
    }
    throw EDatabaseError("Provider=" + wanted + ": there is no such provider; there are: " + known);
}

const ClassInfo& TADOConnection::StaticClass() {
    static const ClassInfo info =
        DefineClass<TADOConnection, TComponent>("TADOConnection")
            .Published("Connected", &TADOConnection::Connected, &TADOConnection::SetConnected)
            .Default(false)
            .Published("ConnectionString", &TADOConnection::ConnectionString, &TADOConnection::SetConnectionString)
            .Published("LoginPrompt", &TADOConnection::LoginPrompt, &TADOConnection::LoginPrompt)
            .Default(true)
            .Event("AfterConnect", &TADOConnection::AfterConnect)
            .Event("BeforeConnect", &TADOConnection::BeforeConnect)
            .Event("AfterDisconnect", &TADOConnection::AfterDisconnect)
            .Event("BeforeDisconnect", &TADOConnection::BeforeDisconnect);
    return info;
}

TADOConnection::~TADOConnection() {
    BeginDestruction();
    SetConnected(false);
    while (!dataSets_.empty()) dataSets_.back()->SetConnection(nullptr);
}

void TADOConnection::SetConnectionString(const AnsiString& value) {
    if (value == connectionString_) return;
    if (Connected()) throw EDatabaseError("Cannot perform this operation on an open connection");
    connectionString_ = value;
}

void TADOConnection::SetConnected(bool value) {
    if (HasState(csLoading)) {
        connectWhenLoaded_ = value;
        return;
    }
    if (value == Connected()) return;
    if (value) {
        BeforeConnect(this);
        connection_ = OpenProvider(vyn::ConnectionString(connectionString_));
        AfterConnect(this);
        return;
    }
    BeforeDisconnect(this);
    for (TCustomADODataSet* dataSet : std::vector<TCustomADODataSet*>(dataSets_)) dataSet->Close();
    connection_.reset();
    AfterDisconnect(this);
}

void TADOConnection::Loaded() {
    TComponent::Loaded();
    if (connectWhenLoaded_) Open();
}

ProviderConnection& TADOConnection::Provider() {
    if (!Connected()) SetConnected(true);
    if (!connection_) throw EDatabaseError("The connection " + Name() + " is still being read");
    return *connection_;
}

int64_t TADOConnection::Execute(const AnsiString& sql) { return Provider().Execute(sql); }

void TADOConnection::GetTableNames(TStrings& list) {
    list.BeginUpdate();
    list.Clear();
    for (const AnsiString& name : Provider().TableNames()) list.Add(name);
    list.EndUpdate();
}

const ClassInfo& TCustomADODataSet::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomADODataSet, TDataSet>("TCustomADODataSet");
    return info;
}

TCustomADODataSet::~TCustomADODataSet() {
    BeginDestruction();
    SetConnection(nullptr);
}

void TCustomADODataSet::SetConnection(TADOConnection* value) {
    if (value == connection_) return;
    if (!HasState(csDestroying)) Close();
    if (connection_) std::erase(connection_->dataSets_, this);
    connection_ = value;
    if (value) {
        value->dataSets_.push_back(this);
        value->FreeNotification(this);
    }
}

void TCustomADODataSet::SetConnectionString(const AnsiString& value) {
    if (value == connectionString_) return;
    CheckInactive();
    connectionString_ = value;
    ownConnection_.reset();
}

void TCustomADODataSet::Notification(TComponent* component, TOperation operation) {
    TDataSet::Notification(component, operation);
    if (operation == opRemove && component == connection_) SetConnection(nullptr);
}

ProviderConnection& TCustomADODataSet::RequireConnection() {
    if (connection_) return connection_->Provider();
    if (connectionString_.empty()) DatabaseError("Missing Connection or ConnectionString");
    if (!ownConnection_) {
        ownConnection_ = std::make_unique<TADOConnection>(nullptr);
        ownConnection_->SetConnectionString(connectionString_);
    }
    return ownConnection_->Provider();
}

std::vector<FieldDefinition> TCustomADODataSet::InternalOpen() {
    statement_ = RequireConnection().Prepare(CommandText());
    statement_->Bind(ParameterValues());
    return statement_->Columns();
}

bool TCustomADODataSet::InternalFetch(RowStore& rows, int64_t count) {
    return statement_ && statement_->Fetch(rows, count);
}

void TCustomADODataSet::InternalClose() { statement_.reset(); }

const ClassInfo& TADOQuery::StaticClass() {
    static const ClassInfo info =
        DefineClass<TADOQuery, TCustomADODataSet>("TADOQuery")
            .Published("Active", &TADOQuery::Active, &TADOQuery::SetActive)
            .Default(false)
            .Published("Connection", &TADOQuery::Connection, &TADOQuery::SetConnection)
            .Published("ConnectionString", &TADOQuery::ConnectionString, &TADOQuery::SetConnectionString)
            .Event("BeforeOpen", &TADOQuery::BeforeOpen)
            .Event("AfterOpen", &TADOQuery::AfterOpen)
            .Event("BeforeClose", &TADOQuery::BeforeClose)
            .Event("AfterClose", &TADOQuery::AfterClose)
            .Event("BeforeScroll", &TADOQuery::BeforeScroll)
            .Event("AfterScroll", &TADOQuery::AfterScroll)
            .Published("SQL", &TADOQuery::SQL, &TADOQuery::SetSQL);
    return info;
}

TADOQuery::TADOQuery(TComponent* owner) : TCustomADODataSet(owner) {
    // Another statement is another result.
    sql_.OnChanging = [this](TObject*) { Close(); };
}

TADOQuery::~TADOQuery() { BeginDestruction(); }

AnsiString TADOQuery::CommandText() {
    const AnsiString text = sql_.Text();
    if (Trim(text).empty()) DatabaseError("Missing SQL property");
    return text;
}

int64_t TADOQuery::ExecSQL() { return RequireConnection().Execute(CommandText()); }

const ClassInfo& TADOTable::StaticClass() {
    static const ClassInfo info =
        DefineClass<TADOTable, TCustomADODataSet>("TADOTable")
            .Published("Active", &TADOTable::Active, &TADOTable::SetActive)
            .Default(false)
            .Published("Connection", &TADOTable::Connection, &TADOTable::SetConnection)
            .Published("ConnectionString", &TADOTable::ConnectionString, &TADOTable::SetConnectionString)
            .Event("BeforeOpen", &TADOTable::BeforeOpen)
            .Event("AfterOpen", &TADOTable::AfterOpen)
            .Event("BeforeClose", &TADOTable::BeforeClose)
            .Event("AfterClose", &TADOTable::AfterClose)
            .Event("BeforeScroll", &TADOTable::BeforeScroll)
            .Event("AfterScroll", &TADOTable::AfterScroll)
            .Published("TableName", &TADOTable::TableName, &TADOTable::SetTableName);
    return info;
}

TADOTable::~TADOTable() { BeginDestruction(); }

void TADOTable::SetTableName(const AnsiString& value) {
    if (value == tableName_) return;
    CheckInactive();
    tableName_ = value;
}

AnsiString TADOTable::CommandText() {
    if (Trim(tableName_).empty()) DatabaseError("Missing TableName property");
    return "SELECT * FROM " + RequireConnection().QuotedName(tableName_);
}

void RegisterAccessClasses() {
    AddLinkedClass(&TADOConnection::StaticClass());
    AddLinkedClass(&TADOQuery::StaticClass());
    AddLinkedClass(&TADOTable::StaticClass());
}

}  // namespace vyn
