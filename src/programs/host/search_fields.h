#pragma once

#include <vector>

#include "platform/controls/db_grids.h"

namespace vyn {

// Which fields of a dataset the form's stored search fields (TCampsBuscar) name, in their order, each once. An entry
// names a field of the dataset, or a control that shows one; any other entry, and one whose control is not there, says
// nothing here. The settings of the entries are not looked at.
std::vector<AnsiString> SearchFieldsOf(const TComponent& form, const TDataSet& data);

// Puts the columns of these fields first, in their order, and makes those that are missing or hidden; the others
// follow as they were.
void ShowFirst(TCustomDBGrid& grid, const std::vector<AnsiString>& fieldNames);

}  // namespace vyn
