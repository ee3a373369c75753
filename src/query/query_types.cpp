#include "query/query_types.h"

namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TCampsDeUnSQL>) {
    static const EnumType info("TCampsDeUnSQL", {"cSelect", "cFrom", "cWhere", "cOrderBy", "cGroup", "cHaving"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TSqlType>) {
    static const EnumType info("TSqlType", {"sql_byFields", "sql_DirectText"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TDataSetType>) {
    static const EnumType info("TDataSetType", {"ds_Query", "ds_Table"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TErrorQuery>) {
    static const EnumType info("TErrorQuery", {"TErrorDefecte", "TErrorEspecific", "TErrorCombinat"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TTipusFiltre>) {
    static const EnumType info("TTipusFiltre", {"tfWhere", "tfHaving"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TConcatFiltresType>) {
    static const EnumType info("TConcatFiltresType", {"Concat_AND", "Concat_OR"});
    return info;
}

}  // namespace vyn
