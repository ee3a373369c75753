#pragma once

#include <memory>

#include "platform/controls/bitmap_codec.h"
#include "platform/controls/colors.h"
#include "platform/objects/event.h"
#include "platform/objects/persistent.h"
#include "platform/streams/stream.h"

namespace vyn {

// A picture of some format. Keeps the bytes that it was read from, so that it is stored as it came.
class TGraphic : public TPersistent {
    VYN_OBJECT
  public:
    virtual bool Empty() const = 0;
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    bool Transparent() const { return transparent_; }
    void SetTransparent(bool value);
    bool Modified = false;
    TNotifyEvent OnChange;

    // The file's bytes, from the stream's position to its end.
    virtual void LoadFromStream(TStream& stream) = 0;
    virtual void SaveToStream(TStream& stream) const = 0;
    void LoadFromFile(const AnsiString& fileName);
    void SaveToFile(const AnsiString& fileName) const;
    // What forms store: the file's bytes, for bitmaps behind a 4-byte length.
    virtual void ReadData(TStream& stream);
    virtual void WriteData(TStream& stream) const;
    void DefineProperties(TFiler& filer) override;
    // The file in its own format, for toolkits that decode it themselves.
    virtual const AnsiString& FileBytes() const = 0;

  protected:
    virtual void Changed();

  private:
    bool transparent_ = false;
};

// A bitmap. Pixels are decoded when they are first asked for; a malformed file raises EInvalidGraphic when it is read.
class TBitmap : public TGraphic {
    VYN_OBJECT
  public:
    bool Empty() const override { return width_ == 0 || height_ == 0; }
    int Width() const override { return width_; }
    int Height() const override { return height_; }
    // Makes an opaque black bitmap of this size.
    void SetSize(int width, int height);
    const PixelImage& Pixels() const;
    void SetPixels(PixelImage image);
    // The colour that is see-through: clDefault takes the lower left pixel's.
    TColor TransparentColor() const;
    void SetTransparentColor(TColor value) { transparentColor_ = value; }

    void LoadFromStream(TStream& stream) override;
    void SaveToStream(TStream& stream) const override;
    void ReadData(TStream& stream) override;
    void WriteData(TStream& stream) const override;
    const AnsiString& FileBytes() const override;
    void Assign(const TPersistent* source) override;

  private:
    int width_ = 0;
    int height_ = 0;
    mutable AnsiString file_;
    mutable std::unique_ptr<PixelImage> pixels_;
    TColor transparentColor_ = clDefault;
};

class TIcon : public TGraphic {
    VYN_OBJECT
  public:
    bool Empty() const override { return file_.empty(); }
    int Width() const override { return width_; }
    int Height() const override { return height_; }
    void LoadFromStream(TStream& stream) override;
    void SaveToStream(TStream& stream) const override;
    const AnsiString& FileBytes() const override { return file_; }
    void Assign(const TPersistent* source) override;

  private:
    AnsiString file_;
    int width_ = 0;
    int height_ = 0;
};

// A picture whose format the toolkit decodes (PNG, JPEG, metafiles) or nobody knows: its class name and bytes are
// kept and stored again as they came. Width and Height are known for PNG, else 0.
class TEncodedGraphic : public TGraphic {
    VYN_OBJECT
  public:
    explicit TEncodedGraphic(AnsiString storedClass) : storedClass_(std::move(storedClass)) {}
    const AnsiString& StoredClass() const { return storedClass_; }
    bool Empty() const override { return file_.empty(); }
    int Width() const override { return width_; }
    int Height() const override { return height_; }
    void LoadFromStream(TStream& stream) override;
    void SaveToStream(TStream& stream) const override;
    const AnsiString& FileBytes() const override { return file_; }
    void Assign(const TPersistent* source) override;

  private:
    AnsiString storedClass_;
    AnsiString file_;
    int width_ = 0;
    int height_ = 0;
};

// Holds a graphic of any format. Stored as the hidden property Data: the class name as a short string, then the
// graphic's own data.
class TPicture : public TPersistent {
    VYN_OBJECT
  public:
    TGraphic* Graphic() const { return graphic_.get(); }
    // Takes a copy; null empties the picture.
    void SetGraphic(const TGraphic* graphic);
    // The bitmap; a picture that holds something else is emptied first.
    TBitmap* Bitmap();
    TIcon* Icon();
    int Width() const { return graphic_ ? graphic_->Width() : 0; }
    int Height() const { return graphic_ ? graphic_->Height() : 0; }
    bool Empty() const { return !graphic_ || graphic_->Empty(); }
    // By the file's contents: BMP, ICO, PNG, JPEG; anything else raises EInvalidGraphic.
    void LoadFromFile(const AnsiString& fileName);
    void LoadFromBytes(std::string_view bytes);
    void SaveToFile(const AnsiString& fileName) const;
    void Assign(const TPersistent* source) override;
    void DefineProperties(TFiler& filer) override;
    TNotifyEvent OnChange;

  private:
    void Put(std::unique_ptr<TGraphic> graphic);
    std::unique_ptr<TGraphic> graphic_;
};

}  // namespace vyn
