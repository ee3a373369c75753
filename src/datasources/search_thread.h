#pragma once

#include <functional>
#include <memory>

#include "datasources/component_list.h"
#include "platform/system/threads.h"
#include "platform/system/tick_wait.h"

namespace vyn {

// Whether a search waits on: Wait comes false. TerminateThread ends it without a search. What it raises is told, and
// ends the wait. Main thread.
using TVynThreadWaitTime = Event<void(TThread* Thread, bool& Wait, bool& TerminateThread)>;

// A worker that waits for a pause in typing and then hands its work to the main thread. It looks at its deadline on the
// main thread, and sleeps until that moment in between: a deadline that moves away wakes nobody, one that comes nearer
// wakes it at once. The link and the list may go while it waits; it ends then without having worked. Frees itself when
// it has ended.
class TVynBaseComponentThread : public TThread {
    VYN_OBJECT
  public:
    TVynBaseComponentThread(TVynDataLink* link, TVynComponentList* list, TVynThreadWaitTime waitTime);
    ~TVynBaseComponentThread() override;

    AnsiString SearchName;
    Variant SearchValue;

    // Looks for the first time, from the main thread's queue: what has nothing to wait for is done there and then, and
    // no thread of the system is needed. Else Resume. Main thread; not for one that was resumed.
    void Begin();
    void Terminate() override;
    // The main thread is inside this thread's work: whoever frees it then must let it end by itself.
    bool InMainThread() const { return inMainThread_; }
    // Looks at the deadline again.
    void Wake() { pause_.Wake(); }

  protected:
    void Execute() override;
    // On the main thread, when the wait is over.
    virtual void DoExecute() {}
    // Runs on the main thread, with what may have gone forgotten.
    void OnMainThread(const std::function<void()>& work);

    // Main thread only; null once they have gone.
    TVynDataLink* link_;
    TVynComponentList* list_;

  private:
    friend class TVynComponentList;
    void CheckLink();
    void CheckWait();
    // One look, and the work when nothing is waited for.
    void Look();
    // The first look; true when a thread waits on.
    bool LookOrWait();

    // Null once this has gone.
    const std::shared_ptr<TVynBaseComponentThread*> self_;
    TVynThreadWaitTime waitTime_;
    TickWait pause_;
    uint32_t deadline_ = 0;      // written on the main thread while the worker waits for it
    bool wait_ = false;          // likewise
    bool looked_ = false;        // likewise
    bool inMainThread_ = false;  // main thread only
};

class TVynSearchComponentThread : public TVynBaseComponentThread {
    VYN_OBJECT
  public:
    using TVynBaseComponentThread::TVynBaseComponentThread;
    ~TVynSearchComponentThread() override;

    bool Found = false;
    bool FromUser = false;

  protected:
    void DoExecute() override;
};

}  // namespace vyn
