#include "providers/legacy/import.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "platform/streams/stream.h"
#include "platform/system/files.h"
#include "platform/text/windows1252.h"
#include "providers/legacy/loading.h"

namespace vyn::legacy {

namespace import_detail {

constexpr int64_t kRowsBetweenTellings = 256;
// Reading the file is the first part of the work.
constexpr double kReadPart = 0.05;

// What of a file changes when it is written.
struct Trace {
    int64_t Size = 0, Seconds = 0, Nanoseconds = 0;
    bool operator==(const Trace&) const = default;
};
Trace TraceOf(const AnsiString& file) {
    struct stat about {};
    if (::stat(SystemFileName(file).c_str(), &about) != 0) return {};
    return {about.st_size, about.st_mtim.tv_sec, about.st_mtim.tv_nsec};
}

// What other programs said of the file: that they have it open.
void TellOfLock(const AnsiString& from, ImportReport& report) {
    for (const char* extension : {".ldb", ".laccdb"}) {
        const AnsiString lock = ChangeFileExt(from, extension);
        if (!FileExists(lock)) continue;
        report.Losses.push_back({"file", AnsiToUtf8(lock),
                                 "another program may have the file open; what it has not written yet is not here",
                                 ""});
    }
}

class Importer {
  public:
    Importer(const File& file, sqlite3* database, Concessions& concessions, ImportReport& report,
             const ImportProgress& progress)
        : file_(file), database_(database), concessions_(concessions), report_(report), progress_(progress) {
        for (const Table& table : file.Tables()) allRows_ += table.RowCount;
        for (const Table& table : file.Tables()) taken_.insert(LowerName(table.Name));
        for (const Query& query : file.Queries()) taken_.insert(LowerName(query.Name));
    }

    void Run() {
        legacy::Run(database_, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA foreign_keys = OFF; BEGIN",
                    "The new database cannot be made");
        // A name that is nothing stays an error, and is not taken for a text.
        sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        for (const Foreign& other : file_.Others()) report_.Losses.push_back({"table", other.Name, other.Why, ""});
        for (const Table& table : file_.Tables()) LoadTable(table);
        for (const std::string& each : concessions_.Optional)
            report_.Losses.push_back({"column", each, "it was required, and empty in rows that are there", ""});
        for (const std::string& each : concessions_.Plain)
            report_.Losses.push_back({"index", each, "it was unique, and rows that are there are the same in it", ""});
        CheckRelations();
        MakeViews();
        legacy::Run(database_, "COMMIT", "The new database cannot be written");
        Tell(1);
    }

  private:
    static std::string LowerName(std::string name) {
        for (char& each : name)
            if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
        return name;
    }

    void Tell(double part) {
        if (progress_) progress_(part);
    }

    void LoadTable(const Table& table) {
        const std::string definition = TableDefinition(file_, table, concessions_, database_, report_);
        if (table.Name.find('\0') != std::string::npos ||
            sqlite3_exec(database_, definition.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            report_.Losses.push_back({"table", table.Name, ReasonOf(database_), definition});
            return;
        }
        for (const Column& column : table.Columns)
            if (column.Type == ColumnType::Complex)
                report_.Losses.push_back({"column", table.Name + "." + column.Name,
                                          "it holds lists of values, of which the numbers alone came over", ""});
        RowLoader loader(database_, table, concessions_, report_);
        file_.ReadRows(table, [&](const Row& row) {
            loader.Put(row);
            if (++doneRows_ % kRowsBetweenTellings == 0 && allRows_ > 0)
                Tell(std::min(
                    1.0, kReadPart + (1 - kReadPart) * static_cast<double>(doneRows_) / static_cast<double>(allRows_)));
        });
        loader.Finish();
        report_.Tables.push_back({table.Name, loader.Rows()});
        for (const Index& index : table.Indexes)
            if (!index.Primary) MakeIndex(table, index);
    }

    void MakeIndex(const Table& table, const Index& index) {
        const std::string definition = IndexDefinition(table, index, concessions_, taken_);
        if (sqlite3_exec(database_, definition.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) {
            ++report_.Indexes;
        } else if (IsUnique(table, index, concessions_)) {
            concessions_.Plain.insert(table.Name + "." + index.Name);
            throw DefinitionGivesWay();
        } else {
            report_.Losses.push_back({"index", table.Name + "." + index.Name, ReasonOf(database_), definition});
        }
    }

    // Rows that lead nowhere stay: they were there before.
    void CheckRelations() {
        sqlite3_stmt* statement = nullptr;
        const char* sql = "SELECT \"table\", parent, count(*) FROM pragma_foreign_key_check GROUP BY 1, 2, fkid";
        if (sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) != SQLITE_OK)
            sqlite_provider::Raise(database_, "The relations cannot be checked");
        while (sqlite3_step(statement) == SQLITE_ROW) {
            const auto text = [&](int column) {
                return std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
            };
            report_.Losses.push_back(
                {"relation", text(0), "rows of it that refer to nothing in " + text(1) + ": " + text(2), ""});
        }
        sqlite3_finalize(statement);
    }

    // Queries may read other queries, whatever the order: again as long as one more can be made.
    void MakeViews() {
        struct Waiting {
            std::string Name, Statement, Why;
        };
        std::vector<Waiting> waiting;
        for (const Query& query : file_.Queries()) {
            Waiting one{query.Name, "", ""};
            one.Statement = StatementOf(query, one.Why);
            if (one.Why.empty())
                waiting.push_back(std::move(one));
            else
                report_.Losses.push_back({"query", query.Name, one.Why, PartsOf(query)});
        }
        for (bool more = true; more;) {
            more = false;
            for (size_t i = 0; i < waiting.size();) {
                waiting[i].Why = MakeView(waiting[i].Name, waiting[i].Statement);
                if (!waiting[i].Why.empty()) {
                    ++i;
                    continue;
                }
                report_.Views.push_back(waiting[i].Name);
                waiting.erase(waiting.begin() + static_cast<ptrdiff_t>(i));
                more = true;
            }
        }
        for (const Waiting& each : waiting) report_.Losses.push_back({"query", each.Name, each.Why, each.Statement});
    }

    // Gives the reason when the engine does not run it.
    std::string MakeView(const std::string& name, const std::string& statement) {
        std::string text;
        try {
            text = EmbeddedStatement(statement);
        } catch (const Exception& error) {
            return AnsiToUtf8(error.Message());
        }
        if (sqlite3_exec(database_, ("CREATE VIEW " + Quoted(name) + " AS " + text).c_str(), nullptr, nullptr,
                         nullptr) != SQLITE_OK)
            return ReasonOf(database_);
        sqlite3_stmt* question = nullptr;
        int result = sqlite3_prepare_v2(database_, ("SELECT * FROM " + Quoted(name)).c_str(), -1, &question, nullptr);
        if (result == SQLITE_OK) result = sqlite3_step(question);
        const std::string why = result == SQLITE_ROW || result == SQLITE_DONE ? "" : ReasonOf(database_);
        sqlite3_finalize(question);
        if (!why.empty()) legacy::Run(database_, "DROP VIEW " + Quoted(name), "A view cannot be taken back");
        return why;
    }

    // What is stored of a query that has no statement here.
    static std::string PartsOf(const Query& query) {
        std::string text;
        for (const QueryPart& part : query.Parts)
            for (const std::string* each : {&part.Expression, &part.Name1, &part.Name2})
                if (!each->empty()) text += (text.empty() ? "" : "; ") + *each;
        return text;
    }

    const File& file_;
    sqlite3* database_;
    Concessions& concessions_;
    ImportReport& report_;
    const ImportProgress& progress_;
    std::set<std::string> taken_;
    int64_t allRows_ = 0;
    int64_t doneRows_ = 0;
};

// Removes what was not finished.
class Unfinished {
  public:
    explicit Unfinished(AnsiString name) : name_(std::move(name)) { DeleteFile(name_); }
    ~Unfinished() { DeleteFile(name_); }
    const AnsiString& Name() const { return name_; }

  private:
    AnsiString name_;
};

void MakeDatabase(const File& file, const AnsiString& name, Concessions& concessions, ImportReport& report,
                  const ImportProgress& progress) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(SystemFileName(name).c_str(), &opened,
                                       SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    const sqlite_provider::DatabaseHandle database(opened);
    if (result != SQLITE_OK) throw EFCreateError("Cannot create file " + name + ". " + sqlite3_errmsg(opened));
    Importer(file, opened, concessions, report, progress).Run();
}

}  // namespace import_detail

std::string Loss::Sentence() const {
    std::string sentence = Kind + " " + Object + ": " + Why;
    if (!Text.empty()) sentence += " (" + Text + ")";
    return sentence;
}

ImportReport ImportLegacyFile(const AnsiString& from, const AnsiString& to, const ImportOptions& options,
                              const ImportProgress& progress) {
    using namespace import_detail;
    ImportReport whole;
    TellOfLock(from, whole);
    const Trace before = TraceOf(from);
    if (progress) progress(0);
    // Read whole: other programs may cut a file short while it is mapped.
    TMemoryStream bytes;
    bytes.LoadFromFile(from);
    if (TraceOf(from) != before)
        throw EDatabaseError("The file changed while it was read: close it in the other program, and try again");
    if (progress) progress(kReadPart);
    // Reading again, for a concession, finds the same damage again.
    std::set<std::string> told;
    std::vector<Loss> damage;
    DamageHandler damaged;
    if (options.OnDamage == Damage::LeaveOut)
        damaged = [&](const std::string& what) {
            if (told.insert(what).second) damage.push_back({"damage", AnsiToUtf8(ExtractFileName(from)), what, ""});
        };
    const File file(bytes.Bytes(), options.Password, damaged);
    Concessions concessions;
    for (;;) {
        const Unfinished unfinished(to + ".new-" + std::to_string(::getpid()));
        ImportReport report = whole;
        try {
            MakeDatabase(file, unfinished.Name(), concessions, report, progress);
        } catch (const DefinitionGivesWay&) {
            continue;
        }
        if (report.Tables.empty() && !damage.empty()) throw EDatabaseError("Nothing of the file can be read");
        // Damage that was found on the way.
        report.Losses.insert(report.Losses.end(), damage.begin(), damage.end());
        TFileStream(unfinished.Name(), fmOpenReadWrite).Synchronize();
        PutInPlace(unfinished.Name(), to);
        return report;
    }
}

}  // namespace vyn::legacy
