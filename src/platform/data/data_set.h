#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "platform/data/data_source.h"
#include "platform/data/fields.h"
#include "platform/data/row_expression.h"
#include "platform/data/row_window.h"
#include "platform/text/exceptions.h"

namespace vyn {

// How records are searched: without regard to letters' case; by what a text begins with; without regard to accents
// (text/folding.h); and of those that begin so, first one that is the text and no longer.
enum class TLocateOption { loCaseInsensitive, loPartialKey, loAccentInsensitive, loWholeFirst };
using enum TLocateOption;
using TLocateOptions = Set<TLocateOption>;
const EnumType& TypeInfoOf(TypeTag<TLocateOption>);

// What is done about an error of the engine: raised, given up in silence, tried again.
enum class TDataAction { daFail, daAbort, daRetry };
using enum TDataAction;

// A record that can be gone back to while the dataset stays open, also when others come and go, and in another order.
struct TBookmark {
    int64_t Identity = -1;
    int Opening = 0;
    bool Empty() const { return Identity < 0; }
    friend bool operator==(TBookmark, TBookmark) = default;
};

using TDataSetNotifyEvent = Event<void(TDataSet* DataSet)>;
using TFilterRecordEvent = Event<void(TDataSet* DataSet, bool& Accept)>;
using TDataSetErrorEvent = Event<void(TDataSet* DataSet, EDatabaseError& Error, TDataAction& Action)>;

// Records from somewhere, one of which is the current one.
//
// Reading: rows are fetched as they are asked for, in order, and kept in a RowStore; RecordsFetched says how many there
// are so far, FetchTo gets more. Of a large result that its source reads in pages only a window is kept (RowWindow):
// its records have the numbers FirstRecord to RecordsFetched - 1, and asking for others moves it. Editing: Edit, Insert
// or Append begin, fields are set, Post writes and Cancel forgets; moving away posts. Everything that shows the dataset
// hears of changes through data sources, once, when DisableControls is not in force. Errors are EDatabaseError. Main
// thread only.
class TDataSet : public TComponent {
    VYN_OBJECT
  public:
    explicit TDataSet(TComponent* owner);
    ~TDataSet() override;

    // Opening.
    bool Active() const { return state_ != dsInactive; }
    // While the form is being read, opening waits until it is loaded.
    void SetActive(bool value);
    void Open() { SetActive(true); }
    void Close() { SetActive(false); }
    TDataSetState State() const { return state_; }
    // Fetches the records anew and stays at the current one, found by its key, or by its number.
    void Refresh();

    // The current record.
    void First();
    void Last();
    void Next() { MoveBy(1); }
    void Prior() { MoveBy(-1); }
    // Gives how far it moved.
    int64_t MoveBy(int64_t distance);
    bool Bof() const { return bof_; }
    bool Eof() const { return eof_; }
    bool IsEmpty();
    // FirstRecord to RecordsFetched - 1, or -1 in an empty dataset; outside them while a window is elsewhere.
    int64_t CurrentRecord() const { return current_; }
    void SetCurrentRecord(int64_t record);
    // 1 upward for people; 0 in an empty dataset.
    int64_t RecNo() const { return current_ + 1; }

    // The records.
    bool IsPaged() const { return window_ != nullptr; }
    int64_t FirstRecord() const { return window_ ? window_->First() : 0; }
    int64_t RecordsFetched() const;
    // Fetches until that many are there; gives how many there are. A window moves to the last of them. Once fetching
    // failed, what is there stays, and no more is asked for until the dataset is refreshed or opened again, or moved
    // in a window; what needs all records raises the error anew.
    int64_t FetchTo(int64_t count);
    // Has these records at hand, as far as there are such; a window goes straight to far ones, by an estimate where
    // they stand. Gives RecordsFetched.
    int64_t Reach(int64_t record, int64_t count);
    bool AllFetched() const { return window_ ? window_->AtStart() && window_->AtEnd() : allFetched_; }
    // Whether fetching failed on the way.
    bool ReadingFailed() const { return !readingError_.empty(); }
    // How many records there are as far as is known without fetching them.
    int64_t RecordsExpected() const;
    // Fetches all; of a paged result, has the engine count.
    int64_t RecordCount();
    // Puts a window's numbers right, which were estimated; gives by how much they changed. NumbersMoved is the sum of
    // it: who keeps the number of a record adds what came to it since.
    int64_t SettleNumbers();
    int64_t NumbersMoved() const { return numbersMoved_; }
    // Has a window go to where the current record stands, unless that is new.
    void ShowCurrent();
    const RowStore& Rows() const;
    // Where a record stands in the rows.
    int64_t RowOf(int64_t record) const;

    // Searching, from the first record on. Key fields are separated by semicolons, and there is a value for each. A
    // null is found by Null; options concern texts only: numbers and dates are found by what they equal. An empty
    // beginning finds the first text that is not null. Locate goes to the first record found and says whether there is
    // one; Lookup gives the value of a field of it (Null when there is none) and stays.
    //
    // The first is the first in the dataset's order. In a paged result, a text that is looked for without regard to
    // case or accents in one column with an index is found by that index: then the first is the first by the index (of
    // "be": Bea before Berta, in a list by number too), and costs little more than the engine's own query for it.
    bool Locate(const AnsiString& keyFields, const Variant& value, TLocateOptions options = {});
    bool Locate(const AnsiString& keyFields, const std::vector<Variant>& values, TLocateOptions options = {});
    Variant Lookup(const AnsiString& keyFields, const Variant& value, const AnsiString& resultField,
                   TLocateOptions options = {});
    Variant Lookup(const AnsiString& keyFields, const std::vector<Variant>& values, const AnsiString& resultField,
                   TLocateOptions options = {});
    // Finds as Locate does, and stays, in whatever state: while `look` runs, fields give the values of the record
    // found.
    bool LookUp(const AnsiString& keyFields, const Variant& value, TLocateOptions options,
                const std::function<void()>& look);
    TBookmark GetBookmark() const { return BookmarkOf(current_); }
    // The same of any fetched record; empty beyond them.
    TBookmark BookmarkOf(int64_t record) const;
    bool BookmarkValid(TBookmark bookmark) const;
    // The record's number, when it is at hand; else -1.
    int64_t RecordOf(TBookmark bookmark) const;
    // Raises EDatabaseError "Record not found" for a record that is gone.
    void GotoBookmark(TBookmark bookmark);

    // Which records are shown: those for which Filter (row_expression.h) is true and that OnFilterRecord takes, while
    // Filtered is set. An expression that is wrong raises EDatabaseError when it is set to an open dataset, or it
    // opens.
    bool Filtered() const { return filtered_; }
    void SetFiltered(bool value);
    const AnsiString& Filter() const { return filter_; }
    void SetFilter(const AnsiString& value);
    TFilterOptions FilterOptions() const { return filterOptions_; }
    void SetFilterOptions(TFilterOptions value);
    // Go to a record that the filter takes, also while all are shown; say whether there was one.
    bool FindFirst();
    bool FindNext();
    bool FindPrior();
    bool FindLast();
    // In which order: names of fields, separated by commas, each perhaps followed by ASC or DESC; empty: as they come.
    // Texts are ordered as people do, without regard to case; those of a paged result as its engine orders them.
    const AnsiString& Sort() const { return sort_; }
    void SetSort(const AnsiString& value);

    // Editing.
    bool IsEditing() const { return state_ == dsEdit || state_ == dsInsert; }
    // Whether values were set since editing began.
    bool Modified() const { return modified_; }
    bool CanModify() const { return Active() && ReasonNotToModify().empty(); }
    void Edit();
    void Insert();
    void Append();
    void Post();
    void Cancel();
    void Delete();
    // Ends editing: posts what was changed.
    void CheckBrowseMode();
    // Has controls put what is typed into the fields.
    void UpdateRecord();
    // Clears every field of the record being edited.
    void ClearFields();
    // A whole record at once: the values go to the fields in their order; Empty leaves a field as it is.
    void AppendRecord(const std::vector<Variant>& values);
    void InsertRecord(const std::vector<Variant>& values);
    void SetFields(const std::vector<Variant>& values);

    // Fields.
    int FieldCount() const { return static_cast<int>(fields_.size()); }
    TField* Fields(int index) const;  // raises EListError
    TField* FindField(const AnsiString& name) const;
    // Raises EDatabaseError "NAME: Field 'X' not found".
    TField* FieldByName(const AnsiString& name) const;
    const std::vector<FieldDefinition>& FieldDefinitions() const { return definitions_; }
    // Whether calculated fields follow each change while the record is edited.
    bool AutoCalcFields = true;

    // Announcements.
    void DisableControls();
    void EnableControls();
    bool ControlsDisabled() const { return disableCount_ > 0; }
    void Announce(DataEvent event, TField* field = nullptr);
    // The source of this dataset's master, or null.
    virtual TDataSource* GetDataSource() const { return nullptr; }

    TDataSetNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose;
    TDataSetNotifyEvent BeforeInsert, AfterInsert, BeforeEdit, AfterEdit, BeforePost, AfterPost;
    TDataSetNotifyEvent BeforeCancel, AfterCancel, BeforeDelete, AfterDelete;
    TDataSetNotifyEvent BeforeScroll, AfterScroll, BeforeRefresh, AfterRefresh;
    TDataSetNotifyEvent OnCalcFields, OnNewRecord;
    TDataSetErrorEvent OnDeleteError, OnEditError, OnPostError;
    TFilterRecordEvent OnFilterRecord;

    void Loaded() override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;

  protected:
    // Starts the result and says its columns.
    virtual std::vector<FieldDefinition> InternalOpen() = 0;
    // Puts up to `count` further rows into the store; false when there are no more.
    virtual bool InternalFetch(RowStore& rows, int64_t count) = 0;
    virtual void InternalClose() = 0;
    // Starts an open result again. One that raises either has left the former as it was, and says so by IsOpenStill, or
    // nothing is open.
    virtual std::vector<FieldDefinition> InternalReopen() {
        InternalClose();
        return InternalOpen();
    }
    virtual bool IsOpenStill() const { return false; }
    // One part of an order.
    struct SortPart {
        const TField* Field;
        bool Descending;
    };
    // The open result as pages, in the order asked for or else its own; null when it is not large, or cannot be read
    // so. InternalFetch is not called then.
    virtual std::unique_ptr<RowPages> InternalPages(const std::vector<SortPart>& order) { return nullptr; }
    // A sentence for the user, or empty when records may be changed.
    virtual AnsiString ReasonNotToModify() const { return "Cannot modify a read-only dataset"; }
    // A record is about to be edited; it may be brought up to date.
    virtual void InternalEdit(Record& record) {}
    // Write one record; `record` comes back as the engine then holds it. What is unset in a new one, the engine fills.
    virtual void InternalInsert(Record& record) {}
    virtual void InternalUpdate(const Record& original, Record& record) {}
    virtual void InternalDelete(const Record& original) {}
    // A record is begun; its fields may get their first values.
    virtual void InternalNewRecord() {}
    [[noreturn]] void DatabaseError(const AnsiString& text) const;
    // For setters of what a result depends on: raises when it is open.
    void CheckInactive() const;
    void CheckActive() const;
    // Runs the result again without closing; fields stay when the columns are the same. Closed when it cannot be run.
    void Requery();

  private:
    friend class TField;
    friend class TDataSource;
    struct KeyMatcher;
    struct StoredOrder;
    class RowInFocus;
    void DoOpen();
    void DoClose();
    void StartRows();
    // What is not among the fetched records may be among those that could not be.
    void RequireAllRead() {
        if (ReadingFailed()) RecordCount();
    }
    // A window is read wherever somebody goes.
    void TryReadingAgain() {
        if (window_) readingError_.clear();
    }
    void StartWindow();
    int64_t LastRecord();
    std::vector<SortPart> SortParts() const;
    enum class Bookmarks { Forget, Keep };
    void ReopenAtCurrent(Bookmarks bookmarks);
    // What becomes of the records that are there when the result cannot be run again.
    enum class WhenItFails { Close, Keep };
    void Requery(WhenItFails then);
    // What is kept then.
    struct Former;
    void PutBack(Former& former, const AnsiString& error);
    void GoTo(TBookmark bookmark);
    // Where a search ended: a row, and the record that it is where all are kept.
    struct FoundRow {
        int64_t Row = -1;
        int64_t Record = -1;
    };
    void GoTo(const FoundRow& found);
    void HoldCurrent(int64_t row);
    void BindFields();
    void FreeOwnFields();
    void MoveTo(int64_t record);
    // The first row that matches, or none.
    FoundRow FindRow(const KeyMatcher& matcher);
    FoundRow FindRow(const AnsiString& names, const std::vector<Variant>& values, TLocateOptions options);
    void ForgetOldRows();
    TField* DataFieldByName(const AnsiString& name) const;
    // The row whose values fields give: the current record's, or that of the record being looked at.
    int64_t ActiveRow() const;
    const Cell* EditedCell(int64_t row, int column) const;
    void PutField(TField& field, Cell cell);
    void CheckCanModify() const;
    void CheckRequired() const;
    void BeginInsert(int64_t at);
    void RemoveRecord(int64_t record);
    void WriteCurrent();
    void StopEditing();
    template <class F>
    void WithErrorEvent(const TDataSetErrorEvent& event, F action);
    Cell CalculatedCell(int64_t row, const TField& field);
    void Calculate(int64_t row);
    bool Accepts(int64_t row);
    void CompileFilter();
    bool Find(int64_t from, int64_t step);
    void SetDefaults();
    void CheckConstraints();
    RowExpression ExpressionOf(const AnsiString& text);
    bool HasView() const { return viewed_; }
    void RebuildView();
    void ExtendView(int64_t from);

    TDataSetState state_ = dsInactive;
    bool openWhenLoaded_ = false;
    std::vector<TField*> fields_;
    std::vector<TField*> ownFields_;  // made by opening
    std::vector<FieldDefinition> definitions_;
    std::unique_ptr<RowStore> rows_;
    // Bookmarks by keys, since the dataset is, or was, paged.
    std::unique_ptr<RowKeys> keys_;
    std::unique_ptr<RowWindow> window_;
    int opening_ = 0;
    bool allFetched_ = true;
    AnsiString readingError_;
    int64_t current_ = -1;
    int64_t numbersMoved_ = 0;
    bool bof_ = true;
    bool eof_ = true;
    // Records as rows, when they are filtered or sorted.
    bool viewed_ = false;
    std::vector<int64_t> view_;
    bool filtered_ = false;
    AnsiString filter_;
    TFilterOptions filterOptions_;
    std::unique_ptr<RowExpression> compiledFilter_;
    AnsiString sort_;
    // The record being edited.
    Record edited_;
    Record original_;
    bool modified_ = false;
    int64_t beforeInsert_ = -1;
    int64_t numbersBeforeInsert_ = 0;
    TBookmark farBeforeInsert_;
    // What is looked at instead of the current record: a row, or none.
    int64_t focus_ = -1;
    bool focused_ = false;
    int64_t calculatedRow_ = -1;
    bool calculating_ = false;
    std::vector<std::pair<const TField*, Cell>> calculated_;
    int disableCount_ = 0;
    TDataSetState stateWhenDisabled_ = dsInactive;
    bool announcePending_ = false;
    bool layoutPending_ = false;
    std::vector<TDataSource*> sources_;
};

// Keeps a dataset's controls disabled while it lives.
class DisabledControls {
  public:
    explicit DisabledControls(TDataSet& dataSet) : dataSet_(dataSet) { dataSet_.DisableControls(); }
    // What goes wrong while controls are told is raised, unless an error is on its way already.
    ~DisabledControls() noexcept(false) {
        try {
            dataSet_.EnableControls();
        } catch (...) {
            if (std::uncaught_exceptions() == errors_) throw;
        }
    }
    DisabledControls(const DisabledControls&) = delete;
    DisabledControls& operator=(const DisabledControls&) = delete;

  private:
    TDataSet& dataSet_;
    int errors_ = std::uncaught_exceptions();
};

}  // namespace vyn
