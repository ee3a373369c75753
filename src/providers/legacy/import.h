#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/text/ansi_string.h"

namespace vyn::legacy {

enum class Damage { Refuse, LeaveOut };

struct ImportOptions {
    std::string Password;  // UTF-8
    // What cannot be read is an error, or is left out and told.
    Damage OnDamage = Damage::Refuse;
};

// Something that did not come over, or not as it was. Texts are UTF-8.
struct Loss {
    std::string Kind;    // table, column, row, value, default, rule, index, relation, query, damage, file
    std::string Object;  // "Clients.Alta"
    std::string Why;
    std::string Text;  // what it was, where it has a text: a query's statement, a default, a rule
    std::string Sentence() const;
};

struct ImportedTable {
    std::string Name;
    int64_t Rows = 0;
};

struct ImportReport {
    std::vector<ImportedTable> Tables;
    int Indexes = 0;
    int Relations = 0;
    std::vector<std::string> Views;
    std::vector<Loss> Losses;
};

// Told how much of the work is done, 0 to 1, now and then. What it raises ends the work, and nothing is written.
using ImportProgress = std::function<void(double part)>;

// Reads a legacy desktop database whole into a new file of the embedded engine. `to` is written under another name
// beside it and renamed when it is whole; it replaces a file of that name. Raises EDatabaseError, and EFOpenError or
// EFCreateError for the files.
//
// Tables keep their columns with types, sizes, defaults and what is required, descriptions as comments in their
// definition, keys, indexes and relations; texts compare without regard to case, as they did. Saved queries become
// views where the dialect step can say them and the engine runs them.
ImportReport ImportLegacyFile(const AnsiString& from, const AnsiString& to, const ImportOptions& options,
                              const ImportProgress& progress = {});

}  // namespace vyn::legacy
