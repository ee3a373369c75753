#include "scenarios/program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vyn::scenarios {

namespace fs = std::filesystem;

namespace {

// Ten times what the slowest story takes on a slow machine: only a program that hangs meets it.
constexpr std::chrono::seconds kPatience{120};

void Require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

struct Pipe {
    int Ends[2] = {-1, -1};
    Pipe() { Require(::pipe2(Ends, O_CLOEXEC) == 0, "pipe"); }
    ~Pipe() {
        CloseReading();
        CloseWriting();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void CloseReading() { Close(Ends[0]); }
    void CloseWriting() { Close(Ends[1]); }
    static void Close(int& end) {
        if (end >= 0) ::close(end);
        end = -1;
    }
};

// A child inherits the limits of its parent: the limit holds here for as long as the child is being started.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(int64_t limit) : active_(limit >= 0) {
        if (!active_) return;
        Require(::getrlimit(RLIMIT_FSIZE, &old_) == 0, "getrlimit");
        rlimit lower = old_;
        lower.rlim_cur = static_cast<rlim_t>(limit);
        Require(::setrlimit(RLIMIT_FSIZE, &lower) == 0, "setrlimit");
    }
    ~FileSizeLimit() {
        if (active_) ::setrlimit(RLIMIT_FSIZE, &old_);
    }

  private:
    bool active_;
    rlimit old_{};
};

pid_t Spawn(const std::string& program, const std::vector<std::string>& arguments,
            const std::vector<std::string>& environment, posix_spawn_file_actions_t& actions) {
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (const std::string& setting : environment) envp.push_back(const_cast<char*>(setting.c_str()));
    envp.push_back(nullptr);
    pid_t child = -1;
    Require(::posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), envp.data()) == 0, "posix_spawn");
    return child;
}

// Reads both pipes until the child has closed them; false when patience ran out.
bool Collect(Pipe& output, Pipe& errors, Ended& ended) {
    const auto until = std::chrono::steady_clock::now() + kPatience;
    while (output.Ends[0] >= 0 || errors.Ends[0] >= 0) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd waits[2] = {{output.Ends[0], POLLIN, 0}, {errors.Ends[0], POLLIN, 0}};
        if (::poll(waits, 2, static_cast<int>(left.count())) <= 0) continue;
        Pipe* const pipes[2] = {&output, &errors};
        std::string* const texts[2] = {&ended.Output, &ended.Errors};
        for (int i = 0; i < 2; ++i) {
            if (!waits[i].revents) continue;
            char buffer[16384];
            const ssize_t taken = ::read(pipes[i]->Ends[0], buffer, sizeof buffer);
            if (taken > 0)
                texts[i]->append(buffer, static_cast<size_t>(taken));
            else
                pipes[i]->CloseReading();
        }
    }
    return true;
}

}  // namespace

std::string Ended::Told() const {
    return "exit " + std::to_string(ExitStatus) + ", signal " + std::to_string(Signal) +
           (TimedOut ? ", timed out" : "") + "\n--- output\n" + Output.substr(0, 2000) + "\n--- errors\n" +
           Errors.substr(0, 2000);
}

ProgramTest::ProgramTest() {
    std::string name = (fs::temp_directory_path() / "vyn-scenario-XXXXXX").string();
    Require(::mkdtemp(name.data()) != nullptr, "mkdtemp");
    folder_ = name;
    fs::create_directory(folder_ / "data");
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms::owner_all);
}

ProgramTest::~ProgramTest() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::vector<std::string> ProgramTest::Environment() const {
    std::vector<std::string> environment{"QT_QPA_PLATFORM=offscreen",
                                         "LC_ALL=C.UTF-8",
                                         "TZ=UTC",
                                         "HOME=" + folder_.string(),
                                         "XDG_DATA_HOME=" + File("data"),
                                         "XDG_RUNTIME_DIR=" + File("run")};
    // What the machine, or a sanitizer, needs to run any program at all.
    for (const char* name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"})
        if (const char* value = ::getenv(name)) environment.push_back(std::string(name) + "=" + value);
    return environment;
}

Ended ProgramTest::Vyn(const std::vector<std::string>& arguments, const Conditions& conditions) {
    return RunProgram(VYN_PROGRAM, arguments, conditions);
}

Ended ProgramTest::RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                              const Conditions& conditions) {
    Ended ended;
    Pipe input, output, errors;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.Ends[0], STDIN_FILENO);
    if (conditions.OutputFile.empty())
        posix_spawn_file_actions_adddup2(&actions, output.Ends[1], STDOUT_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, conditions.OutputFile.c_str(), O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, errors.Ends[1], STDERR_FILENO);
    pid_t child = -1;
    {
        FileSizeLimit limit(conditions.FileSizeLimit);
        child = Spawn(program, arguments, Environment(), actions);
    }
    posix_spawn_file_actions_destroy(&actions);
    if (!conditions.Input.empty())
        Require(::write(input.Ends[1], conditions.Input.data(), conditions.Input.size()) ==
                    static_cast<ssize_t>(conditions.Input.size()),
                "write");
    input.CloseWriting();
    output.CloseWriting();
    errors.CloseWriting();
    if (!Collect(output, errors, ended)) {
        ended.TimedOut = true;
        ::kill(child, SIGKILL);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) ended.ExitStatus = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) ended.Signal = WTERMSIG(status);
    return ended;
}

pid_t ProgramTest::StartVyn(const std::vector<std::string>& arguments) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int handle : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, handle, "/dev/null", O_WRONLY, 0);
    const pid_t child = Spawn(VYN_PROGRAM, arguments, Environment(), actions);
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

std::string ProgramTest::WriteText(const std::string& name, std::string_view bytes) const {
    const fs::path path = folder_ / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path.string();
}

std::string ProgramTest::BuiltSample() {
    const std::string file = File("sample.vyn");
    const Ended built = Vyn({"build", VYN_SAMPLE, "-o", file});
    EXPECT_EQ(built.ExitStatus, 0) << built.Told();
    return file;
}

void ProgramTest::ExpectFailed(const Ended& ended, const std::string& part) {
    EXPECT_EQ(ended.ExitStatus, 1) << ended.Told();
    EXPECT_EQ(ended.Output, "");
    // Remarks about single files may come before.
    const size_t at = ended.Errors.rfind("vyn: ", 0) == 0 ? 0 : ended.Errors.find("\nvyn: ");
    EXPECT_NE(at, std::string::npos) << ended.Told();
    EXPECT_NE(ended.Errors.find(part), std::string::npos) << ended.Told();
}

std::string ReadBytes(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> FilesBelow(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) names.push_back(fs::relative(entry.path(), folder).string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Unfinished(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().find(".new-") != std::string::npos)
            names.push_back(entry.path().filename().string());
    return names;
}

}  // namespace vyn::scenarios
