#include <gtest/gtest.h>

#include <climits>

#include "control_support.h"
#include "platform/controls/edits.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/images.h"
#include "platform/controls/labels.h"
#include "platform/controls/panels.h"
#include "platform/controls/screen.h"
#include "platform/controls/tool_bars.h"
#include "platform/streams/text_form.h"

using namespace vyn;
using namespace control_test;

namespace {

class LayoutTest : public testing::Test {
  protected:
    LayoutTest() : form(nullptr) {
        form.SetName("Form1");
        form.SetAutoScroll(false);
        form.SetClientSize(400, 300);
    }
    TForm form;
};

}  // namespace

TEST_F(LayoutTest, AlignedControlsTakeTheirEdgesInTurn) {
    auto* top = Put<TPanel>(&form, 0, 0, 10, 30);
    auto* bottom = Put<TPanel>(&form, 0, 250, 10, 20);
    auto* left = Put<TPanel>(&form, 0, 100, 50, 10);
    auto* right = Put<TPanel>(&form, 300, 100, 60, 10);
    auto* client = Put<TPanel>(&form, 100, 100, 10, 10);
    top->SetAlign(alTop);
    bottom->SetAlign(alBottom);
    left->SetAlign(alLeft);
    right->SetAlign(alRight);
    client->SetAlign(alClient);
    EXPECT_EQ(top->BoundsRect(), Rect(0, 0, 400, 30));
    EXPECT_EQ(bottom->BoundsRect(), Rect(0, 280, 400, 300));
    EXPECT_EQ(left->BoundsRect(), Rect(0, 30, 50, 280));
    EXPECT_EQ(right->BoundsRect(), Rect(340, 30, 400, 280));
    EXPECT_EQ(client->BoundsRect(), Rect(50, 30, 340, 280));
    top->SetVisible(false);
    EXPECT_EQ(client->BoundsRect(), Rect(50, 0, 340, 280));
    form.SetClientSize(500, 200);
    EXPECT_EQ(client->BoundsRect(), Rect(50, 0, 440, 180));
    delete left;
    EXPECT_EQ(client->Left(), 0);
}

TEST_F(LayoutTest, SeveralOnOneEdgeStandByTheirPlaces) {
    auto* first = Put<TPanel>(&form, 0, 0, 10, 20);
    auto* second = Put<TPanel>(&form, 0, 50, 10, 30);
    second->SetAlign(alTop);
    first->SetAlign(alTop);
    // The one that was just aligned stands at the edge and keeps to it.
    EXPECT_EQ(first->Top(), 0);
    EXPECT_EQ(second->Top(), 20);
    first->SetTop(100);
    EXPECT_EQ(second->Top(), 0);
    EXPECT_EQ(first->Top(), 30);
}

TEST_F(LayoutTest, APanelKeepsItsBevelsFree) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    panel->SetBevelWidth(2);
    panel->SetBevelInner(bvLowered);
    panel->SetBorderWidth(3);
    auto* inner = Put<TPanel>(panel, 0, 0, 5, 5);
    inner->SetAlign(alClient);
    EXPECT_EQ(inner->BoundsRect(), Rect(7, 7, 93, 43));
}

TEST_F(LayoutTest, AnchorsFollowTheEdgesThatTheyName) {
    auto* right = Put<TPanel>(&form, 300, 10, 50, 20);
    right->SetAnchors({akTop, akRight});
    auto* both = Put<TPanel>(&form, 10, 10, 200, 20);
    both->SetAnchors({akLeft, akTop, akRight, akBottom});
    auto* none = Put<TPanel>(&form, 100, 100, 20, 20);
    none->SetAnchors({});
    form.SetClientSize(440, 320);
    EXPECT_EQ(right->BoundsRect(), Rect(340, 10, 390, 30));
    EXPECT_EQ(both->BoundsRect(), Rect(10, 10, 250, 50));
    EXPECT_EQ(none->BoundsRect(), Rect(120, 110, 140, 130));
    form.SetClientSize(100, 100);
    form.SetClientSize(400, 300);
    EXPECT_EQ(right->BoundsRect(), Rect(300, 10, 350, 30));
    EXPECT_EQ(both->BoundsRect(), Rect(10, 10, 210, 30));
}

TEST_F(LayoutTest, ConstraintsBoundASize) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    panel->Constraints()->SetMinWidth(80);
    panel->Constraints()->SetMaxHeight(60);
    panel->SetBounds(0, 0, 10, 500);
    EXPECT_EQ(panel->Width(), 80);
    EXPECT_EQ(panel->Height(), 60);
}

TEST_F(LayoutTest, OnCanResizeMayRefuse) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    panel->OnCanResize = [](TObject*, int&, int&, bool& resize) { resize = false; };
    panel->SetWidth(200);
    EXPECT_EQ(panel->Width(), 100);
}

TEST_F(LayoutTest, ALabelTakesItsTextsSize) {
    auto* label = Put<TLabel>(&form, 10, 10, 65, 17);
    label->SetCaption("Hello");
    const int width = label->Width();
    label->SetCaption("Hello, world");
    EXPECT_GT(label->Width(), width);
    label->SetAlignment(taRightJustify);
    const int right = label->Left() + label->Width();
    label->SetCaption("Hi");
    EXPECT_EQ(label->Left() + label->Width(), right);
    label->SetAutoSize(false);
    label->SetBounds(0, 0, 5, 5);
    label->SetCaption("No more");
    EXPECT_EQ(label->Width(), 5);
}

TEST_F(LayoutTest, AMnemonicSignTakesNoRoom) {
    auto* plain = Put<TLabel>(&form, 0, 0, 1, 1);
    auto* marked = Put<TLabel>(&form, 0, 20, 1, 1);
    plain->SetCaption("Name");
    marked->SetCaption("&Name");
    EXPECT_EQ(plain->Width(), marked->Width());
}

TEST_F(LayoutTest, ASplitterSizesTheControlBesideIt) {
    auto* left = Put<TPanel>(&form, 0, 0, 100, 10);
    left->SetAlign(alLeft);
    auto* splitter = Put<TSplitter>(&form, 150, 0, 4, 10);
    auto* client = Put<TPanel>(&form, 200, 0, 10, 10);
    client->SetAlign(alClient);
    EXPECT_EQ(splitter->FindControl(), left);
    int moved = 0;
    splitter->OnMoved = [&](TObject*) { ++moved; };
    splitter->MoveBy(50, 0);
    EXPECT_EQ(left->Width(), 150);
    EXPECT_EQ(client->Left(), 154);
    EXPECT_EQ(moved, 1);
    splitter->SetMinSize(40);
    splitter->AutoSnap = false;
    splitter->MoveBy(-500, 0);
    EXPECT_EQ(left->Width(), 40);
    splitter->MoveBy(5000, 0);
    EXPECT_EQ(left->Width(), 400 - 4 - 40);
    splitter->AutoSnap = true;
    splitter->MoveBy(-5000, 0);
    EXPECT_EQ(left->Width(), 0);
    splitter->MoveBy(100, 0);
    EXPECT_EQ(left->Width(), 100);
    splitter->OnCanResize = [](TObject*, int&, bool& accept) { accept = false; };
    splitter->MoveBy(20, 0);
    EXPECT_EQ(left->Width(), 100);
}

TEST_F(LayoutTest, ASplitterFollowsTheMouse) {
    auto* left = Put<TPanel>(&form, 0, 0, 100, 10);
    left->SetAlign(alLeft);
    auto* splitter = Put<TSplitter>(&form, 150, 0, 4, 10);
    splitter->ProcessMouseDown(mbLeft, {ssLeft}, 1, 5);
    splitter->ProcessMouseMove({ssLeft}, 31, 5);
    EXPECT_EQ(splitter->DragOffset(), 30);
    EXPECT_EQ(left->Width(), 100);
    splitter->ProcessMouseUp(mbLeft, {}, 31, 5);
    EXPECT_EQ(left->Width(), 130);
}

TEST_F(LayoutTest, AToolBarPlacesItsButtonsAndWraps) {
    auto* bar = Put<TToolBar>(&form, 0, 0, 400, 29);
    std::vector<TToolButton*> buttons;
    for (int i = 0; i < 4; ++i) buttons.push_back(Put<TToolButton>(bar, 0, 0, 23, 22));
    EXPECT_EQ(bar->Width(), 400);
    EXPECT_EQ(buttons[0]->Left(), 0);
    EXPECT_EQ(buttons[1]->Left(), 23);
    buttons[1]->SetStyle(tbsSeparator);
    buttons[1]->SetWidth(8);
    bar->Realign();
    EXPECT_EQ(buttons[2]->Left(), 31);
    buttons[2]->SetWrap(true);
    EXPECT_EQ(buttons[3]->Left(), 0);
    EXPECT_EQ(buttons[3]->Top(), buttons[0]->Top() + 22);
    EXPECT_EQ(bar->RowCount(), 2);
    buttons[0]->SetVisible(false);
    EXPECT_EQ(buttons[2]->Left(), 8);
}

TEST_F(LayoutTest, AScrollBoxTakesItsRangeFromItsControls) {
    auto* box = Put<TScrollBox>(&form, 0, 0, 104, 104);
    auto* panel = Put<TPanel>(box, 0, 0, 50, 300);
    EXPECT_EQ(box->VertScrollBar()->Range(), 300);
    EXPECT_TRUE(box->VertScrollBar()->IsScrollBarVisible());
    EXPECT_FALSE(box->HorzScrollBar()->IsScrollBarVisible());
    box->VertScrollBar()->SetPosition(120);
    EXPECT_EQ(panel->Top(), -120);
    EXPECT_EQ(box->VertScrollBar()->Range(), 300);
    box->VertScrollBar()->SetPosition(5000);
    EXPECT_EQ(box->VertScrollBar()->Position(), 200);
    box->SetHeight(204);
    EXPECT_EQ(box->VertScrollBar()->Position(), 100);
    EXPECT_EQ(panel->Top(), -100);
    auto* low = Put<TPanel>(box, 0, 250, 10, 20);
    box->ScrollInView(low);
    EXPECT_LE(low->Top() + low->Height(), box->ClientHeight());
}

TEST_F(LayoutTest, ControlAtPosFindsTheTopmostVisibleOne) {
    auto* label = Put<TLabel>(&form, 0, 0, 100, 100);
    auto* low = Put<TPanel>(&form, 10, 10, 50, 50);
    auto* high = Put<TPanel>(&form, 20, 20, 50, 50);
    EXPECT_EQ(form.ControlAtPos({25, 25}, false), high);
    low->BringToFront();
    EXPECT_EQ(form.ControlAtPos({25, 25}, false), low);
    low->SetEnabled(false);
    EXPECT_EQ(form.ControlAtPos({25, 25}, false), high);
    EXPECT_EQ(form.ControlAtPos({25, 25}, true), low);
    EXPECT_EQ(form.ControlAtPos({25, 25}, false, false), label);
    EXPECT_EQ(form.ControlAtPos({300, 200}, false), nullptr);
}

TEST_F(LayoutTest, ScreenPlacesAddTheParentsPlaces) {
    form.SetBounds(100, 50, form.Width(), form.Height());
    auto* panel = Put<TPanel>(&form, 10, 20, 50, 50);
    auto* inner = Put<TPanel>(panel, 1, 2, 5, 5);
    EXPECT_EQ(inner->ClientToScreen({0, 0}), (TPoint{111, 72}));
    EXPECT_EQ(inner->ScreenToClient({111, 72}), (TPoint{0, 0}));
}

TEST_F(LayoutTest, FontsAndColoursFollowTheParentUntilSet) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    auto* label = Put<TLabel>(panel, 0, 0, 10, 10);
    form.Font()->SetHeight(-20);
    EXPECT_EQ(label->EffectiveFont().Height(), -20);
    panel->SetColor(clRed);
    EXPECT_EQ(label->Color(), clRed);
    EXPECT_TRUE(label->ParentColor());
    label->Font()->SetHeight(-8);
    EXPECT_FALSE(label->ParentFont());
    form.Font()->SetHeight(-30);
    EXPECT_EQ(label->EffectiveFont().Height(), -8);
    label->SetParentFont(true);
    EXPECT_EQ(label->EffectiveFont().Height(), -30);
    label->SetColor(clBlue);
    panel->SetColor(clGreen);
    EXPECT_EQ(label->Color(), clBlue);
}

TEST_F(LayoutTest, HintsComeFromTheNearestParentThatHasOne) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    auto* label = Put<TLabel>(panel, 0, 0, 10, 10);
    panel->SetHint("short|long one");
    EXPECT_EQ(label->EffectiveHint(), "");
    form.SetShowHint(true);
    EXPECT_EQ(label->EffectiveHint(), "short|long one");
    EXPECT_EQ(TControl::GetShortHint(label->EffectiveHint()), "short");
    EXPECT_EQ(TControl::GetLongHint(label->EffectiveHint()), "long one");
    EXPECT_EQ(TControl::GetLongHint("both"), "both");
    label->SetHint("own");
    EXPECT_EQ(label->EffectiveHint(), "own");
    label->SetShowHint(false);
    EXPECT_EQ(label->EffectiveHint(), "");
}

TEST_F(LayoutTest, SettingANameSetsACaptionThatFollowsIt) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    panel->SetName("Panel1");
    EXPECT_EQ(panel->Caption(), "Panel1");
    panel->SetCaption("Mine");
    panel->SetName("Panel2");
    EXPECT_EQ(panel->Caption(), "Mine");
}

TEST_F(LayoutTest, AControlCannotBeInsideItself) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 50);
    auto* inner = Put<TPanel>(panel, 0, 0, 10, 10);
    EXPECT_THROW(panel->SetParent(inner), EInvalidOperation);
    EXPECT_THROW(panel->SetParent(panel), EInvalidOperation);
}

class ScalingTest : public testing::TestWithParam<int> {};

TEST_P(ScalingTest, AFormStoredForAnotherScreenIsScaledWhenRead) {
    std::string bytes;
    {
        TForm form(nullptr);
        form.SetName("F");
        form.SetAutoScroll(false);
        form.SetClientSize(400, 300);
        auto* panel = Put<TPanel>(&form, 0, 260, 400, 40);
        panel->SetName("P");
        panel->SetAlign(alBottom);
        auto* edit = Put<TEdit>(&form, 20, 30, 100, 21);
        edit->SetName("E");
        edit->SetAutoSize(false);
        edit->SetAnchors({akLeft, akTop, akRight});
        edit->Constraints()->SetMinWidth(50);
        auto* label = Put<TLabel>(panel, 8, 8, 40, 13);
        label->SetName("L");
        label->SetAutoSize(false);
        label->Font()->SetHeight(-16);
        bytes = Stored(form);
    }
    const int dpi = GetParam();
    Resolution screen(dpi);
    const auto form = Restored(bytes);
    const auto scaled = [&](int value) { return MulDiv(value, dpi, 96); };
    EXPECT_EQ(form->PixelsPerInch(), dpi);
    EXPECT_EQ(form->ClientWidth(), scaled(400));
    EXPECT_EQ(form->ClientHeight(), scaled(300));
    EXPECT_EQ(form->EffectiveFont().Height(), scaled(-11));
    auto* edit = static_cast<TEdit*>(form->FindComponent("E"));
    EXPECT_EQ(edit->BoundsRect(), Rect(scaled(20), scaled(30), scaled(120), scaled(51)));
    EXPECT_EQ(edit->Constraints()->MinWidth(), scaled(50));
    auto* panel = static_cast<TPanel*>(form->FindComponent("P"));
    EXPECT_EQ(panel->Top() + panel->Height(), form->ClientHeight());
    EXPECT_EQ(panel->Width(), form->ClientWidth());
    EXPECT_EQ(static_cast<TLabel*>(form->FindComponent("L"))->EffectiveFont().Height(), scaled(-16));
    form->SetClientSize(scaled(400) + 100, form->ClientHeight());
    EXPECT_EQ(edit->Width(), scaled(120) - scaled(20) + 100);
}

INSTANTIATE_TEST_SUITE_P(Screens, ScalingTest, testing::Values(96, 120, 144));

TEST(Speed, AFormOfAThousandControlsIsLaidOutOnce) {
    RegisterAll();
    std::string bytes;
    {
        TForm form(nullptr);
        form.SetName("Big");
        for (int i = 0; i < 1000; ++i) {
            auto* edit = Put<TEdit>(&form, i % 10 * 50, i / 10 * 20, 48, 18);
            edit->SetName("Edit" + std::to_string(i));
        }
        bytes = Stored(form);
    }
    int resized = 0;
    TForm form(nullptr);
    form.OnResize = [&](TObject*) { ++resized; };
    TViewStream stream(bytes);
    ReadComponentFromStream(stream, &form);
    EXPECT_EQ(form.ControlCount(), 1000);
    EXPECT_LE(resized, 1);
    EXPECT_EQ(static_cast<TEdit*>(form.FindComponent("Edit999"))->TabOrder(), 999);
}

TEST_F(LayoutTest, StoredAnchorsFollowAParentThatIsAlignedAnew) {
    // The panel was stored 300 wide; its form is 400 by now.
    TMemoryStream bytes;
    TextToBinary(
        "object Form1: TForm\n ClientWidth = 400\n ClientHeight = 300\n PixelsPerInch = 96\n"
        " object Bar: TPanel\n Width = 300\n Height = 40\n Align = alTop\n"
        "  object Right: TButton\n Left = 200\n Top = 8\n Width = 80\n Height = 25\n Anchors = [akTop, akRight]\n end\n"
        " end\nend",
        bytes);
    const std::unique_ptr<TForm> restored = Restored(std::string(bytes.Bytes()));
    auto* right = ObjectCast<TControl>(restored->FindComponent("Right"));
    ASSERT_NE(right, nullptr);
    EXPECT_EQ(right->Left(), 300);
    EXPECT_EQ(right->Width(), 80);
}

TEST_F(LayoutTest, StoredAnchorsOfControlsThatSizeThemselvesFollowToo) {
    // They find their own size when they are loaded, at a time when the panel is as wide as the form but has not placed
    // what is in it.
    TMemoryStream bytes;
    TextToBinary(
        "object Form1: TForm\n ClientWidth = 500\n ClientHeight = 200\n PixelsPerInch = 96\n"
        " object Bar: TPanel\n Width = 300\n Height = 40\n Align = alTop\n"
        "  object Year: TEdit\n Left = 200\n Top = 8\n Width = 80\n Height = 9\n Anchors = [akTop, akRight]\n end\n"
        "  object Caption: TLabel\n Left = 150\n Top = 8\n Width = 9\n Height = 9\n Anchors = [akTop, akRight]\n"
        "   Caption = 'Year'\n end\n"
        " end\nend",
        bytes);
    const std::unique_ptr<TForm> restored = Restored(std::string(bytes.Bytes()));
    EXPECT_EQ(ObjectCast<TControl>(restored->FindComponent("Year"))->Left(), 400);
    EXPECT_EQ(ObjectCast<TControl>(restored->FindComponent("Caption"))->Left(), 350);
}

TEST_F(LayoutTest, StoredAnchorsKeepTheirEdgesWhenTheFormIsScaled) {
    TMemoryStream bytes;
    TextToBinary(
        "object Form1: TForm\n ClientWidth = 400\n ClientHeight = 300\n PixelsPerInch = 96\n"
        " object Bar: TPanel\n Width = 400\n Height = 40\n Align = alTop\n"
        "  object Right: TButton\n Left = 300\n Top = 8\n Width = 80\n Height = 25\n Anchors = [akTop, akRight]\n end\n"
        " end\nend",
        bytes);
    const Resolution resolution(192);
    const std::unique_ptr<TForm> restored = Restored(std::string(bytes.Bytes()));
    EXPECT_EQ(ObjectCast<TControl>(restored->FindComponent("Right"))->Left(), 600);
}

TEST(Layout, PlacesAndSizesStayWithinTheirExtent) {
    TForm form(nullptr);
    TPanel panel(&form);
    panel.SetParent(&form);
    panel.SetBounds(INT_MIN, INT_MAX, INT_MAX, INT_MIN);
    EXPECT_EQ(panel.Left(), -MaximumExtent);
    EXPECT_EQ(panel.Top(), MaximumExtent);
    EXPECT_EQ(panel.Width(), MaximumExtent);
    EXPECT_EQ(panel.Height(), 0);
    panel.SetClientSize(INT_MAX, INT_MAX);
    EXPECT_EQ(panel.Width(), MaximumExtent);
    form.SetClientSize(INT_MAX, INT_MAX);
    EXPECT_EQ(form.Height(), MaximumExtent);
}
