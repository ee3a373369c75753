#include "programs/host/grid_form.h"

#include "platform/controls/form_classes.h"

namespace vyn {

const ClassInfo& TFRMDBGrid::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMDBGrid, TFRMSQLGeneric>("TFRMDBGrid");
    return info;
}

const ClassInfo& TFRMDBGridTotals::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMDBGridTotals, TFRMDBGrid>("TFRMDBGridTotals");
    return info;
}

const ClassInfo& TFRMDBGridMD::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMDBGridMD, TFRMDBGrid>("TFRMDBGridMD");
    return info;
}

}  // namespace vyn
