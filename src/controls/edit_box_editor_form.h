#pragma once

#include <string_view>

namespace vyn {

// The compiled form of the dialog that edits lookup boxes (Ufrmeditvyneditbox.h), as text.
std::string_view EditBoxEditorForm();

}  // namespace vyn
