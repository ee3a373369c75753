#pragma once

#include <functional>
#include <vector>

#include "platform/objects/class_info.h"

namespace vyn {

// The two tables of classes.
//
// Linked classes: every class that the program, or a loaded module, brings. A room lists its own in one explicit
// function (RegisterControlClasses and so on), so that no linker drops one.
// The streaming class table: the classes that stored forms may name; the class registry fills it.
// Names compare without regard to case. Main thread only.

void AddLinkedClass(TClass classInfo);
void RemoveLinkedClass(TClass classInfo);
TClass FindLinkedClass(std::string_view name);
std::vector<TClass> LinkedClasses();

// Registering a class again changes nothing; another class of a registered name raises EFilerError.
void RegisterClass(TClass classInfo);
void UnRegisterClass(TClass classInfo);
// The registered class of a name, or null.
TClass GetClass(std::string_view name);
// Raises EClassNotFound "Class X not found".
TClass FindClass(std::string_view name);
std::vector<TClass> RegisteredClasses();

// The module (program or shared library) whose memory holds the class's record; opaque, for comparing.
const void* ClassModule(TClass classInfo);
const void* ModuleOfAddress(const void* address);
// Removes every class of a module from both tables.
void UnRegisterModuleClasses(const void* module);

}  // namespace vyn
