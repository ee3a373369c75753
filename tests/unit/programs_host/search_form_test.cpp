// The search screens that lookups open.
#include "platform/controls/buttons.h"
#include "platform/controls/db_controls.h"
#include "platform/controls/edits.h"
#include "platform/controls/labels.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/timers.h"
#include "unit/programs_host/host_fixture.h"

using namespace vyn;

namespace {

class SearchScreens : public HostLookups {
  protected:
    void Type(TFRMCerca& screen, const AnsiString& text) {
        auto& line = Part<TCustomEdit>(screen, "Cerca");
        line.SelectAll();
        if (text.empty()) line.SetSelText("");
        for (char c : text) line.KeyPress(c);
    }
    void Pause() {
        clock.Advance(Part<TTimer>(*SearchScreen(), "Pausa").Interval());
        Application()->ProcessMessages();
    }
    static void Key(TFRMCerca& screen, uint16_t key, TShiftState shift = {}) {
        Part<TCustomEdit>(screen, "Cerca").ProcessKeyDown(key, shift);
    }
    static std::string Current(TFRMCerca& screen) {
        return AnsiToUtf8(Part<TCustomDBGrid>(screen, "Graella").DataSet()->FieldByName("nom")->AsString());
    }
    static std::string Message(TFRMCerca& screen) { return AnsiToUtf8(Part<TLabel>(screen, "Missatge").Caption()); }
    static bool CanAccept(TFRMCerca& screen) { return Part<TButton>(screen, "Acceptar").Enabled(); }
    // So many that the engine is asked for what is in sight.
    void FillWithMany() {
        connection->Execute(
            "WITH RECURSIVE n(i) AS (SELECT 6 UNION ALL SELECT i + 1 FROM n WHERE i < 30000)"
            " INSERT INTO clients (id, nom) SELECT i, 'Many ' || (i - 1) FROM n");
        connection->Execute("CREATE INDEX clients_nom ON clients (nom)");
    }
    static void Press(TFRMCerca& screen, const AnsiString& button) { Part<TButton>(screen, button).Click(); }
};

}  // namespace

TEST_F(SearchScreens, WhatWasTypedIsSearchedAndEnterTakesIt) {
    auto& form = Open<>(2);
    EXPECT_TRUE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(screen.Caption(), "Clients");
        EXPECT_EQ(Part<TCustomEdit>(screen, "Cerca").Text(), "gar");
        EXPECT_EQ(Part<TCustomEdit>(screen, "Cerca").SelStart(), 3);
        EXPECT_EQ(Part<TCustomEdit>(screen, "Cerca").SelLength(), 0);
        EXPECT_EQ(screen.ActiveControl(), &Part<TWinControl>(screen, "Cerca"));
        EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per nom");
        EXPECT_EQ(Current(screen), "García");
        Key(screen, VK_RETURN);
    }));
    EXPECT_EQ(ValueOf(form, "id"), "3");
    EXPECT_EQ(DataOf(form).FieldByName("id")->AsInteger(), 3);
    EXPECT_EQ(DataOf(form).Sort(), "") << "its order comes back";
    EXPECT_EQ(DataOf(form).RecNo(), 3);
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(SearchScreen(), nullptr);
}

TEST_F(SearchScreens, TypingMovesTheListAfterAPause) {
    auto& form = Open<>(2);
    EXPECT_TRUE(Search(form, "", false, [&](TFRMCerca& screen) {
        EXPECT_EQ(Current(screen), "Puig & Fills") << "where the screen stood";
        Type(screen, "garr");
        EXPECT_EQ(Current(screen), "Puig & Fills");
        clock.Advance(100);
        Type(screen, "s");
        clock.Advance(150);
        Application()->ProcessMessages();
        EXPECT_EQ(Current(screen), "Puig & Fills") << "each letter begins the pause anew";
        Pause();
        EXPECT_EQ(Current(screen), "Soler");
        EXPECT_EQ(Message(screen), "");
        Press(screen, "Acceptar");
    }));
    EXPECT_EQ(ValueOf(form, "nom"), "Soler");
}

TEST_F(SearchScreens, EnterDoesNotWaitForThePause) {
    auto& form = Open<>(2);
    EXPECT_TRUE(Search(form, "", false, [&](TFRMCerca& screen) {
        Type(screen, "garr");
        Key(screen, VK_RETURN);
    }));
    EXPECT_EQ(ValueOf(form, "nom"), "Garrofa");
}

TEST_F(SearchScreens, WhatIsNotThereIsSaidAndCannotBeTaken) {
    auto& form = Open<>(2);
    EXPECT_FALSE(Search(form, "gars", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Message(screen), "Cap registre no comença així.");
        EXPECT_FALSE(CanAccept(screen));
        Key(screen, VK_RETURN);
        EXPECT_EQ(screen.ModalResult(), mrNone);
        Type(screen, "gar");
        Pause();
        EXPECT_EQ(Message(screen), "");
        EXPECT_TRUE(CanAccept(screen));
        Type(screen, "zz");
        Pause();
        EXPECT_FALSE(CanAccept(screen));
        Key(screen, VK_DOWN);
        EXPECT_TRUE(CanAccept(screen)) << "a record was chosen by hand";
        EXPECT_EQ(Message(screen), "");
        Type(screen, "zzz");
        screen.SetModalResult(mrNone);
        Key(screen, VK_RETURN);
        EXPECT_EQ(screen.ModalResult(), mrNone) << "what waits is searched first";
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchScreens, EscapeLeavesAllAsItWas) {
    auto& form = Open<>(2);
    DataOf(form).SetSort("[codi] DESC");
    DataOf(form).First();
    DataOf(form).Next();
    const AnsiString before = DataOf(form).FieldByName("id")->AsString();
    EXPECT_TRUE(Locate(form, "id", 5));
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Current(screen), "García");
        Key(screen, VK_DOWN);
        Key(screen, VK_ESCAPE);
    }));
    EXPECT_EQ(DataOf(form).Sort(), "[codi] DESC");
    EXPECT_EQ(DataOf(form).FieldByName("id")->AsString(), before);
    EXPECT_EQ(DataOf(form).RecNo(), 2);
    EXPECT_EQ(ValueOf(form, "id"), "5") << "what was looked up before still answers";
    EXPECT_TRUE(said.empty());
}

TEST_F(SearchScreens, TheKeyboardStaysInTheLine) {
    auto& form = Open<>(2);
    EXPECT_TRUE(Search(form, "", false, [&](TFRMCerca& screen) {
        Key(screen, VK_HOME);
        EXPECT_EQ(Current(screen), "García");
        Key(screen, VK_DOWN);
        EXPECT_EQ(Current(screen), "Garrofa");
        Key(screen, VK_END);
        EXPECT_EQ(Current(screen), "Soler");
        Key(screen, VK_DOWN);
        EXPECT_EQ(Current(screen), "Soler") << "no new record begins";
        Key(screen, VK_UP);
        EXPECT_EQ(Current(screen), "Puig & Fills");
        Key(screen, VK_PRIOR);
        EXPECT_EQ(Current(screen), "García");
        Key(screen, VK_NEXT);
        EXPECT_EQ(Current(screen), "Soler");
        EXPECT_EQ(screen.ActiveControl(), &Part<TWinControl>(screen, "Cerca"));
        // With Shift they select in the line.
        Key(screen, VK_HOME, {ssShift});
        EXPECT_EQ(Current(screen), "Soler");
        // From where the typed text stands.
        Type(screen, "gar");
        Key(screen, VK_DOWN);
        EXPECT_EQ(Current(screen), "Garrofa");
        Key(screen, VK_RETURN);
    }));
    EXPECT_EQ(ValueOf(form, "id"), "4");
}

TEST_F(SearchScreens, ATitleOrdersAndSearchesByItsField) {
    auto& form = Open<>(2);
    EXPECT_TRUE(Search(form, "Soler", false, [&](TFRMCerca& screen) {
        auto& grid = Part<TCustomDBGrid>(screen, "Graella");
        EXPECT_EQ(Current(screen), "Soler");
        EXPECT_EQ(Part<TCustomEdit>(screen, "Cerca").SelLength(), 5) << "what is typed takes its place";
        grid.ProcessTitleClick(1);
        EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per codi");
        EXPECT_EQ(Current(screen), "Soler");
        Type(screen, "c1");
        Pause();
        EXPECT_EQ(Current(screen), "Puig");
        grid.ProcessTitleClick(1);
        EXPECT_EQ(grid.SortDirection(*grid.ShownColumns()[1]), -1);
        Key(screen, VK_UP);
        EXPECT_EQ(Current(screen), "García") << "C10, the other way round";
        grid.ProcessCellClick(0, 1);
        grid.ProcessCellDblClick(0, 1);
    }));
    EXPECT_EQ(ValueOf(form, "codi"), "C5");
    EXPECT_EQ(DataOf(form).Sort(), "");
}

TEST_F(SearchScreens, AKeyGoesThroughTheFieldsThatCanBeSearched) {
    auto& form = Open<>(2);
    EXPECT_FALSE(Search(form, "sol", true, [&](TFRMCerca& screen) {
        std::vector<AnsiString> labels;
        for (int i = 0; i < 5; ++i) {
            Key(screen, VK_F3);
            labels.push_back(Part<TLabel>(screen, "PerCamp").Caption());
        }
        // The picture between them is passed over.
        EXPECT_EQ(labels, (std::vector<AnsiString>{"per alta", "per poblaci\xF3", "per id", "per codi", "per nom"}));
        EXPECT_EQ(Current(screen), "Soler");
        Key(screen, VK_F3, {ssShift});
        EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per codi");
        Type(screen, "c4");
        Key(screen, VK_F3);
        EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per nom");
        Key(screen, VK_ESCAPE);
    }));
    EXPECT_EQ(DataOf(form).Sort(), "");
}

namespace {

// A list with stored search fields, entries of which name these components; its own columns are code and name.
class SearchFieldScreens : public SearchScreens {
  protected:
    TFRMSQLGeneric& OpenWith(const std::vector<std::string>& components, bool columns = true) {
        std::string text =
            "object FRMDBGrid: TFRMDBGrid\n  object Nom: TDBEdit\n    DataField = 'nom'\n    DataSource = Font\n"
            "    TabOrder = 9\n  end\n  object Lluny: TDBEdit\n    DataField = 'nom'\n    TabOrder = 10\n  end\n";
        if (columns)
            text +=
                "  object Graella: TDBGrid\n    Columns = <\n      item\n        FieldName = 'codi'\n        "
                "Title.Caption = 'Codi de client'\n        Width = 90\n      end\n      item\n        FieldName = "
                "'nom'\n        Title.Caption = 'Nom'\n      end\n      item\n        FieldName = 'alta'\n        "
                "Visible = False\n      end>\n  end\n";
        text +=
            "  object Consulta: TADOQuery\n    SQL.Strings = (\n      'SELECT * FROM clients ORDER BY id')\n"
            "    object CampId: TIntegerField\n      FieldName = 'id'\n    end\n    object CampCodi: TStringField\n"
            "      FieldName = 'codi'\n      Size = 6\n    end\n    object CampNom: TStringField\n"
            "      FieldName = 'nom'\n      Size = 30\n    end\n    object CampAlta: TDateField\n"
            "      DisplayLabel = 'Alta'\n      FieldName = 'alta'\n    end\n    object CampFoto: TBlobField\n"
            "      FieldName = 'foto'\n    end\n  end\n  object Cercables: TCampsBuscar\n    CampsBuscar = (\n";
        for (const std::string& name : components) text += "      (\n" + name + " 1 0 '' 0 '' '')\n";
        Store(6, 1, 8, text + ")\n  end\nend\n");
        return Open<>(6);
    }
    static std::string Titles(TFRMCerca& screen) {
        AnsiString titles;
        for (const TColumn* column : Part<TCustomDBGrid>(screen, "Graella").ShownColumns())
            titles += (titles.empty() ? "" : "|") + column->Title()->Caption();
        return AnsiToUtf8(titles);
    }
    // The fields that F3 comes to, one after the other.
    static std::string Round(TFRMCerca& screen, int presses, TShiftState shift = {}) {
        AnsiString round;
        for (int i = 0; i < presses; ++i) {
            Key(screen, VK_F3, shift);
            round += (round.empty() ? "" : ", ") + Part<TLabel>(screen, "PerCamp").Caption();
        }
        return AnsiToUtf8(round);
    }
};

}  // namespace

TEST_F(SearchFieldScreens, TheyComeFirstAndTheKeyGoesThroughThemAlone) {
    auto& form = OpenWith({"CampNom", "CampAlta"});
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Titles(screen), "Nom|Alta|Codi de client");
        EXPECT_EQ(Current(screen), "García");
        EXPECT_EQ(Round(screen, 3), "per Alta, per Nom, per Alta");
        EXPECT_EQ(Round(screen, 2, {ssShift}), "per Nom, per Alta");
        Key(screen, VK_ESCAPE);
    }));
    EXPECT_EQ(Part<TCustomDBGrid>(form, "Graella").ShownColumns().size(), 2u) << "the list's own stay as they are";
}

TEST_F(SearchFieldScreens, WhatTheBoxShowsIsSearchedFirstAndIsOneOfThem) {
    auto& form = OpenWith({"CampAlta", "CampCodi"});
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Titles(screen), "Nom|Alta|Codi de client");
        EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per Nom");
        EXPECT_EQ(Round(screen, 3), "per Alta, per Codi de client, per Nom");
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchFieldScreens, AnUnknownFieldIsSearchedByTheFirstOfThem) {
    auto& form = OpenWith({"CampAlta", "CampNom"});
    EXPECT_FALSE(Search(
        form, "x", false,
        [&](TFRMCerca& screen) {
            EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per Alta");
            Key(screen, VK_ESCAPE);
        },
        "no_hi_es"));
}

TEST_F(SearchFieldScreens, AColumnOfAnyOtherFieldIsStillOrderedBy) {
    auto& form = OpenWith({"CampNom"});
    EXPECT_FALSE(Search(form, "", false, [&](TFRMCerca& screen) {
        auto& grid = Part<TCustomDBGrid>(screen, "Graella");
        grid.ProcessTitleClick(1);
        EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per Codi de client");
        EXPECT_EQ(Round(screen, 1), "per Nom") << "and the key comes back to those that can be searched";
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchFieldScreens, AListWithoutColumnsShowsAllFieldsBehindThem) {
    auto& form = OpenWith({"CampAlta", "CampNom"}, false);
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Titles(screen), "Alta|nom|id|codi|foto");
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchFieldScreens, ControlsStandForTheirFieldsAndOthersSayNothing) {
    auto& form = OpenWith({"CampCodi", "Nom", "Lluny", "Titol", "NoHiEs", "CampNom"});
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Titles(screen), "Codi de client|Nom");
        EXPECT_EQ(Round(screen, 2), "per Codi de client, per Nom");
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchFieldScreens, APictureIsPassedOver) {
    auto& form = OpenWith({"CampNom", "CampFoto", "CampCodi"});
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Round(screen, 2), "per Codi de client, per Nom");
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchFieldScreens, WithoutEntriesEveryColumnIsSearched) {
    auto& form = OpenWith({"NoHiEs"});
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Titles(screen), "Codi de client|Nom");
        EXPECT_EQ(Round(screen, 2), "per Codi de client, per Nom");
        Key(screen, VK_ESCAPE);
    }));
}

TEST_F(SearchScreens, ALargeTableIsSearchedByTheEngine) {
    FillWithMany();
    auto& form = Open<>(2);
    ASSERT_TRUE(DataOf(form).IsPaged());
    EXPECT_EQ(Found(form, "nom", "many 2999"), "3000") << "called just so";
    EXPECT_EQ(Found(form, "nom", "Many 29990"), "29991");
    EXPECT_EQ(Found(form, "id", 20000), "20000");
    EXPECT_EQ(DataOf(form).RecNo(), 1);
    EXPECT_TRUE(Search(form, "many 29990", true, [&](TFRMCerca& screen) {
        EXPECT_EQ(Current(screen), "Many 29990");
        EXPECT_EQ(Part<TCustomDBGrid>(screen, "Graella").TopRecord(), DataOf(form).CurrentRecord());
        Key(screen, VK_DOWN);
        EXPECT_EQ(Current(screen), "Many 29991");
        Type(screen, "many 1234");
        Pause();
        EXPECT_EQ(Current(screen), "Many 1234");
        Key(screen, VK_RETURN);
    }));
    EXPECT_EQ(ValueOf(form, "id"), "1235");
    EXPECT_EQ(DataOf(form).FieldByName("id")->AsInteger(), 1235);
    EXPECT_TRUE(DataOf(form).IsPaged());
    EXPECT_LT(DataOf(form).Rows().Count(), 5000) << "what is not in sight is not read";
    EXPECT_FALSE(Search(form, "soler", true, [&](TFRMCerca& screen) { Key(screen, VK_ESCAPE); }));
    EXPECT_EQ(DataOf(form).FieldByName("id")->AsInteger(), 1235);
}

TEST_F(SearchScreens, ADatabaseThatGoesWhileItIsSearchedIsSaid) {
    FillWithMany();
    auto& form = Open<>(2);
    std::vector<AnsiString> errors;
    Application()->OnException = [&](TObject*, const Exception& error) { errors.push_back(error.Message()); };
    EXPECT_FALSE(Search(form, "", false, [&](TFRMCerca& screen) {
        connection->Execute("ALTER TABLE clients RENAME TO altres");
        Type(screen, "many 2");
        Pause();
        EXPECT_EQ(errors.size(), 1u);
        EXPECT_EQ(screen.ModalResult(), mrNone);
        Key(screen, VK_ESCAPE);
    }));
    Application()->OnException = nullptr;
    EXPECT_EQ(SearchScreen(), nullptr);
    EXPECT_LE(said.size(), 1u);
    connection->Execute("ALTER TABLE altres RENAME TO clients");
    EXPECT_TRUE(Search(form, "soler", true, [&](TFRMCerca& screen) { Key(screen, VK_RETURN); }));
    EXPECT_EQ(ValueOf(form, "nom"), "Soler");
    EXPECT_EQ(DataOf(form).Sort(), "");
}

TEST_F(SearchScreens, ADoubleClickBesideTheRecordsChoosesNothing) {
    auto& form = Open<>(2);
    EXPECT_FALSE(Search(form, "", false, [&](TFRMCerca& screen) {
        auto& grid = Part<TCustomDBGrid>(screen, "Graella");
        grid.ProcessCellDblClick(77, 1);
        grid.ProcessCellDblClick(DataOf(form).CurrentRecord(), -1);
        EXPECT_EQ(screen.ModalResult(), mrNone);
        Press(screen, "Cancelar");
    }));
}

TEST_F(SearchScreens, AWindowThatTheUserHasOpenIsSearchedToo) {
    auto& form = Open<>(2);
    form.Show();
    EXPECT_TRUE(Search(form, "sol", true, [&](TFRMCerca& screen) { Key(screen, VK_RETURN); }));
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(DataOf(form).FieldByName("nom")->AsString(), "Soler");
    EXPECT_EQ(ValueOf(form, "id"), "5");
}

TEST_F(SearchScreens, LookingUpDoesNotBringAWindowToTheFront) {
    auto& form = Open<>(2);
    form.Show();
    TForm other(nullptr);
    other.Show();
    ASSERT_TRUE(other.Active());
    app->ObreComponent(2, Application());
    EXPECT_TRUE(other.Active());
    EXPECT_TRUE(form.Visible());
}

TEST_F(SearchScreens, WhatIsEditedIsNotSearched) {
    auto& card = Open<>(3);
    card.Show();
    DataOf(card).Edit();
    DataOf(card).FieldByName("nom")->SetAsString("Half typed");
    TLocateStruct wanted{"nom", Variant("sol"), true, false, true};
    EXPECT_EQ(
        SendMessage(card.Handle(), VYN_MESSAGE_SHOWMODALSEARCH, VynLocateWParam, reinterpret_cast<intptr_t>(&wanted)),
        VynAnswerNo);
    EXPECT_EQ(said, std::vector<std::string>{
                        "S'està editant un registre de «Fitxa de client»: deseu-lo o cancel·leu-lo abans de cercar."});
    EXPECT_EQ(DataOf(card).FieldByName("nom")->AsString(), "Half typed");
    DataOf(card).Cancel();
}

TEST_F(SearchScreens, AScreenIsSearchedOnceAtATime) {
    auto& form = Open<>(2);
    EXPECT_FALSE(Search(form, "", false, [&](TFRMCerca& screen) {
        TLocateStruct wanted{"nom", Variant("sol"), true, false, true};
        EXPECT_EQ(SendMessage(form.Handle(), VYN_MESSAGE_SHOWMODALSEARCH, VynLocateWParam,
                              reinterpret_cast<intptr_t>(&wanted)),
                  VynAnswerNo);
        Press(screen, "Cancelar");
    }));
    EXPECT_EQ(said, std::vector<std::string>{"Ja s'està cercant a «Clients»."});
}

TEST_F(SearchScreens, ADatabaseThatIsAwayIsSaidAndNothingChanges) {
    connection->Execute("ALTER TABLE clients RENAME TO altres");
    auto& form = Open<>(2);
    TLocateStruct wanted{"nom", Variant("sol"), true, false, true};
    EXPECT_EQ(
        SendMessage(form.Handle(), VYN_MESSAGE_SHOWMODALSEARCH, VynLocateWParam, reinterpret_cast<intptr_t>(&wanted)),
        VynAnswerNo);
    EXPECT_EQ(said.size(), 1u);
    EXPECT_EQ(SearchScreen(), nullptr);
    connection->Execute("ALTER TABLE altres RENAME TO clients");
    EXPECT_TRUE(Search(form, "sol", true, [&](TFRMCerca& screen) { Key(screen, VK_RETURN); }));
}

TEST_F(SearchScreens, AnEmptyListHasNothingToTake) {
    connection->Execute("DELETE FROM clients");
    auto& form = Open<>(2);
    EXPECT_FALSE(Search(form, "", false, [&](TFRMCerca& screen) {
        EXPECT_FALSE(CanAccept(screen));
        Key(screen, VK_DOWN);
        Key(screen, VK_RETURN);
        EXPECT_EQ(screen.ModalResult(), mrNone);
        Press(screen, "Cancelar");
    }));
}

TEST_F(SearchScreens, AFieldThatIsNotThereSearchesInTheFirstColumn) {
    auto& form = Open<>(2);
    EXPECT_TRUE(Search(
        form, "4", true,
        [&](TFRMCerca& screen) {
            EXPECT_EQ(Part<TLabel>(screen, "PerCamp").Caption(), "per id");
            EXPECT_EQ(Current(screen), "Garrofa");
            Key(screen, VK_RETURN);
        },
        "cognom"));
}

TEST_F(SearchScreens, TheListGoesWhileItIsSearched) {
    auto& form = Open<>(2);
    EXPECT_FALSE(Search(form, "", false, [&](TFRMCerca& screen) {
        delete &form;
        EXPECT_EQ(screen.ModalResult(), mrCancel);
        Type(screen, "x");
        Pause();
    }));
    EXPECT_EQ(SearchScreen(), nullptr);
}

TEST_F(SearchScreens, ARecordThatIsNotThereIsAddedAndComesBackChosen) {
    auto& form = Open<>(2);
    bool shown = false;
    WindowHandle card([&](TMessage&) {
        auto& entry = Open<TFRMDBEntradaDades>(3);
        shown = entry.IsModal();
        EXPECT_EQ(DataOf(entry).State(), dsInsert);
        ASSERT_NE(entry.ActiveControl(), nullptr);
        EXPECT_EQ(entry.ActiveControl()->Name(), "Nom");
        EXPECT_EQ(Part<TDBEdit>(entry, "Nom").Text(), "Vila");
        for (const char* other : {"Nou", "Eliminar", "Graella", "Actualitzar"})
            EXPECT_FALSE(Part<TWinControl>(entry, other).Enabled()) << other;
        Part<TDBEdit>(entry, "Nom").SetText("Vilà"_w);
        DataOf(entry).FieldByName("nom")->SetAsString("Vilà"_w);
        Part<TButton>(entry, "Desar").Click();
    });
    EXPECT_TRUE(Search(form, "", false, [&](TFRMCerca& screen) {
        EXPECT_TRUE(Part<TButton>(screen, "Nou").Visible());
        Type(screen, "Vila");
        PostMessage(card.Handle(), WM_USER, 0, 0);
        Press(screen, "Nou");
    }));
    EXPECT_TRUE(shown);
    EXPECT_EQ(ValueOf(form, "id") + ValueOf(form, "nom"), "6Vilà");
    EXPECT_LT(app->NodesList().IndexOf(3), 0) << "the card that was opened for this is gone";
}

TEST_F(SearchScreens, ARecordThatIsNotSavedIsNotChosen) {
    auto& form = Open<>(2);
    WindowHandle card([&](TMessage&) { Part<TButton>(Open<TFRMDBEntradaDades>(3), "Cancelar").Click(); });
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        PostMessage(card.Handle(), WM_USER, 0, 0);
        Press(screen, "Nou");
        EXPECT_EQ(screen.ModalResult(), mrNone);
        EXPECT_EQ(Current(screen), "García");
        Press(screen, "Cancelar");
    }));
    EXPECT_EQ(DataOf(form).RecordCount(), 5);
}

TEST_F(SearchScreens, ACardAddsToItself) {
    auto& card = Open<TFRMDBEntradaDades>(3);
    WindowHandle later([&](TMessage&) {
        EXPECT_TRUE(card.IsModal());
        DataOf(card).FieldByName("nom")->SetAsString("Alba");
        Part<TButton>(card, "Desar").Click();
    });
    EXPECT_TRUE(Search(card, "gar", true, [&](TFRMCerca& screen) {
        PostMessage(later.Handle(), WM_USER, 0, 0);
        Press(screen, "Nou");
    }));
    EXPECT_EQ(ValueOf(card, "nom"), "Alba");
    EXPECT_FALSE(card.Visible());
    for (const char* other : {"Nou", "Eliminar", "Graella", "Actualitzar"})
        EXPECT_TRUE(Part<TWinControl>(card, other).Enabled()) << other;
    // Shown already, it cannot be shown to add.
    card.Show();
    EXPECT_FALSE(Search(card, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_FALSE(Part<TButton>(screen, "Nou").Visible());
        Press(screen, "Cancelar");
    }));
    EXPECT_THROW(card.AddModally("nom", "x"), Exception);
}

TEST_F(SearchScreens, AListWithoutACardAddsNothing) {
    auto& form = Open<>(4);
    EXPECT_FALSE(Search(form, "gar", true, [&](TFRMCerca& screen) {
        EXPECT_FALSE(Part<TButton>(screen, "Nou").Visible());
        EXPECT_EQ(Current(screen), "García");
        Press(screen, "Cancelar");
    }));
}
