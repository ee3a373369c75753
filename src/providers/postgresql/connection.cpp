#include "providers/postgresql/connection.h"

#include <poll.h>

#include <algorithm>

#include "platform/access/fault.h"
#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace postgresql_provider {

constexpr char kFailed[] = "The statement failed";
constexpr char kProtection[] = "vyn_protection";
constexpr char kBackToProtection[] = "ROLLBACK TO vyn_protection; RELEASE vyn_protection";
constexpr int kMostPort = 65535;
// Reads that a closed connection needs to be known as such.
constexpr int kReadsUntilClosed = 8;

// What sessions agree upon; values are read by it.
constexpr char kSessionOptions[] =
    "-c datestyle=ISO,YMD -c bytea_output=hex -c extra_float_digits=1 -c standard_conforming_strings=on "
    "-c client_min_messages=warning";

PostgresqlConnection::PostgresqlConnection(const ConnectionString& settings) : host_(settings.Value("Data Source")) {
    std::vector<std::pair<const char*, std::string>> given;
    const auto give = [&](const char* keyword, const AnsiString& value) {
        if (!value.empty()) given.emplace_back(keyword, AnsiToUtf8(value));
    };
    give("host", host_);
    give("port", settings.Number("Port", 1, kMostPort));
    give("dbname", settings.Value("Initial Catalog", settings.Value("Database")));
    give("user", settings.Value("User ID", settings.Value("UID")));
    give("password", settings.Value("Password", settings.Value("PWD")));
    give("sslmode", settings.Value("SSL Mode"));
    give("connect_timeout", settings.Number("Connect Timeout", 0, kMostConnectSeconds));
    give("application_name", settings.Value("Application Name", "vyn"));
    give("client_encoding", "UTF8");
    const AnsiString mode = settings.Value("Mode");
    const bool readOnly = SameText(mode, "Read") || SameText(mode, "ReadOnly");
    give("options", AnsiString(kSessionOptions) + (readOnly ? " -c default_transaction_read_only=on" : ""));
    std::vector<const char*> keywords, values;
    for (const auto& [keyword, value] : given) {
        keywords.push_back(keyword);
        values.push_back(value.c_str());
    }
    keywords.push_back(nullptr);
    values.push_back(nullptr);
    handle_.reset(PQconnectdbParams(keywords.data(), values.data(), 0));
    if (IsBroken()) throw EDatabaseError("Data Source=" + host_ + ": " + LastMessage());
    PQsetNoticeProcessor(
        handle_.get(), [](void*, const char*) {}, nullptr);
    // Waiting is done here, with an end.
    PQsetnonblocking(handle_.get(), 1);
}

AnsiString PostgresqlConnection::LastMessage() const { return Trim(Utf8ToAnsiLossy(PQerrorMessage(handle_.get()))); }

void PostgresqlConnection::Forget() {
    ++generation_;
    depth_ = cursors_ = 0;
    implicit_ = silent_ = false;
}

void PostgresqlConnection::Reconnect() {
    Forget();
    PQreset(handle_.get());
    if (IsBroken()) return;
    PQsetnonblocking(handle_.get(), 1);
    for (const AnsiString& channel : channels_) Exchange("LISTEN " + AnsiToUtf8(Dialect().QuotedName(channel)));
}

void PostgresqlConnection::Lost() {
    const AnsiString lost = storing_ ? kOutcomeUnknown : depth_ > 0 ? kTransactionLost : "";
    if (silent_) {
        // A server that is frozen would not let us in either, and keep the user waiting once more.
        Forget();
        throw EDatabaseError(kServerSilent + lost + kMadeLater);
    }
    Reconnect();
    throw EDatabaseError(kConnectionLost + lost +
                         (IsBroken() ? kNotMadeAgain + LastMessage() : AnsiString(kMadeAgain)));
}

void PostgresqlConnection::Ready() {
    // The server's farewell, or the end, stands in the socket before anybody reads it.
    for (int i = 0; i < kReadsUntilClosed && !IsBroken(); ++i) {
        pollfd socket{PQsocket(handle_.get()), POLLIN, 0};
        if (poll(&socket, 1, 0) <= 0) break;
        if (!PQconsumeInput(handle_.get())) break;
    }
    if (!IsBroken()) return;
    if (depth_ > 0) Lost();
    Reconnect();
    if (IsBroken()) throw EDatabaseError("The connection to the database server is lost: " + LastMessage());
}

void PostgresqlConnection::Observe() {
    const PGTransactionStatusType status = PQtransactionStatus(handle_.get());
    // A statement may have begun or ended a transaction by itself.
    if (status == PQTRANS_IDLE) {
        depth_ = 0;
        implicit_ = false;
    } else if (status == PQTRANS_INTRANS && !implicit_) {
        depth_ = std::max(depth_, 1);
    }
}

// By what the server calls it (SQLSTATE).
DatabaseFault FaultOf(const AnsiString& state) {
    if (state == "53100") return DatabaseFault::DiskFull;
    if (state == "53200") return DatabaseFault::OutOfMemory;
    if (state == "58030") return DatabaseFault::DiskFailure;
    if (state == "XX001" || state == "XX002") return DatabaseFault::Damaged;
    if (state == "40001" || state == "40P01") return DatabaseFault::Deadlock;
    if (state == "55P03") return DatabaseFault::InUse;
    if (state == "57014") return DatabaseFault::TooSlow;
    return DatabaseFault::None;
}

void PostgresqlConnection::Check(PGresult* result, const char* what) {
    // Errors without a code are libpq's own: the end of the connection may only be found by reading on.
    const ExecStatusType status = PQresultStatus(result);
    const bool failed = status == PGRES_FATAL_ERROR || status == PGRES_BAD_RESPONSE;
    if (failed && !PQresultErrorField(result, PG_DIAG_SQLSTATE)) PQconsumeInput(handle_.get());
    if (IsBroken()) Lost();
    switch (status) {
        case PGRES_COMMAND_OK:
        case PGRES_TUPLES_OK:
        case PGRES_SINGLE_TUPLE:
        case PGRES_EMPTY_QUERY:
            return;
        default:
            break;
    }
    const auto field = [&](int code) {
        const char* text = PQresultErrorField(result, code);
        return Utf8ToAnsiLossy(text ? text : "");
    };
    AnsiString message = field(PG_DIAG_MESSAGE_PRIMARY);
    if (message.empty()) message = Trim(Utf8ToAnsiLossy(PQresultErrorMessage(result)));
    if (message.empty()) message = LastMessage();
    for (int code : {PG_DIAG_MESSAGE_DETAIL, PG_DIAG_MESSAGE_HINT})
        if (!field(code).empty()) message += "\n" + field(code);
    throw EDatabaseError(FaultMessage(what, FaultOf(field(PG_DIAG_SQLSTATE)), message));
}

Result PostgresqlConnection::Command(const std::string& sql, const char* what) {
    Result result = Exchange(sql);
    Check(result.get(), what);
    Observe();
    return result;
}

Result PostgresqlConnection::Protected(const std::function<Result()>& action, const char* what) {
    // A statement by itself is a transaction of its own; so is the only cursor's.
    const bool protect = Protects();
    if (protect) Command(std::string("SAVEPOINT ") + kProtection, what);
    Result result;
    try {
        result = action();
        Check(result.get(), what);
    } catch (...) {
        if (!IsBroken() && PQtransactionStatus(handle_.get()) == PQTRANS_INERROR)
            Exchange(std::string(protect ? kBackToProtection : "ROLLBACK"));
        Observe();
        throw;
    }
    // The statement may have ended the transaction.
    if (protect && PQtransactionStatus(handle_.get()) == PQTRANS_INTRANS)
        Exchange(std::string("RELEASE ") + kProtection);
    Observe();
    return result;
}

int PostgresqlConnection::BeginReading() {
    // In a transaction that is there already the cursor is a part of it.
    if (depth_ > 0) return 0;
    if (!implicit_) {
        Command("BEGIN", "The query cannot begin");
        implicit_ = true;
        depth_ = cursors_ = 0;
        ++reading_;
    }
    ++cursors_;
    return reading_;
}

void PostgresqlConnection::EndReading(const std::string& cursor, int generation, int reading) noexcept {
    if (generation != generation_ || IsBroken()) return;
    const std::string close = cursor.empty() ? std::string() : "CLOSE " + cursor;
    try {
        if (implicit_ && reading == reading_ && --cursors_ == 0) {
            // The last one ends what the first began.
            Command(close + "; COMMIT", kFailed);
        } else if (!close.empty()) {
            Protected([&] { return Exchange(close); }, kFailed);
        }
    } catch (const EDatabaseError&) {
        // What is closed may be gone with its transaction; what is wrong with the connection the next step says.
    }
}

void PostgresqlConnection::Settle() {
    Ready();
    if (!implicit_) return;
    Command("COMMIT", "The query cannot go on");
    implicit_ = false;
}

std::unique_ptr<ProviderStatement> PostgresqlConnection::Prepare(const AnsiString& sql) {
    return PrepareStatement(*this, sql);
}

int64_t PostgresqlConnection::Execute(const AnsiString& sql) {
    Settle();
    const std::string utf8 = AnsiToUtf8(sql);
    if (utf8.find('\0') != std::string::npos)
        throw EDatabaseError("The database cannot hold a NUL character in a text or name");
    const Storing storing(*this, depth_ == 0 && !ReadsOnly(sql));
    const Result result = Protected([&] { return Exchange(utf8); }, kFailed);
    return std::atoll(PQcmdTuples(result.get()));
}

int PostgresqlConnection::Begin() {
    Settle();
    const int depth = depth_;
    Command(depth == 0 ? std::string("BEGIN") : "SAVEPOINT vyn_" + std::to_string(depth),
            "The transaction cannot begin");
    return depth_ = depth + 1;
}

int PostgresqlConnection::Commit() {
    Ready();
    const int depth = depth_;
    const Storing storing(*this, depth <= 1);
    Command(depth > 1 ? "RELEASE vyn_" + std::to_string(depth - 1) : std::string("COMMIT"),
            "The transaction cannot end");
    return depth_ = std::max(depth - 1, 0);
}

int PostgresqlConnection::Rollback() {
    Ready();
    const int depth = depth_;
    const std::string name = "vyn_" + std::to_string(depth - 1);
    if (depth > 1)
        Command("ROLLBACK TO " + name + "; RELEASE " + name, "The transaction cannot be taken back");
    else if (depth == 1)
        Command("ROLLBACK", "The transaction cannot be taken back");
    return depth_ = std::max(depth - 1, 0);
}

void PostgresqlConnection::Listen(const AnsiString& channel) {
    Settle();
    Command("LISTEN " + AnsiToUtf8(Dialect().QuotedName(channel)), kFailed);
    channels_.insert(channel);
}

std::vector<ProviderNotice> PostgresqlConnection::TakeNotices() {
    Ready();
    std::vector<ProviderNotice> notices;
    const int own = PQbackendPID(handle_.get());
    while (PGnotify* notice = PQnotifies(handle_.get())) {
        // What this connection says itself it knows.
        if (notice->be_pid != own)
            notices.push_back({Utf8ToAnsiLossy(notice->relname), Utf8ToAnsiLossy(notice->extra)});
        PQfreemem(notice);
    }
    return notices;
}

void PostgresqlConnection::Deallocate(const std::string& name, int generation) noexcept {
    if (generation != generation_ || IsBroken() || PQtransactionStatus(handle_.get()) == PQTRANS_INERROR) return;
    Exchange("DEALLOCATE " + name);
}

}  // namespace postgresql_provider

void RegisterPostgresqlProvider() {
    RegisterProvider("PostgreSQL", [](const ConnectionString& settings) -> std::unique_ptr<ProviderConnection> {
        return std::make_unique<postgresql_provider::PostgresqlConnection>(settings);
    });
}

}  // namespace vyn
