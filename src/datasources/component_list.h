#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "datasources/messages.h"
#include "foundation/Uparametres.h"

namespace vyn {

class TVynBaseComponentThread;
class TVynDataLink;
class TVynDataSource;

// Messages that a component list posts to its own window.
constexpr uint32_t VYN_POST_CREATECOMPONENTS = 1025;  // WParam: a record's index
constexpr uint32_t VYN_POST_SEARCHVALUE = 1026;       // WParam: the link, LParam: 1 when the user typed
constexpr uint32_t VYN_POST_ENDSEARCHVALUE = 1027;    // the same

// What makes two records one: compared without regard to case.
struct TVynComponentKey {
    int32_t NChild = 0;
    AnsiString FieldName;
    TVynDataLinkType Type = dlt_Field;
    AnsiString ChildDataKey;    // for dlt_Search, else empty
    AnsiString ChildClassName;  // for dlt_Class, else empty

    bool Same(const TVynComponentKey& other) const;
    // The key of what is looked up: of key name and class the one that its type goes by.
    static TVynComponentKey Of(int32_t nChild, TVynDataLinkType type, const AnsiString& childClassName,
                               const AnsiString& childDataKey, const AnsiString& fieldName);
};

// One looked-up component of a list, and the links that share it.
struct TVynComponent {
    explicit TVynComponent(TVynComponentKey key) : Key(std::move(key)) {}
    // A value of the component as it was last fetched, or the other one where it gives none.
    Variant ValueOf(const AnsiString& name, const Variant& otherwise) {
        return Values.ParamExists(name) ? Values.GetParametreValue(name) : otherwise;
    }

    TVynComponentKey Key;
    TComponent* Component = nullptr;
    HWND Handle = 0;
    TVynComponentState State = vyncs_Nil;
    std::vector<TVynDataLink*> DataLinks;
    bool ToBeCreated = false;
    bool RefreshPending = false;
    TParametres Values{nullptr};  // the component's, as they were last fetched
    AnsiString SearchName;        // what is looked for: the key's name, or what is shown
    Variant SearchValue;
    Variant LastSearchedValue;
    Variant FoundValue;  // Null when nothing was found
    Variant FieldValue;  // of links without a field
    // Whose value it is that is looked for, and whether its user typed it. Null once the link has gone.
    TVynDataLink* AskedBy = nullptr;
    bool AskedByUser = false;
    // Why the last search, or the making of the component, failed: nobody knows whether there is such a value. Empty
    // when it did not.
    AnsiString Failure;
    bool FailureTold = false;  // and nothing was found since
    // The search that runs, or null; it frees itself.
    TVynBaseComponentThread* Search = nullptr;
};

// The looked-up components of one data source: opened when they are first needed, shared by the links that look the
// same thing up, searched in the background (docs/lookups.md, docs/decisions/0011-lookup-threads.md).
//
// Every change comes from a message that the list posts to its own window, so nothing is opened or searched inside the
// caller's stack. Owns its records, their components and the searches that run; all are gone when it is. Errors while
// a component is made or searched are told by the application, and leave the record in a state that can go on. What
// nobody typed fails as often as records are gone through, and in all boxes of a form at once: it is told once, until
// values are looked up again. Main thread only: searches bring their work here.
class TVynComponentList {
  public:
    explicit TVynComponentList(TVynDataSource* source);
    ~TVynComponentList();
    TVynComponentList(const TVynComponentList&) = delete;
    TVynComponentList& operator=(const TVynComponentList&) = delete;

    // Whether a list still exists.
    static bool IsLive(const TVynComponentList* list);

    // Records.
    int Count() const { return static_cast<int>(records_.size()); }
    // The record of an index; null outside.
    TVynComponent* Record(int index) const;
    TVynComponent* RecordOf(const TVynDataLink* link) const;
    // Puts the link into the record of its key, which is made when it is missing; out of any other. Links of fields get
    // none.
    void AddVynDataLink(TVynDataLink* link);
    // A record without links goes, with its component.
    void DelVynDataLink(TVynDataLink* link);
    // Both -1 and false when the link has none.
    bool GetIndexOfDataLink(const TVynDataLink* link, int& record, int& indexInRecord) const;
    int IndexOf(int32_t nChild, TVynDataLinkType type, const AnsiString& childClassName, const AnsiString& childDataKey,
                const AnsiString& fieldName) const;
    int IndexOfComponent(const TComponent* component) const;
    // The component of an index while it is available, else null.
    TComponent* Component(int index) const;

    // Add the link, ask for its component, and give what is there: null or 0 while it has none.
    TComponent* GetComponent(TVynDataLink* link);
    HWND GetHandle(TVynDataLink* link);
    // Posts the creation of a record's component when it is wanted and not under way.
    void NeedTheComponent(int index);
    // Makes what NeedTheComponent asked for now, for callers that cannot wait.
    void CreateNeededComponents() { PostCreateComponents(); }

    // Searches.
    // A link's value is another one: looked for by that name.
    void VynDataLinkValueChanged(TVynDataLink* link, const AnsiString& name, bool fromUser, const Variant& value);
    void DoSearchValue(TVynDataLink* link, bool fromUser);
    // Shows every link of the record anew.
    void VynComponentListRecordChanged(int index);
    // Looks for a value at once, whatever runs; whether it was found. What the component raises passes.
    bool SearchNow(TVynDataLink* link, const AnsiString& name, const Variant& value);
    // Runs what waits for the main thread until no search of the link's record runs; the link may be gone then.
    static void WaitUntilFinished(TVynComponentList* list, const TVynDataLink* link);
    // A search of the link's record that waits looks at its deadline again.
    void WakeSearch(const TVynDataLink* link);
    // Next time the record's value is looked up even if it is the same.
    void MarkRefresh(TVynDataLink* link);
    // Makes the link's component, or looks its value up, once more when that failed before; else nothing.
    void TryAgain(TVynDataLink* link);

    // What a control shows for the link; asks for the component.
    void GetShowValue(TVynDataLink* link, AnsiString& text);
    // Sends a component a message of datasources/messages.h. What answers it stays until it has answered, even when the
    // lookup goes meanwhile.
    static intptr_t Ask(HWND handle, uint32_t message, intptr_t wParam, void* what);
    // Fetches the values of the record's component; false when it has none or does not answer.
    bool FetchValues(TVynComponent& record);
    // A component is going: its records let go of it and want it made again.
    void ComponentFreed(const TComponent* component);

    HWND Handle() const { return window_.Handle(); }
    TVynDataSource* DataSource() const { return source_; }

  private:
    friend class TVynBaseComponentThread;
    friend class TVynSearchComponentThread;
    void WndProc(TMessage& message);
    void PostCreateComponents();
    void PostSearchValue(TVynDataLink* link, bool fromUser);
    void PostEndSearchValue(TVynDataLink* link, bool fromUser);
    // Tells the end of a search to whom its value was looked for, which may be another than began it.
    void PostEnd(TVynDataLink* link, bool fromUser);
    // Frees a component that nobody looks up any more; one that stands in its own message handler goes afterwards.
    void FreeComponent(const TVynComponent& record);
    // Creation of one record's component, which others may take away meanwhile.
    void CreateComponent(TVynComponent* record);
    // The work of a search.
    bool Search(TVynDataLink* link, bool fromUser);
    // Locates and takes over what was found; false when the record went meanwhile.
    bool SearchRecord(TVynDataLink* link, bool& found);
    bool Locate(TVynComponent& record, const AnsiString& name, const Variant& value);
    // A search has ended without searching: the record is as it would be without it.
    void SearchEnded(TVynBaseComponentThread* thread);
    bool IsRecord(const TVynComponent* record) const;
    int IndexOfRecord(const TVynComponent* record) const;
    void DisposeRecord(int index);
    void StopSearches();

    TVynDataSource* source_;
    std::vector<std::unique_ptr<TVynComponent>> records_;
    std::unordered_map<const TVynDataLink*, TVynComponent*> recordOfLink_;
    std::vector<TVynBaseComponentThread*> searches_;
    bool busy_ = false;
    WindowHandle window_;
};

}  // namespace vyn
