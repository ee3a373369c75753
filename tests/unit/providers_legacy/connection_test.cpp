// Legacy files behind the connection strings of stored applications.
#include "providers/legacy/connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "legacy/files.h"
#include "platform/access/ado.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"

using namespace vyn;
namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;

class LegacyConnection : public testing::Test {
  protected:
    LegacyConnection() {
        RegisterSqliteProvider();
        RegisterLegacyProvider();
        FormatSettings() = InvariantFormatSettings();
        folder_ = testing::TempDir() + "vyn-legacy-" + std::to_string(::getpid()) + "/";
        fs::create_directories(folder_);
        ::setenv("XDG_DATA_HOME", (folder_ + "data").c_str(), 1);
        Take("trade2000.mdb");
    }
    ~LegacyConnection() override {
        connection_.SetConnected(false);
        fs::remove_all(folder_);
    }

    void Take(const std::string& name) {
        legacy_files::Write(folder_ + "old.mdb", legacy_files::Bytes(legacy_files::Path(name)));
    }
    static AnsiString StringOf(const std::string& file) {
        return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file;
    }
    void Open() {
        connection_.SetConnected(false);
        connection_.SetConnectionString(StringOf(folder_ + "old.mdb"));
        connection_.SetConnected(true);
    }
    std::vector<AnsiString> Values(const AnsiString& sql, const AnsiString& field) {
        TADOQuery query(nullptr);
        query.SetConnection(&connection_);
        query.SQL()->SetText(sql);
        std::vector<AnsiString> values;
        for (query.Open(); !query.Eof(); query.Next()) values.push_back(query.FieldByName(field)->AsString());
        return values;
    }
    std::string MessageOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const Exception& error) {
            std::string message = AnsiToUtf8(AnsiString(error.ClassName()) + ": " + error.Message());
            for (size_t at; (at = message.find(folder_)) != std::string::npos;) message.replace(at, folder_.size(), "");
            return message;
        }
        return "no error";
    }
    std::vector<std::string> Copies() const {
        std::vector<std::string> names;
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(folder_ + "data/vyn/legacy", ignored))
            names.push_back(entry.path().filename().string());
        return names;
    }

    std::string folder_;
    TADOConnection connection_{nullptr};
};

TEST_F(LegacyConnection, AnswersQueriesAsTheFrameworkWritesThem) {
    Open();
    EXPECT_THAT(Values("SELECT TOP 2, [Clients].[Nom] FROM [Clients] INNER JOIN [Order] ON "
                       "[Clients].[Id] = [Order].[Client] WHERE [Order].[Data] >= #01/01/2001# "
                       "ORDER BY [Order].[Data]"_w,
                       "Nom"),
                ElementsAre("L'Àngel & Fills"_w, "Ferreteria Núria"_w));
    EXPECT_THAT(Values("SELECT Id FROM Clients WHERE Nom LIKE '*núria'"_w, "Id"), ElementsAre("1"));
    EXPECT_THAT(Values("SELECT Alta FROM Clients WHERE Id = 4", "Alta"), ElementsAre("12/31/9999 23:59:59"));
    EXPECT_THAT(Values("SELECT SUM([Quant val?]) AS Total FROM [Línies d'ordre]"_w, "Total"), ElementsAre("2.2"));
    EXPECT_THAT(Values("SELECT Id FROM Clients WHERE Actiu = True AND Població IS NULL"_w, "Id"), ElementsAre("3"));
}

TEST_F(LegacyConnection, FieldsHaveTheTypesOfTheirColumns) {
    Open();
    TADOTable table(nullptr);
    table.SetConnection(&connection_);
    table.SetTableName("Clients");
    table.Open();
    EXPECT_EQ(table.FieldByName("Id")->DataType(), ftAutoInc);
    EXPECT_EQ(table.FieldByName("Nom")->DataType(), ftString);
    EXPECT_EQ(table.FieldByName("Nom")->Size(), 40);
    EXPECT_EQ(table.FieldByName("Crèdit"_w)->DataType(), ftCurrency);
    EXPECT_EQ(table.FieldByName("Alta")->DataType(), ftDateTime);
    EXPECT_EQ(table.FieldByName("Actiu")->DataType(), ftBoolean);
    EXPECT_EQ(table.FieldByName("Notes")->DataType(), ftMemo);
    EXPECT_EQ(table.FieldByName("Foto")->DataType(), ftBlob);
    EXPECT_EQ(table.FieldByName("Codi")->DataType(), ftBlob);
    EXPECT_EQ(table.FieldByName("Nivell")->DataType(), ftSmallint);
    EXPECT_EQ(table.FieldByName("Mida")->DataType(), ftFloat);
}

TEST_F(LegacyConnection, ListsTablesAndViews) {
    Open();
    TStringList names;
    connection_.GetTableNames(names);
    EXPECT_EQ(
        names.CommaText(),
        "-opcions,Ampla,Buida,Clients,\"Clients actius\",\"Comandes amb client\",\"Línies d'ordre\",Order,Preus"_w);
}

TEST_F(LegacyConnection, WritingSaysWhatToDoInstead) {
    Open();
    const std::string refusal =
        "EDatabaseError: old.mdb is a legacy database, which is read only: import it (vyn import old.mdb -o NEW.db) "
        "and "
        "open the new one";
    EXPECT_EQ(MessageOf([&] { connection_.Execute("DELETE FROM Clients"); }), refusal);
    TADOQuery query(nullptr);
    query.SetConnection(&connection_);
    query.SQL()->SetText("UPDATE Clients SET Nom = 'x'");
    EXPECT_EQ(MessageOf([&] { query.ExecSQL(); }), refusal);
    TADOTable table(nullptr);
    table.SetConnection(&connection_);
    table.SetTableName("Order");
    table.Open();
    EXPECT_EQ(MessageOf([&] {
                  table.Edit();
                  table.FieldByName("From")->SetAsString("z");
                  table.Post();
              }),
              refusal);
    table.Cancel();
    connection_.SetConnected(false);
    EXPECT_EQ(legacy_files::Bytes(folder_ + "old.mdb"), legacy_files::Bytes(legacy_files::Path("trade2000.mdb")));
}

TEST_F(LegacyConnection, TheCopyIsKeptWhileTheFileStaysAndRefreshedWhenItChanges) {
    Open();
    const auto first = Copies();
    ASSERT_EQ(first.size(), 1u);
    const auto made = fs::last_write_time(folder_ + "data/vyn/legacy/" + first[0]);
    Open();
    EXPECT_EQ(Copies(), first);
    EXPECT_EQ(fs::last_write_time(folder_ + "data/vyn/legacy/" + first[0]), made);
    connection_.SetConnected(false);
    Take("trade97.mdb");
    Open();
    const auto second = Copies();
    ASSERT_EQ(second.size(), 1u);
    EXPECT_NE(second, first);
    EXPECT_THAT(Values("SELECT Foto FROM Clients WHERE Id = 1", "Foto")[0].size(), 9000u);
    connection_.SetConnected(false);
    // The same size, and another time.
    fs::last_write_time(folder_ + "old.mdb", fs::last_write_time(folder_ + "old.mdb") + std::chrono::hours(1));
    Open();
    EXPECT_NE(Copies(), second);
}

TEST_F(LegacyConnection, CopiesAreTheUsersAlone) {
    Open();
    struct stat about {};
    ASSERT_EQ(::stat((folder_ + "data/vyn/legacy").c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777, 0700u);
}

TEST_F(LegacyConnection, AsksForThePasswordAlsoWhereTheCopyIsThere) {
    Take("changed2000.mdb");
    const std::string wanted = "EDatabaseError: Data Source=old.mdb: The file is protected by a password";
    EXPECT_EQ(MessageOf([&] { Open(); }), wanted);
    connection_.SetConnectionString(StringOf(folder_ + "old.mdb") + ";Jet OLEDB:Database Password=Porta1");
    connection_.SetConnected(true);
    EXPECT_THAT(Values("SELECT Text FROM Viva WHERE Id = 8", "Text"), ElementsAre("fila 8"));
    EXPECT_EQ(MessageOf([&] { Open(); }), wanted);
}

TEST_F(LegacyConnection, OpensFilesOfTheEmbeddedEngineForWriting) {
    legacy_files::Write(folder_ + "old.mdb", "");
    fs::remove(folder_ + "old.mdb");
    connection_.SetConnectionString("Provider=SQLite;Data Source=" + folder_ + "old.mdb");
    connection_.Execute("CREATE TABLE t (a INTEGER)");
    Open();
    connection_.Execute("INSERT INTO t VALUES (5)");
    EXPECT_THAT(Values("SELECT a FROM t", "a"), ElementsAre("5"));
    EXPECT_THAT(Copies(), testing::IsEmpty());
}

TEST_F(LegacyConnection, SaysWhatIsNoDatabase) {
    legacy_files::Write(folder_ + "old.mdb", "hello");
    EXPECT_EQ(MessageOf([&] { Open(); }),
              "EDatabaseError: Data Source=old.mdb: the file is no database that can be opened");
    fs::remove(folder_ + "old.mdb");
    EXPECT_EQ(MessageOf([&] { Open(); }), "EDatabaseError: Data Source=old.mdb: the file does not exist");
    legacy_files::Write(folder_ + "old.mdb", legacy_files::Bytes(legacy_files::Path("trade97.mdb")).substr(0, 30000));
    EXPECT_EQ(
        MessageOf([&] { Open(); }),
        "EDatabaseError: Data Source=old.mdb: The file is damaged: it ends inside a page: it is cut short, or still "
        "being written");
    EXPECT_THAT(Copies(), testing::IsEmpty());
}

}  // namespace
