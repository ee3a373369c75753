#pragma once

#include <memory>

#include "platform/controls/control_classes.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/forms.h"
#include "platform/controls/text_metrics.h"
#include "platform/objects/class_table.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/system/application.h"

namespace control_test {

using namespace vyn;

// The room's classes, where stored forms find them.
inline void RegisterAll() {
    RegisterControlClasses();
    RegisterDataClasses();
    RegisterDataControlClasses();
    for (TClass each : LinkedClasses())
        if (!GetClass(each->Name())) RegisterClass(each);
}

inline std::string Stored(TComponent& root) {
    TMemoryStream stream;
    WriteComponentToStream(stream, root);
    return std::string(stream.Bytes());
}

// Reads a stored form back into a fresh one.
inline std::unique_ptr<TForm> Restored(const std::string& bytes) {
    RegisterAll();
    auto form = std::make_unique<TForm>(nullptr);
    TViewStream stream(bytes);
    ReadComponentFromStream(stream, form.get());
    return form;
}

template <class T>
T* Put(TWinControl* parent, int left, int top, int width, int height) {
    TComponent* owner = GetParentForm(parent);
    auto* control = new T(owner ? owner : parent);
    control->SetParent(parent);
    control->SetBounds(left, top, width, height);
    return control;
}

inline void Press(TWinControl* control, uint16_t key, TShiftState shift = {}) { control->ProcessKeyDown(key, shift); }
inline void Type(TWinControl* control, const std::string& text) {
    for (char c : text) control->ProcessKeyPress(c);
}

// Another resolution for as long as it lives.
class Resolution : public TextMetrics {
  public:
    explicit Resolution(int pixelsPerInch) : pixelsPerInch_(pixelsPerInch) { SetTextMetrics(this); }
    ~Resolution() override { SetTextMetrics(nullptr); }
    int PixelsPerInch() const override { return pixelsPerInch_; }

  private:
    int pixelsPerInch_;
};

}  // namespace control_test
