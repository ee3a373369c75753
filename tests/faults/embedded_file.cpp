#include "faults/embedded_file.h"

#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>

#include "faults/failing_disk.h"
#include "platform/text/format_settings.h"
#include "providers/odbc/connection.h"
#include "providers/sqlite/connection.h"

namespace faults {

EmbeddedFile::EmbeddedFile() {
    RegisterSqliteProvider();
    RegisterOdbcProvider();
    FormatSettings() = InvariantFormatSettings();
    std::string name = testing::TempDir() + "vyn-faults-XXXXXX";
    folder_ = mkdtemp(name.data());
    std::filesystem::permissions(folder_, std::filesystem::perms::all);
    file_ = folder_ + "/clients.db";
}

EmbeddedFile::~EmbeddedFile() {
    std::error_code ignored;
    std::filesystem::permissions(folder_, std::filesystem::perms::all, ignored);
    std::filesystem::remove_all(folder_, ignored);
}

AnsiString EmbeddedFile::Where(int busyMilliseconds) const {
    return "Provider=SQLite;Data Source=" + file_ + ";Busy Timeout=" + std::to_string(busyMilliseconds);
}

AnsiString EmbeddedFile::ThroughDriver() const { return "Provider=MSDASQL;Driver=SQLite3;Timeout=1;Database=" + file_; }

void EmbeddedFile::Make(int records) {
    for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(file_ + tail);
    MakeClients(Where(), records);
}

std::string EmbeddedFile::Integrity() const { return Stored("PRAGMA integrity_check"); }

std::string EmbeddedFile::Stored(const std::string& sql) const {
    sqlite3* database = nullptr;
    std::string answer;
    const auto take = [](void* text, int, char** values, char**) {
        *static_cast<std::string*>(text) += values[0] ? values[0] : "(null)";
        return 0;
    };
    if (sqlite3_open_v2(file_.c_str(), &database, SQLITE_OPEN_READWRITE, FailingDisk::HealthyName()) != SQLITE_OK ||
        sqlite3_exec(database, sql.c_str(), take, &answer, nullptr) != SQLITE_OK)
        answer = std::string("error: ") + sqlite3_errmsg(database);
    sqlite3_close(database);
    return answer;
}

}  // namespace faults
