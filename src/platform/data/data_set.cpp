#include "platform/data/data_set.h"

#include <algorithm>

#include "platform/data/data_set_focus.h"
#include "platform/data/first_error.h"
#include "platform/objects/class_table.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace data_set_detail {

// Rows fetched at a time when somebody asks for one more: few at first, and more the further one reads.
constexpr int64_t kFetchStep = 256;
constexpr int64_t kLargestFetchStep = 8192;
constexpr int64_t kFetchedPerStep = 4;
constexpr int64_t kEverything = INT64_MAX;
constexpr char kIncomplete[] = "\nNot all records are there: refresh to read them again";
constexpr char kClosed[] = "Cannot perform this operation on a closed dataset";

}  // namespace data_set_detail

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

void TDataSet::CheckActive() const {
    if (!rows_) DatabaseError(data_set_detail::kClosed);
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

void TDataSet::StartRows() {
    std::vector<ColumnKind> kinds;
    for (const FieldDefinition& definition : definitions_) kinds.push_back(ColumnKindOf(definition.DataType));
    window_.reset();
    keys_.reset();
    rows_ = std::make_unique<RowStore>(std::move(kinds));
    ++opening_;
    allFetched_ = false;
    readingError_.clear();
    viewed_ = false;
    view_.clear();
    calculatedRow_ = -1;
    current_ = -1;
}

void TDataSet::StartWindow() {
    // What is filtered here has to be read to be known.
    if (filtered_) return;
    std::unique_ptr<RowPages> pages = InternalPages(SortParts());
    if (!pages) return;
    if (!keys_) keys_ = std::make_unique<RowKeys>(pages->KeyColumns());
    window_ = std::make_unique<RowWindow>(std::move(pages), *rows_, *keys_, current_);
}

void TDataSet::DoOpen() {
    BeforeOpen(this);
    if (Active()) return;
    state_ = dsOpening;
    try {
        definitions_ = InternalOpen();
        StartRows();
        BindFields();
        CompileFilter();
        state_ = dsBrowse;
        StartWindow();
        RebuildView();
        FetchTo(1);
    } catch (...) {
        compiledFilter_.reset();
        window_.reset();
        keys_.reset();
        InternalClose();
        FreeOwnFields();
        for (TField* field : fields_) field->Unbind();
        rows_.reset();
        definitions_.clear();
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
    if (!Active()) return;
    StopEditing();
    state_ = dsInactive;
    InternalClose();
    compiledFilter_.reset();
    FreeOwnFields();
    for (TField* field : fields_) field->Unbind();
    window_.reset();
    keys_.reset();
    rows_.reset();
    viewed_ = false;
    view_.clear();
    definitions_.clear();
    allFetched_ = true;
    current_ = -1;
    bof_ = eof_ = true;
    Announce(DataEvent::ActiveChanged);
    AfterClose(this);
}

struct TDataSet::Former {
    explicit Former(TDataSet& of)
        : rows(std::move(of.rows_)),
          keys(std::move(of.keys_)),
          view(std::move(of.view_)),
          viewed(of.viewed_),
          allFetched(of.allFetched_),
          bof(of.bof_),
          eof(of.eof_),
          opening(of.opening_),
          current(of.current_) {}
    std::unique_ptr<RowStore> rows;
    std::unique_ptr<RowKeys> keys;
    std::vector<int64_t> view;
    bool viewed, allFetched, bof, eof;
    int opening;
    int64_t current;
};

void TDataSet::PutBack(Former& former, const AnsiString& error) {
    window_.reset();
    rows_ = std::move(former.rows);
    keys_ = std::move(former.keys);
    view_ = std::move(former.view);
    viewed_ = former.viewed;
    allFetched_ = former.allFetched;
    bof_ = former.bof;
    eof_ = former.eof;
    opening_ = former.opening;
    current_ = former.current;
    calculatedRow_ = -1;
    // The rest of them is not to be had any more.
    if (!allFetched_) readingError_ = error + data_set_detail::kIncomplete;
}

void TDataSet::Requery() { Requery(WhenItFails::Close); }

void TDataSet::Requery(WhenItFails then) {
    CheckActive();
    StopEditing();
    std::unique_ptr<Former> former;
    const auto keep = [&](const AnsiString& error) {
        if (former && IsOpenStill())
            PutBack(*former, error);
        else if (Active())
            DoClose();
    };
    try {
        if (then == WhenItFails::Keep && !window_) former = std::make_unique<Former>(*this);
        std::vector<FieldDefinition> definitions = InternalReopen();
        const bool same = definitions == definitions_;
        if (!same) former.reset();
        definitions_ = std::move(definitions);
        StartRows();
        if (!same) {
            compiledFilter_.reset();
            FreeOwnFields();
            BindFields();
            CompileFilter();
        }
        state_ = dsBrowse;
        StartWindow();
        RebuildView();
        FetchTo(1);
        current_ = RecordsFetched() > 0 ? 0 : -1;
        bof_ = true;
        eof_ = current_ < 0;
        if (!same) Announce(DataEvent::LayoutChanged);
    } catch (const std::exception& error) {
        keep(error.what());
        throw;
    } catch (...) {
        keep(AnsiString());
        throw;
    }
    Announce(DataEvent::RecordsChanged);
}

void TDataSet::Refresh() {
    CheckBrowseMode();
    BeforeRefresh(this);
    TryReadingAgain();
    if (window_) {
        const bool any = window_->Reload();
        calculatedRow_ = -1;
        bof_ = !any;
        eof_ = !any;
        Announce(DataEvent::RecordsChanged);
    } else {
        ReopenAtCurrent(Bookmarks::Forget);
    }
    AfterRefresh(this);
}

void TDataSet::ReopenAtCurrent(Bookmarks bookmarks) {
    AnsiString keys;
    std::vector<Variant> values;
    for (const TField* field : fields_) {
        if (field->FieldNo() < 0 || !definitions_[static_cast<size_t>(field->FieldNo())].InKey) continue;
        keys += (keys.empty() ? "" : ";") + field->FieldName();
        values.push_back(field->Value());
    }
    const int64_t record = current_;
    const DisabledControls quiet(*this);
    std::unique_ptr<RowKeys> kept;
    const int opening = opening_;
    if (bookmarks == Bookmarks::Keep) kept = std::move(keys_);
    // Who only looks again goes on with what was there.
    Requery(bookmarks == Bookmarks::Keep ? WhenItFails::Close : WhenItFails::Keep);
    if (bookmarks == Bookmarks::Keep && kept) {
        // A window has hold of them.
        if (!keys_) keys_ = std::make_unique<RowKeys>(std::vector<size_t>());
        *keys_ = std::move(*kept);
        opening_ = opening;
    }
    // Without a key, or when the record is gone: what stands at its place.
    if (keys.empty() || record < 0 || !Locate(keys, values))
        if (record > 0) SetCurrentRecord(std::min(record, FetchTo(record + 1) - 1));
}

void TDataSet::BindFields() {
    const bool hasStored =
        std::any_of(fields_.begin(), fields_.end(), [](const TField* field) { return field->FieldKind() == fkData; });
    // Fields of the form stay; without any, the result's columns make the fields, before the form's calculated ones.
    if (!hasStored) {
        const std::vector<TField*> others = fields_;
        fields_.clear();
        for (size_t i = 0; i < definitions_.size(); ++i) {
            auto* field = static_cast<TField*>(FieldClassOf(definitions_[i].DataType)->Create(nullptr));
            field->SetFieldName(definitions_[i].Name);
            field->Required = definitions_[i].Required;
            field->SetSize(ColumnKindOf(definitions_[i].DataType) == ColumnKind::Text || definitions_[i].Size > 0
                               ? definitions_[i].Size
                               : field->Size());
            field->SetDataSet(this);
            ownFields_.push_back(field);
            field->Bind(definitions_[i], static_cast<int>(i));
        }
        fields_.insert(fields_.end(), others.begin(), others.end());
        return;
    }
    for (TField* field : fields_) {
        if (field->FieldKind() != fkData) continue;
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
    CheckActive();
    return *rows_;
}

int64_t TDataSet::RecordsFetched() const {
    if (!rows_) return 0;
    if (window_) return window_->End();
    return viewed_ ? static_cast<int64_t>(view_.size()) : rows_->Count();
}

int64_t TDataSet::RecordsExpected() const {
    if (window_) return window_->Expected();
    return RecordsFetched() + (AllFetched() ? 0 : 1);
}

int64_t TDataSet::RowOf(int64_t record) const {
    if (window_) return window_->RowOf(record);
    if (record < 0 || record >= RecordsFetched()) return -1;
    return viewed_ ? view_[static_cast<size_t>(record)] : record;
}

int64_t TDataSet::ActiveRow() const { return focused_ ? focus_ : RowOf(current_); }

int64_t TDataSet::Reach(int64_t record, int64_t count) {
    if (!window_) return FetchTo(record + count);
    // What only shows records is not told again and again.
    if (ReadingFailed()) return window_->End();
    ForgetOldRows();
    try {
        return window_->Reach(record, count);
    } catch (const EDatabaseError& error) {
        readingError_ = error.Message() + data_set_detail::kIncomplete;
        throw;
    }
}

void TDataSet::ForgetOldRows() {
    // Rows change their places in memory: not while one of them is looked at.
    if (!window_ || focused_ || !window_->WantsCompacting()) return;
    window_->Compact();
    calculatedRow_ = -1;
}

int64_t TDataSet::FetchTo(int64_t count) {
    if (!rows_) return 0;
    if (window_) return count == data_set_detail::kEverything ? LastRecord() + 1 : Reach(count - 1, 1);
    while (!allFetched_ && RecordsFetched() < count) {
        const int64_t from = rows_->Count();
        const int64_t step = std::clamp(from / data_set_detail::kFetchedPerStep, data_set_detail::kFetchStep,
                                        data_set_detail::kLargestFetchStep);
        const int64_t missing = std::max(count - RecordsFetched(), step);
        if (ReadingFailed()) {
            // What only shows records is not told again and again.
            if (count == data_set_detail::kEverything) throw EDatabaseError(readingError_);
            break;
        }
        try {
            if (!InternalFetch(*rows_, missing)) allFetched_ = true;
        } catch (const EDatabaseError& error) {
            readingError_ = error.Message() + data_set_detail::kIncomplete;
            if (viewed_) ExtendView(from);
            throw;
        }
        if (viewed_) ExtendView(from);
    }
    return RecordsFetched();
}

int64_t TDataSet::RecordCount() { return window_ ? window_->Count() : FetchTo(data_set_detail::kEverything); }

int64_t TDataSet::LastRecord() {
    if (window_)
        window_->GoEnd();
    else
        FetchTo(data_set_detail::kEverything);
    return RecordsFetched() - 1;
}

int64_t TDataSet::SettleNumbers() {
    const int64_t shift = window_ ? window_->Settle() : 0;
    numbersMoved_ += shift;
    return shift;
}

void TDataSet::ShowCurrent() {
    if (window_ && !window_->HoldsCurrent() && state_ != dsInsert) window_->ShowAround(RowOf(current_));
}

bool TDataSet::IsEmpty() { return window_ ? AllFetched() && FirstRecord() == RecordsFetched() : FetchTo(1) == 0; }

void TDataSet::MoveTo(int64_t record) {
    const int64_t moved = NumbersMoved();
    BeforeScroll(this);
    CheckActive();
    current_ = std::min(record + NumbersMoved() - moved, RecordsFetched() - 1);
    if (window_) window_->CurrentChanged();
    SettleNumbers();
    Announce(DataEvent::Scrolled);
    AfterScroll(this);
}

void TDataSet::SetCurrentRecord(int64_t record) {
    if (record < 0 || record >= FetchTo(record + 1) || record == current_) return;
    const int64_t moved = NumbersMoved();
    CheckBrowseMode();
    record += NumbersMoved() - moved;
    bof_ = eof_ = false;
    // What stood there may have gone with the record that was left.
    if (RecordsFetched() > 0) MoveTo(std::clamp(record, FirstRecord(), RecordsFetched() - 1));
}

void TDataSet::First() {
    CheckBrowseMode();
    TryReadingAgain();
    if (window_) window_->GoStart();
    eof_ = RecordsFetched() == FirstRecord();
    bof_ = true;
    MoveTo(eof_ ? -1 : FirstRecord());
}

void TDataSet::Last() {
    CheckBrowseMode();
    TryReadingAgain();
    const int64_t last = LastRecord();
    bof_ = last < FirstRecord();
    eof_ = true;
    MoveTo(bof_ ? -1 : last);
}

int64_t TDataSet::MoveBy(int64_t distance) {
    CheckActive();
    if (distance == 0) return 0;
    CheckBrowseMode();
    if (current_ < 0) return 0;
    TryReadingAgain();
    ShowCurrent();
    SettleNumbers();
    const int64_t wanted = current_ + distance;
    if (window_) {
        window_->StepTo(wanted);
    } else if (std::max<int64_t>(wanted, 0) >= RecordsFetched()) {
        FetchTo(wanted + 1);
    }
    const int64_t target = std::clamp(wanted, FirstRecord(), RecordsFetched() - 1);
    bof_ = wanted < target;
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
    // Mostly it is spelt as the field is.
    for (TField* field : fields_)
        if (field->FieldName() == name) return field;
    for (TField* field : fields_)
        if (AnsiSameText(field->FieldName(), name)) return field;
    return nullptr;
}

TField* TDataSet::FieldByName(const AnsiString& name) const {
    if (TField* field = FindField(name)) return field;
    DatabaseError("Field '" + name + "' not found");
}

void TDataSet::DisableControls() {
    if (disableCount_++ == 0) stateWhenDisabled_ = state_;
}

void TDataSet::EnableControls() {
    if (disableCount_ == 0 || --disableCount_ > 0) return;
    const bool pending = announcePending_, layout = layoutPending_;
    announcePending_ = layoutPending_ = false;
    if (Active() != (stateWhenDisabled_ != dsInactive)) {
        Announce(DataEvent::ActiveChanged);
        return;
    }
    if (state_ != stateWhenDisabled_) Announce(DataEvent::StateChanged);
    if (!Active()) return;
    if (layout) Announce(DataEvent::LayoutChanged);
    if (pending) Announce(DataEvent::RecordsChanged);
}

void TDataSet::Announce(DataEvent event, TField* field) {
    // What is typed has to come into the fields whether or not it is shown.
    const bool alwaysTold = event == DataEvent::UpdateRecord || event == DataEvent::CheckBrowse;
    if (disableCount_ > 0 && !alwaysTold) {
        announcePending_ = true;
        // Closed and opened again: other fields.
        if (event == DataEvent::LayoutChanged || event == DataEvent::ActiveChanged) layoutPending_ = true;
        return;
    }
    FirstError error(event);
    for (size_t i = sources_.size(); i-- > 0;)
        if (i < sources_.size()) error.Of([&] { sources_[i]->Tell(event, field); });
    error.Raise();
}

void RegisterDataClasses() {
    for (int type = 0; type <= static_cast<int>(ftLargeint); ++type)
        AddLinkedClass(FieldClassOf(static_cast<TFieldType>(type)));
    AddLinkedClass(&TDataSource::StaticClass());
}

}  // namespace vyn
