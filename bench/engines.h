#pragma once

#include <libpq-fe.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "servers/postgresql_cluster.h"

// The engines that benches measure against: a database file of the process, and a server of its own.
namespace engines {

[[noreturn]] inline void Fail(const char* message) { throw std::runtime_error(message); }

struct File {
    std::string name = "/tmp/vyn-bench-" + std::to_string(getpid()) + ".db";
    ~File() {
        for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(name + tail);
    }
};

inline sqlite3* Embedded() {
    static File file;
    static sqlite3* database = [] {
        sqlite3* opened = nullptr;
        sqlite3_open(file.name.c_str(), &opened);
        sqlite3_exec(opened, "PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
        return opened;
    }();
    return database;
}

inline void RunEmbedded(const std::string& sql) {
    if (sqlite3_exec(Embedded(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sqlite3_errmsg(Embedded()));
}

inline servers::PostgresqlCluster& Cluster() {
    static servers::PostgresqlCluster cluster;
    return cluster;
}

inline PGconn* Server() {
    static PGconn* connection = PQconnectdb(
        ("host=" + Cluster().Host() + " dbname=" + Cluster().Database() + " user=" + Cluster().User()).c_str());
    return connection;
}

inline void RunServer(const std::string& sql) {
    PGresult* result = PQexec(Server(), sql.c_str());
    if (PQresultStatus(result) != PGRES_COMMAND_OK) Fail(PQerrorMessage(Server()));
    PQclear(result);
}

enum class Engine { Embedded, Server };

}  // namespace engines
