#include "datasources/class_pictures.h"

#include "datasources/data_source_classes.h"

namespace vyn {

namespace class_pictures_detail {

// A picture as it looks: a digit a pixel, how dark it is (9: black). Blank is the see-through colour. Pictures in greys
// alone are drawn in the colour of the text that they stand beside, on dark desktops too.
constexpr int kSize = 16;
constexpr int kDarkest = 9;
constexpr int kWhite = 255;
using Drawing = const char* const[kSize];

// A lens.
constexpr Drawing kLens = {
    "                ", "    46764       ", "  179878971     ", "  794   497     ",
    " 494     494    ", " 68       86    ", " 77       77    ", " 68       86    ",
    " 494     494    ", "  794   4992    ", "  17987899992   ", "    4676429992  ",
    "          29992 ", "           2997 ", "            274 ", "                ",
};

// Cards in a box.
constexpr Drawing kCards = {
    "                ", "   9999999999   ", "   9        9   ", "  999999999999  ",
    "  9          9  ", " 99999999999999 ", " 93333333333339 ", " 93333333333339 ",
    " 9            9 ", " 9            9 ", " 9  99999999  9 ", " 9            9 ",
    " 9  999999    9 ", " 9            9 ", " 99999999999999 ", "                ",
};

uint32_t ColourOf(char letter) {
    constexpr uint32_t kSeeThrough = 0xFFFF00FF;
    if (letter == ' ') return kSeeThrough;
    constexpr uint32_t kOpaque = 0xFF000000;
    constexpr uint32_t kGrey = 0x010101;
    return kOpaque | static_cast<uint32_t>(kWhite * (kDarkest - (letter - '0')) / kDarkest) * kGrey;
}

PixelImage Draw(Drawing& drawing) {
    PixelImage image{kSize, kSize, {}};
    image.Pixels.reserve(kSize * kSize);
    for (const char* line : drawing)
        for (int x = 0; x < kSize; ++x) image.Pixels.push_back(ColourOf(line[x]));
    return image;
}

}  // namespace class_pictures_detail

std::optional<PixelImage> ClassPicture(const AnsiString& resource) {
    using namespace class_pictures_detail;
    if (resource == CT_BitmapSearch) return Draw(kLens);
    if (resource == CT_BitmapClass) return Draw(kCards);
    return std::nullopt;
}

}  // namespace vyn
