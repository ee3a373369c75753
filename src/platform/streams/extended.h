#pragma once

#include <cstdint>

#include "platform/streams/value_type.h"

namespace vyn {

// The 10 bytes of an x87 extended number and back, on any machine; a long double that is the x87 format keeps every
// bit.
void PutExtended(long double value, unsigned char* bytes);
long double GetExtended(const unsigned char* bytes);

}  // namespace vyn
