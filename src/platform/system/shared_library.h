#pragma once

#include <cstdint>

#include "platform/text/ansi_string.h"

namespace vyn {

// Shared libraries. A handle stands for a loaded library; 0 for none.
using HMODULE = uintptr_t;

// Loads a library, or finds it loaded; 0 when it cannot (LastLibraryError tells why).
//
// Stored names come from another system: "\" is read as "/", and "DIR/UTIL54.DLL" (or any other extension of that
// system: .bpl, .exe, .ocx) also stands for libutil54.so, util54.so, libUTIL54.so and UTIL54.so. For each of these
// folders in turn - the name's own; the program's; its folder "lib" beside "bin"; those of the environment's
// VYN_LIBRARY_PATH, separated by colons - the name as it is, with ".so" behind it, and these spellings are tried.
// A name without a folder is first looked for in the program's folder; last the system's loader is asked.
HMODULE LoadSharedLibrary(const AnsiString& name);
// Whether a file stands there, in the name's own folder, under the name or one of those spellings.
bool SharedLibraryExists(const AnsiString& name);
// The address of an exported entry (C linkage, letter for letter), or null.
void* GetProcAddress(HMODULE library, const AnsiString& name);
// Every load is to be freed once. False for 0.
bool FreeSharedLibrary(HMODULE library);
// What ModuleOfAddress (platform/objects/class_table.h) says of an address inside the library; null for 0.
const void* ModuleBase(HMODULE library);
const AnsiString& LastLibraryError();

}  // namespace vyn
