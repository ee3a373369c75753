#include "platform/system/threads.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "platform/objects/class_info.h"
#include "platform/system/application.h"
#include "platform/system/main_queue.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace thread_detail {

std::atomic<uint64_t> lastThread{0};
const uint64_t mainThread = CurrentThreadId();

// What a worker waits for while the main thread runs its call.
struct Answer {
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
    std::exception_ptr error;
};

}  // namespace thread_detail

uint64_t CurrentThreadId() {
    thread_local const uint64_t id = ++thread_detail::lastThread;
    return id;
}

uint64_t MainThreadId() { return thread_detail::mainThread; }
bool IsMainThread() { return CurrentThreadId() == MainThreadId(); }

// Lives as long as the thread or its object, whichever goes last.
struct TThread::State {
    std::thread thread;
    std::atomic<bool> terminated{false};
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
    if (!state_->thread.joinable()) return;
    if (state_->thread.get_id() == std::this_thread::get_id()) {
        state_->thread.detach();
        return;
    }
    if (IsMainThread()) main_queue::WaitUrgent([this] { return state_->finished.load(); });
    state_->thread.join();
}

void TThread::Resume() {
    if (state_->started.exchange(true)) return;
    state_->thread = std::thread([this] { Run(); });
}

void TThread::Run() {
    const std::shared_ptr<State> state = state_;
    state->id = CurrentThreadId();
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
    main_queue::PostCall([state, freeIt] {
        TThread* self = state->object;
        if (!self) return;
        self->OnTerminate(self);
        if (freeIt && state->object) delete self;
    });
    state->finished = true;
    main_queue::Notify();
}

void TThread::Terminate() { state_->terminated = true; }
bool TThread::Terminated() const { return state_->terminated; }
bool TThread::Finished() const { return state_->finished; }
bool TThread::Started() const { return state_->started; }
uint64_t TThread::ThreadID() const { return state_->id; }
const AnsiString& TThread::FatalException() const { return state_->fatal; }

int TThread::WaitFor() {
    if (!state_->started) return ReturnValue;
    if (IsMainThread()) main_queue::WaitUrgent([this] { return state_->finished.load(); });
    if (state_->thread.joinable()) state_->thread.join();
    return ReturnValue;
}

void TThread::Synchronize(const std::function<void()>& method) {
    if (IsMainThread()) {
        method();
        return;
    }
    const auto answer = std::make_shared<thread_detail::Answer>();
    main_queue::PostUrgentCall([answer, &method] {
        std::exception_ptr error;
        try {
            method();
        } catch (...) {
            error = std::current_exception();
        }
        std::lock_guard<std::mutex> lock(answer->mutex);
        answer->error = error;
        answer->done = true;
        answer->changed.notify_all();
    });
    std::unique_lock<std::mutex> lock(answer->mutex);
    answer->changed.wait(lock, [&] { return answer->done; });
    if (answer->error) std::rethrow_exception(answer->error);
}

void TThread::Queue(std::function<void()> method) { main_queue::PostCall(std::move(method)); }

bool CheckSynchronize() { return main_queue::RunUrgentCalls(); }

}  // namespace vyn
