// The commands that need windows, in a program that was built without a toolkit.
#ifndef VYN_WITH_WINDOWS
#include "platform/text/exceptions.h"
#include "programs/vyn/commands.h"

namespace vyn {

namespace {

[[noreturn]] void RaiseNoWindows() {
    throw Exception(
        "This program was built without windows (Qt 6 was not there): it makes, inspects and checks files only");
}

}  // namespace

int RunCommand(const RunOptions&, int, char**) { RaiseNoWindows(); }
int ShotCommand(const ShotOptions&, int, char**) { RaiseNoWindows(); }

}  // namespace vyn
#endif
