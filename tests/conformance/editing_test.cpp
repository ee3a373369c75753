#include "conformance/engines.h"
#include "platform/text/exceptions.h"

using namespace conformance;

// What users do to records, and what the dataset tells meanwhile.

TEST_P(Conformance, EventsComeBeforeAndAfterWhatTheySay) {
    const auto table = Table(mine, "clients");
    AnsiString log;
    const auto note = [&](const char* what) { return [&log, what](TDataSet*) { log += AnsiString(what) + " "; }; };
    table->BeforeInsert = note("<insert");
    table->AfterInsert = note("insert>");
    table->BeforeEdit = note("<edit");
    table->AfterEdit = note("edit>");
    table->BeforePost = note("<post");
    table->AfterPost = note("post>");
    table->BeforeCancel = note("<cancel");
    table->AfterCancel = note("cancel>");
    table->BeforeDelete = note("<delete");
    table->AfterDelete = note("delete>");
    table->OnNewRecord = note("new");
    table->Append();
    table->FieldByName("nom")->SetAsString("x");
    table->Post();
    table->Edit();
    table->FieldByName("nom")->SetAsString("y");
    table->Cancel();
    table->Delete();
    EXPECT_EQ(log, "<insert new insert> <post post> <edit edit> <cancel cancel> <delete delete> ");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM clients"), "3");
}

TEST_P(Conformance, ARequiredFieldIsAskedForBeforeTheEngineIs) {
    const auto table = Table(mine, "clients");
    table->Append();
    table->FieldByName("nota")->SetAsString("x");
    EXPECT_EQ(MessageOf([&] { table->Post(); }), "EDatabaseError: Field 'nom' must have a value");
    EXPECT_EQ(table->State(), dsInsert);
    table->FieldByName("nom")->SetAsString("now");
    table->Post();
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE nota = 'x'"), "now");
}

TEST_P(Conformance, WhatABeforePostHandlerPutsIsWritten) {
    const auto table = Table(mine, "clients");
    table->BeforePost = [&](TDataSet*) { table->FieldByName("nota")->SetAsString("by the handler"); };
    table->Edit();
    table->FieldByName("nom")->SetAsString("x");
    table->Post();
    EXPECT_EQ(Value("SELECT nota FROM clients WHERE id = 1"), "by the handler");
    table->BeforePost = [](TDataSet*) { throw EDatabaseError("not now"); };
    table->Edit();
    table->FieldByName("nom")->SetAsString("y");
    EXPECT_EQ(MessageOf([&] { table->Post(); }), "EDatabaseError: not now");
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), "x");
    table->Cancel();
}

TEST_P(Conformance, MovingAwayPostsWhatWasChanged) {
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("nom")->SetAsString("moved");
    table->Next();
    EXPECT_EQ(table->State(), dsBrowse);
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 2);
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), "moved");
    // And nothing, where nothing was.
    table->Append();
    table->First();
    EXPECT_EQ(table->RecordCount(), 3);
}

TEST_P(Conformance, AnErrorOfDeletingCanBeTriedAgainOrGivenUp) {
    mine.Execute("CREATE TABLE filles (id INTEGER PRIMARY KEY, client INTEGER REFERENCES clients (id))");
    mine.Execute("INSERT INTO filles VALUES (1, 1)");
    if (GetParam().Name == "SQLiteThroughODBC") mine.Execute("PRAGMA foreign_keys = ON");
    const auto table = Table(mine, "clients");
    int asked = 0;
    table->OnDeleteError = [&](TDataSet*, EDatabaseError&, TDataAction& action) {
        action = ++asked == 1 ? daAbort : daRetry;
        if (asked == 2) theirs.Execute("DELETE FROM filles");
    };
    EXPECT_EQ(MessageOf([&] { table->Delete(); }).substr(0, 6), "EAbort");
    EXPECT_EQ(table->RecordCount(), 3);
    table->Delete();
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(Value("SELECT COUNT(*) FROM clients"), "2");
}

TEST_P(Conformance, BookmarksAndFiltersHoldOnWhatTheEngineGives) {
    const auto table = Table(mine, "clients");
    table->Last();
    const TBookmark last = table->GetBookmark();
    table->SetFilter("nota IS NOT NULL AND nom LIKE '%u%'");
    table->SetFiltered(true);
    EXPECT_EQ(table->RecordCount(), 1);
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Puig");
    table->SetFiltered(false);
    table->GotoBookmark(last);
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Bosch");
    table->SetSort("nom DESC");
    EXPECT_EQ(table->RecNo(), 3);
    table->First();
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Soler");
}

TEST_P(Conformance, DefaultsOfFieldsAreWrittenWithTheRecord) {
    const auto table = Table(mine, "clients");
    table->FieldByName("nota")->DefaultExpression = "'from the field'";
    table->FieldByName("alta")->DefaultExpression = "#3/9/2001#";
    table->Append();
    table->FieldByName("nom")->SetAsString("x");
    table->Post();
    EXPECT_EQ(Value("SELECT nota FROM clients WHERE id = 4"), "from the field");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM clients WHERE alta = #3/9/2001#"), "1");
}

TEST_P(Conformance, ManyRecordsAreTypedInOneTransaction) {
    const auto table = Table(mine, "linies");
    mine.BeginTrans();
    for (int i = 0; i < 500; ++i) table->AppendRecord({Variant(100), Variant(i), Variant("a" + std::to_string(i))});
    mine.CommitTrans();
    EXPECT_EQ(Value("SELECT COUNT(*) FROM linies"), "503");
    EXPECT_EQ(Value("SELECT article FROM linies WHERE comanda = 100 AND linia = 499"), "a499");
    EXPECT_EQ(table->RecordCount(), 503);
}
