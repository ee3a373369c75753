#pragma once

#include <cstdint>

namespace vyn {

class TComponent;

// Numbers that stand for live components where only an integer fits: parameters, stored scripts, 32-bit messages.
// A component gets its number when it is first asked for (TComponent::Handle); numbers are never given twice in a
// process, so the number of a freed component finds nothing. 0 stands for no component.
TComponent* ComponentFromHandle(int64_t handle);

}  // namespace vyn
