#pragma once

#include "programs/host/grid_form.h"

namespace vyn {

// A list of records and beside it the card ("Fitxa") of the current one, whose controls edit it; below the card the
// buttons that begin, save, take back and delete a record. What goes wrong stands in the form's "Missatge" until the
// next attempt, in the words of the host, and what was typed stays. A form with changes asks before it closes.
//
// Opens the datasets of the form that have a table or statement: lists to choose from first, then "Consulta".
class TFRMDBEntradaDades : public TFRMDBGrid {
    VYN_OBJECT
  public:
    explicit TFRMDBEntradaDades(TComponent* owner) : TFRMDBGrid(owner) {}

    void FontStateChange(TObject* Sender);
    void NouClick(TObject* Sender);
    void DesarClick(TObject* Sender);
    void CancelarClick(TObject* Sender);
    void EliminarClick(TObject* Sender);

    bool CloseQuery() override;

  protected:
    bool NodeLoaded() override;
    // The datasets that are edited, the one that the others belong to first.
    virtual std::vector<TDataSet*> Edited() const;
    // Does something; gives false and says why when it fails.
    bool Try(const std::function<void()>& action);
    // Writes what is being edited. What is required is asked for here, by the field's label, and its control gets the
    // keyboard.
    void Save();

  private:
    void ShowMessageText(const AnsiString& text);
    void EnableButtons();
    // Gives the keyboard to the control of a field.
    void FocusField(const AnsiString& name);

    // Others changed what is being edited.
    bool outdated_ = false;
};

// The same with the rows that belong to the current record ("ConsultaDetall" in "GraellaDetall"), and controls for one
// of them. A row begins when its record is saved.
class TFRMDBEntradaDadesMD : public TFRMDBEntradaDades {
    VYN_OBJECT
  public:
    explicit TFRMDBEntradaDadesMD(TComponent* owner) : TFRMDBEntradaDades(owner) {}

    void NovaLiniaClick(TObject* Sender);
    void EliminarLiniaClick(TObject* Sender);

  protected:
    std::vector<TDataSet*> Edited() const override;
};

}  // namespace vyn
