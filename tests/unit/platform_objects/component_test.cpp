#include "platform/objects/component.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/objects/component_handle.h"
#include "platform/text/exceptions.h"
#include "support/errors.h"

using namespace vyn;

namespace {

class Watcher : public TComponent {
    VYN_OBJECT
  public:
    using TComponent::TComponent;
    void Hear() { HearInsertions(); }
    void Notification(TComponent* component, TOperation operation) override {
        TComponent::Notification(component, operation);
        heard.emplace_back(component, operation);
    }
    std::vector<std::pair<TComponent*, TOperation>> heard;
};

const ClassInfo& Watcher::StaticClass() {
    static const ClassInfo info = DefineClass<Watcher, TComponent>("Watcher");
    return info;
}

}  // namespace

TEST(Component, AnOwnerFreesWhatItOwnsLastMadeFirst) {
    std::vector<int> freed;
    struct Counting : TComponent {
        Counting(TComponent* owner, std::vector<int>& list, int which)
            : TComponent(owner), freed(list), number(which) {}
        ~Counting() override { freed.push_back(number); }
        std::vector<int>& freed;
        int number;
    };
    {
        TComponent owner(nullptr);
        for (int i = 0; i < 3; ++i) new Counting(&owner, freed, i);
        EXPECT_EQ(owner.ComponentCount(), 3);
    }
    EXPECT_THAT(freed, testing::ElementsAre(2, 1, 0));
}

TEST(Component, FreeingAComponentTakesItOutOfItsOwner) {
    TComponent owner(nullptr);
    auto* first = new TComponent(&owner);
    new TComponent(&owner);
    delete first;
    EXPECT_EQ(owner.ComponentCount(), 1);
}

TEST(Component, ANameMustBeAnIdentifier) {
    TComponent component(nullptr);
    EXPECT_EQ(MessageOf([&] { component.SetName("9lives"); }),
              "EComponentError: '9lives' is not a valid component name");
    EXPECT_EQ(MessageOf([&] { component.SetName("a b"); }), "EComponentError: 'a b' is not a valid component name");
    component.SetName("_a1");
    EXPECT_EQ(component.Name(), "_a1");
    component.SetName("");
    EXPECT_EQ(component.Name(), "");
}

TEST(Component, ANameIsTakenOncePerOwnerWithoutRegardToCase) {
    TComponent owner(nullptr);
    (new TComponent(&owner))->SetName("Button1");
    auto* other = new TComponent(&owner);
    EXPECT_EQ(MessageOf([&] { other->SetName("BUTTON1"); }),
              "EComponentError: A component named BUTTON1 already exists");
    EXPECT_EQ(other->Name(), "");
}

TEST(Component, NamesAreFoundInSmallAndLargeOwnersAfterRenamesAndRemovals) {
    TComponent owner(nullptr);
    std::vector<TComponent*> all;
    for (int i = 0; i < 100; ++i) {
        all.push_back(new TComponent(&owner));
        all.back()->SetName("C" + std::to_string(i));
        EXPECT_EQ(owner.FindComponent("c" + std::to_string(i / 2)), all[static_cast<size_t>(i / 2)]);
    }
    all[50]->SetName("Renamed");
    EXPECT_EQ(owner.FindComponent("C50"), nullptr);
    EXPECT_EQ(owner.FindComponent("RENAMED"), all[50]);
    delete all[7];
    EXPECT_EQ(owner.FindComponent("C7"), nullptr);
    (new TComponent(&owner))->SetName("C7");
    EXPECT_NE(owner.FindComponent("C7"), nullptr);
}

TEST(Component, FreeNotificationTellsAListenerOfAnotherOwner) {
    Watcher watcher(nullptr);
    auto* watched = new TComponent(nullptr);
    watched->FreeNotification(&watcher);
    delete watched;
    ASSERT_EQ(watcher.heard.size(), 1u);
    EXPECT_EQ(watcher.heard[0], (std::pair<TComponent*, TOperation>(watched, opRemove)));
}

TEST(Component, AFreedListenerIsNotToldAnyMore) {
    TComponent watched(nullptr);
    {
        Watcher watcher(nullptr);
        watched.FreeNotification(&watcher);
    }

    EXPECT_EQ(watched.ComponentCount(), 0);
}

TEST(Component, SiblingsHearOfRemovals) {
    TComponent owner(nullptr);
    auto* watcher = new Watcher(&owner);
    auto* other = new TComponent(&owner);
    delete other;
    ASSERT_EQ(watcher->heard.size(), 1u);
    EXPECT_EQ(watcher->heard[0].second, opRemove);
}

TEST(Component, InsertionsAreHeardByThoseWhoAsk) {
    TComponent owner(nullptr);
    auto* deaf = new Watcher(&owner);
    auto* listening = new Watcher(&owner);
    listening->Hear();
    auto* newcomer = new TComponent(&owner);
    EXPECT_TRUE(deaf->heard.empty());
    EXPECT_THAT(listening->heard, testing::ElementsAre(testing::Pair(newcomer, opInsert)));
}

TEST(Component, AHandleFindsItsComponentUntilItGoes) {
    auto* component = new TComponent(nullptr);
    const int handle = component->Handle();
    EXPECT_EQ(component->Handle(), handle);
    EXPECT_EQ(ComponentFromHandle(handle), component);
    delete component;
    EXPECT_EQ(ComponentFromHandle(handle), nullptr);
    TComponent other(nullptr);
    EXPECT_NE(other.Handle(), handle);
    EXPECT_EQ(ComponentFromHandle(0), nullptr);
    EXPECT_EQ(ComponentFromHandle(-1), nullptr);
}

TEST(Component, MovingToAnotherOwnerChecksTheName) {
    TComponent first(nullptr), second(nullptr);
    (new TComponent(&second))->SetName("Same");
    auto* moving = new TComponent(&first);
    moving->SetName("Same");
    EXPECT_EQ(MessageOf([&] { second.InsertComponent(moving); }),
              "EComponentError: A component named Same already exists");
    EXPECT_EQ(moving->Owner(), &first);
    moving->SetName("Other");
    second.InsertComponent(moving);
    EXPECT_EQ(moving->Owner(), &second);
    EXPECT_EQ(first.ComponentCount(), 0);
}

TEST(Persistent, AssigningAnotherClassSaysSo) {
    TComponent component(nullptr);
    Watcher watcher(nullptr);
    EXPECT_EQ(MessageOf([&] { component.Assign(&watcher); }), "EConvertError: Cannot assign a Watcher to a TComponent");
    EXPECT_EQ(MessageOf([&] { component.Assign(nullptr); }), "EConvertError: Cannot assign a nil to a TComponent");
}
