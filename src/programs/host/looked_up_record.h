#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "foundation/Uparametres.h"
#include "platform/data/data_set.h"

namespace vyn {

// The record of a dataset that answers a lookup. It is found without going there: what the user sees, edits or has
// chosen in the dataset's own window stays as it is, and no rule of that window runs.
//
// How a value is looked for: a text in a text field as what the field's text begins with, without regard to case or
// accents; the whole text, where there is such a record, comes before longer ones. In other fields the value itself,
// and a text that is no such value finds nothing. Null and the empty text find nothing.
class LookedUpRecord {
  public:
    // False when there is none, or no such field.
    bool Find(TDataSet& dataSet, const AnsiString& fieldName, const Variant& value);
    // Makes the record that Find would find the current one; false when there is none, and none other then.
    static bool Goto(TDataSet& dataSet, const AnsiString& fieldName, const Variant& value);
    // The current record answers, as it is now.
    void TakeCurrent(TDataSet& dataSet);
    // No record answers: values are Null.
    void Clear() { values_.clear(), state_ = State::None; }
    // Adds the values by their fields' names: those of the record found; before the first search those of the current
    // record (null: no dataset). Pictures and other bytes, and fields whose names are no names of parameters, are left
    // out.
    void Read(TDataSet* dataSet, TParametres& values) const;

  private:
    enum class State { Current, Found, None };
    using Values = std::vector<std::pair<AnsiString, Variant>>;
    static Values ValuesOf(const TDataSet& dataSet, bool none);
    // Looks for a value, and tells the text of the searched field in the record that was found.
    using Finder = std::function<bool(const Variant& value, TLocateOptions options, AnsiString& found)>;
    static bool Search(const TField& field, const Variant& value, const Finder& find);

    State state_ = State::Current;
    Values values_;
};

}  // namespace vyn
