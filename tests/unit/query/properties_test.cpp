// What a query publishes, how it is stored, and what it stands on.

#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "query_fixtures.h"

using namespace vyn;
using namespace query_fixtures;

class QueryProperties : public QueryTest {
  protected:
    AnsiString FormOf(TComponent& component) {
        TMemoryStream stream;
        WriteComponentToStream(stream, component);
        stream.SetPosition(0);
        return BinaryToText(stream);
    }
};

TEST_F(QueryProperties, StandInTheirOrder) {
    std::vector<AnsiString> names;
    for (const PropertyInfo& property : TQuerySQL::StaticClass().Properties()) names.push_back(property.Name);
    names.erase(names.begin(), names.begin() + static_cast<long>(TComponent::StaticClass().Properties().size()));
    EXPECT_THAT(
        names, testing::ElementsAre("FieldsSQL", "DataBaseVynName", "CreaSQLAutomatic", "CampMestreSQL", "GroupBySQL",
                                    "FromSQL", "WhereSQL", "HavingSQL", "OrderBySQL", "CampOrdreSQL", "ErrorEdit",
                                    "ErrorDelete", "ErrorPost", "StringErrorEdit", "StringErrorDelete",
                                    "StringErrorPost", "CampWhereDataSource", "CampHavingDataSource", "CampWhereFiltre",
                                    "CampHavingFiltre", "QrySQLMaster", "OpcionsSQL", "OnFuncioNoConeguda",
                                    "ConsultaDeTotals", "QryDataSet", "SqlType", "DataSetType", "OnNeedDataSet",
                                    "LocateOnRefresh", "TopSQL", "OnAddFieldsToSQL", "DoArreglaProblemaHora"));
}

TEST_F(QueryProperties, BeginAsTheyShould) {
    EXPECT_FALSE(query->CreaSQLAutomatic);
    EXPECT_FALSE(query->LocateOnRefresh);
    EXPECT_FALSE(query->ConsultaDeTotals);
    EXPECT_FALSE(query->OrdenatInversa);
    EXPECT_EQ(query->OpcionsSQL(), TSetCampsDeUnSQL({cSelect, cFrom, cWhere, cOrderBy, cGroup, cHaving}));
    EXPECT_EQ(query->SqlType, sql_byFields);
    EXPECT_EQ(query->DataSetType, ds_Query);
    EXPECT_EQ(query->ErrorEdit(), TErrorDefecte);
    EXPECT_EQ(query->TopSQL, 0);
    EXPECT_EQ(query->QryDataSet(), nullptr);
    EXPECT_EQ(query->DataBaseVynName(), "DBDades");
}

TEST_F(QueryProperties, OfTheMomentAreNeverStored) {
    query->CreaSQLAutomatic = true;
    query->SetCampWhereDataSource("a");
    query->SetCampHavingDataSource("a");
    query->SetCampWhereFiltre("a");
    query->SetCampHavingFiltre("a");
    query->TopSQL = 5;
    EXPECT_EQ(FormOf(*query), "object Q: TQuerySQL\n  DataBaseVynName = 'DBDades'\nend\n");
}

TEST_F(QueryProperties, ComeBackFromAForm) {
    query->SetOpcionsSQL({cFrom, cHaving});
    query->SqlType = sql_DirectText;
    query->DataSetType = ds_Table;
    query->SetErrorPost(TErrorCombinat);
    query->StringErrorPost()->Add("No");
    query->WhereSQL =
        "A = "
        "\xA1"
        "P\xA1";
    TFieldsSQLRec field{"ID", "C.ID", "The \"key\"", "C.ID DESC", "#,0", "", 1, "Id, or so", true};
    query->Afegeix(field);
    TMemoryStream stream;
    WriteComponentToStream(stream, *query);
    TQuerySQL again(nullptr);
    stream.SetPosition(0);
    ReadComponentFromStream(stream, &again);
    EXPECT_EQ(again.OpcionsSQL(), query->OpcionsSQL());
    EXPECT_EQ(again.SqlType, sql_DirectText);
    EXPECT_EQ(again.DataSetType, ds_Table);
    EXPECT_EQ(again.ErrorPost(), TErrorCombinat);
    EXPECT_EQ(again.StringErrorPost()->Text(), "No\r\n");
    EXPECT_EQ(again.WhereSQL, query->WhereSQL);
    ASSERT_EQ(again.Count(), 1);
    EXPECT_EQ(again.GetFieldSQL(0), field);
    TMemoryStream written;
    WriteComponentToStream(written, again);
    EXPECT_EQ(written.Bytes(), stream.Bytes());
}

TEST_F(QueryProperties, MessageListsAreFilledThroughThemselves) {
    TStringList list{"x"};
    query->SetStringErrorEdit(&list);
    query->SetStringErrorDelete(&list);
    query->SetStringErrorPost(&list);
    EXPECT_EQ(
        query->StringErrorEdit()->Count() + query->StringErrorDelete()->Count() + query->StringErrorPost()->Count(), 0);
    query->SetErrorEdit(TErrorEspecific);
    query->SetErrorDelete(TErrorCombinat);
    EXPECT_EQ(query->ErrorEdit(), TErrorEspecific);
    EXPECT_EQ(query->ErrorDelete(), TErrorCombinat);
}

TEST_F(QueryProperties, EnumerationsHaveTheirNamesInOrder) {
    EXPECT_EQ(TypeInfoOf(TypeTag<TCampsDeUnSQL>{}).NameOf(static_cast<int>(cGroup)), "cGroup");
    EXPECT_EQ(TypeInfoOf(TypeTag<TCampsDeUnSQL>{}).ValueOf("cOrderBy"), 3);
    EXPECT_EQ(TypeInfoOf(TypeTag<TTipusFiltre>{}).NameOf(static_cast<int>(tfHaving)), "tfHaving");
    EXPECT_EQ(TypeInfoOf(TypeTag<TConcatFiltresType>{}).NameOf(static_cast<int>(Concat_OR)), "Concat_OR");
    EXPECT_EQ(TypeInfoOf(TypeTag<TErrorQuery>{}).NameOf(static_cast<int>(TErrorEspecific)), "TErrorEspecific");
}

class StoredFields : public testing::Test {};

TEST_F(StoredFields, HaveEightItemsBehindTheirName) {
    EXPECT_EQ(TextOfField({"A", "A", "", "", "", "", 0, "", false}), "A=A,\"\",\"\",\"\",0,\"\",FALSE,\"\"");
    EXPECT_EQ(TextOfField({"TOT", "SUM(X, 1)", "a \"b\"", "TOT", "0.00", "!9", -1, "T", true}),
              "TOT=\"SUM(X, 1)\",\"a \"\"b\"\"\",0.00,!9,-1,T,TRUE,TOT");
}

TEST_F(StoredFields, WhatIsMissingIsEmptyAndOrderedByItsName) {
    EXPECT_EQ(FieldOfText("A=B"), (TFieldsSQLRec{"A", "B", "", "A", "", "", 0, "", false}));
    EXPECT_EQ(FieldOfText("A="), (TFieldsSQLRec{"A", "", "", "A", "", "", 0, "", false}));
    EXPECT_EQ(FieldOfText("A"), (TFieldsSQLRec{"A", "", "", "A", "", "", 0, "", false}));
    EXPECT_EQ(FieldOfText(""), TFieldsSQLRec());
    EXPECT_EQ(FieldOfText("A=x=y"), (TFieldsSQLRec{"A", "x=y", "", "A", "", "", 0, "", false}));
    EXPECT_EQ(FieldOfText("A=B,,,,\" \",,\" true \",O,more"), (TFieldsSQLRec{"A", "B", "", "O", "", "", 0, "", true}));
    EXPECT_EQ(FieldOfText("A=B,,,,2,,yes").FieldFlag, false);
    EXPECT_EQ(FieldOfText("A=B,,,,2,,yes").FieldAlignment, 2);
}

TEST_F(StoredFields, AnAlignmentThatIsNoNumberIsAnError) {
    EXPECT_EQ(MessageOf([] { FieldOfText("A=B,,,,x"); }), "EConvertError: 'x' is not a valid integer value");
}

TEST_F(StoredFields, AreAddedToThoseThatAreThere) {
    TQuerySQL query(nullptr);
    query.Afegeix({"A", "A", "", "A", "", "", 0, "", false});
    TMemoryStream stream;
    {
        TWriter writer(stream);
        query.FieldsSQL()->WriteToWriter(&writer);
    }
    stream.SetPosition(0);
    TReader reader(stream);
    query.FieldsSQL()->LoadFromReader(&reader);
    EXPECT_EQ(query.Count(), 2);
    TQuerySQL other(nullptr);
    other.SetFieldsSQL(query.FieldsSQL());
    other.SetFieldsSQL(other.FieldsSQL());
    EXPECT_EQ(other.Count(), 2);
    EXPECT_EQ(other.FieldsSQL()->GetOwner(), &other);
    TStringList strings;
    EXPECT_EQ(MessageOf([&] { other.FieldsSQL()->Assign(&strings); }),
              "EConvertError: Cannot assign a TStringList to a TFieldsSelectSQL");
}

class QueryDatabases : public QueryTest {};

TEST_F(QueryDatabases, TheDefaultOneIsTaken) {
    EXPECT_EQ(query->GetDataBaseVyn(), database.get());
    database.reset();
    TQuerySQL without(nullptr);
    EXPECT_EQ(MessageOf([&] { without.GetDataBaseVyn(); }), "Exception: Database Vyn not found ()");
}

TEST_F(QueryDatabases, AnotherOneLetsGoOfTheDataSetAndSaysHowTimesAre) {
    TDataBaseVyn other(nullptr);
    other.IsBDEBased = true;
    query->SetDataBaseVyn(&other);
    EXPECT_EQ(query->DataBaseVynName(), "DBDades1");
    EXPECT_TRUE(query->DoArreglaProblemaHora);
    query->SetDataBaseVyn(nullptr);
    EXPECT_FALSE(query->DoArreglaProblemaHora);
    EXPECT_EQ(query->GetDataBaseVyn(), &other);  // by its name
}

TEST_F(QueryDatabases, OneThatGoesIsForgottenAndItsNameKept) {
    database.reset();
    EXPECT_EQ(MessageOf([&] { query->GetDataBaseVyn(); }), "Exception: Database Vyn not found (DBDades)");
    database = std::make_unique<TDataBaseVyn>(nullptr);
    EXPECT_EQ(query->GetDataBaseVyn(), database.get());
}

TEST_F(QueryDatabases, AStoredNameChoosesOne) {
    TDataBaseVyn other(nullptr);
    other.SetVynDBName("Stock");
    query->SetDataBaseVynName("stock");
    EXPECT_EQ(query->GetDataBaseVyn(), &other);
    query->SetDataBaseVynName("Later");
    EXPECT_EQ(MessageOf([&] { query->GetDataBaseVyn(); }), "Exception: Database Vyn not found (Later)");
    TDataBaseVyn later(nullptr);
    later.SetVynDBName("Later");
    EXPECT_EQ(query->GetDataBaseVyn(), &later);
}

TEST_F(QueryDatabases, WithoutADataSetOfTheDatabaseThereIsAnError) {
    struct Empty : TDataBaseVyn {
        using TDataBaseVyn::TDataBaseVyn;
        TDataSet* DoGetTDataSet(const AnsiString&, TComponent*, bool) override { return nullptr; }
    } empty(nullptr);
    query->SetDataBaseVyn(&empty);
    query->DataSetType = ds_Table;
    EXPECT_EQ(MessageOf([&] { query->CreaSQL(); }), "EQuerySQL: TQuerySQL ERROR - Q\nNo TDataSet in TQuerySQL");
}
