#include "conformance/engines.h"
#include "database/Udb_ado.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

using namespace conformance;

// Texts that mean something to somebody on the way (SQL, patterns, parameters, placeholders, filters) and that have to
// come back as they went.
namespace {

const std::vector<AnsiString>& HostileTexts() {
    static const std::vector<AnsiString> texts = {
        "'",
        "''",
        "it's",
        "\"",
        "\"\"quoted\"\"",
        ":",
        "::",
        ":id",
        "10:20:30",
        "?",
        "??",
        "\xA1",
        "\xA1id\xA1",
        "\xA1\xA1",
        "\\",
        "\\\\",
        "\\'",
        "'\\",
        "\\x41",
        "%",
        "100%",
        "_",
        "a_b%c",
        "*",
        "[",
        "]",
        "[id]",
        "[]]",
        "#",
        "#01/02/2001#",
        "--",
        "a -- b",
        "/*",
        "*/ /* */",
        ";",
        "'; DROP TABLE hostils; --",
        "' OR '1'='1",
        "\"; DELETE FROM hostils; --",
        "$1",
        "$$",
        "$a$ $a$",
        "E'\\n'",
        "{d '2001-01-01'}",
        "{fn NOW()}",
        "${HOME}",
        "&",
        "a & b",
        "NULL",
        "null",
        "True",
        "0",
        "007",
        "+34 934 00 00 00",
        "1.50",
        "1e400",
        " ",
        "  both sides  ",
        "\t",
        "\n",
        "\r",
        "\r\n",
        "line\r\nline\n\nline",
        "\x01\x02\x1A\x1B\x7F",
        "\x80\x8E\x9F",
        "\xE1\xF1\xFF\xC7",
        "\xC3\xA9",
    };
    return texts;
}

AnsiString Large() {
    AnsiString large;
    while (large.size() < 1024 * 1024) large += "one 'MB' of \"text\" with \\ and : and \xA1 and \xE9\r\n";
    return large;
}

class Hostile : public Conformance {
  protected:
    Hostile() {
        mine.Execute("CREATE TABLE hostils (id INTEGER NOT NULL PRIMARY KEY, v " + GetParam().Memo + ", n INTEGER)");
        texts = HostileTexts();
        texts.push_back(Large());
        base.SetADOConnection(&mine);
    }
    void Fill() {
        const auto table = Table(mine, "hostils");
        mine.BeginTrans();
        for (size_t i = 0; i < texts.size(); ++i)
            table->AppendRecord({Variant(static_cast<int>(i)), Variant(texts[i]), Variant(0)});
        mine.CommitTrans();
    }
    void ExpectAll() {
        const auto rows = Query(theirs, "SELECT id, v FROM hostils ORDER BY id");
        ASSERT_EQ(rows->RecordCount(), static_cast<int64_t>(texts.size()));
        for (const AnsiString& text : texts) {
            EXPECT_TRUE(rows->Fields(1)->AsString() == text)
                << rows->Fields(0)->AsString() << ": " << rows->Fields(1)->AsString().substr(0, 60) << " for "
                << text.substr(0, 60);
            rows->Next();
        }
    }

    std::vector<AnsiString> texts;
    TDataBaseVynADO base{nullptr};
};

}  // namespace

TEST_P(Hostile, HostileTextsAreTypedAndReadBack) {
    Fill();
    ExpectAll();
}

TEST_P(Hostile, HostileTextsGoAsParameters) {
    TADOQuery insert(nullptr);
    insert.SetConnection(&mine);
    insert.SQL()->SetText("INSERT INTO hostils (id, v, n) VALUES (:id, :v, 0)");
    for (size_t i = 0; i < texts.size(); ++i) {
        insert.Parameters()->ParamByName("id")->SetValue(Variant(static_cast<int>(i)));
        insert.Parameters()->ParamByName("v")->SetValue(Variant(texts[i]));
        EXPECT_EQ(insert.ExecSQL(), 1);
    }
    ExpectAll();
    TADOQuery find(nullptr);
    find.SetConnection(&mine);
    find.SQL()->SetText("SELECT id FROM hostils WHERE v = :v");
    for (size_t i = 0; i < texts.size(); ++i) {
        find.Parameters()->ParamByName("v")->SetValue(Variant(texts[i]));
        find.Open();
        ASSERT_EQ(find.RecordCount(), 1) << texts[i].substr(0, 60);
        EXPECT_EQ(find.Fields(0)->AsInteger(), static_cast<int64_t>(i));
        find.Close();
    }
}

TEST_P(Hostile, HostileTextsGoAsLiterals) {
    for (size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(mine.Execute("INSERT INTO hostils (id, v, n) VALUES (" + std::to_string(i) + ", " +
                               base.ConvertToSqlString(ftString, Variant(texts[i])) + ", 0)"),
                  1);
    ExpectAll();
    for (size_t i = 0; i < texts.size(); ++i) {
        const AnsiString sql =
            "SELECT id FROM hostils WHERE v = " + base.ConvertToSqlString(ftString, Variant(texts[i]));
        // Colons in texts are no parameters.
        const std::unique_ptr<TDataSet> found(base.DoGetTSQLDataSet(sql, nullptr, true));
        found->Open();
        ASSERT_EQ(found->RecordCount(), 1) << texts[i].substr(0, 60);
        EXPECT_EQ(found->Fields(0)->AsInteger(), static_cast<int64_t>(i));
    }
}

TEST_P(Hostile, HostileTextsAreLocatedAndFiltered) {
    Fill();
    const auto table = Table(mine, "hostils");
    for (size_t i = 0; i < texts.size(); ++i) {
        ASSERT_TRUE(table->Locate("v", Variant(texts[i]))) << texts[i].substr(0, 60);
        EXPECT_EQ(table->FieldByName("id")->AsInteger(), static_cast<int64_t>(i));
        EXPECT_EQ(VarToStr(table->Lookup("v", Variant(texts[i]), "id")), std::to_string(i));
    }
    EXPECT_FALSE(table->Locate("v", Variant("' OR ''='")));
    EXPECT_FALSE(table->Locate("v", Variant("%%")));
    // A star at the end is a star.
    table->SetFilterOptions({foNoPartialCompare});
    for (size_t i = 0; i < texts.size(); ++i) {
        AnsiString literal = "'";
        for (char c : texts[i]) literal += c == '\'' ? AnsiString("''") : AnsiString(1, c);
        table->SetFilter("v = " + literal + "'");
        table->SetFiltered(true);
        ASSERT_EQ(table->RecordCount(), 1) << texts[i].substr(0, 60);
        EXPECT_EQ(table->FieldByName("id")->AsInteger(), static_cast<int64_t>(i));
        table->SetFiltered(false);
    }
}

TEST_P(Hostile, HostileTextsLinkDetailsToTheirMasters) {
    Fill();
    mine.Execute("CREATE TABLE filles (id INTEGER NOT NULL PRIMARY KEY, v " + GetParam().Memo + ")");
    mine.Execute("INSERT INTO filles SELECT id, v FROM hostils");
    const auto master = Query(mine, "SELECT id, v FROM hostils ORDER BY id");
    TDataSource source(nullptr);
    source.SetDataSet(master.get());
    TADOTable detail(nullptr);
    detail.SetConnection(&mine);
    detail.SetTableName("filles");
    detail.SetMasterSource(&source);
    detail.SetMasterFields("v");
    detail.Open();
    TADOQuery query(nullptr);
    query.SetConnection(&mine);
    query.SetDataSource(&source);
    query.SQL()->SetText("SELECT id FROM filles WHERE v = :v");
    query.Open();
    for (size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(detail.RecordCount(), 1) << texts[i].substr(0, 60);
        EXPECT_EQ(detail.FieldByName("id")->AsInteger(), static_cast<int64_t>(i));
        ASSERT_EQ(query.RecordCount(), 1) << texts[i].substr(0, 60);
        EXPECT_EQ(query.Fields(0)->AsInteger(), static_cast<int64_t>(i));
        master->Next();
    }
}

TEST_P(Hostile, RecordsWithHostileTextsAreChangedAndDeleted) {
    Fill();
    const auto table = Table(mine, "hostils");
    for (size_t i = 0; i + 1 < texts.size(); ++i) {
        table->Edit();
        table->FieldByName("v")->SetAsString(texts[i] + texts[i]);
        table->Post();
        table->Edit();
        table->FieldByName("v")->SetAsString(texts[i]);
        table->Post();
        table->Next();
    }
    ExpectAll();
    table->First();
    while (!table->IsEmpty()) table->Delete();
    EXPECT_EQ(Value("SELECT COUNT(*) FROM hostils"), "0");
}

TEST_P(Hostile, ANulIsKeptOrRefusedAndNeverCutsATextShort) {
    const AnsiString text("before\0after", 12);
    const bool kept = GetParam().Golden == "sqlite" && GetParam().Name.find("ODBC") == AnsiString::npos;
    const char* refused = "EDatabaseError: The database cannot hold a NUL character in a text or name";
    const auto table = Table(mine, "hostils");
    table->Append();
    table->FieldByName("id")->SetAsInteger(1);
    table->FieldByName("v")->SetAsString(text);
    EXPECT_EQ(MessageOf([&] { table->Post(); }), kept ? "no error" : refused);
    if (!kept) {
        EXPECT_EQ(table->State(), dsInsert);
        EXPECT_EQ(table->FieldByName("v")->AsString(), text);
        table->Cancel();
    }
    const AnsiString insert =
        "INSERT INTO hostils (id, v, n) VALUES (2, " + base.ConvertToSqlString(ftString, Variant(text)) + ", 0)";
    const AnsiString message = MessageOf([&] { mine.Execute(insert); });
    if (kept) {
        EXPECT_EQ(message, "no error");
        EXPECT_EQ(Value("SELECT v FROM hostils WHERE id = 1"), text);
        EXPECT_EQ(Value("SELECT v FROM hostils WHERE id = 2"), text);
    } else {
        EXPECT_NE(message.find("NUL"), AnsiString::npos) << message;
        EXPECT_EQ(Value("SELECT COUNT(*) FROM hostils"), "0");
    }
    EXPECT_NE(MessageOf([&] { mine.Execute(AnsiString("DELETE FROM clients\0 WHERE id = 99", 33)); }), "no error");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM clients"), "3");
}

INSTANTIATE_TEST_SUITE_P(Engines, Hostile, testing::ValuesIn(Engines()),
                         [](const auto& engine) { return engine.param.Name; });
