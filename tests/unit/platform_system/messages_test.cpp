#include "platform/system/messages.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/system/application.h"
#include "platform/system/threads.h"
#include "platform/system/ticks.h"

using namespace vyn;

TEST(Messages, SendMessageCallsTheProcedureAtOnce) {
    WindowHandle window([](TMessage& m) { m.Result = m.WParam + m.LParam + static_cast<intptr_t>(m.Msg); });
    EXPECT_EQ(SendMessage(window.Handle(), 100, 20, 3), 123);
}

TEST(Messages, ADeadHandleGivesZeroAndTakesNoPost) {
    HWND gone = 0;
    {
        WindowHandle window([](TMessage& m) { m.Result = 1; });
        gone = window.Handle();
        EXPECT_TRUE(IsWindow(gone));
    }
    EXPECT_FALSE(IsWindow(gone));
    EXPECT_EQ(SendMessage(gone, 1, 0, 0), 0);
    EXPECT_FALSE(PostMessage(gone, 1, 0, 0));
    EXPECT_FALSE(PostMessage(0, 1, 0, 0));
}

TEST(Messages, NumbersAreNeverReused) {
    const HWND first = AllocateHWnd([](TMessage&) {});
    DeallocateHWnd(first);
    const HWND second = AllocateHWnd([](TMessage&) {});
    EXPECT_NE(first, second);
    DeallocateHWnd(second);
}

TEST(Messages, PostedMessagesArriveInOrderAtProcessMessages) {
    std::vector<intptr_t> seen;
    WindowHandle window([&](TMessage& m) { seen.push_back(m.WParam); });
    for (intptr_t i = 1; i <= 3; ++i) EXPECT_TRUE(PostMessage(window.Handle(), WM_USER, i, 0));
    EXPECT_TRUE(seen.empty());
    Application()->ProcessMessages();
    EXPECT_EQ(seen, (std::vector<intptr_t>{1, 2, 3}));
}

TEST(Messages, AMessagePostedToAWindowThatGoesIsDropped) {
    bool called = false;
    const HWND window = AllocateHWnd([&](TMessage&) { called = true; });
    EXPECT_TRUE(PostMessage(window, WM_USER, 0, 0));
    DeallocateHWnd(window);
    Application()->ProcessMessages();
    EXPECT_FALSE(called);
}

TEST(Messages, AProcedureMayFreeItsOwnWindow) {
    HWND window = 0;
    int calls = 0;
    window = AllocateHWnd([&](TMessage& m) {
        DeallocateHWnd(window);
        m.Result = ++calls;
    });
    EXPECT_EQ(SendMessage(window, 1, 0, 0), 1);
    EXPECT_EQ(SendMessage(window, 1, 0, 0), 0);
}

TEST(Messages, AWorkersSendWaitsForTheMainThread) {
    uint64_t ranOn = 0;
    WindowHandle window([&](TMessage& m) {
        ranOn = CurrentThreadId();
        m.Result = m.WParam * 2;
    });
    std::atomic<intptr_t> answer{0};
    std::thread worker([&] {
        answer = SendMessage(window.Handle(), WM_USER, 21, 0);
        TThread::Queue([] {});  // wakes the loop below
    });
    while (answer == 0) Application()->HandleMessage();
    worker.join();
    EXPECT_EQ(answer, 42);
    EXPECT_EQ(ranOn, MainThreadId());
}

TEST(Messages, AThrowingProcedureReachesTheSender) {
    WindowHandle window([](TMessage&) { throw EInvalidOperation("no"); });
    EXPECT_THROW(SendMessage(window.Handle(), 1, 0, 0), EInvalidOperation);
}

TEST(Messages, AThrowingPostedMessageGoesToTheApplication) {
    AnsiString text;
    Application()->OnException = [&](TObject*, const Exception& e) { text = e.Message(); };
    bool second = false;
    WindowHandle window([&](TMessage& m) {
        if (m.WParam == 1) throw EInvalidOperation("posted");
        second = true;
    });
    PostMessage(window.Handle(), 1, 1, 0);
    PostMessage(window.Handle(), 1, 2, 0);
    Application()->ProcessMessages();
    Application()->OnException.Clear();
    EXPECT_EQ(text, "posted");
    EXPECT_TRUE(second);
}

TEST(Messages, OnMessageMayKeepAMessageFromItsWindow) {
    bool called = false;
    WindowHandle window([&](TMessage&) { called = true; });
    Application()->OnMessage = [](HWND, TMessage&, bool& handled) { handled = true; };
    PostMessage(window.Handle(), 1, 0, 0);
    Application()->ProcessMessages();
    Application()->OnMessage.Clear();
    EXPECT_FALSE(called);
}
