#include "unit/foundation/fixtures.h"

using namespace foundation_fixtures;

TEST_F(TParametresChildTest, FollowersHearAfterTheSetInTheirOrder) {
    AnsiString log;
    TParametresChild first(nullptr), second(nullptr);
    const auto watch = [&](auto& object, const char* name) {
        object.OnChangeValorPRM = [&log, name, this](TParametres* from, const AnsiString&, const Variant&, bool&) {
            EXPECT_EQ(from, &set);
            log += AnsiString(name) + "change ";
        };
        object.OnSetValorPRM = [&log, name](TParametres*, const AnsiString&, const Variant&) {
            log += AnsiString(name) + "set ";
        };
        object.OnGetValorPRM = [&log, name](TParametres*, const AnsiString&, Variant&) {
            log += AnsiString(name) + "get ";
        };
    };
    watch(first, "1");
    watch(set, "0");
    watch(second, "2");
    first.SetParams(&set);
    second.SetParams(&set);
    set.SetParametreValue("A", 1);
    EXPECT_EQ(log, "0change 1change 2change 0set 1set 2set ");
    log.clear();
    set.GetParametreValue("A");
    EXPECT_EQ(log, "0get 1get 2get ");
}

TEST_F(TParametresChildTest, AFollowerMayVetoAndReplace) {
    TParametresChild child(nullptr);
    child.SetParams(&set);
    set.AddParam("A", 1);
    child.OnChangeValorPRM = [](TParametres*, const AnsiString&, const Variant&, bool& proceed) { proceed = false; };
    set.SetParametreValue("A", 2);
    EXPECT_EQ(set.GetParamsProps(0).Value.AsInteger(), 1);
    child.OnGetValorPRM = [](TParametres*, const AnsiString&, Variant& value) { value = Variant(8); };
    EXPECT_EQ(set.GetParametreValue("A").AsInteger(), 8);
}

TEST_F(TParametresChildTest, FollowingTheSameSetTwiceRegistersOnce) {
    TParametresChild child(nullptr);
    child.SetParams(&set);
    child.SetParams(&set);
    set.NotifyChanges(&child);
    EXPECT_EQ(set.Children().size(), 1u);
}

TEST_F(TParametresChildTest, SwitchingSetsLeavesTheFirst) {
    TParametres other(nullptr);
    TParametresChild child(nullptr);
    child.SetParams(&set);
    child.SetParams(&other);
    EXPECT_TRUE(set.Children().empty());
    EXPECT_EQ(other.Children().size(), 1u);
    child.SetParams(nullptr);
    EXPECT_TRUE(other.Children().empty());
}

TEST_F(TParametresChildTest, ADestroyedSetClearsTheReference) {
    TParametresChild child(nullptr);
    auto other = std::make_unique<TParametres>(nullptr);
    child.SetParams(other.get());
    other.reset();
    EXPECT_EQ(child.Params(), nullptr);
}

TEST_F(TParametresChildTest, ADestroyedFollowerLeavesTheSet) {
    auto child = std::make_unique<TParametresChild>(nullptr);
    child->SetParams(&set);
    child.reset();
    EXPECT_TRUE(set.Children().empty());
    set.AddParam("A", 1);
}

TEST_F(TParametresChildTest, AFollowerMayLeaveWhileItIsTold) {
    TParametresChild first(nullptr), second(nullptr);
    first.SetParams(&set);
    second.SetParams(&set);
    first.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) {
        first.SetParams(nullptr);
        second.SetParams(nullptr);
    };
    set.AddParam("A", 1);
    EXPECT_TRUE(set.Children().empty());
}

TEST_F(TParametresChildTest, AReferenceToTheGlobalSetIsNotStored) {
    TParametresChild child(nullptr);
    EXPECT_FALSE(child.DoSaveParams());
    child.SetParams(Parametres());
    EXPECT_FALSE(child.DoSaveParams());
    child.SetParams(&set);
    EXPECT_TRUE(child.DoSaveParams());
}

TEST_F(TParametresChildTest, PublishesItsPropertiesInOrder) {
    AnsiString names;
    for (const PropertyInfo& property : TParametresChild::StaticClass().Properties()) names += property.Name + " ";
    EXPECT_NE(names.find("Params OnGetValorPRM OnSetValorPRM OnChangeValorPRM "), AnsiString::npos);
}

TEST_F(TParametresListTest, TheEarlierSetAnswersForAName) {
    TParametres second(nullptr);
    TParametresList list(nullptr);
    EXPECT_EQ(list.ParamByName("A"), nullptr);
    list.Add(&set);
    list.Add(&second);
    second.AddParam("A", 2);
    EXPECT_EQ(list.ParamByName("a"), &second);
    set.AddParam("A", 1);
    EXPECT_EQ(list.ParamByName("a"), &set);
    EXPECT_EQ(list.ParamByName("b"), nullptr);
    EXPECT_EQ(list.IndexOfParametre(&second), 1);
}

TEST_F(TParametresListTest, ASetStandsInTheListOnce) {
    TParametresList list(nullptr);
    set.SetName("Values");
    list.Add(&set);
    const auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&set));
    EXPECT_EQ(MessageOf([&] { list.Add(&set); }),
              "EParametresError: Params with ID: Values (" + IntToHex(address, 8) + ")");
    EXPECT_EQ(list.Count(), 1);
}

TEST_F(TParametresListTest, PositionsOutsideAreRefused) {
    TParametresList list(nullptr);
    EXPECT_EQ(MessageOf([&] { list.GetParams(0); }), "EParametresError: Index: 0 not found in TParametresList to Get");
    EXPECT_EQ(MessageOf([&] { list.Delete(-1); }),
              "EParametresError: Index: -1 not found in TParametresList for Delete");
    EXPECT_EQ(list.IndexOfParametre(&set), -1);
}

TEST_F(TParametresListTest, DeletingAnEntryLeavesTheSet) {
    TParametresList list(nullptr);
    list.Add(&set);
    list.Delete(0);
    EXPECT_EQ(list.Count(), 0);
    set.AddParam("A", 1);
}

TEST_F(TParametresListTest, ADestroyedSetLeavesTheList) {
    TParametresList list(nullptr);
    auto first = std::make_unique<TParametres>(nullptr);
    list.Add(first.get());
    list.Add(&set);
    first.reset();
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.GetParams(0), &set);
}

TEST_F(TParametresListTest, FormatTextExpandsWhenTheListHoldsASet) {
    Parametres()->AddParam("A", 5);
    TParametresList list(nullptr);
    EXPECT_EQ(list.FormatText("\xA1"
                              "A\xA1"),
              "\xA1"
              "A\xA1");
    list.Add(&set);
    EXPECT_EQ(list.FormatText("\xA1"
                              "A\xA1"),
              "5");
}

TEST_F(TParametresChildTest, AFollowerOfNamesHearsOfThoseAlone) {
    TParametresChild child(nullptr);
    AnsiString heard;
    child.FollowNamesOnly();
    child.SetParams(&set);
    child.OnSetValorPRM = [&](TParametres* PRM, const AnsiString& Parametre, const Variant& NewValue) {
        EXPECT_EQ(PRM, &set);
        heard += Parametre + "=" + NewValue.AsString() + " ";
    };
    child.OnGetValorPRM = [&](TParametres*, const AnsiString&, Variant&) { heard += "get "; };
    child.OnChangeValorPRM = [&](TParametres*, const AnsiString&, const Variant&, bool&) { heard += "change "; };
    child.FollowName("A");
    set.AddParam("a", 1);
    set.AddParam("B", 2);
    set.GetParametreValue("A");
    EXPECT_EQ(heard, "a=1 ");
    child.ForgetNames();
    child.FollowName("B");
    set.AddParam("A", 3);
    set.AddParam("b", 4);
    EXPECT_EQ(heard, "a=1 B=4 ");
    child.SetParams(nullptr);
    set.AddParam("B", 5);
    EXPECT_EQ(heard, "a=1 B=4 ");
}

TEST_F(TParametresChildTest, FollowersOfNamesAreToldInTheirTurn) {
    AnsiString heard;
    std::vector<std::unique_ptr<TParametresChild>> children;
    for (int i = 0; i < 6; ++i) {
        auto& child = *children.emplace_back(std::make_unique<TParametresChild>(nullptr));
        if (i % 2 == 1) child.FollowNamesOnly();
        child.SetParams(&set);
        child.OnSetValorPRM = [&heard, i](TParametres*, const AnsiString&, const Variant&) { heard += IntToStr(i); };
    }
    for (const int i : {5, 1, 3}) children[static_cast<size_t>(i)]->FollowName("A");
    children[3]->FollowName("B");
    set.AddParam("A", 1);
    EXPECT_EQ(heard, "012345");
    heard.clear();
    set.AddParam("B", 1);
    EXPECT_EQ(heard, "0234");
    heard.clear();
    children[1].reset();
    children[4].reset();
    set.AddParam("A", 2);
    EXPECT_EQ(heard, "0235");
}

TEST_F(TParametresChildTest, AFollowerThatComesToANameBeforeItsTurnIsTold) {
    TParametresChild first(nullptr), second(nullptr);
    int told = 0;
    for (TParametresChild* child : {&first, &second}) {
        child->FollowNamesOnly();
        child->SetParams(&set);
    }
    first.FollowName("A");
    first.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) {
        first.ForgetNames();
        first.FollowName("A");
        second.FollowName("A");
    };
    second.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++told; };
    set.AddParam("A", 1);
    EXPECT_EQ(told, 1);
}

TEST_F(TParametresChildTest, ASetThatGoesLetsFollowersOfNamesGo) {
    TParametresChild child(nullptr);
    child.FollowNamesOnly();
    child.FollowName("A");
    {
        TParametres other(nullptr);
        child.SetParams(&other);
    }
    EXPECT_EQ(child.Params(), nullptr);
    child.FollowName("B");
    child.SetParams(&set);
    int told = 0;
    child.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++told; };
    set.AddParam("A", 1);
    set.AddParam("B", 1);
    EXPECT_EQ(told, 2);
}
