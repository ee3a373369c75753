#include "unit/app/fixtures.h"

namespace app_fixtures {

class Opening : public AppTest {
  protected:
    Opening() {
        Store(1, "object Menu1: TFRMMenu\n  Hint = 'Stored'\nend\n");
        Node(1, 0, 4, 0, "Root");
        Node(2, 1, 4, 1, "Menu");
        Log().clear();
    }
};

TEST_F(Opening, AnUnknownNodeIsAPlainException) {
    EXPECT_EQ(MessageOf([&] { app->ObreComponent(99, nullptr); }), "Exception: No se encuentra el Nodo con ID: \"99\"");
}

TEST_F(Opening, NothingOpensWithoutAComponentOrThroughAShortcut) {
    EXPECT_EQ(app->ObreComponent(1, nullptr), nullptr);
    Node(3, 1, 23, 2, "Shortcut");
    EXPECT_EQ(app->ObreComponent(3, nullptr), nullptr);
    Node(4, 1, -1, 1, "Negative");
    EXPECT_EQ(app->ObreComponent(4, nullptr), nullptr);
    EXPECT_EQ(app->NodesList().Count(), 0);
}

// The class's compiled form lies lowest, and layers change properties only: its name is what the form is called.
TEST_F(Opening, MessagesComeInOrderAroundTheReading) {
    std::vector<AnsiString> captions;
    OnWindowMessage() = [&](TMessage& message) {
        if (message.Msg == VYN_BEFORELOAD || message.Msg == VYN_AFTERLOAD) {
            EXPECT_EQ(message.WParam, 2);
            const auto* record = reinterpret_cast<const TComponentVyn*>(message.LParam);
            captions.push_back(IntToStr(record->IDComponent) + record->Name);
        }
    };
    TMenuProbe* menu = Open(2);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(Log(), (Heard{"(new) 1544", "(new) 1537", "MenuProbe 1538", "MenuProbe 1542"}));
    EXPECT_EQ(captions, (std::vector<AnsiString>{"1C1", "1C1"}));
    EXPECT_EQ(menu->Caption(), "Compiled");
    EXPECT_EQ(menu->Hint(), "Stored");
    EXPECT_TRUE(app->ComponentIsFromVyn(menu));
}

TEST_F(Opening, AnOpenNodeGivesTheSameComponentAndIsToldAgain) {
    TMenuProbe* menu = Open(2);
    Log().clear();
    EXPECT_EQ(Open(2), menu);
    EXPECT_EQ(Log(), Heard{"MenuProbe 1542"});
    EXPECT_EQ(app->NodesList().Count(), 1);
}

TEST_F(Opening, AnAbortIsSilentAndLeavesTheComponentCreated) {
    for (const uint32_t message : {VYN_AFTERLOAD, VYN_OPENED}) {
        Answers() = {{message, VYN_ABORT}};
        EXPECT_THROW(app->ObreComponent(2, nullptr), EAbort);
        EXPECT_EQ(app->NodesList().Count(), 0);
        Answers().clear();
        app->CloseApp();
    }
}

TEST_F(Opening, AncestorsLieBelowTheForm) {
    Store(5, "object Under: TFRMMenu\n  Caption = 'Ancestor'\n  Hint = 'Ancestor'\nend\n");
    Node(10, 1, 18, 5, "Ancestor");
    Node(11, 10, 4, 1, "Below");
    TMenuProbe* menu = Open(11);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->Caption(), "Ancestor");
    EXPECT_EQ(menu->Hint(), "Stored");
}

TEST_F(Opening, TheEventMayRefuse) {
    app->BeforeOpenTComponent = [](TVynApp*, int idNode, bool& proceed) { proceed = idNode != 2; };
    EXPECT_EQ(app->ObreComponent(2, nullptr), nullptr);
    EXPECT_EQ(app->NodesList().Count(), 0);
}

TEST_F(Opening, AGuardIsAskedFirst) {
    Store(6, "object Guard1: TFRMPassword\nend\n", 14);
    Node(20, 1, 14, 6, "Guard");
    Node(21, 20, 4, 1, "Guarded");
    TGuardProbe::Result = mrCancel;
    EXPECT_EQ(app->ObreComponent(21, nullptr), nullptr);
    EXPECT_EQ(app->NodesList().Count(), 0);
    TGuardProbe::Result = mrOk;
    EXPECT_NE(app->ObreComponent(21, nullptr), nullptr);
    EXPECT_EQ(app->NodesList().Count(), 1);
}

TEST_F(Opening, TheHostMaySupplyTheInstance) {
    auto* own = new TMenuProbe(nullptr);
    app->OnVynAppNeedComponent = [&](TVynApp*, int, TComponent*& component) { component = own; };
    Heard saved;
    app->SaveComponentCreated = [&](TVynApp*, int idNode, TComponent* component, bool inList) {
        saved.push_back(IntToStr(idNode) + (component == own ? " own " : " other ") + (inList ? "listed" : "unlisted"));
        EXPECT_EQ(app->NodesList().Count(), 0);
    };
    EXPECT_EQ(app->ObreComponent(2, nullptr), own);
    EXPECT_EQ(own->Hint(), "Stored");
    EXPECT_EQ(saved, Heard{"2 own listed"});
}

TEST_F(Opening, AProcedureNodeRunsAndGivesItsComponent) {
    static TComponent* made = nullptr;
    const auto run = [](TObject* object) {
        EXPECT_NE(dynamic_cast<TVynApp*>(object), nullptr);
        EXPECT_EQ(Parametres()->AsString("PRME02", ""), "Print all!");
        EXPECT_EQ(Parametres()->AsInteger("PRME03", 0), 30);
        EXPECT_EQ(Parametres()->AsInteger("PRME04", 0), 1);
        EXPECT_EQ(Parametres()->AsInteger("PRME05", 0), 300);
        EXPECT_EQ(Parametres()->AsInteger("PRME06", -5), 0);
        EXPECT_EQ(Parametres()->AsInteger("PRME07", 0), 32);
        EXPECT_EQ(Parametres()->AsInteger("PRMS01", -5), 0);
        made = new TPlainProbe(nullptr);
        Parametres()->SetParametreValue("PRMS01", Variant(made->Handle()));
    };
    Node(30, 1, 32, 0, "Print all!");
    EXPECT_EQ(app->ObreComponent(30, nullptr), nullptr);
    EXPECT_EQ(app->NodesList().Count(), 0);
    app->Procedures().RegisterProcedure("Print_all_", run);
    EXPECT_EQ(app->ObreComponent(30, nullptr), made);
    EXPECT_EQ(app->NodesList().Count(), 1);
}

TEST_F(Opening, AProcedureThatIsNotThereFallsBack) {
    static int runs = 0;
    runs = 0;
    app->Procedures().RegisterProcedure("RETURN_COMPONENT", [](TObject*) { ++runs; });
    Node(30, 1, 32, 0, "Unknown");
    EXPECT_EQ(app->ObreComponent(30, nullptr), nullptr);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(app->NodesList().Count(), 0);
}

TEST_F(Opening, ATypeWithoutAClassIsAnErrorUnlessTheHostSuppliesOne) {
    const AnsiString expected = "EVynError: TVynApp ERROR:\nCould not determine Class of Object type: 99";
    EXPECT_EQ(MessageOf([&] { app->CreaNouComponent(2, 99, nullptr); }), expected);
    EXPECT_EQ(MessageOf([&] { app->CreaComponent(99, nullptr); }), expected);
    app->OnVynAppNeedClass = [](TVynApp*, int, TClass& found) { found = &TPlainProbe::StaticClass(); };
    const std::unique_ptr<TComponent> made(app->CreaComponent(99, nullptr));
    EXPECT_EQ(made->ClassName(), "TCustomFRM");
}

TEST_F(Opening, AClassThatIsNoComponentIsNamed) {
    app->OnVynAppNeedClass = [](TVynApp*, int, TClass& found) { found = &TStringList::StaticClass(); };
    EXPECT_EQ(MessageOf([&] { app->CreaComponent(4, nullptr); }),
              "EVynError: TVynApp ERROR:\nClass: TStringList not inherited from TComponent");
    EXPECT_EQ(MessageOf([&] { app->CreaNouComponent(2, 4, nullptr); }),
              "EVynError: TVynApp ERROR:\nClasse is not TComponent inherited in CreaNouComponent");
}

TEST_F(Opening, ANewComponentIsNamedAfterTheMinute) {
    Heard records;
    OnWindowMessage() = [&](TMessage& message) {
        if (message.Msg != VYN_BEFORELOAD) return;
        const auto* record = reinterpret_cast<const TComponentVyn*>(message.LParam);
        records.push_back(IntToStr(message.WParam) + "|" + IntToStr(record->IDComponent) + "|" +
                          IntToStr(record->CompType) + "|" + record->Name);
    };
    TComponent* made = app->CreaNouComponent(2, 4, nullptr);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(records, Heard{"-1|-1|4|NEW 21/11/2026 10:00:00"});
    EXPECT_EQ(app->NodesList().Count(), 0);
}

TEST_F(Opening, ResourcesOfNoNodeAndOfNoClassAreErrors) {
    EXPECT_EQ(MessageOf([&] { app->RecursosFinals(99); }),
              "EVynError: TVynApp ERROR:\nERROR a RecursosFinals: IDNode is not a valid node (99)");
    EXPECT_EQ(app->RecursosFinals(1), nullptr);
    PRecursosObjecte tree;
    EXPECT_EQ(MessageOf([&] { app->GetCopiaDelsRecursosDeDelphi("TNoSuch", tree); }),
              "EVynError: TVynApp ERROR:\nERROR 1 en TVynApp.GetCopiaDelsRecursosDeDelphi");
    RegisterClass(&TStringList::StaticClass());
    EXPECT_EQ(MessageOf([&] { app->GetCopiaDelsRecursosDeDelphi("TStringList", tree); }),
              "EVynError: TVynApp ERROR:\nERROR 2 en TVynApp.GetCopiaDelsRecursosDeDelphi\nClasse TStringList no es "
              "TComponent");
    Store(8, "object A: TStringList\nend\n");
    TMemoryStream stream(app->Components().GetStreamComponent(8)->Bytes());
    TComponent* component = nullptr;
    EXPECT_EQ(MessageOf([&] { app->DoCreateFromStream(stream, nullptr, 2, TComponentVyn{}, component); }),
              "EFatalError: ERROR en DoCreateFromStream\nClasse TStringList no es herencia de TComponent");
    UnRegisterClass(&TStringList::StaticClass());
}

TEST_F(Opening, TheEventMayChangeTheResources) {
    app->BeforeCreateStreamTComponent = [](TVynApp*, int, PRecursosObjecte& tree) {
        for (TPropietatObjecte& property : tree->Propietats)
            if (property.Name == "Caption") property.Valor = "Changed";
    };
    EXPECT_EQ(Open(2)->Caption(), "Changed");
}

TEST_F(Opening, ErrorsOfTheReaderReachTheEvent) {
    Store(9, "object Menu9: TFRMMenu\n  NoSuchProperty = 1\nend\n");
    Node(40, 1, 4, 9);
    EXPECT_ANY_THROW(app->ObreComponent(40, nullptr));
    int errors = 0;
    app->OnReadResourceError = [&](TReader&, const AnsiString& message, bool& handled) {
        EXPECT_NE(message.find("NoSuchProperty"), AnsiString::npos);
        ++errors;
        handled = true;
    };
    EXPECT_NE(app->ObreComponent(40, nullptr), nullptr);
    EXPECT_EQ(errors, 1);
}

TEST_F(Opening, StoringTellsBeforeDuringAndAfter) {
    TMenuProbe* menu = Open(2);
    menu->SetCaption("New caption");
    Log().clear();
    EXPECT_TRUE(app->GrabaResourceTComponent(menu, 2, app->Components().GetComponent(1)));
    EXPECT_EQ(Log(), (Heard{"MenuProbe 1539", "MenuProbe 1541", "MenuProbe 1540"}));
    app->CloseApp();
    TMenuProbe* again = Open(2);
    EXPECT_EQ(again->Caption(), "New caption");
    EXPECT_EQ(again->Hint(), "Stored");
}

TEST_F(Opening, AnUnchangedFormStoresAlmostNothing) {
    Store(3, "object MenuProbe: TFRMMenu\nend\n");
    Node(50, 1, 4, 3);
    TMenuProbe* menu = Open(50);
    EXPECT_TRUE(app->GrabaResourceTComponent(menu, 50, app->Components().GetComponent(3)));
    EXPECT_EQ(StoredText(3).find("Caption"), AnsiString::npos);
    EXPECT_EQ(StoredText(3).find("Hint"), AnsiString::npos);
    app->CloseApp();
    EXPECT_EQ(Open(50)->Caption(), "Compiled");
}

TEST_F(Opening, AnAnswerOfMinusOneStoresNothing) {
    TMenuProbe* menu = Open(2);
    menu->SetCaption("New caption");
    const AnsiString before = StoredText(1);
    Answers() = {{VYN_SAVERESOURCES, -1}};
    Log().clear();
    EXPECT_FALSE(app->GrabaResourceTComponent(menu, 2, app->Components().GetComponent(1)));
    EXPECT_EQ(StoredText(1), before);
    EXPECT_EQ(Log(), (Heard{"MenuProbe 1539", "MenuProbe 1541"}));
}

TEST_F(Opening, ANewEntrysNumberReachesTheComponentOnly) {
    TMenuProbe* menu = Open(2);
    int told = 0;
    OnWindowMessage() = [&](TMessage& message) {
        auto* record = reinterpret_cast<TComponentVyn*>(message.LParam);
        if (message.Msg == VYN_BEFORESAVE) record->Name = "Renamed";
        if (message.Msg == VYN_AFTERSAVE) told = record->IDComponent;
    };
    const TComponentVyn record{-1, 4, "Given"};
    EXPECT_TRUE(app->GrabaResourceTComponent(menu, 2, record));
    EXPECT_EQ(record.IDComponent, -1);
    ASSERT_GT(told, 1);
    EXPECT_EQ(app->Components().GetComponent(told).Name, "Renamed");
}

TEST_F(Opening, ClosingFreesTheLastFirst) {
    Store(3, "object Plain3: TCustomFRM\n  Level = 8\nend\n", 2);
    Store(4, "object Plain4: TCustomFRM\nend\n", 2);
    Node(60, 1, 2, 3);
    Node(61, 1, 2, 4);
    auto* plain = ObjectCast<TPlainProbe>(app->ObreComponent(60, nullptr));
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->Level, 8);
    app->ObreComponent(61, nullptr);
    Log().clear();
    app->CloseApp();
    EXPECT_EQ(Log(), (Heard{"freed 3", "freed 8"}));
    EXPECT_EQ(app->NodesList().Count(), 0);
}

TEST_F(Opening, MessagesGoToOpenWindowsAndThenToTheHost) {
    Open(2);
    Answers() = {{1543, 77}};
    Log().clear();
    EXPECT_EQ(app->SendVynMessage(1543, 1, 2), 77);
    EXPECT_EQ(Log(), (Heard{"MenuProbe 1543", "host 1543"}));
}

}  // namespace app_fixtures
