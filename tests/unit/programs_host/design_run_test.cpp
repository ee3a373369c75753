// The design run: boxes are set up in the running screen, and stored alone.
#include <sstream>

#include "controls/Ufrmeditvyneditbox.h"
#include "host_fixture.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/lists.h"
#include "platform/controls/screen.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/status_bars.h"
#include "programs/host/design_run.h"
#include "programs/host/main_form.h"

namespace vyn {

namespace {

class DesignRun : public HostLookups {
  protected:
    DesignRun() {
        Store(5, 1, 2,
              "object FRM: TCustomFRM\n  Caption = 'Comanda'\n  object Client: TVynEditBox\n    Left = 10\n"
              "    Top = 10\n    Width = 121\n    Height = 25\n    TabOrder = 0\n    VynDataSource = FontVyn\n"
              "    DataField = 'nom'\n  end\n  object Altre: TEdit\n    Left = 10\n    Top = 50\n    Width = 121\n"
              "    Height = 25\n    TabOrder = 1\n  end\n  object FontVyn: TVynDataSource\n  end\nend\n");
        form = &Open<TCustomFRM>(5);
        form->Show();
        Box().SetFocus();
    }
    TVynEditBox& Box() { return *ObjectCast<TVynEditBox>(form->FindComponent("Client")); }
    std::string Stored() {
        const auto stream = app->Components().GetStreamComponent(5);
        stream->SetPosition(0);
        return BinaryToText(*stream);
    }
    // The lines of one text that the other has not.
    static std::vector<std::string> Added(const std::string& before, const std::string& after) {
        std::vector<std::string> lines;
        std::istringstream text(after);
        for (std::string line; std::getline(text, line);)
            if (("\n" + before).find("\n" + line + "\n") == std::string::npos) lines.push_back(line);
        return lines;
    }
    // Does this in the dialog that opens, and closes it.
    void InDialog(const std::function<void(TFRMeditVynEditBox&)>& act) {
        StopTimer(timer_);
        timer_ = StartTimer(1, [this, act] {
            auto* dialog = ObjectCast<TFRMeditVynEditBox>(Screen()->ActiveForm());
            if (!dialog) return;
            ++dialogs;
            act(*dialog);
            dialog->SetModalResult(mrOk);
        });
        clock_.Advance(1);
    }
    bool Press(uint16_t key, TShiftState shift) {
        clock_.Advance(1);
        return Box().ProcessKeyDown(key, shift);
    }
    static TComboBox& Combo(TForm& dialog, const char* name) {
        return *ObjectCast<TComboBox>(dialog.FindComponent(name));
    }
    ~DesignRun() override { StopTimer(timer_); }

    TCustomFRM* form = nullptr;
    int dialogs = 0;

  private:
    ManualTickClock clock_{1000};
    TimerId timer_ = 0;
};

void ShowName(TFRMeditVynEditBox& dialog) {
    auto& shown = *ObjectCast<TComboBox>(dialog.FindComponent("cbChildDataShow"));
    shown.ProcessTextEdit("nom", 3, 0);
}

}  // namespace

TEST_F(DesignRun, CtrlF2SetsABoxUpAndStoresThatAlone) {
    app->SetDesignTime(true);
    app->SetModified(false);
    const std::string before = Stored();
    // What the screen has become meanwhile is no part of what is stored.
    form->SetBounds(300, 300, 500, 400);
    ObjectCast<TEdit>(form->FindComponent("Altre"))->SetText("typed");
    InDialog(ShowName);
    EXPECT_TRUE(Press(VK_F2, {ssCtrl}));
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(Box().ChildDataShow(), "nom");
    EXPECT_EQ(Added(before, Stored()), std::vector<std::string>{"    ChildDataShow = 'nom'"});
    EXPECT_EQ(Added(Stored(), before), std::vector<std::string>{});
    EXPECT_TRUE(app->GetModified());
    EXPECT_EQ(form->Component().IDComponent, 5);
}

TEST_F(DesignRun, ASettingThatIsItsDefaultAgainIsGoneAndOthersComeInTheirPlaces) {
    app->SetDesignTime(true);
    InDialog(ShowName);
    Press(VK_F2, {ssCtrl});
    InDialog([](TFRMeditVynEditBox& dialog) {
        dialog.Edit_EditBox()->SetChildDataShow("");
        dialog.Edit_EditBox()->SetNChild(3);
        dialog.Edit_EditBox()->SetDataLinkType(dlt_Search);
        dialog.Edit_EditBox()->RelationedFields()->Add("a>b");
    });
    Press(VK_F2, {ssCtrl});
    const std::string text = Stored();
    EXPECT_EQ(text.find("ChildDataShow"), std::string::npos);
    EXPECT_NE(text.find("    DataLinkType = dlt_Search\n    NChild = 3\n    RelationedFields.Strings = (\n"),
              std::string::npos)
        << text;
}

TEST_F(DesignRun, ABoxOfAnAncestorIsStoredWithTheNodeThatChangesIt) {
    Store(6, 2, 18,
          "object FRM: TCustomFRM\n  object Comu: TVynEditBox\n    Left = 10\n    Top = 90\n    Width = 121\n"
          "    Height = 21\n    TabOrder = 0\n    DataField = 'nom'\n  end\nend\n");
    Store(7, 6, 2, "object FRM: TCustomFRM\n  Caption = 'Fill'\nend\n");
    auto& child = Open<TCustomFRM>(7);
    auto& box = *ObjectCast<TVynEditBox>(child.FindComponent("Comu"));
    box.SetChildDataShow("nom");
    StoreEditBox(child, box);
    const auto stream = app->Components().GetStreamComponent(7);
    stream->SetPosition(0);
    const std::string text = BinaryToText(*stream);
    EXPECT_NE(text.find("Comu: TVynEditBox\n    ChildDataShow = 'nom'\n  end"), std::string::npos) << text;
}

TEST_F(DesignRun, EverySettingOfTheDialogIsStored) {
    app->SetDesignTime(true);
    InDialog([](TFRMeditVynEditBox& dialog) {
        TVynEditBox& box = *dialog.Edit_EditBox();
        box.SetDataField("codi");
        box.SetReadOnly(true);
        box.SetDataLinkType(dlt_Class);
        box.SetNChild(3);
        box.SetChildDataKey("codi");
        box.SetChildClassName("ARTICLES");
        box.SetChildDataShow("nom");
        box.SetAutoSearch(true);
        box.SetAutoSearchWaitMiliSeconds(500);
        box.SetAutoRefresh(true);
        box.SetExecuteEventName("Calcula");
        box.RelationedFields()->Add("nom>descripcio");
        box.SetShowButton(false);
        box.SetVynDataSource(nullptr);
    });
    EXPECT_TRUE(Press(VK_F2, {ssCtrl}));
    TMemoryStream file;
    app->SaveAppToStream(file);
    file.SetPosition(0);
    TVynApp again(nullptr);
    again.LoadAppFromStream(file);
    auto* opened = ObjectCast<TCustomFRM>(again.ObreComponent(5, Application()));
    ASSERT_NE(opened, nullptr);
    auto& box = *ObjectCast<TVynEditBox>(opened->FindComponent("Client"));
    EXPECT_EQ(box.DataField(), "codi");
    EXPECT_TRUE(box.DataReadOnly());
    EXPECT_EQ(box.DataLinkType(), dlt_Class);
    EXPECT_EQ(box.NChild(), 3);
    EXPECT_EQ(box.ChildDataKey(), "codi");
    EXPECT_EQ(box.ChildClassName(), "ARTICLES");
    EXPECT_EQ(box.ChildDataShow(), "nom");
    EXPECT_TRUE(box.AutoSearch());
    EXPECT_EQ(box.AutoSearchWaitMiliSeconds(), 500u);
    EXPECT_TRUE(box.AutoRefresh());
    EXPECT_EQ(box.ExecuteEventName(), "Calcula");
    EXPECT_EQ(box.RelationedFields()->CommaText(), "nom>descripcio");
    EXPECT_FALSE(box.ShowButton());
    EXPECT_EQ(box.VynDataSource(), nullptr);
    again.CloseApp();
}

TEST_F(DesignRun, ADialogThatChangesNothingStoresNothing) {
    app->SetDesignTime(true);
    app->SetModified(false);
    InDialog([](TFRMeditVynEditBox&) {});
    EXPECT_TRUE(Press(VK_F2, {ssCtrl}));
    EXPECT_EQ(dialogs, 1);
    EXPECT_FALSE(app->GetModified());
}

TEST_F(DesignRun, WithoutDesignTimeOrAnotherKeyNothingOpens) {
    InDialog(ShowName);
    Press(VK_F2, {ssCtrl});
    app->SetDesignTime(true);
    Press(VK_F2, {});
    Press(VK_F2, {ssCtrl, ssShift});
    Press(VK_F1, {ssCtrl});
    ObjectCast<TEdit>(form->FindComponent("Altre"))->SetFocus();
    EXPECT_FALSE(DesignKey(*form, VK_F2, {ssCtrl})) << "a plain edit";
    app->SetDesignTime(false);
    Box().SetFocus();
    Press(VK_F2, {ssCtrl});
    EXPECT_EQ(dialogs, 0);
    EXPECT_EQ(Box().ChildDataShow(), "");
}

TEST_F(DesignRun, ABoxThatIsNotStoredSaysSo) {
    app->SetDesignTime(true);
    auto* nameless = new TVynEditBox(form);
    nameless->SetParent(form);
    AnsiString message;
    try {
        StoreEditBox(*form, *nameless);
    } catch (const Exception& error) {
        message = error.Message();
    }
    EXPECT_EQ(message,
              "The box \"\" is not among the stored components of the form CustomFRM: its settings are not stored");
}

TEST_F(DesignRun, ABoxMayGoWhileItsDialogIsOpen) {
    app->SetDesignTime(true);
    app->SetModified(false);
    TVynEditBox& box = Box();
    InDialog([](TFRMeditVynEditBox& dialog) { delete dialog.Edit_EditBox(); });
    DesignEditBox(*form, box);
    EXPECT_EQ(dialogs, 1);
    EXPECT_FALSE(app->GetModified());
}

TEST_F(DesignRun, TheMainWindowSaysThatItIsOne) {
    auto& main = *ObjectCast<TFRMtnAplicacio>(CreateFormNormal(&TFRMtnAplicacio::StaticClass(), Application()));
    main.ShowApplication(app.get());
    const auto panel = [&] {
        auto* bar = ObjectCast<TStatusBar>(main.FindComponent("Estat"));
        return static_cast<TStatusPanel*>(bar->Panels()->Items(2))->Text();
    };
    EXPECT_EQ(panel(), "");
    app->SetDesignTime(true);
    SendMessage(main.Handle(), VYN_DESIGNTIMEON, 0, 0);
    EXPECT_EQ(panel(), "Disseny: Ctrl+F2");
    app->SetDesignTime(false);
    SendMessage(main.Handle(), VYN_DESIGNTIMEOFF, 0, 0);
    EXPECT_EQ(panel(), "");
    delete &main;
}

}  // namespace vyn
