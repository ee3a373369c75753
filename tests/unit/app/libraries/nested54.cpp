// A library whose entry tries to register another library.
#include "app/Utvynapp.h"

namespace {

void Loaded(vyn::TObject*) {}

}  // namespace

extern "C" void REGISTER_LIBRARY(vyn::TProcedureVyn* registry) {
    const bool nested = registry->RegisterDLL(APP_LIBRARIES, "util.dll");
    registry->RegisterProcedure(nested ? "NestedWasLoaded" : "NestedWasRefused", Loaded);
}
