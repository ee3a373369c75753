#pragma once

#include <sql.h>
#include <sqlext.h>

#include <atomic>
#include <set>

#include "platform/access/fault.h"
#include "platform/access/provider.h"
#include "platform/text/exceptions.h"
#include "providers/odbc/driver_sockets.h"
#include "providers/odbc/watchdog.h"

namespace vyn {

// Any engine that has an ODBC driver: "Provider=MSDASQL;" and either "Data Source=NAME" (a data source of the system's)
// or the driver's own keys, as they are ("Driver={SQLite3};Database=FILE"); "Extended Properties" may hold those too.
// User ID, Password and Initial Catalog stand for UID, PWD and DATABASE. How the engine's SQL differs is told from the
// name that the driver gives of its engine (dialect.cpp).
//
// A connection that broke is made again by itself, as PostgreSQL's are; a driver that waits for a server without an end
// is cut off after Command Timeout.
void RegisterOdbcProvider();

namespace odbc_provider {

// A handle of the driver manager's, freed as its kind wants.
template <SQLSMALLINT Kind>
class Handle {
  public:
    Handle() = default;
    explicit Handle(SQLHANDLE parent) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(Kind, parent, &handle_))) handle_ = SQL_NULL_HANDLE;
    }
    ~Handle() {
        if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(Kind, handle_);
    }
    Handle(Handle&& other) noexcept : handle_(other.handle_) { other.handle_ = SQL_NULL_HANDLE; }
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    SQLHANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }

  private:
    SQLHANDLE handle_ = SQL_NULL_HANDLE;
};
using Environment = Handle<SQL_HANDLE_ENV>;
using DatabaseHandle = Handle<SQL_HANDLE_DBC>;

// The driver manager's texts.
std::u16string WideOf(const AnsiString& text);
inline SQLWCHAR* Wide(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }
inline SQLSMALLINT WideLength(const std::u16string& text) { return static_cast<SQLSMALLINT>(text.size()); }
AnsiString AnsiOf(const SQLWCHAR* text, SQLSMALLINT length);

// An error with the state that drivers give it.
class EOdbcError : public EDatabaseError {
  public:
    EOdbcError(AnsiString message, AnsiString state, SQLINTEGER number = 0)
        : EDatabaseError(std::move(message)), State(std::move(state)), Number(number) {}
    AnsiString State;
    SQLINTEGER Number;  // the engine's own
};

// Raises EOdbcError with the driver's reason unless the call went well. Engines in the process have error numbers.
enum class Numbers { Unknown, Sqlite };
void Check(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle, const AnsiString& what,
           Numbers numbers = Numbers::Unknown);

// A connection of the driver's. Statements that were made in it keep it, also when another was made in its place.
struct Link {
    explicit Link(const Environment& environment) : Database(environment.Get()) {}
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    // From any thread.
    void Cut();

    DatabaseHandle Database;
    bool Connected = false;
    DriverSockets Before = DriverSockets::Now();
    DriverSockets Sockets;
    std::atomic<bool> WasCut = false;
    Watchdog Dog{[this] { Cut(); }};
};

class StatementHandle {
  public:
    StatementHandle() = default;
    explicit StatementHandle(std::shared_ptr<Link> link) : link_(std::move(link)), handle_(link_->Database.Get()) {}
    StatementHandle(StatementHandle&&) noexcept = default;
    StatementHandle& operator=(StatementHandle&& other) noexcept {
        // The statement goes before its connection.
        handle_ = std::move(other.handle_);
        std::swap(link_, other.link_);
        return *this;
    }
    SQLHANDLE Get() const { return handle_.Get(); }

  private:
    std::shared_ptr<Link> link_;
    Handle<SQL_HANDLE_STMT> handle_;
};

// How an engine behind a driver differs beyond its SQL.
struct Engine {
    EngineDialect Dialect;
    AnsiString LastKeyQuery;
    bool HasReturning = false;  // INSERT and UPDATE give back what they wrote
    bool HasSavepoints = true;  // parts of transactions can be taken back
    bool DatesAsTexts = false;  // the engine has no dates of its own: as the dialect writes literals
    bool NamesAliases = false;  // the driver gives a column's alias for its name in the table
    bool MindsCase = false;     // quoted names are found in their own spelling only
    AnsiString SystemPrefix;    // of the engine's own tables
    Numbers ErrorNumbers = Numbers::Unknown;
};
// By the name that the driver gives of it.
Engine EngineOf(const AnsiString& name);

// A column of a table, as the catalog has it.
struct ColumnDescription {
    AnsiString Name;
    bool Required = false;
    bool Automatic = false;
};

class OdbcConnection final : public ProviderConnection {
  public:
    explicit OdbcConnection(const ConnectionString& settings);
    ~OdbcConnection() override;

    const EngineDialect& Dialect() const override { return engine_.Dialect; }
    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override;
    int64_t Execute(const AnsiString& sql) override;
    std::vector<AnsiString> TableNames(SystemTables system) override;
    std::vector<AnsiString> ProcedureNames() override;
    bool IsTable(const AnsiString& name) override;
    std::vector<AnsiString> KeyColumns(const AnsiString& table) override;
    std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) override;
    int Begin() override;
    int Commit() override;
    int Rollback() override;
    int TransactionDepth() const override { return depth_; }
    AnsiString Returning(const std::vector<AnsiString>& columns) const override;
    AnsiString LastKeyQuery() const override { return engine_.LastKeyQuery; }

    void SetCommandTimeout(int seconds) override { commandTimeout_ = seconds; }

    // For statements.
    // Before something is begun: makes a broken connection again. Raises when a transaction went with it.
    void Ready();
    // Ready.
    StatementHandle NewStatement();
    // Another number after the connection was made again: statements have to be made anew.
    int Generation() const { return generation_; }
    // Runs a call of the driver's, no longer than is allowed, and raises what went wrong with it.
    SQLRETURN Call(const StatementHandle& statement, const std::function<SQLRETURN()>& call, const AnsiString& what);
    // Keeps in mind that something is being stored for good: without an answer nobody knows whether it was.
    class Storing {
      public:
        Storing(OdbcConnection& connection, bool stores) : connection_(connection) { connection_.storing_ = stores; }
        ~Storing() { connection_.storing_ = false; }
        Storing(const Storing&) = delete;
        Storing& operator=(const Storing&) = delete;

      private:
        OdbcConnection& connection_;
    };
    const struct Engine& Engine() const { return engine_; }
    std::vector<ColumnDescription> DescribeTable(const AnsiString& table);
    // The statement with names as the catalog has them, whatever their case.
    AnsiString WithCatalogNames(const AnsiString& sql);
    // The name of a table as the catalog spells it, or empty.
    AnsiString TableCalled(const AnsiString& name);

  private:
    class Answer;
    struct CatalogTable {
        AnsiString name;
        AnsiString kind;
    };
    void Connect();
    void Forget();
    [[noreturn]] void Lost();
    // Takes the transaction back where the engine may have done so by itself: what follows would be half of it.
    void TakeBack();
    bool IsBroken() const;
    SQLRETURN CallOn(SQLSMALLINT kind, SQLHANDLE handle, const std::function<SQLRETURN()>& call,
                     const AnsiString& what);
    std::chrono::milliseconds Allowed() const;
    template <class F>
    bool Has(const StatementHandle& statement, F call);
    std::vector<CatalogTable> Tables(const AnsiString& name, SystemTables system);
    std::vector<CatalogTable> TablesLike(const AnsiString& pattern, SystemTables system);
    void EndTransaction(SQLSMALLINT how, const AnsiString& what);
    void Run(const AnsiString& sql, const AnsiString& what);
    // A statement may begin or end a transaction by itself.
    void Observe(const AnsiString& sql);

    Environment environment_;
    AnsiString driverString_;
    AnsiString where_;
    bool readOnly_ = false;
    int connectTimeout_ = 0;
    int commandTimeout_ = 0;
    std::shared_ptr<Link> link_;
    int generation_ = 1;
    struct Engine engine_;
    int depth_ = 0;
    bool bySql_ = false;  // the transaction was begun by a statement
    bool storing_ = false;
};

std::unique_ptr<ProviderStatement> PrepareStatement(OdbcConnection& connection, const AnsiString& sql);

}  // namespace odbc_provider

}  // namespace vyn
