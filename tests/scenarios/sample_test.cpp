// The sample application as a file, as a folder, and back.
#include <nlohmann/json.hpp>

#include "scenarios/program.h"

namespace vyn::scenarios {

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

class Sample : public ProgramTest {};

bool IsSource(const std::string& name) {
    return name == "application.json" || name.rfind("components/", 0) == 0 || name.rfind("resources/", 0) == 0;
}

constexpr size_t kComponents = 20;
constexpr size_t kNodes = 27;

}  // namespace

TEST_F(Sample, DumpsAsAnApplication) {
    const Ended dumped = Vyn({"dump", BuiltSample(), "--json"});
    ASSERT_EQ(dumped.ExitStatus, 0) << dumped.Told();
    EXPECT_EQ(dumped.Errors, "");
    const Json dump = Json::parse(dumped.Output);
    EXPECT_EQ(dump["kind"], "application");
    EXPECT_EQ(dump["format"], 54);
    EXPECT_EQ(dump["info"]["version"], 5401);
    ASSERT_EQ(dump["components"].size(), kComponents);
    EXPECT_EQ(dump["tree"].size(), kNodes);
    EXPECT_EQ(dump["resources"].size(), 1u);
    const Json& clients = dump["components"][3];
    EXPECT_EQ(clients["id"], 4);
    EXPECT_EQ(clients["name"], "Clients");
    EXPECT_EQ(clients["type"], 8);
    EXPECT_EQ(clients["sha256"].get<std::string>().size(), 64u);
    EXPECT_TRUE(clients["class"].is_string());
    EXPECT_EQ(dump["tree"][0]["parent"], -1);
    EXPECT_EQ(dump["tree"][0]["name"], "Comercial Puig & Fills");
    EXPECT_EQ(dump["components"][1]["name"], "Menú de fitxers");  // UTF-8 outside
    EXPECT_EQ(dump["resources"][0]["parent"], 4);
}

TEST_F(Sample, DumpsAsTextForPeople) {
    const Ended dumped = Vyn({"dump", BuiltSample()});
    EXPECT_EQ(dumped.ExitStatus, 0);
    EXPECT_NE(dumped.Output.find("Menú de fitxers"), std::string::npos);
    EXPECT_NE(dumped.Output.find("application"), std::string::npos);
}

TEST_F(Sample, ExportsToItsOwnSourceByteForByte) {
    const Ended exported = Vyn({"export", BuiltSample(), "-o", File("out")});
    ASSERT_EQ(exported.ExitStatus, 0) << exported.Told();
    EXPECT_EQ(exported.Output + exported.Errors, "");
    size_t compared = 0;
    for (const std::string& name : FilesBelow(VYN_SAMPLE)) {
        if (!IsSource(name)) continue;
        EXPECT_EQ(ReadBytes(fs::path(VYN_SAMPLE) / name), ReadBytes(File("out/" + name))) << name;
        ++compared;
    }
    EXPECT_EQ(compared, 1 + kComponents + 1);
    EXPECT_EQ(FilesBelow(File("out")).size(), compared);
}

TEST_F(Sample, BuildsToTheSameBytesAgain) {
    const std::string first = BuiltSample();
    ASSERT_EQ(Vyn({"export", first, "-o", File("out")}).ExitStatus, 0);
    ASSERT_EQ(Vyn({"build", File("out"), "-o", File("second.vyn")}).ExitStatus, 0);
    const std::string bytes = ReadBytes(first);
    EXPECT_GT(bytes.size(), 1000u);
    EXPECT_EQ(bytes, ReadBytes(File("second.vyn")));
}

TEST_F(Sample, BuildingTakesTheOldFilesPlaceAndLeavesNothingElse) {
    const std::string file = WriteText("target/sample.vyn", "what stood here before");
    ASSERT_EQ(Vyn({"build", VYN_SAMPLE, "-o", file}).ExitStatus, 0);
    EXPECT_EQ(ReadBytes(file), ReadBytes(BuiltSample()));
    EXPECT_EQ(FilesBelow(File("target")), std::vector<std::string>{"sample.vyn"});
}

TEST_F(Sample, AFolderWithOtherThingsIsNotExportedInto) {
    const std::string mine = WriteText("mine/letter.txt", "Dear all");
    ExpectFailed(Vyn({"export", BuiltSample(), "-o", File("mine")}), "holds other files");
    EXPECT_EQ(FilesBelow(File("mine")), std::vector<std::string>{"letter.txt"});
}

TEST_F(Sample, ExportingAgainRemovesWhatIsNoLongerThere) {
    ASSERT_EQ(Vyn({"export", BuiltSample(), "-o", File("out")}).ExitStatus, 0);
    WriteText("out/components/999.form", "object Old: TForm\nend\n");
    WriteText("out/components/notes.txt", "mine");
    ASSERT_EQ(Vyn({"export", BuiltSample(), "-o", File("out")}).ExitStatus, 0);
    EXPECT_FALSE(fs::exists(File("out/components/999.form")));
    EXPECT_TRUE(fs::exists(File("out/components/notes.txt")));
}

TEST_F(Sample, EveryErrorOfAFolderIsReportedAndNothingIsWritten) {
    ASSERT_EQ(Vyn({"export", BuiltSample(), "-o", File("out")}).ExitStatus, 0);
    WriteText("out/components/2.form", "object A: TForm\n  Left = \nend\n");
    WriteText("out/components/5.form", "object B: TForm\n  Caption = '\xE4\xB8\xAD'\nend\n");
    fs::remove(File("out/components/7.form"));
    const std::string target = WriteText("old.vyn", "old");
    const Ended built = Vyn({"build", File("out"), "-o", target});
    ExpectFailed(built, "3 errors; nothing was written");
    EXPECT_NE(built.Errors.find("components/2.form:"), std::string::npos) << built.Errors;
    EXPECT_NE(built.Errors.find("components/5.form:2:"), std::string::npos) << built.Errors;
    EXPECT_NE(built.Errors.find("U+4E2D"), std::string::npos) << "the character is named: " << built.Errors;
    EXPECT_NE(built.Errors.find("7.form"), std::string::npos) << built.Errors;
    EXPECT_EQ(ReadBytes(target), "old");
}

}  // namespace vyn::scenarios
