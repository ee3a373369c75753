// A lookup over a server: the connection is cut at each request of a search, answers are spoilt or stay away, the
// server stops.
#include <chrono>
#include <fstream>

#include "faults/lookups/server_lookup.h"

namespace faults {

TEST_P(ServerLookup, ASearchThatIsCutAnywhereKeepsWhatWasTypedAndIsRepeated) {
    Begin();
    std::string record;
    for (const Cut& cut : kCuts)
        AtEachRequest(
            cut,
            [&] {
                Escape();
                EXPECT_EQ(Completed(), "");
                record = Buffer();
            },
            [&] { TypeAndPause("vidres garc"); },
            [&](bool failed) {
                if (asked_.empty()) {
                    EXPECT_EQ(Completed(), "vidres garc|ía");
                    return;
                }
                EXPECT_TRUE(failed);
                ExpectToldOnce();
                EXPECT_EQ(Completed(), "vidres garc");
                EXPECT_EQ(Record().State, vyncs_available);
                EXPECT_EQ(Buffer(), record);
                ExpectNoSearchLeft();
                Do([&] { TypeInto(Box(), "vidres garc"); });
                Pause();
                EXPECT_EQ(Completed(), "vidres garc|ía");
                EXPECT_TRUE(asked_.empty());
            });
}

TEST_P(ServerLookup, TypingOnAfterAFailureTellsNothingNewAndTheSameTextIsSearchedAgain) {
    Begin();
    relay_->FailAt(1, Fault::CutAfterRequest);
    TypeAndPause("vidres gar");
    ExpectToldOnce();
    TypeAndPause("c");
    EXPECT_EQ(Completed(), "vidres garc");
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    Do([&] { PressKey(Box(), Key::Backspace); });
    TypeAndPause({});
    EXPECT_EQ(Completed(), "vidres gar");
    Do([&] { PressKey(Box(), Key::Backspace); });
    TypeAndPause("r");
    EXPECT_EQ(Completed(), "vidres gar|cía") << "the database is back";
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ServerLookup, AServerThatStopsDuringASearchIsToldOnceAndFoundAgain) {
    Begin();
    const std::string record = Buffer();
    StopServer();
    TypeAndPause("vidr");
    ExpectToldOnce();
    for (const char* more : {"e", "s", " "}) TypeAndPause(more);
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    EXPECT_EQ(Completed(), "vidres ");
    EXPECT_EQ(Buffer(), record);
    // Who leaves the box is kept there.
    Leave();
    ExpectToldOnce();
    EXPECT_TRUE(Box().Focused());
    EXPECT_EQ(Completed(), "|vidres ") << "selected, to be typed over";
    EXPECT_EQ(Buffer(), record);
    ExpectNoSearchLeft();
    StartServer();
    TypeAndPause("vidres garc");
    EXPECT_EQ(Completed(), "vidres garc|ía");
    Leave();
    EXPECT_FALSE(Box().Focused());
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_EQ(FieldText("client"), AnsiString(RowsOf("SELECT id FROM clients WHERE nom = 'Vidres García'"_w).at(0)));
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ServerLookup, AServerThatFallsSilentIsGivenUpAndFoundAgain) {
    Begin();
    const std::string record = Buffer();
    for (const Fault fault : {Fault::Hold, Fault::HoldInAnswer}) {
        const auto before = std::chrono::steady_clock::now();
        relay_->FailAt(1, fault, 4);
        TypeAndPause("vidres g");
        ExpectToldOnce();
        EXPECT_EQ(Completed(), "vidres g");
        EXPECT_EQ(Buffer(), record);
        // Nobody is let in either.
        Do([&] { TypeInto(Box(), "vid"); });
        Pause();
        ExpectToldOnce();
        EXPECT_EQ(Completed(), "vid");
        // Far from for ever: the five seconds that are allowed, and what a loaded machine adds.
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(60));
        relay_->Mend();
        ExpectNoSearchLeft();
        Do([&] { TypeInto(Box(), "vidres garc"); });
        Pause();
        EXPECT_EQ(Completed(), "vidres garc|ía");
        Escape();
    }
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ServerLookup, AScreenThatCannotBeReadWhenItIsOpenedIsReadWhenItIsSearched) {
    std::string record;
    for (const Cut& cut : kKindsOfCuts)
        AtEachRequest(
            cut,
            [&] {
                clock_.reset();
                if (form) form->Close();
                form = nullptr;
                Turn();
                Open("Entrada de comandes");
                Press("Nou");
                record = Buffer();
            },
            [&] { EXPECT_EQ(Looked("Client"), ""); },
            [&](bool failed) {
                EXPECT_LE(asked_.size(), 1u);
                EXPECT_EQ(Buffer(), record);
                clock_ = std::make_unique<ManualTickClock>(1000);
                asked_.clear();
                Box().SetFocus();
                Pause();
                TypeAndPause("vidres garc");
                EXPECT_EQ(Completed(), "vidres garc|ía");
                EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
                Escape();
            });
}

TEST_P(ServerLookup, ARecordWhoseCustomerCannotBeLookedUpSaysSoAndKeepsIt) {
    Open("Entrada de comandes");
    clock_ = std::make_unique<ManualTickClock>(1000);
    const auto customer = [&] { return RowsOf("SELECT nom FROM clients WHERE id = " + FieldText("client")).at(0); };
    for (const Cut& cut : kKindsOfCuts)
        AtEachRequest(
            cut,
            [&] {
                Do([&] { Part<TDataSet>("Consulta").First(); });
                Pause();
                EXPECT_EQ(Looked("Client"), customer());
            },
            [&] {
                Do([&] { Down("Graella", 1); });
                Pause();
            },
            [&](bool failed) {
                // Another customer's name is worse than none.
                const std::string shown = AnsiToUtf8(Box().Text());
                EXPECT_EQ(Box().Link().Failure().empty(), shown == customer()) << shown;
                EXPECT_TRUE(shown == customer() || shown.empty()) << shown;
                if (shown.empty()) EXPECT_NE(Hint().find("Cerca de clients"), std::string::npos) << Hint();
                if (!asked_.empty()) ExpectToldOnce();
                EXPECT_EQ(Part<TDataSet>("Consulta").State(), dsBrowse);
                EXPECT_EQ(RowsOf("SELECT client FROM comandes WHERE id = " + FieldText("id")).at(0),
                          AnsiToUtf8(FieldText("client")));
                ExpectNoSearchLeft();
                // Who goes to the box has it looked up again.
                Box().SetFocus();
                Pause();
                EXPECT_EQ(Looked("Client"), customer());
                EXPECT_EQ(Hint(), "Cerca (F2)");
                Part<TWinControl>("Numero").SetFocus();
                EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
            });
}

TEST_P(ServerLookup, RecordsAreGoneThroughWhileTheServerIsAway) {
    Open("Entrada de comandes");
    clock_ = std::make_unique<ManualTickClock>(1000);
    Pause();
    StopServer();
    for (int move = 0; move < 4; ++move) {
        Do([&] { Down("Graella", 1); });
        Pause();
        // That the order's lines cannot be read, and that its customer cannot be looked up, and with the next that its
        // sum cannot be reckoned; then all of it is known.
        EXPECT_EQ(asked_.size(), move == 0 ? 2u : move == 1 ? 1u : 0u) << testing::PrintToString(asked_);
        for (const std::string& message : asked_) EXPECT_TRUE(Helps(message)) << message;
        asked_.clear();
        EXPECT_EQ(Box().Text(), "");
        EXPECT_NE(Hint().find("Cerca de clients"), std::string::npos) << Hint();
        EXPECT_NE(FieldText("client"), "") << "the order's customer is as it was";
        EXPECT_FALSE(Part<TDataSet>("ConsultaDetall").Active()) << "the lines of another order are not this one's";
    }
    EXPECT_EQ(Part<TDataSet>("Consulta").CurrentRecord(), 4);
    ExpectNoSearchLeft();
    StartServer();
    Do([&] { Down("Graella", 1); });
    Pause();
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    EXPECT_EQ(Looked("Client"), RowsOf("SELECT nom FROM clients WHERE id = " + FieldText("client")).at(0));
    EXPECT_EQ(std::to_string(Rows("ConsultaDetall")),
              RowsOf("SELECT count(*) FROM linies WHERE comanda = " + FieldText("id")).at(0));
}

TEST_P(ServerLookup, ASearchScreenThatCannotBeOpenedLeavesEverythingAsItWas) {
    Begin();
    clock_.reset();
    std::string record;
    for (const Cut& cut : kKindsOfCuts) {
        bool opened = false;
        AtEachRequest(
            cut,
            [&] {
                Escape();
                Do([&] { TypeOn(Box(), "vidr"); });
                Looked("Client");
                record = Buffer();
                opened = false;
            },
            [&] { opened = Searched([&](TFRMCerca& screen) { screen.SetModalResult(mrCancel); }); },
            [&](bool failed) {
                EXPECT_TRUE(failed || (opened && asked_.empty()));
                EXPECT_TRUE(opened || !asked_.empty());
                if (!asked_.empty()) ExpectToldOnce();
                EXPECT_EQ(Buffer(), record);
                EXPECT_EQ(Looked("Client"), "") << "the record's own";
                EXPECT_TRUE(Searched([&](TFRMCerca& screen) { Choose(screen, "vidres garc"); }));
                EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
                EXPECT_EQ(Looked("Client"), "Vidres García");
                Press("Cancelar");
                Press("Nou");
                Box().SetFocus();
                Looked("Client");
            });
    }
}

TEST_P(ServerLookup, WhatFailsInTheSearchScreenIsToldAndItGoesOn) {
    Begin();
    clock_.reset();
    int failures = 0;
    EXPECT_TRUE(Searched([&](TFRMCerca& screen) {
        for (const Cut& cut : kCuts)
            AtEachRequest(
                cut,
                [&] {
                    TypeInto(Line(screen), "ferr");
                    screen.PausaTimer(nullptr);
                },
                [&] {
                    TypeInto(Line(screen), "vidres garc");
                    Do([&] { screen.PausaTimer(nullptr); });
                },
                [&](bool failed) {
                    EXPECT_EQ(Line(screen).Text(), "vidres garc");
                    EXPECT_EQ(Said(screen), asked_.empty() ? "" : "No s'ha pogut cercar: torneu-ho a provar.");
                    if (asked_.empty()) return;
                    EXPECT_TRUE(failed);
                    ExpectToldOnce();
                    ++failures;
                    // Down searches for what is typed before it goes on.
                    uint16_t key = VK_DOWN;
                    screen.CercaKeyDown(nullptr, key, {});
                    EXPECT_EQ(Said(screen), "");
                    EXPECT_GT(Current(screen),
                              "Vidres Garc\xED"
                              "a");
                    EXPECT_EQ(Current(screen).substr(0, 6), "Vidres");
                });
        relay_->FailAt(1, Fault::CutAfterRequest);
        TypeInto(Line(screen), "vidres garc");
        Do([&] { screen.PausaTimer(nullptr); });
        ExpectToldOnce();
        // Never the record that happened to be current.
        screen.AcceptarClick(nullptr);
    }));
    EXPECT_GT(failures, 10);
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ServerLookup, AnOrderThatFailsInTheSearchScreenIsMadeWithTheNextSearch) {
    Begin();
    clock_.reset();
    EXPECT_TRUE(Searched([&](TFRMCerca& screen) {
        for (const Cut& cut : kCuts)
            AtEachRequest(
                cut, [] {},
                [&] {
                    uint16_t key = VK_F3;
                    Do([&] { screen.CercaKeyDown(nullptr, key, {}); });
                },
                [&](bool failed) {
                    if (!asked_.empty()) ExpectToldOnce();
                    TypeInto(Line(screen), "v");
                    screen.PausaTimer(nullptr);
                    EXPECT_EQ(ObjectCast<TCustomDBGrid>(screen.FindComponent("Graella"))->DataSet()->RecordCount(),
                              500);
                });
        screen.SetModalResult(mrCancel);
    }));
    EXPECT_EQ(Looked("Client"), "");
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ServerLookup, ANewRecordThatCannotBeBegunLeavesTheSearchScreenAsItWas) {
    Begin();
    clock_.reset();
    std::string said;
    bool begun = false;
    EXPECT_TRUE(Searched([&](TFRMCerca& screen) {
        for (const Cut& cut : kCuts)
            AtEachRequest(
                cut, [&] { TypeInto(Line(screen), "Nova casa"); },
                [&] {
                    InModalWindow card([&](TCustomForm& shown) {
                        begun = ObjectCast<TDataSet>(shown.FindComponent("Consulta"))->State() == dsInsert;
                        said = AnsiToUtf8(ObjectCast<TLabel>(shown.FindComponent("Missatge"))->Caption());
                        ObjectCast<TFRMDBEntradaDades>(&shown)->CancelarClick(nullptr);
                    });
                    said.clear();
                    begun = false;
                    Do([&] { screen.NouClick(nullptr); });
                },
                [&](bool failed) {
                    // The card says it itself, as it does what goes wrong when it is shown by itself.
                    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
                    EXPECT_EQ(begun, said.empty());
                    if (!begun) EXPECT_TRUE(failed && Helps(said)) << said;
                    EXPECT_EQ(screen.ModalResult(), mrNone);
                    EXPECT_EQ(Line(screen).Text(), "Nova casa");
                });
        Choose(screen, "vidres garc");
    }));
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_EQ(RowsOf("SELECT count(*) FROM clients"), std::vector<std::string>{"500"});
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ServerLookup, AValueOfAClassIsKeptAndSearchedAgainLikewise) {
    Open("Entrada de comandes");
    clock_ = std::make_unique<ManualTickClock>(1000);
    Press("NovaLinia");
    Pause();
    EXPECT_EQ(Looked("Article"), "");
    auto& article = Part<TVynEditBox>("Article");
    article.SetFocus();
    const auto typeArticle = [&](const AnsiString& text) {
        Do([&] { TypeInto(article, text); });
        Turn();
        clock_->Advance(kPause);
        Turn();
        while (article.Link().VynComponentState() == vyncs_Searching) Application()->HandleMessage();
        Turn();
    };
    for (const Cut& cut : kKindsOfCuts)
        AtEachRequest(
            cut, [&] { typeArticle("zz"); }, [&] { typeArticle("a100"); },
            [&](bool failed) {
                EXPECT_EQ(article.EditText().substr(0, 4), "a100");
                if (asked_.empty()) {
                    EXPECT_EQ(article.EditText(), "a100-00");
                    return;
                }
                ASSERT_EQ(asked_.size(), 1u);
                EXPECT_NE(asked_.front().find("«ARTICLES»: "), std::string::npos) << asked_.front();
                ExpectToldOnce();
                EXPECT_EQ(article.EditText(), "a100");
                EXPECT_EQ(Part<TDataSet>("ConsultaDetall").State(), dsInsert);
                typeArticle("a100");
                EXPECT_EQ(article.EditText(), "a100-00");
                EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
            });
    Do([&] { PressKey(article, Key::Tab); });
    EXPECT_NE(Part<TDataSet>("ConsultaDetall").FieldByName("preu")->AsString(), "") << "its price came with it";
    ExpectNoSearchLeft();
}

TEST_P(ServerLookup, WhatIsToldStandsInTheDocument) {
    std::ifstream stream(VYN_SOURCE_DIR "/docs/lookups.md", std::ios::binary);
    const std::string document((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    Begin();
    relay_->FailAt(1, Fault::CutAfterRequest);
    TypeAndPause("vidres garc");
    ASSERT_EQ(asked_.size(), 1u);
    EXPECT_NE(document.find("\n> " + asked_.front() + "\n"), std::string::npos) << asked_.front();
    EXPECT_EQ(Hint(), "Cerca (F2)\n" + asked_.front().substr(0, asked_.front().size() - 1));
    EXPECT_NE(document.find("\"No s'ha pogut cercar: torneu-ho a provar.\""), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Engines, ServerLookup, testing::Values("PostgreSQL"));

}  // namespace faults
