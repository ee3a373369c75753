#include "platform/access/ado_connection.h"

#include <algorithm>

#include "platform/access/ado.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

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

AnsiString ProviderConnection::Returning(const std::vector<AnsiString>& columns) const {
    AnsiString names;
    for (const AnsiString& column : columns) names += (names.empty() ? " RETURNING " : ", ") + column;
    return names;
}

void ProviderConnection::Listen(const AnsiString&) { throw EDatabaseError("This database sends no notices"); }

const EnumType& TypeInfoOf(TypeTag<TXactAttribute>) {
    static const EnumType info("TXactAttribute", {"xaCommitRetaining", "xaAbortRetaining"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TConnectOption>) {
    static const EnumType info("TConnectOption", {"coConnectUnspecified", "coAsyncConnect"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TCursorLocation>) {
    static const EnumType info("TCursorLocation", {"clUseServer", "clUseClient"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TIsolationLevel>) {
    static const EnumType info("TIsolationLevel",
                               {"ilUnspecified", "ilChaos", "ilReadUncommitted", "ilBrowse", "ilCursorStability",
                                "ilReadCommitted", "ilRepeatableRead", "ilSerializable", "ilIsolated"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TConnectMode>) {
    static const EnumType info("TConnectMode", {"cmUnknown", "cmRead", "cmWrite", "cmReadWrite", "cmShareDenyRead",
                                                "cmShareDenyWrite", "cmShareExclusive", "cmShareDenyNone"});
    return info;
}

const ClassInfo& TADOConnection::StaticClass() {
    static const ClassInfo info =
        DefineClass<TADOConnection, TComponent>("TADOConnection")
            .Published("Attributes", &TADOConnection::Attributes, &TADOConnection::Attributes)
            .Default(TXactAttributes())
            .Published("CommandTimeout", &TADOConnection::CommandTimeout, &TADOConnection::CommandTimeout)
            .Default(30)
            .Published("Connected", &TADOConnection::Connected, &TADOConnection::SetConnected)
            .Default(false)
            .Published("ConnectionString", &TADOConnection::ConnectionString, &TADOConnection::SetConnectionString)
            .Published("ConnectionTimeout", &TADOConnection::ConnectionTimeout, &TADOConnection::ConnectionTimeout)
            .Default(15)
            .Published("ConnectOptions", &TADOConnection::ConnectOptions, &TADOConnection::ConnectOptions)
            .Default(coConnectUnspecified)
            .Published("CursorLocation", &TADOConnection::CursorLocation, &TADOConnection::CursorLocation)
            .Default(clUseClient)
            .Published("DefaultDatabase", &TADOConnection::DefaultDatabase, &TADOConnection::DefaultDatabase)
            .Published("IsolationLevel", &TADOConnection::IsolationLevel, &TADOConnection::IsolationLevel)
            .Default(ilCursorStability)
            .Published("KeepConnection", &TADOConnection::KeepConnection, &TADOConnection::KeepConnection)
            .Default(true)
            .Published("LoginPrompt", &TADOConnection::LoginPrompt, &TADOConnection::LoginPrompt)
            .Default(true)
            .Published("Mode", &TADOConnection::Mode, &TADOConnection::SetMode)
            .Default(cmUnknown)
            .Published("Provider", &TADOConnection::ProviderName, &TADOConnection::SetProviderName)
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

void TADOConnection::CheckClosed() const {
    if (Connected()) throw EDatabaseError("Cannot perform this operation on an open connection");
}

void TADOConnection::SetConnectionString(const AnsiString& value) {
    if (value == connectionString_) return;
    CheckClosed();
    connectionString_ = value;
}

void TADOConnection::SetProviderName(const AnsiString& value) {
    if (value == providerName_) return;
    CheckClosed();
    providerName_ = value;
}

void TADOConnection::SetMode(TConnectMode value) {
    if (value == mode_) return;
    CheckClosed();
    mode_ = value;
}

AnsiString TADOConnection::FullConnectionString() const {
    // Of a key that is there twice the last counts: the string's own.
    AnsiString text;
    if (!providerName_.empty()) text += "Provider=\"" + providerName_ + "\";";
    if (mode_ == cmRead) text += "Mode=Read;";
    text += "Connect Timeout=" + IntToStr(std::clamp(ConnectionTimeout, 0, kMostConnectSeconds)) + ";";
    return text + connectionString_;
}

void TADOConnection::SetConnected(bool value) {
    if (HasState(csLoading)) {
        connectWhenLoaded_ = value;
        return;
    }
    if (value == Connected()) return;
    if (value) {
        BeforeConnect(this);
        const vyn::ConnectionString settings(FullConnectionString());
        const AnsiString allowed = settings.Number("Command Timeout", 0, kMostCommandSeconds);
        ownCommandTimeout_ = allowed.empty() ? kNoTimeout : static_cast<int32_t>(StrToInt64Def(allowed, 0));
        connection_ = OpenProvider(settings);
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

ProviderConnection& TADOConnection::Provider(int32_t commandTimeout) {
    if (!Connected()) SetConnected(true);
    if (!connection_) throw EDatabaseError("The connection " + Name() + " is still being read");
    if (commandTimeout == kDefaultCommandTimeout)
        commandTimeout = ownCommandTimeout_ == kNoTimeout ? CommandTimeout : ownCommandTimeout_;
    connection_->SetCommandTimeout(std::clamp(commandTimeout, 0, kMostCommandSeconds));
    return *connection_;
}

void TADOConnection::FinishReading() {
    if (!Provider().WritesBesideReading()) FetchRest();
}

void TADOConnection::FetchRest() {
    const bool inTransaction = InTransaction();
    for (TCustomADODataSet* dataSet : std::vector<TCustomADODataSet*>(dataSets_)) {
        if (!dataSet->Active() || dataSet->IsPaged() || dataSet->AllFetched() || dataSet->ReadingFailed()) continue;
        try {
            dataSet->RecordCount();
        } catch (const EDatabaseError&) {
            // The dataset keeps what is wrong with its records, and says it to who needs them; here it stands in
            // nobody's way, unless more went with the connection.
            if (inTransaction && !InTransaction()) throw;
        }
    }
}

int64_t TADOConnection::Execute(const AnsiString& sql) {
    ProviderConnection& provider = Provider();
    FinishReading();
    return provider.Execute(TranslateSql(sql, provider.Dialect(), ParameterParsing::Off).Text);
}

int TADOConnection::BeginTrans() {
    ProviderConnection& provider = Provider();
    FinishReading();
    return provider.Begin();
}

void TADOConnection::CommitTrans() {
    if (!InTransaction()) throw EDatabaseError("There is no transaction to commit");
    FinishReading();
    connection_->Commit();
}

void TADOConnection::RollbackTrans() {
    if (!InTransaction()) throw EDatabaseError("There is no transaction to roll back");
    // Results may go with what they were read in.
    try {
        FetchRest();
    } catch (const EDatabaseError&) {
        // It went with the connection: nothing of it is kept, which is what is wanted.
        return;
    }
    connection_->Rollback();
}

void TADOConnection::Listen(const AnsiString& channel) { Provider().Listen(channel); }

void TADOConnection::CheckNotices() {
    if (!connection_) return;
    for (const ProviderNotice& notice : connection_->TakeNotices()) OnNotice(this, notice.Channel, notice.Payload);
}

void TADOConnection::GetTableNames(TStrings& list, bool systemTables) {
    const std::vector<AnsiString> names =
        Provider().TableNames(systemTables ? SystemTables::Include : SystemTables::Leave);
    list.BeginUpdate();
    list.Clear();
    for (const AnsiString& name : names) list.Add(name);
    list.EndUpdate();
}

void TADOConnection::GetProcedureNames(TStrings& list) {
    const std::vector<AnsiString> names = Provider().ProcedureNames();
    list.BeginUpdate();
    list.Clear();
    for (const AnsiString& name : names) list.Add(name);
    list.EndUpdate();
}

}  // namespace vyn
