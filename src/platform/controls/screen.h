#pragma once

#include <vector>

#include "platform/controls/colors.h"
#include "platform/objects/component.h"

namespace vyn {

class TCustomForm;
class TDataModule;
class TWinControl;

// The desktop and the program's forms on it. Main thread only.
class TScreen : public TComponent {
    VYN_OBJECT
  public:
    explicit TScreen(TComponent* owner) : TComponent(owner) {}

    int PixelsPerInch() const;
    int Width() const;
    int Height() const;
    int FormCount() const { return static_cast<int>(forms_.size()); }
    TCustomForm* Forms(int index) const;  // raises EListError; the order in which they were made
    // The same forms, the most recently active first.
    TCustomForm* CustomFormsByUse(int index) const;
    int DataModuleCount() const { return static_cast<int>(dataModules_.size()); }
    TDataModule* DataModules(int index) const;
    TCustomForm* ActiveForm() const { return activeForm_; }
    TWinControl* ActiveControl() const { return activeControl_; }
    // crDefault lets each control show its own.
    TCursor Cursor() const { return cursor_; }
    void SetCursor(TCursor value);
    TNotifyEvent OnActiveControlChange;
    TNotifyEvent OnActiveFormChange;

  private:
    friend class TCustomForm;
    friend class TDataModule;
    friend class TWinControl;
    void AddForm(TCustomForm* form);
    void RemoveForm(TCustomForm* form);
    void SetActiveForm(TCustomForm* form);
    void SetActiveControl(TWinControl* control);

    std::vector<TCustomForm*> forms_;
    std::vector<TCustomForm*> formsByUse_;
    std::vector<TDataModule*> dataModules_;
    TCustomForm* activeForm_ = nullptr;
    TWinControl* activeControl_ = nullptr;
    TCursor cursor_ = crDefault;
};

TScreen* Screen();

}  // namespace vyn
