// Version information of executables: the files of tests/golden/version, which scripts/version-files makes, and what
// becomes of them when they are damaged.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/Ufileversion.h"
#include "platform/system/version_resource.h"
#include "platform/text/windows1252.h"

using namespace vyn;

namespace {

std::filesystem::path Folder() { return std::filesystem::path(VYN_SOURCE_DIR) / "tests/golden/version"; }

std::string BytesOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

AnsiString NameOf(const std::filesystem::path& file) { return Utf8ToAnsi(file.string()); }

// The record as the text files of the folder have it.
std::string TextOf(const TFileVersionInfo& info) {
    const auto boolean = [](bool value) { return value ? "True" : "False"; };
    std::ostringstream text;
    text << "Found=" << boolean(info.Found) << "\nCompanyName=" << info.CompanyName
         << "\nFileDescription=" << info.FileDescription << "\nFileVersion=" << info.FileVersion
         << "\nInternalName=" << info.InternalName << "\nLegalCopyright=" << info.LegalCopyright
         << "\nLegalTrademarks=" << info.LegalTrademarks << "\nOriginalFilename=" << info.OriginalFilename
         << "\nProductName=" << info.ProductName << "\nProductVersion=" << info.ProductVersion
         << "\nComments=" << info.Comments << "\nDebug=" << boolean(info.Debug)
         << "\nPreRelease=" << boolean(info.PreRelease) << "\nPatched=" << boolean(info.Patched)
         << "\nPrivateBuild=" << boolean(info.PrivateBuild) << "\nInfoInferred=" << boolean(info.InfoInferred)
         << "\nSpecialBuild=" << boolean(info.SpecialBuild) << "\n";
    return AnsiToUtf8(text.str());
}

// A file of this test, gone with it.
class FileVersion : public testing::Test {
  protected:
    FileVersion() {
        folder_ = std::filesystem::temp_directory_path() /
                  ("vyn_version_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::create_directories(folder_);
    }
    ~FileVersion() override { std::filesystem::remove_all(folder_); }
    TFileVersionInfo InfoOf(const std::string& bytes) {
        const auto file = folder_ / "program.exe";
        std::ofstream(file, std::ios::binary) << bytes;
        return GetTFileVersionInfo(NameOf(file));
    }
    std::filesystem::path folder_;
    const std::string whole_ = BytesOf(Folder() / "all_fields.exe");
    const TFileVersionInfo all_ = GetTFileVersionInfo(NameOf(Folder() / "all_fields.exe"));
};

const TFileVersionInfo kCleared;

}  // namespace

TEST_F(FileVersion, IsReadAsTheFilesTell) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
        if (entry.path().extension() != ".exe") continue;
        ++files;
        EXPECT_EQ(TextOf(GetTFileVersionInfo(NameOf(entry.path()))),
                  BytesOf(std::filesystem::path(entry.path()).replace_extension(".txt")))
            << entry.path().filename();
    }
    EXPECT_GE(files, 18);
}

TEST_F(FileVersion, AFileWithoutAResourceGivesTheClearedRecord) {
    EXPECT_EQ(GetTFileVersionInfo(NameOf(Folder() / "no_resources.exe")), kCleared);
    EXPECT_EQ(GetTFileVersionInfo(NameOf(Folder() / "no_version.exe")), kCleared);
    EXPECT_FALSE(kCleared.Found);
    EXPECT_TRUE(all_.Found);
}

TEST_F(FileVersion, WhatIsNoExecutableGivesTheClearedRecord) {
    EXPECT_EQ(GetTFileVersionInfo("/proc/self/exe"), kCleared) << "an executable of this system";
    EXPECT_EQ(GetTFileVersionInfo(NameOf(folder_)), kCleared) << "a folder";
    EXPECT_EQ(GetTFileVersionInfo(NameOf(folder_ / "none.exe")), kCleared);
    EXPECT_EQ(GetTFileVersionInfo(""), kCleared);
    EXPECT_EQ(InfoOf(""), kCleared);
    EXPECT_EQ(InfoOf("MZ"), kCleared);
    EXPECT_EQ(InfoOf("not an executable at all, but long enough to hold the header of one, if it only tried to"),
              kCleared);
}

TEST_F(FileVersion, TheNameMayBeSpelledTheOtherWay) {
    AnsiString name = NameOf(Folder() / "all_fields.exe");
    for (char& c : name)
        if (c == '/') c = '\\';
    EXPECT_EQ(GetTFileVersionInfo(name), all_);
}

TEST_F(FileVersion, EachFlagIsItsBit) {
    const size_t flags = whole_.find("\xBD\x04\xEF\xFE") + 28;
    bool TFileVersionInfo::*const fields[] = {&TFileVersionInfo::Debug,        &TFileVersionInfo::PreRelease,
                                              &TFileVersionInfo::Patched,      &TFileVersionInfo::PrivateBuild,
                                              &TFileVersionInfo::InfoInferred, &TFileVersionInfo::SpecialBuild};
    for (int bit = 0; bit < 6; ++bit) {
        std::string bytes = whole_;
        bytes[flags] = static_cast<char>(1 << bit);
        const TFileVersionInfo info = InfoOf(bytes);
        for (int field = 0; field < 6; ++field) EXPECT_EQ(info.*fields[field], field == bit) << bit << field;
    }
}

// The resource stands at the end: every byte before its last text matters, or is filling.
TEST_F(FileVersion, AFileThatIsCutShortNeverGivesAnythingWrong) {
    int found = 0;
    for (size_t size = 0; size < whole_.size(); ++size) {
        const auto read = [&](uint64_t offset, void* buffer, size_t count) {
            if (offset > size || count > size - offset) return false;
            whole_.copy(static_cast<char*>(buffer), count, offset);
            return true;
        };
        const auto resource = VersionResource::OfExecutable(read);
        if (!resource) continue;
        ++found;
        EXPECT_EQ(resource->QueryText("\\StringFileInfo\\040304B0\\InternalName"), AnsiString("vendes"));
    }
    EXPECT_GT(found, 0) << "what follows the resource does not matter";
    EXPECT_LT(found, 512);
}

TEST_F(FileVersion, NumbersThatLeadOutsideAreNotFollowed) {
    int cleared = 0;
    for (size_t offset = 0; offset + 4 <= whole_.size(); offset += 2)
        for (const uint32_t number : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0x1000u, 0x2578u}) {
            std::string bytes = whole_;
            for (size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<char>(number >> (8 * i));
            const auto read = [&](uint64_t from, void* buffer, size_t count) {
                if (from > bytes.size() || count > bytes.size() - from) return false;
                bytes.copy(static_cast<char*>(buffer), count, from);
                return true;
            };
            const auto resource = VersionResource::OfExecutable(read);
            if (!resource) {
                ++cleared;
                continue;
            }
            for (const char* path : {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo\\040304B0\\Comments"})
                if (const auto value = resource->Query(path)) {
                    EXPECT_GE(value->data(), resource->Bytes().data());
                    EXPECT_LE(value->data() + value->size(), resource->Bytes().data() + resource->Bytes().size());
                }
        }
    EXPECT_GT(cleared, 300);
}

TEST_F(FileVersion, TheWayToTheResourceIsChecked) {
    const auto with = [&](size_t offset, std::initializer_list<int> values) {
        std::string bytes = whole_;
        for (int value : values) bytes[offset++] = static_cast<char>(value);
        return InfoOf(bytes).Found;
    };
    constexpr size_t header = 0x80, file = header + 4, optional = file + 20, sections = optional + 224;
    EXPECT_TRUE(with(0, {'M', 'Z'}));
    EXPECT_FALSE(with(0, {'Z', 'M'})) << "another mark";
    EXPECT_FALSE(with(60, {0xFF, 0xFF, 0xFF, 0xFF})) << "a header behind the end";
    EXPECT_FALSE(with(header, {'N', 'E'})) << "a header of another kind";
    EXPECT_FALSE(with(file + 2, {97, 0})) << "more sections than can be";
    EXPECT_FALSE(with(file + 2, {1, 0})) << "the resources' section is not counted";
    EXPECT_FALSE(with(file + 16, {0, 0})) << "no optional header";
    EXPECT_FALSE(with(file + 16, {116, 0})) << "one that ends before the resources' directory";
    EXPECT_FALSE(with(optional, {0x07, 0x01})) << "one of another kind";
    EXPECT_FALSE(with(optional + 92, {2, 0, 0, 0})) << "directories that end before it";
    EXPECT_TRUE(with(optional + 92, {3, 0, 0, 0}));
    EXPECT_FALSE(with(optional + 112, {0, 0, 0, 0})) << "no address";
    EXPECT_FALSE(with(optional + 116, {0, 0, 0, 0})) << "no size";
    EXPECT_FALSE(with(sections + 40 + 12, {0, 0x30, 0, 0})) << "a section elsewhere";
    EXPECT_FALSE(with(sections + 40 + 16, {16, 0, 0, 0})) << "a section that ends in the directory";
    EXPECT_FALSE(with(sections + 40 + 20, {0, 0, 0, 0x10})) << "a section behind the end of the file";
    const size_t directory = 0x400;  // types: icons, versions
    ASSERT_EQ(whole_.substr(directory + 12, 4), std::string("\0\0\2\0", 4));
    EXPECT_FALSE(with(directory + 14, {1, 0})) << "the entry is not counted";
    EXPECT_FALSE(with(directory + 12, {0xFF, 0xFF})) << "more entries than there is room";
    EXPECT_FALSE(with(directory + 24, {17, 0, 0, 0})) << "another type";
    EXPECT_FALSE(with(directory + 31, {0})) << "a type that is no directory";
}

TEST_F(FileVersion, ALevelThatLeadsBackToItselfEnds) {
    // Types point at the directory of types: names are then looked for there, and there is no name 1.
    std::string bytes = whole_;
    bytes.replace(0x400 + 28, 4, std::string("\0\0\0\x80", 4));
    EXPECT_EQ(InfoOf(bytes), kCleared);
    // With a "name" 1 among them, its language would be a directory, not a resource.
    bytes.replace(0x400 + 16, 8, std::string("\1\0\0\0\0\0\0\x80", 8));
    EXPECT_EQ(InfoOf(bytes), kCleared);
}
