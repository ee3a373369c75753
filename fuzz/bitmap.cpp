// Pictures: what decodes has all its pixels, and the same ones again from our own file.

#include "platform/controls/bitmap_codec.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Larger pictures are the same loops for longer.
    constexpr int64_t kPixels = int64_t{1} << 20;
    const std::string_view bytes = fuzzing::Bytes(data, size);
    int width = 0;
    int height = 0;
    fuzzing::Succeeds([&] { vyn::ReadPngSize(bytes, width, height); });
    fuzzing::Succeeds([&] { vyn::DecodeIco(bytes); });
    if (!fuzzing::Succeeds([&] { vyn::ReadBmpSize(bytes, width, height); })) return 0;
    if (int64_t{width} * height > kPixels) return 0;
    fuzzing::Succeeds([&] {
        const vyn::PixelImage image = vyn::DecodeBmp(bytes);
        fuzzing::Require(image.Pixels.size() == static_cast<size_t>(image.Width) * static_cast<size_t>(image.Height),
                         "a picture has all its pixels");
        if (image.Pixels.empty()) return;
        const vyn::PixelImage again = vyn::DecodeBmp(vyn::EncodeBmp(image));
        fuzzing::Require(again.Pixels == image.Pixels, "our own file holds the same pixels");
    });
    return 0;
}
