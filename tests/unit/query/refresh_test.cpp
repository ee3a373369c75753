// Queries on the embedded database: opened, refreshed, found again.

#include <filesystem>

#include "database/Udb_ado.h"
#include "platform/access/ado.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"
#include "query_fixtures.h"

using namespace vyn;
using namespace query_fixtures;

namespace {

// A query named Q over a database in memory with a table of clients.
class LiveQuery : public testing::Test {
  protected:
    void SetUp() override {
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
        RegisterSqliteProvider();
        InitializeParametres();
        connection = std::make_unique<TADOConnection>(nullptr);
        connection->SetConnectionString("Provider=SQLite;Data Source=:memory:");
        connection->Execute(
            "CREATE TABLE clients (id INTEGER PRIMARY KEY, name VARCHAR(40), city VARCHAR(40), debt REAL, since "
            "DATETIME);"
            "INSERT INTO clients VALUES (1, 'Anna', 'Reus', 10.5, '2026-01-02 10:20:30'), (2, 'Biel', 'Valls', 0, "
            "'2026-03-04 00:00:00'), (3, 'Carla', 'Reus', 7, NULL);"
            "CREATE TABLE orders (id INTEGER PRIMARY KEY, client INT, total REAL);"
            "INSERT INTO orders VALUES (10, 1, 5), (11, 1, 6), (12, 3, 7)");
        database = std::make_unique<TDataBaseVynADO>(nullptr);
        database->SetADOConnection(connection.get());
        query = Clients("Q");
    }
    void TearDown() override {
        query.reset();
        database.reset();
        connection.reset();
        FinalizeParametres();
        FormatSettings() = before_;
    }
    static std::unique_ptr<TQuerySQL> Clients(const AnsiString& name) {
        auto made = std::make_unique<TQuerySQL>(nullptr);
        made->SetName(name);
        for (const char* field : {"id", "name", "city"}) AddField(*made, field, field);
        made->FromSQL = "clients";
        made->OrderBySQL = "id";
        return made;
    }
    static void AddField(TQuerySQL& to, const AnsiString& name, const AnsiString& expression) {
        TFieldsSQLRec field;
        field.FieldName = name;
        field.FieldSQL = expression;
        to.Afegeix(field);
    }
    // The names of all records, or of any other field.
    static AnsiString Column(TQuerySQL& of, const AnsiString& field = "name") {
        AnsiString text;
        TDataSet* dataSet = of.QryDataSet();
        for (dataSet->First(); !dataSet->Eof(); dataSet->Next()) text += dataSet->FieldByName(field)->AsString() + " ";
        dataSet->First();
        return text;
    }
    // Counts how often the query is opened from now on.
    static std::shared_ptr<int> CountOpenings(TQuerySQL& of) {
        auto count = std::make_shared<int>(0);
        of.QryDataSet()->AfterOpen = [count](TDataSet*) { ++*count; };
        return count;
    }

    std::unique_ptr<TADOConnection> connection;
    std::unique_ptr<TDataBaseVynADO> database;
    std::unique_ptr<TQuerySQL> query;

  private:
    TFormatSettings before_;
};

}  // namespace

TEST_F(LiveQuery, OpensADataSetOfItsDatabase) {
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Anna Biel Carla ");
    EXPECT_EQ(query->QryDataSet()->Owner(), query.get());
    EXPECT_TRUE(ObjectCast<TADOQuery>(query->QryDataSet()));
    EXPECT_EQ(ObjectCast<TADOQuery>(query->QryDataSet())->SQL()->Text(),
              "SELECT id, name, city\r\nFROM clients\r\n\r\n\r\n\r\nORDER BY id\r\n");
}

TEST_F(LiveQuery, TheFrameworksOwnSqlRunsOnTheEngine) {
    Parametres()->AddParam("Since", TDateTime(JoinDateTime(EncodeDate(2026, 1, 2), EncodeTime(10, 20, 30))));
    query->FromSQL = "[clients]";
    query->WhereSQL = "since = " + M + "Since" + M + " AND since = #01/02/2026 10::20::30#";
    query->TopSQL = 2;
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Anna ");
    query->WhereSQL = "since IS NOT NULL OR name <> 'TOP 1, #x# [y]'";
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Anna Biel ");
}

TEST_F(LiveQuery, OpensATable) {
    query->DataSetType = ds_Table;
    query->CreaSQL();
    EXPECT_TRUE(ObjectCast<TADOTable>(query->QryDataSet()));
    EXPECT_EQ(Column(*query), "Anna Biel Carla ");
    query->FromSQL = "orders";
    query->CreaSQL();
    EXPECT_EQ(Column(*query, "total"), "5 6 7 ");
}

TEST_F(LiveQuery, ADirectTextIsComputedOnce) {
    Parametres()->AddParam("Id", 2);
    TADOQuery dataSet(nullptr);
    dataSet.SetConnection(connection.get());
    dataSet.SQL()->SetText("SELECT name FROM clients\nWHERE id = " + M + "Id" + M);
    query->SqlType = sql_DirectText;
    query->SetQryDataSet(&dataSet);
    TStringList lines;
    query->GenerateStatement(&lines);
    EXPECT_EQ(lines.Text(), "SELECT name FROM clients\r\nWHERE id = 2\r\n");
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Biel ");
    // The value stands in the text now, so the next opening depends on nothing.
    Parametres()->SetParametreValue("Id", 3);
    EXPECT_EQ(Column(*query), "Biel ");
    EXPECT_FALSE(query->ExisteixSQLPRM("Id"));
    query->SetQryDataSet(nullptr);
}

TEST_F(LiveQuery, AsksForADataSetFirst) {
    TADOQuery dataSet(nullptr);
    dataSet.SetConnection(connection.get());
    int asked = 0;
    query->OnNeedDataSet = [&](TQuerySQL* QrySQL, TDataSet*& NewDS) {
        EXPECT_EQ(QrySQL, query.get());
        EXPECT_EQ(NewDS, nullptr);
        NewDS = &dataSet;
        ++asked;
    };
    query->CreaSQL();
    query->CreaSQL();
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(dataSet.Active());
    EXPECT_EQ(query->QryDataSet(), &dataSet);
}

TEST_F(LiveQuery, ADataSetThatGoesIsForgotten) {
    auto dataSet = std::make_unique<TADOQuery>(nullptr);
    dataSet->SetConnection(connection.get());
    query->OnNeedDataSet = [&](TQuerySQL*, TDataSet*& NewDS) { NewDS = dataSet.get(); };
    query->CreaSQL();
    query->OnNeedDataSet = {};
    dataSet.reset();
    EXPECT_EQ(query->QryDataSet(), nullptr);
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Anna Biel Carla ");
    // The database's going takes the dataset from the query, which keeps it as its owner.
    database.reset();
    EXPECT_EQ(query->QryDataSet(), nullptr);
}

TEST_F(LiveQuery, WithoutAConnectionTheDatabaseSaysSo) {
    database->SetADOConnection(nullptr);
    EXPECT_EQ(MessageOf([&] { query->CreaSQL(); }), "Exception: ADO Connection not assigned");
}

TEST_F(LiveQuery, GivesTheFieldsTheirFormats) {
    Parametres()->AddParam("Decimals", "00");
    query->Clear();
    query->FromSQL = "clients";
    query->Afegeix(
        {"debt", "debt", "", "", "0." + M + "Decimals" + M, "!9" + M + "Decimals" + M, 2, "El deute", false});
    query->Afegeix({"since", "since", "", "", "yyyy-mm-dd", "", 1, "", false});
    query->Afegeix({"name", "name", "", "", "0.00", "", 7, "Nom " + M + "Decimals" + M, false});
    query->Afegeix({"nope", "1", "", "", "", "", 0, "", false});
    query->Afegeix({"id", "id", "", "", "", "", 0, "", false});
    query->CreaSQL();
    TDataSet* dataSet = query->QryDataSet();
    EXPECT_EQ(dataSet->FieldByName("debt")->DisplayText(), "10.50");
    EXPECT_EQ(dataSet->FieldByName("debt")->EditMask(), "!900");
    EXPECT_EQ(dataSet->FieldByName("debt")->Alignment(), taCenter);
    EXPECT_EQ(dataSet->FieldByName("debt")->DisplayLabel(), "El deute");
    EXPECT_EQ(dataSet->FieldByName("since")->DisplayText(), "2026-01-02");
    EXPECT_EQ(dataSet->FieldByName("since")->Alignment(), taRightJustify);
    EXPECT_EQ(dataSet->FieldByName("name")->DisplayFormat(), "");
    EXPECT_EQ(dataSet->FieldByName("name")->DisplayText(), "Anna");
    EXPECT_FALSE(dataSet->FieldByName("name")->IsAlignmentStored());
    EXPECT_EQ(dataSet->FieldByName("name")->DisplayLabel(), "Nom 00");
    EXPECT_EQ(dataSet->FieldByName("id")->Alignment(), taLeftJustify);
}

TEST_F(LiveQuery, AChangedParameterOpensTheStatementAnew) {
    Parametres()->AddParam("City", "Reus");
    query->WhereSQL = "city = " + M + "PRM$(City,'')" + M;
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Anna Carla ");
    const auto openings = CountOpenings(*query);
    Parametres()->SetParametreValue("CITY", "Valls");
    EXPECT_EQ(Column(*query), "Biel ");
    Parametres()->SetParametreValue("City", "Valls");
    Parametres()->AddParam("Other", 1);
    EXPECT_EQ(*openings, 1);
}

TEST_F(LiveQuery, AParameterThatComesLaterIsNotDependedOn) {
    query->WhereSQL = "city = '" + M + "PRM(City,Reus)" + M + "'";
    query->CreaSQL();
    const auto openings = CountOpenings(*query);
    Parametres()->AddParam("City", "Valls");
    EXPECT_EQ(*openings, 0);
    query->RefrescaSQL();
    EXPECT_EQ(Column(*query), "Biel ");
}

TEST_F(LiveQuery, AFormatDependsOnTheNameThatItsValueIs) {
    Parametres()->AddParam("Format", "Digits");
    query->Afegeix({"debt", "debt", "", "", M + "Format" + M, "", 0, "", false});
    query->CreaSQL();
    const auto openings = CountOpenings(*query);
    Parametres()->SetParametreValue("Format", "0.00");
    EXPECT_EQ(*openings, 0);
    Parametres()->AddParam("Digits", 2);
    EXPECT_EQ(*openings, 1);
}

TEST_F(LiveQuery, OnlyTheDependentsOfAThousandAreRefreshed) {
    std::vector<std::unique_ptr<TQuerySQL>> queries;
    std::vector<int> opened;
    for (int i = 0; i < 1000; ++i) {
        auto& each = *queries.emplace_back(Clients("Q" + std::to_string(i)));
        const AnsiString name = i == 10 || i == 500 || i == 990 ? AnsiString("P") : "P" + std::to_string(i);
        Parametres()->AddParam(name, 0);
        each.WhereSQL = "id > " + M + name + M;
        each.CreaSQL();
        each.QryDataSet()->AfterOpen = [&opened, i](TDataSet*) { opened.push_back(i); };
    }
    Parametres()->SetParametreValue("P", 1);
    EXPECT_EQ(opened, (std::vector<int>{10, 500, 990}));
}

TEST_F(LiveQuery, ChangesAreGatheredUntilTheLastEnable) {
    Parametres()->AddParam("Id", 0);
    query->WhereSQL = "id > " + M + "Id" + M;
    query->CreaSQL();
    const auto openings = CountOpenings(*query);
    query->Disable();
    query->Disable();
    Parametres()->SetParametreValue("Id", 1);
    Parametres()->SetParametreValue("Id", 2);
    query->Enable();
    EXPECT_EQ(*openings, 0);
    query->Enable();
    EXPECT_EQ(*openings, 1);
    EXPECT_EQ(Column(*query), "Carla ");
    query->Enable();
    EXPECT_EQ(*openings, 1);
    EXPECT_FALSE(query->RefreshPending());
}

TEST_F(LiveQuery, OpeningInBetweenTakesThePendingRefreshAway) {
    Parametres()->AddParam("Id", 0);
    query->WhereSQL = "id > " + M + "Id" + M;
    query->CreaSQL();
    query->Disable();
    Parametres()->SetParametreValue("Id", 1);
    query->CreaSQL();
    const auto openings = CountOpenings(*query);
    query->Enable();
    EXPECT_EQ(*openings, 0);
}

TEST_F(LiveQuery, AClosedOneIsNotRefreshed) {
    query->RefrescaSQL();
    ASSERT_TRUE(query->QryDataSet());
    EXPECT_FALSE(query->QryDataSet()->Active());
    query->CreaSQL();
    query->QryDataSet()->Close();
    query->RefrescaSQL();
    EXPECT_FALSE(query->QryDataSet()->Active());
}

TEST_F(LiveQuery, TheDataSetsOwnHandlerIsCalledLastAndStays) {
    auto child = Clients("Child");
    child->SetQrySQL(query.get());
    child->CreaSQL();
    query->CreaSQL();
    AnsiString order;
    TDataSet* dataSet = query->QryDataSet();
    dataSet->AfterOpen = [&](TDataSet* DataSet) {
        EXPECT_EQ(DataSet, dataSet);
        order += "own(" + dataSet->FieldByName("id")->DisplayLabel() + ") ";
    };
    child->QryDataSet()->AfterOpen = [&](TDataSet*) { order += "child "; };
    TFieldsSQLRec field = query->GetFieldSQL(0);
    field.FieldDisplayText = "Codi";
    query->SetFieldSQL(0, field);
    query->CreaSQL();
    EXPECT_EQ(order, "child own(Codi) ");
    dataSet->Close();
    order.clear();
    dataSet->Open();  // by itself: the query has no part in it
    EXPECT_EQ(order, "own(id) ");
}

TEST_F(LiveQuery, OpeningRefreshesTheOpenOnesBelow) {
    auto child = Clients("Child"), grandchild = Clients("Grandchild"), closed = Clients("Closed");
    child->SetQrySQL(query.get());
    child->SetOpcionsSQL({cSelect, cFrom, cOrderBy});
    grandchild->SetQrySQL(child.get());
    grandchild->SetOpcionsSQL({cSelect, cFrom, cOrderBy});
    closed->SetQrySQL(query.get());
    query->CreaSQL();
    child->CreaSQL();
    grandchild->CreaSQL();
    query->WhereSQL = "id = 2";
    query->CreaSQL();
    EXPECT_EQ(Column(*child), "Biel ");
    EXPECT_EQ(Column(*grandchild), "Biel ");
    EXPECT_FALSE(closed->QryDataSet()->Active());
}

TEST_F(LiveQuery, AnErrorWhileComposingLeavesItClosedAndEverythingElseAsItWas) {
    query->CreaSQL();
    TDataSet* dataSet = query->QryDataSet();
    const auto openings = CountOpenings(*query);
    query->WhereSQL = M + "NOPE(1)" + M;
    EXPECT_EQ(MessageOf([&] { query->RefrescaSQL(); }),
              "EQuerySQL: TQuerySQL ERROR - Q\nNot valid function in TQuerySQL: \xA1NOPE\xA1");
    EXPECT_FALSE(dataSet->Active());
    EXPECT_FALSE(dataSet->ControlsDisabled());
    dataSet->Open();
    EXPECT_EQ(*openings, 1);
    query->WhereSQL = "no such column = 1";
    EXPECT_EQ(MessageOf([&] { query->RefrescaSQL(); }).substr(0, 14), "EDatabaseError");
    EXPECT_FALSE(dataSet->ControlsDisabled());
}

TEST_F(LiveQuery, RefreshingIsOneAnnouncement) {
    query->CreaSQL();
    query->QryDataSet()->BeforeOpen = [&](TDataSet* DataSet) { EXPECT_TRUE(DataSet->ControlsDisabled()); };
    query->RefrescaSQL();
    EXPECT_FALSE(query->QryDataSet()->ControlsDisabled());
}

class Relocation : public LiveQuery {
  protected:
    void SetUp() override {
        LiveQuery::SetUp();
        query->LocateOnRefresh = true;
        query->CampMestreSQL = "name";
        query->CreaSQL();
        query->QryDataSet()->Locate("name", "Carla");
    }
    AnsiString Current() { return query->QryDataSet()->FieldByName("name")->AsString(); }
};

TEST_F(Relocation, FindsTheCurrentRecordAgain) {
    connection->Execute("DELETE FROM clients WHERE id = 1");
    query->RefrescaSQL();
    EXPECT_EQ(Current(), "Carla");
    query->OrderBySQL = "id DESC";
    query->RefrescaSQL();
    EXPECT_EQ(Current(), "Carla");
    EXPECT_EQ(query->QryDataSet()->RecNo(), 1);
}

TEST_F(Relocation, StaysAtTheFirstWhenTheRecordIsGone) {
    connection->Execute("UPDATE clients SET name = 'CARLA' WHERE id = 3");
    query->RefrescaSQL();
    EXPECT_EQ(Current(), "Anna");
    connection->Execute("DELETE FROM clients");
    query->RefrescaSQL();
    EXPECT_TRUE(query->QryDataSet()->IsEmpty());
}

TEST_F(Relocation, IsLeftOutOnRequestAndWithoutAKey) {
    query->LocateOnRefresh = false;
    query->RefrescaSQL();
    EXPECT_EQ(Current(), "Anna");
    query->LocateOnRefresh = true;
    for (const char* key : {"", "nope"}) {
        query->QryDataSet()->Locate("name", "Carla");
        query->CampMestreSQL = key;
        query->RefrescaSQL();
        EXPECT_EQ(Current(), "Anna") << key;
    }
}

TEST_F(Relocation, ANullIsNotLookedFor) {
    connection->Execute("UPDATE clients SET name = NULL WHERE id = 3");
    query->RefrescaSQL();
    query->QryDataSet()->Last();
    query->RefrescaSQL();
    EXPECT_EQ(Current(), "Anna");
}

TEST_F(Relocation, TakesTheFirstOfEqualKeys) {
    query->CampMestreSQL = "city";
    query->QryDataSet()->Last();
    query->OrderBySQL = "city DESC, id";
    query->RefrescaSQL();
    EXPECT_EQ(Current(), "Anna");
    EXPECT_EQ(query->QryDataSet()->RecNo(), 2);
}

class RefreshRequests : public LiveQuery {};

TEST_F(RefreshRequests, DoNothingUnlessTheQueryIsAutomatic) {
    query->CreaSQL();
    const auto openings = CountOpenings(*query);
    query->SetCampWhereFiltre("id = 1");
    query->SetOpcionsSQL(query->OpcionsSQL());
    EXPECT_EQ(*openings, 0);
    query->CreaSQLAutomatic = true;
    query->SetCampWhereFiltre("id = 2");
    EXPECT_EQ(Column(*query), "Biel ");
    query->SetCampWhereDataSource("id < 2");
    EXPECT_EQ(Column(*query), "");
    query->SetCampHavingDataSource("1 = 1");
    query->SetCampHavingFiltre("1 = 1");
    query->SetOpcionsSQL({cSelect, cFrom});
    EXPECT_EQ(*openings, 5);
    EXPECT_EQ(Column(*query), "Anna Biel Carla ");
}

TEST_F(RefreshRequests, OpenAClosedDataSetButMakeNone) {
    query->CreaSQLAutomatic = true;
    query->SetCampWhereFiltre("id = 1");
    EXPECT_EQ(query->QryDataSet(), nullptr);
    query->CreaSQL();
    query->QryDataSet()->Close();
    query->InternalRefresh();
    EXPECT_EQ(Column(*query), "Anna ");
}

TEST_F(RefreshRequests, FiltersRefreshWhenTheyAreToldTo) {
    query->CreaSQL();
    const auto openings = CountOpenings(*query);
    TFiltreAplicat filter;
    filter.IDFiltre = 1;
    query->Filtres().Add(filter);
    EXPECT_EQ(*openings, 0);
    query->Filtres().RefreshOnChange = true;
    filter.IDFiltre = 2;
    query->Filtres().Add(filter);
    query->Filtres().SetFiltre(1, filter);
    query->Filtres().Delete(0);
    EXPECT_EQ(*openings, 3);
    filter.IDFiltre = 3;
    query->Filtres().Add(filter);
    query->Filtres().Clear();
    EXPECT_EQ(*openings, 5);
    query->Filtres().Clear();
    EXPECT_EQ(*openings, 5);
}

class HostileTexts : public LiveQuery {
  protected:
    static std::vector<AnsiString> Texts() {
        AnsiString all;
        for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
        AnsiString large;
        while (large.size() < (size_t{1} << 20)) large += all + "''; DROP TABLE clients; --\r\n";
        return {"",
                "O'Brien",
                "'",
                "''''",
                "\"[`",
                ":a ::b : :",
                "10:30 and ':5' ::1 fe80::1:2:3",
                "\"10:30\" `10:30` [10:30] #10:30# #10::30#",
                "\xA1PRM(A,1)\xA1",
                "-- no comment",
                "/* nor this",
                "#01/02/2026# TOP 5, [x] ? $1 @a",
                "a\nb\rc\r\nd\n\n",
                AnsiString("a\0b", 3),
                AnsiString(3, '\0'),
                "' OR '1'='1",
                "\\'\\",
                "caf\xE9 \x80\x9F",
                all,
                large};
    }
    AnsiString Selected(const AnsiString& expression) {
        TQuerySQL one(nullptr);
        AddField(one, "v", expression);
        one.CreaSQL();
        return one.QryDataSet()->FieldByName("v")->AsString();
    }
};

TEST_F(HostileTexts, ComeBackFromTheDatabaseByteForByte) {
    connection->Execute("CREATE TABLE texts (n INT, v TEXT)");
    int n = 0;
    for (const AnsiString& text : Texts()) {
        SCOPED_TRACE(n);
        database->ExecuteSQL("INSERT INTO texts VALUES (" + IntToStr(++n) + ", " +
                             database->ConvertToSqlString(ftString, text) + ")");
        Parametres()->SetParametreValue("P", text);
        EXPECT_TRUE(Selected(M + "PRM$(P,'')" + M) == text);
        EXPECT_TRUE(Selected(M + "P" + M) == text);
        TQuerySQL stored(nullptr);
        AddField(stored, "v", "v");
        AddField(stored, "n", "n");
        stored.FromSQL = "texts";
        stored.WhereSQL = "v = " + M + "PRM$(P,'')" + M;
        stored.CreaSQL();
        ASSERT_EQ(stored.QryDataSet()->RecordCount(), 1);
        EXPECT_EQ(stored.QryDataSet()->FieldByName("n")->AsInteger(), n);
        EXPECT_TRUE(stored.QryDataSet()->FieldByName("v")->AsString() == text);
    }
    EXPECT_EQ(n, static_cast<int>(Texts().size()));
}

TEST_F(HostileTexts, ColonsBeforeDigitsComeBackWhereDatesStandBetweenQuotes) {
    Parametres()->AddParam("P", "10:30 and ':5'");
    database->SQLDateTimeStart = database->SQLDateTimeEnd = "'";
    EXPECT_EQ(Selected(M + "PRM$(P,'')" + M), "10:30 and ':5'");
}

TEST_F(HostileTexts, TheColonsOfATextAreItsOwnWhereThoseOfATimeAreDoubled) {
    Parametres()->AddParam("P", "10:30");
    Parametres()->AddParam("At", TDateTime(EncodeDate(2026, 1, 2) + 0.4375));
    query->WhereSQL = "'10:30' = " + M + "PRM$(P,'')" + M + " AND since < " + M + "At" + M;
    query->WhereSQL += " AND since > #01/02/2026 10:20:00#";
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Anna ");
    AnsiString text;
    database->GetSQLFromDataSet(query->QryDataSet(), text);
    EXPECT_THAT(text, testing::HasSubstr("WHERE '10:30' = '10:30' AND since < #01/02/2026 10::30::00# AND since > "));
}

TEST_F(HostileTexts, AGivenStatementKeepsItsColonsHoweverOftenItIsOpened) {
    query->SqlType = sql_DirectText;
    query->SetQryDataSet(
        database->GetTSQLDataSet("SELECT name FROM clients WHERE '10:30' || name = '10:30Biel'", query.get(), true));
    for (int i = 0; i < 3; ++i) {
        query->CreaSQL();
        EXPECT_EQ(Column(*query), "Biel ");
    }
}

TEST_F(HostileTexts, ThePlainFormIsForWhatIsSqlItself) {
    // It is put in as it stands: for numbers, names of columns, whole conditions that the application composed.
    Parametres()->AddParam("Column", "name");
    Parametres()->AddParam("Condition", "id IN (1, 3) AND city <> 'x'");
    Parametres()->AddParam("Least", 2);
    EXPECT_EQ(Selected("'<' || " + M + "PRM#(Least,0)" + M + " || '>'"), "<2>");
    query->OrderBySQL = M + "PRM(Column,id)" + M + " DESC";
    query->WhereSQL = M + "PRM(Condition,1 = 1)" + M;
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Carla Anna ");
    // A text that somebody typed never goes this way, or he writes SQL.
    Parametres()->AddParam("Typed", "' OR '1'='1");
    query->WhereSQL = "name = '" + M + "PRM(Typed,)" + M + "'";
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "Carla Biel Anna ");
    query->WhereSQL = "name = " + M + "PRM$(Typed,'')" + M;
    query->CreaSQL();
    EXPECT_EQ(Column(*query), "");
}

TEST_F(HostileTexts, EveryFormOfAFunctionGivesTheTextOrAnError) {
    const auto quoted = [&](const AnsiString& text) { return database->GetStringSQL(text, true); };
    int n = 0;
    for (const AnsiString& text : Texts()) {
        SCOPED_TRACE(n++);
        // A literal is SQL itself: the plain forms take it, and only so a text.
        Parametres()->SetParametreValue("P", quoted(text));
        for (const char* form : {"PRM", "PRM#", "prm"}) EXPECT_TRUE(Selected(M + form + "(P,'')" + M) == text) << form;
        Parametres()->SetParametreValue("P", text);
        for (const char* form : {"PRM$", "prm$"}) EXPECT_TRUE(Selected(M + form + "(P,0)" + M) == text) << form;
        for (const char* form : {"PRM!", "PRM%"})
            EXPECT_NE(MessageOf([&] { Selected(M + form + "(P,0)" + M); }), "no error") << form;
        // In a default the quotes stand twice, as in any text of a statement; a mark would end it.
        if (text.find(CT_ParametreMark) == AnsiString::npos)
            EXPECT_TRUE(Selected(M + "PRM$(Missing," + quoted(quoted(text)) + ")" + M) == text);
        // As the value of a condition of the moment, and beside another function.
        TQuerySQL counted(nullptr);
        AddField(counted, "n", "count(*)");
        counted.FromSQL = "clients";
        counted.SetCampWhereDataSource(M + "P" + M + " = " + M + "PRM$(P,'')" + M);
        counted.SetCampWhereFiltre(quoted(text).find(CT_ParametreMark) == AnsiString::npos
                                       ? quoted(text) + " = " + M + "P" + M
                                       : AnsiString("1 = 1"));
        counted.CreaSQL();
        EXPECT_EQ(counted.QryDataSet()->FieldByName("n")->AsInteger(), 3);
    }
}

TEST_F(HostileTexts, ANumberFormTakesNumbersOnly) {
    Parametres()->AddParam("Typed", "1 OR 1=1");
    EXPECT_EQ(MessageOf([&] { Selected(M + "PRM!(Typed,0)" + M); }),
              "EVariantError: Could not convert variant of type (String) into type (Double)");
    EXPECT_EQ(MessageOf([&] { Selected(M + "PRM%(Typed,0)" + M); }),
              "EVariantError: Could not convert variant of type (String) into type (Integer)");
}
