#include "platform/controls/images.h"

#include "platform/controls/property_catalogue.h"

namespace vyn {

const ClassInfo& TImage::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&ControlProperties());
        own.Add("Center", &TImage::Center, &TImage::SetCenter).Default(false);
        own.Add("IncrementalDisplay", &TImage::IncrementalDisplay, &TImage::IncrementalDisplay).Default(false);
        own.Add("Picture", &TImage::Picture, &TImage::SetPicture);
        own.Add("Stretch", &TImage::Stretch, &TImage::SetStretch).Default(false);
        own.Add("Transparent", &TImage::Transparent, &TImage::SetTransparent).Default(false);
        return Publish(DefineClass<TImage, TGraphicControl>("TImage"), own,
                       "Align Anchors AutoSize Center Constraints DragCursor DragKind DragMode Enabled "
                       "IncrementalDisplay ParentShowHint Picture PopupMenu ShowHint Stretch Transparent Visible "
                       "OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnMouseDown "
                       "OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TImage::TImage(TComponent* owner) : TGraphicControl(owner) {
    SetInitialSize(105, 105);
    picture_.OnChange = [this](TObject*) { PictureChanged(); };
}

void TImage::PictureChanged() {
    if (picture_.Graphic()) picture_.Graphic()->SetTransparent(transparent_);
    PeerChanged(PeerChange::Picture);
    if (!HasState(csReading)) AdjustSize();
}

void TImage::SetCenter(bool value) {
    center_ = value;
    PeerChanged(PeerChange::Picture);
}
void TImage::SetStretch(bool value) {
    stretch_ = value;
    PeerChanged(PeerChange::Picture);
}
void TImage::SetTransparent(bool value) {
    if (transparent_ == value) return;
    transparent_ = value;
    PictureChanged();
}

bool TImage::CanAutoSize(int& newWidth, int& newHeight) {
    if (picture_.Width() <= 0 || picture_.Height() <= 0) return false;
    newWidth = picture_.Width();
    newHeight = picture_.Height();
    return true;
}

TRect TImage::DestRect() const {
    if (stretch_) return ClientRect();
    if (!center_) return {0, 0, picture_.Width(), picture_.Height()};
    return Bounds((Width() - picture_.Width()) / 2, (Height() - picture_.Height()) / 2, picture_.Width(),
                  picture_.Height());
}

}  // namespace vyn
