#pragma once

namespace vyn {

// The program's version, as --version prints it: the build's own number.
extern const char* const CT_VersioPrograma;

}  // namespace vyn
