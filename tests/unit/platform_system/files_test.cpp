#include "platform/system/files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "platform/objects/class_table.h"
#include "platform/system/clipboard.h"
#include "platform/system/shared_library.h"

using namespace vyn;

TEST(Files, PartsOfANameTakeBothSeparators) {
    EXPECT_EQ(ExtractFilePath("C:\\data\\sales.vyn"), "C:\\data\\");
    EXPECT_EQ(ExtractFilePath("/data/sales.vyn"), "/data/");
    EXPECT_EQ(ExtractFilePath("C:sales.vyn"), "C:");
    EXPECT_EQ(ExtractFilePath("sales.vyn"), "");
    EXPECT_EQ(ExtractFileDir("C:\\data\\sales.vyn"), "C:\\data");
    EXPECT_EQ(ExtractFileDir("C:\\sales.vyn"), "C:\\");
    EXPECT_EQ(ExtractFileDir("/sales.vyn"), "/");
    EXPECT_EQ(ExtractFileName("a\\b/c.txt"), "c.txt");
    EXPECT_EQ(ExtractFileExt("a.b\\c.txt"), ".txt");
    EXPECT_EQ(ExtractFileExt("a.b\\c"), "");
    EXPECT_EQ(ChangeFileExt("a.b\\c", ".vyn"), "a.b\\c.vyn");
    EXPECT_EQ(ChangeFileExt("c.txt", ""), "c");
}

TEST(Files, ARelativePathClimbsToTheCommonFolder) {
    EXPECT_EQ(ExtractRelativePath("C:\\a\\b\\base.vyn", "C:\\a\\c\\d.txt"), "..\\c\\d.txt");
    EXPECT_EQ(ExtractRelativePath("/a/b/", "/a/b/c.txt"), "c.txt");
    EXPECT_EQ(ExtractRelativePath("C:\\a\\", "D:\\b.txt"), "D:\\b.txt");
}

TEST(Files, FoldersAndFilesAreMadeFoundAndDeleted) {
    const AnsiString folder = TempFolder() + "vyn_files_test";
    EXPECT_TRUE(ForceDirectories(folder + "\\deep\\er"));
    EXPECT_TRUE(DirectoryExists(folder + "/deep"));
    EXPECT_FALSE(FileExists(folder + "/deep"));
    const AnsiString file = folder + "\\deep\\er\\x.txt";
    std::ofstream(folder + "/deep/er/x.txt") << "x";
    EXPECT_TRUE(FileExists(file));
    EXPECT_TRUE(RenameFile(file, folder + "\\y.txt"));
    EXPECT_TRUE(DeleteFile(folder + "\\y.txt"));
    EXPECT_FALSE(DeleteFile(folder + "\\y.txt"));
    EXPECT_FALSE(ForceDirectories(""));
    std::system(("rm -r " + folder).c_str());
}

TEST(Files, ExpandingResolvesDots) { EXPECT_EQ(ExpandFileName("/a/b/../c/./d.txt"), "/a/c/d.txt"); }

TEST(Files, DataGoesWhereTheDesktopSays) {
    setenv("XDG_DATA_HOME", "/home/x/data", 1);
    EXPECT_EQ(AppDataFolder(), "/home/x/data/vyn/");
    unsetenv("XDG_DATA_HOME");
    EXPECT_NE(AppDataFolder().find("/.local/share/vyn/"), AnsiString::npos);
}

TEST(SharedLibraries, AForeignNameFindsTheLibraryThroughTheLibraryPath) {
    setenv("VYN_LIBRARY_PATH", "/nowhere:" PLUGIN_FOLDER, 1);
    const HMODULE library = LoadSharedLibrary("PLUGINSAMPLE5.DLL");
    ASSERT_NE(library, 0u) << LastLibraryError();
    const auto answer = reinterpret_cast<int (*)()>(GetProcAddress(library, "PluginAnswer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(GetProcAddress(library, "pluginanswer"), nullptr);
    EXPECT_EQ(ModuleBase(library), ModuleOfAddress(reinterpret_cast<const void*>(answer)));
    EXPECT_NE(ModuleBase(library), ModuleOfAddress(Clipboard()));
    EXPECT_TRUE(FreeSharedLibrary(library));
    unsetenv("VYN_LIBRARY_PATH");
}

TEST(SharedLibraries, AFolderInTheNameIsMapped) {
    const HMODULE library = LoadSharedLibrary(AnsiString(PLUGIN_FOLDER) + "\\pluginsample5.bpl");
    EXPECT_NE(library, 0u) << LastLibraryError();
    FreeSharedLibrary(library);
}

TEST(SharedLibraries, WhatIsNotThereGivesZeroAndSaysWhy) {
    EXPECT_EQ(LoadSharedLibrary("NOSUCHTHING.DLL"), 0u);
    EXPECT_FALSE(LastLibraryError().empty());
    EXPECT_EQ(LoadSharedLibrary(""), 0u);
    EXPECT_EQ(GetProcAddress(0, "x"), nullptr);
    EXPECT_FALSE(FreeSharedLibrary(0));
    EXPECT_EQ(ModuleBase(0), nullptr);
}

TEST(Clipboard, KeepsTextInMemoryWithoutAToolkit) {
    Clipboard()->Clear();
    EXPECT_FALSE(Clipboard()->HasText());
    Clipboard()->SetAsText("abc");
    EXPECT_TRUE(Clipboard()->HasText());
    EXPECT_EQ(Clipboard()->AsText(), "abc");
    Clipboard()->Clear();
    EXPECT_EQ(Clipboard()->AsText(), "");
}
