#include "platform/system/workers.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace vyn::workers {

namespace {

// How long a thread waits for more work, and how many may wait at once.
constexpr std::chrono::seconds kIdle{10};
constexpr size_t kMostIdle = 8;

struct Worker {
    std::function<void()> work;
    std::condition_variable wanted;
};

struct Pool {
    std::mutex mutex;
    // Those that wait; the last one has worked last.
    std::vector<std::shared_ptr<Worker>> idle;
};

// Never destroyed: a thread may still wait while the process ends.
Pool& ThePool() {
    static Pool* pool = new Pool;
    return *pool;
}

void WorkOn(std::function<void()> work) {
    Pool& pool = ThePool();
    const auto self = std::make_shared<Worker>();
    while (work) {
        work();
        work = nullptr;
        std::unique_lock<std::mutex> lock(pool.mutex);
        if (pool.idle.size() >= kMostIdle) return;
        pool.idle.push_back(self);
        self->wanted.wait_for(lock, kIdle, [&] { return static_cast<bool>(self->work); });
        // Whoever gave it work has taken it from the list.
        std::erase(pool.idle, self);
        work = std::exchange(self->work, nullptr);
    }
}

}  // namespace

void Run(std::function<void()> work) {
    std::shared_ptr<Worker> worker;
    {
        Pool& pool = ThePool();
        const std::lock_guard<std::mutex> lock(pool.mutex);
        if (!pool.idle.empty()) {
            worker = std::move(pool.idle.back());
            pool.idle.pop_back();
            worker->work = std::move(work);
        }
    }
    if (worker)
        worker->wanted.notify_one();
    else
        std::thread(WorkOn, std::move(work)).detach();
}

}  // namespace vyn::workers
