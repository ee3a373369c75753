#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/data/row_pages.h"

namespace vyn {

// The part of a large result that is kept: rows one behind another, with the record numbers First to End - 1. It moves
// to where records are asked for, and forgets what lies far from there, so that memory does not grow with the result.
//
// Numbers count from the result's first record while the window has moved there step by step. What is jumped to (the
// end, a place of the scroll bar) is numbered by an estimate: Settle puts numbers right where they are found to be
// wrong, at a moment when nobody holds any.
//
// The dataset's current record stays at hand wherever the window goes: `current` is its number, which follows it; it
// lies outside the window's numbers while the record is not there.
//
// Records that were written here stay where they were written until the window has left them.
class RowWindow {
  public:
    RowWindow(std::unique_ptr<RowPages> pages, RowStore& rows, RowKeys& keys, int64_t& current);

    int64_t First() const { return base_; }
    int64_t End() const { return base_ + static_cast<int64_t>(view_.size()); }
    bool AtStart() const { return atStart_; }
    bool AtEnd() const { return atEnd_; }
    // How many records there are, as far as is known.
    int64_t Expected() const;
    // Counted by the engine where not all are here.
    int64_t Count();
    // The row of a record that is here, or of the current one; -1 for others.
    int64_t RowOf(int64_t record) const;
    bool HoldsCurrent() const { return heldRow_ < 0; }
    // The current record is another one, which is here.
    void CurrentChanged() { heldRow_ = -1; }

    void GoStart();
    void GoEnd();
    // Goes to where these records are, by an estimate where they are far; gives End.
    int64_t Reach(int64_t record, int64_t count);
    // Goes on step by step until the record is there; false when there is none.
    bool StepTo(int64_t record);
    // Goes to where a row of the store stands and makes it the current record, whose number is kept if possible.
    void ShowAround(int64_t row);
    // Makes a row of the store the current record, and reads nothing: it is held until somebody goes there, or becomes
    // the record with its key that is here.
    void Hold(int64_t row);
    // Reads anew what stands around the current record; when that is gone, its neighbour is current. False when there
    // is no record at all.
    bool Reload();
    // The first row that is as is wanted and that `matches` takes, in the store; -1 for none.
    template <class F>
    int64_t Find(const std::vector<PageSearch>& wanted, F matches);

    // Puts numbers right; gives by how much they changed.
    int64_t Settle();

    // A record comes into the view, or leaves it; and was written.
    void Insert(int64_t record, int64_t row);
    void Remove(int64_t record);
    void Written(int64_t row);
    // The row with a valid identity, which is read when it is not here; -1 when it is gone.
    int64_t RowOfIdentity(int64_t identity);
    // The number of that record while it is here, or -1.
    int64_t RecordOfIdentity(int64_t identity) const;

    // Gives back the memory of rows that are not here any more; rows have other numbers then.
    bool WantsCompacting() const;
    void Compact();

  private:
    // Rows that may be searched for are read at once: one, and so many times more each time that none was it.
    static constexpr int64_t kMoreMatches = 8;
    // Rows read where somebody goes before it is known how many are looked at together, and the bounds of that. Each
    // further step in the same direction reads twice as many, up to so many.
    static constexpr int64_t kScreen = 64;
    static constexpr int64_t kLeastScreen = 8;
    static constexpr int64_t kLargestScreen = 256;
    static constexpr int64_t kLargestStep = 1024;
    // Rows kept, and how many of them lie on either side of what was asked for when others are forgotten.
    static constexpr int64_t kMostRows = 4096;
    static constexpr int64_t kKeptOnASide = 1024;
    // What lies further away is jumped to.
    static constexpr int64_t kFar = 512;
    // Numbers left before the first record while there may be more, and how many are made when there are few.
    static constexpr int64_t kRoomBefore = 2048;
    static constexpr int64_t kMoreRoom = 100000;
    void Replace(std::vector<int64_t> view, int64_t base);
    void Jump(int64_t record, int64_t count);
    void ExtendDown(int64_t count);
    void ExtendUp(int64_t count);
    int64_t NextStep(int direction);
    void Trim(int64_t record);
    void LetCurrentGo(int64_t from, int64_t to);
    void FindCurrent(int64_t from, int64_t to);
    std::vector<int64_t> RowsSince(int64_t from) const;
    std::vector<int64_t> NewRows(int64_t from);
    std::string KeyAt(int64_t row) const { return keys_.KeyAt(rows_, row); }

    std::unique_ptr<RowPages> pages_;
    RowStore& rows_;
    RowKeys& keys_;
    int64_t& current_;
    std::vector<int64_t> view_;
    int64_t base_ = 0;
    bool atStart_ = true;
    bool atEnd_ = true;
    // The places from which it goes on; what is written here does not move them.
    Record front_, back_;
    // The result's own first and last rows, once they were asked for.
    std::unique_ptr<Record> firstRow_, lastRow_;
    int64_t expected_ = 0;
    // Rows read where somebody goes: as many as were looked at together last.
    int64_t screen_ = kScreen;
    int64_t heldRow_ = -1;  // the current record's, while it is not in the view
    int direction_ = 0;
    int64_t step_ = 0;
    // Rows in the view that may stand elsewhere in the result, by their keys.
    std::map<int64_t, std::string> misplaced_;
};

template <class F>
int64_t RowWindow::Find(const std::vector<PageSearch>& wanted, F matches) {
    Record place;
    // The first that an engine finds is mostly the right one.
    for (int64_t atOnce = 1;; atOnce = std::min(atOnce * kMoreMatches, kMostRows)) {
        const int64_t from = rows_.Count();
        pages_->ReadMatching(wanted, place.empty() ? nullptr : &place, atOnce, rows_);
        const int64_t to = rows_.Count();
        for (int64_t row = from; row < to; ++row) {
            if (!matches(row)) continue;
            rows_.Truncate(row + 1);
            return row;
        }
        if (to - from < atOnce) return -1;
        place = pages_->PlaceOf(rows_, to - 1);
        rows_.Truncate(from);
    }
}

}  // namespace vyn
