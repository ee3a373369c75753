#include "platform/streams/extended.h"

#include <cfloat>
#include <cmath>
#include <cstring>

namespace vyn {

namespace extended_detail {

constexpr int kExponentBias = 16383;
constexpr int kExponentMask = 0x7FFF;
constexpr uint64_t kIntegerBit = uint64_t{1} << 63;
constexpr int kMantissaBits = 64;

}  // namespace extended_detail

void PutExtended(long double value, unsigned char* bytes) {
#if LDBL_MANT_DIG == 64
    std::memcpy(bytes, &value, ExtendedSize);
#else
    using namespace extended_detail;
    uint64_t mantissa = 0;
    uint16_t head = std::signbit(value) ? 0x8000 : 0;
    if (std::isnan(value)) {
        head |= kExponentMask;
        mantissa = kIntegerBit | (kIntegerBit >> 1);
    } else if (std::isinf(value)) {
        head |= kExponentMask;
        mantissa = kIntegerBit;
    } else if (value != 0) {
        int exponent = 0;
        const long double fraction = std::frexp(std::fabs(value), &exponent);
        mantissa = static_cast<uint64_t>(std::ldexp(fraction, kMantissaBits));
        head |= static_cast<uint16_t>(exponent - 1 + kExponentBias);
    }
    for (int i = 0; i < 8; ++i) bytes[i] = static_cast<unsigned char>(mantissa >> (8 * i));
    bytes[8] = static_cast<unsigned char>(head);
    bytes[9] = static_cast<unsigned char>(head >> 8);
#endif
}

long double GetExtended(const unsigned char* bytes) {
#if LDBL_MANT_DIG == 64
    long double value = 0;
    std::memcpy(&value, bytes, ExtendedSize);
    return value;
#else
    using namespace extended_detail;
    uint64_t mantissa = 0;
    for (int i = 0; i < 8; ++i) mantissa |= static_cast<uint64_t>(bytes[i]) << (8 * i);
    const int head = bytes[8] | (bytes[9] << 8);
    const int exponent = head & kExponentMask;
    long double value;
    if (exponent == kExponentMask)
        value = (mantissa << 1) != 0 ? NAN : INFINITY;
    else
        value = std::ldexp(static_cast<long double>(mantissa), exponent - kExponentBias - (kMantissaBits - 1));
    return (head & 0x8000) ? -value : value;
#endif
}

}  // namespace vyn
