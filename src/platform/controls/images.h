#pragma once

#include "platform/controls/control.h"
#include "platform/controls/pictures.h"

namespace vyn {

class TImage : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TImage(TComponent* owner);

    TPicture* Picture() { return &picture_; }
    void SetPicture(TPicture* value) { picture_.Assign(value); }
    const TPicture& PictureRef() const { return picture_; }
    bool Center() const { return center_; }
    void SetCenter(bool value);
    bool Stretch() const { return stretch_; }
    void SetStretch(bool value);
    bool Transparent() const { return transparent_; }
    void SetTransparent(bool value);
    bool IncrementalDisplay = false;
    // Where the picture is drawn in the client area.
    TRect DestRect() const;

  protected:
    bool CanAutoSize(int& newWidth, int& newHeight) override;

  private:
    void PictureChanged();
    TPicture picture_;
    bool center_ = false;
    bool stretch_ = false;
    bool transparent_ = false;
};

}  // namespace vyn
