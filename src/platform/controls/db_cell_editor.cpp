#include "platform/controls/db_cell_editor.h"

#include <algorithm>
#include <utility>

#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"
#include "platform/text/compare.h"

namespace vyn {

namespace cell_editor_detail {

constexpr char kBackspace = 8;
constexpr int kButtonWidth = 18;

}  // namespace cell_editor_detail

AnsiString TCustomDBGrid::CellEditor::Text() const { return shown_ == text_.get() ? text_->Text() : lines_->Text(); }

void TCustomDBGrid::CellEditor::Show() {
    TColumn* column = grid_.SelectedColumn();
    if (shown_ || !column) return;
    // The lines of the column, or the two words of a field that is true or false.
    AnsiString lines = column->PickList()->Text();
    const TField* field = column->Field();
    if (lines.empty() && field->DataType() == ftBoolean && column->ButtonStyle == cbsAuto) {
        lines = field->DisplayValues;
        std::replace(lines.begin(), lines.end(), ';', '\n');
    }
    if (field->FieldKind() == fkLookup) {
        if (!lookup_) lookup_ = std::make_unique<LookupEditor>(*this);
        lookup_->SetDropDownRows(column->DropDownRows);
        lookup_->SetDataField(field->FieldName());
        lookup_->SetDataSource(grid_.DataSource());
        shown_ = lookup_.get();
    } else if (!lines.empty() && column->ButtonStyle != cbsNone) {
        if (!lines_) lines_ = std::make_unique<LinesEditor>(*this);
        lines_->Items()->SetText(lines);
        lines_->SetDropDownCount(column->DropDownRows);
        shown_ = lines_.get();
    } else {
        if (!text_) text_ = std::make_unique<TextEditor>(*this);
        shown_ = text_.get();
    }
    if (column->ButtonStyle == cbsEllipsis && !button_) button_ = std::make_unique<Button>(grid_);
    Reload();
    Place();
    shown_->SetVisible(true);
    if (button_) button_->SetVisible(column->ButtonStyle == cbsEllipsis);
    if (grid_.CanFocus() && GetParentForm(&grid_)) shown_->SetFocus();
    if (shown_ == text_.get()) text_->SelectAll();
}

void TCustomDBGrid::CellEditor::Place() {
    const TColumn* column = grid_.SelectedColumn();
    const TDataSet* data = grid_.DataSet();
    if (!shown_ || !column || !data) return;
    TRect cell = grid_.CellRect(grid_.SelectedIndex(), data->CurrentRecord());
    if (button_ && column->ButtonStyle == cbsEllipsis) {
        button_->SetBounds(cell.Right - cell_editor_detail::kButtonWidth, cell.Top, cell_editor_detail::kButtonWidth,
                           cell.Height());
        cell.Right -= cell_editor_detail::kButtonWidth;
    }
    shown_->SetBounds(cell.Left, cell.Top, cell.Width(), cell.Height());
}

void TCustomDBGrid::CellEditor::Hide() {
    if (!shown_) return;
    if (shown_->Focused() && GetParentForm(&grid_) && grid_.CanFocus()) {
        grid_.SetFocus();  // leaves the editor, which commits and comes back here
        return;
    }
    Commit();
    TWinControl* hidden = std::exchange(shown_, nullptr);
    hidden->SetVisible(false);
    if (hidden == lookup_.get()) lookup_->SetDataSource(nullptr);
    if (button_) button_->SetVisible(false);
    grid_.Invalidate();
}

void TCustomDBGrid::CellEditor::Commit() {
    if (!shown_ || !modified_) return;
    TField* field = grid_.SelectedField();
    if (!field || !field->DataSet()->IsEditing()) {
        modified_ = false;
        return;
    }
    if (shown_ == text_.get()) text_->ValidateEdit();
    field->SetText(Text());
    modified_ = false;
    Reload();
}

void TCustomDBGrid::CellEditor::Reload() {
    const TField* field = grid_.SelectedField();
    if (!shown_ || modified_ || shown_ == lookup_.get()) return;
    loading_ = true;
    const AnsiString text = field ? field->Text() : AnsiString();
    if (shown_ == text_.get()) {
        text_->SetEditMask(field ? field->EditMask() : AnsiString());
        text_->SetMaxLength(field && field->DataType() == ftString && !text_->IsMasked() ? field->Size() : 0);
        text_->SetAlignment(grid_.SelectedColumn()->Alignment());
        text_->SetText(text);
        text_->SetModified(false);
    } else {
        lines_->SetItemIndex(lines_->Items()->IndexOf(text));
        if (lines_->ItemIndex() < 0) lines_->SetCaption(text);
    }
    loading_ = false;
}

void TCustomDBGrid::CellEditor::TypeFirst(char key) {
    if (shown_ == lookup_.get()) {
        lookup_->ProcessKeyPress(key);
        return;
    }
    const TField* field = grid_.SelectedField();
    if (field && !field->IsValidChar(key)) {
        MessageBeep();
        return;
    }
    const AnsiString typed = key == cell_editor_detail::kBackspace ? AnsiString() : AnsiString(1, key);
    if (shown_ == text_.get()) {
        const int length = static_cast<int>(typed.size());
        if (text_->IsMasked()) text_->Clear();
        text_->ProcessTextEdit(typed, length, 0);
        text_->PeerChanged(PeerChange::Text);
        text_->PeerChanged(PeerChange::Selection);
    } else {
        lines_->ProcessTextEdit(typed, static_cast<int>(typed.size()), 0);
        lines_->PeerChanged(PeerChange::Text);
    }
}

void TCustomDBGrid::CellEditor::DropDown() {
    if (shown_ == lines_.get() && lines_)
        lines_->SetDroppedDown(true);
    else if (shown_ == lookup_.get() && lookup_)
        lookup_->DropDown();
    else if (grid_.SelectedColumn()->ButtonStyle == cbsEllipsis)
        grid_.EditButtonClick();
}

bool TCustomDBGrid::CellEditor::Key(uint16_t key, TShiftState shift) {
    switch (key) {
        case VK_ESCAPE: {
            const bool changed = std::exchange(modified_, false);
            Reload();
            if (!changed) Hide();
            return true;
        }
        case VK_RETURN:
            if (shift.Contains(ssCtrl))
                grid_.EditButtonClick();
            else
                Hide();
            return true;
        case VK_TAB: {
            const bool forward = !shift.Contains(ssShift);
            Hide();
            if (grid_.WantsKey(key, shift))
                grid_.KeyDown(key, shift);
            else if (TCustomForm* form = GetParentForm(&grid_))
                form->SelectNext(&grid_, forward, true);
            return true;
        }
        case VK_UP:
        case VK_DOWN:
            if (shift.Contains(ssAlt)) {
                DropDown();
                return true;
            }
            [[fallthrough]];
        case VK_PRIOR:
        case VK_NEXT:
            Hide();
            grid_.KeyDown(key, shift);
            return true;
        default:
            return false;
    }
}

}  // namespace vyn
