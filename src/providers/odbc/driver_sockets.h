#pragma once

#include <sys/types.h>

#include <vector>

namespace vyn::odbc_provider {

// The sockets through which a driver speaks to its server. Drivers show nobody what they opened, and wait for answers
// without an end: so it is seen what is new after connecting, whether the other side has left, and a call that does not
// come back is ended by cutting them. Where the system does not tell what is open, there are none.
class DriverSockets {
  public:
    // All that the process has open.
    static DriverSockets Now();
    DriverSockets Without(const DriverSockets& before) const;
    // Whether the other side has closed one.
    bool PeerLeft() const;
    // From any thread: what waits for them ends with an error.
    void Cut() const;

  private:
    struct Socket {
        int descriptor;
        ino_t identity;
    };
    // Descriptors are given anew; what stands behind one is another then.
    static bool IsStill(const Socket& socket);
    std::vector<Socket> sockets_;
};

}  // namespace vyn::odbc_provider
