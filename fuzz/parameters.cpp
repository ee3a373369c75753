// The parameter set: what loads is saved and loads again, with the same names.

#include "foundation/Uparametres.h"
#include "platform/streams/stream.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TViewStream stream(fuzzing::Bytes(data, size));
    vyn::TParametres set(nullptr);
    if (!fuzzing::Succeeds([&] { set.LoadFromStream(&stream); })) return 0;
    vyn::TMemoryStream saved;
    set.SaveToStream(&saved);
    saved.SetPosition(0);
    vyn::TParametres again(nullptr);
    again.LoadFromStream(&saved);
    fuzzing::Require(again.Count(false) == set.Count(false), "every parameter that was loaded is saved");
    return 0;
}
