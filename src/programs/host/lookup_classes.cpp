#include "programs/host/lookup_classes.h"

#include "datasources/Uvyndatasources.h"
#include "platform/controls/win_control.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace lookup_classes_detail {

constexpr int kQueryScreen = 7;

bool IsClass(const TNodeArbre& node) {
    return node.NodeType == kQueryScreen && node.IDComponent > 0 && !node.Name.empty();
}

void CreateQueryScreen(TVynApp* app, const AnsiString& className, TComponent* owner, TComponent*& component,
                       HWND& handle) {
    TTreeVyn& tree = app->Tree();
    for (int i = 0; i < tree.Count(); ++i) {
        const TNodeArbre node = tree.GetIdxNodeArbre(i);
        if (!IsClass(node) || !AnsiSameText(node.Name, className)) continue;
        // A screen of its own: the one that the user has open, and its end, are the user's.
        app->AddStreamToComponent(node.IDNode, owner, component);
        if (auto* window = ObjectCast<TWinControl>(component)) handle = window->Handle();
        return;
    }
}

}  // namespace lookup_classes_detail

void RegisterQueryClasses(TVynApp& app) {
    using namespace lookup_classes_detail;
    TTreeVyn& tree = app.Tree();
    for (int i = 0; i < tree.Count(); ++i) {
        const TNodeArbre node = tree.GetIdxNodeArbre(i);
        if (!IsClass(node) || VynDataSource_GetCreateClassMethod(node.Name) || SameText(node.Name, CT_VynSearchClass))
            continue;
        VynDataSource_RegisterClassName(node.Name, &CreateQueryScreen);
    }
}

void UnregisterQueryClasses() { VynDataSource_UnRegisterCreateClass(&lookup_classes_detail::CreateQueryScreen); }

}  // namespace vyn
