#include "providers/sqlite/connection.h"

namespace vyn {

// Dates are texts that sort as they count: 2026-11-21, 10:20:30, 2026-11-21 10:20:30; at midnight the date alone, so
// that a day is the same text in columns of dates and of dates with times.
const EngineDialect& sqlite_provider::Dialect() {
    static const EngineDialect dialect = [] {
        EngineDialect made;
        made.Limit = EngineDialect::RowLimit::LimitAtEnd;
        made.MidnightIsDateAlone = true;
        made.SameValue = " IS ";
        return made;
    }();
    return dialect;
}

}  // namespace vyn
