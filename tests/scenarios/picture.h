#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vyn::scenarios {

// A picture as PNG stores it: 8 bits a channel, no interlace, with or without an alpha channel.
struct Picture {
    int Width = 0;
    int Height = 0;
    std::vector<uint32_t> Pixels;  // 0xRRGGBB, row by row

    size_t Colours() const;
};

// Raises std::runtime_error for what is no such picture.
Picture ReadPicture(const std::string& file);

}  // namespace vyn::scenarios
