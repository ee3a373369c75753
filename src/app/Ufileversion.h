#pragma once

#include "platform/text/ansi_string.h"

namespace vyn {

// What the version resource of an executable or library says of it.
struct TFileVersionInfo {
    bool Found = false;  // it has a version resource
    AnsiString CompanyName;
    AnsiString FileDescription;
    AnsiString FileVersion;
    AnsiString InternalName;
    AnsiString LegalCopyright;
    AnsiString LegalTrademarks;
    AnsiString OriginalFilename;
    AnsiString ProductName;
    AnsiString ProductVersion;
    AnsiString Comments;
    bool Debug = false;
    bool PreRelease = false;
    bool Patched = false;
    bool PrivateBuild = false;
    bool InfoInferred = false;
    bool SpecialBuild = false;
    bool operator==(const TFileVersionInfo&) const = default;
};

// Reads the version resource of a file of the reference platform (docs/formats/version-resource.md); the texts are
// those of the resource's first language. A file that has none, is none of these files or is not there gives the
// cleared record; a text that is missing or damaged is empty. Raises nothing. Any thread.
TFileVersionInfo GetTFileVersionInfo(const AnsiString& fileName);

}  // namespace vyn
