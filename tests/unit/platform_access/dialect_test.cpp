#include "platform/access/dialect.h"

#include <gtest/gtest.h>

#include "platform/access/sql_tokens.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

using namespace vyn;

// The golden table of statements (tests/golden/sql) is run on each engine by tests/conformance.
TEST(Dialect, WhatIsNoDateBetweenMarksStays) {
    for (const char* sql : {"SELECT a#b, c#d", "SELECT #nothing#", "SELECT #99/99/2001#", "SELECT #25:00#", "SELECT #",
                            "SELECT [", "SELECT []", "SELECT 'open", "SELECT /* open", "SELECT #1/1/2001"})
        EXPECT_EQ(TranslateSql(sql, EngineDialect(), ParameterParsing::Off).Text, sql);
}

TEST(Dialect, ParametersAreMarkedOutsideQuotesAndComments) {
    const EngineSql sql =
        TranslateSql("SELECT :a, ':b', \":c\", [:d] /* :e */ WHERE x = :\"two words\" AND y = :A AND t = #10:20# -- :f",
                     EngineDialect(), ParameterParsing::On);
    EXPECT_EQ(sql.Text, "SELECT ?, ':b', \":c\", \":d\" /* :e */ WHERE x = ? AND y = ? AND t = '10:20:00' -- :f");
    EXPECT_EQ(sql.ParameterNames, (std::vector<AnsiString>{"a", "two words", "A"}));
    EXPECT_EQ(ParameterNamesOf("x = :a AND y = :A AND z = :b"), (std::vector<AnsiString>{"a", "b"}));
}

TEST(Dialect, TwoColonsAreOneWhereParametersAreLookedFor) {
    EXPECT_EQ(TranslateSql("a::b ':: '", EngineDialect(), ParameterParsing::On).Text, "a:b ':: '");
    EXPECT_EQ(TranslateSql("a::b", EngineDialect(), ParameterParsing::Off).Text, "a::b");
    EXPECT_EQ(TranslateSql("a :b", EngineDialect(), ParameterParsing::Off).Text, "a :b");
}

TEST(Dialect, EnginesDifferByTheirDescription) {
    EngineDialect dialect;
    dialect.Limit = EngineDialect::RowLimit::TopAtBeginning;
    dialect.NameOpen = '[';
    dialect.NameClose = ']';
    dialect.DateBefore = "{d '";
    dialect.TimeBefore = "{t '";
    dialect.DateTimeBefore = "{ts '";
    dialect.DateAfter = "'}";
    EXPECT_EQ(
        TranslateSql("SELECT DISTINCT TOP 3, [a] FROM t WHERE d = #1/2/2001#", dialect, ParameterParsing::On).Text,
        "SELECT DISTINCT TOP 3 [a] FROM t WHERE d = {d '2001-01-02'}");
    dialect.Limit = EngineDialect::RowLimit::FetchAtEnd;
    EXPECT_EQ(TranslateSql("SELECT TOP 3 a FROM t", dialect, ParameterParsing::On).Text,
              "SELECT a FROM t FETCH FIRST 3 ROWS ONLY");
    EXPECT_EQ(dialect.QuotedName("a]b"), "[a]]b]");
}

TEST(Dialect, EnginesSayWordsAndFunctionsInTheirWay) {
    EngineDialect dialect;
    dialect.True = "1";
    dialect.False = "0";
    dialect.JoinOpen = dialect.JoinClose = "";
    dialect.JoinBetween = "+";
    EXPECT_EQ(TranslateSql("SELECT a & b FROM t WHERE x = TRUE OR t.True = false", dialect, ParameterParsing::On).Text,
              "SELECT a + b FROM t WHERE x = 1 OR t.True = 0");
    EXPECT_EQ(TranslateSql("SELECT NOW(), Now, Date(a), x.Date(), t.now()", dialect, ParameterParsing::On).Text,
              "SELECT LOCALTIMESTAMP, Now, Date(a), x.Date(), t.now()");
    EXPECT_EQ(TranslateSql("SELECT IIF(a, b), IIF, IIF(a, b", dialect, ParameterParsing::On).Text,
              "SELECT IIF(a, b), IIF, IIF(a, b");
}

TEST(Dialect, JoinsOfTextsWithoutBothSidesStay) {
    for (const char* sql : {"SELECT & b", "SELECT a &", "a & & b", "(a &) b", "&", "a & , b"})
        EXPECT_EQ(TranslateSql(sql, EngineDialect(), ParameterParsing::On).Text, sql);
}

TEST(Dialect, PatternsThatAreNotClosedStay) {
    for (const char* sql : {"a LIKE 'x*", "a LIKE", "a LIKE '", "a LIKE :p"})
        EXPECT_EQ(TranslateSql(sql, EngineDialect(), ParameterParsing::Off).Text, sql);
}

TEST(Dialect, PercentagesAreRefused) {
    try {
        TranslateSql("SELECT TOP 10 PERCENT a FROM t", EngineDialect(), ParameterParsing::On);
        FAIL();
    } catch (const EDatabaseError& error) {
        EXPECT_EQ(error.Message(), "SELECT TOP n PERCENT is not supported");
    }
}

TEST(Dialect, TokensTogetherAreTheStatement) {
    const AnsiString sql = "SELECT TOP 1.5e3, [a b] ,:p::q'x''y' --c\n/*d*/ #1/1/2001# .5 `n`";
    AnsiString together;
    for (const SqlToken& token : TokenizeSql(sql)) together += token.Text;
    EXPECT_EQ(together, sql);
}

TEST(Dialect, ColumnsBehindAliasesAreRead) {
    using Names = std::vector<AnsiString>;
    EXPECT_EQ(SelectedColumns("SELECT a, t.b AS c, [d e] f, \"g\"\"h\", a + 1, f(a) AS a, (a), 'x', 3, :p FROM t"),
              (Names{"a", "b", "d e", "g\"h", "", "", "", "", "", ""}));
    EXPECT_EQ(SelectedColumns("select distinct a, main.t.b from t"), (Names{"a", "b"}));
    EXPECT_EQ(SelectedColumns("SELECT a /* b */ AS x, (SELECT c FROM u) AS y"), (Names{"a", ""}));
    EXPECT_EQ(SelectedColumns("SELECT * FROM t"), Names());
    EXPECT_EQ(SelectedColumns("SELECT a, t.* FROM t"), Names());
    EXPECT_EQ(SelectedColumns("UPDATE t SET a = 1"), Names());
    EXPECT_EQ(SelectedColumns("SELECT a * b, COUNT(*) FROM t"), (Names{"", ""}));
    EXPECT_EQ(SelectedColumns(""), Names());
}

TEST(Dialect, NamesAreSpeltAsTheCatalogHasThem) {
    const std::vector<AnsiString> names = {"Clients", "nom", "Nom", "Ordre"};
    EXPECT_EQ(SpellNames("SELECT NOM, \"nom\", \"NOM\", ordre, Ordre(x), 'ordre' FROM CLIENTS", names, EngineDialect()),
              "SELECT NOM, \"nom\", \"nom\", \"Ordre\", Ordre(x), 'ordre' FROM \"Clients\"");
}

TEST(Dialect, TheShapeOfAQueryIsReadFromItsText) {
    EXPECT_EQ(ShapeOf("SELECT a, b FROM [order lines] WHERE x IN (1, 2)").Source, "order lines");
    EXPECT_FALSE(ShapeOf("SELECT a, b FROM t WHERE x IN (1, 2)").IsJoined);
    EXPECT_EQ(ShapeOf("SELECT * FROM main.\"t\" AS x").Source, "t");
    EXPECT_EQ(ShapeOf("SELECT * FROM (SELECT 1)").Source, "");
    EXPECT_TRUE(ShapeOf("SELECT * FROM a, b").IsJoined);
    EXPECT_TRUE(ShapeOf("SELECT * FROM a LEFT JOIN b ON 1").IsJoined);
    EXPECT_TRUE(ShapeOf("SELECT a FROM t UNION SELECT b FROM t").IsCompound);
    EXPECT_TRUE(ShapeOf("SELECT DISTINCT a FROM t").IsGrouped);
    EXPECT_TRUE(ShapeOf("SELECT a FROM t GROUP BY a").IsGrouped);
}

TEST(NulCharacters, InATextAreWrittenAsTheEngineCanTakeThem) {
    EngineDialect dialect;
    dialect.TextWithNul = [](std::string_view text) {
        return "text(" + IntToStr(static_cast<int64_t>(text.size())) + ")";
    };
    const AnsiString sql("SELECT 'a''b\0', 'c'", 19);
    EXPECT_EQ(TranslateSql(sql, dialect, ParameterParsing::On).Text, "SELECT text(4), 'c'");
}

TEST(NulCharacters, ThatNoEngineCanBeToldAreRefused) {
    const auto messageOf = [](const AnsiString& sql) {
        try {
            TranslateSql(sql, EngineDialect(), ParameterParsing::On);
        } catch (const EDatabaseError& error) {
            return error.Message();
        }
        return AnsiString();
    };
    EXPECT_EQ(messageOf(AnsiString("SELECT 'a\0'", 11)), "The database cannot hold a NUL character in a text or name");
    EXPECT_EQ(messageOf(AnsiString("SELECT \"a\0\"", 11)),
              "The database cannot hold a NUL character in a text or name");
    EXPECT_EQ(messageOf(AnsiString("SELECT 'a\0", 10)), "The database cannot hold a NUL character in a text or name");
    EXPECT_EQ(messageOf(AnsiString("DELETE FROM t\0 WHERE a = 1", 26)),
              "The statement holds a NUL character outside its texts");
}

TEST(Dialect, OnlyTheTypesOfColumnsThatAreMadeAreMemos) {
    const auto translated = [](const char* sql) {
        return TranslateSql(sql, SqliteDialect(), ParameterParsing::Off).Text;
    };
    for (const char* sql :
         {"CREATE TABLE memo (memo)", "CREATE TABLE t (a MEMO TEXT)", "CREATE TABLE t (memo TEXT)",
          "CREATE TABLE t (a TEXT, PRIMARY KEY (a), CONSTRAINT memo UNIQUE (a))",
          "CREATE TABLE t (a TEXT REFERENCES memo (memo))", "CREATE INDEX i ON memo (memo, a memo)",
          "SELECT a memo FROM t memo", "ALTER TABLE t RENAME memo TO a", "INSERT INTO t (a, memo) VALUES (1, 2)"})
        EXPECT_EQ(translated(sql), sql);
    EXPECT_EQ(translated("CREATE TEMP TABLE t (a memo, b Memo(10)); CREATE TABLE u (c MEMO)"),
              "CREATE TEMP TABLE t (a MEMO TEXT, b MEMO TEXT(10)); CREATE TABLE u (c MEMO TEXT)");
}

TEST(Dialect, StatementsThatOnlyReadAreTold) {
    for (const char* sql : {"SELECT 1", " -- x\n(SELECT 1) UNION VALUES (2)", "WITH a AS (SELECT 1) SELECT * FROM a",
                            "SELECT a FROM t FOR UPDATE", "SELECT a FROM t FOR NO KEY UPDATE", "SHOW datestyle",
                            "SELECT 'INSERT', \"delete\", [update] FROM t"})
        EXPECT_TRUE(ReadsOnly(sql)) << sql;
    for (const char* sql : {"", "UPDATE t SET a = 1", "INSERT INTO t SELECT 1", "DELETE FROM t", "CREATE TABLE t (a)",
                            "WITH a AS (UPDATE t SET b = 1 RETURNING b) SELECT * FROM a", "SELECT a INTO u FROM t",
                            "WITH a AS (DELETE FROM t RETURNING b) SELECT * FROM a", "BEGIN; SELECT 1", "CALL p()"})
        EXPECT_FALSE(ReadsOnly(sql)) << sql;
}
