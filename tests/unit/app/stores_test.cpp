#include <gtest/gtest.h>

#include <functional>

#include "app/components_vyn.h"
#include "app/nodes_list.h"
#include "persistence/Utrecursosvyn.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/numbers.h"
#include "support/errors.h"

using namespace vyn;

namespace app_store_tests {

std::string Hex(std::string_view bytes) {
    std::string result;
    for (unsigned char byte : bytes) result += IntToHex(byte, 2);
    return result;
}
int Put(TComponentsVyn& store, int id, std::string_view bytes = "x", int type = 0, AnsiString name = "n") {
    TMemoryStream stream(bytes);
    return store.InsertComponent(TComponentVyn{id, type, std::move(name)}, stream);
}
std::string BytesOf(const TComponentsVyn& store, int id) { return std::string(store.GetStreamComponent(id)->Bytes()); }
std::string Stored(TComponentsVyn& store) {
    TMemoryStream stream;
    store.SaveToStream(stream);
    return std::string(stream.Bytes());
}
void Load(TComponentsVyn& store, std::string_view bytes) {
    TMemoryStream stream(bytes);
    store.LoadFromStream(stream);
}
std::vector<int> Numbers(const TComponentVynList& list) {
    std::vector<int> numbers;
    for (const TComponentVyn& each : list) numbers.push_back(each.IDComponent);
    return numbers;
}
std::vector<int> Numbers(const TComponentsVyn& store) {
    return Numbers(store.GetComponentsList(TArrayOfTComponentsType{}));
}
using List = std::vector<int>;

class TComponentsHolder : public TComponent {
    VYN_OBJECT
  public:
    explicit TComponentsHolder(TComponent* owner) : TComponent(owner), store_(nullptr) {}
    TComponentsVyn* Store() const { return const_cast<TComponentsVyn*>(&store_); }
    void SetStore(TComponentsVyn*) {}

  private:
    TComponentsVyn store_;
};
const ClassInfo& TComponentsHolder::StaticClass() {
    static const ClassInfo info = DefineClass<TComponentsHolder, TComponent>("TComponentsHolder")
                                      .Published("Store", &TComponentsHolder::Store, &TComponentsHolder::SetStore);
    return info;
}

}  // namespace app_store_tests

using namespace app_store_tests;

TEST(ComponentStore, AddingNumbersAfterTheHighest) {
    TComponentsVyn store(nullptr);
    TMemoryStream bytes("abc");
    bytes.SetPosition(2);
    EXPECT_EQ(store.GetNewIDComponent(), 1);
    EXPECT_EQ(store.AddComponent("A", 4, bytes), 1);
    EXPECT_EQ(Put(store, 9), 1);
    EXPECT_EQ(store.AddComponent("B", 5, bytes), 10);
    EXPECT_EQ(BytesOf(store, 10), "abc");
    EXPECT_EQ(store.GetComponent(10).Name, "B");
    EXPECT_EQ(store.GetComponent(10).CompType, 5);
    EXPECT_EQ(Numbers(store), (List{1, 9, 10}));
    EXPECT_TRUE(store.Modified);
}

TEST(ComponentStore, TheHighestNumberIsUsedAgainAfterItIsDeleted) {
    TComponentsVyn store(nullptr);
    Put(store, 3);
    Put(store, 8);
    store.DeleteComponent(8);
    EXPECT_EQ(store.GetNewIDComponent(), 4);
}

TEST(ComponentStore, AGapIsUsedAfterTheLargestNumber) {
    TComponentsVyn store(nullptr);
    Put(store, 1);
    Put(store, INT32_MAX);
    EXPECT_EQ(store.GetNewIDComponent(), 2);
}

TEST(ComponentStore, ANumberStandsOnce) {
    TComponentsVyn store(nullptr);
    Put(store, 3);
    EXPECT_EQ(MessageOf([&] { Put(store, 3); }), "EComponentsVyn: Duplicate IDComponents: 3");
    EXPECT_EQ(store.Count(), 1);
}

TEST(ComponentStore, MissingNumbersAreRefused) {
    TComponentsVyn store(nullptr);
    TMemoryStream bytes;
    EXPECT_EQ(MessageOf([&] { store.DeleteComponent(7); }),
              "EComponentsVyn: ID Not found in TComponentsVynStream.DeleteComponent: 7");
    EXPECT_EQ(MessageOf([&] { store.ModifyComponent(7, "", 0); }),
              "EComponentsVyn: IDComponent not found in TComponentsVynStream.ModifyComponent");
    EXPECT_EQ(MessageOf([&] { store.SetStreamComponent(7, bytes); }),
              "EComponentsVyn: IDComponent not found in TComponentsVynStream.SetStreamComponent");
    EXPECT_EQ(MessageOf([&] { store.GetStreamComponent(7); }),
              "EComponentsVyn: IDComponent not found in TComponentsVynStream.GetStreamComponent");
    EXPECT_EQ(MessageOf([&] { store.GetComponent(7); }), "EComponentsVyn: IDComponent not found: 7");
    EXPECT_EQ(MessageOf([&] { store.GetIdxComponent(0); }), "EComponentsVyn: Index out of range in GetIdxComponent: 0");
    EXPECT_EQ(MessageOf([&] { store.GetIdxComponent(-1); }),
              "EComponentsVyn: Index out of range in GetIdxComponent: -1");
    EXPECT_EQ(store.FindInList(7), -1);
    EXPECT_FALSE(store.Modified);
}

TEST(ComponentStore, DeletingTakesTheResourcesThatBelongToIt) {
    TRecursosVyn resources;
    TMemoryStream bytes;
    resources.InsertTRecursos(TRecursos{1, 5, "", 0}, bytes);
    resources.InsertTRecursos(TRecursos{2, 6, "", 0}, bytes);
    resources.InsertTRecursos(TRecursos{3, 5, "", 0}, bytes);
    TComponentsVyn store(&resources);
    Put(store, 6);
    Put(store, 5);
    store.DeleteComponent(5);
    EXPECT_EQ(resources.Count(), 1);
    EXPECT_TRUE(resources.FindIDRecursos(2));
    EXPECT_EQ(Numbers(store), (List{6}));
}

TEST(ComponentStore, ResourcesGoEvenWhenTheComponentIsMissing) {
    TRecursosVyn resources;
    TMemoryStream bytes;
    resources.InsertTRecursos(TRecursos{1, 5, "", 0}, bytes);
    TComponentsVyn store(&resources);
    EXPECT_NE(MessageOf([&] { store.DeleteComponent(5); }), "no error");
    EXPECT_EQ(resources.Count(), 0);
}

TEST(ComponentStore, ANumberChangesWhenTheNewOneIsFree) {
    TComponentsVyn store(nullptr);
    Put(store, 1, "one");
    Put(store, 2);
    store.Modified = false;
    EXPECT_FALSE(store.ChangeIDComponent(1, 2));
    EXPECT_FALSE(store.ChangeIDComponent(7, 8));
    EXPECT_FALSE(store.ChangeIDComponent(1, 1));
    EXPECT_FALSE(store.Modified);
    EXPECT_TRUE(store.ChangeIDComponent(1, 9));
    EXPECT_TRUE(store.Modified);
    EXPECT_EQ(Numbers(store), (List{9, 2}));
    EXPECT_EQ(BytesOf(store, 9), "one");
    EXPECT_EQ(store.GetNewIDComponent(), 10);
}

TEST(ComponentStore, EachChangeSetsTheFlag) {
    TComponentsVyn store(nullptr);
    Put(store, 1, "old");
    TMemoryStream bytes("new");
    bytes.SetPosition(3);
    const std::function<void()> changes[] = {
        [&] { store.ModifyComponent(1, "m", 8); }, [&] { store.SetStreamComponent(1, bytes); }, [&] { Put(store, 2); },
        [&] { store.DeleteComponent(2); },         [&] { store.ChangeIDComponent(1, 3); },      [&] { store.Clear(); }};
    for (const auto& change : changes) {
        store.Modified = false;
        change();
        EXPECT_TRUE(store.Modified);
        if (store.FindIDComponent(3)) {
            EXPECT_EQ(BytesOf(store, 3), "new");
            EXPECT_EQ(store.GetComponent(3).Name, "m");
        }
    }
    EXPECT_EQ(store.Count(), 0);
    EXPECT_EQ(store.GetNewIDComponent(), 1);
}

TEST(ComponentStore, ListsAreFilteredByType) {
    TComponentsVyn store(nullptr);
    Put(store, 3, "", 8);
    Put(store, 1, "", 9);
    Put(store, 2, "", 8);
    EXPECT_EQ(Numbers(store.GetComponentsList(8)), (List{3, 2}));
    EXPECT_EQ(Numbers(store.GetComponentsList(TArrayOfTComponentsType{9, 8})), (List{3, 1, 2}));
    EXPECT_EQ(Numbers(store.GetComponentsList(TArrayOfTComponentsType{})), (List{3, 1, 2}));
    EXPECT_EQ(Numbers(store.GetComponentsList(7)), (List{}));
}

TEST(ComponentStore, BytesOfTheStream) {
    TComponentsVyn store(nullptr);
    Put(store, 300, "ab", 9, "N");
    EXPECT_EQ(Hex(Stored(store)), "060D" + Hex("TComponentVyn") +
                                      "01"
                                      "01"
                                      "070B" +
                                      Hex("IDComponent") +
                                      "032C01"
                                      "0704" +
                                      Hex("Name") +
                                      "06014E"
                                      "0708" +
                                      Hex("CompType") +
                                      "0209"
                                      "0706" +
                                      Hex("Stream") +
                                      "06026162"
                                      "00"
                                      "00");
}

TEST(ComponentStore, SavedAndLoadedItIsTheSame) {
    TComponentsVyn store(nullptr), other(nullptr);
    Put(store, 5, std::string("\0\xFF\x01", 3), 4, "five");
    Put(store, 2, std::string(70000, 'z'), 8, "two");
    Put(store, 9, "", 1, "");
    Load(other, Stored(store));
    EXPECT_EQ(Stored(other), Stored(store));
    EXPECT_EQ(Numbers(other), (List{5, 2, 9}));
    EXPECT_EQ(BytesOf(other, 5), std::string("\0\xFF\x01", 3));
}

TEST(ComponentStore, TheTagIsReadWithItsCase) {
    TComponentsVyn store(nullptr);
    std::string bytes = Stored(store);
    bytes.replace(2, 13, "tcomponentvyn");
    EXPECT_EQ(MessageOf([&] { Load(store, bytes); }), "EComponentsVyn: Stream is not a TComponentsVyn format");
}

TEST(ComponentStore, LoadingAddsAndRefusesANumberThatIsThere) {
    TComponentsVyn store(nullptr), other(nullptr);
    Put(store, 1);
    Put(store, 2);
    Put(other, 7);
    Load(other, Stored(store));
    EXPECT_EQ(Numbers(other), (List{7, 1, 2}));
    EXPECT_EQ(MessageOf([&] { Load(other, Stored(store)); }), "EComponentsVyn: Duplicate IDComponents: 1");
}

TEST(ComponentStore, AnotherValueAfterTheTagIsLeftThere) {
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.WriteString("TComponentVyn");
        writer.WriteInteger(5);
    }
    stream.SetPosition(0);
    TComponentsVyn store(nullptr);
    store.LoadFromStream(stream);
    EXPECT_EQ(store.Count(), 0);
    EXPECT_EQ(stream.Position(), 15);
}

TEST(ComponentStore, TruncatedOrDamagedAnywhereItRaisesOrReadsAndNeverCrashes) {
    TComponentsVyn store(nullptr);
    Put(store, 1, "first");
    Put(store, 2, "second");
    const std::string bytes = Stored(store);
    for (size_t length = 0; length < bytes.size(); ++length) {
        TComponentsVyn other(nullptr);
        EXPECT_THROW(Load(other, std::string_view(bytes).substr(0, length)), EReadError) << length;
    }
    int read = 0;
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        TComponentsVyn other(nullptr);
        try {
            Load(other, damaged);
            Stored(other);
            TMemoryStream more("x");
            other.AddComponent("", 0, more);
            ++read;
        } catch (const Exception&) {
        }
    }
    EXPECT_GT(read, 0);
}

TEST(ComponentStore, TheFormHoldsThemAsComponents) {
    TComponentsHolder empty(nullptr), full(nullptr), read(nullptr);
    TMemoryStream stream;
    WriteComponentToStream(stream, empty);
    EXPECT_EQ(stream.Bytes().find("COMPONENTS"), std::string_view::npos);
    Put(*full.Store(), 4, "bytes", 2, "name");
    stream.Clear();
    WriteComponentToStream(stream, full);
    EXPECT_NE(stream.Bytes().find("Store.COMPONENTS\x01"), std::string_view::npos);
    stream.SetPosition(0);
    ReadComponentFromStream(stream, &read);
    EXPECT_EQ(Stored(*read.Store()), Stored(*full.Store()));
}

TEST(OpenNodes, TheFirstComponentOfANodeStays) {
    TNodesList list(true);
    TComponent first(nullptr), second(nullptr);
    EXPECT_EQ(list.Add({5, &first}), 0);
    EXPECT_EQ(list.Add({6, &second}), 1);
    EXPECT_EQ(list.Add({5, &second}), 0);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.GetItem(0).Component, &first);
    EXPECT_EQ(list.IndexOf(6), 1);
    EXPECT_EQ(list.IndexOf(&second), 1);
    EXPECT_EQ(list.IndexOf(7), -1);
}

TEST(OpenNodes, AFreedComponentLeavesAWatchingList) {
    TNodesList list(true);
    auto component = std::make_unique<TComponent>(nullptr);
    TComponent other(nullptr);
    list.Add({5, component.get()});
    list.Add({6, &other});
    component.reset();
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(list.GetItem(0).IDNode, 6);
}

TEST(OpenNodes, AListThatDoesNotWatchKeepsItsPairs) {
    TNodesList list(false);
    auto component = std::make_unique<TComponent>(nullptr);
    list.Add({5, component.get()});
    component.reset();
    EXPECT_EQ(list.Count(), 1);
}

TEST(OpenNodes, ComponentsThatComeByReplacementAreWatchedToo) {
    TNodesList list(true);
    TComponent first(nullptr);
    auto second = std::make_unique<TComponent>(nullptr);
    list.Add({5, &first});
    list.SetItem(0, {5, second.get()});
    second.reset();
    EXPECT_EQ(list.Count(), 0);
}

TEST(OpenNodes, DeletingAnUnknownNodeDoesNothing) {
    TNodesList list(true);
    TComponent component(nullptr);
    list.Add({5, &component});
    list.Delete(6);
    EXPECT_EQ(list.Count(), 1);
    list.Delete(5);
    EXPECT_EQ(list.Count(), 0);
}

TEST(OpenNodes, PositionsOutsideAreRefused) {
    TNodesList list(true);
    EXPECT_THROW(list.GetItem(0), EListError);
    EXPECT_THROW(list.Remove(-1), EListError);
    EXPECT_THROW(list.SetItem(0, {}), EListError);
}

TEST(OpenNodes, TheListMayGoBeforeItsComponents) {
    auto list = std::make_unique<TNodesList>(true);
    TComponent component(nullptr);
    list->Add({5, &component});
    list.reset();
}

TEST(AppErrors, HaveTheirBases) {
    EXPECT_TRUE((std::is_base_of_v<EVynError, EFatalError>));
    EXPECT_TRUE((std::is_base_of_v<EVynError, EDissenyError>));
    EXPECT_TRUE((std::is_base_of_v<EVynError, EDataBaseVynError>));
    EXPECT_TRUE((std::is_base_of_v<Exception, EVynError>));
    EXPECT_FALSE((std::is_base_of_v<EVynError, EComponentsVyn>));
    EXPECT_FALSE((std::is_base_of_v<EVynError, EProcedureVyn>));
    EXPECT_STREQ(EDissenyError("x").ClassName(), "EDissenyError");
}
