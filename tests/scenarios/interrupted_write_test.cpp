// A write that is interrupted leaves the old file whole.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "scenarios/program.h"

namespace vyn::scenarios {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kComponents = 200;
constexpr size_t kComponentSize = 100 * 1000;
constexpr char kOld[] = "the old file";

class InterruptedWrite : public ProgramTest {
  protected:
    // A source folder whose file takes a while to write.
    std::string LargeFolder() const {
        std::string json = "{\n  \"format\": 54,\n  \"saved\": \"2026-11-21T10:00:00\",\n  \"components\": [";
        for (int id = 1; id <= kComponents; ++id) {
            const std::string name = "components/" + std::to_string(id) + ".bin";
            WriteText("large/" + name, std::string(kComponentSize, static_cast<char>('a' + id % 26)));
            json += std::string(id > 1 ? "," : "") + "\n    {\"id\": " + std::to_string(id) +
                    ", \"type\": 2, \"name\": \"Part\", \"file\": \"" + name + "\"}";
        }
        json += "\n  ],\n  \"tree\": [],\n  \"resources\": []\n}\n";
        WriteText("large/application.json", json);
        return File("large");
    }

    // Ends the child; true when the kill came before its own end.
    static bool Kill(pid_t child) {
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFSIGNALED(status);
    }
};

bool StillRuns(pid_t child) {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == 0;
}

}  // namespace

TEST_F(InterruptedWrite, KilledAtAnyMomentTheFileIsTheOldOneOrTheNewOne) {
    const std::string source = LargeFolder();
    const auto begin = Clock::now();
    ASSERT_EQ(Vyn({"build", source, "-o", File("whole.vyn")}).ExitStatus, 0);
    const auto whole = Clock::now() - begin;
    const std::string wanted = ReadBytes(File("whole.vyn"));
    ASSERT_GT(wanted.size(), kComponents * kComponentSize);
    constexpr int kMoments = 12;
    for (int moment = 0; moment < kMoments; ++moment) {
        const std::string target = WriteText("target/application.vyn", kOld);
        const pid_t child = StartVyn({"build", source, "-o", target});
        std::this_thread::sleep_for(whole * moment / kMoments);
        const bool killed = Kill(child);
        const std::string found = ReadBytes(target);
        EXPECT_TRUE(found == kOld || found == wanted) << "moment " << moment << ": " << found.size() << " bytes";
        if (!killed) EXPECT_TRUE(found == wanted);
    }
}

TEST_F(InterruptedWrite, KilledWhileTheTemporaryFileGrowsTheOldOneStays) {
    const std::string source = LargeFolder();
    const std::string target = WriteText("target/application.vyn", kOld);
    const pid_t child = StartVyn({"build", source, "-o", target});
    while (StillRuns(child) && Unfinished(File("target")).empty()) {
    }
    ::kill(child, SIGSTOP);
    const bool unfinished = !Unfinished(File("target")).empty();
    const std::string during = ReadBytes(target);
    Kill(child);
    const std::string found = ReadBytes(target);
    // While it is being written, and after, the name stands for a whole file.
    EXPECT_EQ(during, found);
    if (unfinished) EXPECT_EQ(found, kOld);
    // The next build does not stumble over what was left.
    ASSERT_EQ(Vyn({"build", source, "-o", target}).ExitStatus, 0);
    EXPECT_GT(fs::file_size(target), kComponents * kComponentSize);
}

TEST_F(InterruptedWrite, AFullDiskIsAnErrorAndTheOldFileStays) {
    const std::string source = LargeFolder();
    const std::string target = WriteText("target/application.vyn", kOld);
    Conditions conditions;
    conditions.FileSizeLimit = 1000 * 1000;
    ExpectFailed(Vyn({"build", source, "-o", target}, conditions), "Stream write error");
    EXPECT_EQ(ReadBytes(target), kOld);
    EXPECT_EQ(FilesBelow(File("target")), std::vector<std::string>{"application.vyn"});
}

TEST_F(InterruptedWrite, AnExportOntoAFullDiskKeepsEachFileWhole) {
    const std::string file = File("whole.vyn");
    ASSERT_EQ(Vyn({"build", LargeFolder(), "-o", file}).ExitStatus, 0);
    Conditions conditions;
    conditions.FileSizeLimit = static_cast<int64_t>(kComponentSize) / 2;
    ExpectFailed(Vyn({"export", file, "-o", File("out")}, conditions), "Stream write error");
    EXPECT_TRUE(FilesBelow(File("out")).empty());
}

TEST_F(InterruptedWrite, AFolderThatIsNotThereIsAnError) {
    ExpectFailed(Vyn({"build", VYN_SAMPLE, "-o", File("nowhere/file.vyn")}), "Cannot create file");
}

}  // namespace vyn::scenarios
