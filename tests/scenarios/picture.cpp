#include "scenarios/picture.h"

#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <unordered_set>

#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

constexpr char kSignature[] = "\x89PNG\r\n\x1a\n";
constexpr size_t kSignatureSize = 8;
constexpr size_t kChunkFrame = 12;  // length, name and check sum around a chunk's bytes
constexpr int kColourRgb = 2;
constexpr int kColourRgbAlpha = 6;

uint32_t BigEndian(const std::string& bytes, size_t at) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<uint8_t>(bytes.at(at + i));
    return value;
}

int Paeth(int left, int above, int corner) {
    const int guess = left + above - corner;
    const int byLeft = std::abs(guess - left), byAbove = std::abs(guess - above), byCorner = std::abs(guess - corner);
    if (byLeft <= byAbove && byLeft <= byCorner) return left;
    return byAbove <= byCorner ? above : corner;
}

// Undoes a row's filter in place; `above` is the row before, without its filter.
void Unfilter(int filter, std::vector<uint8_t>& row, const std::vector<uint8_t>& above, size_t channels) {
    for (size_t i = 0; i < row.size(); ++i) {
        const int left = i >= channels ? row[i - channels] : 0;
        const int corner = i >= channels ? above[i - channels] : 0;
        int add = 0;
        switch (filter) {
            case 0:
                break;
            case 1:
                add = left;
                break;
            case 2:
                add = above[i];
                break;
            case 3:
                add = (left + above[i]) / 2;
                break;
            case 4:
                add = Paeth(left, above[i], corner);
                break;
            default:
                throw std::runtime_error("unknown row filter");
        }
        row[i] = static_cast<uint8_t>(row[i] + add);
    }
}

}  // namespace

size_t Picture::Colours() const { return std::unordered_set<uint32_t>(Pixels.begin(), Pixels.end()).size(); }

Picture ReadPicture(const std::string& file) {
    const std::string bytes = ReadBytes(file);
    if (bytes.compare(0, kSignatureSize, kSignature) != 0) throw std::runtime_error(file + " is no PNG");
    Picture picture;
    size_t channels = 0;
    std::string packed;
    bool ended = false;
    for (size_t at = kSignatureSize; !ended;) {
        const size_t length = BigEndian(bytes, at);
        const std::string name = bytes.substr(at + 4, 4);
        const size_t data = at + 8;
        if (name == "IHDR") {
            picture.Width = static_cast<int>(BigEndian(bytes, data));
            picture.Height = static_cast<int>(BigEndian(bytes, data + 4));
            const int colour = bytes.at(data + 9);
            if (bytes.at(data + 8) != 8 || bytes.at(data + 12) != 0 ||
                (colour != kColourRgb && colour != kColourRgbAlpha))
                throw std::runtime_error("another kind of PNG than expected");
            channels = colour == kColourRgb ? 3 : 4;
        } else if (name == "IDAT") {
            packed += bytes.substr(data, length);
        } else if (name == "IEND") {
            ended = true;
        }
        at += kChunkFrame + length;
    }
    const size_t rowSize = static_cast<size_t>(picture.Width) * channels;
    std::vector<uint8_t> raw((rowSize + 1) * static_cast<size_t>(picture.Height));
    uLongf size = static_cast<uLongf>(raw.size());
    if (::uncompress(raw.data(), &size, reinterpret_cast<const Bytef*>(packed.data()),
                     static_cast<uLong>(packed.size())) != Z_OK ||
        size != raw.size())
        throw std::runtime_error("the picture's rows do not unpack");
    std::vector<uint8_t> above(rowSize), row(rowSize);
    for (size_t start = 0; start < raw.size(); start += rowSize + 1) {
        std::memcpy(row.data(), &raw[start + 1], rowSize);
        Unfilter(raw[start], row, above, channels);
        for (size_t i = 0; i < rowSize; i += channels)
            picture.Pixels.push_back(static_cast<uint32_t>(row[i] << 16 | row[i + 1] << 8 | row[i + 2]));
        above = row;
    }
    return picture;
}

}  // namespace vyn::scenarios
