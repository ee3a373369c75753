#include "platform/controls/bitmap_codec.h"

#include <algorithm>
#include <array>

#include "platform/text/exceptions.h"

namespace vyn {

namespace bmp_detail {

constexpr uint32_t kOpaque = 0xFF000000u;
constexpr size_t kFileHeader = 14;
constexpr uint32_t kCoreHeader = 12;
constexpr uint32_t kInfoHeader = 40;
constexpr uint32_t kLongestHeader = 124;
constexpr size_t kIconDirectory = 6;
constexpr size_t kIconEntry = 16;
constexpr int kIconWholeSize = 256;  // what a size byte of 0 means
constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1A\n";

enum Compression : uint32_t { Plain = 0, Rle8 = 1, Rle4 = 2, BitFields = 3, AlphaBitFields = 6 };

[[noreturn]] void Fail() { throw EInvalidGraphic("Bitmap image is not valid"); }

uint32_t Byte(std::string_view bytes, size_t at) {
    if (at >= bytes.size()) Fail();
    return static_cast<uint8_t>(bytes[at]);
}
uint32_t U16(std::string_view bytes, size_t at) { return Byte(bytes, at) | Byte(bytes, at + 1) << 8; }
uint32_t U32(std::string_view bytes, size_t at) { return U16(bytes, at) | U16(bytes, at + 2) << 16; }

void Put16(AnsiString& out, uint32_t value) {
    out += static_cast<char>(value);
    out += static_cast<char>(value >> 8);
}
void Put32(AnsiString& out, uint32_t value) {
    Put16(out, value);
    Put16(out, value >> 16);
}

struct Header {
    int width = 0;
    int height = 0;
    bool topDown = false;
    uint32_t bits = 0;
    uint32_t compression = Plain;
    size_t paletteAt = 0;
    uint32_t paletteCount = 0;
    uint32_t paletteEntry = 4;
    std::array<uint32_t, 4> masks = {0, 0, 0, 0};  // red, green, blue, alpha
    size_t end = 0;                                // of header, masks and palette
};

Header ReadHeader(std::string_view dib) {
    Header header;
    const uint32_t size = U32(dib, 0);
    int64_t width = 0;
    int64_t height = 0;
    uint32_t used = 0;
    if (size == kCoreHeader) {
        width = static_cast<int16_t>(U16(dib, 4));
        height = static_cast<int16_t>(U16(dib, 6));
        header.bits = U16(dib, 10);
        header.paletteEntry = 3;
    } else if (size >= kInfoHeader && size <= kLongestHeader) {
        width = static_cast<int32_t>(U32(dib, 4));
        height = static_cast<int32_t>(U32(dib, 8));
        header.bits = U16(dib, 14);
        header.compression = U32(dib, 16);
        used = U32(dib, 32);
    } else {
        Fail();
    }
    header.topDown = height < 0;
    if (height < 0) height = -height;
    if (width <= 0 || height <= 0 || width * height > kMaxPicturePixels) Fail();
    header.width = static_cast<int>(width);
    header.height = static_cast<int>(height);

    size_t at = size;
    switch (header.bits) {
        case 1:
        case 4:
        case 8: {
            const bool packed =
                (header.bits == 8 && header.compression == Rle8) || (header.bits == 4 && header.compression == Rle4);
            if (header.compression != Plain && (!packed || header.topDown)) Fail();
            header.paletteCount = used == 0 ? 1u << header.bits : used;
            if (header.paletteCount > 1u << header.bits) Fail();
            header.paletteAt = at;
            at += size_t{header.paletteCount} * header.paletteEntry;
            break;
        }
        case 16:
        case 32:
            if (header.compression == BitFields || header.compression == AlphaBitFields) {
                const size_t count = header.compression == AlphaBitFields || size >= 56 ? 4 : 3;
                for (size_t i = 0; i < count; ++i) header.masks[i] = U32(dib, kInfoHeader + i * 4);
                if (size == kInfoHeader) at += count * 4;
            } else if (header.compression == Plain) {
                header.masks = header.bits == 16 ? std::array<uint32_t, 4>{0x7C00, 0x03E0, 0x001F, 0}
                                                 : std::array<uint32_t, 4>{0xFF0000, 0xFF00, 0xFF, 0xFF000000};
            } else {
                Fail();
            }
            break;
        case 24:
            if (header.compression != Plain) Fail();
            break;
        default:
            Fail();
    }
    if (at > dib.size()) Fail();
    header.end = at;
    return header;
}

std::vector<uint32_t> ReadPalette(std::string_view dib, const Header& header) {
    std::vector<uint32_t> palette(size_t{1} << header.bits, kOpaque);
    for (uint32_t i = 0; i < header.paletteCount; ++i) {
        const size_t at = header.paletteAt + size_t{i} * header.paletteEntry;
        palette[i] = kOpaque | Byte(dib, at) | Byte(dib, at + 1) << 8 | Byte(dib, at + 2) << 16;
    }
    return palette;
}

// One channel of a pixel, spread over 8 bits.
uint32_t Channel(uint32_t pixel, uint32_t mask) {
    if (mask == 0) return 0;
    const int shift = __builtin_ctz(mask);
    const uint64_t most = mask >> shift;
    return static_cast<uint32_t>(((pixel & mask) >> shift) * 255ull / most);
}

uint32_t* Row(PixelImage& image, const Header& header, int row) {
    const int y = header.topDown ? row : header.height - 1 - row;
    return image.Pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(header.width);
}

void DecodeRle(std::string_view data, const Header& header, const std::vector<uint32_t>& palette, PixelImage& image) {
    const bool nibbles = header.compression == Rle4;
    int x = 0;
    int y = 0;
    size_t at = 0;
    const auto put = [&](uint32_t index) {
        if (x < header.width && y < header.height) Row(image, header, y)[x] = palette[index];
        ++x;
    };
    while (y < header.height) {
        const uint32_t count = Byte(data, at);
        const uint32_t value = Byte(data, at + 1);
        at += 2;
        if (count > 0) {
            for (uint32_t i = 0; i < count; ++i) put(!nibbles ? value : i % 2 == 0 ? value >> 4 : value & 15);
        } else if (value == 0) {
            x = 0;
            ++y;
        } else if (value == 1) {
            return;
        } else if (value == 2) {
            x += static_cast<int>(Byte(data, at));
            y += static_cast<int>(Byte(data, at + 1));
            at += 2;
        } else {
            for (uint32_t i = 0; i < value; ++i) {
                const uint32_t byte = Byte(data, at + (nibbles ? i / 2 : i));
                put(!nibbles ? byte : i % 2 == 0 ? byte >> 4 : byte & 15);
            }
            const size_t bytes = nibbles ? (value + 1) / 2 : value;
            at += bytes + bytes % 2;
        }
        if (x > header.width + 255) x = header.width + 255;  // a run beyond the edge is cut, however long
    }
}

PixelImage DecodeDib(std::string_view dib, const Header& header, size_t dataAt, bool keepAlpha) {
    if (dataAt > dib.size()) Fail();
    const std::string_view data = dib.substr(dataAt);
    const uint64_t stride = (uint64_t{header.bits} * static_cast<uint64_t>(header.width) + 31) / 32 * 4;
    const bool packed = header.compression == Rle8 || header.compression == Rle4;
    if (!packed && stride * static_cast<uint64_t>(header.height) > data.size()) Fail();

    PixelImage image;
    image.Width = header.width;
    image.Height = header.height;
    std::vector<uint32_t> palette;
    if (header.bits <= 8) palette = ReadPalette(dib, header);
    image.Pixels.assign(static_cast<size_t>(header.width) * static_cast<size_t>(header.height),
                        palette.empty() ? kOpaque : palette[0]);
    if (packed) {
        DecodeRle(data, header, palette, image);
        return image;
    }
    bool anyAlpha = false;
    for (int row = 0; row < header.height; ++row) {
        const auto* line = reinterpret_cast<const uint8_t*>(data.data()) + stride * static_cast<uint64_t>(row);
        uint32_t* out = Row(image, header, row);
        for (int x = 0; x < header.width; ++x) {
            const size_t at = static_cast<size_t>(x);
            switch (header.bits) {
                case 1:
                    out[x] = palette[line[at / 8] >> (7 - at % 8) & 1];
                    break;
                case 4:
                    out[x] = palette[line[at / 2] >> (at % 2 == 0 ? 4 : 0) & 15];
                    break;
                case 8:
                    out[x] = palette[line[at]];
                    break;
                case 24:
                    out[x] =
                        kOpaque | line[at * 3] | uint32_t{line[at * 3 + 1]} << 8 | uint32_t{line[at * 3 + 2]} << 16;
                    break;
                default: {
                    uint32_t pixel = line[at * (header.bits / 8)] | uint32_t{line[at * (header.bits / 8) + 1]} << 8;
                    if (header.bits == 32) pixel |= uint32_t{line[at * 4 + 2]} << 16 | uint32_t{line[at * 4 + 3]} << 24;
                    const uint32_t alpha = Channel(pixel, header.masks[3]);
                    anyAlpha = anyAlpha || alpha != 0;
                    out[x] = alpha << 24 | Channel(pixel, header.masks[0]) << 16 |
                             Channel(pixel, header.masks[1]) << 8 | Channel(pixel, header.masks[2]);
                }
            }
        }
    }
    // Most 32-bit bitmaps leave the fourth byte 0 and mean an opaque picture.
    if ((header.bits == 16 || header.bits == 32) && (!anyAlpha || !keepAlpha))
        for (uint32_t& pixel : image.Pixels) pixel |= kOpaque;
    return image;
}

std::string_view DibOf(std::string_view file, size_t& dataAt) {
    if (file.size() < kFileHeader || file.substr(0, 2) != "BM") Fail();
    dataAt = U32(file, 10);
    return file.substr(kFileHeader);
}

// An icon's picture: colours, then a mask of one bit a pixel, under a header that counts both heights.
PixelImage DecodeIconDib(std::string_view dib) {
    Header header = ReadHeader(dib);
    if (header.height % 2 != 0 || header.topDown || header.compression != Plain) Fail();
    header.height /= 2;
    PixelImage image = DecodeDib(dib, header, header.end, true);
    const uint64_t stride = (uint64_t{header.bits} * static_cast<uint64_t>(header.width) + 31) / 32 * 4;
    const uint64_t maskStride = (static_cast<uint64_t>(header.width) + 31) / 32 * 4;
    const uint64_t maskAt = header.end + stride * static_cast<uint64_t>(header.height);
    if (maskAt + maskStride * static_cast<uint64_t>(header.height) > dib.size()) {
        if (header.bits == 32) return image;  // its own alpha says it all
        Fail();
    }
    bool opaque = true;
    if (header.bits == 32)
        for (const uint32_t pixel : image.Pixels) opaque = opaque && pixel >> 24 == 255;
    if (!opaque) return image;
    for (int row = 0; row < header.height; ++row)
        for (int x = 0; x < header.width; ++x) {
            const uint32_t byte =
                Byte(dib, maskAt + maskStride * static_cast<uint64_t>(row) + static_cast<uint64_t>(x) / 8);
            if (byte >> (7 - x % 8) & 1) Row(image, header, row)[x] = 0;
        }
    return image;
}

}  // namespace bmp_detail

PixelImage DecodeBmp(std::string_view file) {
    size_t dataAt = 0;
    const std::string_view dib = bmp_detail::DibOf(file, dataAt);
    const bmp_detail::Header header = bmp_detail::ReadHeader(dib);
    // Old writers leave the offset 0; the pixels then stand right behind the palette.
    const size_t at = dataAt >= bmp_detail::kFileHeader + header.end ? dataAt - bmp_detail::kFileHeader : header.end;
    return bmp_detail::DecodeDib(dib, header, at, true);
}

void ReadBmpSize(std::string_view file, int& width, int& height) {
    size_t dataAt = 0;
    const bmp_detail::Header header = bmp_detail::ReadHeader(bmp_detail::DibOf(file, dataAt));
    width = header.width;
    height = header.height;
}

AnsiString EncodeBmp(const PixelImage& image) {
    bool opaque = true;
    for (const uint32_t pixel : image.Pixels) opaque = opaque && pixel >> 24 == 255;
    const uint32_t bits = opaque ? 24 : 32;
    const uint64_t stride = (uint64_t{bits} * static_cast<uint64_t>(image.Width) + 31) / 32 * 4;
    const auto dataSize = static_cast<uint32_t>(stride * static_cast<uint64_t>(image.Height));
    const uint32_t dataAt = bmp_detail::kFileHeader + bmp_detail::kInfoHeader;
    AnsiString out;
    out.reserve(dataAt + dataSize);
    out += "BM";
    bmp_detail::Put32(out, dataAt + dataSize);
    bmp_detail::Put32(out, 0);
    bmp_detail::Put32(out, dataAt);
    bmp_detail::Put32(out, bmp_detail::kInfoHeader);
    bmp_detail::Put32(out, static_cast<uint32_t>(image.Width));
    bmp_detail::Put32(out, static_cast<uint32_t>(image.Height));
    bmp_detail::Put16(out, 1);
    bmp_detail::Put16(out, bits);
    bmp_detail::Put32(out, bmp_detail::Plain);
    bmp_detail::Put32(out, dataSize);
    for (int i = 0; i < 4; ++i) bmp_detail::Put32(out, 0);
    for (int y = image.Height - 1; y >= 0; --y) {
        const size_t rowAt = out.size();
        for (int x = 0; x < image.Width; ++x) {
            const uint32_t pixel = image.At(x, y);
            out += static_cast<char>(pixel);
            out += static_cast<char>(pixel >> 8);
            out += static_cast<char>(pixel >> 16);
            if (!opaque) out += static_cast<char>(pixel >> 24);
        }
        out.append(rowAt + stride - out.size(), '\0');
    }
    return out;
}

DecodedIcon DecodeIco(std::string_view file) {
    using bmp_detail::U16;
    using bmp_detail::U32;
    const auto fail = [] { throw EInvalidGraphic("Icon image is not valid"); };
    if (file.size() < bmp_detail::kIconDirectory || U16(file, 0) != 0 || (U16(file, 2) != 1 && U16(file, 2) != 2))
        fail();
    const uint32_t count = U16(file, 4);
    if (count == 0 || bmp_detail::kIconDirectory + size_t{count} * bmp_detail::kIconEntry > file.size()) fail();
    size_t best = 0;
    int bestScore = -1;
    for (uint32_t i = 0; i < count; ++i) {
        const size_t at = bmp_detail::kIconDirectory + size_t{i} * bmp_detail::kIconEntry;
        int width = static_cast<int>(bmp_detail::Byte(file, at));
        if (width == 0) width = bmp_detail::kIconWholeSize;
        const int score = width * 256 + static_cast<int>(U16(file, at + 6));
        if (score > bestScore) {
            bestScore = score;
            best = at;
        }
    }
    const size_t size = U32(file, best + 8);
    const size_t offset = U32(file, best + 12);
    if (offset > file.size() || size > file.size() - offset || size == 0) fail();
    const std::string_view entry = file.substr(offset, size);
    DecodedIcon icon;
    if (entry.substr(0, bmp_detail::kPngSignature.size()) == bmp_detail::kPngSignature) {
        icon.Png = AnsiString(entry);
        ReadPngSize(entry, icon.Width, icon.Height);
        return icon;
    }
    icon.Image = bmp_detail::DecodeIconDib(entry);
    icon.Width = icon.Image.Width;
    icon.Height = icon.Image.Height;
    return icon;
}

void ReadPngSize(std::string_view file, int& width, int& height) {
    constexpr size_t kWidthAt = 16;
    constexpr size_t kHeaderEnd = 24;
    const auto bigEndian = [&](size_t at) {
        return bmp_detail::Byte(file, at) << 24 | bmp_detail::Byte(file, at + 1) << 16 |
               bmp_detail::Byte(file, at + 2) << 8 | bmp_detail::Byte(file, at + 3);
    };
    if (file.size() < kHeaderEnd || file.substr(0, bmp_detail::kPngSignature.size()) != bmp_detail::kPngSignature)
        throw EInvalidGraphic("PNG image is not valid");
    const uint32_t wide = bigEndian(kWidthAt);
    const uint32_t high = bigEndian(kWidthAt + 4);
    if (wide == 0 || high == 0 || uint64_t{wide} * high > static_cast<uint64_t>(kMaxPicturePixels))
        throw EInvalidGraphic("PNG image is not valid");
    width = static_cast<int>(wide);
    height = static_cast<int>(high);
}

}  // namespace vyn
