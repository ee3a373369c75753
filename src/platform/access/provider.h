#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/access/connection_string.h"
#include "platform/access/dialect.h"
#include "platform/data/row_store.h"

namespace vyn {

// What a database engine gives the access room. An engine stands in its own room below src/providers and is registered
// by its name; nothing else knows it. Errors are EDatabaseError with the engine's own reason. Main thread only.

// A value on its way to the engine: the field's type says how it is written, ftUnknown: as the cell holds it.
struct ProviderValue {
    TFieldType Type = ftUnknown;
    Cell Value;
};

// A prepared statement.
class ProviderStatement {
  public:
    virtual ~ProviderStatement() = default;
    virtual std::vector<FieldDefinition> Columns() = 0;
    // Says what the columns hold where the engine cannot know it (what a changing statement gives back).
    virtual void ExpectColumns(std::vector<FieldDefinition> columns) = 0;
    // Binds the parameters by position; a statement can be run again.
    virtual void Bind(const std::vector<ProviderValue>& values) = 0;
    // The number of "?" in it.
    virtual int ParameterCount() const = 0;
    // Appends up to `count` rows; false when there are no more.
    virtual bool Fetch(RowStore& rows, int64_t count) = 0;
    // Runs it to its end; gives the number of rows that it changed.
    virtual int64_t Execute() = 0;
};

// An index that leads to a column's texts by their beginnings.
struct TextIndex {
    enum class Sorting {
        None,                   // there is no such index
        CodePoints,             // by the characters' numbers: capitals first, letters with accents last
        CodePointsWithoutCase,  // the same, a to z being A to Z
        Language                // as a language has it: the spellings of one word stand together, mostly
    };
    Sorting Order = Sorting::None;
    // What stands behind the column's name to compare and order its texts as the index does; empty where the column
    // does so by itself.
    AnsiString Collation;
    // What stands around comparisons ("~" for ~>=~) that the index knows.
    AnsiString OperatorEdge;

    bool IsColumnsOwn() const { return Collation.empty() && OperatorEdge.empty(); }
};

enum class SystemTables { Leave, Include };

// A word from another user of the database: that something has changed, say.
struct ProviderNotice {
    AnsiString Channel;
    AnsiString Payload;
};

class ProviderConnection {
  public:
    virtual ~ProviderConnection() = default;
    virtual const EngineDialect& Dialect() const = 0;
    // SQL in the engine's own dialect, Windows-1252; parameters stand as "?".
    virtual std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) = 0;
    // A statement without rows, or several; gives the number of rows that changed.
    virtual int64_t Execute(const AnsiString& sql) = 0;
    virtual std::vector<AnsiString> TableNames(SystemTables system) = 0;
    virtual std::vector<AnsiString> ProcedureNames() = 0;
    // Whether there is a table, and no view, of this name.
    virtual bool IsTable(const AnsiString& name) = 0;
    // Whether the tables that columns are said to come from are never views.
    virtual bool OriginsAreTables() const { return false; }
    // The columns of a table's primary key, and of one of its indexes, in their order; empty when there is none.
    virtual std::vector<AnsiString> KeyColumns(const AnsiString& table) = 0;
    virtual std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) = 0;
    // The best index for a column's texts, of those that hold all records of a table.
    virtual TextIndex TextIndexOf(const AnsiString& table, const AnsiString& column) { return {}; }
    // About how many records a table has, told without counting them; -1 where nobody knows: its queries are then read
    // from the beginning to the end, and not in pages.
    virtual int64_t EstimatedRows(const AnsiString& table) { return -1; }
    // Transactions may be nested as far as the engine lets them; each gives the depth that it leaves.
    virtual int Begin() = 0;
    virtual int Commit() = 0;
    virtual int Rollback() = 0;
    virtual int TransactionDepth() const = 0;
    // What follows an INSERT or UPDATE to have it give back `columns` as the engine then holds them; empty where the
    // record is read again by its key.
    virtual AnsiString Returning(const std::vector<AnsiString>& columns) const;
    // Where nothing follows an INSERT: a query for the number that its record's key was given; empty for none.
    virtual AnsiString LastKeyQuery() const { return {}; }
    // How long the engine may take for what is asked of it from now on, in seconds; 0: as long as it wants. What takes
    // longer is broken off with an error; a server that does not even answer to that is taken for lost.
    virtual void SetCommandTimeout(int seconds) {}
    // Whether results that are read halfway may stay so while the connection writes.
    virtual bool WritesBesideReading() const { return false; }
    // Has other connections' notices on a channel kept, and takes those that came. Raises where there are none.
    virtual void Listen(const AnsiString& channel);
    virtual std::vector<ProviderNotice> TakeNotices() { return {}; }
};

using ProviderFactory = std::function<std::unique_ptr<ProviderConnection>(const ConnectionString& settings)>;

// Names compare without regard to case; registering again replaces.
void RegisterProvider(const AnsiString& name, ProviderFactory factory);
// Raises EDatabaseError, naming the providers that there are, when there is none of the name.
std::unique_ptr<ProviderConnection> OpenProvider(const ConnectionString& settings);

}  // namespace vyn
