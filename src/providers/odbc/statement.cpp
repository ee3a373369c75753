#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

#include "platform/access/dialect.h"
#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "platform/values/currency.h"
#include "providers/odbc/connection.h"

namespace vyn::odbc_provider {

constexpr char kStatementFailed[] = "The statement failed";
constexpr int kLongestName = 256;
constexpr size_t kFirstPart = 4096;  // bytes of a value asked for at first
// Texts and bytes longer than this go as long ones.
constexpr size_t kLongestShortValue = 4000;
constexpr int kMostDigitsOfAmounts = 14;
constexpr int kMostDecimalsOfAmounts = 4;
constexpr int kDigitsOfAmounts = 19;
constexpr int kNanosecondsPerMillisecond = 1000000;

// A parameter in the shape in which drivers take it.
struct Parameter {
    SQLSMALLINT cType = SQL_C_WCHAR;
    SQLSMALLINT sqlType = SQL_WVARCHAR;
    SQLULEN size = 1;
    SQLSMALLINT decimals = 0;
    std::string bytes;
    SQLLEN indicator = SQL_NULL_DATA;

    template <class T>
    void Hold(const T& value) {
        bytes.assign(reinterpret_cast<const char*>(&value), sizeof value);
        indicator = sizeof value;
    }
    void HoldText(std::string_view utf8) {
        WideString wide;
        try {
            wide = Utf8ToWide(utf8);
        } catch (const EConvertError&) {
            throw EDatabaseError("A text is not well-formed and cannot be stored in this database");
        }
        if (wide.find(u'\0') != WideString::npos)
            throw EDatabaseError("The database cannot hold a NUL character in a text or name");
        bytes.assign(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(char16_t));
        indicator = static_cast<SQLLEN>(bytes.size());
        size = std::max<size_t>(wide.size(), 1);
        if (size > kLongestShortValue) sqlType = SQL_WLONGVARCHAR;
    }
};

AnsiString DateText(double days, TFieldType type, const EngineDialect& dialect) {
    Word hour, minute, second, millisecond;
    DecodeTime(days, hour, minute, second, millisecond);
    const bool atMidnight = hour == 0 && minute == 0 && second == 0 && millisecond == 0;
    AnsiString mask = type == ftTime                                                  ? dialect.TimeMask
                      : type == ftDate || (atMidnight && dialect.MidnightIsDateAlone) ? dialect.DateMask
                                                                                      : dialect.DateTimeMask;
    if (type != ftDate && millisecond != 0) mask += ".zzz";
    return FormatDateTime(mask, days, InvariantFormatSettings());
}

void HoldDate(Parameter& parameter, double days, TFieldType type) {
    SQL_TIMESTAMP_STRUCT moment{};
    Word year, month, day, hour, minute, second, millisecond;
    DecodeDate(days, year, month, day);
    DecodeTime(days, hour, minute, second, millisecond);
    moment.year = static_cast<SQLSMALLINT>(year);
    moment.month = month;
    moment.day = day;
    moment.hour = hour;
    moment.minute = minute;
    moment.second = second;
    moment.fraction = static_cast<SQLUINTEGER>(millisecond) * kNanosecondsPerMillisecond;
    parameter.cType = SQL_C_TYPE_TIMESTAMP;
    parameter.sqlType = SQL_TYPE_TIMESTAMP;
    parameter.size = 23;
    parameter.decimals = 3;
    if (type == ftDate) {
        const SQL_DATE_STRUCT date{moment.year, moment.month, moment.day};
        parameter.cType = SQL_C_TYPE_DATE;
        parameter.sqlType = SQL_TYPE_DATE;
        parameter.size = 10;
        parameter.decimals = 0;
        parameter.Hold(date);
        return;
    }
    parameter.Hold(moment);
}

Parameter ParameterOf(const ProviderValue& value, const Engine& engine) {
    Parameter parameter;
    const Cell& cell = value.Value;
    const bool null = cell.IsNull();
    switch (ColumnKindOf(value.Type)) {
        case ColumnKind::Integer:
            if (value.Type == ftCurrency || value.Type == ftBCD) {
                parameter.cType = SQL_C_CHAR;
                parameter.sqlType = SQL_DECIMAL;
                parameter.size = kDigitsOfAmounts;
                parameter.decimals = kMostDecimalsOfAmounts;
                if (null) return parameter;
                const Currency amount = Currency::FromScaled(cell.AsInteger());
                if (engine.DatesAsTexts && Currency(amount.ToDouble()) != amount)
                    throw EDatabaseError("This database keeps 15 digits of a number: " +
                                         CurrToStr(amount, InvariantFormatSettings()) + " has more");
                parameter.bytes = CurrToStr(amount, InvariantFormatSettings());
                parameter.indicator = static_cast<SQLLEN>(parameter.bytes.size());
                return parameter;
            }
            parameter.cType = SQL_C_SBIGINT;
            parameter.sqlType = value.Type == ftBoolean ? SQL_BIT : value.Type == ftLargeint ? SQL_BIGINT : SQL_INTEGER;
            if (cell.AsInteger() > INT32_MAX || cell.AsInteger() < INT32_MIN) parameter.sqlType = SQL_BIGINT;
            if (!null) parameter.Hold(cell.AsInteger());
            return parameter;
        case ColumnKind::Real:
            if (value.Type == ftDate || value.Type == ftTime || value.Type == ftDateTime) {
                // Times go as texts: the structure for them has no thousandths.
                if (engine.DatesAsTexts || value.Type == ftTime) {
                    if (!null) parameter.HoldText(AnsiToUtf8(DateText(cell.AsReal(), value.Type, engine.Dialect)));
                    return parameter;
                }
                HoldDate(parameter, cell.AsReal(), value.Type);
                if (null) parameter.indicator = SQL_NULL_DATA;
                return parameter;
            }
            parameter.cType = SQL_C_DOUBLE;
            parameter.sqlType = SQL_DOUBLE;
            if (!null) parameter.Hold(cell.AsReal());
            return parameter;
        case ColumnKind::Text:
            if (!null) parameter.HoldText(cell.AsBytes());
            return parameter;
        case ColumnKind::Bytes:
            parameter.cType = SQL_C_BINARY;
            parameter.sqlType = SQL_LONGVARBINARY;
            if (null) return parameter;
            parameter.bytes = std::string(cell.AsBytes());
            parameter.indicator = static_cast<SQLLEN>(parameter.bytes.size());
            parameter.size = std::max<size_t>(parameter.bytes.size(), 1);
            return parameter;
    }
    return parameter;
}

// What a type of SQL's is to fields; the engine's own name of it says more where it has one.
TFieldType FieldTypeOf(SQLSMALLINT type, const AnsiString& name, SQLULEN size, SQLSMALLINT decimals) {
    const AnsiString upper = UpperCase(name);
    const auto has = [&](const char* word) { return upper.find(word) != AnsiString::npos; };
    if (has("BOOL")) return ftBoolean;
    if (has("CURRENCY") || has("MONEY")) return ftCurrency;
    const bool decimal = type == SQL_DECIMAL || type == SQL_NUMERIC;
    if (!decimal && (has("DECIMAL") || has("NUMERIC"))) return ftCurrency;
    switch (type) {
        case SQL_BIT:
            return ftBoolean;
        case SQL_TINYINT:
        case SQL_SMALLINT:
            return ftSmallint;
        case SQL_INTEGER:
            return ftInteger;
        case SQL_BIGINT:
            return ftLargeint;
        case SQL_DECIMAL:
        case SQL_NUMERIC: {
            const bool fits =
                decimals <= kMostDecimalsOfAmounts && static_cast<int64_t>(size) - decimals <= kMostDigitsOfAmounts;
            return fits ? ftCurrency : ftFloat;
        }
        case SQL_REAL:
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return ftFloat;
        case SQL_TYPE_DATE:
            return ftDate;
        case SQL_TYPE_TIME:
            return ftTime;
        case SQL_TYPE_TIMESTAMP:
            return ftDateTime;
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY:
            return ftBlob;
        case SQL_LONGVARCHAR:
        case SQL_WLONGVARCHAR:
            return has("TEXT") ? ftString : ftMemo;
        default:
            return ftString;
    }
}

class OdbcStatement final : public ProviderStatement {
  public:
    OdbcStatement(OdbcConnection& connection, const AnsiString& sql)
        : connection_(connection),
          sql_(sql),
          statement_(connection.NewStatement()),
          generation_(connection.Generation()) {
        if (sql.find('\0') != AnsiString::npos)
            throw EDatabaseError("The database cannot hold a NUL character in a text or name");
        bool empty = true;
        for (const SqlToken& token : TokenizeSql(sql)) {
            if (token.Kind == SqlTokenKind::Symbol && token.Text == "?") ++parameterCount_;
            if (token.Kind != SqlTokenKind::Blank && token.Kind != SqlTokenKind::Comment) empty = false;
        }
        if (empty) throw EDatabaseError("The statement is empty");
        PrepareText();
    }

    std::vector<FieldDefinition> Columns() override {
        if (!columnsKnown_) {
            Start();
            Describe();
        }
        return columns_;
    }
    void ExpectColumns(std::vector<FieldDefinition> columns) override {
        columns_ = std::move(columns);
        columnsKnown_ = true;
    }
    int ParameterCount() const override { return parameterCount_; }

    void Bind(const std::vector<ProviderValue>& values) override {
        Stop();
        parameters_.clear();
        for (const ProviderValue& value : values) parameters_.push_back(ParameterOf(value, connection_.Engine()));
        parameters_.resize(static_cast<size_t>(parameterCount_));
        BindParameters();
    }

    int64_t Execute() override {
        Stop();
        {
            const OdbcConnection::Storing storing(connection_, connection_.TransactionDepth() == 0 && !ReadsOnly(sql_));
            Start();
        }
        SQLLEN changed = 0;
        SQLRowCount(statement_.Get(), &changed);
        Stop();
        return std::max<SQLLEN>(changed, 0);
    }

    bool Fetch(RowStore& rows, int64_t count) override {
        {
            const OdbcConnection::Storing storing(connection_, connection_.TransactionDepth() == 0 && !ReadsOnly(sql_));
            Start();
        }
        if (!columnsKnown_) Describe();
        for (; count > 0 && !done_; --count) {
            const SQLRETURN result = connection_.Call(
                statement_, [&] { return SQLFetch(statement_.Get()); }, kStatementFailed);
            if (result == SQL_NO_DATA) {
                Stop();
                started_ = done_ = true;
                return false;
            }
            rows.BeginRow();
            for (size_t i = 0; i < columns_.size(); ++i) PutValue(rows, i);
            rows.EndRow();
        }
        return !done_;
    }

  private:
    void Check(SQLRETURN result, const char* what) const {
        odbc_provider::Check(result, SQL_HANDLE_STMT, statement_.Get(), what);
    }

    void BindParameters() {
        SQLUSMALLINT number = 0;
        for (Parameter& each : parameters_)
            Check(SQLBindParameter(statement_.Get(), ++number, SQL_PARAM_INPUT, each.cType, each.sqlType, each.size,
                                   each.decimals, each.bytes.data(), static_cast<SQLLEN>(each.bytes.size()),
                                   &each.indicator),
                  "A parameter cannot be bound");
    }

    // In a connection that was made again everything is prepared anew.
    void Renew() {
        connection_.Ready();
        if (generation_ == connection_.Generation()) return;
        statement_ = connection_.NewStatement();
        generation_ = connection_.Generation();
        PrepareText();
        BindParameters();
    }

    void PrepareText() {
        WithNames([&] {
            std::u16string wide = WideOf(sql_);
            return SQLPrepareW(statement_.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size()));
        });
    }

    // Once more with the catalog's names, where the engine misses those of the statement.
    template <class F>
    SQLRETURN WithNames(F action) {
        SQLRETURN result = SQL_SUCCESS;
        try {
            result = connection_.Call(statement_, action, kStatementFailed);
        } catch (const EOdbcError& error) {
            constexpr const char* kUnknown[] = {"42P01", "42703", "42S02", "42S22"};
            const bool unknown = std::find(std::begin(kUnknown), std::end(kUnknown), error.State) != std::end(kUnknown);
            if (!unknown || namesTried_ || !connection_.Engine().MindsCase) throw;
            namesTried_ = true;
            const AnsiString named = connection_.WithCatalogNames(sql_);
            if (named == sql_) throw;
            sql_ = named;
            std::u16string wide = WideOf(sql_);
            Check(SQLPrepareW(statement_.Get(), Wide(wide), static_cast<SQLINTEGER>(wide.size())), kStatementFailed);
            result = connection_.Call(statement_, action, kStatementFailed);
        }
        return result;
    }

    void Start() {
        if (started_) return;
        Renew();
        const SQLRETURN result = WithNames([&] { return SQLExecute(statement_.Get()); });
        started_ = true;
        // Nothing was changed, and so nothing is given back.
        done_ = result == SQL_NO_DATA;
        SQLSMALLINT count = 0;
        SQLNumResultCols(statement_.Get(), &count);
        if (count == 0) done_ = true;
    }

    void Stop() {
        if (started_) SQLFreeStmt(statement_.Get(), SQL_CLOSE);
        started_ = done_ = false;
    }

    AnsiString Attribute(SQLUSMALLINT column, SQLUSMALLINT which) const {
        SQLWCHAR text[kLongestName] = {};
        SQLSMALLINT bytes = 0;
        if (!SQL_SUCCEEDED(SQLColAttributeW(statement_.Get(), column, which, text, sizeof text, &bytes, nullptr)))
            return {};
        return AnsiOf(text, static_cast<SQLSMALLINT>(std::min<int>(bytes / 2, kLongestName - 1)));
    }
    bool IsSet(SQLUSMALLINT column, SQLUSMALLINT which) const {
        SQLLEN value = SQL_FALSE;
        SQLColAttributeW(statement_.Get(), column, which, nullptr, 0, nullptr, &value);
        return value == SQL_TRUE;
    }

    void Describe() {
        columnsKnown_ = true;
        SQLSMALLINT count = 0;
        SQLNumResultCols(statement_.Get(), &count);
        for (SQLSMALLINT i = 1; i <= count; ++i) {
            const auto column = static_cast<SQLUSMALLINT>(i);
            SQLWCHAR name[kLongestName] = {};
            SQLSMALLINT length = 0, type = 0, decimals = 0, nullable = 0;
            SQLULEN size = 0;
            Check(SQLDescribeColW(statement_.Get(), column, name, kLongestName, &length, &type, &size, &decimals,
                                  &nullable),
                  kStatementFailed);
            FieldDefinition definition;
            definition.Name = AnsiOf(name, std::min<SQLSMALLINT>(length, kLongestName - 1));
            definition.DataType = FieldTypeOf(type, Attribute(column, SQL_DESC_TYPE_NAME), size, decimals);
            const bool bounded = type == SQL_CHAR || type == SQL_VARCHAR || type == SQL_WCHAR || type == SQL_WVARCHAR;
            if (definition.DataType == ftString && bounded) definition.Size = static_cast<int>(size);
            FindOrigin(column, definition);
            columns_.push_back(std::move(definition));
        }
    }

    void FindOrigin(SQLUSMALLINT column, FieldDefinition& definition) {
        definition.ReadOnly = true;
        const AnsiString table = Attribute(column, SQL_DESC_BASE_TABLE_NAME);
        AnsiString name = Attribute(column, SQL_DESC_BASE_COLUMN_NAME);
        if (table.empty() || name.empty()) return;
        if (connection_.Engine().NamesAliases) {
            // Only the statement itself says what stands behind an alias.
            if (!selectedKnown_) selected_ = SelectedColumns(sql_);
            selectedKnown_ = true;
            if (!selected_.empty()) name = column <= selected_.size() ? selected_[column - 1u] : AnsiString();
        }
        auto known = tables_.find(table);
        if (known == tables_.end()) {
            Description description;
            description.columns = connection_.DescribeTable(table);
            description.key = connection_.KeyColumns(table);
            known = tables_.emplace(table, std::move(description)).first;
        }
        for (const ColumnDescription& each : known->second.columns) {
            if (!AnsiSameText(each.Name, name)) continue;
            const auto& key = known->second.key;
            definition.OriginTable = table;
            definition.OriginColumn = each.Name;
            definition.InKey = std::any_of(key.begin(), key.end(),
                                           [&](const AnsiString& part) { return AnsiSameText(part, each.Name); });
            const bool counts = IsSet(column, SQL_DESC_AUTO_UNIQUE_VALUE);
            definition.Automatic = each.Automatic || counts;
            definition.Required = each.Required && !definition.Automatic;
            definition.ReadOnly = false;
            if (counts && definition.InKey && definition.DataType == ftInteger) definition.DataType = ftAutoInc;
            return;
        }
    }

    // The whole value, part by part; false for a null.
    bool Data(size_t column, SQLSMALLINT type, size_t terminator) {
        value_.clear();
        size_t room = kFirstPart;
        for (;;) {
            const size_t had = value_.size();
            value_.resize(had + room);
            SQLLEN indicator = 0;
            const SQLRETURN result = SQLGetData(statement_.Get(), static_cast<SQLUSMALLINT>(column + 1), type,
                                                value_.data() + had, static_cast<SQLLEN>(room), &indicator);
            if (result == SQL_NO_DATA) {
                value_.resize(had);
                return true;
            }
            Check(result, kStatementFailed);
            if (indicator == SQL_NULL_DATA) return false;
            const bool whole = indicator != SQL_NO_TOTAL && static_cast<size_t>(indicator) + terminator <= room;
            if (whole) {
                value_.resize(had + static_cast<size_t>(indicator));
                return true;
            }
            value_.resize(had + room - terminator);
            const size_t rest = indicator == SQL_NO_TOTAL ? room : static_cast<size_t>(indicator) - (room - terminator);
            room = rest + terminator;
        }
    }
    template <class T>
    bool Number(size_t column, SQLSMALLINT type, T& value) {
        SQLLEN indicator = 0;
        Check(
            SQLGetData(statement_.Get(), static_cast<SQLUSMALLINT>(column + 1), type, &value, sizeof value, &indicator),
            kStatementFailed);
        return indicator != SQL_NULL_DATA;
    }

    void PutValue(RowStore& rows, size_t column) {
        const TFieldType type = columns_[column].DataType;
        switch (type) {
            case ftCurrency:
            case ftBCD:
                PutAmount(rows, column);
                return;
            case ftBoolean:
                PutBoolean(rows, column);
                return;
            case ftDate:
            case ftTime:
            case ftDateTime:
                PutDate(rows, column, type);
                return;
            default:
                break;
        }
        switch (ColumnKindOf(type)) {
            case ColumnKind::Integer: {
                int64_t number = 0;
                Number(column, SQL_C_SBIGINT, number) ? rows.PutInteger(number) : rows.PutNull();
                return;
            }
            case ColumnKind::Real: {
                double number = 0;
                Number(column, SQL_C_DOUBLE, number) ? rows.PutReal(number) : rows.PutNull();
                return;
            }
            case ColumnKind::Text:
                if (Data(column, SQL_C_WCHAR, sizeof(SQLWCHAR)))
                    rows.PutBytes(WideToUtf8(
                        {reinterpret_cast<const char16_t*>(value_.data()), value_.size() / sizeof(char16_t)}));
                else
                    rows.PutNull();
                return;
            case ColumnKind::Bytes:
                if (Data(column, SQL_C_BINARY, 0))
                    rows.PutBytes(value_);
                else
                    rows.PutNull();
                return;
        }
    }

    void PutAmount(RowStore& rows, size_t column) {
        Currency amount;
        double number = 0;
        if (!Data(column, SQL_C_CHAR, 1))
            rows.PutNull();
        else if (TryStrToCurr(value_, amount, InvariantFormatSettings()))
            rows.PutInteger(amount.Val);
        else if (TryStrToFloat(value_, number, InvariantFormatSettings()))
            rows.PutInteger(Currency(number).Val);
        else
            rows.PutNull();
    }

    void PutBoolean(RowStore& rows, size_t column) {
        if (!Data(column, SQL_C_CHAR, 1)) {
            rows.PutNull();
            return;
        }
        // Drivers say it as a number, a letter or a word.
        const bool yes =
            !value_.empty() && (value_[0] == 't' || value_[0] == 'T' || value_[0] == 'y' || value_[0] == 'Y');
        rows.PutInteger(
            yes || (!value_.empty() && value_ != "0" && (value_[0] == '-' || (value_[0] >= '0' && value_[0] <= '9'))));
    }

    void PutDate(RowStore& rows, size_t column, TFieldType type) {
        // As a text, which has the thousandths of times, too.
        if (!Data(column, SQL_C_CHAR, 1)) {
            rows.PutNull();
            return;
        }
        std::string text = type == ftTime && value_.find('-') == std::string::npos ? "1899-12-30T" + value_ : value_;
        constexpr size_t kAfterDate = 10;
        if (text.size() > kAfterDate) text[kAfterDate] = 'T';
        TDateTime moment;
        if (TryFromIso8601(text, moment))
            rows.PutReal(type == ftDate ? std::trunc(moment.Val) : moment.Val);
        else
            rows.PutNull();  // what is no date is shown as none
    }

    OdbcConnection& connection_;
    AnsiString sql_;
    StatementHandle statement_;
    int generation_ = 0;
    int parameterCount_ = 0;
    std::vector<Parameter> parameters_;
    std::vector<FieldDefinition> columns_;
    bool columnsKnown_ = false;
    bool started_ = false;
    bool done_ = false;
    bool namesTried_ = false;
    std::string value_;
    struct Description {
        std::vector<ColumnDescription> columns;
        std::vector<AnsiString> key;
    };
    std::map<AnsiString, Description> tables_;
    std::vector<AnsiString> selected_;
    bool selectedKnown_ = false;
};

std::unique_ptr<ProviderStatement> PrepareStatement(OdbcConnection& connection, const AnsiString& sql) {
    return std::make_unique<OdbcStatement>(connection, sql);
}

}  // namespace vyn::odbc_provider
