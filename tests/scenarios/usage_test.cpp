#include <algorithm>

#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

class Usage : public ProgramTest {
  protected:
    // Wrong usage: status 2, what is wrong and the subcommand's usage on standard error, nothing on standard output.
    void ExpectWrong(const std::vector<std::string>& arguments, const std::string& usage) {
        const Ended ended = Vyn(arguments);
        EXPECT_EQ(ended.ExitStatus, 2) << ended.Told();
        EXPECT_EQ(ended.Output, "");
        EXPECT_EQ(ended.Errors.rfind("vyn: ", 0), 0u) << ended.Told();
        EXPECT_NE(ended.Errors.find("Usage: " + usage), std::string::npos) << ended.Told();
    }

    // The names that the program's own help lists.
    std::vector<std::string> Subcommands() {
        const std::string help = Vyn({"--help"}).Output;
        std::vector<std::string> names;
        const std::string title = "Subcommands:\n";
        for (size_t at = help.find(title) + title.size(); at < help.size() && help.compare(at, 2, "  ") == 0;) {
            const size_t end = help.find('\n', at);
            if (help[at + 2] != ' ') names.push_back(help.substr(at + 2, help.find(' ', at + 2) - at - 2));
            at = end + 1;
        }
        return names;
    }
};

}  // namespace

TEST_F(Usage, TheVersionIsOneLine) {
    const Ended ended = Vyn({"--version"});
    EXPECT_EQ(ended.ExitStatus, 0);
    EXPECT_EQ(ended.Output.rfind("vyn ", 0), 0u) << ended.Output;
    EXPECT_EQ(ended.Output.find('\n'), ended.Output.size() - 1);
    EXPECT_EQ(ended.Errors, "");
}

TEST_F(Usage, HelpListsTheSubcommands) {
    const Ended ended = Vyn({"--help"});
    EXPECT_EQ(ended.ExitStatus, 0);
    EXPECT_EQ(ended.Errors, "");
    const std::vector<std::string> names = Subcommands();
    for (const char* name : {"run", "demo", "shot", "build", "export", "dump", "sql", "eval", "completion"})
        EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
}

TEST_F(Usage, EachSubcommandHasHelp) {
    const std::vector<std::string> names = Subcommands();
    ASSERT_GE(names.size(), 7u);
    for (const std::string& name : names) {
        const Ended ended = Vyn({name, "--help"});
        EXPECT_EQ(ended.ExitStatus, 0) << name;
        EXPECT_NE(ended.Output.find("Usage: vyn " + name), std::string::npos) << ended.Told();
        EXPECT_EQ(ended.Errors, "") << name;
    }
}

TEST_F(Usage, WithoutASubcommandTheProgramSaysWhichThereAre) { ExpectWrong({}, "vyn [OPTIONS] SUBCOMMAND"); }

TEST_F(Usage, AnUnknownSubcommandIsNamed) {
    ExpectWrong({"polish"}, "vyn [OPTIONS] SUBCOMMAND");
    EXPECT_NE(Vyn({"polish"}).Errors.find("polish"), std::string::npos);
}

TEST_F(Usage, AMissingArgumentGivesTheSubcommandsUsage) {
    ExpectWrong({"build"}, "vyn build");
    ExpectWrong({"build", VYN_SAMPLE}, "vyn build");
    ExpectWrong({"export"}, "vyn export");
    ExpectWrong({"dump"}, "vyn dump");
    ExpectWrong({"eval"}, "vyn eval");
    ExpectWrong({"run"}, "vyn run");
    ExpectWrong({"shot", VYN_SAMPLE}, "vyn shot");
    ExpectWrong({"shot", VYN_SAMPLE, "1"}, "vyn shot");
    ExpectWrong({"sql", VYN_SAMPLE}, "vyn sql");
    ExpectWrong({"completion"}, "vyn completion");
}

TEST_F(Usage, AnUnknownOptionIsWrong) { ExpectWrong({"dump", "--loud", VYN_SAMPLE}, "vyn dump"); }

TEST_F(Usage, AnArgumentTooManyIsWrong) { ExpectWrong({"dump", "one", "two"}, "vyn dump"); }

TEST_F(Usage, ANodeIsANumber) { ExpectWrong({"shot", VYN_SAMPLE, "four", "-o", File("x.png")}, "vyn shot"); }

TEST_F(Usage, ASizeIsWidthAndHeight) {
    for (const char* size :
         {"3", "640", "640x", "x480", "640x480x2", "0x10", "10x0", "-5x10", "640 x 480", "99999x10", "axb"})
        ExpectWrong({"shot", VYN_SAMPLE, "1", "-o", File("x.png"), std::string("--size=") + size}, "vyn shot");
    EXPECT_FALSE(std::filesystem::exists(File("x.png")));
}

TEST_F(Usage, AFileThatIsNotThereFails) {
    ExpectFailed(Vyn({"dump", File("none")}), "vyn: Cannot open file " + File("none") + ". No such file or directory");
    ExpectFailed(Vyn({"export", File("none"), "-o", File("out")}), "Cannot open file");
    ExpectFailed(Vyn({"build", File("none"), "-o", File("out")}), "none");
    EXPECT_FALSE(std::filesystem::exists(File("out")));
}

TEST_F(Usage, AFolderIsNoFileToDump) { ExpectFailed(Vyn({"dump", VYN_SAMPLE}), "It is a folder"); }

TEST_F(Usage, OnlyBashHasACompletion) { ExpectFailed(Vyn({"completion", "fish"}), "bash"); }

TEST_F(Usage, AFullDeviceIsNoticed) {
    Conditions conditions;
    conditions.OutputFile = "/dev/full";
    ExpectFailed(Vyn({"dump", BuiltSample(), "--json"}, conditions), "Standard output");
}

TEST_F(Usage, ThePasswordIsReadFromStandardInputAndSaltedEachTime) {
    Conditions conditions;
    conditions.Input = "demo\n";
    const Ended first = Vyn({"password"}, conditions), second = Vyn({"password"}, conditions);
    EXPECT_EQ(first.ExitStatus, 0);
    EXPECT_EQ(first.Output.rfind("pbkdf2-sha256$", 0), 0u) << first.Output;
    EXPECT_EQ(first.Output.find("demo"), std::string::npos);
    EXPECT_NE(first.Output, second.Output);
}

TEST_F(Usage, TheCompletionIsValidBash) {
    const Ended script = Vyn({"completion", "bash"});
    ASSERT_EQ(script.ExitStatus, 0);
    const Ended checked = RunProgram("/bin/bash", {"-n", WriteText("vyn.bash", script.Output)});
    EXPECT_EQ(checked.ExitStatus, 0) << checked.Told();
}

TEST_F(Usage, TheCompletionCompletesSubcommandsAndOptions) {
    const std::string script = WriteText("vyn.bash", Vyn({"completion", "bash"}).Output);
    const auto complete = [&](const std::string& words) {
        return RunProgram("/bin/bash", {"-c", "source " + script + "; COMP_WORDS=(" + words +
                                                  "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vyn; "
                                                  "printf '%s\\n' \"${COMPREPLY[@]}\""})
            .Output;
    };
    EXPECT_EQ(complete("vyn bu"), "build\n");
    EXPECT_EQ(complete("vyn dump --j"), "--json\n");
    EXPECT_EQ(complete("vyn shot --si"), "--size\n");
    EXPECT_EQ(complete("vyn sql --js"), "--json\n");
    EXPECT_EQ(complete("vyn completion ''"), "bash\n");
    // What help lists is what is completed.
    const std::string all = "\n" + complete("vyn ''");
    for (const std::string& name : Subcommands()) EXPECT_NE(all.find("\n" + name + "\n"), std::string::npos) << name;
}

}  // namespace vyn::scenarios
