#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"

namespace vyn {

namespace sqlite_dialect_detail {

AnsiString TextOfBytes(std::string_view text) {
    AnsiString result = "CAST(x'";
    for (const char byte : AnsiToUtf8(text)) result += HexDigits(static_cast<unsigned char>(byte), 2);
    return result + "' AS TEXT)";
}

}  // namespace sqlite_dialect_detail

// Dates are texts that sort as they count: 2026-11-21, 10:20:30, 2026-11-21 10:20:30; at midnight the date alone, so
// that a day is the same text in columns of dates and of dates with times.
const EngineDialect& sqlite_provider::Dialect() {
    static const EngineDialect dialect = [] {
        EngineDialect made;
        made.Limit = EngineDialect::RowLimit::LimitAtEnd;
        made.MidnightIsDateAlone = true;
        made.SameValue = " IS ";
        made.KeepsOrder = true;
        made.HasIif = true;
        made.JoinOpen = "(";
        made.JoinBetween = "||";
        made.JoinedOpen = "IFNULL(";
        made.JoinedClose = ", '')";
        made.Now = "datetime('now', 'localtime')";
        made.Today = "date('now', 'localtime')";
        made.TimeNow = "time('now', 'localtime')";
        made.TextWithNul = sqlite_dialect_detail::TextOfBytes;
        return made;
    }();
    return dialect;
}

}  // namespace vyn
