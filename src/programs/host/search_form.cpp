#include "programs/host/search_form.h"

#include <algorithm>

#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/timers.h"
#include "platform/objects/component_handle.h"
#include "platform/system/application.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "programs/host/looked_up_record.h"
#include "programs/host/search_fields.h"

namespace vyn {

const ClassInfo& TSearchGrid::StaticClass() {
    static const ClassInfo info = DefineClass<TSearchGrid, TDBGrid>("TSearchGrid");
    return info;
}

const ClassInfo& TFRMCerca::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMCerca, TForm>("TFRMCerca")
                                      .Method("CercaChange", &TFRMCerca::CercaChange)
                                      .Method("CercaKeyDown", &TFRMCerca::CercaKeyDown)
                                      .Method("PausaTimer", &TFRMCerca::PausaTimer)
                                      .Method("AcceptarClick", &TFRMCerca::AcceptarClick)
                                      .Method("NouClick", &TFRMCerca::NouClick);
    return info;
}

void TSearchGrid::ProcessCellDblClick(int64_t record, int column) {
    const TDataSet* data = DataSet();
    if (data && column >= 0 && record == data->CurrentRecord()) OnRecordChosen(this);
}

TFRMCerca::~TFRMCerca() {
    BeginDestruction();
    DestroyComponents();
}

template <class T>
T& TFRMCerca::Part(const char* name) const {
    return *ObjectCast<T>(FindComponent(name));
}

bool TFRMCerca::Run(const SearchRequest& request) {
    // Owned by the application: it is gone after the loop also when that ends with the program.
    auto* form = CreateForm<TFRMCerca>(Application());
    const int number = form->TComponent::Handle();
    const auto stillHere = [&] { return ComponentFromHandle(number) == form; };
    bool chosen = false;
    try {
        form->Prepare(request);
        chosen = form->ShowModal() == mrOk && stillHere() && form->request_.DataSet;
        if (stillHere()) form->Restore(chosen);
    } catch (...) {
        if (stillHere()) {
            // What went wrong is told; the order is put back as far as that goes.
            try {
                form->Restore(false);
            } catch (const EDatabaseError&) {
            }
            delete form;
        }
        throw;
    }
    if (stillHere()) delete form;
    return chosen;
}

void TFRMCerca::Prepare(const SearchRequest& request) {
    request_ = request;
    request_.DataSet->FreeNotification(this);
    orderBefore_ = request_.DataSet->Sort();
    recordBefore_ = request_.DataSet->GetBookmark();
    SetCaption(request_.Title);
    grid_ = new TSearchGrid(this);
    grid_->SetName("Graella");
    grid_->ReadOnly = true;
    grid_->SetBorderStyle(TBorderStyle::bsNone);
    grid_->SetOptions({dgTitles, dgColumnResize, dgColLines, dgRowLines, dgRowSelect, dgAlwaysShowSelection});
    grid_->SetAlign(alClient);
    grid_->SetParent(this);
    if (request_.Columns && request_.Columns->HasOwnColumns()) grid_->SetColumns(request_.Columns->Columns());
    source_ = new TDataSource(this);
    source_->AutoEdit = false;
    source_->SetDataSet(request_.DataSet);
    grid_->SetDataSource(source_);
    ShowSearchFields();
    grid_->OnRecordChosen = [this](TObject*) { Choose(); };
    grid_->OnTitleClick = [this](TColumn* column) { TitleClick(column); };
    source_->OnDataChange = [this](TObject*, TField* field) {
        if (!field) RecordMoved();
    };
    Part<TButton>("Nou").SetVisible(static_cast<bool>(request_.Add));
    auto& line = Part<TCustomEdit>("Cerca");
    line.SetCaption(request_.Text);
    if (request_.Typed)
        line.SetSelStart(static_cast<int>(request_.Text.size()));
    else
        line.SelectAll();
    SearchIn(request_.FieldName);
    // Of several that are called alike, the current one stays.
    const TField* field = request_.DataSet->FindField(fieldName_);
    if (request_.Typed || !field || !AnsiSameText(field->AsString(), request_.Text))
        Seek();
    else
        RecordMoved();
    typed_ = request_.Typed;
}

void TFRMCerca::ShowSearchFields() {
    const TComponent* screen = request_.DataSet->Owner();
    if (screen) fields_ = SearchFieldsOf(*screen, *request_.DataSet);
    if (fields_.empty()) return;
    // The field that the text is looked for in can be come back to.
    const bool listed = std::any_of(fields_.begin(), fields_.end(),
                                    [&](const AnsiString& each) { return SameText(each, request_.FieldName); });
    if (!listed && request_.DataSet->FindField(request_.FieldName)) fields_.insert(fields_.begin(), request_.FieldName);
    ShowFirst(*grid_, fields_);
}

void TFRMCerca::Restore(bool chosen) {
    TDataSet* data = request_.DataSet;
    if (!data || !grid_) return;
    grid_->SetDataSource(nullptr);
    const DisabledControls quiet(*data);
    // Closed when the database has gone: it opens in its order again.
    data->SetSort(orderBefore_);
    if (!data->Active()) return;
    if (!chosen && data->BookmarkValid(recordBefore_)) data->GotoBookmark(recordBefore_);
}

void TFRMCerca::SearchIn(const AnsiString& fieldName) {
    TDataSet& data = *request_.DataSet;
    const TField* field = data.FindField(fieldName);
    // What cannot be searched in is not: the first column is.
    if (!field && !grid_->ShownColumns().empty()) field = grid_->ShownColumns().front()->Field();
    fieldName_ = field ? field->FieldName() : AnsiString();
    Part<TLabel>("PerCamp").SetCaption(field ? "per " + field->DisplayLabel() : AnsiString());
    for (const TColumn* column : grid_->ShownColumns())
        if (field && column->Field() == field) Part<TLabel>("PerCamp").SetCaption("per " + column->Title()->Caption());
    // Fields that are reckoned here would have all records read.
    const bool sortable = field && field->FieldKind() == fkData;
    const AnsiString order = "[" + fieldName_ + "]";
    if (!sortable || AnsiSameText(data.Sort(), order)) return;
    const Seeking here(*this);
    data.SetSort(order);
}

void TFRMCerca::SearchInNext(int step) {
    const auto& columns = grid_->ShownColumns();
    // The fields that can be searched stand first.
    const auto count = static_cast<int>(fields_.empty() ? columns.size() : fields_.size());
    int at = step > 0 ? -1 : count;
    for (int i = 0; i < count; ++i)
        if (SameText(columns[static_cast<size_t>(i)]->FieldName(), fieldName_)) at = i;
    for (int tried = 0; tried < count; ++tried) {
        at = (at + step + count) % count;
        TColumn* column = columns[static_cast<size_t>(at)];
        const TField* field = column->Field();
        if (!field || ColumnKindOf(field->DataType()) == ColumnKind::Bytes) continue;
        if (!SameText(column->FieldName(), fieldName_)) TitleClick(column);
        return;
    }
}

void TFRMCerca::TitleClick(TColumn* column) {
    TDataSet* data = request_.DataSet;
    if (!data || !column->Field()) return;
    const Seeking here(*this);
    // A second click turns the order round.
    if (SameText(fieldName_, column->FieldName())) return grid_->SortBy(*column);
    SearchIn(column->FieldName());
    grid_->SetTopRecord(data->CurrentRecord());
}

void TFRMCerca::Seek() {
    Part<TTimer>("Pausa").SetEnabled(false);
    waiting_ = false;
    TDataSet* data = request_.DataSet;
    if (!data) return;
    const AnsiString text = Part<TCustomEdit>("Cerca").Text();
    const Seeking here(*this);
    bool found = false;
    try {
        // Closed when the database failed before.
        if (!data->Active()) data->Open();
        found = text.empty() || LookedUpRecord::Goto(*data, fieldName_, text);
    } catch (...) {
        // The current record is not the one that was typed: Enter searches for that first.
        waiting_ = true;
        ShowState("No s'ha pogut cercar: torneu-ho a provar.", true);
        throw;
    }
    if (found) grid_->SetTopRecord(data->CurrentRecord());
    ShowState(found ? AnsiString() : "Cap registre no comença així."_w, found && !data->IsEmpty());
}

void TFRMCerca::ShowState(const AnsiString& text, bool canAccept) {
    Part<TLabel>("Missatge").SetCaption(text);
    Part<TButton>("Acceptar").SetEnabled(canAccept);
}

void TFRMCerca::RecordMoved() {
    if (seeking_ == 0 && request_.DataSet) ShowState({}, request_.DataSet->Active() && !request_.DataSet->IsEmpty());
}

void TFRMCerca::CercaChange(TObject*) {
    typed_ = waiting_ = true;
    auto& pause = Part<TTimer>("Pausa");
    pause.SetEnabled(false);
    pause.SetEnabled(true);
}

void TFRMCerca::PausaTimer(TObject*) { Seek(); }

void TFRMCerca::CercaKeyDown(TObject*, uint16_t& key, TShiftState shift) {
    const bool plain = !shift.Contains(ssAlt) && !shift.Contains(ssShift);
    switch (key) {
        case VK_UP:
        case VK_DOWN:
        case VK_PRIOR:
        case VK_NEXT:
        case VK_HOME:
        case VK_END:
            if (!plain) return;
            // From where the typed text stands.
            if (waiting_) Seek();
            grid_->KeyDown(key, shift);
            key = 0;
            return;
        case VK_F3:
            SearchInNext(shift.Contains(ssShift) ? -1 : 1);
            key = 0;
            return;
        default:
            return;
    }
}

void TFRMCerca::Choose() {
    if (waiting_) Seek();
    const TDataSet* data = request_.DataSet;
    if (!data || !data->Active() || !Part<TButton>("Acceptar").Enabled()) return MessageBeep();
    SetModalResult(mrOk);
}

void TFRMCerca::AcceptarClick(TObject*) { Choose(); }

void TFRMCerca::NouClick(TObject*) {
    if (!request_.Add) return;
    const int number = TComponent::Handle();
    if (request_.Add(fieldName_, typed_ ? Part<TCustomEdit>("Cerca").Text() : AnsiString()) &&
        ComponentFromHandle(number) == this)
        SetModalResult(mrOk);
}

void TFRMCerca::Notification(TComponent* component, TOperation operation) {
    TForm::Notification(component, operation);
    if (operation != opRemove || component != request_.DataSet || !component) return;
    // There is nothing to choose from any more.
    request_.DataSet = nullptr;
    SetModalResult(mrCancel);
}

}  // namespace vyn
