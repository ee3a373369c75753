#include "unit/tree/fixtures.h"

using namespace tree_fixtures;

TEST(TreeChanges, AddingAndModifyingSetTheModifiedFlag) {
    TTreeVyn tree;
    tree.Add(Node(1, -1, 1));
    EXPECT_TRUE(tree.Modified());
    tree.SetModified(false);
    tree.Add(Node(1, -1, 2));
    EXPECT_TRUE(tree.Modified());
    tree.SetModified(false);
    tree.Delete(1);
    EXPECT_TRUE(tree.Modified());
}

TEST(TreeChanges, AddingANumberThatIsThereModifiesIt) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2)});
    tree.Add(Node(3, 2, 7, 8, 99, "moved"));
    EXPECT_EQ(tree.Count(), 3);
    EXPECT_EQ(Numbers(tree.Childs(1, true)), (List{2}));
    EXPECT_EQ(Numbers(tree.Childs(2, true)), (List{3}));
    EXPECT_EQ(tree.GetIDNode(3).Name, "moved");
    EXPECT_EQ(tree.GetIDNode(3).IDComponent, 99);
}

TEST(TreeChanges, ADuplicateIsRefused) {
    TOpenTree tree;
    tree.Add(Node(4, -1, 1));
    EXPECT_EQ(ErrorOf([&] { tree.InternalDoAdd(Node(4, -1, 1)); }), "IDNode duplicado: 4");
}

TEST(TreeChanges, DeletingAMissingNumberIsRefused) {
    TTreeVyn tree;
    EXPECT_EQ(ErrorOf([&] { tree.Delete(17); }), "Node:17 not find");
}

TEST(TreeChanges, ModifyingAMissingNumberIsRefused) {
    TTreeVyn tree;
    EXPECT_EQ(ErrorOf([&] { tree.ModifyTVynTreeNode(17, -1, 1, 0, 0, ""); }), "Node:17 not find");
}

TEST(TreeChanges, DeletingTakesTheBranchAndTheShortcutsToIt) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1), Node(4, 3, 1), Node(5, 1, 2), Shortcut(6, 5, 1, 4),
                Shortcut(7, 5, 2, 5 + 4), Node(9, 1, 3)});
    tree.Delete(2);
    EXPECT_EQ(Numbers(tree), (List{1, 5, 7, 9}));
}

TEST(TreeChanges, DeletingAShortcutLeavesItsTarget) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2)});
    tree.Delete(3);
    EXPECT_EQ(Numbers(tree), (List{1, 2}));
}

TEST(TreeChanges, AShortcutToADeletedShortcutGoesToo) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2), Shortcut(4, 1, 3, 3)});
    tree.Delete(2);
    EXPECT_EQ(Numbers(tree), (List{1}));
}

TEST(TreeChanges, EachNodeIsDeletedThroughDoDeleteAfterWhatHangsOnIt) {
    class TRecordingTree : public TTreeVyn {
      public:
        List Deleted;

      protected:
        void DoDelete(int position) override {
            const int number = GetIdxNodeArbre(position).IDNode;
            TTreeVyn::DoDelete(position);
            Deleted.push_back(number);
        }
    } tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1), Node(4, 2, 2), Node(5, 1, 2), Shortcut(6, 5, 1, 3)});
    tree.Delete(1);
    EXPECT_EQ(tree.Deleted, (List{6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(tree.Count(), 0);
}

TEST(TreeChanges, AVeryDeepBranchIsDeletedWithoutADeepStack) {
    TTreeVyn tree;
    constexpr int kDepth = 90000;
    for (int i = 1; i <= kDepth; ++i) tree.Add(Node(i, i - 1, 1));
    tree.Delete(1);
    EXPECT_EQ(tree.Count(), 0);
}

TEST(TreeChanges, AVeryDeepTransparentBranchIsListedWithoutADeepStack) {
    TTreeVyn tree;
    constexpr int kDepth = 90000;
    for (int i = 1; i < kDepth; ++i) tree.Add(Node(i, i - 1, 1, kTransparent));
    tree.Add(Node(kDepth, kDepth - 1, 5));
    EXPECT_EQ(Numbers(tree.Childs(0, false)), (List{kDepth}));
    EXPECT_EQ(tree.MaxNFillNode(0), 5);
}

TEST(TreeChanges, ClearingEmptiesTheTreeAndTellsTheLinks) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1)});
    std::vector<AnsiString> heard;
    TListeningLink link("", heard);
    link.SetTreeVyn(&tree);
    tree.Clear();
    EXPECT_EQ(tree.Count(), 0);
    EXPECT_EQ(tree.CountChilds(1, true), 0);
    EXPECT_EQ(heard, (std::vector<AnsiString>{"Changed -1"}));
}

TEST(TreeChecks, NumbersRunFrom1To100000) {
    TTreeVyn tree;
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(0, -1, 1)); }), "IDNode must be >=1");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(-1, -1, 1)); }), "IDNode must be >=1");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(100001, -1, 1)); }), "IDNode must be <=100000");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(100000, -1, 1)); }), "no error");
    EXPECT_EQ(tree.Count(), 1);
}

TEST(TreeChecks, ANodeCannotBeItsOwnParent) {
    TTreeVyn tree;
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(3, 3, 1)); }), "Nodo circular no permitido");
    EXPECT_FALSE(tree.Modified());
}

TEST(TreeChecks, ANodeCannotMoveBelowItself) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(1, 3, 1)); }), "Nodo circular no permitido");
    EXPECT_EQ(tree.GetIDNode(1).IDParent, -1);
}

TEST(TreeChecks, AMissingParentThatArrivesCannotCloseACircle) {
    TTreeVyn tree;
    tree.Add(Node(2, 3, 1));
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(3, 2, 1)); }), "Nodo circular no permitido");
}

TEST(TreeChecks, AShortcutCannotBeAParent) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(4, 3, 1)); }), "El nodo padre no puede ser un Acceso Directo");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(2, 3, 1)); }), "El nodo padre no puede ser un Acceso Directo");
}

TEST(TreeChecks, ANodeWithChildrenCannotBecomeAShortcut) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1), Node(4, 1, 2)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(2, 1, 1, 4)); }), "Este tipo de nodo no puede tener hijos");
}

TEST(TreeChecks, AShortcutCannotPointToWhatItStandsIn) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1)});
    for (int target : {3, 2, 1})
        EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(4, 3, 1, target)); }), "Nodo circular no permitido");
}

TEST(TreeChecks, AShortcutCannotPointToItself) {
    TTreeVyn tree;
    tree.Add(Node(1, -1, 1));
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(4, 1, 1, 4)); }), "Nodo circular dentro de los hijos");
}

TEST(TreeChecks, TwoShortcutsCannotChaseEachOther) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2), Shortcut(4, 2, 1, 3)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(5, 3, 1, 2)); }),
              "Dentro de los hijos existe un acceso directo circular");
    EXPECT_EQ(tree.Count(), 4);
}

TEST(TreeChecks, ShortcutsCannotPointToEachOther) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Shortcut(2, 1, 1, 3)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(3, 1, 2, 2)); }),
              "Dentro de los hijos existe un acceso directo circular");
}

TEST(TreeChecks, ACircleThroughSeveralShortcutsIsFound) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2), Node(4, 1, 3), Node(5, 4, 1), Shortcut(6, 2, 1, 3),
                Shortcut(7, 3, 1, 4)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(8, 5, 1, 2)); }),
              "Dentro de los hijos existe un acceso directo circular");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(8, 1, 9, 2)); }), "no error");
}

TEST(TreeChecks, ABranchWithAShortcutCannotMoveBelowItsTarget) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2), Node(4, 1, 3), Shortcut(5, 4, 1, 2)});
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(4, 2, 1)); }), "Dentro de los hijos existe un acceso directo circular");
    EXPECT_EQ(ErrorOf([&] { tree.Add(Node(4, 3, 1)); }), "no error");
}

TEST(TreeChecks, AShortcutMayStandBeforeItsTarget) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Shortcut(2, 1, 1, 3), Node(3, 1, 2)});
    EXPECT_EQ(tree.Count(), 3);
}

TEST(TreeChecks, AShortcutMayBePointedElsewhere) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 1, 2), Shortcut(4, 2, 1, 3)});
    tree.Add(Shortcut(4, 3, 1, 2));  // its former target is what it stands in now
    EXPECT_EQ(tree.GetIDNode(4).IDComponent, 2);
    tree.Delete(3);
    EXPECT_EQ(Numbers(tree), (List{1, 2}));
}

TEST(TreeCopies, ChildrenAreCopiedAfterThoseThatAreThere) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 5, 8, 33, "a"), Node(4, 2, 2), Node(5, 4, 9), Node(6, 1, 2),
                Node(7, 6, 10)});
    tree.CopyStructure(2, 6);
    EXPECT_EQ(Numbers(tree.Childs(6, true)), (List{7, 8, 9}));
    EXPECT_EQ(tree.GetIDNode(8).Child, 11);
    EXPECT_EQ(tree.GetIDNode(8).Name, "N4");
    EXPECT_EQ(tree.GetIDNode(9).Child, 12);
    EXPECT_EQ(tree.GetIDNode(9).Name, "a");
    EXPECT_EQ(tree.GetIDNode(9).IDComponent, 33);
    EXPECT_EQ(Numbers(tree.Childs(8, true)), (List{10}));
    EXPECT_EQ(tree.GetIDNode(10).Child, 9);
    EXPECT_EQ(Numbers(tree.Childs(2, true)), (List{4, 3}));
}

TEST(TreeCopies, ANodeCanBeCopiedIntoItself) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1)});
    tree.CopyStructure(1, 3);
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5}));
    EXPECT_EQ(tree.GetIDNode(4).IDParent, 3);
    EXPECT_EQ(tree.GetIDNode(5).IDParent, 4);
}

TEST(TreeCopies, MissingNodesAreRefused) {
    TTreeVyn tree;
    tree.Add(Node(1, -1, 1));
    EXPECT_EQ(ErrorOf([&] { tree.CopyStructure(9, 1); }), "Node:9 not find");
    EXPECT_EQ(ErrorOf([&] { tree.CopyStructure(1, 9); }), "Node:9 not find");
}

TEST(TreeCopies, AVirtualNodeCannotBeCopied) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2)});
    tree.SetRealTree(false);
    EXPECT_EQ(ErrorOf([&] { tree.CopyStructure(100001, 1); }), "El nodo a copiar no es real (virtual)");
}

TEST(TreeCopies, AFailureNamesTheNodeAndCopiesNothing) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Node(3, 2, 1), Node(4, 1, 2), Node(5, 1, 3), Node(6, 2, 2)});
    tree.Add(Node(7, 2, 3, tnAccesDirecte, 4, "cap a 4"));
    EXPECT_EQ(
        ErrorOf([&] { tree.CopyStructure(2, 4); }),
        "Ocurrió un error al copiar los hijos en la estructura de árbol\nNodo del error-> Hijo: 3 ID: 7 Nombre: cap a 4"_w);
    EXPECT_EQ(Numbers(tree), (List{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(tree.CountChilds(4, true), 0);
}

TEST(TreeChecks, ACircleIsFoundFromEitherEnd) {
    // A row of folders, each with a shortcut to the next; the last cannot point back to the first, the middle neither.
    for (bool ascending : {true, false}) {
        TTreeVyn tree;
        constexpr int kRow = 300;
        tree.Add(Node(1, -1, 1));
        for (int i = 2; i <= kRow; ++i) tree.Add(Node(i, 1, i));
        for (int i = 2; i < kRow; ++i) {
            const int from = ascending ? i : kRow + 1 - i;
            tree.Add(Shortcut(kRow + from, from, 1, from + 1));
        }
        for (int from : {kRow, kRow / 2, 3})
            EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(5000, from, 2, 2)); }),
                      "Dentro de los hijos existe un acceso directo circular");
        EXPECT_EQ(ErrorOf([&] { tree.Add(Shortcut(5000, 2, 2, kRow)); }), "no error");
    }
}

TEST(TreeChecks, LongRowsOfShortcutsAreCheckedInAnInstant) {
    TTreeVyn tree;
    constexpr int kRow = 40000;
    tree.Add(Node(1, -1, 1));
    for (int i = 2; i <= kRow; ++i) tree.Add(Node(i, 1, i));
    for (int i = 2; i < kRow; ++i) tree.Add(Shortcut(kRow + i, i, 1, i + 1));
    EXPECT_EQ(tree.Count(), 2 * kRow - 2);
}
