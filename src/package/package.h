#pragma once

namespace vyn {

// Start and end of the framework in a process. The only room that knows every class: it lists the classes that are
// linked, and runs each unit's start-up in order and its shut-down in reverse. Calling either twice changes nothing.
// Main thread only.
void InitializePackage();
void FinalizePackage();

}  // namespace vyn
