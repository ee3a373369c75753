#include "datasources/class_pictures.h"

#include "datasources/data_source_classes.h"

namespace vyn {

namespace class_pictures_detail {

// A picture as it looks: a letter a pixel. Blank is the see-through colour, which no letter stands for.
constexpr int kSize = 16;
using Drawing = const char* const[kSize];

// A lens: "o" its rim, "." the glass, "h" the grip.
constexpr Drawing kLens = {
    "                ", "    ooooo       ", "   o.....o      ", "  o..ww...o     ",
    " o..w......o    ", " o.w.......o    ", " o.........o    ", " o.........o    ",
    " o.........o    ", "  o.......o     ", "   o.....oo     ", "    ooooo hh    ",
    "           hhh  ", "            hhh ", "             hh ", "                ",
};

// Cards in a box: "o" lines, "." paper, "b" the tab.
constexpr Drawing kCards = {
    "                ", "   oooooooooo   ", "   o........o   ", "  oooooooooooo  ",
    "  o..........o  ", " oooooooooooooo ", " obbbbbbbbbbbbo ", " obbbbbbbbbbbbo ",
    " o............o ", " o..tttttttt..o ", " o............o ", " o..tttttt....o ",
    " o............o ", " oooooooooooooo ", "                ", "                ",
};

uint32_t ColourOf(char letter) {
    constexpr uint32_t kSeeThrough = 0xFFFF00FF;
    switch (letter) {
        case 'o':
            return 0xFF3B5B7D;
        case '.':
            return 0xFFF4F8FC;
        case 'w':
            return 0xFFA9C8E6;
        case 'h':
            return 0xFF8A6A3F;
        case 'b':
            return 0xFF7FA7CC;
        case 't':
            return 0xFF9AA5B1;
        default:
            return kSeeThrough;
    }
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
