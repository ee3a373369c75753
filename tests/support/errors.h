#pragma once

#include <functional>

#include "platform/text/exceptions.h"

namespace vyn {

// The class and text of what the action raises, or "no error".
inline AnsiString MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& error) {
        return AnsiString(error.ClassName()) + ": " + error.Message();
    }
    return "no error";
}

}  // namespace vyn
