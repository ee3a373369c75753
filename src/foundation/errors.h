#pragma once

#include "platform/text/exceptions.h"

namespace vyn {

// The format version of application files, and the suffix of procedure-library file names.
constexpr int CT_VersioVyn = 54;
// The oldest format version that is still read.
constexpr int CT_VersioVynMinima = 51;

// The errors of the application object and of what stands above it. Each is raised through its class's one routine.
VYN_EXCEPTION(EVynError, Exception);
VYN_EXCEPTION(EFatalError, EVynError);        // a component cannot be made from its stream
VYN_EXCEPTION(EDissenyError, EVynError);      // while a form is designed; for hosts
VYN_EXCEPTION(EDataBaseVynError, EVynError);  // the database layer
VYN_EXCEPTION(EComponentsVyn, Exception);     // the component store
VYN_EXCEPTION(EProcedureVyn, Exception);      // the procedure registry

}  // namespace vyn
