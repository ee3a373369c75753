#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/data/data_set.h"

namespace vyn {

// A lookup's value: one for each key field.
using LookupKey = std::vector<Variant>;

// The link of a control whose field names the record of a list. Where the field is itself a looked-up one, the value is
// that of the fields by which it is looked up, and the list is the dataset in which that is done.
class LookupLink : public TFieldDataLink {
  public:
    // The field is a looked-up one.
    bool LooksUp() const;
    // The fields that are read and written; empty without a field, or when one of them is not there.
    std::vector<TField*> ValueFields() const;
    bool CanModify() const override;
    TNotifyEvent OnScroll;  // another record

  protected:
    void RecordChanged(TField* field) override;
    void DataSetScrolled() override;
};

// The records that a lookup chooses among: which of their fields are its value, and which are shown.
//
// Records go by their numbers, and looking for one moves no dataset. Fetches no further than to the record that is
// looked for; what was passed on the way is found at once the next time. Of a large table that is read in pages the
// engine finds the record: that makes it the current one, as only those beside it are at hand then. Fields that are not
// there are left out.
class LookupList {
  public:
    explicit LookupList(std::function<void()> changed);
    ~LookupList();

    TDataSource* Source() const;
    void SetSource(TDataSource* source);
    // Names, separated by semicolons. `textField` is the place, among the shown ones, of the field that is searched.
    void SetFields(const AnsiString& keys, const AnsiString& shown, int textField);
    const std::vector<AnsiString>& ShownNames() const { return shown_; }
    // The dataset while it is open and has the key fields, else null.
    TDataSet* DataSet() const;

    // The first record with this value, or -1.
    int64_t Find(const LookupKey& key);
    // The first record, from `from` on, whose text begins so, without regard to case, or -1.
    int64_t FindText(const AnsiString& text, int64_t from) const;
    LookupKey KeyOf(int64_t record) const;
    // Of the record with this value, empty without one; moves nothing in any case.
    AnsiString TextOf(const LookupKey& key);
    bool IsPaged() const { return DataSet() && DataSet()->IsPaged(); }

  private:
    class Link;
    std::vector<const TField*> KeyFields() const;
    AnsiString KeyNames() const;
    const TField* TextField() const;
    void Forget();

    std::unique_ptr<Link> link_;
    std::vector<AnsiString> keys_;
    std::vector<AnsiString> shown_;
    int textField_ = 0;
    // The first record of each value (by its hash) that was passed, and how far that was.
    std::unordered_map<size_t, int64_t> passed_;
    int64_t passedTo_ = 0;
};

bool SameKeys(const LookupKey& a, const LookupKey& b);
// The record so far from another (or, from none, the first), and the first and last ones; those of a paged dataset
// become current.
int64_t RecordBeside(TDataSet& data, int64_t record, int64_t distance);
int64_t FirstRecordOf(TDataSet& data);
int64_t LastRecordOf(TDataSet& data);

// The parts of a list of names that are separated by semicolons, without the empty ones.
std::vector<AnsiString> SplitFieldNames(const AnsiString& names);

}  // namespace vyn
