#pragma once

#include "platform/controls/menus.h"
#include "platform/controls/panels.h"
#include "platform/controls/status_bars.h"
#include "platform/controls/tree_views.h"
#include "programs/host/custom_form.h"
#include "programs/host/entry_buttons.h"

namespace vyn {

// The application's main window: the tree of its nodes, a menu built from the tree, and the entries of the chosen
// folder.
class TFRMtnAplicacio : public TCustomFRM {
    VYN_OBJECT
  public:
    explicit TFRMtnAplicacio(TComponent* owner) : TCustomFRM(owner) {}

    // Fills menu, tree and status bar from an application (the one that opened the form, when it was opened so).
    void ShowApplication(TVynApp* app);
    // The text of a panel of the status bar: who works, on which database.
    void SetStatus(int panel, const AnsiString& text);
    void WndProc(TMessage& message) override;

    // Methods that stored forms may name.
    void ArbreChange(TObject* Sender, TTreeNode* Node);
    void ArbreDblClick(TObject* Sender);
    void ArbreKeyDown(TObject* Sender, uint16_t& Key, TShiftState Shift);
    void ObrirClick(TObject* Sender);
    void SortirClick(TObject* Sender);
    void QuantAClick(TObject* Sender);
    void EntradaClick(TObject* Sender);

  protected:
    bool NodeLoaded() override;
    void CleanStored(TRecursosObjecte& resources) override;
    void DoClose(TCloseAction& action) override;

  private:
    void ShowDesignTime();
    void FillMenu();
    void FillMenuLevel(TMenuItem* parent, int idParent, int depth);
    void FillTree();
    void FillEntries(int idNode);
    template <class T>
    T* Part(const char* name) const {
        return ObjectCast<T>(FindComponent(name));
    }

    TVynApp* shown_ = nullptr;
    EntryButtons entries_;
};

}  // namespace vyn
