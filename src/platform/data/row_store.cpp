#include "platform/data/row_store.h"

#include <algorithm>
#include <cstring>

namespace vyn {

namespace row_store_detail {

constexpr size_t kBlockSize = 256 * 1024;
constexpr int kBitsPerByte = 8;
constexpr unsigned char kMore = 0x80;  // another byte of the number follows

void PutVariable(std::vector<unsigned char>& bytes, uint64_t value) {
    while (value >= kMore) {
        bytes.push_back(static_cast<unsigned char>(value) | kMore);
        value >>= 7;
    }
    bytes.push_back(static_cast<unsigned char>(value));
}

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

void RowStore::BeginRow() {
    building_.assign(bitmapBytes_, 0);
    column_ = 0;
}

void RowStore::PutNull() {
    building_[static_cast<size_t>(column_) / 8] |= static_cast<unsigned char>(1u << (column_ % 8));
    ++column_;
}

void RowStore::PutInteger(int64_t value) {
    // Small numbers of either sign take few bytes.
    const auto folded = (static_cast<uint64_t>(value) << 1) ^ static_cast<uint64_t>(value >> 63);
    row_store_detail::PutVariable(building_, folded);
    ++column_;
}

void RowStore::PutReal(double value) {
    unsigned char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    building_.insert(building_.end(), bytes, bytes + sizeof value);
    ++column_;
}

void RowStore::PutBytes(std::string_view bytes) {
    row_store_detail::PutVariable(building_, bytes.size());
    building_.insert(building_.end(), bytes.begin(), bytes.end());
    ++column_;
}

const unsigned char* RowStore::Keep() {
    const size_t size = building_.size();
    if (size > blockLeft_) {
        const size_t block = std::max(size, row_store_detail::kBlockSize);
        blocks_.push_back(std::unique_ptr<unsigned char[]>(new unsigned char[block]));
        blockAt_ = blocks_.back().get();
        blockLeft_ = block;
        used_ += block;
    }
    unsigned char* kept = blockAt_;
    std::memcpy(kept, building_.data(), size);
    blockAt_ += size;
    blockLeft_ -= size;
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
    if (IsNull(row, column)) return nullptr;
    const unsigned char* at = rows_[static_cast<size_t>(row)] + bitmapBytes_;
    for (int i = 0; i < column; ++i) {
        if (IsNull(row, i)) continue;
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

void RowStore::Clear() {
    rows_.clear();
    identities_.clear();
    numbered_ = false;
    nextIdentity_ = 0;
    blocks_.clear();
    blockLeft_ = used_ = 0;
    blockAt_ = nullptr;
}

}  // namespace vyn
