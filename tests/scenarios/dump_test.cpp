// `vyn dump` of each kind of stream, written here by the library.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "app/components_vyn.h"
#include "database/dictionaries.h"
#include "foundation/Uparametres.h"
#include "persistence/Utrecursosvyn.h"
#include "platform/streams/text_form.h"
#include "platform/text/windows1252.h"
#include "scenarios/program.h"
#include "tree/Utarbrevyn.h"

namespace vyn::scenarios {

using Json = nlohmann::json;

namespace {

// The SHA-256 digest of "abc", as the standard prints it.
constexpr char kDigestOfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

class Dump : public ProgramTest {
  protected:
    Json Of(const TMemoryStream& stream) {
        const Ended dumped = Vyn({"dump", "--json", WriteText("stream", stream.Bytes())});
        EXPECT_EQ(dumped.ExitStatus, 0) << dumped.Told();
        EXPECT_EQ(dumped.Errors, "");
        return dumped.ExitStatus == 0 ? Json::parse(dumped.Output) : Json();
    }
};

void SaveParameters(TMemoryStream& stream) {
    TParametres parameters(nullptr);
    const std::pair<const char*, Variant> values[] = {{"Res", Variant::Null()},
                                                      {"Unitats", Variant(42)},
                                                      {"Pes", Variant(1.5)},
                                                      {"Preu", Variant(Currency(12.25L))},
                                                      {"Dia", Variant(TDateTime{46000.25})},
                                                      {"Obert", Variant(true)},
                                                      {"Poblacio", Variant(AnsiString("Vilanova i la Geltr\xFA"))}};
    for (const auto& [name, value] : values) {
        parameters.AddParam(name, value);
        parameters.SetWritable(name, true);
    }
    parameters.SaveToStream(&stream);
}

Json ExpectedParameters() {
    return Json::parse(R"([
        {"name": "Res", "type": "null", "value": null},
        {"name": "Unitats", "type": "integer", "value": 42},
        {"name": "Pes", "type": "double", "value": 1.5},
        {"name": "Preu", "type": "currency", "value": 12.25},
        {"name": "Dia", "type": "date", "value": 46000.25},
        {"name": "Obert", "type": "boolean", "value": true},
        {"name": "Poblacio", "type": "string", "value": "Vilanova i la Geltrú"}])");
}

}  // namespace

TEST_F(Dump, OfParameters) {
    TMemoryStream stream;
    SaveParameters(stream);
    EXPECT_EQ(Of(stream), Json({{"kind", "parameters"}, {"values", ExpectedParameters()}}));
}

TEST_F(Dump, OfResources) {
    TRecursosVyn store;
    TMemoryStream abc("abc");
    store.InsertTRecursos({7, 4, "Nota", 3}, abc);
    TMemoryStream stream;
    store.SaveToStream(stream, 0, 0);
    EXPECT_EQ(
        Of(stream),
        Json({{"kind", "resources"},
              {"resources",
               {{{"id", 7}, {"parent", 4}, {"name", "Nota"}, {"type", 3}, {"size", 3}, {"sha256", kDigestOfAbc}}}}}));
}

TEST_F(Dump, OfTheUsersValuesShowsTheParametersToo) {
    TRecursosVyn store;
    TMemoryStream parameters;
    SaveParameters(parameters);
    store.InsertTRecursos({ParametresRecursos, 0, ParametresRecursosName, ParametresRecType}, parameters);
    TMemoryStream stream;
    store.SaveToStream(stream, 0, 0);
    const Json dump = Of(stream);
    EXPECT_EQ(dump["resources"].size(), 1u);
    EXPECT_EQ(dump["values"], ExpectedParameters());
}

TEST_F(Dump, OfATree) {
    TTreeVyn tree;
    tree.Add({1, -1, 1, 5, 0, "Arrel"});
    tree.Add({2, 1, 2, 0, 4, "Segon"});
    tree.Add({3, 1, 1, 6, 8, "Primer"});
    TMemoryStream stream;
    tree.SaveToStream(&stream);
    EXPECT_EQ(Of(stream), Json::parse(R"({"kind": "tree", "tree": [
        {"id": 1, "parent": -1, "child": 1, "component": 5, "type": 0, "name": "Arrel"},
        {"id": 3, "parent": 1, "child": 1, "component": 6, "type": 8, "name": "Primer"},
        {"id": 2, "parent": 1, "child": 2, "component": 0, "type": 4, "name": "Segon"}]})"));
}

TEST_F(Dump, OfAQueryDictionary) {
    TQuerySQLDict queries(nullptr);
    for (const char* name : {"Vendes", "Canvis d'any"}) {
        TQuerySQLItem* query = queries.Add();
        query->SetQuerySQLName(name);
        query->QuerySQLStream().SetBytes("abc");
    }
    TMemoryStream stream;
    queries.SaveToStream(&stream);
    Json expected{{"kind", "queries"},
                  {"queries",
                   {{{"name", "Vendes"}, {"size", 3}, {"sha256", kDigestOfAbc}},
                    {{"name", "Canvis d'any"}, {"size", 3}, {"sha256", kDigestOfAbc}}}}};
    EXPECT_EQ(Of(stream), expected);
    const Ended text = Vyn({"dump", WriteText("text", stream.Bytes())});
    EXPECT_EQ(text.Output, "kind: queries\nqueries:\n  name=Vendes  size=3  sha256=" + std::string(kDigestOfAbc) +
                               "\n  name=Canvis d'any  size=3  sha256=" + kDigestOfAbc + "\n");
    // Some hosts write one query more than they count.
    stream.SetPosition(stream.Size());
    stream.WriteBuffer(
        "\x06\x01Z\x03\x00\x00\x00"
        "abc",
        10);
    expected["queries"].push_back({{"name", "Z"}, {"size", 3}, {"sha256", kDigestOfAbc}});
    EXPECT_EQ(Of(stream), expected);
}

TEST_F(Dump, OfAQueryDictionaryCutShortIsItsReadersError) {
    const std::string cut("\x07\x0DTQuerySQLDict\x02\x36\x02\x02\x06\x01Q\x00\x00\x00\x00", 26);
    const Ended dumped = Vyn({"dump", "--json", WriteText("cut", cut)});
    EXPECT_EQ(dumped.ExitStatus, 1);
    EXPECT_THAT(dumped.Errors, testing::HasSubstr("Stream read error"));
    const Ended other = Vyn({"dump", WriteText("other", std::string("\x07\x0DTQuerySQLDict\x02\x35\x02\x02", 19))});
    EXPECT_THAT(other.Errors, testing::HasSubstr("No valid version"));
}

TEST_F(Dump, OfComponents) {
    TComponentsVyn store(nullptr);
    TMemoryStream abc("abc"), form;
    TextToBinary("object Fitxa: TForm\nend\n", form);
    store.AddComponent("Bytes", 3, abc);
    store.AddComponent("Fitxa", 8, form);
    TMemoryStream stream;
    store.SaveToStream(stream);
    const Json dump = Of(stream);
    EXPECT_EQ(dump["kind"], "components");
    ASSERT_EQ(dump["components"].size(), 2u);
    EXPECT_EQ(
        dump["components"][0],
        Json({{"id", 1}, {"name", "Bytes"}, {"type", 3}, {"size", 3}, {"sha256", kDigestOfAbc}, {"class", nullptr}}));
    EXPECT_EQ(dump["components"][1]["class"], "TForm");
}

TEST_F(Dump, OfAFormNamesTheCodeOfEachValue) {
    TMemoryStream form;
    TextToBinary(R"(object Fitxa: TFitxa
  A = 5
  B = 300
  C = 70000
  D = 5000000000
  E = 1.5
  F = 1.5s
  G = 2.25c
  H = 46000.5d
  I = 'adéu'
  J = clRed
  K = True
  L = nil
  M = null
  N = [akLeft, akTop]
  O = (1 'dos')
  P = {0AFF}
  Q = <item
      Nom = 'x'
    end>
  inline Marc: TMarc
  end
  inherited Vell: TVell [2]
  end
end
)",
                 form);
    const Json dump = Of(form);
    EXPECT_EQ(dump["kind"], "form");
    const Json& root = dump["form"];
    EXPECT_EQ(root["class"], "TFitxa");
    EXPECT_EQ(root["name"], "Fitxa");
    EXPECT_EQ(root["flags"], 0);
    EXPECT_EQ(root["position"], nullptr);
    const Json expected = Json::parse(R"([
        ["A", "int8", 5], ["B", "int16", 300], ["C", "int32", 70000], ["D", "int64", 5000000000],
        ["E", "extended", 1.5], ["F", "single", 1.5], ["G", "currency", 2.25], ["H", "date", 46000.5],
        ["I", "string", "adéu"], ["J", "ident", "clRed"], ["K", "true", true], ["L", "nil", null],
        ["M", "null", null], ["N", "set", ["akLeft", "akTop"]], ["O", "list", [1, "dos"]], ["P", "binary", "0AFF"],
        ["Q", "collection", [{"index": null, "properties": [{"name": "Nom", "type": "string", "value": "x"}]}]]])");
    ASSERT_EQ(root["properties"].size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(root["properties"][i]["name"], expected[i][0]);
        EXPECT_EQ(root["properties"][i]["type"], expected[i][1]) << expected[i][0];
        EXPECT_EQ(root["properties"][i]["value"], expected[i][2]) << expected[i][0];
    }
    ASSERT_EQ(root["children"].size(), 2u);
    EXPECT_EQ(root["children"][0]["flags"], 4);
    EXPECT_EQ(root["children"][1]["flags"], 3);
    EXPECT_EQ(root["children"][1]["position"], 2);
}

TEST_F(Dump, OfAnythingElseFails) {
    ExpectFailed(Vyn({"dump", WriteText("text", "Hello")}), "none of the known tags");
    ExpectFailed(Vyn({"dump", WriteText("empty", "")}), "none of the known tags");
}

}  // namespace vyn::scenarios
