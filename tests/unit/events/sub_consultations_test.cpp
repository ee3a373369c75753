// Child screens of a form: their settings, opening them, and letting go of what goes.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

#include "events/Utvynsubcons.h"
#include "package/package.h"
#include "persistence/Uvynclss.h"
#include "platform/controls/edits.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/objects/class_table.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "platform/system/application.h"
#include "support/applications.h"
#include "support/errors.h"

using namespace vyn;

namespace sub_consultation_fixtures {

// The form class of the application's screens.
class TScreen : public TForm {
    VYN_OBJECT
  public:
    explicit TScreen(TComponent* owner) : TForm(owner) {}
    static inline std::function<void(TScreen*)> OnOpened;
    void WndProc(TMessage& message) override {
        TForm::WndProc(message);
        if (message.Msg == VYN_OPENED && OnOpened) OnOpened(this);
    }
};
const ClassInfo& TScreen::StaticClass() {
    static const ClassInfo info = DefineForm<TScreen, TForm>("TScreen");
    return info;
}

// An application with a customers' screen (node 1) that has child screens: orders (10), bills (20), and one without a
// component (30).
class SubConsultations : public testing::Test {
  protected:
    void SetUp() override {
        InitializePackage();
        RegisterClass(&TScreen::StaticClass());
        TextToBinary("object Screen: TScreen\nend\n", compiled_);
        RegisterFormResource("TScreen", compiled_.Bytes());
        host_.emplace();
        app = std::make_unique<TVynApp>(nullptr);
        Store(1, "object Customers: TScreen\n  object Children: TSubConsultes\n  end\nend\n");
        Store(2, "object Orders: TScreen\n  Caption = 'Orders'\nend\n");
        Store(3, "object Bills: TScreen\n  Caption = 'Bills'\nend\n");
        Node(1, 0, 0, 1);
        Node(2, 1, 10, 2);
        Node(3, 1, 20, 3);
        Node(4, 1, 30, 0);
        customers = app->ObreComponent(1, nullptr);
        children = ObjectCast<TSubConsultes>(customers->FindComponent("Children"));
        children->SetMasterVynApp(app.get());
    }
    void TearDown() override {
        TScreen::OnOpened = nullptr;
        if (app) app->CloseApp();
        app.reset();
        host_.reset();
        UnregisterFormResource("TScreen");
        FinalizePackage();
    }
    void Store(int component, const std::string& form) { StoreForm(*app, {component, 4, "C"}, form); }
    void Node(int number, int parent, int child, int component) {
        app->Tree().Add({number, parent, child, component, 4, "N"});
    }
    TVynSubConsItem* Add(int childNode, const AnsiString& caption = {}) {
        TVynSubConsItem* item = children->Items().Add();
        item->ChildNode = childNode;
        item->Caption = caption;
        return item;
    }

    std::unique_ptr<TVynApp> app;
    TComponent* customers = nullptr;
    TSubConsultes* children = nullptr;

  private:
    TMemoryStream compiled_;
    std::optional<SilentHost> host_;
};

TEST_F(SubConsultations, TheirOwnerIsAForm) {
    const AnsiString error = "Exception: VYN ERROR IN TSubConsultes\nOwner must be a TForm";
    EXPECT_EQ(MessageOf([] { TSubConsultes alone(nullptr); }), error);
    TComponent plain(nullptr);
    EXPECT_EQ(MessageOf([&] { TSubConsultes inside(&plain); }), error);
    EXPECT_EQ(plain.ComponentCount(), 0) << "what failed leaves nothing behind";
    TForm form(nullptr);
    EXPECT_EQ(MessageOf([&] { new TSubConsultes(&form); }), "no error");
}

TEST_F(SubConsultations, PropertiesArePublishedInOrder) {
    const auto names = [](const ClassInfo& info) {
        AnsiString text;
        for (const PropertyInfo& property : info.Properties()) text += property.Name + " ";
        return text;
    };
    EXPECT_EQ(names(TVynSubConsItem::StaticClass()),
              "ChildNode Image Caption Hint EventName FieldNameOwner FieldNameFill ShowType AutoAssignFields "
              "NewParamsValues ");
    EXPECT_EQ(names(TSubConsultes::StaticClass()), "Name Tag ValorsSubconsultes SubCons OnCreatedComponent ");
}

TEST_F(SubConsultations, PlacementsAndWidthsAreNumberedFromZero) {
    EXPECT_EQ(static_cast<int>(vynsct_Auto), 0);
    EXPECT_EQ(static_cast<int>(vynsct_sBottom), 1);
    EXPECT_EQ(static_cast<int>(vynsct_sRight), 2);
    EXPECT_EQ(static_cast<int>(vynsct_OnTop), 3);
    EXPECT_EQ(static_cast<int>(sbwt_Pixels), 0);
    EXPECT_EQ(static_cast<int>(sbwt_Percent), 1);
    EXPECT_EQ(TypeInfoOf(TypeTag<TVynSubConsShowType>{}).NameOf(1), "vynsct_sBottom");
    EXPECT_EQ(TypeInfoOf(TypeTag<TVynSubConsWidthType>{}).NameOf(1), "sbwt_Percent");
}

TEST_F(SubConsultations, AChildIsOpenedWhenItIsFirstAskedFor) {
    TVynSubConsItem* item = Add(20);
    AnsiString heard;
    children->OnCreatedComponent = [&](TVynSubConsItem* sender, TComponent* component) {
        EXPECT_EQ(sender, item);
        heard += ObjectCast<TForm>(component)->Caption() + " ";
    };
    EXPECT_FALSE(item->GetHasComponent());
    EXPECT_EQ(item->GetRealNode(), 3);
    TComponent* bills = item->CaptureComponent();
    EXPECT_EQ(bills->Owner(), customers);
    EXPECT_TRUE(item->GetHasComponent());
    EXPECT_EQ(item->CaptureComponent(), bills);
    EXPECT_EQ(item->Component(), bills);
    EXPECT_EQ(heard, "Bills ") << "told once";
    EXPECT_EQ(app->NodesList().GetItem(app->NodesList().IndexOf(bills)).IDNode, 3);
}

TEST_F(SubConsultations, ChildrenOfTransparentNodesAreTheFormsOwn) {
    TNodeArbre ancestor;
    ancestor.IDNode = 50;
    ancestor.IDParent = 1;
    ancestor.Child = 5;
    ancestor.NodeType = 18;
    app->Tree().Add(ancestor);
    Node(51, 50, 40, 2);
    EXPECT_EQ(Add(40)->GetRealNode(), 51) << "as the tree shows them";
    EXPECT_EQ(Add(5)->GetRealNode(), -1);
}

TEST_F(SubConsultations, AComponentIsFoundAmongTheChildren) {
    TVynSubConsItem* bills = Add(20);
    TVynSubConsItem* orders = Add(10);
    EXPECT_EQ(children->FindComponentInChilds(nullptr), -1);
    EXPECT_EQ(children->FindComponentInChilds(orders->CaptureComponent()), 1);
    EXPECT_EQ(children->FindComponentInChilds(bills->CaptureComponent()), 0);
    EXPECT_EQ(children->FindComponentInChilds(customers), -1);
}

TEST_F(SubConsultations, AChildThatGoesIsForgottenAndOpenedAgain) {
    TVynSubConsItem* item = Add(10);
    delete item->CaptureComponent();
    EXPECT_FALSE(item->GetHasComponent());
    EXPECT_EQ(ObjectCast<TForm>(item->CaptureComponent())->Caption(), "Orders");
}

TEST_F(SubConsultations, AChildOfAnotherOwnerIsForgottenToo) {
    TComponent* orders = app->ObreComponent(2, nullptr);
    TVynSubConsItem* item = Add(10);
    EXPECT_EQ(item->CaptureComponent(), orders) << "a node is open once";
    delete orders;
    EXPECT_FALSE(item->GetHasComponent());
}

TEST_F(SubConsultations, WithoutTheApplicationNothingOpens) {
    TVynSubConsItem* item = Add(10);
    const AnsiString error = "Exception: VYN ERROR IN TVynSubConsItem\nMasterVynApp of TVynSubCons=Nil";
    children->SetMasterVynApp(nullptr);
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), error);
    EXPECT_EQ(MessageOf([&] { item->GetRealNode(); }), error);
    TVynSubConsItem alone(nullptr);
    EXPECT_EQ(MessageOf([&] { alone.CaptureComponent(); }), error);
}

TEST_F(SubConsultations, WhatWasCapturedNeedsNoApplication) {
    TVynSubConsItem* item = Add(10);
    TComponent* orders = item->CaptureComponent();
    children->SetMasterVynApp(nullptr);
    EXPECT_EQ(item->CaptureComponent(), orders);
}

TEST_F(SubConsultations, AnApplicationThatGoesIsForgotten) {
    TForm form(nullptr);
    auto* of = new TSubConsultes(&form);
    of->SetMasterVynApp(app.get());
    of->SetMasterVynApp(app.get());
    EXPECT_EQ(of->MasterVynApp(), app.get());
    app->CloseApp();
    app.reset();
    EXPECT_EQ(of->MasterVynApp(), nullptr);
}

TEST_F(SubConsultations, AChildWithoutAComponentIsAnErrorAfterItWasTold) {
    TVynSubConsItem* item = Add(30);
    int told = 0;
    children->OnCreatedComponent = [&](TVynSubConsItem* sender, TComponent* component) {
        EXPECT_EQ(sender, item);
        EXPECT_EQ(component, nullptr);
        ++told;
    };
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), "Exception: VYN ERROR IN TVynSubConsItem\nComponent = NIL");
    EXPECT_EQ(told, 1);
}

TEST_F(SubConsultations, AChildThatTheTreeDoesNotHaveIsTheTreesError) {
    EXPECT_EQ(MessageOf([&] { Add(99)->CaptureComponent(); }), "Exception: No se encuentra el Nodo con ID: \"-1\"");
}

TEST_F(SubConsultations, AFormThatNoNodeOpenedHasNoChildren) {
    TForm form(nullptr);
    auto* of = new TSubConsultes(&form);
    of->SetMasterVynApp(app.get());
    TVynSubConsItem* item = of->Items().Add();
    item->ChildNode = 10;
    EXPECT_EQ(of->GetMasterNode(), -1);
    EXPECT_EQ(item->GetRealNode(), -1);
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), "Exception: No se encuentra el Nodo con ID: \"-1\"");
    of->MasterIDNode = 1;
    EXPECT_EQ(item->GetRealNode(), 2) << "unless its host says so";
}

TEST_F(SubConsultations, WhileItsFormOpensAScreenKnowsItsNodeFromItsHost) {
    app->CloseApp();
    int node = 0;
    TScreen::OnOpened = [&](TScreen* screen) {
        if (screen->Caption() == "Orders") return;
        auto* of = ObjectCast<TSubConsultes>(screen->FindComponent("Children"));
        of->SetMasterVynApp(app.get());
        TVynSubConsItem* item = of->Items().Add();
        item->ChildNode = 10;
        EXPECT_EQ(item->GetRealNode(), -1) << "the list gets the form when it is open";
        of->MasterIDNode = 1;
        node = item->GetRealNode();
        item->CaptureComponent();
    };
    app->ObreComponent(1, nullptr);
    EXPECT_EQ(node, 2);
    EXPECT_GE(app->NodesList().IndexOf(2), 0);
}

TEST_F(SubConsultations, AHandlerMayFreeTheChild) {
    TVynSubConsItem* item = Add(10);
    children->OnCreatedComponent = [](TVynSubConsItem*, TComponent* component) { delete component; };
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), "Exception: VYN ERROR IN TVynSubConsItem\nComponent = NIL");
}

TEST_F(SubConsultations, AHandlerMayDeleteTheEntryOrTheForm) {
    TVynSubConsItem* item = Add(10);
    children->OnCreatedComponent = [this](TVynSubConsItem*, TComponent*) { children->Items().Clear(); };
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), "EAbort: Operation aborted");
    item = Add(20);
    children->OnCreatedComponent = [this](TVynSubConsItem*, TComponent*) { delete customers; };
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), "EAbort: Operation aborted");
}

TEST_F(SubConsultations, OpeningAChildMayDeleteTheEntry) {
    TVynSubConsItem* item = Add(10);
    TScreen::OnOpened = [this](TScreen*) { children->Items().Clear(); };
    EXPECT_EQ(MessageOf([&] { item->CaptureComponent(); }), "EAbort: Operation aborted");
}

TEST_F(SubConsultations, TwoChildrenOfOneClassOpenBesideEachOther) {
    TComponent* orders = Add(10)->CaptureComponent();
    TComponent* bills = Add(20)->CaptureComponent();
    EXPECT_NE(orders, bills);
    EXPECT_EQ(bills->Owner(), customers);
}

TEST_F(SubConsultations, EntriesAreCountedByTheirPlacement) {
    Add(10)->ShowType = vynsct_sRight;
    Add(20)->ShowType = vynsct_sRight;
    Add(30);
    EXPECT_EQ(children->CountChilds(vynsct_sRight), 2);
    EXPECT_EQ(children->CountChilds(vynsct_Auto), 1);
    EXPECT_EQ(children->CountChilds(vynsct_OnTop), 0);
}

TEST_F(SubConsultations, OldValuesAreKnownByTheSendersName) {
    children->ValorsSubconsultes()->SetText("Orders = 10;20\r\nBills=\r\nnothing\r\nBILLS=7\r\n=5");
    const auto kept = [&](const AnsiString& name) {
        TComponent sender(nullptr);
        sender.SetName(name);
        return children->HasValorsAnticsSubConsultes(&sender);
    };
    EXPECT_TRUE(kept("ORDERS"));
    EXPECT_FALSE(kept("Bills")) << "the first line of a name counts";
    EXPECT_FALSE(kept("nothing"));
    EXPECT_FALSE(kept("Other"));
    EXPECT_FALSE(kept(""));
    EXPECT_TRUE(children->HasValorsAnticsSubConsultes(Add(10, "Orders")));
    EXPECT_FALSE(children->HasValorsAnticsSubConsultes(Add(10, "Bills")));
    EXPECT_FALSE(children->HasValorsAnticsSubConsultes(nullptr));
    TStringList noComponent;
    EXPECT_FALSE(children->HasValorsAnticsSubConsultes(&noComponent));
}

TEST_F(SubConsultations, AnEntryAlwaysHasAPicture) {
    TVynSubConsItem* item = Add(10);
    ASSERT_NE(item->Image(), nullptr);
    EXPECT_TRUE(item->Image()->Empty());
    EXPECT_EQ(MessageOf([&] { item->SetImage(nullptr); }),
              "Exception: VYN ERROR IN TVynSubConsItem\nPicture cannot be NIL");
    TPicture picture;
    picture.Bitmap()->SetSize(3, 2);
    item->SetImage(&picture);
    picture.Bitmap()->SetSize(9, 9);
    EXPECT_EQ(item->Image()->Width(), 3) << "it is a copy";
}

TEST_F(SubConsultations, AnEntryTakesAnothersSettings) {
    TVynSubConsItem* one = Add(10, "Orders");
    TVynSubConsItem* other = Add(20, "Bills");
    TComponent* orders = one->CaptureComponent();
    other->Hint = "Hint";
    other->EventName = "Event";
    other->FieldNameOwner = "ID";
    other->FieldNameFill = "CUSTOMER";
    other->ShowType = vynsct_OnTop;
    other->AutoAssignFields = true;
    other->NewParamsValues()->Add("A=1");
    other->Image()->Bitmap()->SetSize(3, 2);
    children->Items().SetItems(0, *other);
    EXPECT_EQ(children->Items().GetItems(0), one);
    EXPECT_EQ(one->ChildNode, 20);
    EXPECT_EQ(one->DisplayName() + one->Hint + one->EventName + one->FieldNameOwner + one->FieldNameFill,
              "BillsHintEventIDCUSTOMER");
    EXPECT_EQ(one->ShowType, vynsct_OnTop);
    EXPECT_TRUE(one->AutoAssignFields);
    EXPECT_EQ(one->NewParamsValues()->CommaText(), "A=1");
    EXPECT_EQ(one->Image()->Width(), 3);
    EXPECT_EQ(one->Component(), orders);
    EXPECT_EQ(MessageOf([&] { children->Items().GetItems(2); }).substr(0, 10), "EListError");
    TStringList noEntry;
    EXPECT_EQ(MessageOf([&] { one->Assign(&noEntry); }).substr(0, 13), "EConvertError");
}

TEST_F(SubConsultations, TravelWithTheirForm) {
    RegistraClassesVyn();
    const auto stored = [](TComponent& root) {
        TMemoryStream stream;
        WriteComponentToStream(stream, root);
        return AnsiString(stream.Bytes());
    };
    const auto text = [](const AnsiString& bytes) {
        TViewStream stream(bytes);
        return BinaryToText(stream);
    };
    EXPECT_EQ(text(stored(*customers)).find("SubCons ="), std::string::npos) << "without entries it is not stored";
    TVynSubConsItem* item = Add(10, "Orders");
    item->ShowType = vynsct_sBottom;
    item->NewParamsValues()->Add("YEAR=2026");
    item->Image()->Bitmap()->SetSize(2, 1);
    children->ValorsSubconsultes()->Add("A=1");
    const AnsiString bytes = stored(*customers);
    for (const char* line : {"SubCons = <", "ShowType = vynsct_sBottom", "NewParamsValues.Strings = (",
                             "ValorsSubconsultes.Strings = (", "Image.Data = {"})
        EXPECT_NE(text(bytes).find(line), std::string::npos) << line << "\n" << text(bytes);
    TScreen again(nullptr);
    TViewStream stream(bytes);
    ReadComponentFromStream(stream, &again);
    auto* read = ObjectCast<TSubConsultes>(again.FindComponent("Children"));
    ASSERT_NE(read, nullptr);
    ASSERT_EQ(read->Items().Count(), 1);
    EXPECT_EQ(read->Items().Items(0)->NewParamsValues()->CommaText(), "YEAR=2026");
    EXPECT_EQ(read->Items().Items(0)->Image()->Width(), 2);
    EXPECT_EQ(read->ValorsSubconsultes()->CommaText(), "A=1");
    EXPECT_EQ(stored(again), bytes);
}

TEST_F(SubConsultations, AreStoredAsADifferenceOfTheirNode) {
    children->Items().Add()->Caption = "Orders";
    const TComponentVyn record = app->Components().GetComponent(1);
    ASSERT_TRUE(app->GrabaResourceTComponent(customers, 1, record));
    app->CloseApp();
    customers = app->ObreComponent(1, nullptr);
    auto* read = ObjectCast<TSubConsultes>(customers->FindComponent("Children"));
    ASSERT_EQ(read->Items().Count(), 1);
    EXPECT_EQ(read->Items().Items(0)->Caption, "Orders");
}

}  // namespace sub_consultation_fixtures
