#include "platform/controls/image_lists.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/objects/class_info.h"
#include "platform/objects/filer.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace image_list_detail {

constexpr int64_t kLengthSize = 4;
constexpr uint32_t kMostImages = 1u << 16;

uint32_t PixelOf(TColor color) {
    const auto value = static_cast<uint32_t>(color);
    return 0xFF000000u | (value & 0xFF) << 16 | (value & 0xFF00) | (value >> 16 & 0xFF);
}

uint32_t Length(TStream& stream) {
    uint8_t raw[kLengthSize];
    stream.ReadBuffer(raw, sizeof raw);
    return raw[0] | uint32_t{raw[1]} << 8 | uint32_t{raw[2]} << 16 | uint32_t{raw[3]} << 24;
}

void PutLength(TStream& stream, size_t length) {
    const uint8_t raw[kLengthSize] = {static_cast<uint8_t>(length), static_cast<uint8_t>(length >> 8),
                                      static_cast<uint8_t>(length >> 16), static_cast<uint8_t>(length >> 24)};
    stream.WriteBuffer(raw, sizeof raw);
}

}  // namespace image_list_detail

VYN_ENUM_NAMES(TDrawingStyle, "dsFocus", "dsSelected", "dsNormal", "dsTransparent")
VYN_ENUM_NAMES(TImageType, "itImage", "itMask")

const ClassInfo& TCustomImageList::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomImageList, TComponent>("TCustomImageList");
    return info;
}

const ClassInfo& TImageList::StaticClass() {
    using List = TCustomImageList;
    static const ClassInfo info = DefineClass<TImageList, TCustomImageList>("TImageList")
                                      .Published("BlendColor", &List::BlendColor, &List::BlendColor)
                                      .Default(clNone)
                                      .Published("BkColor", &List::BkColor, &List::BkColor)
                                      .Default(clNone)
                                      .Published("AllocBy", &List::AllocBy, &List::AllocBy)
                                      .Default(4)
                                      .Published("DrawingStyle", &List::DrawingStyle, &List::DrawingStyle)
                                      .Default(TDrawingStyle::dsNormal)
                                      .Published("Height", &List::Height, &List::SetHeight)
                                      .Default(16)
                                      .Published("ImageType", &List::ImageType, &List::ImageType)
                                      .Default(itImage)
                                      .Published("Masked", &List::Masked, &List::Masked)
                                      .Default(true)
                                      .Event("OnChange", &List::OnChange)
                                      .Published("ShareImages", &List::ShareImages, &List::ShareImages)
                                      .Default(false)
                                      .Published("Width", &List::Width, &List::SetWidth)
                                      .Default(16);
    return info;
}

TCustomImageList::TCustomImageList(TComponent* owner) : TComponent(owner) {}
TCustomImageList::~TCustomImageList() = default;

const PixelImage& TCustomImageList::Image(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return images_[static_cast<size_t>(index)];
}

void TCustomImageList::Changed() {
    ++changeCount_;
    OnChange(this);
}

int TCustomImageList::AddStrip(const PixelImage& strip) {
    if (strip.Width < width_ || strip.Height < height_) return -1;
    const int first = Count();
    for (int left = 0; left + width_ <= strip.Width; left += width_) {
        PixelImage image;
        image.Width = width_;
        image.Height = height_;
        image.Pixels.reserve(static_cast<size_t>(width_) * static_cast<size_t>(height_));
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) image.Pixels.push_back(strip.At(left + x, y));
        images_.push_back(std::move(image));
    }
    Changed();
    return first;
}

int TCustomImageList::Add(const TBitmap& image, const TBitmap* mask) {
    PixelImage strip = image.Pixels();
    if (mask && !mask->Empty()) {
        // White in the mask is see-through.
        const PixelImage& cover = mask->Pixels();
        const int height = std::min(strip.Height, cover.Height);
        const int width = std::min(strip.Width, cover.Width);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if ((cover.At(x, y) & 0xFFFFFF) == 0xFFFFFF)
                    strip.Pixels[static_cast<size_t>(y) * static_cast<size_t>(strip.Width) + static_cast<size_t>(x)] =
                        0;
    }
    return AddStrip(strip);
}

int TCustomImageList::AddMasked(const TBitmap& image, TColor maskColor) {
    PixelImage strip = image.Pixels();
    if (maskColor == clDefault) maskColor = image.TransparentColor();
    const uint32_t seeThrough = image_list_detail::PixelOf(maskColor);
    if (maskColor != clNone)
        for (uint32_t& pixel : strip.Pixels)
            if (pixel == seeThrough) pixel = 0;
    return AddStrip(strip);
}

int TCustomImageList::AddImage(PixelImage image) {
    images_.push_back(std::move(image));
    Changed();
    return Count() - 1;
}

void TCustomImageList::Delete(int index) {
    Image(index);
    images_.erase(images_.begin() + index);
    Changed();
}

void TCustomImageList::Clear() {
    if (images_.empty() && unknownBytes_.empty()) return;
    images_.clear();
    unknownBytes_.clear();
    Changed();
}

void TCustomImageList::SetWidth(int value) {
    if (value <= 0 || width_ == value) return;
    width_ = value;
    if (!HasState(csLoading)) Clear();
}

void TCustomImageList::SetHeight(int value) {
    if (value <= 0 || height_ == value) return;
    height_ = value;
    if (!HasState(csLoading)) Clear();
}

void TCustomImageList::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TCustomImageList>(source);
    if (!other) {
        TComponent::Assign(source);
        return;
    }
    images_ = other->images_;
    unknownBytes_ = other->unknownBytes_;
    width_ = other->width_;
    height_ = other->height_;
    Changed();
}

void TCustomImageList::ReadBitmap(TStream& stream) {
    const int64_t start = stream.Position();
    std::vector<PixelImage> images;
    bool known = true;
    try {
        const uint32_t count = image_list_detail::Length(stream);
        known = count <= image_list_detail::kMostImages;
        for (uint32_t i = 0; known && i < count; ++i) {
            const int64_t length = image_list_detail::Length(stream);
            if (length > stream.Size() - stream.Position()) {
                known = false;
                break;
            }
            AnsiString bytes(static_cast<size_t>(length), '\0');
            if (length > 0) stream.ReadBuffer(bytes.data(), length);
            images.push_back(DecodeBmp(bytes));
        }
        known = known && stream.Position() == stream.Size();
    } catch (const EStreamError&) {
        known = false;
    } catch (const EInvalidGraphic&) {
        known = false;
    }
    images_.clear();
    unknownBytes_.clear();
    if (known) {
        images_ = std::move(images);
    } else {
        // Pictures of another program's format: kept, and stored again as they came.
        stream.SetPosition(start);
        unknownBytes_.resize(static_cast<size_t>(stream.Size() - start));
        if (!unknownBytes_.empty()) stream.ReadBuffer(unknownBytes_.data(), static_cast<int64_t>(unknownBytes_.size()));
    }
    Changed();
}

void TCustomImageList::WriteBitmap(TStream& stream) const {
    if (images_.empty() && !unknownBytes_.empty()) {
        stream.WriteBuffer(unknownBytes_.data(), static_cast<int64_t>(unknownBytes_.size()));
        return;
    }
    image_list_detail::PutLength(stream, images_.size());
    for (const PixelImage& image : images_) {
        const AnsiString bytes = EncodeBmp(image);
        image_list_detail::PutLength(stream, bytes.size());
        stream.WriteBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
    }
}

void TCustomImageList::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "Bitmap", [this](TStream& stream) { ReadBitmap(stream); }, [this](TStream& stream) { WriteBitmap(stream); },
        !images_.empty() || !unknownBytes_.empty());
}

}  // namespace vyn
