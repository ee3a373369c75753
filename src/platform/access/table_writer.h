#pragma once

#include "platform/access/prepared_statements.h"

namespace vyn {

// Writes records of a result back into the table that they come from.
//
// Optimistic: an UPDATE or DELETE names the key and the original values of what it changes, so that two users who
// change different fields of a record do not meet; when nothing fits, the record is read again, and EUpdateConflict
// says what each has. A written record comes back as the engine holds it: keys that count by themselves, defaults, and
// what others wrote into other fields.
class TableWriter {
  public:
    TableWriter(ProviderConnection& connection, std::vector<FieldDefinition> columns, const QueryShape& shape);

    // A sentence for the user, or empty when records can be written.
    const AnsiString& ReasonNotToWrite() const { return reason_; }
    // The table and its primary key's columns, in their order; without a reason not to write.
    const AnsiString& Table() const { return table_; }
    const std::vector<size_t>& Key() const { return key_; }
    void Insert(Record& record);
    void Update(const Record& original, Record& record);
    void Delete(const Record& original);
    // Reads the record anew; false when it is gone.
    bool Reread(const Record& original, Record& record);

  private:
    AnsiString FindReason(const QueryShape& shape);
    bool IsOurs(size_t column) const { return !columns_[column].OriginTable.empty(); }
    bool IsWritable(size_t column) const { return IsOurs(column) && !columns_[column].ReadOnly; }
    AnsiString NameOf(size_t column) const;
    ProviderValue ValueOf(const Record& record, size_t column) const;
    std::vector<size_t> OurColumns() const;
    // " WHERE " the key, and these columns, are as in `original`; binds go behind `values`.
    AnsiString Condition(const Record& original, const std::vector<size_t>& columns,
                         std::vector<ProviderValue>& values) const;
    bool UpdateWhere(const Record& original, Record& record, const std::vector<size_t>& changed,
                     const std::vector<size_t>& compared);
    // Runs a statement that gives one of our records; false when it gives none.
    bool FetchInto(const AnsiString& sql, const std::vector<ProviderValue>& values, Record& record);
    // Reads the record that was inserted just now.
    void ReadInserted(Record& record);
    [[noreturn]] void RaiseConflict(const Record& original, const Record* mine, const Record* theirs,
                                    const std::vector<size_t>& changed) const;

    ProviderConnection& connection_;
    std::vector<FieldDefinition> columns_;
    AnsiString table_;
    AnsiString reason_;
    std::vector<size_t> key_;
    // Writing many records prepares few statements.
    PreparedStatements prepared_;
};

}  // namespace vyn
