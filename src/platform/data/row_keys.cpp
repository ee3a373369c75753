#include <algorithm>

#include "platform/data/row_pages.h"

namespace vyn {

std::string RowKeys::KeyAt(const RowStore& rows, int64_t row) const {
    std::string key;
    for (const size_t column : columns_) {
        const Cell cell = rows.CellAt(row, static_cast<int>(column));
        const std::string part = cell.IsInteger() ? std::to_string(cell.AsInteger())
                                 : cell.IsReal()  ? std::to_string(cell.AsReal())
                                                  : std::string(cell.AsBytes());
        key += std::to_string(part.size()) + ":" + part;
    }
    return key;
}

bool RowKeys::Same(const RowStore& rows, int64_t a, int64_t b) const {
    return std::all_of(columns_.begin(), columns_.end(), [&](size_t each) {
        const int column = static_cast<int>(each);
        switch (rows.Columns()[each]) {
            case ColumnKind::Integer:
                return rows.Integer(a, column) == rows.Integer(b, column) &&
                       rows.IsNull(a, column) == rows.IsNull(b, column);
            case ColumnKind::Real:
            case ColumnKind::Text:
            case ColumnKind::Bytes:
                break;
        }
        return rows.CellAt(a, column) == rows.CellAt(b, column);
    });
}

int64_t RowKeys::IdentityOf(const RowStore& rows, int64_t row) {
    const auto [found, isNew] = identities_.emplace(KeyAt(rows, row), static_cast<int64_t>(known_.size()));
    if (isNew) {
        Record place(static_cast<size_t>(rows.ColumnCount()));
        for (const size_t column : columns_) place[column] = rows.CellAt(row, static_cast<int>(column));
        known_.push_back({found->first, std::move(place)});
    }
    return found->second;
}

bool RowKeys::Valid(int64_t identity) const {
    return identity >= 0 && identity < static_cast<int64_t>(known_.size()) &&
           !known_[static_cast<size_t>(identity)].gone;
}

void RowKeys::Forget(const RowStore& rows, int64_t row) {
    const auto found = identities_.find(KeyAt(rows, row));
    if (found == identities_.end()) return;
    known_[static_cast<size_t>(found->second)].gone = true;
    identities_.erase(found);
}

}  // namespace vyn
