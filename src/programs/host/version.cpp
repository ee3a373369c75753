#include "programs/host/version.h"

namespace vyn {

const char* const CT_VersioPrograma = VYN_VERSION;

}  // namespace vyn
