#include "programs/host/custom_form.h"

#include "datasources/Uvyndatasources.h"
#include "events/Utvynsubcons.h"
#include "platform/controls/form_classes.h"
#include "platform/text/compare.h"
#include "programs/host/design_run.h"

namespace vyn {

const ClassInfo& TCustomFRM::StaticClass() {
    static const ClassInfo info =
        DefineForm<TCustomFRM, TForm>("TCustomFRM").Method("TancarClick", &TCustomFRM::TancarClick);
    return info;
}

TCustomFRM::TCustomFRM(TComponent* owner) : TForm(owner) {}

void TCustomFRM::WndProc(TMessage& message) {
    switch (message.Msg) {
        case VYN_COMPONENTCREATED:
            vynApp_ = reinterpret_cast<TVynApp*>(message.WParam);
            if (vynApp_) vynApp_->FreeNotification(this);
            break;
        case VYN_BEFORELOAD:
            idNode_ = static_cast<int>(message.WParam);
            component_ = *reinterpret_cast<const TComponentVyn*>(message.LParam);
            break;
        case VYN_AFTERLOAD:
            GiveNodeToComponents();
            if (!NodeLoaded()) message.Result = VYN_ABORT;
            break;
        case VYN_OPENED:
            NodeOpened();
            break;
        case VYN_SAVERESOURCES:
            CleanStored(*reinterpret_cast<TRecursosObjecte*>(message.LParam));
            break;
        case VYN_AFTERSAVE:
            component_ = *reinterpret_cast<const TComponentVyn*>(message.LParam);
            break;
        default:
            TForm::WndProc(message);
    }
}

void TCustomFRM::GiveNodeToComponents() {
    for (int i = 0; i < ComponentCount(); ++i) {
        if (auto* screens = ObjectCast<TSubConsultes>(Components(i))) {
            screens->SetMasterVynApp(vynApp_);
            screens->MasterIDNode = idNode_;
        } else if (auto* source = ObjectCast<TVynDataSource>(Components(i))) {
            if (source->IDNode() == 0) source->SetIDNode(idNode_);
            if (!source->VynApp()) source->SetVynApp(vynApp_);
        }
    }
}

bool TCustomFRM::IsShortCut(uint16_t key, TShiftState shift) {
    return DesignKey(*this, key, shift) || TForm::IsShortCut(key, shift);
}

void TCustomFRM::TancarClick(TObject*) { Close(); }

namespace custom_form_detail {

void DropNameless(TRecursosObjecte& resources) {
    std::erase_if(resources.Fills, [](const TRecursosObjecte& child) { return child.Name.empty(); });
    for (TRecursosObjecte& child : resources.Fills) DropNameless(child);
}

}  // namespace custom_form_detail

void TCustomFRM::CleanStored(TRecursosObjecte& resources) {
    custom_form_detail::DropNameless(resources);
    // Other screens that the form has opened are no part of it.
    for (int i = 0; i < ComponentCount(); ++i)
        if (ObjectCast<TCustomForm>(Components(i)))
            std::erase_if(resources.Fills,
                          [&](const TRecursosObjecte& child) { return SameText(child.Name, Components(i)->Name()); });
    // Data sources are given the form's own node each time: one stored form may stand for several nodes.
    for (int i = 0; i < ComponentCount(); ++i) {
        const auto* source = ObjectCast<TVynDataSource>(Components(i));
        if (!source || source->IDNode() != idNode_) continue;
        if (TRecursosObjecte* stored = ExisteixObjecte(&resources, source->Name(), TotElArbre))
            std::erase_if(stored->Propietats,
                          [](const TPropietatObjecte& each) { return SameText(each.Name, "IDNode"); });
    }
}

void TCustomFRM::DoClose(TCloseAction& action) {
    action = caFree;
    TForm::DoClose(action);
}

void TCustomFRM::Notification(TComponent* component, TOperation operation) {
    TForm::Notification(component, operation);
    if (operation == opRemove && component == vynApp_) vynApp_ = nullptr;
}

}  // namespace vyn
