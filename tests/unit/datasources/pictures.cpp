// A library with a bitmap for a data-source class: 2 x 1 pixels, red and see-through.
#include "datasources/data_source_classes.h"

namespace {

constexpr unsigned char kBitmap[] = {
    'B', 'M', 62, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 2, 0, 0, 0, 1, 0,    0, 0,    1, 0, 24,   0, 0,
    0,   0,   0,  8, 0, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0, 0xFF, 0, 0, 0xFF, 0, 0,
};

}  // namespace

extern "C" {
extern const vyn::VynModuleBitmap VYN_BITMAP_RED;
extern const vyn::VynModuleBitmap VYN_BITMAP_7;
const vyn::VynModuleBitmap VYN_BITMAP_RED = {kBitmap, sizeof kBitmap};
const vyn::VynModuleBitmap VYN_BITMAP_7 = {kBitmap, sizeof kBitmap};
}
