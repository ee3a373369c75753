// An extension package with a class of its own, of which the program owns an instance.
#include "app/Utvynapp.h"
#include "platform/objects/class_info.h"
#include "platform/objects/class_table.h"
#include "platform/system/application.h"

namespace {

class TPackPart : public vyn::TComponent {
    VYN_OBJECT
  public:
    explicit TPackPart(vyn::TComponent* owner) : vyn::TComponent(owner) {}
};

const vyn::ClassInfo& TPackPart::StaticClass() {
    static const vyn::ClassInfo info = vyn::DefineClass<TPackPart, vyn::TComponent>("TPackPart");
    return info;
}

}  // namespace

extern "C" void InitializeVynBPL(vyn::TVynApp* app) {
    vyn::RegisterClass(&TPackPart::StaticClass());
    (new TPackPart(vyn::Application()))->SetName("PackPart1");
    app->SetAppName("initialized");
}
extern "C" void FinalizeVynBPL(vyn::TVynApp* app) { app->SetAppName("finalized"); }
