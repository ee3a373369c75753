#include "programs/vyn/script_database.h"

#include <unistd.h>

#include "platform/access/ado.h"
#include "platform/streams/stream.h"
#include "platform/system/application.h"
#include "platform/system/files.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

AnsiString UserDataFolder() {
    const AnsiString folder = AppDataFolder();
    if (!ForceDirectories(folder)) throw EFCreateError("Cannot create folder " + folder);
    return IncludeTrailingPathDelimiter(folder);
}

std::string DemoFolder() {
    const AnsiString program = ExtractFilePath(Application()->ExeName());
    for (const char* place : {"../samples/trading", "../share/vyn/samples/trading"})
        if (FileExists(program + place + "/application.json")) return AnsiToUtf8(ExpandFileName(program + place));
    throw Exception("The sample application was not found beside the program");
}

AnsiString DatabaseFromScript(const AnsiString& scriptFile, const AnsiString& name) {
    const AnsiString file = UserDataFolder() + name + ".db";
    if (FileExists(file)) return file;
    TMemoryStream script;
    script.LoadFromFile(scriptFile);
    // Made under another name, so that an interruption leaves no half of a database.
    const AnsiString unfinished = file + ".new-" + IntToStr(::getpid());
    try {
        TADOConnection connection(nullptr);
        connection.SetConnectionString("Provider=SQLite;Data Source=" + unfinished);
        connection.Execute(Utf8ToAnsi(script.Bytes()));
        // One file, without a log beside it.
        connection.Execute("PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode = DELETE");
        connection.Close();
    } catch (...) {
        DeleteFile(unfinished);
        throw;
    }
    if (!RenameFile(unfinished, file)) {
        DeleteFile(unfinished);
        throw EFCreateError("Cannot create file " + file);
    }
    return file;
}

}  // namespace vyn
