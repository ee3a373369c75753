#include "servers/postgresql_cluster.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace servers {

namespace {

constexpr char kReady[] = "ready to accept connections";

// Where distributions put the server's programs, the newest version first.
std::string ProgramFolder() {
    std::string newest;
    int version = 0;
    const std::filesystem::path debian = "/usr/lib/postgresql";
    if (std::filesystem::exists(debian))
        for (const auto& entry : std::filesystem::directory_iterator(debian))
            if (std::filesystem::exists(entry.path() / "bin" / "postgres") &&
                std::atoi(entry.path().filename().c_str()) > version) {
                version = std::atoi(entry.path().filename().c_str());
                newest = (entry.path() / "bin").string() + "/";
            }
    return newest;  // empty: on the path
}

// The user who runs the server in place of root.
const passwd* OtherUser() {
    if (geteuid() != 0) return nullptr;
    for (const char* name : {"postgres", "nobody"})
        if (const passwd* user = getpwnam(name)) return user;
    throw std::runtime_error("there is no user who could run the database server");
}

struct Child {
    int process;
    int output;
};

Child Run(const std::vector<std::string>& arguments) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the database server");
    const passwd* user = OtherUser();
    std::vector<char*> words;
    for (const std::string& each : arguments) words.push_back(const_cast<char*>(each.c_str()));
    words.push_back(nullptr);
    const pid_t parent = getpid();
    const int process = fork();
    if (process < 0) throw std::runtime_error("no process for the database server");
    if (process == 0) {
        if (user && (setgroups(0, nullptr) != 0 || setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0)) _exit(126);
        // The server goes when the test does, however that ends.
        prctl(PR_SET_PDEATHSIG, SIGQUIT);
        if (getppid() != parent) _exit(126);
        if (chdir("/") != 0) _exit(126);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        setenv("LC_ALL", "C", 1);
        execvp(words[0], words.data());
        _exit(127);
    }
    close(ends[1]);
    return {process, ends[0]};
}

// Reads until the text stands there, or to the end; gives what was read.
std::string ReadUntil(int output, const char* text) {
    std::string read;
    char part[4096];
    for (;;) {
        const auto got = ::read(output, part, sizeof part);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return read;
        read.append(part, static_cast<size_t>(got));
        if (text && read.find(text) != std::string::npos) return read;
    }
}

}  // namespace

PostgresqlCluster::PostgresqlCluster() {
    // A socket's name has to be short.
    char name[] = "/tmp/vyn-pg-XXXXXX";
    if (!mkdtemp(name)) throw std::runtime_error("no folder for the database server");
    folder_ = name;
    if (const passwd* user = OtherUser())
        if (chown(name, user->pw_uid, user->pw_gid) != 0) throw std::runtime_error("the server's folder stays root's");
    const Child child =
        Run({ProgramFolder() + "initdb", "--no-sync", "--auth=trust", std::string("--username=") + User(),
             "--encoding=UTF8", "--locale=C.UTF-8", "--no-instructions", "-D", folder_ + "/data"});
    const std::string said = ReadUntil(child.output, nullptr);
    close(child.output);
    int status = 0;
    waitpid(child.process, &status, 0);
    if (status != 0) throw std::runtime_error("initdb failed:\n" + said);
    Start();
}

PostgresqlCluster::~PostgresqlCluster() {
    Stop();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void PostgresqlCluster::Start() {
    const Child child = Run({ProgramFolder() + "postgres",
                             "-D",
                             folder_ + "/data",
                             "-k",
                             folder_,
                             "-c",
                             "listen_addresses=",
                             "-c",
                             "fsync=off",
                             "-c",
                             "log_min_messages=log",
                             "-c",
                             "log_checkpoints=off",
                             "-c",
                             "logging_collector=off",
                             "-c",
                             "unix_socket_permissions=0777",
                             "-c",
                             "max_connections=50",
                             "-c",
                             "autovacuum=off"});
    server_ = child.process;
    output_ = child.output;
    const std::string said = ReadUntil(output_, kReady);
    if (said.find(kReady) == std::string::npos) {
        Stop();
        throw std::runtime_error("the database server does not start:\n" + said);
    }
}

void PostgresqlCluster::Stop() {
    if (server_ < 0) return;
    kill(server_, SIGQUIT);
    waitpid(server_, nullptr, 0);
    close(output_);
    server_ = output_ = -1;
}

std::string PostgresqlCluster::ConnectionString() const {
    return "Provider=PostgreSQL;Data Source=" + folder_ + ";Initial Catalog=" + Database() + ";User ID=" + User();
}

}  // namespace servers
