// Legacy databases through the program.
#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "legacy/files.h"
#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

using testing::HasSubstr;

class Import : public ProgramTest {
  protected:
    static std::string Old(const std::string& name) { return legacy_files::Path(name + ".mdb"); }
    // The first value of a query of the new database.
    static std::string ValueOf(const std::string& file, const std::string& sql) {
        sqlite3* database = nullptr;
        sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_stmt* statement = nullptr;
        std::string value;
        if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK ||
            sqlite3_step(statement) != SQLITE_ROW)
            ADD_FAILURE() << file << ": " << sqlite3_errmsg(database);
        else
            value = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        sqlite3_finalize(statement);
        sqlite3_close(database);
        return value;
    }
};

}  // namespace

TEST_F(Import, MakesANewDatabaseAndSaysWhatDidNotComeOver) {
    const Ended ended = Vyn({"import", Old("trade2000"), "-o", File("new.db")});
    EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_EQ(ended.Errors, "");
    EXPECT_EQ(ended.Output, File("new.db") +
                                ": 7 tables, 23 rows, 5 indexes, 3 relations, 2 views\n"
                                "What did not come over as it was:\n"
                                "  value Clients.Crèdit: 2 amounts have more than 15 digits and were rounded\n"
                                "  value Clients.Alta: 1 date lies beyond the calendar and is empty now\n"
                                "  value Clients.Marge: 2 amounts have more than 15 digits and were rounded\n"
                                "  value Preus.Preu: 1 amount has more than 15 digits and was rounded\n"
                                "  default -opcions.Valor: it is calculated (=Now()+1)\n"
                                "  relation Lliure: it was not enforced\n"
                                "  query Amb paràmetre: no such column: Quin nom? "
                                "(SELECT Clients.Nom FROM [Clients] WHERE Clients.Nom=[Quin nom?])\n"
                                "  query No existeix: no such table: main.Perduda (SELECT Perduda.X FROM [Perduda])\n");
    EXPECT_EQ(ValueOf(File("new.db"), "SELECT Nom FROM Clients WHERE Id = 1"), "Ferreteria Núria");
    EXPECT_TRUE(Unfinished(std::filesystem::path(File("new.db")).parent_path()).empty());
}

TEST_F(Import, SaysTheReportAsOneDocument) {
    const Ended ended = Vyn({"import", Old("trade97"), "-o", File("new.db"), "--json"});
    EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
    const auto report = nlohmann::json::parse(ended.Output);
    EXPECT_EQ(report["tables"][0], (nlohmann::json{{"name", "Clients"}, {"rows", 8}}));
    EXPECT_EQ(report["indexes"], 5);
    EXPECT_EQ(report["relations"], 3);
    EXPECT_EQ(report["views"], (nlohmann::json{"Clients actius", "Comandes amb client"}));
    EXPECT_EQ(report["losses"].size(), 8u);
    EXPECT_EQ(report["losses"][7], (nlohmann::json{{"kind", "query"},
                                                   {"object", "No existeix"},
                                                   {"why", "no such table: main.Perduda"},
                                                   {"text", "SELECT Perduda.X FROM [Perduda]"}}));
}

TEST_F(Import, ReplacesADatabaseOnlyWhenToldTo) {
    const std::string there = WriteText("new.db", "mine");
    ExpectFailed(Vyn({"import", Old("trade97"), "-o", there}),
                 "new.db is there already; --force replaces it, with all that was changed in it");
    EXPECT_EQ(ReadBytes(there), "mine");
    EXPECT_EQ(Vyn({"import", Old("trade97"), "-o", there, "--force"}).ExitStatus, 0);
    EXPECT_EQ(ValueOf(there, "SELECT count(*) FROM Clients"), "8");
    WriteText("new.db-wal", "");
    ExpectFailed(Vyn({"import", Old("trade97"), "-o", there, "--force"}),
                 "new.db is open in another program, or was not closed in order");
}

TEST_F(Import, ReadsThePasswordFromStandardInput) {
    ExpectFailed(Vyn({"import", Old("changed2000"), "-o", File("new.db")}), "The file is protected by a password");
    Conditions wrong, right;
    wrong.Input = "porta1\n";
    right.Input = "Porta1\n";
    ExpectFailed(Vyn({"import", Old("changed2000"), "-o", File("new.db"), "--password"}, wrong),
                 "The file is protected by another password");
    EXPECT_EQ(Vyn({"import", Old("changed2000"), "-o", File("new.db"), "--password"}, right).ExitStatus, 0);
    EXPECT_EQ(ValueOf(File("new.db"), "SELECT count(*) FROM Viva"), "9");
}

TEST_F(Import, WhatCannotBeReadOrWrittenIsOneSentenceAndLeavesNothing) {
    ExpectFailed(Vyn({"import", File("none.mdb"), "-o", File("new.db")}), "Cannot open file");
    ExpectFailed(Vyn({"import", WriteText("text.mdb", "hello"), "-o", File("new.db")}),
                 "text.mdb: The file is no legacy database");
    const std::string whole = ReadBytes(Old("trade2000"));
    const std::string cut = WriteText("cut.mdb", whole.substr(0, 100 * 1024));
    ExpectFailed(Vyn({"import", cut, "-o", File("new.db")}), "cut.mdb: The file is damaged: ");
    ExpectFailed(Vyn({"import", Old("trade97"), "-o", File("none/new.db")}), "Cannot create file");
    ExpectFailed(Vyn({"import", Old("trade97"), "-o", std::filesystem::path(File("x")).parent_path().string()}),
                 "It is a folder");
    Conditions full;
    full.FileSizeLimit = 20 * 1024;
    ExpectFailed(Vyn({"import", Old("trade97"), "-o", File("new.db")}, full));
    EXPECT_FALSE(std::filesystem::exists(File("new.db")));
    EXPECT_TRUE(Unfinished(std::filesystem::path(File("x")).parent_path()).empty());
}

TEST_F(Import, BringsOverWhatCanBeReadWhenAsked) {
    std::string bytes = ReadBytes(Old("trade2000"));
    const size_t row = bytes.find("Ferreteria N");
    ASSERT_NE(row, std::string::npos);
    bytes[row / 4096 * 4096 + 14] = static_cast<char>(0xFF);
    const std::string damaged = WriteText("damaged.mdb", bytes);
    ExpectFailed(Vyn({"import", damaged, "-o", File("new.db")}), "The file is damaged");
    const Ended ended = Vyn({"import", damaged, "-o", File("new.db"), "--damaged"});
    EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_THAT(ended.Output, HasSubstr("  damage damaged.mdb: Clients"));
    EXPECT_EQ(ValueOf(File("new.db"), "SELECT count(*) FROM \"Order\""), "4");
}

TEST_F(Import, WrongUsageSaysHow) {
    const Ended ended = Vyn({"import", Old("trade97")});
    EXPECT_EQ(ended.ExitStatus, 2);
    EXPECT_THAT(ended.Errors, HasSubstr("vyn import"));
    EXPECT_THAT(Vyn({"completion", "bash"}).Output, HasSubstr("import) options=\"--output --force"));
}

TEST_F(Import, AnApplicationOpensOverALegacyDatabase) {
    const Ended ended =
        Vyn({"sql", VYN_SAMPLE, "5", "--database", "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + Old("trade97")});
    EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
}

}  // namespace vyn::scenarios
