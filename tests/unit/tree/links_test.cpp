#include "unit/tree/fixtures.h"

using namespace tree_fixtures;
using Heard = std::vector<AnsiString>;

TEST(TreeLinks, AddingTellsBeforeAndAfter) {
    TTreeVyn tree;
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    bool there = true;
    link.OnHear = [&](TTreeVynNodeCange kind, int number) {
        if (kind == mncBeforeAdd) there = tree.FindIDNode(number);
    };
    tree.Add(Node(3, -1, 1));
    EXPECT_EQ(heard, (Heard{"BeforeAdd 3", "AfterAdd 3"}));
    EXPECT_FALSE(there);
}

TEST(TreeLinks, ModifyingTellsBeforeAndAfter) {
    TTreeVyn tree;
    tree.Add(Node(3, -1, 1));
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.Add(Node(3, -1, 2));
    EXPECT_EQ(heard, (Heard{"BeforeModify 3", "AfterModify 3"}));
}

TEST(TreeLinks, DeletingALeafTellsBeforeAndAfter) {
    TTreeVyn tree;
    tree.Add(Node(3, -1, 1));
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.Delete(3);
    EXPECT_EQ(heard, (Heard{"BeforeDel 3", "AfterDel 3"}));
}

TEST(TreeLinks, DeletingABranchTellsOneChangeForWhatHangsOnTheNode) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1)});
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.Delete(1);
    EXPECT_EQ(heard, (Heard{"BeforeDel 1", "Changed -1", "AfterDel 1"}));
}

TEST(TreeLinks, TheLinkAttachedLastHearsFirst) {
    TTreeVyn tree;
    Heard heard;
    TListeningLink first("a ", heard), second("b ", heard);
    first.SetTreeVyn(&tree);
    second.SetTreeVyn(&tree);
    tree.Add(Node(3, -1, 1));
    EXPECT_EQ(heard, (Heard{"b BeforeAdd 3", "a BeforeAdd 3", "b AfterAdd 3", "a AfterAdd 3"}));
}

TEST(TreeLinks, EnableWithoutDisableIsRefused) {
    TTreeVyn tree;
    EXPECT_EQ(ErrorOf([&] { tree.Enable(); }), "Disableds desorder");
    EXPECT_EQ(tree.Disableds(), 0);
}

TEST(TreeLinks, ChangesWhileDisabledBecomeOneAtTheLastEnable) {
    TTreeVyn tree;
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.Disable();
    tree.Disable();
    EXPECT_EQ(tree.Disableds(), 2);
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2)});
    tree.Enable();
    EXPECT_TRUE(heard.empty());
    tree.Enable();
    EXPECT_EQ(heard, (Heard{"Changed -1"}));
}

TEST(TreeLinks, EnableAfterNothingTellsNothing) {
    TTreeVyn tree;
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.Disable();
    tree.Enable();
    EXPECT_TRUE(heard.empty());
}

TEST(TreeLinks, AttachingTwiceLeavesOneEntry) {
    TTreeVyn tree;
    TCustomTreeVynLink link(nullptr);
    link.SetTreeVyn(&tree);
    link.SetTreeVyn(&tree);
    EXPECT_EQ(tree.Links().size(), 1u);
    EXPECT_EQ(link.TreeVyn(), &tree);
}

TEST(TreeLinks, MovingALinkTakesItFromTheFirstTree) {
    TTreeVyn first, second;
    TCustomTreeVynLink link(nullptr);
    link.SetTreeVyn(&first);
    link.SetTreeVyn(&second);
    EXPECT_TRUE(first.Links().empty());
    EXPECT_EQ(second.Links().size(), 1u);
}

TEST(TreeLinks, ADestroyedLinkDetachesItself) {
    TTreeVyn tree;
    {
        TCustomTreeVynLink link(nullptr);
        link.SetTreeVyn(&tree);
    }
    EXPECT_TRUE(tree.Links().empty());
    tree.Add(Node(1, -1, 1));
}

TEST(TreeLinks, DestroyingALinkThatFollowsNoTreeTouchesNone) {
    TTreeVyn tree;
    TCustomTreeVynLink other(nullptr);
    other.SetTreeVyn(&tree);
    { TCustomTreeVynLink link(nullptr); }
    EXPECT_EQ(tree.Links().size(), 1u);
}

TEST(TreeLinks, ADestroyedTreeDetachesItsLinksTheLastFirst) {
    TCustomTreeVynLink first(nullptr), second(nullptr);
    {
        TTreeVyn tree;
        first.SetTreeVyn(&tree);
        second.SetTreeVyn(&tree);
    }
    EXPECT_EQ(first.TreeVyn(), nullptr);
    EXPECT_EQ(second.TreeVyn(), nullptr);
}

TEST(TreeLinks, ALinkMayLeaveWhileItIsTold) {
    TTreeVyn tree;
    Heard heard;
    TListeningLink first("a ", heard), second("b ", heard);
    first.SetTreeVyn(&tree);
    second.SetTreeVyn(&tree);
    second.OnHear = [&](TTreeVynNodeCange, int) {
        first.SetTreeVyn(nullptr);
        second.SetTreeVyn(nullptr);
    };
    tree.Add(Node(3, -1, 1));
    EXPECT_EQ(heard, (Heard{"b BeforeAdd 3"}));
}

TEST(TreeLinks, ALinkThatRefusesAnAdditionStopsIt) {
    TTreeVyn tree;
    Heard heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    link.OnHear = [](TTreeVynNodeCange kind, int) {
        if (kind == mncBeforeAdd) Abort();
    };
    EXPECT_THROW(tree.Add(Node(3, -1, 1)), EAbort);
    EXPECT_EQ(tree.Count(), 0);
    EXPECT_FALSE(tree.Modified());
}

TEST(TreeLinks, TheBaseLinkTakesChangesInSilence) {
    TTreeVyn tree;
    TCustomTreeVynLink link(nullptr);
    link.SetTreeVyn(&tree);
    tree.Add(Node(1, -1, 1));
    EXPECT_EQ(tree.Count(), 1);
}

TEST(ComponentNexus, TellsItsHandlerWhatGoes) {
    TComponentListNexus nexus(nullptr);
    std::vector<TComponent*> gone;
    TObject* sender = nullptr;
    nexus.OnRemove = TComponentListNexusEvent([&](TObject* from, TComponent* component) {
        sender = from;
        gone.push_back(component);
    });
    auto* watched = new TComponent(nullptr);
    watched->FreeNotification(&nexus);
    delete watched;
    EXPECT_EQ(gone, (std::vector<TComponent*>{watched}));
    EXPECT_EQ(sender, &nexus);
}

TEST(ComponentNexus, WithoutHandlerIgnoresTheNotice) {
    TComponentListNexus nexus(nullptr);
    auto watched = std::make_unique<TComponent>(nullptr);
    watched->FreeNotification(&nexus);
    watched.reset();
    // The nexus hears on, and a handler set later is told.
    std::vector<TComponent*> gone;
    nexus.OnRemove = [&](TObject*, TComponent* component) { gone.push_back(component); };
    auto* second = new TComponent(nullptr);
    second->FreeNotification(&nexus);
    delete second;
    EXPECT_EQ(gone, (std::vector<TComponent*>{second}));
}

TEST(ComponentNexus, InsertionsAreNotTold) {
    TComponentListNexus nexus(nullptr);
    int calls = 0;
    nexus.OnRemove = TComponentListNexusEvent([&](TObject*, TComponent*) { ++calls; });
    TComponent other(nullptr);
    nexus.Notification(&other, opInsert);
    EXPECT_EQ(calls, 0);
    nexus.Notification(&other, opRemove);
    EXPECT_EQ(calls, 1);
}
