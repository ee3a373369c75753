#include "platform/controls/db_controls.h"

#include <algorithm>

#include "platform/controls/shortcuts.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

namespace db_control_detail {

constexpr char kEnter = 13;
constexpr int kFrame = 2;

// Stands for a long text or a picture that nobody asked for yet.
AnsiString NameOf(const TField* field) { return field ? "(" + field->DisplayLabel() + ")" : AnsiString(); }

}  // namespace db_control_detail

// Labels.

const ClassInfo& TDBText::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&LabelProperties());
        AddDataProperties(own);
        own.Add(LabelProperties().WithDefault("AutoSize", false));
        return Publish(DefineClass<TDBText, TCustomLabel>("TDBText"), own,
                       "Align Alignment Anchors AutoSize BiDiMode Color Constraints DataField DataSource DragCursor "
                       "DragKind DragMode Enabled Font ParentBiDiMode ParentColor ParentFont ParentShowHint PopupMenu "
                       "Transparent ShowHint Visible WordWrap OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver "
                       "OnEndDock OnEndDrag OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TDBText::TDBText(TComponent* owner) : FieldShown(owner) {
    SetShowAccelChar(false);
    SetAutoSize(false);
}

AnsiString TDBText::GetLabelText() const { return Field() ? Field()->DisplayText() : AnsiString(); }

void TDBText::DataChange() { TextChanged(); }

// Texts.

template <class Base>
void TextBound<Base>::DataChange() {
    showing_ = true;
    try {
        ShowField(entered_ && this->CanChange());
    } catch (...) {
        showing_ = false;
        throw;
    }
    showing_ = false;
}

template <class Base>
void TextBound<Base>::Change() {
    if (!showing_ && this->Link().FieldEditing()) this->Link().Modified();
    FieldBound<Base>::Change();
}

template <class Base>
void TextBound<Base>::DoEnter() {
    entered_ = true;
    DataChange();
    FieldBound<Base>::DoEnter();
}

template <class Base>
void TextBound<Base>::DoExit() {
    try {
        FieldBound<Base>::DoExit();
    } catch (...) {
        this->SelectAll();
        throw;
    }
    entered_ = false;
    DataChange();
}

template <class Base>
bool TextBound<Base>::TakeBack() {
    if (!FieldBound<Base>::TakeBack()) return false;
    this->SelectAll();
    return true;
}

template <class Base>
void TextBound<Base>::AcceptKey(char& key) {
    if (static_cast<unsigned char>(key) >= ' ' && this->Field() && !this->Field()->IsValidChar(key)) {
        MessageBeep();
        key = 0;
    }
}

template class TextBound<TCustomMaskEdit>;
template class TextBound<TCustomMemo>;

const ClassInfo& TDBEdit::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&EditProperties());
        AddDataProperties(own);
        return Publish(
            DefineClass<TDBEdit, TCustomMaskEdit>("TDBEdit"), own,
            "Anchors AutoSelect AutoSize BiDiMode BorderStyle CharCase Color Constraints Ctl3D DataField DataSource "
            "DragCursor DragKind DragMode Enabled Font ImeMode ImeName MaxLength ParentBiDiMode ParentColor "
            "ParentCtl3D ParentFont ParentShowHint PasswordChar PopupMenu ReadOnly ShowHint TabOrder TabStop Visible "
            "OnChange OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit "
            "OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

int TDBEdit::MostCharacters() const {
    if (MaxLength() > 0 || !Field() || Field()->DataType() != ftString) return MaxLength();
    return Field()->Size();
}

void TDBEdit::ShowField(bool toEdit) {
    const TField* field = Field();
    SetAlignment(field ? field->Alignment() : taLeftJustify);
    SetEditMask(field ? field->EditMask() : AnsiString());
    if (!field)
        SetEditText({});
    else if (toEdit)
        SetText(field->Text());
    else
        SetEditText(field->DisplayText());
    SetModified(false);
}

void TDBEdit::UpdateData() {
    ValidateEdit();
    Field()->SetText(Text());
}

const ClassInfo& TDBMemo::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&MemoProperties());
        AddDataProperties(own);
        own.Add("AutoDisplay", &TDBMemo::AutoDisplay, &TDBMemo::SetAutoDisplay).Default(true);
        return Publish(
            DefineClass<TDBMemo, TCustomMemo>("TDBMemo"), own,
            "Align Alignment Anchors AutoDisplay BiDiMode BorderStyle Color Constraints Ctl3D DataField DataSource "
            "DragCursor DragKind DragMode Enabled Font ImeMode ImeName MaxLength ParentBiDiMode ParentColor "
            "ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly ScrollBars ShowHint TabOrder TabStop Visible "
            "WantReturns WantTabs WordWrap OnChange OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock "
            "OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock "
            "OnStartDrag");
    }();
    return info;
}

void TDBMemo::SetAutoDisplay(bool value) {
    if (value == autoDisplay_) return;
    autoDisplay_ = value;
    if (value && !HasState(csLoading)) LoadMemo();
}

void TDBMemo::LoadMemo() {
    if (loaded_ || !Field()) return;
    asked_ = true;
    Link().Reset();
    asked_ = false;
    EditingChange();
}

void TDBMemo::DblClick() {
    LoadMemo();
    TextBound::DblClick();
}

void TDBMemo::AcceptKey(char& key) {
    if (!loaded_) {
        if (key == db_control_detail::kEnter) LoadMemo();
        key = 0;
        return;
    }
    TextBound::AcceptKey(key);
}

void TDBMemo::ShowField(bool) {
    const TField* field = Field();
    const bool isLong = field && (field->DataType() == ftMemo || field->DataType() == ftFmtMemo);
    // Another record's text has to be asked for again.
    loaded_ = field && (autoDisplay_ || asked_ || !isLong || (loaded_ && Link().Editing()));
    SetCaption(loaded_ && field ? field->AsString() : db_control_detail::NameOf(field));
    SetModified(false);
}

void TDBMemo::UpdateData() {
    if (loaded_) Field()->SetAsString(TControl::Text());
}

// Pictures.

const ClassInfo& TDBImage::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&WinControlProperties());
        AddDataProperties(own);
        own.Add("AutoDisplay", &TDBImage::AutoDisplay, &TDBImage::SetAutoDisplay).Default(true);
        own.Add("BorderStyle", &TDBImage::BorderStyle, &TDBImage::SetBorderStyle).Default(TBorderStyle::bsSingle);
        own.Add("Center", &TDBImage::Center, &TDBImage::SetCenter).Default(true);
        own.Add("QuickDraw", &TDBImage::QuickDraw, &TDBImage::QuickDraw).Default(true);
        own.Add("Stretch", &TDBImage::Stretch, &TDBImage::SetStretch).Default(false);
        own.Add(WinControlProperties().WithDefault("ParentColor", false));
        own.Add(WinControlProperties().WithDefault("TabStop", true));
        return Publish(
            DefineClass<TDBImage, TCustomControl>("TDBImage"), own,
            "Align Anchors AutoDisplay BorderStyle Center Color Constraints Ctl3D DataField DataSource DragCursor "
            "DragKind DragMode Enabled Font ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu QuickDraw "
            "ReadOnly ShowHint Stretch TabOrder TabStop Visible OnClick OnContextPopup OnDblClick OnDragDrop "
            "OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove "
            "OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TDBImage::TDBImage(TComponent* owner) : FieldBound(owner) {
    SetInitialSize(105, 105);
    SetDefaultColor(clWindow, false);
    SetTabStop(true);
    picture_.OnChange = [this](TObject*) {
        if (!showing_ && EditField()) Link().Modified();
        PeerChanged(PeerChange::Picture);
    };
}

void TDBImage::SetAutoDisplay(bool value) {
    if (value == autoDisplay_) return;
    autoDisplay_ = value;
    if (value && !HasState(csLoading)) LoadPicture();
}
void TDBImage::SetBorderStyle(TBorderStyle value) {
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
}
void TDBImage::SetCenter(bool value) {
    center_ = value;
    PeerChanged(PeerChange::Picture);
}
void TDBImage::SetStretch(bool value) {
    stretch_ = value;
    PeerChanged(PeerChange::Picture);
}

void TDBImage::DataChange() {
    const bool load = autoDisplay_ || (loaded_ && Link().Editing());
    loaded_ = false;
    showing_ = true;
    picture_.SetGraphic(nullptr);
    showing_ = false;
    if (load) LoadPicture();
    PeerChanged(PeerChange::Picture);
}

void TDBImage::LoadPicture() {
    const TField* field = Field();
    if (loaded_ || !field) return;
    loaded_ = true;
    showing_ = true;
    try {
        if (!field->IsNull()) picture_.LoadFromBytes(field->RawBytes());
    } catch (const EInvalidGraphic&) {
        // Bytes of a kind that nobody can show are no trouble for whoever goes through the records.
        picture_.SetGraphic(nullptr);
    }
    showing_ = false;
    PeerChanged(PeerChange::Picture);
}

void TDBImage::UpdateData() {
    if (!picture_.Graphic() || picture_.Empty()) {
        Field()->Clear();
        return;
    }
    TMemoryStream stream;
    picture_.Graphic()->SaveToStream(stream);
    Field()->SetRawBytes(std::string(stream.Bytes()));
}

AnsiString TDBImage::Placeholder() const { return loaded_ ? AnsiString() : db_control_detail::NameOf(Field()); }

TRect TDBImage::DestRect(int width, int height) const {
    const int edge = borderStyle_ == TBorderStyle::bsSingle ? db_control_detail::kFrame : 0;
    const int roomX = std::max(Width() - 2 * edge, 0);
    const int roomY = std::max(Height() - 2 * edge, 0);
    if (stretch_ && width > 0 && height > 0) {
        const double scale = std::min(static_cast<double>(roomX) / width, static_cast<double>(roomY) / height);
        width = std::max(static_cast<int>(width * scale), 1);
        height = std::max(static_cast<int>(height * scale), 1);
    }
    if (!center_) return Bounds(edge, edge, width, height);
    return Bounds(edge + (roomX - width) / 2, edge + (roomY - height) / 2, width, height);
}

void TDBImage::DblClick() {
    LoadPicture();
    FieldBound::DblClick();
}

void TDBImage::KeyDown(uint16_t& key, TShiftState shift) {
    FieldBound::KeyDown(key, shift);
    if (key != VK_DELETE || !shift.Empty() || !CanChange()) return;
    key = 0;
    picture_.SetGraphic(nullptr);
}

void TDBImage::KeyPress(char& key) {
    FieldBound::KeyPress(key);
    if (key == db_control_detail::kEnter) {
        LoadPicture();
        key = 0;
    }
}

bool TDBImage::WantsKey(uint16_t key, TShiftState shift) const {
    return (key == VK_RETURN && !loaded_ && Field()) || FieldBound::WantsKey(key, shift);
}

}  // namespace vyn
