#pragma once

#include <sqlite3.h>

#include <functional>

namespace faults {

// A disk of the embedded engine's that fails when it is told to: a file system of the test's over the system's own,
// which the engine takes while this object lives. Not for several threads.
class FailingDisk {
  public:
    enum class Kind { Full, WriteError, ShortWrite, SyncError, ReadError };
    enum class Duration { Once, FromThenOn };

    FailingDisk();
    ~FailingDisk();
    FailingDisk(const FailingDisk&) = delete;
    FailingDisk& operator=(const FailingDisk&) = delete;

    // The nth operation of the kind from now on fails (1: the next), and perhaps all after it.
    void FailAt(int operation, Kind kind, Duration duration);
    void Mend();
    // Whether something failed since FailAt.
    bool Failed() const;
    // The system's own file system by its name, for looking at files past the test's.
    static const char* HealthyName();
};

}  // namespace faults
