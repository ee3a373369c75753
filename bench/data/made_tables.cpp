#include <libpq-fe.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "data/data.h"
#include "servers/postgresql_cluster.h"

namespace bench_data {

namespace {

constexpr char kTable[] =
    "CREATE TABLE sales (id INTEGER PRIMARY KEY, client INTEGER, name VARCHAR(30), city VARCHAR(20), price "
    "DECIMAL(12,4), weight FLOAT, day DATE, note VARCHAR(40))";

struct File {
    std::string name = "/tmp/vyn-bench-" + std::to_string(getpid()) + ".db";
    ~File() {
        for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(name + tail);
    }
};

servers::PostgresqlCluster& Cluster() {
    static servers::PostgresqlCluster cluster;
    return cluster;
}

}  // namespace

const std::string& SqliteFile() {
    static File file;
    static bool made = false;
    if (made) return file.name;
    made = true;
    sqlite3* database = nullptr;
    sqlite3_open(file.name.c_str(), &database);
    const std::string sql =
        std::string("PRAGMA synchronous = OFF; BEGIN; ") + kTable +
        "; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(kRows) +
        ") INSERT INTO sales SELECT i, i % 5000, 'client ' || (i % 5000), 'city ' || (i % 300), (i % 100000) / 100.0, "
        "i / 7.0, date('2001-01-01', (i % 7000) || ' days'), CASE WHEN i % 3 THEN 'note number ' || i END FROM n; "
        "COMMIT";
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database));
    sqlite3_close(database);
    return file.name;
}

const std::string& ServerFolder() { return Cluster().Host(); }

const std::string& ServerWords() {
    static const std::string words = [] {
        const std::string made =
            "host=" + Cluster().Host() + " dbname=" + Cluster().Database() + " user=" + Cluster().User();
        PGconn* connection = PQconnectdb(made.c_str());
        PQclear(PQexec(connection, kTable));
        const std::string fill =
            "INSERT INTO sales SELECT i, i % 5000, 'client ' || (i % 5000), 'city ' || (i % 300), (i % 100000) / "
            "100.0, i "
            "/ 7.0, DATE '2001-01-01' + (i % 7000), CASE WHEN i % 3 <> 0 THEN 'note number ' || i END FROM "
            "generate_series(1, " +
            std::to_string(kRows) + ") AS i";
        PQclear(PQexec(connection, fill.c_str()));
        PQclear(PQexec(connection, "VACUUM ANALYZE sales"));
        PQfinish(connection);
        return made;
    }();
    return words;
}

const std::string& ServerConnectionString() {
    ServerWords();
    static const std::string text = Cluster().ConnectionString();
    return text;
}

}  // namespace bench_data
