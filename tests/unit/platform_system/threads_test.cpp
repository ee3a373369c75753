#include "platform/system/threads.h"

#include <gtest/gtest.h>

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
