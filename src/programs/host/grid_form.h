#pragma once

#include "platform/access/ado.h"
#include "programs/host/custom_form.h"

namespace vyn {

// A list of records: the rows of the form's query ("Consulta") in its grid ("Graella"). Its stored form gives the
// statement, and the columns when they are not to be the statement's.
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

  private:
    // Opens the query; what goes wrong is told in the status bar, and the window stays.
    void OpenQuery();
    void ShowStatus(const AnsiString& text);
    TCustomADODataSet* Query() const;
};

}  // namespace vyn
