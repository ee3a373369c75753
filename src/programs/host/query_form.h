#pragma once

#include <functional>
#include <vector>

#include "datasources/lookup_answers.h"
#include "platform/access/ado.h"
#include "programs/host/custom_form.h"
#include "programs/host/looked_up_record.h"

namespace vyn {

class TQuerySQL;

// A screen over queries: the form's dataset ("Consulta"), with a statement of its own, or queries (TQuerySQL) that
// compose statements, which are opened in the form's order, each for its own dataset.
//
// It answers lookups (datasources/messages.h) on its own window, shown or hidden:
// - Locate finds a record of the dataset by a field (looked_up_record.h) without going there, so that nothing is shown,
//   no rule runs, and a window that the user has open, and what he types there, stay as they are. First, Third and
//   WParam are not looked at. With Second the dataset is read again first (not while it is edited, nor when its records
//   are asked of the engine each time anyway).
// - Its values are the fields of the record found, by their names, and the form's parameters: what was written to it
//   under names that are no fields'. A value that is written under a field's name is located.
// - A modal search shows a search screen (search_form.h) over the same dataset, with the columns of the form's list
//   ("Graella") when it has one, also while the form itself is shown.
//   While the dataset is edited, or searched already, it is refused with a sentence.
// What goes wrong with the database while a record is located is raised, with the screen's name before it, and what
// could not be read to its end is read again when it is searched next; a search screen that cannot be shown for it
// says so itself. A field that there is not finds nothing, and stands in the status bar.
class TFRMSQLGeneric : public TCustomFRM, protected LookupAnswers {
    VYN_OBJECT
  public:
    explicit TFRMSQLGeneric(TComponent* owner) : TCustomFRM(owner) {}
    ~TFRMSQLGeneric() override;

    void WndProc(TMessage& message) override;

    // Methods that stored forms may name.
    void FontDataChange(TObject* Sender, TField* Field);
    void ActualitzarClick(TObject* Sender);

  protected:
    bool NodeLoaded() override;
    void CleanStored(TRecursosObjecte& resources) override;
    void ShowStatus(const AnsiString& text);
    TCustomADODataSet* Query() const;
    // The open dataset; raises when it does not open.
    TDataSet& RequireOpen();
    // Whether records can be added from a search screen.
    virtual bool CanAddRecord() const;
    // Has the user add a record that begins with a text in a field; true when it is there, and the current one.
    // Here: in the first entry screen below the form's node.
    virtual bool AddRecord(const AnsiString& fieldName, const AnsiString& text);

    // Lookups.
    bool LocateRecord(const TLocateStruct& wanted) override;
    bool ChooseRecord(const TLocateStruct& wanted) override;
    void ReadValues(TParametres& values) override;
    bool WriteValues(TParametres& values) override;
    AnsiString MaskOfValue(const AnsiString& name) override;

  private:
    // Opens what is to be seen; what goes wrong is told in the status bar, and the window stays.
    void ShowQueries();
    void OpenQueries();
    void OpenConsulta();
    bool Locate(const AnsiString& fieldName, const Variant& value);
    int EntryNode() const;
    bool Search(const TLocateStruct& wanted);
    AnsiString SearchFailure(const EDatabaseError& error) const;
    bool NamingFailures(const std::function<bool()>& search) const;
    std::vector<TQuerySQL*> Queries() const;

    LookedUpRecord record_;
    TParametres parameters_{nullptr};
    bool searching_ = false;
};

}  // namespace vyn
