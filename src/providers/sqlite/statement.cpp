#include <cmath>
#include <cstring>
#include <map>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"

namespace vyn {

namespace sqlite_provider {

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

constexpr double kJulianDayOfEpoch = 2415018.5;  // the Julian day number of 1899-12-30
constexpr double kUnixDayOfEpoch = 25569;        // 1970-01-01
constexpr double kSecondsADay = 86400;
// A real number below this is a Julian day in a date column; an integer counts seconds from 1970.
constexpr double kMostJulianDay = 5373485;

class SqliteStatement final : public ProviderStatement {
  public:
    SqliteStatement(Session& session, const AnsiString& sql) : session_(session), database_(session.Database()) {
        session_.Start();
        const std::string utf8 = AnsiToUtf8(sql);
        sqlite3_stmt* prepared = nullptr;
        const char* tail = nullptr;
        if (sqlite3_prepare_v2(database_, utf8.c_str(), static_cast<int>(utf8.size()) + 1, &prepared, &tail) !=
            SQLITE_OK)
            session_.Raise("The statement failed");
        if (!prepared) throw EDatabaseError("The statement is empty");
        statement_.reset(prepared);
        for (const SqlToken& token : TokenizeSql(tail ? tail : ""))
            if (token.Kind != SqlTokenKind::Blank && token.Kind != SqlTokenKind::Comment && token.Text != ";")
                throw EDatabaseError("There is more than one statement");
    }

    std::vector<FieldDefinition> Columns() override {
        if (!columnsKnown_) FindColumns();
        return columns_;
    }

    void ExpectColumns(std::vector<FieldDefinition> columns) override {
        columns_ = std::move(columns);
        readings_.clear();
        columnsKnown_ = true;
    }

    int ParameterCount() const override { return sqlite3_bind_parameter_count(statement_.get()); }

    void Bind(const std::vector<ProviderValue>& values) override {
        sqlite3_reset(statement_.get());
        pendingRow_ = done_ = false;
        for (size_t i = 0; i < values.size(); ++i)
            if (BindOne(static_cast<int>(i) + 1, values[i]) != SQLITE_OK)
                Raise(database_, "A parameter cannot be bound");
    }

    int64_t Execute() override {
        session_.Start();
        const int64_t before = sqlite3_total_changes64(database_);
        while (!done_ && Step()) {
        }
        return sqlite3_total_changes64(database_) - before;
    }

    bool Fetch(RowStore& rows, int64_t count) override {
        session_.Start();
        if (!columnsKnown_) FindColumns();
        for (; count > 0; --count) {
            if (!pendingRow_) {
                if (done_ || !Step()) return false;
            }
            pendingRow_ = false;
            PutRow(rows);
        }
        return true;
    }

  private:
    bool Step() {
        const int result = sqlite3_step(statement_.get());
        if (result == SQLITE_ROW) return true;
        done_ = true;
        if (result != SQLITE_DONE) session_.Raise("The statement failed");
        return false;
    }

    int BindOne(int index, const ProviderValue& value) {
        sqlite3_stmt* statement = statement_.get();
        const Cell& cell = value.Value;
        if (cell.IsNull()) return sqlite3_bind_null(statement, index);
        if (cell.IsInteger()) {
            if (value.Type == ftCurrency || value.Type == ftBCD) return BindAmount(index, cell.AsInteger());
            return sqlite3_bind_int64(statement, index, cell.AsInteger());
        }
        if (cell.IsReal()) {
            if (value.Type == ftDate || value.Type == ftTime || value.Type == ftDateTime)
                return BindText(index, DateText(cell.AsReal(), value.Type));
            return sqlite3_bind_double(statement, index, cell.AsReal());
        }
        const std::string_view bytes = cell.AsBytes();
        if (ColumnKindOf(value.Type) == ColumnKind::Bytes)
            return sqlite3_bind_blob64(statement, index, bytes.data() ? bytes.data() : "", bytes.size(),
                                       SQLITE_TRANSIENT);
        return BindText(index, bytes);
    }
    // Whole amounts as such; others as the engine's real numbers, which must say them to the last digit.
    int BindAmount(int index, int64_t scaled) {
        if (scaled % Currency::kScale == 0)
            return sqlite3_bind_int64(statement_.get(), index, scaled / Currency::kScale);
        const Currency amount = Currency::FromScaled(scaled);
        const double real = amount.ToDouble();
        if (Currency(real) != amount)
            throw EDatabaseError("This database keeps 15 digits of a number: " +
                                 CurrToStr(amount, InvariantFormatSettings()) + " has more");
        return sqlite3_bind_double(statement_.get(), index, real);
    }
    int BindText(int index, std::string_view text) {
        return sqlite3_bind_text64(statement_.get(), index, text.data() ? text.data() : "", text.size(),
                                   SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    // As the dialect writes literals, and thousandths of a second when there are some.
    static std::string DateText(double days, TFieldType type) {
        Word hour, minute, second, millisecond;
        DecodeTime(days, hour, minute, second, millisecond);
        const bool atMidnight = hour == 0 && minute == 0 && second == 0 && millisecond == 0;
        const EngineDialect& dialect = Dialect();
        const AnsiString& mask = type == ftTime                                                  ? dialect.TimeMask
                                 : type == ftDate || (atMidnight && dialect.MidnightIsDateAlone) ? dialect.DateMask
                                                                                                 : dialect.DateTimeMask;
        const bool fraction = type != ftDate && millisecond != 0;
        return FormatDateTime(fraction ? mask + ".zzz" : mask, days, InvariantFormatSettings());
    }

    // Declared types say what columns hold; computed columns take the type of their first value.
    void FindColumns() {
        columnsKnown_ = true;
        const int count = sqlite3_column_count(statement_.get());
        for (int i = 0; i < count; ++i) {
            FieldDefinition definition;
            const char* name = sqlite3_column_name(statement_.get(), i);
            definition.Name = Utf8ToAnsiLossy(name ? name : "");
            definition.DataType = TypeOfDeclaration(sqlite3_column_decltype(statement_.get(), i), definition.Size);
            FindOrigin(i, definition);
            if (definition.DataType == ftUnknown) {
                if (!pendingRow_ && !done_) {
                    session_.Start();
                    pendingRow_ = Step();
                }
                definition.DataType = pendingRow_ ? TypeOfValue(i) : ftString;
            }
            columns_.push_back(definition);
        }
    }
    void FindOrigin(int column, FieldDefinition& definition) {
        const char* schema = sqlite3_column_database_name(statement_.get(), column);
        const char* table = sqlite3_column_table_name(statement_.get(), column);
        const char* origin = sqlite3_column_origin_name(statement_.get(), column);
        definition.ReadOnly = true;
        // Tables of attached databases are read only: the catalog speaks of the connection's own.
        if (!schema || !table || !origin || !(SameText(schema, "main") || SameText(schema, "temp"))) return;
        // So is what has a name that SQL of ours cannot say.
        AnsiString tableName, originName;
        size_t position = 0;
        if (!TryUtf8ToAnsi(table, tableName, position) || !TryUtf8ToAnsi(origin, originName, position)) return;
        auto known = tables_.find(table);
        if (known == tables_.end()) known = tables_.emplace(table, DescribeTable(database_, table)).first;
        for (const ColumnDescription& each : known->second) {
            if (each.Name != origin) continue;
            definition.OriginTable = tableName;
            definition.OriginColumn = originName;
            definition.InKey = each.InKey;
            definition.Automatic = each.Automatic;
            definition.Required = each.Required;
            definition.ReadOnly = each.Computed;
            if (each.Counts) definition.DataType = ftAutoInc;
        }
    }
    TFieldType TypeOfValue(int column) {
        switch (sqlite3_column_type(statement_.get(), column)) {
            case SQLITE_INTEGER:
                return ftLargeint;
            case SQLITE_FLOAT:
                return ftFloat;
            case SQLITE_BLOB:
                return ftBlob;
            default:
                return ftString;
        }
    }

    // How a column's values are read.
    enum class Reading { Integer, Boolean, Amount, Real, Date, Text, Bytes };
    static Reading ReadingOf(TFieldType type) {
        if (type == ftBoolean) return Reading::Boolean;
        if (type == ftCurrency || type == ftBCD) return Reading::Amount;
        switch (ColumnKindOf(type)) {
            case ColumnKind::Integer:
                return Reading::Integer;
            case ColumnKind::Real:
                return type == ftFloat ? Reading::Real : Reading::Date;
            case ColumnKind::Text:
                return Reading::Text;
            case ColumnKind::Bytes:
                return Reading::Bytes;
        }
        return Reading::Text;
    }

    static std::string_view TextOf(sqlite3_value* value) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
        return text ? std::string_view(text, static_cast<size_t>(sqlite3_value_bytes(value))) : std::string_view();
    }

    void PutRow(RowStore& rows) {
        if (readings_.size() != columns_.size()) {
            readings_.clear();
            for (const FieldDefinition& each : columns_) readings_.push_back(ReadingOf(each.DataType));
        }
        rows.BeginRow();
        sqlite3_stmt* statement = statement_.get();
        for (size_t i = 0; i < readings_.size(); ++i)
            PutValue(rows, sqlite3_column_value(statement, static_cast<int>(i)), readings_[i]);
        rows.EndRow();
    }

    static void PutValue(RowStore& rows, sqlite3_value* value, Reading reading) {
        const int held = sqlite3_value_type(value);
        if (held == SQLITE_NULL) {
            rows.PutNull();
            return;
        }
        switch (reading) {
            case Reading::Integer:
                rows.PutInteger(sqlite3_value_int64(value));
                return;
            case Reading::Boolean:
                rows.PutInteger(held == SQLITE_TEXT ? IsWordForTrue(TextOf(value)) : sqlite3_value_int64(value));
                return;
            case Reading::Amount:
                PutAmount(rows, value, held);
                return;
            case Reading::Real:
                rows.PutReal(sqlite3_value_double(value));
                return;
            case Reading::Date:
                PutDate(rows, value, held);
                return;
            case Reading::Text:
                rows.PutBytes(TextOf(value));
                return;
            case Reading::Bytes: {
                const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
                const auto size = static_cast<size_t>(sqlite3_value_bytes(value));
                rows.PutBytes(bytes ? std::string_view(bytes, size) : std::string_view());
                return;
            }
        }
    }

    // Booleans that were written as literals are words.
    static bool IsWordForTrue(std::string_view text) {
        return SameText(text, "True") || SameText(text, "T") || SameText(text, "Yes") || SameText(text, "Y");
    }

    // Money is kept in ten-thousandths; the engine holds it as a number or as text.
    static void PutAmount(RowStore& rows, sqlite3_value* value, int held) {
        if (held == SQLITE_INTEGER) {
            rows.PutInteger(Currency(static_cast<int64_t>(sqlite3_value_int64(value))).Val);
            return;
        }
        Currency amount;
        if (held == SQLITE_TEXT && TryStrToCurr(TextOf(value), amount, InvariantFormatSettings())) {
            rows.PutInteger(amount.Val);
            return;
        }
        const double number = sqlite3_value_double(value);
        // Nearly all are decimals of four places, as near as the engine keeps them.
        const double scaled = std::nearbyint(number * Currency::kScale);
        constexpr double kExact = 9007199254740992.0;  // 2 to the 53rd
        if (std::fabs(scaled) < kExact && scaled / Currency::kScale == number)
            rows.PutInteger(static_cast<int64_t>(scaled));
        else
            rows.PutInteger(Currency(number).Val);
    }

    // "2001-03-09" at the text's beginning.
    static bool ReadDay(std::string_view text, double& days) {
        const auto digit = [&](size_t at) { return static_cast<unsigned>(text[at]) - '0'; };
        if (text[4] != '-' || text[7] != '-') return false;
        for (size_t at : {0, 1, 2, 3, 5, 6, 8, 9})
            if (digit(at) > 9) return false;
        const unsigned year = digit(0) * 1000 + digit(1) * 100 + digit(2) * 10 + digit(3);
        return TryEncodeDate(static_cast<int>(year), static_cast<int>(digit(5) * 10 + digit(6)),
                             static_cast<int>(digit(8) * 10 + digit(9)), days);
    }

    static void PutDate(RowStore& rows, sqlite3_value* value, int held) {
        if (held == SQLITE_TEXT) {
            constexpr size_t kDayAlone = 10;
            const std::string_view whole = TextOf(value);
            double days = 0;
            if (whole.size() == kDayAlone && ReadDay(whole, days)) {
                rows.PutReal(days);
                return;
            }
            TDateTime date;
            std::string text(whole);
            const size_t blank = text.find(' ');
            if (blank != std::string::npos) text[blank] = 'T';
            if (text.find('-') == std::string::npos && text.find(':') != std::string::npos) text = "1899-12-30T" + text;
            if (TryFromIso8601(text, date))
                rows.PutReal(date.Val);
            else
                rows.PutNull();  // what is no date is shown as none
            return;
        }
        const double number = sqlite3_value_double(value);
        if (held == SQLITE_INTEGER)
            rows.PutReal(number / kSecondsADay + kUnixDayOfEpoch);
        else
            rows.PutReal(number < kMostJulianDay ? number - kJulianDayOfEpoch : number);
    }

    Session& session_;
    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, FinalizeStatement> statement_;
    std::vector<FieldDefinition> columns_;
    std::vector<Reading> readings_;
    std::map<std::string, std::vector<ColumnDescription>> tables_;
    bool columnsKnown_ = false;
    bool pendingRow_ = false;  // stepped to, not yet put
    bool done_ = false;
};

std::unique_ptr<ProviderStatement> PrepareStatement(Session& session, const AnsiString& sql) {
    return std::make_unique<SqliteStatement>(session, sql);
}

TFieldType TypeOfDeclaration(const char* declared, int& size) {
    size = 0;
    if (!declared) return ftUnknown;
    const AnsiString type = UpperCase(declared);
    const auto has = [&](const char* word) { return type.find(word) != AnsiString::npos; };
    const size_t parenthesis = type.find('(');
    if (parenthesis != AnsiString::npos) size = std::atoi(type.c_str() + parenthesis + 1);
    if (has("BOOL")) return ftBoolean;
    if (has("CURRENCY") || has("MONEY") || has("DECIMAL") || has("NUMERIC")) return ftCurrency;
    if (has("DATETIME") || has("TIMESTAMP")) return ftDateTime;
    if (has("DATE")) return ftDate;
    if (has("TIME")) return ftTime;
    if (has("BIGINT")) return ftLargeint;
    if (has("SMALLINT") || has("TINYINT")) return ftSmallint;
    if (has("INT")) return ftInteger;
    if (has("CLOB") || has("MEMO")) return ftMemo;
    if (has("CHAR") || has("TEXT")) return ftString;
    if (has("BLOB") || has("BINARY")) return ftBlob;
    if (has("REAL") || has("FLOA") || has("DOUB")) return ftFloat;
    return ftUnknown;
}

}  // namespace sqlite_provider

}  // namespace vyn
