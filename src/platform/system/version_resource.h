#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "platform/text/ansi_string.h"

namespace vyn {

// Reads `count` bytes from an offset of a file; false when the file does not hold them all.
using ReadBytesAt = std::function<bool(uint64_t offset, void* buffer, size_t count)>;

// The version resource of an executable or library of the reference platform, read from the file's own bytes
// (docs/formats/version-resource.md), so that it can be asked on any system.
//
// Input is untrusted: every offset and length is checked before it is followed, and nothing but headers, directories
// of resources and the resource itself is read. What is damaged is not there; nothing is raised. Any thread.
class VersionResource {
  public:
    // The resource of a file. None: no such file, a file that cannot be read, that is no portable executable, or has
    // no version resource.
    static std::optional<VersionResource> OfFile(const AnsiString& fileName);
    // The same of an executable in other hands.
    static std::optional<VersionResource> OfExecutable(const ReadBytesAt& read);
    // Takes a resource as it is.
    explicit VersionResource(AnsiString bytes) : bytes_(std::move(bytes)) {}

    // The value of a block by its path: "\" is the root's, "\VarFileInfo\Translation" the one of that block, and so on.
    // Names compare without regard to case; of several blocks of one name the first counts. None when there is no such
    // block or no whole value in it; valid while this is.
    std::optional<std::string_view> Query(std::string_view path) const;
    // The value of a block that holds text, up to its end mark, in Windows-1252.
    std::optional<AnsiString> QueryText(std::string_view path) const;
    const AnsiString& Bytes() const { return bytes_; }

  private:
    AnsiString bytes_;
};

}  // namespace vyn
