// The component store: what loads is saved, and what was saved loads to the same bytes.

#include "app/components_vyn.h"
#include "persistence/Utrecursosvyn.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TViewStream stream(fuzzing::Bytes(data, size));
    vyn::TRecursosVyn recursos;
    vyn::TComponentsVyn store(&recursos);
    if (!fuzzing::Succeeds([&] { store.LoadFromStream(stream); })) return 0;
    vyn::TMemoryStream saved;
    store.SaveToStream(saved);
    saved.SetPosition(0);
    vyn::TComponentsVyn again(&recursos);
    again.LoadFromStream(saved);
    fuzzing::Require(again.Count() == store.Count(), "every component that was loaded is saved");
    vyn::TMemoryStream savedAgain;
    again.SaveToStream(savedAgain);
    fuzzing::Require(savedAgain.Bytes() == saved.Bytes(), "a saved store loads to the same bytes");
    return 0;
}
