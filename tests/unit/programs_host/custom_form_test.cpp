// What the host's forms give to the components that stand on them.
#include <gtest/gtest.h>

#include "datasources/Uvyndatasources.h"
#include "events/Utvynsubcons.h"
#include "package/package.h"
#include "platform/streams/text_form.h"
#include "programs/host/custom_form.h"
#include "support/applications.h"

using namespace vyn;

namespace {

class HostForm : public testing::Test {
  protected:
    HostForm() {
        InitializePackage();
        RegisterHostForms();
        app = std::make_unique<TVynApp>(nullptr);
    }
    ~HostForm() override {
        app->CloseApp();
        app.reset();
        FinalizePackage();
    }
    void Store(int number, int parent, const std::string& form) {
        StoreForm(*app, {number, 2, "C"}, form);
        app->Tree().Add({number, parent, number, number, 2, ""});
    }

    std::unique_ptr<TVynApp> app;
};

}  // namespace

TEST_F(HostForm, ChildScreensKnowApplicationAndNode) {
    Store(1, 0,
          "object Customers: TCustomFRM\n  object Screens: TSubConsultes\n    SubCons = <\n      item\n"
          "        ChildNode = 2\n      end>\n  end\nend\n");
    Store(2, 1, "object Orders: TCustomFRM\n  Caption = 'Orders'\nend\n");
    TComponent* customers = app->ObreComponent(1, nullptr);
    auto* screens = ObjectCast<TSubConsultes>(customers->FindComponent("Screens"));
    ASSERT_NE(screens, nullptr);
    EXPECT_EQ(screens->MasterVynApp(), app.get());
    EXPECT_EQ(screens->MasterIDNode, 1);
    const TComponent* orders = screens->Items().Items(0)->CaptureComponent();
    EXPECT_EQ(ObjectCast<TCustomFRM>(orders)->Caption(), "Orders");
    EXPECT_EQ(ObjectCast<TCustomFRM>(orders)->IDNode(), 2);
    EXPECT_EQ(orders->Owner(), customers);
}

TEST_F(HostForm, DataSourcesKnowApplicationAndNodeUnlessTheFormSaysOtherwise) {
    Store(1, 0,
          "object Orders: TCustomFRM\n  object Own: TVynDataSource\n  end\n  object Other: TVynDataSource\n"
          "    IDNode = 7\n  end\nend\n");
    auto* orders = ObjectCast<TCustomFRM>(app->ObreComponent(1, nullptr));
    const auto* own = ObjectCast<TVynDataSource>(orders->FindComponent("Own"));
    const auto* other = ObjectCast<TVynDataSource>(orders->FindComponent("Other"));
    EXPECT_EQ(own->VynApp(), app.get());
    EXPECT_EQ(own->IDNode(), 1);
    EXPECT_EQ(other->VynApp(), app.get());
    EXPECT_EQ(other->IDNode(), 7);
    // The node that it was given is not stored: the stored form may stand for several nodes.
    app->GrabaResourceTComponent(orders, 1, orders->Component());
    const auto stored = app->Components().GetStreamComponent(1);
    stored->SetPosition(0);
    const std::string form = BinaryToText(*stored);
    EXPECT_EQ(form.find("IDNode = 1\n"), std::string::npos) << form;
    EXPECT_NE(form.find("IDNode = 7\n"), std::string::npos) << form;
}
