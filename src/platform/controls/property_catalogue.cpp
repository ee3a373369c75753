#include "platform/controls/property_catalogue.h"

#include "platform/controls/menus.h"
#include "platform/controls/win_control.h"
#include "platform/text/exceptions.h"

namespace vyn {

const PropertyInfo& PropertyCatalogue::operator[](std::string_view name) const {
    for (const PropertyCatalogue* at = this; at; at = at->parent_) {
        const uint32_t found = at->index_.Find(name);
        if (found != NameIndex::NotFound) return at->properties_[found];
    }
    throw EPropertyError("No class has a property " + AnsiString(name) + " to publish");
}

const PropertyCatalogue& ControlProperties() {
    static const PropertyCatalogue catalogue = [] {
        PropertyCatalogue made;
        // Those that every control publishes already stand here for classes with a rule of their own.
        for (const char* name : {"Left", "Top", "Width", "Height", "Cursor", "Hint"})
            made.Add(*TControl::StaticClass().FindProperty(name));
        made.Add("Align", &TControl::Align, &TControl::SetAlign).Default(alNone);
        made.Add("Anchors", &TControl::Anchors, &TControl::SetAnchors).Default(TAnchors{akLeft, akTop});
        made.Add("AutoSize", &TControl::AutoSize, &TControl::SetAutoSize).Default(false);
        made.Add("BiDiMode", &TControl::BiDiMode, &TControl::SetBiDiMode)
            .Default(bdLeftToRight)
            .Stored(&TControl::IsBiDiModeStored);
        made.Add("Caption", &TControl::Caption, &TControl::SetCaption);
        made.Add("Text", &TControl::Text, &TControl::SetText);
        made.Add("Color", &TControl::Color, &TControl::SetColor).Default(clWindow).Stored(&TControl::IsColorStored);
        made.Add(Property("Constraints", &TControl::Constraints));
        made.Add("DragCursor", &TControl::DragCursor, &TControl::DragCursor).Default(crDrag);
        made.Add("DragKind", &TControl::DragKind, &TControl::DragKind).Default(dkDrag);
        made.Add("DragMode", &TControl::DragMode, &TControl::DragMode).Default(dmManual);
        made.Add("Enabled", &TControl::Enabled, &TControl::SetEnabled).Default(true);
        made.Add("Font", &TControl::Font, &TControl::SetFont).Stored(&TControl::IsFontStored);
        made.Add("ParentBiDiMode", &TControl::ParentBiDiMode, &TControl::SetParentBiDiMode).Default(true);
        made.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(true);
        made.Add("ParentFont", &TControl::ParentFont, &TControl::SetParentFont).Default(true);
        made.Add("ParentShowHint", &TControl::ParentShowHint, &TControl::SetParentShowHint).Default(true);
        made.Add("PopupMenu", &TControl::PopupMenu, &TControl::SetPopupMenu);
        made.Add("ShowHint", &TControl::ShowHint, &TControl::SetShowHint)
            .Default(false)
            .Stored(&TControl::IsShowHintStored);
        made.Add("Visible", &TControl::Visible, &TControl::SetVisible).Default(true);
        made.Event("OnClick", &TControl::OnClick);
        made.Event("OnDblClick", &TControl::OnDblClick);
        made.Event("OnMouseDown", &TControl::OnMouseDown);
        made.Event("OnMouseMove", &TControl::OnMouseMove);
        made.Event("OnMouseUp", &TControl::OnMouseUp);
        made.Event("OnMouseEnter", &TControl::OnMouseEnter);
        made.Event("OnMouseLeave", &TControl::OnMouseLeave);
        made.Event("OnDragDrop", &TControl::OnDragDrop);
        made.Event("OnDragOver", &TControl::OnDragOver);
        made.Event("OnStartDrag", &TControl::OnStartDrag);
        made.Event("OnEndDrag", &TControl::OnEndDrag);
        made.Event("OnResize", &TControl::OnResize);
        made.Event("OnCanResize", &TControl::OnCanResize);
        made.Event("OnConstrainedResize", &TControl::OnConstrainedResize);
        made.Event("OnContextPopup", &TControl::OnContextPopup);
        using Dock = TControl::DockEvent;
        made.Add("OnDockDrop", &TControl::GetDockEvent<Dock::OnDockDrop>, &TControl::SetDockEvent<Dock::OnDockDrop>);
        made.Add("OnDockOver", &TControl::GetDockEvent<Dock::OnDockOver>, &TControl::SetDockEvent<Dock::OnDockOver>);
        made.Add("OnEndDock", &TControl::GetDockEvent<Dock::OnEndDock>, &TControl::SetDockEvent<Dock::OnEndDock>);
        made.Add("OnGetSiteInfo", &TControl::GetDockEvent<Dock::OnGetSiteInfo>,
                 &TControl::SetDockEvent<Dock::OnGetSiteInfo>);
        made.Add("OnStartDock", &TControl::GetDockEvent<Dock::OnStartDock>, &TControl::SetDockEvent<Dock::OnStartDock>);
        made.Add("OnUnDock", &TControl::GetDockEvent<Dock::OnUnDock>, &TControl::SetDockEvent<Dock::OnUnDock>);
        return made;
    }();
    return catalogue;
}

const PropertyCatalogue& WinControlProperties() {
    static const PropertyCatalogue catalogue = [] {
        PropertyCatalogue made(&ControlProperties());
        made.Add("BorderWidth", &TWinControl::BorderWidth, &TWinControl::SetBorderWidth).Default(0);
        made.Add("Ctl3D", &TWinControl::Ctl3D, &TWinControl::SetCtl3D)
            .Default(true)
            .Stored(&TWinControl::IsCtl3DStored);
        made.Add("ParentCtl3D", &TWinControl::ParentCtl3D, &TWinControl::SetParentCtl3D).Default(true);
        made.Add("DockSite", &TWinControl::DockSite, &TWinControl::DockSite).Default(false);
        made.Add("UseDockManager", &TWinControl::UseDockManager, &TWinControl::UseDockManager).Default(false);
        made.Add("ImeMode", &TWinControl::ImeMode, &TWinControl::ImeMode).Default(imDontCare);
        made.Add("ImeName", &TWinControl::ImeName, &TWinControl::ImeName);
        made.Add("TabOrder", &TWinControl::TabOrder, &TWinControl::SetTabOrder).Default(-1);
        made.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(false);
        made.Event("OnEnter", &TWinControl::OnEnter);
        made.Event("OnExit", &TWinControl::OnExit);
        made.Event("OnKeyDown", &TWinControl::OnKeyDown);
        made.Event("OnKeyPress", &TWinControl::OnKeyPress);
        made.Event("OnKeyUp", &TWinControl::OnKeyUp);
        made.Event("OnMouseWheel", &TWinControl::OnMouseWheel);
        made.Event("OnMouseWheelDown", &TWinControl::OnMouseWheelDown);
        made.Event("OnMouseWheelUp", &TWinControl::OnMouseWheelUp);
        return made;
    }();
    return catalogue;
}

}  // namespace vyn
