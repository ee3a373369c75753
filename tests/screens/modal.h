#pragma once

#include <functional>

#include "platform/controls/forms.h"
#include "platform/controls/screen.h"
#include "platform/controls/timers.h"

namespace vyn::screens {

// Runs what the user does in the next modal window, when that has come.
class InModalWindow {
  public:
    explicit InModalWindow(std::function<void(TCustomForm&)> user)
        : user_(std::move(user)), before_(Screen()->ActiveForm()) {
        timer_.SetInterval(5);
        timer_.SetOnTimer([this](TObject*) {
            TCustomForm* shown = Screen()->ActiveForm();
            if (!shown || shown == before_ || !shown->IsModal()) return;
            timer_.SetEnabled(false);
            Ran = true;
            user_(*shown);
        });
    }
    bool Ran = false;

  private:
    std::function<void(TCustomForm&)> user_;
    TCustomForm* before_;
    TTimer timer_{nullptr};
};

}  // namespace vyn::screens
