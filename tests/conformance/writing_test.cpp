#include "conformance/engines.h"
#include "platform/data/update_conflict.h"
#include "platform/text/exceptions.h"

using namespace conformance;

TEST_P(Conformance, AnInsertedRecordComesBackWithItsKeyAndDefaults) {
    const auto table = Table(mine, "clients");
    table->Append();
    table->FieldByName("nom")->SetAsString("Riera");
    table->Post();
    EXPECT_EQ(table->State(), dsBrowse);
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 4);
    EXPECT_EQ(table->FieldByName("estat")->AsString(), "nou");
    EXPECT_EQ(table->RecordCount(), 4);
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 4"), "Riera");
}

TEST_P(Conformance, EveryTypeIsWrittenAndReadBackTheSame) {
    const auto table = Table(mine, "clients");
    table->Append();
    table->FieldByName("nom")->SetAsString("Caf\xE9 \x80 'O'");
    table->FieldByName("credit")->SetAsCurrency(Currency::FromScaled(123456789));
    table->FieldByName("alta")->SetAsString("03/09/2001");
    table->FieldByName("vist")->SetAsDateTime(TDateTime(EncodeDate(2001, 3, 9) + EncodeTime(10, 20, 30, 250)));
    table->FieldByName("actiu")->SetAsBoolean(true);
    table->FieldByName("pes")->SetAsFloat(0.1);
    table->FieldByName("foto")->SetRawBytes(std::string("\x00\xFF\x27", 3));
    table->FieldByName("text")->SetAsString("line\r\nline");
    table->Post();
    const auto check = [](TDataSet& data) {
        EXPECT_EQ(data.FieldByName("nom")->AsString(), "Caf\xE9 \x80 'O'");
        EXPECT_EQ(data.FieldByName("credit")->AsCurrency().Val, 123456789);
        EXPECT_EQ(data.FieldByName("alta")->DisplayText(), "03/09/2001");
        EXPECT_NEAR(data.FieldByName("vist")->AsDateTime().Val, EncodeDate(2001, 3, 9) + EncodeTime(10, 20, 30, 250),
                    1e-9);
        EXPECT_TRUE(data.FieldByName("actiu")->AsBoolean());
        EXPECT_EQ(data.FieldByName("pes")->AsFloat(), 0.1);
        EXPECT_EQ(data.FieldByName("foto")->RawBytes(), std::string_view("\x00\xFF\x27", 3));
        EXPECT_EQ(data.FieldByName("text")->AsString(), "line\r\nline");
    };
    check(*table);
    const auto again = Query(theirs, "SELECT * FROM clients WHERE id = 4");
    check(*again);
    // And changed back to nothing.
    table->Edit();
    for (const char* name : {"credit", "alta", "vist", "actiu", "pes", "foto", "text"})
        table->FieldByName(name)->Clear();
    table->Post();
    again->Refresh();
    for (const char* name : {"credit", "alta", "vist", "actiu", "pes", "foto", "text"})
        EXPECT_TRUE(again->FieldByName(name)->IsNull()) << name;
}

TEST_P(Conformance, QueriesOverOneTableAreWrittenToo) {
    const auto query = Query(mine, "SELECT id, nom, 1 + 1 AS dos FROM clients WHERE nota = 'b'");
    query->Edit();
    query->FieldByName("nom")->SetAsString("Puigdevall");
    EXPECT_EQ(MessageOf([&] { query->FieldByName("dos")->SetAsInteger(3); }),
              "EDatabaseError: Field 'dos' cannot be modified");
    query->Post();
    EXPECT_EQ(query->FieldByName("dos")->AsInteger(), 2);
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 2"), "Puigdevall");
}

TEST_P(Conformance, OtherQueriesSayWhyTheyAreReadOnly) {
    const auto reason = [&](const AnsiString& sql) {
        const auto query = Query(mine, sql);
        EXPECT_FALSE(query->CanModify());
        return MessageOf([&] { query->Edit(); });
    };
    EXPECT_EQ(reason("SELECT c.id, c.nom, l.linia FROM clients c, linies l"),
              "EDatabaseError: This query reads several tables (clients, linies), so its records cannot be changed");
    EXPECT_EQ(reason("SELECT a.id, a.nom FROM clients a JOIN clients b ON a.id = b.id"),
              "EDatabaseError: This query joins several sources, so its records cannot be changed");
    EXPECT_EQ(reason("SELECT id, nom FROM clients UNION SELECT id, nota FROM clients"),
              "EDatabaseError: This query joins several sources, so its records cannot be changed");
    EXPECT_EQ(reason("SELECT DISTINCT id, nom FROM clients"),
              "EDatabaseError: This query groups records, so its records cannot be changed");
    EXPECT_EQ(reason("SELECT count(*) AS quants FROM clients"),
              "EDatabaseError: This query shows no column of a table, so its records cannot be changed");
    EXPECT_EQ(
        reason("SELECT nom FROM clients"),
        "EDatabaseError: This query leaves out id of the primary key of clients, so its records cannot be changed");
    EXPECT_EQ(reason("SELECT * FROM sense"),
              "EDatabaseError: The table sense has no primary key, so its records cannot be changed");
    EXPECT_EQ(reason("SELECT * FROM (SELECT * FROM clients) AS x"),
              "EDatabaseError: This query reads another query, so its records cannot be changed");
    mine.Execute("CREATE VIEW vista AS SELECT * FROM clients");
    EXPECT_EQ(reason("SELECT * FROM vista"), "EDatabaseError: vista is no table, so its records cannot be changed");
}

TEST_P(Conformance, TwoUsersWhoChangeDifferentFieldsDoNotMeet) {
    const auto one = Table(mine, "clients");
    const auto two = Table(theirs, "clients");
    one->Edit();
    one->FieldByName("nom")->SetAsString("Mine");
    two->Edit();
    two->FieldByName("nota")->SetAsString("theirs");
    two->Post();
    one->Post();
    EXPECT_EQ(one->FieldByName("nota")->AsString(), "theirs");
    EXPECT_EQ(Value("SELECT nom || nota FROM clients WHERE id = 1"), "Minetheirs");
}

TEST_P(Conformance, AConflictCarriesTheirsMineAndTheOriginal) {
    const auto one = Table(mine, "clients");
    const auto two = Table(theirs, "clients");
    two->Edit();
    two->FieldByName("nom")->SetAsString("Theirs");
    two->Post();
    one->Edit();
    one->FieldByName("nom")->SetAsString("Mine");
    one->FieldByName("nota")->SetAsString("mine too");
    try {
        one->Post();
        FAIL() << "nothing was raised";
    } catch (const EUpdateConflict& conflict) {
        EXPECT_EQ(conflict.Message(),
                  "Another user has changed this record of clients since it was read.\n"
                  "nom: it was \"Soler\", is now \"Theirs\", and you wrote \"Mine\"");
        EXPECT_FALSE(conflict.Deleted());
        ASSERT_EQ(conflict.Values().size(), 11u);
        const EUpdateConflict::Value& nom = conflict.Values()[1];
        EXPECT_EQ(nom.FieldName, "nom");
        EXPECT_EQ(nom.Original.AsString(), "Soler");
        EXPECT_EQ(nom.Mine.AsString(), "Mine");
        EXPECT_EQ(nom.Theirs.AsString(), "Theirs");
        EXPECT_TRUE(nom.Conflicting);
        EXPECT_FALSE(conflict.Values()[2].Conflicting);
    }
    EXPECT_EQ(one->State(), dsEdit);
    EXPECT_EQ(one->FieldByName("nom")->AsString(), "Mine");
    EXPECT_EQ(Value("SELECT nom || nota FROM clients WHERE id = 1"), "Theirsa");
    one->Cancel();
    one->Refresh();
    EXPECT_EQ(one->FieldByName("nom")->AsString(), "Theirs");
}

TEST_P(Conformance, ARecordThatTheyDeletedIsAConflict) {
    const auto one = Table(mine, "clients");
    theirs.Execute("DELETE FROM clients WHERE id = 1");
    one->Edit();
    one->FieldByName("nom")->SetAsString("Mine");
    EXPECT_EQ(MessageOf([&] { one->Post(); }),
              "EUpdateConflict: Another user has deleted this record of clients since it was read.");
    one->Cancel();
    EXPECT_EQ(MessageOf([&] { one->Delete(); }),
              "EUpdateConflict: Another user has deleted this record of clients since it was read.");
}

TEST_P(Conformance, DeletingARecordThatTheyChangedIsAConflict) {
    const auto one = Table(mine, "clients");
    theirs.Execute("UPDATE clients SET nota = 'x' WHERE id = 1");
    EXPECT_EQ(MessageOf([&] { one->Delete(); }),
              "EUpdateConflict: Another user has changed this record of clients since it was read.\n"
              "nota: it was \"a\", is now \"x\"");
    EXPECT_EQ(one->RecordCount(), 3);
    one->Next();
    one->Delete();
    EXPECT_EQ(one->RecordCount(), 2);
    EXPECT_EQ(one->FieldByName("nom")->AsString(), "Bosch");
    EXPECT_EQ(Value("SELECT count(*) FROM clients"), "2");
}

TEST_P(Conformance, KeysOfSeveralColumnsNameOneRecord) {
    const auto lines = Table(mine, "linies");
    lines->SetIndexFieldNames("comanda;linia");
    lines->Next();
    lines->Edit();
    lines->FieldByName("article")->SetAsString("w");
    lines->Post();
    EXPECT_EQ(Value("SELECT article FROM linies WHERE comanda = 1 AND linia = 2"), "w");
    EXPECT_EQ(Value("SELECT count(*) FROM linies WHERE article = 'w'"), "1");
    // The key itself may change.
    lines->Edit();
    lines->FieldByName("linia")->SetAsInteger(9);
    lines->Post();
    EXPECT_EQ(Value("SELECT linia FROM linies WHERE article = 'w'"), "9");
}

TEST_P(Conformance, NullsAreComparedAsValues) {
    const auto one = Table(mine, "clients");
    one->Last();
    one->Edit();
    one->FieldByName("nota")->SetAsString("was nothing");
    one->Post();
    EXPECT_EQ(Value("SELECT nota FROM clients WHERE id = 3"), "was nothing");
}

TEST_P(Conformance, WhatTheEngineRefusesLeavesTheRecordBeingEdited) {
    const auto lines = Table(mine, "linies");
    lines->Append();
    lines->FieldByName("comanda")->SetAsInteger(1);
    lines->FieldByName("linia")->SetAsInteger(1);
    int asked = 0;
    lines->OnPostError = [&](TDataSet*, EDatabaseError&, TDataAction& action) {
        if (++asked > 1) return;
        lines->FieldByName("linia")->SetAsInteger(2);
        action = daRetry;
    };
    EXPECT_NE(MessageOf([&] { lines->Post(); }), "no error");
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(lines->State(), dsInsert);
    lines->FieldByName("linia")->SetAsInteger(3);
    lines->Post();
    EXPECT_EQ(lines->RecordCount(), 4);
}

TEST_P(Conformance, TransactionsKeepAndTakeBack) {
    EXPECT_FALSE(mine.InTransaction());
    EXPECT_EQ(mine.BeginTrans(), 1);
    mine.Execute("INSERT INTO sense VALUES (2)");
    EXPECT_EQ(mine.BeginTrans(), 2);
    mine.Execute("INSERT INTO sense VALUES (3)");
    mine.RollbackTrans();
    EXPECT_TRUE(mine.InTransaction());
    EXPECT_EQ(Value("SELECT count(*) FROM sense"), "1");
    mine.CommitTrans();
    EXPECT_EQ(Value("SELECT count(*) FROM sense"), "2");
    EXPECT_EQ(MessageOf([&] { mine.CommitTrans(); }), "EDatabaseError: There is no transaction to commit");
    EXPECT_EQ(MessageOf([&] { mine.RollbackTrans(); }), "EDatabaseError: There is no transaction to roll back");
}

TEST_P(Conformance, AnErrorInATransactionIsTheStatementsAlone) {
    mine.BeginTrans();
    mine.Execute("INSERT INTO sense VALUES (2)");
    EXPECT_NE(MessageOf([&] { mine.Execute("INSERT INTO nowhere VALUES (2)"); }), "no error");
    EXPECT_NE(MessageOf([&] { Query(mine, "SELECT nothing FROM sense"); }), "no error");
    EXPECT_NE(MessageOf([&] { mine.Execute("INSERT INTO linies VALUES (1, 1, 'again')"); }), "no error");
    const auto lines = Table(mine, "linies");
    lines->Append();
    lines->FieldByName("comanda")->SetAsInteger(1);
    lines->FieldByName("linia")->SetAsInteger(1);
    EXPECT_NE(MessageOf([&] { lines->Post(); }), "no error");
    lines->FieldByName("linia")->SetAsInteger(7);
    lines->Post();
    EXPECT_TRUE(mine.InTransaction());
    mine.Execute("INSERT INTO sense VALUES (3)");
    mine.CommitTrans();
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sense"), "3");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM linies"), "4");
}

TEST_P(Conformance, ResultsAreReadOnThroughTheEndOfATransaction) {
    mine.BeginTrans();
    for (int i = 1; i < 1000; ++i) mine.Execute("INSERT INTO sense VALUES (1)");
    const auto inside = Query(mine, "SELECT * FROM sense");
    mine.CommitTrans();
    EXPECT_EQ(inside->RecordCount(), 1000);
    mine.BeginTrans();
    const auto taken = Query(mine, "SELECT * FROM sense");
    mine.RollbackTrans();
    EXPECT_EQ(taken->RecordCount(), 1000);
    const auto one = Query(mine, "SELECT * FROM sense");
    const auto two = Query(mine, "SELECT * FROM sense");
    const auto other = Query(mine, "SELECT * FROM clients");
    EXPECT_EQ(two->RecordCount(), 1000);
    EXPECT_EQ(one->RecordCount(), 1000);
    mine.Execute("DROP TABLE sense");
}

TEST_P(Conformance, TransactionsMayBeSaidInSql) {
    mine.Execute("BEGIN");
    EXPECT_TRUE(mine.InTransaction());
    mine.Execute("INSERT INTO sense VALUES (2)");
    mine.Execute("ROLLBACK");
    EXPECT_FALSE(mine.InTransaction());
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sense"), "1");
}

TEST_P(Conformance, PostsInATransactionAreTakenBackWithIt) {
    const auto table = Table(mine, "clients");
    mine.BeginTrans();
    table->Edit();
    table->FieldByName("nom")->SetAsString("Mine");
    table->Post();
    mine.RollbackTrans();
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), "Soler");
    table->Refresh();
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Soler");
}

TEST_P(Conformance, AHalfReadResultDoesNotStandInTheWayOfWriting) {
    mine.BeginTrans();
    for (int i = 3; i < 1500; ++i) mine.Execute("INSERT INTO sense VALUES (1)");
    mine.CommitTrans();
    const auto reading = Query(mine, "SELECT * FROM sense");
    EXPECT_FALSE(reading->AllFetched());
    theirs.Execute("INSERT INTO sense VALUES (7)");
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("nom")->SetAsString("Mine");
    table->Post();
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), "Mine");
    EXPECT_GE(reading->RecordCount(), 1498);
}

TEST_P(Conformance, TextThatCannotBeShownIsNeverWrittenOver) {
    // A Greek letter, which Windows-1252 lacks.
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("nom")->SetRawBytes("\xCE\xA9meg\xC3\xA0");
    table->Post();
    const auto again = Table(theirs, "clients");
    TField* nom = again->FieldByName("nom");
    EXPECT_EQ(nom->AsString(), "?meg\xE0");
    again->Edit();
    nom->SetText(nom->Text());
    EXPECT_EQ(nom->RawBytes(), "\xCE\xA9meg\xC3\xA0");
    nom->SetText("?meg\xE0 i fill");
    again->FieldByName("nota")->SetAsString("z");
    again->Post();
    EXPECT_EQ(nom->RawBytes(), "\xCE\xA9meg\xC3\xA0 i fill");
    EXPECT_EQ(nom->AsString(), "?meg\xE0 i fill");
}

TEST_P(Conformance, PessimisticDatasetsReadTheRecordWhenEditingBegins) {
    auto table = Table(mine, "clients");
    EXPECT_EQ(MessageOf([&] { table->SetLockType(ltPessimistic); }),
              "EDatabaseError: Cannot perform this operation on an open dataset");
    table->Close();
    table->SetLockType(ltPessimistic);
    table->Open();
    theirs.Execute("UPDATE clients SET nom = 'Theirs' WHERE id = 1");
    table->Edit();
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Theirs");
    table->FieldByName("nom")->SetAsString("Mine");
    table->Post();
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), "Mine");
}

INSTANTIATE_TEST_SUITE_P(Engines, Conformance, testing::ValuesIn(Engines()),
                         [](const auto& engine) { return engine.param.Name; });
