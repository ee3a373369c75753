#pragma once

#include <string>
#include <vector>

#include "platform/values/variant.h"

// The arguments NAME=VALUE of the program's commands: parameters that a user gives with a value of the type that it
// reads as.
//
//   123, -7                          integer (double beyond 32 bits)
//   1.5, -.5, 2E3                    double, "." whatever the locale
//   true, false                      boolean, in this spelling
//   2026-11-21, 2026-11-21T10:20:30  date
//   null                             null, in this spelling
//   'anything'                       string, without the quotes; '' inside stands for one
//   everything else                  string, as it stands
namespace vyn {

class TParametres;

struct NamedValue {
    AnsiString Name;
    Variant Value;
};

// Does the text have a name before a "="? What has none is wrong usage.
bool IsNamedValue(const std::string& utf8Text);

// Raises EConvertError for a text that is none, for a number out of every range, and for characters that Windows-1252
// lacks. The name is not checked further: the parameter set does that.
NamedValue ParseNamedValue(const std::string& utf8Text);

// Adds each to the set, the later ones over the earlier; raises EParametresError for a bad name.
void AddNamedValues(const std::vector<std::string>& utf8Texts, TParametres& set);

}  // namespace vyn
