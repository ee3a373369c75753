#pragma once

#include <string_view>

namespace vyn {

// Which parts a date literal has.
enum class DateLiteralParts { Date, Time, Both };
// Reads what stands between the marks: mm/dd/yyyy or yyyy-mm-dd, perhaps hh:nn[:ss[.zzz]] [AM|PM] with colons that may
// be doubled, or a time alone. A month beyond 12 is taken for the day.
bool ParseDateLiteral(std::string_view text, double& days, DateLiteralParts& parts);

}  // namespace vyn
