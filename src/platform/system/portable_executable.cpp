#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/system/files.h"
#include "platform/system/version_resource.h"

// The way to the version resource of a portable executable: headers, sections, and the three levels of directories
// (type, name, language) in which resources are listed. All numbers are little-endian, as on the machines this runs on.
namespace vyn {

namespace portable_executable_detail {

constexpr uint64_t kHeaderOffsetAt = 60;  // of the first header
constexpr size_t kMarkSize = 4;           // "PE" and two zeros
constexpr size_t kFileHeaderSize = 20;
constexpr uint16_t kMagic32 = 0x10B;
constexpr uint16_t kMagic64 = 0x20B;
constexpr size_t kDirectories32 = 96;  // where the data directories begin in the optional header
constexpr size_t kDirectories64 = 112;
constexpr uint32_t kResources = 2;  // the number of their directory
constexpr size_t kDirectorySize = 8;
constexpr size_t kSectionSize = 40;
constexpr uint16_t kMaximumSections = 96;  // the reference platform loads no more

constexpr size_t kResourceDirectorySize = 16;
constexpr size_t kResourceEntrySize = 8;
constexpr uint32_t kIsDirectory = 0x80000000;  // in an entry's offset; in its name: it is a text
constexpr uint32_t kVersionType = 16;
constexpr uint32_t kVersionName = 1;
constexpr uint32_t kNeutralLanguage = 0;
// A version resource counts its length in 16 bits: whatever a larger one holds behind is not its own.
constexpr uint32_t kMaximumResource = 0xFFFF;

struct Section {
    uint32_t Address = 0;  // of its first byte in memory
    uint32_t Size = 0;     // of its bytes in the file
    uint32_t Offset = 0;   // in the file
};

template <class T>
T NumberIn(const char* bytes) {
    T number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

class Executable {
  public:
    explicit Executable(const ReadBytesAt& read) : read_(read) {}

    // Finds the sections and the resources' directory; false when this is no executable or it has none.
    bool ReadHeaders() {
        char mark[2];
        uint32_t header = 0;
        if (!read_(0, mark, sizeof mark) || std::memcmp(mark, "MZ", 2) != 0) return false;
        if (!read_(kHeaderOffsetAt, &header, sizeof header)) return false;
        char file[kMarkSize + kFileHeaderSize];
        if (!read_(header, file, sizeof file) || std::memcmp(file, "PE\0\0", kMarkSize) != 0) return false;
        const auto sections = NumberIn<uint16_t>(file + kMarkSize + 2);
        const auto optionalSize = NumberIn<uint16_t>(file + kMarkSize + 16);
        const uint64_t optional = uint64_t{header} + sizeof file;
        return ReadDirectory(optional, optionalSize) && ReadSections(optional + optionalSize, sections);
    }

    // The bytes of the version resource.
    bool ReadVersion(AnsiString& bytes) const {
        uint32_t names = 0, languages = 0, entry = 0;
        if (!Find(0, kVersionType, names) || !(names & kIsDirectory)) return false;
        if (!Find(names & ~kIsDirectory, kVersionName, languages) || !(languages & kIsDirectory)) return false;
        languages &= ~kIsDirectory;
        if (!Find(languages, kNeutralLanguage, entry) && !First(languages, entry)) return false;
        if (entry & kIsDirectory) return false;
        uint32_t place[2];  // address, size
        if (!ReadAt(uint64_t{resources_} + entry, place, sizeof place) || place[1] == 0) return false;
        uint64_t offset = 0;
        if (!OffsetOf(place[0], place[1], offset)) return false;
        bytes.resize(std::min(place[1], kMaximumResource));
        return read_(offset, bytes.data(), bytes.size());
    }

  private:
    bool ReadDirectory(uint64_t optional, size_t size) {
        uint16_t magic = 0;
        if (size < sizeof magic || !read_(optional, &magic, sizeof magic)) return false;
        if (magic != kMagic32 && magic != kMagic64) return false;
        const size_t directories = magic == kMagic32 ? kDirectories32 : kDirectories64;
        const size_t wanted = directories + kResources * kDirectorySize;
        uint32_t count = 0, directory[2];
        if (size < wanted + kDirectorySize) return false;
        if (!read_(optional + directories - sizeof count, &count, sizeof count) || count <= kResources) return false;
        if (!read_(optional + wanted, directory, sizeof directory)) return false;
        resources_ = directory[0];
        return resources_ != 0 && directory[1] != 0;
    }

    bool ReadSections(uint64_t offset, uint16_t count) {
        if (count > kMaximumSections) return false;
        std::vector<char> table(count * kSectionSize);
        if (!read_(offset, table.data(), table.size())) return false;
        for (size_t at = 0; at < table.size(); at += kSectionSize)
            sections_.push_back({NumberIn<uint32_t>(&table[at + 12]), NumberIn<uint32_t>(&table[at + 16]),
                                 NumberIn<uint32_t>(&table[at + 20])});
        return true;
    }

    // Where bytes that lie at an address in memory stand in the file: whole in one section.
    bool OffsetOf(uint64_t address, uint64_t count, uint64_t& offset) const {
        for (const Section& section : sections_) {
            if (address < section.Address || address - section.Address > section.Size) continue;
            const uint64_t inside = address - section.Address;
            if (count > section.Size - inside) continue;
            offset = section.Offset + inside;
            return true;
        }
        return false;
    }
    bool ReadAt(uint64_t address, void* buffer, size_t count) const {
        uint64_t offset = 0;
        return OffsetOf(address, count, offset) && read_(offset, buffer, count);
    }

    // The entries of a directory: those with texts for names come first.
    bool ReadEntries(uint32_t directory, std::vector<char>& entries, size_t& named) const {
        char header[kResourceDirectorySize];
        const uint64_t address = uint64_t{resources_} + directory;
        if (!ReadAt(address, header, sizeof header)) return false;
        named = NumberIn<uint16_t>(header + 12);
        const size_t count = named + NumberIn<uint16_t>(header + 14);
        uint64_t offset = 0;
        if (!OffsetOf(address + sizeof header, count * kResourceEntrySize, offset)) return false;
        entries.resize(count * kResourceEntrySize);
        return read_(offset, entries.data(), entries.size());
    }

    bool Find(uint32_t directory, uint32_t number, uint32_t& found) const {
        std::vector<char> entries;
        size_t named = 0;
        if (!ReadEntries(directory, entries, named)) return false;
        for (size_t at = named * kResourceEntrySize; at < entries.size(); at += kResourceEntrySize) {
            if (NumberIn<uint32_t>(&entries[at]) != number) continue;
            found = NumberIn<uint32_t>(&entries[at + 4]);
            return true;
        }
        return false;
    }
    bool First(uint32_t directory, uint32_t& found) const {
        std::vector<char> entries;
        size_t named = 0;
        if (!ReadEntries(directory, entries, named) || entries.empty()) return false;
        found = NumberIn<uint32_t>(&entries[4]);
        return true;
    }

    const ReadBytesAt& read_;
    uint32_t resources_ = 0;  // address of their directory
    std::vector<Section> sections_;
};

// An open file.
class ReadableFile {
  public:
    explicit ReadableFile(const AnsiString& fileName) {
        // Without waiting, should the name be a pipe's.
        handle_ = ::open(SystemSpelling(fileName).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    }
    ~ReadableFile() {
        if (handle_ >= 0) ::close(handle_);
    }
    ReadableFile(const ReadableFile&) = delete;
    ReadableFile& operator=(const ReadableFile&) = delete;

    bool Read(uint64_t offset, void* buffer, size_t count) const {
        auto* to = static_cast<char*>(buffer);
        while (count > 0) {
            const ssize_t got = ::pread(handle_, to, count, static_cast<off_t>(offset));
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return false;
            to += got;
            offset += static_cast<uint64_t>(got);
            count -= static_cast<size_t>(got);
        }
        return true;
    }

  private:
    int handle_ = -1;
};

}  // namespace portable_executable_detail

std::optional<VersionResource> VersionResource::OfExecutable(const ReadBytesAt& read) {
    portable_executable_detail::Executable executable(read);
    AnsiString bytes;
    if (!executable.ReadHeaders() || !executable.ReadVersion(bytes)) return std::nullopt;
    return VersionResource(std::move(bytes));
}

std::optional<VersionResource> VersionResource::OfFile(const AnsiString& fileName) {
    const portable_executable_detail::ReadableFile file(fileName);
    return OfExecutable(
        [&file](uint64_t offset, void* buffer, size_t count) { return file.Read(offset, buffer, count); });
}

}  // namespace vyn
