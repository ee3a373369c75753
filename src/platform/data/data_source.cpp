#include "platform/data/data_source.h"

#include <algorithm>

#include "platform/data/data_set.h"
#include "platform/data/data_set_focus.h"
#include "platform/data/first_error.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TDataSetState>) {
    static const EnumType info("TDataSetState", {"dsInactive", "dsBrowse", "dsEdit", "dsInsert", "dsSetKey",
                                                 "dsCalcFields", "dsFilter", "dsOpening"});
    return info;
}

const ClassInfo& TDataSource::StaticClass() {
    static const ClassInfo info = DefineClass<TDataSource, TComponent>("TDataSource")
                                      .Published("AutoEdit", &TDataSource::AutoEdit, &TDataSource::AutoEdit)
                                      .Default(true)
                                      .Published("DataSet", &TDataSource::DataSet, &TDataSource::SetDataSet)
                                      .Published("Enabled", &TDataSource::Enabled, &TDataSource::SetEnabled)
                                      .Default(true)
                                      .Event("OnStateChange", &TDataSource::OnStateChange)
                                      .Event("OnDataChange", &TDataSource::OnDataChange)
                                      .Event("OnUpdateData", &TDataSource::OnUpdateData);
    return info;
}

TDataSource::~TDataSource() {
    BeginDestruction();
    SetDataSet(nullptr);
    while (!links_.empty()) links_.back()->SetDataSource(nullptr);
}

TDataSetState TDataSource::State() const { return enabled_ && dataSet_ ? dataSet_->State() : dsInactive; }

bool TDataSource::IsLinkedTo(const TDataSet* dataSet) const {
    const TDataSource* source = this;
    while (source && source->dataSet_) {
        if (source->dataSet_ == dataSet) return true;
        source = source->dataSet_->GetDataSource();
    }
    return false;
}

void TDataSource::SetDataSet(TDataSet* value) {
    if (value == dataSet_) return;
    for (const TDataSet* each = value; each && each->GetDataSource(); each = each->GetDataSource()->dataSet_)
        if (each->GetDataSource() == this) throw EDatabaseError("Circular datalinks are not allowed");
    if (dataSet_) std::erase(dataSet_->sources_, this);
    dataSet_ = value;
    if (value) {
        value->sources_.push_back(this);
        value->FreeNotification(this);
    }
    Tell(DataEvent::ActiveChanged, nullptr);
}

void TDataSource::SetEnabled(bool value) {
    if (value == enabled_) return;
    enabled_ = value;
    Tell(DataEvent::ActiveChanged, nullptr);
}

void TDataSource::Edit() {
    if (AutoEdit && State() == dsBrowse) dataSet_->Edit();
}

void TDataSource::WithRecord(int64_t record, const std::function<void()>& within) {
    if (State() == dsInactive) return;
    const TDataSet::RowInFocus focus(*dataSet_, dataSet_->RowOf(record));
    within();
}

void TDataSource::ShowRecord(int64_t record, const std::function<void()>& within) {
    WithRecord(record, [&] {
        for (size_t i = links_.size(); i-- > 0;)
            if (i < links_.size()) links_[i]->Changed(DataEvent::RecordChanged, nullptr);
        within();
    });
}

void TDataSource::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == dataSet_) SetDataSet(nullptr);
}

void TDataSource::Tell(DataEvent event, TField* field) {
    FirstError error(event);
    for (size_t i = links_.size(); i-- > 0;)
        if (i < links_.size()) error.Of([&] { links_[i]->Changed(event, field); });
    if (!HasState(csDestroying)) error.Of([&] { CallEvents(event, field); });
    error.Raise();
}

void TDataSource::CallEvents(DataEvent event, TField* field) {
    switch (event) {
        case DataEvent::ActiveChanged:
        case DataEvent::StateChanged:
            OnStateChange(this);
            if (event == DataEvent::ActiveChanged) OnDataChange(this, nullptr);
            break;
        case DataEvent::RecordsChanged:
        case DataEvent::Scrolled:
        case DataEvent::LayoutChanged:
        case DataEvent::RecordChanged:
            OnDataChange(this, field);
            break;
        case DataEvent::UpdateRecord:
            OnUpdateData(this);
            break;
        case DataEvent::CheckBrowse:
            break;
    }
}

TDataLink::~TDataLink() {
    if (source_) std::erase(source_->links_, this);
}

void TDataLink::SetDataSource(TDataSource* value) {
    if (value == source_) return;
    if (source_) std::erase(source_->links_, this);
    source_ = value;
    if (value) value->links_.push_back(this);
    Changed(DataEvent::ActiveChanged, nullptr);
}

TDataSet* TDataLink::ActiveDataSet() const {
    return source_ && source_->Enabled() && source_->DataSet() && source_->DataSet()->Active() ? source_->DataSet()
                                                                                               : nullptr;
}

bool TDataLink::Editing() const {
    const TDataSet* data = ActiveDataSet();
    return data && !readOnly_ && data->IsEditing();
}

bool TDataLink::Edit() {
    if (!readOnly_ && source_) source_->Edit();
    return Editing();
}

void TDataLink::SetReadOnly(bool value) {
    if (value == readOnly_) return;
    readOnly_ = value;
    EditingChanged();
}

void TDataLink::UpdateRecord() {
    if (updating_) return;
    updating_ = true;
    try {
        UpdateData();
    } catch (...) {
        updating_ = false;
        throw;
    }
    updating_ = false;
}

void TDataLink::Changed(DataEvent event, TField* field) {
    switch (event) {
        case DataEvent::ActiveChanged:
            ActiveChanged();
            break;
        case DataEvent::StateChanged:
            EditingChanged();
            break;
        case DataEvent::RecordsChanged:
            DataSetChanged();
            break;
        case DataEvent::Scrolled:
            DataSetScrolled();
            break;
        case DataEvent::LayoutChanged:
            LayoutChanged();
            break;
        case DataEvent::RecordChanged:
            RecordChanged(field);
            break;
        case DataEvent::UpdateRecord:
            UpdateRecord();
            break;
        case DataEvent::CheckBrowse:
            CheckBrowseMode();
            break;
    }
}

void TFieldDataLink::SetFieldName(const AnsiString& value) {
    if (value == fieldName_) return;
    fieldName_ = value;
    UpdateEditing();
    RecordChanged(nullptr);
}

TField* TFieldDataLink::Field() const {
    const TDataSet* data = ActiveDataSet();
    return data && !fieldName_.empty() ? data->FindField(fieldName_) : nullptr;
}

bool TFieldDataLink::CanModify() const { return !ReadOnly() && Field() && Field()->CanModify(); }

bool TFieldDataLink::Edit() {
    if (CanModify()) TDataLink::Edit();
    return editing_;
}

void TFieldDataLink::Reset() { RecordChanged(nullptr); }

void TFieldDataLink::UpdateEditing() {
    const bool editing = Editing() && CanModify();
    if (editing == editing_) return;
    editing_ = editing;
    modified_ = false;
    OnEditingChange(nullptr);
}

void TFieldDataLink::ActiveChanged() {
    UpdateEditing();
    OnActiveChange(nullptr);
    RecordChanged(nullptr);
}

void TFieldDataLink::EditingChanged() { UpdateEditing(); }

void TFieldDataLink::LayoutChanged() {
    UpdateEditing();
    RecordChanged(nullptr);
}

void TFieldDataLink::RecordChanged(TField* field) {
    if (field && field != Field()) return;
    OnDataChange(nullptr);
    modified_ = false;
}

void TFieldDataLink::UpdateData() {
    if (!modified_) return;
    if (Field()) OnUpdateData(nullptr);
    modified_ = false;
}

}  // namespace vyn
