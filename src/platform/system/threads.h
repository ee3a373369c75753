#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/objects/event.h"
#include "platform/objects/object.h"

namespace vyn {

// A number for each thread of the process, and for each TThread that has run; never 0.
uint64_t CurrentThreadId();
// The thread that loaded the system; everything but the bodies of worker threads runs there.
uint64_t MainThreadId();
bool IsMainThread();
// How many TThreads run: resumed, and not yet at their end.
int RunningThreads();

// A worker. Made on the main thread, standing; Resume starts Execute on a thread of its own:
// one of the system's that has just ended its work for another, or a new one.
//
// When Execute has returned (or thrown: FatalException tells), OnTerminate runs on the main thread, and a thread with
// FreeOnTerminate is freed there. A thread without it belongs to whoever made it. The destructor asks it to
// terminate and waits; a class whose Execute touches its own members calls EndExecution() first in its destructor,
// because those members go before this class's destructor runs.
class TThread : public TObject {
    VYN_OBJECT
  public:
    TThread();
    ~TThread() override;

    void Resume();
    // Asks Execute to return; Execute looks at Terminated().
    virtual void Terminate();
    bool Terminated() const;
    // Execute has returned (or never will run).
    bool Finished() const;
    bool Started() const;
    // Waits for the end and gives ReturnValue. On the main thread, calls that workers synchronise run meanwhile.
    // Not for threads with FreeOnTerminate.
    int WaitFor();
    uint64_t ThreadID() const;

    bool FreeOnTerminate = false;
    // Kept for those who set it; the system's scheduler decides.
    int Priority = 0;
    // Runs on the main thread when Execute is done.
    TNotifyEvent OnTerminate;
    // The message of what Execute threw; empty when it returned.
    const AnsiString& FatalException() const;

    // Runs `method` on the main thread and waits for it; on the main thread at once. What it throws reaches the caller.
    static void Synchronize(const std::function<void()>& method);
    // Queues `method` for the main thread without waiting.
    static void Queue(std::function<void()> method);
    // The same, before all that waits there.
    static void QueueUrgent(std::function<void()> method);

  protected:
    virtual void Execute() = 0;
    // Terminate and wait, for destructors of descendants.
    void EndExecution();
    int ReturnValue = 0;

  private:
    struct State;
    void Run();
    void AwaitEnd();
    std::shared_ptr<State> state_;
};

// Runs the calls that workers have synchronised and wait for; true when there was one. Main thread.
bool CheckSynchronize();

}  // namespace vyn
