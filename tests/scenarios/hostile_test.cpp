// Damaged and hostile files: an answer or an error, never a crash, never a hang.
#include <random>

#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

class Hostile : public ProgramTest {
  protected:
    void ExpectSurvived(const Ended& ended, const std::string& what) {
        EXPECT_FALSE(ended.TimedOut) << what;
        EXPECT_EQ(ended.Signal, 0) << what << "\n" << ended.Told();
        EXPECT_TRUE(ended.ExitStatus == 0 || ended.ExitStatus == 1) << what << "\n" << ended.Told();
        if (ended.ExitStatus == 1) ExpectFailed(ended);
    }
    // Reads the bytes in both ways that there are without windows.
    void Try(std::string_view bytes, const std::string& what) {
        const std::string file = WriteText("hostile", bytes);
        ExpectSurvived(Vyn({"dump", "--json", file}), "dump, " + what);
        ExpectSurvived(Vyn({"export", file, "-o", File("out")}), "export, " + what);
    }
    std::string Application() { return ReadBytes(BuiltSample()); }
};

}  // namespace

TEST_F(Hostile, ATruncatedApplication) {
    const std::string whole = Application();
    constexpr size_t kCuts = 30;
    for (size_t cut = 0; cut < kCuts; ++cut) {
        const size_t length = cut < 10 ? cut : whole.size() * cut / kCuts;
        Try(whole.substr(0, length), "first " + std::to_string(length) + " bytes");
    }
}

TEST_F(Hostile, AnApplicationCutShortIsAnError) {
    const std::string whole = Application();
    ExpectFailed(Vyn({"dump", "--json", WriteText("cut", whole.substr(0, whole.size() / 2))}), "cut");
}

TEST_F(Hostile, FlippedBits) {
    const std::string whole = Application();
    std::mt19937 random(54);  // the same damage in every run
    for (int round = 0; round < 40; ++round) {
        std::string bytes = whole;
        const size_t at = random() % bytes.size();
        const int bit = static_cast<int>(random() % 8);
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
        Try(bytes, "bit " + std::to_string(bit) + " of byte " + std::to_string(at));
    }
}

TEST_F(Hostile, BytesOfEveryKindInTheMiddle) {
    const std::string whole = Application();
    for (size_t at = 20; at < whole.size(); at += whole.size() / 6)
        for (int value : {0x00, 0x01, 0x0C, 0xFF}) {
            std::string bytes = whole;
            bytes.replace(at, 4, std::string(4, static_cast<char>(value)));
            Try(bytes, "bytes of " + std::to_string(value) + " at " + std::to_string(at));
        }
}

TEST_F(Hostile, LengthsBeyondTheFileTakeNoMemory) {
    // A string of 2 GB that is not there.
    Try(std::string("TPF0\x05TForm\x01"
                    "F\x07"
                    "Caption\x0C\xFF\xFF\xFF\x7F",
                    25),
        "a long string");
    Try(std::string("TPF0\x05TForm\x01"
                    "F\x04"
                    "Data\x0A\xFF\xFF\xFF\xFF",
                    22),
        "long binary data");
}

TEST_F(Hostile, EndlessNesting) {
    Try("TPF0\x05TForm\x01"
        "F\x04"
        "Data" +
            std::string(1000000, '\x01'),
        "a million lists");
    std::string objects = "TPF0";
    for (int i = 0; i < 200000; ++i)
        objects += std::string(
            "\x05TForm\x01"
            "F\x00",
            9);
    Try(objects, "objects inside each other");
}

TEST_F(Hostile, NestedSourceText) {
    const std::string many(200000, '[');
    WriteText("folder/application.json", many);
    ExpectFailed(Vyn({"build", File("folder"), "-o", File("built")}), "application.json:1:");
    WriteText("folder/application.json", "{\"tree\":" + many + std::string(many.size(), ']') + "}");
    ExpectFailed(Vyn({"build", File("folder"), "-o", File("built")}), "application.json:1:");
    std::string form;
    for (int i = 0; i < 20000; ++i) form += "object A: TForm\n";
    WriteText("folder/components/1.form", form);
    WriteText("folder/application.json",
              "{\"format\": 54, \"saved\": 46000.0, \"components\": [{\"id\": 1, \"type\": 2, \"name\": \"\", "
              "\"file\": \"components/1.form\"}], \"tree\": [], \"resources\": []}");
    ExpectFailed(Vyn({"build", File("folder"), "-o", File("built")}), "1.form:");
    EXPECT_FALSE(std::filesystem::exists(File("built")));
}

TEST_F(Hostile, ASourceFolderNamesNoFilesOutsideItself) {
    WriteText("secret.bin", "abc");
    for (const char* name : {"../secret.bin", "components/../../secret.bin", "/etc/passwd"}) {
        WriteText("folder/application.json",
                  std::string("{\"format\": 54, \"saved\": 46000.0, \"components\": [{\"id\": 1, \"type\": 2, "
                              "\"name\": \"\", \"file\": \"") +
                      name + "\"}], \"tree\": [], \"resources\": []}");
        ExpectFailed(Vyn({"build", File("folder"), "-o", File("built")}), "application.json:1:");
    }
}

}  // namespace vyn::scenarios
