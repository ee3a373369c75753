// `vyn sql`: the statements of a node's queries, with parameters from the command line.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "scenarios/program.h"

namespace vyn::scenarios {

using Json = nlohmann::json;

namespace {

class Sql : public ProgramTest {
  protected:
    // An application whose node 2 is a form with these components.
    std::string FormWith(const std::string& components) const {
        WriteText("one/application.json", R"({
  "format": 54,
  "saved": "2026-11-21T10:00:00",
  "components": [
    {"id": 1, "type": 2, "name": "Fitxa", "file": "components/1.form"}
  ],
  "tree": [
    {"id": 1, "child": 1, "component": 0, "type": 0, "name": "Mostra", "nodes": [
      {"id": 2, "child": 1, "component": 1, "type": 2, "name": "Fitxa de prova", "nodes": []},
      {"id": 3, "child": 2, "component": 0, "type": 4, "name": "Res", "nodes": []}
    ]}
  ],
  "resources": []
}
)");
        WriteText("one/components/1.form",
                  "object Fitxa: TCustomFRM\n  Width = 300\n  Height = 200\n" + components + "end\n");
        return File("one");
    }
    Ended Of(const std::string& application, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"sql", application, "2"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Vyn(arguments);
    }
};

constexpr char kClients[] = R"(  object QryClients: TQuerySQL
    FieldsSQL.Strings = (
      'ID=C.ID,"","","",0,"",FALSE,C.ID'
      'NOM=NOM,"","","",0,"",FALSE,""')
    FromSQL = 'CLIENTS C'
    WhereSQL = 'POBLACIO = ¡PRM$(POBLACIO,'#39#39')¡ AND ALTA > ¡DATA¡'
    CampOrdreSQL = 'ID'
  end
)";
constexpr char kTotals[] = R"(  object QryTotals: TQuerySQL
    FieldsSQL.Strings = (
      'TOTAL=SUM(IMPORT)')
    FromSQL = 'FACTURES'
    GroupBySQL = 'CLIENT'
    ConsultaDeTotals = True
  end
)";

}  // namespace

TEST_F(Sql, PrintsEachQueryWithItsSixLinesInTheFormsOrder) {
    const std::string file = FormWith(std::string(kClients) + "  object Etiqueta: TLabel\n  end\n" + kTotals);
    const Ended ended = Of(file, {"POBLACIO='Sant Boi d''Empordà'", "DATA=2026-11-21T10:20:30"});
    EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_EQ(ended.Errors, "");
    EXPECT_EQ(ended.Output,
              "-- QryClients\n"
              "SELECT C.ID AS ID, NOM\n"
              "FROM CLIENTS C\n"
              "WHERE POBLACIO = 'Sant Boi d''Empordà' AND ALTA > #11/21/2026 10::20::30#\n"
              "\n"
              "\n"
              "ORDER BY C.ID\n"
              "-- QryTotals\n"
              "SELECT SUM(IMPORT) AS TOTAL\n"
              "FROM FACTURES\n"
              "\n"
              "GROUP BY CLIENT\n"
              "\n"
              "\n");
}

TEST_F(Sql, PrintsOneJsonDocument) {
    const Ended ended = Of(FormWith(std::string(kClients) + kTotals), {"--json", "POBLACIO=Reus", "DATA=null"});
    ASSERT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_EQ(Json::parse(ended.Output), Json::parse(R"([
        {"name": "QryClients", "lines": ["SELECT C.ID AS ID, NOM", "FROM CLIENTS C",
         "WHERE POBLACIO = 'Reus' AND ALTA > NULL", "", "", "ORDER BY C.ID"]},
        {"name": "QryTotals", "lines": ["SELECT SUM(IMPORT) AS TOTAL", "FROM FACTURES", "", "GROUP BY CLIENT", "", ""]}])"));
}

TEST_F(Sql, WithoutParametersTheDefaultsStand) {
    EXPECT_THAT(Of(FormWith(kClients)).Output, testing::HasSubstr("\nWHERE POBLACIO =  AND ALTA > DATA\n"));
}

TEST_F(Sql, WhatIsGivenCountsMoreThanWhatTheScreenSets) {
    // The screen's own rule puts the year of its edit box there when it opens.
    const Ended printed = Vyn({"sql", VYN_SAMPLE, "18", "ANY=2025"});
    EXPECT_EQ(printed.ExitStatus, 0);
    EXPECT_NE(printed.Output.find("LIKE '2025' || '%'"), std::string::npos) << printed.Output;
}

TEST_F(Sql, OfAFormWithoutQueriesIsNothing) {
    const std::string file = FormWith("");
    EXPECT_EQ(Of(file).Output, "");
    EXPECT_EQ(Of(file, {"--json"}).Output, "[]\n");
    EXPECT_EQ(Of(file).ExitStatus, 0);
}

TEST_F(Sql, OfAGivenStatementPutsTheValuesIn) {
    const std::string file = FormWith(R"(  object Dades: TADOQuery
    SQL.Strings = (
      'SELECT * FROM CLIENTS'
      'WHERE ID = ¡CODI¡')
  end
  object Directa: TQuerySQL
    QryDataSet = Dades
    SqlType = sql_DirectText
  end
)");
    const Ended ended = Of(file, {"CODI=7"});
    EXPECT_EQ(ended.Output, "-- Directa\nSELECT * FROM CLIENTS\nWHERE ID = 7\n") << ended.Told();
}

TEST_F(Sql, TheDatabaseIsNotOpenedForIt) {
    const std::string database = "Provider=SQLite;Data Source=" + File("none/none.db");
    const Ended ended = Of(FormWith(kClients), {"--database", database, "DATA=null"});
    EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
    EXPECT_THAT(ended.Output, testing::HasSubstr("ALTA > NULL"));
}

TEST_F(Sql, ATableHasNoStatement) {
    const Ended ended =
        Of(FormWith("  object Taula: TQuerySQL\n    FromSQL = 'T'\n    DataSetType = ds_Table\n  end\n"));
    EXPECT_EQ(ended.Output, "-- Taula\n") << ended.Told();
}

TEST_F(Sql, AFunctionThatFailsIsTheQuerysError) {
    const std::string file = FormWith("  object Mala: TQuerySQL\n    WhereSQL = '¡NOPE(1)¡'\n  end\n");
    ExpectFailed(Of(file), "vyn: TQuerySQL ERROR - Mala\nNot valid function in TQuerySQL: ¡NOPE¡");
}

TEST_F(Sql, ANodeWithoutAComponentFails) {
    ExpectFailed(Vyn({"sql", FormWith(""), "3"}), "opens nothing");
    ExpectFailed(Vyn({"sql", FormWith(""), "99"}), "99");
}

TEST_F(Sql, AGuardedNodeNeedsItsGuard) { ExpectFailed(Vyn({"sql", VYN_SAMPLE, "10"}), "guard, the node 9"); }

TEST_F(Sql, AnArgumentWithoutAValueIsWrongUsage) {
    const Ended ended = Of(FormWith(""), {"NAME"});
    EXPECT_EQ(ended.ExitStatus, 2) << ended.Told();
    EXPECT_THAT(ended.Errors, testing::HasSubstr("Usage: vyn sql"));
}

TEST_F(Sql, AParametersNameIsChecked) {
    ExpectFailed(Of(FormWith(""), {"a-b=1"}), "Character \"-\" is not a valid char in NomParametre a-b");
}

}  // namespace vyn::scenarios
