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
// all, and kept from then on. Gives its name. Raises EDatabaseError with the engine's reason.
AnsiString DatabaseFromScript(const AnsiString& scriptFile, const AnsiString& name);

}  // namespace vyn
