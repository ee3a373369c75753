#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/data/field_types.h"
#include "platform/values/variant.h"

namespace vyn {

// How rows keep a column.
enum class ColumnKind : uint8_t { Integer, Real, Text, Bytes };
ColumnKind ColumnKindOf(TFieldType type);

// One value as rows keep it: whole numbers (amounts in ten-thousandths), real numbers (dates as days), and bytes (texts
// in UTF-8). Unset is a null that nobody has written: an engine may put its default there.
class Cell {
  public:
    Cell() = default;
    static Cell Null() { return Cell(Store(NullTag{})); }
    static Cell Integer(int64_t value) { return Cell(Store(value)); }
    static Cell Real(double value) { return Cell(Store(value)); }
    static Cell Bytes(std::string value) { return Cell(Store(std::move(value))); }

    bool IsUnset() const { return std::holds_alternative<std::monostate>(store_); }
    bool IsNull() const { return IsUnset() || std::holds_alternative<NullTag>(store_); }
    bool IsInteger() const { return std::holds_alternative<int64_t>(store_); }
    bool IsReal() const { return std::holds_alternative<double>(store_); }
    bool IsBytes() const { return std::holds_alternative<std::string>(store_); }
    // 0, 0.0 and empty for what the cell does not hold.
    int64_t AsInteger() const { return IsInteger() ? std::get<int64_t>(store_) : 0; }
    double AsReal() const { return IsReal() ? std::get<double>(store_) : 0.0; }
    std::string_view AsBytes() const {
        return IsBytes() ? std::string_view(std::get<std::string>(store_)) : std::string_view();
    }

    // The same value; a null is a null, whether or not it was written.
    friend bool operator==(const Cell& a, const Cell& b) {
        if (a.IsNull() || b.IsNull()) return a.IsNull() == b.IsNull();
        return a.store_ == b.store_;
    }

  private:
    struct NullTag {
        friend bool operator==(NullTag, NullTag) { return true; }
    };
    using Store = std::variant<std::monostate, NullTag, int64_t, double, std::string>;
    explicit Cell(Store store) : store_(std::move(store)) {}

    Store store_;
};

using Record = std::vector<Cell>;

// The cell's value as fields of the type give it; characters that Windows-1252 lacks come as "?" but in wide strings.
Variant VariantOf(const Cell& cell, TFieldType type);
// The value as columns of the type keep it. Raises what the conversion raises (EVariantError, EConvertError), and
// EDatabaseError for a number that the type cannot hold.
Cell CellOf(const Variant& value, TFieldType type);
// The type of field that holds such a value best; ftUnknown for Empty and Null.
TFieldType FieldTypeOf(const Variant& value);

// `text` in UTF-8. Where it repeats what `stored` shows in Windows-1252, at its beginning and at its end, the stored
// characters stay: so a text with characters that cannot be shown survives being edited.
std::string MergeShownText(std::string_view stored, const AnsiString& text);

}  // namespace vyn
