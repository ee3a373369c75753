#include "unit/tree/fixtures.h"

using namespace tree_fixtures;

namespace {

void FillWithShortcut(TTreeVyn& tree) {
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1, 8, 30), Node(4, 2, 2), Node(5, 4, 1), Node(6, 1, 2),
                Shortcut(7, 6, 5, 2)});
}

}  // namespace

TEST(VirtualTree, AShortcutHoldsACopyOfTheBranch) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    EXPECT_FALSE(tree.RealTree());
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5, 6, 7, 100001, 100002, 100003, 100004}));
    EXPECT_EQ(Numbers(tree.Childs(7, true)), (List{100001}));
    EXPECT_EQ(tree.GetIDNode(100001).Name, "N2");
    EXPECT_EQ(Numbers(tree.Childs(100001, true)), (List{100002, 100003}));
    EXPECT_EQ(tree.GetIDNode(100002).IDComponent, 30);
    EXPECT_EQ(tree.GetIDNode(100002).NodeType, 8);
    EXPECT_EQ(Numbers(tree.Childs(100003, true)), (List{100004}));
    EXPECT_FALSE(tree.IsNodeReal(100002));
}

TEST(VirtualTree, TheCopyOfTheTargetShowsWhereTheShortcutStands) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.Add(Node(8, 6, 4));
    tree.Add(Node(9, 6, 6));
    tree.SetRealTree(false);
    EXPECT_EQ(Numbers(tree.Childs(6, false)), (List{8, 100001, 9}));
    EXPECT_EQ(tree.Child(6, 5).IDNode, 100001);
}

TEST(VirtualTree, CopiesAreNumberedInTheOrderOfTheWalk) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 9), Node(3, 2, 2), Node(4, 2, 1), Node(5, 4, 1), Shortcut(6, 1, 2, 2),
                Shortcut(7, 1, 1, 5)});
    tree.SetRealTree(false);
    const char* const names[] = {"N5", "N2", "N4", "N5", "N3"};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(tree.GetIDNode(100001 + i).Name, names[i]);
}

TEST(VirtualTree, AShortcutWithinTheBranchIsCopiedAndExpandedInTurn) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2), Shortcut(4, 3, 7, 2), Shortcut(5, 1, 3, 3)});
    tree.SetRealTree(false);
    // 4 holds 2; 5 holds 3 with a copy of 4, which holds 2.
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5, 100001, 100002, 100003, 100004}));
    EXPECT_EQ(tree.GetIDNode(100003).NodeType, tnAccesDirecte);
    EXPECT_EQ(tree.GetIDNode(100004).IDParent, 100003);
    EXPECT_EQ(tree.GetIDNode(100004).Name, "N2");
    EXPECT_EQ(tree.GetIDNode(100004).Child, 7);
}

TEST(VirtualTree, AShortcutToAShortcutIsFollowed) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2), Shortcut(4, 1, 6, 3)});
    tree.SetRealTree(false);
    EXPECT_EQ(Numbers(tree.Childs(1, false)), (List{2, 100001, 100003}));
    EXPECT_EQ(tree.GetIDNode(100003).Child, 6);
}

TEST(VirtualTree, AShortcutWithoutTargetHoldsNothing) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Shortcut(2, 1, 1, 50)});
    tree.SetRealTree(false);
    EXPECT_EQ(Numbers(tree), (List{1, 2}));
}

TEST(VirtualTree, OnlyWhatTheRootReachesIsExpanded) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, -1, 2), Shortcut(3, 2, 1, 1)});
    tree.SetRealTree(false);
    EXPECT_EQ(tree.Count(), 3);
    tree.SetFirstIdNode(2);
    EXPECT_EQ(tree.Count(), 4);
    EXPECT_FALSE(tree.RealTree());
    tree.SetFirstIdNode(1);
    EXPECT_EQ(tree.Count(), 3);
}

TEST(VirtualTree, GoingBackRemovesTheCopies) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    tree.SetRealTree(true);
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(tree.CountChilds(7, true), 0);
    tree.SetRealTree(false);
    EXPECT_EQ(tree.Count(), 11);
}

TEST(VirtualTree, ASwitchKeepsTheModifiedFlag) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    for (bool modified : {false, true}) {
        tree.SetModified(modified);
        tree.SetRealTree(false);
        EXPECT_EQ(tree.Modified(), modified);
        tree.SetRealTree(true);
        EXPECT_EQ(tree.Modified(), modified);
    }
}

TEST(VirtualTree, ASwitchTellsTheLinksOnce) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    std::vector<AnsiString> heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.SetRealTree(false);
    EXPECT_EQ(heard, (std::vector<AnsiString>{"Changed -1"}));
    tree.SetRealTree(false);
    EXPECT_EQ(heard.size(), 1u);
    tree.SetRealTree(true);
    EXPECT_EQ(heard, (std::vector<AnsiString>{"Changed -1", "Changed -1"}));
}

TEST(VirtualTree, WithoutARootOnlyTheModeChanges) {
    TTreeVyn tree;
    tree.Add(Node(2, -1, 1));
    std::vector<AnsiString> heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.SetRealTree(false);
    EXPECT_FALSE(tree.RealTree());
    EXPECT_TRUE(heard.empty());
}

TEST(VirtualTree, CopiesCannotBeModified) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    EXPECT_EQ(ErrorOf([&] { tree.ModifyTVynTreeNode(100002, 1, 1, 0, 0, "x"); }), "Could not modify virtual nodes");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(100002, 1, 1)); }), "Could not modify virtual nodes");
}

TEST(VirtualTree, NothingIsAddedBelowACopy) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(9, 100001, 1)); }), "Could not modify virtual nodes");
}

TEST(VirtualTree, NoShortcutIsAdded) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(9, 1, 1, 2)); }),
              "Cannot insert tnAccesDirecte while are in Virtual Mode");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(7, 6, 5, 3)); }),
              "Cannot insert tnAccesDirecte while are in Virtual Mode");
    tree.Add(Node(9, 6, 8));
    EXPECT_TRUE(tree.FindIDNode(9));
}

TEST(VirtualTree, AShortcutCanBeRenamedAndMoved) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    tree.Add(Node(7, 1, 8, tnAccesDirecte, 2, "Clients"));
    EXPECT_EQ(tree.GetIDNode(7).Name, "Clients");
    EXPECT_EQ(Numbers(tree.Childs(7, true)), (List{100001}));
}

TEST(VirtualTree, AShortcutThatBecomesAFolderLosesItsCopies) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    tree.Add(Node(7, 6, 5));
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5, 6, 7}));
}

TEST(VirtualTree, DeletingATargetTakesTheShortcutAndItsCopies) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    tree.Delete(2);
    EXPECT_EQ(Numbers(tree), (List{1, 6}));
}

TEST(VirtualTree, DeletingTheRootLeavesNoCopiesForTheRealTree) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    tree.Delete(1);
    tree.SetRealTree(true);
    EXPECT_EQ(tree.Count(), 0);
}

TEST(VirtualTree, AParentThatIsMissingStopsTheSwitch) {
    TTreeVyn tree;
    FillWithShortcut(tree);
    tree.Add(Node(9, 50, 1));
    EXPECT_EQ(ErrorOf([&] { tree.SetRealTree(false); }),
              "ERROR INTERNO GRAVE: UTArbreVyn.InternalAssignParentChildPointers.161008.1");
    EXPECT_TRUE(tree.RealTree());
    EXPECT_EQ(tree.Disableds(), 0);
}

TEST(VirtualTree, ACircleOfParentsStopsTheSwitch) {
    TOpenTree tree;
    tree.Checks = false;
    Fill(tree, {Node(1, -1, 1), Node(2, 3, 1), Node(3, 2, 1)});
    EXPECT_EQ(ErrorOf([&] { tree.SetRealTree(false); }),
              "ERROR INTERNO GRAVE: UTArbreVyn.InternalAssignParentChildPointers.161008.2");
    EXPECT_TRUE(tree.RealTree());
}

TEST(VirtualTree, ACircleOfShortcutsStopsTheSwitchAndLeavesNoCopies) {
    TOpenTree tree;
    tree.Checks = false;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 2, 1, 4), Node(4, 1, 2), Shortcut(5, 4, 1, 2)});
    EXPECT_EQ(ErrorOf([&] { tree.SetRealTree(false); }), "Dentro de los hijos existe un acceso directo circular");
    EXPECT_TRUE(tree.RealTree());
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5}));
}

TEST(VirtualTree, OnlyShortcutsAreExpanded) {
    TOpenTree tree;
    tree.Add(Node(1, -1, 1));
    EXPECT_EQ(ErrorOf([&] { tree.ExpandAccesDirecte(1); }), "ERROR 161008.3 is not AccesDirecte");
}

TEST(VirtualTree, AStoredNodeBelowACopyStopsTheWayBack) {
    TOpenTree tree;
    FillWithShortcut(tree);
    tree.SetRealTree(false);
    tree.Checks = false;
    tree.Add(Node(9, 100002, 1));
    EXPECT_EQ(ErrorOf([&] { tree.SetRealTree(true); }),
              "Error TTreeVyn.DoRealTree.161008.4 ID:100002 IDComponent: 30 Name: N3 Count: 12");
    EXPECT_FALSE(tree.RealTree());
    EXPECT_EQ(tree.Count(), 12);
}

TEST(VirtualTree, ShortcutsThatMultiplyAreRefusedAtAMillionCopies) {
    TTreeVyn tree;
    tree.Add(Node(1, -1, 1));
    int number = 2;
    int folder = 2;
    tree.Add(Node(number++, 1, 1));
    for (int level = 0; level < 24; ++level) {
        const int next = number++;
        tree.Add(Node(next, 1, next));
        tree.Add(Shortcut(number++, next, 1, folder));
        tree.Add(Shortcut(number++, next, 2, folder));
        folder = next;
    }
    const int count = tree.Count();
    EXPECT_EQ(ErrorOf([&] { tree.SetRealTree(false); }), "The shortcuts need more than 1000000 virtual nodes");
    EXPECT_TRUE(tree.RealTree());
    EXPECT_EQ(tree.Count(), count);
}
