#include "providers/postgresql/connection.h"

namespace vyn::postgresql_provider {

const EngineDialect& PostgresqlConnection::Dialect() const {
    static const EngineDialect dialect = [] {
        EngineDialect made;
        made.Limit = EngineDialect::RowLimit::LimitAtEnd;
        made.DateBefore = "DATE '";
        made.TimeBefore = "TIME '";
        made.DateTimeBefore = "TIMESTAMP '";
        made.Like = "ILIKE";
        made.HoldRow = " FOR UPDATE";
        return made;
    }();
    return dialect;
}

}  // namespace vyn::postgresql_provider
