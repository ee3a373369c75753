#include "datasources/search_thread.h"

#include <system_error>
#include <utility>

#include "datasources/data_link.h"
#include "platform/objects/class_info.h"
#include "platform/system/application.h"
#include "platform/system/ticks.h"

namespace vyn {

namespace search_thread_detail {

// How long a worker sleeps when its callback waits for something else than the link's deadline.
constexpr uint32_t kOtherWait = 10;

}  // namespace search_thread_detail

const ClassInfo& TVynBaseComponentThread::StaticClass() {
    static const ClassInfo info = DefineClass<TVynBaseComponentThread, TThread>("TVynBaseComponentThread");
    return info;
}

const ClassInfo& TVynSearchComponentThread::StaticClass() {
    static const ClassInfo info =
        DefineClass<TVynSearchComponentThread, TVynBaseComponentThread>("TVynSearchComponentThread");
    return info;
}

TVynBaseComponentThread::TVynBaseComponentThread(TVynDataLink* link, TVynComponentList* list,
                                                 TVynThreadWaitTime waitTime)
    : link_(link),
      list_(list),
      self_(std::make_shared<TVynBaseComponentThread*>(this)),
      waitTime_(std::move(waitTime)) {
    FreeOnTerminate = true;
    if (list_) list_->searches_.push_back(this);
}

TVynBaseComponentThread::~TVynBaseComponentThread() {
    EndExecution();
    *self_ = nullptr;
    if (!TVynComponentList::IsLive(list_)) return;
    std::erase(list_->searches_, this);
    list_->SearchEnded(this);
}

TVynSearchComponentThread::~TVynSearchComponentThread() { EndExecution(); }

void TVynBaseComponentThread::Terminate() {
    TThread::Terminate();
    pause_.Wake();
}

void TVynBaseComponentThread::Begin() {
    QueueUrgent([self = self_] {
        if (!*self) return;
        TVynBaseComponentThread& search = **self;
        const bool waits = search.LookOrWait();
        if (!waits) Queue([self] { delete *self; });
    });
}

bool TVynBaseComponentThread::LookOrWait() {
    OnMainThread([this] { Look(); });
    if (!wait_ || Terminated()) return false;
    try {
        Resume();
        return true;
    } catch (const std::system_error&) {
        // The system has no thread left to wait on.
        OnMainThread([this] { DoExecute(); });
        return false;
    }
}

void TVynBaseComponentThread::Execute() {
    if (!looked_) OnMainThread([this] { Look(); });
    while (wait_ && !Terminated()) {
        pause_.Until(deadline_);
        if (!Terminated()) OnMainThread([this] { Look(); });
    }
}

void TVynBaseComponentThread::Look() {
    looked_ = true;
    CheckWait();
    if (!wait_ && !Terminated()) DoExecute();
}

void TVynBaseComponentThread::OnMainThread(const std::function<void()>& work) {
    Synchronize([&] {
        struct Inside {
            explicit Inside(bool& flag) : flag_(flag), former_(std::exchange(flag, true)) {}
            ~Inside() { flag_ = former_; }
            bool& flag_;
            const bool former_;
        } const inside(inMainThread_);
        CheckLink();
        work();
    });
}

void TVynBaseComponentThread::CheckLink() {
    if (!TVynComponentList::IsLive(list_)) list_ = nullptr;
    if (!list_ || !list_->RecordOf(link_)) link_ = nullptr;
}

void TVynBaseComponentThread::CheckWait() {
    wait_ = false;
    if (Application()->Terminated() || !link_) Terminate();
    if (Terminated()) return;
    bool terminate = false;
    try {
        waitTime_(this, wait_, terminate);
    } catch (...) {
        wait_ = false;
        Application()->HandleException(nullptr);
    }
    // The callback may have let the link go.
    CheckLink();
    if (terminate || !link_) Terminate();
    if (!wait_ || !link_) return;
    const uint32_t deadline = link_->SearchDeadline();
    deadline_ = static_cast<int32_t>(deadline - TickCount()) > 0 && deadline != 0
                    ? deadline
                    : TickCount() + search_thread_detail::kOtherWait;
}

void TVynSearchComponentThread::DoExecute() {
    Found = false;
    OnMainThread([this] {
        if (!link_ || !list_) return;
        TVynComponent* record = list_->RecordOf(link_);
        if (!record->Component) return;
        SearchName = record->SearchName;
        SearchValue = record->SearchValue;
        Found = list_->Search(link_, FromUser);
    });
}

}  // namespace vyn
