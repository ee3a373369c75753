#include "platform/controls/db_choices.h"

#include <string_view>

#include "platform/text/compare.h"

namespace vyn {

namespace db_choice_detail {

// The first of texts separated by semicolons, and whether one of them is the text, without regard to case.
std::string_view FirstOf(std::string_view list) { return list.substr(0, list.find(';')); }
bool Holds(std::string_view list, const AnsiString& text) {
    while (true) {
        const size_t cut = list.find(';');
        if (AnsiSameText(AnsiString(list.substr(0, cut)), text)) return true;
        if (cut == std::string_view::npos) return false;
        list.remove_prefix(cut + 1);
    }
}

}  // namespace db_choice_detail

// Lines.

const ClassInfo& TDBListBox::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&ListBoxProperties());
        AddDataProperties(own);
        return Publish(
            DefineClass<TDBListBox, TCustomListBox>("TDBListBox"), own,
            "Align Anchors BiDiMode BorderStyle Color Constraints Ctl3D DataField DataSource DragCursor DragKind "
            "DragMode Enabled Font ImeMode ImeName IntegralHeight ItemHeight Items ParentBiDiMode ParentColor "
            "ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly ShowHint Style TabOrder TabStop TabWidth Visible "
            "OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnDrawItem OnEndDock OnEndDrag OnEnter OnExit "
            "OnKeyDown OnKeyPress OnKeyUp OnMeasureItem OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

void TDBListBox::DataChange() { SetItemIndex(Field() ? Items()->IndexOf(Field()->Text()) : -1); }

void TDBListBox::UpdateData() { Field()->SetText(ItemIndex() >= 0 ? Items()->Get(ItemIndex()) : AnsiString()); }

void TDBListBox::ProcessSelect(int itemIndex, const std::vector<int>& selected) {
    if (itemIndex != ItemIndex() && !EditField()) {
        PeerChanged(PeerChange::Selection);
        return;
    }
    if (itemIndex != ItemIndex()) Link().Modified();
    FieldBound::ProcessSelect(itemIndex, selected);
}

// A text and lines.

const ClassInfo& TDBComboBox::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&ComboBoxProperties());
        AddDataProperties(own);
        return Publish(
            DefineClass<TDBComboBox, TCustomComboBox>("TDBComboBox"), own,
            "Style Anchors BiDiMode CharCase Color Constraints Ctl3D DataField DataSource DragCursor DragKind DragMode "
            "DropDownCount Enabled Font ImeMode ImeName ItemHeight Items ParentBiDiMode ParentColor ParentCtl3D "
            "ParentFont ParentShowHint PopupMenu ReadOnly ShowHint Sorted TabOrder TabStop Visible OnChange OnClick "
            "OnContextPopup OnDblClick OnDragDrop OnDragOver OnDrawItem OnDropDown OnEndDock OnEndDrag OnEnter OnExit "
            "OnKeyDown OnKeyPress OnKeyUp OnMeasureItem OnStartDock OnStartDrag");
    }();
    return info;
}

void TDBComboBox::DataChange() {
    // While the user looks for a line the list stays as it is.
    if (DroppedDown() && Link().Editing()) return;
    const AnsiString text = Field() ? Field()->Text() : AnsiString();
    const int index = text.empty() ? -1 : Items()->IndexOf(text);
    if (HasEdit() && index < 0) {
        SetItemIndex(-1);
        SetCaption(text);
    } else {
        SetItemIndex(index);
    }
}

void TDBComboBox::UpdateData() { Field()->SetText(Text()); }

void TDBComboBox::ProcessTextEdit(const AnsiString& text, int selStart, int selLength) {
    if (text != Text() && !EditField()) {
        PeerChanged(PeerChange::Text);
        return;
    }
    if (text != Text()) Link().Modified();
    FieldBound::ProcessTextEdit(text, selStart, selLength);
}

void TDBComboBox::ProcessSelect(int index) {
    if (!EditField()) {
        PeerChanged(PeerChange::Selection);
        PeerChanged(PeerChange::Text);
        return;
    }
    Link().Modified();
    FieldBound::ProcessSelect(index);
}

// Boxes.

const ClassInfo& TDBCheckBox::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&CheckBoxProperties());
        AddDataProperties(own);
        own.Add("ValueChecked", &TDBCheckBox::ValueChecked, &TDBCheckBox::SetValueChecked);
        own.Add("ValueUnchecked", &TDBCheckBox::ValueUnchecked, &TDBCheckBox::SetValueUnchecked);
        return Publish(
            DefineClass<TDBCheckBox, TCustomCheckBox>("TDBCheckBox"), own,
            "Alignment AllowGrayed Anchors BiDiMode Caption Color Constraints Ctl3D DataField DataSource "
            "DragCursor DragKind DragMode Enabled Font ParentBiDiMode ParentColor ParentCtl3D ParentFont "
            "ParentShowHint PopupMenu ReadOnly ShowHint TabOrder TabStop ValueChecked ValueUnchecked Visible "
            "OnClick OnContextPopup OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown "
            "OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

void TDBCheckBox::SetValueChecked(const AnsiString& value) {
    checkedText_ = value;
    DataChange();
}
void TDBCheckBox::SetValueUnchecked(const AnsiString& value) {
    uncheckedText_ = value;
    DataChange();
}

TCheckBoxState TDBCheckBox::FieldState() const {
    const TField* field = Field();
    if (!field) return cbUnchecked;
    if (field->IsNull()) return cbGrayed;
    if (field->DataType() == ftBoolean) return field->AsBoolean() ? cbChecked : cbUnchecked;
    const AnsiString text = field->Text();
    if (db_choice_detail::Holds(checkedText_, text)) return cbChecked;
    return db_choice_detail::Holds(uncheckedText_, text) ? cbUnchecked : cbGrayed;
}

void TDBCheckBox::DataChange() {
    if (FieldState() != State()) PutState(FieldState());
}

void TDBCheckBox::UpdateData() {
    if (State() == cbGrayed)
        Field()->Clear();
    else if (Field()->DataType() == ftBoolean)
        Field()->SetAsBoolean(Checked());
    else
        Field()->SetText(AnsiString(db_choice_detail::FirstOf(Checked() ? checkedText_ : uncheckedText_)));
}

void TDBCheckBox::Toggle() {
    if (!EditField()) {
        PeerChanged(PeerChange::Selection);
        return;
    }
    Link().Modified();
    FieldBound::Toggle();
}

// Radio buttons.

const ClassInfo& TDBRadioGroup::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&RadioGroupProperties());
        AddDataProperties(own);
        own.Add("Values", &TDBRadioGroup::Values, &TDBRadioGroup::SetValues);
        own.Event("OnChange", &TDBRadioGroup::OnChange);
        return Publish(DefineClass<TDBRadioGroup, TCustomRadioGroup>("TDBRadioGroup"), own,
                       "Align Anchors BiDiMode Caption Color Columns Constraints Ctl3D DataField DataSource DragCursor "
                       "DragKind DragMode Enabled Font Items ParentBiDiMode ParentColor ParentCtl3D ParentFont "
                       "ParentShowHint PopupMenu ReadOnly ShowHint TabOrder TabStop Values Visible OnChange OnClick "
                       "OnContextPopup OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnStartDock "
                       "OnStartDrag");
    }();
    return info;
}

TDBRadioGroup::TDBRadioGroup(TComponent* owner) : FieldBound(owner) {
    values_.OnChange = [this](TObject*) { DataChange(); };
}

AnsiString TDBRadioGroup::ValueOf(int index) {
    if (index < values_.Count() && !values_.At(index).empty()) return values_.At(index);
    return index < Items()->Count() ? Items()->Get(index) : AnsiString();
}

void TDBRadioGroup::Loaded() {
    FieldBound::Loaded();
    ShowValue();
}

void TDBRadioGroup::DataChange() { SetValue(Field() ? Field()->Text() : AnsiString()); }

void TDBRadioGroup::ShowValue() {
    int index = -1;
    for (int i = Items()->Count() - 1; i >= 0; --i)
        if (ValueOf(i) == value_) index = i;
    showing_ = true;
    SetItemIndex(index);
    showing_ = false;
}

void TDBRadioGroup::SetValue(const AnsiString& value) {
    const bool differs = value != value_;
    value_ = value;
    if (!HasState(csLoading)) ShowValue();
    if (differs) OnChange(this);
}

void TDBRadioGroup::UpdateData() { Field()->SetText(value_); }

void TDBRadioGroup::Click() {
    if (showing_) return;
    FieldBound::Click();
    if (ItemIndex() < 0) return;
    Link().Modified();
    const AnsiString chosen = ValueOf(ItemIndex());
    if (chosen == value_) return;
    value_ = chosen;
    OnChange(this);
}

}  // namespace vyn
