#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/objects/name_index.h"
#include "platform/text/ansi_string.h"

namespace vyn {

// Names for the values of published enumerations, sets and integers.
//
// A type becomes publishable by an overload of TypeInfoOf beside it, found by the tag:
//     const EnumType& TypeInfoOf(TypeTag<TAlign>);      // values 0, 1, 2... with the names in order
//     const IntegerType& TypeInfoOf(TypeTag<TColor>);   // an integer, some of whose values have names
template <class T>
struct TypeTag {};

// An enumeration's values, from 0 upward, each with its identifier.
class EnumType {
  public:
    EnumType(AnsiString name, std::initializer_list<std::string_view> values);

    const AnsiString& Name() const { return name_; }
    int Count() const { return static_cast<int>(values_.size()); }
    bool Contains(int64_t value) const { return value >= 0 && value < Count(); }
    // Raises EConvertError for a number that is no value of the enumeration.
    const AnsiString& NameOf(int64_t value) const;
    // The value of an identifier (without regard to case), or -1.
    int ValueOf(std::string_view name) const;

  private:
    AnsiString name_;
    std::vector<AnsiString> values_;
    NameIndex index_;
};

// An integer type some of whose values are written by name: colours, cursors, character sets.
class IntegerType {
  public:
    IntegerType(AnsiString name, std::initializer_list<std::pair<std::string_view, int64_t>> names);

    const AnsiString& Name() const { return name_; }
    // The identifier of a value, or null when it has none.
    const AnsiString* NameOf(int64_t value) const;
    bool ValueOf(std::string_view name, int64_t& value) const;
    const std::vector<std::pair<AnsiString, int64_t>>& Names() const { return names_; }

  private:
    AnsiString name_;
    std::vector<std::pair<AnsiString, int64_t>> names_;
    NameIndex index_;
};

// The enumeration False, True.
const EnumType& TypeInfoOf(TypeTag<bool>);

// A set of an enumeration's values (at most 64 of them).
template <class E>
class Set {
  public:
    using Element = E;
    constexpr Set() = default;
    constexpr Set(std::initializer_list<E> elements) {
        for (E element : elements) bits_ |= Bit(element);
    }
    static constexpr Set FromBits(uint64_t bits) {
        Set set;
        set.bits_ = bits;
        return set;
    }
    constexpr uint64_t Bits() const { return bits_; }
    constexpr bool Contains(E element) const { return (bits_ & Bit(element)) != 0; }
    constexpr bool Empty() const { return bits_ == 0; }
    constexpr void Include(E element) { bits_ |= Bit(element); }
    constexpr void Exclude(E element) { bits_ &= ~Bit(element); }
    friend constexpr bool operator==(Set a, Set b) { return a.bits_ == b.bits_; }
    friend constexpr Set operator+(Set a, Set b) { return FromBits(a.bits_ | b.bits_); }
    friend constexpr Set operator-(Set a, Set b) { return FromBits(a.bits_ & ~b.bits_); }
    friend constexpr Set operator*(Set a, Set b) { return FromBits(a.bits_ & b.bits_); }

  private:
    static constexpr uint64_t Bit(E element) { return uint64_t{1} << static_cast<unsigned>(element); }
    uint64_t bits_ = 0;
};

}  // namespace vyn
