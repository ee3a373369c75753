#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <set>

#include <fmt/format.h>

#include "providers/legacy/pages.h"

namespace vyn::legacy {

namespace rows_detail {

constexpr unsigned char kDataPage = 1;
// Long values: where they stand, in the two highest bits of their length.
constexpr uint32_t kLongInRow = 0x80000000;
constexpr uint32_t kLongInOnePlace = 0x40000000;
constexpr uint32_t kLongLength = 0x3FFFFFFF;
constexpr size_t kLongHead = 12;
constexpr int kMostHops = 8;
constexpr int kMoneyPlaces = 4;

size_t FixedSize(ColumnType type) {
    switch (type) {
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
        case ColumnType::Complex:
            return 4;
        case ColumnType::Money:
        case ColumnType::Double:
        case ColumnType::Date:
        case ColumnType::Large:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        case ColumnType::Boolean:
        case ColumnType::Binary:
        case ColumnType::Text:
        case ColumnType::Object:
        case ColumnType::Memo:
            return 0;
    }
    return 0;
}

template <typename Number>
Number Raw(std::string_view bytes) {
    Number number;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

// "-12.50" for -1250 and 2 places.
std::string WithPoint(std::string digits, bool negative, int places) {
    const auto behind = static_cast<size_t>(std::max(places, 0));
    if (digits.size() <= behind) digits.insert(0, behind + 1 - digits.size(), '0');
    if (behind > 0) {
        digits.insert(digits.size() - behind, ".");
        while (digits.back() == '0') digits.pop_back();
        if (digits.back() == '.') digits.pop_back();
    }
    if (negative && digits != "0") digits.insert(0, "-");
    return digits;
}

// Sixteen bytes, four words with the highest first, each with its lowest byte first.
std::string DecimalDigits(std::string_view bytes) {
    std::array<uint64_t, 4> words;
    for (size_t word = 0; word < words.size(); ++word) words[word] = NumberAt(bytes, word * 4, 4);
    std::string digits;
    do {
        uint64_t rest = 0;
        for (uint64_t& word : words) {
            const uint64_t whole = rest << 32 | word;
            word = whole / 10;
            rest = whole % 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + rest));
    } while (std::any_of(words.begin(), words.end(), [](uint64_t word) { return word != 0; }));
    return digits;
}

std::string GuidText(std::string_view bytes) {
    std::string text =
        fmt::format("{{{:08X}-{:04X}-{:04X}-", NumberAt(bytes, 0, 4), NumberAt(bytes, 4, 2), NumberAt(bytes, 6, 2));
    for (size_t i = 8; i < 16; ++i) {
        if (i == 10) text += '-';
        text += fmt::format("{:02X}", static_cast<unsigned char>(bytes[i]));
    }
    return text + "}";
}

// One table's rows.
class RowReader {
  public:
    RowReader(const Pages& pages, const Table& table, const std::function<void(const Row&)>& take)
        : pages_(pages), table_(table), take_(take), longBytesLeft_(pages.FileSize()) {
        for (const Column& each : table.Columns) hasVariable_ = hasVariable_ || !each.Fixed;
    }

    void Read() {
        int64_t count = 0;
        std::set<uint32_t> seen;
        for (const uint32_t number : pages_.MappedPages(table_.PageMap)) {
            if (!seen.insert(number).second) continue;
            const std::string page(pages_.Page(number));
            // A map may name pages that were taken and not yet used.
            if (static_cast<unsigned char>(page[0]) != kDataPage || NumberAt(page, 4, 4) != table_.Page) continue;
            for (size_t row = 0; row < pages_.RowCount(page); ++row) {
                try {
                    const Pages::RowPlace place = pages_.RowAt(page, row);
                    if (place.Deleted) continue;
                    ReadRow(place.Elsewhere ? Follow(place.Bytes) : std::string(place.Bytes));
                    ++count;
                } catch (const EDatabaseError& error) {
                    pages_.Damaged(table_.Name + ", page " + std::to_string(number) + ", row " +
                                   std::to_string(row + 1) + ": " + std::string(error.Message()));
                }
            }
        }
        if (count != table_.RowCount)
            pages_.Damaged(
                fmt::format("{} says that it has {} rows, and {} are there", table_.Name, table_.RowCount, count));
    }

  private:
    // A row that grew stands on another page.
    std::string Follow(std::string_view pointer) {
        for (int hops = 0; hops < kMostHops; ++hops) {
            if (pointer.size() < 4) break;
            const uint32_t to = NumberAt(pointer, 0, 4);
            const std::string_view page = pages_.Page(to >> 8);
            if (static_cast<unsigned char>(page[0]) != kDataPage || (to & 0xFF) >= pages_.RowCount(page)) break;
            const Pages::RowPlace place = pages_.RowAt(page, to & 0xFF);
            if (!place.Elsewhere) return std::string(place.Bytes);
            pointer = place.Bytes;
        }
        RaiseDamage("it stands nowhere");
    }

    void ReadRow(const std::string& row) {
        const size_t head = pages_.Old() ? 1 : 2;
        if (row.size() < head) RaiseDamage("it is empty");
        const size_t columns = NumberAt(row, 0, head);
        const size_t maskSize = (columns + 7) / 8;
        if (row.size() < head + maskSize) RaiseDamage("it is too short");
        const std::string_view mask = std::string_view(row).substr(row.size() - maskSize);
        FindPlaces(row, row.size() - maskSize);
        Row values(table_.Columns.size());
        for (size_t i = 0; i < values.size(); ++i) {
            const Column& column = table_.Columns[i];
            const auto number = static_cast<size_t>(column.Number);
            // Columns that came after the row was written are not in it.
            const bool set = number < columns && (static_cast<unsigned char>(mask[number / 8]) >> (number % 8) & 1);
            if (column.Type == ColumnType::Boolean) {
                values[i].Kind = ValueKind::Integer;
                values[i].Integer = set;
            } else if (set) {
                ReadValue(row, head, column, values[i]);
            }
        }
        take_(values);
    }

    // Where the values of variable length begin; behind the last stands where it ends.
    void FindPlaces(const std::string& row, size_t end) {
        places_.clear();
        if (!hasVariable_) {
            fixedEnd_ = end;
            return;
        }
        if (!pages_.Old()) {
            if (end < 4) RaiseDamage("it is too short");
            const size_t count = NumberAt(row, end - 2, 2);
            if ((count + 1) * 2 > end - 2) RaiseDamage("its places are beyond it");
            for (size_t i = 0; i <= count; ++i) places_.push_back(NumberAt(row, end - 4 - 2 * i, 2));
        } else {
            // One byte a place; a table of columns tells at which of them the next 256 bytes begin.
            if (end < 2) RaiseDamage("it is too short");
            const size_t count = static_cast<unsigned char>(row[end - 1]);
            size_t jumps = (row.size() - 1) / 256;
            if (end - 1 < jumps + count + 1) RaiseDamage("its places are beyond it");
            const size_t last = end - 2 - jumps;
            if ((last + 1 - count) / 256 < jumps) --jumps;
            size_t used = 0;
            for (size_t i = 0; i <= count; ++i) {
                while (used < jumps && static_cast<unsigned char>(row[end - 2 - used]) == i) ++used;
                places_.push_back(static_cast<unsigned char>(row[last - i]) + used * 256);
            }
        }
        fixedEnd_ = places_.front();
        for (size_t i = 0; i < places_.size(); ++i)
            if (places_[i] > end || (i > 0 && places_[i] < places_[i - 1])) RaiseDamage("its values overlap");
    }

    void ReadValue(const std::string& row, size_t head, const Column& column, Value& value) {
        std::string_view bytes;
        if (column.Fixed) {
            const size_t begin = head + static_cast<size_t>(column.FixedPlace);
            const size_t size = FixedSize(column.Type);
            if (begin + size > fixedEnd_) return;  // a column that came later
            bytes = std::string_view(row).substr(begin, size);
        } else {
            const auto place = static_cast<size_t>(column.VariablePlace);
            if (place + 1 >= places_.size()) return;
            bytes = std::string_view(row).substr(places_[place], places_[place + 1] - places_[place]);
            if (bytes.size() < FixedSize(column.Type)) RaiseDamage("the value of " + column.Name + " is too short");
        }
        Decode(bytes, column, value);
    }

    void Decode(std::string_view bytes, const Column& column, Value& value) {
        switch (column.Type) {
            case ColumnType::Boolean:
                return;
            case ColumnType::Byte:
                return SetInteger(value, static_cast<unsigned char>(bytes[0]));
            case ColumnType::Integer:
                return SetInteger(value, Raw<int16_t>(bytes));
            case ColumnType::Long:
            case ColumnType::Complex:
                return SetInteger(value, Raw<int32_t>(bytes));
            case ColumnType::Large:
                return SetInteger(value, Raw<int64_t>(bytes));
            case ColumnType::Money: {
                const auto scaled = Raw<int64_t>(bytes);
                const uint64_t magnitude =
                    scaled < 0 ? 0 - static_cast<uint64_t>(scaled) : static_cast<uint64_t>(scaled);
                value.Kind = ValueKind::Decimal;
                value.Bytes = WithPoint(std::to_string(magnitude), scaled < 0, kMoneyPlaces);
                return;
            }
            case ColumnType::Single:
                value.Kind = ValueKind::Real;
                value.Real = static_cast<double>(Raw<float>(bytes));
                return;
            case ColumnType::Double:
                value.Kind = ValueKind::Real;
                value.Real = Raw<double>(bytes);
                return;
            case ColumnType::Date:
                value.Kind = ValueKind::Date;
                value.Real = Raw<double>(bytes);
                return;
            case ColumnType::Guid:
                value.Kind = ValueKind::Text;
                value.Bytes = GuidText(bytes);
                return;
            case ColumnType::Numeric:
                value.Kind = ValueKind::Decimal;
                value.Bytes = WithPoint(DecimalDigits(bytes.substr(1)), bytes[0] != 0, column.Scale);
                return;
            case ColumnType::Text:
                value.Kind = ValueKind::Text;
                value.Bytes = pages_.PackedText(bytes);
                return;
            case ColumnType::Memo:
                value.Kind = ValueKind::Text;
                value.Bytes = pages_.PackedText(LongValue(bytes, column));
                return;
            case ColumnType::Binary:
                value.Kind = ValueKind::Bytes;
                value.Bytes = bytes;
                return;
            case ColumnType::Object:
                value.Kind = ValueKind::Bytes;
                value.Bytes = LongValue(bytes, column);
                return;
        }
        // A type that is not known: its bytes, when they are told apart at all.
        value.Kind = ValueKind::Bytes;
        value.Bytes = bytes;
    }

    static void SetInteger(Value& value, int64_t integer) {
        value.Kind = ValueKind::Integer;
        value.Integer = integer;
    }

    // Beside the row, on a page of its own, or on a chain of pages.
    std::string LongValue(std::string_view bytes, const Column& column) {
        const std::string what = "the long value of " + column.Name;
        if (bytes.size() < kLongHead) RaiseDamage(what + " is too short");
        const uint32_t word = NumberAt(bytes, 0, 4);
        const size_t length = word & kLongLength;
        uint32_t pointer = NumberAt(bytes, 4, 4);
        if (word & kLongInRow) {
            if (bytes.size() - kLongHead < length) RaiseDamage(what + " is too short");
            return std::string(bytes.substr(kLongHead, length));
        }
        // No two values share their bytes: together they are not longer than the file.
        if (length > longBytesLeft_) RaiseDamage(what + " is longer than the file");
        longBytesLeft_ -= length;
        if (word & kLongInOnePlace) {
            const std::string_view found = pages_.RowOf(pointer);
            if (found.size() < length) RaiseDamage(what + " is cut short");
            return std::string(found.substr(0, length));
        }
        std::string value;
        std::set<uint32_t> seen;
        while (value.size() < length) {
            if (pointer == 0 || !seen.insert(pointer).second) RaiseDamage(what + " is cut short");
            const std::string_view found = pages_.RowOf(pointer);
            if (found.size() < 4) RaiseDamage(what + " is cut short");
            value += found.substr(4, length - value.size());
            pointer = NumberAt(found, 0, 4);
        }
        return value;
    }

    const Pages& pages_;
    const Table& table_;
    const std::function<void(const Row&)>& take_;
    size_t longBytesLeft_;
    std::vector<size_t> places_;
    size_t fixedEnd_ = 0;
    bool hasVariable_ = false;
};

}  // namespace rows_detail

void File::ReadRows(const Table& table, const std::function<void(const Row&)>& take) const {
    rows_detail::RowReader(*pages_, table, take).Read();
}

}  // namespace vyn::legacy
