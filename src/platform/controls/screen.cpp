#include "platform/controls/screen.h"

#include <algorithm>

#include "platform/controls/data_modules.h"
#include "platform/controls/forms.h"
#include "platform/controls/text_metrics.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace screen_detail {

template <class T>
T* At(const std::vector<T*>& list, int index) {
    if (index < 0 || index >= static_cast<int>(list.size()))
        throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return list[static_cast<size_t>(index)];
}

}  // namespace screen_detail

TScreen* Screen() {
    // Outlives every form, whichever way the process ends.
    static TScreen* const screen = new TScreen(nullptr);
    return screen;
}

const ClassInfo& TScreen::StaticClass() {
    static const ClassInfo info = DefineClass<TScreen, TComponent>("TScreen");
    return info;
}

int TScreen::PixelsPerInch() const { return CurrentTextMetrics().PixelsPerInch(); }
int TScreen::Width() const { return CurrentTextMetrics().ScreenSize().cx; }
int TScreen::Height() const { return CurrentTextMetrics().ScreenSize().cy; }
TCustomForm* TScreen::Forms(int index) const { return screen_detail::At(forms_, index); }
TCustomForm* TScreen::CustomFormsByUse(int index) const { return screen_detail::At(formsByUse_, index); }
TDataModule* TScreen::DataModules(int index) const { return screen_detail::At(dataModules_, index); }

void TScreen::SetCursor(TCursor value) {
    if (cursor_ == value) return;
    cursor_ = value;
    if (PeerFactory* factory = GetPeerFactory()) factory->SetScreenCursor(value);
}

void TScreen::AddForm(TCustomForm* form) {
    forms_.push_back(form);
    formsByUse_.push_back(form);
}

void TScreen::RemoveForm(TCustomForm* form) {
    std::erase(forms_, form);
    std::erase(formsByUse_, form);
    if (activeForm_ == form) {
        activeForm_ = nullptr;
        activeControl_ = nullptr;
    }
}

void TScreen::SetActiveForm(TCustomForm* form) {
    if (activeForm_ == form) return;
    activeForm_ = form;
    if (form) {
        std::erase(formsByUse_, form);
        formsByUse_.insert(formsByUse_.begin(), form);
    }
    OnActiveFormChange(this);
}

void TScreen::SetActiveControl(TWinControl* control) {
    if (activeControl_ == control) return;
    activeControl_ = control;
    OnActiveControlChange(this);
}

}  // namespace vyn
