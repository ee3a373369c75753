#pragma once

#include <vector>

#include "platform/text/exceptions.h"
#include "platform/values/variant.h"

namespace vyn {

// A record could not be written because another user changed or deleted it since it was read. Nothing was written; the
// record is still being edited.
class EUpdateConflict : public EDatabaseError {
  public:
    struct Value {
        AnsiString FieldName;
        Variant Original;
        Variant Mine;    // Null for a deletion
        Variant Theirs;  // Null when they deleted the record
        bool Conflicting = false;
    };

    EUpdateConflict(AnsiString message, std::vector<Value> values, bool deleted)
        : EDatabaseError(std::move(message)), values_(std::move(values)), deleted_(deleted) {}
    const char* ClassName() const noexcept override { return "EUpdateConflict"; }
    // One for each column of the table that the dataset shows.
    const std::vector<Value>& Values() const { return values_; }
    bool Deleted() const { return deleted_; }

  private:
    std::vector<Value> values_;
    bool deleted_;
};

}  // namespace vyn
