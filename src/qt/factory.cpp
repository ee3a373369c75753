#include "qt/factory.h"

#include <QApplication>
#include <QCursor>
#include <unordered_map>

#include "qt/looks.h"
#include "qt/menus.h"

namespace vyn::qt {

namespace factory_detail {

std::unordered_map<const ClassInfo*, PeerMaker>& Makers() {
    static std::unordered_map<const ClassInfo*, PeerMaker> makers;
    return makers;
}

// What was found for a class, its ancestors' included.
std::unordered_map<const ClassInfo*, PeerMaker>& Found() {
    static std::unordered_map<const ClassInfo*, PeerMaker> found;
    return found;
}

PeerMaker FindMaker(TClass controlClass) {
    const auto known = Found().find(controlClass);
    if (known != Found().end()) return known->second;
    PeerMaker maker = nullptr;
    for (TClass at = controlClass; at && !maker; at = at->Parent()) {
        const auto entry = Makers().find(at);
        if (entry != Makers().end()) maker = entry->second;
    }
    Found().emplace(controlClass, maker);
    return maker;
}

class QtPeerFactory final : public PeerFactory {
  public:
    std::unique_ptr<ControlPeer> MakePeer(TControl& control) override {
        const PeerMaker maker = FindMaker(control.ClassType());
        if (!maker) return nullptr;
        std::unique_ptr<WidgetPeer> peer = maker(control);
        peer->Create();
        return peer;
    }

    void ShowPopupMenu(TPopupMenu& menu, TPoint at) override { qt::ShowPopupMenu(menu, at); }

    TPoint MousePosition() const override {
        const QPoint at = QCursor::pos();
        return {at.x(), at.y()};
    }

    void SetScreenCursor(int cursor) override {
        if (cursor == crDefault)
            QApplication::restoreOverrideCursor();
        else if (QApplication::overrideCursor())
            QApplication::changeOverrideCursor(ToQCursor(static_cast<TCursor>(cursor)));
        else
            QApplication::setOverrideCursor(ToQCursor(static_cast<TCursor>(cursor)));
    }
};

}  // namespace factory_detail

void RegisterPeer(TClass controlClass, PeerMaker maker) {
    factory_detail::Makers()[controlClass] = maker;
    factory_detail::Found().clear();
}

PeerFactory& StandardPeerFactory() {
    static factory_detail::QtPeerFactory factory;
    static const bool registered = [] {
        RegisterFormPeers();
        RegisterLabelPeers();
        RegisterEditPeers();
        RegisterEditBoxPeers();
        RegisterMemoPeers();
        RegisterButtonPeers();
        RegisterBitButtonPeers();
        RegisterGroupPeers();
        RegisterListPeers();
        RegisterComboPeers();
        RegisterPanelPeers();
        RegisterImagePeers();
        RegisterPagePeers();
        RegisterScrollBoxPeers();
        RegisterToolBarPeers();
        RegisterStatusBarPeers();
        RegisterTreePeers();
        RegisterGridPeers();
        RegisterDataControlPeers();
        RegisterLookupPeers();
        RegisterCtrlGridPeers();
        return true;
    }();
    static_cast<void>(registered);
    return factory;
}

}  // namespace vyn::qt
