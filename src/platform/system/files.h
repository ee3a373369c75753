#pragma once

#include <string_view>

#include "platform/text/ansi_string.h"

namespace vyn {

// File names and folders. Names are stored ones: Windows-1252, with "\" or "/" between their parts; where the system
// is asked they are mapped to its own spelling. Any thread.

// A stored name as the system spells it, in UTF-8.
std::string SystemSpelling(std::string_view fileName);

bool FileExists(const AnsiString& fileName);
bool DirectoryExists(const AnsiString& folder);
// Makes the folder and those above it; false when it cannot.
bool ForceDirectories(const AnsiString& folder);
bool DeleteFile(const AnsiString& fileName);
bool RenameFile(const AnsiString& from, const AnsiString& to);

// The parts of a name: path (up to and with the last separator or drive colon), folder (the same without the
// separator, but for a root), name, extension (with its dot; a dot in a folder's name is none).
AnsiString ExtractFilePath(std::string_view fileName);
AnsiString ExtractFileDir(std::string_view fileName);
AnsiString ExtractFileName(std::string_view fileName);
AnsiString ExtractFileExt(std::string_view fileName);
// Extension with its dot; empty removes it.
AnsiString ChangeFileExt(std::string_view fileName, std::string_view extension);

// The whole name, from the root, of a name in the current folder; "." and ".." are resolved.
AnsiString ExpandFileName(const AnsiString& fileName);
// The name of `fileName` as seen from the folder of `baseName` (whose part behind the last separator does not
// count), with the base's separator.
AnsiString ExtractRelativePath(std::string_view baseName, std::string_view fileName);

AnsiString IncludeTrailingPathDelimiter(const AnsiString& folder);
AnsiString ExcludeTrailingPathDelimiter(const AnsiString& folder);

// The folder of a user's data for programs of this family (XDG_DATA_HOME, else ~/.local/share, then "vyn"), with a
// trailing separator. Not made.
AnsiString AppDataFolder();
// The folder for temporary files, with a trailing separator.
AnsiString TempFolder();

}  // namespace vyn
