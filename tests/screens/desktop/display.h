#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace vyn::screens {

// An X server of its own in memory, with a window manager and a Spanish keyboard, for as long as this lives; DISPLAY
// names it. Raises std::runtime_error when a program is missing or does not start.
class VirtualDisplay {
  public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  private:
    pid_t server_ = 0;
    pid_t manager_ = 0;
};

// Runs a program to its end; raises std::runtime_error unless it succeeds.
void RunProgram(const std::vector<std::string>& words);

}  // namespace vyn::screens
