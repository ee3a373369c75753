#include "database/Udb_ado.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "persistence/Uvynclss.h"
#include "providers/sqlite/connection.h"
#include "unit/database/database_fixtures.h"

using namespace database_fixtures;

namespace {

class AdoDatabase : public testing::Test {
  protected:
    AdoDatabase() {
        RegisterSqliteProvider();
        connection.Execute(
            "CREATE TABLE clients (id INTEGER PRIMARY KEY, nom VARCHAR(30));"
            "CREATE TABLE comandes (id INTEGER PRIMARY KEY, client INTEGER, data DATETIME);"
            "INSERT INTO clients VALUES (1, 'Soler'), (2, 'Puig'), (3, 'Bosch');"
            "INSERT INTO comandes VALUES (10, 1, '2001-03-09 10:30:00'), (11, 2, '2001-03-10'), (12, 1, '2001-03-11')");
        database.SetADOConnection(&connection);
    }
    TADOQuery* Query(const AnsiString& sql, bool readOnly = true) {
        return ObjectCast<TADOQuery>(database.GetTSQLDataSet(sql, &owner, readOnly));
    }
    TADOTable* Table(const AnsiString& name, bool readOnly = true) {
        return ObjectCast<TADOTable>(database.GetTDataSet(name, &owner, readOnly));
    }

    TADOConnection connection{nullptr};
    TDataBaseVynADO database{nullptr};
    TComponent owner{nullptr};
};

constexpr char kNoConnection[] = "Exception: ADO Connection not assigned";

}  // namespace

TEST_F(AdoDatabase, EveryHookButFourNeedsAConnection) {
    TADOQuery* query = Query("");
    TADOTable* table = Table("clients");
    database.SetADOConnection(nullptr);
    TStringList list;
    AnsiString text;
    EXPECT_EQ(MessageOf([&] { database.CheckDB(); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.DoGetTSQLDataSet("", nullptr, true); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.DoGetTDataSet("", nullptr, true); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.DoExecuteSQL(query); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.DoStartTransaction(); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.DoCommitTransaction(); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.DoRollbackTransaction(); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.SetSQLToDataSet("", query); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.SetTableToDataSet("", table); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.GetTableFromDataSet(table, text); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.GetTableNames("", false, false, &list); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.GetStoredProcNames(&list); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.AssignDataSourceToDataSet(query, nullptr, "", ""); }), kNoConnection);
    EXPECT_EQ(MessageOf([&] { database.GetSQLFromDataSet(query, text); }), "no error");
    EXPECT_EQ(MessageOf([&] { database.GetTDataSetParams(query); }), "no error");
    EXPECT_EQ(MessageOf([&] { database.AllowParamCheck(query, true); }), "no error");
    EXPECT_EQ(MessageOf([&] { database.DataSetAllowParamCheck(query); }), "no error");
}

TEST_F(AdoDatabase, QueriesHaveTheLocksAndCursorsOfTheirPurpose) {
    TADOQuery* reading = Query("SELECT * FROM clients");
    EXPECT_EQ(reading->LockType(), ltReadOnly);
    EXPECT_EQ(reading->CursorLocation(), clUseClient);
    EXPECT_EQ(reading->Owner(), &owner);
    EXPECT_EQ(reading->Connection(), &connection);
    TADOQuery* writing = Query("SELECT * FROM clients", false);
    EXPECT_EQ(writing->LockType(), ltOptimistic);
    EXPECT_EQ(writing->CursorLocation(), clUseClient);
    EXPECT_EQ(writing->CursorType(), ctKeyset);
    writing->Open();
    EXPECT_TRUE(writing->CanModify());
    reading->Open();
    EXPECT_FALSE(reading->CanModify());
    EXPECT_EQ(MessageOf([&] { reading->Edit(); }), "EDatabaseError: Cannot modify a read-only dataset");
}

TEST_F(AdoDatabase, TablesAreReadOnlyOrOptimistic) {
    TADOTable* reading = Table("clients");
    EXPECT_TRUE(reading->ReadOnly());
    EXPECT_EQ(reading->LockType(), ltReadOnly);
    TADOTable* writing = Table("clients", false);
    EXPECT_FALSE(writing->ReadOnly());
    EXPECT_EQ(writing->LockType(), ltOptimistic);
    EXPECT_EQ(writing->CursorLocation(), clUseClient);
    AnsiString name;
    database.GetTableFromDataSet(writing, name);
    EXPECT_EQ(name, "clients");
    database.SetTableToDataSet("comandes", writing);
    writing->Open();
    EXPECT_EQ(writing->RecordCount(), 3);
}

TEST_F(AdoDatabase, DatasetsOfTheWrongKindAreRefused) {
    TADOQuery* query = Query("");
    TADOTable* table = Table("clients");
    AnsiString text;
    EXPECT_EQ(MessageOf([&] { database.DoExecuteSQL(table); }), "Exception: DataSet <> TADOQuery to execute");
    EXPECT_EQ(MessageOf([&] { database.SetSQLToDataSet("", table); }), "Exception: DataSet is not a TADOQuery");
    EXPECT_EQ(MessageOf([&] { database.GetSQLFromDataSet(table, text); }), "Exception: DataSet is not a TADOQuery");
    EXPECT_EQ(MessageOf([&] { database.SetTableToDataSet("", query); }), "Exception: DataSet is not a TADOTable");
    EXPECT_EQ(MessageOf([&] { database.GetTableFromDataSet(query, text); }), "Exception: DataSet is not a TADOTable");
    EXPECT_EQ(MessageOf([&] { database.GetSQLFromDataSet(nullptr, text); }), "Exception: DataSet is not a TADOQuery");
}

TEST_F(AdoDatabase, TextsThatAreSetHaveTheirColonsDoubled) {
    TADOQuery* query = Query("");
    database.SetSQLToDataSet("SELECT *\nFROM comandes WHERE data = #03/09/2001 10:30:00#", query);
    AnsiString text;
    database.GetSQLFromDataSet(query, text);
    EXPECT_EQ(text, "SELECT *\r\nFROM comandes WHERE data = #03/09/2001 10::30::00#\r\n");
    query->Open();
    EXPECT_EQ(query->FieldByName("id")->AsInteger(), 10);
    EXPECT_EQ(query->RecordCount(), 1);
}

TEST_F(AdoDatabase, LiteralsOfTheDatabaseFindTheirRecords) {
    const AnsiString at = database.ConvertToSqlString(ftDateTime, Variant(TDateTime(EncodeDate(2001, 3, 9) + 0.4375)));
    EXPECT_EQ(at, "#03/09/2001 10::30::00#");
    TADOQuery* query = Query("SELECT id FROM comandes WHERE data = " + at);
    query->Open();
    EXPECT_EQ(query->FieldByName("id")->AsInteger(), 10);
    const AnsiString day = database.ConvertToSqlString(ftDateTime, Variant(TDateTime(EncodeDate(2001, 3, 10))));
    EXPECT_EQ(day, "#03/10/2001 00::00::00#");
    database.SetSQLToDataSet("SELECT TOP 5, [id] FROM comandes WHERE data = " + day, query);
    query->Open();
    EXPECT_EQ(query->FieldByName("id")->AsInteger(), 11);
}

TEST_F(AdoDatabase, StatementsRunAndTransactionsCount) {
    const int kept = database.StartTransaction();
    database.ExecuteSQL("INSERT INTO clients VALUES (4, " + database.GetStringSQL("O'Brien", true) + ")");
    database.CommitTransaction(kept);
    const int undone = database.StartTransaction();
    database.ExecuteSQL("DELETE FROM clients");
    database.RollBackTransaction(undone);
    TADOTable* table = Table("clients");
    table->Open();
    EXPECT_EQ(table->RecordCount(), 4);
    EXPECT_TRUE(table->Locate("nom", Variant("O'Brien")));
    EXPECT_EQ(MessageOf([&] { database.DoCommitTransaction(); }), "EDatabaseError: There is no transaction to commit");
}

TEST_F(AdoDatabase, ErrorsOfTheEnginePassUnchanged) {
    EXPECT_EQ(MessageOf([&] { database.ExecuteSQL("DELETE FROM nowhere"); }),
              "EDatabaseError: The statement failed: no such table: nowhere");
}

TEST_F(AdoDatabase, NamesComeFromTheConnection) {
    TStringList list;
    database.GetTableNames("ignored", true, false, &list);
    EXPECT_EQ(list.CommaText(), "clients,comandes");
    database.GetTableNames("", false, true, &list);
    EXPECT_GE(list.IndexOf("sqlite_master"), 0);
    EXPECT_TRUE(database.TableExists("CLIENTS"));
    EXPECT_FALSE(database.TableExists("nowhere"));
    list.Add("left from before");
    database.GetStoredProcNames(&list);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(database.GetTDataSetParams(Query("")), nullptr);
}

TEST_F(AdoDatabase, ParameterParsingIsTheQuerys) {
    TADOQuery* query = Query("");
    EXPECT_TRUE(database.DataSetAllowParamCheck(query));
    database.AllowParamCheck(query, false);
    EXPECT_FALSE(query->ParamCheck());
    EXPECT_FALSE(database.DataSetAllowParamCheck(query));
}

TEST_F(AdoDatabase, TablesKeepTheSettingAndOtherDatasetsHaveNone) {
    TADOTable* table = Table("clients");
    EXPECT_TRUE(database.DataSetAllowParamCheck(table));
    database.AllowParamCheck(table, false);
    EXPECT_FALSE(table->ParamCheck());
    EXPECT_FALSE(database.DataSetAllowParamCheck(table));
    RecordingDataSet other(nullptr);
    database.AllowParamCheck(&other, true);
    EXPECT_FALSE(database.DataSetAllowParamCheck(&other));
}

TEST_F(AdoDatabase, TextsStayWhereParametersAreNotLookedFor) {
    TADOQuery* query = Query("");
    database.AllowParamCheck(query, false);
    database.SetSQLToDataSet("SELECT id FROM comandes WHERE data = #03/09/2001 10:30:00#", query);
    AnsiString text;
    database.GetSQLFromDataSet(query, text);
    EXPECT_EQ(text, "SELECT id FROM comandes WHERE data = #03/09/2001 10:30:00#\r\n");
    query->Open();
    EXPECT_EQ(query->RecordCount(), 1);
}

TEST_F(AdoDatabase, ATextThatIsSetReplacesTheOneBeforeAndClosesTheResult) {
    TADOQuery* query = Query("SELECT * FROM clients");
    query->Open();
    database.SetSQLToDataSet("SELECT * FROM comandes", query);
    EXPECT_FALSE(query->Active());
    AnsiString text;
    database.GetSQLFromDataSet(query, text);
    EXPECT_EQ(text, "SELECT * FROM comandes\r\n");
    database.SetSQLToDataSet("", query);
    database.GetSQLFromDataSet(query, text);
    EXPECT_EQ(text, "");
}

TEST_F(AdoDatabase, ATextIsCorrectedBeforeTheDatasetIsLookedAt) {
    // The kind of the dataset is told after the correction: a table's setting is asked, then the table refused.
    EXPECT_EQ(MessageOf([&] { database.SetSQLToDataSet("a 10:20", Table("clients")); }),
              "Exception: DataSet is not a TADOQuery");
    EXPECT_EQ(MessageOf([&] { database.SetSQLToDataSet("a 10:20", nullptr); }),
              "Exception: DataSet is not a TADOQuery");
}

TEST_F(AdoDatabase, LinkingADatasetOfAnotherKindDoesNothing) {
    TDataSource source(nullptr);
    RecordingDataSet other(nullptr);
    database.AssignDataSourceToDataSet(&other, &source, "id", "client");
    EXPECT_EQ(other.GetDataSource(), nullptr);
    database.AssignDataSourceToDataSet(nullptr, &source, "id", "client");
}

TEST_F(AdoDatabase, AnOpenDetailTableIsLinkedAnew) {
    TADOTable* master = Table("clients");
    TADOTable* detail = Table("comandes");
    TDataSource source(nullptr);
    source.SetDataSet(master);
    master->Open();
    detail->Open();
    EXPECT_EQ(detail->RecordCount(), 3);
    database.AssignDataSourceToDataSet(detail, &source, "id", "client");
    EXPECT_EQ(detail->RecordCount(), 2);
    database.AssignDataSourceToDataSet(detail, nullptr, "", "");
    EXPECT_EQ(detail->MasterSource(), nullptr);
    EXPECT_EQ(detail->RecordCount(), 3);
}

TEST_F(AdoDatabase, AParameterThatIsThereIsTakenWhateverItsCase) {
    TADOTable* master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(master);
    TADOQuery* detail = Query("SELECT * FROM comandes WHERE client = :ID AND id > :least");
    master->Open();
    database.AssignDataSourceToDataSet(detail, &source, "id", "");
    EXPECT_EQ(detail->Parameters()->Count(), 2);
    EXPECT_EQ(detail->Parameters()->Items(0)->Value().AsInteger(), 1);
    EXPECT_TRUE(detail->Parameters()->Items(1)->Value().IsEmpty());
}

TEST_F(AdoDatabase, AClosedMasterGivesTheTypeAndNoValue) {
    TADOTable* master = Table("clients");
    auto* field = new TIntegerField(master);
    field->SetFieldName("id");
    field->SetDataSet(master);
    TDataSource source(nullptr);
    source.SetDataSet(master);
    TADOQuery* detail = Query("SELECT * FROM comandes WHERE client = :id");
    database.AssignDataSourceToDataSet(detail, &source, "id", "");
    EXPECT_EQ(detail->Parameters()->Items(0)->DataType, ftInteger);
    EXPECT_TRUE(detail->Parameters()->Items(0)->Value().IsEmpty());
}

TEST_F(AdoDatabase, WithoutASourceTheParameterIsMadeAllTheSame) {
    TADOQuery* detail = Query("SELECT * FROM comandes");
    database.AssignDataSourceToDataSet(detail, nullptr, "id", "");
    EXPECT_EQ(detail->DataSource(), nullptr);
    ASSERT_EQ(detail->Parameters()->Count(), 1);
    EXPECT_EQ(detail->Parameters()->Items(0)->Name, "id");
}

TEST_F(AdoDatabase, TransactionsInTransactionsAreThePartThatTheyHold) {
    const int outer = database.StartTransaction();
    database.ExecuteSQL("DELETE FROM clients WHERE id = 1");
    const int inner = database.StartTransaction();
    database.ExecuteSQL("DELETE FROM clients WHERE id = 2");
    database.RollBackTransaction(inner);
    database.CommitTransaction(outer);
    TADOTable* table = Table("clients");
    table->Open();
    EXPECT_EQ(table->RecordCount(), 2);
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 2);
}

TEST_F(AdoDatabase, ADetailTableFollowsItsMaster) {
    TADOTable* master = Table("clients");
    TADOTable* detail = Table("comandes");
    TDataSource source(nullptr);
    source.SetDataSet(master);
    master->Open();
    database.AssignDataSourceToDataSet(detail, &source, "id", "client");
    EXPECT_EQ(detail->MasterSource(), &source);
    EXPECT_EQ(detail->MasterFields(), "id");
    EXPECT_EQ(detail->IndexFieldNames(), "client");
    detail->Open();
    EXPECT_EQ(detail->RecordCount(), 2);
    master->Next();
    EXPECT_EQ(detail->RecordCount(), 1);
    EXPECT_EQ(detail->FieldByName("id")->AsInteger(), 11);
    master->Next();
    EXPECT_EQ(detail->RecordCount(), 0);
}

TEST_F(AdoDatabase, ADetailQueryTakesItsParameterFromTheMaster) {
    TADOTable* master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(master);
    master->Open();
    TADOQuery* detail = Query("SELECT * FROM comandes WHERE client = :id");
    database.AssignDataSourceToDataSet(detail, &source, "id", "unused");
    TParameter* parameter = detail->Parameters()->FindParam("ID");
    ASSERT_NE(parameter, nullptr);
    EXPECT_EQ(detail->Parameters()->Count(), 1);
    EXPECT_EQ(parameter->DataType, ftInteger);
    EXPECT_EQ(parameter->Value().AsInteger(), 1);
    detail->Open();
    EXPECT_EQ(detail->RecordCount(), 2);
    master->Next();
    EXPECT_EQ(detail->RecordCount(), 1);
}

TEST_F(AdoDatabase, AMasterWithoutTheFieldLeavesTheParameterUntypedAndEmpty) {
    TADOTable* master = Table("clients");
    TDataSource source(nullptr);
    source.SetDataSet(master);
    master->Open();
    TADOQuery* detail = Query("SELECT * FROM comandes");
    database.AssignDataSourceToDataSet(detail, &source, "nowhere", "");
    TParameter* parameter = detail->Parameters()->FindParam("nowhere");
    ASSERT_NE(parameter, nullptr);
    EXPECT_EQ(parameter->DataType, ftUnknown);
    EXPECT_TRUE(parameter->Value().IsEmpty());
    EXPECT_EQ(detail->DataSource(), &source);
}

TEST_F(AdoDatabase, TheConnectionIsForgottenWhenItGoes) {
    {
        TADOConnection other(nullptr);
        database.SetADOConnection(&other);
    }
    EXPECT_EQ(database.ADOConnection(), nullptr);
    EXPECT_FALSE(database.IsBDEBased);
}

TEST_F(AdoDatabase, AConnectionToAFileIsMadeAndNotOpened) {
    TADOConnection* made = CreateADOConnection(&owner, "C:\\dades\\x.mdb");
    EXPECT_EQ(made->ConnectionString(), "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\dades\\x.mdb");
    EXPECT_EQ(made->Owner(), &owner);
    EXPECT_FALSE(made->Connected());
}

TEST(AdoUnit, RegistersItsDatasetClassesOnceAndTakesThemBack) {
    InitializeVynRegisteredClasses();
    InitializeDb_ado();
    InitializeDb_ado();
    TVynClassesRegistrades& registry = *VynRegisteredClasses();
    const int query = registry.IndexOfClasse(&TADOQuery::StaticClass());
    ASSERT_GE(query, 0);
    EXPECT_EQ(registry.GetClasse(query).Tipus, TTipusClasse::DataAccess);
    EXPECT_EQ(static_cast<int>(registry.GetClasse(query).Tipus), 7);
    EXPECT_EQ(registry.IndexOfClasse(&TADOTable::StaticClass()), query + 1);
    FinalizeDb_ado();
    EXPECT_TRUE(registry.IsRegistered(&TADOQuery::StaticClass()));
    registry.DelClasse(registry.IndexOfClasse(&TADOTable::StaticClass()));
    FinalizeDb_ado();
    EXPECT_FALSE(registry.IsRegistered(&TADOQuery::StaticClass()));
    FinalizeDb_ado();
    FinalizeVynRegisteredClasses();
}
