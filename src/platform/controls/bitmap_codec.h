#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/text/ansi_string.h"

namespace vyn {

// Pixels of a picture, top row first, each 0xAARRGGBB.
struct PixelImage {
    int Width = 0;
    int Height = 0;
    std::vector<uint32_t> Pixels;

    uint32_t At(int x, int y) const {
        return Pixels[static_cast<size_t>(y) * static_cast<size_t>(Width) + static_cast<size_t>(x)];
    }
};

// Bitmap files (BMP): 1, 4, 8, 16, 24 and 32 bits a pixel, both header generations, RLE4 and RLE8, rows either way up.
// Input is untrusted: anything that does not fit raises EInvalidGraphic and costs no more memory than the picture
// itself; pictures beyond kMaxPicturePixels are refused.
constexpr int64_t kMaxPicturePixels = int64_t{1} << 26;

PixelImage DecodeBmp(std::string_view file);
// The size from the headers alone.
void ReadBmpSize(std::string_view file, int& width, int& height);
// A 24-bit file, or a 32-bit one when a pixel is not opaque.
AnsiString EncodeBmp(const PixelImage& image);

// Icon files (ICO): the entry with the most pixels. Entries that hold a PNG are given as its bytes instead of pixels.
struct DecodedIcon {
    PixelImage Image;
    AnsiString Png;  // not empty: the toolkit decodes it
    int Width = 0;
    int Height = 0;
};
DecodedIcon DecodeIco(std::string_view file);

// The size that a PNG's header states; raises EInvalidGraphic.
void ReadPngSize(std::string_view file, int& width, int& height);

}  // namespace vyn
