#include "providers/legacy/connection.h"

#include <sys/stat.h>

#include <filesystem>

#include <fmt/format.h>

#include "platform/access/provider.h"
#include "platform/streams/stream.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/windows1252.h"
#include "providers/legacy/legacy_file.h"

namespace vyn {

namespace legacy {

namespace connection_detail {

namespace fs = std::filesystem;

// Every database file of the embedded engine begins with this, and a zero.
constexpr std::string_view kEmbeddedMark("SQLite format 3\0", 16);
constexpr char kPasswordKey[] = "Jet OLEDB:Database Password";
// Copies that were made otherwise are made anew.
constexpr int kVersionOfCopies = 1;
// What the embedded engine says to a statement that would write.
constexpr char kRefusal[] = "attempt to write a readonly database";

uint64_t Hash(std::string_view bytes) {
    uint64_t hash = 14695981039346656037u;  // FNV-1a
    for (const char each : bytes) hash = (hash ^ static_cast<unsigned char>(each)) * 1099511628211u;
    return hash;
}

std::string Beginning(const AnsiString& file) {
    if (!FileExists(file)) throw EDatabaseError("Data Source=" + file + ": the file does not exist");
    std::string bytes(File::kBeginning, '\0');
    TFileStream stream(file, fmOpenRead);
    size_t size = 0;
    while (size < bytes.size()) {
        const int64_t taken = stream.Read(bytes.data() + size, static_cast<int64_t>(bytes.size() - size));
        if (taken <= 0) break;
        size += static_cast<size_t>(taken);
    }
    bytes.resize(size);
    return bytes;
}

// A value of a connection string in quotes.
AnsiString InQuotes(const AnsiString& value) {
    AnsiString text = "\"";
    for (const char each : value) text += each == '"' ? AnsiString("\"\"") : AnsiString(1, each);
    return text + "\"";
}

// Statements that would write say what to do instead.
template <typename Action>
auto Refusing(const AnsiString& file, Action action) {
    try {
        return action();
    } catch (const EDatabaseError& error) {
        if (error.Message().find(kRefusal) == AnsiString::npos) throw;
        throw EDatabaseError(file + " is a legacy database, which is read only: import it (vyn import " +
                             ExtractFileName(file) + " -o NEW.db) and open the new one");
    }
}

class LegacyStatement final : public ProviderStatement {
  public:
    LegacyStatement(std::unique_ptr<ProviderStatement> inner, const AnsiString& file)
        : inner_(std::move(inner)), file_(file) {}
    std::vector<FieldDefinition> Columns() override {
        return Refusing(file_, [&] { return inner_->Columns(); });
    }
    void ExpectColumns(std::vector<FieldDefinition> columns) override { inner_->ExpectColumns(std::move(columns)); }
    void Bind(const std::vector<ProviderValue>& values) override { inner_->Bind(values); }
    int ParameterCount() const override { return inner_->ParameterCount(); }
    bool Fetch(RowStore& rows, int64_t count) override {
        return Refusing(file_, [&] { return inner_->Fetch(rows, count); });
    }
    int64_t Execute() override {
        return Refusing(file_, [&] { return inner_->Execute(); });
    }

  private:
    std::unique_ptr<ProviderStatement> inner_;
    AnsiString file_;
};

// The copy's connection, with the words of a legacy file.
class LegacyConnection final : public ProviderConnection {
  public:
    LegacyConnection(std::unique_ptr<ProviderConnection> inner, AnsiString file)
        : inner_(std::move(inner)), file_(std::move(file)) {}
    const EngineDialect& Dialect() const override { return inner_->Dialect(); }
    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override {
        return std::make_unique<LegacyStatement>(Refusing(file_, [&] { return inner_->Prepare(sql); }), file_);
    }
    int64_t Execute(const AnsiString& sql) override {
        return Refusing(file_, [&] { return inner_->Execute(sql); });
    }
    std::vector<AnsiString> TableNames(SystemTables system) override { return inner_->TableNames(system); }
    std::vector<AnsiString> ProcedureNames() override { return inner_->ProcedureNames(); }
    bool IsTable(const AnsiString& name) override { return inner_->IsTable(name); }
    bool OriginsAreTables() const override { return inner_->OriginsAreTables(); }
    std::vector<AnsiString> KeyColumns(const AnsiString& table) override { return inner_->KeyColumns(table); }
    std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) override {
        return inner_->IndexColumns(table, index);
    }
    int64_t EstimatedRows(const AnsiString& table) override { return inner_->EstimatedRows(table); }
    int Begin() override { return inner_->Begin(); }
    int Commit() override { return inner_->Commit(); }
    int Rollback() override { return inner_->Rollback(); }
    int TransactionDepth() const override { return inner_->TransactionDepth(); }
    AnsiString Returning(const std::vector<AnsiString>& columns) const override { return inner_->Returning(columns); }
    AnsiString LastKeyQuery() const override { return inner_->LastKeyQuery(); }
    void SetCommandTimeout(int seconds) override { inner_->SetCommandTimeout(seconds); }
    bool WritesBesideReading() const override { return inner_->WritesBesideReading(); }

  private:
    std::unique_ptr<ProviderConnection> inner_;
    AnsiString file_;
};

std::unique_ptr<ProviderConnection> Open(const ConnectionString& settings) {
    const AnsiString file = settings.Value("Data Source");
    const std::string beginning = Beginning(file);
    if (std::string_view(beginning).substr(0, kEmbeddedMark.size()) == kEmbeddedMark) {
        AnsiString text = "Provider=SQLite";
        for (const auto& [key, value] : settings.Pairs())
            if (!SameText(key, "Provider")) text += ";" + key + "=" + InQuotes(value);
        return OpenProvider(ConnectionString(text));
    }
    if (!File::IsLegacy(beginning))
        throw EDatabaseError("Data Source=" + file + ": the file is no database that can be opened");
    ImportOptions options;
    options.Password = AnsiToUtf8(settings.Value(kPasswordKey));
    AnsiString copy;
    try {
        // Also where the copy is there already.
        File::CheckPassword(beginning, options.Password);
        copy = CopyOf(file, options);
    } catch (const EDatabaseError& error) {
        throw EDatabaseError("Data Source=" + file + ": " + error.Message());
    }
    return std::make_unique<LegacyConnection>(
        OpenProvider(ConnectionString("Provider=SQLite;Mode=Read;Data Source=" + InQuotes(copy))), file);
}

}  // namespace connection_detail

AnsiString CopyOf(const AnsiString& file, const ImportOptions& options) {
    using namespace connection_detail;
    struct stat about {};
    if (::stat(SystemFileName(file).c_str(), &about) != 0) throw EDatabaseError("the file does not exist");
    const AnsiString folder = AppDataFolder() + "legacy";
    if (!ForceDirectories(folder)) throw EFCreateError("Cannot create folder " + folder);
    // What a file keeps from others its copy keeps too.
    ::chmod(SystemFileName(folder).c_str(), S_IRWXU);
    const std::string owner = fmt::format("{:016x}", Hash(AnsiToUtf8(ExpandFileName(file))));
    const std::string name =
        fmt::format("{}-{:016x}.db", owner,
                    Hash(fmt::format("{} {} {} {} {} {}", kVersionOfCopies, about.st_size, about.st_ino,
                                     about.st_mtim.tv_sec, about.st_mtim.tv_nsec, about.st_ctim.tv_nsec)));
    const AnsiString copy = folder + "/" + name;
    if (FileExists(copy)) return copy;
    ImportLegacyFile(file, copy, options);
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(SystemFileName(folder), ignored)) {
        const std::string other = entry.path().filename().string();
        if (other.rfind(owner + "-", 0) == 0 && other != name) fs::remove(entry.path(), ignored);
    }
    return copy;
}

}  // namespace legacy

void RegisterLegacyProvider() { RegisterProvider("Microsoft.Jet.OLEDB.4.0", legacy::connection_detail::Open); }

}  // namespace vyn
