#include "platform/access/dialect.h"

#include <gtest/gtest.h>

#include "platform/access/ado.h"
#include "platform/access/sql_tokens.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "providers/sqlite/connection.h"

using namespace vyn;

namespace {

struct Pair {
    const char* written;
    const char* sent;
};

// As the framework writes it, and as the embedded engine takes it. Each is run on the engine, too.
constexpr Pair kPairs[] = {
    {"SELECT a FROM t WHERE d = #03/09/2001#", "SELECT a FROM t WHERE d = '2001-03-09'"},
    {"SELECT a FROM t WHERE d = #03/09/2001 10::20::30#", "SELECT a FROM t WHERE d = '2001-03-09 10:20:30'"},
    {"SELECT a FROM t WHERE d = #03/09/2001 10:20:30#", "SELECT a FROM t WHERE d = '2001-03-09 10:20:30'"},
    {"SELECT a FROM t WHERE d = #03/09/2001 00::00::00#", "SELECT a FROM t WHERE d = '2001-03-09'"},
    {"SELECT a FROM t WHERE d = #10::20::30#", "SELECT a FROM t WHERE d = '10:20:30'"},
    {"SELECT a FROM t WHERE d = #10:20#", "SELECT a FROM t WHERE d = '10:20:00'"},
    {"SELECT a FROM t WHERE d = #10:20 PM#", "SELECT a FROM t WHERE d = '22:20:00'"},
    {"SELECT a FROM t WHERE d = #2001-03-09#", "SELECT a FROM t WHERE d = '2001-03-09'"},
    {"SELECT a FROM t WHERE d = #13/02/2001#", "SELECT a FROM t WHERE d = '2001-02-13'"},
    {"SELECT a FROM t WHERE d BETWEEN #1/2/99# AND #1/2/01#",
     "SELECT a FROM t WHERE d BETWEEN '1999-01-02' AND '2001-01-02'"},
    {"SELECT TOP 5, a, b FROM t", "SELECT a, b FROM t LIMIT 5"},
    {"SELECT TOP 5 a, b FROM t ORDER BY a", "SELECT a, b FROM t ORDER BY a LIMIT 5"},
    {"select distinct top 5 a from t", "select distinct a from t LIMIT 5"},
    {"SELECT TOP 5, a FROM t -- the first\n", "SELECT a FROM t LIMIT 5 -- the first\n"},
    {"SELECT TOP 5, a FROM t;", "SELECT a FROM t LIMIT 5;"},
    {"SELECT a FROM t WHERE a IN (SELECT TOP 2 a FROM t ORDER BY b)",
     "SELECT a FROM t WHERE a IN (SELECT a FROM t ORDER BY b LIMIT 2)"},
    {"SELECT TOP 1 a FROM t UNION SELECT b FROM t", "SELECT * FROM (SELECT a FROM t LIMIT 1) UNION SELECT b FROM t"},
    {"SELECT a FROM t UNION SELECT TOP 1 b AS a FROM t ORDER BY a",
     "SELECT a FROM t UNION SELECT * FROM (SELECT b AS a FROM t LIMIT 1) ORDER BY a"},
    {"SELECT [a] FROM [t]", "SELECT \"a\" FROM \"t\""},
    {"SELECT [a b] FROM [order lines]", "SELECT \"a b\" FROM \"order lines\""},
    {"SELECT `a` FROM t", "SELECT \"a\" FROM t"},
    {"SELECT '#03/09/2001# [x] TOP 5' AS a FROM t", "SELECT '#03/09/2001# [x] TOP 5' AS a FROM t"},
    {"SELECT 'it''s #10:20#' AS a FROM t", "SELECT 'it''s #10:20#' AS a FROM t"},
    {"SELECT \"a\" FROM t /* [x] #10:20# */", "SELECT \"a\" FROM t /* [x] #10:20# */"},
    {"SELECT a FROM t -- [x] it's\nWHERE a = 1", "SELECT a FROM t -- [x] it's\nWHERE a = 1"},
    {"SELECT TOPS.a FROM t AS TOPS", "SELECT TOPS.a FROM t AS TOPS"},
    {"SELECT a FROM t WHERE b = 'caf\xE9'", "SELECT a FROM t WHERE b = 'caf\xE9'"},
};

}  // namespace

TEST(Dialect, GoldenPairsAreAsWrittenAndRun) {
    RegisterSqliteProvider();
    TADOConnection connection(nullptr);
    connection.Execute("CREATE TABLE t (a, b, d); CREATE TABLE \"order lines\" (\"a b\")");
    for (const Pair& pair : kPairs) {
        SCOPED_TRACE(pair.written);
        EXPECT_EQ(TranslateSql(pair.written, connection.Provider().Dialect(), ParameterParsing::On).Text, pair.sent);
        EXPECT_EQ(TranslateSql(pair.written, connection.Provider().Dialect(), ParameterParsing::Off).Text, pair.sent);
        TADOQuery query(nullptr);
        query.SetConnection(&connection);
        query.SQL()->SetText(pair.written);
        EXPECT_NO_THROW(query.Open());
    }
}

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
    dialect.DateAfter = "'}";
    EXPECT_EQ(
        TranslateSql("SELECT DISTINCT TOP 3, [a] FROM t WHERE d = #1/2/2001#", dialect, ParameterParsing::On).Text,
        "SELECT DISTINCT TOP 3 [a] FROM t WHERE d = {d '2001-01-02'}");
    dialect.Limit = EngineDialect::RowLimit::FetchAtEnd;
    EXPECT_EQ(TranslateSql("SELECT TOP 3 a FROM t", dialect, ParameterParsing::On).Text,
              "SELECT a FROM t FETCH FIRST 3 ROWS ONLY");
    EXPECT_EQ(dialect.QuotedName("a]b"), "[a]]b]");
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
