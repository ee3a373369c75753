#include <gtest/gtest.h>

#include "platform/access/ado.h"
#include "platform/access/table_pages.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "providers/sqlite/connection.h"

// Searching through indexes: what the engine is asked, and what stands in a table in spite of its declaration.

using namespace vyn;

namespace {

constexpr TLocateOptions kTyped{loCaseInsensitive, loPartialKey, loAccentInsensitive};

// Hands an engine's connection on, and counts what is asked of it.
class CountingConnection final : public ProviderConnection {
  public:
    explicit CountingConnection(std::unique_ptr<ProviderConnection> inner) : inner_(std::move(inner)) {}
    int Prepared = 0, Run = 0, Catalog = 0;

    const EngineDialect& Dialect() const override { return inner_->Dialect(); }
    std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) override {
        ++Prepared;
        return std::make_unique<Statement>(*this, inner_->Prepare(sql));
    }
    int64_t Execute(const AnsiString& sql) override { return inner_->Execute(sql); }
    std::vector<AnsiString> TableNames(SystemTables system) override { return inner_->TableNames(system); }
    std::vector<AnsiString> ProcedureNames() override { return {}; }
    bool IsTable(const AnsiString& name) override { return inner_->IsTable(name); }
    bool OriginsAreTables() const override { return inner_->OriginsAreTables(); }
    std::vector<AnsiString> KeyColumns(const AnsiString& table) override { return inner_->KeyColumns(table); }
    std::vector<AnsiString> IndexColumns(const AnsiString& table, const AnsiString& index) override {
        return inner_->IndexColumns(table, index);
    }
    TextIndex TextIndexOf(const AnsiString& table, const AnsiString& column) override {
        ++Catalog;
        return inner_->TextIndexOf(table, column);
    }
    int64_t EstimatedRows(const AnsiString& table) override { return inner_->EstimatedRows(table); }
    int Begin() override { return inner_->Begin(); }
    int Commit() override { return inner_->Commit(); }
    int Rollback() override { return inner_->Rollback(); }
    int TransactionDepth() const override { return inner_->TransactionDepth(); }

  private:
    class Statement final : public ProviderStatement {
      public:
        Statement(CountingConnection& connection, std::unique_ptr<ProviderStatement> inner)
            : connection_(connection), inner_(std::move(inner)) {}
        std::vector<FieldDefinition> Columns() override { return inner_->Columns(); }
        void ExpectColumns(std::vector<FieldDefinition> columns) override { inner_->ExpectColumns(std::move(columns)); }
        void Bind(const std::vector<ProviderValue>& values) override {
            ++connection_.Run;
            inner_->Bind(values);
        }
        int ParameterCount() const override { return inner_->ParameterCount(); }
        bool Fetch(RowStore& rows, int64_t count) override { return inner_->Fetch(rows, count); }
        int64_t Execute() override { return inner_->Execute(); }

      private:
        CountingConnection& connection_;
        std::unique_ptr<ProviderStatement> inner_;
    };
    std::unique_ptr<ProviderConnection> inner_;
};

class TableSearch : public testing::Test {
  protected:
    TableSearch() {
        FormatSettings() = InvariantFormatSettings();
        RegisterSqliteProvider();
        RegisterProvider("Counting", [this](const ConnectionString&) -> std::unique_ptr<ProviderConnection> {
            auto made = std::make_unique<CountingConnection>(
                OpenProvider(ConnectionString("Provider=SQLite;Data Source=:memory:")));
            counted = made.get();
            return made;
        });
        TCustomADODataSet::PagedFrom = 0;
        connection.SetConnectionString("Provider=Counting");
        connection.Execute("CREATE TABLE noms (id INTEGER PRIMARY KEY, nom VARCHAR(20), grup INTEGER)");
        connection.Execute("CREATE INDEX per_nom ON noms (nom)");
        query.SetConnection(&connection);
        query.SQL()->SetText("SELECT id, nom FROM noms ORDER BY id");
    }
    ~TableSearch() override { TCustomADODataSet::PagedFrom = TCustomADODataSet::kLargeTable; }
    int Found(const AnsiString& text, TLocateOptions options = kTyped) {
        return query.Locate("nom", Variant(text), options) ? static_cast<int>(query.FieldByName("id")->AsInteger()) : 0;
    }

    CountingConnection* counted = nullptr;
    TADOConnection connection{nullptr};
    TADOQuery query{nullptr};
};

}  // namespace

TEST_F(TableSearch, ALocateIsAFewLooksIntoTheIndexWithStatementsThatAreKept) {
    connection.Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) INSERT INTO noms SELECT i, "
        "'client ' || i, 1 FROM n");
    query.Open();
    EXPECT_EQ(Found("CLIENT 4321"), 4321);
    EXPECT_EQ(Found("client 77"), 77);
    counted->Prepared = counted->Run = counted->Catalog = 0;
    EXPECT_EQ(Found("Client 123"), 123);
    EXPECT_EQ(counted->Run, 2);
    EXPECT_EQ(Found("nobody"), 0);
    EXPECT_LE(counted->Run, 2 + 2);
    // By the key, or by a value that is equal: one question.
    counted->Run = 0;
    EXPECT_TRUE(query.Locate("id", Variant(4000)));
    EXPECT_TRUE(query.Locate("nom", Variant("client 4001")));
    EXPECT_EQ(counted->Run, 2);
    EXPECT_EQ(counted->Catalog, 0);
    EXPECT_LE(counted->Prepared, 2);
    // A whole text before longer ones costs what showing costs that there is none.
    counted->Run = 0;
    EXPECT_EQ(Found("client 40", kTyped + TLocateOptions{loWholeFirst}), 40);
    EXPECT_EQ(Found("client 00", kTyped + TLocateOptions{loWholeFirst}), 0);
    EXPECT_LE(counted->Run, 8);
    // The catalog is asked once for each opened result.
    query.Close();
    query.Open();
    EXPECT_EQ(Found("client 9"), 9);
    EXPECT_EQ(Found("client 8"), 8);
    EXPECT_EQ(counted->Catalog, 1);
}

// The engine lets anything stand in a column of texts; bytes stand behind all texts, and are none to it.
TEST_F(TableSearch, BytesAmongTextsStandInNobodysWay) {
    connection.Execute("INSERT INTO noms VALUES (1, 'Soler', 1), (2, x'536F6C612062', 1), (3, x'41', 1), (4, 'a', 1)");
    query.Open();
    EXPECT_EQ(Found("sola"), 0);
    EXPECT_EQ(Found("sol"), 1);
    EXPECT_EQ(Found("sola c"), 0);
    EXPECT_EQ(Found("a"), 4);
    EXPECT_EQ(Found("solb"), 0);
}

TEST_F(TableSearch, MalformedTextsAreFoundByWhatIsShownOfThem) {
    connection.Execute(
        "INSERT INTO noms VALUES (1, CAST(x'53FF6C' AS TEXT), 1), (2, CAST(x'53C3' AS TEXT), 1), (3, 's', 1)");
    query.Open();
    EXPECT_EQ(Found("s?l"), 1);
    EXPECT_EQ(Found("s?"), 2);
    EXPECT_EQ(Found("S"), 2);
    EXPECT_EQ(Found("sl"), 0);
}

// A row that goes between two questions is nobody's answer.
TEST_F(TableSearch, TextsThatChangeBetweenQuestionsGiveNoWrongAnswer) {
    connection.Execute("INSERT INTO noms VALUES (1, 'Gabarro', 1), (2, 'Garcia', 1), (3, 'Garza', 1)");
    query.Open();
    EXPECT_EQ(Found("garc"), 2);
    connection.Execute("DELETE FROM noms WHERE id = 2");
    EXPECT_EQ(Found("garc"), 0);
    connection.Execute("INSERT INTO noms VALUES (9, 'GARCERAN', 1)");
    EXPECT_EQ(Found("garc"), 9);
}
