#include <gtest/gtest.h>

#include <filesystem>

#include "platform/access/ado.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "providers/odbc/connection.h"
#include "support/errors.h"

using namespace vyn;

// What is the driver manager's own; what every engine has to do stands in tests/conformance.
class Odbc : public testing::Test {
  protected:
    Odbc() {
        RegisterOdbcProvider();
        FormatSettings() = InvariantFormatSettings();
        file_ = testing::TempDir() + "vyn-odbc.db";
        std::filesystem::remove(file_);
        connection.SetConnectionString("Provider=MSDASQL;Driver=SQLite3;Database=" + file_);
        connection.Execute("CREATE TABLE t (id INTEGER PRIMARY KEY, nom VARCHAR(20), nota VARCHAR(20))");
        connection.Execute("INSERT INTO t VALUES (1, 'a', 'b')");
    }
    std::unique_ptr<TADOQuery> Query(const AnsiString& sql) {
        auto query = std::make_unique<TADOQuery>(nullptr);
        query->SetConnection(&connection);
        query->SQL()->SetText(sql);
        query->Open();
        return query;
    }

    std::string file_;
    TADOConnection connection{nullptr};
};

TEST_F(Odbc, ConnectionStringsReachTheDriverInItsWords) {
    TADOConnection other(nullptr);
    const auto messageOf = [&](const AnsiString& text) {
        other.Close();
        other.SetConnectionString(text);
        return MessageOf([&] { other.Open(); });
    };
    EXPECT_EQ(messageOf("Provider=MSDASQL"), "EDatabaseError: Provider=MSDASQL: a Data Source or a Driver is wanted");
    EXPECT_EQ(messageOf("Provider=MSDASQL;Data Source=nowhere;Password=secret"),
              "EDatabaseError: Data Source=nowhere: Data source name not found and no default driver specified");
    const AnsiString noDriver = messageOf("Provider=MSDASQL;Driver=NoSuchDriver;PWD=secret");
    EXPECT_EQ(noDriver.substr(0, 37), "EDatabaseError: Driver=NoSuchDriver: ") << noDriver;
    EXPECT_EQ(noDriver.find("secret"), AnsiString::npos);
    EXPECT_EQ(messageOf("Provider=MSDASQL;Extended Properties=\"Driver=SQLite3;Database=" + file_ + "\""), "no error");
    EXPECT_EQ(other.Execute("UPDATE t SET nom = 'c'"), 1);
    EXPECT_EQ(messageOf("Provider=MSDASQL;Driver={SQLite3};Database=" + file_), "no error");
}

TEST_F(Odbc, ColumnsAreWrittenUnderTheirOwnNames) {
    const auto query = Query("SELECT id, nom AS nota, [nota] nom, t.nota AS [third], nom & '' AS id2 FROM t");
    query->Edit();
    query->FieldByName("nota")->SetAsString("to nom");
    query->Post();
    EXPECT_EQ(Query("SELECT nom FROM t")->Fields(0)->AsString(), "to nom");
    query->Edit();
    query->FieldByName("nom")->SetAsString("to nota");
    query->Post();
    EXPECT_EQ(Query("SELECT nota FROM t")->Fields(0)->AsString(), "to nota");
    query->Edit();
    EXPECT_EQ(MessageOf([&] { query->FieldByName("id2")->SetAsString("x"); }),
              "EDatabaseError: Field 'id2' cannot be modified");
}

TEST_F(Odbc, TextsThatTheDriverCannotTakeAreRefused) {
    EXPECT_EQ(MessageOf([&] { connection.Execute(AnsiString("SELECT '\0'", 10)); }),
              "EDatabaseError: The database cannot hold a NUL character in a text or name");
    TADOTable table(nullptr);
    table.SetConnection(&connection);
    table.SetTableName("t");
    table.Open();
    table.Edit();
    table.FieldByName("nom")->SetRawBytes("\xFF");
    EXPECT_EQ(MessageOf([&] { table.Post(); }),
              "EDatabaseError: A text is not well-formed and cannot be stored in this database");
}

TEST_F(Odbc, PartsOfTransactionsAreTakenBack) {
    connection.BeginTrans();
    connection.Execute("INSERT INTO t VALUES (2, 'x', 'y')");
    connection.BeginTrans();
    connection.Execute("DELETE FROM t");
    connection.RollbackTrans();
    connection.CommitTrans();
    EXPECT_EQ(Query("SELECT COUNT(*) FROM t")->Fields(0)->AsInteger(), 2);
}

TEST(OdbcEngines, AreKnownByTheirNames) {
    using odbc_provider::EngineOf;
    const auto limited = [](const char* name) {
        return TranslateSql("SELECT TOP 3 [a b] FROM t WHERE ok = True AND d = #1/2/2001 10:20#",
                            EngineOf(name).Dialect, ParameterParsing::On)
            .Text;
    };
    EXPECT_EQ(limited("SQLite"), "SELECT \"a b\" FROM t WHERE ok = True AND d = '2001-01-02 10:20:00' LIMIT 3");
    EXPECT_EQ(limited("PostgreSQL"),
              "SELECT \"a b\" FROM t WHERE ok = True AND d = TIMESTAMP '2001-01-02 10:20:00' LIMIT 3");
    EXPECT_EQ(limited("Microsoft SQL Server"),
              "SELECT TOP 3 [a b] FROM t WHERE ok = 1 AND d = {ts '2001-01-02 10:20:00'}");
    EXPECT_EQ(limited("ACCESS"), "SELECT TOP 3 [a b] FROM t WHERE ok = 1 AND d = {ts '2001-01-02 10:20:00'}");
    EXPECT_EQ(limited("MariaDB"), "SELECT `a b` FROM t WHERE ok = True AND d = {ts '2001-01-02 10:20:00'} LIMIT 3");
    EXPECT_EQ(limited("Another Engine"),
              "SELECT \"a b\" FROM t WHERE ok = True AND d = {ts '2001-01-02 10:20:00'} FETCH FIRST 3 ROWS ONLY");
    EXPECT_FALSE(EngineOf("ACCESS").HasSavepoints);
    EXPECT_EQ(TranslateSql("SELECT a & b", EngineOf("ACCESS").Dialect, ParameterParsing::On).Text, "SELECT a & b");
    EXPECT_EQ(TranslateSql("SELECT a & b", EngineOf("MySQL").Dialect, ParameterParsing::On).Text,
              "SELECT CONCAT(a , b)");
}
