#pragma once

#include "platform/controls/geometry.h"
#include "platform/objects/component.h"

namespace vyn {

// A window nobody sees: holds the components that are no controls. Makes and reads itself as a form does
// (InitializeModule), from its class's compiled form.
class TDataModule : public TComponent {
    VYN_OBJECT
  public:
    explicit TDataModule(TComponent* owner);
    ~TDataModule() override;

    void InitializeModule();
    bool OldCreateOrder = false;
    TNotifyEvent OnCreate;
    TNotifyEvent OnDestroy;
    // Its place and size in a designer.
    TPoint DesignOffset;
    TSize DesignSize = {150, 150};

    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void DefineProperties(TFiler& filer) override;
};

}  // namespace vyn
