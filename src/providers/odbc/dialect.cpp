#include "platform/text/compare.h"
#include "providers/odbc/connection.h"

namespace vyn::odbc_provider {

// What stands behind the names that drivers give. An engine that is not here gets what the standard says.
namespace engines {

Engine Standard() {
    Engine engine;
    EngineDialect& dialect = engine.Dialect;
    dialect.Limit = EngineDialect::RowLimit::FetchAtEnd;
    // The driver turns these into the engine's own.
    dialect.DateBefore = "{d '";
    dialect.TimeBefore = "{t '";
    dialect.DateTimeBefore = "{ts '";
    dialect.DateAfter = "'}";
    dialect.Now = "{fn NOW()}";
    dialect.Today = "{fn CURDATE()}";
    dialect.TimeNow = "{fn CURTIME()}";
    return engine;
}

Engine Sqlite() {
    Engine engine;
    engine.Dialect = SqliteDialect();
    engine.LastKeyQuery = "SELECT last_insert_rowid()";
    engine.DatesAsTexts = true;
    engine.NamesAliases = true;
    engine.SystemPrefix = "sqlite_";
    engine.ErrorNumbers = Numbers::Sqlite;
    return engine;
}

Engine Postgresql() {
    Engine engine;
    engine.Dialect = PostgresqlDialect();
    engine.HasReturning = true;
    engine.MindsCase = true;
    return engine;
}

Engine SqlServer() {
    Engine engine = Standard();
    EngineDialect& dialect = engine.Dialect;
    dialect.Limit = EngineDialect::RowLimit::TopAtBeginning;
    dialect.NameOpen = '[';
    dialect.NameClose = ']';
    dialect.HasIif = true;
    dialect.True = "1";
    dialect.False = "0";
    dialect.SameValue = " = ";
    engine.LastKeyQuery = "SELECT @@IDENTITY";
    return engine;
}

Engine Desktop() {
    Engine engine = SqlServer();
    engine.Dialect.JoinOpen = engine.Dialect.JoinClose = "";
    engine.Dialect.JoinBetween = "&";
    engine.HasSavepoints = false;
    return engine;
}

Engine MySql() {
    Engine engine = Standard();
    EngineDialect& dialect = engine.Dialect;
    dialect.Limit = EngineDialect::RowLimit::LimitAtEnd;
    dialect.NameOpen = dialect.NameClose = '`';
    dialect.SameValue = " <=> ";
    dialect.HoldRow = " FOR UPDATE";
    engine.LastKeyQuery = "SELECT LAST_INSERT_ID()";
    return engine;
}

}  // namespace engines

Engine EngineOf(const AnsiString& name) {
    const auto has = [&](const char* word) { return UpperCase(name).find(word) != AnsiString::npos; };
    if (has("SQLITE")) return engines::Sqlite();
    if (has("POSTGRES")) return engines::Postgresql();
    if (has("SQL SERVER")) return engines::SqlServer();
    if (has("ACCESS") || has("JET")) return engines::Desktop();
    if (has("MYSQL") || has("MARIADB")) return engines::MySql();
    return engines::Standard();
}

}  // namespace vyn::odbc_provider
