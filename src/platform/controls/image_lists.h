#pragma once

#include <vector>

#include "platform/controls/pictures.h"
#include "platform/objects/component.h"

namespace vyn {

enum class TDrawingStyle { dsFocus, dsSelected, dsNormal, dsTransparent };
const EnumType& TypeInfoOf(TypeTag<TDrawingStyle>);
enum class TImageType { itImage, itMask };
using enum TImageType;
const EnumType& TypeInfoOf(TypeTag<TImageType>);

// Pictures of one size, by number, for menus, buttons and trees. Stored as the hidden property Bitmap: a 4-byte count,
// then a BMP file (4-byte length, bytes) for each picture; bytes of any other shape are kept and stored back.
class TCustomImageList : public TComponent {
    VYN_OBJECT
  public:
    explicit TCustomImageList(TComponent* owner);
    ~TCustomImageList() override;

    int Count() const { return static_cast<int>(images_.size()); }
    const PixelImage& Image(int index) const;  // raises EListError
    // Cuts a bitmap into pictures of this list's size, from the left; the first one's number, or -1. The colour of
    // the mask (AddMasked) becomes see-through.
    int Add(const TBitmap& image, const TBitmap* mask = nullptr);
    int AddMasked(const TBitmap& image, TColor maskColor);
    int AddImage(PixelImage image);
    void Delete(int index);
    void Clear();

    int Width() const { return width_; }
    void SetWidth(int value);
    int Height() const { return height_; }
    void SetHeight(int value);
    int AllocBy = 4;
    TColor BkColor = clNone;
    TColor BlendColor = clNone;
    TDrawingStyle DrawingStyle = TDrawingStyle::dsNormal;
    TImageType ImageType = itImage;
    bool Masked = true;
    bool ShareImages = false;
    TNotifyEvent OnChange;
    // Grows with each change, for those who keep pictures made from it.
    unsigned ChangeCount() const { return changeCount_; }

    void Assign(const TPersistent* source) override;
    void DefineProperties(TFiler& filer) override;

  private:
    void Changed();
    int AddStrip(const PixelImage& strip);
    void ReadBitmap(TStream& stream);
    void WriteBitmap(TStream& stream) const;

    std::vector<PixelImage> images_;
    AnsiString unknownBytes_;
    int width_ = 16;
    int height_ = 16;
    unsigned changeCount_ = 0;
};

class TImageList : public TCustomImageList {
    VYN_OBJECT
  public:
    explicit TImageList(TComponent* owner) : TCustomImageList(owner) {}
};

}  // namespace vyn
