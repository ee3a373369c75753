#include "platform/access/table_writer.h"

#include <algorithm>
#include <set>

#include "platform/data/update_conflict.h"
#include "platform/text/compare.h"

namespace vyn {

namespace table_writer_detail {

constexpr char kCannotBeChanged[] = ", so its records cannot be changed";

// A transaction, or a part of the one that there is, which ends with what is done in it.
class WritingTransaction {
  public:
    explicit WritingTransaction(ProviderConnection& connection) : connection_(connection) { connection_.Begin(); }
    ~WritingTransaction() {
        if (done_) return;
        try {
            connection_.Rollback();
        } catch (const EDatabaseError&) {
            // The error that led here is on its way, and says more.
        }
    }
    void Commit() {
        connection_.Commit();
        done_ = true;
    }
    WritingTransaction(const WritingTransaction&) = delete;
    WritingTransaction& operator=(const WritingTransaction&) = delete;

  private:
    ProviderConnection& connection_;
    bool done_ = false;
};

AnsiString Shown(const Variant& value) {
    return value.IsNull() ? AnsiString("nothing") : "\"" + VarToStr(value) + "\"";
}

}  // namespace table_writer_detail

TableWriter::TableWriter(ProviderConnection& connection, std::vector<FieldDefinition> columns, const QueryShape& shape)
    : connection_(connection), columns_(std::move(columns)), prepared_(connection) {
    reason_ = FindReason(shape);
}

AnsiString TableWriter::FindReason(const QueryShape& shape) {
    using table_writer_detail::kCannotBeChanged;
    std::set<AnsiString> tables;
    for (const FieldDefinition& column : columns_)
        if (!column.OriginTable.empty()) tables.insert(column.OriginTable);
    AnsiString names;
    for (const AnsiString& each : tables) names += (names.empty() ? "" : ", ") + each;
    if (tables.size() > 1) return "This query reads several tables (" + names + ")" + kCannotBeChanged;
    if (shape.IsCompound || shape.IsJoined) return AnsiString("This query joins several sources") + kCannotBeChanged;
    if (shape.IsGrouped) return AnsiString("This query groups records") + kCannotBeChanged;
    if (tables.empty()) return AnsiString("This query shows no column of a table") + kCannotBeChanged;
    table_ = *tables.begin();
    // Behind a view may stand a join or a union, whose records come from elsewhere too.
    if (!AnsiSameText(shape.Source, table_))
        return (shape.Source.empty() ? AnsiString("This query reads another query") : shape.Source + " is no table") +
               kCannotBeChanged;
    if (!connection_.OriginsAreTables() && !connection_.IsTable(table_))
        return table_ + " is no table" + kCannotBeChanged;
    const std::vector<AnsiString> keys = connection_.KeyColumns(table_);
    if (keys.empty()) return "The table " + table_ + " has no primary key" + kCannotBeChanged;
    for (const AnsiString& key : keys) {
        const auto found = std::find_if(columns_.begin(), columns_.end(), [&](const FieldDefinition& each) {
            return !each.OriginTable.empty() && AnsiSameText(each.OriginColumn, key);
        });
        if (found == columns_.end())
            return "This query leaves out " + key + " of the primary key of " + table_ + kCannotBeChanged;
        key_.push_back(static_cast<size_t>(found - columns_.begin()));
    }
    return {};
}

AnsiString TableWriter::NameOf(size_t column) const {
    return connection_.Dialect().QuotedName(columns_[column].OriginColumn);
}

ProviderValue TableWriter::ValueOf(const Record& record, size_t column) const {
    return {columns_[column].DataType, record[column]};
}

std::vector<size_t> TableWriter::OurColumns() const {
    std::vector<size_t> ours;
    for (size_t i = 0; i < columns_.size(); ++i)
        if (IsOurs(i)) ours.push_back(i);
    return ours;
}

AnsiString TableWriter::Condition(const Record& original, const std::vector<size_t>& columns,
                                  std::vector<ProviderValue>& values) const {
    AnsiString text = " WHERE ";
    const auto add = [&](size_t column, const AnsiString& comparison) {
        if (!values.empty() && text.back() != ' ') text += " AND ";
        text += NameOf(column) + comparison + "?";
        values.push_back(ValueOf(original, column));
    };
    for (size_t column : key_) add(column, original[column].IsNull() ? connection_.Dialect().SameValue : " = ");
    for (size_t column : columns)
        if (std::find(key_.begin(), key_.end(), column) == key_.end()) add(column, connection_.Dialect().SameValue);
    return text;
}

bool TableWriter::FetchInto(const AnsiString& sql, const std::vector<ProviderValue>& values, Record& record) {
    const std::vector<size_t> ours = OurColumns();
    std::vector<FieldDefinition> definitions;
    std::vector<ColumnKind> kinds;
    for (size_t column : ours) {
        definitions.push_back(columns_[column]);
        kinds.push_back(ColumnKindOf(columns_[column].DataType));
    }
    ProviderStatement& statement = prepared_.Get(sql);
    statement.ExpectColumns(definitions);
    statement.Bind(values);
    RowStore rows(kinds);
    while (statement.Fetch(rows, INT64_MAX)) {
    }
    if (rows.Count() == 0) return false;
    for (size_t i = 0; i < ours.size(); ++i) record[ours[i]] = rows.CellAt(0, static_cast<int>(i));
    return true;
}

bool TableWriter::Reread(const Record& original, Record& record) {
    std::vector<ProviderValue> values;
    AnsiString names;
    for (size_t column : OurColumns()) names += (names.empty() ? "" : ", ") + NameOf(column);
    const AnsiString sql = "SELECT " + names + " FROM " + connection_.Dialect().QuotedName(table_) +
                           Condition(original, {}, values) + connection_.Dialect().HoldRow;
    return FetchInto(sql, values, record);
}

void TableWriter::Insert(Record& record) {
    AnsiString names, marks;
    std::vector<ProviderValue> values;
    std::vector<AnsiString> returned;
    for (size_t column : OurColumns()) {
        returned.push_back(NameOf(column));
        // A key that counts by itself counts where none is given.
        const bool counts = record[column].IsNull() && columns_[column].InKey && columns_[column].Automatic;
        if (record[column].IsUnset() || counts || !IsWritable(column)) continue;
        names += (names.empty() ? "" : ", ") + NameOf(column);
        marks += marks.empty() ? "?" : ", ?";
        values.push_back(ValueOf(record, column));
    }
    const AnsiString into = "INSERT INTO " + connection_.Dialect().QuotedName(table_);
    const AnsiString sql =
        into + (names.empty() ? AnsiString(" DEFAULT VALUES") : " (" + names + ") VALUES (" + marks + ")");
    const AnsiString returning = connection_.Returning(returned);
    if (!returning.empty()) {
        if (!FetchInto(sql + returning, values, record))
            throw EDatabaseError("The record was not inserted into " + table_);
        return;
    }
    table_writer_detail::WritingTransaction transaction(connection_);
    ProviderStatement& statement = prepared_.Get(sql);
    statement.Bind(values);
    if (statement.Execute() == 0) throw EDatabaseError("The record was not inserted into " + table_);
    ReadInserted(record);
    transaction.Commit();
}

void TableWriter::ReadInserted(Record& record) {
    Record wanted = record;
    for (size_t column : key_) {
        if (!wanted[column].IsUnset()) continue;
        // What was not given was counted.
        const AnsiString query = connection_.LastKeyQuery();
        if (key_.size() != 1 || query.empty()) return;
        ProviderStatement& statement = prepared_.Get(query);
        statement.ExpectColumns({{"key", ftLargeint}});
        statement.Bind({});
        RowStore rows({ColumnKind::Integer});
        while (statement.Fetch(rows, INT64_MAX)) {
        }
        if (rows.Count() == 0 || rows.IsNull(0, 0)) return;
        wanted[column] = Cell::Integer(rows.Integer(0, 0));
    }
    Reread(wanted, record);
}

bool TableWriter::UpdateWhere(const Record& original, Record& record, const std::vector<size_t>& changed,
                              const std::vector<size_t>& compared) {
    AnsiString sets;
    std::vector<ProviderValue> values;
    std::vector<AnsiString> returned;
    for (size_t column : OurColumns()) returned.push_back(NameOf(column));
    for (size_t column : changed) {
        sets += (sets.empty() ? "" : ", ") + NameOf(column) + " = ?";
        values.push_back(ValueOf(record, column));
    }
    const AnsiString returning = connection_.Returning(returned);
    const AnsiString sql = "UPDATE " + connection_.Dialect().QuotedName(table_) + " SET " + sets +
                           Condition(original, compared, values) + returning;
    if (!returning.empty()) return FetchInto(sql, values, record);
    ProviderStatement& statement = prepared_.Get(sql);
    statement.Bind(values);
    if (statement.Execute() == 0) return false;
    Reread(Record(record), record);
    return true;
}

void TableWriter::Update(const Record& original, Record& record) {
    std::vector<size_t> changed;
    for (size_t i = 0; i < columns_.size(); ++i)
        if (IsWritable(i) && !(original[i] == record[i])) changed.push_back(i);
    if (changed.empty()) return;
    table_writer_detail::WritingTransaction transaction(connection_);
    if (!UpdateWhere(original, record, changed, changed)) {
        // Either another user was there, or the engine holds a value otherwise than it is shown (a date written another
        // way, more decimals): what counts is what is shown.
        Record theirs = original;
        if (!Reread(original, theirs)) RaiseConflict(original, &record, nullptr, changed);
        const auto holds = [&](const Record& wanted) {
            return std::all_of(changed.begin(), changed.end(),
                               [&](size_t column) { return theirs[column] == wanted[column]; });
        };
        if (holds(record)) {
            // It is there already: by somebody else, or by ourselves, when the connection broke before the answer came.
            for (size_t column : OurColumns()) record[column] = theirs[column];
            transaction.Commit();
            return;
        }
        const bool same = holds(original);
        if (!same || !UpdateWhere(original, record, changed, {})) RaiseConflict(original, &record, &theirs, changed);
    }
    transaction.Commit();
}

void TableWriter::Delete(const Record& original) {
    const AnsiString from = "DELETE FROM " + connection_.Dialect().QuotedName(table_);
    const auto run = [&](const std::vector<size_t>& compared) {
        std::vector<ProviderValue> values;
        ProviderStatement& statement = prepared_.Get(from + Condition(original, compared, values));
        statement.Bind(values);
        return statement.Execute() > 0;
    };
    const std::vector<size_t> ours = OurColumns();
    table_writer_detail::WritingTransaction transaction(connection_);
    if (!run(ours)) {
        Record theirs = original;
        if (!Reread(original, theirs)) RaiseConflict(original, nullptr, nullptr, ours);
        const bool same =
            std::all_of(ours.begin(), ours.end(), [&](size_t column) { return theirs[column] == original[column]; });
        if (!same || !run({})) RaiseConflict(original, nullptr, &theirs, ours);
    }
    transaction.Commit();
}

void TableWriter::RaiseConflict(const Record& original, const Record* mine, const Record* theirs,
                                const std::vector<size_t>& changed) const {
    using table_writer_detail::Shown;
    std::vector<EUpdateConflict::Value> values;
    AnsiString message = theirs ? "Another user has changed this record of " + table_ + " since it was read."
                                : "Another user has deleted this record of " + table_ + " since it was read.";
    for (size_t column : OurColumns()) {
        const TFieldType type = columns_[column].DataType;
        EUpdateConflict::Value value;
        value.FieldName = columns_[column].Name;
        value.Original = VariantOf(original[column], type);
        value.Mine = mine ? VariantOf((*mine)[column], type) : Variant::Null();
        value.Theirs = theirs ? VariantOf((*theirs)[column], type) : Variant::Null();
        const bool wanted = std::find(changed.begin(), changed.end(), column) != changed.end();
        value.Conflicting = wanted && (!theirs || !((*theirs)[column] == original[column]));
        if (theirs && value.Conflicting) {
            message += "\n" + value.FieldName + ": it was " + Shown(value.Original) + ", is now " + Shown(value.Theirs);
            if (mine) message += ", and you wrote " + Shown(value.Mine);
        }
        values.push_back(std::move(value));
    }
    throw EUpdateConflict(message, std::move(values), theirs == nullptr);
}

}  // namespace vyn
