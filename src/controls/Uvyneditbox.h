#pragma once

#include "controls/base_edit_box.h"
#include "datasources/Uvyndatasources.h"
#include "platform/controls/control_copies.h"

namespace vyn {

// An edit over one value: a field of the dataset, or a value that is looked up while the user types. The text is what
// the looked-up component shows, the value what it stores; the link between both is the box's own (data_link.h).
//
// Typing. After a pause the text is looked for, and what was found is completed behind what was typed, selected: typing
// on replaces it. Only characters that are typed, or come from an input method, make a search: not Backspace, not what
// is pasted or dropped. The keyboard stays with the user meanwhile: a search that his typing began neither makes the
// box read-only nor takes its text, although the component is not available until it ends. In the middle of a text
// that an input method composes nothing is completed, nor when the caret is not at the end.
//
// Keys. F2 opens the search screen, as the button does. Escape takes back what was typed; when nothing was, it is the
// form's. A box that is read-only drops every character, the control characters of copying among them (Ctrl+Insert and
// the menu copy).
//
// Leaving. What was typed is looked for and its key stored. A text that is not found raises when there is a key to be
// found, and then the keyboard stays; without ChildDataKey any text is taken.
//
// In a control grid the copies in other records' panels show plain fields; what is looked up they leave empty.
//
// Failing. A search that fails is told once, leaves what is typed as it is, and stands in the button's hint until one
// succeeds; it is not repeated for each letter that is typed behind it. The record's own value is shown as none then.
// Entering the box, and Escape, try it again.
//
// While the component is not there (being made, or a search of somebody else's running) the box is empty and read-only;
// a key that comes while the record's own value is looked up waits until it is there.
// Main thread only.
class TVynEditBox : public TBaseVynEditBox, public CopyOverPlainSource {
    VYN_OBJECT
  public:
    explicit TVynEditBox(TComponent* owner);
    ~TVynEditBox() override;

    // What is shown: kept in the link.
    const AnsiString& DataField() const { return link_->FieldName(); }
    void SetDataField(const AnsiString& value) { link_->SetFieldName(value); }
    TVynDataSource* VynDataSource() const { return link_->VynDataSource(); }
    void SetVynDataSource(TVynDataSource* value);
    TVynDataLinkType DataLinkType() const { return link_->VynDataLinkType(); }
    void SetDataLinkType(TVynDataLinkType value) { link_->SetVynDataLinkType(value); }
    int32_t NChild() const { return link_->NChild(); }
    void SetNChild(int32_t value) { link_->SetNChild(value); }
    const AnsiString& ChildDataKey() const { return link_->ChildDataKey(); }
    void SetChildDataKey(const AnsiString& value) { link_->SetChildDataKey(value); }
    const AnsiString& ChildClassName() const { return link_->ChildClassName(); }
    void SetChildClassName(const AnsiString& value) { link_->SetChildClassName(value); }
    const AnsiString& ChildDataShow() const { return link_->ChildDataShow(); }
    void SetChildDataShow(const AnsiString& value) { link_->SetChildDataShow(value); }
    bool AutoRefresh() const { return link_->AutoRefresh; }
    void SetAutoRefresh(bool value) { link_->AutoRefresh = value; }
    const AnsiString& ExecuteEventName() const { return link_->ExecuteEventName; }
    void SetExecuteEventName(const AnsiString& value) { link_->ExecuteEventName = value; }
    int32_t OrderNumber() const { return link_->OrderNumber; }
    void SetOrderNumber(int32_t value) { link_->OrderNumber = value; }
    TStrings* RelationedFields() { return &relationedFields_; }
    void SetRelationedFields(TStrings* value);
    bool AreRelationedFieldsStored() const { return relationedFields_.Count() > 0; }
    // The value as it is stored in the record. Never part of a stored form.
    Variant FieldValue() const;
    void SetFieldValue(const Variant& value) { link_->SetFieldValue(value); }
    bool IsFieldValueStored() const { return false; }

    // How it is typed into.
    bool AutoSearch() const { return autoSearch_; }
    void SetAutoSearch(bool value) { autoSearch_ = value; }
    uint32_t AutoSearchWaitMiliSeconds() const { return autoSearchWait_; }
    // Raises Exception "WaitMiliseconds must be < 10000" above 10000.
    void SetAutoSearchWaitMiliSeconds(uint32_t value);
    // Set by the form, whatever the value allows; and what comes of both.
    bool DataReadOnly() const { return dataReadOnly_; }
    bool ReadOnly() const override;
    void SetReadOnly(bool value) override;

    TVynDataLink& Link() const { return *link_; }
    TField* Field() const { return link_->Field(); }
    // Opens the search screen on the text, unless the box is read-only or being designed.
    void ShowModalSearch(bool modified, bool extra);
    // Follow what has become of the value; the button is there to be pressed when there is something to search in.
    void UpdateReadOnly();
    void UpdateButonEnabled();
    // The button's hint: the key, and why nothing could be looked up while that is so.
    void UpdateButtonHint();

    void ButtonClick() override;
    const TCustomImageList* ButtonImages() const override { return link_ ? link_->GetImageList() : nullptr; }
    bool IsTextStored() const override { return false; }
    bool IsMaxLengthStored() const override { return !maxLengthOfField_; }
    void SetMaxLength(int value) override;
    int MostCharacters() const override { return IsMasked() ? 0 : MaxLength(); }
    // Takes back what was typed.
    void Reset() override;
    void Change() override;
    void ProcessTextEdit(const AnsiString& text, int selStart, int selLength) override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;
    void TakeCopySource(TDataSource* source) override;

  protected:
    bool BeginChange() override;
    void Notification(TComponent* component, TOperation operation) override;

  private:
    // The link's events.
    void DataChange();
    void UpdateData();
    void FollowSource(TDataSource* source);
    void RecordChanged();
    void ValuesChanged();
    void AutoSearched(const AnsiString& searched, const AnsiString& found);

    void WaitForOwnValue();
    void TakeFieldLimits();
    void ShowText();
    // What the user has typed here was neither taken nor taken back, and its record is still being edited.
    bool BeingTyped() const { return (typingSearch_ || Modified()) && (!Field() || link_->FieldEditing()); }

    std::unique_ptr<TVynDataLink> link_;
    TStringList relationedFields_;
    const TField* lastField_ = nullptr;  // only compared
    uint32_t autoSearchWait_ = 1000;
    bool autoSearch_ = false;
    bool dataReadOnly_ = false;
    bool typedCharacter_ = false;
    bool typingSearch_ = false;
    bool updatingText_ = false;
    bool maxLengthOfField_ = false;
};

}  // namespace vyn
