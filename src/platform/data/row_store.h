#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/data/cells.h"

namespace vyn {

// Rows of typed columns in few large blocks: a bitmap of nulls and, per value, a variable-length integer, eight bytes
// of a real number, or a length and bytes (texts in UTF-8). A value is decoded when it is asked for.
//
// Rows are numbered in order. Edited rows lie over what was fetched: a row may be replaced, inserted and removed, which
// moves the numbers behind it, while its identity stays.
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
    // A whole row; cells that do not fit their column's kind are nulls.
    void Append(const Record& record);
    void Insert(int64_t row, const Record& record);
    void Replace(int64_t row, const Record& record);
    void Remove(int64_t row);

    int64_t Count() const { return static_cast<int64_t>(rows_.size()); }
    int ColumnCount() const { return static_cast<int>(columns_.size()); }
    bool IsNull(int64_t row, int column) const;
    // 0, 0.0 and empty for nulls; the kind of the column must fit.
    int64_t Integer(int64_t row, int column) const;
    double Real(int64_t row, int column) const;
    std::string_view Bytes(int64_t row, int column) const;
    Cell CellAt(int64_t row, int column) const;
    Record RecordAt(int64_t row) const;
    // A number that is the row's own as long as it is there, and where the row with it stands (or -1).
    int64_t Identity(int64_t row) const;
    int64_t RowOf(int64_t identity) const;
    // Memory that the rows take.
    size_t MemoryUsed() const {
        return used_ + rows_.capacity() * sizeof(const unsigned char*) + identities_.capacity() * sizeof(int64_t);
    }
    void Clear();

  private:
    const unsigned char* ValueAt(int64_t row, int column) const;
    const unsigned char* Keep();
    void Build(const Record& record);
    void NumberRows();

    std::vector<ColumnKind> columns_;
    size_t bitmapBytes_;
    std::vector<std::unique_ptr<unsigned char[]>> blocks_;
    size_t blockLeft_ = 0;
    unsigned char* blockAt_ = nullptr;
    size_t used_ = 0;
    std::vector<const unsigned char*> rows_;
    // Kept from the first insertion or removal on; before, a row's identity is its number.
    std::vector<int64_t> identities_;
    bool numbered_ = false;
    int64_t nextIdentity_ = 0;
    std::vector<unsigned char> building_;
    int column_ = 0;
};

}  // namespace vyn
