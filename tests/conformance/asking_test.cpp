#include "conformance/engines.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

using namespace conformance;

// Parameters, searching, catalogs: what is asked of an engine.

TEST_P(Conformance, ParametersOfEveryTypeFindWhatTheyEqual) {
    mine.Execute(
        "UPDATE clients SET alta = #03/09/2001#, vist = #03/09/2001 10:20:30.250#, actiu = True, pes = 0.1, "
        "text = 'llarg' WHERE id = 1");
    const auto found = [&](const AnsiString& column, const Variant& value, TFieldType type = ftUnknown) {
        TADOQuery query(nullptr);
        query.SetConnection(&mine);
        query.SQL()->SetText("SELECT id FROM clients WHERE " + column + " = :p");
        if (type != ftUnknown) query.Parameters()->Items(0)->DataType = type;
        query.Parameters()->Items(0)->SetValue(value);
        query.Open();
        return query.IsEmpty() ? AnsiString() : query.Fields(0)->AsString();
    };
    EXPECT_EQ(found("id", Variant(1)), "1");
    EXPECT_EQ(found("id", Variant(1.0)), "1");
    EXPECT_EQ(found("id", Variant(1.5)), "");
    EXPECT_EQ(found("nom", Variant("Soler")), "1");
    EXPECT_EQ(found("nom", Variant(Utf8ToWide("Soler"))), "1");
    EXPECT_EQ(found("nom", Variant("soler")), "");
    EXPECT_EQ(found("credit", Variant(12.5)), "1");
    EXPECT_EQ(found("credit", Variant(Currency(12.5))), "1");
    EXPECT_EQ(found("alta", Variant(TDateTime(EncodeDate(2001, 3, 9))), ftDate), "1");
    EXPECT_EQ(found("vist", Variant(TDateTime(EncodeDate(2001, 3, 9) + EncodeTime(10, 20, 30, 250)))), "1");
    EXPECT_EQ(found("actiu", Variant(true)), "1");
    EXPECT_EQ(found("actiu", Variant(false)), "");
    EXPECT_EQ(found("pes", Variant(0.1)), "1");
    EXPECT_EQ(found("text", Variant("llarg")), "1");
    // A null equals nothing.
    EXPECT_EQ(found("nota", Variant::Null()), "");
}

TEST_P(Conformance, ParametersInEveryPlaceAreTaken) {
    const auto value = [&](const AnsiString& sql, const Variant& parameter) {
        TADOQuery query(nullptr);
        query.SetConnection(&mine);
        query.SQL()->SetText(sql);
        for (int i = 0; i < query.Parameters()->Count(); ++i) query.Parameters()->Items(i)->SetValue(parameter);
        query.Open();
        return query.Fields(0)->AsString();
    };
    EXPECT_EQ(value("SELECT COUNT(*) FROM clients WHERE :p IS NULL", Variant::Null()), "3");
    EXPECT_EQ(value("SELECT COUNT(*) FROM clients WHERE :p IS NULL", Variant("x")), "0");
    EXPECT_EQ(value("SELECT nom FROM clients WHERE id IN (:a, :b + 1) ORDER BY id", Variant(1)), "Soler");
    EXPECT_EQ(value("SELECT id + :p FROM clients WHERE id = 1", Variant(1.5)), "2.5");
    EXPECT_EQ(value("SELECT nom FROM clients WHERE nom LIKE :p", Variant("%uig")), "Puig");
    EXPECT_EQ(value("SELECT COUNT(*) FROM clients WHERE nom > :p AND nom > :p", Variant("M")), "2");
}

TEST_P(Conformance, HostileValuesAreValues) {
    for (const char* hostile :
         {"'; DROP TABLE clients; --", "\\'; DROP TABLE clients; --", "$1", "?", ":p", "%s%n", "{x}", "a' OR '1'='1",
          "\xC2\x80\xA1\xBF", "--", "/*", "#1/1/2001#", "\\", "''", "[x]"}) {
        SCOPED_TRACE(hostile);
        TADOQuery query(nullptr);
        query.SetConnection(&mine);
        query.SQL()->SetText("SELECT nom FROM clients WHERE nom = :p OR nota = :p");
        query.Parameters()->Items(0)->SetValue(Variant(hostile));
        query.Open();
        EXPECT_TRUE(query.IsEmpty());
        const auto table = Table(mine, "clients");
        table->Edit();
        table->FieldByName("nota")->SetAsString(hostile);
        table->Post();
        query.Close();
        query.Open();
        EXPECT_EQ(query.Fields(0)->AsString(), "Soler");
        EXPECT_EQ(Value("SELECT nota FROM clients WHERE id = 1"), hostile);
    }
}

TEST_P(Conformance, LocateAndLookupFindRecords) {
    const auto table = Table(mine, "clients");
    EXPECT_TRUE(table->Locate("nom", Variant("bos"), {loCaseInsensitive, loPartialKey}));
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 3);
    EXPECT_TRUE(table->Locate("nom;nota", {Variant("Puig"), Variant("b")}));
    EXPECT_FALSE(table->Locate("nom;nota", {Variant("Puig"), Variant("a")}));
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 2);
    EXPECT_TRUE(table->Locate("credit", Variant(Currency(12.5))));
    EXPECT_TRUE(table->Locate("nota", Variant::Null()));
    EXPECT_EQ(table->Lookup("id", Variant(2), "nom").AsString(), "Puig");
    EXPECT_TRUE(table->Lookup("id", Variant(9), "nom").IsNull());
}

TEST_P(Conformance, TablesAndViewsAreListedAndSystemTablesWhenAskedFor) {
    mine.Execute("CREATE VIEW vista AS SELECT * FROM clients");
    TStringList list;
    mine.GetTableNames(list);
    EXPECT_EQ(list.CommaText(), "clients,linies,sense,vista");
    mine.GetTableNames(list, true);
    EXPECT_GT(list.Count(), 4);
    EXPECT_TRUE(mine.Provider().IsTable("Clients"));
    EXPECT_FALSE(mine.Provider().IsTable("vista"));
    EXPECT_FALSE(mine.Provider().IsTable("nowhere"));
}

TEST_P(Conformance, KeysAndIndexesHaveTheirColumnsInOrder) {
    using Names = std::vector<AnsiString>;
    mine.Execute("CREATE INDEX per_article ON linies (article, comanda)");
    EXPECT_EQ(mine.Provider().KeyColumns("linies"), (Names{"comanda", "linia"}));
    EXPECT_EQ(mine.Provider().KeyColumns("sense"), Names());
    EXPECT_EQ(mine.Provider().KeyColumns("nowhere"), Names());
    EXPECT_EQ(mine.Provider().IndexColumns("linies", "PER_ARTICLE"), (Names{"article", "comanda"}));
    EXPECT_EQ(mine.Provider().IndexColumns("linies", "PrimaryKey"), (Names{"comanda", "linia"}));
    EXPECT_EQ(mine.Provider().IndexColumns("linies", "nowhere"), Names());
    const auto table = Table(mine, "linies");
    table->SetIndexName("per_article");
    EXPECT_EQ(table->FieldByName("article")->AsString(), "x");
}

TEST_P(Conformance, ColumnsSayWhatTheyAre) {
    const auto table = Table(mine, "clients");
    const auto type = [&](const char* name) { return table->FieldByName(name)->DataType(); };
    EXPECT_EQ(type("id"), ftAutoInc);
    EXPECT_EQ(type("nom"), ftString);
    EXPECT_EQ(type("credit"), ftCurrency);
    EXPECT_EQ(type("alta"), ftDate);
    EXPECT_EQ(type("vist"), ftDateTime);
    EXPECT_EQ(type("actiu"), ftBoolean);
    EXPECT_EQ(type("pes"), ftFloat);
    EXPECT_EQ(type("foto"), ftBlob);
    EXPECT_TRUE(table->FieldByName("nom")->Required);
    // What the engine fills in need not be given.
    EXPECT_FALSE(table->FieldByName("estat")->Required);
    EXPECT_FALSE(table->FieldByName("id")->Required);
    EXPECT_FALSE(table->FieldByName("nota")->Required);
}

TEST_P(Conformance, StatementsSayHowManyRecordsTheyChanged) {
    EXPECT_EQ(mine.Execute("UPDATE clients SET nota = 'z' WHERE id > 1"), 2);
    EXPECT_EQ(mine.Execute("DELETE FROM clients WHERE id > 100"), 0);
    TADOQuery query(nullptr);
    query.SetConnection(&mine);
    query.SQL()->SetText("DELETE FROM clients WHERE id > :id");
    query.Parameters()->Items(0)->SetValue(Variant(1));
    EXPECT_EQ(query.ExecSQL(), 2);
    EXPECT_EQ(query.ExecSQL(), 0);
}

TEST_P(Conformance, ErrorsGiveTheEnginesReasonAndLeaveTheConnectionUsable) {
    const AnsiString message = MessageOf([&] { mine.Execute("SELEKT"); });
    EXPECT_EQ(message.substr(0, 38), "EDatabaseError: The statement failed: ");
    EXPECT_NE(message.find("SELEKT"), AnsiString::npos);
    EXPECT_EQ(MessageOf([&] { Query(mine, "SELECT nothing FROM clients"); }).substr(0, 38),
              "EDatabaseError: The statement failed: ");
    EXPECT_EQ(MessageOf([&] { Query(mine, "-- nothing"); }), "EDatabaseError: The statement is empty");
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), "Soler");
}

TEST_P(Conformance, DetailsFollowTheirMasters) {
    mine.Execute("CREATE TABLE comandes (numero INTEGER PRIMARY KEY, client INTEGER, zona VARCHAR(5))");
    mine.Execute("INSERT INTO comandes VALUES (1, 1, 'a')");
    mine.Execute("INSERT INTO comandes VALUES (2, 1, NULL)");
    mine.Execute("INSERT INTO comandes VALUES (3, 3, NULL)");
    const auto master = Table(mine, "clients");
    TDataSource source(nullptr);
    source.SetDataSet(master.get());
    TADOTable detail(nullptr);
    detail.SetConnection(&mine);
    detail.SetTableName("comandes");
    detail.SetMasterSource(&source);
    detail.SetMasterFields("id;nota");
    detail.SetIndexFieldNames("client;zona");
    detail.Open();
    EXPECT_EQ(detail.RecordCount(), 1);
    master->Next();
    EXPECT_EQ(detail.RecordCount(), 0);
    master->Next();
    EXPECT_EQ(detail.FieldByName("numero")->AsInteger(), 3);
    TADOQuery query(nullptr);
    query.SetConnection(&mine);
    query.SQL()->SetText("SELECT numero FROM comandes WHERE client = :id");
    query.SetDataSource(&source);
    query.Open();
    EXPECT_EQ(query.RecordCount(), 1);
    master->First();
    EXPECT_EQ(query.RecordCount(), 2);
}
