#pragma once

#include <memory>

#include "platform/controls/control.h"
#include "platform/objects/class_info.h"
#include "qt/widget_peer.h"

namespace vyn::qt {

// Which peer a control class has. A class without an entry has its nearest ancestor's; a later entry replaces an
// earlier one. Main thread only.
using PeerMaker = std::unique_ptr<WidgetPeer> (*)(TControl& control);
void RegisterPeer(TClass controlClass, PeerMaker maker);

template <class Peer>
std::unique_ptr<WidgetPeer> NewPeer(TControl& control) {
    return std::make_unique<Peer>(control);
}

// Registers the peers of this room and gives the factory, which lives as long as the process.
PeerFactory& StandardPeerFactory();

// Each file of peers registers its own.
void RegisterFormPeers();
void RegisterLabelPeers();
void RegisterEditPeers();
void RegisterEditBoxPeers();
void RegisterMemoPeers();
void RegisterButtonPeers();
void RegisterBitButtonPeers();
void RegisterGroupPeers();
void RegisterListPeers();
void RegisterComboPeers();
void RegisterPanelPeers();
void RegisterImagePeers();
void RegisterPagePeers();
void RegisterScrollBoxPeers();
void RegisterToolBarPeers();
void RegisterStatusBarPeers();
void RegisterTreePeers();
void RegisterGridPeers();
void RegisterDataControlPeers();
void RegisterLookupPeers();
void RegisterCtrlGridPeers();

}  // namespace vyn::qt
