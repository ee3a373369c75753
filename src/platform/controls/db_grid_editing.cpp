// How users change records in a grid: editing in the cell, new and deleted records, marks, search and copies
// (db_grids.h).

#include <algorithm>

#include "platform/controls/db_cell_editor.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/clipboard.h"
#include "platform/system/ticks.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace db_grid_detail {

constexpr char kBackspace = 8;
constexpr uint32_t kSearchPause = 2000;  // ms after which typing begins another search

}  // namespace db_grid_detail

namespace db_grid_detail {

// A looked-up field is edited by those that it is looked up by.
bool MayEdit(const TField& field) {
    if (field.FieldKind() != fkLookup) return field.CanModify();
    const TDataSet* list = field.LookupDataSet();
    if (field.ReadOnly || !list || !list->Active()) return false;
    const std::vector<AnsiString> names = SplitFieldNames(field.KeyFields);
    return !names.empty() && std::all_of(names.begin(), names.end(), [&](const AnsiString& name) {
        const TField* key = field.DataSet()->FindField(name);
        return key && key->CanModify();
    });
}

}  // namespace db_grid_detail

TColumn* TCustomDBGrid::SelectedColumn() const {
    const auto& columns = ShownColumns();
    return selectedColumn_ < static_cast<int>(columns.size()) ? columns[static_cast<size_t>(selectedColumn_)] : nullptr;
}

bool TCustomDBGrid::CanEditShow() const {
    const TColumn* column = SelectedColumn();
    const TField* field = column ? column->Field() : nullptr;
    if (!Has(dgEditing) || Has(dgRowSelect) || ReadOnly || !field || column->ReadOnly() ||
        !db_grid_detail::MayEdit(*field))
        return false;
    if (field->DataType() == ftMemo || field->DataType() == ftFmtMemo || field->DataType() == ftBlob ||
        field->DataType() == ftGraphic)
        return false;
    return DataSource()->AutoEdit || DataSet()->IsEditing();
}

bool TCustomDBGrid::EditorMode() const { return InplaceEditor() != nullptr; }
TWinControl* TCustomDBGrid::InplaceEditor() const { return editor_ ? editor_->Shown() : nullptr; }

void TCustomDBGrid::ShowEditor() {
    if (!CanEditShow() || DataSet()->CurrentRecord() < 0) return;
    if (!editor_) editor_ = std::make_unique<CellEditor>(*this);
    editor_->Show();
}

void TCustomDBGrid::HideEditor() {
    if (editor_) editor_->Hide();
}

void TCustomDBGrid::ProcessLeftOffset(int pixels) {
    leftOffset_ = pixels;
    if (editor_) editor_->Place();
}

void TCustomDBGrid::DataChanged(DataEvent event) {
    switch (event) {
        case DataEvent::ActiveChanged:
            topRecord_ = 0;
            topNumbersMoved_ = DataSet() ? DataSet()->NumbersMoved() : 0;
            shownValid_ = false;
            selectedRows_.Clear();
            searched_.clear();
            HideEditor();
            PeerChanged(PeerChange::Items);
            break;
        case DataEvent::LayoutChanged:
            HideEditor();
            shownValid_ = false;
            PeerChanged(PeerChange::Items);
            break;
        case DataEvent::RecordsChanged:
            PeerChanged(PeerChange::Items);
            KeepCurrentInSight();
            if (editor_) editor_->Reload();
            break;
        case DataEvent::Scrolled:
            HideEditor();
            KeepCurrentInSight();
            PeerChanged(PeerChange::Selection);
            if (Has(dgAlwaysShowEditor) && Focused()) ShowEditor();
            break;
        case DataEvent::StateChanged:
        case DataEvent::RecordChanged:
            if (editor_) editor_->Reload();
            PeerChanged(PeerChange::Invalidate);
            break;
        case DataEvent::UpdateRecord:
            if (editor_) editor_->Commit();
            break;
        case DataEvent::CheckBrowse:
            break;
    }
}

bool TCustomDBGrid::CanInsert() const {
    const TDataSet* data = DataSet();
    return data && Has(dgEditing) && !ReadOnly && data->CanModify();
}

void TCustomDBGrid::MoveDown() {
    TDataSet* data = DataSet();
    const bool emptyNew = data->State() == dsInsert && !data->Modified();
    if (emptyNew && data->CurrentRecord() == data->RecordsFetched() - 1) return;
    data->Next();
    if (data->Eof() && CanInsert() && DataSource()->AutoEdit) data->Append();
}

void TCustomDBGrid::MoveUp() {
    TDataSet* data = DataSet();
    // A new record that nobody filled goes; the one that stood here before is the one above it.
    const bool last = data->CurrentRecord() == data->RecordsFetched() - 1;
    if (data->State() == dsInsert && !data->Modified() && last)
        data->Cancel();
    else
        data->Prior();
}

void TCustomDBGrid::DeleteRecords() {
    TDataSet* data = DataSet();
    if (!CanInsert() || data->CurrentRecord() < 0) return;
    const bool marked = Has(dgMultiSelect) && selectedRows_.Count() > 1;
    const char* question = marked ? "Delete all selected records?" : "Delete record?";
    if (Has(dgConfirmDelete) && MessageDlg(question, mtConfirmation, {mbOK, mbCancel}) == mrCancel) return;
    if (marked)
        selectedRows_.Delete();
    else
        data->Delete();
}

bool TCustomDBGrid::MarkRange() {
    const int64_t from = DataSet()->RecordOf(markedFrom_), to = DataSet()->CurrentRecord();
    if (from < 0) return false;
    selectedRows_.Clear();
    for (int64_t record = std::min(from, to); record <= std::max(from, to); ++record) selectedRows_.Set(record, true);
    return true;
}

void TCustomDBGrid::MarkTo(int64_t distance) {
    TDataSet* data = DataSet();
    if (data->RecordOf(markedFrom_) < 0 || selectedRows_.Count() == 0) markedFrom_ = data->GetBookmark();
    data->MoveBy(distance);
    MarkRange();
}

bool TCustomDBGrid::EditingKey(uint16_t key, TShiftState shift) {
    TDataSet* data = DataSet();
    const bool ctrl = shift.Contains(ssCtrl);
    const bool alt = shift.Contains(ssAlt);
    const bool marks = Has(dgMultiSelect) && shift.Contains(ssShift);
    switch (key) {
        case VK_INSERT:
            if (ctrl) {
                CopyToClipboard();
                return true;
            }
            if (!CanInsert()) return false;
            data->Insert();
            if (Has(dgEditing)) ShowEditor();
            return true;
        case VK_DELETE:
            if (!ctrl) return false;
            DeleteRecords();
            return true;
        case VK_F2:
        case VK_RETURN:
            if (key == VK_RETURN && ctrl) {
                EditButtonClick();
                return true;
            }
            if (!CanEditShow()) return false;
            ShowEditor();
            return true;
        case VK_F4:
        case VK_DOWN:
            if (key == VK_F4 || alt) {
                if (!CanEditShow()) return false;
                ShowEditor();
                if (EditorMode()) editor_->DropDown();
                return true;
            }
            if (!marks) return false;
            MarkTo(1);
            return true;
        case VK_UP:
            if (!marks) return false;
            MarkTo(-1);
            return true;
        case VK_ESCAPE:
            if (!data->IsEditing() || !CanInsert()) return false;
            data->Cancel();
            return true;
        case VK_SPACE:
            if (!ctrl || !Has(dgMultiSelect)) return false;
            selectedRows_.SetCurrentRowSelected(!selectedRows_.CurrentRowSelected());
            markedFrom_ = data->GetBookmark();
            return true;
        case 'C':
            if (!ctrl || alt) return false;
            CopyToClipboard();
            return true;
        default:
            return false;
    }
}

void TCustomDBGrid::KeyPress(char& key) {
    TWinControl::KeyPress(key);
    if (!DataSet() || (static_cast<unsigned char>(key) < ' ' && key != db_grid_detail::kBackspace)) return;
    if (CanEditShow()) {
        ShowEditor();
        if (EditorMode()) editor_->TypeFirst(key);
    } else {
        SearchFor(key);
    }
    key = 0;
}

// Typing in a grid that is only looked at goes to the record that begins with what is typed.
void TCustomDBGrid::SearchFor(char key) {
    const TField* field = SelectedField();
    if (!field) return;
    const uint32_t now = TickCount();
    if (now - searchedAt_ > db_grid_detail::kSearchPause || searchedColumn_ != selectedColumn_) searched_.clear();
    searchedAt_ = now;
    searchedColumn_ = selectedColumn_;
    AnsiString wanted = searched_;
    if (key == db_grid_detail::kBackspace) {
        if (!wanted.empty()) wanted.pop_back();
        searched_ = wanted;
        if (wanted.empty()) return;
    } else {
        wanted += key;
    }
    bool found = false;
    try {
        found = DataSet()->Locate(field->FieldName(), Variant(wanted), {loCaseInsensitive, loPartialKey});
    } catch (const EConvertError&) {
        // What is typed is no number, or no date yet: there is no such record.
    } catch (const EVariantError&) {
    }
    if (found)
        searched_ = wanted;
    else
        MessageBeep();
}

void TCustomDBGrid::DoExit() {
    HideEditor();
    TDataSet* data = DataSet();
    if (data && Has(dgCancelOnExit) && data->State() == dsInsert && !data->Modified()) data->Cancel();
    TWinControl::DoExit();
}

void TCustomDBGrid::ProcessCellClick(int64_t record, int column, TShiftState shift) {
    TDataSet* data = DataSet();
    const auto& columns = ShownColumns();
    if (!data || column < 0 || column >= static_cast<int>(columns.size())) return;
    TColumn* clicked = columns[static_cast<size_t>(column)];
    const bool again = record == data->CurrentRecord() && column == selectedColumn_ && Focused();
    SetSelectedIndex(column);
    data->SetCurrentRecord(record);
    if (Has(dgMultiSelect)) {
        if (shift.Contains(ssCtrl)) {
            selectedRows_.SetCurrentRowSelected(!selectedRows_.CurrentRowSelected());
            markedFrom_ = data->GetBookmark();
        } else if (!shift.Contains(ssShift) || !MarkRange()) {
            selectedRows_.Clear();
            selectedRows_.SetCurrentRowSelected(true);
            markedFrom_ = data->GetBookmark();
        }
    }
    // The second click on a cell edits it.
    if ((again && shift.Empty()) || Has(dgAlwaysShowEditor)) ShowEditor();
    OnCellClick(clicked);
}

void TCustomDBGrid::ProcessCellDblClick(int64_t record, int column) {
    const TDataSet* data = DataSet();
    if (data && record == data->CurrentRecord() && column == selectedColumn_) ShowEditor();
}

void TCustomDBGrid::ProcessTitleClick(int column) {
    const auto& columns = ShownColumns();
    if (column < 0 || column >= static_cast<int>(columns.size())) return;
    TColumn* clicked = columns[static_cast<size_t>(column)];
    if (OnTitleClick)
        OnTitleClick(clicked);
    else
        SortBy(*clicked);
}

int TCustomDBGrid::SortDirection(const TColumn& column) const {
    const TDataSet* data = DataSet();
    if (!data || column.FieldName().empty()) return 0;
    const AnsiString name = "[" + column.FieldName() + "]";
    if (AnsiSameText(data->Sort(), name)) return 1;
    return AnsiSameText(data->Sort(), name + " DESC") ? -1 : 0;
}

void TCustomDBGrid::SortBy(const TColumn& column) {
    TDataSet* data = DataSet();
    const TField* field = column.Field();
    if (!data || !field || field->DataType() == ftBlob || field->DataType() == ftGraphic) return;
    HideEditor();
    const AnsiString name = "[" + column.FieldName() + "]";
    data->SetSort(SortDirection(column) > 0 ? name + " DESC" : name);
}

void TCustomDBGrid::CopyToClipboard() {
    TDataSet* data = DataSet();
    if (!data || data->CurrentRecord() < 0) return;
    const auto cell = [&](int64_t record, const TColumn& column) {
        AnsiString text = CellText(record, column);
        for (char& c : text)
            if (c == '\t' || c == '\r' || c == '\n') c = ' ';
        return text;
    };
    const bool marked = Has(dgMultiSelect) && selectedRows_.Count() > 0;
    if (!marked && !Has(dgRowSelect)) {
        if (const TColumn* column = SelectedColumn()) Clipboard()->SetAsText(CellText(data->CurrentRecord(), *column));
        return;
    }
    AnsiString text;
    const auto add = [&](int64_t record) {
        bool first = true;
        for (const TColumn* column : ShownColumns()) {
            if (!std::exchange(first, false)) text += '\t';
            text += cell(record, *column);
        }
        text += "\r\n";
    };
    if (!marked) {
        add(data->CurrentRecord());
    } else if (data->IsPaged()) {
        // Where they stand only the engine knows: as they were first seen.
        const DisabledControls quiet(*data);
        const TBookmark here = data->GetBookmark();
        for (int i = 0; i < selectedRows_.Count(); ++i) {
            data->GotoBookmark(selectedRows_.Items(i));
            add(data->CurrentRecord());
        }
        data->GotoBookmark(here);
    } else {
        for (int64_t record = 0; record < data->RecordsFetched(); ++record)
            if (selectedRows_.Contains(record)) add(record);
    }
    Clipboard()->SetAsText(text);
}

// Marks.

int TBookmarkList::Count() const {
    const TDataSet* data = grid_.DataSet();
    return static_cast<int>(std::count_if(items_.begin(), items_.end(),
                                          [&](TBookmark bookmark) { return data && data->BookmarkValid(bookmark); }));
}

TBookmark TBookmarkList::Items(int index) const {
    const TDataSet* data = grid_.DataSet();
    int left = index;
    for (const TBookmark bookmark : items_)
        if (data && data->BookmarkValid(bookmark) && left-- == 0) return bookmark;
    throw EListError("List index out of bounds (" + IntToStr(index) + ")");
}

bool TBookmarkList::CurrentRowSelected() const { return grid_.DataSet() && Contains(grid_.DataSet()->CurrentRecord()); }

void TBookmarkList::SetCurrentRowSelected(bool value) {
    if (grid_.DataSet()) Set(grid_.DataSet()->CurrentRecord(), value);
}

bool TBookmarkList::Contains(int64_t record) const {
    const TDataSet* data = grid_.DataSet();
    if (!data || items_.empty()) return false;
    const TBookmark bookmark = data->BookmarkOf(record);
    return !bookmark.Empty() && std::binary_search(items_.begin(), items_.end(), bookmark,
                                                   [](TBookmark a, TBookmark b) { return a.Identity < b.Identity; });
}

void TBookmarkList::Set(int64_t record, bool marked) {
    const TDataSet* data = grid_.DataSet();
    const TBookmark bookmark = data ? data->BookmarkOf(record) : TBookmark();
    if (bookmark.Empty()) return;
    const auto place = std::lower_bound(items_.begin(), items_.end(), bookmark,
                                        [](TBookmark a, TBookmark b) { return a.Identity < b.Identity; });
    const bool there = place != items_.end() && *place == bookmark;
    if (there == marked) return;
    if (marked)
        items_.insert(place, bookmark);
    else
        items_.erase(place);
    grid_.Invalidate();
}

void TBookmarkList::Clear() {
    items_.clear();
    grid_.Invalidate();
}

void TBookmarkList::Delete() {
    TDataSet* data = grid_.DataSet();
    if (!data) return;
    const DisabledControls disabled(*data);
    // Those that could not be deleted stay marked.
    while (!items_.empty()) {
        if (data->BookmarkValid(items_.back())) {
            data->GotoBookmark(items_.back());
            data->Delete();
        }
        items_.pop_back();
    }
}

}  // namespace vyn
