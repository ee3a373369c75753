#include "page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace format_pages {

namespace {

// A line of a listing: four digits of offset, two blanks, up to 16 bytes of two digits and a blank, then the meaning.
constexpr size_t OffsetDigits = 4;
constexpr size_t BytesColumn = 6;
constexpr size_t BytesWidth = 47;

const std::filesystem::path& Folder() {
    static const std::filesystem::path folder = std::filesystem::path(VYN_SOURCE_DIR) / "docs/formats";
    return folder;
}

bool IsHex(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

bool IsListing(const std::string& block) { return block.size() > BytesColumn && IsHex(block.substr(0, OffsetDigits)); }

}  // namespace

Page::Page(const std::string& name) : name_(name) {
    std::istringstream stream(Text(name));
    for (std::string line; std::getline(stream, line);) lines_.push_back(line);
}

std::string Page::Text(const std::string& name) {
    std::ifstream file(Folder() / name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> Page::All() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() == ".md" && name != "README.md") names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool Page::HasHeading(const std::string& heading) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const std::string& line) { return line.rfind("## " + heading, 0) == 0; });
}

std::vector<std::string> Page::ExampleBlocks() const {
    std::vector<std::string> blocks;
    bool inExample = false;
    bool inBlock = false;
    for (const auto& line : lines_) {
        if (line.rfind("## ", 0) == 0) inExample = line == "## Example";
        if (!inExample) continue;
        if (line.rfind("```", 0) == 0) {
            inBlock = !inBlock;
            if (inBlock) blocks.emplace_back();
        } else if (inBlock) {
            blocks.back() += line + "\n";
        }
    }
    return blocks;
}

std::string Page::ExampleBytes() const {
    std::string bytes;
    for (const auto& block : ExampleBlocks()) {
        if (!IsListing(block)) continue;
        std::istringstream stream(block);
        for (std::string line; std::getline(stream, line);) {
            EXPECT_EQ(std::stoul(line.substr(0, OffsetDigits), nullptr, 16), bytes.size()) << name_ << ": " << line;
            std::istringstream digits(line.substr(BytesColumn, BytesWidth));
            for (std::string byte; digits >> byte;) bytes += static_cast<char>(std::stoi(byte, nullptr, 16));
        }
        return bytes;
    }
    ADD_FAILURE() << name_ << " has no listing";
    return bytes;
}

std::string Page::ExampleText(const std::string& firstWord) const {
    for (const auto& block : ExampleBlocks()) {
        if (block.rfind(firstWord, 0) == 0) return block;
    }
    ADD_FAILURE() << name_ << " has no block that begins with " << firstWord;
    return {};
}

}  // namespace format_pages
