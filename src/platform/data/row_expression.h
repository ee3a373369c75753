#pragma once

#include <functional>
#include <memory>

#include "platform/objects/type_info.h"
#include "platform/values/variant.h"

namespace vyn {

class TField;

// How texts are compared in filters.
enum class TFilterOption {
    foCaseInsensitive,   // whatever the letters' case
    foNoPartialCompare,  // a star at the end of a text is a star, and stands for nothing
};
using enum TFilterOption;
using TFilterOptions = Set<TFilterOption>;
const EnumType& TypeInfoOf(TypeTag<TFilterOption>);

// An expression over the fields of the current record, as filters, constraints and default values are written.
//
// Values: numbers, 'texts', #dates# (month first, or year first), TRUE, FALSE, NULL, fields by name or [name], and
// UPPER, LOWER, TRIM, LENGTH, SUBSTRING(text, from[, length]), ABS, ROUND(number[, decimals]), YEAR, MONTH, DAY, HOUR,
// MINUTE, SECOND, NOW, DATE, TIME. Operators, from the weakest: OR; AND; NOT; = <> < > <= >=, [NOT] LIKE, [NOT] IN
// (...), [NOT] BETWEEN ... AND ..., IS [NOT] NULL; + - &; * /. In LIKE % and * stand for any characters, _ and ? for
// one; = knows a star at the end of a text. What is compared with null is unknown, and what is unknown is not taken;
// = NULL and <> NULL ask for nothing, and something.
//
// Errors of the text raise EDatabaseError with the place at fault. Main thread only.
class RowExpression {
  public:
    // Gives the field of a name, or null where there is none.
    using FieldFinder = std::function<const TField*(const AnsiString& name)>;

    RowExpression(const AnsiString& text, const FieldFinder& fields, TFilterOptions options = {});
    ~RowExpression();
    RowExpression(RowExpression&&) noexcept;
    RowExpression& operator=(RowExpression&&) noexcept;

    // For the record that fields give the values of. Raises EDatabaseError for what cannot be calculated.
    Variant Value() const;
    // Unknown is not true.
    bool IsTrue() const;

    struct Node;

  private:
    std::unique_ptr<Node> root_;
};

}  // namespace vyn
