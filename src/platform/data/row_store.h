#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/data/field_types.h"

namespace vyn {

// How the store keeps a column.
enum class ColumnKind : uint8_t { Integer, Real, Text, Bytes };
ColumnKind ColumnKindOf(TFieldType type);

// Rows of typed columns in few large blocks: a bitmap of nulls and, per value, a variable-length integer, eight bytes
// of a real number, or a length and bytes (texts in UTF-8). A value is decoded when it is asked for. Rows are only
// appended.
class RowStore {
  public:
    explicit RowStore(std::vector<ColumnKind> columns);

    // A row is put column by column, in order, between BeginRow and EndRow.
    void BeginRow();
    void PutNull();
    void PutInteger(int64_t value);
    void PutReal(double value);
    void PutBytes(std::string_view bytes);
    void EndRow();

    int64_t Count() const { return static_cast<int64_t>(rows_.size()); }
    int ColumnCount() const { return static_cast<int>(columns_.size()); }
    bool IsNull(int64_t row, int column) const;
    // 0, 0.0 and empty for nulls; the kind of the column must fit.
    int64_t Integer(int64_t row, int column) const;
    double Real(int64_t row, int column) const;
    std::string_view Bytes(int64_t row, int column) const;
    // Memory that the rows take.
    size_t MemoryUsed() const { return used_ + rows_.capacity() * sizeof(const unsigned char*); }
    void Clear();

  private:
    const unsigned char* ValueAt(int64_t row, int column) const;

    std::vector<ColumnKind> columns_;
    size_t bitmapBytes_;
    std::vector<std::unique_ptr<unsigned char[]>> blocks_;
    size_t blockLeft_ = 0;
    unsigned char* blockAt_ = nullptr;
    size_t used_ = 0;
    std::vector<const unsigned char*> rows_;
    std::vector<unsigned char> building_;
    int column_ = 0;
};

}  // namespace vyn
