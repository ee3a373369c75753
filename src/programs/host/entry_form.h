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

    // Shows the screen modally to add one record, which begins with a text in a field (where there is such a field, and
    // the text suits it); true when it was saved, and is the current one. Refused with a sentence while the screen is
    // shown already, or edits something.
    bool AddModally(const AnsiString& fieldName, const AnsiString& text);

  protected:
    bool NodeLoaded() override;
    void DoShow() override;
    void DoClose(TCloseAction& action) override;
    bool CanAddRecord() const override;
    bool AddRecord(const AnsiString& fieldName, const AnsiString& text) override { return AddModally(fieldName, text); }
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
    // Gives the keyboard to the card's first control; to the control of a field.
    void FocusCard();
    void FocusField(const AnsiString& name);

    // Saves what is being edited; a screen that adds one record ends with it.
    bool SaveOrTell();

    // Others changed what is being edited.
    bool outdated_ = false;
    // The screen adds one record, and has done so.
    bool adding_ = false;
    bool added_ = false;
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
