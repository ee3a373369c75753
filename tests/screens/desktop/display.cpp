#include "display.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vyn::screens {

namespace {

// Starts a program; `keep` is a descriptor that it inherits (-1: none). Its own words go nowhere.
pid_t Start(const std::vector<std::string>& words, int keep = -1) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("cannot start " + words[0]);
    if (child > 0) return child;
    const int nowhere = open("/dev/null", O_RDWR);
    for (int descriptor = 0; descriptor < 3; ++descriptor)
        if (descriptor != keep) dup2(nowhere, descriptor);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

// Starts the window manager, and waits until it manages: windows that come earlier never get the keyboard.
pid_t StartManager() {
    sigset_t ready;
    sigset_t before;
    sigemptyset(&ready);
    sigaddset(&ready, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &ready, &before);
    const pid_t manager = Start({"openbox", "--startup", "sh -c 'kill -USR1 " + std::to_string(getpid()) + "'"});
    constexpr timespec kLongestWait{20, 0};
    const bool said = sigtimedwait(&ready, nullptr, &kLongestWait) == SIGUSR1;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (!said) throw std::runtime_error("openbox did not start: is it installed (scripts/setup)?");
    return manager;
}

void Stop(pid_t& child) {
    if (child <= 0) return;
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    child = 0;
}

}  // namespace

void RunProgram(const std::vector<std::string>& words) {
    int status = 0;
    waitpid(Start(words), &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error(words[0] + " failed");
}

VirtualDisplay::VirtualDisplay() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe for the display's number");
    server_ = Start(
        {"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"},
        ends[1]);
    close(ends[1]);
    // The server says the number that it has taken when it can be spoken to.
    std::string number;
    char digit = 0;
    while (read(ends[0], &digit, 1) == 1 && digit != '\n') number += digit;
    close(ends[0]);
    if (number.empty()) {
        Stop(server_);
        throw std::runtime_error("Xvfb did not start: is it installed (scripts/setup)?");
    }
    setenv("DISPLAY", (":" + number).c_str(), 1);
    manager_ = StartManager();
    RunProgram({"setxkbmap", "es"});
}

VirtualDisplay::~VirtualDisplay() {
    Stop(manager_);
    Stop(server_);
    unsetenv("DISPLAY");
}

}  // namespace vyn::screens
