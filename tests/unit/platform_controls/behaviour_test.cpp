#include <gtest/gtest.h>

#include "control_support.h"
#include "platform/controls/bit_buttons.h"
#include "platform/controls/bitmap_codec.h"
#include "platform/controls/drag.h"
#include "platform/controls/edits.h"
#include "platform/controls/image_lists.h"
#include "platform/controls/lists.h"
#include "platform/controls/menus.h"
#include "platform/controls/pages.h"
#include "platform/controls/panels.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/timers.h"
#include "platform/controls/tool_bars.h"
#include "platform/controls/tree_views.h"
#include "platform/system/clipboard.h"

using namespace vyn;
using namespace control_test;

TEST(ShortCuts, TextAndNumberAreTheSame) {
    EXPECT_EQ(TextToShortCut("Ctrl+S"), ShortCut('S', {ssCtrl}));
    EXPECT_EQ(ShortCutToText(ShortCut(VK_F5, {ssShift, ssCtrl})), "Shift+Ctrl+F5");
    EXPECT_EQ(TextToShortCut("ctrl+shift+f5"), ShortCut(VK_F5, {ssShift, ssCtrl}));
    EXPECT_EQ(ShortCutToText(VK_DELETE), "Del");
    EXPECT_EQ(TextToShortCut("nonsense"), scNone);
    EXPECT_EQ(ShortCutToText(scNone), "");
    uint16_t key = 0;
    TShiftState shift;
    ShortCutToKey(TextToShortCut("Alt+BkSp"), key, shift);
    EXPECT_EQ(key, VK_BACK);
    EXPECT_EQ(shift, TShiftState{ssAlt});
}

TEST(ShortCuts, MnemonicsFollowASingleSign) {
    EXPECT_EQ(MnemonicOf("&File"), 'F');
    EXPECT_EQ(MnemonicOf("Save && e&xit"), 'X');
    EXPECT_EQ(MnemonicOf("none&"), 0);
    EXPECT_EQ(StripHotkey("Save && e&xit"), "Save & exit");
}

TEST(Edits, TypeSelectAndUndo) {
    TForm form(nullptr);
    auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
    int changes = 0;
    edit->OnChange = [&](TObject*) { ++changes; };
    Type(edit, "abc");
    EXPECT_EQ(edit->Text(), "abc");
    EXPECT_EQ(changes, 3);
    EXPECT_TRUE(edit->Modified());
    Press(edit, VK_LEFT, {ssShift});
    EXPECT_EQ(edit->SelText(), "c");
    Type(edit, "X\b\b");
    EXPECT_EQ(edit->Text(), "a");
    edit->Undo();
    EXPECT_EQ(edit->Text(), "ab");
    Press(edit, VK_HOME);
    Press(edit, VK_DELETE);
    EXPECT_EQ(edit->Text(), "b");
    edit->SetMaxLength(2);
    Type(edit, "yz");
    EXPECT_EQ(edit->Text(), "yb");
    edit->SetReadOnly(true);
    Type(edit, "q");
    EXPECT_EQ(edit->Text(), "yb");
    edit->SetText("by program");
    EXPECT_FALSE(edit->Modified());
    edit->SetCharCase(ecUpperCase);
    EXPECT_EQ(edit->Text(), "BY PROGRAM");
}

TEST(Edits, CutCopyAndPasteUseTheClipboard) {
    TForm form(nullptr);
    auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
    edit->SetText("one two");
    edit->SetSelStart(0);
    edit->SetSelLength(3);
    edit->CutToClipboard();
    EXPECT_EQ(edit->Text(), " two");
    edit->SetSelStart(4);
    edit->PasteFromClipboard();
    EXPECT_EQ(edit->Text(), " twoone");
    edit->SetPasswordChar('*');
    edit->SelectAll();
    Clipboard()->SetAsText("old\r\nsecond line");
    edit->CopyToClipboard();
    EXPECT_EQ(Clipboard()->AsText(), "old\r\nsecond line");
    edit->PasteFromClipboard();
    EXPECT_EQ(edit->Text(), "old");
}

TEST(Edits, ANegativeSelectionGoesLeft) {
    TEdit edit(nullptr);
    edit.SetText("abcdef");
    edit.SetSelStart(4);
    edit.SetSelLength(-3);
    EXPECT_EQ(edit.SelStart(), 1);
    EXPECT_EQ(edit.SelText(), "bcd");
    edit.SetSelStart(99);
    EXPECT_EQ(edit.SelStart(), 6);
}

TEST(Edits, ANativeWidgetReportsWhatTheUserDid) {
    TEdit edit(nullptr);
    int changes = 0;
    edit.OnChange = [&](TObject*) { ++changes; };
    edit.ProcessTextEdit("native", 6, 0);
    edit.ProcessTextEdit("native", 2, 3);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(edit.SelText(), "tiv");
    EXPECT_TRUE(edit.Modified());
}

TEST(Memos, LinesAreTheTextsLines) {
    TForm form(nullptr);
    auto* memo = Put<TMemo>(&form, 0, 0, 100, 100);
    memo->Lines()->Add("one");
    memo->Lines()->Add("two");
    EXPECT_EQ(memo->Text(), "one\r\ntwo\r\n");
    memo->Lines()->Insert(1, "middle");
    EXPECT_EQ(memo->Lines()->Count(), 3);
    memo->Lines()->Delete(0);
    memo->Lines()->Put(1, "2");
    EXPECT_EQ(memo->Text(), "middle\r\n2\r\n");
    EXPECT_THROW(memo->Lines()->Get(5), EStringListError);
    memo->SetText("a\nb\r\nc");
    EXPECT_EQ(memo->Lines()->Count(), 3);
    memo->SetSelStart(3);
    EXPECT_EQ(memo->CaretPos(), (TPoint{1, 1}));
    Type(memo, "\r!");
    EXPECT_EQ(memo->Text(), "a\nb\r\n!\r\nc");
    form.Show();
    int closed = 0;
    auto* ok = Put<TButton>(&form, 0, 0, 10, 10);
    ok->SetDefault(true);
    ok->OnClick = [&](TObject*) { ++closed; };
    Press(memo, VK_RETURN);
    EXPECT_EQ(closed, 0);
    memo->SetWantReturns(false);
    Press(memo, VK_RETURN);
    EXPECT_EQ(closed, 1);
}

TEST(ListBoxes, SelectByKeysAndLetters) {
    TForm form(nullptr);
    auto* box = Put<TListBox>(&form, 0, 0, 100, 100);
    box->Items()->SetCommaText("apple,banana,cherry,blueberry");
    int clicks = 0;
    box->OnClick = [&](TObject*) { ++clicks; };
    Press(box, VK_DOWN);
    EXPECT_EQ(box->ItemIndex(), 0);
    Type(box, "bl");
    EXPECT_EQ(box->ItemIndex(), 3);
    EXPECT_EQ(clicks, 3);
    box->Items()->Delete(0);
    EXPECT_EQ(box->ItemIndex(), 2);
    box->SetSorted(true);
    EXPECT_EQ(box->Items()->CommaText(), "banana,blueberry,cherry");
    EXPECT_EQ(box->ItemIndex(), 1);
    EXPECT_THROW(box->SetItemIndex(9), EListError);
    box->Clear();
    EXPECT_EQ(box->ItemIndex(), -1);
}

TEST(ListBoxes, SeveralLinesAreSelectedWithShiftAndCtrl) {
    TForm form(nullptr);
    auto* box = Put<TListBox>(&form, 0, 0, 100, 200);
    box->SetMultiSelect(true);
    box->Items()->SetCommaText("a,b,c,d,e");
    const int height = box->ItemHeight();
    box->ProcessMouseDown(mbLeft, {}, 5, height + 1);
    box->ProcessMouseDown(mbLeft, {ssShift}, 5, 3 * height + 1);
    EXPECT_EQ(box->SelCount(), 3);
    box->ProcessMouseDown(mbLeft, {ssCtrl}, 5, 2 * height + 1);
    EXPECT_EQ(box->SelCount(), 2);
    EXPECT_FALSE(box->Selected(2));
    box->SetSelected(0, true);
    EXPECT_TRUE(box->Selected(0));
    EXPECT_THROW(box->Selected(7), EListError);
}

TEST(ComboBoxes, TextAndChosenLineAgree) {
    TForm form(nullptr);
    auto* box = Put<TComboBox>(&form, 0, 0, 100, 21);
    box->Items()->SetCommaText("red,green,blue");
    std::string log;
    box->OnClick = [&](TObject*) { log += "k"; };
    box->OnChange = [&](TObject*) { log += "c"; };
    box->SetItemIndex(1);
    EXPECT_EQ(box->Text(), "green");
    EXPECT_EQ(log, "");
    box->ProcessSelect(2);
    EXPECT_EQ(log, "kc");
    Type(box, "x");
    EXPECT_EQ(box->Text(), "x");
    EXPECT_EQ(box->ItemIndex(), -1);
    box->SetStyle(csDropDownList);
    EXPECT_EQ(box->Text(), "");
    Type(box, "g");
    EXPECT_EQ(box->Text(), "green");
    box->SetText("no such");
    EXPECT_EQ(box->ItemIndex(), -1);
    int drops = 0;
    box->OnDropDown = [&](TObject*) { ++drops; };
    Press(box, VK_F4);
    EXPECT_TRUE(box->DroppedDown());
    Press(box, VK_ESCAPE);
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(drops, 1);
}

TEST(BitButtons, AKindBringsItsCaptionResultAndRole) {
    TForm form(nullptr);
    auto* button = Put<TBitBtn>(&form, 0, 0, 75, 25);
    button->SetKind(bkYes);
    EXPECT_EQ(button->Caption(), "&Yes");
    EXPECT_EQ(button->ModalResult(), mrYes);
    EXPECT_TRUE(button->Default());
    EXPECT_FALSE(button->IsCustomCaption());
    button->SetModalResult(mrOk);
    EXPECT_EQ(button->Kind(), bkCustom);
    button->SetKind(bkCancel);
    EXPECT_TRUE(button->Cancel());
    button->SetKind(bkClose);
    form.Show();
    button->Click();
    EXPECT_FALSE(form.Visible());
}

TEST(SpeedButtons, AGroupHasOneDown) {
    TForm form(nullptr);
    auto* a = Put<TSpeedButton>(&form, 0, 0, 20, 20);
    auto* b = Put<TSpeedButton>(&form, 20, 0, 20, 20);
    a->SetGroupIndex(1);
    b->SetGroupIndex(1);
    a->ProcessPress();
    EXPECT_TRUE(a->Down());
    b->ProcessPress();
    EXPECT_FALSE(a->Down());
    b->ProcessPress();
    EXPECT_TRUE(b->Down());
    b->SetAllowAllUp(true);
    b->ProcessPress();
    EXPECT_FALSE(b->Down());
}

TEST(ToolButtons, AGroupIsARunOfCheckButtons) {
    TForm form(nullptr);
    auto* bar = Put<TToolBar>(&form, 0, 0, 400, 29);
    std::vector<TToolButton*> buttons;
    for (int i = 0; i < 3; ++i) {
        buttons.push_back(Put<TToolButton>(bar, 0, 0, 23, 22));
        buttons.back()->SetStyle(tbsCheck);
        buttons.back()->SetGrouped(true);
    }
    buttons[0]->ProcessPress();
    buttons[1]->ProcessPress();
    EXPECT_FALSE(buttons[0]->Down());
    EXPECT_TRUE(buttons[1]->Down());
    buttons[1]->ProcessPress();
    EXPECT_TRUE(buttons[1]->Down());
    auto* item = new TMenuItem(&form);
    int clicks = 0;
    item->OnClick = [&](TObject*) { ++clicks; };
    item->SetCaption("Item");
    buttons[2]->SetMenuItem(item);
    EXPECT_EQ(buttons[2]->Caption(), "Item");
    buttons[2]->ProcessPress();
    EXPECT_EQ(clicks, 1);
    delete item;
    EXPECT_EQ(buttons[2]->MenuItem(), nullptr);
}

TEST(Pages, TheUsersChangeMayBeRefused) {
    TForm form(nullptr);
    auto* pages = Put<TPageControl>(&form, 0, 0, 200, 100);
    std::vector<TTabSheet*> sheets;
    for (int i = 0; i < 3; ++i) {
        sheets.push_back(new TTabSheet(&form));
        sheets.back()->SetPageControl(pages);
    }
    EXPECT_EQ(pages->ActivePage(), sheets[0]);
    std::string log;
    pages->OnChanging = [&](TObject*, bool& allow) { allow = log.empty(); };
    pages->OnChange = [&](TObject*) { log += "changed "; };
    sheets[0]->OnHide = [&](TObject*) { log += "hide0 "; };
    sheets[1]->OnShow = [&](TObject*) { log += "show1 "; };
    EXPECT_TRUE(pages->ProcessTabChange(sheets[1]));
    EXPECT_EQ(log, "show1 hide0 changed ");
    EXPECT_FALSE(pages->ProcessTabChange(sheets[2]));
    EXPECT_EQ(pages->ActivePage(), sheets[1]);
    sheets[1]->SetTabVisible(false);
    EXPECT_EQ(pages->ActivePage(), sheets[2]);
    EXPECT_EQ(sheets[1]->TabIndex(), -1);
    EXPECT_EQ(sheets[2]->TabIndex(), 1);
    sheets[2]->SetPageIndex(0);
    EXPECT_EQ(pages->Pages(0), sheets[2]);
    EXPECT_THROW(sheets[0]->SetPageIndex(3), EListError);
    delete sheets[2];
    EXPECT_EQ(pages->PageCount(), 2);
    EXPECT_EQ(pages->ActivePage(), sheets[0]);
}

TEST(Pages, TheActivePageFillsThePageControl) {
    TForm form(nullptr);
    auto* pages = Put<TPageControl>(&form, 0, 0, 200, 100);
    auto* sheet = new TTabSheet(&form);
    sheet->SetPageControl(pages);
    EXPECT_EQ(sheet->BoundsRect(), pages->DisplayRect());
    pages->SetTabPosition(tpLeft);
    EXPECT_EQ(sheet->BoundsRect(), pages->DisplayRect());
    EXPECT_GT(sheet->Left(), sheet->Top());
}

TEST(Trees, NodesKeepTheirOrder) {
    TTreeView tree(nullptr);
    TTreeNodes* nodes = tree.Items();
    TTreeNode* a = nodes->Add(nullptr, "a");
    TTreeNode* c = nodes->Add(nullptr, "c");
    TTreeNode* b = nodes->Insert(c, "b");
    TTreeNode* a1 = nodes->AddChild(a, "a1");
    nodes->AddChildFirst(a, "a0");
    EXPECT_EQ(nodes->Count(), 5);
    std::string order;
    for (TTreeNode* at = nodes->GetFirstNode(); at; at = at->GetNext()) order += at->Text() + " ";
    EXPECT_EQ(order, "a a0 a1 b c ");
    EXPECT_EQ(a1->Level(), 1);
    EXPECT_EQ(a1->Index(), 1);
    EXPECT_EQ(b->AbsoluteIndex(), 3);
    EXPECT_EQ(nodes->Item(3), b);
    EXPECT_EQ(a1->GetPrev()->Text(), "a0");
    EXPECT_THROW(nodes->Item(5), ETreeViewError);
    EXPECT_THROW(a->Item(2), ETreeViewError);
    c->MoveTo(a, naAddChild);
    EXPECT_EQ(a->GetLastChild(), c);
    EXPECT_THROW(a->MoveTo(c, naAddChild), ETreeViewError);
    a->Delete();
    EXPECT_EQ(nodes->Count(), 1);
}

TEST(Trees, EventsAllowAndRefuse) {
    TTreeView tree(nullptr);
    TTreeNode* root = tree.Items()->Add(nullptr, "root");
    TTreeNode* leaf = tree.Items()->AddChild(root, "leaf");
    bool allow = false;
    tree.OnExpanding = [&](TObject*, TTreeNode*, bool& allowed) { allowed = allow; };
    tree.OnChanging = [&](TObject*, TTreeNode*, bool& allowed) { allowed = allow; };
    EXPECT_FALSE(root->Expand(false));
    tree.SetSelected(leaf);
    EXPECT_EQ(tree.Selected(), nullptr);
    allow = true;
    int changes = 0;
    tree.OnChange = [&](TObject*, TTreeNode*) { ++changes; };
    tree.SetSelected(leaf);
    EXPECT_TRUE(root->Expanded());
    EXPECT_EQ(changes, 1);
    root->Collapse(false);
    EXPECT_EQ(tree.Selected(), root);
    tree.OnEditing = [](TObject*, TTreeNode* node, bool& allowed) { allowed = node->Text() != "root"; };
    EXPECT_FALSE(root->EditText());
    EXPECT_TRUE(leaf->EditText());
    tree.OnEdited = [](TObject*, TTreeNode*, AnsiString& text) { text += "!"; };
    tree.ProcessEndEdit("new", false);
    EXPECT_EQ(leaf->Text(), "new!");
    int deletions = 0;
    tree.OnDeletion = [&](TObject*, TTreeNode*) { ++deletions; };
    tree.Items()->Clear();
    EXPECT_EQ(deletions, 2);
    EXPECT_EQ(tree.Selected(), nullptr);
}

TEST(Trees, ANodeWithAButtonGetsItsChildrenWhenItExpands) {
    TTreeView tree(nullptr);
    TTreeNode* node = tree.Items()->Add(nullptr, "lazy");
    node->SetHasChildren(true);
    tree.OnExpanding = [&](TObject*, TTreeNode* expanding, bool&) { tree.Items()->AddChild(expanding, "came"); };
    EXPECT_TRUE(node->Expand(false));
    EXPECT_EQ(node->Count(), 1);
    TTreeNode* empty = tree.Items()->Add(nullptr, "empty");
    empty->SetHasChildren(true);
    tree.OnExpanding.Clear();
    EXPECT_FALSE(empty->Expand(false));
    EXPECT_FALSE(empty->HasChildren());
}

TEST(Trees, SortAndSearch) {
    TTreeView tree(nullptr);
    tree.SetSortType(stText);
    for (const char* text : {"pear", "Apple", "fig"}) tree.Items()->Add(nullptr, text);
    EXPECT_EQ(tree.Items()->Item(0)->Text(), "Apple");
    EXPECT_EQ(tree.Items()->Item(2)->Text(), "pear");
    EXPECT_EQ(tree.Items()->FindText("FIG"), tree.Items()->Item(1));
    TMemoryStream stream;
    tree.Items()->AddChild(tree.Items()->Item(0), "core");
    tree.SaveToStream(stream);
    EXPECT_EQ(stream.Bytes(), "Apple\r\n\tcore\r\nfig\r\npear\r\n");
    TTreeView copy(nullptr);
    stream.SetPosition(0);
    copy.LoadFromStream(stream);
    EXPECT_EQ(copy.Items()->Item(1)->Level(), 1);
}

TEST(Trees, TwentyThousandNodesAndADeepChainAreFreed) {
    TTreeView tree(nullptr);
    tree.Items()->BeginUpdate();
    for (int i = 0; i < 20000; ++i) tree.Items()->AddChild(nullptr, "node");
    TTreeNode* at = nullptr;
    for (int i = 0; i < 20000; ++i) at = tree.Items()->AddChild(at, "deep");
    tree.Items()->EndUpdate();
    EXPECT_EQ(tree.Items()->Count(), 40000);
    EXPECT_EQ(tree.Items()->Item(19999)->GetNext()->Text(), "deep");
    tree.Items()->Clear();
    EXPECT_EQ(tree.Items()->Count(), 0);
}

TEST(Menus, RadioItemsExcludeEachOther) {
    TPopupMenu menu(nullptr);
    std::vector<TMenuItem*> items;
    for (int i = 0; i < 3; ++i) {
        items.push_back(new TMenuItem(&menu));
        items.back()->SetRadioItem(true);
        items.back()->SetGroupIndex(1);
        menu.Items()->Add(items.back());
    }
    items[0]->SetChecked(true);
    items[2]->SetChecked(true);
    EXPECT_FALSE(items[0]->Checked());
    EXPECT_TRUE(items[2]->Checked());
    EXPECT_THROW(menu.Items()->Add(items[0]), EMenuError);
    EXPECT_THROW(menu.Items()->Items(3), EMenuError);
    EXPECT_EQ(items[1]->GetParentMenu(), &menu);
    items[1]->SetMenuIndex(0);
    EXPECT_EQ(menu.Items()->IndexOf(items[1]), 0);
    delete items[1];
    EXPECT_EQ(menu.Items()->Count(), 2);
}

TEST(Timers, FireWhileEnabled) {
    ManualTickClock clock;
    TTimer timer(nullptr);
    int fired = 0;
    timer.SetOnTimer([&](TObject*) { ++fired; });
    clock.Advance(1000);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 1);
    timer.SetInterval(50);
    clock.Advance(49);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 1);
    clock.Advance(1);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 2);
    timer.SetInterval(0);
    clock.Advance(5000);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 2);
    timer.SetInterval(10);
    timer.SetEnabled(false);
    clock.Advance(10);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 2);
}

TEST(Dragging, AsksTheTargetAndDrops) {
    TForm form(nullptr);
    auto* source = Put<TPanel>(&form, 0, 0, 50, 50);
    auto* target = Put<TPanel>(&form, 50, 0, 50, 50);
    std::string log;
    target->OnDragOver = [&](TObject*, TObject* from, int, int, TDragState state, bool& accept) {
        log += state == dsDragEnter ? "enter " : state == dsDragMove ? "move " : "leave ";
        accept = from == source;
    };
    target->OnDragDrop = [&](TObject*, TObject*, int x, int y) { log += "drop " + std::to_string(x + y) + " "; };
    source->OnEndDrag = [&](TObject*, TObject* to, int, int) { log += to == target ? "end" : "cancelled"; };
    source->BeginDrag(true);
    EXPECT_TRUE(source->Dragging());
    EXPECT_TRUE(drag::MoveTo(target, 1, 2));
    EXPECT_TRUE(drag::MoveTo(target, 3, 4));
    drag::Finish(true);
    EXPECT_EQ(log, "enter move drop 7 end");
    log.clear();
    source->BeginDrag(true);
    drag::MoveTo(target, 1, 1);
    EXPECT_FALSE(drag::MoveTo(nullptr, 0, 0));
    drag::Finish(true);
    EXPECT_EQ(log, "enter leave cancelled");
}

TEST(Mouse, AClickComesBeforeTheRelease) {
    TForm form(nullptr);
    auto* panel = Put<TPanel>(&form, 0, 0, 50, 50);
    std::string log;
    panel->OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { log += "d"; };
    panel->OnClick = [&](TObject*) { log += "c"; };
    panel->OnMouseUp = [&](TObject*, TMouseButton, TShiftState, int, int) { log += "u"; };
    panel->ProcessMouseDown(mbLeft, {}, 1, 1);
    panel->ProcessMouseUp(mbLeft, {}, 1, 1);
    EXPECT_EQ(log, "dcu");
    log.clear();
    panel->ProcessMouseDown(mbLeft, {}, 1, 1);
    panel->ProcessMouseUp(mbLeft, {}, 100, 1);
    EXPECT_EQ(log, "du");
    panel->SetEnabled(false);
    log.clear();
    panel->ProcessMouseDown(mbLeft, {}, 1, 1);
    EXPECT_EQ(log, "");
    EXPECT_EQ(panel->OnClick.HandlerName(), "");
}

TEST(Bitmaps, EncodeAndDecodeAreInverse) {
    PixelImage image;
    image.Width = 2;
    image.Height = 2;
    image.Pixels = {0xFF010203, 0x80FFFFFF, 0xFF000000, 0x00ABCDEF};
    EXPECT_EQ(DecodeBmp(EncodeBmp(image)).Pixels, image.Pixels);
}

TEST(Bitmaps, FewColoursRunsAndBadFiles) {
    // A header of 14 and 40 bytes, two colours, then the rows from the bottom.
    const auto header = [](int bits, int compression, int width, int height, const std::string& data) {
        std::string out = "BM";
        const auto put = [&out](uint32_t value, int bytes) {
            for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i));
        };
        put(0, 4), put(0, 4), put(14 + 40 + 8, 4);
        put(40, 4), put(static_cast<uint32_t>(width), 4), put(static_cast<uint32_t>(height), 4);
        put(1, 2), put(static_cast<uint32_t>(bits), 2), put(static_cast<uint32_t>(compression), 4), put(0, 4);
        put(0, 4), put(0, 4), put(2, 4), put(0, 4);
        put(0x0000FF, 4), put(0x00FF00, 4);
        return out + data;
    };
    const uint32_t blue = 0xFF0000FF, green = 0xFF00FF00;
    EXPECT_EQ(DecodeBmp(header(1, 0, 2, 1, std::string("\x40\0\0\0", 4))).Pixels, (std::vector<uint32_t>{blue, green}));
    EXPECT_EQ(DecodeBmp(header(4, 0, 2, 1, std::string("\x10\0\0\0", 4))).Pixels, (std::vector<uint32_t>{green, blue}));
    EXPECT_EQ(DecodeBmp(header(8, 1, 3, 1, std::string("\x02\x01\x01\x00\x00\x01", 6))).Pixels,
              (std::vector<uint32_t>{green, green, blue}));
    EXPECT_EQ(DecodeBmp(header(4, 2, 3, 1, std::string("\x03\x01\x00\x01", 4))).Pixels,
              (std::vector<uint32_t>{blue, green, blue}));
    EXPECT_THROW(DecodeBmp("BM"), EInvalidGraphic);
    EXPECT_THROW(DecodeBmp(header(24, 0, 100000, 100000, "")), EInvalidGraphic);
    EXPECT_THROW(DecodeBmp(header(24, 0, 10, 10, "short")), EInvalidGraphic);
    EXPECT_THROW(DecodeBmp(header(8, 1, 3, 1, "\x02")), EInvalidGraphic);
    EXPECT_THROW(DecodeBmp(header(7, 0, 3, 1, "abcd")), EInvalidGraphic);
    EXPECT_THROW(DecodeIco(std::string("\0\0\1\0\1\0", 6)), EInvalidGraphic);
    std::string whole = header(4, 0, 8, 8, std::string(32, '\x11'));
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_THROW(DecodeBmp(std::string_view(whole).substr(0, length)), EInvalidGraphic) << length;
}

TEST(Bitmaps, AnImageListCutsAStripAndMasksAColour) {
    TImageList list(nullptr);
    list.SetWidth(2);
    list.SetHeight(2);
    TBitmap strip;
    PixelImage pixels;
    pixels.Width = 4;
    pixels.Height = 2;
    pixels.Pixels = {0xFFFF00FF, 1 | 0xFF000000, 3 | 0xFF000000, 4 | 0xFF000000,
                     0xFFFF00FF, 2 | 0xFF000000, 5 | 0xFF000000, 6 | 0xFF000000};
    strip.SetPixels(pixels);
    EXPECT_EQ(list.AddMasked(strip, clDefault), 0);
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Image(0).At(0, 0), 0u);
    EXPECT_EQ(list.Image(0).At(1, 1), 2 | 0xFF000000);
    EXPECT_EQ(list.Image(1).At(1, 1), 6 | 0xFF000000);
    EXPECT_THROW(list.Image(2), EListError);
}
