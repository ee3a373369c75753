#include "providers/sqlite/connection.h"

#include <algorithm>
#include <cstring>

#include "platform/streams/stream.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace sqlite_provider {

constexpr int kBusyMilliseconds = 5000;
constexpr char kInMemory[] = ":memory:";

void Raise(sqlite3* database, const AnsiString& what) {
    const char* reason = database ? sqlite3_errmsg(database) : "out of memory";
    throw EDatabaseError(what + ": " + Utf8ToAnsiLossy(reason));
}

class SqliteConnection final : public ProviderConnection {
  public:
    explicit SqliteConnection(const ConnectionString& settings) {
        const AnsiString file = settings.Value("Data Source", kInMemory);
        const bool inMemory = file.empty() || file == kInMemory;
        readOnly_ = SameText(settings.Value("Mode"), "ReadOnly") || SameText(settings.Value("Mode"), "Read");
        // One thread uses a connection: the engine need not lock it at each step.
        const int flags =
            SQLITE_OPEN_NOMUTEX | (readOnly_ ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        sqlite3* opened = nullptr;
        const int result =
            sqlite3_open_v2(inMemory ? kInMemory : SystemFileName(file).c_str(), &opened, flags, nullptr);
        database_.reset(opened);
        if (result != SQLITE_OK) Raise(opened, "Data Source=" + file);
        sqlite3_extended_result_codes(opened, 1);
        sqlite3_busy_timeout(opened, kBusyMilliseconds);
        // The first statement that reads the file finds out whether it is a database at all.
        Run("PRAGMA foreign_keys = ON", "Data Source=" + file);
        if (!readOnly_ && !inMemory) {
            Run("PRAGMA journal_mode = WAL", "Data Source=" + file);
            Run("PRAGMA synchronous = FULL", "Data Source=" + file);
        } else {
            Run("SELECT count(*) FROM sqlite_master", "Data Source=" + file);
        }
    }

    const EngineDialect& Dialect() const override { return sqlite_provider::Dialect(); }

    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override {
        return PrepareStatement(database_.get(), sql);
    }

    int64_t Execute(const AnsiString& sql) override {
        const int64_t before = sqlite3_total_changes64(database_.get());
        Run(AnsiToUtf8(sql), "The statement failed");
        return sqlite3_total_changes64(database_.get()) - before;
    }

    std::vector<AnsiString> TableNames(SystemTables system) override { return ListTables(database_.get(), system); }
    // The engine has none.
    std::vector<AnsiString> ProcedureNames() override { return {}; }
    bool IsTable(const AnsiString& name) override { return vyn::sqlite_provider::IsTable(database_.get(), name); }
    std::vector<AnsiString> KeyColumns(const AnsiString& table) override {
        return ListKeyColumns(database_.get(), table);
    }
    std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) override {
        return ListIndexColumns(database_.get(), table, index);
    }

    // A statement may have begun or ended a transaction by itself.
    int TransactionDepth() const override { return sqlite3_get_autocommit(database_.get()) ? 0 : std::max(depth_, 1); }
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
    void Run(const std::string& utf8Sql, const AnsiString& what) {
        if (sqlite3_exec(database_.get(), utf8Sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            Raise(database_.get(), what);
    }

    static std::string Savepoint(int depth) { return "vyn_" + std::to_string(depth); }

    DatabaseHandle database_;
    bool readOnly_ = false;
    int depth_ = 0;
};

}  // namespace sqlite_provider

namespace sqlite_provider {

// Every database file of this engine begins with this, and a zero.
constexpr char kFileMark[] = "SQLite format 3";

// Stored applications name files of a desktop database.
void RequireOwnFormat(const AnsiString& file) {
    if (!FileExists(file)) throw EDatabaseError("Data Source=" + file + ": the file does not exist");
    char mark[sizeof kFileMark] = {};
    TFileStream stream(file, TFileMode::fmOpenRead);
    const bool whole = stream.Read(mark, sizeof mark) == static_cast<int64_t>(sizeof mark);
    if (!whole || std::memcmp(mark, kFileMark, sizeof mark) != 0)
        throw EDatabaseError("Data Source=" + file + ": the file is no database that can be opened");
}

}  // namespace sqlite_provider

void RegisterSqliteProvider() {
    RegisterProvider("Microsoft.Jet.OLEDB.4.0",
                     [](const ConnectionString& settings) -> std::unique_ptr<ProviderConnection> {
                         sqlite_provider::RequireOwnFormat(settings.Value("Data Source"));
                         return std::make_unique<sqlite_provider::SqliteConnection>(settings);
                     });
    RegisterProvider("SQLite", [](const ConnectionString& settings) -> std::unique_ptr<ProviderConnection> {
        return std::make_unique<sqlite_provider::SqliteConnection>(settings);
    });
}

}  // namespace vyn
