#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/exceptions.h"

// Reads the files of a legacy desktop database, in both of its generations (docs/formats/legacy-database.md). The bytes
// are hostile: everything that points is checked, what repeats is bounded. Nothing is written. Texts are UTF-8.
namespace vyn::legacy {

enum class ColumnType : uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Money = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Object = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Complex = 18,  // a list of values that stands in a table of its own
    Large = 19,
};

struct Column {
    std::string Name;
    ColumnType Type = ColumnType::Text;
    int Number = 0;         // of its bit among a row's nulls
    int VariablePlace = 0;  // among a row's values of variable length
    int FixedPlace = 0;     // of its bytes behind a row's first
    bool Fixed = false;
    bool Counts = false;  // numbered by the engine
    int Size = 0;         // letters of a text, bytes of a binary value
    int Precision = 0;    // digits of a decimal number, and those behind the point
    int Scale = 0;
    // What the design says besides, as it was typed.
    bool Required = false;
    std::string Default;
    std::string Description;
    std::string Rule;
};

struct IndexColumn {
    size_t Column = 0;  // position in the table's columns
    bool Descending = false;
};

struct Index {
    std::string Name;
    std::vector<IndexColumn> Columns;
    bool Unique = false;
    bool Primary = false;
};

struct Table {
    std::string Name;
    std::string Description;
    std::string Rule;
    std::vector<Column> Columns;
    std::vector<Index> Indexes;
    int64_t RowCount = 0;  // as the file says
    uint32_t Page = 0;     // where its definition begins
    uint32_t PageMap = 0;  // pointer to the map of its pages
    bool System = false;
};

struct Relation {
    std::string Name;
    std::string Table;
    std::string Referenced;
    std::vector<std::string> Columns;
    std::vector<std::string> ReferencedColumns;
    bool Enforced = true;
    bool UpdatesCascade = false;
    bool DeletesCascade = false;
};

struct QueryPart {
    int Attribute = 0;
    int Flag = 0;
    std::string Expression;
    std::string Name1;
    std::string Name2;
};

struct Query {
    std::string Name;
    std::vector<QueryPart> Parts;
};

// What the file names and does not hold, or what cannot be read of it.
struct Foreign {
    std::string Name;
    std::string Why;
};

enum class ValueKind { Null, Integer, Real, Decimal, Date, Text, Bytes };

struct Value {
    ValueKind Kind = ValueKind::Null;
    int64_t Integer = 0;
    double Real = 0;    // a date: days since 30 December 1899, the part of the day counting away from nought
    std::string Bytes;  // a text, bytes, or a decimal number's digits with "-" and "."
};

using Row = std::vector<Value>;

// Told what is damaged; reading goes on without it when the handler returns.
using DamageHandler = std::function<void(const std::string& what)>;

class File {
  public:
    // The bytes stay the caller's, unchanged, as long as the object lives. Raises EDatabaseError for what is no such
    // file, is cut short, or has a password that is not `password`. Without a handler, damage raises EDatabaseError.
    File(std::string_view bytes, const std::string& password, DamageHandler damaged = {});
    ~File();

    const std::vector<Table>& Tables() const { return tables_; }
    const std::vector<Relation>& Relations() const { return relations_; }
    const std::vector<Query>& Queries() const { return queries_; }
    const std::vector<Foreign>& Others() const { return others_; }

    // Gives each row to `take`, in the order of the file, a value for each column.
    void ReadRows(const Table& table, const std::function<void(const Row&)>& take) const;

    // Whether bytes begin as such a file does, and how many of them CheckPassword wants.
    static bool IsLegacy(std::string_view beginning);
    static constexpr size_t kBeginning = 2048;
    // Raises EDatabaseError when the file has a password that is not `password`.
    static void CheckPassword(std::string_view beginning, const std::string& password);

  private:
    void ReadCatalog();
    void ReadRelations(const Table& table);
    void ReadQueryParts(const Table& table, const std::vector<std::pair<int64_t, std::string>>& objects);

    std::unique_ptr<class Pages> pages_;
    std::vector<Table> tables_;
    std::vector<Relation> relations_;
    std::vector<Query> queries_;
    std::vector<Foreign> others_;
};

}  // namespace vyn::legacy
