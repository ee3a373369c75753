#include "platform/system/files.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "platform/text/windows1252.h"

namespace vyn {

namespace file_detail {

namespace fs = std::filesystem;

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// One past the last separator (or drive colon).
size_t PathLength(std::string_view name) {
    for (size_t i = name.size(); i > 0; --i)
        if (IsSeparator(name[i - 1]) || name[i - 1] == ':') return i;
    return 0;
}

// Where the extension's dot stands, or the length.
size_t ExtensionAt(std::string_view name) {
    for (size_t i = name.size(); i > PathLength(name); --i)
        if (name[i - 1] == '.') return i - 1;
    return name.size();
}

std::vector<std::string_view> Parts(std::string_view path) {
    std::vector<std::string_view> parts;
    size_t start = 0;
    for (size_t i = 0; i <= path.size(); ++i) {
        if (i < path.size() && !IsSeparator(path[i])) continue;
        if (i > start) parts.push_back(path.substr(start, i - start));
        start = i + 1;
    }
    return parts;
}

AnsiString WithSeparator(std::string folder) {
    if (folder.empty() || folder.back() != '/') folder += '/';
    return Utf8ToAnsiLossy(folder);
}

}  // namespace file_detail

std::string SystemSpelling(std::string_view fileName) {
    std::string system = AnsiToUtf8(fileName);
    for (char& c : system)
        if (c == '\\') c = '/';
    return system;
}

bool FileExists(const AnsiString& fileName) {
    std::error_code error;
    const auto status = file_detail::fs::status(SystemSpelling(fileName), error);
    return !error && file_detail::fs::exists(status) && !file_detail::fs::is_directory(status);
}

bool DirectoryExists(const AnsiString& folder) {
    std::error_code error;
    return file_detail::fs::is_directory(SystemSpelling(folder), error);
}

bool ForceDirectories(const AnsiString& folder) {
    if (folder.empty()) return false;
    std::error_code error;
    file_detail::fs::create_directories(SystemSpelling(ExcludeTrailingPathDelimiter(folder)), error);
    return !error && DirectoryExists(folder);
}

bool DeleteFile(const AnsiString& fileName) {
    if (!FileExists(fileName)) return false;
    std::error_code error;
    return file_detail::fs::remove(SystemSpelling(fileName), error) && !error;
}

bool RenameFile(const AnsiString& from, const AnsiString& to) {
    std::error_code error;
    file_detail::fs::rename(SystemSpelling(from), SystemSpelling(to), error);
    return !error;
}

AnsiString ExtractFilePath(std::string_view fileName) {
    return AnsiString(fileName.substr(0, file_detail::PathLength(fileName)));
}

AnsiString ExtractFileDir(std::string_view fileName) {
    size_t length = file_detail::PathLength(fileName);
    const bool root = length == 1 || (length == 3 && fileName[1] == ':');
    if (length > 0 && !root && file_detail::IsSeparator(fileName[length - 1])) --length;
    return AnsiString(fileName.substr(0, length));
}

AnsiString ExtractFileName(std::string_view fileName) {
    return AnsiString(fileName.substr(file_detail::PathLength(fileName)));
}

AnsiString ExtractFileExt(std::string_view fileName) {
    return AnsiString(fileName.substr(file_detail::ExtensionAt(fileName)));
}

AnsiString ChangeFileExt(std::string_view fileName, std::string_view extension) {
    AnsiString changed(fileName.substr(0, file_detail::ExtensionAt(fileName)));
    return changed.append(extension);
}

AnsiString ExpandFileName(const AnsiString& fileName) {
    std::error_code error;
    const auto whole = file_detail::fs::absolute(SystemSpelling(fileName), error);
    return error ? fileName : Utf8ToAnsiLossy(whole.lexically_normal().string());
}

AnsiString ExtractRelativePath(std::string_view baseName, std::string_view fileName) {
    const std::string_view basePath = baseName.substr(0, file_detail::PathLength(baseName));
    const std::string_view filePath = fileName.substr(0, file_detail::PathLength(fileName));
    const auto base = file_detail::Parts(basePath);
    const auto file = file_detail::Parts(filePath);
    const bool sameRoot = (!basePath.empty() && file_detail::IsSeparator(basePath[0])) ==
                          (!filePath.empty() && file_detail::IsSeparator(filePath[0]));
    const bool drives = !base.empty() && base[0].back() == ':';
    if (!sameRoot || (drives && (file.empty() || base[0] != file[0]))) return AnsiString(fileName);
    const char separator = basePath.find('\\') != std::string_view::npos ? '\\' : '/';
    size_t common = 0;
    while (common < base.size() && common < file.size() && base[common] == file[common]) ++common;
    AnsiString relative;
    for (size_t i = common; i < base.size(); ++i) relative.append("..") += separator;
    for (size_t i = common; i < file.size(); ++i) relative.append(file[i]) += separator;
    return relative.append(fileName.substr(filePath.size()));
}

AnsiString IncludeTrailingPathDelimiter(const AnsiString& folder) {
    if (!folder.empty() && file_detail::IsSeparator(folder.back())) return folder;
    return folder + (folder.find('\\') != AnsiString::npos ? '\\' : '/');
}

AnsiString ExcludeTrailingPathDelimiter(const AnsiString& folder) {
    if (folder.size() > 1 && file_detail::IsSeparator(folder.back())) return folder.substr(0, folder.size() - 1);
    return folder;
}

AnsiString AppDataFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return file_detail::WithSeparator(std::string(data) + "/vyn");
    const char* home = std::getenv("HOME");
    return file_detail::WithSeparator((home && *home ? std::string(home) : std::string("/tmp")) + "/.local/share/vyn");
}

AnsiString TempFolder() {
    std::error_code error;
    const auto folder = file_detail::fs::temp_directory_path(error);
    return file_detail::WithSeparator(error ? std::string("/tmp") : folder.string());
}

}  // namespace vyn
