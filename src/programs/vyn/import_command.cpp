#include <signal.h>

#include <iostream>

#include "platform/system/files.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "programs/tools/json_text.h"
#include "programs/vyn/commands.h"
#include "providers/legacy/import.h"

namespace vyn {

namespace import_command_detail {

volatile sig_atomic_t g_interrupted = 0;

void Interrupt(int) { g_interrupted = 1; }

// While it lives, an interruption ends the work in order: nothing half done is left behind.
class Interruptible {
  public:
    Interruptible() {
        g_interrupted = 0;
        struct sigaction action {};
        action.sa_handler = Interrupt;
        ::sigaction(SIGINT, &action, &interrupt_);
        ::sigaction(SIGTERM, &action, &terminate_);
    }
    ~Interruptible() {
        ::sigaction(SIGINT, &interrupt_, nullptr);
        ::sigaction(SIGTERM, &terminate_, nullptr);
    }
    static void Check() {
        if (g_interrupted) throw Exception("Interrupted; nothing was written");
    }

  private:
    struct sigaction interrupt_ {};
    struct sigaction terminate_ {};
};

Json ReportJson(const legacy::ImportReport& report) {
    Json tables = Json::array(), losses = Json::array();
    for (const auto& table : report.Tables) tables.push_back({{"name", table.Name}, {"rows", table.Rows}});
    for (const auto& loss : report.Losses)
        losses.push_back({{"kind", loss.Kind}, {"object", loss.Object}, {"why", loss.Why}, {"text", loss.Text}});
    return {{"tables", tables},
            {"indexes", report.Indexes},
            {"relations", report.Relations},
            {"views", report.Views},
            {"losses", losses}};
}

std::string Counted(int64_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

void PrintReport(const legacy::ImportReport& report, const std::string& output) {
    int64_t rows = 0;
    for (const auto& table : report.Tables) rows += table.Rows;
    std::cout << output << ": " << Counted(static_cast<int64_t>(report.Tables.size()), "table", "tables") << ", "
              << Counted(rows, "row", "rows") << ", " << Counted(report.Indexes, "index", "indexes") << ", "
              << Counted(report.Relations, "relation", "relations") << ", "
              << Counted(static_cast<int64_t>(report.Views.size()), "view", "views") << '\n';
    if (!report.Losses.empty()) std::cout << "What did not come over as it was:\n";
    for (const auto& loss : report.Losses) std::cout << "  " << loss.Sentence() << '\n';
}

}  // namespace import_command_detail

int ImportCommand(const ImportCommandOptions& options) {
    using namespace import_command_detail;
    const AnsiString from = Utf8ToAnsi(options.File), to = Utf8ToAnsi(options.Output);
    if (DirectoryExists(to)) throw EFCreateError("Cannot create file " + to + ". It is a folder");
    if (!options.Force && FileExists(to))
        throw Exception(to + " is there already; --force replaces it, with all that was changed in it");
    // Another program's unwritten changes would be read into the new database.
    if (FileExists(to + "-wal") || FileExists(to + "-journal"))
        throw Exception(to + " is open in another program, or was not closed in order");
    legacy::ImportOptions wanted;
    wanted.OnDamage = options.Damaged ? legacy::Damage::LeaveOut : legacy::Damage::Refuse;
    if (options.Password) std::getline(std::cin, wanted.Password);
    legacy::ImportReport report;
    try {
        const Interruptible interruptible;
        Progress progress("importing");
        report = legacy::ImportLegacyFile(from, to, wanted, [&](double part) {
            Interruptible::Check();
            progress(part);
        });
    } catch (const EDatabaseError& error) {
        throw Exception(from + ": " + error.Message());
    }
    if (options.Json)
        std::cout << ReportJson(report).dump(2) << '\n';
    else
        PrintReport(report, options.Output);
    std::cout << std::flush;
    if (!std::cout) throw EWriteError("Standard output cannot be written");
    return 0;
}

}  // namespace vyn
