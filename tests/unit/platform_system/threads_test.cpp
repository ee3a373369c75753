#include "platform/system/threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "platform/system/application.h"

using namespace vyn;

namespace {

class Worker : public TThread {
  public:
    explicit Worker(std::function<void(Worker&)> body, bool* freed = nullptr) : body_(std::move(body)), freed_(freed) {}
    ~Worker() override {
        EndExecution();
        if (freed_) *freed_ = true;
    }
    void Return(int value) { ReturnValue = value; }

  protected:
    void Execute() override { body_(*this); }

  private:
    std::function<void(Worker&)> body_;
    bool* freed_;
};

}  // namespace

TEST(Threads, TheTestRunsOnTheMainThread) {
    EXPECT_TRUE(IsMainThread());
    EXPECT_EQ(CurrentThreadId(), MainThreadId());
}

TEST(Threads, ExecuteRunsElsewhereAndWaitForGivesItsValue) {
    uint64_t ranOn = 0;
    Worker worker([&](Worker& self) {
        ranOn = CurrentThreadId();
        self.Return(7);
    });
    EXPECT_FALSE(worker.Started());
    worker.Resume();
    EXPECT_EQ(worker.WaitFor(), 7);
    EXPECT_TRUE(worker.Finished());
    EXPECT_NE(ranOn, MainThreadId());
    Application()->ProcessMessages();
}

TEST(Threads, WaitForRunsSynchronisedCalls) {
    uint64_t ranOn = 0;
    Worker worker([&](Worker&) { TThread::Synchronize([&] { ranOn = CurrentThreadId(); }); });
    worker.Resume();
    worker.WaitFor();
    EXPECT_EQ(ranOn, MainThreadId());
    Application()->ProcessMessages();
}

TEST(Threads, OnTerminateRunsOnTheMainThreadLater) {
    Worker worker([](Worker&) {});
    uint64_t ranOn = 0;
    worker.OnTerminate = [&](TObject* sender) {
        EXPECT_EQ(sender, &worker);
        ranOn = CurrentThreadId();
    };
    worker.Resume();
    worker.WaitFor();
    EXPECT_EQ(ranOn, 0u);
    Application()->ProcessMessages();
    EXPECT_EQ(ranOn, MainThreadId());
}

TEST(Threads, FreeOnTerminateFreesOnTheMainThread) {
    bool freed = false;
    auto* worker = new Worker([](Worker&) {}, &freed);
    worker->FreeOnTerminate = true;
    worker->Resume();
    while (!freed) Application()->HandleMessage();
    EXPECT_TRUE(freed);
}

TEST(Threads, TheDestructorAsksToTerminateAndWaits) {
    bool entered = false;
    bool ended = false;
    {
        Worker worker([&](Worker& self) {
            while (!self.Terminated()) TThread::Synchronize([&] { entered = true; });
            ended = true;
        });
        worker.Resume();
        while (!entered) Application()->HandleMessage();
    }
    EXPECT_TRUE(ended);
    Application()->ProcessMessages();
}

TEST(Threads, AThreadThatNeverRanIsFreedQuietly) {
    bool ran = false;
    {
        Worker worker([&](Worker&) { ran = true; });
    }
    EXPECT_FALSE(ran);
}

TEST(Threads, WhatExecuteThrowsIsKept) {
    Worker worker([](Worker&) { throw EConvertError("in the worker"); });
    worker.Resume();
    worker.WaitFor();
    EXPECT_EQ(worker.FatalException(), "in the worker");
    Application()->ProcessMessages();
}

TEST(Threads, WhatASynchronisedCallThrowsReachesTheWorker) {
    AnsiString caught;
    Worker worker([&](Worker&) {
        try {
            TThread::Synchronize([] { throw EInvalidOperation("on main"); });
        } catch (const EInvalidOperation& error) {
            caught = error.Message();
        }
    });
    worker.Resume();
    worker.WaitFor();
    EXPECT_EQ(caught, "on main");
    Application()->ProcessMessages();
}

TEST(Threads, EachHasANumberOfItsOwn) {
    std::set<uint64_t> numbers{MainThreadId()};
    for (int i = 0; i < 20; ++i) {
        uint64_t ranOn = 0;
        Worker worker([&](Worker&) { ranOn = CurrentThreadId(); });
        worker.Resume();
        worker.WaitFor();
        EXPECT_EQ(worker.ThreadID(), ranOn);
        EXPECT_TRUE(numbers.insert(ranOn).second);
    }
    Application()->ProcessMessages();
}

TEST(Threads, AThreadOfTheSystemThatHasWorkedWorksAgain) {
    constexpr int kMost = 1000;  // the first ones may come before the thread of the one before waits for more
    std::set<std::thread::id> used;
    bool again = false;
    for (int i = 0; i < kMost && !again; ++i) {
        Worker worker([&](Worker&) { again = !used.insert(std::this_thread::get_id()).second; });
        worker.Resume();
        worker.WaitFor();
    }
    EXPECT_TRUE(again);
    Application()->ProcessMessages();
}

TEST(Threads, ManyRunAtOnce) {
    constexpr int kMany = 40;
    EXPECT_EQ(RunningThreads(), 0);
    std::vector<std::unique_ptr<Worker>> workers;
    for (int turn = 0; turn < 2; ++turn) {
        // Each waits for all others.
        std::atomic<int> here{0};
        for (int i = 0; i < kMany; ++i) {
            workers.push_back(std::make_unique<Worker>([&](Worker& self) {
                here.fetch_add(1);
                here.notify_all();
                for (int seen = here; seen < kMany; seen = here) here.wait(seen);
                EXPECT_GT(RunningThreads(), 0);
                self.Return(1);
            }));
            workers.back()->Resume();
        }
        for (const auto& worker : workers) EXPECT_EQ(worker->WaitFor(), 1);
        EXPECT_EQ(RunningThreads(), 0);
        workers.clear();
    }
    Application()->ProcessMessages();
}
