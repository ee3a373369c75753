#include "platform/system/main_queue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <unordered_map>

#include "platform/system/application.h"
#include "platform/system/main_loop.h"
#include "platform/system/threads.h"

namespace vyn {

namespace main_queue {

namespace {

struct Entry {
    std::function<void()> call;  // empty: a window message
    HWND handle = 0;
    TMessage message;
};

struct Queue {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Entry> entries;
    std::deque<std::function<void()>> urgent;
    uint64_t notices = 0;
};

// Never destroyed: a worker may still post while the process ends.
Queue& TheQueue() {
    static Queue* queue = new Queue;
    return *queue;
}

MainLoopPort* thePort = nullptr;
std::mutex portMutex;

void WakePort() {
    std::lock_guard<std::mutex> lock(portMutex);
    if (thePort) thePort->Wake();
}

template <class Change>
void Enter(const Change& change) {
    {
        std::lock_guard<std::mutex> lock(TheQueue().mutex);
        change(TheQueue());
        ++TheQueue().notices;
    }
    TheQueue().changed.notify_all();
    WakePort();
}

}  // namespace

void PostCall(std::function<void()> call) {
    Enter([&](Queue& queue) { queue.entries.push_back({std::move(call), 0, {}}); });
}

void PostLastCall(std::function<void()> call, std::atomic<bool>& done) {
    Enter([&](Queue& queue) {
        queue.entries.push_back({std::move(call), 0, {}});
        done = true;
    });
    done.notify_all();
}

void PostUrgentCall(std::function<void()> call) {
    Enter([&](Queue& queue) { queue.urgent.push_back(std::move(call)); });
}

void PostWindowMessage(HWND handle, uint32_t message, intptr_t wParam, intptr_t lParam) {
    Enter([&](Queue& queue) { queue.entries.push_back({nullptr, handle, {message, wParam, lParam, 0}}); });
}

bool RunUrgentCalls() {
    for (bool any = false;; any = true) {
        std::function<void()> call;
        {
            std::lock_guard<std::mutex> lock(TheQueue().mutex);
            if (TheQueue().urgent.empty()) return any;
            call = std::move(TheQueue().urgent.front());
            TheQueue().urgent.pop_front();
        }
        call();
    }
}

Taken RunNext() {
    const bool urgent = RunUrgentCalls();
    Entry entry;
    {
        std::lock_guard<std::mutex> lock(TheQueue().mutex);
        if (TheQueue().entries.empty()) return urgent ? Taken::Call : Taken::Nothing;
        entry = std::move(TheQueue().entries.front());
        TheQueue().entries.pop_front();
    }
    if (entry.call) {
        entry.call();
        return Taken::Call;
    }
    bool handled = false;
    if (Application()->OnMessage) Application()->OnMessage(entry.handle, entry.message, handled);
    if (!handled) SendMessage(entry.handle, entry.message.Msg, entry.message.WParam, entry.message.LParam);
    return Taken::Message;
}

size_t Count() {
    std::lock_guard<std::mutex> lock(TheQueue().mutex);
    return TheQueue().entries.size() + TheQueue().urgent.size();
}

void Wait(int64_t milliseconds) {
    Queue& queue = TheQueue();
    std::unique_lock<std::mutex> lock(queue.mutex);
    const uint64_t seen = queue.notices;
    const auto ready = [&] { return !queue.entries.empty() || !queue.urgent.empty() || queue.notices != seen; };
    if (milliseconds < 0)
        queue.changed.wait(lock, ready);
    else
        queue.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), ready);
}

void WaitUrgent(const std::function<bool()>& done) {
    Queue& queue = TheQueue();
    for (;;) {
        RunUrgentCalls();
        std::unique_lock<std::mutex> lock(queue.mutex);
        queue.changed.wait(lock, [&] { return !queue.urgent.empty() || done(); });
        if (queue.urgent.empty()) return;
    }
}

void Notify() {
    Enter([](Queue&) {});
}

}  // namespace main_queue

void SetMainLoopPort(MainLoopPort* port) {
    std::lock_guard<std::mutex> lock(main_queue::portMutex);
    main_queue::thePort = port;
}

MainLoopPort* GetMainLoopPort() {
    std::lock_guard<std::mutex> lock(main_queue::portMutex);
    return main_queue::thePort;
}

}  // namespace vyn
