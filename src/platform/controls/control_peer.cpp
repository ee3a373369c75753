#include "platform/controls/control_peer.h"

namespace vyn {

namespace peer_detail {

PeerFactory* theFactory = nullptr;

}  // namespace peer_detail

void SetPeerFactory(PeerFactory* factory) { peer_detail::theFactory = factory; }
PeerFactory* GetPeerFactory() { return peer_detail::theFactory; }

}  // namespace vyn
