#include "platform/system/threads.h"

#include <exception>

#include "platform/objects/class_info.h"
#include "platform/system/application.h"
#include "platform/system/main_queue.h"
#include "platform/system/workers.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace thread_detail {

std::atomic<uint64_t> lastThread{0};
std::atomic<int> running{0};
// Of the thread that runs; one that works for another TThread gets another.
uint64_t& OwnId() {
    thread_local uint64_t id = ++lastThread;
    return id;
}
const uint64_t mainThread = CurrentThreadId();

// What a worker waits for while the main thread runs its call.
struct Answer {
    std::atomic<int> done{0};
    std::exception_ptr error;  // written before `done`
};

}  // namespace thread_detail

uint64_t CurrentThreadId() { return thread_detail::OwnId(); }

uint64_t MainThreadId() { return thread_detail::mainThread; }
bool IsMainThread() { return CurrentThreadId() == MainThreadId(); }
int RunningThreads() { return thread_detail::running; }

// Lives as long as the thread or its object, whichever goes last.
struct TThread::State {
    std::atomic<bool> terminated{false};
    // Its last call is queued by then, and nothing of the object is touched any more.
    std::atomic<bool> finished{false};
    std::atomic<bool> started{false};
    std::atomic<uint64_t> id{0};
    // The object; null once it has gone. Main thread, and the worker until it is finished.
    TThread* object = nullptr;
    AnsiString fatal;
};

const ClassInfo& TThread::StaticClass() {
    static const ClassInfo info = DefineClass<TThread, TObject>("TThread");
    return info;
}

TThread::TThread() : state_(std::make_shared<State>()) { state_->object = this; }

TThread::~TThread() {
    EndExecution();
    state_->object = nullptr;
}

void TThread::EndExecution() {
    Terminate();
    if (state_->started && state_->id != CurrentThreadId()) AwaitEnd();
}

void TThread::AwaitEnd() {
    if (IsMainThread())
        main_queue::WaitUrgent([this] { return state_->finished.load(); });
    else
        state_->finished.wait(false);
}

void TThread::Resume() {
    if (state_->started.exchange(true)) return;
    ++thread_detail::running;
    try {
        workers::Run([this] { Run(); });
    } catch (...) {
        --thread_detail::running;
        state_->started = false;
        throw;
    }
}

void TThread::Run() {
    const std::shared_ptr<State> state = state_;
    state->id = thread_detail::OwnId() = ++thread_detail::lastThread;
    if (!state->terminated) {
        try {
            Execute();
        } catch (const EAbort&) {
            // A quiet cancel.
        } catch (const Exception& error) {
            state->fatal = error.Message();
        } catch (const std::exception& error) {
            state->fatal = error.what();
        }
    }
    const bool freeIt = FreeOnTerminate;
    --thread_detail::running;
    main_queue::PostLastCall(
        [state, freeIt] {
            TThread* self = state->object;
            if (!self) return;
            self->OnTerminate(self);
            if (freeIt && state->object) delete self;
        },
        state->finished);
}

void TThread::Terminate() { state_->terminated = true; }
bool TThread::Terminated() const { return state_->terminated; }
bool TThread::Finished() const { return state_->finished; }
bool TThread::Started() const { return state_->started; }
uint64_t TThread::ThreadID() const { return state_->id; }
const AnsiString& TThread::FatalException() const { return state_->fatal; }

int TThread::WaitFor() {
    if (!state_->started) return ReturnValue;
    AwaitEnd();
    return ReturnValue;
}

void TThread::Synchronize(const std::function<void()>& method) {
    if (IsMainThread()) {
        method();
        return;
    }
    const auto answer = std::make_shared<thread_detail::Answer>();
    main_queue::PostUrgentCall([answer, &method] {
        try {
            method();
        } catch (...) {
            answer->error = std::current_exception();
        }
        answer->done = 1;
        answer->done.notify_one();
    });
    answer->done.wait(0);
    if (answer->error) std::rethrow_exception(answer->error);
}

void TThread::Queue(std::function<void()> method) { main_queue::PostCall(std::move(method)); }
void TThread::QueueUrgent(std::function<void()> method) { main_queue::PostUrgentCall(std::move(method)); }

bool CheckSynchronize() { return main_queue::RunUrgentCalls(); }

}  // namespace vyn
