#pragma once

#include <map>
#include <optional>

#include "platform/access/prepared_statements.h"
#include "platform/access/spellings.h"
#include "platform/data/row_pages.h"

namespace vyn {

// The pages of a query over one large table: its statement, with the places of the rows before and behind as conditions
// over it, so that the engine goes there by its indexes and gives only the rows that are wanted. The order is the
// statement's own (or one that is asked for), and the primary key's behind it.
class TablePages final : public RowPages {
  public:
    // A query in the engine's own words, whose parameters have these values, over a table whose primary key its columns
    // contain.
    struct Query {
        AnsiString Sql;
        std::vector<ProviderValue> Values;
        std::vector<FieldDefinition> Columns;
        AnsiString Table;
        std::vector<size_t> Key;
        // Before anything is asked for.
        std::function<void()> Ready;
    };
    struct OrderPart {
        size_t Column;
        bool Descending;
    };
    // Null for a query that cannot be read in pages (an order by what its columns do not show, a limit of its own), and
    // for tables that the engine takes to have fewer records than `from`.
    static std::unique_ptr<TablePages> Of(ProviderConnection& connection, Query query,
                                          const std::vector<OrderPart>& order, int64_t from);

    void ReadAfter(const Record* row, int64_t skip, int64_t count, RowStore& rows) override;
    void ReadBefore(const Record* row, int64_t skip, int64_t count, RowStore& rows) override;
    bool ReadFrom(const Record& first, const Record& last, double part, int64_t count, RowStore& rows) override;
    bool ReadAgain(const Record& row, RowStore& rows) override;
    void ReadMatching(const std::vector<PageSearch>& wanted, const Record* after, int64_t count,
                      RowStore& rows) override;
    double PartOf(const Record& row, const Record& first, const Record& last) const override;
    bool Follows(const Record& row, const Record& other) const override;
    // Asked for once.
    int64_t Estimate() override;
    int64_t Count() override;
    Record PlaceOf(const RowStore& rows, int64_t row) const override;
    const std::vector<size_t>& KeyColumns() const override { return query_.Key; }

  private:
    enum class Direction { Forward, Backward };
    struct Part {
        size_t column;
        bool descending;
        bool nullable;
        // Whether the engine holds the value as it is shown; else it is asked of the row.
        bool exact;
    };
    struct Statement {
        AnsiString text;
        std::vector<ProviderValue> values;
    };
    TablePages(ProviderConnection& connection, Query query)
        : connection_(connection), query_(std::move(query)), prepared_(connection) {}
    bool FindOrder(const std::vector<OrderPart>& order);
    std::optional<std::vector<OrderPart>> TakeStatementOrder();
    std::optional<size_t> ColumnCalled(const AnsiString& name) const;
    Statement Begin() const;
    AnsiString ColumnName(const Part& part) const;
    bool Falls(const Part& part, Direction direction) const {
        return part.descending != (direction == Direction::Backward);
    }
    bool NullsLead(const Part& part, Direction direction) const;
    void AddValue(Statement& statement, const Part& part, const Record& place) const;
    void AddKey(Statement& statement, const Record& place, bool byOrigin) const;
    void AddBeyond(Statement& statement, const Record& place, Direction direction) const;
    void AddBeyondStepwise(Statement& statement, const Record& place, Direction direction) const;
    void AddOrder(Statement& statement, Direction direction) const;
    void AddSearch(Statement& statement, const PageSearch& wanted) const;
    // Searching by a column's index (table_search.cpp).
    // An answer to where a spelling may stand: nothing stands from the place on to the text that was found.
    struct Answer {
        std::string place;
        bool none = true;
        std::string text;   // what was found
        std::string found;  // the same as the index tells texts apart
        int64_t row = -1;   // of the answers' rows, where more than the text was asked for
    };
    // A column whose texts are searched, as the catalog had it when that was done first, and what it is asked.
    struct SearchedColumn {
        size_t column = 0;
        TextIndex index;
        Spellings::Direction direction = Spellings::Direction::Rising;
        AnsiString name, order;
        // The row at a place, its text alone, the rows at several places, and the row before a place.
        AnsiString one, text, many, before;
        AnsiString model;  // the text that was found last: others are spelled like it, mostly
        // How many places ahead were of use lately, and whether those beyond the likely spelling were.
        size_t ahead = 0;
        bool beyond = false;
        // What the last search was answered, and where its last answers begin.
        std::vector<Answer> answers;
        size_t latest = 0;
    };
    // Each puts the first row, if there is one; false when the question is open still.
    bool FindByIndex(const PageSearch& wanted, RowStore& rows);
    bool WalkSpellings(SearchedColumn& column, const TextSearch& search, const Spellings& spellings, RowStore& rows);
    void Forget(SearchedColumn& column);
    bool LookBesidePlain(SearchedColumn& column, const TextSearch& search, RowStore& rows);
    bool Scan(SearchedColumn& column, const TextSearch& search, const std::string* from, const std::string* last,
              RowStore& rows);
    SearchedColumn& SearchedColumnOf(size_t column);
    void Ask(SearchedColumn& column, const Spellings& spellings, const Spellings::Place& place);
    void Take(SearchedColumn& column, int64_t row, RowStore& rows);
    std::vector<ProviderValue> ValuesWith(const SearchedColumn& column, const std::string& place) const;
    // Adds the row at a place to the answers' rows; -1 when there is none.
    int64_t AskRow(const AnsiString& sql, const SearchedColumn& column, const std::string& place);
    void RunStatement(const AnsiString& text, const std::vector<FieldDefinition>& columns,
                      const std::vector<ProviderValue>& values, RowStore& rows);
    void Read(const Record* place, int64_t skip, int64_t count, Direction direction, RowStore& rows);
    void Run(Statement& statement, int64_t skip, int64_t count, RowStore& rows);

    ProviderConnection& connection_;
    Query query_;
    PreparedStatements prepared_;
    std::vector<Part> order_;
    std::optional<int64_t> estimate_;
    // Whether the statement leaves records out.
    bool conditional_ = false;
    std::map<size_t, SearchedColumn> searched_;
    RowStore answers_{std::vector<ColumnKind>()};
    RowStore texts_{{ColumnKind::Text}};
};

}  // namespace vyn
