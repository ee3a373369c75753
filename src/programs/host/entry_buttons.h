#pragma once

#include <vector>

#include "app/Utvynapp.h"
#include "platform/controls/bit_buttons.h"

namespace vyn {

// Opens nodes for the forms that show them: the main window and the menu forms.
class NodeOpener {
  public:
    virtual ~NodeOpener() = default;
    // Opens a node and shows its window; errors reach the user as a message.
    virtual void OpenNode(int idNode) = 0;
};

// Set by the program; null while nothing is loaded.
void SetNodeOpener(NodeOpener* opener);
NodeOpener* GetNodeOpener();

// Whether opening the node gives something: a component or a procedure.
bool NodeOpens(const TNodeArbre& node);
// A caption in which "&" stands for itself.
AnsiString PlainCaption(const AnsiString& text);

// A column of buttons, one a node. Buttons are kept and shown again: the one that was clicked may be among them.
// The buttons are owned by the container's form; the container outlives this.
class EntryButtons {
  public:
    void Fill(TWinControl& container, const TArrayDeNodes& nodes, const TNotifyEvent& onClick);

  private:
    std::vector<TBitBtn*> buttons_;
};

}  // namespace vyn
