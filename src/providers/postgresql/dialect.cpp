#include "providers/postgresql/connection.h"

namespace vyn::postgresql_provider {

const EngineDialect& PostgresqlConnection::Dialect() const {
    static const EngineDialect dialect = PostgresqlDialect();
    return dialect;
}

}  // namespace vyn::postgresql_provider
