#include "providers/odbc/driver_sockets.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace vyn::odbc_provider {

DriverSockets DriverSockets::Now() {
    DriverSockets now;
    std::error_code none;
    for (std::filesystem::directory_iterator each("/proc/self/fd", none), end; !none && each != end;
         each.increment(none)) {
        const int descriptor = std::atoi(each->path().filename().c_str());
        struct stat what {};
        if (fstat(descriptor, &what) == 0 && S_ISSOCK(what.st_mode)) now.sockets_.push_back({descriptor, what.st_ino});
    }
    return now;
}

DriverSockets DriverSockets::Without(const DriverSockets& before) const {
    DriverSockets rest;
    for (const Socket& socket : sockets_)
        if (std::none_of(before.sockets_.begin(), before.sockets_.end(),
                         [&](const Socket& each) { return each.identity == socket.identity; }))
            rest.sockets_.push_back(socket);
    return rest;
}

bool DriverSockets::IsStill(const Socket& socket) {
    struct stat what {};
    return fstat(socket.descriptor, &what) == 0 && what.st_ino == socket.identity;
}

bool DriverSockets::PeerLeft() const {
    return std::any_of(sockets_.begin(), sockets_.end(), [](const Socket& socket) {
        if (!IsStill(socket)) return true;
        pollfd end{socket.descriptor, POLLRDHUP, 0};
        return poll(&end, 1, 0) > 0 && (end.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
    });
}

void DriverSockets::Cut() const {
    for (const Socket& socket : sockets_)
        if (IsStill(socket)) shutdown(socket.descriptor, SHUT_RDWR);
}

}  // namespace vyn::odbc_provider
