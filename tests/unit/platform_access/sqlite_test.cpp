#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/access/ado.h"
#include "platform/objects/class_table.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "providers/sqlite/connection.h"
#include "support/errors.h"

using namespace vyn;

class Sqlite : public testing::Test {
  protected:
    void SetUp() override {
        RegisterSqliteProvider();
        FormatSettings() = InvariantFormatSettings();
        file_ = testing::TempDir() + "vyn-" + testing::UnitTest::GetInstance()->current_test_info()->name() + ".db";
        TearDown();
        connection_.SetConnectionString("Provider=SQLite;Data Source=" + file_);
    }
    void TearDown() override {
        for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(file_ + tail);
    }
    std::unique_ptr<TADOQuery> Query(const AnsiString& sql) {
        auto query = std::make_unique<TADOQuery>(nullptr);
        query->SetConnection(&connection_);
        query->SQL()->SetText(sql);
        query->Open();
        return query;
    }

    AnsiString file_;
    TADOConnection connection_{nullptr};
};

TEST_F(Sqlite, ReadsRowsOfEveryType) {
    connection_.Execute(
        "CREATE TABLE t (id INTEGER PRIMARY KEY, name VARCHAR(40), price CURRENCY, rate REAL, day DATE, at DATETIME, "
        "ok BOOLEAN, picture BLOB);"
        "INSERT INTO t VALUES (1, 'Caf\xE9 \x80', 12.34, 0.1, '2026-11-21', '2026-11-21 10:20:30', 1, x'00FF');"
        "INSERT INTO t VALUES (2, NULL, NULL, NULL, NULL, NULL, NULL, NULL)");
    const auto query = Query("SELECT * FROM t ORDER BY id");
    EXPECT_EQ(query->FieldByName("name")->AsString(), "Caf\xE9 \x80");
    EXPECT_EQ(query->FieldByName("name")->Size(), 40);
    EXPECT_EQ(query->FieldByName("price")->AsCurrency().Val, 123400);
    EXPECT_EQ(query->FieldByName("rate")->AsFloat(), 0.1);
    EXPECT_EQ(query->FieldByName("day")->DisplayText(), "11/21/2026");
    EXPECT_EQ(query->FieldByName("at")->DisplayText(), "11/21/2026 10:20:30");
    EXPECT_TRUE(query->FieldByName("ok")->AsBoolean());
    EXPECT_EQ(query->FieldByName("picture")->RawBytes(), std::string_view("\x00\xFF", 2));
    query->Next();
    for (int i = 1; i < query->FieldCount(); ++i) EXPECT_TRUE(query->Fields(i)->IsNull()) << i;
    EXPECT_EQ(query->RecordCount(), 2);
}

TEST_F(Sqlite, ComputedColumnsTakeTheTypeOfTheirFirstValue) {
    const auto query = Query("SELECT 1 + 1 AS a, 'x' AS b, 1.5 AS c");
    EXPECT_EQ(query->FieldByName("a")->DataType(), ftLargeint);
    EXPECT_EQ(query->FieldByName("a")->AsInteger(), 2);
    EXPECT_EQ(query->FieldByName("b")->DataType(), ftString);
    EXPECT_EQ(query->FieldByName("c")->AsFloat(), 1.5);
    EXPECT_EQ(query->RecordCount(), 1);
}

TEST_F(Sqlite, TextThatTheFrameworkCannotShowIsKeptAsItIs) {
    const auto query = Query("SELECT char(937, 233) AS t");
    EXPECT_EQ(query->FieldByName("t")->AsString(), "?\xE9");
    EXPECT_EQ(query->FieldByName("t")->RawBytes(), "\xCE\xA9\xC3\xA9");
}

TEST_F(Sqlite, ATableIsReadWhole) {
    connection_.Execute("CREATE TABLE \"or\"\"der lines\" (a INT); INSERT INTO \"or\"\"der lines\" VALUES (7)");
    TADOTable table(nullptr);
    table.SetConnection(&connection_);
    table.SetTableName("or\"der lines");
    table.Open();
    EXPECT_EQ(table.FieldByName("a")->AsInteger(), 7);
    TStringList names;
    connection_.GetTableNames(names);
    EXPECT_EQ(names.Text(), "or\"der lines\r\n");
}

TEST_F(Sqlite, ErrorsGiveTheEnginesReason) {
    EXPECT_EQ(MessageOf([&] { Query("SELECT nope"); }), "EDatabaseError: The statement failed: no such column: nope");
    EXPECT_EQ(MessageOf([&] { Query("  "); }), "EDatabaseError: Missing SQL property");
    TADOQuery query(nullptr);
    query.SQL()->SetText("SELECT 1");
    EXPECT_EQ(MessageOf([&] { query.Open(); }), "EDatabaseError: Missing Connection or ConnectionString");
}

TEST_F(Sqlite, AFileThatIsNoDatabaseSaysSo) {
    std::ofstream(file_) << "this is no database, and long enough to be looked at as one by the engine itself....";
    EXPECT_EQ(MessageOf([&] { connection_.Open(); }),
              "EDatabaseError: Data Source=" + file_ +
                  ": the file is not a database. Look whether it is the right one (file is not a database)");
    EXPECT_FALSE(connection_.Connected());
}

TEST_F(Sqlite, AFolderThatIsNotThereSaysSo) {
    connection_.SetConnectionString("Provider=SQLite;Data Source=/no/such/folder/x.db");
    EXPECT_EQ(MessageOf([&] { connection_.Open(); }),
              "EDatabaseError: Data Source=/no/such/folder/x.db: the file cannot be opened. Look at its name and its "
              "folder, and "
              "whether you may read and write both (unable to open database file)");
}

TEST_F(Sqlite, AnUnknownProviderIsNamed) {
    connection_.SetConnectionString("Provider=Nope;Password=secret");
    EXPECT_EQ(MessageOf([&] { connection_.Open(); }),
              "EDatabaseError: Provider=Nope: there is no such provider; there are: SQLite");
}

TEST_F(Sqlite, ClosingTheConnectionClosesItsDataSets) {
    const auto query = Query("SELECT 1");
    connection_.Close();
    EXPECT_FALSE(query->Active());
    query->Open();
    EXPECT_TRUE(connection_.Connected());
}

TEST_F(Sqlite, AnotherStatementClosesTheResult) {
    const auto query = Query("SELECT 1");
    query->SQL()->Add("AS x");
    EXPECT_FALSE(query->Active());
}

TEST_F(Sqlite, AStoredQueryOpensWhenItsFormIsLoaded) {
    connection_.Execute("CREATE TABLE t (a INT); INSERT INTO t VALUES (5)");
    RegisterClass(&TADOQuery::StaticClass());
    TMemoryStream form;
    TextToBinary("object Q: TADOQuery\n  Active = True\n  ConnectionString = 'Provider=SQLite;Data Source=" + file_ +
                     "'\n  SQL.Strings = (\n    'SELECT a'\n    'FROM t')\nend",
                 form);
    form.SetPosition(0);
    const std::unique_ptr<TComponent> root(ReadComponentFromStream(form, nullptr));
    UnRegisterClass(&TADOQuery::StaticClass());
    auto* query = ObjectCast<TADOQuery>(root.get());
    ASSERT_TRUE(query && query->Active());
    EXPECT_EQ(query->FieldByName("a")->AsInteger(), 5);
}

TEST_F(Sqlite, OpeningALargeTableFetchesLittle) {
    connection_.Execute(
        "CREATE TABLE big (a INTEGER PRIMARY KEY, b TEXT);"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000) INSERT INTO big SELECT i, "
        "'row ' || i FROM n");
    const auto query = Query("SELECT * FROM big");
    EXPECT_LT(query->RecordsFetched(), 1000);
    query->Last();
    EXPECT_EQ(query->FieldByName("b")->AsString(), "row 50000");
}

TEST(ConnectionStrings, QuotesBlanksAndCase) {
    const ConnectionString settings("provider = SQLite ; Data Source=\"a;\"\"b\" ; X='it''s';;X=last");
    EXPECT_EQ(settings.Value("Provider"), "SQLite");
    EXPECT_EQ(settings.Value("data source"), "a;\"b");
    EXPECT_EQ(settings.Value("x"), "last");
    EXPECT_EQ(settings.Value("none", "else"), "else");
}

TEST(ConnectionStrings, ErrorsNameTheKeyAndNeverAPassword) {
    const auto messageOf = [](const AnsiString& text) {
        try {
            ConnectionString settings(text);
        } catch (const EDatabaseError& error) {
            return error.Message();
        }
        return AnsiString();
    };
    EXPECT_EQ(messageOf("Data Source=\"a"), "The connection string's value of Data Source has no closing quote");
    EXPECT_EQ(messageOf("abc"), "The connection string has a part without a value (\"=\" is missing)");
    EXPECT_EQ(messageOf("=x"), "The connection string has a value without a key before \"=\"");
    EXPECT_EQ(ConnectionString("A=1;Password=secret;pwd=s2").ForMessages(), "A=1;Password=***;pwd=***");
}
