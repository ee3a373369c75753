#pragma once

#include <libpq-fe.h>

#include <set>

#include "platform/access/provider.h"

namespace vyn {

// A server that speaks PostgreSQL's protocol: "Provider=PostgreSQL;Data Source=HOST;Initial Catalog=DATABASE;
// User ID=...;Password=...", and perhaps Port, SSL Mode, Connect Timeout (seconds), Application Name and Mode=Read
// (nothing is written). A host that begins with "/" is the folder of a local socket; what is not said, libpq finds in
// its own places (environment, service and password files).
//
// A connection that broke is made again by itself: in silence while nothing was going on, else with an error that
// says what is lost, a transaction above all.
void RegisterPostgresqlProvider();

namespace postgresql_provider {

struct ClearResult {
    void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ClearResult>;
struct CloseConnection {
    void operator()(PGconn* connection) const { PQfinish(connection); }
};

// Types by their numbers in the server's catalog.
constexpr Oid kBool = 16, kBytea = 17, kName = 19, kInt8 = 20, kInt2 = 21, kInt4 = 23, kText = 25, kOid = 26,
              kJson = 114, kXml = 142, kFloat4 = 700, kFloat8 = 701, kMoney = 790, kBpchar = 1042, kVarchar = 1043,
              kDate = 1082, kTime = 1083, kTimestamp = 1114, kTimestampTz = 1184, kNumeric = 1700, kUuid = 2950,
              kJsonb = 3802;

constexpr int kTextFormat = 0;
constexpr int kBinaryFormat = 1;

// Values as libpq takes them. Texts go without a type, so that the server takes them for what they stand beside.
class Arguments {
  public:
    enum class Types { Inferred, Said };
    Arguments() = default;
    // Raises EDatabaseError for a text that the server cannot hold.
    Arguments(const std::vector<ProviderValue>& values, Types types);

    int Count() const { return static_cast<int>(values_.size()); }
    const Oid* TypeNumbers() const { return types_.data(); }
    const char* const* Values() const { return values_.data(); }
    const int* Lengths() const { return lengths_.data(); }
    const int* Formats() const { return formats_.data(); }
    // Whether there are numbers with fractions, which a whole number's place refuses.
    bool HasFractions() const { return hasFractions_; }

  private:
    std::vector<std::string> texts_;
    std::vector<Oid> types_;
    std::vector<const char*> values_;
    std::vector<int> lengths_;
    std::vector<int> formats_;
    bool hasFractions_ = false;
};

// How columns of a type are read: binary where that is known, else the whole result comes as text.
bool IsBinaryKnown(Oid type);
// By the server's type and its modifier.
TFieldType FieldTypeOf(Oid type, int modifier, int& size, int& precision);
// Puts a value of a result into the row being built.
void PutValue(RowStore& rows, const PGresult* result, int row, int column, Oid held, TFieldType type, bool binary);

class PostgresqlConnection final : public ProviderConnection {
  public:
    explicit PostgresqlConnection(const ConnectionString& settings);

    const EngineDialect& Dialect() const override;
    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override;
    int64_t Execute(const AnsiString& sql) override;
    std::vector<AnsiString> TableNames(SystemTables system) override;
    std::vector<AnsiString> ProcedureNames() override;
    bool IsTable(const AnsiString& name) override;
    std::vector<AnsiString> KeyColumns(const AnsiString& table) override;
    std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) override;
    TextIndex TextIndexOf(const AnsiString& table, const AnsiString& column) override;
    int64_t EstimatedRows(const AnsiString& table) override;
    int Begin() override;
    int Commit() override;
    int Rollback() override;
    int TransactionDepth() const override { return depth_; }
    bool WritesBesideReading() const override { return true; }
    void Listen(const AnsiString& channel) override;
    std::vector<ProviderNotice> TakeNotices() override;
    void SetCommandTimeout(int seconds) override { commandTimeout_ = seconds; }

    // For statements.
    // Sends something and waits for its whole answer; gives the last result, or none when nothing could be sent. A
    // server that says nothing for as long as is allowed is asked to break off; one that does not even do that is
    // given up.
    Result Exchange(const std::function<int(PGconn*)>& send);
    Result Exchange(const std::string& sql);
    // The whole answer to what was sent: its last result.
    Result Answer();
    // Whether what fails is taken back by itself, in a transaction that others need.
    bool Protects() const { return depth_ > 0 || (implicit_ && cursors_ > 1); }
    // Keeps in mind that something is being stored for good: without an answer nobody knows whether it was.
    class Storing {
      public:
        Storing(PostgresqlConnection& connection, bool stores) : connection_(connection) {
            connection_.storing_ = stores;
        }
        ~Storing() { connection_.storing_ = false; }
        Storing(const Storing&) = delete;
        Storing& operator=(const Storing&) = delete;

      private:
        PostgresqlConnection& connection_;
    };
    PGconn* Handle() const { return handle_.get(); }
    // Another number after the connection was made again: what was kept on the server is gone.
    int Generation() const { return generation_; }
    std::string NewName() { return "vyn_" + std::to_string(++names_); }
    // Before something is begun: makes a broken connection again. Raises when a transaction went with it.
    void Ready();
    // A cursor is opened, in a transaction of its own when there is none; and closed.
    // Gives the number of that transaction.
    int BeginReading();
    void EndReading(const std::string& cursor, int generation, int reading) noexcept;
    // Ends the transaction that cursors opened, before anything else is done; they go on without it.
    void Settle();
    // What fails in it leaves a transaction as it was before.
    Result Protected(const std::function<Result()>& action, const char* what);
    // Raises what a result says, unless it is a success.
    void Check(PGresult* result, const char* what);
    // The statement with names as the catalog has them, whatever their case.
    AnsiString WithCatalogNames(const AnsiString& sql);
    void Deallocate(const std::string& name, int generation) noexcept;
    // The columns of result columns' tables, by the table's number.
    struct Origin {
        AnsiString Table, Column;
        bool InKey = false, Required = false, Automatic = false, Counts = false, Computed = false;
    };
    std::vector<Origin> OriginsOf(const PGresult* description);

  private:
    Result Command(const std::string& sql, const char* what);
    Result Question(const std::string& sql, const std::vector<AnsiString>& values);
    std::vector<AnsiString> Names(const std::string& sql, const std::vector<AnsiString>& values);
    void Observe();
    bool IsBroken() const { return PQstatus(handle_.get()) != CONNECTION_OK; }
    void Reconnect();
    void Forget();
    [[noreturn]] void Lost();
    // The next result of what was sent, or none at its end.
    Result NextResult();
    void Await();
    bool AskToBreakOff();
    void GiveUp();
    void DropCopied();
    AnsiString LastMessage() const;

    std::unique_ptr<PGconn, CloseConnection> handle_;
    AnsiString host_;
    std::set<AnsiString> channels_;
    int commandTimeout_ = 0;
    bool silent_ = false;  // given up because nothing came
    bool storing_ = false;
    int generation_ = 1;
    int names_ = 0;
    int depth_ = 0;
    bool implicit_ = false;  // the transaction is the cursors'
    int reading_ = 0;
    int cursors_ = 0;  // opened in it
};

// What a result is: read through a cursor, or at once.
std::unique_ptr<ProviderStatement> PrepareStatement(PostgresqlConnection& connection, const AnsiString& sql);

}  // namespace postgresql_provider

}  // namespace vyn
