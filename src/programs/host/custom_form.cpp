#include "programs/host/custom_form.h"

#include "events/Utvynsubcons.h"
#include "platform/controls/form_classes.h"

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
            GiveNodeToChildScreens();
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

void TCustomFRM::GiveNodeToChildScreens() {
    for (int i = 0; i < ComponentCount(); ++i) {
        auto* screens = ObjectCast<TSubConsultes>(Components(i));
        if (!screens) continue;
        screens->SetMasterVynApp(vynApp_);
        screens->MasterIDNode = idNode_;
    }
}

void TCustomFRM::TancarClick(TObject*) { Close(); }

void TCustomFRM::NodeOpened() {
    if (!Visible()) return;
    if (WindowState() == wsMinimized) SetWindowState(wsNormal);
    BringToFront();
    SetFocus();
}

void TCustomFRM::CleanStored(TRecursosObjecte& resources) {
    std::erase_if(resources.Fills, [](const TRecursosObjecte& child) { return child.Name.empty(); });
    for (TRecursosObjecte& child : resources.Fills) TCustomFRM::CleanStored(child);
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
