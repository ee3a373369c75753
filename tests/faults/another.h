#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>

namespace faults {

// Another program, begun here, that goes on when it is told to. It must be begun before this one opens the file that
// both work on: the embedded engine counts what its process holds.
class Another {
  public:
    // `action` calls its argument to say that it is so far, and to wait.
    explicit Another(const std::function<void(const std::function<void()>& soFar)>& action) {
        if (pipe(there_) != 0 || pipe(back_) != 0) throw std::runtime_error("no pipe");
        process_ = fork();
        if (process_ == 0) {
            close(there_[1]);
            close(back_[0]);
            try {
                action([&] {
                    char sign = 's';
                    if (write(back_[1], &sign, 1) != 1 || read(there_[0], &sign, 1) != 1) _exit(3);
                });
            } catch (...) {
                _exit(2);
            }
            _exit(0);
        }
        close(there_[0]);
        close(back_[1]);
        Await();
    }
    ~Another() {
        if (process_ > 0) Kill();
        close(there_[1]);
        close(back_[0]);
    }
    // Until it is so far again.
    void GoOn() {
        Tell();
        Await();
    }
    void GoOnToTheEnd() {
        Tell();
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = 0;
        EXPECT_EQ(status, 0);
    }
    void Kill() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = 0;
    }

  private:
    void Tell() {
        const char sign = 'g';
        if (write(there_[1], &sign, 1) != 1) throw std::runtime_error("the other program is gone");
    }
    void Await() {
        char sign = 0;
        if (read(back_[0], &sign, 1) != 1) throw std::runtime_error("the other program does not come so far");
    }

    pid_t process_ = 0;
    int there_[2] = {}, back_[2] = {};
};

}  // namespace faults
