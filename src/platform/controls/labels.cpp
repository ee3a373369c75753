#include "platform/controls/labels.h"

#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/text_metrics.h"

namespace vyn {

VYN_ENUM_NAMES(TStaticBorderStyle, "sbsNone", "sbsSingle", "sbsSunken")
VYN_ENUM_NAMES(TBevelShape, "bsBox", "bsFrame", "bsTopLine", "bsBottomLine", "bsLeftLine", "bsRightLine", "bsSpacer")
VYN_ENUM_NAMES(TBevelStyle, "bsLowered", "bsRaised")

const PropertyCatalogue& LabelProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Label = TCustomLabel;
        PropertyCatalogue made(&ControlProperties());
        made.Add("Alignment", &Label::Alignment, &Label::SetAlignment).Default(taLeftJustify);
        made.Add("AutoSize", &TControl::AutoSize, &TControl::SetAutoSize).Default(true);
        made.Add("Color", &TControl::Color, &TControl::SetColor).Default(clWindow).Stored(&TControl::IsColorStored);
        made.Add("FocusControl", &Label::FocusControl, &Label::SetFocusControl);
        made.Add("Layout", &Label::Layout, &Label::SetLayout).Default(tlTop);
        made.Add("ShowAccelChar", &Label::ShowAccelChar, &Label::SetShowAccelChar).Default(true);
        made.Add("Transparent", &Label::Transparent, &Label::SetTransparent).Default(false);
        made.Add("WordWrap", &Label::WordWrap, &Label::SetWordWrap).Default(false);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomLabel::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomLabel, TGraphicControl>("TCustomLabel");
    return info;
}

const ClassInfo& TLabel::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TLabel, TCustomLabel>("TLabel"), LabelProperties(),
                "Align Alignment Anchors AutoSize BiDiMode Caption Color Constraints DragCursor DragKind DragMode "
                "Enabled FocusControl Font ParentBiDiMode ParentColor ParentFont ParentShowHint PopupMenu "
                "ShowAccelChar ShowHint Transparent Layout Visible WordWrap OnClick OnContextPopup OnDblClick "
                "OnDragDrop OnDragOver OnEndDock OnEndDrag OnMouseDown OnMouseMove OnMouseUp OnMouseEnter "
                "OnMouseLeave OnStartDock OnStartDrag");
    return info;
}

TCustomLabel::TCustomLabel(TComponent* owner) : TGraphicControl(owner) {
    ControlStyle.Include(csOpaque);
    SetInitialSize(65, 17);
    TControl::SetAutoSize(true);
}

void TCustomLabel::Notification(TComponent* component, TOperation operation) {
    TGraphicControl::Notification(component, operation);
    if (operation == opRemove && component == focusControl_) focusControl_ = nullptr;
}

void TCustomLabel::SetAlignment(TAlignment value) {
    if (alignment_ == value) return;
    alignment_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomLabel::SetFocusControl(TWinControl* value) {
    focusControl_ = value;
    if (value) value->FreeNotification(this);
    PeerChanged(PeerChange::Style);
}
void TCustomLabel::SetLayout(TTextLayout value) {
    if (layout_ == value) return;
    layout_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomLabel::SetShowAccelChar(bool value) {
    if (showAccelChar_ == value) return;
    showAccelChar_ = value;
    PeerChanged(PeerChange::Style);
    AdjustBounds();
}
void TCustomLabel::SetTransparent(bool value) {
    if (transparent_ == value) return;
    transparent_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomLabel::SetWordWrap(bool value) {
    if (wordWrap_ == value) return;
    wordWrap_ = value;
    PeerChanged(PeerChange::Style);
    AdjustBounds();
}
void TCustomLabel::SetAutoSize(bool value) {
    TGraphicControl::SetAutoSize(value);
    PeerChanged(PeerChange::Style);
}

void TCustomLabel::AdjustBounds() {
    if (!HasState(csReading) && AutoSize()) AdjustSize();
}

bool TCustomLabel::CanAutoSize(int& newWidth, int& newHeight) {
    // A label that is in no form has no font to measure with.
    if (!Parent()) return false;
    AnsiString text = GetLabelText();
    if (showAccelChar_) text = StripHotkey(text);
    if (text.empty()) text = " ";
    const TSize size = MultiLineExtent(EffectiveFont(), text, wordWrap_ ? Width() : 0);
    const int oldWidth = Width();
    if (!wordWrap_) newWidth = size.cx;
    newHeight = size.cy;
    // A text that ends at the right keeps its end in place.
    if (alignment_ == taRightJustify && newWidth != oldWidth && Align() == alNone) {
        SetBounds(Left() + oldWidth - newWidth, Top(), newWidth, newHeight);
        return false;
    }
    return true;
}

void TCustomLabel::TextChanged() {
    TGraphicControl::TextChanged();
    AdjustBounds();
}

void TCustomLabel::FontChanged() {
    TGraphicControl::FontChanged();
    AdjustBounds();
}

void TCustomLabel::Loaded() {
    TGraphicControl::Loaded();
    AdjustBounds();
}

bool TCustomLabel::DialogChar(char key) {
    if (!focusControl_ || !Enabled() || !showAccelChar_ || !IsAccel(static_cast<uint8_t>(key), Caption()) ||
        !focusControl_->CanFocus())
        return false;
    focusControl_->SetFocus();
    return true;
}

// Labels with windows.

const ClassInfo& TCustomStaticText::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomStaticText, TWinControl>("TCustomStaticText");
    return info;
}

const ClassInfo& TStaticText::StaticClass() {
    static const ClassInfo info = [] {
        using Text = TCustomStaticText;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Alignment", &Text::Alignment, &Text::SetAlignment).Default(taLeftJustify);
        own.Add("AutoSize", &TControl::AutoSize, &TControl::SetAutoSize).Default(true);
        own.Add("BorderStyle", &Text::BorderStyle, &Text::SetBorderStyle).Default(sbsNone);
        own.Add("FocusControl", &Text::FocusControl, &Text::SetFocusControl);
        own.Add("ShowAccelChar", &Text::ShowAccelChar, &Text::SetShowAccelChar).Default(true);
        return Publish(DefineClass<TStaticText, TCustomStaticText>("TStaticText"), own,
                       "Align Alignment Anchors AutoSize BiDiMode BorderStyle Caption Color Constraints DragCursor "
                       "DragKind DragMode Enabled FocusControl Font ParentBiDiMode ParentColor ParentFont "
                       "ParentShowHint PopupMenu ShowAccelChar ShowHint TabOrder TabStop Visible OnClick "
                       "OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnMouseDown OnMouseMove "
                       "OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TCustomStaticText::TCustomStaticText(TComponent* owner) : TWinControl(owner) {
    SetInitialSize(65, 17);
    TControl::SetAutoSize(true);
}

void TCustomStaticText::Notification(TComponent* component, TOperation operation) {
    TWinControl::Notification(component, operation);
    if (operation == opRemove && component == focusControl_) focusControl_ = nullptr;
}

void TCustomStaticText::SetAlignment(TAlignment value) {
    alignment_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomStaticText::SetBorderStyle(TStaticBorderStyle value) {
    if (borderStyle_ == value) return;
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
    if (!HasState(csReading)) AdjustSize();
}
void TCustomStaticText::SetFocusControl(TWinControl* value) {
    focusControl_ = value;
    if (value) value->FreeNotification(this);
}
void TCustomStaticText::SetShowAccelChar(bool value) {
    showAccelChar_ = value;
    PeerChanged(PeerChange::Style);
    if (!HasState(csReading)) AdjustSize();
}
void TCustomStaticText::SetAutoSize(bool value) { TWinControl::SetAutoSize(value); }

bool TCustomStaticText::CanAutoSize(int& newWidth, int& newHeight) {
    if (!Parent()) return false;
    constexpr int kBorder = 4;
    const AnsiString text = showAccelChar_ ? StripHotkey(Caption()) : Caption();
    const TSize size = MultiLineExtent(EffectiveFont(), text.empty() ? AnsiString(" ") : text);
    const int edge = borderStyle_ == sbsNone ? 0 : kBorder;
    newWidth = size.cx + edge;
    newHeight = size.cy + edge;
    return true;
}

void TCustomStaticText::TextChanged() {
    TWinControl::TextChanged();
    if (!HasState(csReading)) AdjustSize();
}
void TCustomStaticText::FontChanged() {
    TWinControl::FontChanged();
    if (!HasState(csReading)) AdjustSize();
}
void TCustomStaticText::Loaded() {
    TWinControl::Loaded();
    AdjustSize();
}

bool TCustomStaticText::DialogChar(char key) {
    if (!focusControl_ || !Enabled() || !showAccelChar_ || !IsAccel(static_cast<uint8_t>(key), Caption()) ||
        !focusControl_->CanFocus())
        return false;
    focusControl_->SetFocus();
    return true;
}

// Lines.

const ClassInfo& TBevel::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&ControlProperties());
        own.Add("Shape", &TBevel::Shape, &TBevel::SetShape).Default(bsBox);
        own.Add("Style", &TBevel::Style, &TBevel::SetStyle).Default(bsLowered);
        return Publish(DefineClass<TBevel, TGraphicControl>("TBevel"), own,
                       "Align Anchors Constraints ParentShowHint Shape ShowHint Style Visible");
    }();
    return info;
}

TBevel::TBevel(TComponent* owner) : TGraphicControl(owner) { SetInitialSize(50, 50); }

void TBevel::SetShape(TBevelShape value) {
    shape_ = value;
    PeerChanged(PeerChange::Style);
}
void TBevel::SetStyle(TBevelStyle value) {
    style_ = value;
    PeerChanged(PeerChange::Style);
}

}  // namespace vyn
