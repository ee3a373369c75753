#include "controls/base_edit_box.h"

#include <algorithm>

#include "datasources/data_source_classes.h"
#include "platform/controls/enum_names.h"
#include "platform/objects/component_handle.h"

namespace vyn {

namespace base_edit_box_detail {

constexpr int kFrame = 2;          // what the frame takes on each side
constexpr int kAroundPicture = 6;  // a button leaves this much beside its picture, both sides together

enum PicturePlace { Up = 0, Disabled = 1, Pressed = 2 };

}  // namespace base_edit_box_detail

VYN_ENUM_NAMES(TCtrlBorderStyle, "cbs_MouseOver", "cbs_Focused")

// The button.

const ClassInfo& TVynEditBoxSpeedButton::StaticClass() {
    static const ClassInfo info = DefineClass<TVynEditBoxSpeedButton, TGraphicControl>("TVynEditBoxSpeedButton");
    return info;
}

TVynEditBoxSpeedButton::TVynEditBoxSpeedButton(TBaseVynEditBox& box) : TGraphicControl(&box), box_(box) {
    ControlStyle = {csClickEvents, csCaptureMouse, csOpaque};
    glyph_.OnChange = [this](TObject*) { GlyphChanged(); };
}

void TVynEditBoxSpeedButton::GlyphChanged() {
    ownImages_.reset();
    if (glyph_.Width() > 0 && glyph_.Height() > 0) {
        ownImages_ = std::make_unique<TImageList>(nullptr);
        AddBitmapToImageList(*ownImages_, glyph_);
    }
    box_.PlaceButton();
    PeerChanged(PeerChange::Picture);
}

const TCustomImageList* TVynEditBoxSpeedButton::Images() const {
    return ownImages_ ? ownImages_.get() : box_.ButtonImages();
}

TVynEditBoxSpeedButton::State TVynEditBoxSpeedButton::CurrentState() const {
    if (!EffectivelyEnabled()) return State::Disabled;
    if (down_ && over_) return State::Pressed;
    return over_ || down_ ? State::Hot : State::Normal;
}

int TVynEditBoxSpeedButton::ImageIndex() const {
    using namespace base_edit_box_detail;
    const TCustomImageList* images = Images();
    if (!images || images->Count() == 0) return -1;
    const State state = CurrentState();
    if (state == State::Disabled && images->Count() > Disabled) return Disabled;
    if (state == State::Pressed && images->Count() > Pressed) return Pressed;
    return Up;
}

void TVynEditBoxSpeedButton::Click() {
    const int alive = Handle();
    if (box_.CanFocus() && !box_.Focused()) box_.SetFocus();
    if (ComponentFromHandle(alive) != this) return;
    TGraphicControl::Click();
    if (ComponentFromHandle(alive) == this) box_.ButtonClick();
}

void TVynEditBoxSpeedButton::MouseEnter() {
    over_ = true;
    Invalidate();
    TGraphicControl::MouseEnter();
}

void TVynEditBoxSpeedButton::MouseLeave() {
    over_ = false;
    Invalidate();
    TGraphicControl::MouseLeave();
}

void TVynEditBoxSpeedButton::MouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    if (button == mbLeft) down_ = over_ = true;
    Invalidate();
    TGraphicControl::MouseDown(button, shift, x, y);
}

void TVynEditBoxSpeedButton::MouseMove(TShiftState shift, int x, int y) {
    if (const bool over = ClientRect().Contains({x, y}); over != over_) {
        over_ = over;
        Invalidate();
    }
    TGraphicControl::MouseMove(shift, x, y);
}

void TVynEditBoxSpeedButton::MouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    if (button == mbLeft) down_ = false;
    over_ = ClientRect().Contains({x, y});
    Invalidate();
    TGraphicControl::MouseUp(button, shift, x, y);
}

void TVynEditBoxSpeedButton::EnabledChanged() {
    down_ = false;
    TGraphicControl::EnabledChanged();
    Invalidate();
}

// The edit.

const PropertyCatalogue& BaseEditBoxProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Box = TBaseVynEditBox;
        PropertyCatalogue made(&EditProperties());
        made.Add("ButtonGlyph", &Box::ButtonGlyph, &Box::SetButtonGlyph).Stored(&Box::IsButtonGlyphStored);
        made.Add("CtrlBorderStyles", &Box::CtrlBorderStyles, &Box::SetCtrlBorderStyles)
            .Default(TCtrlBorderStyles{cbs_MouseOver, cbs_Focused});
        made.Add("MaxLength", &TCustomEdit::MaxLength, &TCustomEdit::SetMaxLength)
            .Default(0)
            .Stored(&Box::IsMaxLengthStored);
        made.Add("ShowButton", &Box::ShowButton, &Box::SetShowButton).Default(true);
        made.Add("Text", &TCustomMaskEdit::Text, &TCustomMaskEdit::SetText).Stored(&Box::IsTextStored);
        made.Event("OnButtonClick", &Box::OnButtonClick);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TBaseVynEditBox::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TBaseVynEditBox, TCustomMaskEdit>("TBaseVynEditBox"), BaseEditBoxProperties(),
                "Anchors AutoSelect AutoSize BiDiMode BorderStyle ButtonGlyph CharCase Color Constraints "
                "CtrlBorderStyles Ctl3D DragCursor DragKind DragMode Enabled Font ImeMode ImeName MaxLength "
                "ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly ShowButton "
                "ShowHint TabOrder TabStop Text Visible OnButtonClick OnChange OnClick OnContextPopup OnDblClick "
                "OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown "
                "OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    return info;
}

TBaseVynEditBox::TBaseVynEditBox(TComponent* owner)
    : TCustomMaskEdit(owner), button_(new TVynEditBoxSpeedButton(*this)) {
    button_->SetParent(this);
    PlaceButton();
}

TBaseVynEditBox::~TBaseVynEditBox() { DestroyContents(); }

void TBaseVynEditBox::PlaceButton() {
    using namespace base_edit_box_detail;
    const int frame = BorderStyle() == TBorderStyle::bsSingle ? kFrame : 0;
    const int height = std::max(Height() - 2 * frame, 0);
    const TCustomImageList* images = button_->Images();
    // A square, or as wide as its picture needs, and never more than half of the box.
    int width = std::max(height, images ? images->Width() + kAroundPicture : 0);
    width = std::min(width, Width() / 2);
    button_->SetBounds(Width() - frame - width, frame, width, height);
    button_->SetVisible(showButton_);
    PeerChanged(PeerChange::Style);
}

int TBaseVynEditBox::RightTextMargin() const { return showButton_ ? button_->Width() : 0; }

void TBaseVynEditBox::SetShowButton(bool value) {
    if (value == showButton_) return;
    showButton_ = value;
    PlaceButton();
}

void TBaseVynEditBox::SetCtrlBorderStyles(TCtrlBorderStyles value) {
    if (value == borderStyles_) return;
    borderStyles_ = value;
    Invalidate();
}

bool TBaseVynEditBox::DrawsSolidBorder() const {
    if (BorderStyle() != TBorderStyle::bsSingle || !EffectivelyEnabled()) return false;
    return (borderStyles_.Contains(cbs_MouseOver) && MouseInside()) ||
           (borderStyles_.Contains(cbs_Focused) && Focused());
}

void TBaseVynEditBox::SetBounds(int left, int top, int width, int height) {
    TCustomMaskEdit::SetBounds(left, top, width, height);
    if (button_->Parent()) PlaceButton();
}

void TBaseVynEditBox::SetBorderStyle(TBorderStyle value) {
    TCustomMaskEdit::SetBorderStyle(value);
    PlaceButton();
}

void TBaseVynEditBox::MouseEnter() {
    TCustomMaskEdit::MouseEnter();
    Invalidate();
}

void TBaseVynEditBox::MouseLeave() {
    TCustomMaskEdit::MouseLeave();
    Invalidate();
}

void TBaseVynEditBox::DoEnter() {
    Invalidate();
    TCustomMaskEdit::DoEnter();
}

void TBaseVynEditBox::DoExit() {
    Invalidate();
    TCustomMaskEdit::DoExit();
}

}  // namespace vyn
