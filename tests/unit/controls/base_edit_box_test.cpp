// The edit with a button inside: geometry, pictures, border, and what stored forms keep.
#include "edit_box_fixtures.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"

using namespace edit_box_fixtures;

namespace {

std::string TextOf(TComponent& root) {
    TMemoryStream stream;
    WriteComponentToStream(stream, root);
    stream.SetPosition(0);
    return BinaryToText(stream);
}

// A box on a shown form, without any data.
struct BaseEditBox : testing::Test {
    BaseEditBox() {
        InitializePackage();
        form = std::make_unique<TForm>(nullptr);
        box = new TBaseVynEditBox(form.get());
        box->SetParent(form.get());
        box->SetBounds(10, 10, 150, 25);
        other = new TEdit(form.get());
        other->SetParent(form.get());
        form->Show();
        other->SetFocus();
    }
    ~BaseEditBox() override {
        form.reset();
        FinalizePackage();
    }
    struct Picture : TBitmap {
        Picture(int width, int height) { SetSize(width, height); }
    };
    TVynEditBoxSpeedButton& Button() { return box->Button(); }

    std::unique_ptr<TForm> form;
    TBaseVynEditBox* box = nullptr;
    TEdit* other = nullptr;
};

TEST_F(BaseEditBox, TheButtonStandsInsideTheFrameAtTheRight) {
    EXPECT_EQ(Button().Parent(), box);
    EXPECT_EQ(Button().Top(), 2);
    EXPECT_EQ(Button().Height(), box->Height() - 4);
    EXPECT_EQ(Button().Left() + Button().Width(), box->Width() - 2);
    EXPECT_EQ(Button().Width(), Button().Height()) << "a square";
    box->SetWidth(300);
    EXPECT_EQ(Button().Left() + Button().Width(), 298);
    box->SetBorderStyle(TBorderStyle::bsNone);
    EXPECT_EQ(Button().Left() + Button().Width(), 300);
    EXPECT_EQ(Button().Top(), 0);
}

TEST_F(BaseEditBox, TheTextKeepsClearOfTheButtonWhileItShows) {
    EXPECT_EQ(box->RightTextMargin(), Button().Width());
    box->SetShowButton(false);
    EXPECT_EQ(box->RightTextMargin(), 0);
    EXPECT_FALSE(Button().Visible());
    box->SetShowButton(true);
    EXPECT_EQ(box->RightTextMargin(), Button().Width());
    EXPECT_TRUE(Button().Visible());
}

TEST_F(BaseEditBox, AWidePictureWidensTheButtonUpToHalfOfTheBox) {
    const Picture wide(40, 40);
    box->SetButtonGlyph(&wide);
    EXPECT_EQ(Button().Width(), 46);
    EXPECT_EQ(box->RightTextMargin(), 46);
    box->SetWidth(60);
    EXPECT_EQ(Button().Width(), 30);
    box->SetWidth(0);
    EXPECT_EQ(Button().Width(), 0);
}

TEST_F(BaseEditBox, AGlyphOfItsOwnBecomesPicturesAndAnEmptyOneGivesTheBoxesBack) {
    EXPECT_EQ(Button().Images(), nullptr);
    EXPECT_EQ(Button().ImageIndex(), -1);
    EXPECT_FALSE(box->IsButtonGlyphStored());
    const Picture one(16, 16);
    box->SetButtonGlyph(&one);
    ASSERT_NE(Button().Images(), nullptr);
    EXPECT_EQ(Button().Images()->Count(), 1);
    EXPECT_EQ(Button().ImageIndex(), 0);
    EXPECT_TRUE(box->IsButtonGlyphStored());
    const TBitmap none;
    box->SetButtonGlyph(&none);
    EXPECT_EQ(Button().Images(), nullptr);
    EXPECT_FALSE(box->IsButtonGlyphStored());
}

TEST_F(BaseEditBox, SquaresSideBySideAreTheStatesPictures) {
    using State = TVynEditBoxSpeedButton::State;
    const Picture three(48, 16);
    box->SetButtonGlyph(&three);
    ASSERT_EQ(Button().Images()->Count(), 3);
    EXPECT_EQ(Button().CurrentState(), State::Normal);
    EXPECT_EQ(Button().ImageIndex(), 0);
    Button().ProcessMouseEnter();
    EXPECT_EQ(Button().CurrentState(), State::Hot);
    EXPECT_EQ(Button().ImageIndex(), 0);
    Button().ProcessMouseDown(mbLeft, {ssLeft}, 1, 1);
    EXPECT_EQ(Button().CurrentState(), State::Pressed);
    EXPECT_EQ(Button().ImageIndex(), 2);
    Button().ProcessMouseUp(mbLeft, {}, 1, 1);
    Button().ProcessMouseLeave();
    EXPECT_EQ(Button().CurrentState(), State::Normal);
    box->SetEnabled(false);
    EXPECT_EQ(Button().CurrentState(), State::Disabled) << "with its box";
    EXPECT_EQ(Button().ImageIndex(), 1);
    const Picture two(32, 16);
    box->SetButtonGlyph(&two);
    box->SetEnabled(true);
    Button().ProcessMouseDown(mbLeft, {ssLeft}, 1, 1);
    EXPECT_EQ(Button().ImageIndex(), 0) << "a picture that is missing is the first";
}

TEST_F(BaseEditBox, TheRightButtonOfTheMousePressesNothing) {
    int pressed = 0;
    box->OnButtonClick = [&](TObject*) { ++pressed; };
    Button().ProcessMouseDown(mbRight, {ssRight}, 1, 1);
    EXPECT_EQ(Button().CurrentState(), TVynEditBoxSpeedButton::State::Normal);
    Button().ProcessMouseUp(mbRight, {}, 1, 1);
    EXPECT_EQ(pressed, 0);
}

TEST_F(BaseEditBox, APressFocusesTheBoxAndFiresTheEvent) {
    int pressed = 0;
    box->OnButtonClick = [&](TObject* sender) {
        EXPECT_EQ(sender, box);
        EXPECT_TRUE(box->Focused());
        ++pressed;
    };
    Button().Click();
    EXPECT_EQ(pressed, 1);
    box->OnButtonClick.Clear();
    Button().Click();
}

TEST_F(BaseEditBox, WhoeverRefusesToBeLeftKeepsTheButtonFromBeingPressed) {
    other->OnExit = [](TObject*) { throw Exception("stays"); };
    int pressed = 0;
    box->OnButtonClick = [&](TObject*) { ++pressed; };
    EXPECT_EQ(MessageOf([&] { Button().Click(); }), "Exception: stays");
    EXPECT_EQ(pressed, 0);
    other->OnExit.Clear();
}

TEST_F(BaseEditBox, TheBorderIsSolidInTheMomentsOfItsSet) {
    const auto solid = [&](bool over, bool focused) {
        over ? box->ProcessMouseEnter() : box->ProcessMouseLeave();
        focused ? box->SetFocus() : other->SetFocus();
        return box->DrawsSolidBorder();
    };
    EXPECT_FALSE(solid(false, false));
    EXPECT_TRUE(solid(true, false));
    EXPECT_TRUE(solid(false, true));
    box->SetCtrlBorderStyles({cbs_MouseOver});
    EXPECT_TRUE(solid(true, false));
    EXPECT_FALSE(solid(false, true));
    box->SetCtrlBorderStyles({cbs_Focused});
    EXPECT_FALSE(solid(true, false));
    EXPECT_TRUE(solid(false, true));
    box->SetCtrlBorderStyles({});
    EXPECT_FALSE(solid(true, true));
    box->SetCtrlBorderStyles({cbs_MouseOver, cbs_Focused});
    box->SetBorderStyle(TBorderStyle::bsNone);
    EXPECT_FALSE(solid(true, true)) << "without a border there is none to be solid";
}

TEST_F(BaseEditBox, TheButtonIsNoStopOfTabAndNoPartOfTheStoredForm) {
    for (TWinControl* stop : form->GetTabOrderList())
        EXPECT_EQ(ObjectCast<TVynEditBoxSpeedButton>(static_cast<TControl*>(stop)), nullptr);
    box->SetName("Box");
    EXPECT_EQ(TextOf(*form).find("SpeedButton"), std::string::npos);
}

// What a form keeps of a lookup box.
TEST_F(EditBoxTest, StoresItsSettingsAndNeitherTextNorValue) {
    box->SetAutoSearchWaitMiliSeconds(500);
    box->SetExecuteEventName("Copia");
    box->SetOrderNumber(7);
    box->SetAutoRefresh(true);
    box->SetReadOnly(true);
    const std::string text = TextOf(*box);
    for (const char* line :
         {"DataField = 'Customer'", "ReadOnly = True", "DataLinkType = dlt_Search", "NChild = 10",
          "ChildDataKey = 'Code'", "ChildDataShow = 'Name'", "AutoSearch = True", "AutoSearchWaitMiliSeconds = 500",
          "AutoRefresh = True", "ExecuteEventName = 'Copia'", "OrderNumber = 7"})
        EXPECT_NE(text.find(line), std::string::npos) << line << " in\n" << text;
    for (const char* absent : {"Text", "FieldValue", "RelationedFields", "MaxLength", "EditMask", "ChildClassName"})
        EXPECT_EQ(text.find(std::string("  ") + absent), std::string::npos) << absent << " in\n" << text;
    box->RelationedFields()->Add("City>Town");
    EXPECT_NE(TextOf(*box).find("RelationedFields.Strings = (\n    'City>Town')"), std::string::npos);
}

TEST_F(EditBoxTest, ReadsItsSettingsBackInAnyOrder) {
    TVynEditBox copy(nullptr);
    TMemoryStream stream;
    TextToBinary(
        "object Copy: TVynEditBox\n  RelationedFields.Strings = (\n    'City>Town')\n  OrderNumber = 3\n  AutoSearch = "
        "True\n  ChildDataShow = 'Name'\n  ChildDataKey = 'Code'\n  NChild = 10\n  DataLinkType = dlt_Search\nend\n",
        stream);
    stream.SetPosition(0);
    ReadComponentFromStream(stream, &copy);
    EXPECT_EQ(copy.Link().RelationedFields().Count(), 1);
    EXPECT_EQ(copy.Link().NChild(), 10);
    EXPECT_EQ(copy.Link().VynDataLinkType(), dlt_Search);
    EXPECT_EQ(copy.Link().OrderNumber, 3);
    EXPECT_TRUE(copy.AutoSearch());
    copy.SetRelationedFields(nullptr);
    EXPECT_EQ(copy.Link().RelationedFields().Count(), 0);
}

TEST_F(EditBoxTest, ForgetsADataSourceThatGoes) {
    delete source;
    source = nullptr;
    EXPECT_EQ(box->VynDataSource(), nullptr);
    EXPECT_EQ(box->Text(), "");
    EXPECT_TRUE(box->ReadOnly());
}

TEST_F(EditBoxTest, TheButtonHasThePictureOfWhatIsLookedUp) {
    EXPECT_EQ(box->Button().Images(), VynDataSource_FindImageList("SEARCH"));
    box->SetDataLinkType(dlt_Class);
    box->SetChildClassName("Customers");
    EXPECT_EQ(box->Button().Images(), VynDataSource_FindImageList("Customers"));
    EXPECT_NE(box->Button().Images(), nullptr);
    box->SetDataLinkType(dlt_Field);
    EXPECT_EQ(box->Button().Images(), nullptr);
}

}  // namespace
