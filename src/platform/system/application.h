#pragma once

#include <functional>
#include <vector>

#include "platform/objects/component.h"
#include "platform/system/main_loop.h"
#include "platform/system/messages.h"
#include "platform/text/exceptions.h"

namespace vyn {

// The running program: its main loop, its hooks, what happens to errors that nobody caught. One object a process.
//
// Main thread only, but for what is said otherwise.
class TApplication : public TComponent {
    VYN_OBJECT
  public:
    explicit TApplication(TComponent* owner);
    ~TApplication() override;

    // The loop.
    // Handles everything that waits: native events, posted messages, synchronised calls, due timers.
    void ProcessMessages();
    // Handles what waits or, when nothing does, tells OnIdle and waits for something.
    void HandleMessage();
    // The same for the queue and timers alone: what the user types and clicks stays where it is. For those who wait in
    // the middle of an operation for something that the queue brings.
    void HandleQueue();
    // Loops until Terminate.
    void Run();
    // Ends Run, and every modal loop, at the next turn.
    void Terminate();
    bool Terminated() const { return terminated_; }
    // For the main loop port: the queue as it stands and due timers, without native events. True when there was any.
    bool DispatchPending();
    // Takes back Terminate, for programs that run several times (tests).
    void Restart() { terminated_ = false; }

    // Identity.
    AnsiString Title;
    // The program's file, with its path.
    const AnsiString& ExeName() const;
    // Replaces what the system says, for programs that are hosted.
    void SetExeName(const AnsiString& fileName) { exeName_ = fileName; }
    TComponent* MainForm() const { return mainForm_; }
    void SetMainForm(TComponent* form);
    AnsiString HelpFile;
    bool ShowHint = true;
    // Milliseconds before a hint shows, and for which it stays.
    int HintPause = 500;
    int HintHidePause = 2500;

    // Errors. HandleException is called inside a catch block: EAbort is passed over in silence, any other goes to
    // OnException or, when nobody listens, to ShowException. Never throws.
    void HandleException(TObject* sender);
    void ShowException(const Exception& error);
    Event<void(TObject* Sender, const Exception& E)> OnException;

    // Messages to the program itself. A hook that says true has answered: its Result is the message's.
    using MessageHook = std::function<bool(TMessage&)>;
    // The number unhooks it again.
    int HookMainWindow(MessageHook hook);
    void UnhookMainWindow(int hook);
    intptr_t SendAppMessage(uint32_t message, intptr_t wParam, intptr_t lParam);
    // The program's own window; messages to it go to the hooks.
    HWND Handle();
    // Sees each posted message before its window does; Handled = true keeps it from it.
    Event<void(HWND Window, TMessage& Msg, bool& Handled)> OnMessage;

    // Nothing waits. Done = true (as it comes) waits for the next event, false asks for another turn.
    Event<void(TObject* Sender, bool& Done)> OnIdle;
    TNotifyEvent OnActivate;
    TNotifyEvent OnDeactivate;
    TNotifyEvent OnMinimize;
    TNotifyEvent OnRestore;
    TNotifyEvent OnHint;
    // The hint under the mouse; setting another fires OnHint.
    const AnsiString& Hint() const { return hint_; }
    void SetHint(const AnsiString& hint);

    // A message box through the port (message_dialogs.h); gives the number of the chosen button (ID_OK...).
    int MessageBox(const AnsiString& text, const AnsiString& caption, unsigned flags);

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    struct Hook {
        int number;
        MessageHook call;
    };
    void Idle();
    void WaitForQueue();
    bool CallHooks(TMessage& message);

    bool terminated_ = false;
    mutable AnsiString exeName_;
    AnsiString hint_;
    TComponent* mainForm_ = nullptr;
    std::vector<Hook> hooks_;
    int lastHook_ = 0;
    HWND handle_ = 0;
};

// The one application, made when it is first asked for.
TApplication* Application();
// Makes it (again, after FinalizeApplication), and frees it with everything that it owns.
void InitializeApplication();
void FinalizeApplication();

inline intptr_t SendAppMessage(uint32_t message, intptr_t wParam, intptr_t lParam) {
    return Application()->SendAppMessage(message, wParam, lParam);
}

}  // namespace vyn
