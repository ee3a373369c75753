#include <random>

#include "conformance/engines.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

using namespace conformance;

// Tables of which only a part is kept: everything is as if all of it were.

namespace {

constexpr int kMany = 3000;

// "molts": keys with gaps, and columns with nulls, with values that come again, and with letters of every kind.
void MakeManyRecords(TADOConnection& connection, const Engine& engine) {
    connection.Execute("CREATE TABLE molts (id INTEGER NOT NULL PRIMARY KEY, nom VARCHAR(20), alta " + engine.DateTime +
                       ", credit DECIMAL(12,4), grup INTEGER NOT NULL)");
    std::mt19937 random(7);
    const char* names[] = {"Soler", "soler", "Àvila", "avila", "Puig", "Puigdemont", "Pujol", "Zorrilla", "Bosch"};
    connection.BeginTrans();
    TADOQuery insert(nullptr);
    insert.SetConnection(&connection);
    insert.SQL()->SetText("INSERT INTO molts VALUES (:id, :nom, :alta, :credit, :grup)");
    insert.Parameters()->ParamByName("alta")->DataType = ftDateTime;
    insert.Parameters()->ParamByName("nom")->DataType = ftString;
    insert.Parameters()->ParamByName("credit")->DataType = ftCurrency;
    int id = 0;
    for (int i = 0; i < kMany; ++i) {
        id += 1 + static_cast<int>(random() % 3);
        const auto set = [&](const char* name, const Variant& value) {
            insert.Parameters()->ParamByName(name)->SetValue(value);
        };
        set("id", Variant(id));
        set("nom", random() % 5 == 0 ? Variant::Null() : Variant(AnsiString(names[random() % 9])));
        set("alta", random() % 5 == 0
                        ? Variant::Null()
                        : Variant(TDateTime(36526 + static_cast<int>(random() % 40) + 0.5 * (random() % 2))));
        set("credit", random() % 5 == 0 ? Variant::Null() : Variant(Currency(0.25 * static_cast<int>(random() % 50))));
        set("grup", Variant(static_cast<int>(random() % 4)));
        insert.ExecSQL();
    }
    connection.CommitTrans();
}

std::unique_ptr<TADOQuery> Opened(TADOConnection& connection, const AnsiString& sql, TCursorType cursor) {
    auto query = std::make_unique<TADOQuery>(nullptr);
    query->SetConnection(&connection);
    query->SetCursorType(cursor);
    query->SQL()->SetText(sql);
    query->Open();
    return query;
}

AnsiString Shown(TDataSet& data) {
    AnsiString text = (data.Bof() ? "bof " : "") + AnsiString(data.Eof() ? "eof " : "");
    for (int i = 0; i < data.FieldCount(); ++i) text += data.Fields(i)->AsString() + "|";
    return text;
}

}  // namespace

// The same walk through a result that is kept whole and through one that may not be.
TEST_P(Conformance, ALargeTableIsWalkedThroughAsASmallOneIs) {
    MakeManyRecords(mine, GetParam());
    struct Order {
        const char* asked;
        const char* whole;
    };
    for (const Order& order :
         {Order{"", " ORDER BY id"}, Order{" ORDER BY id DESC", " ORDER BY id DESC"},
          Order{" ORDER BY nom", " ORDER BY nom, id"}, Order{" ORDER BY nom DESC", " ORDER BY nom DESC, id DESC"},
          Order{" ORDER BY alta, nom DESC", " ORDER BY alta, nom DESC, id"},
          Order{" ORDER BY grup DESC, molts.credit", " ORDER BY grup DESC, credit, id"},
          Order{" WHERE grup <> 2 ORDER BY 4 DESC", " WHERE grup <> 2 ORDER BY credit DESC, id DESC"}}) {
        SCOPED_TRACE(order.asked);
        const AnsiString sql = "SELECT id, nom, alta, credit, grup FROM molts";
        // Among equal ones the key counts; where results are not paged, the engine does as it likes.
        const auto tried = Opened(mine, sql + (GetParam().Paged ? order.asked : order.whole), ctKeyset);
        const auto whole = Opened(mine, sql + order.whole, ctStatic);
        EXPECT_EQ(tried->IsPaged(), GetParam().Paged);
        EXPECT_EQ(tried->RecordCount(), whole->RecordCount());
        ASSERT_EQ(Shown(*tried), Shown(*whole));
        std::mt19937 random(11);
        TBookmark triedMark = tried->GetBookmark(), wholeMark = whole->GetBookmark();
        for (int step = 0; step < 250; ++step) {
            const int what = static_cast<int>(random() % 12);
            SCOPED_TRACE("step " + std::to_string(step) + ": " + std::to_string(what));
            const int distance = static_cast<int>(random() % 40) * (random() % 10 == 0 ? 40 : 1);
            const Variant key(static_cast<int>(random() % (2 * kMany)));
            switch (what) {
                case 0:
                    tried->First();
                    whole->First();
                    break;
                case 1:
                    tried->Last();
                    whole->Last();
                    break;
                case 2:
                case 3:
                    EXPECT_EQ(tried->MoveBy(distance), whole->MoveBy(distance));
                    break;
                case 4:
                case 5:
                    EXPECT_EQ(tried->MoveBy(-distance), whole->MoveBy(-distance));
                    break;
                case 6:
                    EXPECT_EQ(tried->Locate("id", key), whole->Locate("id", key));
                    break;
                case 7: {
                    const TLocateOptions options =
                        random() % 2 ? TLocateOptions{loCaseInsensitive, loPartialKey} : TLocateOptions{loPartialKey};
                    EXPECT_EQ(tried->Locate("nom;grup", {Variant("Pu"), Variant(3)}, options),
                              whole->Locate("nom;grup", {Variant("Pu"), Variant(3)}, options));
                    break;
                }
                case 8:
                    triedMark = tried->GetBookmark();
                    wholeMark = whole->GetBookmark();
                    break;
                case 9:
                    tried->GotoBookmark(triedMark);
                    whole->GotoBookmark(wholeMark);
                    break;
                case 10:
                    // A grid looks elsewhere; the current record stays.
                    tried->Reach(static_cast<int64_t>(random() % kMany), 30);
                    break;
                default:
                    // A record that is in sight is clicked.
                    tried->Reach(static_cast<int64_t>(random() % kMany), 30);
                    tried->SetCurrentRecord(tried->FirstRecord() + 10);
                    whole->Locate("id", tried->FieldByName("id")->Value());
                    break;
            }
            ASSERT_EQ(Shown(*tried), Shown(*whole));
        }
        // Every record once, from either end.
        tried->First();
        int64_t count = 0;
        for (; !tried->Eof(); tried->Next()) ++count;
        EXPECT_EQ(count, whole->RecordCount());
        tried->Last();
        count = 0;
        for (; !tried->Bof(); tried->Prior()) ++count;
        EXPECT_EQ(count, whole->RecordCount());
    }
}

TEST_P(Conformance, RecordsWrittenInALargeTableAreFoundWhereTheyBelong) {
    MakeManyRecords(mine, GetParam());
    const auto table = Opened(mine, "SELECT id, nom, grup FROM molts ORDER BY nom, id", ctKeyset);
    // A new record in the midst, one behind all others, and one that moves to another place.
    ASSERT_TRUE(table->Locate("nom", Variant("Puig")));
    table->InsertRecord({Variant(100001), Variant("Puig"), Variant(1)});
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 100001);
    table->AppendRecord({Variant(100002), Variant("zz"), Variant(1)});
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), 100002);
    ASSERT_TRUE(table->Locate("nom", Variant("Zorrilla")));
    const int moved = table->FieldByName("id")->AsInteger();
    table->Edit();
    table->FieldByName("nom")->SetAsString("Aa");
    table->Post();
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "Aa");
    ASSERT_TRUE(table->Locate("nom", Variant("Bosch")));
    const int gone = table->FieldByName("id")->AsInteger();
    table->Next();
    const int next = table->FieldByName("id")->AsInteger();
    table->Prior();
    const TBookmark mark = table->GetBookmark();
    table->Delete();
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), next);
    EXPECT_FALSE(table->BookmarkValid(mark));
    EXPECT_FALSE(table->Locate("id", Variant(gone)));
    // Each is there once, on the way through all.
    std::map<int, int> seen;
    for (table->First(); !table->Eof(); table->Next()) ++seen[table->FieldByName("id")->AsInteger()];
    EXPECT_EQ(static_cast<int>(seen.size()), kMany + 1);
    EXPECT_EQ(seen[100001], 1);
    EXPECT_EQ(seen[100002], 1);
    EXPECT_EQ(seen[moved], 1);
    table->Refresh();
    std::vector<AnsiString> read, asked;
    for (table->First(); !table->Eof(); table->Next()) read.push_back(table->FieldByName("id")->AsString());
    const auto all = Opened(theirs, "SELECT id FROM molts ORDER BY nom, id", ctStatic);
    for (all->First(); !all->Eof(); all->Next()) asked.push_back(all->Fields(0)->AsString());
    EXPECT_EQ(read, asked);
}

TEST_P(Conformance, EditingGoesOnWhileAGridLooksElsewhereInALargeTable) {
    MakeManyRecords(mine, GetParam());
    const auto table = Opened(mine, "SELECT id, nom, grup FROM molts ORDER BY id", ctKeyset);
    table->Next();
    const AnsiString id = table->FieldByName("id")->AsString();
    table->Edit();
    table->FieldByName("nom")->SetAsString("editat");
    table->Reach(kMany - 100, 30);
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "editat");
    EXPECT_EQ(table->FieldByName("id")->AsString(), id);
    table->Post();
    EXPECT_EQ(Value("SELECT nom FROM molts WHERE id = " + id), "editat");
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "editat");
    // A new one, too, that is given up then.
    table->Insert();
    table->FieldByName("nom")->SetAsString("nou");
    table->Reach(kMany / 2, 30);
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "nou");
    table->Cancel();
    EXPECT_NE(table->FieldByName("nom")->AsString(), "nou");
    // What is appended begins at the end; given up, the record before is current again.
    ASSERT_TRUE(table->Locate("id", Variant(id)));
    table->Append();
    table->Cancel();
    EXPECT_EQ(table->FieldByName("id")->AsString(), id);
    EXPECT_EQ(table->RecordCount(), kMany);
}

TEST_P(Conformance, ALargeTableThatOthersChangeStaysInOrder) {
    MakeManyRecords(mine, GetParam());
    const auto table = Opened(mine, "SELECT id, nom, grup FROM molts ORDER BY id", ctKeyset);
    table->MoveBy(1000);
    const int here = table->FieldByName("id")->AsInteger();
    theirs.Execute("DELETE FROM molts WHERE id < " + IntToStr(here) + " AND grup = 0");
    theirs.Execute("UPDATE molts SET nom = 'seu' WHERE id = " + IntToStr(here));
    table->Refresh();
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), here);
    EXPECT_EQ(table->FieldByName("nom")->AsString(), "seu");
    theirs.Execute("DELETE FROM molts WHERE id = " + IntToStr(here));
    table->Refresh();
    EXPECT_NE(table->FieldByName("id")->AsInteger(), here);
    theirs.Execute("DELETE FROM molts");
    table->Refresh();
    EXPECT_TRUE(table->IsEmpty());
    EXPECT_TRUE(table->Eof());
    EXPECT_TRUE(table->FieldByName("id")->IsNull());
    table->AppendRecord({Variant(1), Variant("sol"), Variant(0)});
    EXPECT_EQ(table->RecordCount(), 1);
    table->Delete();
    EXPECT_TRUE(table->IsEmpty());
}

TEST_P(Conformance, LargeTablesAreSortedAndFilteredAsSmallOnesAre) {
    MakeManyRecords(mine, GetParam());
    const auto table = Opened(mine, "SELECT id, nom, grup, credit FROM molts", ctKeyset);
    table->MoveBy(7);
    const TBookmark mark = table->GetBookmark();
    const int id = table->FieldByName("id")->AsInteger();
    table->SetSort("[grup] DESC, credit");
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), id);
    table->First();
    EXPECT_EQ(table->FieldByName("grup")->AsInteger(), 3);
    table->Last();
    EXPECT_EQ(table->FieldByName("grup")->AsInteger(), 0);
    EXPECT_THROW(table->SetSort("que"), EDatabaseError);
    EXPECT_EQ(table->Sort(), "[grup] DESC, credit");
    table->GotoBookmark(mark);
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), id);
    table->SetFilter("grup = 2 AND nom LIKE 'Pu%'");
    table->SetFiltered(true);
    EXPECT_EQ(IntToStr(table->RecordCount()),
              Value("SELECT COUNT(*) FROM molts WHERE grup = 2 AND nom IN ('Puig', 'Puigdemont', 'Pujol')"));
    table->SetFiltered(false);
    table->SetSort("");
    table->GotoBookmark(mark);
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), id);
    // Going to records that a filter takes, while all are shown.
    const AnsiString found = "(id) FROM molts WHERE grup = 2 AND nom IN ('Puig', 'Puigdemont', 'Pujol')";
    table->Last();
    EXPECT_TRUE(table->FindFirst());
    const int first = table->FieldByName("id")->AsInteger();
    EXPECT_EQ(IntToStr(first), Value("SELECT min" + found));
    table->Reach(kMany - 40, 30);
    EXPECT_TRUE(table->FindNext());
    EXPECT_GT(table->FieldByName("id")->AsInteger(), first);
    EXPECT_TRUE(table->FindPrior());
    EXPECT_EQ(table->FieldByName("id")->AsInteger(), first);
    EXPECT_TRUE(table->FindLast());
    EXPECT_EQ(table->FieldByName("id")->AsString(), Value("SELECT max" + found));
    EXPECT_FALSE(table->FindNext());
}
