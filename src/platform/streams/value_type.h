#pragma once

#include <cstdint>

namespace vyn {

// The type byte of a stored value (docs/formats/values.md). Little-endian payloads. These numbers are in files: they
// never change.
enum class TValueType : uint8_t {
    vaNull = 0,         // also the end of a list
    vaList = 1,         // values up to a vaNull
    vaInt8 = 2,         //
    vaInt16 = 3,        //
    vaInt32 = 4,        //
    vaExtended = 5,     // 10 bytes, x87 extended
    vaString = 6,       // 1-byte length, characters
    vaIdent = 7,        // 1-byte length, identifier
    vaFalse = 8,        //
    vaTrue = 9,         //
    vaBinary = 10,      // 4-byte length, bytes
    vaSet = 11,         // short strings up to an empty one
    vaLString = 12,     // 4-byte length, characters
    vaNil = 13,         //
    vaCollection = 14,  // per item an optional integer, a vaList of properties; vaNull at the end
    vaSingle = 15,      // 4 bytes
    vaCurrency = 16,    // 8-byte integer, times 10000
    vaDate = 17,        // 8-byte double, days since 1899-12-30
    vaWString = 18,     // 4-byte count, 16-bit characters
    vaInt64 = 19,       //
};
using enum TValueType;

// The last type code that there is.
constexpr uint8_t MaxValueType = 19;

// Nested lists, collections and components deeper than this are refused: no stored form comes near it, and a hostile
// file must not use up the stack.
constexpr int MaxStreamNesting = 1000;

// Flags of a stored component's header byte (0xF0 | flags).
enum : uint8_t {
    ffInherited = 1,  // changes a component that the form's ancestor made
    ffChildPos = 2,   // its position among its siblings follows
    ffInline = 4,     // a form inside the form
};

constexpr int ExtendedSize = 10;

// How a type is called in messages: "an integer", "a list".
const char* ValueTypeText(TValueType type);

}  // namespace vyn
