#include "conformance/engines.h"

#include <filesystem>

#include "platform/text/exceptions.h"
#include "providers/odbc/connection.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"
#include "servers/postgresql_cluster.h"

namespace conformance {

namespace {

AnsiString FreshSqlite() {
    RegisterSqliteProvider();
    const std::string file = testing::TempDir() + "vyn-conformance.db";
    for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(file + tail);
    return "Provider=SQLite;Data Source=" + file;
}

// One cluster for all tests of the process.
servers::PostgresqlCluster& Cluster() {
    static servers::PostgresqlCluster cluster;
    return cluster;
}

AnsiString FreshPostgresql() {
    RegisterPostgresqlProvider();
    const AnsiString where = Cluster().ConnectionString();
    TADOConnection connection(nullptr);
    connection.SetConnectionString(where);
    connection.Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
    return where;
}

AnsiString FreshSqliteThroughOdbc() {
    RegisterOdbcProvider();
    const AnsiString file = FreshSqlite().substr(AnsiString("Provider=SQLite;Data Source=").size());
    return "Provider=MSDASQL;Driver=SQLite3;Timeout=5000;Database=" + file;
}

AnsiString FreshPostgresqlThroughOdbc() {
    RegisterOdbcProvider();
    FreshPostgresql();
    return "Provider=MSDASQL;Driver=PostgreSQL Unicode;Servername=" + Cluster().Host() +
           ";Port=" + std::to_string(Cluster().Port()) + ";Initial Catalog=" + Cluster().Database() +
           ";User ID=" + Cluster().User();
}

}  // namespace

const std::vector<Engine>& Engines() {
    static const std::vector<Engine> engines = {
        {"SQLite", "SQLite", FreshSqlite, "INTEGER PRIMARY KEY AUTOINCREMENT", "DATETIME", "BLOB", "MEMO", "sqlite"},
        {"PostgreSQL", "PostgreSQL", FreshPostgresql, "SERIAL PRIMARY KEY", "TIMESTAMP", "BYTEA", "TEXT", "postgresql"},
        {"SQLitePaged", "SQLite, in pages", FreshSqlite, "INTEGER PRIMARY KEY AUTOINCREMENT", "DATETIME", "BLOB",
         "MEMO", "sqlite", 17, true},
        {"PostgreSQLPaged", "PostgreSQL, in pages", FreshPostgresql, "SERIAL PRIMARY KEY", "TIMESTAMP", "BYTEA", "TEXT",
         "postgresql", 17, true},
        {"SQLiteThroughODBC", "ODBC (SQLite)", FreshSqliteThroughOdbc, "INTEGER PRIMARY KEY AUTOINCREMENT", "DATETIME",
         "BLOB", "MEMO", "sqlite", 15},  // the driver reads numbers as texts
        {"PostgreSQLThroughODBC", "ODBC (PostgreSQL)", FreshPostgresqlThroughOdbc, "SERIAL PRIMARY KEY", "TIMESTAMP",
         "BYTEA", "TEXT", "postgresql"},
    };
    return engines;
}

Conformance::Conformance() {
    FormatSettings() = InvariantFormatSettings();
    if (GetParam().Paged) TCustomADODataSet::PagedFrom = 0;
    const AnsiString where = GetParam().FreshDatabase();
    mine.SetConnectionString(where);
    theirs.SetConnectionString(where);
    MakeTables();
}

Conformance::~Conformance() { TCustomADODataSet::PagedFrom = TCustomADODataSet::kLargeTable; }

void Conformance::MakeTables() {
    const Engine& engine = GetParam();
    mine.Execute("CREATE TABLE clients (id " + engine.CountingKey +
                 ", nom VARCHAR(20) NOT NULL, nota VARCHAR(40), credit DECIMAL(12,4), alta DATE, vist " +
                 engine.DateTime + ", actiu BOOLEAN, pes FLOAT, estat VARCHAR(10) DEFAULT 'nou' NOT NULL, foto " +
                 engine.Blob + ", text " + engine.Memo + ")");
    mine.Execute(
        "CREATE TABLE linies (comanda INTEGER NOT NULL, linia INTEGER NOT NULL, article VARCHAR(10), "
        "PRIMARY KEY (comanda, linia))");
    mine.Execute("CREATE TABLE sense (a INTEGER)");
    mine.Execute("INSERT INTO sense VALUES (1)");
    mine.Execute("INSERT INTO clients (nom, nota, credit) VALUES ('Soler', 'a', 12.5)");
    mine.Execute("INSERT INTO clients (nom, nota, credit) VALUES ('Puig', 'b', NULL)");
    mine.Execute("INSERT INTO clients (nom, nota, credit) VALUES ('Bosch', NULL, 0)");
    mine.Execute("INSERT INTO linies VALUES (1, 1, 'x')");
    mine.Execute("INSERT INTO linies VALUES (1, 2, 'y')");
    mine.Execute("INSERT INTO linies VALUES (2, 1, 'z')");
}

std::unique_ptr<TADOTable> Conformance::Table(TADOConnection& connection, const AnsiString& name) {
    auto table = std::make_unique<TADOTable>(nullptr);
    table->SetConnection(&connection);
    table->SetTableName(name);
    table->Open();
    return table;
}

std::unique_ptr<TADOQuery> Conformance::Query(TADOConnection& connection, const AnsiString& sql) {
    auto query = std::make_unique<TADOQuery>(nullptr);
    query->SetConnection(&connection);
    query->SQL()->SetText(sql);
    query->Open();
    return query;
}

AnsiString Conformance::MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& error) {
        return AnsiString(error.ClassName()) + ": " + error.Message();
    }
    return "no error";
}

AnsiString Conformance::Value(const AnsiString& sql) { return Query(theirs, sql)->Fields(0)->AsString(); }

}  // namespace conformance
