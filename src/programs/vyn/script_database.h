#pragma once

#include <string>

#include "platform/text/ansi_string.h"

namespace vyn {

// Where this program keeps the user's data; made when it is not there. Ends in a separator.
AnsiString UserDataFolder();

// The folder of the sample application: beside the program (build) or installed. Raises an Exception when it is not
// there.
std::string DemoFolder();

// The database file that a script (SQL, UTF-8) makes, under the user's data folder: made on first use, whole or not at
// all, and kept from then on; when the script has got further columns since, so have the file's tables. Gives its name.
// Raises EDatabaseError with the engine's reason.
AnsiString DatabaseFromScript(const AnsiString& scriptFile, const AnsiString& name);

// Makes the tables of such a script, and the rows that it puts into them, in the database of a connection string, all
// or nothing; where the script's first table is there already, adds only the columns that the tables lack. The script's
// words are the embedded engine's; a PostgreSQL server gets its own for them. Raises EDatabaseError, and an Exception
// for other engines.
void FillDatabase(const AnsiString& connectionString, const AnsiString& scriptFile);

}  // namespace vyn
