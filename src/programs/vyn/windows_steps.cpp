#include "programs/vyn/windows_steps.h"

#include "controls/base_edit_box.h"
#include "datasources/Uvyndatasources.h"
#include "platform/controls/screen.h"
#include "platform/objects/component_handle.h"
#include "platform/system/application.h"
#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "qt/typing.h"

namespace vyn {

namespace windows_steps_detail {

// Milliseconds; more than anything waits for.
constexpr uint64_t kLongPause = 20000;

}  // namespace windows_steps_detail

std::pair<AnsiString, std::optional<AnsiString>> SplitStep(const AnsiString& step) {
    const size_t equal = step.find('=');
    if (equal == AnsiString::npos) return {step, std::nullopt};
    return {step.substr(0, equal), step.substr(equal + 1)};
}

TControl& PartOf(TCustomForm& form, const AnsiString& name) {
    auto* control = ObjectCast<TControl>(form.FindComponent(name));
    if (!control) throw Exception("There is no control " + name + " in the window \"" + form.Caption() + "\"");
    return *control;
}

void FinishLookups(const TCustomForm& form) {
    // Values that were found may have others looked up.
    constexpr int kTurns = 4;
    for (int turn = 0; turn < kTurns; ++turn) {
        Application()->ProcessMessages();
        for (int i = 0; i < form.ComponentCount(); ++i) {
            const auto* source = ObjectCast<TVynDataSource>(form.Components(i));
            TVynComponentList* list = source ? source->ComponentList() : nullptr;
            for (int at = 0; list && at < list->Count(); ++at)
                TVynComponentList::WaitUntilFinished(list, list->Record(at)->DataLinks.front());
        }
    }
}

UserSteps::UserSteps(const std::vector<std::string>& steps, bool atOnce) : atOnce_(atOnce) {
    for (const std::string& step : steps) steps_.push_back(Utf8ToAnsi(step));
}

void UserSteps::Take(TCustomForm& form, const std::function<void(TCustomForm&)>& picture) {
    if (steps_.empty()) return picture(form);
    form_ = &form;
    picture_ = picture;
    SetMessageDialogPort([this](const MessageDialogRequest& request) -> TModalResult {
        if (!wrong_) wrong_ = std::make_exception_ptr(Exception(request.Text));
        return mrCancel;
    });
    ManualTickClock clock(TickCount());
    // A window that is waited for does the next steps inside.
    const WindowHandle inside([this](TMessage&) {
        if (const TCustomForm* front = Screen()->ActiveForm(); front && front->IsModal()) Go();
    });
    Screen()->OnActiveFormChange = [this, &inside](TObject*) {
        const TCustomForm* front = Screen()->ActiveForm();
        if (front && front->IsModal()) PostMessage(inside.Handle(), WM_USER, 0, 0);
    };
    advance_ = [&clock] { clock.Advance(windows_steps_detail::kLongPause); };
    Go();
    Screen()->OnActiveFormChange.Clear();
    SetMessageDialogPort([](const MessageDialogRequest&) -> TModalResult { return mrCancel; });
    if (wrong_) std::rethrow_exception(wrong_);
}

void UserSteps::Go() {
    TCustomForm* front = Screen()->ActiveForm();
    TCustomForm& window = front && front->IsModal() ? *front : *form_;
    const int number = window.TComponent::Handle();
    const auto closes = [&] {
        return ComponentFromHandle(number) != &window || (window.IsModal() && window.ModalResult() != mrNone);
    };
    try {
        while (next_ < steps_.size() && !wrong_ && !closes()) {
            Do(window, steps_[next_++]);
            if (closes() || taken_) break;
            if (next_ == steps_.size() && atOnce_) break;
            advance_();
            FinishLookups(window);
        }
        if (next_ == steps_.size() && !wrong_ && !taken_ && !closes()) {
            picture_(window);
            taken_ = true;
        }
    } catch (...) {
        if (!wrong_) wrong_ = std::current_exception();
    }
    // The end of all, also in the windows that those before have opened.
    if ((taken_ || wrong_) && !closes() && window.IsModal()) window.SetModalResult(mrCancel);
}

void UserSteps::Do(TCustomForm& window, const AnsiString& step) {
    const auto [name, text] = SplitStep(step);
    TControl& control = PartOf(window, name);
    if (!control.Showing() || !control.EffectivelyEnabled())
        throw Exception("The control " + name + " cannot be used now");
    if (text) return qt::TypeInto(control, *text);
    if (auto* box = ObjectCast<TBaseVynEditBox>(&control)) return box->Button().Click();
    if (auto* widget = ObjectCast<TWinControl>(&control); widget && widget->CanFocus()) widget->SetFocus();
    control.Click();
}

}  // namespace vyn
