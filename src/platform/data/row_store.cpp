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

ColumnKind ColumnKindOf(TFieldType type) {
    switch (type) {
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftBoolean:
        case ftCurrency:
        case ftBCD:
        case ftAutoInc:
        case ftLargeint:
            return ColumnKind::Integer;
        case ftFloat:
        case ftDate:
        case ftTime:
        case ftDateTime:
            return ColumnKind::Real;
        case ftBytes:
        case ftVarBytes:
        case ftBlob:
        case ftGraphic:
        case ftParadoxOle:
        case ftDBaseOle:
        case ftTypedBinary:
            return ColumnKind::Bytes;
        default:
            return ColumnKind::Text;
    }
}

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

void RowStore::EndRow() {
    const size_t size = building_.size();
    if (size > blockLeft_) {
        const size_t block = std::max(size, row_store_detail::kBlockSize);
        blocks_.push_back(std::unique_ptr<unsigned char[]>(new unsigned char[block]));
        blockAt_ = blocks_.back().get();
        blockLeft_ = block;
        used_ += block;
    }
    std::memcpy(blockAt_, building_.data(), size);
    rows_.push_back(blockAt_);
    blockAt_ += size;
    blockLeft_ -= size;
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
    blocks_.clear();
    blockLeft_ = used_ = 0;
    blockAt_ = nullptr;
}

}  // namespace vyn
