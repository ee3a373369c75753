// Forms, boxes, looked-up screens and the program that go while a search fails, tables that are
// gone, and lists that are read whole.
#include "faults/lookups/server_lookup.h"

namespace faults {

class ClosingLookup : public ServerLookup {
  protected:
    // Types what fails, and does something else while that is told.
    void WhileTold(const std::function<void()>& action) {
        Begin();
        relay_->FailAt(1, Fault::CutAfterRequest);
        whileTold_ = action;
        TypeAndPause("vidres garc");
        EXPECT_FALSE(whileTold_) << "it was told";
        Turn();
        ExpectNoSearchLeft();
    }
    void FindIn(const std::string& caption) {
        clock_.reset();
        asked_.clear();
        Open(caption);
        EXPECT_EQ(Looked("Client"), RowsOf("SELECT nom FROM clients WHERE id = " + FieldText("client")).at(0));
        EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    }
};

TEST_P(ClosingLookup, AFormMayCloseWhileItsSearchFails) {
    answer_ = mrNo;
    WhileTold([this] { std::exchange(form, nullptr)->Close(); });
    FindIn("Entrada de comandes");
}

TEST_P(ClosingLookup, AFormMayBeFreedWhileItsSearchFails) {
    WhileTold([this] { delete std::exchange(form, nullptr); });
    FindIn("Entrada de comandes");
}

TEST_P(ClosingLookup, AFormMayCloseWhileItsSearchWaits) {
    Begin();
    Do([&] { TypeOn(Box(), "vidres garc"); });
    Turn();
    EXPECT_EQ(Box().Link().VynComponentState(), vyncs_Searching);
    StopServer();
    delete std::exchange(form, nullptr);
    EXPECT_EQ(RunningThreads(), 0);
    clock_->Advance(10 * kPause);
    Turn();
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    StartServer();
    FindIn("Entrada de comandes");
}

TEST_P(ClosingLookup, ABoxMayBeFreedWhileItsSearchFails) {
    Begin();
    relay_->FailAt(1, Fault::CutAfterRequest);
    Do([&] { TypeOn(Box(), "vidres garc"); });
    Turn();
    whileTold_ = [this] { delete &Box(); };
    clock_->Advance(kPause);
    while (whileTold_) Application()->HandleMessage();
    Turn();
    ExpectToldOnce();
    ExpectNoSearchLeft();
    EXPECT_EQ(Part<TDataSet>("Consulta").State(), dsInsert);
}

TEST_P(ClosingLookup, ALookedUpScreenMayBeFreedWhileItsSearchFails) {
    WhileTold([this] { delete Record().Component; });
    ExpectToldOnce();
    EXPECT_EQ(Completed(), "vidres garc");
    Do([&] { TypeInto(Box(), "vidres garc"); });
    Pause();
    Leave();
    EXPECT_EQ(Looked("Client"), "Vidres García");
}

TEST_P(ClosingLookup, TheProgramMayEndWhileASearchFails) {
    WhileTold([] { Application()->Terminate(); });
    ExpectToldOnce();
    EXPECT_EQ(Completed(), "vidres garc");
    form = nullptr;
    session.reset();
    EXPECT_EQ(RunningThreads(), 0);
}

TEST_P(ClosingLookup, TheProgramMayEndWhileASearchWaits) {
    Begin();
    Do([&] { TypeOn(Box(), "vidres garc"); });
    Turn();
    EXPECT_EQ(Box().Link().VynComponentState(), vyncs_Searching);
    StopServer();
    Application()->Terminate();
    form = nullptr;
    session.reset();
    EXPECT_EQ(RunningThreads(), 0);
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

TEST_P(ClosingLookup, ATableThatIsGoneIsToldWithTheScreenThatSearchesIt) {
    Begin();
    Meanwhile("ALTER TABLE clients RENAME TO elsewhere");
    TypeAndPause("vidres garc");
    ASSERT_EQ(asked_.size(), 1u) << testing::PrintToString(asked_);
    EXPECT_EQ(asked_.front().rfind("No es pot cercar a «Cerca de clients»: ", 0), 0u) << asked_.front();
    EXPECT_NE(asked_.front().find("clients\" does not exist"), std::string::npos) << asked_.front();
    asked_.clear();
    EXPECT_EQ(Completed(), "vidres garc");
    Meanwhile("ALTER TABLE elsewhere RENAME TO clients");
    Do([&] { TypeInto(Box(), "vidres garc"); });
    Pause();
    EXPECT_EQ(Completed(), "vidres garc|ía");
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

INSTANTIATE_TEST_SUITE_P(Engines, ClosingLookup, testing::Values("PostgreSQL"));

class OpeningLookup : public ServerLookup {};

TEST_P(OpeningLookup, AScreenThatIsOpenedWhileTheServerGoesSaysSoOnceForAllItsBoxes) {
    Open("Entrada de comandes");
    StopServer();
    Turn();
    Looked("Client");
    Looked("Article");
    ExpectToldOnce();
    EXPECT_EQ(Box().Text(), "");
    EXPECT_NE(Hint().find("Cerca de clients"), std::string::npos) << Hint();
    EXPECT_NE(AnsiToUtf8(Part<TVynEditBox>("Article").Button().Hint()).find("ARTICLES"), std::string::npos);
    EXPECT_NE(FieldText("client"), "");
    StartServer();
    Press("Actualitzar");
    EXPECT_EQ(Looked("Client"), RowsOf("SELECT nom FROM clients WHERE id = " + FieldText("client")).at(0));
    EXPECT_NE(Looked("Article"), "");
    EXPECT_EQ(Hint(), "Cerca (F2)");
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
}

INSTANTIATE_TEST_SUITE_P(Engines, OpeningLookup, testing::Values("PostgreSQL"));

// The looked-up records are read to their end, once.
class WholeLookup : public ServerLookup {
  protected:
    void SetUp() override {
        ServerLookup::SetUp();
        TCustomADODataSet::PagedFrom = TCustomADODataSet::kLargeTable;
    }
    void Prepare(RunOptions& options) override {
        ServerLookup::Prepare(options);
        Meanwhile(
            "INSERT INTO clients (codi, nom, poblacio, regio, alta, credit, actiu) SELECT 'M' || i, 'Milionari ' || i, "
            "'Vic', 'Osona', '2026-01-01', 0, TRUE FROM generate_series(1, 20000) AS i");
    }
};

TEST_P(WholeLookup, AListThatWasNotReadToItsEndIsReadAgain) {
    Begin();
    int failures = 0;
    for (const Cut& cut : kKindsOfCuts)
        AtEachRequest(
            cut,
            [&] {
                Escape();
                ObjectCast<TDataSet>(Record().Component->FindComponent("Consulta"))->Close();
            },
            [&] { TypeAndPause("vidres garc"); },
            [&](bool failed) {
                if (asked_.empty()) {
                    EXPECT_EQ(Completed(), "vidres garc|ía");
                    return;
                }
                ++failures;
                ExpectToldOnce();
                EXPECT_EQ(Completed(), "vidres garc");
                Do([&] { TypeInto(Box(), "vidres garc"); });
                Pause();
                EXPECT_EQ(Completed(), "vidres garc|ía");
                EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
            });
    EXPECT_GT(failures, 3);
}

INSTANTIATE_TEST_SUITE_P(Engines, WholeLookup, testing::Values("PostgreSQL"));

}  // namespace faults
