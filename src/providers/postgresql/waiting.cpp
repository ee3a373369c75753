#include <poll.h>
#include <sys/socket.h>

#include <future>
#include <thread>

#include "platform/access/fault.h"
#include "platform/text/exceptions.h"
#include "providers/postgresql/connection.h"

// Asking the server and waiting for its answers, no longer than is allowed.
namespace vyn::postgresql_provider {

using Clock = std::chrono::steady_clock;

namespace waiting_detail {

// What a server may take to break off a statement, and to take the wish to.
constexpr std::chrono::milliseconds kPatience(2000);
constexpr size_t kLongestReason = 256;

int MillisecondsUntil(Clock::time_point end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    return static_cast<int>(std::clamp<int64_t>(left, 0, INT32_MAX));
}

}  // namespace waiting_detail

using namespace waiting_detail;

bool PostgresqlConnection::AskToBreakOff() {
    // It goes over a connection of its own, which a server that is frozen does not take either: so a thread waits.
    PGcancel* cancel = PQgetCancel(handle_.get());
    if (!cancel) return false;
    auto promise = std::make_shared<std::promise<bool>>();
    std::future<bool> taken = promise->get_future();
    std::thread([cancel, promise] {
        char reason[kLongestReason];
        const bool done = PQcancel(cancel, reason, sizeof reason) == 1;
        PQfreeCancel(cancel);
        promise->set_value(done);
    }).detach();
    // One that comes later would hit another statement: then the connection is not used any more.
    return taken.wait_for(kPatience) == std::future_status::ready && taken.get();
}

void PostgresqlConnection::GiveUp() {
    silent_ = true;
    shutdown(PQsocket(handle_.get()), SHUT_RDWR);
    // Now its end is found at once.
    while (!IsBroken() && PQconsumeInput(handle_.get())) {
    }
}

void PostgresqlConnection::Await() {
    PGconn* handle = handle_.get();
    auto end = Clock::now() + std::chrono::seconds(commandTimeout_);
    bool asked = false;
    for (;;) {
        const int unsent = PQflush(handle);
        if (unsent < 0 || !PQisBusy(handle)) return;
        pollfd socket{PQsocket(handle), static_cast<short>(unsent ? POLLIN | POLLOUT : POLLIN), 0};
        const int ready = poll(&socket, 1, commandTimeout_ > 0 ? MillisecondsUntil(end) : -1);
        if (ready < 0 && errno != EINTR) return;
        if (ready > 0) {
            // While something comes it is no silence.
            if (!PQconsumeInput(handle)) return;
            if (!asked) end = Clock::now() + std::chrono::seconds(commandTimeout_);
        } else if (ready == 0 && !asked) {
            asked = true;
            if (!AskToBreakOff()) {
                GiveUp();
                return;
            }
            end = Clock::now() + kPatience;
        } else if (ready == 0) {
            GiveUp();
            return;
        }
    }
}

Result PostgresqlConnection::NextResult() {
    if (PQisBusy(handle_.get())) Await();
    return Result(PQgetResult(handle_.get()));
}

Result PostgresqlConnection::Answer() {
    Result last;
    while (Result result = NextResult()) {
        const ExecStatusType status = PQresultStatus(result.get());
        // Nobody here has data to send, or takes them in that way.
        if (status == PGRES_COPY_IN) PQputCopyEnd(handle_.get(), "copying from and to the client is not supported");
        if (status == PGRES_COPY_OUT) DropCopied();
        if (status == PGRES_COPY_BOTH) GiveUp();
        last = std::move(result);
    }
    return last;
}

Result PostgresqlConnection::Exchange(const std::function<int(PGconn*)>& send) {
    const bool sent = send(handle_.get()) == 1;
    Result last = Answer();
    // What was wrong with sending is known when its answer was asked for.
    return sent ? std::move(last) : Result();
}

void PostgresqlConnection::DropCopied() {
    for (;;) {
        char* data = nullptr;
        const int got = PQgetCopyData(handle_.get(), &data, 1);
        PQfreemem(data);
        if (got < 0) return;
        if (got == 0) {
            pollfd socket{PQsocket(handle_.get()), POLLIN, 0};
            if (poll(&socket, 1, commandTimeout_ > 0 ? commandTimeout_ * 1000 : -1) == 0) GiveUp();
            if (!PQconsumeInput(handle_.get())) return;
        }
    }
}

Result PostgresqlConnection::Exchange(const std::string& sql) {
    return Exchange([&](PGconn* handle) { return PQsendQuery(handle, sql.c_str()); });
}

}  // namespace vyn::postgresql_provider
