// Pictures of the sample's windows, and what opens none.
#ifdef VYN_WITH_WINDOWS
#include "scenarios/picture.h"
#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

class Shot : public ProgramTest {
  protected:
    Ended Take(const std::string& application, int node, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"shot", application, std::to_string(node), "-o", File("shot.png")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Vyn(arguments);
    }
    bool Taken() const { return std::filesystem::exists(File("shot.png")); }

    // An application of one window whose form holds these lines.
    std::string WindowWith(const std::string& lines) const {
        WriteText("one/application.json", R"({
  "format": 54,
  "saved": "2026-11-21T10:00:00",
  "components": [
    {"id": 1, "type": 2, "name": "Fitxa", "file": "components/1.form"}
  ],
  "tree": [
    {"id": 1, "child": 1, "component": 0, "type": 0, "name": "Mostra", "nodes": [
      {"id": 2, "child": 1, "component": 1, "type": 2, "name": "Fitxa de prova", "nodes": []}
    ]}
  ],
  "resources": []
}
)");
        WriteText("one/components/1.form",
                  "object Fitxa: TCustomFRM\n  Width = 300\n  Height = 200\n" + lines + "end\n");
        return File("one");
    }
};

// A picture that shows something: text alone, smoothed, has more colours than this.
constexpr size_t kMoreThanAHandful = 12;

class ShotOfNode : public Shot, public testing::WithParamInterface<int> {};

std::string NameOfNode(const testing::TestParamInfo<int>& info) { return "Node" + std::to_string(info.param); }

}  // namespace

TEST_P(ShotOfNode, IsAPictureOfAWindow) {
    const Ended ended = Take(VYN_SAMPLE, GetParam());
    ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_EQ(ended.Output + ended.Errors, "");
    const Picture picture = ReadPicture(File("shot.png"));
    EXPECT_GE(picture.Width, 200);
    EXPECT_GE(picture.Height, 100);
    EXPECT_LE(picture.Width, 2000);
    EXPECT_LE(picture.Height, 2000);
    EXPECT_GT(picture.Colours(), kMoreThanAHandful);
}

// Above 100000: what the shortcut shows.
INSTANTIATE_TEST_SUITE_P(Sample, ShotOfNode,
                         testing::Values(1, 2, 4, 5, 6, 7, 9, 11, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27,
                                         100002, 100003, 100004, 100005, 100006, 100007, 100008, 100009),
                         NameOfNode);

TEST_F(Shot, AGuardedNodeNeedsItsGuard) {
    ExpectFailed(Take(VYN_SAMPLE, 10), "guard, the node 9");
    EXPECT_FALSE(Taken());
}

TEST_F(Shot, AnUnknownNodeIsNamed) {
    ExpectFailed(Take(VYN_SAMPLE, 999), "999");
    ExpectFailed(Take(VYN_SAMPLE, 199999), "199999");
    EXPECT_FALSE(Taken());
}

TEST_F(Shot, ANodeWithoutAComponentOpensNothing) {
    ExpectFailed(Take(VYN_SAMPLE, 8), "Direcció");
    EXPECT_FALSE(Taken());
}

TEST_F(Shot, TheSizeIsAsAsked) {
    const Ended ended = Take(VYN_SAMPLE, 4, {"--size", "700x500"});
    ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
    const Picture picture = ReadPicture(File("shot.png"));
    EXPECT_EQ(picture.Width, 700);
    EXPECT_EQ(picture.Height, 500);
}

TEST_F(Shot, AnApplicationFileGivesTheSamePictureAsItsFolder) {
    // A window without data (the file alone has no database), and without the name of the file.
    ASSERT_EQ(Take(VYN_SAMPLE, 9).ExitStatus, 0);
    const Picture ofFolder = ReadPicture(File("shot.png"));
    const Ended ended = Take(BuiltSample(), 9);
    ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_EQ(ofFolder.Pixels, ReadPicture(File("shot.png")).Pixels);
}

TEST_F(Shot, TwoShotsAreTheSame) {
    ASSERT_EQ(Take(VYN_SAMPLE, 5).ExitStatus, 0);
    const Picture first = ReadPicture(File("shot.png"));
    ASSERT_EQ(Take(VYN_SAMPLE, 5).ExitStatus, 0);
    EXPECT_EQ(first.Pixels, ReadPicture(File("shot.png")).Pixels);
}

TEST_F(Shot, APictureThatCannotBeWrittenIsAnError) {
    ExpectFailed(Vyn({"shot", VYN_SAMPLE, "17", "-o", File("nowhere/shot.png")}), "nowhere/shot.png");
}

TEST_F(Shot, AWindowOfOneLabelIsDrawn) {
    const Ended ended =
        Take(WindowWith("  object Text: TLabel\n    Left = 8\n    Top = 8\n    Caption = 'Bon dia'\n  end\n"), 2);
    ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_GT(ReadPicture(File("shot.png")).Colours(), kMoreThanAHandful);
}

TEST_F(Shot, AMissingClassIsNamedWithItsPlace) {
    const Ended ended = Take(WindowWith("  object Camp: TNotThere\n    Left = 8\n  end\n"), 2);
    ExpectFailed(ended, "Class TNotThere not found");
    EXPECT_NE(ended.Errors.find("Camp"), std::string::npos) << ended.Errors;
    EXPECT_NE(ended.Errors.find("node 2 \"Fitxa de prova\""), std::string::npos) << ended.Errors;
    EXPECT_FALSE(Taken());
}

TEST_F(Shot, AnUnknownPropertyIsNamedWithItsPlace) {
    const Ended ended = Take(WindowWith("  object Camp: TEdit\n    Colour = 8\n  end\n"), 2);
    ExpectFailed(ended, "Camp.Colour");
    EXPECT_FALSE(Taken());
}

TEST_F(Shot, ADatabaseThatCannotBeOpenedIsToldInTheWindow) {
    ASSERT_EQ(Take(VYN_SAMPLE, 4).ExitStatus, 0);
    const Picture full = ReadPicture(File("shot.png"));
    const Ended ended = Take(VYN_SAMPLE, 4, {"--database", "Provider=SQLite;Data Source=" + File("no/such.db")});
    ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
    const Picture empty = ReadPicture(File("shot.png"));
    EXPECT_EQ(full.Pixels.size(), empty.Pixels.size());
    EXPECT_NE(full.Pixels, empty.Pixels);
    EXPECT_FALSE(std::filesystem::exists(File("no")));
}

TEST_F(Shot, ASearchScreenIsShownWithATextTyped) {
    ASSERT_EQ(Take(VYN_SAMPLE, 25, {"--search", "nom=ferreteria g"}).ExitStatus, 0);
    const Picture found = ReadPicture(File("shot.png"));
    EXPECT_GT(found.Colours(), kMoreThanAHandful);
    ASSERT_EQ(Take(VYN_SAMPLE, 25, {"--search", "nom=zzz"}).ExitStatus, 0);
    EXPECT_NE(ReadPicture(File("shot.png")).Pixels, found.Pixels);
    ASSERT_EQ(Take(VYN_SAMPLE, 27, {"--search", "codi"}).ExitStatus, 0);
}

TEST_F(Shot, WhatHasNoSearchScreenIsAnError) {
    ExpectFailed(Take(VYN_SAMPLE, 11, {"--search", "nom=a"}), "The node 11 has no search screen");
    ExpectFailed(
        Take(VYN_SAMPLE, 25, {"--search", "nom=a", "--database", "Provider=SQLite;Data Source=" + File("no/such.db")}));
    EXPECT_FALSE(Taken());
}

namespace {

// A new order for a customer whose name begins so.
const std::vector<std::string> kTyped = {"--do", "Nou", "--do", "Data=11/10/2026", "--do", "Client=gar"};

std::vector<std::string> With(std::vector<std::string> steps, const std::vector<std::string>& more) {
    steps.insert(steps.end(), more.begin(), more.end());
    return steps;
}

}  // namespace

TEST_F(Shot, WhatAUserDoesComesBeforeThePicture) {
    std::vector<Picture> road;
    const auto take = [&](const std::vector<std::string>& options) {
        const Ended ended = Take(VYN_SAMPLE, 24, options);
        ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
        EXPECT_EQ(ended.Errors, "");
        road.push_back(ReadPicture(File("shot.png")));
        for (size_t i = 0; i + 1 < road.size(); ++i)
            EXPECT_NE(road[i].Pixels, road.back().Pixels) << "each step is seen: " << i;
    };
    const std::vector<std::string> searched = With(kTyped, {"--do", "Client", "--do", "Cerca=garr"});
    take({});
    take(With(kTyped, {"--at-once"}));
    take(kTyped);
    take(searched);
    EXPECT_LT(road.back().Width, road.front().Width) << "of the search screen";
    take(With(searched, {"--do", "Acceptar"}));
    EXPECT_EQ(road.back().Width, road.front().Width);
    take(With(searched, {"--do", "Cancelar"}));
}

TEST_F(Shot, TheSameStepsEndInTheSamePicture) {
    const std::vector<std::string> steps = With(kTyped, {"--do", "Client", "--do", "Acceptar", "--part", "Fitxa"});
    ASSERT_EQ(Take(VYN_SAMPLE, 24, steps).ExitStatus, 0);
    const Picture first = ReadPicture(File("shot.png"));
    ASSERT_EQ(Take(VYN_SAMPLE, 24, steps).ExitStatus, 0);
    EXPECT_EQ(ReadPicture(File("shot.png")).Pixels, first.Pixels);
    EXPECT_LT(first.Width, 700) << "of the card alone";
}

TEST_F(Shot, StepsThatCannotBeDoneAreErrors) {
    ExpectFailed(Take(VYN_SAMPLE, 24, {"--do", "NoHiEs"}), "There is no control NoHiEs in the window");
    ExpectFailed(Take(VYN_SAMPLE, 24, {"--do", "Desar"}), "The control Desar cannot be used now");
    ExpectFailed(Take(VYN_SAMPLE, 24, {"--part", "NoHiEs"}), "There is no control NoHiEs in the window");
    ExpectFailed(Take(VYN_SAMPLE, 24, {"--do", "Nou", "--do", "Titol=x"}), "The control Titol takes no keys");
    // In the window that is in front: the search screen has no such control.
    ExpectFailed(Take(VYN_SAMPLE, 24, With(kTyped, {"--do", "Client", "--do", "Desar"})),
                 "There is no control Desar in the window \"Cerca de clients\"");
    EXPECT_FALSE(Taken());
}

TEST_F(Shot, AQuestionThatNobodyAnswersIsAnError) {
    ExpectFailed(Take(VYN_SAMPLE, 24, {"--do", "Eliminar"}));
    EXPECT_FALSE(Taken());
    ASSERT_EQ(Take(VYN_SAMPLE, 24).ExitStatus, 0) << "and nothing was done";
}

TEST_F(Shot, StepsAndASearchScreenExcludeEachOther) {
    EXPECT_EQ(Take(VYN_SAMPLE, 25, {"--do", "Nou", "--search", "nom=a"}).ExitStatus, 2);
}

TEST_F(Shot, ADamagedApplicationIsAnError) {
    const std::string bytes = ReadBytes(BuiltSample());
    for (size_t part = 1; part < 8; ++part) {
        const Ended ended = Take(WriteText("cut.vyn", bytes.substr(0, bytes.size() * part / 8)), 4);
        ExpectFailed(ended);
    }
    EXPECT_FALSE(Taken());
}

}  // namespace vyn::scenarios
#endif
