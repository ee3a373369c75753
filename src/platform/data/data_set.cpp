#include "platform/data/data_set.h"

#include <algorithm>

#include "platform/objects/class_table.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace data_set_detail {

// Rows fetched at a time when somebody asks for one more.
constexpr int64_t kFetchStep = 256;
constexpr int64_t kEverything = INT64_MAX;

}  // namespace data_set_detail

const EnumType& TypeInfoOf(TypeTag<TDataSetState>) {
    static const EnumType info(
        "TDataSetState", {"dsInactive", "dsBrowse", "dsEdit", "dsInsert", "dsSetKey", "dsCalcFields", "dsOpening"});
    return info;
}

const ClassInfo& TDataSet::StaticClass() {
    static const ClassInfo info = DefineClass<TDataSet, TComponent>("TDataSet");
    return info;
}

TDataSet::TDataSet(TComponent* owner) : TComponent(owner) {}

TDataSet::~TDataSet() {
    BeginDestruction();
    while (!sources_.empty()) sources_.back()->SetDataSet(nullptr);
    FreeOwnFields();
    for (TField* field : std::vector<TField*>(fields_)) field->SetDataSet(nullptr);
    DestroyComponents();
}

void TDataSet::DatabaseError(const AnsiString& text) const {
    throw EDatabaseError(Name().empty() ? text : Name() + ": " + text);
}

void TDataSet::CheckInactive() const {
    if (Active()) DatabaseError("Cannot perform this operation on an open dataset");
}

void TDataSet::SetActive(bool value) {
    if (HasState(csLoading)) {
        openWhenLoaded_ = value;
        return;
    }
    if (value == Active()) return;
    if (value)
        DoOpen();
    else
        DoClose();
}

void TDataSet::Loaded() {
    TComponent::Loaded();
    if (openWhenLoaded_ && !HasState(csDesigning)) Open();
}

void TDataSet::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    for (TField* field : fields_)
        if (field->Owner() == root) visit(field);
}

void TDataSet::DoOpen() {
    BeforeOpen(this);
    state_ = dsOpening;
    try {
        definitions_ = InternalOpen();
        std::vector<ColumnKind> kinds;
        for (const FieldDefinition& definition : definitions_) kinds.push_back(ColumnKindOf(definition.DataType));
        rows_ = std::make_unique<RowStore>(std::move(kinds));
        allFetched_ = false;
        BindFields();
        state_ = dsBrowse;
        FetchTo(1);
    } catch (...) {
        FreeOwnFields();
        rows_.reset();
        state_ = dsInactive;
        allFetched_ = true;
        throw;
    }
    current_ = RecordsFetched() > 0 ? 0 : -1;
    bof_ = true;
    eof_ = current_ < 0;
    Announce(DataEvent::ActiveChanged);
    AfterOpen(this);
    AfterScroll(this);
}

void TDataSet::DoClose() {
    BeforeClose(this);
    state_ = dsInactive;
    InternalClose();
    FreeOwnFields();
    for (TField* field : fields_) field->Unbind();
    rows_.reset();
    definitions_.clear();
    allFetched_ = true;
    current_ = -1;
    bof_ = eof_ = true;
    Announce(DataEvent::ActiveChanged);
    AfterClose(this);
}

void TDataSet::BindFields() {
    // Fields of the form stay; without any, the result's columns make the fields.
    if (fields_.empty()) {
        for (size_t i = 0; i < definitions_.size(); ++i) {
            auto* field = static_cast<TField*>(FieldClassOf(definitions_[i].DataType)->Create(nullptr));
            field->SetFieldName(definitions_[i].Name);
            field->Required = definitions_[i].Required;
            field->SetDataSet(this);
            ownFields_.push_back(field);
            field->Bind(definitions_[i], static_cast<int>(i));
        }
        return;
    }
    for (TField* field : fields_) {
        const auto found = std::find_if(definitions_.begin(), definitions_.end(), [&](const FieldDefinition& each) {
            return AnsiSameText(each.Name, field->FieldName());
        });
        if (found == definitions_.end()) DatabaseError("Field '" + field->FieldName() + "' not found");
        const bool sameKind =
            field->DataType() == ftUnknown || ColumnKindOf(field->DataType()) == ColumnKindOf(found->DataType);
        if (!sameKind)
            DatabaseError(
                "Type mismatch for field '" + field->FieldName() + "', expecting: " +
                TypeInfoOf(TypeTag<TFieldType>{}).NameOf(static_cast<int>(field->DataType())).substr(2) +
                " actual: " + TypeInfoOf(TypeTag<TFieldType>{}).NameOf(static_cast<int>(found->DataType)).substr(2));
        field->Bind(*found, static_cast<int>(found - definitions_.begin()));
    }
}

void TDataSet::FreeOwnFields() {
    while (!ownFields_.empty()) {
        TField* field = ownFields_.back();
        ownFields_.pop_back();
        delete field;
    }
}

const RowStore& TDataSet::Rows() const {
    if (!rows_) DatabaseError("Cannot perform this operation on a closed dataset");
    return *rows_;
}

int64_t TDataSet::FetchTo(int64_t count) {
    if (!rows_) return 0;
    while (!allFetched_ && RecordsFetched() < count) {
        const int64_t missing = std::max(count - RecordsFetched(), data_set_detail::kFetchStep);
        if (!InternalFetch(*rows_, missing)) allFetched_ = true;
    }
    return RecordsFetched();
}

int64_t TDataSet::RecordCount() { return FetchTo(data_set_detail::kEverything); }

bool TDataSet::IsEmpty() { return FetchTo(1) == 0; }

void TDataSet::MoveTo(int64_t record) {
    BeforeScroll(this);
    current_ = record;
    Announce(DataEvent::Scrolled);
    AfterScroll(this);
}

void TDataSet::SetCurrentRecord(int64_t record) {
    if (record < 0 || record >= FetchTo(record + 1) || record == current_) return;
    bof_ = eof_ = false;
    MoveTo(record);
}

void TDataSet::First() {
    if (!rows_) DatabaseError("Cannot perform this operation on a closed dataset");
    eof_ = RecordsFetched() == 0;
    bof_ = true;
    MoveTo(RecordsFetched() > 0 ? 0 : -1);
}

void TDataSet::Last() {
    if (!rows_) DatabaseError("Cannot perform this operation on a closed dataset");
    const int64_t count = RecordCount();
    bof_ = count == 0;
    eof_ = true;
    MoveTo(count - 1);
}

int64_t TDataSet::MoveBy(int64_t distance) {
    if (!rows_) DatabaseError("Cannot perform this operation on a closed dataset");
    if (distance == 0 || current_ < 0) return 0;
    const int64_t wanted = current_ + distance;
    const int64_t last =
        std::max<int64_t>(wanted, 0) >= RecordsFetched() ? FetchTo(wanted + 1) - 1 : RecordsFetched() - 1;
    const int64_t target = std::clamp<int64_t>(wanted, 0, last);
    bof_ = wanted < 0;
    eof_ = wanted > target;
    const int64_t moved = target - current_;
    MoveTo(target);
    return moved;
}

TField* TDataSet::Fields(int index) const {
    if (index < 0 || index >= FieldCount()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return fields_[static_cast<size_t>(index)];
}

TField* TDataSet::FindField(const AnsiString& name) const {
    for (TField* field : fields_)
        if (AnsiSameText(field->FieldName(), name)) return field;
    return nullptr;
}

TField* TDataSet::FieldByName(const AnsiString& name) const {
    if (TField* field = FindField(name)) return field;
    DatabaseError("Field '" + name + "' not found");
}

void TDataSet::EnableControls() {
    if (disableCount_ == 0 || --disableCount_ > 0 || !announcePending_) return;
    announcePending_ = false;
    Announce(Active() ? DataEvent::RecordsChanged : DataEvent::ActiveChanged);
}

void TDataSet::Announce(DataEvent event) {
    if (disableCount_ > 0 && event != DataEvent::ActiveChanged) {
        announcePending_ = true;
        return;
    }
    for (size_t i = sources_.size(); i-- > 0;)
        if (i < sources_.size()) sources_[i]->Tell(event);
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

void TDataSource::SetDataSet(TDataSet* value) {
    if (value == dataSet_) return;
    if (dataSet_) std::erase(dataSet_->sources_, this);
    dataSet_ = value;
    if (value) {
        value->sources_.push_back(this);
        value->FreeNotification(this);
    }
    Tell(DataEvent::ActiveChanged);
}

void TDataSource::SetEnabled(bool value) {
    if (value == enabled_) return;
    enabled_ = value;
    Tell(DataEvent::ActiveChanged);
}

void TDataSource::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == dataSet_) SetDataSet(nullptr);
}

void TDataSource::Tell(DataEvent event) {
    for (size_t i = links_.size(); i-- > 0;)
        if (i < links_.size()) links_[i]->Changed(event);
    if (HasState(csDestroying)) return;
    if (event == DataEvent::ActiveChanged) OnStateChange(this);
    OnDataChange(this, nullptr);
}

TDataLink::~TDataLink() {
    if (source_) std::erase(source_->links_, this);
}

void TDataLink::SetDataSource(TDataSource* value) {
    if (value == source_) return;
    if (source_) std::erase(source_->links_, this);
    source_ = value;
    if (value) value->links_.push_back(this);
    Changed(DataEvent::ActiveChanged);
}

TDataSet* TDataLink::ActiveDataSet() const {
    return source_ && source_->Enabled() && source_->DataSet() && source_->DataSet()->Active() ? source_->DataSet()
                                                                                               : nullptr;
}

void RegisterDataClasses() {
    for (TFieldType type : {ftString, ftWideString, ftMemo, ftSmallint, ftInteger, ftAutoInc, ftLargeint, ftFloat,
                            ftCurrency, ftBCD, ftBoolean, ftDate, ftTime, ftDateTime, ftBlob})
        AddLinkedClass(FieldClassOf(type));
    AddLinkedClass(&TDataSource::StaticClass());
}

}  // namespace vyn
