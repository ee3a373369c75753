// The road of a lookup in the order entry, as typists of all kinds take it, and what may come in between.
#include "entry.h"
#include "platform/system/ticks.h"
#include "programs/host/query_form.h"

namespace vyn::screens {

namespace {

constexpr uint32_t kPause = 300;  // milliseconds, of the sample's box

// A new order, its customer still to be typed, under a clock that stands.
class LookupRoad : public EntryTest {
  protected:
    void TearDown() override {
        Application()->OnMessage.Clear();
        clock_.reset();
        EntryTest::TearDown();
    }
    void Begin() {
        Open("Entrada de comandes");
        Press("Nou");
        EXPECT_EQ(Looked("Client"), "");
        clock_ = std::make_unique<ManualTickClock>(1000);
        Application()->OnMessage = [this](HWND, TMessage& message, bool&) {
            if (message.Msg == VYN_POST_ENDSEARCHVALUE && message.LParam != 0) ++searches_;
        };
        Box().SetFocus();
        Pause();
        searches_ = 0;
    }
    // Lets what waits happen, with and without windows.
    void Settle() {
        for (int turn = 0; turn < 5; ++turn) Application()->ProcessMessages();
    }
    TVynEditBox& Box() { return Part<TVynEditBox>("Client"); }
    TVynComponent& Record() { return *Box().VynDataSource()->ComponentList()->RecordOf(&Box().Link()); }
    void Pause(uint32_t milliseconds = kPause) {
        Settle();
        clock_->Advance(milliseconds);
        for (int turn = 0; turn < 3; ++turn) {
            Application()->ProcessMessages();
            while (Box().Link().VynComponentState() == vyncs_Searching && milliseconds >= kPause)
                Application()->HandleMessage();
        }
    }
    // What was typed, a bar, and what was completed behind it (UTF-8).
    std::string Completed() {
        const AnsiString text = Box().EditText();
        const auto at = static_cast<size_t>(Box().SelStart());
        if (Box().SelLength() == 0) return AnsiToUtf8(text);
        EXPECT_EQ(at + static_cast<size_t>(Box().SelLength()), text.size()) << "the rest is selected";
        return AnsiToUtf8(text.substr(0, at)) + "|" + AnsiToUtf8(text.substr(at));
    }
    std::string CustomerOfKey() {
        const AnsiString key = FieldText("client");
        if (key.empty()) return "none";
        return RowsOf("SELECT nom FROM clients WHERE id = " + key).at(0);
    }

    std::unique_ptr<ManualTickClock> clock_;
    int searches_ = 0;  // that a user's typing began and that have ended
};

TEST_P(LookupRoad, ASlowTypistIsCompletedAtEachPause) {
    Begin();
    for (const char* typed : {"v", "i", "d"}) {
        TypeOn(Box(), typed);
        Pause();
    }
    EXPECT_EQ(Completed().substr(0, 4), "vid|") << "his own letters as he typed them";
    EXPECT_EQ(Completed().substr(4, 3), "res");
    EXPECT_LE(searches_, 3);
    PressKey(Box(), Key::Tab);
    Settle();
    EXPECT_FALSE(Box().Focused());
    EXPECT_EQ(Looked("Client"), CustomerOfKey());
    EXPECT_EQ(CustomerOfKey().substr(0, 6), "Vidres");
    EXPECT_NE(Text("Adreca"), "") << "the customer's address came with it";
}

TEST_P(LookupRoad, AFastTypistCostsOneSearch) {
    Begin();
    TypeOn(Box(), "vidres g");
    Settle();
    EXPECT_EQ(Completed(), "vidres g");
    EXPECT_EQ(searches_, 0);
    Pause(kPause - 1);
    EXPECT_EQ(searches_, 0);
    TypeOn(Box(), "a");
    Pause();
    EXPECT_EQ(Completed(), "vidres ga|rcía");
    EXPECT_EQ(searches_, 1);
    TypeOn(Box(), "rc");
    EXPECT_EQ(Completed(), "vidres garc|ía") << "typing on needs no search";
    Pause();
    EXPECT_EQ(searches_, 1);
}

TEST_P(LookupRoad, ATypistWithoutAccentsIsUnderstood) {
    Begin();
    TypeOn(Box(), "vidres garci");
    Pause();
    EXPECT_EQ(Completed(), "vidres garci|a") << "the accent is the record's, what was typed the user's";
    PressKey(Box(), Key::Tab);
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_EQ(CustomerOfKey(), "Vidres García");
}

TEST_P(LookupRoad, AccentsMayBeTyped) {
    Begin();
    TypeOn(Box(), "vidres garc\xED");
    Pause();
    EXPECT_EQ(Completed(), "vidres garcí|a");
}

TEST_P(LookupRoad, APastedTextIsLookedForWhenItIsLeft) {
    Begin();
    PasteInto(Box(),
              "VIDRES GARC\xCD"
              "A");
    Pause();
    EXPECT_EQ(searches_, 0);
    EXPECT_EQ(Completed(), "VIDRES GARCÍA");
    PressKey(Box(), Key::Tab);
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_EQ(CustomerOfKey(), "Vidres García");
}

TEST_P(LookupRoad, BackspaceTakesTheCompletionAwayAndItStaysAway) {
    Begin();
    TypeOn(Box(), "vidres g");
    Pause();
    EXPECT_EQ(Box().SelStart(), 8);
    EXPECT_GT(Box().SelLength(), 0);
    PressKey(Box(), Key::Backspace);
    EXPECT_EQ(Completed(), "vidres g");
    Pause();
    EXPECT_EQ(Completed(), "vidres g");
    PressKey(Box(), Key::Backspace);
    EXPECT_EQ(Completed(), "vidres ");
    Pause();
    EXPECT_EQ(searches_, 1);
}

TEST_P(LookupRoad, TabbingAwayDuringASearchTakesWhatItFinds) {
    Begin();
    TypeOn(Box(), "vidres garc");
    Settle();
    EXPECT_EQ(Box().Link().VynComponentState(), vyncs_Searching);
    PressKey(Box(), Key::Tab);
    Settle();
    EXPECT_FALSE(Box().Focused());
    EXPECT_EQ(CustomerOfKey(), "Vidres García");
    EXPECT_EQ(Looked("Client"), "Vidres García");
}

TEST_P(LookupRoad, EscapeTakesBackWhatWasTyped) {
    Begin();
    TypeOn(Box(), "vidres garc");
    Pause();
    PressKey(Box(), Key::Escape);
    Pause();
    EXPECT_EQ(Looked("Client"), "");
    EXPECT_EQ(CustomerOfKey(), "none");
    EXPECT_TRUE(form->Visible()) << "the first Escape is the box's";
}

TEST_P(LookupRoad, TheScreenMayCloseDuringASearch) {
    Begin();
    TypeOn(Box(), "vidres garc");
    Settle();
    EXPECT_EQ(Box().Link().VynComponentState(), vyncs_Searching);
    answer_ = mrNo;
    form->Close();
    form = nullptr;
    clock_->Advance(10 * kPause);
    Settle();
    clock_.reset();
    Open("Entrada de comandes");
    EXPECT_EQ(Looked("Client"), "Serralleria Ferrer");
}

TEST_P(LookupRoad, TheLookedUpScreenMayCloseWhileItsRecordSearches) {
    Begin();
    TypeOn(Box(), "vidres garc");
    Settle();
    ASSERT_NE(Record().Component, nullptr);
    delete Record().Component;
    Pause();
    EXPECT_EQ(Completed(), "vidres garc") << "what was typed stays";
    PressKey(Box(), Key::Tab);
    EXPECT_EQ(Looked("Client"), "Vidres García") << "the screen is made again";
    EXPECT_EQ(CustomerOfKey(), "Vidres García");
}

TEST_P(LookupRoad, TwoLookupsOfOneRecordFollowEachOther) {
    Begin();
    auto* town = new TVynEditBox(form);
    town->SetParent(Box().Parent());
    town->SetDataField("client");
    town->SetDataLinkType(dlt_Search);
    town->SetNChild(Box().NChild());
    town->SetChildDataKey("id");
    town->SetChildDataShow("poblacio");
    town->SetVynDataSource(Box().VynDataSource());
    EXPECT_EQ(Box().VynDataSource()->ComponentList()->RecordOf(&town->Link()), &Record());
    TypeOn(Box(), "vidres garc");
    Pause();
    PressKey(Box(), Key::Tab);
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_EQ(AnsiToUtf8(town->Text()), RowsOf("SELECT poblacio FROM clients WHERE id = " + FieldText("client")).at(0));
}

TEST_P(LookupRoad, ASearchScreenThatCannotOpenLeavesEverythingAsItWas) {
    Begin();
    TypeOn(Box(), "vidres garc");
    Pause();
    // Whoever keeps the application has spoilt the list's statement.
    auto* list = ObjectCast<TADOQuery>(Record().Component->FindComponent("Consulta"));
    ASSERT_NE(list, nullptr);
    const AnsiString statement = list->SQL()->Text();
    list->Close();
    list->SQL()->SetText("SELECT * FROM nowhere");
    uint16_t key = VK_F2;
    Box().ProcessKeyDown(key, {});
    Settle();
    ASSERT_FALSE(asked_.empty()) << "it says why";
    EXPECT_NE(asked_.front().find("nowhere"), std::string::npos) << asked_.front();
    EXPECT_EQ(CustomerOfKey(), "none");
    list->SQL()->SetText(statement);
    TypeInto(Box(), "vidres garc");
    Pause();
    PressKey(Box(), Key::Tab);
    EXPECT_EQ(Looked("Client"), "Vidres García") << "and works again afterwards";
}

TEST_P(LookupRoad, AnEmptyTableFindsNothing) {
    Meanwhile("DELETE FROM linies");
    Meanwhile("DELETE FROM factures");
    Meanwhile("DELETE FROM comandes");
    Meanwhile("DELETE FROM clients");
    Begin();
    TypeOn(Box(), "vid");
    Pause();
    EXPECT_EQ(Completed(), "vid");
    TypeOn(Box(), "r");
    Pause();
    EXPECT_EQ(searches_, 1) << "nothing begins with more of what nothing begins with";
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"),
              "\"vidr\" was not found.\nPress F2 to choose from the list, or Escape to take it back");
    EXPECT_EQ(Box().EditText(), "vidr");
}

INSTANTIATE_TEST_SUITE_P(Engines, LookupRoad, testing::Values("SQLite", "PostgreSQL"));

class LookupRoadOfAMillion : public LookupRoad {};

TEST_P(LookupRoadOfAMillion, IsAsShort) {
    Meanwhile(
        "INSERT INTO clients (codi, nom, poblacio, regio, alta, credit, actiu) WITH RECURSIVE n (i) AS (SELECT 1 UNION "
        "ALL SELECT i + 1 "
        "FROM n WHERE i < 999999) SELECT CAST(i AS VARCHAR(6)), 'Milionari ' || (1000000 + CAST(i AS BIGINT) * 7919 % "
        "1000000), "
        "'Vic', "
        "'Osona', '2026-01-01', 0, TRUE FROM n");
    // As the engine does by itself in time.
    Meanwhile("ANALYZE clients");
    Begin();
    TypeOn(Box(), "milionari 1234");
    Pause();
    EXPECT_EQ(Completed(), "milionari 1234|000");
    TypeOn(Box(), "5");
    Pause();
    EXPECT_EQ(Completed(), "milionari 12345|00");
    PressKey(Box(), Key::Tab);
    EXPECT_EQ(Looked("Client"), "Milionari 1234500");
    EXPECT_EQ(CustomerOfKey(), "Milionari 1234500");
    // The screen that is searched keeps but a window of its records.
    auto* list = ObjectCast<TFRMSQLGeneric>(Record().Component);
    ASSERT_NE(list, nullptr);
    const auto* records = ObjectCast<TDataSet>(list->FindComponent("Consulta"));
    const auto kept = [&] { return records->RecordsFetched() - records->FirstRecord(); };
    EXPECT_LT(kept(), 2000);
    clock_.reset();
    While("Client", [&](TCustomForm& search) {
        TypeInto(*ObjectCast<TCustomEdit>(search.FindComponent("Cerca")), "milionari 17770");
        ClickOn(*ObjectCast<TWinControl>(search.FindComponent("Acceptar")));
    });
    EXPECT_EQ(Looked("Client"), "Milionari 1777000");
    EXPECT_EQ(CustomerOfKey(), "Milionari 1777000");
    EXPECT_LT(kept(), 2000);
}

INSTANTIATE_TEST_SUITE_P(Engines, LookupRoadOfAMillion, testing::Values("SQLite", "PostgreSQL"));

}  // namespace

}  // namespace vyn::screens
