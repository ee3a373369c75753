#pragma once

namespace vyn {

// Adds every class of this room to the linked classes. Calling it again changes nothing.
void RegisterControlClasses();

}  // namespace vyn
