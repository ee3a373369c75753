// Query screens of an application as data-source classes.
#include "programs/host/lookup_classes.h"
#include "datasources/Uvyndatasources.h"
#include "platform/objects/strings.h"
#include "unit/programs_host/host_fixture.h"

using namespace vyn;

namespace {

class LookupClasses : public HostLookups {
  protected:
    LookupClasses() { RegisterQueryClasses(*app); }
    ~LookupClasses() override { UnregisterQueryClasses(); }
    TComponent* Create(const AnsiString& name, TComponent* owner) {
        TComponent* component = nullptr;
        handle = 0;
        VynDataSource_GetCreateClassMethod(name)(app.get(), name, owner, component, handle);
        return component;
    }
    HWND handle = 0;
};

void MakeNothing(TVynApp*, const AnsiString&, TComponent*, TComponent*&, HWND&) {}

}  // namespace

TEST_F(LookupClasses, AQueryScreenIsAClassUnderItsNodesName) {
    EXPECT_NE(VynDataSource_GetCreateClassMethod("CONSULTA"), nullptr);
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("Clients"), nullptr) << "a list is none";
    TComponent owner(nullptr);
    auto* screen = ObjectCast<TFRMSQLGeneric>(Create("consulta", &owner));
    ASSERT_NE(screen, nullptr);
    EXPECT_EQ(screen->Owner(), &owner);
    EXPECT_EQ(screen->Handle(), handle);
    EXPECT_EQ(screen->IDNode(), 4);
    TParametres wanted(nullptr);
    wanted.SetParametreValue("nom", "gar");
    EXPECT_EQ(Request(*screen, VynParamsWrite, wanted), VynAnswerYes);
    EXPECT_EQ(ValueOf(*screen, "id"), "3");
    wanted.SetParametreValue("nom", "x");
    EXPECT_EQ(Request(*screen, VynParamsWrite, wanted), VynAnswerNo);
}

TEST_F(LookupClasses, EachHasAScreenOfItsOwnBesideTheUsers) {
    auto& users = Open<>(4);
    TComponent owner(nullptr);
    TComponent* first = Create("Consulta", &owner);
    TComponent* second = Create("Consulta", &owner);
    EXPECT_NE(first, second);
    EXPECT_NE(first, &users);
    EXPECT_EQ(owner.ComponentCount(), 2);
    EXPECT_EQ(app->ObreComponent(4, nullptr), &users);
}

TEST_F(LookupClasses, ANameWithoutANodeMakesNothing) {
    const auto method = VynDataSource_GetCreateClassMethod("Consulta");
    TComponent* component = nullptr;
    method(app.get(), "Altres", nullptr, component, handle);
    EXPECT_EQ(component, nullptr);
    EXPECT_EQ(handle, 0u);
}

TEST_F(LookupClasses, TheClassesOfOthersComeFirst) {
    UnregisterQueryClasses();
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("Consulta"), nullptr);
    VynDataSource_RegisterClassName("CONSULTA", &MakeNothing);
    RegisterQueryClasses(*app);
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("Consulta"), &MakeNothing);
    UnregisterQueryClasses();
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("Consulta"), &MakeNothing);
    VynDataSource_UnRegisterClassName("Consulta");
    // Nor does a screen take the place of the entry that is there from the start.
    Store(5, 1, 7, "object FRMSQLGeneric: TFRMSQLGeneric\nend\n");
    TNodeArbre node = app->Tree().GetIDNode(5);
    node.Name = "Search";
    app->Tree().SetIDNode(5, node);
    RegisterQueryClasses(*app);
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("SEARCH"), nullptr);
}
