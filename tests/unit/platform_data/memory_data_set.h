#pragma once

#include <functional>

#include "platform/data/data_set.h"
#include "support/errors.h"

namespace vyn {

// Records in memory, which can be changed; what is written is noted.
class MemoryDataSet : public TDataSet {
  public:
    explicit MemoryDataSet(std::vector<Record> records, TComponent* owner = nullptr)
        : TDataSet(owner), Stored(std::move(records)) {}
    ~MemoryDataSet() override { BeginDestruction(); }

    std::vector<Record> Stored;
    std::vector<AnsiString> Written;
    AnsiString Reason;                       // not to modify
    std::function<void(Record&)> OnWriting;  // before a record is written

    static Record Row(int64_t id, const char* name, double rate = 0) {
        return {Cell::Integer(id),         name ? Cell::Bytes(name) : Cell::Null(),
                Cell::Integer(id * 10000), Cell::Real(46000.0),
                Cell::Integer(1),          Cell::Real(rate)};
    }

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        next_ = 0;
        FieldDefinition id{"Id", ftInteger, 0, 0, true};
        id.InKey = id.Automatic = true;
        return {id,
                {"Name", ftString, 10, 0, true},
                {"Price", ftCurrency},
                {"Day", ftDate},
                {"Ok", ftBoolean},
                {"Rate", ftFloat}};
    }
    bool InternalFetch(RowStore& rows, int64_t count) override {
        for (; count > 0 && next_ < Stored.size(); --count) rows.Append(Stored[next_++]);
        return next_ < Stored.size();
    }
    void InternalClose() override {}
    AnsiString ReasonNotToModify() const override { return Reason; }
    void InternalInsert(Record& record) override {
        if (OnWriting) OnWriting(record);
        if (record[0].IsUnset()) record[0] = Cell::Integer(static_cast<int64_t>(Stored.size()) + 1);
        Written.push_back("insert " + std::string(record[1].AsBytes()));
    }
    void InternalUpdate(const Record& original, Record& record) override {
        if (OnWriting) OnWriting(record);
        Written.push_back("update " + std::string(original[1].AsBytes()) + " to " + std::string(record[1].AsBytes()));
    }
    void InternalDelete(const Record& original) override {
        Record copy = original;
        if (OnWriting) OnWriting(copy);
        Written.push_back("delete " + std::string(original[1].AsBytes()));
    }

  private:
    size_t next_ = 0;
};

}  // namespace vyn
