#include "platform/objects/strings.h"

#include <gtest/gtest.h>

#include "platform/objects/collection.h"
#include "platform/text/exceptions.h"

using namespace vyn;

TEST(Strings, CommaTextQuotesWhatNeedsIt) {
    TStringList list{"a", "b c", "d\"e", "", "f,g"};
    EXPECT_EQ(list.CommaText(), "a,\"b c\",\"d\"\"e\",,\"f,g\"");
    TStringList back;
    back.SetCommaText(list.CommaText());
    EXPECT_TRUE(back.Equals(list));
}

TEST(Strings, CommaTextTakesBlanksAsSeparators) {
    TStringList list;
    list.SetCommaText("a b, c");
    EXPECT_TRUE(list.Equals(TStringList{"a", "b", "c"}));
    list.SetCommaText("A,,B,");
    EXPECT_TRUE(list.Equals(TStringList{"A", "", "B", ""}));
    list.SetCommaText("");
    EXPECT_EQ(list.Count(), 0);
}

TEST(Strings, OneEmptyLineIsNotNoLine) {
    TStringList list{""};
    EXPECT_EQ(list.CommaText(), "\"\"");
    TStringList back;
    back.SetCommaText(list.CommaText());
    EXPECT_EQ(back.Count(), 1);
}

TEST(Strings, TextTakesEveryLineBreak) {
    TStringList list;
    list.SetText("a\r\nb\nc\rd\r\n\r\ne");
    EXPECT_TRUE(list.Equals(TStringList{"a", "b", "c", "d", "", "e"}));
    EXPECT_EQ(list.Text(), "a\r\nb\r\nc\r\nd\r\n\r\ne\r\n");
}

TEST(Strings, ValuesFindByNameWithoutRegardToCase) {
    TStringList list{"Name=Anna", "Empty", "City=Vic=Osona"};
    EXPECT_EQ(list.Values("NAME"), "Anna");
    EXPECT_EQ(list.Values("city"), "Vic=Osona");
    EXPECT_EQ(list.Values("Empty"), "");
    list.SetValue("Name", "");
    EXPECT_EQ(list.IndexOfName("Name"), -1);
    list.SetValue("New", "1");
    EXPECT_EQ(list.Get(2), "New=1");
}

TEST(Strings, AnIndexOutsideIsAnError) {
    TStringList list{"a"};
    try {
        list.Get(1);
        FAIL();
    } catch (const EStringListError& error) {
        EXPECT_EQ(error.Message(), "List index out of bounds (1)");
    }
}

TEST(Strings, ASortedListKeepsItsOrderAndItsDuplicatesRule) {
    TStringList list;
    list.SetSorted(true);
    list.Add("b");
    list.Add("A");
    EXPECT_EQ(list.Add("B"), 1);
    EXPECT_EQ(list.Count(), 2);
    list.Duplicates = dupError;
    EXPECT_THROW(list.Add("a"), EStringListError);
    EXPECT_THROW(list.Insert(0, "z"), EStringListError);
}

TEST(Strings, ChangesBetweenBeginAndEndAreAnnouncedOnce) {
    TStringList list;
    int changes = 0;
    list.OnChange = [&](TObject*) { ++changes; };
    list.BeginUpdate();
    list.Add("a");
    list.Add("b");
    EXPECT_EQ(changes, 0);
    list.EndUpdate();
    EXPECT_EQ(changes, 1);
}

TEST(Strings, MoveKeepsTheObject) {
    TStringList list{"a", "b", "c"};
    TStringList tag;
    list.PutObject(0, &tag);
    list.Move(0, 2);
    EXPECT_TRUE(list.Equals(TStringList{"b", "c", "a"}));
    EXPECT_EQ(list.GetObject(2), &tag);
}

namespace {

class Item : public TCollectionItem {
    VYN_OBJECT
  public:
    using TCollectionItem::TCollectionItem;
    int Value = 0;
    void Assign(const TPersistent* source) override { Value = ObjectCast<Item>(source)->Value; }
};
const ClassInfo& Item::StaticClass() {
    static const ClassInfo info =
        DefineClass<Item, TCollectionItem>("Item").Published("Value", &Item::Value, &Item::Value);
    return info;
}

}  // namespace

TEST(Collection, ItemsMoveAndKeepTheirNumbers) {
    TOwnedCollection<Item> items(nullptr);
    items.Add()->Value = 10;
    items.Add()->Value = 20;
    Item* third = items.Add();
    third->Value = 30;
    third->SetIndex(0);
    EXPECT_EQ(items.Items(0)->Value, 30);
    EXPECT_EQ(third->ID(), 2);
    items.Delete(1);
    EXPECT_EQ(items.Count(), 2);
    EXPECT_EQ(items.FindItemID(0), nullptr);
    EXPECT_EQ(items.Add()->ID(), 3);
}

TEST(Collection, AssignCopiesTheItems) {
    TOwnedCollection<Item> first(nullptr), second(nullptr);
    first.Add()->Value = 1;
    first.Add()->Value = 2;
    second.Add();
    second.Assign(&first);
    ASSERT_EQ(second.Count(), 2);
    EXPECT_EQ(second.Items(1)->Value, 2);
}

TEST(Collection, AnAddedItemIsAnnouncedWhenItIsWhole) {
    // Who shows the items looks at each of them as soon as it hears of one.
    class Watched : public TOwnedCollection<Item> {
      public:
        Watched() : TOwnedCollection<Item>(nullptr) {}
        std::vector<AnsiString> Heard;

      protected:
        void Update(TCollectionItem*) override {
            AnsiString classes;
            for (int i = 0; i < Count(); ++i) classes += Items(i)->ClassName() + " ";
            Heard.push_back(classes);
        }
    };
    Watched items;
    items.Add();
    items.Add();
    EXPECT_EQ(items.Heard, (std::vector<AnsiString>{"Item ", "Item Item "}));
}

TEST(Collection, AnItemThatIsFreedLeaves) {
    TOwnedCollection<Item> items(nullptr);
    Item* item = items.Add();
    delete item;
    EXPECT_EQ(items.Count(), 0);
    EXPECT_THROW(items.Items(0), EListError);
}

TEST(StringList, SettingTheWholeTextAnnouncesTheChangeBeforeAndAfter) {
    TStringList list{"old"};
    std::vector<AnsiString> heard;
    list.OnChanging = [&](TObject*) { heard.push_back("changing " + list.CommaText()); };
    list.OnChange = [&](TObject*) { heard.push_back("changed " + list.CommaText()); };
    list.SetText("a\r\nb");
    EXPECT_EQ(heard, (std::vector<AnsiString>{"changing old", "changed a,b"}));
}
