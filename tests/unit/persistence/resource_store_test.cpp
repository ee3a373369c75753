#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>

#include "foundation/Uparametres.h"
#include "persistence/Utrecursosvyn.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/numbers.h"

using namespace vyn;

namespace resource_store_tests {

AnsiString ErrorOf(const std::function<void()>& action) {
    const AnsiString prefix = "TRecursosVyn Error:\n";
    try {
        action();
    } catch (const ERecursosVyn& error) {
        return error.Message().rfind(prefix, 0) == 0 ? error.Message().substr(prefix.size()) : "no prefix";
    } catch (const Exception& error) {
        return AnsiString(error.ClassName()) + ": " + error.Message();
    }
    return "no error";
}
std::string Hex(std::string_view bytes) {
    std::string result;
    for (unsigned char byte : bytes) result += IntToHex(byte, 2);
    return result;
}
void Put(TRecursosVyn& store, int id, std::string_view bytes = "x", int parent = 0, int type = 0,
         AnsiString name = "n") {
    TMemoryStream stream(bytes);
    store.InsertTRecursos(TRecursos{id, parent, std::move(name), type}, stream);
}
std::string BytesOf(const TRecursosVyn& store, int id) { return std::string(store.GetStreamRecursos(id)->Bytes()); }
std::string Stored(TRecursosVyn& store, int from, int to) {
    TMemoryStream stream;
    store.SaveToStream(stream, from, to);
    return std::string(stream.Bytes());
}
void Load(TRecursosVyn& store, std::string_view bytes) {
    TMemoryStream stream(bytes);
    store.LoadFromStream(stream);
}
std::vector<int> Numbers(const TRecursosVyn& store) {
    std::vector<int> numbers;
    for (int i = 0; i < store.Count(); ++i) numbers.push_back(store.GetIdxRecursos(i).IDRecursos);
    return numbers;
}
using List = std::vector<int>;

class TStoreHolder : public TComponent {
    VYN_OBJECT
  public:
    explicit TStoreHolder(TComponent* owner) : TComponent(owner) {}
    TRecursosVyn* Store() const { return const_cast<TRecursosVyn*>(&store_); }
    void SetStore(TRecursosVyn*) {}

  private:
    TRecursosVyn store_;
};
const ClassInfo& TStoreHolder::StaticClass() {
    static const ClassInfo info = DefineClass<TStoreHolder, TComponent>("TStoreHolder")
                                      .Published("Resources", &TStoreHolder::Store, &TStoreHolder::SetStore);
    return info;
}

}  // namespace resource_store_tests

using namespace resource_store_tests;

TEST(ResourceStore, NothingIsTheNullRecord) {
    EXPECT_EQ(Recursos_NUL().IDRecursos, -1);
    EXPECT_EQ(Recursos_NUL().IDParent, -1);
    EXPECT_EQ(Recursos_NUL().Name, "");
    EXPECT_EQ(Recursos_NUL().RecType, 0);
    TRecursosVyn store;
    EXPECT_EQ(store.RetornaRecursos(3).IDRecursos, -1);
    EXPECT_EQ(store.FirstRecursos().IDRecursos, -1);
    EXPECT_EQ(store.NextRecursos().IDRecursos, -1);
}

TEST(ResourceStore, AddingTakesTheLowestFreeNumber) {
    TRecursosVyn store;
    TMemoryStream bytes("abc");
    bytes.SetPosition(2);
    EXPECT_EQ(store.AddRecursos(7, "first", 3, bytes), 1);
    EXPECT_EQ(store.AddRecursos(7, "second", 3, bytes), 2);
    EXPECT_EQ(store.AddRecursos(7, "third", 3, bytes), 3);
    store.DelRecursos(1);
    EXPECT_EQ(store.AddRecursos(7, "again", 3, bytes), 1);
    EXPECT_EQ(store.AddRecursos(7, "more", 3, bytes), 4);
    EXPECT_EQ(Numbers(store), (List{2, 3, 1, 4}));
    EXPECT_EQ(BytesOf(store, 1), "abc");
    EXPECT_EQ(store.RetornaRecursos(1).IDParent, 7);
}

TEST(ResourceStore, NewNumbersAfterTheHighest) {
    TRecursosVyn store;
    EXPECT_EQ(store.GetNewIDRecursos(90000, false), 90000);
    Put(store, 5);
    EXPECT_EQ(store.GetNewIDRecursos(90000, false), 90000);
    Put(store, 90004);
    Put(store, 90001);
    EXPECT_EQ(store.GetNewIDRecursos(90000, false), 90005);
    EXPECT_EQ(store.GetNewIDRecursos(90000, true), 90000);
    EXPECT_EQ(store.GetNewIDRecursos(90001, true), 90002);
    store.DelRecursos(90004);
    EXPECT_EQ(store.GetNewIDRecursos(90000, false), 90002);
}

TEST(ResourceStore, NoNumberIsLeftAfterTheLargest) {
    TRecursosVyn store;
    Put(store, INT32_MAX);
    EXPECT_EQ(store.GetNewIDRecursos(1, false), 1);
    EXPECT_EQ(store.GetNewIDRecursos(1, true), 1);
}

TEST(ResourceStore, ANegativeNumberIsRefused) {
    TRecursosVyn store;
    EXPECT_EQ(ErrorOf([&] { Put(store, -1); }), "IDRecursos must be >= 0");
    EXPECT_EQ(ErrorOf([&] { Put(store, 0); }), "no error");
}

TEST(ResourceStore, PuttingANumberAgainKeepsItsPlaceAndReplacesItsBytes) {
    TRecursosVyn store;
    Put(store, 1, "old");
    Put(store, 2);
    Put(store, 1, "", 4, 5, "new");
    EXPECT_EQ(Numbers(store), (List{1, 2}));
    EXPECT_EQ(BytesOf(store, 1), "");
    EXPECT_EQ(store.RetornaRecursos(1).Name, "new");
    EXPECT_EQ(store.RetornaRecursos(1).RecType, 5);
}

TEST(ResourceStore, MissingNumbersAreRefused) {
    TRecursosVyn store;
    TMemoryStream bytes;
    EXPECT_EQ(ErrorOf([&] { store.DelRecursos(7); }), "Recursos:7 not found");
    EXPECT_EQ(ErrorOf([&] { store.GetStreamRecursos(7); }), "IDRecursos:7 not found in list");
    EXPECT_EQ(ErrorOf([&] { store.ModifyRecursos(7, 0, "", 0); }), "7 not found to modify");
    EXPECT_EQ(ErrorOf([&] { store.SetStreamRecursos(7, bytes); }), "IdRecursos: 7 not found to ModifyStream");
    EXPECT_EQ(ErrorOf([&] { store.GetIdxRecursos(0); }), "Index out of range in GetIdxRecursos: 0");
    EXPECT_EQ(ErrorOf([&] { store.GetIdxRecursos(-1); }), "Index out of range in GetIdxRecursos: -1");
    EXPECT_FALSE(store.AppModified || store.UserModified);
}

TEST(ResourceStore, ModifyingKeepsTheBytesAndReplacingThemTheRecord) {
    TRecursosVyn store;
    Put(store, 1, "old");
    store.ModifyRecursos(1, 8, "name", 9);
    EXPECT_EQ(BytesOf(store, 1), "old");
    TMemoryStream bytes("new");
    bytes.SetPosition(3);
    store.SetStreamRecursos(1, bytes);
    EXPECT_EQ(BytesOf(store, 1), "new");
    EXPECT_EQ(store.RetornaRecursos(1).Name, "name");
    EXPECT_EQ(store.GetStreamRecursos(1)->Position(), 0);
}

TEST(ResourceStore, NumbersAreExchangedInTheirPlaces) {
    TRecursosVyn store;
    Put(store, 4, "four");
    Put(store, 9, "nine");
    store.SwapIDRecursos(4, 9);
    EXPECT_EQ(Numbers(store), (List{9, 4}));
    EXPECT_EQ(BytesOf(store, 9), "four");
    store.DelRecursos(4);
    store.SwapIDRecursos(9, 90001);
    EXPECT_EQ(Numbers(store), (List{90001}));
    EXPECT_TRUE(store.AppModified);
    EXPECT_TRUE(store.UserModified);
}

TEST(ResourceStore, ALoneNumberIsRenumbered) {
    TRecursosVyn store;
    Put(store, 4);
    store.SwapIDRecursos(4, 9);
    EXPECT_EQ(Numbers(store), (List{9}));
    EXPECT_EQ(store.FindPosInList(4), -1);
    EXPECT_EQ(store.GetNewIDRecursos(1, false), 10);
    store.SwapIDRecursos(3, 9);
    EXPECT_EQ(Numbers(store), (List{3}));
}

TEST(ResourceStore, FlagsFollowTheNumbers) {
    TRecursosVyn store;
    Put(store, 89999);
    EXPECT_TRUE(store.AppModified);
    EXPECT_FALSE(store.UserModified);
    store.AppModified = false;
    Put(store, 90000);
    EXPECT_FALSE(store.AppModified);
    EXPECT_TRUE(store.UserModified);
    store.UserModified = false;
    store.DelRecursos(90000);
    EXPECT_TRUE(store.UserModified);
    store.UserModified = false;
    store.ModifyRecursos(89999, 0, "", 0);
    EXPECT_TRUE(store.AppModified);
    EXPECT_FALSE(store.UserModified);
}

TEST(ResourceStore, ChildrenComeInStoreOrder) {
    TRecursosVyn store;
    Put(store, 5, "", 1, 7);
    Put(store, 2, "", 1, 8);
    Put(store, 3, "", 2, 7);
    const TRecursosList all = store.RetornaFills(1), some = store.RetornaFills(1, 8);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].IDRecursos, 5);
    EXPECT_EQ(all[1].IDRecursos, 2);
    ASSERT_EQ(some.size(), 1u);
    EXPECT_EQ(some[0].IDRecursos, 2);
    EXPECT_TRUE(store.RetornaFills(77).empty());
}

TEST(ResourceStore, DeletingAParentLeavesItsChildren) {
    TRecursosVyn store;
    Put(store, 1);
    Put(store, 2, "", 1);
    store.DelRecursos(1);
    EXPECT_EQ(store.RetornaFills(1).size(), 1u);
}

TEST(ResourceStore, IterationEndsWithNothingAndStaysThere) {
    TRecursosVyn store;
    Put(store, 8);
    Put(store, 3);
    EXPECT_EQ(store.FirstRecursos().IDRecursos, 8);
    EXPECT_EQ(store.NextRecursos().IDRecursos, 3);
    EXPECT_EQ(store.NextRecursos().IDRecursos, -1);
    EXPECT_EQ(store.NextRecursos().IDRecursos, -1);
    Put(store, 4);
    EXPECT_EQ(store.NextRecursos().IDRecursos, 4);
}

TEST(ResourceStore, IterationMayBeginWithNext) {
    TRecursosVyn store;
    Put(store, 8);
    EXPECT_EQ(store.NextRecursos().IDRecursos, 8);
}

TEST(ResourceStore, BytesOfTheStream) {
    TRecursosVyn store;
    Put(store, 300, "ab", -1, 9, "N");
    EXPECT_EQ(Hex(Stored(store, 0, 89999)), "060C" + Hex("TRecursosVyn") +
                                                "01"
                                                "01"
                                                "070A" +
                                                Hex("IDRecursos") +
                                                "032C01"
                                                "0708" +
                                                Hex("IDParent") +
                                                "02FF"
                                                "0704" +
                                                Hex("Name") +
                                                "06014E"
                                                "0707" +
                                                Hex("RecType") +
                                                "0209"
                                                "0706" +
                                                Hex("Stream") +
                                                "06026162"
                                                "00"
                                                "00");
    Put(store, 300, std::string(256, 'z'));
    EXPECT_NE(Hex(Stored(store, 0, -1)).find(Hex("Stream") + "0C000100007A"), std::string::npos);
}

TEST(ResourceStore, RangesSelectWhatIsWritten) {
    TRecursosVyn store;
    for (int id : {89999, 90000, 4, 5, 100001}) Put(store, id);
    const auto written = [&](int from, int to) {
        TRecursosVyn other;
        Load(other, Stored(store, from, to));
        return Numbers(other);
    };
    EXPECT_EQ(written(0, 89999), (List{89999, 4, 5}));
    EXPECT_EQ(written(90000, -1), (List{90000, 100001}));
    EXPECT_EQ(written(5, 3), (List{89999, 90000, 5, 100001}));
    EXPECT_EQ(written(0, 0), (List{89999, 90000, 4, 5, 100001}));
    EXPECT_EQ(written(5, 5), (List{5}));
}

TEST(ResourceStore, LoadingMergesAndSetsTheFlags) {
    TRecursosVyn store, other;
    Put(store, 1, std::string("\0\xFF", 2));
    Put(store, 2, "new");
    Put(other, 2, "old");
    Put(other, 7);
    other.AppModified = false;
    Load(other, Stored(store, 0, -1));
    EXPECT_EQ(Numbers(other), (List{2, 7, 1}));
    EXPECT_EQ(BytesOf(other, 2), "new");
    EXPECT_EQ(BytesOf(other, 1), std::string("\0\xFF", 2));
    EXPECT_TRUE(other.AppModified);
    EXPECT_FALSE(other.UserModified);
}

TEST(ResourceStore, TheTagIsReadInAnyCase) {
    TRecursosVyn store, other;
    Put(store, 1);
    std::string bytes = Stored(store, 0, -1);
    bytes.replace(2, 12, "trecursosvyn");
    EXPECT_EQ(ErrorOf([&] { Load(other, bytes); }), "no error");
    EXPECT_EQ(other.Count(), 1);
    bytes.replace(2, 12, "TRecursosVym");
    EXPECT_EQ(ErrorOf([&] { Load(other, bytes); }), "Stream is not a TRecursosVyn format");
}

TEST(ResourceStore, TruncatedOrDamagedAnywhereItKeepsWhatWasRead) {
    TRecursosVyn store;
    Put(store, 1, "first");
    Put(store, 2, "second");
    const std::string bytes = Stored(store, 0, -1);
    for (size_t length = 0; length < bytes.size(); ++length) {
        TRecursosVyn other;
        EXPECT_THROW(Load(other, std::string_view(bytes).substr(0, length)), EReadError) << length;
        EXPECT_LE(other.Count(), 2);
    }
    int read = 0;
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        TRecursosVyn other;
        try {
            Load(other, damaged);
            Stored(other, 0, -1);
            TMemoryStream more("x");
            other.AddRecursos(0, "", 0, more);
            ++read;
        } catch (const Exception&) {
        }
    }
    EXPECT_GT(read, 0);
}

TEST(ResourceStore, TheFormHoldsTheApplicationsResources) {
    TStoreHolder empty(nullptr), full(nullptr), read(nullptr);
    TMemoryStream stream;
    WriteComponentToStream(stream, empty);
    EXPECT_EQ(stream.Bytes().find("RECURSOS"), std::string_view::npos);
    Put(*full.Store(), 1);
    Put(*full.Store(), 90000);
    stream.Clear();
    WriteComponentToStream(stream, full);
    EXPECT_NE(stream.Bytes().find("Resources.RECURSOS\x01"), std::string_view::npos);
    stream.SetPosition(0);
    ReadComponentFromStream(stream, &read);
    EXPECT_EQ(Numbers(*read.Store()), (List{1}));
}

TEST(ResourceStore, UserValuesAreSavedAndComeBack) {
    InitializeParametres();
    const std::string file = std::filesystem::temp_directory_path() / ("vyn_user_values_" + std::to_string(getpid()));
    Parametres()->AddParam("Year", 2000);
    Parametres()->SetWritable("Year", true);
    TRecursosVyn store;
    Put(store, 1);
    Put(store, 90000, "user");
    store.SaveUserRecursosToFile(file);
    EXPECT_FALSE(store.UserModified);
    EXPECT_TRUE(store.AppModified);
    const TRecursos saved = store.RetornaRecursos(100001);
    EXPECT_EQ(saved.IDParent, 0);
    EXPECT_EQ(saved.Name, "VYNAPPLICATION");
    EXPECT_EQ(saved.RecType, 9);
    Parametres()->Clear();
    TRecursosVyn other;
    other.LoadUserRecursosFromFile(file);
    EXPECT_EQ(Numbers(other), (List{90000, 100001}));
    EXPECT_FALSE(other.UserModified);
    EXPECT_EQ(Parametres()->GetParametreValue("Year").AsInteger(), 2000);
    std::remove(file.c_str());
    FinalizeParametres();
}

TEST(ResourceStore, AMissingUserFileClearsTheFlagOnly) {
    TRecursosVyn store;
    Put(store, 90000);
    store.LoadUserRecursosFromFile("/nowhere/at/all");
    EXPECT_EQ(store.Count(), 1);
    EXPECT_FALSE(store.UserModified);
}
