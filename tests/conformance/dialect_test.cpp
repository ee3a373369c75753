#include <fstream>
#include <map>

#include "conformance/engines.h"
#include "platform/access/dialect.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

using namespace conformance;

namespace {

// A statement of tests/golden/sql: as written, and for each engine as it takes it.
using Statement = std::map<std::string, AnsiString>;

AnsiString WithBreaks(const std::string& line) {
    AnsiString text = Utf8ToAnsi(line);
    for (size_t at; (at = text.find("\\n")) != AnsiString::npos;) text.replace(at, 2, "\n");
    return text;
}

std::vector<Statement> GoldenStatements() {
    std::ifstream file(VYN_SOURCE_DIR "/tests/golden/sql/statements.txt");
    std::vector<Statement> statements;
    for (std::string line; std::getline(file, line);) {
        const size_t colon = line.find(':');
        if (line.empty() || line[0] == '#' || colon == std::string::npos) continue;
        const std::string word = line.substr(0, colon);
        if (word == "written") statements.emplace_back();
        statements.back()[word] = WithBreaks(line.substr(line.find_first_not_of(' ', colon + 1)));
    }
    return statements;
}

}  // namespace

TEST_P(Conformance, GoldenStatementsAreAsWrittenAndRun) {
    const Engine& engine = GetParam();
    mine.Execute("CREATE TABLE t (a INTEGER, b VARCHAR(20), d " + engine.DateTime + ", h TIME, ok BOOLEAN)");
    mine.Execute("CREATE TABLE u (a INTEGER, c VARCHAR(20), d " + engine.DateTime + ")");
    mine.Execute("CREATE TABLE v (a INTEGER, b VARCHAR(20))");
    mine.Execute("CREATE TABLE [order lines] ([a b] INTEGER, [select] VARCHAR(10))");
    const std::vector<Statement> statements = GoldenStatements();
    EXPECT_GT(statements.size(), 40u);
    for (const Statement& statement : statements) {
        const AnsiString& written = statement.at("written");
        SCOPED_TRACE(written);
        const AnsiString& expected = statement.at(engine.Golden) == "=" ? written : statement.at(engine.Golden);
        const EngineDialect& dialect = mine.Provider().Dialect();
        EXPECT_EQ(TranslateSql(written, dialect, ParameterParsing::On).Text, expected);
        // It does not matter whether a dataset looks for parameters, but for the colons that it then has doubled.
        EXPECT_EQ(TranslateSql(written, dialect, ParameterParsing::Off).Text, expected);
        TADOQuery query(nullptr);
        query.SetConnection(&mine);
        query.SQL()->SetText(written);
        const bool reads = (written[0] | 0x20) == 's';
        EXPECT_EQ(MessageOf([&] { reads ? query.Open() : static_cast<void>(query.ExecSQL()); }), "no error");
    }
}

TEST_P(Conformance, WhatIsTranslatedMeansTheSame) {
    mine.Execute("CREATE TABLE t (a INTEGER, b VARCHAR(20), ok BOOLEAN)");
    mine.Execute("INSERT INTO t VALUES (1, 'Casa', True)");
    mine.Execute("INSERT INTO t VALUES (2, 'c%sa_\\', False)");
    mine.Execute("INSERT INTO t VALUES (3, NULL, NULL)");
    // Patterns mind no case; nulls are empty behind other texts.
    EXPECT_EQ(Value("SELECT COUNT(*) FROM t WHERE b LIKE 'c?S*'"), "2");
    EXPECT_EQ(Value("SELECT a FROM t WHERE b LIKE '*[%]*'"), "2");
    EXPECT_EQ(Value("SELECT a FROM t WHERE b LIKE '*[_]\\'"), "2");
    EXPECT_EQ(Value("SELECT a FROM t WHERE b LIKE '*[*]*'"), "");
    EXPECT_EQ(Value("SELECT 'x' & b & 'y' & a FROM t WHERE a = 3"), "xy3");
    EXPECT_EQ(Value("SELECT IIF(ok, 'yes', 'no') & '!' FROM t WHERE a = 1"), "yes!");
    EXPECT_EQ(Value("SELECT IIF(ok, 'yes', 'no') FROM t WHERE a = 2"), "no");
    EXPECT_EQ(Value("SELECT a FROM t WHERE ok = False"), "2");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM t WHERE Now() >= Date() AND Date() > #1/1/2001#"), "3");
    EXPECT_EQ(Value("SELECT TOP 1, a FROM t ORDER BY a DESC"), "3");
}
