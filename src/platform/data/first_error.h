#pragma once

#include <exception>

#include "platform/data/data_source.h"

namespace vyn {

// Tells several of one event. What has changed is told to all, whoever fails of it (a detail whose database is away):
// a control that did not hear of it would go on showing another record. The first error is raised when all know. An
// event that asks for consent ends at the first that refuses.
class FirstError {
  public:
    explicit FirstError(DataEvent event) : asks_(event == DataEvent::UpdateRecord || event == DataEvent::CheckBrowse) {}
    template <class Telling>
    void Of(const Telling& telling) {
        try {
            telling();
        } catch (...) {
            if (asks_) throw;
            if (!error_) error_ = std::current_exception();
        }
    }
    void Raise() const {
        if (error_) std::rethrow_exception(error_);
    }

  private:
    bool asks_;
    std::exception_ptr error_;
};

}  // namespace vyn
