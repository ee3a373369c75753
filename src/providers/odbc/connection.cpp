#include "providers/odbc/connection.h"

#include <algorithm>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace odbc_provider {

constexpr char kFailed[] = "The statement failed";

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

void Check(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle, const AnsiString& what) {
    if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
    SQLWCHAR state[6] = {}, text[SQL_MAX_MESSAGE_LENGTH] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetDiagRecW(kind, handle, 1, state, &native, text, SQL_MAX_MESSAGE_LENGTH, &length)))
        throw EOdbcError(what + ": the driver gives no reason", "");
    constexpr SQLSMALLINT kStateLength = 5;
    throw EOdbcError(
        what + ": " + WithoutMakers(AnsiOf(text, std::min<SQLSMALLINT>(length, SQL_MAX_MESSAGE_LENGTH - 1))),
        AnsiOf(state, kStateLength));
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
    database_ = DatabaseHandle(environment_.Get());
    const AnsiString mode = settings.Value("Mode");
    if (SameText(mode, "Read") || SameText(mode, "ReadOnly"))
        SQLSetConnectAttr(database_.Get(), SQL_ATTR_ACCESS_MODE, reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_ONLY), 0);
    std::u16string wide = WideOf(text);
    SQLSMALLINT length = 0;
    Check(SQLDriverConnectW(database_.Get(), nullptr, Wide(wide), WideLength(wide), nullptr, 0, &length,
                            SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, database_.Get(), where.empty() ? AnsiString("Provider=MSDASQL") : where);
    constexpr int kLongestName = 128;
    SQLWCHAR name[kLongestName] = {};
    SQLGetInfoW(database_.Get(), SQL_DBMS_NAME, name, sizeof name, &length);
    engine_ = EngineOf(AnsiOf(name, std::min<SQLSMALLINT>(length / 2, kLongestName - 1)));
}

OdbcConnection::~OdbcConnection() {
    if (depth_ > 0) SQLEndTran(SQL_HANDLE_DBC, database_.Get(), SQL_ROLLBACK);
    if (database_) SQLDisconnect(database_.Get());
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
    std::vector<AnsiString> names;
    for (const CatalogTable& table : Tables({}, SystemTables::Leave)) {
        names.push_back(table.name);
        for (const ColumnDescription& column : DescribeTable(table.name)) names.push_back(column.Name);
    }
    return SpellNames(sql, names, engine_.Dialect);
}

void OdbcConnection::Run(const AnsiString& sql, const AnsiString& what) {
    const StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(sql);
    Check(SQLExecDirectW(statement.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size())), SQL_HANDLE_STMT,
          statement.Get(), what);
}

int64_t OdbcConnection::Execute(const AnsiString& sql) {
    if (sql.find('\0') != AnsiString::npos)
        throw EDatabaseError("The database cannot hold a NUL character in a text or name");
    const StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(sql);
    Check(SQLExecDirectW(statement.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size())), SQL_HANDLE_STMT,
          statement.Get(), kFailed);
    Observe(sql);
    SQLLEN changed = 0;
    if (!SQL_SUCCEEDED(SQLRowCount(statement.Get(), &changed))) return 0;
    return std::max<SQLLEN>(changed, 0);
}

AnsiString OdbcConnection::Returning(const std::vector<AnsiString>& columns) const {
    return engine_.HasReturning ? ProviderConnection::Returning(columns) : AnsiString();
}

int OdbcConnection::Begin() {
    if (depth_ == 0) {
        Check(SQLSetConnectAttr(database_.Get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF),
                                0),
              SQL_HANDLE_DBC, database_.Get(), "The transaction cannot begin");
    } else if (engine_.HasSavepoints) {
        Run("SAVEPOINT vyn_" + std::to_string(depth_), "The transaction cannot begin");
    }
    return ++depth_;
}

void OdbcConnection::EndTransaction(SQLSMALLINT how, const AnsiString& what) {
    if (bySql_) {
        Run(how == SQL_COMMIT ? "COMMIT" : "ROLLBACK", what);
        bySql_ = false;
        return;
    }
    Check(SQLEndTran(SQL_HANDLE_DBC, database_.Get(), how), SQL_HANDLE_DBC, database_.Get(), what);
    SQLSetConnectAttr(database_.Get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
}

int OdbcConnection::Commit() {
    constexpr char kWhat[] = "The transaction cannot end";
    if (depth_ == 1)
        EndTransaction(SQL_COMMIT, kWhat);
    else if (depth_ > 1 && engine_.HasSavepoints)
        Run("RELEASE SAVEPOINT vyn_" + std::to_string(depth_ - 1), kWhat);
    return depth_ = std::max(depth_ - 1, 0);
}

int OdbcConnection::Rollback() {
    constexpr char kWhat[] = "The transaction cannot be taken back";
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
