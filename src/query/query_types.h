#pragma once

#include <cstdint>

#include "platform/objects/event.h"
#include "platform/objects/type_info.h"
#include "platform/text/exceptions.h"

namespace vyn {

// What the query room's classes share. Enumerations are stored by name in forms: names and order stay.

VYN_EXCEPTION(EQuerySQL, Exception);

// The clauses of a statement.
enum class TCampsDeUnSQL { cSelect, cFrom, cWhere, cOrderBy, cGroup, cHaving };
using enum TCampsDeUnSQL;
using TSetCampsDeUnSQL = Set<TCampsDeUnSQL>;
const EnumType& TypeInfoOf(TypeTag<TCampsDeUnSQL>);

// Where the statement comes from.
enum class TSqlType {
    sql_byFields,   // it is composed from the query's parts
    sql_DirectText  // the dataset already holds it
};
using enum TSqlType;
const EnumType& TypeInfoOf(TypeTag<TSqlType>);

enum class TDataSetType {
    ds_Query,
    ds_Table  // the dataset is a table, and FromSQL its name
};
using enum TDataSetType;
const EnumType& TypeInfoOf(TypeTag<TDataSetType>);

// Which message an error is shown with; queries only store it, for those who show errors.
enum class TErrorQuery { TErrorDefecte, TErrorEspecific, TErrorCombinat };
using enum TErrorQuery;
const EnumType& TypeInfoOf(TypeTag<TErrorQuery>);

// The clause that a filter belongs to.
enum class TTipusFiltre { tfWhere, tfHaving };
using enum TTipusFiltre;
const EnumType& TypeInfoOf(TypeTag<TTipusFiltre>);

enum class TConcatFiltresType { Concat_AND, Concat_OR };
using enum TConcatFiltresType;
const EnumType& TypeInfoOf(TypeTag<TConcatFiltresType>);

// The mark around parameter functions in SQL and parameter names in formats.
constexpr char CT_ParametreMark = '\xA1';

}  // namespace vyn
