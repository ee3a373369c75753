#pragma once

#include "app/Utvynapp.h"
#include "platform/controls/pictures.h"
#include "platform/objects/collection.h"

namespace vyn {

class TSubConsultes;
class TVynSubConsItem;

// Where a child screen is shown. Stored by name.
enum class TVynSubConsShowType { vynsct_Auto, vynsct_sBottom, vynsct_sRight, vynsct_OnTop };
using enum TVynSubConsShowType;
const EnumType& TypeInfoOf(TypeTag<TVynSubConsShowType>);

// What a child screen's width is measured in; for hosts.
enum class TVynSubConsWidthType { sbwt_Pixels, sbwt_Percent };
using enum TVynSubConsWidthType;
const EnumType& TypeInfoOf(TypeTag<TVynSubConsWidthType>);

using TNotifyComponentVynSubCons = Event<void(TVynSubConsItem* Sender, TComponent* Component)>;

// One child screen, below the form's own node. Settings beyond ChildNode are for the host. Errors: see TSubConsultes.
class TVynSubConsItem : public TCollectionItem {
    VYN_OBJECT
  public:
    explicit TVynSubConsItem(TCollection* collection) : TCollectionItem(collection) {}

    // The child's component: opened when it is first asked for, and again when it has gone. A child that cannot be
    // opened, or goes while it is announced, is an error.
    TComponent* CaptureComponent();
    bool GetHasComponent() const { return component_ != nullptr; }
    // What was captured, or null.
    TComponent* Component() const { return component_; }
    // The number of the node to open: the child of that order key, as the tree shows it; -1 when there is none.
    int GetRealNode() const;
    AnsiString DisplayName() const override;
    // The settings; what was captured stays.
    void Assign(const TPersistent* source) override;

    int ChildNode = 0;  // the child's order key below the form's node
    TPicture* Image() { return &image_; }
    // Takes a copy; null is an error.
    void SetImage(TPicture* picture);
    AnsiString Caption;
    AnsiString Hint;
    AnsiString EventName;       // a rule to run (Ueventsvyn.h)
    AnsiString FieldNameOwner;  // a field of the form
    AnsiString FieldNameFill;   // a field of the child
    TVynSubConsShowType ShowType = vynsct_Auto;
    bool AutoAssignFields = false;
    TStrings* NewParamsValues() { return &newParamsValues_; }
    void SetNewParamsValues(TStrings* value) { newParamsValues_.Assign(value); }

  private:
    friend class TSubConsultes;
    TSubConsultes* Master() const;
    // Raises without an application object, too.
    TSubConsultes& RequireMaster() const;
    [[noreturn]] void Error(const AnsiString& message) const;

    TPicture image_;
    TStringList newParamsValues_;
    TComponent* component_ = nullptr;
};

class TVynSubConsCollection : public TOwnedCollection<TVynSubConsItem> {
  public:
    explicit TVynSubConsCollection(TSubConsultes* owner);
    TVynSubConsItem* GetItems(int index) const { return Items(index); }
    // Gives the item at a position another's settings.
    void SetItems(int index, const TVynSubConsItem& item) { Items(index)->Assign(&item); }
    int IndexOf(const TVynSubConsItem* item) const;
};

// The child screens of a form, which owns it: their list, and the old way of keeping settings, lines NAME=VALUE.
// Opens through the application object; forgets components and application when they go.
//
// The node that it belongs to is MasterIDNode where the host has set it, else the form's in the application's list of
// open components (where a form comes when it is opened whole).
//
// Errors are plain Exceptions "VYN ERROR IN " + class + "\n" + text. Main thread only.
class TSubConsultes : public TComponent {
    VYN_OBJECT
  public:
    // Raises "Owner must be a TForm" for any other owner, and for none.
    explicit TSubConsultes(TComponent* owner);
    ~TSubConsultes() override;

    // How many entries are shown so.
    int CountChilds(TVynSubConsShowType showType) const;
    // The first entry that captured the component, or -1.
    int FindComponentInChilds(const TComponent* component) const;
    // Whether ValorsSubconsultes keeps values for the sender: a line whose name is the sender's (the component's name,
    // or an entry's caption), letter case and blanks around it aside, with something after the "=".
    bool HasValorsAnticsSubConsultes(const TObject* sender) const;
    bool StoreSubCons() const { return subCons_.Count() > 0; }

    TVynApp* MasterVynApp() const { return masterVynApp_; }
    void SetMasterVynApp(TVynApp* app);
    int MasterIDNode = -1;
    // The number of the node that the sub-consultations belong to; -1 when it is not known.
    int GetMasterNode() const;
    void Notification(TComponent* component, TOperation operation) override;

    TStrings* ValorsSubconsultes() { return &valorsSubconsultes_; }
    void SetValorsSubconsultes(TStrings* value) { valorsSubconsultes_.Assign(value); }
    TCollection* SubCons() { return &subCons_; }
    void SetSubCons(TCollection* value) { subCons_.Assign(value); }
    TVynSubConsCollection& Items() { return subCons_; }
    TNotifyComponentVynSubCons OnCreatedComponent;

  private:
    TStringList valorsSubconsultes_;
    TVynSubConsCollection subCons_;
    TVynApp* masterVynApp_ = nullptr;
};

}  // namespace vyn
