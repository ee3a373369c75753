#include "platform/system/application.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "platform/system/main_queue.h"
#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace application_detail {

TApplication* theApplication = nullptr;
constexpr size_t kLongestPath = 4096;
// How long a turn of the loop lasts at most while a test's clock stands in for the machine's.
constexpr int64_t kShortWait = 1;

AnsiString ProgramFile() {
    char path[kLongestPath];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? Utf8ToAnsiLossy(std::string_view(path, static_cast<size_t>(length))) : AnsiString();
}

}  // namespace application_detail

TApplication* Application() {
    if (!application_detail::theApplication) InitializeApplication();
    return application_detail::theApplication;
}

void InitializeApplication() {
    if (!application_detail::theApplication) application_detail::theApplication = new TApplication(nullptr);
}

void FinalizeApplication() {
    // What the application owns may still ask for it while it goes.
    delete application_detail::theApplication;
    application_detail::theApplication = nullptr;
}

const ClassInfo& TApplication::StaticClass() {
    static const ClassInfo info = DefineClass<TApplication, TComponent>("TApplication");
    return info;
}

TApplication::TApplication(TComponent* owner) : TComponent(owner) {}

TApplication::~TApplication() {
    BeginDestruction();
    DestroyComponents();
    if (handle_ != 0) DeallocateHWnd(handle_);
}

const AnsiString& TApplication::ExeName() const {
    if (exeName_.empty()) exeName_ = application_detail::ProgramFile();
    return exeName_;
}

void TApplication::SetMainForm(TComponent* form) {
    mainForm_ = form;
    if (form) form->FreeNotification(this);
}

void TApplication::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == mainForm_) mainForm_ = nullptr;
}

bool TApplication::DispatchPending() {
    bool any = false;
    // What is posted while the queue is emptied waits for the next turn: a procedure that posts to itself must not
    // hold the loop for ever.
    for (size_t left = main_queue::Count(); left > 0; --left) {
        try {
            if (main_queue::RunNext() == main_queue::Taken::Nothing) break;
            any = true;
        } catch (...) {
            any = true;
            HandleException(this);
        }
    }
    return tick_timers::RunDue() || any;
}

void TApplication::ProcessMessages() {
    if (MainLoopPort* port = GetMainLoopPort()) port->ProcessEvents();
    // Messages that answer messages belong to what waits; the bound is for a window that posts to itself for ever.
    constexpr int kMostTurns = 1000;
    for (int turn = 0; turn < kMostTurns && DispatchPending(); ++turn) {
        if (main_queue::Count() == 0) break;
    }
}

void TApplication::HandleMessage() {
    if (DispatchPending()) return;
    Idle();
}

void TApplication::Idle() {
    bool done = true;
    try {
        OnIdle(this, done);
    } catch (...) {
        HandleException(this);
    }
    if (MainLoopPort* port = GetMainLoopPort()) {
        if (done && !terminated_)
            port->WaitForEvents();
        else
            port->ProcessEvents();
        return;
    }
    if (done && !terminated_) WaitForQueue();
}

void TApplication::WaitForQueue() {
    if (main_queue::Count() > 0) return;
    main_queue::Wait(tick_timers::ClockIsReplaced() ? application_detail::kShortWait : tick_timers::UntilNext());
}

void TApplication::HandleQueue() {
    if (!DispatchPending()) WaitForQueue();
}

void TApplication::Run() {
    if (MainLoopPort* port = GetMainLoopPort()) {
        if (!terminated_) port->Run();
        return;
    }
    while (!terminated_) HandleMessage();
}

void TApplication::Terminate() {
    terminated_ = true;
    if (MainLoopPort* port = GetMainLoopPort()) port->Quit();
    main_queue::Notify();
}

void TApplication::HandleException(TObject* sender) {
    try {
        throw;
    } catch (const EAbort&) {
        return;
    } catch (const Exception& error) {
        try {
            if (OnException)
                OnException(sender, error);
            else
                ShowException(error);
        } catch (const std::exception& again) {
            std::fprintf(stderr, "%s\n", again.what());
        }
    } catch (const std::exception& error) {
        const EExternalException external(error.what());
        try {
            if (OnException)
                OnException(sender, external);
            else
                ShowException(external);
        } catch (const std::exception& again) {
            std::fprintf(stderr, "%s\n", again.what());
        }
    }
}

void TApplication::ShowException(const Exception& error) {
    AnsiString text = error.Message();
    if (!text.empty() && text.back() != '.' && text.back() != '!' && text.back() != '?') text += '.';
    MessageBox(text, Title, MB_OK | MB_ICONERROR);
}

int TApplication::HookMainWindow(MessageHook hook) {
    hooks_.push_back({++lastHook_, std::move(hook)});
    return lastHook_;
}

void TApplication::UnhookMainWindow(int hook) {
    std::erase_if(hooks_, [hook](const Hook& each) { return each.number == hook; });
}

bool TApplication::CallHooks(TMessage& message) {
    const std::vector<Hook> hooks = hooks_;  // a hook may unhook
    for (const Hook& hook : hooks) {
        const bool still =
            std::any_of(hooks_.begin(), hooks_.end(), [&](const Hook& each) { return each.number == hook.number; });
        if (still && hook.call(message)) return true;
    }
    return false;
}

intptr_t TApplication::SendAppMessage(uint32_t message, intptr_t wParam, intptr_t lParam) {
    TMessage record{message, wParam, lParam, 0};
    CallHooks(record);
    return record.Result;
}

HWND TApplication::Handle() {
    if (handle_ == 0) handle_ = AllocateHWnd([this](TMessage& message) { CallHooks(message); });
    return handle_;
}

void TApplication::SetHint(const AnsiString& hint) {
    if (hint_ == hint) return;
    hint_ = hint;
    OnHint(this);
}

int TApplication::MessageBox(const AnsiString& text, const AnsiString& caption, unsigned flags) {
    constexpr unsigned kButtons = 0x0F;
    constexpr unsigned kIcon = 0xF0;
    MessageDialogRequest request;
    request.Text = text;
    request.Caption = caption;
    switch (flags & kButtons) {
        case MB_OKCANCEL:
            request.Buttons = {mbOK, mbCancel};
            break;
        case MB_ABORTRETRYIGNORE:
            request.Buttons = {mbAbort, mbRetry, mbIgnore};
            break;
        case MB_YESNOCANCEL:
            request.Buttons = {mbYes, mbNo, mbCancel};
            break;
        case MB_YESNO:
            request.Buttons = {mbYes, mbNo};
            break;
        case MB_RETRYCANCEL:
            request.Buttons = {mbRetry, mbCancel};
            break;
        default:
            request.Buttons = {mbOK};
            break;
    }
    switch (flags & kIcon) {
        case MB_ICONERROR:
            request.Type = mtError;
            break;
        case MB_ICONQUESTION:
            request.Type = mtConfirmation;
            break;
        case MB_ICONWARNING:
            request.Type = mtWarning;
            break;
        case MB_ICONINFORMATION:
            request.Type = mtInformation;
            break;
        default:
            request.Type = mtCustom;
            break;
    }
    return ShowMessageDialog(request);  // the modal results of these buttons are their numbers
}

}  // namespace vyn
