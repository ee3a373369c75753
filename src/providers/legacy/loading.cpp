#include "providers/legacy/loading.h"

#include <cmath>
#include <cstdlib>

#include <fmt/format.h>

#include "platform/text/date_format.h"
#include "platform/text/windows1252.h"

namespace vyn::legacy {

namespace loading_detail {

constexpr size_t kDigitsKept = 15;
constexpr double kMostMoney = 922337203685477.5;

size_t DigitsOf(const std::string& number) {
    size_t digits = 0;
    for (const char each : number)
        if (each >= '0' && each <= '9' && (digits > 0 || each != '0')) ++digits;
    return digits;
}

}  // namespace loading_detail

using namespace loading_detail;

std::string ReasonOf(sqlite3* database) { return sqlite3_errmsg(database); }

void Run(sqlite3* database, const std::string& sql, const char* what) {
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        sqlite_provider::Raise(database, what);
}

RowLoader::RowLoader(sqlite3* database, const Table& table, Concessions& concessions, ImportReport& report)
    : database_(database), table_(table), concessions_(concessions), report_(report), counts_(table.Columns.size()) {
    std::string marks;
    for (const Column& column : table.Columns) {
        marks += marks.empty() ? "?" : ", ?";
        required_.push_back(IsRequired(table, column, concessions));
    }
    const std::string sql = "INSERT INTO " + Quoted(table.Name) + " VALUES (" + marks + ")";
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK)
        sqlite_provider::Raise(database, "The rows cannot be written");
}

RowLoader::~RowLoader() { sqlite3_finalize(statement_); }

void RowLoader::Put(const Row& row) {
    for (size_t i = 0; i < row.size(); ++i) {
        Bind(static_cast<int>(i), row[i]);
        if (row[i].Kind == ValueKind::Null && required_[i]) {
            // Files hold empty values from before a column was said to be required.
            concessions_.Optional.insert(table_.Name + "." + table_.Columns[i].Name);
            throw DefinitionGivesWay();
        }
    }
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_DONE) {
        ++rows_;
    } else if (result == SQLITE_CONSTRAINT) {
        report_.Losses.push_back({"row", table_.Name, ReasonOf(database_), ""});
    } else {
        sqlite_provider::Raise(database_, "A row cannot be written");
    }
    sqlite3_reset(statement_);
}

void RowLoader::Bind(int column, const Value& value) {
    const int place = column + 1;
    switch (value.Kind) {
        case ValueKind::Null:
            sqlite3_bind_null(statement_, place);
            return;
        case ValueKind::Integer:
            sqlite3_bind_int64(statement_, place, value.Integer);
            return;
        case ValueKind::Real:
            // The engine keeps what is no number as an empty value.
            if (std::isnan(value.Real)) ++counts_[static_cast<size_t>(column)].Numbers;
            sqlite3_bind_double(statement_, place, value.Real);
            return;
        case ValueKind::Decimal:
            BindDecimal(column, value);
            return;
        case ValueKind::Date:
            BindDate(column, value);
            return;
        case ValueKind::Text:
            sqlite3_bind_text64(statement_, place, value.Bytes.data(), value.Bytes.size(), SQLITE_STATIC, SQLITE_UTF8);
            return;
        case ValueKind::Bytes:
            sqlite3_bind_blob64(statement_, place, value.Bytes.empty() ? "" : value.Bytes.data(), value.Bytes.size(),
                                SQLITE_STATIC);
            return;
    }
}

// Whole numbers as such, others as real numbers, which keep fifteen digits.
void RowLoader::BindDecimal(int column, const Value& value) {
    const std::string& text = value.Bytes;
    const size_t point = text.find('.');
    constexpr size_t kSurelyFits = 18;
    if (point == std::string::npos && DigitsOf(text) <= kSurelyFits) {
        sqlite3_bind_int64(statement_, column + 1, std::strtoll(text.c_str(), nullptr, 10));
        return;
    }
    double number = std::strtod(text.c_str(), nullptr);
    // The next to the largest amounts are larger than those can be.
    if (table_.Columns[static_cast<size_t>(column)].Type == ColumnType::Money && std::fabs(number) > kMostMoney)
        number = std::copysign(kMostMoney, number);
    const size_t places = point == std::string::npos ? 0 : text.size() - point - 1;
    if (DigitsOf(text) > kDigitsKept && fmt::format("{:.{}f}", number, places) != text)
        ++counts_[static_cast<size_t>(column)].Amounts;
    sqlite3_bind_double(statement_, column + 1, number);
}

// As the embedded engine's provider writes them: the day alone at midnight, thousandths where there are some.
void RowLoader::BindDate(int column, const Value& value) {
    Word hour, minute, second, millisecond;
    if (!DecodeTime(value.Real, hour, minute, second, millisecond)) {
        ++counts_[static_cast<size_t>(column)].Dates;
        sqlite3_bind_null(statement_, column + 1);
        return;
    }
    const bool midnight = hour == 0 && minute == 0 && second == 0 && millisecond == 0;
    const char* mask = midnight ? "yyyy-mm-dd" : millisecond == 0 ? "yyyy-mm-dd hh:nn:ss" : "yyyy-mm-dd hh:nn:ss.zzz";
    const AnsiString text = FormatDateTime(mask, value.Real, InvariantFormatSettings());
    sqlite3_bind_text64(statement_, column + 1, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void RowLoader::Finish() {
    const auto tell = [&](int64_t count, size_t column, const char* one, const char* many) {
        if (count > 0)
            report_.Losses.push_back({"value", table_.Name + "." + table_.Columns[column].Name,
                                      count == 1 ? std::string("1 ") + one : std::to_string(count) + " " + many, ""});
    };
    for (size_t i = 0; i < counts_.size(); ++i) {
        tell(counts_[i].Dates, i, "date lies beyond the calendar and is empty now",
             "dates lie beyond the calendar and are empty now");
        tell(counts_[i].Amounts, i, "amount has more than 15 digits and was rounded",
             "amounts have more than 15 digits and were rounded");
        tell(counts_[i].Numbers, i, "value is no number and is empty now", "values are no numbers and are empty now");
    }
}

}  // namespace vyn::legacy
