#pragma once

namespace vyn {

// Raises EStackOverflow when less than a safety margin of the calling thread's stack is left. Called by the recursions
// that have no bound of their own; the exception unwinds the recursion and the process lives on.
void CheckStack();

}  // namespace vyn
