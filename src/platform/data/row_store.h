#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
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
    void BeginRow() {
        at_ = begin_;  // what was not ended is forgotten
        if (limit_ - begin_ <= static_cast<ptrdiff_t>(bitmapBytes_)) MakeRoom(bitmapBytes_ + 1);
        std::memset(begin_, 0, bitmapBytes_);
        at_ = begin_ + bitmapBytes_;
        column_ = 0;
    }
    void PutNull() {
        begin_[column_ / 8] |= static_cast<unsigned char>(1u << (column_ % 8));
        ++column_;
    }
    void PutInteger(int64_t value) {
        // Small numbers of either sign take few bytes.
        Need(kLongestNumber);
        PutVariable((static_cast<uint64_t>(value) << 1) ^ static_cast<uint64_t>(value >> 63));
        ++column_;
    }
    void PutReal(double value) {
        Need(sizeof value);
        std::memcpy(at_, &value, sizeof value);
        at_ += sizeof value;
        ++column_;
    }
    void PutBytes(std::string_view bytes) {
        Need(kLongestNumber + bytes.size());
        PutVariable(bytes.size());
        if (!bytes.empty()) std::memcpy(at_, bytes.data(), bytes.size());
        at_ += bytes.size();
        ++column_;
    }
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
    // Forgets all rows but the first `count`, and uses their memory again: for rows that were put there just now, and
    // nothing since.
    void Truncate(int64_t count);
    const std::vector<ColumnKind>& Columns() const { return columns_; }

  private:
    // Where a value begins; null for a null.
    const unsigned char* ValueAt(int64_t row, int column) const;
    const unsigned char* Keep();
    // For the row being put, in a block that has so many bytes more.
    void MakeRoom(size_t bytes);
    void Need(size_t bytes) {
        if (limit_ - at_ < static_cast<ptrdiff_t>(bytes)) MakeRoom(bytes);
    }
    void PutVariable(uint64_t value) {
        while (value >= kMore) {
            *at_++ = static_cast<unsigned char>(value) | kMore;
            value >>= 7;
        }
        *at_++ = static_cast<unsigned char>(value);
    }
    void Build(const Record& record);
    void NumberRows();

    static constexpr unsigned char kMore = 0x80;  // another byte of the number follows
    static constexpr size_t kLongestNumber = 10;

    std::vector<ColumnKind> columns_;
    size_t bitmapBytes_;
    struct Block {
        std::unique_ptr<unsigned char[]> bytes;
        size_t size = 0;
    };
    std::vector<Block> blocks_;
    // The row being put: where it begins in the last block, how far it is, and where the block ends.
    unsigned char* begin_ = nullptr;
    unsigned char* at_ = nullptr;
    unsigned char* limit_ = nullptr;
    size_t used_ = 0;
    std::vector<const unsigned char*> rows_;
    // Kept from the first insertion or removal on; before, a row's identity is its number.
    std::vector<int64_t> identities_;
    bool numbered_ = false;
    int64_t nextIdentity_ = 0;
    int column_ = 0;
    // Where the value that was looked for last begins: rows are mostly read from left to right.
    struct Place {
        const unsigned char* row = nullptr;
        int column = 0;
        const unsigned char* at = nullptr;
    };
    mutable Place last_;
};

}  // namespace vyn
