#include "programs/host/entry_buttons.h"

#include "platform/controls/forms.h"

namespace vyn {

namespace entries_detail {

constexpr int kHeight = 32;
constexpr int kGap = 6;
constexpr int kMargin = 12;
constexpr int kWidth = 320;

NodeOpener*& Opener() {
    static NodeOpener* opener = nullptr;
    return opener;
}

}  // namespace entries_detail

void SetNodeOpener(NodeOpener* opener) { entries_detail::Opener() = opener; }
NodeOpener* GetNodeOpener() { return entries_detail::Opener(); }

bool NodeOpens(const TNodeArbre& node) {
    return (node.IDComponent > 0 || node.NodeType == NodeTypeProcedure) && node.NodeType > 0 &&
           node.NodeType != NodeTypeShortcut && !NodeTypeIsTransparent(node.NodeType);
}

AnsiString PlainCaption(const AnsiString& text) {
    AnsiString caption;
    for (char c : text) {
        caption += c;
        if (c == '&') caption += c;
    }
    return caption;
}

void EntryButtons::Fill(TWinControl& container, const TArrayDeNodes& nodes, const TNotifyEvent& onClick) {
    using namespace entries_detail;
    container.DisableAlign();
    while (buttons_.size() < nodes.size()) {
        auto* button = new TBitBtn(GetParentForm(&container));
        button->SetBounds(kMargin, kMargin + static_cast<int>(buttons_.size()) * (kHeight + kGap), kWidth, kHeight);
        button->OnClick = onClick;
        button->SetParent(&container);
        buttons_.push_back(button);
    }
    for (size_t i = 0; i < buttons_.size(); ++i) {
        const bool used = i < nodes.size();
        buttons_[i]->SetVisible(used);
        if (!used) continue;
        buttons_[i]->SetCaption(PlainCaption(nodes[i].Name));
        buttons_[i]->Tag = nodes[i].IDNode;
    }
    container.EnableAlign();
}

}  // namespace vyn
