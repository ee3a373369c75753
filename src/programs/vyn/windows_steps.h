#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/controls/forms.h"

namespace vyn {

// "NAME" or "NAME=TEXT".
std::pair<AnsiString, std::optional<AnsiString>> SplitStep(const AnsiString& step);
// A control of a window by its name; raises Exception when there is none.
TControl& PartOf(TCustomForm& form, const AnsiString& name);
// Lets what the form's controls look up in the background be found.
void FinishLookups(const TCustomForm& form);

// What a user does in a screen before its picture is taken, without a user: NAME presses a control (a lookup box's
// button opens its search screen), NAME=TEXT types into it in place of what it holds. Each is done in the window that
// is in front by then. Time stands while it is done, and goes on afterwards until nothing waits, so that the same steps
// always end in the same picture. Main thread only.
class UserSteps {
  public:
    // UTF-8. `atOnce`: after the last step time goes no further.
    UserSteps(const std::vector<std::string>& steps, bool atOnce);
    // Does the steps in a shown form, hands over the window that is in front then, and closes what they have opened.
    // Raises what goes wrong, also what a message would have said: nobody is there to answer it.
    void Take(TCustomForm& form, const std::function<void(TCustomForm&)>& picture);

  private:
    void Go();
    void Do(TCustomForm& window, const AnsiString& step);

    std::vector<AnsiString> steps_;
    bool atOnce_;
    size_t next_ = 0;
    bool taken_ = false;
    TCustomForm* form_ = nullptr;
    std::function<void(TCustomForm&)> picture_;
    std::function<void()> advance_;  // time
    std::exception_ptr wrong_;
};

}  // namespace vyn
