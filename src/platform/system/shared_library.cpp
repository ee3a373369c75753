#include "platform/system/shared_library.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/objects/class_table.h"
#include "platform/system/application.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace library_detail {

AnsiString& LastError() {
    static AnsiString error;
    return error;
}

bool IsForeignExtension(std::string_view extension) {
    return SameText(extension, ".dll") || SameText(extension, ".bpl") || SameText(extension, ".ocx") ||
           SameText(extension, ".exe");
}

// The file names that a stored name may stand for, the most literal first.
std::vector<AnsiString> Spellings(const AnsiString& name) {
    std::vector<AnsiString> names = {name, name + ".so"};
    const AnsiString extension = ExtractFileExt(name);
    const AnsiString base = IsForeignExtension(extension) ? ChangeFileExt(name, "") : name;
    if (!extension.empty() && !IsForeignExtension(extension)) return names;
    const AnsiString lower = LowerCase(base);
    for (const AnsiString& each : {lower, base}) {
        names.push_back("lib" + each + ".so");
        names.push_back(each + ".so");
    }
    return names;
}

std::vector<AnsiString> Folders(const AnsiString& ownFolder) {
    std::vector<AnsiString> folders;
    const AnsiString program = ExtractFilePath(Application()->ExeName());
    if (!ownFolder.empty() && ownFolder[0] != '/') folders.push_back(program + ownFolder);
    if (!ownFolder.empty()) folders.push_back(ownFolder);
    folders.push_back(program);
    folders.push_back(program + "../lib/");
    if (const char* path = std::getenv("VYN_LIBRARY_PATH")) {
        std::string_view rest = path;
        while (!rest.empty()) {
            const size_t colon = rest.find(':');
            const std::string_view folder = rest.substr(0, colon);
            if (!folder.empty()) folders.push_back(IncludeTrailingPathDelimiter(Utf8ToAnsiLossy(folder)));
            rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
        }
    }
    return folders;
}

HMODULE Open(const AnsiString& file) {
    void* library = dlopen(AnsiToUtf8(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* error = dlerror();
        LastError() = error ? Utf8ToAnsiLossy(error) : AnsiString();
    }
    return reinterpret_cast<HMODULE>(library);
}

}  // namespace library_detail

HMODULE LoadSharedLibrary(const AnsiString& name) {
    library_detail::LastError().clear();
    if (Trim(name).empty()) {
        library_detail::LastError() = "The library has no name";
        return 0;
    }
    AnsiString mapped = name;
    for (char& c : mapped)
        if (c == '\\') c = '/';
    const AnsiString fileName = ExtractFileName(mapped);
    const std::vector<AnsiString> spellings = library_detail::Spellings(fileName);
    for (const AnsiString& folder : library_detail::Folders(ExtractFilePath(mapped))) {
        for (const AnsiString& spelling : spellings) {
            if (!FileExists(folder + spelling)) continue;
            if (const HMODULE library = library_detail::Open(folder + spelling)) return library;
            // A file that is there but does not load is what the user wants to hear about, unless it is the other
            // system's own library under its own name.
            if (!library_detail::IsForeignExtension(ExtractFileExt(spelling))) return 0;
        }
    }
    const AnsiString found = library_detail::LastError();
    if (ExtractFilePath(mapped).empty())
        for (const AnsiString& spelling : spellings)
            if (const HMODULE library = library_detail::Open(spelling)) return library;
    library_detail::LastError() = found.empty() ? "The library " + name + " was not found" : found;
    return 0;
}

bool SharedLibraryExists(const AnsiString& name) {
    AnsiString mapped = name;
    for (char& c : mapped)
        if (c == '\\') c = '/';
    const AnsiString folder = ExtractFilePath(mapped);
    for (const AnsiString& spelling : library_detail::Spellings(ExtractFileName(mapped)))
        if (FileExists(folder + spelling)) return true;
    return false;
}

void* GetProcAddress(HMODULE library, const AnsiString& name) {
    return library == 0 ? nullptr : dlsym(reinterpret_cast<void*>(library), name.c_str());
}

bool FreeSharedLibrary(HMODULE library) { return library != 0 && dlclose(reinterpret_cast<void*>(library)) == 0; }

const void* ModuleBase(HMODULE library) {
    if (library == 0) return nullptr;
    link_map* map = nullptr;
    if (dlinfo(reinterpret_cast<void*>(library), RTLD_DI_LINKMAP, &map) != 0 || !map) return nullptr;
    return ModuleOfAddress(map->l_ld);
}

const AnsiString& LastLibraryError() { return library_detail::LastError(); }

}  // namespace vyn
