#include <algorithm>

#include "unit/tree/fixtures.h"

using namespace tree_fixtures;

TEST(TreeNodes, TheTransparentTypesAreExactlyFour) {
    List transparent;
    for (int type = -300; type <= 300; ++type)
        if (NodeTypeIsTransparent(type)) transparent.push_back(type);
    EXPECT_EQ(transparent, (List{14, 18, 23, 28}));
}

TEST(TreeNodes, KindsOfChangeKeepTheirNumbers) {
    EXPECT_EQ(static_cast<int>(mncBeforeAdd), 0);
    EXPECT_EQ(static_cast<int>(mncAfterAdd), 1);
    EXPECT_EQ(static_cast<int>(mncBeforeDel), 2);
    EXPECT_EQ(static_cast<int>(mncAfterDel), 3);
    EXPECT_EQ(static_cast<int>(mncBeforeModify), 4);
    EXPECT_EQ(static_cast<int>(mncAfterModify), 5);
    EXPECT_EQ(static_cast<int>(mncChanged), 6);
}

TEST(TreeNodes, ASetOfTypesHoldsCodesFrom0To255) {
    const TSetTipusNodes types{0, 23, 255, 256, -1};
    EXPECT_TRUE(types.Contains(0) && types.Contains(23) && types.Contains(255));
    EXPECT_FALSE(types.Contains(256) || types.Contains(-1) || types.Contains(1));
}

TEST(TreeNodes, ANewTreeIsRealEmptyAndUnmodified) {
    TTreeVyn tree;
    EXPECT_EQ(tree.FirstIdNode(), 1);
    EXPECT_TRUE(tree.RealTree());
    EXPECT_FALSE(tree.Modified());
    EXPECT_EQ(tree.Count(), 0);
    EXPECT_EQ(tree.Disableds(), 0);
}

TEST(TreeNodes, FirstIdNodeIsPublishedWithDefaultOne) {
    const PropertyInfo* property = TTreeVyn::StaticClass().FindProperty("FirstIdNode");
    ASSERT_NE(property, nullptr);
    EXPECT_TRUE(property->HasDefault);
    EXPECT_EQ(property->Default, 1);
}

TEST(TreeNodes, NodesAreKeptInAscendingOrderOfNumber) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(30, 1, 1), Node(7, 1, 2), Node(12, 30, 1), Node(2, 1, 3)});
    EXPECT_EQ(Numbers(tree), (List{1, 2, 7, 12, 30}));
    EXPECT_EQ(tree.FindNode(7), 2);
    EXPECT_EQ(tree.FindNode(8), -1);
    EXPECT_TRUE(tree.FindIDNode(30));
    EXPECT_FALSE(tree.FindIDNode(31));
}

TEST(TreeNodes, ManyNodesInAnyOrderStandInOrder) {
    TTreeVyn tree;
    constexpr int kCount = 1009;  // a prime: each step reaches every number
    List expected;
    for (int i = 0; i < kCount; ++i) {
        tree.Add(Node(1 + (i * 389) % kCount, -1, i));
        expected.push_back(i + 1);
    }
    EXPECT_EQ(Numbers(tree), expected);
    for (int i = 1; i <= kCount; ++i) ASSERT_EQ(tree.FindNode(i), i - 1);
}

TEST(TreeNodes, GetIDNodeGivesTheNodeOrTheNullRecord) {
    TTreeVyn tree;
    tree.Add(Node(5, -1, 3, 8, 77, "Clients"));
    const TNodeArbre node = tree.GetIDNode(5);
    EXPECT_EQ(node.IDParent, -1);
    EXPECT_EQ(node.Child, 3);
    EXPECT_EQ(node.IDComponent, 77);
    EXPECT_EQ(node.NodeType, 8);
    EXPECT_EQ(node.Name, "Clients");
    EXPECT_EQ(tree.GetIDNode(6).IDNode, -1);
}

TEST(TreeNodes, SetIDNodeKeepsTheNumberItIsCalledWith) {
    TTreeVyn tree;
    tree.SetIDNode(5, Node(9, -1, 1, kFolder, 0, "first"));
    tree.SetIDNode(5, Node(9, -1, 1, kFolder, 0, "second"));
    EXPECT_EQ(Numbers(tree), (List{5}));
    EXPECT_EQ(tree.GetIDNode(5).Name, "second");
}

TEST(TreeNodes, PositionsOutsideTheListAreRefused) {
    TTreeVyn tree;
    tree.Add(Node(1, -1, 1));
    EXPECT_EQ(ErrorOf([&] { tree.GetIdxNodeArbre(-1); }), "Index out of range in GetIdxNodeArbre: -1");
    EXPECT_EQ(ErrorOf([&] { tree.GetIdxNodeArbre(1); }), "Index out of range in GetIdxNodeArbre: 1");
}

TEST(TreeNodes, NewNumbersOfAnEmptyTree) {
    TTreeVyn tree;
    EXPECT_EQ(tree.GetNewIDNode(), 1);
    EXPECT_EQ(tree.GetNewIDNodeForVirtual(), 100001);
}

TEST(TreeNodes, NewNumbersFollowTheHighestOfEachKind) {
    TOpenTree tree;
    tree.Checks = false;
    Fill(tree, {Node(1, -1, 1), Node(5, 1, 1), Node(100003, 1, 2)});
    EXPECT_EQ(tree.GetNewIDNode(), 6);
    EXPECT_EQ(tree.GetNewIDNodeForVirtual(), 100004);
}

TEST(TreeNodes, TheHighestNumberGivenIs99999) {
    TTreeVyn tree;
    tree.Add(Node(99998, -1, 1));
    EXPECT_EQ(tree.GetNewIDNode(), 99999);
    tree.Add(Node(99999, -1, 1));
    EXPECT_EQ(ErrorOf([&] { tree.GetNewIDNode(); }), "No more nodes available");
}

TEST(TreeNodes, NodeOneHundredThousandCountsForNeitherKindOfNumber) {
    TTreeVyn tree;
    tree.Add(Node(100000, -1, 1));
    EXPECT_EQ(tree.GetNewIDNode(), 1);
    EXPECT_EQ(tree.GetNewIDNodeForVirtual(), 100001);
    EXPECT_FALSE(tree.IsNodeReal(100000));
}

TEST(TreeNodes, RealIsWhatIsBelow100000AndNoCopy) {
    TTreeVyn tree;
    tree.Add(Node(1, -1, 1));
    EXPECT_TRUE(tree.IsNodeReal(1));
    EXPECT_TRUE(tree.IsNodeReal(99999));  // not there
    EXPECT_FALSE(tree.IsNodeReal(100000));
    EXPECT_FALSE(tree.IsNodeReal(100001));
}

TEST(TreeChilds, AreSortedByChild) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 30), Node(3, 1, 10), Node(4, 1, 20), Node(5, 2, 1)});
    EXPECT_EQ(Numbers(tree.Childs(1, true)), (List{3, 4, 2}));
    EXPECT_EQ(Numbers(tree.Childs(5, true)), (List{}));
}

TEST(TreeChilds, OfANumberBelowOneAreAllTopLevelNodes) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 2), Node(2, 0, 1), Node(3, -5, 3), Node(4, 1, 1)});
    for (int parent : {0, -1, -7}) EXPECT_EQ(Numbers(tree.Childs(parent, true)), (List{2, 1, 3}));
}

TEST(TreeChilds, ATransparentChildIsReplacedByItsChildren) {
    TTreeVyn tree;
    Fill(tree,
         {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 9, kTransparent), Node(4, 1, 5), Node(5, 3, 4), Node(6, 3, 7)});
    EXPECT_EQ(Numbers(tree.Childs(1, false)), (List{2, 5, 4, 6}));
    EXPECT_EQ(Numbers(tree.Childs(1, true)), (List{2, 4, 3}));
}

TEST(TreeChilds, TransparentChildrenWithinTransparentChildren) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1, 14), Node(3, 2, 1, 18), Node(4, 3, 1, 28), Node(5, 4, 2), Node(6, 1, 1)});
    EXPECT_EQ(Numbers(tree.Childs(1, false)), (List{6, 5}));
}

TEST(TreeChilds, CanBeFilteredByTypeAndCounted) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1, 8), Node(3, 1, 2, kTransparent), Node(4, 3, 3, 8), Node(5, 1, 4, 32)});
    EXPECT_EQ(Numbers(tree.Childs(1, 8, false)), (List{2, 4}));
    EXPECT_EQ(Numbers(tree.Childs(1, 8, true)), (List{2}));
    EXPECT_EQ(Numbers(tree.Childs(1, TSetTipusNodes{8, 32}, false)), (List{2, 4, 5}));
    EXPECT_EQ(tree.CountChilds(1, true), 3);
    EXPECT_EQ(tree.CountChilds(1, false), 3);
    EXPECT_EQ(tree.CountChilds(1, 8, false), 2);
    EXPECT_EQ(tree.CountChilds(1, 14, true), 1);
    EXPECT_EQ(tree.CountChilds(1, 14, false), 0);
}

TEST(TreeChilds, ChildFindsTheShownChildOfAnOrderKey) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 3), Node(3, 1, 9, kTransparent), Node(4, 3, 7)});
    EXPECT_EQ(tree.Child(1, 3).IDNode, 2);
    EXPECT_EQ(tree.Child(1, 7).IDNode, 4);
    EXPECT_EQ(tree.Child(1, 9).IDNode, -1);
}

TEST(TreeChilds, MaxNFillNodeLooksThroughTransparentChildren) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 3), Node(3, 1, 1, kTransparent), Node(4, 3, 8), Node(5, 2, 50)});
    EXPECT_EQ(tree.MaxNFillNode(1), 8);
    EXPECT_EQ(tree.MaxNFillNode(4), 0);
    EXPECT_EQ(tree.MaxNFillNode(77), 0);
    EXPECT_EQ(tree.MaxNFillNode(-1), 1);
}

TEST(TreeChilds, SortingTouchesOnlyThePartBetweenThePositions) {
    TArrayDeNodes nodes;
    for (int key : {9, 5, 4, 3, 1}) nodes.push_back(Node(key, -1, key));
    TTreeVyn::SortTArrayDeNodesByChild(nodes, 1, 3);
    EXPECT_EQ(Numbers(nodes), (List{9, 3, 4, 5, 1}));
    TTreeVyn::SortTArrayDeNodesByChild(nodes, 0, 4);
    EXPECT_EQ(Numbers(nodes), (List{1, 3, 4, 5, 9}));
}

TEST(TreeChilds, SortingTakesEmptyAndOutlyingBounds) {
    TArrayDeNodes none;
    TTreeVyn::SortTArrayDeNodesByChild(none, 0, -1);
    EXPECT_TRUE(none.empty());
    TArrayDeNodes two{Node(2, -1, 2), Node(1, -1, 1)};
    TTreeVyn::SortTArrayDeNodesByChild(two, -5, 50);
    EXPECT_EQ(Numbers(two), (List{1, 2}));
}

TEST(TreeChilds, SortingManyEqualAndReversedKeysKeepsEveryNode) {
    TArrayDeNodes nodes;
    constexpr int kCount = 5000;
    for (int i = 0; i < kCount; ++i) nodes.push_back({i, -1, (kCount - i) / 7, 0, 0, ""});
    TTreeVyn::SortTArrayDeNodesByChild(nodes, 0, kCount - 1);
    std::vector<bool> seen(kCount);
    for (int i = 0; i < kCount; ++i) {
        if (i > 0) {
            ASSERT_LE(nodes[static_cast<size_t>(i) - 1].Child, nodes[static_cast<size_t>(i)].Child);
        }
        seen[static_cast<size_t>(nodes[static_cast<size_t>(i)].IDNode)] = true;
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), kCount);
}
