#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/platform_streams/fixtures.h"

using namespace stream_fixtures;

class Components : public testing::Test {
  protected:
    void SetUp() override {
        RegisterClass(&TThing::StaticClass());
        TThing::LoadedNames().clear();
    }
    void TearDown() override { UnRegisterClass(&TThing::StaticClass()); }

    std::unique_ptr<TThing> Read(const std::string& bytes) {
        TMemoryStream stream(bytes);
        TReader reader(stream);
        return std::unique_ptr<TThing>(static_cast<TThing*>(reader.ReadRootComponent(nullptr)));
    }
    static std::string Binary(const std::string& text) {
        TMemoryStream stream;
        TextToBinary(text, stream);
        return std::string(stream.Bytes());
    }
    static TThing* Child(TThing& owner, TThing& parent, const AnsiString& name) {
        auto* child = new TThing(&owner);
        child->SetName(name);
        child->SetParentComponent(&parent);
        return child;
    }
};

TEST_F(Components, AComponentWithItsDefaultsIsAHeaderAndTwoEnds) {
    TThing root(nullptr);
    root.SetName("R");
    EXPECT_EQ(Hex(Written(root)), "54 50 46 30 06 54 54 68 69 6E 67 01 52 00 00");
}

TEST_F(Components, EveryKindOfPropertyComesBack) {
    TThing root(nullptr);
    root.SetName("Root");
    root.Count = 1000;
    root.Caption = "Caption";
    root.Checked = true;
    root.Mood = mdAngry;
    root.Moods = {mdCalm, mdAngry};
    root.Shade = shLight;
    root.Rate = 0.1;
    root.Price = Currency::FromScaled(12345);
    root.When = TDateTime(46000.5);
    root.Any = Variant(2.5);
    root.Big = int64_t{1} << 50;
    root.Letter = 'z';
    root.Wide = u"\u03A9";
    root.Part()->Size = 12;
    root.Part()->Face = "Sans";
    root.Lines()->Add("one");
    root.Lines()->Add("two");
    static_cast<TEntry*>(root.Entries()->Add())->Title = "T1";
    static_cast<TEntry*>(root.Entries()->Add())->Width = 5;
    root.Secret = "hidden";
    root.DesignLeft = 7;
    TThing* a = Child(root, root, "A");
    TThing* b = Child(root, *a, "B");
    a->SetFriend(b);
    b->SetFriend(&root);
    const std::string bytes = Written(root);
    const auto back = Read(bytes);
    EXPECT_EQ(Hex(Written(*back)), Hex(bytes));
    EXPECT_EQ(back->Price.Val, 12345);
    EXPECT_EQ(back->Rate, 0.1);
    EXPECT_EQ(back->Wide, u"\u03A9");
    EXPECT_EQ(back->Part()->Face, "Sans");
    EXPECT_EQ(back->Lines()->Count(), 2);
    EXPECT_EQ(back->Entries()->Count(), 2);
    EXPECT_EQ(back->Secret, "hidden");
    auto* backA = static_cast<TThing*>(back->FindComponent("a"));
    ASSERT_NE(backA, nullptr);
    EXPECT_EQ(backA->Friend(), back->FindComponent("B"));
    EXPECT_EQ(backA->Friend()->Friend(), back.get());
    EXPECT_EQ(backA->Friend()->GetParentComponent(), backA);
}

TEST_F(Components, LoadedRunsForTheRootFirstAndThenAsTheyWereRead) {
    const auto root = Read(
        Binary("object R: TThing\n object A: TThing\n object B: TThing\n end\n end\n object C: TThing\n end\nend"));
    EXPECT_THAT(TThing::LoadedNames(), testing::ElementsAre("R", "B", "A", "C"));
    EXPECT_FALSE(root->HasState(csLoading));
    EXPECT_FALSE(root->FindComponent("A")->HasState(csReading));
}

TEST_F(Components, AnUnknownPropertyRaisesWithItsWholePath) {
    const std::string bytes = Binary("object R: TThing\n object A: TThing\n Nonsense = 3\n end\nend");
    EXPECT_EQ(MessageOf([&] { Read(bytes); }),
              "EReadError: Error reading R.A.Nonsense: Property Nonsense does not exist");
}

TEST_F(Components, AHandledErrorIsPassedOverAndTheRestIsRead) {
    TMemoryStream stream(
        Binary("object R: TThing\n Nonsense = (1 2)\n Count = 5\n object X: TNone\n object Y: TThing\n end\n end\n "
               "object A: TThing\n end\nend"));
    TReader reader(stream);
    std::vector<AnsiString> messages;
    reader.OnError = [&](TReader&, const AnsiString& message, bool& handled) {
        messages.push_back(message);
        handled = true;
    };
    std::unique_ptr<TThing> root(static_cast<TThing*>(reader.ReadRootComponent(nullptr)));
    EXPECT_EQ(root->Count, 5);
    EXPECT_EQ(root->ComponentCount(), 1);
    EXPECT_THAT(messages, testing::ElementsAre("Error reading R.Nonsense: Property Nonsense does not exist",
                                               "Error reading R.X: Class TNone not found"));
}

TEST_F(Components, AnUnknownClassSaysWhichAndWhere) {
    const std::string bytes = Binary("object R: TThing\n object X: TNone\n end\nend");
    EXPECT_EQ(MessageOf([&] { Read(bytes); }),
              "EClassNotFound: Error reading R.X: Class TNone not found (memory, position 14)");
    EXPECT_EQ(MessageOf([&] { Read(Binary("object X: TNone\nend")); }),
              "EClassNotFound: Class TNone not found (memory, position 4)");
}

TEST_F(Components, WhatIsNoFormIsAnInvalidStreamFormat) {
    EXPECT_EQ(MessageOf([&] { Read("TPF"); }), "EReadError: Invalid stream format (memory, position 0)");
    EXPECT_EQ(MessageOf([&] { Read("TPF1...."); }), "EReadError: Invalid stream format (memory, position 4)");
}

TEST_F(Components, EveryTruncationAndEveryFlippedBitIsAnErrorOrAForm) {
    TThing root(nullptr);
    root.SetName("Root");
    root.Lines()->Add("one");
    root.Entries()->Add();
    Child(root, root, "A")->Caption = "x";
    const std::string bytes = Written(root);
    for (size_t length = 0; length < bytes.size(); ++length)
        EXPECT_THROW(Read(bytes.substr(0, length)), EFilerError) << length;
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        MessageOf([&] { Read(damaged); });
    }
}

TEST_F(Components, AStoredEventCallsTheRootsMethod) {
    const auto root = Read(Binary("object R: TThing\n object A: TThing\n OnClick = ButtonClicked\n end\nend"));
    auto* a = static_cast<TThing*>(root->FindComponent("A"));
    a->OnClick(a);
    EXPECT_EQ(root->Clicks, 1);
    EXPECT_EQ(a->OnClick.HandlerName(), "ButtonClicked");
}

TEST_F(Components, AMethodThatNobodyKnowsIsAnErrorUnlessTheReaderSaysOtherwise) {
    const std::string bytes = Binary("object R: TThing\n OnClick = Elsewhere\nend");
    EXPECT_EQ(MessageOf([&] { Read(bytes); }), "EReadError: Error reading R.OnClick: Method Elsewhere not found");
    TMemoryStream stream(bytes);
    TReader reader(stream);
    AnsiString heard;
    reader.OnFindMethod = [&](TReader&, const AnsiString& name, TPersistent* instance, const PropertyInfo& property,
                              const MethodInfo*&, bool& error) {
        property->BindEventSenderOnly(*instance, name, [&heard, name](TObject*) { heard = name; });
        error = false;
    };
    std::unique_ptr<TThing> root(static_cast<TThing*>(reader.ReadRootComponent(nullptr)));
    root->OnClick(root.get());
    EXPECT_EQ(heard, "Elsewhere");
    EXPECT_EQ(Written(*root), bytes);
}

TEST_F(Components, AnEventSetByCodeIsNotStored) {
    TThing root(nullptr);
    root.SetName("R");
    root.OnClick = [](TObject*) {};
    EXPECT_EQ(Hex(Written(root)), "54 50 46 30 06 54 54 68 69 6E 67 01 52 00 00");
}

TEST_F(Components, AReferenceToNobodyIsAnError) {
    EXPECT_EQ(MessageOf([&] { Read(Binary("object R: TThing\n Friend = Nobody\nend")); }),
              "EReadError: Error reading R.Friend: the component Nobody was not found");
}

TEST_F(Components, AStoredPositionPutsTheChildThere) {
    const auto root = Read(Binary("object R: TThing\n object A: TThing\n end\n object B: TThing [0]\n end\nend"));
    ASSERT_EQ(root->Children.size(), 2u);
    EXPECT_EQ(root->Children[0]->Name(), "B");
}

TEST_F(Components, AnInheritedChildChangesTheOneThatIsThere) {
    TThing root(nullptr);
    root.SetName("R");
    TThing* a = Child(root, root, "A");
    a->Caption = "before";
    TMemoryStream stream(
        Binary("inherited R: TThing\n inherited A: TThing\n Count = 4\n end\n object B: TThing\n end\nend"));
    TReader reader(stream);
    reader.ReadRootComponent(&root);
    EXPECT_EQ(a->Count, 4);
    EXPECT_EQ(a->Caption, "before");
    EXPECT_NE(root.FindComponent("B"), nullptr);
}

TEST_F(Components, AnInheritedChildThatIsMissingSaysSo) {
    EXPECT_THAT(MessageOf([&] { Read(Binary("object R: TThing\n inherited A: TThing\n end\nend")); }),
                testing::HasSubstr("Ancestor for 'A' not found"));
}

TEST_F(Components, ADescendentHoldsOnlyWhatDiffers) {
    TThing base(nullptr), derived(nullptr);
    for (TThing* root : {&base, &derived}) {
        root->SetName("R");
        root->Caption = "same";
        Child(*root, *root, "A")->Count = 1;
    }
    static_cast<TThing*>(derived.FindComponent("A"))->Count = 2;
    derived.Caption = "";
    TMemoryStream stream;
    TWriter writer(stream);
    writer.WriteDescendent(derived, &base);
    writer.Flush();
    stream.SetPosition(0);
    EXPECT_EQ(BinaryToText(stream),
              "inherited R: TThing\n  Caption = ''\n  inherited A: TThing\n    Count = 2\n  end\nend\n");
}

TEST_F(Components, TheReaderMayRenameWhatItReads) {
    TMemoryStream stream(Binary("object R: TThing\n object A: TThing\n end\nend"));
    TReader reader(stream);
    reader.OnSetName = [](TReader&, TComponent*, AnsiString& name) { name += "_x"; };
    std::unique_ptr<TThing> root(static_cast<TThing*>(reader.ReadRootComponent(nullptr)));
    EXPECT_EQ(root->Name(), "R_x");
    EXPECT_NE(root->FindComponent("A_x"), nullptr);
}

TEST_F(Components, ASecondRootOfANameGetsANumber) {
    TComponent owner(nullptr);
    const std::string bytes = Binary("object R: TThing\nend");
    for (int i = 0; i < 2; ++i) {
        TMemoryStream stream(bytes);
        ReadComponentFromStream(stream, new TThing(&owner));
    }
    EXPECT_EQ(owner.Components(0)->Name(), "R");
    EXPECT_EQ(owner.Components(1)->Name(), "R_1");
}

TEST_F(Components, AReferenceIntoAnotherFormWaitsUntilItIsOpen) {
    std::unique_ptr<TThing> other;
    SetFindGlobalComponent([&](std::string_view name) -> TComponent* {
        return other && name == "Other.A" ? other->FindComponent("A") : nullptr;
    });
    const auto first = Read(Binary("object R: TThing\n Friend = Other.A\nend"));
    EXPECT_EQ(first->Friend(), nullptr);
    other = Read(Binary("object Other: TThing\n object A: TThing\n end\nend"));
    Read(Binary("object Third: TThing\nend"));
    EXPECT_EQ(first->Friend(), other->FindComponent("A"));
    SetFindGlobalComponent(nullptr);
}

TEST_F(Components, NestingBeyondTheLimitIsAnError) {
    std::string bytes = "TPF0";
    for (int i = 0; i < 10000; ++i) bytes += Unhex("06 54 54 68 69 6E 67 00 00");
    EXPECT_THROW(Read(bytes), EReadError);
}
