#pragma once

#include "app/procedures_vyn.h"

namespace vyn {

// Procedures for the rules of every form; they work on the form that the calling component belongs to:
// "Desa_registres" posts what is being edited in its datasets, "Actualitza_consultes" refreshes its queries.
void RegisterRuleProcedures(TProcedureVyn& procedures);

}  // namespace vyn
