// Whole files, held against the listings that their maker wrote beside them.
#include "providers/legacy/import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <map>

#include <fmt/format.h>

#include "legacy/files.h"
#include "platform/text/exceptions.h"
#include "programs/tools/digest.h"
#include "programs/tools/json_text.h"

using namespace vyn;
using namespace vyn::legacy;

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

// The embedded engine itself, without the house's own reading of it.
class Database {
  public:
    explicit Database(const std::string& file) {
        EXPECT_EQ(sqlite3_open_v2(file.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK) << file;
    }
    ~Database() { sqlite3_close(database_); }
    Database(const Database&) = delete;

    // Each value as its storage class and text; null stays null.
    std::vector<Json> Rows(const std::string& sql) {
        std::vector<Json> rows;
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
            ADD_FAILURE() << sql << ": " << sqlite3_errmsg(database_);
            return rows;
        }
        int result;
        while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
            Json row = Json::array();
            for (int i = 0; i < sqlite3_column_count(statement); ++i) row.push_back(Cell(statement, i));
            rows.push_back(std::move(row));
        }
        EXPECT_EQ(result, SQLITE_DONE) << sqlite3_errmsg(database_);
        sqlite3_finalize(statement);
        return rows;
    }
    // The one column of a query.
    std::vector<std::string> Texts(const std::string& sql) {
        std::vector<std::string> texts;
        for (const Json& row : Rows(sql)) texts.push_back(row[0].is_null() ? "null" : row[0].get<std::string>());
        return texts;
    }
    int Execute(const std::string& sql) { return sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr); }

  private:
    static Json Cell(sqlite3_stmt* statement, int column) {
        switch (sqlite3_column_type(statement, column)) {
            case SQLITE_INTEGER:
                return fmt::format("integer {}", sqlite3_column_int64(statement, column));
            case SQLITE_FLOAT:
                return fmt::format("real {:.17g}", sqlite3_column_double(statement, column));
            case SQLITE_TEXT: {
                const std::string text = Bytes(sqlite3_column_text(statement, column), statement, column);
                return text.size() > 100 ? fmt::format("text {} {}", text.size(), Sha256(text)) : "text " + text;
            }
            case SQLITE_BLOB: {
                const std::string bytes = Bytes(sqlite3_column_blob(statement, column), statement, column);
                return fmt::format("blob {} {}", bytes.size(), Sha256(bytes));
            }
            default:
                return nullptr;
        }
    }
    static std::string Bytes(const void* bytes, sqlite3_stmt* statement, int column) {
        const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
        return bytes ? std::string(static_cast<const char*>(bytes), size) : std::string();
    }
    sqlite3* database_ = nullptr;
};

std::string Quoted(const std::string& name) {
    std::string text = "\"";
    for (const char each : name) text += each == '"' ? std::string("\"\"") : std::string(1, each);
    return text + "\"";
}

std::vector<std::string> Strings(const Json& list) { return list.get<std::vector<std::string>>(); }

class LegacyImport : public testing::Test {
  protected:
    LegacyImport() {
        folder_ = testing::TempDir() + "vyn-import-" + std::to_string(::getpid()) + "/";
        std::filesystem::create_directories(folder_);
    }
    ~LegacyImport() override { std::filesystem::remove_all(folder_); }

    std::string File(const std::string& name) const { return folder_ + name; }
    ImportReport Import(const std::string& name, Damage damage = Damage::Refuse) {
        ImportOptions options;
        options.OnDamage = damage;
        if (name.rfind("changed", 0) == 0) options.Password = legacy_files::kPassword;
        return ImportLegacyFile(legacy_files::Path(name + ".mdb"), File(name + ".db"), options);
    }
    // The import of a file with other bytes.
    std::string MessageOf(const std::string& bytes, const std::string& password = {}) {
        legacy_files::Write(File("old.mdb"), bytes);
        ImportOptions options;
        options.Password = password;
        try {
            ImportLegacyFile(File("old.mdb"), File("new.db"), options);
        } catch (const EDatabaseError& error) {
            EXPECT_FALSE(std::filesystem::exists(File("new.db")));
            return std::string(error.Message());
        }
        return "no error";
    }
    static Json Listing(const std::string& name) {
        return Json::parse(legacy_files::Bytes(legacy_files::Path(name + ".json")));
    }
    static std::vector<std::string> Sentences(const ImportReport& report, const std::string& kind) {
        std::vector<std::string> sentences;
        for (const Loss& loss : report.Losses)
            if (loss.Kind == kind) sentences.push_back(loss.Sentence());
        return sentences;
    }

    std::string folder_;
};

class EveryLegacyFile : public LegacyImport, public testing::WithParamInterface<const char*> {};

TEST_P(EveryLegacyFile, KeepsEveryRowAndValue) {
    const ImportReport report = Import(GetParam());
    Database database(File(GetParam() + std::string(".db")));
    const Json listing = Listing(GetParam());
    ASSERT_EQ(report.Tables.size(), listing["tables"].size());
    for (size_t i = 0; i < report.Tables.size(); ++i) {
        const Json& table = listing["tables"][i];
        const std::string name = table["name"];
        EXPECT_EQ(report.Tables[i].Name, name);
        EXPECT_EQ(report.Tables[i].Rows, static_cast<int64_t>(table["rows"].size())) << name;
        EXPECT_THAT(database.Rows("SELECT * FROM " + Quoted(name)),
                    testing::UnorderedElementsAreArray(table["rows"].get<std::vector<Json>>()))
            << name;
    }
}

TEST_P(EveryLegacyFile, KeepsColumnsKeysAndIndexes) {
    const ImportReport report = Import(GetParam());
    Database database(File(GetParam() + std::string(".db")));
    const Json listing = Listing(GetParam());
    int indexes = 0;
    for (const Json& table : listing["tables"]) {
        const std::string name = table["name"];
        std::string literal = "'";
        for (const char each : name) literal += each == '\'' ? std::string("''") : std::string(1, each);
        literal += "'";
        std::vector<std::string> columns, key;
        for (const Json& each : table["columns"]) columns.push_back("text " + each["name"].get<std::string>());
        for (const std::string& each : Strings(table["key"])) key.push_back("text " + each);
        EXPECT_EQ(database.Texts("SELECT name FROM pragma_table_info(" + literal + ")"), columns) << name;
        EXPECT_EQ(database.Texts("SELECT name FROM pragma_table_info(" + literal + ") WHERE pk > 0 ORDER BY pk"), key);
        for (const Json& index : table["indexes"]) {
            std::vector<std::string> own;
            for (const std::string& each : Strings(index["columns"])) own.push_back("text " + each);
            const std::string wanted = index["name"].get<std::string>();
            // A name that another table had first is lengthened.
            const std::string from = "FROM pragma_index_list(" + literal + ") WHERE name IN (" + "'" + wanted + "', '" +
                                     name + "_" + wanted + "')";
            const auto found = database.Texts("SELECT name " + from);
            ASSERT_EQ(found.size(), 1u) << wanted;
            EXPECT_EQ(database.Texts("SELECT name FROM pragma_index_info('" + found[0].substr(5) + "')"), own);
            const bool gaveWay = name == "Trencada";
            EXPECT_EQ(database.Texts("SELECT \"unique\" " + from)[0],
                      index["unique"] == true && !gaveWay ? "integer 1" : "integer 0");
            ++indexes;
        }
    }
    EXPECT_EQ(report.Indexes, indexes);
}

TEST_P(EveryLegacyFile, IsSoundForTheEmbeddedEngine) {
    Import(GetParam());
    Database database(File(GetParam() + std::string(".db")));
    EXPECT_THAT(database.Texts("PRAGMA integrity_check"), ElementsAre("text ok"));
    EXPECT_THAT(database.Texts("PRAGMA foreign_key_check"), IsEmpty());
    EXPECT_THAT(database.Texts("PRAGMA journal_mode"), ElementsAre("text delete"));
}

INSTANTIATE_TEST_SUITE_P(Files, EveryLegacyFile, testing::Values("trade2000", "trade97", "changed2000", "changed97"));

TEST_F(LegacyImport, KeepsWhatTheDesignSaysOfColumns) {
    Import("trade2000");
    Database database(File("trade2000.db"));
    EXPECT_THAT(database.Texts("SELECT type FROM pragma_table_info('Clients')"),
                ElementsAre("text INTEGER", "text VARCHAR(40)", "text VARCHAR(30)", "text CURRENCY", "text DATETIME",
                            "text BOOLEAN", "text MEMO TEXT", "text BLOB", "text VARCHAR(38)", "text TINYINT",
                            "text FLOAT", "text DOUBLE", "text SMALLINT", "text DECIMAL(18,4)", "text BINARY(20)"));
    EXPECT_THAT(database.Texts("SELECT name FROM pragma_table_info('Clients') WHERE \"notnull\" ORDER BY cid"),
                ElementsAre("text Nom", "text Actiu"));
    EXPECT_THAT(database.Texts("SELECT dflt_value FROM pragma_table_info('Clients') WHERE dflt_value IS NOT NULL"),
                ElementsAre("text 'Girona'", "text 0", "text date('now', 'localtime')", "text 1"));
    EXPECT_THAT(database.Texts("SELECT dflt_value FROM pragma_table_info('-opcions') WHERE cid = 0"),
                ElementsAre("text 'd''aquí \"i\" d''allà'"));
    std::string sql;
    // A line each: long texts are told by their digests.
    for (const char* at : {"1", "2", "3", "4"})
        sql += database.Texts(
            "WITH RECURSIVE line(n, head, rest) AS (SELECT 0, '', sql || char(10) FROM sqlite_master "
            "WHERE name = 'Clients' UNION ALL SELECT n + 1, substr(rest, 1, instr(rest, char(10))), "
            "substr(rest, instr(rest, char(10)) + 1) FROM line WHERE rest <> '') "
            "SELECT head FROM line WHERE n = " +
            std::string(at))[0];
    EXPECT_THAT(sql, AllOf(HasSubstr("( -- Qui compra\n"), HasSubstr(", -- El número del client\n"),
                           HasSubstr("-- Com es diu: l'empresa o \"la casa\"\n")));
}

TEST_F(LegacyImport, UnderstandsTheUsualDefaults) {
    Import("changed2000");
    Database database(File("changed2000.db"));
    EXPECT_THAT(database.Texts("SELECT name || ' ' || dflt_value FROM pragma_table_info('Trencada') "
                               "WHERE dflt_value IS NOT NULL"),
                ElementsAre("text C 'sense cometes'", "text E '2001-02-01'", "text G -1.5",
                            "text H datetime('now', 'localtime')", "text I time('now', 'localtime')", "text J 1"));
}

TEST_F(LegacyImport, NumbersRecordsAsBefore) {
    Import("trade2000");
    Database database(File("trade2000.db"));
    EXPECT_EQ(database.Execute("INSERT INTO Clients (Nom) VALUES ('nou')"), SQLITE_OK);
    EXPECT_THAT(database.Texts("SELECT Id FROM Clients WHERE Nom = 'nou'"), ElementsAre("integer 9"));
}

TEST_F(LegacyImport, KeepsRelationsOfSeveralColumnsAndCascades) {
    const ImportReport report = Import("trade2000");
    EXPECT_EQ(report.Relations, 3);
    Database database(File("trade2000.db"));
    EXPECT_EQ(
        database.Rows("SELECT \"from\", \"table\", \"to\", on_update, on_delete "
                      "FROM pragma_foreign_key_list('Preus') ORDER BY seq"),
        (std::vector<Json>{{"text Ordre", "text Línies d'ordre", "text Ordre", "text NO ACTION", "text CASCADE"},
                           {"text Línia", "text Línies d'ordre", "text Línia", "text NO ACTION", "text CASCADE"}}));
    database.Execute("PRAGMA foreign_keys = ON");
    EXPECT_EQ(database.Execute("DELETE FROM \"Order\" WHERE \"Select\" = 10"), SQLITE_OK);
    EXPECT_THAT(database.Texts("SELECT count(*) FROM Preus"), ElementsAre("integer 0"));
    EXPECT_EQ(database.Execute("UPDATE Clients SET Id = 70 WHERE Id = 2"), SQLITE_OK);
    EXPECT_THAT(database.Texts("SELECT Client FROM \"Order\" WHERE \"Select\" = 11"), ElementsAre("integer 70"));
    EXPECT_EQ(database.Execute("INSERT INTO \"Order\" (\"Select\", Client) VALUES (99, 12345)"), SQLITE_CONSTRAINT);
}

TEST_F(LegacyImport, ComparesTextsWithoutRegardToCaseAsBefore) {
    Import("trade2000");
    Database database(File("trade2000.db"));
    EXPECT_THAT(database.Texts("SELECT Id FROM Clients WHERE Nom = 'FERRETERIA NúRIA'"), ElementsAre("integer 1"));
    EXPECT_EQ(database.Execute("INSERT INTO \"-opcions\" (Nom) VALUES ('X')"), SQLITE_CONSTRAINT);
}

TEST_F(LegacyImport, MakesViewsOfQueriesThatRun) {
    const ImportReport report = Import("trade2000");
    EXPECT_THAT(report.Views, ElementsAre("Clients actius", "Comandes amb client"));
    Database database(File("trade2000.db"));
    EXPECT_EQ(database.Rows("SELECT * FROM \"Comandes amb client\" ORDER BY 2"),
              (std::vector<Json>{{"text Ferreteria Núria", "integer 10"},
                                 {"text L'Àngel & Fills", "integer 11"},
                                 {"text Ferreteria Núria", "integer 13"}}));
    EXPECT_THAT(database.Texts("SELECT Nom FROM \"Clients actius\""), ElementsAre("text Ferreteria Núria"));
}

TEST_F(LegacyImport, MakesViewsOfJoinsTotalsAndQueriesOfQueries) {
    const ImportReport report = Import("changed2000");
    EXPECT_THAT(report.Views, UnorderedElementsAre("Abans", "Esquerra", "Primers", "Sumes", "Tres"));
    Database database(File("changed2000.db"));
    EXPECT_THAT(database.Texts("SELECT Id FROM Abans WHERE Altre = 3"), ElementsAre("integer 3"));
    EXPECT_THAT(database.Texts("SELECT count(*) FROM Esquerra"), ElementsAre("integer 9"));
    EXPECT_THAT(database.Texts("SELECT * FROM Primers"), ElementsAre("text C2's", "text C3's"));
    EXPECT_THAT(database.Rows("SELECT * FROM Sumes"), ElementsAre(Json{"integer 0", "integer 9"}));
    EXPECT_THAT(database.Texts("SELECT * FROM Tres"), ElementsAre("null", "null"));
}

TEST_F(LegacyImport, SaysWhyQueriesStayBehind) {
    EXPECT_THAT(Sentences(Import("trade2000"), "query"),
                ElementsAre("query Amb paràmetre: no such column: Quin nom? "
                            "(SELECT Clients.Nom FROM [Clients] WHERE Clients.Nom=[Quin nom?])",
                            "query No existeix: no such table: main.Perduda (SELECT Perduda.X FROM [Perduda])"));
    EXPECT_THAT(
        Sentences(Import("changed2000"), "query"),
        ElementsAre(
            "query Canvia: it changes records (Viva; 1; Preu)", "query Encreuada: it is a crosstab (Viva)",
            "query Pregunta: it asks for the parameter Quin? (Quin?; Viva; Id)",
            "query Percentatge: it asks for a part in a hundred of its rows (5; Viva; Id)",
            "query Files: it counts records of several tables once (DISTINCTROW) (Viva; Igual; I; Viva.Id)",
            "query Cercle: its joins run in a circle (Viva; Igual; I; Viva.Id; Viva.Id=I.X; Viva; I; I.X=Viva.Id; "
            "I; Viva)",
            "query Fora: it reads another file (altre.mdb; Viva; Id)", "query Buida: nothing is stored of it",
            "query Funcions: no such function: Mid (SELECT Mid(Codi,1,1) FROM [Viva])",
            "query Formulari: unrecognized token: \"!\" (SELECT Id FROM [Viva] WHERE Id=[Forms]![Clients]![Id])"));
}

TEST_F(LegacyImport, SaysWhatElseDidNotComeOver) {
    const ImportReport report = Import("changed2000");
    EXPECT_THAT(Sentences(report, "table"),
                ElementsAre("table Enllaçada: it is linked: its rows stand in another file"));
    EXPECT_THAT(Sentences(report, "rule"),
                ElementsAre("rule Viva: rules of tables stay behind ([Preu]>0 Or [Preu] Is Null)",
                            "rule Trencada.B: rules of columns stay behind (Like \"x*\")"));
    EXPECT_THAT(Sentences(report, "column"),
                ElementsAre("column Trencada.Compta: it is not the table's key: new records are not numbered any more",
                            "column Trencada.B: it was required, and empty in rows that are there"));
    EXPECT_THAT(Sentences(report, "index"),
                ElementsAre("index Trencada.Única: it was unique, and rows that are there are the same in it"));
    EXPECT_THAT(Sentences(report, "relation"),
                ElementsAre("relation A-Trencada: what it refers to in Trencada is no key",
                            "relation Perduda: there is no table NoHiEs",
                            "relation Columna: it names a column that is not there"));
    EXPECT_THAT(Sentences(report, "default"),
                ElementsAre("default Trencada.D: it is calculated (\"a\" & \"b\")",
                            "default Trencada.F: numbers by chance are not made (GenUniqueID())"));
    EXPECT_THAT(Sentences(Import("trade97"), "relation"), ElementsAre("relation Lliure: it was not enforced"));
}

TEST_F(LegacyImport, CountsValuesThatTheEmbeddedEngineCannotKeep) {
    EXPECT_THAT(Sentences(Import("trade2000"), "value"),
                ElementsAre("value Clients.Crèdit: 2 amounts have more than 15 digits and were rounded",
                            "value Clients.Alta: 1 date lies beyond the calendar and is empty now",
                            "value Clients.Marge: 2 amounts have more than 15 digits and were rounded",
                            "value Preus.Preu: 1 amount has more than 15 digits and was rounded"));
}

TEST_F(LegacyImport, SaysThatAnotherProgramMayHaveTheFileOpen) {
    legacy_files::Write(File("old.mdb"), legacy_files::Bytes(legacy_files::Path("trade97.mdb")));
    legacy_files::Write(File("old.ldb"), "PC");
    const ImportReport report = ImportLegacyFile(File("old.mdb"), File("new.db"), {});
    ASSERT_EQ(Sentences(report, "file").size(), 1u);
    EXPECT_THAT(Sentences(report, "file")[0],
                HasSubstr("old.ldb: another program may have the file open; what it has not written yet is not here"));
}

TEST_F(LegacyImport, AsksForThePassword) {
    for (const char* name : {"changed2000.mdb", "changed97.mdb"}) {
        const std::string bytes = legacy_files::Bytes(legacy_files::Path(name));
        EXPECT_EQ(MessageOf(bytes), "The file is protected by a password") << name;
        EXPECT_EQ(MessageOf(bytes, "Porta"), "The file is protected by another password") << name;
    }
}

TEST_F(LegacyImport, RefusesWhatIsNoLegacyFile) {
    EXPECT_EQ(MessageOf(""), "The file is no legacy database");
    EXPECT_EQ(MessageOf("SQLite format 3"), "The file is no legacy database");
    EXPECT_EQ(MessageOf(std::string(100000, 'x')), "The file is no legacy database");
}

TEST_F(LegacyImport, RefusesNewerKindsAndOnesThatAreEncrypted) {
    std::string bytes = legacy_files::Bytes(legacy_files::Path("trade2000.mdb"));
    bytes[0x14] = 7;
    EXPECT_EQ(MessageOf(bytes), "The file is of a newer kind (7) than can be read");
    bytes = legacy_files::Bytes(legacy_files::Path("changed2000.mdb"));
    bytes[0x14] = 2;
    EXPECT_EQ(MessageOf(bytes), "The file is encrypted: take the password off with the program that made it");
}

TEST_F(LegacyImport, RefusesAFileThatIsCutShortAnywhere) {
    for (const char* name : {"trade2000.mdb", "trade97.mdb"}) {
        const std::string bytes = legacy_files::Bytes(legacy_files::Path(name));
        EXPECT_EQ(MessageOf(bytes.substr(0, 3000).substr(0, name[5] == '2' ? 3000 : 1500)), "The file is cut short");
        EXPECT_EQ(MessageOf(bytes.substr(0, bytes.size() - 100)),
                  "The file is damaged: it ends inside a page: it is cut short, or still being written");
        const size_t page = name[5] == '2' ? 4096 : 2048;
        for (size_t size = 3 * page; size < bytes.size(); size += page)
            EXPECT_THAT(MessageOf(bytes.substr(0, size)), testing::StartsWith("The file is damaged: ")) << size;
    }
}

TEST_F(LegacyImport, LeavesOutWhatIsDamagedWhenAskedTo) {
    std::string bytes = legacy_files::Bytes(legacy_files::Path("trade2000.mdb"));
    // The first data page of the catalog's first table gets a row that lies outside it.
    const size_t row = bytes.find("Ferreteria N");
    ASSERT_NE(row, std::string::npos);
    bytes[row / 4096 * 4096 + 14] = static_cast<char>(0xFF);
    bytes[row / 4096 * 4096 + 15] = static_cast<char>(0x1F);
    EXPECT_THAT(MessageOf(bytes), AllOf(testing::StartsWith("The file is damaged: Clients, page "),
                                        HasSubstr("row 1: The file is damaged: a row lies outside its page")));
    ImportOptions options;
    options.OnDamage = Damage::LeaveOut;
    const ImportReport report = ImportLegacyFile(File("old.mdb"), File("new.db"), options);
    EXPECT_EQ(report.Tables.size(), 7u);
    EXPECT_THAT(Sentences(report, "damage"), Contains(HasSubstr("Clients says that it has 8 rows, and 6 are there")));
}

TEST_F(LegacyImport, WritesNothingWhenNothingCanBeRead) {
    const std::string bytes = legacy_files::Bytes(legacy_files::Path("trade2000.mdb"));
    legacy_files::Write(File("old.mdb"), bytes.substr(0, 5 * 4096));
    ImportOptions options;
    options.OnDamage = Damage::LeaveOut;
    EXPECT_THROW(ImportLegacyFile(File("old.mdb"), File("new.db"), options), EDatabaseError);
    EXPECT_FALSE(std::filesystem::exists(File("new.db")));
}

TEST_F(LegacyImport, AnImportThatIsEndedLeavesTheOldFileAndNoHalfOne) {
    legacy_files::Write(File("new.db"), "the old one");
    const auto stop = [](double part) {
        if (part >= 1) throw Exception("enough");
    };
    EXPECT_THROW(ImportLegacyFile(legacy_files::Path("trade97.mdb"), File("new.db"), {}, stop), Exception);
    EXPECT_EQ(legacy_files::Bytes(File("new.db")), "the old one");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
}

TEST_F(LegacyImport, RefusesAFileThatChangesWhileItIsRead) {
    const std::string bytes = legacy_files::Bytes(legacy_files::Path("trade97.mdb"));
    legacy_files::Write(File("old.mdb"), bytes);
    const auto grow = [&](double part) {
        if (part == 0) legacy_files::Write(File("old.mdb"), bytes + bytes);
    };
    try {
        ImportLegacyFile(File("old.mdb"), File("new.db"), {}, grow);
        FAIL();
    } catch (const EDatabaseError& error) {
        EXPECT_EQ(error.Message(), "The file changed while it was read: close it in the other program, and try again");
    }
    EXPECT_FALSE(std::filesystem::exists(File("new.db")));
}

TEST_F(LegacyImport, TellsItsProgressFromBeginningToEnd) {
    std::vector<double> parts;
    ImportLegacyFile(legacy_files::Path("trade97.mdb"), File("new.db"), {},
                     [&](double part) { parts.push_back(part); });
    EXPECT_TRUE(std::is_sorted(parts.begin(), parts.end()));
    EXPECT_EQ(parts.front(), 0);
    EXPECT_EQ(parts.back(), 1);
}

TEST_F(LegacyImport, FilesThatCannotBeOpenedOrMadeAreErrors) {
    EXPECT_THROW(ImportLegacyFile(File("none.mdb"), File("new.db"), {}), EFOpenError);
    EXPECT_THROW(ImportLegacyFile(folder_, File("new.db"), {}), EFOpenError);
    EXPECT_THROW(ImportLegacyFile(legacy_files::Path("trade97.mdb"), File("none/new.db"), {}), EFCreateError);
}

}  // namespace
