#include "providers/sqlite/connection.h"

#include <algorithm>
#include <cstring>

#include "platform/access/fault.h"
#include "platform/streams/stream.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace sqlite_provider {

constexpr int kBusyMilliseconds = 5000;
constexpr int kMostBusyMilliseconds = 3600000;
constexpr char kInMemory[] = ":memory:";

// Between two looks at the clock, in steps of the engine's machine: a thousandth of a second or so.
constexpr int kStepsBetweenLooks = 20000;

DatabaseFault FaultOf(int code) {
    constexpr int kPrimary = 0xFF;
    if (code == SQLITE_IOERR_NOMEM) return DatabaseFault::OutOfMemory;
    switch (code & kPrimary) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:
            return DatabaseFault::InUse;
        case SQLITE_FULL:
            return DatabaseFault::DiskFull;
        case SQLITE_IOERR:
            return DatabaseFault::DiskFailure;
        case SQLITE_READONLY:
        case SQLITE_PERM:
            return DatabaseFault::ReadOnly;
        case SQLITE_CORRUPT:
            return DatabaseFault::Damaged;
        case SQLITE_NOTADB:
            return DatabaseFault::NoDatabase;
        case SQLITE_CANTOPEN:
            return DatabaseFault::CannotOpen;
        case SQLITE_NOMEM:
            return DatabaseFault::OutOfMemory;
        case SQLITE_TOOBIG:
            return DatabaseFault::TooLarge;
        case SQLITE_INTERRUPT:
            return DatabaseFault::TooSlow;
        default:
            return DatabaseFault::None;
    }
}

AnsiString FailureOf(sqlite3* database, const AnsiString& what) {
    if (!database) return FaultMessage(what, DatabaseFault::OutOfMemory, "out of memory");
    return FaultMessage(what, FaultOf(sqlite3_extended_errcode(database)), Utf8ToAnsiLossy(sqlite3_errmsg(database)));
}

void Raise(sqlite3* database, const AnsiString& what) { throw EDatabaseError(FailureOf(database, what)); }

void Session::Take(sqlite3* database) {
    database_.reset(database);
    if (database) sqlite3_progress_handler(database, kStepsBetweenLooks, GoOn, this);
}

int Session::GoOn(void* session) {
    const auto* self = static_cast<const Session*>(session);
    return self->seconds_ > 0 && std::chrono::steady_clock::now() > self->end_;
}

void Session::Start() {
    inTransaction_ = !sqlite3_get_autocommit(Database());
    if (seconds_ > 0) end_ = std::chrono::steady_clock::now() + std::chrono::seconds(seconds_);
}

void Session::Raise(const AnsiString& what) {
    AnsiString message = FailureOf(Database(), what);
    // The engine takes back the whole where it cannot take back a part.
    if (inTransaction_ && sqlite3_get_autocommit(Database())) message += kTransactionGone;
    throw EDatabaseError(message);
}

class SqliteConnection final : public ProviderConnection {
  public:
    explicit SqliteConnection(const ConnectionString& settings) {
        const AnsiString file = settings.Value("Data Source", kInMemory);
        const AnsiString busy = settings.Number("Busy Timeout", 0, kMostBusyMilliseconds);
        const bool inMemory = file.empty() || file == kInMemory;
        readOnly_ = SameText(settings.Value("Mode"), "ReadOnly") || SameText(settings.Value("Mode"), "Read");
        // One thread uses a connection: the engine need not lock it at each step.
        const int flags =
            SQLITE_OPEN_NOMUTEX | (readOnly_ ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        sqlite3* opened = nullptr;
        const int result =
            sqlite3_open_v2(inMemory ? kInMemory : SystemFileName(file).c_str(), &opened, flags, nullptr);
        session_.Take(opened);
        if (result != SQLITE_OK) Raise(opened, "Data Source=" + file);
        sqlite3_extended_result_codes(opened, 1);
        sqlite3_busy_timeout(opened, static_cast<int>(StrToInt64Def(busy, kBusyMilliseconds)));
        Run("PRAGMA foreign_keys = ON", "Data Source=" + file);
        const bool logged = !readOnly_ && !inMemory;
        if (logged) UseLog("Data Source=" + file);
        Look("Data Source=" + file);
        if (logged) Run("PRAGMA synchronous = FULL", "Data Source=" + file);
    }

    const EngineDialect& Dialect() const override { return sqlite_provider::Dialect(); }

    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override {
        return PrepareStatement(session_, sql);
    }

    int64_t Execute(const AnsiString& sql) override {
        const int64_t before = sqlite3_total_changes64(Database());
        Run(AnsiToUtf8(sql), "The statement failed");
        return sqlite3_total_changes64(Database()) - before;
    }

    std::vector<AnsiString> TableNames(SystemTables system) override { return ListTables(Database(), system); }
    // The engine has none.
    std::vector<AnsiString> ProcedureNames() override { return {}; }
    bool OriginsAreTables() const override { return true; }
    int64_t EstimatedRows(const AnsiString& table) override { return LastRowNumber(Database(), table); }
    bool IsTable(const AnsiString& name) override { return vyn::sqlite_provider::IsTable(Database(), name); }
    std::vector<AnsiString> KeyColumns(const AnsiString& table) override { return ListKeyColumns(Database(), table); }
    std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) override {
        return ListIndexColumns(Database(), table, index);
    }

    TextIndex TextIndexOf(const AnsiString& table, const AnsiString& column) override {
        return FindTextIndex(Database(), table, column);
    }

    // A statement may have begun or ended a transaction by itself.
    int TransactionDepth() const override { return sqlite3_get_autocommit(Database()) ? 0 : std::max(depth_, 1); }
    void SetCommandTimeout(int seconds) override { session_.SetCommandTimeout(seconds); }
    int Begin() override {
        depth_ = TransactionDepth();
        // The outermost takes the right to write at once, so that no later statement fails for the want of it.
        Run(depth_ > 0 ? "SAVEPOINT " + Savepoint(depth_) : std::string(readOnly_ ? "BEGIN" : "BEGIN IMMEDIATE"),
            "The transaction cannot begin");
        return ++depth_;
    }
    int Commit() override {
        const int depth = TransactionDepth();
        Run(depth > 1 ? "RELEASE " + Savepoint(depth - 1) : std::string("COMMIT"), "The transaction cannot end");
        return depth_ = depth - 1;
    }
    int Rollback() override {
        const int depth = TransactionDepth();
        if (depth > 1) {
            const std::string name = Savepoint(depth - 1);
            Run("ROLLBACK TO " + name + "; RELEASE " + name, "The transaction cannot be taken back");
        } else if (depth == 1) {
            Run("ROLLBACK", "The transaction cannot be taken back");
        }
        return depth_ = std::max(depth - 1, 0);
    }

  private:
    sqlite3* Database() const { return session_.Database(); }
    void Run(const std::string& utf8Sql, const AnsiString& what) {
        session_.Start();
        if (sqlite3_exec(Database(), utf8Sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) session_.Raise(what);
    }

    // A file that may not be written keeps the way in which it is written.
    void UseLog(const AnsiString& what) {
        if (sqlite3_exec(Database(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr) == SQLITE_OK) return;
        const DatabaseFault fault = FaultOf(sqlite3_extended_errcode(Database()));
        if (fault != DatabaseFault::ReadOnly && fault != DatabaseFault::CannotOpen) Raise(Database(), what);
    }
    // The first statement that reads the file finds out whether it is a database at all.
    void Look(const AnsiString& what) {
        if (sqlite3_exec(Database(), "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) == SQLITE_OK)
            return;
        // A file with a log is read by writing beside it.
        if (FaultOf(sqlite3_extended_errcode(Database())) == DatabaseFault::ReadOnly)
            throw EDatabaseError(
                FaultMessage(what, DatabaseFault::CannotOpen, Utf8ToAnsiLossy(sqlite3_errmsg(Database()))));
        Raise(Database(), what);
    }

    static std::string Savepoint(int depth) { return "vyn_" + std::to_string(depth); }

    Session session_;
    bool readOnly_ = false;
    int depth_ = 0;
};

}  // namespace sqlite_provider

void RegisterSqliteProvider() {
    RegisterProvider("SQLite", [](const ConnectionString& settings) -> std::unique_ptr<ProviderConnection> {
        return std::make_unique<sqlite_provider::SqliteConnection>(settings);
    });
}

}  // namespace vyn
