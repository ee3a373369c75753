#include "platform/data/row_window.h"

#include <algorithm>
#include <numeric>

namespace vyn {

RowWindow::RowWindow(std::unique_ptr<RowPages> pages, RowStore& rows, RowKeys& keys, int64_t& current)
    : pages_(std::move(pages)), rows_(rows), keys_(keys), current_(current), expected_(pages_->Estimate()) {
    current_ = -1;
    atStart_ = atEnd_ = false;
    GoStart();
}

int64_t RowWindow::Expected() const { return atEnd_ ? End() : std::max(expected_, End() + 1); }

int64_t RowWindow::Count() { return atStart_ && atEnd_ ? static_cast<int64_t>(view_.size()) : pages_->Count(); }

int64_t RowWindow::RowOf(int64_t record) const {
    if (heldRow_ >= 0 && record == current_) return heldRow_;
    return record < base_ || record >= End() ? -1 : view_[static_cast<size_t>(record - base_)];
}

std::vector<int64_t> RowWindow::RowsSince(int64_t from) const {
    std::vector<int64_t> rows(static_cast<size_t>(rows_.Count() - from));
    std::iota(rows.begin(), rows.end(), from);
    return rows;
}

// The rows read since that come to those in the view: without what is there already, because it was written here.
std::vector<int64_t> RowWindow::NewRows(int64_t from) {
    std::vector<int64_t> rows;
    for (int64_t row = from; row < rows_.Count(); ++row) {
        const bool known = !misplaced_.empty() && [&] {
            const std::string key = KeyAt(row);
            return std::any_of(misplaced_.begin(), misplaced_.end(),
                               [&](const auto& each) { return each.second == key; });
        }();
        if (!known) rows.push_back(row);
    }
    return rows;
}

// The current record is kept when its place, one of these in the view, goes.
void RowWindow::LetCurrentGo(int64_t from, int64_t to) {
    if (heldRow_ < 0 && current_ >= base_ + from && current_ < base_ + to)
        heldRow_ = view_[static_cast<size_t>(current_ - base_)];
}

// The current record may be among these of the view.
void RowWindow::FindCurrent(int64_t from, int64_t to) {
    if (heldRow_ < 0) return;
    for (int64_t i = from; i < to; ++i) {
        int64_t& row = view_[static_cast<size_t>(i)];
        if (!keys_.Same(rows_, row, heldRow_)) continue;
        // The row that is held may have been written, or be in editing.
        row = heldRow_;
        heldRow_ = -1;
        current_ = base_ + i;
        return;
    }
    // Its number is no other record's.
    if (current_ >= base_ && current_ < End()) current_ = base_ > 0 ? base_ - 1 : End();
}

void RowWindow::Replace(std::vector<int64_t> view, int64_t base) {
    LetCurrentGo(0, static_cast<int64_t>(view_.size()));
    view_ = std::move(view);
    base_ = base;
    misplaced_.clear();
    direction_ = 0;
    if (!view_.empty()) {
        front_ = pages_->PlaceOf(rows_, view_.front());
        back_ = pages_->PlaceOf(rows_, view_.back());
    }
    FindCurrent(0, static_cast<int64_t>(view_.size()));
}

void RowWindow::GoStart() {
    if (atStart_) return;
    const int64_t from = rows_.Count();
    pages_->ReadAfter(nullptr, 0, screen_, rows_);
    std::vector<int64_t> view = RowsSince(from);
    atStart_ = true;
    atEnd_ = static_cast<int64_t>(view.size()) < screen_;
    Replace(std::move(view), 0);
}

void RowWindow::GoEnd() {
    if (atEnd_) return;
    const int64_t from = rows_.Count();
    pages_->ReadBefore(nullptr, 0, screen_, rows_);
    std::vector<int64_t> view = RowsSince(from);
    std::reverse(view.begin(), view.end());
    const auto count = static_cast<int64_t>(view.size());
    atEnd_ = true;
    atStart_ = count < screen_;
    Replace(std::move(view), atStart_ ? 0 : std::max(expected_, count + kRoomBefore) - count);
    expected_ = End();
}

int64_t RowWindow::NextStep(int direction) {
    step_ = direction == direction_ ? std::min(step_ * 2, kLargestStep) : screen_;
    direction_ = direction;
    return step_;
}

void RowWindow::ExtendDown(int64_t count) {
    count = std::max(count, NextStep(1));
    const int64_t from = rows_.Count();
    pages_->ReadAfter(back_.empty() ? nullptr : &back_, 0, count, rows_);
    const int64_t got = rows_.Count() - from;
    if (got > 0) back_ = pages_->PlaceOf(rows_, rows_.Count() - 1);
    const std::vector<int64_t> added = NewRows(from);
    const auto had = static_cast<int64_t>(view_.size());
    view_.insert(view_.end(), added.begin(), added.end());
    if (got < count) {
        atEnd_ = true;
        expected_ = End();
    }
    FindCurrent(had, static_cast<int64_t>(view_.size()));
}

void RowWindow::ExtendUp(int64_t count) {
    // Numbers are never negative; Settle makes room.
    count = std::min(std::max(count, NextStep(-1)), base_);
    if (count == 0) return;
    const int64_t from = rows_.Count();
    pages_->ReadBefore(front_.empty() ? nullptr : &front_, 0, count, rows_);
    const int64_t got = rows_.Count() - from;
    if (got > 0) front_ = pages_->PlaceOf(rows_, rows_.Count() - 1);
    const std::vector<int64_t> added = NewRows(from);
    view_.insert(view_.begin(), added.rbegin(), added.rend());
    base_ -= static_cast<int64_t>(added.size());
    if (got < count) atStart_ = true;
    FindCurrent(0, static_cast<int64_t>(added.size()));
}

void RowWindow::Jump(int64_t record, int64_t count) {
    const int64_t expected = Expected();
    if (record <= 0) return GoStart();
    if (record + count >= expected) return GoEnd();
    const int64_t from = rows_.Count();
    if (!firstRow_) {
        pages_->ReadAfter(nullptr, 0, 1, rows_);
        if (rows_.Count() == from) return GoStart();
        firstRow_ = std::make_unique<Record>(pages_->PlaceOf(rows_, from));
    }
    if (!lastRow_) {
        const int64_t last = rows_.Count();
        pages_->ReadBefore(nullptr, 0, 1, rows_);
        if (rows_.Count() == last) return GoStart();
        lastRow_ = std::make_unique<Record>(pages_->PlaceOf(rows_, last));
    }
    rows_.Truncate(from);
    const int64_t wanted = count > 1 ? count : screen_;
    const double part = static_cast<double>(record) / static_cast<double>(expected);
    bool backwards = false;
    if (!pages_->ReadFrom(*firstRow_, *lastRow_, part, wanted, rows_)) {
        // From the nearer end on.
        backwards = record > expected / 2;
        if (backwards)
            pages_->ReadBefore(nullptr, std::max<int64_t>(expected - record - wanted, 0), wanted, rows_);
        else
            pages_->ReadAfter(nullptr, record, wanted, rows_);
    }
    std::vector<int64_t> view = RowsSince(from);
    const auto got = static_cast<int64_t>(view.size());
    if (got == 0) return backwards ? GoStart() : GoEnd();
    if (backwards) std::reverse(view.begin(), view.end());
    atStart_ = backwards && got < wanted;
    atEnd_ = !backwards && got < wanted;
    Replace(std::move(view), atStart_ ? 0 : record);
    if (atEnd_) expected_ = End();
}

int64_t RowWindow::Reach(int64_t record, int64_t count) {
    record = std::max<int64_t>(record, 0);
    // A row more or less is the same screen.
    if (count > screen_ || (count > 1 && count < screen_ - kLeastScreen))
        screen_ = std::clamp(count, kLeastScreen, kLargestScreen);
    const bool far = record >= End() + kFar || record + count <= base_ - kFar;
    if (far && !(record >= End() && atEnd_) && !(record < base_ && atStart_)) Jump(record, count);
    while (record + count > End() && !atEnd_) ExtendDown(record + count - End());
    while (record < base_ && !atStart_ && base_ > 0) ExtendUp(base_ - record);
    // At the end, what stands before it.
    if (atEnd_ && !atStart_ && End() - count < base_) ExtendUp(base_ - (End() - count));
    Trim(record);
    return End();
}

bool RowWindow::StepTo(int64_t record) {
    while (record >= End() && !atEnd_) {
        ExtendDown(0);
        Trim(End() - 1);
    }
    while (record >= 0 && record < base_ && !atStart_) {
        ExtendUp(0);
        Trim(base_);
    }
    return record >= base_ && record < End();
}

void RowWindow::Trim(int64_t record) {
    if (static_cast<int64_t>(view_.size()) <= kMostRows) return;
    record = std::clamp(record, base_, End() - 1);
    const auto drop = [&](int64_t from, int64_t to) {
        LetCurrentGo(from, to);
        for (int64_t i = from; i < to; ++i) misplaced_.erase(view_[static_cast<size_t>(i)]);
        view_.erase(view_.begin() + from, view_.begin() + to);
    };
    const auto misplacedAt = [&](int64_t i) { return misplaced_.count(view_[static_cast<size_t>(i)]) > 0; };
    int64_t last = record - base_ + kKeptOnASide;
    while (last < static_cast<int64_t>(view_.size()) && misplacedAt(last)) ++last;
    if (last + 1 < static_cast<int64_t>(view_.size())) {
        drop(last + 1, static_cast<int64_t>(view_.size()));
        back_ = pages_->PlaceOf(rows_, view_.back());
        expected_ = std::max(expected_, End() + 1);
        atEnd_ = false;
    }
    int64_t first = std::min(record - base_ - kKeptOnASide, static_cast<int64_t>(view_.size()) - 1);
    while (first > 0 && misplacedAt(first)) --first;
    if (first > 0) {
        drop(0, first);
        base_ += first;
        front_ = pages_->PlaceOf(rows_, view_.front());
        atStart_ = false;
    }
}

void RowWindow::ShowAround(int64_t row) {
    const Record place = pages_->PlaceOf(rows_, row);
    const int64_t from = rows_.Count();
    pages_->ReadBefore(&place, 0, screen_ / 2, rows_);
    const int64_t middle = rows_.Count();
    pages_->ReadAfter(&place, 0, screen_ / 2, rows_);
    std::vector<int64_t> view;
    for (int64_t each = middle - 1; each >= from; --each) view.push_back(each);
    const auto before = static_cast<int64_t>(view.size());
    view.push_back(row);
    for (int64_t each = middle; each < rows_.Count(); ++each) view.push_back(each);
    atStart_ = before < screen_ / 2;
    atEnd_ = rows_.Count() - middle < screen_ / 2;
    heldRow_ = -1;
    const int64_t number = atStart_ ? before : std::max(current_, before);
    current_ = -1;
    Replace(std::move(view), number - before);
    current_ = number;
    if (atEnd_) expected_ = End();
}

void RowWindow::Hold(int64_t row) {
    for (size_t i = 0; i < view_.size(); ++i) {
        if (!keys_.Same(rows_, view_[i], row)) continue;
        // As it was read last.
        if (view_[i] != row) rows_.Replace(view_[i], rows_.RecordAt(row));
        heldRow_ = -1;
        current_ = base_ + static_cast<int64_t>(i);
        return;
    }
    heldRow_ = row;
    // Its number is no other record's.
    current_ = base_ > 0 ? base_ - 1 : End();
}

bool RowWindow::Reload() {
    firstRow_.reset();
    lastRow_.reset();
    const int64_t held = RowOf(current_);
    const int64_t from = rows_.Count();
    if (held >= 0) {
        const Record place = pages_->PlaceOf(rows_, held);
        if (!pages_->ReadAgain(place, rows_)) pages_->ReadAfter(&place, 0, 1, rows_);
        if (rows_.Count() == from) pages_->ReadBefore(&place, 0, 1, rows_);
    }
    expected_ = std::max(pages_->Estimate(), int64_t{1});
    if (rows_.Count() > from) {
        ShowAround(from);
        return true;
    }
    heldRow_ = -1;
    current_ = -1;
    atStart_ = false;
    GoStart();
    current_ = view_.empty() ? -1 : 0;
    return current_ >= 0;
}

int64_t RowWindow::Settle() {
    int64_t shift = 0;
    if (atStart_) {
        shift = -base_;
    } else if (base_ < kRoomBefore) {
        shift = kMoreRoom;
    }
    if (shift == 0) return 0;
    base_ += shift;
    expected_ += shift;
    if (current_ >= 0) current_ = heldRow_ < 0 ? current_ + shift : std::max<int64_t>(current_ + shift, 0);
    FindCurrent(0, 0);
    return shift;
}

void RowWindow::Insert(int64_t record, int64_t row) {
    view_.insert(view_.begin() + (record - base_), row);
    misplaced_[row] = {};
}

void RowWindow::Remove(int64_t record) {
    if (heldRow_ >= 0 && record == current_) {
        heldRow_ = -1;
        return;
    }
    misplaced_.erase(view_[static_cast<size_t>(record - base_)]);
    view_.erase(view_.begin() + (record - base_));
    expected_ = std::max<int64_t>(expected_ - 1, 0);
}

void RowWindow::Written(int64_t row) {
    const Record place = pages_->PlaceOf(rows_, row);
    const bool last = atEnd_ && !view_.empty() && view_.back() == row;
    // A record that was put behind all others stands there.
    if (last && (back_.empty() || pages_->Follows(place, back_))) {
        back_ = place;
        misplaced_.erase(row);
        if (front_.empty()) front_ = place;
        expected_ = End();
        return;
    }
    // One that is held comes where it belongs when the window gets there.
    if (row != heldRow_) misplaced_[row] = KeyAt(row);
}

int64_t RowWindow::RecordOfIdentity(int64_t identity) const {
    const std::string& key = keys_.KeyOf(identity);
    const auto found = std::find_if(view_.begin(), view_.end(), [&](int64_t row) { return KeyAt(row) == key; });
    return found == view_.end() ? -1 : base_ + (found - view_.begin());
}

int64_t RowWindow::RowOfIdentity(int64_t identity) {
    if (heldRow_ >= 0 && KeyAt(heldRow_) == keys_.KeyOf(identity)) return heldRow_;
    if (const int64_t record = RecordOfIdentity(identity); record >= 0) return RowOf(record);
    return pages_->ReadAgain(keys_.PlaceOf(identity), rows_) ? rows_.Count() - 1 : -1;
}

bool RowWindow::WantsCompacting() const { return rows_.Count() > 3 * kMostRows; }

void RowWindow::Compact() {
    RowStore fresh(rows_.Columns());
    std::map<int64_t, std::string> misplaced;
    const auto keep = [&](int64_t& row) {
        if (row < 0) return;
        fresh.Append(rows_.RecordAt(row));
        const auto found = misplaced_.find(row);
        row = fresh.Count() - 1;
        if (found != misplaced_.end()) misplaced.emplace(row, std::move(found->second));
    };
    for (int64_t& row : view_) keep(row);
    keep(heldRow_);
    misplaced_ = std::move(misplaced);
    rows_ = std::move(fresh);
}

}  // namespace vyn
