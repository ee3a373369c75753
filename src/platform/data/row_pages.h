#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "platform/data/row_store.h"
#include "platform/text/folding.h"

namespace vyn {

// What is looked for in one column, as far as an engine can look for it: it may find more, never less. A value that is
// equal, or a null; texts also by their beginnings, and folded (text/folding.h): what is shown in Windows-1252 is
// compared then.
struct PageSearch {
    int Column = 0;
    Cell Value;
    TextFolding Folding = TextFolding::None;
    TextSearch::Extent Extent = TextSearch::Extent::Whole;
    // The same text was looked for right before as a whole: what was learned then still holds.
    bool GoesOn = false;

    bool IsExact() const { return Folding == TextFolding::None && Extent == TextSearch::Extent::Whole; }
};

// A large result, in an order in which no two rows stand at the same place, read in pieces where they are wanted. What
// reads it keeps but a window of it (row_window.h). Rows are given as records of which the columns that the order needs
// are set. Errors are EDatabaseError. Main thread only.
class RowPages {
  public:
    virtual ~RowPages() = default;
    // Put up to `count` rows into the store: those behind a row, or those before it with the nearest first, after
    // `skip` of them were left out. Null: from the beginning, or from the end. The row itself need not be there.
    virtual void ReadAfter(const Record* row, int64_t skip, int64_t count, RowStore& rows) = 0;
    virtual void ReadBefore(const Record* row, int64_t skip, int64_t count, RowStore& rows) = 0;
    // Puts up to `count` rows from about that part (0 to 1) of the way between two rows on; false when the order's
    // values cannot be reckoned with.
    virtual bool ReadFrom(const Record& first, const Record& last, double part, int64_t count, RowStore& rows) = 0;
    // Puts the row with the same key, as it is now; false when it is gone.
    virtual bool ReadAgain(const Record& row, RowStore& rows) = 0;
    // Puts up to `count` rows that are as is wanted, behind a row, or from the beginning. When one folded text is
    // all that is wanted, the column's index may lead to it: then the first row comes alone, which is the first by that
    // index, whatever the order of the result.
    virtual void ReadMatching(const std::vector<PageSearch>& wanted, const Record* after, int64_t count,
                              RowStore& rows) = 0;
    // About which part of the way between two rows a row stands at, 0 to 1.
    virtual double PartOf(const Record& row, const Record& first, const Record& last) const = 0;
    // Whether a row surely stands behind another.
    virtual bool Follows(const Record& row, const Record& other) const = 0;
    // About how many rows there are, without counting them; and how many there are, counted by the engine.
    virtual int64_t Estimate() = 0;
    virtual int64_t Count() = 0;
    // What the order needs of a row; and the columns by which it differs from all others.
    virtual Record PlaceOf(const RowStore& rows, int64_t row) const = 0;
    virtual const std::vector<size_t>& KeyColumns() const = 0;
};

// Numbers for rows that stay the same for their keys, wherever the rows are read again.
class RowKeys {
  public:
    explicit RowKeys(std::vector<size_t> columns) : columns_(std::move(columns)) {}
    // Bytes that no row with another key has.
    std::string KeyAt(const RowStore& rows, int64_t row) const;
    bool Same(const RowStore& rows, int64_t a, int64_t b) const;
    int64_t IdentityOf(const RowStore& rows, int64_t row);
    // Whether there is one of the number, and its row was not taken for gone.
    bool Valid(int64_t identity) const;
    // Of a valid one: its key as bytes, and as a record of which the key's columns are set.
    const std::string& KeyOf(int64_t identity) const { return known_[static_cast<size_t>(identity)].key; }
    const Record& PlaceOf(int64_t identity) const { return known_[static_cast<size_t>(identity)].place; }
    void Forget(const RowStore& rows, int64_t row);

  private:
    struct Known {
        std::string key;
        Record place;
        bool gone = false;
    };
    std::vector<size_t> columns_;
    std::vector<Known> known_;
    std::unordered_map<std::string, int64_t> identities_;
};

}  // namespace vyn
