#include <random>

#include "conformance/engines.h"
#include "platform/text/exceptions.h"
#include "platform/text/folding.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

using namespace conformance;

// Finding records by what a user types: the beginning of a text, without regard to case and accents.

namespace {

constexpr TLocateOptions kTyped{loCaseInsensitive, loPartialKey, loAccentInsensitive};

std::unique_ptr<TADOQuery> Searched(TADOConnection& connection, const AnsiString& sql, TCursorType cursor) {
    auto query = std::make_unique<TADOQuery>(nullptr);
    query->SetConnection(&connection);
    query->SetCursorType(cursor);
    query->SQL()->SetText(sql);
    for (int i = 0; i < query->Parameters()->Count(); ++i) query->Parameters()->Items(i)->SetValue(Variant(2));
    query->Open();
    return query;
}

AnsiString RandomText(std::mt19937& random, size_t most) {
    static const AnsiString letters = "aAáÀbBnNñÑcCçsSŠš zZž%_'\"\\?€yÿŸ7"_w;
    AnsiString text;
    for (size_t length = random() % (most + 1); length > 0; --length) text += letters[random() % letters.size()];
    return text;
}

// "noms": texts of every kind, some of them twice, and nulls.
void MakeNames(TADOConnection& connection, const AnsiString& type, const AnsiString& index) {
    connection.Execute("CREATE TABLE noms (id INTEGER NOT NULL PRIMARY KEY, nom " + type + ", grup INTEGER NOT NULL)");
    if (!index.empty()) connection.Execute(index);
    std::mt19937 random(11);
    TADOQuery insert(nullptr);
    insert.SetConnection(&connection);
    insert.SQL()->SetText("INSERT INTO noms VALUES (:id, :nom, :grup)");
    insert.Parameters()->ParamByName("nom")->DataType = ftWideString;
    // Letters that Windows-1252 lacks, and an accent that is a character of its own.
    const WideString others[] = {u"şa", u"a\u0301b", u"nʼa", u"\U0001F600b", u"ąa"};
    connection.BeginTrans();
    for (int id = 1; id <= 250; ++id) {
        insert.Parameters()->ParamByName("id")->SetValue(Variant(id));
        Variant name = Variant(AnsiToWide(RandomText(random, 5)));
        if (random() % 20 == 0) name = Variant::Null();
        if (random() % 20 == 0) name = Variant(others[random() % 5]);
        insert.Parameters()->ParamByName("nom")->SetValue(name);
        insert.Parameters()->ParamByName("grup")->SetValue(Variant(static_cast<int>(random() % 4)));
        insert.ExecSQL();
    }
    connection.CommitTrans();
}

struct Indexed {
    const char* type;
    const char* index;
    // How the index orders texts, when it leads to them; else the result's order counts.
    const char* order;
    TextIndex::Sorting sorting;
};

std::vector<Indexed> WaysToIndex(const Engine& engine) {
    using enum TextIndex::Sorting;
    if (engine.Golden == "sqlite")
        return {{"VARCHAR(20)", "", "", None},
                {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (nom)", "nom", CodePoints},
                {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (nom DESC, grup)", "nom", CodePoints},
                {"VARCHAR(20) COLLATE NOCASE", "CREATE INDEX per_nom ON noms (nom)", "nom", CodePointsWithoutCase},
                {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (nom COLLATE NOCASE)", "nom COLLATE NOCASE",
                 CodePointsWithoutCase},
                {"VARCHAR(20) COLLATE NOCASE", "CREATE INDEX per_nom ON noms (nom COLLATE BINARY)",
                 "nom COLLATE BINARY", CodePoints},
                {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (nom) WHERE grup > 0", "", None},
                {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (grup, nom)", "", None},
                {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (lower(nom))", "", None}};
    return {{"VARCHAR(20)", "", "", None},
            {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (nom)", "nom", CodePoints},
            {"TEXT", "CREATE INDEX per_nom ON noms (nom DESC NULLS LAST, grup)", "nom", CodePoints},
            {"VARCHAR(20) COLLATE \"es-x-icu\"", "CREATE INDEX per_nom ON noms (nom)", "nom", Language},
            {"VARCHAR(20) COLLATE \"es-x-icu\"", "CREATE INDEX per_nom ON noms (nom COLLATE \"C\")",
             "nom COLLATE \"C\"", CodePoints},
            {"VARCHAR(20) COLLATE \"es-x-icu\"", "CREATE INDEX per_nom ON noms (nom varchar_pattern_ops)",
             "nom COLLATE \"C\"", CodePoints},
            {"TEXT", "CREATE INDEX per_nom ON noms (nom text_pattern_ops)", "nom COLLATE \"C\"", CodePoints},
            {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (nom) WHERE grup > 0", "", None},
            {"VARCHAR(20)", "CREATE INDEX per_nom ON noms (lower(nom))", "", None},
            {"VARCHAR(20)", "CREATE INDEX per_nom ON noms USING hash (nom)", "", None}};
}

// The key of the first record of a result that is as is wanted.
AnsiString FirstOf(TDataSet& data, const AnsiString& wanted, TLocateOptions options) {
    const TextFolding folding = FoldingOf(options.Contains(loCaseInsensitive), options.Contains(loAccentInsensitive));
    const TField* name = data.FieldByName("nom");
    for (data.First(); !data.Eof(); data.Next()) {
        if (name->IsNull()) continue;
        const AnsiString held = name->AsString();
        const bool found = options.Contains(loPartialKey) ? BeginsFolded(held, wanted, folding)
                           : options.Empty()              ? held == wanted && held.find('?') == AnsiString::npos
                                                          : SameFolded(held, wanted, folding);
        if (found) return data.FieldByName("id")->AsString();
    }
    return "none";
}

}  // namespace

TEST_P(Conformance, WhatIsTypedIsFoundWithoutRegardToCaseAndAccents) {
    const bool paged = GetParam().Paged;
    int found = 0, none = 0;
    for (const Indexed& way : WaysToIndex(GetParam())) {
        SCOPED_TRACE(AnsiString(way.type) + ": " + way.index);
        MakeNames(mine, way.type, way.index);
        struct Result {
            const char* conditions;
            const char* order;
            bool leads;  // the searched column
        };
        for (const Result& result : {Result{"", "id", false},
                                     {"", "nom, id", true},
                                     {"", "nom DESC, id DESC", true},
                                     {"", "grup DESC, nom, id", false},
                                     {" WHERE grup <> 1", "id", false},
                                     {" WHERE grup = :g", "nom, id", true}}) {
            SCOPED_TRACE(AnsiString(result.conditions) + " / " + result.order);
            const AnsiString select = "SELECT id, nom, grup FROM noms" + AnsiString(result.conditions) + " ORDER BY ";
            const auto tried = Searched(mine, select + result.order, ctKeyset);
            ASSERT_EQ(tried->IsPaged(), paged);
            const auto whole = Searched(mine, select + result.order, ctStatic);
            const bool own = AnsiString(way.order) == "nom";
            const auto byIndex = paged && *way.order && !(own && result.leads)
                                     ? Searched(mine, select + way.order + ", " + result.order, ctStatic)
                                     : Searched(mine, select + result.order, ctStatic);
            std::mt19937 random(29);
            for (int i = 0; i < 60; ++i) {
                TLocateOptions options;
                if (random() % 4) options.Include(loPartialKey);
                if (random() % 4) options.Include(loCaseInsensitive);
                if (random() % 4) options.Include(loAccentInsensitive);
                const AnsiString wanted = RandomText(random, 4);
                const bool folded = options.Contains(loCaseInsensitive) || options.Contains(loAccentInsensitive);
                TDataSet& expected = folded ? *byIndex : *whole;
                const AnsiString id = FirstOf(expected, wanted, options);
                SCOPED_TRACE("'" + wanted + "' " + (options.Contains(loPartialKey) ? "p" : "") +
                             (options.Contains(loCaseInsensitive) ? "c" : "") +
                             (options.Contains(loAccentInsensitive) ? "a" : ""));
                ++(id == "none" ? none : found);
                ASSERT_EQ(tried->Locate("nom", Variant(wanted), options), id != "none");
                if (id != "none") {
                    ASSERT_EQ(tried->FieldByName("id")->AsString(), id);
                }
                // A whole text before longer ones.
                if (options.Contains(loPartialKey)) {
                    AnsiString first = FirstOf(expected, wanted, options - TLocateOptions{loPartialKey});
                    if (first == "none") first = id;
                    ASSERT_EQ(
                        VarToStr(tried->Lookup("nom", Variant(wanted), "id", options + TLocateOptions{loWholeFirst})),
                        first == "none" ? "" : first);
                }
                ASSERT_EQ(VarToStr(tried->Lookup("nom", Variant(wanted), "id", options)), id == "none" ? "" : id);
            }
        }
        mine.Close();
        mine.Open();
        mine.Execute("DROP TABLE noms");
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(none, 300);
}

TEST_P(Conformance, TheIndexThatLeadsToTextsIsReadFromTheCatalog) {
    const bool native = GetParam().Name.find("ODBC") == AnsiString::npos;
    for (const Indexed& way : WaysToIndex(GetParam())) {
        SCOPED_TRACE(AnsiString(way.type) + ": " + way.index);
        mine.Execute("CREATE TABLE noms (id INTEGER NOT NULL PRIMARY KEY, nom " + AnsiString(way.type) +
                     ", grup INTEGER)");
        if (*way.index) mine.Execute(way.index);
        const TextIndex index = mine.Provider().TextIndexOf("noms", "nom");
        EXPECT_EQ(index.Order, native ? way.sorting : TextIndex::Sorting::None);
        EXPECT_EQ(mine.Provider().TextIndexOf("noms", "grup").Order, TextIndex::Sorting::None);
        EXPECT_EQ(mine.Provider().TextIndexOf("noms", "nowhere").Order, TextIndex::Sorting::None);
        EXPECT_EQ(mine.Provider().TextIndexOf("nowhere", "nom").Order, TextIndex::Sorting::None);
        mine.Execute("DROP TABLE noms");
    }
}

TEST_P(Conformance, AnEmptyBeginningFindsTheFirstTextThatIsNotNull) {
    mine.Execute("UPDATE clients SET nota = NULL WHERE id = 1");
    const auto table = Table(mine, "clients");
    EXPECT_TRUE(table->Locate("nota", Variant(""), kTyped));
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 2);
    EXPECT_TRUE(table->Locate("nota", Variant(""), {loPartialKey}));
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 2);
    EXPECT_FALSE(table->Locate("nota", Variant(""), {loCaseInsensitive}));
    mine.Execute("UPDATE clients SET nota = NULL");
    EXPECT_FALSE(Table(mine, "clients")->Locate("nota", Variant(""), kTyped));
}

TEST_P(Conformance, ABeginningLongerThanAllTextsFindsNothing) {
    mine.Execute("CREATE INDEX per_nom ON clients (nom)");
    const auto table = Table(mine, "clients");
    for (const size_t length : {21, 300, 70000}) {
        EXPECT_FALSE(table->Locate("nom", Variant("soler" + AnsiString(length, 'a')), kTyped));
        EXPECT_FALSE(table->Locate("nota", Variant(AnsiString(length, 'a')), kTyped));
        EXPECT_FALSE(table->Locate("nota", Variant(AnsiString(length, '%')), {loCaseInsensitive}));
    }
    EXPECT_TRUE(table->Locate("nom", Variant("SOLER"), kTyped));
}

TEST_P(Conformance, NumbersAndDatesAreFoundByWhatTheyEqualHoweverTheyAreLookedFor) {
    mine.Execute("UPDATE clients SET alta = #03/09/2001#, pes = 12.5 WHERE id = 2");
    mine.Execute("INSERT INTO linies VALUES (123, 1, '\xC0x')");
    const auto lines = Table(mine, "linies");
    EXPECT_FALSE(lines->Locate("comanda", Variant("12"), kTyped));
    EXPECT_TRUE(lines->Locate("comanda", Variant("123"), kTyped));
    EXPECT_EQ(lines->FieldByName("comanda")->AsInteger(), 123);
    EXPECT_TRUE(lines->Locate("comanda;article", {Variant(1), Variant("Y")}, kTyped));
    EXPECT_EQ(lines->FieldByName("linia")->AsInteger(), 2);
    const auto clients = Table(mine, "clients");
    EXPECT_FALSE(clients->Locate("pes", Variant(12.0), kTyped));
    EXPECT_TRUE(clients->Locate("pes", Variant(12.5), kTyped));
    EXPECT_TRUE(clients->Locate("alta", Variant(TDateTime(EncodeDate(2001, 3, 9))), kTyped));
    EXPECT_EQ(clients->FieldByName("id")->AsInteger(), 2);
}

// More spellings than the engine is asked for one by one: it goes through all of them then.
TEST_P(Conformance, ManySpellingsInTheWayAreGoneThrough) {
    mine.Execute("CREATE TABLE molts (id INTEGER NOT NULL PRIMARY KEY, nom VARCHAR(20), grup INTEGER NOT NULL)");
    mine.Execute("CREATE INDEX molts_nom ON molts (nom)");
    constexpr int kLetters = 7;
    mine.BeginTrans();
    for (int spelling = 0; spelling < 1 << kLetters; ++spelling) {
        AnsiString name;
        for (int i = 0; i < kLetters; ++i) name += (spelling >> i) & 1 ? 'b' : 'B';
        const AnsiString id = IntToStr(spelling + 1);
        mine.Execute("INSERT INTO molts VALUES (" + id + ", '" + name + "', 1)");
    }
    mine.Execute("INSERT INTO molts VALUES (1000, 'bbbbbbb' || 'x', 1)");
    mine.Execute("INSERT INTO molts VALUES (1001, 'bbbbbbb' || 'x', 2)");
    mine.CommitTrans();
    for (const char* sql : {"SELECT id, nom FROM molts ORDER BY id", "SELECT id, nom FROM molts ORDER BY nom DESC, id",
                            "SELECT id, nom FROM molts WHERE grup < 3 ORDER BY id"}) {
        SCOPED_TRACE(sql);
        const auto query = Searched(mine, sql, ctKeyset);
        EXPECT_TRUE(query->Locate("nom", Variant("BbbbBBbX"), kTyped));
        EXPECT_EQ(query->FieldByName("id")->AsInteger(), 1000);
        EXPECT_FALSE(query->Locate("nom", Variant("bbbbbbby"), kTyped));
    }
}

TEST_P(Conformance, ALocatedRecordIsReadAloneAndItsNeighboursWhenSomebodyGoesThere) {
    mine.Execute("CREATE TABLE molts (id INTEGER NOT NULL PRIMARY KEY, nom VARCHAR(20))");
    mine.BeginTrans();
    for (int id = 1; id <= 1000; ++id)
        mine.Execute("INSERT INTO molts VALUES (" + IntToStr(id) + ", 'nom " + IntToStr(id) + "')");
    mine.CommitTrans();
    const auto query = Searched(mine, "SELECT id, nom FROM molts ORDER BY id", ctKeyset);
    const auto id = [&] { return query->FieldByName("id")->AsInteger(); };
    const int64_t rows = query->Rows().Count();
    ASSERT_TRUE(query->Locate("nom", Variant("NOM 70"), kTyped));
    EXPECT_EQ(id(), 70);
    if (GetParam().Paged) {
        EXPECT_EQ(query->Rows().Count(), rows + 1);
        EXPECT_EQ(query->FirstRecord(), 0);
    }
    EXPECT_FALSE(query->Bof());
    EXPECT_FALSE(query->Eof());
    const TBookmark mark = query->GetBookmark();
    query->Next();
    EXPECT_EQ(id(), 71);
    ASSERT_TRUE(query->Locate("id", Variant(500)));
    query->Prior();
    EXPECT_EQ(id(), 499);
    query->GotoBookmark(mark);
    EXPECT_EQ(id(), 70);
    // It is edited where it is.
    ASSERT_TRUE(query->Locate("id", Variant(900)));
    query->Edit();
    query->FieldByName("nom")->SetAsString("editat");
    query->Post();
    EXPECT_EQ(query->FieldByName("nom")->AsString(), "editat");
    EXPECT_EQ(Value("SELECT nom FROM molts WHERE id = 900"), "editat");
    query->Next();
    EXPECT_EQ(id(), 901);
    query->Prior();
    EXPECT_EQ(query->FieldByName("nom")->AsString(), "editat");
    // One that is deleted leaves its place to the next.
    ASSERT_TRUE(query->Locate("id", Variant(300)));
    query->Delete();
    EXPECT_EQ(id(), 301);
    query->Prior();
    EXPECT_EQ(id(), 299);
    // What others changed is found, and shown, as it is now.
    theirs.Execute("UPDATE molts SET nom = 'seu' WHERE id = 3");
    query->First();
    if (GetParam().Paged) {
        ASSERT_TRUE(query->Locate("nom", Variant("seu"), kTyped));
        EXPECT_EQ(id(), 3);
        EXPECT_EQ(query->FieldByName("nom")->AsString(), "seu");
    }
    // Searching does not gather what was found.
    for (int i = 0; i < 20000; ++i) ASSERT_TRUE(query->Locate("id", Variant(400 + i % 500)));
    if (GetParam().Paged) EXPECT_LT(query->Rows().Count(), 15000);
}

TEST_P(Conformance, HandlersMayGoElsewhereWhileARecordIsLocated) {
    const auto table = Table(mine, "clients");
    int scrolls = 0;
    table->BeforeScroll = [&](TDataSet* data) {
        ++scrolls;
        data->Lookup("id", Variant(1), "nom");
    };
    table->AfterScroll = [&](TDataSet*) { ++scrolls; };
    EXPECT_TRUE(table->Locate("nom", Variant("bosch"), kTyped));
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Bosch");
    EXPECT_EQ(scrolls, 2);
    table->BeforeScroll = [&](TDataSet* data) { data->Close(); };
    EXPECT_EQ(MessageOf([&] { table->Locate("nom", Variant("puig"), kTyped); }),
              "EDatabaseError: Cannot perform this operation on a closed dataset");
}

TEST_P(Conformance, FilteredRecordsAreLocatedAmongThoseThatAreShown) {
    mine.Execute("CREATE INDEX per_nom ON clients (nom)");
    mine.Execute("INSERT INTO clients (nom, nota) VALUES ('S\xF2ria', 'b')");
    const auto table = Table(mine, "clients");
    table->SetFilter("nota = 'b'");
    table->SetFiltered(true);
    EXPECT_TRUE(table->Locate("nom", Variant("so"), kTyped));
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 4);
    EXPECT_FALSE(table->Locate("nom", Variant("bosch"), kTyped));
    table->SetFiltered(false);
    EXPECT_TRUE(table->Locate("nom", Variant("bosch"), kTyped));
}
