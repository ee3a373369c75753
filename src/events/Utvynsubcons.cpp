#include "events/Utvynsubcons.h"

#include "foundation/Ufuncionscomponentsvyn.h"
#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/objects/component_handle.h"
#include "platform/text/compare.h"

namespace vyn {

namespace sub_consultations_detail {

[[noreturn]] void Raise(const AnsiString& className, const AnsiString& message) {
    throw Exception("VYN ERROR IN " + className + "\n" + message);
}

}  // namespace sub_consultations_detail

VYN_ENUM_NAMES(TVynSubConsShowType, "vynsct_Auto", "vynsct_sBottom", "vynsct_sRight", "vynsct_OnTop")
VYN_ENUM_NAMES(TVynSubConsWidthType, "sbwt_Pixels", "sbwt_Percent")

const ClassInfo& TVynSubConsItem::StaticClass() {
    using Item = TVynSubConsItem;
    static const ClassInfo info = DefineClass<Item, TCollectionItem>("TVynSubConsItem")
                                      .Published("ChildNode", &Item::ChildNode, &Item::ChildNode)
                                      .Default(0)
                                      .Published("Image", &Item::Image, &Item::SetImage)
                                      .Published("Caption", &Item::Caption, &Item::Caption)
                                      .Published("Hint", &Item::Hint, &Item::Hint)
                                      .Published("EventName", &Item::EventName, &Item::EventName)
                                      .Published("FieldNameOwner", &Item::FieldNameOwner, &Item::FieldNameOwner)
                                      .Published("FieldNameFill", &Item::FieldNameFill, &Item::FieldNameFill)
                                      .Published("ShowType", &Item::ShowType, &Item::ShowType)
                                      .Default(vynsct_Auto)
                                      .Published("AutoAssignFields", &Item::AutoAssignFields, &Item::AutoAssignFields)
                                      .Default(false)
                                      .Published("NewParamsValues", &Item::NewParamsValues, &Item::SetNewParamsValues);
    return info;
}

void TVynSubConsItem::Error(const AnsiString& message) const { sub_consultations_detail::Raise(ClassName(), message); }

TSubConsultes* TVynSubConsItem::Master() const {
    return Collection() ? ObjectCast<TSubConsultes>(Collection()->GetOwner()) : nullptr;
}

AnsiString TVynSubConsItem::DisplayName() const { return Caption.empty() ? TCollectionItem::DisplayName() : Caption; }

void TVynSubConsItem::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TVynSubConsItem>(source);
    if (!other) {
        TCollectionItem::Assign(source);
        return;
    }
    ChildNode = other->ChildNode;
    image_.Assign(&other->image_);
    Caption = other->Caption;
    Hint = other->Hint;
    EventName = other->EventName;
    FieldNameOwner = other->FieldNameOwner;
    FieldNameFill = other->FieldNameFill;
    ShowType = other->ShowType;
    AutoAssignFields = other->AutoAssignFields;
    newParamsValues_.Assign(&other->newParamsValues_);
}

void TVynSubConsItem::SetImage(TPicture* picture) {
    if (!picture) Error("Picture cannot be NIL");
    image_.Assign(picture);
}

TSubConsultes& TVynSubConsItem::RequireMaster() const {
    TSubConsultes* master = Master();
    if (!master || !master->MasterVynApp()) Error("MasterVynApp of TVynSubCons=Nil");
    return *master;
}

int TVynSubConsItem::GetRealNode() const {
    const TSubConsultes& master = RequireMaster();
    const int node = master.GetMasterNode();
    // A number below 1 would stand for the topmost nodes.
    return node < 1 ? -1 : master.MasterVynApp()->Tree().Child(node, ChildNode).IDNode;
}

TComponent* TVynSubConsItem::CaptureComponent() {
    if (!component_) {
        TSubConsultes& master = RequireMaster();
        const int handle = master.Handle();
        // Opening and announcing run the application's own rules: what goes meanwhile is not touched again.
        const auto stillHere = [&] { return ComponentFromHandle(handle) && master.Items().IndexOf(this) >= 0; };
        TComponent* opened = master.MasterVynApp()->ObreComponent(GetRealNode(), master.Owner());
        if (!stillHere()) Abort();
        component_ = opened;
        if (component_) component_->FreeNotification(&master);
        const TNotifyComponentVynSubCons announce = master.OnCreatedComponent;
        announce(this, component_);
        if (!stillHere()) Abort();
    }
    if (!component_) Error("Component = NIL");
    return component_;
}

TVynSubConsCollection::TVynSubConsCollection(TSubConsultes* owner) : TOwnedCollection(owner) {
    PropertyName = "SubCons";
}

int TVynSubConsCollection::IndexOf(const TVynSubConsItem* item) const {
    for (int i = 0; i < Count(); ++i)
        if (Items(i) == item) return i;
    return -1;
}

const ClassInfo& TSubConsultes::StaticClass() {
    static const ClassInfo info =
        DefineClass<TSubConsultes, TComponent>("TSubConsultes")
            .Published("ValorsSubconsultes", &TSubConsultes::ValorsSubconsultes, &TSubConsultes::SetValorsSubconsultes)
            .Published("SubCons", &TSubConsultes::SubCons, &TSubConsultes::SetSubCons)
            .Stored(&TSubConsultes::StoreSubCons)
            .Event("OnCreatedComponent", &TSubConsultes::OnCreatedComponent);
    return info;
}

TSubConsultes::TSubConsultes(TComponent* owner) : TComponent(owner), subCons_(this) {
    if (!ObjectCast<TForm>(owner)) sub_consultations_detail::Raise("TSubConsultes", "Owner must be a TForm");
}

TSubConsultes::~TSubConsultes() { BeginDestruction(); }

int TSubConsultes::CountChilds(TVynSubConsShowType showType) const {
    int count = 0;
    for (int i = 0; i < subCons_.Count(); ++i) count += subCons_.Items(i)->ShowType == showType;
    return count;
}

int TSubConsultes::FindComponentInChilds(const TComponent* component) const {
    for (int i = 0; component && i < subCons_.Count(); ++i)
        if (subCons_.Items(i)->Component() == component) return i;
    return -1;
}

bool TSubConsultes::HasValorsAnticsSubConsultes(const TObject* sender) const {
    AnsiString name;
    if (const auto* item = ObjectCast<TVynSubConsItem>(sender))
        name = item->Caption;
    else if (const auto* component = ObjectCast<TComponent>(sender))
        name = component->Name();
    if (name.empty()) return false;
    for (int i = 0; i < valorsSubconsultes_.Count(); ++i) {
        AnsiString key, value;
        if (PartsIgualtat(valorsSubconsultes_.At(i), key, value) && AnsiSameText(key, name)) return !value.empty();
    }
    return false;
}

int TSubConsultes::GetMasterNode() const {
    if (MasterIDNode >= 1 || !masterVynApp_) return MasterIDNode;
    const int at = masterVynApp_->NodesList().IndexOf(Owner());
    return at < 0 ? -1 : masterVynApp_->NodesList().GetItem(at).IDNode;
}

void TSubConsultes::SetMasterVynApp(TVynApp* app) {
    masterVynApp_ = app;
    if (app) app->FreeNotification(this);
}

void TSubConsultes::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == masterVynApp_) masterVynApp_ = nullptr;
    for (int i = 0; i < subCons_.Count(); ++i)
        if (subCons_.Items(i)->component_ == component) subCons_.Items(i)->component_ = nullptr;
}

}  // namespace vyn
