#include "platform/system/application.h"

#include <gtest/gtest.h>

#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"

using namespace vyn;

TEST(Application, SendAppMessageStopsAtTheFirstHookThatAnswers) {
    std::vector<int> called;
    const int first = Application()->HookMainWindow([&](TMessage&) {
        called.push_back(1);
        return false;
    });
    const int second = Application()->HookMainWindow([&](TMessage& m) {
        called.push_back(2);
        m.Result = 61440;
        return true;
    });
    const int third = Application()->HookMainWindow([&](TMessage&) {
        called.push_back(3);
        return true;
    });
    EXPECT_EQ(SendAppMessage(1538, 0, 0), 61440);
    EXPECT_EQ(called, (std::vector<int>{1, 2}));
    for (const int hook : {first, second, third}) Application()->UnhookMainWindow(hook);
    EXPECT_EQ(SendAppMessage(1538, 0, 0), 0);
}

TEST(Application, AHookMayUnhookItself) {
    int calls = 0;
    int number = 0;
    number = Application()->HookMainWindow([&](TMessage&) {
        ++calls;
        Application()->UnhookMainWindow(number);
        return false;
    });
    SendAppMessage(1, 0, 0);
    SendAppMessage(1, 0, 0);
    EXPECT_EQ(calls, 1);
}

TEST(Application, HandleExceptionPassesOverAQuietCancel) {
    int handled = 0;
    Application()->OnException = [&](TObject*, const Exception&) { ++handled; };
    try {
        Abort();
    } catch (...) {
        Application()->HandleException(nullptr);
    }
    EXPECT_EQ(handled, 0);
    try {
        throw EConvertError("bad");
    } catch (...) {
        Application()->HandleException(nullptr);
    }
    EXPECT_EQ(handled, 1);
    Application()->OnException.Clear();
}

TEST(Application, AnUnheardErrorIsShownAsASentence) {
    MessageDialogRequest seen;
    SetMessageDialogPort([&](const MessageDialogRequest& request) {
        seen = request;
        return mrOk;
    });
    try {
        throw EConvertError("'x' is not a valid number");
    } catch (...) {
        Application()->HandleException(nullptr);
    }
    SetMessageDialogPort(nullptr);
    EXPECT_EQ(seen.Text, "'x' is not a valid number.");
    EXPECT_EQ(seen.Type, mtError);
    EXPECT_EQ(seen.Buttons, TMsgDlgButtons({mbOK}));
}

TEST(Application, AMessageBoxAsksForTheButtonsOfItsFlags) {
    TMsgDlgButtons buttons;
    SetMessageDialogPort([&](const MessageDialogRequest& request) {
        buttons = request.Buttons;
        return mrNo;
    });
    EXPECT_EQ(Application()->MessageBox("Save?", "vyn", MB_YESNOCANCEL | MB_ICONQUESTION), ID_NO);
    SetMessageDialogPort(nullptr);
    EXPECT_EQ(buttons, TMsgDlgButtons({mbYes, mbNo, mbCancel}));
}

TEST(Application, WithoutAUserTheAnswerIsTheOneThatChangesLeast) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageDlg("Delete?", mtConfirmation, {mbYes, mbNo}), mrNo);
    EXPECT_EQ(MessageDlg("Delete?", mtConfirmation, {mbYes, mbNo, mbCancel}), mrCancel);
    ShowMessage("Done");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Delete?\nDelete?\nDone\n");
}

TEST(Application, RunLoopsUntilTerminate) {
    int turns = 0;
    WindowHandle window([&](TMessage& m) {
        ++turns;
        if (m.WParam > 0)
            PostMessage(window.Handle(), WM_USER, m.WParam - 1, 0);
        else
            Application()->Terminate();
    });
    PostMessage(window.Handle(), WM_USER, 3, 0);
    Application()->Run();
    EXPECT_TRUE(Application()->Terminated());
    Application()->Restart();
    EXPECT_EQ(turns, 4);
}

TEST(Application, IdleIsToldWhenNothingWaits) {
    int idle = 0;
    Application()->OnIdle = [&](TObject*, bool& done) {
        ++idle;
        done = false;
    };
    Application()->HandleMessage();
    EXPECT_EQ(idle, 1);
    Application()->OnIdle.Clear();
}

TEST(Application, AMainFormThatGoesIsForgotten) {
    auto* form = new TComponent(nullptr);
    Application()->SetMainForm(form);
    EXPECT_EQ(Application()->MainForm(), form);
    delete form;
    EXPECT_EQ(Application()->MainForm(), nullptr);
}

TEST(Application, KnowsItsOwnFile) {
    EXPECT_NE(Application()->ExeName().find("test_platform_system"), AnsiString::npos);
}

namespace {

class CountingPort : public MainLoopPort {
  public:
    CountingPort() { SetMainLoopPort(this); }
    ~CountingPort() override { SetMainLoopPort(nullptr); }
    void Wake() override { ++wakes; }
    void Run() override { ++runs; }
    void Quit() override { ++quits; }
    void ProcessEvents() override { ++processed; }
    void WaitForEvents() override { ++waited; }
    void ScheduleTimer(uint32_t milliseconds) override { scheduled = milliseconds; }
    int wakes = 0, runs = 0, quits = 0, processed = 0, waited = 0;
    uint32_t scheduled = 0;
};

}  // namespace

TEST(Application, APortIsWokenByPostsAndRunsTheLoop) {
    CountingPort port;
    int seen = 0;
    WindowHandle window([&](TMessage&) { ++seen; });
    PostMessage(window.Handle(), WM_USER, 0, 0);
    EXPECT_EQ(port.wakes, 1);
    EXPECT_TRUE(Application()->DispatchPending());
    EXPECT_EQ(seen, 1);
    Application()->HandleMessage();
    EXPECT_EQ(port.waited, 1);
    Application()->ProcessMessages();
    EXPECT_EQ(port.processed, 1);
    Application()->Run();
    EXPECT_EQ(port.runs, 1);
    Application()->Terminate();
    EXPECT_EQ(port.quits, 1);
    Application()->Restart();
}

TEST(Application, APortHearsWhenTheNextTimerIsDue) {
    ManualTickClock clock;
    CountingPort port;
    const TimerId timer = StartTimer(250, [] {});
    EXPECT_EQ(port.scheduled, 250u);
    clock.Advance(100);
    const TimerId sooner = StartTimer(50, [] {});
    EXPECT_EQ(port.scheduled, 50u);
    StopTimer(sooner);
    EXPECT_EQ(port.scheduled, 150u);
    StopTimer(timer);
    EXPECT_EQ(port.scheduled, MainLoopPort::NoTimer);
}
