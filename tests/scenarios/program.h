#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

// The program under test as a child process.
namespace vyn::scenarios {

// How a child ended, and what it said.
struct Ended {
    int ExitStatus = -1;  // -1: it did not end by itself
    int Signal = 0;       // that ended it, 0 for none
    bool TimedOut = false;
    std::string Output;
    std::string Errors;

    // For messages of failed tests.
    std::string Told() const;
};

struct Conditions {
    int64_t FileSizeLimit = -1;  // bytes that a file may grow to; -1: as this process
    std::string OutputFile;      // where standard output goes instead of into Ended::Output
    std::string Input;           // standard input, not longer than a pipe holds
};

// A folder of its own for each test, removed after it: what the program writes, its user data and its run-time folder.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest();
    ~ProgramTest() override;

    // Runs the program to its end; it is killed when it takes longer than any machine needs.
    Ended Vyn(const std::vector<std::string>& arguments, const Conditions& conditions = {});
    Ended RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                     const Conditions& conditions = {});
    // Starts the program and leaves it running, its output thrown away.
    pid_t StartVyn(const std::vector<std::string>& arguments);

    // The name of a file in this test's folder.
    std::string File(const std::string& name) const { return (folder_ / name).string(); }
    std::string WriteText(const std::string& name, std::string_view bytes) const;
    // The sample application as one file.
    std::string BuiltSample();

    // The usual end of a failure: status 1, one sentence of the program's, nothing on standard output.
    static void ExpectFailed(const Ended& ended, const std::string& part = {});

  private:
    std::vector<std::string> Environment() const;

    std::filesystem::path folder_;
};

std::string ReadBytes(const std::filesystem::path& file);
// Every file below a folder, as sorted relative names.
std::vector<std::string> FilesBelow(const std::filesystem::path& folder);
// Files beside which an unfinished write was left.
std::vector<std::string> Unfinished(const std::filesystem::path& folder);

}  // namespace vyn::scenarios
