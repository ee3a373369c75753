#pragma once

#include "app/Utvynapp.h"
#include "platform/controls/forms.h"

namespace vyn {

// The host's form of a tree node, and the ancestor of every other form class of the host. Hears from the application
// object which node it was opened for, and goes when it is closed.
class TCustomFRM : public TForm {
    VYN_OBJECT
  public:
    explicit TCustomFRM(TComponent* owner);

    TVynApp* VynApp() const { return vynApp_; }
    int IDNode() const { return idNode_; }
    // The stored component that the form came from; IDComponent is -1 before it is stored.
    const TComponentVyn& Component() const { return component_; }

    void WndProc(TMessage& message) override;
    bool IsShortCut(uint16_t key, TShiftState shift) override;

    // Methods that every stored form may name.
    void TancarClick(TObject* Sender);

  protected:
    // The resources are in place and the form is about to be shown; a form may refuse with false.
    virtual bool NodeLoaded() { return true; }
    // The form was opened, or asked for again while it is open: perhaps for a lookup, which shows nothing and leaves
    // the keyboard where it is. Who opens it for the user shows it.
    virtual void NodeOpened() {}
    // The resources are about to be stored: takes out what the form fills in by itself at run time. The inherited
    // operation takes out components without a name, which no stored form has.
    virtual void CleanStored(TRecursosObjecte& resources);
    void DoClose(TCloseAction& action) override;
    void Notification(TComponent* component, TOperation operation) override;

  private:
    // The form's child screens, and those that its data sources look values up in, hang below its node, which the list
    // of open components has only when all is done. What the form stores itself stays.
    void GiveNodeToComponents();

    TVynApp* vynApp_ = nullptr;
    int idNode_ = -1;
    TComponentVyn component_{-1, 0, {}};
};

// Links and registers the host's form classes: those of the node types.
void RegisterHostForms();

}  // namespace vyn
