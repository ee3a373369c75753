#pragma once

#include <cstdint>

namespace vyn {

// A worker's wait for a moment. Until blocks without using the processor; with a clock that is moved by hand it ends
// when the clock has come there. Made and freed by whoever owns the worker.
class TickWait {
  public:
    // Blocks until the tick count is at `tick` or behind it, or Wake was called; takes a Wake that came before.
    void Until(uint32_t tick);
    // Ends the wait, or the next one. Any thread.
    void Wake();

  private:
    bool woken_ = false;
};

}  // namespace vyn
