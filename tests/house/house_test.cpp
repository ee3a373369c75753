// The project's own tree, held against the walls.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "walls.h"

using namespace vyn::house;

namespace {

const std::filesystem::path Root = VYN_SOURCE_DIR;

std::string TextOf(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace

TEST(House, RoomsDependOnlyOnRoomsBelowThem) { EXPECT_EQ(Listing(CheckRooms(Root)), ""); }

TEST(House, IncludesFollowTheDeclaredRooms) { EXPECT_EQ(Listing(CheckIncludes(Root)), ""); }

TEST(House, FilesAreShortAndStandInRooms) { EXPECT_EQ(Listing(CheckFiles(Root)), ""); }

TEST(House, TheGroundFloorIsThere) {
    std::vector<Finding> findings;
    const auto rooms = ReadRooms(Root, findings);
    ASSERT_FALSE(rooms.empty());
    EXPECT_EQ(rooms.front().name, "platform_text");
}

TEST(House, FilesHoldNoPathsOfOneMachineAndNothingUnfinished) {
    const auto files = ProjectFiles(Root);
    ASSERT_FALSE(files.empty());
    EXPECT_EQ(Listing(CheckWords(Root, files)), "");
}

TEST(House, LinksOfThePagesLeadSomewhere) { EXPECT_EQ(Listing(CheckLinks(Root, ProjectFiles(Root))), ""); }

TEST(House, TheTourNamesEveryRoom) {
    std::vector<Finding> findings;
    const std::string tour = TextOf(Root / "docs/tour.md");
    for (const auto& room : ReadRooms(Root, findings)) {
        EXPECT_NE(tour.find("**" + room.folder + "** "), std::string::npos) << room.folder;
    }
}
