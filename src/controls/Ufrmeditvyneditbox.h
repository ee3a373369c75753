#pragma once

#include "controls/Uvyneditbox.h"
#include "platform/controls/forms.h"

namespace vyn {

// The dialog in which an application builder sets a lookup box up. Each change is written to the box at once; there is
// nothing to confirm or to cancel, the dialog only closes. Its lists follow what is chosen: the fields of the data
// source, the children of its node, the values of what is looked up.
//
// Its parts are those of its compiled form (edit_box_editor_form.cpp), by name. The platform's classes must be
// registered, as an application object does. Main thread only.
class TFRMeditVynEditBox : public TForm {
    VYN_OBJECT
  public:
    explicit TFRMeditVynEditBox(TComponent* owner) : TForm(owner) {}

    // The box that is edited, or null; forgotten when it goes, and then nothing more is written.
    TVynEditBox* Edit_EditBox() const { return editBox_; }
    void SetEdit_EditBox(TVynEditBox* box);

    // Handlers of the parts.
    void cbDataSourceChange(TObject* Sender);
    void cbFieldNameChange(TObject* Sender);
    void cbDataLinkTypeChange(TObject* Sender);
    void cbNChildChange(TObject* Sender);
    void cbClassNameChange(TObject* Sender);
    void cbChildDataKeyChange(TObject* Sender);
    void cbChildDataShowChange(TObject* Sender);
    void cbAutoSearchClick(TObject* Sender);
    void cbAutoRefreshClick(TObject* Sender);
    void cbShowButtonClick(TObject* Sender);
    void cbReadOnlyClick(TObject* Sender);
    void ebExecuteEventNameChange(TObject* Sender);
    void memoAutoAssignChange(TObject* Sender);
    // The box refuses a wait that is too long, and the keyboard stays.
    void cbAutoSearchMilisecondsExit(TObject* Sender);
    // Fill the list that opens with the names of the values of what is looked up, which is opened for it.
    void cbChildDataKeyDropDown(TObject* Sender);
    void bbAddAutoAssignClick(TObject* Sender);
    // Escape gives a wait that is still being typed up; any other way of closing takes it.
    void FormKeyPress(TObject* Sender, char& Key);
    bool CloseQuery() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    // Everything from the box.
    void InitValues();
    void FillParts();
    void InitDataSources();
    void InitVynDataLinkType();
    void InitNChild();
    void EnableAutoSearch();
    void ShowChildParams();
    // Both labels: the components that the data source's lookups use; and of the box's own, the boxes that share it,
    // "/", all boxes that look something up there. "-" without a data source, "(Sin)" without a component.
    void ShowGeneralInfo();
    bool TypesWait() const;
    // Whether a handler writes: not while the dialog fills itself, nor without a box.
    bool Writes() const { return editBox_ && !initializing_; }
    // Writes, then fills the lists that depend on it.
    void Write(const std::function<void(TVynEditBox& box)>& write);
    template <class T>
    T& Part(const char* name) const;

    TVynEditBox* editBox_ = nullptr;
    bool initializing_ = false;
};

// Shows the dialog for a box, modally.
void DoEdit_EditBox(TVynEditBox* box);

}  // namespace vyn
