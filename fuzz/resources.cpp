// The resource store: what loads is saved, and what was saved loads to the same bytes.

#include "persistence/Utrecursosvyn.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TViewStream stream(fuzzing::Bytes(data, size));
    vyn::TRecursosVyn store;
    if (!fuzzing::Succeeds([&] { store.LoadFromStream(stream); })) return 0;
    vyn::TMemoryStream saved;
    store.SaveToStream(saved, 0, -1);
    saved.SetPosition(0);
    vyn::TRecursosVyn again;
    again.LoadFromStream(saved);
    fuzzing::Require(again.Count() == store.Count(), "every resource that was loaded is saved");
    vyn::TMemoryStream savedAgain;
    again.SaveToStream(savedAgain, 0, -1);
    fuzzing::Require(savedAgain.Bytes() == saved.Bytes(), "a saved store loads to the same bytes");
    return 0;
}
