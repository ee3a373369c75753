#include <gtest/gtest.h>

#include "platform/access/ado.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/clipboard.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "providers/sqlite/connection.h"

// Grids on large tables, which are read in pages: what the user sees is right, whatever the engine's estimate is.

using namespace vyn;

namespace {

constexpr int kMany = 30000;

class PagedGrid : public testing::Test {
  protected:
    PagedGrid() {
        RegisterSqliteProvider();
        FormatSettings() = InvariantFormatSettings();
        connection.SetConnectionString("Provider=SQLite;Data Source=:memory:");
        // Keys with gaps: 10, 20, ... and one far away, so that the engine takes the table to be larger than it is.
        connection.Execute("CREATE TABLE molts (id INTEGER PRIMARY KEY, nom VARCHAR(20))");
        connection.Execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                           IntToStr(kMany) + ") INSERT INTO molts SELECT i * 10, 'n' || (i * 10) FROM n");
        connection.Execute("INSERT INTO molts VALUES (1000000, 'n1000000')");
        query.SetConnection(&connection);
        query.SQL()->SetText("SELECT id, nom FROM molts ORDER BY id");
        source.SetDataSet(&query);
        grid.SetBounds(0, 0, 300, 200);
        grid.SetDataSource(&source);
        query.Open();
    }
    AnsiString IdAt(int64_t record) { return grid.CellText(record, *grid.ShownColumns()[0]); }
    // The keys of the rows in sight.
    std::vector<AnsiString> Seen() {
        std::vector<AnsiString> ids;
        for (int i = 0; i < grid.VisibleRows(); ++i) ids.push_back(IdAt(grid.TopRecord() + i));
        return ids;
    }
    // Those that stand in the table from a key on.
    std::vector<AnsiString> Stored(const AnsiString& from) {
        TADOQuery all(nullptr);
        all.SetConnection(&connection);
        all.SetCursorType(ctStatic);
        all.SQL()->SetText("SELECT id FROM molts WHERE id >= " + from + " ORDER BY id LIMIT " +
                           IntToStr(grid.VisibleRows()));
        all.Open();
        std::vector<AnsiString> ids;
        for (; !all.Eof(); all.Next()) ids.push_back(all.Fields(0)->AsString());
        return ids;
    }
    void Press(uint16_t key, TShiftState shift = {}) { grid.KeyDown(key, shift); }

    TADOConnection connection{nullptr};
    TADOQuery query{nullptr};
    TDataSource source{nullptr};
    TDBGrid grid{nullptr};
};

}  // namespace

TEST_F(PagedGrid, ShowsNeighboursWhereverTheScrollBarGoes) {
    ASSERT_TRUE(query.IsPaged());
    EXPECT_EQ(query.RecordsExpected(), 1000000);  // the engine's estimate
    for (const int64_t place : {0, 5, 1000, 20000, 250000, 600000, 999999, 400000, 30, 0}) {
        SCOPED_TRACE(place);
        grid.ProcessScroll(place);
        const std::vector<AnsiString> seen = Seen();
        EXPECT_EQ(seen, Stored(seen[0]));
        EXPECT_EQ(query.FieldByName("id")->AsString(), "10");
        EXPECT_LE(query.Rows().Count(), 20000);
    }
}

TEST_F(PagedGrid, AtTheEndAWholeScreenStandsBeforeIt) {
    grid.ProcessScroll(query.RecordsExpected());
    EXPECT_EQ(Seen().back(), "1000000");
    EXPECT_EQ(grid.TopRecord() + grid.VisibleRows(), query.RecordsExpected());
    Press(VK_END, {ssCtrl});
    EXPECT_EQ(query.FieldByName("id")->AsString(), "1000000");
    EXPECT_EQ(Seen().back(), "1000000");
    Press(VK_PRIOR);
    EXPECT_EQ(query.FieldByName("id")->AsString(), IntToStr((kMany - grid.VisibleRows() + 1) * 10));
    Press(VK_HOME, {ssCtrl});
    EXPECT_EQ(Seen()[0], "10");
    EXPECT_EQ(query.RecNo(), 1);
}

TEST_F(PagedGrid, GoingUpFromTheEndArrivesAtTheBeginning) {
    Press(VK_END, {ssCtrl});
    int pages = 0;
    for (; !query.Bof(); ++pages) {
        Press(VK_PRIOR);
        const std::vector<AnsiString> seen = Seen();
        ASSERT_EQ(seen, Stored(seen[0])) << pages;
        ASSERT_LT(pages, kMany);
    }
    EXPECT_EQ(query.FieldByName("id")->AsString(), "10");
    // Numbers were estimated on the way, and are right here.
    EXPECT_EQ(query.RecNo(), 1);
    EXPECT_EQ(grid.TopRecord(), 0);
}

TEST_F(PagedGrid, NumbersThatTurnOutTooSmallMakeRoom) {
    // The table is larger than the engine takes it to be.
    query.Close();
    connection.Execute("DELETE FROM molts WHERE id = 1000000");
    connection.Execute("UPDATE molts SET id = id - 279990");
    query.Open();
    ASSERT_TRUE(query.IsPaged());
    EXPECT_EQ(query.RecordsExpected(), 20010);
    Press(VK_END, {ssCtrl});
    while (!query.Bof()) {
        Press(VK_PRIOR);
        ASSERT_GE(query.CurrentRecord(), 0);
        const std::vector<AnsiString> seen = Seen();
        ASSERT_EQ(seen, Stored(seen[0]));
    }
    EXPECT_EQ(query.FieldByName("id")->AsString(), "-279980");
    EXPECT_EQ(query.RecNo(), 1);
}

TEST_F(PagedGrid, AKeyBringsTheCurrentRecordBackIntoSight) {
    query.MoveBy(3);
    grid.ProcessScroll(500000);
    EXPECT_NE(Seen()[0], "10");
    Press(VK_DOWN);
    EXPECT_EQ(query.FieldByName("id")->AsString(), "50");
    const std::vector<AnsiString> seen = Seen();
    EXPECT_NE(std::find(seen.begin(), seen.end(), "50"), seen.end());
}

TEST_F(PagedGrid, AClickTakesTheRecordThatIsSeen) {
    grid.ProcessScroll(500000);
    const AnsiString clicked = Seen()[4];
    grid.ProcessCellClick(grid.TopRecord() + 4, 0);
    EXPECT_EQ(query.FieldByName("id")->AsString(), clicked);
    EXPECT_EQ(Seen()[4], clicked);
}

TEST_F(PagedGrid, TypingGoesToTheRecordByTheEngine) {
    grid.ReadOnly = true;
    grid.SetSelectedIndex(1);
    for (char key : AnsiString("n2999")) grid.KeyPress(key);
    EXPECT_EQ(query.FieldByName("nom")->AsString(), "n29990");
    const std::vector<AnsiString> seen = Seen();
    EXPECT_NE(std::find(seen.begin(), seen.end(), "29990"), seen.end());
    EXPECT_LE(query.Rows().Count(), 1000);
}

TEST_F(PagedGrid, MarkedRecordsAreCopiedAndDeletedFromFarApart) {
    grid.SetOptions(grid.Options() + TDBGridOptions{dgMultiSelect} - TDBGridOptions{dgConfirmDelete});
    query.MoveBy(1);
    grid.SelectedRows().SetCurrentRowSelected(true);
    query.Last();
    query.Prior();
    grid.SelectedRows().SetCurrentRowSelected(true);
    EXPECT_EQ(grid.SelectedRows().Count(), 2);
    grid.CopyToClipboard();
    EXPECT_EQ(Clipboard()->AsText(), "20\tn20\r\n300000\tn300000\r\n");
    EXPECT_EQ(query.FieldByName("id")->AsString(), "300000");
    query.First();
    EXPECT_TRUE(grid.SelectedRows().Contains(1));
    Press(VK_DELETE, {ssCtrl});
    EXPECT_EQ(query.RecordCount(), kMany - 1);
    EXPECT_FALSE(query.Locate("id", Variant(20)));
    EXPECT_FALSE(query.Locate("id", Variant(300000)));
    EXPECT_TRUE(query.Locate("id", Variant(30)));
}

TEST_F(PagedGrid, TheTitleSortsByTheEngine) {
    grid.ProcessTitleClick(1);
    EXPECT_TRUE(query.IsPaged());
    EXPECT_EQ(query.FieldByName("id")->AsString(), "10");
    grid.ProcessTitleClick(1);
    EXPECT_EQ(query.Sort(), "[nom] DESC");
    query.First();
    EXPECT_EQ(query.FieldByName("nom")->AsString(), "n99990");
    EXPECT_EQ(Seen()[1], "99980");
}

TEST_F(PagedGrid, AFilterReadsAllRecordsAndItsEndGoesBackToPages) {
    query.SetFilter("id > 299900");
    query.SetFiltered(true);
    EXPECT_FALSE(query.IsPaged());
    EXPECT_EQ(query.RecordCount(), 11);
    query.Close();
    query.SetFiltered(false);
    query.Open();
    EXPECT_TRUE(query.IsPaged());
}

TEST_F(PagedGrid, WhoeverWalksThroughAllKeepsFew) {
    constexpr int64_t kFew = kMany / 2;
    int64_t most = 0;
    size_t memory = 0;
    for (query.First(); !query.Eof(); query.Next()) {
        most = std::max(most, query.Rows().Count());
        memory = std::max(memory, query.Rows().MemoryUsed());
    }
    EXPECT_EQ(query.FieldByName("id")->AsString(), "1000000");
    EXPECT_LT(most, kFew);
    EXPECT_LT(memory, size_t{2} << 20);
    // And the first one is still where it was.
    query.First();
    EXPECT_EQ(Seen(), Stored("10"));
}

TEST_F(PagedGrid, TheCurrentRecordIsAtHandWhileOthersAreReadAndForgotten) {
    query.MoveBy(2);
    for (int64_t place = 0; place < 1000000; place += 1000) grid.ProcessScroll(place);
    EXPECT_EQ(query.FieldByName("id")->AsString(), "30");
    EXPECT_EQ(query.FieldByName("nom")->AsString(), "n30");
    EXPECT_LT(query.Rows().Count(), kMany / 2);
}

TEST_F(PagedGrid, ARecordWrittenHereIsSeenWhereItBelongs) {
    query.InsertRecord({Variant(150005), Variant("nou")});
    grid.ProcessScroll(149990);
    const std::vector<AnsiString> seen = Seen();
    EXPECT_EQ(seen, Stored(seen[0]));
    EXPECT_NE(std::find(seen.begin(), seen.end(), "150005"), seen.end());
    // It is the current one, too.
    Press(VK_DOWN);
    EXPECT_EQ(query.FieldByName("id")->AsString(), "150010");
}

TEST_F(PagedGrid, LookedUpFieldsAskTheEngineOfALargeTable) {
    TADOQuery lines(nullptr);
    lines.SetConnection(&connection);
    lines.SQL()->SetText("SELECT 300000 AS molt UNION ALL SELECT 7 UNION ALL SELECT 300000");
    auto* name = new TStringField(&lines);
    name->SetFieldName("Nom");
    name->SetFieldKind(fkLookup);
    name->KeyFields = "molt";
    name->SetLookupDataSet(&query);
    name->LookupKeyFields = "id";
    name->LookupResultField = "nom";
    name->LookupCache = true;
    name->SetDataSet(&lines);
    lines.Open();
    query.Last();
    EXPECT_EQ(name->AsString(), "n300000");
    lines.Next();
    EXPECT_TRUE(name->IsNull());
    connection.Execute("UPDATE molts SET nom = 'altre' WHERE id = 300000");
    lines.Next();
    EXPECT_EQ(name->AsString(), "n300000") << "what was asked once is kept";
    name->RefreshLookupList();
    lines.First();
    EXPECT_EQ(name->AsString(), "altre");
    EXPECT_EQ(query.FieldByName("id")->AsString(), "1000000");
    EXPECT_LT(query.Rows().Count(), 1000);
}

TEST_F(PagedGrid, RecordsLookedUpAreNotKept) {
    query.Last();
    const int64_t rows = query.Rows().Count();
    AnsiString seen;
    for (int id = 10000; id < 20000; id += 10)
        EXPECT_TRUE(query.LookUp("id", Variant(id), {}, [&] { seen = query.FieldByName("nom")->AsString(); }));
    EXPECT_EQ(seen, "n19990");
    EXPECT_FALSE(query.LookUp("id", Variant(7), {}, [&] { seen = "nobody"; }));
    EXPECT_EQ(seen, "n19990");
    EXPECT_EQ(query.Rows().Count(), rows);
    EXPECT_EQ(query.FieldByName("id")->AsString(), "1000000");
    EXPECT_EQ(IdAt(query.CurrentRecord()), "1000000");
}

TEST_F(PagedGrid, AnErrorWhileShowingIsToldOnceAndMovingTriesAgain) {
    connection.Execute("ALTER TABLE molts RENAME TO altres");
    EXPECT_THROW(grid.ProcessScroll(500000), EDatabaseError);
    EXPECT_NO_THROW(grid.ProcessScroll(600000));
    EXPECT_EQ(query.FieldByName("id")->AsString(), "10");
    EXPECT_THROW(query.Last(), EDatabaseError);
    connection.Execute("ALTER TABLE altres RENAME TO molts");
    query.Last();
    EXPECT_EQ(query.FieldByName("id")->AsString(), "1000000");
    grid.ProcessScroll(500000);
    const std::vector<AnsiString> seen = Seen();
    EXPECT_EQ(seen, Stored(seen[0]));
}
