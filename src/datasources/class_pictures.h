#pragma once

#include <optional>

#include "platform/controls/bitmap_codec.h"

namespace vyn {

// The pictures that this library itself carries, 16 pixels square, by their resource names; none for any other name.
std::optional<PixelImage> ClassPicture(const AnsiString& resource);

}  // namespace vyn
