#pragma once

#include "programs/host/query_form.h"

namespace vyn {

// A list of records: the rows of the form's dataset in its grid ("Graella"). Its stored form gives the statement, and
// the columns when they are not to be the statement's.
class TFRMDBGrid : public TFRMSQLGeneric {
    VYN_OBJECT
  public:
    explicit TFRMDBGrid(TComponent* owner) : TFRMSQLGeneric(owner) {}
};

// The rows of a totals query.
class TFRMDBGridTotals : public TFRMDBGrid {
    VYN_OBJECT
  public:
    explicit TFRMDBGridTotals(TComponent* owner) : TFRMDBGrid(owner) {}
};

// A list, and below it the rows ("ConsultaDetall" in "GraellaDetall") that belong to its current record.
class TFRMDBGridMD : public TFRMDBGrid {
    VYN_OBJECT
  public:
    explicit TFRMDBGridMD(TComponent* owner) : TFRMDBGrid(owner) {}
};

}  // namespace vyn
