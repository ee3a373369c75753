#pragma once

#include "app/Utvynapp.h"

namespace vyn {

// The query screens of an application (node type 7) are data-source classes, each under its node's name: what looks a
// value up in the class NAME, on whichever form, has a hidden screen of its own of that node, which belongs to the
// form's data source. The first node of a name counts. An application's own classes, and those of its package, come
// first.
void RegisterQueryClasses(TVynApp& app);
void UnregisterQueryClasses();

}  // namespace vyn
