// The application file: what loads is saved, loads again and is saved to the same bytes; and it has a dump.

#include "programs/tools/application_model.h"
#include "programs/tools/dump.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzzing::Bytes(data, size);
    fuzzing::Succeeds([&] {
        vyn::TViewStream stream(bytes);
        vyn::DumpText(vyn::DumpStream(stream));
    });
    vyn::TMemoryStream saved;
    if (!fuzzing::Succeeds([&] {
            vyn::TViewStream stream(bytes);
            vyn::ApplicationModel model = vyn::LoadApplication(stream);
            vyn::SaveApplication(model, saved);
        }))
        return 0;
    saved.SetPosition(0);
    vyn::TMemoryStream savedAgain;
    if (!fuzzing::Succeeds([&] {
            vyn::ApplicationModel model = vyn::LoadApplication(saved);
            vyn::SaveApplication(model, savedAgain);
        }))
        return 0;
    fuzzing::Require(savedAgain.Bytes() == saved.Bytes(), "a saved application loads to the same bytes");
    return 0;
}
