#pragma once

#include <memory>
#include <vector>

#include "platform/data/fields.h"
#include "platform/data/row_store.h"

namespace vyn {

class TDataLink;
class TDataSource;

enum class TDataSetState { dsInactive, dsBrowse, dsEdit, dsInsert, dsSetKey, dsCalcFields, dsOpening };
using enum TDataSetState;
const EnumType& TypeInfoOf(TypeTag<TDataSetState>);

// What a dataset tells those who show it.
enum class DataEvent {
    ActiveChanged,   // opened or closed
    RecordsChanged,  // other records, or more of them
    Scrolled,        // another current record
    LayoutChanged,   // other fields, or they look otherwise
    RecordChanged,   // the current record's values
};

using TDataSetNotifyEvent = Event<void(TDataSet* DataSet)>;
using TFilterRecordEvent = Event<void(TDataSet* DataSet, bool& Accept)>;

// Records from somewhere, one of which is the current one.
//
// Reading: rows are fetched as they are asked for, in order, and kept in a RowStore; RecordsFetched says how many there
// are so far, FetchTo gets more. Everything that shows the dataset hears of changes through data sources, once, when
// DisableControls is not in force. Errors are EDatabaseError. Main thread only.
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
    // 0 to RecordsFetched - 1, or -1 in an empty dataset.
    int64_t CurrentRecord() const { return current_; }
    void SetCurrentRecord(int64_t record);
    // 1 upward for people; 0 in an empty dataset.
    int64_t RecNo() const { return current_ + 1; }

    // The records.
    int64_t RecordsFetched() const { return rows_ ? rows_->Count() : 0; }
    // Fetches until that many are there; gives how many there are.
    int64_t FetchTo(int64_t count);
    bool AllFetched() const { return allFetched_; }
    // Fetches all.
    int64_t RecordCount();
    const RowStore& Rows() const;

    // Fields.
    int FieldCount() const { return static_cast<int>(fields_.size()); }
    TField* Fields(int index) const;  // raises EListError
    TField* FindField(const AnsiString& name) const;
    // Raises EDatabaseError "NAME: Field 'X' not found".
    TField* FieldByName(const AnsiString& name) const;
    const std::vector<FieldDefinition>& FieldDefinitions() const { return definitions_; }

    // Announcements.
    void DisableControls() { ++disableCount_; }
    void EnableControls();
    bool ControlsDisabled() const { return disableCount_ > 0; }
    void Announce(DataEvent event);

    TDataSetNotifyEvent BeforeOpen;
    TDataSetNotifyEvent AfterOpen;
    TDataSetNotifyEvent BeforeClose;
    TDataSetNotifyEvent AfterClose;
    TDataSetNotifyEvent BeforeScroll;
    TDataSetNotifyEvent AfterScroll;

    void Loaded() override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;

  protected:
    // Starts the result and says its columns.
    virtual std::vector<FieldDefinition> InternalOpen() = 0;
    // Puts up to `count` further rows into the store; false when there are no more.
    virtual bool InternalFetch(RowStore& rows, int64_t count) = 0;
    virtual void InternalClose() = 0;
    [[noreturn]] void DatabaseError(const AnsiString& text) const;
    // For setters of what a result depends on: raises when it is open.
    void CheckInactive() const;

  private:
    friend class TField;
    friend class TDataSource;
    void DoOpen();
    void DoClose();
    void BindFields();
    void FreeOwnFields();
    void MoveTo(int64_t record);

    TDataSetState state_ = dsInactive;
    bool openWhenLoaded_ = false;
    std::vector<TField*> fields_;
    std::vector<TField*> ownFields_;  // made by opening
    std::vector<FieldDefinition> definitions_;
    std::unique_ptr<RowStore> rows_;
    bool allFetched_ = true;
    int64_t current_ = -1;
    bool bof_ = true;
    bool eof_ = true;
    int disableCount_ = 0;
    bool announcePending_ = false;
    std::vector<TDataSource*> sources_;
};

// Stands between a dataset and what shows it: forms place one and their controls name it.
class TDataSource : public TComponent {
    VYN_OBJECT
  public:
    explicit TDataSource(TComponent* owner) : TComponent(owner) {}
    ~TDataSource() override;

    TDataSet* DataSet() const { return dataSet_; }
    // Raises EDatabaseError when the dataset itself reads through this source.
    void SetDataSet(TDataSet* value);
    bool Enabled() const { return enabled_; }
    void SetEnabled(bool value);
    bool AutoEdit = true;
    TDataSetState State() const { return enabled_ && dataSet_ ? dataSet_->State() : dsInactive; }

    Event<void(TObject* Sender, TField* Field)> OnDataChange;
    TNotifyEvent OnStateChange;
    TNotifyEvent OnUpdateData;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    friend class TDataSet;
    friend class TDataLink;
    void Tell(DataEvent event);

    TDataSet* dataSet_ = nullptr;
    bool enabled_ = true;
    std::vector<TDataLink*> links_;
};

// A control's ear at a data source. Not a component: its control owns it and sets its source.
class TDataLink {
  public:
    TDataLink() = default;
    virtual ~TDataLink();
    TDataLink(const TDataLink&) = delete;
    TDataLink& operator=(const TDataLink&) = delete;

    TDataSource* DataSource() const { return source_; }
    void SetDataSource(TDataSource* value);
    // The dataset while it is open and the source is enabled, else null.
    TDataSet* ActiveDataSet() const;

  protected:
    virtual void Changed(DataEvent event) = 0;

  private:
    friend class TDataSource;
    TDataSource* source_ = nullptr;
};

}  // namespace vyn
