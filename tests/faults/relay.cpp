#include "faults/relay.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace faults {

namespace {

constexpr char kSocket[] = "/.s.PGSQL.5432";
// Nothing that the protocol knows; long enough to fill what a message says that it still needs, and with the zeros that
// end its texts.
const std::string kGarbage = [] {
    std::string garbage;
    for (int i = 0; i < 20000; ++i) garbage += std::string("\xFF\xFF\xFF\xFF\xFF\0", 6);
    return garbage;
}();

sockaddr_un AddressOf(const std::string& file) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (file.size() >= sizeof address.sun_path) throw std::runtime_error("a socket's name is too long");
    std::copy(file.begin(), file.end(), address.sun_path);
    return address;
}

// Whole, or to the end of the connection.
void Send(int socket, const char* bytes, size_t size) {
    while (size > 0) {
        const auto sent = send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent <= 0) return;
        bytes += sent;
        size -= static_cast<size_t>(sent);
    }
}
void Send(int socket, const std::string& bytes) { Send(socket, bytes.data(), bytes.size()); }

}  // namespace

Relay::Relay(const std::string& serverFolder) : server_(serverFolder + kSocket) {
    char name[] = "/tmp/vyn-relay-XXXXXX";
    if (!mkdtemp(name)) throw std::runtime_error("no folder for the relay");
    folder_ = name;
    listening_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressOf(folder_ + kSocket);
    if (bind(listening_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listening_, 64) != 0 || pipe2(wake_, O_CLOEXEC) != 0)
        throw std::runtime_error("the relay cannot listen");
    thread_ = std::thread([this] { Run(); });
}

Relay::~Relay() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    Wake();
    thread_.join();
    for (Pair& pair : pairs_) Close(pair);
    for (int each : {listening_, wake_[0], wake_[1]}) close(each);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void Relay::Wake() {
    const char sign = 'w';
    if (write(wake_[1], &sign, 1) != 1) throw std::runtime_error("the relay does not hear");
}

void Relay::FailAt(int request, Fault fault, size_t bytes) {
    const std::lock_guard lock(mutex_);
    requestsLeft_ = request;
    fault_ = fault;
    bytes_ = bytes;
    failed_ = false;
}

void Relay::Mend() {
    const std::lock_guard lock(mutex_);
    requestsLeft_ = 0;
    frozen_ = false;
    for (Pair& pair : pairs_) {
        pair.dropping = pair.spoiling = pair.holding = pair.watched = false;
        Send(pair.client, pair.held);
        pair.held.clear();
    }
    Wake();
}

bool Relay::Failed() {
    const std::lock_guard lock(mutex_);
    return failed_;
}

void Relay::CutAll() {
    const std::lock_guard lock(mutex_);
    for (Pair& pair : pairs_) Close(pair);
    pairs_.clear();
    Wake();
}

int Relay::Connections() {
    const std::lock_guard lock(mutex_);
    // Those that have ended, seen or not.
    std::erase_if(pairs_, [](Pair& pair) {
        char byte = 0;
        const auto got = recv(pair.client, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
        pollfd end{pair.client, POLLRDHUP, 0};
        const bool gone = got == 0 || (poll(&end, 1, 0) > 0 && (end.revents & (POLLRDHUP | POLLHUP | POLLERR)));
        if (gone) Close(pair);
        return gone;
    });
    Wake();
    return static_cast<int>(pairs_.size());
}

void Relay::Close(Pair& pair) {
    for (int* each : {&pair.client, &pair.server}) {
        if (*each >= 0) close(*each);
        *each = -1;
    }
}

void Relay::AcceptOne() {
    Pair pair;
    pair.client = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
    if (pair.client < 0) return;
    pair.server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressOf(server_);
    if (connect(pair.server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        Close(pair);
        return;
    }
    pair.holding = frozen_;
    pairs_.push_back(pair);
}

bool Relay::FromClient(Pair& pair) {
    char bytes[65536];
    const auto got = recv(pair.client, bytes, sizeof bytes, MSG_DONTWAIT);
    if (got < 0 && errno == EAGAIN) return true;
    if (got <= 0) return false;
    // The greeting is no request; neither is the wish to break off.
    const bool request = pair.started && !pair.requested;
    pair.requested = true;
    if (request && requestsLeft_ > 0 && --requestsLeft_ == 0) {
        failed_ = true;
        pair.watched = true;
        pair.passed = 0;
        if (fault_ == Fault::CutBeforeRequest) return false;
    }
    Send(pair.server, bytes, static_cast<size_t>(got));
    return true;
}

bool Relay::FromServer(Pair& pair) {
    char bytes[65536];
    const auto got = recv(pair.server, bytes, sizeof bytes, MSG_DONTWAIT);
    if (got < 0 && errno == EAGAIN) return true;
    if (got <= 0) return false;
    pair.requested = false;
    pair.started = true;
    std::string passes(bytes, static_cast<size_t>(got));
    if (pair.watched) {
        const size_t whole = std::min(passes.size(), bytes_ - std::min(bytes_, pair.passed));
        const std::string front = passes.substr(0, whole);
        switch (fault_) {
            case Fault::CutBeforeRequest:
            case Fault::CutAfterRequest:
                return false;
            case Fault::CutInAnswer:
            case Fault::GarbageInAnswer:
                Send(pair.client, front);
                pair.passed += whole;
                if (pair.passed < bytes_) return true;
                if (fault_ == Fault::CutInAnswer) return false;
                Send(pair.client, kGarbage);
                pair.watched = false;
                pair.spoiling = true;
                return true;
            case Fault::Hold:
            case Fault::HoldInAnswer:
                frozen_ = true;
                for (Pair& each : pairs_) each.holding = true;
                pair.watched = false;
                if (fault_ == Fault::HoldInAnswer) Send(pair.client, front);
                pair.held = passes.substr(fault_ == Fault::HoldInAnswer ? whole : 0);
                return true;
            case Fault::Garbage:
                Send(pair.client, kGarbage);
                pair.watched = false;
                pair.spoiling = true;
                return true;
        }
    }
    if (pair.holding)
        pair.held += passes;
    else if (!pair.spoiling)
        Send(pair.client, passes);
    return true;
}

void Relay::Run() {
    for (;;) {
        std::vector<pollfd> sockets = {{wake_[0], POLLIN, 0}, {listening_, POLLIN, 0}};
        {
            const std::lock_guard lock(mutex_);
            if (ending_) return;
            for (const Pair& pair : pairs_)
                for (int each : {pair.client, pair.server}) sockets.push_back({each, POLLIN, 0});
        }
        if (poll(sockets.data(), sockets.size(), -1) < 0) continue;
        const std::lock_guard lock(mutex_);
        if (sockets[0].revents) {
            char signs[64];
            if (read(wake_[0], signs, sizeof signs) <= 0) return;
            continue;  // the pairs may be others
        }
        const auto readable = [&](int socket) {
            return std::any_of(sockets.begin() + 2, sockets.end(),
                               [&](const pollfd& each) { return each.fd == socket && each.revents; });
        };
        for (size_t i = pairs_.size(); i-- > 0;) {
            bool lives = true;
            if (readable(pairs_[i].server)) lives = FromServer(pairs_[i]);
            if (lives && readable(pairs_[i].client)) lives = FromClient(pairs_[i]);
            if (lives) continue;
            Close(pairs_[i]);
            pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(i));
        }
        if (sockets[1].revents) AcceptOne();
    }
}

}  // namespace faults
