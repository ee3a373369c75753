#pragma once

#include "platform/data/data_set.h"

namespace vyn {

// Has fields give the values of a row, and the dataset a state, while it lives.
class TDataSet::RowInFocus {
  public:
    RowInFocus(TDataSet& dataSet, int64_t row) : RowInFocus(dataSet, row, dataSet.state_) {}
    RowInFocus(TDataSet& dataSet, int64_t row, TDataSetState state)
        : dataSet_(dataSet), row_(dataSet.focus_), focused_(dataSet.focused_), state_(dataSet.state_) {
        dataSet.focus_ = row;
        dataSet.focused_ = true;
        dataSet.state_ = state;
    }
    ~RowInFocus() {
        dataSet_.focus_ = row_;
        dataSet_.focused_ = focused_;
        // A handler may have closed it.
        if (dataSet_.state_ != dsInactive) dataSet_.state_ = state_;
    }
    RowInFocus(const RowInFocus&) = delete;
    RowInFocus& operator=(const RowInFocus&) = delete;

  private:
    TDataSet& dataSet_;
    int64_t row_;
    bool focused_;
    TDataSetState state_;
};

}  // namespace vyn
