// The walls themselves, on small made-up houses: each kind of damage is found, and a sound house passes.

#include "walls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

using namespace vyn::house;
using testing::HasSubstr;

namespace {

// A house of three core rooms, a provider, the toolkit's room and a program, in a folder that goes with the test.
class MadeUpHouse : public testing::Test {
  protected:
    MadeUpHouse() {
        Write("src/CMakeLists.txt",
              "# set(rooms nothing)\nset(rooms\n  low/text low/values  # two\n  high)\n"
              "set(edges providers/sqlite qt programs/vyn)\n");
        Write("src/low/text/CMakeLists.txt", "room(low_text)\n");
        Write("src/low/text/text.h", "#pragma once\n#include <string>\n");
        Write("src/low/values/CMakeLists.txt", "room(low_values DEPENDS low_text)\n");
        Write("src/low/values/variant.h", "#pragma once\n#include \"low/text/text.h\"\n");
        Write("src/high/CMakeLists.txt", "room(high DEPENDS low_values LIBRARIES nlohmann)\n");
        Write("src/high/app.h", "#pragma once\n#include \"low/text/text.h\"\n#include \"low/values/variant.h\"\n");
        Write("src/providers/sqlite/CMakeLists.txt",
              "edge_room(providers_sqlite DEPENDS low_values LIBRARIES SQLite3)\n");
        Write("src/providers/sqlite/connection.cpp", "#include <sqlite3.h>\n#include \"low/values/variant.h\"\n");
        Write("src/qt/CMakeLists.txt", "edge_room(qt\n  DEPENDS high\n  LIBRARIES Qt6::Widgets)\n");
        Write("src/qt/peer.cpp", "#include <QWidget>\n#include \"high/app.h\"\n#include \"peer.moc\"\n");
        Write("src/programs/vyn/CMakeLists.txt", "add_executable(vyn main.cpp)\n");
        Write("src/programs/vyn/main.cpp", "#include <QApplication>\n#include \"high/app.h\"\n");
    }
    ~MadeUpHouse() override { std::filesystem::remove_all(root); }

    void Write(const std::string& file, const std::string& text) const {
        std::filesystem::create_directories((root / file).parent_path());
        std::ofstream(root / file, std::ios::binary) << text;
    }
    std::string Rooms() const { return Listing(CheckRooms(root)); }
    std::string Includes() const { return Listing(CheckIncludes(root)); }
    std::string Files() const { return Listing(CheckFiles(root)); }
    std::string Words(const std::string& text) const {
        Write("page.md", text);
        return Listing(CheckWords(root, {"page.md"}));
    }

    const std::filesystem::path root =
        std::filesystem::temp_directory_path() /
        ("house-" + std::to_string(getpid()) + "-" + testing::UnitTest::GetInstance()->current_test_info()->name());
};

}  // namespace

TEST_F(MadeUpHouse, ASoundHousePasses) {
    EXPECT_EQ(Rooms(), "");
    EXPECT_EQ(Includes(), "");
    EXPECT_EQ(Files(), "");
}

TEST_F(MadeUpHouse, DeclarationsAreReadInTheOrderOfTheFloors) {
    std::vector<Finding> findings;
    const auto rooms = ReadRooms(root, findings);
    ASSERT_EQ(rooms.size(), 6u);
    EXPECT_EQ(rooms[1].name, "low_values");
    EXPECT_EQ(rooms[1].folder, "low/values");
    EXPECT_THAT(rooms[1].depends, testing::ElementsAre("low_text"));
    EXPECT_FALSE(rooms[2].edge);
    EXPECT_TRUE(rooms[3].edge);
    EXPECT_THAT(rooms[3].depends, testing::ElementsAre("low_values"));
    EXPECT_TRUE(rooms[5].top);
    EXPECT_LT(rooms[0].floor, rooms[5].floor);
}

TEST_F(MadeUpHouse, AnIncludeOfAnUndeclaredRoomIsFound) {
    Write("src/high/CMakeLists.txt", "room(high DEPENDS low_text)\n");
    EXPECT_EQ(Includes(),
              "src/high/app.h:3: high includes \"low/values/variant.h\" but does not depend on low_values\n");
}

TEST_F(MadeUpHouse, ARoomReachesTheRoomsOfItsRooms) {
    Write("src/qt/peer.cpp", "#include \"low/text/text.h\"\n");
    EXPECT_EQ(Includes(), "");
}

TEST_F(MadeUpHouse, AnIncludeOfAHigherRoomIsFound) {
    Write("src/low/text/text.h", "#pragma once\n#include \"high/app.h\"\n");
    EXPECT_THAT(Includes(), HasSubstr("src/low/text/text.h:2: low_text includes \"high/app.h\" of a room above it"));
}

TEST_F(MadeUpHouse, ADeclaredArrowThatRunsUpIsFound) {
    Write("src/low/text/CMakeLists.txt", "room(low_text DEPENDS high)\n");
    EXPECT_EQ(Rooms(), "src/low/text/CMakeLists.txt: low_text depends on high, which stands above it\n");
}

TEST_F(MadeUpHouse, ACoreRoomThatNeedsAnEdgeIsFound) {
    Write("src/high/CMakeLists.txt", "room(high DEPENDS low_values qt)\n");
    EXPECT_EQ(Rooms(), "src/high/CMakeLists.txt: high depends on qt, which stands above it\n");
}

TEST_F(MadeUpHouse, ARoomThatDependsOnItselfIsFound) {
    Write("src/high/CMakeLists.txt", "room(high DEPENDS low_values high)\n");
    EXPECT_EQ(Rooms(), "src/high/CMakeLists.txt: high depends on high, which stands above it\n");
}

TEST_F(MadeUpHouse, ADependencyThatIsNoRoomIsFound) {
    Write("src/high/CMakeLists.txt", "room(high DEPENDS low_values attic)\n");
    EXPECT_EQ(Rooms(), "src/high/CMakeLists.txt: high depends on attic, which is no room\n");
}

TEST_F(MadeUpHouse, ARoomNamedUnlikeItsFolderIsFound) {
    Write("src/low/text/CMakeLists.txt", "room(text)\n");
    EXPECT_THAT(Rooms(), HasSubstr("src/low/text/CMakeLists.txt: the room is named text, not low_text"));
}

TEST_F(MadeUpHouse, ARoomThatTheOrderDoesNotNameIsFound) {
    Write("src/attic/CMakeLists.txt", "room(attic)\n");
    EXPECT_EQ(Rooms(), "src/attic/CMakeLists.txt: attic does not stand in the order of src/CMakeLists.txt\n");
}

TEST_F(MadeUpHouse, AListedFolderWithoutADeclarationIsFound) {
    Write("src/high/CMakeLists.txt", "# room(high DEPENDS low_values)\nadd_library(high app.cpp)\n");
    EXPECT_EQ(Rooms(), "src/high/CMakeLists.txt: declares no room\n");
}

TEST_F(MadeUpHouse, AnOrderWithoutRoomsIsFound) {
    Write("src/CMakeLists.txt", "add_subdirectory(low/text)\n");
    EXPECT_THAT(Rooms(), HasSubstr("src/CMakeLists.txt: names no rooms"));
}

TEST_F(MadeUpHouse, AnIncludeThatClimbsOutOfItsFolderIsFound) {
    Write("src/low/values/variant.h", "#pragma once\n  #  include \"../text/text.h\"\n");
    EXPECT_EQ(Includes(), "src/low/values/variant.h:2: include of \"../text/text.h\" climbs out of its folder\n");
}

TEST_F(MadeUpHouse, AnIncludeThatIsNotWrittenFromSrcIsFound) {
    Write("src/low/values/variant.cpp", "#include \"variant.h\"\n");
    EXPECT_THAT(Includes(), HasSubstr("include of \"variant.h\", which is no file below src"));
}

TEST_F(MadeUpHouse, AToolkitHeaderInACoreRoomIsFound) {
    for (const char* header : {"QWidget", "QtCore/QString", "qglobal.h"}) {
        Write("src/high/app.h", std::string("#pragma once\n#include <") + header + ">\n");
        EXPECT_EQ(Includes(),
                  std::string("src/high/app.h:2: toolkit header <") + header + "> outside src/qt and src/programs\n");
    }
}

TEST_F(MadeUpHouse, AProviderHeaderOutsideTheProvidersIsFound) {
    Write("src/qt/peer.cpp", "#include <sqlite3.h>\n");
    EXPECT_EQ(Includes(), "src/qt/peer.cpp:1: provider header <sqlite3.h> outside src/providers\n");
}

TEST_F(MadeUpHouse, AProviderMayNotSeeTheToolkit) {
    Write("src/providers/sqlite/connection.cpp", "#include <QString>\n");
    EXPECT_THAT(Includes(), HasSubstr("toolkit header <QString>"));
}

TEST_F(MadeUpHouse, AnIncludeInACommentIsNoInclude) {
    Write("src/high/app.h", "#pragma once\n// #include <QWidget>\n");
    EXPECT_EQ(Includes(), "");
}

TEST_F(MadeUpHouse, ALongFileIsFound) {
    std::string text;
    for (int line = 0; line < 800; ++line) text += "int x;\n";
    Write("src/high/app.cpp", text);
    EXPECT_EQ(Files(), "");
    Write("src/high/app.cpp", text + "int y;\n");
    EXPECT_EQ(Files(), "src/high/app.cpp: 801 lines; at most 800 are easy to read: cut it by subject\n");
}

TEST_F(MadeUpHouse, AHeaderWithoutPragmaOnceIsFound) {
    Write("src/high/app.h", "#ifndef APP\n#define APP\n#endif\n");
    EXPECT_EQ(Files(), "src/high/app.h: a header without #pragma once\n");
}

TEST_F(MadeUpHouse, AFileInNoRoomIsFound) {
    Write("src/attic/box.h", "#pragma once\n");
    EXPECT_EQ(Files(), "src/attic/box.h: stands in no room\n");
}

// The forbidden words are put together from halves here too: this file is checked as any other.
TEST_F(MadeUpHouse, MarksOfUnfinishedWorkAreFound) {
    EXPECT_EQ(Words(std::string("fine\nTO") + "DO later\n"),
              std::string("page.md:2: a mark of unfinished work: TO") + "DO later\n");
    EXPECT_THAT(Words(std::string("// FIX") + "ME"), HasSubstr("a mark of unfinished work"));
    EXPECT_EQ(Words(std::string("METO") + "DOS"), "");
}

TEST_F(MadeUpHouse, PathsOfOneMachineAreFound) {
    EXPECT_THAT(Words(std::string("see /wo") + "rk/main"), HasSubstr("a path of one machine"));
    EXPECT_THAT(Words(std::string("\"/ro") + "ot/.cache\""), HasSubstr("a path of one machine"));
    EXPECT_THAT(Words(std::string("/tmp/") + "wt/x"), HasSubstr("a path of one machine"));
    EXPECT_EQ(Words(std::string("docs/wo") + "rk/page.md"), "");
}

TEST_F(MadeUpHouse, CodeAndTestsThatAreSwitchedOffAreFound) {
    EXPECT_THAT(Words(std::string("#if ") + "0\n#endif\n"), HasSubstr("code that is switched off"));
    EXPECT_THAT(Words(std::string("GTEST_") + "SKIP() << 1;"), HasSubstr("a test that skips itself"));
    EXPECT_THAT(Words(std::string("TEST(A, DISABLED") + "_B)"), HasSubstr("a test that is switched off"));
    EXPECT_THAT(Words(std::string("EXPECT_TRUE(tr") + "ue);"), HasSubstr("a check that cannot fail"));
}

TEST_F(MadeUpHouse, ALinkThatLeadsNowhereIsFound) {
    Write("docs/page.md", "[a](other.md) and [b](../src/high/app.h#l1)\n![c](none.png) [d](https://example.org)\n");
    EXPECT_EQ(Listing(CheckLinks(root, {"docs/page.md"})), "docs/page.md:1: a link to other.md, which is not there\n");
    Write("docs/other.md", "");
    EXPECT_EQ(Listing(CheckLinks(root, {"docs/page.md"})), "");
}

TEST_F(MadeUpHouse, FilesThatAreNoTextArePassedOver) { EXPECT_EQ(Words(std::string("\0\1", 2) + "TO" + "DO"), ""); }

TEST_F(MadeUpHouse, WithoutVersionControlAllButBuiltFilesIsLookedAt) {
    Write("build/bin/vyn", "made\n");
    Write("build-debug/x", "made\n");
    Write("builders.md", "ours\n");
    const auto files = ProjectFiles(root);
    EXPECT_THAT(files, testing::Contains("src/high/app.h"));
    EXPECT_THAT(files, testing::Contains("builders.md"));
    EXPECT_THAT(files, testing::Not(testing::Contains("build/bin/vyn")));
    EXPECT_THAT(files, testing::Not(testing::Contains("build-debug/x")));
}

TEST(Listing, NamesFileLineAndText) {
    EXPECT_EQ(Listing({{"a.h", 3, "bad"}, {"b.h", 0, "worse"}}), "a.h:3: bad\nb.h: worse\n");
    EXPECT_EQ(Listing({}), "");
}
