#include "platform/data/row_store.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace vyn {

namespace row_store_detail {

constexpr size_t kBlockSize = 256 * 1024;
constexpr int kBitsPerByte = 8;
constexpr unsigned char kMore = 0x80;  // another byte of the number follows

uint64_t TakeVariable(const unsigned char*& at) {
    uint64_t value = 0;
    for (int shift = 0;; shift += 7) {
        const unsigned char byte = *at++;
        value |= static_cast<uint64_t>(byte & ~kMore) << shift;
        if (!(byte & kMore)) return value;
    }
}

}  // namespace row_store_detail

RowStore::RowStore(std::vector<ColumnKind> columns)
    : columns_(std::move(columns)),
      bitmapBytes_((columns_.size() + row_store_detail::kBitsPerByte - 1) / row_store_detail::kBitsPerByte) {}

void RowStore::MakeRoom(size_t bytes) {
    const size_t had = at_ > begin_ ? static_cast<size_t>(at_ - begin_) : 0;
    const size_t block = std::max(had + bytes, row_store_detail::kBlockSize);
    blocks_.push_back({std::unique_ptr<unsigned char[]>(new unsigned char[block]), block});
    unsigned char* made = blocks_.back().bytes.get();
    if (had > 0) std::memcpy(made, begin_, had);
    begin_ = made;
    at_ = made + had;
    limit_ = made + block;
    used_ += block;
}

const unsigned char* RowStore::Keep() {
    const unsigned char* kept = begin_;
    begin_ = at_;
    return kept;
}

void RowStore::EndRow() {
    rows_.push_back(Keep());
    if (numbered_) identities_.push_back(nextIdentity_++);
}

void RowStore::Build(const Record& record) {
    BeginRow();
    for (size_t i = 0; i < columns_.size(); ++i) {
        const Cell* cell = i < record.size() ? &record[i] : nullptr;
        switch (columns_[i]) {
            case ColumnKind::Integer:
                cell && cell->IsInteger() ? PutInteger(cell->AsInteger()) : PutNull();
                break;
            case ColumnKind::Real:
                cell && cell->IsReal() ? PutReal(cell->AsReal()) : PutNull();
                break;
            case ColumnKind::Text:
            case ColumnKind::Bytes:
                cell && cell->IsBytes() ? PutBytes(cell->AsBytes()) : PutNull();
                break;
        }
    }
}

void RowStore::Append(const Record& record) {
    Build(record);
    EndRow();
}

void RowStore::NumberRows() {
    if (numbered_) return;
    numbered_ = true;
    identities_.resize(rows_.size());
    for (size_t i = 0; i < identities_.size(); ++i) identities_[i] = static_cast<int64_t>(i);
    nextIdentity_ = Count();
}

void RowStore::Insert(int64_t row, const Record& record) {
    NumberRows();
    Build(record);
    rows_.insert(rows_.begin() + row, Keep());
    identities_.insert(identities_.begin() + row, nextIdentity_++);
}

void RowStore::Replace(int64_t row, const Record& record) {
    Build(record);
    rows_[static_cast<size_t>(row)] = Keep();
}

void RowStore::Remove(int64_t row) {
    NumberRows();
    rows_.erase(rows_.begin() + row);
    identities_.erase(identities_.begin() + row);
}

int64_t RowStore::Identity(int64_t row) const { return numbered_ ? identities_[static_cast<size_t>(row)] : row; }

int64_t RowStore::RowOf(int64_t identity) const {
    if (!numbered_) return identity >= 0 && identity < Count() ? identity : -1;
    const auto found = std::find(identities_.begin(), identities_.end(), identity);
    return found == identities_.end() ? -1 : found - identities_.begin();
}

Cell RowStore::CellAt(int64_t row, int column) const {
    if (IsNull(row, column)) return Cell::Null();
    switch (columns_[static_cast<size_t>(column)]) {
        case ColumnKind::Integer:
            return Cell::Integer(Integer(row, column));
        case ColumnKind::Real:
            return Cell::Real(Real(row, column));
        case ColumnKind::Text:
        case ColumnKind::Bytes:
            return Cell::Bytes(std::string(Bytes(row, column)));
    }
    return Cell::Null();
}

Record RowStore::RecordAt(int64_t row) const {
    Record record;
    for (int i = 0; i < ColumnCount(); ++i) record.push_back(CellAt(row, i));
    return record;
}

bool RowStore::IsNull(int64_t row, int column) const {
    return (rows_[static_cast<size_t>(row)][column / 8] & (1u << (column % 8))) != 0;
}

const unsigned char* RowStore::ValueAt(int64_t row, int column) const {
    const unsigned char* const begin = rows_[static_cast<size_t>(row)];
    const auto isNull = [begin](int i) { return (begin[i / 8] & (1u << (i % 8))) != 0; };
    if (isNull(column)) return nullptr;
    const bool goesOn = last_.row == begin && last_.column <= column;
    const unsigned char* at = goesOn ? last_.at : begin + bitmapBytes_;
    for (int i = goesOn ? last_.column : 0; i < column; ++i) {
        if (isNull(i)) continue;
        switch (columns_[static_cast<size_t>(i)]) {
            case ColumnKind::Integer:
                row_store_detail::TakeVariable(at);
                break;
            case ColumnKind::Real:
                at += sizeof(double);
                break;
            case ColumnKind::Text:
            case ColumnKind::Bytes: {
                const uint64_t length = row_store_detail::TakeVariable(at);
                at += length;
                break;
            }
        }
    }
    last_ = {begin, column, at};
    return at;
}

int64_t RowStore::Integer(int64_t row, int column) const {
    const unsigned char* at = ValueAt(row, column);
    if (!at) return 0;
    const uint64_t folded = row_store_detail::TakeVariable(at);
    return static_cast<int64_t>(folded >> 1) ^ -static_cast<int64_t>(folded & 1);
}

double RowStore::Real(int64_t row, int column) const {
    const unsigned char* at = ValueAt(row, column);
    double value = 0;
    if (at) std::memcpy(&value, at, sizeof value);
    return value;
}

std::string_view RowStore::Bytes(int64_t row, int column) const {
    const unsigned char* at = ValueAt(row, column);
    if (!at) return {};
    const uint64_t length = row_store_detail::TakeVariable(at);
    return {reinterpret_cast<const char*>(at), static_cast<size_t>(length)};
}

void RowStore::Truncate(int64_t count) {
    if (count >= Count()) return;
    last_ = {};
    // Where the first of them begins, the next row is put; what lies behind it is theirs.
    const unsigned char* const kept = rows_[static_cast<size_t>(count)];
    rows_.resize(static_cast<size_t>(count));
    if (numbered_) identities_.resize(static_cast<size_t>(count));
    const auto holds = [kept](const Block& block) {
        return std::greater_equal<>()(kept, block.bytes.get()) && std::less<>()(kept, block.bytes.get() + block.size);
    };
    for (; !blocks_.empty() && !holds(blocks_.back()); blocks_.pop_back()) used_ -= blocks_.back().size;
    begin_ = at_ = const_cast<unsigned char*>(kept);
    limit_ = blocks_.back().bytes.get() + blocks_.back().size;
}

void RowStore::Clear() {
    last_ = {};
    rows_.clear();
    identities_.clear();
    numbered_ = false;
    nextIdentity_ = 0;
    blocks_.clear();
    used_ = 0;
    begin_ = at_ = limit_ = nullptr;
}

}  // namespace vyn
