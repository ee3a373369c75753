#pragma once

#include <set>
#include <string>

#include <sqlite3.h>

#include "providers/legacy/import.h"
#include "providers/legacy/legacy_file.h"

// How legacy tables are said to the embedded engine. Texts are UTF-8.
namespace vyn::legacy {

std::string Quoted(const std::string& name);
std::string QuotedText(std::string_view text);

// What turned out not to hold for the rows that are there, and is left out of the definitions.
struct Concessions {
    std::set<std::string> Optional;  // "Table.Column"
    std::set<std::string> Plain;     // "Table.Index": not unique
};

// The whole statement that makes the table, with the relations in which it refers to others. Tells what cannot be said.
std::string TableDefinition(const File& file, const Table& table, const Concessions& concessions, sqlite3* database,
                            ImportReport& report);
// The statement that makes an index, under a name that is not in `taken` (in lower case), which it joins.
std::string IndexDefinition(const Table& table, const Index& index, const Concessions& concessions,
                            std::set<std::string>& taken);
bool IsUnique(const Table& table, const Index& index, const Concessions& concessions);
bool IsRequired(const Table& table, const Column& column, const Concessions& concessions);

// The embedded engine's words for what the design gives a new record; empty with a reason in `why` when there are none.
std::string DefaultOf(const Column& column, std::string& why);

// The statement of a saved query in the words of the legacy engine; empty with a reason in `why` when it is no query
// that a view can be.
std::string StatementOf(const Query& query, std::string& why);
// The same for the embedded engine; raises EDatabaseError or EConvertError.
std::string EmbeddedStatement(const std::string& statement);

}  // namespace vyn::legacy
