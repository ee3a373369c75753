#include <algorithm>

#include "platform/data/data_set.h"

// Editing: one record at a time lies in a buffer over the rows until it is posted.
namespace vyn {

namespace data_set_editing_detail {

constexpr char kEmpty[] = "Cannot perform this operation on an empty dataset";

}  // namespace data_set_editing_detail

template <class F>
void TDataSet::WithErrorEvent(const TDataSetErrorEvent& event, F action) {
    for (;;) {
        TDataAction what = daFail;
        try {
            action();
            return;
        } catch (EDatabaseError& error) {
            event(this, error, what);
            if (what == daFail) throw;
        }
        if (what == daAbort) Abort();
    }
}

void TDataSet::CheckCanModify() const {
    const AnsiString reason = ReasonNotToModify();
    if (!reason.empty()) DatabaseError(reason);
}

const Cell* TDataSet::EditedCell(int64_t row, int column) const {
    if (edited_.empty() || row != RowOf(current_)) return nullptr;
    return &edited_[static_cast<size_t>(column)];
}

void TDataSet::StopEditing() {
    if (state_ == dsInsert && rows_ && current_ >= 0) {
        // The record that was begun goes, and the one before it is current again.
        const int64_t numbers = NumbersMoved();
        RemoveRecord(current_);
        current_ = std::min(beforeInsert_ < 0 ? beforeInsert_ : beforeInsert_ + numbers - numbersBeforeInsert_,
                            RecordsFetched() - 1);
        if (current_ < FirstRecord()) current_ = RecordsFetched() > FirstRecord() ? FirstRecord() : -1;
        if (current_ < 0) bof_ = eof_ = true;
    }
    if (IsEditing()) state_ = dsBrowse;
    edited_.clear();
    original_.clear();
    modified_ = false;
    calculatedRow_ = -1;
}

void TDataSet::RemoveRecord(int64_t record) {
    if (window_) {
        window_->Remove(record);
        calculatedRow_ = -1;
        return;
    }
    const int64_t row = RowOf(record);
    rows_->Remove(row);
    calculatedRow_ = -1;
    if (!viewed_) return;
    view_.erase(view_.begin() + record);
    for (int64_t& each : view_)
        if (each > row) --each;
}

void TDataSet::Edit() {
    CheckActive();
    if (IsEditing()) return;
    if (current_ < 0) {
        Insert();
        return;
    }
    CheckBrowseMode();
    CheckCanModify();
    BeforeEdit(this);
    // Handlers may close, move or edit by themselves, here and below.
    CheckActive();
    if (IsEditing()) return;
    if (current_ < 0) DatabaseError(data_set_editing_detail::kEmpty);
    Record record = rows_->RecordAt(RowOf(current_));
    WithErrorEvent(OnEditError, [&] { InternalEdit(record); });
    rows_->Replace(RowOf(current_), record);
    edited_ = record;
    original_ = std::move(record);
    modified_ = false;
    calculatedRow_ = -1;
    state_ = dsEdit;
    Announce(DataEvent::StateChanged);
    AfterEdit(this);
}

void TDataSet::Insert() {
    CheckBrowseMode();
    ShowCurrent();
    BeginInsert(std::max<int64_t>(current_, 0));
}

void TDataSet::Append() {
    CheckBrowseMode();
    CheckCanModify();
    BeginInsert(LastRecord() + 1);
}

void TDataSet::BeginInsert(int64_t at) {
    CheckCanModify();
    BeforeInsert(this);
    BeforeScroll(this);
    CheckActive();
    if (IsEditing()) DatabaseError("A handler began to edit another record");
    at = std::clamp(at, FirstRecord(), RecordsFetched());
    const size_t columns = definitions_.size();
    beforeInsert_ = current_;
    numbersBeforeInsert_ = NumbersMoved();
    farBeforeInsert_ = window_ && !window_->HoldsCurrent() ? GetBookmark() : TBookmark();
    if (window_) {
        rows_->Append(Record(columns));
        window_->Insert(at, rows_->Count() - 1);
        window_->CurrentChanged();
    } else if (viewed_) {
        const int64_t row = rows_->Count();
        rows_->Insert(row, Record(columns));
        view_.insert(view_.begin() + at, row);
    } else {
        rows_->Insert(at, Record(columns));
    }
    current_ = at;
    edited_.assign(columns, Cell());
    original_.clear();
    calculatedRow_ = -1;
    state_ = dsInsert;
    bof_ = eof_ = false;
    try {
        SetDefaults();
        InternalNewRecord();
        OnNewRecord(this);
    } catch (...) {
        StopEditing();
        throw;
    }
    // First values are no change: a record that nobody touches is not written.
    modified_ = false;
    Announce(DataEvent::StateChanged);
    Announce(DataEvent::RecordsChanged);
    AfterInsert(this);
    AfterScroll(this);
}

void TDataSet::SetDefaults() {
    for (TField* field : std::vector<TField*>(fields_))
        if (!field->DefaultExpression.empty() && field->CanModify())
            field->SetValue(RowExpression(field->DefaultExpression, nullptr).Value());
}

void TDataSet::CheckConstraints() {
    for (const TField* field : fields_) {
        if (field->CustomConstraint.empty() || field->IsNull()) continue;
        // The field's own value goes by any name that is no field's.
        const RowExpression rule(field->CustomConstraint, [&](const AnsiString& name) {
            const TField* named = FindField(name);
            return named ? named : field;
        });
        if (rule.IsTrue()) continue;
        DatabaseError(field->ConstraintErrorMessage.empty()
                          ? "Field '" + field->DisplayLabel() + "' must satisfy: " + field->CustomConstraint
                          : field->ConstraintErrorMessage);
    }
}

void TDataSet::SetFields(const std::vector<Variant>& values) {
    if (!IsEditing()) DatabaseError("Dataset not in edit or insert mode");
    if (values.size() > fields_.size()) DatabaseError("Too many field values");
    for (size_t i = 0; i < values.size(); ++i)
        if (!values[i].IsEmpty()) fields_[i]->SetValue(values[i]);
}

void TDataSet::AppendRecord(const std::vector<Variant>& values) {
    Append();
    SetFields(values);
    Post();
}

void TDataSet::InsertRecord(const std::vector<Variant>& values) {
    Insert();
    SetFields(values);
    Post();
}

void TDataSet::PutField(TField& field, Cell cell) {
    if (calculating_) {
        const auto found = std::find_if(calculated_.begin(), calculated_.end(),
                                        [&](const auto& each) { return each.first == &field; });
        if (found == calculated_.end())
            calculated_.emplace_back(&field, std::move(cell));
        else
            found->second = std::move(cell);
        return;
    }
    Cell& kept = edited_[static_cast<size_t>(field.FieldNo())];
    std::swap(kept, cell);
    if (AutoCalcFields) calculatedRow_ = -1;
    if (field.OnValidate) {
        try {
            field.OnValidate(&field);
        } catch (...) {
            // The handler may have ended the editing.
            if (!edited_.empty()) edited_[static_cast<size_t>(field.FieldNo())] = std::move(cell);
            throw;
        }
    }
    modified_ = true;
    Announce(DataEvent::RecordChanged, &field);
    field.OnChange(&field);
}

void TDataSet::ClearFields() {
    if (!IsEditing()) DatabaseError("Dataset not in edit or insert mode");
    for (TField* field : std::vector<TField*>(fields_))
        if (field->CanModify()) field->Clear();
}

void TDataSet::UpdateRecord() {
    if (!IsEditing()) DatabaseError("Dataset not in edit or insert mode");
    Announce(DataEvent::UpdateRecord);
}

void TDataSet::CheckRequired() const {
    for (const TField* field : fields_) {
        if (!field->Required || field->ReadOnly || field->FieldKind() != fkData || field->FieldNo() < 0) continue;
        const Cell& cell = edited_[static_cast<size_t>(field->FieldNo())];
        // What the engine fills in by itself need not be given.
        if (!cell.IsNull() || (state_ == dsInsert && cell.IsUnset() && field->columnAutomatic_)) continue;
        DatabaseError("Field '" + field->DisplayLabel() + "' must have a value");
    }
}

void TDataSet::WriteCurrent() {
    Record record = edited_;
    if (state_ == dsInsert)
        InternalInsert(record);
    else if (!(edited_ == original_))
        InternalUpdate(original_, record);
    const int64_t row = RowOf(current_);
    rows_->Replace(row, record);
    if (window_) window_->Written(row);
}

void TDataSet::Post() {
    CheckActive();
    UpdateRecord();
    Announce(DataEvent::CheckBrowse);
    // Handlers may still fill in what is required.
    BeforePost(this);
    CheckActive();
    if (!IsEditing()) return;
    CheckRequired();
    CheckConstraints();
    WithErrorEvent(OnPostError, [&] { WriteCurrent(); });
    state_ = dsBrowse;
    StopEditing();
    Announce(DataEvent::StateChanged);
    Announce(DataEvent::RecordsChanged);
    AfterPost(this);
}

void TDataSet::Cancel() {
    CheckActive();
    if (!IsEditing()) return;
    const bool inserting = state_ == dsInsert;
    BeforeCancel(this);
    if (inserting) BeforeScroll(this);
    if (!IsEditing()) return;
    StopEditing();
    if (inserting && !farBeforeInsert_.Empty()) {
        const int64_t row = window_->RowOfIdentity(farBeforeInsert_.Identity);
        if (row >= 0) window_->ShowAround(row);
    }
    Announce(DataEvent::StateChanged);
    Announce(inserting ? DataEvent::RecordsChanged : DataEvent::RecordChanged);
    AfterCancel(this);
    if (inserting) AfterScroll(this);
}

void TDataSet::Delete() {
    CheckActive();
    if (state_ == dsInsert) {
        Cancel();
        return;
    }
    if (current_ < 0) DatabaseError(data_set_editing_detail::kEmpty);
    CheckCanModify();
    ShowCurrent();
    Announce(DataEvent::CheckBrowse);
    BeforeDelete(this);
    BeforeScroll(this);
    CheckActive();
    if (current_ < 0) DatabaseError(data_set_editing_detail::kEmpty);
    const Record original = IsEditing() ? original_ : rows_->RecordAt(RowOf(current_));
    WithErrorEvent(OnDeleteError, [&] { InternalDelete(original); });
    const bool wasEditing = IsEditing();
    StopEditing();
    if (keys_) keys_->Forget(*rows_, RowOf(current_));
    RemoveRecord(current_);
    current_ = std::min(current_, FetchTo(current_ + 1) - 1);
    if (window_ && current_ < FirstRecord()) window_->StepTo(current_);
    if (current_ < FirstRecord()) current_ = -1;
    if (current_ < 0) bof_ = eof_ = true;
    if (wasEditing) Announce(DataEvent::StateChanged);
    Announce(DataEvent::RecordsChanged);
    AfterDelete(this);
    AfterScroll(this);
}

void TDataSet::CheckBrowseMode() {
    CheckActive();
    Announce(DataEvent::CheckBrowse);
    if (!IsEditing()) return;
    UpdateRecord();
    if (!IsEditing()) return;
    if (modified_)
        Post();
    else
        Cancel();
}

}  // namespace vyn
