#include "datasources/component_list.h"

#include <algorithm>
#include <utility>

#include "datasources/Uvyndatasources.h"
#include "datasources/search_thread.h"
#include "platform/controls/screen.h"
#include "platform/controls/win_control.h"
#include "platform/objects/component_handle.h"
#include "platform/system/application.h"
#include "platform/system/message_dialogs.h"
#include "platform/text/compare.h"

namespace vyn {

namespace component_list_detail {

// The lists of the process that live; there from the package's start, or from the first list on.
std::vector<const TVynComponentList*>& LiveLists() {
    static std::vector<const TVynComponentList*> lists;
    return lists;
}

// A lookup failed and that was told, and none has gone well since.
bool& OutageTold() {
    static bool told = false;
    return told;
}

void ShowError(const char* where, const std::exception& error) {
    Application()->MessageBox(AnsiString(where) + error.what(), "ERROR", MB_OK);
}

// How many questions to components are open, and the components (by number) that are to go when the last is answered:
// one must not go while its own message handler, which may be a modal search, still stands on the stack.
struct OpenQuestions {
    int Count = 0;
    std::vector<int> ToFree;
};
OpenQuestions& Questions() {
    static OpenQuestions questions;
    return questions;
}

void QuestionAnswered() {
    if (--Questions().Count > 0) return;
    for (const int handle : std::exchange(Questions().ToFree, {})) delete ComponentFromHandle(handle);
}

// Of what is being caught; none for a quiet cancel.
AnsiString CurrentMessage() {
    try {
        throw;
    } catch (const EAbort&) {
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

// Another cursor for as long as it lives.
class WaitCursor {
  public:
    WaitCursor() : former_(Screen()->Cursor()) {}
    ~WaitCursor() { Screen()->SetCursor(former_); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    void Show() { Screen()->SetCursor(crSQLWait); }

  private:
    TCursor former_;
};

// Both null, or neither and of the same text. A value that was never given is like nothing.
bool SameValue(const Variant& a, const Variant& b) {
    if (a.IsEmpty() || a.IsNull() != b.IsNull()) return false;
    return VarToStr(a) == VarToStr(b);
}

}  // namespace component_list_detail

using namespace component_list_detail;

bool TVynComponentKey::Same(const TVynComponentKey& other) const {
    return NChild == other.NChild && Type == other.Type && AnsiSameText(FieldName, other.FieldName) &&
           AnsiSameText(ChildDataKey, other.ChildDataKey) && AnsiSameText(ChildClassName, other.ChildClassName);
}

TVynComponentKey TVynComponentKey::Of(int32_t nChild, TVynDataLinkType type, const AnsiString& childClassName,
                                      const AnsiString& childDataKey, const AnsiString& fieldName) {
    const bool search = type == dlt_Search;
    return {nChild, fieldName, type, search ? childDataKey : AnsiString(), search ? AnsiString() : childClassName};
}

TVynComponentList::TVynComponentList(TVynDataSource* source)
    : source_(source), window_([this](TMessage& message) { WndProc(message); }) {
    if (LiveLists().empty()) OutageTold() = false;
    LiveLists().push_back(this);
}

TVynComponentList::~TVynComponentList() {
    std::erase(LiveLists(), this);
    try {
        StopSearches();
        while (!records_.empty()) DisposeRecord(Count() - 1);
    } catch (const std::exception& error) {
        ShowError("ERROR en TVynComponentList.Destroy\n", error);
    }
}

bool TVynComponentList::IsLive(const TVynComponentList* list) {
    return list && std::find(LiveLists().begin(), LiveLists().end(), list) != LiveLists().end();
}

// A search that stands inside its own work on the main thread cannot be waited for: it ends when the work returns, and
// is freed by the queue. All others have ended when this returns.
void TVynComponentList::StopSearches() {
    const std::vector<TVynBaseComponentThread*> searches = std::move(searches_);
    searches_.clear();
    for (TVynBaseComponentThread* search : searches) search->Terminate();
    for (TVynBaseComponentThread* search : searches)
        if (!search->InMainThread()) delete search;
}

// Records.

TVynComponent* TVynComponentList::Record(int index) const {
    return index >= 0 && index < Count() ? records_[static_cast<size_t>(index)].get() : nullptr;
}

TVynComponent* TVynComponentList::RecordOf(const TVynDataLink* link) const {
    const auto found = recordOfLink_.find(link);
    return found == recordOfLink_.end() ? nullptr : found->second;
}

int TVynComponentList::IndexOfRecord(const TVynComponent* record) const {
    for (size_t i = 0; i < records_.size(); ++i)
        if (records_[i].get() == record) return static_cast<int>(i);
    return -1;
}

bool TVynComponentList::IsRecord(const TVynComponent* record) const { return IndexOfRecord(record) >= 0; }

int TVynComponentList::IndexOf(int32_t nChild, TVynDataLinkType type, const AnsiString& childClassName,
                               const AnsiString& childDataKey, const AnsiString& fieldName) const {
    const TVynComponentKey key = TVynComponentKey::Of(nChild, type, childClassName, childDataKey, fieldName);
    for (size_t i = 0; i < records_.size(); ++i)
        if (records_[i]->Key.Same(key)) return static_cast<int>(i);
    return -1;
}

int TVynComponentList::IndexOfComponent(const TComponent* component) const {
    for (size_t i = 0; i < records_.size(); ++i)
        if (records_[i]->Component == component) return static_cast<int>(i);
    return -1;
}

bool TVynComponentList::GetIndexOfDataLink(const TVynDataLink* link, int& record, int& indexInRecord) const {
    record = indexInRecord = -1;
    const TVynComponent* found = RecordOf(link);
    if (!found) return false;
    record = IndexOfRecord(found);
    const auto at = std::find(found->DataLinks.begin(), found->DataLinks.end(), link);
    indexInRecord = static_cast<int>(at - found->DataLinks.begin());
    return true;
}

void TVynComponentList::AddVynDataLink(TVynDataLink* link) {
    const bool looksUp = link->VynDataLinkType() == dlt_Search || link->VynDataLinkType() == dlt_Class;
    const int at = looksUp ? IndexOf(link->NChild(), link->VynDataLinkType(), link->ChildClassName(),
                                     link->ChildDataKey(), link->FieldName())
                           : -1;
    TVynComponent* record = Record(at);
    if (record && RecordOf(link) == record) return;
    DelVynDataLink(link);
    if (!looksUp) return;
    if (!record) {
        records_.push_back(std::make_unique<TVynComponent>(TVynComponentKey::Of(
            link->NChild(), link->VynDataLinkType(), link->ChildClassName(), link->ChildDataKey(), link->FieldName())));
        record = records_.back().get();
        // The component is made when it is first asked for.
        record->ToBeCreated = true;
    }
    record->DataLinks.push_back(link);
    recordOfLink_[link] = record;
}

void TVynComponentList::DelVynDataLink(TVynDataLink* link) {
    TVynComponent* record = RecordOf(link);
    if (!record) return;
    recordOfLink_.erase(link);
    std::erase(record->DataLinks, link);
    if (record->AskedBy == link) record->AskedBy = nullptr;
    if (record->DataLinks.empty()) {
        DisposeRecord(IndexOfRecord(record));
    } else if (record->Search) {
        // The search may have been this link's: it ends then, and another link of the record asks again.
        record->Search->Wake();
    }
}

void TVynComponentList::DisposeRecord(int index) {
    const std::unique_ptr<TVynComponent> record = std::move(records_[static_cast<size_t>(index)]);
    records_.erase(records_.begin() + index);
    for (const TVynDataLink* link : record->DataLinks) recordOfLink_.erase(link);
    try {
        FreeComponent(*record);
    } catch (const std::exception& error) {
        ShowError("ERROR en DisposeVynComponent\n", error);
    }
}

// A component that another record uses too stays, and so does a screen that was open before the lookup came to it.
void TVynComponentList::FreeComponent(const TVynComponent& record) {
    TComponent* component = record.Component;
    if (!component || IndexOfComponent(component) >= 0) return;
    if (record.Key.Type == dlt_Search && component->Owner() != source_->NewComponentsOwner()) return;
    if (Questions().Count > 0)
        Questions().ToFree.push_back(component->Handle());
    else
        delete component;
}

void TVynComponentList::ComponentFreed(const TComponent* component) {
    for (const auto& record : records_) {
        if (record->Component != component) continue;
        record->Component = nullptr;
        record->Handle = 0;
        record->ToBeCreated = true;
        record->State = vyncs_Nil;
    }
}

TComponent* TVynComponentList::Component(int index) const {
    const TVynComponent* record = Record(index);
    return record && record->State == vyncs_available ? record->Component : nullptr;
}

TComponent* TVynComponentList::GetComponent(TVynDataLink* link) {
    AddVynDataLink(link);
    const TVynComponent* record = RecordOf(link);
    if (!record) return nullptr;
    NeedTheComponent(IndexOfRecord(record));
    return record->Component;
}

HWND TVynComponentList::GetHandle(TVynDataLink* link) {
    GetComponent(link);
    const TVynComponent* record = RecordOf(link);
    return record ? record->Handle : 0;
}

void TVynComponentList::NeedTheComponent(int index) {
    const TVynComponent* record = Record(index);
    if (busy_ || !record || record->State != vyncs_Nil || !record->ToBeCreated) return;
    PostMessage(Handle(), VYN_POST_CREATECOMPONENTS, index, 0);
}

void TVynComponentList::MarkRefresh(TVynDataLink* link) {
    TVynComponent* record = RecordOf(link);
    if (!record) return;
    record->RefreshPending = true;
    record->LastSearchedValue = Variant();
}

void TVynComponentList::TryAgain(TVynDataLink* link) {
    TVynComponent* record = RecordOf(link);
    if (!record || record->Failure.empty()) return;
    record->Failure.clear();
    record->LastSearchedValue = Variant();
    if (!record->Component) record->ToBeCreated = true;
    link->RecordChanged(link->Field());
}

void TVynComponentList::WndProc(TMessage& message) {
    const auto link = reinterpret_cast<TVynDataLink*>(message.WParam);
    switch (message.Msg) {
        case VYN_POST_CREATECOMPONENTS:
            PostCreateComponents();
            break;
        case VYN_POST_SEARCHVALUE:
            PostSearchValue(link, message.LParam != 0);
            break;
        case VYN_POST_ENDSEARCHVALUE:
            PostEndSearchValue(link, message.LParam != 0);
            break;
        default:
            break;
    }
}

// Creation.

void TVynComponentList::PostCreateComponents() {
    if (busy_ || !source_->VynApp()) return;
    busy_ = true;
    WaitCursor cursor;
    for (int i = 0; IsLive(this) && i < Count(); ++i) {
        TVynComponent* record = Record(i);
        if (!source_->VynApp() || !record->ToBeCreated || record->State != vyncs_Nil) continue;
        record->ToBeCreated = false;
        const bool hasChild = record->Key.Type != dlt_Search ||
                              source_->VynApp()->Tree().Child(source_->IDNode(), record->Key.NChild).IDNode >= 0;
        if (!hasChild) continue;
        cursor.Show();
        CreateComponent(record);
    }
    if (IsLive(this)) busy_ = false;
}

void TVynComponentList::CreateComponent(TVynComponent* record) {
    record->State = vyncs_Creating;
    TVynApp* app = source_->VynApp();
    TComponent* component = nullptr;
    HWND handle = 0;
    AnsiString failure;
    try {
        if (record->Key.Type == dlt_Search) {
            const int idNode = app->Tree().Child(source_->IDNode(), record->Key.NChild).IDNode;
            component = app->ObreComponent(idNode, source_->NewComponentsOwner());
            if (auto* control = ObjectCast<TWinControl>(component)) handle = control->Handle();
        } else if (const auto create = VynDataSource_GetCreateClassMethod(record->Key.ChildClassName)) {
            create(app, record->Key.ChildClassName, source_->NewComponentsOwner(), component, handle);
        }
    } catch (...) {
        // Told once: the record stays as it is until somebody has it tried again, and then it is known.
        component = nullptr;
        failure = CurrentMessage();
        const bool known = IsLive(this) && IsRecord(record) && std::exchange(record->FailureTold, true);
        if (!known) Application()->HandleException(nullptr);
    }
    // Whatever was opened may have closed what this list stands on.
    if (!IsLive(this) || !IsRecord(record)) return;
    record->Failure = failure;
    if (!component || handle == 0) {
        record->State = vyncs_Nil;
    } else {
        record->Component = component;
        record->Handle = handle;
        record->State = vyncs_available;
        record->FailureTold = false;
        if (component != source_->Owner()) component->FreeNotification(source_);
    }
    VynComponentListRecordChanged(IndexOfRecord(record));
}

// Searches.

void TVynComponentList::VynDataLinkValueChanged(TVynDataLink* link, const AnsiString& name, bool fromUser,
                                                const Variant& value) {
    TVynComponent* record = RecordOf(link);
    if (!record) return;
    record->SearchName = name;
    record->SearchValue = value;
    record->AskedBy = link;
    record->AskedByUser = fromUser;
    DoSearchValue(link, fromUser);
}

void TVynComponentList::DoSearchValue(TVynDataLink* link, bool fromUser) {
    PostMessage(Handle(), VYN_POST_SEARCHVALUE, reinterpret_cast<intptr_t>(link), fromUser ? 1 : 0);
}

void TVynComponentList::VynComponentListRecordChanged(int index) {
    TVynComponent* record = Record(index);
    if (!record) return;
    const std::vector<TVynDataLink*> links = record->DataLinks;
    for (TVynDataLink* link : links) {
        // What one link shows may take others away; what is being typed into one stays.
        if (!IsLive(this) || RecordOf(link) != record || link->IsModified()) continue;
        DoSearchValue(link, false);
        link->RecordChanged(link->Field());
    }
}

void TVynComponentList::PostSearchValue(TVynDataLink* link, bool fromUser) {
    TVynComponent* record = RecordOf(link);
    if (!record) return;
    NeedTheComponent(IndexOfRecord(record));
    if (record->State != vyncs_available || SameValue(record->SearchValue, record->LastSearchedValue)) return;
    if (!source_->VynApp()) return;
    record->State = vyncs_Searching;
    auto* search = new TVynSearchComponentThread(link, this, [link](TThread* thread, bool& wait, bool& terminate) {
        link->ThreadWaitTime(thread, wait, terminate);
    });
    search->SearchName = record->SearchName;
    search->SearchValue = record->SearchValue;
    search->FromUser = fromUser;
    record->Search = search;
    search->Begin();
}

bool TVynComponentList::Search(TVynDataLink* link, bool fromUser) {
    bool found = false;
    try {
        WaitCursor cursor;
        cursor.Show();
        SearchRecord(link, found);
    } catch (...) {
        // The record goes on without a value; what went wrong is told behind the search's end. Who goes from record
        // to record while the database is away knows by then.
        TVynComponent* record = IsLive(this) ? RecordOf(link) : nullptr;
        const bool known = record && !fromUser && (record->FailureTold || OutageTold());
        if (record) PostEnd(link, fromUser);
        if (known) return false;
        if (record) record->FailureTold = true;
        OutageTold() = true;
        Application()->HandleException(nullptr);
        return false;
    }
    if (IsLive(this)) PostEnd(link, fromUser);
    return found;
}

void TVynComponentList::PostEnd(TVynDataLink* link, bool fromUser) {
    const TVynComponent* record = RecordOf(link);
    if (!record) return;
    TVynDataLink* to = record->AskedBy ? record->AskedBy : link;
    const bool typed = record->AskedBy ? record->AskedByUser : fromUser;
    PostMessage(Handle(), VYN_POST_ENDSEARCHVALUE, reinterpret_cast<intptr_t>(to), typed ? 1 : 0);
}

bool TVynComponentList::SearchRecord(TVynDataLink* link, bool& found) {
    found = false;
    TVynComponent* record = RecordOf(link);
    const AnsiString name = record->SearchName;
    const Variant value = record->SearchValue;
    const auto forget = [&] {
        for (int i = 0; i < record->Values.Count(false); ++i) record->Values.SetValue(i, Variant::Null());
        record->FoundValue = Variant::Null();
        record->FieldValue = Variant::Null();
    };
    const auto stays = [&] { return IsLive(this) && RecordOf(link) == record; };
    try {
        found = Locate(*record, name, value);
        if (!stays()) return false;
        if ((found || value.IsNull()) && !FetchValues(*record)) found = false;
        if (!stays()) return false;
    } catch (...) {
        found = false;
        if (stays()) {
            forget();
            record->Failure = CurrentMessage();
        }
        throw;
    }
    if (!value.IsNull()) record->FailureTold = OutageTold() = false;
    if (found)
        record->FoundValue = record->FieldValue = record->ValueOf(name, Variant::Null());
    else
        forget();
    return true;
}

// The value counts as looked for from now on, also when the component fails: it is not asked again for the same.
bool TVynComponentList::Locate(TVynComponent& record, const AnsiString& name, const Variant& value) {
    if (record.Handle == 0) return false;
    record.LastSearchedValue = value;
    record.Failure.clear();
    if (record.Key.Type == dlt_Search) {
        TLocateStruct locate{name, value, true, record.RefreshPending, true};
        record.RefreshPending = false;
        return Ask(record.Handle, VYN_MESSAGE_LOCATE, VynLocateWParam, &locate) == VynAnswerYes;
    }
    if (record.Key.Type != dlt_Class || name.empty()) return false;
    TParametres wanted(nullptr);
    wanted.AddParam(name, value);
    return Ask(record.Handle, VYN_MESSAGE_TPARAMETRESLIST, VynParamsWrite, &wanted) != VynAnswerNo;
}

intptr_t TVynComponentList::Ask(HWND handle, uint32_t message, intptr_t wParam, void* what) {
    struct Question {
        Question() { ++Questions().Count; }
        ~Question() { QuestionAnswered(); }
    } const question;
    return SendMessage(handle, message, wParam, reinterpret_cast<intptr_t>(what));
}

bool TVynComponentList::FetchValues(TVynComponent& record) {
    if (record.Handle == 0) return false;
    // The component may take the record with it, so its values come into a set of their own first.
    TParametres values(nullptr);
    const HWND handle = record.Handle;
    const bool answered = Ask(handle, VYN_MESSAGE_TPARAMETRESLIST, VynParamsRead, &values) != VynAnswerNo;
    if (answered && IsLive(this) && IsRecord(&record)) {
        // What the component no longer has is none, not what it was.
        const auto names = record.Values.GetParametresNames();
        for (int i = 0; i < names->Count(); ++i)
            if (!values.ParamExists(names->At(i))) record.Values.SetParametreValue(names->At(i), Variant::Null());
        record.Values.CopyValues(values);
    }
    return answered;
}

bool TVynComponentList::SearchNow(TVynDataLink* link, const AnsiString& name, const Variant& value) {
    TVynComponent* record = RecordOf(link);
    if (!record || !record->Component) return false;
    record->SearchName = name;
    record->SearchValue = value;
    WaitCursor cursor;
    cursor.Show();
    bool found = false;
    return SearchRecord(link, found) && found;
}

void TVynComponentList::PostEndSearchValue(TVynDataLink* link, bool fromUser) {
    TVynComponent* record = RecordOf(link);
    if (!record) return;
    // A component that went meanwhile is not there because its search has ended.
    if (record->State == vyncs_Searching) record->State = record->Component ? vyncs_available : vyncs_Nil;
    if (fromUser)
        link->NotifySearchedValue(VarToStr(record->LastSearchedValue), VarToStr(record->FoundValue));
    else if (AnsiSameText(record->SearchName, link->ChildDataKey()))
        VynComponentListRecordChanged(IndexOfRecord(record));
}

void TVynComponentList::SearchEnded(TVynBaseComponentThread* thread) {
    for (const auto& record : records_) {
        if (record->Search != thread) continue;
        record->Search = nullptr;
        if (record->State != vyncs_Searching) return;
        // It ended without having searched, or its link went before it could be told: the others go on.
        record->State = record->Component ? vyncs_available : vyncs_Nil;
        if (!record->DataLinks.empty()) DoSearchValue(record->DataLinks.front(), false);
        return;
    }
}

void TVynComponentList::WakeSearch(const TVynDataLink* link) {
    const TVynComponent* record = RecordOf(link);
    if (record && record->Search) record->Search->Wake();
}

void TVynComponentList::WaitUntilFinished(TVynComponentList* list, const TVynDataLink* link) {
    const auto searching = [&] {
        const TVynComponent* record = IsLive(list) ? list->RecordOf(link) : nullptr;
        return record && record->State == vyncs_Searching && record->Search;
    };
    while (searching() && !Application()->Terminated()) Application()->HandleQueue();
}

void TVynComponentList::GetShowValue(TVynDataLink* link, AnsiString& text) {
    TVynComponent* record = RecordOf(link);
    if (!record) {
        text = "(No link)";
        return;
    }
    NeedTheComponent(IndexOfRecord(record));
    if (link->ChildDataKey().empty()) {
        text = link->Field() ? link->Field()->DisplayText() : AnsiString();
        return;
    }
    switch (record->State) {
        case vyncs_Nil:
            text = record->ToBeCreated ? "NIL" : "(Nil)";
            return;
        case vyncs_Creating:
            text = "(processing...)";
            return;
        case vyncs_Searching:
            text = "(searching...)";
            return;
        case vyncs_available:
            text = VarToStr(record->ValueOf(link->ChildDataShow(), Variant::Null()));
            return;
    }
}

}  // namespace vyn
