#include "providers/odbc/connection.h"

#include <algorithm>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace odbc_provider {

constexpr char kFailed[] = "The statement failed";
// Beyond the time that is allowed, for the engine to break off by itself; and for taking leave of it.
constexpr std::chrono::milliseconds kPatience(2000);

std::u16string WideOf(const AnsiString& text) {
    const WideString wide = AnsiToWide(text);
    return {wide.begin(), wide.end()};
}

AnsiString AnsiOf(const SQLWCHAR* text, SQLSMALLINT length) {
    // Some drivers count bytes of another encoding: the text ends at its zero at the latest.
    const SQLWCHAR* end = std::find(text, text + std::max<SQLSMALLINT>(length, 0), SQLWCHAR{0});
    return WideToAnsi({reinterpret_cast<const char16_t*>(text), static_cast<size_t>(end - text)});
}

// "[maker][driver]reason": the reason alone.
AnsiString WithoutMakers(AnsiString text) {
    while (!text.empty() && text.front() == '[') {
        const size_t end = text.find(']');
        if (end == AnsiString::npos) break;
        text.erase(0, end + 1);
    }
    return Trim(text);
}

// By what drivers call it (SQLSTATE, the engine's own behind it), or the embedded engine's numbers.
DatabaseFault FaultOf(const AnsiString& state, SQLINTEGER native, Numbers numbers) {
    if (state == "HYT00" || state == "HYT01" || state == "57014") return DatabaseFault::TooSlow;
    if (state == "40001" || state == "40P01") return DatabaseFault::Deadlock;
    if (state == "53100") return DatabaseFault::DiskFull;
    if (state == "58030") return DatabaseFault::DiskFailure;
    if (state == "55P03") return DatabaseFault::InUse;
    if (state == "HY001" || state == "HY014" || state == "53200") return DatabaseFault::OutOfMemory;
    if (numbers == Numbers::Unknown) return DatabaseFault::None;
    switch (native) {
        case 5:
        case 6:
            return DatabaseFault::InUse;
        case 8:
            return DatabaseFault::ReadOnly;
        case 10:
            return DatabaseFault::DiskFailure;
        case 11:
            return DatabaseFault::Damaged;
        case 13:
            return DatabaseFault::DiskFull;
        case 14:
            return DatabaseFault::CannotOpen;
        case 26:
            return DatabaseFault::NoDatabase;
        default:
            return DatabaseFault::None;
    }
}

void Check(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle, const AnsiString& what, Numbers numbers) {
    if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
    SQLWCHAR state[6] = {}, text[SQL_MAX_MESSAGE_LENGTH] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetDiagRecW(kind, handle, 1, state, &native, text, SQL_MAX_MESSAGE_LENGTH, &length)))
        throw EOdbcError(what + ": the driver gives no reason", "");
    constexpr SQLSMALLINT kStateLength = 5;
    const AnsiString code = AnsiOf(state, kStateLength);
    const AnsiString reason = WithoutMakers(AnsiOf(text, std::min<SQLSMALLINT>(length, SQL_MAX_MESSAGE_LENGTH - 1)));
    throw EOdbcError(FaultMessage(what, FaultOf(code, native, numbers), reason), code, native);
}

void Link::Cut() {
    WasCut = true;
    // While it connects, nobody knows yet which they are.
    (Connected ? Sockets : DriverSockets::Now().Without(Before)).Cut();
}

Link::~Link() {
    if (!Connected) return;
    const Watchdog::Call call(Dog, kPatience);
    SQLEndTran(SQL_HANDLE_DBC, Database.Get(), SQL_ROLLBACK);
    SQLDisconnect(Database.Get());
}

// A value as connection strings of drivers take it.
AnsiString Braced(const AnsiString& value) {
    if (value.find_first_of(";{}[]()=@,?*!") == AnsiString::npos || value.front() == '{') return value;
    AnsiString braced = "{";
    for (char c : value) {
        braced += c;
        if (c == '}') braced += c;
    }
    return braced + "}";
}

// What drivers call what connection strings of ours say.
AnsiString DriverKey(const AnsiString& key) {
    if (SameText(key, "Data Source")) return "DSN";
    if (SameText(key, "User ID")) return "UID";
    if (SameText(key, "Password")) return "PWD";
    if (SameText(key, "Initial Catalog")) return "DATABASE";
    return key;
}

OdbcConnection::OdbcConnection(const ConnectionString& settings) : environment_(SQL_NULL_HANDLE) {
    AnsiString text, where;
    for (const auto& [key, value] : settings.Pairs()) {
        const auto is = [&key = key](const char* name) { return SameText(key, name); };
        if (is("Provider") || is("Persist Security Info") || is("Mode") || is("Connect Timeout") ||
            is("Command Timeout"))
            continue;
        if (SameText(key, "Extended Properties")) {
            text += value + ";";
            continue;
        }
        text += DriverKey(key) + "=" + Braced(value) + ";";
        // Prepared on the server, parameters have the types of their surroundings, or none; as literals, their own.
        if (SameText(key, "Driver") && UpperCase(value).find("POSTGRES") != AnsiString::npos)
            text = "UseServerSidePrepare=0;" + text;
        if (where.empty() && (SameText(key, "Data Source") || SameText(key, "DSN") || SameText(key, "Driver")))
            where = key + "=" + value;
    }
    if (text.empty()) throw EDatabaseError("Provider=MSDASQL: a Data Source or a Driver is wanted");
    if (!environment_) throw EDatabaseError("Provider=MSDASQL: there is no driver manager");
    SQLSetEnvAttr(environment_.Get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    driverString_ = text;
    where_ = where.empty() ? AnsiString("Provider=MSDASQL") : where;
    const AnsiString mode = settings.Value("Mode");
    readOnly_ = SameText(mode, "Read") || SameText(mode, "ReadOnly");
    connectTimeout_ = static_cast<int>(StrToInt64Def(settings.Number("Connect Timeout", 0, kMostConnectSeconds), 0));
    Connect();
}

void OdbcConnection::Connect() {
    const auto link = std::make_shared<Link>(environment_);
    SQLHANDLE database = link->Database.Get();
    const auto seconds = static_cast<intptr_t>(connectTimeout_);
    if (seconds > 0) SQLSetConnectAttr(database, SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(seconds), 0);
    if (readOnly_)
        SQLSetConnectAttr(database, SQL_ATTR_ACCESS_MODE, reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_ONLY), 0);
    std::u16string wide = WideOf(driverString_);
    SQLSMALLINT length = 0;
    {
        const std::chrono::seconds time(connectTimeout_);
        const Watchdog::Call call(link->Dog, seconds > 0 ? time + kPatience : std::chrono::milliseconds(0));
        Check(SQLDriverConnectW(database, nullptr, Wide(wide), WideLength(wide), nullptr, 0, &length,
                                SQL_DRIVER_NOPROMPT),
              SQL_HANDLE_DBC, database, where_);
    }
    link->Sockets = DriverSockets::Now().Without(link->Before);
    link->Connected = true;
    constexpr int kLongestName = 128;
    SQLWCHAR name[kLongestName] = {};
    SQLGetInfoW(database, SQL_DBMS_NAME, name, sizeof name, &length);
    engine_ = EngineOf(AnsiOf(name, std::min<SQLSMALLINT>(length / 2, kLongestName - 1)));
    link_ = link;
}

OdbcConnection::~OdbcConnection() = default;

bool OdbcConnection::IsBroken() const { return !link_ || link_->WasCut || link_->Sockets.PeerLeft(); }

void OdbcConnection::Forget() {
    ++generation_;
    depth_ = 0;
    bySql_ = false;
    link_.reset();
}

void OdbcConnection::Lost() {
    const AnsiString lost = storing_ ? kOutcomeUnknown : depth_ > 0 ? kTransactionLost : "";
    const bool silent = link_ && link_->WasCut;
    Forget();
    // A server that is frozen would not let us in either, and keep the user waiting once more.
    if (silent) throw EDatabaseError(kServerSilent + lost + kMadeLater);
    try {
        Connect();
    } catch (const EDatabaseError& error) {
        throw EDatabaseError(kConnectionLost + lost + kNotMadeAgain + error.Message());
    }
    throw EDatabaseError(kConnectionLost + lost + kMadeAgain);
}

void OdbcConnection::Ready() {
    if (!IsBroken()) return;
    if (depth_ > 0) Lost();
    Forget();
    Connect();
}

StatementHandle OdbcConnection::NewStatement() {
    Ready();
    StatementHandle statement(link_);
    // Where the driver can, the engine is told how long it may take; else it is cut off.
    SQLSetStmtAttr(statement.Get(), SQL_ATTR_QUERY_TIMEOUT,
                   reinterpret_cast<SQLPOINTER>(static_cast<intptr_t>(commandTimeout_)), 0);
    return statement;
}

std::chrono::milliseconds OdbcConnection::Allowed() const {
    return commandTimeout_ > 0 ? std::chrono::seconds(commandTimeout_) + kPatience : std::chrono::milliseconds(0);
}

// The embedded engine's numbers for what ends a transaction as a whole: memory, interruption, the disk, its room.
bool MayTakeBackAll(SQLINTEGER number) { return number == 7 || number == 9 || number == 10 || number == 13; }

void OdbcConnection::TakeBack() {
    SQLHANDLE database = link_->Database.Get();
    const auto run = [&](const char* sql) {
        const StatementHandle statement = NewStatement();
        std::u16string wide = WideOf(sql);
        SQLExecDirectW(statement.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size()));
    };
    if (bySql_) {
        // It may be gone already.
        run("ROLLBACK");
    } else {
        // The driver counts transactions by itself, and needs one to take back; the engine refuses another where there
        // is one still.
        run("BEGIN");
        SQLEndTran(SQL_HANDLE_DBC, database, SQL_ROLLBACK);
        SQLSetConnectAttr(database, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
    }
    depth_ = 0;
    bySql_ = false;
}

SQLRETURN OdbcConnection::CallOn(SQLSMALLINT kind, SQLHANDLE handle, const std::function<SQLRETURN()>& call,
                                 const AnsiString& what) {
    SQLRETURN result = SQL_SUCCESS;
    const std::shared_ptr<Link> link = link_;
    {
        const Watchdog::Call watched(link->Dog, Allowed());
        result = call();
    }
    try {
        Check(result, kind, handle, what, engine_.ErrorNumbers);
    } catch (const EOdbcError& error) {
        const AnsiString group = error.State.substr(0, 2);
        const bool ended = error.State == "57P01" || error.State == "57P02" || error.State == "57P03";
        if (group == "08" || ended || IsBroken()) Lost();
        if (depth_ > 0 && engine_.ErrorNumbers == Numbers::Sqlite && MayTakeBackAll(error.Number)) {
            TakeBack();
            throw EDatabaseError(error.Message() + kTransactionGone);
        }
        throw;
    }
    return result;
}

SQLRETURN OdbcConnection::Call(const StatementHandle& statement, const std::function<SQLRETURN()>& call,
                               const AnsiString& what) {
    return CallOn(SQL_HANDLE_STMT, statement.Get(), call, what);
}

std::unique_ptr<ProviderStatement> OdbcConnection::Prepare(const AnsiString& sql) {
    return PrepareStatement(*this, sql);
}

void OdbcConnection::Observe(const AnsiString& sql) {
    AnsiString first;
    bool aside = false;
    for (const SqlToken& token : TokenizeSql(sql)) {
        if (token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment) continue;
        if (first.empty())
            first = UpperCase(token.Text);
        else if (IsKeyword(token, "TO"))
            aside = true;
    }
    if (first == "BEGIN" || first == "START") {
        depth_ = std::max(depth_, 1);
        bySql_ = true;
    } else if (bySql_ && !aside && (first == "COMMIT" || first == "ROLLBACK" || first == "END")) {
        depth_ = 0;
        bySql_ = false;
    }
}

AnsiString OdbcConnection::WithCatalogNames(const AnsiString& sql) {
    std::set<AnsiString> words;
    for (const SqlToken& token : TokenizeSql(sql))
        if (token.Kind == SqlTokenKind::Identifier || token.Kind == SqlTokenKind::Quoted ||
            token.Kind == SqlTokenKind::Name)
            words.insert(AnsiLowerCase(NameOf(token)));
    std::vector<AnsiString> names;
    // Columns can only be those of tables that stand in the statement.
    for (const CatalogTable& table : Tables({}, SystemTables::Leave)) {
        if (words.count(AnsiLowerCase(table.name)) == 0) continue;
        names.push_back(table.name);
        for (const ColumnDescription& column : DescribeTable(table.name)) names.push_back(column.Name);
    }
    return SpellNames(sql, names, engine_.Dialect);
}

void OdbcConnection::Run(const AnsiString& sql, const AnsiString& what) {
    const StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(sql);
    Call(
        statement, [&] { return SQLExecDirectW(statement.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size())); },
        what);
}

int64_t OdbcConnection::Execute(const AnsiString& sql) {
    if (sql.find('\0') != AnsiString::npos)
        throw EDatabaseError("The database cannot hold a NUL character in a text or name");
    const StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(sql);
    const Storing storing(*this, depth_ == 0 && !ReadsOnly(sql));
    Call(
        statement, [&] { return SQLExecDirectW(statement.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size())); },
        kFailed);
    Observe(sql);
    SQLLEN changed = 0;
    if (!SQL_SUCCEEDED(SQLRowCount(statement.Get(), &changed))) return 0;
    return std::max<SQLLEN>(changed, 0);
}

AnsiString OdbcConnection::Returning(const std::vector<AnsiString>& columns) const {
    return engine_.HasReturning ? ProviderConnection::Returning(columns) : AnsiString();
}

int OdbcConnection::Begin() {
    constexpr char kWhat[] = "The transaction cannot begin";
    Ready();
    if (depth_ == 0) {
        SQLHANDLE database = link_->Database.Get();
        CallOn(
            SQL_HANDLE_DBC, database,
            [&] {
                return SQLSetConnectAttr(database, SQL_ATTR_AUTOCOMMIT,
                                         reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0);
            },
            kWhat);
    } else if (engine_.HasSavepoints) {
        Run("SAVEPOINT vyn_" + std::to_string(depth_), kWhat);
    }
    return ++depth_;
}

void OdbcConnection::EndTransaction(SQLSMALLINT how, const AnsiString& what) {
    const Storing storing(*this, how == SQL_COMMIT);
    if (bySql_) {
        Run(how == SQL_COMMIT ? "COMMIT" : "ROLLBACK", what);
        bySql_ = false;
        return;
    }
    SQLHANDLE database = link_->Database.Get();
    CallOn(
        SQL_HANDLE_DBC, database, [&] { return SQLEndTran(SQL_HANDLE_DBC, database, how); }, what);
    SQLSetConnectAttr(database, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
}

int OdbcConnection::Commit() {
    constexpr char kWhat[] = "The transaction cannot end";
    Ready();
    if (depth_ == 1)
        EndTransaction(SQL_COMMIT, kWhat);
    else if (depth_ > 1 && engine_.HasSavepoints)
        Run("RELEASE SAVEPOINT vyn_" + std::to_string(depth_ - 1), kWhat);
    return depth_ = std::max(depth_ - 1, 0);
}

int OdbcConnection::Rollback() {
    constexpr char kWhat[] = "The transaction cannot be taken back";
    Ready();
    if (depth_ == 1) {
        EndTransaction(SQL_ROLLBACK, kWhat);
    } else if (depth_ > 1) {
        // Then it goes with the whole, or not at all.
        if (!engine_.HasSavepoints)
            throw EDatabaseError(AnsiString(kWhat) + ": this database has no transactions in transactions");
        const AnsiString name = "vyn_" + std::to_string(depth_ - 1);
        Run("ROLLBACK TO SAVEPOINT " + name, kWhat);
        Run("RELEASE SAVEPOINT " + name, kWhat);
    }
    return depth_ = std::max(depth_ - 1, 0);
}

}  // namespace odbc_provider

void RegisterOdbcProvider() {
    RegisterProvider("MSDASQL", [](const ConnectionString& settings) -> std::unique_ptr<ProviderConnection> {
        return std::make_unique<odbc_provider::OdbcConnection>(settings);
    });
}

}  // namespace vyn
