// What the host's forms give to the components that stand on them.
#include <gtest/gtest.h>

#include "events/Utvynsubcons.h"
#include "package/package.h"
#include "platform/streams/text_form.h"
#include "programs/host/custom_form.h"

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
        TMemoryStream stream;
        TextToBinary(form, stream);
        app->Components().InsertComponent(TComponentVyn{number, 2, "C"}, stream);
        TNodeArbre node;
        node.IDNode = number;
        node.IDParent = parent;
        node.Child = number;
        node.IDComponent = number;
        node.NodeType = 2;
        app->Tree().Add(node);
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
