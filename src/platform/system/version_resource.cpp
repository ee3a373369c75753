#include "platform/system/version_resource.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/text/compare.h"
#include "platform/text/windows1252.h"

// Blocks of a version resource; where the resource stands in its executable is found in portable_executable.cpp.
namespace vyn {

namespace version_resource_detail {

constexpr size_t kHeaderSize = 6;  // length, length of the value, type
constexpr size_t kAlignment = 4;
constexpr uint16_t kTextType = 1;  // values of text are counted in characters
constexpr char kRootKey[] = "VS_VERSION_INFO";

size_t Aligned(size_t offset) { return (offset + kAlignment - 1) / kAlignment * kAlignment; }

uint16_t NumberAt(std::string_view bytes, size_t offset) {
    return static_cast<uint16_t>(static_cast<unsigned char>(bytes[offset]) |
                                 static_cast<unsigned char>(bytes[offset + 1]) << 8);
}

// The text at an offset, up to its end mark or the end of the bytes. Gives where it ends, behind the mark.
WideString TextAt(std::string_view bytes, size_t offset, size_t* behind = nullptr) {
    WideString text;
    for (; offset + 2 <= bytes.size(); offset += 2) {
        const char16_t unit = NumberAt(bytes, offset);
        if (unit == 0) {
            if (behind) *behind = offset + 2;
            return text;
        }
        text += unit;
    }
    if (behind) *behind = bytes.size();
    return text;
}

// A block between two offsets of the resource, which begins at a multiple of 4.
struct Block {
    AnsiString Key;
    size_t Value = 0;  // where it begins
    size_t ValueSize = 0;
    bool WholeValue = false;
    size_t Children = 0;  // where they begin
    size_t End = 0;
};

// False when there is no block that fits.
bool ReadBlock(std::string_view resource, size_t begin, size_t end, Block& block) {
    if (begin > end || end - begin < kHeaderSize) return false;
    const size_t length = NumberAt(resource, begin);
    if (length < kHeaderSize || length > end - begin) return false;
    block.End = begin + length;
    const std::string_view inside = resource.substr(0, block.End);
    size_t behindKey = 0;
    block.Key = WideToAnsi(TextAt(inside, begin + kHeaderSize, &behindKey));
    block.Value = std::min(Aligned(behindKey), block.End);
    const size_t left = block.End - block.Value;
    size_t size = NumberAt(resource, begin + 2);
    const bool isText = NumberAt(resource, begin + 4) == kTextType;
    if (isText) size *= 2;
    // Some tools count a text in bytes: then the block ends before it does.
    block.WholeValue = isText || size <= left;
    block.ValueSize = std::min(size, left);
    block.Children = std::min(Aligned(block.Value + block.ValueSize), block.End);
    return true;
}

bool FindChild(std::string_view resource, const Block& parent, std::string_view key, Block& child) {
    for (size_t at = parent.Children; ReadBlock(resource, at, parent.End, child); at = Aligned(child.End))
        if (SameText(child.Key, key)) return true;
    return false;
}

}  // namespace version_resource_detail

std::optional<std::string_view> VersionResource::Query(std::string_view path) const {
    using namespace version_resource_detail;
    Block block;
    if (!ReadBlock(bytes_, 0, bytes_.size(), block) || !SameText(block.Key, kRootKey)) return std::nullopt;
    while (!path.empty()) {
        const std::string_view name = path.substr(0, path.find('\\'));
        path.remove_prefix(std::min(path.size(), name.size() + 1));
        if (name.empty()) continue;
        const Block parent = block;
        if (!FindChild(bytes_, parent, name, block)) return std::nullopt;
    }
    if (!block.WholeValue) return std::nullopt;
    return std::string_view(bytes_).substr(block.Value, block.ValueSize);
}

std::optional<AnsiString> VersionResource::QueryText(std::string_view path) const {
    const std::optional<std::string_view> value = Query(path);
    if (!value) return std::nullopt;
    return WideToAnsi(version_resource_detail::TextAt(*value, 0));
}

}  // namespace vyn
