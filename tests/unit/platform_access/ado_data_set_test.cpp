#include <gtest/gtest.h>

#include "platform/access/ado.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "providers/sqlite/connection.h"
#include "support/errors.h"

using namespace vyn;

// Locks, cursors, parameters, orders and masters of queries and tables.
class AdoDataSet : public testing::Test {
  protected:
    AdoDataSet() {
        RegisterSqliteProvider();
        FormatSettings() = InvariantFormatSettings();
        connection.Execute(
            "CREATE TABLE clients (id INTEGER PRIMARY KEY, nom VARCHAR(30), zona VARCHAR(5));"
            "CREATE INDEX per_nom ON clients (nom);"
            "CREATE TABLE comandes (client INTEGER, linia INTEGER, zona VARCHAR(5), import CURRENCY, "
            "PRIMARY KEY (client, linia));"
            "INSERT INTO clients VALUES (1, 'Soler', 'n'), (2, 'Puig', 's'), (3, 'Bosch', NULL);"
            "INSERT INTO comandes VALUES (1, 1, 'n', 5), (1, 2, 's', 6), (2, 1, 's', 7), (3, 1, NULL, 8)");
    }
    TADOQuery& Query(const AnsiString& sql) {
        auto* query = new TADOQuery(&owner);
        query->SetConnection(&connection);
        query->SQL()->SetText(sql);
        return *query;
    }
    TADOTable& Table(const AnsiString& name) {
        auto* table = new TADOTable(&owner);
        table->SetConnection(&connection);
        table->SetTableName(name);
        return *table;
    }
    // The orders, as a detail that is not open yet.
    TADOTable& OrdersOf(TDataSource& master, const AnsiString& masterFields, const AnsiString& indexFields) {
        TADOTable& orders = Table("comandes");
        orders.SetMasterSource(&master);
        orders.SetMasterFields(masterFields);
        orders.SetIndexFieldNames(indexFields);
        return orders;
    }
    static AnsiString Column(TDataSet& data, const AnsiString& name) {
        AnsiString text;
        for (data.First(); !data.Eof(); data.Next())
            text += (text.empty() ? "" : ",") + data.FieldByName(name)->AsString();
        return text;
    }

    TADOConnection connection{nullptr};
    TComponent owner{nullptr};
};

TEST_F(AdoDataSet, OnlyTheReadOnlyLockForbidsWriting) {
    for (TADOLockType lock : {ltUnspecified, ltReadOnly, ltPessimistic, ltOptimistic, ltBatchOptimistic}) {
        SCOPED_TRACE(static_cast<int>(lock));
        TADOTable& table = Table("clients");
        table.SetLockType(lock);
        table.Open();
        EXPECT_EQ(table.CanModify(), lock != ltReadOnly);
        EXPECT_EQ(MessageOf([&] { table.Edit(); }),
                  lock == ltReadOnly ? "EDatabaseError: Cannot modify a read-only dataset" : "no error");
    }
}

TEST_F(AdoDataSet, EveryCursorReadsTheSameRecords) {
    for (TCursorLocation location : {clUseServer, clUseClient})
        for (TCursorType type : {ctUnspecified, ctOpenForwardOnly, ctKeyset, ctDynamic, ctStatic}) {
            TADOTable& table = Table("clients");
            table.SetCursorLocation(location);
            table.SetCursorType(type);
            table.Open();
            EXPECT_EQ(Column(table, "nom"), "Soler,Puig,Bosch");
            table.Prior();
            EXPECT_EQ(table.FieldByName("nom")->AsString(), "Puig");
        }
}

TEST_F(AdoDataSet, WhatAResultDependsOnIsSetWhileItIsClosed) {
    constexpr char kOpen[] = "EDatabaseError: Cannot perform this operation on an open dataset";
    TADOTable& table = Table("clients");
    table.Open();
    EXPECT_EQ(MessageOf([&] { table.SetLockType(ltReadOnly); }), kOpen);
    EXPECT_EQ(MessageOf([&] { table.SetCursorType(ctStatic); }), kOpen);
    EXPECT_EQ(MessageOf([&] { table.SetCursorLocation(clUseServer); }), kOpen);
    EXPECT_EQ(MessageOf([&] { table.SetTableName("comandes"); }), kOpen);
    EXPECT_EQ(MessageOf([&] { table.SetReadOnly(true); }), kOpen);
    EXPECT_EQ(MessageOf([&] { table.SetConnectionString("x"); }), kOpen);
    // The same again is no change.
    table.SetLockType(ltOptimistic);
    table.SetTableName("clients");
}

TEST_F(AdoDataSet, ATableWithoutANameOrThatIsNotThereSaysSo) {
    EXPECT_EQ(MessageOf([&] { Table(" ").Open(); }), "EDatabaseError: Missing TableName property");
    EXPECT_EQ(MessageOf([&] { Table("nowhere").Open(); }),
              "EDatabaseError: The statement failed: no such table: nowhere");
}

TEST_F(AdoDataSet, ParametersAreFoundOutsideQuotesAndComments) {
    TADOQuery& query = Query(
        "SELECT ':no', \"id\", [id] FROM clients /* :no */ WHERE id = :a AND nom <> ':no' -- :no\n"
        "AND nom = :\"two words\" AND id = :A");
    ASSERT_EQ(query.Parameters()->Count(), 2);
    EXPECT_EQ(query.Parameters()->Items(0)->Name, "a");
    EXPECT_EQ(query.Parameters()->Items(1)->Name, "two words");
}

TEST_F(AdoDataSet, OneNameIsOneValueWhereverItStands) {
    TADOQuery& query = Query("SELECT id FROM clients WHERE id = :a OR id = :A + 1");
    query.Parameters()->ParamByName("A")->SetValue(Variant(1));
    query.Open();
    EXPECT_EQ(Column(query, "id"), "1,2");
}

TEST_F(AdoDataSet, DoubledColonsAreOneInTheStatementThatIsSent) {
    TADOQuery& query = Query("SELECT '10::20' AS quoted, strftime('%H:%M', #10::20::30#) AS time");
    EXPECT_EQ(query.Parameters()->Count(), 0);
    query.Open();
    // What stands in quotes is a value, and stays.
    EXPECT_EQ(query.FieldByName("quoted")->AsString(), "10::20");
    EXPECT_EQ(query.FieldByName("time")->AsString(), "10:20");
}

TEST_F(AdoDataSet, ParametersThatStayKeepTheirValues) {
    TADOQuery& query = Query("SELECT id FROM clients WHERE id = :a AND nom = :b");
    query.Parameters()->ParamByName("b")->SetValue(Variant("Puig"));
    query.SQL()->SetText("SELECT id FROM clients WHERE nom = :B OR zona = :c");
    ASSERT_EQ(query.Parameters()->Count(), 2);
    EXPECT_EQ(query.Parameters()->Items(0)->Value().AsString(), "Puig");
    EXPECT_EQ(query.Parameters()->Items(1)->Name, "c");
    EXPECT_EQ(MessageOf([&] { query.Parameters()->ParamByName("a"); }), "EDatabaseError: Parameter 'a' not found");
}

TEST_F(AdoDataSet, AParameterWithoutAValueIsNull) {
    TADOQuery& query = Query("SELECT :a IS NULL AS yes");
    query.Open();
    EXPECT_EQ(query.FieldByName("yes")->AsInteger(), 1);
}

TEST_F(AdoDataSet, WithoutParsingParametersGoByOrder) {
    TADOQuery& query = Query("");
    query.SetParamCheck(false);
    query.SQL()->SetText("SELECT id FROM clients WHERE id = ? OR nom = ?");
    EXPECT_EQ(query.Parameters()->Count(), 0);
    query.Parameters()->CreateParameter("x", ftInteger, pdInput, 0, Variant(1));
    query.Parameters()->CreateParameter("y", ftString, pdInput, 0, Variant("Puig"));
    query.Open();
    EXPECT_EQ(Column(query, "id"), "1,2");
}

TEST_F(AdoDataSet, StatementsThatGiveNothingAreExecutedAndSayHowManyChanged) {
    TADOQuery& query = Query("UPDATE clients SET nom = :nom WHERE id < :id");
    query.Parameters()->ParamByName("nom")->SetValue(Variant("O'Neil"));
    query.Parameters()->ParamByName("id")->SetValue(Variant(3));
    EXPECT_EQ(query.ExecSQL(), 2);
    EXPECT_EQ(query.RowsAffected(), 2);
    EXPECT_EQ(MessageOf([&] { query.Open(); }), "EDatabaseError: The statement gives no records");
    TADOTable& table = Table("clients");
    table.Open();
    EXPECT_EQ(Column(table, "nom"), "O'Neil,O'Neil,Bosch");
}

TEST_F(AdoDataSet, ADetailTableFollowsByAllFieldsOfTheLink) {
    TADOTable& master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(&master);
    master.Open();
    TADOTable& detail = OrdersOf(source, "id;zona", "client;zona");
    detail.Open();
    EXPECT_EQ(Column(detail, "import"), "5");
    master.Next();
    EXPECT_EQ(Column(detail, "import"), "7");
    // Nothing is the same as nothing.
    master.Next();
    EXPECT_EQ(Column(detail, "import"), "8");
    // What is begun in the detail is the master's.
    detail.Append();
    EXPECT_EQ(detail.FieldByName("client")->AsInteger(), 3);
    EXPECT_TRUE(detail.FieldByName("zona")->IsNull());
    detail.Cancel();
    master.Close();
    EXPECT_TRUE(detail.Active());
}

TEST_F(AdoDataSet, FurtherIndexFieldsOrderTheDetail) {
    TADOTable& master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(&master);
    master.Open();
    TADOTable& detail = OrdersOf(source, "id", "client;import");
    detail.Open();
    EXPECT_EQ(Column(detail, "import"), "5,6");
}

TEST_F(AdoDataSet, DetailsThatAFailureClosedOpenAgainWithTheNextMove) {
    TADOTable& master = Table("clients");
    TADOQuery& query = Query("SELECT import FROM comandes WHERE client = :id ORDER BY import");
    TDataSource source(nullptr);
    source.SetDataSet(&master);
    master.Open();
    TADOTable& table = OrdersOf(source, "id", "client;import");
    query.SetDataSource(&source);
    table.Open();
    query.Open();
    connection.Execute("ALTER TABLE comandes RENAME TO elsewhere");
    EXPECT_NE(MessageOf([&] { master.Next(); }).find("no such table"), AnsiString::npos);
    EXPECT_EQ(master.FieldByName("id")->AsInteger(), 2) << "the master has moved";
    EXPECT_FALSE(table.Active()) << "rather than show another's rows";
    EXPECT_FALSE(query.Active());
    // It was told.
    master.Next();
    EXPECT_FALSE(table.Active());
    connection.Execute("ALTER TABLE elsewhere RENAME TO comandes");
    master.First();
    EXPECT_EQ(Column(table, "import"), "5,6");
    EXPECT_EQ(Column(query, "import"), "5,6");
    // Who closes it himself has it closed.
    table.Close();
    master.Next();
    EXPECT_FALSE(table.Active());
    EXPECT_TRUE(query.Active());
}

TEST_F(AdoDataSet, AnUnknownMasterFieldIsNamed) {
    TADOTable& master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(&master);
    master.Open();
    TADOTable& detail = OrdersOf(source, "nowhere", "client");
    EXPECT_EQ(MessageOf([&] { detail.Open(); }), "EDatabaseError: Field 'nowhere' not found");
}

TEST_F(AdoDataSet, TheOrderIsAnIndexesOrThatOfFields) {
    TADOTable& table = Table("clients");
    table.SetIndexName("per_nom");
    table.Open();
    EXPECT_EQ(Column(table, "nom"), "Bosch,Puig,Soler");
    table.SetIndexFieldNames("id");
    EXPECT_EQ(table.IndexName(), "");
    EXPECT_EQ(Column(table, "nom"), "Soler,Puig,Bosch");
    table.SetIndexName("PrimaryKey");
    EXPECT_EQ(table.IndexFieldNames(), "");
    EXPECT_EQ(Column(table, "id"), "1,2,3");
    EXPECT_EQ(MessageOf([&] { table.SetIndexName("nowhere"); }), "EDatabaseError: Index 'nowhere' not found");
}

TEST_F(AdoDataSet, QueriesTakeParametersFromTheMasterWheneverItMoves) {
    TADOTable& master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(&master);
    master.Open();
    TADOQuery& detail = Query("SELECT import FROM comandes WHERE client = :id AND import > :least");
    detail.Parameters()->ParamByName("least")->SetValue(Variant(5));
    detail.SetDataSource(&source);
    detail.Open();
    EXPECT_EQ(Column(detail, "import"), "6");
    EXPECT_EQ(detail.Parameters()->ParamByName("id")->DataType, ftInteger);
    master.Next();
    EXPECT_EQ(Column(detail, "import"), "7");
    // What the master does not know keeps its own value.
    EXPECT_EQ(detail.Parameters()->ParamByName("least")->Value().AsInteger(), 5);
    EXPECT_EQ(MessageOf([&] {
                  TDataSource own(nullptr);
                  own.SetDataSet(&detail);
                  detail.SetDataSource(&own);
              }),
              "EDatabaseError: Circular datalinks are not allowed");
}
