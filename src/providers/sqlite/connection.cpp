#include "providers/sqlite/connection.h"

#include "platform/streams/stream.h"
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
        const bool readOnly = SameText(settings.Value("Mode"), "ReadOnly") || SameText(settings.Value("Mode"), "Read");
        const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
        sqlite3* opened = nullptr;
        const int result =
            sqlite3_open_v2(inMemory ? kInMemory : SystemFileName(file).c_str(), &opened, flags, nullptr);
        database_.reset(opened);
        if (result != SQLITE_OK) Raise(opened, "Data Source=" + file);
        sqlite3_extended_result_codes(opened, 1);
        sqlite3_busy_timeout(opened, kBusyMilliseconds);
        // The first statement that reads the file finds out whether it is a database at all.
        Run("PRAGMA foreign_keys = ON", "Data Source=" + file);
        if (!readOnly && !inMemory) {
            Run("PRAGMA journal_mode = WAL", "Data Source=" + file);
            Run("PRAGMA synchronous = FULL", "Data Source=" + file);
        } else {
            Run("SELECT count(*) FROM sqlite_master", "Data Source=" + file);
        }
    }

    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override {
        return PrepareStatement(database_.get(), sql);
    }

    int64_t Execute(const AnsiString& sql) override {
        const int64_t before = sqlite3_total_changes64(database_.get());
        Run(AnsiToUtf8(sql), "The statement failed");
        return sqlite3_total_changes64(database_.get()) - before;
    }

    std::vector<AnsiString> TableNames() override;

    AnsiString QuotedName(const AnsiString& name) const override {
        AnsiString quoted = "\"";
        for (char c : name) {
            quoted += c;
            if (c == '"') quoted += c;
        }
        return quoted + "\"";
    }

  private:
    void Run(const std::string& utf8Sql, const AnsiString& what) {
        if (sqlite3_exec(database_.get(), utf8Sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            Raise(database_.get(), what);
    }

    DatabaseHandle database_;
};

}  // namespace sqlite_provider

void RegisterSqliteProvider() {
    RegisterProvider("SQLite", [](const ConnectionString& settings) -> std::unique_ptr<ProviderConnection> {
        return std::make_unique<sqlite_provider::SqliteConnection>(settings);
    });
}

std::vector<AnsiString> sqlite_provider::SqliteConnection::TableNames() {
    const auto statement = Prepare(
        "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
        "ORDER BY name");
    RowStore rows({ColumnKind::Text});
    while (statement->Fetch(rows, INT64_MAX)) {
    }
    std::vector<AnsiString> names;
    for (int64_t i = 0; i < rows.Count(); ++i) names.push_back(Utf8ToAnsiLossy(rows.Bytes(i, 0)));
    return names;
}

}  // namespace vyn
