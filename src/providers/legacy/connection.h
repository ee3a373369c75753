#pragma once

#include "providers/legacy/import.h"

namespace vyn {

// "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=FILE" of stored applications. A file in the embedded engine's format
// opens with that engine. A legacy desktop database is read into an embedded copy in the folder "legacy" of the user's
// data, which is kept as long as the file's size, time and number on its disk stay the same, and opens for reading
// only; its password, if it has one, is "Jet OLEDB:Database Password". Anything else raises EDatabaseError. The
// embedded engine's provider must be registered too.
void RegisterLegacyProvider();

namespace legacy {

// The copy of a legacy file, which is made when there is none of the file as it is now. Copies of the file as it was
// are removed. Raises as ImportLegacyFile does.
AnsiString CopyOf(const AnsiString& file, const ImportOptions& options);

}  // namespace legacy

}  // namespace vyn
