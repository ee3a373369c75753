#pragma once

#include <functional>
#include <vector>

#include "platform/data/fields.h"

namespace vyn {

class TDataLink;
class TDataSource;

enum class TDataSetState { dsInactive, dsBrowse, dsEdit, dsInsert, dsSetKey, dsCalcFields, dsFilter, dsOpening };
using enum TDataSetState;
const EnumType& TypeInfoOf(TypeTag<TDataSetState>);

// What a dataset tells those who show it.
enum class DataEvent {
    ActiveChanged,   // opened or closed
    StateChanged,    // began or ended to be edited
    RecordsChanged,  // other records, or more of them
    Scrolled,        // another current record
    LayoutChanged,   // other fields, or they look otherwise
    RecordChanged,   // the current record's values (with a field: that field's)
    UpdateRecord,    // put what is typed into the fields
    CheckBrowse,     // the current record is about to be left
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
    // Whether controls may begin to edit the record by being typed into.
    bool AutoEdit = true;
    TDataSetState State() const;
    // Puts the dataset into the edit state when AutoEdit allows it.
    void Edit();
    // Runs `within` while fields give the values of a record that is at hand. Nothing moves, and no event is fired.
    void WithRecord(int64_t record, const std::function<void()>& within);
    // Has the links show a record that is at hand as if it were the current one, and runs `within` while fields give
    // its values; for copies of controls that show several records. Nothing moves, and no event is fired.
    void ShowRecord(int64_t record, const std::function<void()>& within);
    // Whether the dataset, or a master of it, is this one.
    bool IsLinkedTo(const TDataSet* dataSet) const;

    Event<void(TObject* Sender, TField* Field)> OnDataChange;
    TNotifyEvent OnStateChange;
    TNotifyEvent OnUpdateData;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    const std::vector<TDataLink*>& Links() const { return links_; }

  private:
    friend class TDataSet;
    friend class TDataLink;
    void Tell(DataEvent event, TField* field);
    void CallEvents(DataEvent event, TField* field);

    TDataSet* dataSet_ = nullptr;
    bool enabled_ = true;
    std::vector<TDataLink*> links_;
};

// A control's ear at a data source. Not a component: its control owns it and sets its source. Descendants override the
// operations for what they want to hear, or Changed for all.
class TDataLink {
  public:
    TDataLink() = default;
    virtual ~TDataLink();
    TDataLink(const TDataLink&) = delete;
    TDataLink& operator=(const TDataLink&) = delete;

    TDataSource* DataSource() const { return source_; }
    void SetDataSource(TDataSource* value);
    // The source's dataset, open or not, or null.
    TDataSet* DataSet() const { return source_ ? source_->DataSet() : nullptr; }
    // The dataset while it is open and the source is enabled, else null.
    TDataSet* ActiveDataSet() const;
    bool Active() const { return ActiveDataSet() != nullptr; }
    // The dataset is being edited, and the link may write.
    bool Editing() const;
    // Asks to edit the record; whether it is edited now.
    virtual bool Edit();
    // Puts what is typed into the fields.
    void UpdateRecord();
    bool ReadOnly() const { return readOnly_; }
    void SetReadOnly(bool value);

  protected:
    // Every event comes here; hands it to the operations below.
    virtual void Changed(DataEvent event, TField* field);
    virtual void ActiveChanged() {}
    virtual void EditingChanged() {}
    virtual void DataSetChanged() { RecordChanged(nullptr); }
    virtual void DataSetScrolled() { DataSetChanged(); }
    virtual void LayoutChanged() { DataSetChanged(); }
    virtual void RecordChanged(TField* field) {}
    virtual void UpdateData() {}
    virtual void CheckBrowseMode() {}

  private:
    friend class TDataSource;
    TDataSource* source_ = nullptr;
    bool readOnly_ = false;
    bool updating_ = false;
};

// The link of a control that shows one field. The control tells it when it was typed into (Modified), and puts its text
// into the field when it is asked (OnUpdateData).
class TFieldDataLink : public TDataLink {
  public:
    const AnsiString& FieldName() const { return fieldName_; }
    void SetFieldName(const AnsiString& value);
    // The field of the open dataset, or null.
    TField* Field() const;
    virtual bool CanModify() const;
    bool Edit() override;
    // The control shows other than the field holds.
    void Modified() { modified_ = true; }
    bool IsModified() const { return modified_; }
    // Shows the field's value again.
    void Reset();
    // Whether the record is edited and the field may be written.
    bool FieldEditing() const { return editing_; }
    // The control whose link this is.
    TComponent* Control = nullptr;

    TNotifyEvent OnActiveChange;
    TNotifyEvent OnDataChange;
    TNotifyEvent OnEditingChange;
    TNotifyEvent OnUpdateData;

  protected:
    void ActiveChanged() override;
    void EditingChanged() override;
    void LayoutChanged() override;
    void RecordChanged(TField* field) override;
    void UpdateData() override;

  private:
    void UpdateEditing();

    AnsiString fieldName_;
    bool editing_ = false;
    bool modified_ = false;
};

}  // namespace vyn
