#include "platform/controls/status_bars.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/property_catalogue.h"

namespace vyn {

VYN_ENUM_NAMES(TStatusPanelStyle, "psText", "psOwnerDraw")
VYN_ENUM_NAMES(TStatusPanelBevel, "pbNone", "pbLowered", "pbRaised")

const ClassInfo& TStatusPanel::StaticClass() {
    using Panel = TStatusPanel;
    static const ClassInfo info = DefineClass<Panel, TCollectionItem>("TStatusPanel")
                                      .Published("Alignment", &Panel::Alignment, &Panel::SetAlignment)
                                      .Default(taLeftJustify)
                                      .Published("Bevel", &Panel::Bevel, &Panel::SetBevel)
                                      .Default(pbLowered)
                                      .Published("BiDiMode", &Panel::BiDiMode, &Panel::BiDiMode)
                                      .Default(bdLeftToRight)
                                      .Stored(&Panel::IsBiDiModeStored)
                                      .Published("ParentBiDiMode", &Panel::ParentBiDiMode, &Panel::ParentBiDiMode)
                                      .Default(true)
                                      .Published("Style", &Panel::Style, &Panel::SetStyle)
                                      .Default(psText)
                                      .Published("Text", &Panel::Text, &Panel::SetText)
                                      .Published("Width", &Panel::Width, &Panel::SetWidth);
    return info;
}

void TStatusPanel::SetAlignment(TAlignment value) {
    alignment_ = value;
    Changed(false);
}
void TStatusPanel::SetBevel(TStatusPanelBevel value) {
    bevel_ = value;
    Changed(true);
}
void TStatusPanel::SetStyle(TStatusPanelStyle value) {
    style_ = value;
    Changed(false);
}
void TStatusPanel::SetText(const AnsiString& value) {
    if (text_ == value) return;
    text_ = value;
    Changed(false);
}
void TStatusPanel::SetWidth(int value) {
    width_ = std::max(value, 0);
    Changed(true);
}

AnsiString TStatusPanel::DisplayName() const { return text_.empty() ? TCollectionItem::DisplayName() : text_; }

void TStatusPanel::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TStatusPanel>(source);
    if (!other) {
        TCollectionItem::Assign(source);
        return;
    }
    text_ = other->text_;
    width_ = other->width_;
    alignment_ = other->alignment_;
    bevel_ = other->bevel_;
    style_ = other->style_;
    Changed(true);
}

TStatusPanels::TStatusPanels(TStatusBar* statusBar) : TOwnedCollection(statusBar), statusBar_(statusBar) {}

void TStatusPanels::Update(TCollectionItem*) {
    if (!statusBar_->HasState(csDestroying)) statusBar_->PeerChanged(PeerChange::Items);
}

const ClassInfo& TStatusBar::StaticClass() {
    static const ClassInfo info = [] {
        using Bar = TStatusBar;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Align", &TControl::Align, &TControl::SetAlign).Default(alBottom);
        own.Add("Anchors", &TControl::Anchors, &TControl::SetAnchors).Default(TAnchors{akLeft, akRight, akBottom});
        own.Add("AutoHint", &Bar::AutoHint, &Bar::AutoHint).Default(false);
        own.Add("Color", &TControl::Color, &TControl::SetColor).Default(clBtnFace).Stored(&TControl::IsColorStored);
        own.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(false);
        own.Add("ParentFont", &TControl::ParentFont, &TControl::SetParentFont).Default(false);
        PropertyInfo font = ControlProperties()["Font"];
        font.Stored = [](const TObject& bar) {
            const auto& self = static_cast<const TStatusBar&>(bar);
            return !self.UseSystemFont() && !self.ParentFont();
        };
        own.Add(std::move(font));
        own.Add("Panels", &Bar::Panels, &Bar::SetPanels);
        own.Add("SimplePanel", &Bar::SimplePanel, &Bar::SetSimplePanel);
        own.Add("SimpleText", &Bar::SimpleText, &Bar::SetSimpleText);
        own.Add("SizeGrip", &Bar::SizeGrip, &Bar::SetSizeGrip).Default(true);
        own.Add("UseSystemFont", &Bar::UseSystemFont, &Bar::SetUseSystemFont).Default(true);
        own.Event("OnHint", &Bar::OnHint);
        own.Event("OnDrawPanel", &Bar::OnDrawPanel);
        return Publish(DefineClass<Bar, TWinControl>("TStatusBar"), own,
                       "Align Anchors AutoHint BiDiMode BorderWidth Color DragCursor DragKind DragMode Enabled Font "
                       "Constraints Panels ParentBiDiMode ParentColor ParentFont ParentShowHint PopupMenu ShowHint "
                       "SimplePanel SimpleText SizeGrip UseSystemFont Visible OnClick OnContextPopup OnDblClick "
                       "OnDragDrop OnDragOver OnEndDock OnEndDrag OnHint OnMouseDown OnMouseMove OnMouseUp "
                       "OnDrawPanel OnResize OnStartDock OnStartDrag");
    }();
    return info;
}

TStatusBar::TStatusBar(TComponent* owner) : TWinControl(owner), panels_(this) {
    ControlStyle = {csCaptureMouse, csClickEvents, csDoubleClicks, csOpaque};
    SetInitialSize(0, 19);
    SetDefaultColor(clBtnFace, false);
    SetFontFromParent(false);
    SetAlign(alBottom);
}

void TStatusBar::SetPanels(TCollection* value) { panels_.Assign(value); }
void TStatusBar::SetSimplePanel(bool value) {
    simplePanel_ = value;
    PeerChanged(PeerChange::Items);
}
void TStatusBar::SetSimpleText(const AnsiString& value) {
    if (simpleText_ == value) return;
    simpleText_ = value;
    PeerChanged(PeerChange::Items);
}
void TStatusBar::SetSizeGrip(bool value) {
    sizeGrip_ = value;
    PeerChanged(PeerChange::Style);
}
void TStatusBar::SetUseSystemFont(bool value) {
    useSystemFont_ = value;
    PeerChanged(PeerChange::Font);
}

}  // namespace vyn
