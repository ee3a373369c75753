#pragma once

#include <vector>

#include "platform/access/ado.h"
#include "programs/host/custom_form.h"

namespace vyn {

class TQuerySQL;

// A list of records: the rows of the form's dataset ("Consulta") in its grid ("Graella"). Its stored form gives the
// statement, and the columns when they are not to be the statement's; or queries (TQuerySQL) that compose statements,
// which are opened in the form's order, each for its own dataset.
class TFRMDBGrid : public TCustomFRM {
    VYN_OBJECT
  public:
    explicit TFRMDBGrid(TComponent* owner) : TCustomFRM(owner) {}
    ~TFRMDBGrid() override;

    void FontDataChange(TObject* Sender, TField* Field);
    void ActualitzarClick(TObject* Sender);

  protected:
    bool NodeLoaded() override;
    void CleanStored(TRecursosObjecte& resources) override;
    void ShowStatus(const AnsiString& text);

  private:
    // Opens what is to be seen; what goes wrong is told in the status bar, and the window stays.
    void OpenQueries();
    void OpenConsulta();
    std::vector<TQuerySQL*> Queries() const;
    TCustomADODataSet* Query() const;
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
