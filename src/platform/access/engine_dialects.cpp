#include "platform/access/dialect.h"

namespace vyn {

// Dates are texts that sort as they count: 2026-11-21, 10:20:30, 2026-11-21 10:20:30; at midnight the date alone, so
// that a day is the same text in columns of dates and of dates with times.
EngineDialect SqliteDialect() {
    EngineDialect dialect;
    dialect.Limit = EngineDialect::RowLimit::LimitAtEnd;
    dialect.MidnightIsDateAlone = true;
    dialect.SameValue = " IS ";
    dialect.KeepsOrder = true;
    dialect.NullsAreLow = true;
    dialect.PrefixIsRange = true;
    dialect.HasIif = true;
    dialect.JoinOpen = "(";
    dialect.JoinBetween = "||";
    dialect.JoinedOpen = "IFNULL(";
    dialect.JoinedClose = ", '')";
    dialect.Now = "datetime('now', 'localtime')";
    dialect.Today = "date('now', 'localtime')";
    dialect.TimeNow = "time('now', 'localtime')";
    // Of a type that does not say TEXT, "007" would become 7.
    dialect.Memo = "MEMO TEXT";
    return dialect;
}

EngineDialect PostgresqlDialect() {
    EngineDialect dialect;
    dialect.Limit = EngineDialect::RowLimit::LimitAtEnd;
    dialect.DateBefore = "DATE '";
    dialect.TimeBefore = "TIME '";
    dialect.DateTimeBefore = "TIMESTAMP '";
    dialect.HasLateral = true;
    dialect.Like = "ILIKE";
    dialect.HoldRow = " FOR UPDATE";
    dialect.Memo = "TEXT";
    return dialect;
}

}  // namespace vyn
