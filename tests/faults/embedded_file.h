#pragma once

#include "faults/user.h"

namespace faults {

// A database file of the embedded engine's, with its companions, in a folder of the test's own.
class EmbeddedFile : public testing::Test {
  protected:
    EmbeddedFile();
    ~EmbeddedFile() override;

    // A connection string that waits for others only so long.
    AnsiString Where(int busyMilliseconds = 0) const;
    // The same through a driver of ODBC's.
    AnsiString ThroughDriver() const;
    // A fresh file with that many clients.
    void Make(int records = 3);
    // What the engine finds when it looks at the file past all that the test does to it: "ok", or what is wrong; and
    // one value.
    std::string Integrity() const;
    std::string Stored(const std::string& sql) const;

    std::string folder_;
    std::string file_;
};

}  // namespace faults
