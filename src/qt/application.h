#pragma once

#include <functional>
#include <memory>

namespace vyn::qt {

// The toolkit for as long as this lives: its application object and every port of the platform (main loop, peers,
// message boxes, beeps, clipboard, text metrics and screen). Made once, before the first form is shown; the forms'
// windows must be gone before it goes. `argc` and `argv` must outlive it. Main thread only.
//
// Without any display (no DISPLAY, no WAYLAND_DISPLAY, no QT_QPA_PLATFORM) pictures are drawn in memory: the toolkit
// would end the process otherwise. There the style and the fonts are named, so that pictures are the same everywhere;
// elsewhere both are the desktop's own.
class QtSession {
  public:
    QtSession(int& argc, char** argv);
    ~QtSession();
    QtSession(const QtSession&) = delete;
    QtSession& operator=(const QtSession&) = delete;

    // Windows are drawn in memory only.
    static bool IsOffscreen();

  private:
    struct Ports;
    std::unique_ptr<Ports> ports_;
};

// Runs the body with the toolkit; gives its result. What the body throws goes to the caller.
int RunQtApplication(int argc, char** argv, const std::function<int()>& body);

}  // namespace vyn::qt
