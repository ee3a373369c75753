#pragma once

#include "datasources/messages.h"
#include "platform/controls/image_lists.h"
#include "platform/data/data_source.h"
#include "platform/objects/strings.h"

namespace vyn {

class TThread;
class TVynComponentList;
class TVynDataLink;
class TVynDataSource;

using TNotifyVynDataLinkAutoSearched =
    Event<void(TVynDataLink* Sender, const AnsiString& SearchedValue, const AnsiString& FoundValue)>;
using TNotifyVynDataLink = Event<void(TVynDataLink* Sender)>;

// A control's link to one value: a field, or a value looked up in another component of the application. What is stored
// is the looked-up component's ChildDataKey, what is shown its ChildDataShow. Without a field the value is kept in the
// record that the links of one lookup share. Belongs to its control. Main thread only.
class TVynDataLink : public TFieldDataLink {
  public:
    TVynDataLink();
    ~TVynDataLink() override;

    // What is looked up where; a change moves the link to another record and shows the value anew.
    int32_t NChild() const { return nChild_; }
    void SetNChild(int32_t value);
    const AnsiString& ChildDataKey() const { return childDataKey_; }
    void SetChildDataKey(const AnsiString& value);
    const AnsiString& ChildDataShow() const { return childDataShow_; }
    void SetChildDataShow(const AnsiString& value);
    const AnsiString& ChildClassName() const { return childClassName_; }
    void SetChildClassName(const AnsiString& value);
    TVynDataLinkType VynDataLinkType() const { return type_; }
    void SetVynDataLinkType(TVynDataLinkType value);
    // The key's name: ChildDataKey, or ChildDataShow when that is empty.
    const AnsiString& ChildDataKeyFieldName() const { return childDataKey_.empty() ? childDataShow_ : childDataKey_; }
    // What is shown differs from what is stored.
    bool NeedSynchronizeChild() const { return !childDataKey_.empty(); }

    // The data source when it is one of tree nodes, and its components; null otherwise.
    TVynDataSource* VynDataSource() const;
    TVynComponentList* ComponentList() const;
    // The state of the looked-up component; of a field, whether there is one.
    TVynComponentState VynComponentState() const;
    bool HasComponent() const;
    bool HasNeededComponent() const;
    bool GetChildParams(TStrings& names) const;
    // The picture of the control's button, or null.
    TImageList* GetImageList() const;

    // The stored value.
    void GetFieldValue(Variant& value) const;
    // Edits the record, copies the related fields and runs what follows a new value.
    void SetFieldValue(const Variant& value);
    // The text of the value. A field that is being typed into gives it as it is edited.
    AnsiString GetDisplayText() const;
    // Takes what the user left in the control. For lookups the record that it begins is looked for and its key stored;
    // an empty text stores Null. With a ChildDataKey a text that begins nothing raises EDatabaseError and changes
    // nothing; without one any text is stored.
    void SetDisplayText(const AnsiString& text);
    AnsiString FieldEditMask() const;
    bool IsValidChar(char c) const;
    bool CanModify() const override;

    // Searching.
    // The user typed: looks for the text when no more was typed for so long.
    void ThreadSearchNewValue(uint32_t milliseconds, const AnsiString& text);
    // Whether a search waits on: until the deadline.
    virtual void ThreadWaitTime(TThread* thread, bool& wait, bool& terminate);
    // Takes the wait away and waits for the search of the link's record.
    void WaitUntilThreadFinished();
    // Why the value could not be looked up, or its component made; empty when nothing failed. And once more, if so.
    AnsiString Failure() const;
    void TryAgain();
    void NotifySearchedValue(const AnsiString& searched, const AnsiString& found);
    // The tick count at which the search begins; 0 for at once.
    uint32_t SearchDeadline() const { return deadline_; }
    // Opens the component's search screen on a text; what is chosen becomes the value.
    void ShowModalSearch(const AnsiString& text, bool modified, bool extra);

    // Lines "parameter>field": what is copied from the looked-up record into the dataset's with each new value.
    const TStringList& RelationedFields() const { return relationedFields_; }
    void SetRelationedFields(const TStrings* value);
    bool AutoRefresh = false;
    // The rule of the form that runs when a value was taken; its sender is the control.
    AnsiString ExecuteEventName;
    int32_t OrderNumber = -1;

    TNotifyVynDataLinkAutoSearched OnAutoSearched;
    TNotifyVynDataLink OnValuesChanged;
    TNotifyVynDataLink OnRecordChanged;

    void RecordChanged(TField* field) override;

  protected:
    void ActiveChanged() override;
    void EditingChanged() override;
    void UpdateData() override;

  private:
    // Registers with the component list and shows the value anew.
    void FollowSource();
    void SettingChanged();
    void SetDeadline(uint32_t value);
    void AssignRelationedFields();
    void ValueTaken(const Variant& value);
    bool ControlHasKeyboard() const;

    int32_t nChild_ = 0;
    AnsiString childDataKey_;
    AnsiString childDataShow_;
    AnsiString childClassName_;
    TVynDataLinkType type_ = dlt_Field;
    uint32_t deadline_ = 0;
    TStringList relationedFields_;
    TVynComponentList* registered_ = nullptr;  // which knows the link, while it lives
};

}  // namespace vyn
