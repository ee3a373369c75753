#include "programs/host/main_form.h"

#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/controls/scroll_boxes.h"
#include "platform/system/application.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace main_form_detail {

constexpr int kMenuDepth = 6;  // deeper nodes are reached through the tree
constexpr uint16_t kEnterKey = 13;
constexpr int kDesignPanel = 2;  // of the status bar

}  // namespace main_form_detail

const ClassInfo& TFRMtnAplicacio::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMtnAplicacio, TCustomFRM>("TFRMtnAplicacio")
                                      .Method("ArbreChange", &TFRMtnAplicacio::ArbreChange)
                                      .Method("ArbreDblClick", &TFRMtnAplicacio::ArbreDblClick)
                                      .Method("ArbreKeyDown", &TFRMtnAplicacio::ArbreKeyDown)
                                      .Method("ObrirClick", &TFRMtnAplicacio::ObrirClick)
                                      .Method("SortirClick", &TFRMtnAplicacio::SortirClick)
                                      .Method("QuantAClick", &TFRMtnAplicacio::QuantAClick)
                                      .Method("EntradaClick", &TFRMtnAplicacio::EntradaClick);
    return info;
}

bool TFRMtnAplicacio::NodeLoaded() {
    ShowApplication(VynApp());
    return true;
}

void TFRMtnAplicacio::ShowApplication(TVynApp* app) {
    shown_ = app;
    if (!app) return;
    if (!app->AppName().empty()) SetCaption(app->AppName());
    FillTree();
    FillMenu();
    ShowDesignTime();
}

void TFRMtnAplicacio::WndProc(TMessage& message) {
    TCustomFRM::WndProc(message);
    if (message.Msg == VYN_DESIGNTIMEON || message.Msg == VYN_DESIGNTIMEOFF) ShowDesignTime();
}

void TFRMtnAplicacio::ShowDesignTime() {
    SetStatus(main_form_detail::kDesignPanel, shown_ && shown_->DesignTime() ? "Disseny: Ctrl+F2" : "");
}

void TFRMtnAplicacio::CleanStored(TRecursosObjecte& resources) {
    TCustomFRM::CleanStored(resources);
    // The nodes shown, and the texts that follow them, come from the tree each time.
    const auto forget = [&](const char* part, const char* property) {
        if (TRecursosObjecte* object = ExisteixObjecte(&resources, part, TotElArbre))
            std::erase_if(object->Propietats,
                          [&](const TPropietatObjecte& each) { return SameText(each.Name, property); });
    };
    forget("Arbre", "Items.Data");
    forget("Titol", "Caption");
    forget("Estat", "Panels");
}

void TFRMtnAplicacio::DoClose(TCloseAction& action) {
    TCustomFRM::DoClose(action);
    // The program ends with its main window, which the program frees.
    if (Application()->MainForm() == this && action == caFree) action = caHide;
}

void TFRMtnAplicacio::SetStatus(int panel, const AnsiString& text) {
    auto* bar = Part<TStatusBar>("Estat");
    if (bar && panel < bar->Panels()->Count()) static_cast<TStatusPanel*>(bar->Panels()->Items(panel))->SetText(text);
}

void TFRMtnAplicacio::FillTree() {
    auto* view = Part<TTreeView>("Arbre");
    if (!view) return;
    TTreeVyn& tree = shown_->Tree();
    view->Items()->BeginUpdate();
    view->Items()->Clear();
    // Level by level, without recursion: trees may be deep.
    struct Branch {
        TTreeNode* item;
        int idNode;
    };
    std::vector<Branch> open = {{nullptr, tree.FirstIdNode()}};
    while (!open.empty()) {
        const Branch branch = open.back();
        open.pop_back();
        for (const TNodeArbre& node : tree.Childs(branch.idNode, false)) {
            TTreeNode* item = view->Items()->AddChildObject(branch.item, node.Name, node.IDNode);
            open.push_back({item, node.IDNode});
        }
    }
    view->Items()->EndUpdate();
    for (TTreeNode* top = view->Items()->GetFirstNode(); top; top = top->GetNextSibling()) top->Expand(false);
    if (view->Items()->Count() > 0) view->SetSelected(view->Items()->GetFirstNode());
}

void TFRMtnAplicacio::FillMenu() {
    auto* menu = Part<TMainMenu>("MenuPrincipal");
    if (!menu) return;
    // The nodes' menus stand before the form's own last one.
    int at = 0;
    for (const TNodeArbre& node : shown_->Tree().Childs(shown_->Tree().FirstIdNode(), false)) {
        auto* item = new TMenuItem(this);
        item->SetCaption("&" + PlainCaption(node.Name));
        item->Tag = node.IDNode;
        menu->Items()->Insert(at++, item);
        FillMenuLevel(item, node.IDNode, 1);
        if (item->Count() == 0) item->OnClick = [this](TObject* sender) { EntradaClick(sender); };
    }
}

void TFRMtnAplicacio::FillMenuLevel(TMenuItem* parent, int idParent, int depth) {
    if (depth > main_form_detail::kMenuDepth) return;
    for (const TNodeArbre& node : shown_->Tree().Childs(idParent, false)) {
        auto* item = new TMenuItem(this);
        item->SetCaption(PlainCaption(node.Name));
        item->Tag = node.IDNode;
        parent->Add(item);
        FillMenuLevel(item, node.IDNode, depth + 1);
        TMenuItem* entry = item;
        if (item->Count() > 0) {
            if (!NodeOpens(node)) continue;
            // A screen with others below it stands above them in its own menu.
            entry = new TMenuItem(this);
            entry->SetCaption(item->Caption());
            entry->Tag = node.IDNode;
            auto* line = new TMenuItem(this);
            line->SetCaption("-");
            item->Insert(0, entry);
            item->Insert(1, line);
        }
        entry->SetEnabled(NodeOpens(node));
        entry->OnClick = [this](TObject* sender) { EntradaClick(sender); };
    }
}

void TFRMtnAplicacio::FillEntries(int idNode) {
    auto* box = Part<TScrollBox>("Entrades");
    if (!box || !shown_) return;
    const TNodeArbre self = shown_->Tree().GetIDNode(idNode);
    if (auto* title = Part<TLabel>("Titol")) title->SetCaption(PlainCaption(self.Name));
    TArrayDeNodes nodes = shown_->Tree().Childs(idNode, false);
    if (NodeOpens(self)) nodes.insert(nodes.begin(), self);
    entries_.Fill(*box, nodes, [this](TObject* sender) { EntradaClick(sender); });
}

void TFRMtnAplicacio::ArbreChange(TObject*, TTreeNode* node) {
    if (node) FillEntries(static_cast<int>(node->Data));
}

void TFRMtnAplicacio::ArbreDblClick(TObject* sender) { ObrirClick(sender); }

void TFRMtnAplicacio::ArbreKeyDown(TObject* sender, uint16_t& key, TShiftState) {
    if (key != main_form_detail::kEnterKey) return;
    key = 0;
    ObrirClick(sender);
}

void TFRMtnAplicacio::ObrirClick(TObject*) {
    auto* view = Part<TTreeView>("Arbre");
    TTreeNode* chosen = view ? view->Selected() : nullptr;
    if (!chosen || !GetNodeOpener()) return;
    const int idNode = static_cast<int>(chosen->Data);
    if (NodeOpens(shown_->Tree().GetIDNode(idNode))) GetNodeOpener()->OpenNode(idNode);
}

void TFRMtnAplicacio::EntradaClick(TObject* sender) {
    auto* component = ObjectCast<TComponent>(sender);
    if (!component || !shown_ || !GetNodeOpener()) return;
    const int idNode = static_cast<int>(component->Tag);
    if (NodeOpens(shown_->Tree().GetIDNode(idNode))) {
        GetNodeOpener()->OpenNode(idNode);
        return;
    }
    // A folder: go there in the tree.
    if (auto* view = Part<TTreeView>("Arbre"))
        for (TTreeNode* node = view->Items()->GetFirstNode(); node; node = node->GetNext())
            if (node->Data == idNode) {
                node->Expand(false);
                view->SetSelected(node);
                return;
            }
}

void TFRMtnAplicacio::SortirClick(TObject*) { Close(); }

void TFRMtnAplicacio::QuantAClick(TObject*) {
    TClass about = GetClass("TFRMQuiSoc");
    if (!about) return;
    const std::unique_ptr<TCustomForm> form(CreateFormNormal(about, nullptr));
    form->ShowModal();
}

}  // namespace vyn
