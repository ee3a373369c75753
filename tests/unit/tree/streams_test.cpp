#include "unit/tree/fixtures.h"

using namespace tree_fixtures;

namespace {

std::string Hex(std::string_view bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string result;
    for (unsigned char byte : bytes) {
        result += digits[byte >> 4];
        result += digits[byte & 15];
    }
    return result;
}

// A node as it is stored, in hexadecimal; all numbers small.
std::string HexNode(int number, int child, int component, int type, std::string_view name) {
    const auto small = [](int value) { return "02" + IntToHex(static_cast<uint8_t>(value), 2); };
    return "070649444E6F6465" + small(number) + "07054368696C64" + small(child) + "070B4944436F6D706F6E656E74" +
           small(component) + "07084E6F646554797065" + small(type) + "07044E616D65" + "06" +
           IntToHex(static_cast<int>(name.size()), 2) + Hex(name);
}
const char kTag[] = "0608545472656556796E";

void FillSmall(TTreeVyn& tree) {
    Fill(tree, {Node(1, -1, 1, 0, 1, "Sales"), Node(3, 1, 2, 8, 2, "Customers"), Node(2, 1, 1, 4, 0, "Files"),
                Node(4, 2, 1, 8, 7, "x")});
}

class TTreeHolder : public TComponent {
    VYN_OBJECT
  public:
    explicit TTreeHolder(TComponent* owner) : TComponent(owner) {}
    TTreeVyn* Tree() const { return const_cast<TTreeVyn*>(&tree_); }
    void SetTree(TTreeVyn*) {}

  private:
    TTreeVyn tree_;
};
const ClassInfo& TTreeHolder::StaticClass() {
    static const ClassInfo info = DefineClass<TTreeHolder, TComponent>("TTreeHolder")
                                      .Published("Nodes", &TTreeHolder::Tree, &TTreeHolder::SetTree);
    return info;
}

}  // namespace

TEST(TreeStream, IsTheTagAndNestedListsInOrder) {
    TTreeVyn tree;
    FillSmall(tree);
    EXPECT_EQ(Hex(Stored(tree)), kTag + ("01" + HexNode(1, 1, 1, 0, "Sales")) + "01" + HexNode(2, 1, 0, 4, "Files") +
                                     "01" + HexNode(4, 1, 7, 8, "x") + "00" + HexNode(3, 2, 2, 8, "Customers") +
                                     "0000");
}

TEST(TreeStream, OfAnEmptyTreeIsTheTagAlone) {
    TTreeVyn tree;
    EXPECT_EQ(Hex(Stored(tree)), kTag);
    TTreeVyn other;
    Load(other, Stored(tree));
    EXPECT_EQ(other.Count(), 0);
}

TEST(TreeStream, IsReadBackAsItWas) {
    TTreeVyn tree, other;
    FillSmall(tree);
    const std::string bytes = Stored(tree);
    Load(other, bytes);
    EXPECT_EQ(Stored(other), bytes);
    EXPECT_EQ(other.GetIDNode(1).IDParent, -1);
    EXPECT_EQ(other.GetIDNode(4).IDParent, 2);
    EXPECT_TRUE(other.Modified());
}

TEST(TreeStream, LargeNumbersAndLongNamesAreReadBack) {
    TTreeVyn tree, other;
    Fill(tree, {Node(1, -1, INT32_MIN, 200, INT32_MAX, AnsiString(300, '\xE7')), Node(100000, 1, 70000, 4, -5, "z")});
    Load(other, Stored(tree));
    EXPECT_EQ(other.GetIDNode(1).Child, INT32_MIN);
    EXPECT_EQ(other.GetIDNode(1).IDComponent, INT32_MAX);
    EXPECT_EQ(other.GetIDNode(1).Name, AnsiString(300, '\xE7'));
    EXPECT_EQ(other.GetIDNode(100000).Child, 70000);
}

TEST(TreeStream, TheTagIsReadInAnyCase) {
    TTreeVyn tree;
    TMemoryStream stream;
    { TWriter(stream).WriteString("ttreeVYN"); }
    stream.SetPosition(0);
    EXPECT_EQ(ErrorOf([&] { tree.LoadFromStream(&stream); }), "no error");
}

TEST(TreeStream, AnotherTagIsRefused) {
    TTreeVyn tree;
    TMemoryStream stream;
    { TWriter(stream).WriteString("TTreeVynn"); }
    stream.SetPosition(0);
    EXPECT_EQ(ErrorOf([&] { tree.LoadFromStream(&stream); }), "Stream is not a TTreeVyn");
}

TEST(TreeStream, NoStreamDoesNothing) {
    TTreeVyn tree;
    tree.SaveToStream(nullptr);
    tree.LoadFromStream(nullptr);
    EXPECT_EQ(tree.Count(), 0);
}

TEST(TreeStream, EntryNamesAreNotCompared) {
    TTreeVyn tree, other;
    FillSmall(tree);
    std::string bytes = Stored(tree);
    for (size_t at = bytes.find("IDNode"); at != std::string::npos; at = bytes.find("IDNode", at))
        bytes.replace(at, 6, "Number");
    Load(other, bytes);
    EXPECT_EQ(other.Count(), 4);
}

TEST(TreeStream, LoadingAddsToWhatIsThere) {
    TTreeVyn tree, other;
    FillSmall(tree);
    Fill(other, {Node(1, -1, 9, 0, 0, "old"), Node(50, 1, 3)});
    Load(other, Stored(tree));
    EXPECT_EQ(Numbers(other), (List{1, 2, 3, 4, 50}));
    EXPECT_EQ(other.GetIDNode(1).Name, "Sales");
}

TEST(TreeStream, LoadingStandsAfterTheTree) {
    TTreeVyn tree, other;
    FillSmall(tree);
    TMemoryStream stream;
    tree.SaveToStream(&stream);
    { TWriter(stream).WriteString("next"); }
    stream.SetPosition(0);
    other.LoadFromStream(&stream);
    EXPECT_EQ(TReader(stream).ReadString(), "next");
}

TEST(TreeStream, AnEmptyTreeBeforeOtherValuesTakesNothingOfThem) {
    TTreeVyn tree, other;
    TMemoryStream stream;
    tree.SaveToStream(&stream);
    { TWriter(stream).WriteString("next"); }
    stream.SetPosition(0);
    other.LoadFromStream(&stream);
    EXPECT_EQ(TReader(stream).ReadString(), "next");
}

TEST(TreeStream, VirtualNodesAreNotStoredAndTheModeStays) {
    TTreeVyn tree;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2)});
    const std::string real = Stored(tree);
    tree.SetRealTree(false);
    const int count = tree.Count();
    EXPECT_EQ(Stored(tree), real);
    EXPECT_FALSE(tree.RealTree());
    EXPECT_EQ(tree.Count(), count);
}

TEST(TreeStream, LoadingInVirtualModeExpandsWhatWasRead) {
    TTreeVyn tree, other;
    Fill(tree, {Node(1, -1, 1), Node(2, 1, 1), Shortcut(3, 1, 2, 2)});
    other.SetRealTree(false);
    Load(other, Stored(tree));
    EXPECT_FALSE(other.RealTree());
    EXPECT_EQ(Numbers(other), (List{1, 2, 3, 100001}));
}

TEST(TreeStream, BeginsBesideTheRoot) {
    TTreeVyn tree, other;
    FillSmall(tree);
    tree.SetFirstIdNode(4);  // its parent is 2
    EXPECT_EQ(Hex(Stored(tree)), std::string(kTag) + "01" + HexNode(4, 1, 7, 8, "x") + "00");
    tree.SetFirstIdNode(99);  // no root: the top level
    Load(other, Stored(tree));
    EXPECT_EQ(other.Count(), 4);
}

TEST(TreeStream, TheTopLevelIsReadBelowTheRootsParent) {
    TTreeVyn tree, other;
    tree.Add(Node(9, -1, 1));
    Fill(other, {Node(1, -1, 1), Node(2, 1, 1)});
    other.SetFirstIdNode(2);
    Load(other, Stored(tree));
    EXPECT_EQ(other.GetIDNode(9).IDParent, 1);
}

TEST(TreeStream, ReadingFromAReaderAlwaysMakesTopLevelNodes) {
    TTreeVyn tree, other;
    tree.Add(Node(9, -1, 1));
    Fill(other, {Node(1, -1, 1), Node(2, 1, 1)});
    other.SetFirstIdNode(2);
    TMemoryStream stream;
    {
        TWriter writer(stream);
        tree.SaveToWriter(writer);
    }
    stream.SetPosition(0);
    TReader reader(stream);
    other.LoadFromReader(reader);
    EXPECT_EQ(other.GetIDNode(9).IDParent, -1);
}

TEST(TreeStream, NodesOnACircleArePassedOver) {
    TOpenTree tree;
    tree.Checks = false;
    Fill(tree, {Node(2, 3, 1), Node(3, 2, 1), Node(4, 3, 2)});
    tree.SetFirstIdNode(2);  // beside the root: the children of 3, of which 2 is on the circle
    EXPECT_EQ(Hex(Stored(tree)), std::string(kTag) + "01" + HexNode(4, 2, 0, 4, "N4") + "00");
}

TEST(TreeStream, ListsNestAThousandDeepAndNoDeeper) {
    TTreeVyn tree, other;
    for (int i = 1; i <= 1000; ++i) tree.Add(Node(i, i - 1, 1));
    const std::string bytes = Stored(tree);
    Load(other, bytes);
    EXPECT_EQ(other.Count(), 1000);
    tree.Add(Node(1001, 1000, 1));
    EXPECT_EQ(ErrorOf([&] { Stored(tree); }), "The tree cannot be stored: more than 1000 levels of nodes");
}

TEST(TreeStream, ADeeperFileIsRefused) {
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.WriteString("TTreeVyn");
        for (int i = 1; i <= 1001; ++i) {
            writer.WriteListBegin();
            for (int value : {i, 1, 0, 4}) {
                writer.WriteIdent("x");
                writer.WriteInteger(value);
            }
            writer.WriteIdent("Name");
            writer.WriteString("");
        }
        for (int i = 0; i < 1001; ++i) writer.WriteListEnd();
    }
    stream.SetPosition(0);
    TTreeVyn tree;
    EXPECT_EQ(ErrorOf([&] { tree.LoadFromStream(&stream); }),
              "The tree cannot be read: more than 1000 levels of nodes");
}

TEST(TreeStream, TruncatedAnywhereItIsRefusedAndTheTreeStaysUsable) {
    TTreeVyn tree;
    FillSmall(tree);
    const std::string bytes = Stored(tree);
    for (size_t length = 0; length < bytes.size(); ++length) {
        TTreeVyn other;
        if (length == 10)  // the tag alone is an empty tree
            EXPECT_NO_THROW(Load(other, bytes.substr(0, length)));
        else
            EXPECT_THROW(Load(other, bytes.substr(0, length)), EReadError) << length;
        EXPECT_TRUE(other.RealTree());
        Stored(other);
    }
}

TEST(TreeStream, AnyBitMayBeWrong) {
    TTreeVyn tree;
    FillSmall(tree);
    tree.Add(Shortcut(5, 1, 3, 2));
    const std::string bytes = Stored(tree);
    int refused = 0;
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        TTreeVyn other;
        try {
            Load(other, damaged);
            other.SetRealTree(false);
            other.SetRealTree(true);
            Stored(other);
        } catch (const Exception&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 0);
}

TEST(TreeStream, TheHiddenPropertyIsWrittenWhenThereAreNodes) {
    TTreeHolder empty(nullptr), full(nullptr), read(nullptr);
    TMemoryStream stream;
    WriteComponentToStream(stream, empty);
    EXPECT_EQ(stream.Bytes().find("Tree\x01"), std::string_view::npos);
    stream.Clear();
    FillSmall(*full.Tree());
    WriteComponentToStream(stream, full);
    EXPECT_NE(stream.Bytes().find("Nodes.Tree\x01"), std::string_view::npos);
    stream.SetPosition(0);
    ReadComponentFromStream(stream, &read);
    EXPECT_EQ(Stored(*read.Tree()), Stored(*full.Tree()));
}

TEST(TreeStream, TheHiddenPropertyHasToBeAList) {
    TTreeHolder full(nullptr), read(nullptr);
    FillSmall(*full.Tree());
    TMemoryStream stream;
    WriteComponentToStream(stream, full);
    std::string bytes(stream.Bytes());
    bytes[bytes.find("Nodes.Tree") + 10] = static_cast<char>(vaTrue);
    TMemoryStream damaged(bytes);
    EXPECT_THROW(ReadComponentFromStream(damaged, &read), EReadError);
}
