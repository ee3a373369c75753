#pragma once

#include <functional>
#include <vector>

#include "platform/controls/win_control.h"
#include "platform/data/data_source.h"

namespace vyn {

// A control whose source has to be of a class of its own, which that of copies is not: its copy shows what it can
// without.
class CopyOverPlainSource {
  public:
    virtual ~CopyOverPlainSource() = default;
    virtual void TakeCopySource(TDataSource* source) = 0;
};

// Controls that look as others do and show another record: of the same classes, with the same published properties,
// but without names and events, over a data source of their own. Nobody hears of what happens to them.
class ControlCopies {
  public:
    // Copies of what is in `from` are put into `into`, which frees them. Who has the source `source` gets `copySource`.
    ControlCopies(TWinControl& from, TWinControl& into) : from_(from), into_(into) {}
    // Makes the copies, or makes them again when other controls are there; else brings them up to what has changed.
    void Update(TDataSource* source, TDataSource* copySource);
    // Other controls are there, or may be.
    void Forget() { valid_ = false; }
    int Count() const { return static_cast<int>(pairs_.size()); }

  private:
    struct Pair {
        int original;  // its component number: it may be gone
        TControl* copy;
    };
    void Make(TControl& original, TWinControl& parent);
    bool AllThere() const;

    TWinControl& from_;
    TWinControl& into_;
    TDataSource* source_ = nullptr;
    std::vector<Pair> pairs_;
    bool valid_ = false;
};

}  // namespace vyn
