// A procedure library: two procedures, one of them with a help of the library's.
#include "app/Utvynapp.h"

namespace {

void Rename(vyn::TObject* object) { static_cast<vyn::TVynApp*>(object)->SetAppName("renamed by util"); }
void Nothing(vyn::TObject*) {}

}  // namespace

extern "C" void REGISTER_LIBRARY(vyn::TProcedureVyn* registry) {
    registry->RegisterProcedure("UtilRename", Rename);
    registry->RegisterProcedure("UtilNothing", "told at registration", Nothing);
}
extern "C" void HLPUtilRename(vyn::AnsiString* help) { *help = "renames the application"; }
extern "C" void HLPUtilNothing(vyn::AnsiString* help) { *help = "never asked for"; }
