#include <gtest/gtest.h>

#include "control_support.h"
#include "platform/controls/bit_buttons.h"
#include "platform/controls/data_modules.h"
#include "platform/controls/edits.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/groups.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/menus.h"
#include "platform/controls/pages.h"
#include "platform/controls/panels.h"
#include "platform/controls/screen.h"

using namespace vyn;
using namespace control_test;

namespace {

class FormTest : public testing::Test {
  protected:
    FormTest() : form(nullptr) {
        form.SetName("Form1");
        form.SetClientSize(400, 300);
    }
    ~FormTest() override { Application()->ProcessMessages(); }
    TForm form;
};

class TBaseSample : public TForm {
    VYN_OBJECT
  public:
    explicit TBaseSample(TComponent* owner) : TForm(owner) {}
    ~TBaseSample() override { BeforeDestruction(); }
    void Created(TObject*) { ++created; }
    static int created;
};
int TBaseSample::created = 0;
const ClassInfo& TBaseSample::StaticClass() {
    static const ClassInfo info =
        DefineForm<TBaseSample, TForm>("TBaseSample").Method("Created", &TBaseSample::Created);
    return info;
}

class TDerivedSample : public TBaseSample {
    VYN_OBJECT
  public:
    explicit TDerivedSample(TComponent* owner) : TBaseSample(owner) {}
};
const ClassInfo& TDerivedSample::StaticClass() {
    static const ClassInfo info = DefineForm<TDerivedSample, TBaseSample>("TDerivedSample");
    return info;
}

}  // namespace

TEST_F(FormTest, TabVisitsControlsInOrderAcrossContainers) {
    auto* first = Put<TEdit>(&form, 0, 0, 50, 20);
    auto* panel = Put<TPanel>(&form, 0, 30, 100, 100);
    auto* inner1 = Put<TEdit>(panel, 0, 0, 50, 20);
    auto* inner2 = Put<TEdit>(panel, 0, 30, 50, 20);
    auto* last = Put<TEdit>(&form, 0, 150, 50, 20);
    inner2->SetTabOrder(0);
    form.Show();
    EXPECT_EQ(form.ActiveControl(), first);
    EXPECT_TRUE(first->Focused());
    Press(first, VK_TAB);
    EXPECT_EQ(form.ActiveControl(), inner2);
    Press(inner2, VK_TAB);
    EXPECT_EQ(form.ActiveControl(), inner1);
    Press(inner1, VK_TAB);
    EXPECT_EQ(form.ActiveControl(), last);
    Press(last, VK_TAB);
    EXPECT_EQ(form.ActiveControl(), first);
    Press(first, VK_TAB, {ssShift});
    EXPECT_EQ(form.ActiveControl(), last);
    inner1->SetTabStop(false);
    inner2->SetEnabled(false);
    form.SetActiveControl(first);
    Press(first, VK_TAB);
    EXPECT_EQ(form.ActiveControl(), last);
}

TEST_F(FormTest, EnterAndExitAreToldFromTheInsideOutAndTheOutsideIn) {
    auto* left = Put<TPanel>(&form, 0, 0, 100, 100);
    auto* right = Put<TPanel>(&form, 100, 0, 100, 100);
    auto* a = Put<TEdit>(left, 0, 0, 50, 20);
    auto* b = Put<TEdit>(right, 0, 0, 50, 20);
    std::string log;
    const auto note = [&log](TWinControl* control, const char* name) {
        control->OnEnter = [&log, name](TObject*) { log += std::string("+") + name; };
        control->OnExit = [&log, name](TObject*) { log += std::string("-") + name; };
    };
    note(left, "L");
    note(right, "R");
    note(a, "a");
    note(b, "b");
    form.Show();
    EXPECT_EQ(log, "+L+a");
    log.clear();
    b->SetFocus();
    EXPECT_EQ(log, "-a-L+R+b");
}

TEST_F(FormTest, AnExitThatRaisesKeepsTheKeyboard) {
    auto* a = Put<TEdit>(&form, 0, 0, 50, 20);
    auto* b = Put<TEdit>(&form, 0, 30, 50, 20);
    form.Show();
    a->OnExit = [](TObject*) { throw EConvertError("not a date"); };
    EXPECT_THROW(b->SetFocus(), EConvertError);
    EXPECT_EQ(form.ActiveControl(), a);
    EXPECT_TRUE(a->Focused());
}

TEST_F(FormTest, WhatIsHiddenOrDisabledCannotHaveTheKeyboard) {
    auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
    form.Show();
    edit->SetEnabled(false);
    EXPECT_FALSE(edit->CanFocus());
    EXPECT_EQ(form.ActiveControl(), nullptr);
    EXPECT_THROW(edit->SetFocus(), EInvalidOperation);
    TEdit loose(nullptr);
    EXPECT_THROW(loose.SetFocus(), EInvalidOperation);
}

TEST_F(FormTest, AnActiveControlThatGoesIsForgotten) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 100);
    auto* edit = Put<TEdit>(panel, 0, 0, 50, 20);
    form.Show();
    EXPECT_EQ(form.ActiveControl(), edit);
    delete panel;
    EXPECT_EQ(form.ActiveControl(), nullptr);
    EXPECT_EQ(Screen()->ActiveControl(), &form);
}

TEST_F(FormTest, RadioButtonsOfAParentExcludeEachOther) {
    auto* panel = Put<TPanel>(&form, 0, 0, 100, 100);
    auto* a = Put<TRadioButton>(&form, 0, 0, 50, 17);
    auto* b = Put<TRadioButton>(&form, 0, 20, 50, 17);
    auto* other = Put<TRadioButton>(panel, 0, 0, 50, 17);
    int clicks = 0;
    b->OnClick = [&](TObject*) { ++clicks; };
    a->SetChecked(true);
    other->SetChecked(true);
    b->ProcessPress();
    EXPECT_FALSE(a->Checked());
    EXPECT_TRUE(b->Checked());
    EXPECT_TRUE(other->Checked());
    EXPECT_EQ(clicks, 1);
    b->ProcessPress();
    EXPECT_EQ(clicks, 1);
    form.Show();
    b->SetFocus();
    Press(b, VK_UP);
    EXPECT_TRUE(a->Checked());
    EXPECT_EQ(form.ActiveControl(), a);
}

TEST_F(FormTest, ARadioGroupClicksOnAChangeOnly) {
    auto* group = Put<TRadioGroup>(&form, 0, 0, 100, 100);
    group->Items()->SetCommaText("a,b,c");
    int clicks = 0;
    group->OnClick = [&](TObject*) { ++clicks; };
    group->SetItemIndex(1);
    group->SetItemIndex(1);
    EXPECT_EQ(clicks, 1);
    group->Buttons(2)->ProcessPress();
    EXPECT_EQ(group->ItemIndex(), 2);
    EXPECT_FALSE(group->Buttons(1)->Checked());
    EXPECT_EQ(clicks, 2);
    group->SetItemIndex(99);
    EXPECT_EQ(group->ItemIndex(), 2);
    group->SetItemIndex(-5);
    EXPECT_EQ(group->ItemIndex(), -1);
    EXPECT_FALSE(group->Buttons(2)->Checked());
}

TEST_F(FormTest, ACheckBoxGoesThroughItsStates) {
    auto* box = Put<TCheckBox>(&form, 0, 0, 50, 17);
    int clicks = 0;
    box->OnClick = [&](TObject*) { ++clicks; };
    box->ProcessPress();
    EXPECT_TRUE(box->Checked());
    box->AllowGrayed = true;
    box->ProcessPress();
    EXPECT_EQ(box->State(), cbUnchecked);
    box->ProcessPress();
    EXPECT_EQ(box->State(), cbGrayed);
    box->ProcessPress();
    EXPECT_EQ(box->State(), cbChecked);
    box->SetChecked(false);
    EXPECT_EQ(clicks, 5);
    form.Show();
    Press(box, VK_SPACE);
    EXPECT_EQ(box->State(), cbGrayed);
}

TEST_F(FormTest, EnterPressesTheDefaultButtonAndEscapeTheCancelButton) {
    auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
    auto* ok = Put<TButton>(&form, 0, 30, 50, 20);
    auto* cancel = Put<TButton>(&form, 60, 30, 50, 20);
    auto* third = Put<TButton>(&form, 120, 30, 50, 20);
    ok->SetDefault(true);
    ok->SetModalResult(mrOk);
    cancel->SetCancel(true);
    cancel->SetModalResult(mrCancel);
    int thirds = 0;
    third->OnClick = [&](TObject*) { ++thirds; };
    form.Show();
    Press(edit, VK_RETURN);
    EXPECT_EQ(form.ModalResult(), mrOk);
    Press(edit, VK_ESCAPE);
    EXPECT_EQ(form.ModalResult(), mrCancel);
    third->SetFocus();
    EXPECT_FALSE(ok->Active());
    Press(third, VK_RETURN);
    EXPECT_EQ(thirds, 1);
    edit->SetFocus();
    EXPECT_TRUE(ok->Active());
    ok->SetEnabled(false);
    form.SetModalResult(mrNone);
    Press(edit, VK_RETURN);
    EXPECT_EQ(form.ModalResult(), mrNone);
}

TEST_F(FormTest, MnemonicsReachTheirControls) {
    auto* label = Put<TLabel>(&form, 0, 0, 50, 13);
    auto* edit = Put<TEdit>(&form, 60, 0, 50, 20);
    auto* other = Put<TEdit>(&form, 60, 30, 50, 20);
    auto* button = Put<TButton>(&form, 60, 60, 50, 20);
    label->SetCaption("&Name && title");
    label->SetFocusControl(edit);
    button->SetCaption("&Save");
    int saved = 0;
    button->OnClick = [&](TObject*) { ++saved; };
    form.Show();
    other->SetFocus();
    Press(other, 'N', {ssAlt});
    EXPECT_EQ(form.ActiveControl(), edit);
    Press(edit, 'S', {ssAlt});
    EXPECT_EQ(saved, 1);
    label->SetShowAccelChar(false);
    other->SetFocus();
    Press(other, 'N', {ssAlt});
    EXPECT_EQ(form.ActiveControl(), other);
}

TEST_F(FormTest, KeyPreviewSeesKeysFirst) {
    auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
    form.Show();
    form.OnKeyPress = [](TObject*, char& key) {
        if (key == 'x') key = 0;
    };
    Type(edit, "x");
    EXPECT_EQ(edit->Text(), "x");
    form.KeyPreview = true;
    Type(edit, "xy");
    EXPECT_EQ(edit->Text(), "xy");
}

TEST_F(FormTest, ShortCutsOfTheMenuClickItsEnabledEntries) {
    auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
    auto* menu = new TMainMenu(&form);
    form.SetMenu(menu);
    auto* file = new TMenuItem(&form);
    auto* save = new TMenuItem(&form);
    file->SetCaption("&File");
    menu->Items()->Add(file);
    file->Add(save);
    save->SetShortCut(ShortCut('S', {ssCtrl}));
    std::string log;
    file->OnClick = [&](TObject*) { log += "f"; };
    save->OnClick = [&](TObject*) { log += "s"; };
    form.Show();
    Press(edit, 'S', {ssCtrl});
    EXPECT_EQ(log, "fs");
    save->SetEnabled(false);
    Press(edit, 'S', {ssCtrl});
    EXPECT_EQ(log, "fs");
    save->SetEnabled(true);
    form.OnShortCut = [&](uint16_t key, TShiftState, bool& handled) {
        handled = key == 'S';
        log += "!";
    };
    Press(edit, 'S', {ssCtrl});
    EXPECT_EQ(log, "fs!");
}

TEST_F(FormTest, ShowModalWaitsForAResultAndAsksBeforeItEnds) {
    std::string log;
    form.OnShow = [&](TObject*) { log += "show "; };
    form.OnHide = [&](TObject*) { log += "hide "; };
    form.OnClose = [&](TObject*, TCloseAction&) { log += "close "; };
    int asked = 0;
    WindowHandle later([&](TMessage& m) { form.SetModalResult(static_cast<TModalResult>(m.WParam)); });
    form.OnCloseQuery = [&](TObject*, bool& canClose) {
        log += "query ";
        canClose = ++asked > 1;
        if (!canClose) PostMessage(later.Handle(), WM_USER, mrNo, 0);
    };
    PostMessage(later.Handle(), WM_USER, mrYes, 0);
    EXPECT_EQ(form.ShowModal(), mrNo);
    EXPECT_EQ(log, "show query query close hide ");
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(form.IsModal());
    form.Show();
    EXPECT_THROW(form.ShowModal(), EInvalidOperation);
}

TEST_F(FormTest, ClosingAModalFormCancelsIt) {
    WindowHandle later([&](TMessage&) { form.Close(); });
    PostMessage(later.Handle(), WM_USER, 0, 0);
    EXPECT_EQ(form.ShowModal(), mrCancel);
}

TEST_F(FormTest, CloseAsksWhatToDo) {
    form.Show();
    TCloseAction answer = caNone;
    form.OnClose = [&](TObject*, TCloseAction& action) { action = answer; };
    form.Close();
    EXPECT_TRUE(form.Visible());
    answer = caMinimize;
    form.Close();
    EXPECT_EQ(form.WindowState(), wsMinimized);
    answer = caHide;
    SendMessage(form.Handle(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(form.Visible());
    auto* other = new TForm(nullptr);
    bool gone = false;
    other->OnDestroy = [&](TObject*) { gone = true; };
    other->OnClose = [](TObject*, TCloseAction& action) { action = caFree; };
    other->Show();
    other->Close();
    EXPECT_FALSE(gone);
    Application()->ProcessMessages();
    EXPECT_TRUE(gone);
}

TEST_F(FormTest, TheMainFormsEndIsTheProgramsEnd) {
    Application()->SetMainForm(&form);
    form.Show();
    form.Close();
    EXPECT_TRUE(Application()->Terminated());
    Application()->Restart();
    Application()->SetMainForm(nullptr);
}

TEST_F(FormTest, MessagesToAControlsHandleReachItsWndProc) {
    class Listener : public TPanel {
      public:
        using TPanel::TPanel;
        void WndProc(TMessage& message) override {
            if (message.Msg == WM_USER + 1)
                message.Result = 7;
            else
                TPanel::WndProc(message);
        }
    };
    auto* panel = new Listener(&form);
    EXPECT_FALSE(panel->HandleAllocated());
    const HWND handle = panel->Handle();
    EXPECT_EQ(SendMessage(handle, WM_USER + 1, 0, 0), 7);
    EXPECT_EQ(panel->Perform(WM_USER + 1, 0, 0), 7);
    delete panel;
    EXPECT_EQ(SendMessage(handle, WM_USER + 1, 0, 0), 0);
}

TEST_F(FormTest, TheActiveFormChangesWithActivation) {
    TForm second(nullptr);
    form.Show();
    EXPECT_EQ(Screen()->ActiveForm(), &form);
    std::string log;
    form.OnDeactivate = [&](TObject*) { log += "-1"; };
    second.OnActivate = [&](TObject*) { log += "+2"; };
    second.Show();
    EXPECT_EQ(log, "-1+2");
    EXPECT_EQ(Screen()->ActiveForm(), &second);
    second.Hide();
    EXPECT_EQ(Screen()->ActiveForm(), &form);
}

TEST(FormClasses, CompiledFormsAreReadFromTheAncestorDown) {
    RegisterAll();
    std::string base;
    std::string derived;
    {
        TForm form(nullptr);
        form.SetName("Sample");
        form.SetCaption("Base");
        form.OnCreate.Bind("Created", [](TObject*) {});
        auto* edit = Put<TEdit>(&form, 5, 5, 50, 21);
        edit->SetName("Edit1");
        base = Stored(form);
        // The descendant's form holds what differs from its ancestor.
        TForm ancestor(nullptr);
        TViewStream stream(base);
        TReader reader(stream);
        reader.OnFindMethod = [](TReader&, const AnsiString& name, TPersistent* instance, const PropertyInfo& property,
                                 const MethodInfo*&, bool& error) {
            property->BindEventSenderOnly(*instance, name, [](TObject*) {});
            error = false;
        };
        reader.ReadRootComponent(&ancestor);
        edit->SetLeft(77);
        form.SetCaption("Derived");
        TMemoryStream out;
        {
            TWriter writer(out);
            writer.WriteDescendent(form, &ancestor);
        }
        derived = std::string(out.Bytes());
    }
    TBaseSample::created = 0;
    RegisterFormResource("TBaseSample", base);
    RegisterFormResource("TDerivedSample", derived);
    std::unique_ptr<TCustomForm> form(CreateFormNormal(&TDerivedSample::StaticClass(), nullptr));
    EXPECT_EQ(form->ClassName(), "TDerivedSample");
    EXPECT_EQ(form->Caption(), "Derived");
    EXPECT_EQ(static_cast<TEdit*>(form->FindComponent("Edit1"))->Left(), 77);
    EXPECT_EQ(TBaseSample::created, 1);
    std::unique_ptr<TBaseSample> plain(CreateForm<TBaseSample>(nullptr));
    EXPECT_EQ(plain->Caption(), "Base");
    std::unique_ptr<TCustomForm> fresh(CreateFormNew(&TDerivedSample::StaticClass(), nullptr));
    EXPECT_EQ(fresh->ClassName(), "TDerivedSample");
    EXPECT_EQ(fresh->ComponentCount(), 0);
    EXPECT_EQ(TBaseSample::created, 2);
    UnregisterFormResource("TBaseSample");
    UnregisterFormResource("TDerivedSample");
    std::unique_ptr<TCustomForm> empty(CreateFormNormal(&TDerivedSample::StaticClass(), nullptr));
    EXPECT_EQ(empty->ComponentCount(), 0);
    EXPECT_THROW(CreateFormNew(&TEdit::StaticClass(), nullptr), EInvalidCast);
}

TEST(FormClasses, AVisibleFormIsShownWhenItIsMade) {
    RegisterAll();
    std::string bytes;
    {
        TForm form(nullptr);
        form.SetName("Sample");
        form.Show();
        bytes = Stored(form);
    }
    RegisterFormResource("TBaseSample", bytes);
    std::unique_ptr<TBaseSample> form(CreateForm<TBaseSample>(nullptr));
    EXPECT_TRUE(form->Visible());
    EXPECT_TRUE(form->Showing());
    UnregisterFormResource("TBaseSample");
}

TEST(DataModules, HoldComponentsAndTellTheirEnd) {
    bool gone = false;
    {
        TDataModule module(nullptr);
        EXPECT_EQ(Screen()->DataModules(Screen()->DataModuleCount() - 1), &module);
        module.OnDestroy = [&](TObject*) { gone = true; };
        new TMainMenu(&module);
    }
    EXPECT_TRUE(gone);
}

namespace {

// A toolkit that notes what it is told.
class NotingFactory : public PeerFactory {
  public:
    NotingFactory() { SetPeerFactory(this); }
    ~NotingFactory() override { SetPeerFactory(nullptr); }
    class Peer : public ControlPeer {
      public:
        explicit Peer(NotingFactory& factory) : factory_(factory) { ++factory_.alive; }
        ~Peer() override { --factory_.alive; }
        void Changed(PeerChange what) override { factory_.changes.push_back(what); }

      private:
        NotingFactory& factory_;
    };
    std::unique_ptr<ControlPeer> MakePeer(TControl&) override { return std::make_unique<Peer>(*this); }
    void ShowPopupMenu(TPopupMenu&, TPoint at) override { popupAt = at; }
    int alive = 0;
    std::vector<PeerChange> changes;
    TPoint popupAt;
};

}  // namespace

TEST(Peers, AreMadeWhenTheFormIsShownAndGoWithTheirControls) {
    NotingFactory factory;
    {
        TForm form(nullptr);
        auto* edit = Put<TEdit>(&form, 0, 0, 50, 20);
        EXPECT_EQ(factory.alive, 0);
        form.Show();
        EXPECT_EQ(factory.alive, 2);
        auto* panel = Put<TPanel>(&form, 0, 30, 50, 50);
        EXPECT_EQ(factory.alive, 3);
        Put<TLabel>(panel, 0, 0, 5, 5);
        EXPECT_EQ(factory.alive, 4);
        factory.changes.clear();
        edit->SetText("new");
        EXPECT_EQ(factory.changes, std::vector<PeerChange>{PeerChange::Text});
        delete panel;
        EXPECT_EQ(factory.alive, 2);
        auto* menu = new TPopupMenu(&form);
        form.SetPopupMenu(menu);
        form.SetBounds(10, 20, 300, 200);
        EXPECT_TRUE(edit->ProcessContextPopup(3, 4));
        EXPECT_EQ(factory.popupAt, (TPoint{13, 24}));
    }
    EXPECT_EQ(factory.alive, 0);
}
