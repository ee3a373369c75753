#include <algorithm>

#include "platform/access/fault.h"
#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "providers/postgresql/connection.h"

namespace vyn::postgresql_provider {

// Rows that are fetched at once: few enough that the processor's caches hold them, and the server's memory does too.
constexpr int64_t kLargestPart = 10000;
constexpr int64_t kFirstPart = 512;
constexpr int64_t kPartBytes = 1 << 20;
constexpr char kStatementFailed[] = "The statement failed";
// What the server calls its errors (SQLSTATE).
constexpr char kUndefinedTable[] = "42P01", kUndefinedColumn[] = "42703", kUnknownType[] = "42P18",
               kBadText[] = "22P02", kOperatorUnknown[] = "42883", kPlanChanged[] = "0A000";

class PostgresqlStatement final : public ProviderStatement {
  public:
    PostgresqlStatement(PostgresqlConnection& connection, const AnsiString& sql) : connection_(connection) {
        AnsiString numbered;
        bool first = true;
        for (const SqlToken& token : TokenizeSql(sql)) {
            const bool isMark = token.Kind == SqlTokenKind::Symbol && token.Text == "?";
            numbered += isMark ? "$" + std::to_string(++parameters_) : AnsiString(token.Text);
            if (token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment) continue;
            if (first)
                reads_ = IsKeyword(token, "SELECT") || IsKeyword(token, "VALUES") || IsKeyword(token, "TABLE") ||
                         IsKeyword(token, "WITH") || token.Text == "(";
            first = false;
            // Such statements do more than read.
            for (const char* word : {"INSERT", "UPDATE", "DELETE", "MERGE", "INTO", "SHARE"})
                if (IsKeyword(token, word)) reads_ = false;
        }
        changes_ = !ReadsOnly(sql);
        if (first) throw EDatabaseError("The statement is empty");
        if (numbered.find('\0') != AnsiString::npos)
            throw EDatabaseError("The database cannot hold a NUL character in a text or name");
        sql_ = numbered;
        bound_.resize(static_cast<size_t>(parameters_));
    }
    ~PostgresqlStatement() override {
        CloseCursor();
        if (!prepared_.empty()) connection_.Deallocate(prepared_, preparedGeneration_);
    }

    std::vector<FieldDefinition> Columns() override {
        if (!columnsKnown_) Start();
        return columns_;
    }

    void ExpectColumns(std::vector<FieldDefinition> columns) override {
        columns_ = std::move(columns);
        columnsKnown_ = true;
        // One record of ours, written or read again: no cursor is worth it.
        reads_ = false;
    }

    int ParameterCount() const override { return parameters_; }

    void Bind(const std::vector<ProviderValue>& values) override {
        Stop();
        bound_ = values;
        bound_.resize(static_cast<size_t>(parameters_));
    }

    int64_t Execute() override {
        Stop();
        RunAtOnce();
        const Result result = std::move(whole_);
        return std::atoll(PQcmdTuples(result.get()));
    }

    bool Fetch(RowStore& rows, int64_t count) override {
        if (!started_) Start();
        if (done_) return false;
        if (whole_) return FetchFromWhole(rows, count);
        if (generation_ != connection_.Generation()) {
            done_ = true;
            throw EDatabaseError(kLostWhileReading);
        }
        return FetchFromCursor(rows, count);
    }

  private:
    void Start() {
        started_ = true;
        done_ = false;
        if (!reads_) {
            RunAtOnce();
            if (!columnsKnown_) Describe(whole_.get());
            if (PQnfields(whole_.get()) == 0) done_ = true;
            return;
        }
        connection_.Ready();
        generation_ = connection_.Generation();
        reading_ = connection_.BeginReading();
        try {
            const std::string name = connection_.NewName();
            Run([&](const std::string& sql, const Arguments& given) {
                const std::string declare = "DECLARE " + name + " NO SCROLL CURSOR WITH HOLD FOR " + sql;
                return connection_.Exchange([&](PGconn* handle) {
                    return PQsendQueryParams(handle, declare.c_str(), given.Count(), given.TypeNumbers(),
                                             given.Values(), given.Lengths(), given.Formats(), kTextFormat);
                });
            });
            cursor_ = name;
            if (!columnsKnown_) {
                const Result described =
                    connection_.Exchange([&](PGconn* handle) { return PQsendDescribePortal(handle, name.c_str()); });
                connection_.Check(described.get(), kStatementFailed);
                Describe(described.get());
            }
        } catch (...) {
            Stop();
            throw;
        }
    }

    void Stop() {
        whole_.reset();
        CloseCursor();
        started_ = done_ = false;
    }

    void CloseCursor() {
        if (reading_ != kNotReading) connection_.EndReading(cursor_, generation_, reading_);
        cursor_.clear();
        reading_ = kNotReading;
    }

    // Runs the statement; again with the catalog's names, or with types that are said, where the server misses those.
    template <class F>
    Result Run(F action) {
        for (bool namesTried = false, typesTried = false;;) {
            const Arguments given(bound_, types_);
            AnsiString state;
            try {
                const std::string utf8 = AnsiToUtf8(sql_);
                return connection_.Protected(
                    [&] {
                        Result result = action(utf8, given);
                        const char* code = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
                        state = code ? code : "";
                        return result;
                    },
                    kStatementFailed);
            } catch (const EDatabaseError&) {
                if (!namesTried && (state == kUndefinedTable || state == kUndefinedColumn)) {
                    namesTried = true;
                    const AnsiString named = connection_.WithCatalogNames(sql_);
                    if (named == sql_) throw;
                    sql_ = named;
                } else if (!typesTried && types_ == Arguments::Types::Inferred &&
                           (state == kUnknownType || state == kOperatorUnknown ||
                            (state == kBadText && given.HasFractions()))) {
                    typesTried = true;
                    types_ = Arguments::Types::Said;
                } else if (state == kPlanChanged && !prepared_.empty()) {
                    // The table has other columns by now.
                    connection_.Deallocate(prepared_, preparedGeneration_);
                    prepared_.clear();
                } else {
                    throw;
                }
            }
        }
    }

    // Without a cursor. What is run more than once is prepared.
    void RunAtOnce() {
        connection_.Settle();
        ++runs_;
        if (!prepared_.empty() && preparedGeneration_ != connection_.Generation()) prepared_.clear();
        const PostgresqlConnection::Storing storing(connection_, changes_ && connection_.TransactionDepth() == 0);
        whole_ = Run([&](const std::string& sql, const Arguments& given) {
            if (runs_ == 1)
                return connection_.Exchange([&](PGconn* handle) {
                    return PQsendQueryParams(handle, sql.c_str(), given.Count(), given.TypeNumbers(), given.Values(),
                                             given.Lengths(), given.Formats(), kTextFormat);
                });
            if (prepared_.empty()) {
                binaryKnown_ = false;
                const std::string name = connection_.NewName();
                Result made = connection_.Exchange([&](PGconn* handle) {
                    return PQsendPrepare(handle, name.c_str(), sql.c_str(), given.Count(), given.TypeNumbers());
                });
                if (PQresultStatus(made.get()) != PGRES_COMMAND_OK) return made;
                prepared_ = name;
                preparedGeneration_ = connection_.Generation();
            }
            return connection_.Exchange([&](PGconn* handle) {
                return PQsendQueryPrepared(handle, prepared_.c_str(), given.Count(), given.Values(), given.Lengths(),
                                           given.Formats(), binaryKnown_ ? kBinaryFormat : kTextFormat);
            });
        });
        started_ = true;
        wholeAt_ = 0;
        const int columns = PQnfields(whole_.get());
        binary_ = columns > 0 && PQfformat(whole_.get(), 0) == kBinaryFormat;
        // What is run again comes in the server's own form, where that is known.
        binaryKnown_ = true;
        for (int i = 0; i < columns; ++i) binaryKnown_ = binaryKnown_ && IsBinaryKnown(PQftype(whole_.get(), i));
    }

    void Describe(const PGresult* result) {
        columnsKnown_ = true;
        const int count = PQnfields(result);
        const std::vector<PostgresqlConnection::Origin> origins = connection_.OriginsOf(result);
        binary_ = !whole_;
        for (int i = 0; i < count; ++i) {
            const PostgresqlConnection::Origin& origin = origins[static_cast<size_t>(i)];
            FieldDefinition definition;
            definition.Name = Utf8ToAnsiLossy(PQfname(result, i));
            definition.DataType =
                FieldTypeOf(PQftype(result, i), PQfmod(result, i), definition.Size, definition.Precision);
            definition.OriginTable = origin.Table;
            definition.OriginColumn = origin.Column;
            definition.InKey = origin.InKey;
            definition.Required = origin.Required;
            definition.Automatic = origin.Automatic;
            definition.ReadOnly = origin.Table.empty() || origin.Computed;
            if (origin.Counts && definition.DataType == ftInteger) definition.DataType = ftAutoInc;
            binary_ = binary_ && IsBinaryKnown(PQftype(result, i));
            columns_.push_back(definition);
        }
    }

    // Before rows of a result are put.
    void TakeTypes(const PGresult* result) {
        held_.resize(columns_.size());
        for (size_t i = 0; i < held_.size(); ++i) held_[i] = PQftype(result, static_cast<int>(i));
    }

    void PutRow(RowStore& rows, const PGresult* result, int row) const {
        rows.BeginRow();
        for (size_t i = 0; i < columns_.size(); ++i)
            PutValue(rows, result, row, static_cast<int>(i), held_[i], columns_[i].DataType, binary_);
        rows.EndRow();
    }

    bool FetchFromWhole(RowStore& rows, int64_t count) {
        TakeTypes(whole_.get());
        for (; count > 0 && wholeAt_ < PQntuples(whole_.get()); --count) PutRow(rows, whole_.get(), wholeAt_++);
        if (wholeAt_ < PQntuples(whole_.get())) return true;
        done_ = true;
        whole_.reset();
        return false;
    }

    // In parts, the next of which the server makes while one is taken apart here.
    bool FetchFromCursor(RowStore& rows, int64_t count) {
        // What has to be taken back by itself goes one by one.
        const bool ahead = !connection_.Protects();
        int64_t part = PartOf(count);
        try {
            if (ahead) Ask(part);
            for (;;) {
                const Result result = connection_.Protected(
                    [&] {
                        if (!ahead) Ask(part);
                        return connection_.Answer();
                    },
                    kStatementFailed);
                const int got = PQntuples(result.get());
                if (got > 0) bytesARow_ = static_cast<int64_t>(PQresultMemorySize(result.get())) / got + 1;
                count -= part;
                const bool ends = got < part, more = !ends && count > 0;
                part = PartOf(count);
                if (more && ahead) Ask(part);
                TakeTypes(result.get());
                for (int row = 0; row < got; ++row) PutRow(rows, result.get(), row);
                if (more) continue;
                if (!ends) return true;
                done_ = true;
                CloseCursor();
                return false;
            }
        } catch (...) {
            done_ = true;
            // What is on its way has to be taken all the same.
            if (generation_ == connection_.Generation()) connection_.Answer();
            throw;
        }
    }

    // How many rows are asked for at once, of those that are wanted.
    int64_t PartOf(int64_t wanted) const {
        const int64_t fits = bytesARow_ == 0 ? kFirstPart : kPartBytes / bytesARow_;
        return std::min(wanted, std::clamp<int64_t>(fits, 1, kLargestPart));
    }

    void Ask(int64_t count) const {
        const std::string fetch = "FETCH " + std::to_string(count) + " FROM " + cursor_;
        PQsendQueryParams(connection_.Handle(), fetch.c_str(), 0, nullptr, nullptr, nullptr, nullptr,
                          binary_ ? kBinaryFormat : kTextFormat);
    }

    static constexpr int kNotReading = -1;

    PostgresqlConnection& connection_;
    AnsiString sql_;
    int parameters_ = 0;
    bool reads_ = false;  // and does nothing else
    bool changes_ = false;
    std::vector<ProviderValue> bound_;
    Arguments::Types types_ = Arguments::Types::Inferred;
    std::vector<FieldDefinition> columns_;
    std::vector<Oid> held_;
    bool columnsKnown_ = false;
    bool started_ = false;
    bool done_ = false;
    bool binary_ = false;
    int generation_ = 0;
    int runs_ = 0;
    int64_t bytesARow_ = 0;  // of results, when there were some
    // A cursor, or the whole result.
    std::string cursor_;
    int reading_ = kNotReading;
    Result whole_;
    int wholeAt_ = 0;
    std::string prepared_;
    bool binaryKnown_ = false;  // of the columns that the last run gave
    int preparedGeneration_ = 0;
};

std::unique_ptr<ProviderStatement> PrepareStatement(PostgresqlConnection& connection, const AnsiString& sql) {
    return std::make_unique<PostgresqlStatement>(connection, sql);
}

}  // namespace vyn::postgresql_provider
