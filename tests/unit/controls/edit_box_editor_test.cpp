// The dialog that sets a lookup box up: what it shows, and that each change is the box's at once.
#include "controls/Ufrmeditvyneditbox.h"
#include "edit_box_fixtures.h"
#include "platform/controls/bit_buttons.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/pages.h"
#include "platform/controls/screen.h"

using namespace edit_box_fixtures;

namespace {

class EditBoxEditor : public EditBoxTest {
  protected:
    void SetUp() override {
        EditBoxTest::SetUp();
        second = Make<TVynDataSource>("Second");
        OpenDialog();
    }
    void TearDown() override {
        dialog.reset();
        EditBoxTest::TearDown();
    }
    void OpenDialog() {
        dialog.reset(CreateForm<TFRMeditVynEditBox>(nullptr));
        dialog->SetEdit_EditBox(box);
    }
    template <class T>
    T& Part(const char* name) {
        auto* part = ObjectCast<T>(dialog->FindComponent(name));
        if (!part) throw Exception(AnsiString("no ") + name);
        return *part;
    }
    TComboBox& Combo(const char* name) { return Part<TComboBox>(name); }
    AnsiString Items(const char* name) { return Combo(name).Items()->CommaText(); }
    void Write(const char* name, const AnsiString& text) {
        Combo(name).ProcessTextEdit(text, static_cast<int>(text.size()), 0);
    }
    void Check(const char* name, bool value) {
        auto& check = Part<TCheckBox>(name);
        ASSERT_NE(check.Checked(), value);
        check.ProcessPress();
        ASSERT_EQ(check.Checked(), value);
    }
    AnsiString Info() {
        return Part<TLabel>("lblGeneralInfoForms").Caption() + " " + Part<TLabel>("lblGeneralInfoComps").Caption();
    }

    TVynDataSource* second = nullptr;
    std::unique_ptr<TFRMeditVynEditBox> dialog;
};

TEST_F(EditBoxEditor, ShowsWhatTheBoxIsSetTo) {
    box->SetAutoSearchWaitMiliSeconds(500);
    box->SetExecuteEventName("Copia");
    box->SetAutoRefresh(true);
    box->RelationedFields()->Add("City>Town");
    OpenDialog();
    EXPECT_EQ(dialog->Caption(), "Box: TVynEditBox");
    EXPECT_EQ(Combo("cbDataSource").Text(), "Source");
    EXPECT_EQ(Items("cbDataSource"), "Source,Second") << "the data sources of the box's owner";
    EXPECT_EQ(Combo("cbFieldName").Text(), "Customer");
    EXPECT_EQ(Items("cbFieldName"), "Id,Customer,Other,Town,Title,Free");
    EXPECT_EQ(Items("cbDataLinkType"), "dlt_Field,dlt_Search,dlt_Class");
    EXPECT_EQ(Combo("cbDataLinkType").ItemIndex(), 1);
    EXPECT_TRUE(Part<TCheckBox>("cbShowButton").Checked());
    EXPECT_EQ(Part<TEdit>("ebExecuteEventName").Text(), "Copia");
    EXPECT_FALSE(Part<TCheckBox>("cbReadOnly").Checked());
    EXPECT_EQ(Items("cbNChild"), "\"10 - N\",\"20 - N\"");
    EXPECT_EQ(Combo("cbNChild").ItemIndex(), 0);
    EXPECT_EQ(Items("cbClassName"), "SEARCH,Customers");
    EXPECT_EQ(Combo("cbChildDataKey").Text(), "Code");
    EXPECT_EQ(Combo("cbChildDataShow").Text(), "Name");
    EXPECT_EQ(Items("cbAutoSearchMiliseconds"), "0,100,500,1000");
    EXPECT_EQ(Combo("cbAutoSearchMiliseconds").Text(), "500");
    EXPECT_TRUE(Combo("cbAutoSearchMiliseconds").Enabled());
    EXPECT_TRUE(Part<TCheckBox>("cbAutoSearch").Checked());
    EXPECT_TRUE(Part<TCheckBox>("cbAutoRefresh").Checked());
    EXPECT_EQ(Part<TMemo>("memoAutoAssign").Lines()->CommaText(), "City>Town");
    EXPECT_EQ(Items("cbAutoAssignSourceParamName"), "Code,Name,City");
    EXPECT_EQ(Items("cbAutoAssignDestFieldName"), "Id,Customer,Other,Town,Title,Free");
}

TEST_F(EditBoxEditor, CaptionsAndHintsStandAsTheyAre) {
    const AnsiString blank = "Si se deja en blanco buscará el valor pero no OBLIGARÁ a seleccionar uno concreto."_w;
    EXPECT_EQ(Combo("cbChildDataKey").Hint(), blank);
    EXPECT_EQ(Part<TLabel>("lblChildKeyHint").Caption(), blank);
    std::vector<AnsiString> captions;
    for (int i = 0; i < dialog->ComponentCount(); ++i)
        if (auto* control = ObjectCast<TControl>(dialog->Components(i))) captions.push_back(control->Caption());
    for (const char* caption : {"&General",
                                "&DataSource",
                                "&Field",
                                "DataLinkType",
                                "Show Button",
                                "Ejecuta Evento",
                                "Read Only",
                                "&Buscar",
                                "nChild",
                                "Classe",
                                "Child Key",
                                "Child Show",
                                "Auto Search",
                                "Auto Refresh",
                                "Auto A&ssign",
                                "Origen",
                                "Destino",
                                "Add",
                                "Tota de Formularios enlazados:",
                                "Componentes enlazados a este formulario:",
                                "Cerrar"})
        EXPECT_EQ(std::count(captions.begin(), captions.end(), caption), 1) << caption;
    EXPECT_EQ(Part<TPageControl>("pcPages").PageCount(), 3);
    EXPECT_EQ(Part<TBitBtn>("bbOk").ModalResult(), 1);
}

TEST_F(EditBoxEditor, ADataSourceIsTheBoxesAtOnceAndItsListsFollow) {
    Combo("cbDataSource").ProcessSelect(1);
    EXPECT_EQ(box->VynDataSource(), second);
    EXPECT_EQ(Items("cbFieldName"), "");
    EXPECT_EQ(Combo("cbFieldName").Text(), "Customer") << "the box's own setting stays";
    EXPECT_EQ(Items("cbNChild"), "");
    Write("cbDataSource", "no such");
    EXPECT_EQ(box->VynDataSource(), nullptr);
    EXPECT_EQ(Info(), "- -");
    Write("cbDataSource", "Source");
    EXPECT_EQ(box->VynDataSource(), source);
    EXPECT_EQ(Items("cbNChild"), "\"10 - N\",\"20 - N\"");
    EXPECT_EQ(Combo("cbNChild").ItemIndex(), 0);
}

TEST_F(EditBoxEditor, TheFieldIsTheBoxesAtOnce) {
    Combo("cbFieldName").ProcessSelect(2);
    EXPECT_EQ(box->DataField(), "Other");
    Write("cbFieldName", "Title");
    EXPECT_EQ(box->DataField(), "Title");
}

TEST_F(EditBoxEditor, TheChosenIndexIsTheLinkType) {
    for (const TVynDataLinkType type : {dlt_Class, dlt_Field, dlt_Search}) {
        Combo("cbDataLinkType").ProcessSelect(static_cast<int>(type));
        EXPECT_EQ(box->DataLinkType(), type);
    }
}

TEST_F(EditBoxEditor, AChildIsTakenByItsNumber) {
    Combo("cbNChild").ProcessSelect(1);
    EXPECT_EQ(box->NChild(), 20);
}

TEST_F(EditBoxEditor, AChildThatIsNotThereIsNoneOfTheList) {
    box->SetNChild(7);
    OpenDialog();
    EXPECT_EQ(Combo("cbNChild").ItemIndex(), -1);
    EXPECT_EQ(box->NChild(), 7) << "and stays until another is chosen";
}

TEST_F(EditBoxEditor, ClassKeyAndShownValueAreTheBoxesAtOnce) {
    Combo("cbClassName").ProcessSelect(1);
    EXPECT_EQ(box->ChildClassName(), "Customers");
    Write("cbClassName", "Others");
    EXPECT_EQ(box->ChildClassName(), "Others");
    Write("cbChildDataKey", "");
    EXPECT_EQ(box->ChildDataKey(), "");
    Write("cbChildDataShow", "City");
    EXPECT_EQ(box->ChildDataShow(), "City");
}

TEST_F(EditBoxEditor, ChecksAreTheBoxesAtOnce) {
    Check("cbShowButton", false);
    EXPECT_FALSE(box->ShowButton());
    Check("cbReadOnly", true);
    EXPECT_TRUE(box->DataReadOnly());
    Check("cbAutoRefresh", true);
    EXPECT_TRUE(box->AutoRefresh());
    Check("cbAutoSearch", false);
    EXPECT_FALSE(box->AutoSearch());
    EXPECT_FALSE(Combo("cbAutoSearchMiliseconds").Enabled()) << "nothing to wait for";
    Check("cbAutoSearch", true);
    EXPECT_TRUE(Combo("cbAutoSearchMiliseconds").Enabled());
}

TEST_F(EditBoxEditor, TheRulesNameIsTheBoxesAtOnce) {
    Part<TEdit>("ebExecuteEventName").ProcessTextEdit("Calcula", 7, 0);
    EXPECT_EQ(box->ExecuteEventName(), "Calcula");
}

TEST_F(EditBoxEditor, TheMemosLinesAreTheRelatedFields) {
    Part<TMemo>("memoAutoAssign").ProcessTextEdit("City>Town\r\nName > Title", 0, 0);
    EXPECT_EQ(box->Link().RelationedFields().Count(), 2);
    EXPECT_EQ(box->Link().RelationedFields().At(1), "Name > Title");
}

TEST_F(EditBoxEditor, AddAppendsALineWhenBothAreChosen) {
    auto& add = Part<TButton>("bbAddAutoAssign");
    add.Click();
    Combo("cbAutoAssignSourceParamName").ProcessSelect(2);
    add.Click();
    EXPECT_EQ(box->RelationedFields()->Count(), 0) << "one alone is no line";
    Combo("cbAutoAssignDestFieldName").ProcessSelect(3);
    add.Click();
    EXPECT_EQ(box->RelationedFields()->CommaText(), "City>Town");
    Write("cbAutoAssignSourceParamName", "");
    add.Click();
    EXPECT_EQ(box->RelationedFields()->Count(), 1);
}

TEST_F(EditBoxEditor, TheWaitIsTakenWhenItsBoxIsLeftAndRefusedWhenTooLong) {
    Write("cbAutoSearchMiliseconds", "250");
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 1000u);
    Combo("cbAutoSearchMiliseconds").DoExit();
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 250u);
    for (const char* wrong : {"10001", "-1", "99999999999"}) {
        Write("cbAutoSearchMiliseconds", wrong);
        EXPECT_EQ(MessageOf([&] { Combo("cbAutoSearchMiliseconds").DoExit(); }),
                  "Exception: WaitMiliseconds must be < 10000")
            << wrong;
    }
    Write("cbAutoSearchMiliseconds", "soon");
    EXPECT_EQ(MessageOf([&] { Combo("cbAutoSearchMiliseconds").DoExit(); }).substr(0, 13), "EConvertError");
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 250u);
}

TEST_F(EditBoxEditor, TheListsOfValuesAreFilledWhenTheyOpen) {
    for (const char* list : {"cbChildDataKey", "cbChildDataShow"}) {
        Combo(list).Items()->Clear();
        Combo(list).ProcessDropDown(true);
        EXPECT_EQ(Items(list), "Code,Name,City");
        EXPECT_EQ(Combo(list).Text(), SameText(list, "cbChildDataKey") ? "Code" : "Name");
        Combo(list).ProcessDropDown(false);
    }
    // What is not open yet is opened for them.
    Combo("cbNChild").ProcessSelect(1);
    EXPECT_EQ(Items("cbChildDataKey"), "");
    Combo("cbChildDataKey").ProcessDropDown(true);
    EXPECT_EQ(customers.Opened, 2);
    Combo("cbChildDataKey").ProcessDropDown(false);
    box->SetNChild(99);
    Combo("cbChildDataKey").ProcessDropDown(true);
    EXPECT_EQ(Items("cbChildDataKey"), "") << "nothing is looked up";
}

TEST_F(EditBoxEditor, SaysHowManyComponentsAndBoxesThereAre) {
    EXPECT_EQ(Info(), "1 1/1");
    MakeBox("Twin", "Customer");
    MakeBox("Elsewhere", "Other");
    OpenDialog();
    EXPECT_EQ(Info(), "2 2/3") << "components; boxes of this one, of all";
    Combo("cbDataLinkType").ProcessSelect(0);
    EXPECT_EQ(Info(), "2 (Sin)") << "a field needs none";
    box->SetVynDataSource(nullptr);
    OpenDialog();
    EXPECT_EQ(Info(), "- -");
}

TEST_F(EditBoxEditor, HandlersDoNothingWithoutABox) {
    delete box;
    box = nullptr;
    EXPECT_EQ(dialog->Edit_EditBox(), nullptr);
    Write("cbFieldName", "Other");
    Combo("cbDataLinkType").ProcessSelect(0);
    Combo("cbChildDataKey").ProcessDropDown(true);
    Part<TCheckBox>("cbReadOnly").ProcessPress();
    Part<TButton>("bbAddAutoAssign").Click();
    Combo("cbAutoSearchMiliseconds").DoExit();
    EXPECT_EQ(Info(), "1 1/1") << "nothing is looked at either";
}

TEST_F(EditBoxEditor, ABoxWithoutOwnerOrDataIsEditedToo) {
    TVynEditBox alone(nullptr);
    dialog->SetEdit_EditBox(&alone);
    EXPECT_EQ(dialog->Caption(), "TVynEditBox");
    EXPECT_EQ(Items("cbDataSource"), "");
    EXPECT_EQ(Info(), "- -");
    Write("cbFieldName", "Name");
    EXPECT_EQ(alone.DataField(), "Name");
}

TEST_F(EditBoxEditor, EscapeClosesItAndAnOpenListFirst) {
    dialog->Show();
    Part<TPageControl>("pcPages").SetActivePage(&Part<TTabSheet>("tsBuscar"));
    Combo("cbClassName").SetFocus();
    Combo("cbClassName").SetDroppedDown(true);
    char key = 27;
    dialog->FormKeyPress(nullptr, key);
    EXPECT_EQ(key, 27) << "the list's";
    EXPECT_TRUE(dialog->Visible());
    Combo("cbClassName").SetDroppedDown(false);
    Combo("cbClassName").ProcessKeyPress(key);
    EXPECT_FALSE(dialog->Visible());
    key = 'x';
    dialog->FormKeyPress(nullptr, key);
    EXPECT_EQ(key, 'x');
}

TEST_F(EditBoxEditor, AWaitThatIsBeingTypedIsTakenWhenTheDialogClosesAndGivenUpByEscape) {
    const auto typeWait = [&](const AnsiString& text) {
        OpenDialog();
        dialog->Show();
        Part<TPageControl>("pcPages").SetActivePage(&Part<TTabSheet>("tsBuscar"));
        Combo("cbAutoSearchMiliseconds").SetFocus();
        Write("cbAutoSearchMiliseconds", text);
    };
    typeWait("250");
    dialog->Close();
    EXPECT_FALSE(dialog->Visible());
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 250u);
    typeWait("20000");
    EXPECT_EQ(MessageOf([&] { dialog->Close(); }), "Exception: WaitMiliseconds must be < 10000");
    EXPECT_TRUE(dialog->Visible());
    char key = 27;
    dialog->FormKeyPress(nullptr, key);
    EXPECT_FALSE(dialog->Visible());
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 250u);
}

TEST_F(EditBoxEditor, IsShownModallyForABoxAndFreedAfterwards) {
    dialog.reset();
    int forms = Screen()->FormCount();
    bool shown = false;
    const TimerId timer = StartTimer(1, [&] {
        auto* open = ObjectCast<TFRMeditVynEditBox>(Screen()->ActiveForm());
        if (!open) return;
        shown = open->Edit_EditBox() == box && open->IsModal();
        open->SetModalResult(mrOk);
    });
    clock.Advance(1);
    DoEdit_EditBox(box);
    StopTimer(timer);
    EXPECT_TRUE(shown);
    EXPECT_EQ(Screen()->FormCount(), forms);
}

}  // namespace
