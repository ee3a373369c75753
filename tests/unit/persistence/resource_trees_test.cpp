#include <gtest/gtest.h>

#include <functional>

#include "persistence/Uvynfmr.h"
#include "platform/objects/class_table.h"
#include "platform/streams/writer.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "support/errors.h"

using namespace vyn;

namespace resource_tree_tests {

TPropietatObjecte Prop(AnsiString name, TValueType type, AnsiString value, TllistaPropietatsObjecte items = {}) {
    return {std::move(name), static_cast<uint8_t>(type), std::move(value), std::move(items)};
}
TRecursosObjecte Object(AnsiString name, AnsiString className, TllistaPropietatsObjecte properties = {},
                        TLlistaRecursosObjecte children = {}) {
    TRecursosObjecte object;
    object.Name = std::move(name);
    object.Classe = std::move(className);
    object.Propietats = std::move(properties);
    object.Fills = std::move(children);
    return object;
}
std::string Bytes(const TRecursosObjecte& tree) {
    TMemoryStream stream;
    RECURSOSObjecteAStreamBinary(tree, stream);
    return std::string(stream.Bytes());
}
PRecursosObjecte Read(std::string_view bytes) {
    TMemoryStream stream(bytes);
    return StreamObjecteBinaryARECURSOS(stream);
}

// A form with a value of every type, header flags, nested lists and collections, and children.
std::string EveryValue() {
    TMemoryStream stream;
    TWriter w(stream);
    w.WriteSignature();
    w.WriteName("TForm1");
    w.WriteName("Form1");
    const auto name = [&](const char* text) { w.WriteName(text); };
    name("Int8"), w.WriteInteger(-5);
    name("Int16"), w.WriteInteger(300);
    name("Int32"), w.WriteInteger(70000);
    name("Int64"), w.WriteInteger(int64_t{1} << 40);
    name("WideInt8"), w.WriteRaw(std::string_view("\x04\x01\x00\x00\x00", 5));  // one, in the longest code
    name("Float"), w.WriteFloat(0.1L);
    name("Third"), w.WriteFloat(1.0L / 3);
    name("Single"), w.WriteSingle(0.1f);
    name("Money"), w.WriteCurrency(Currency(12.3456));
    name("Date"), w.WriteDate(TDateTime{36526.123456789});
    name("Infinite"), w.WriteRaw(std::string_view("\x05\0\0\0\0\0\0\0\x80\xFF\x7F", 11));
    name("NotANumber"), w.WriteRaw(std::string_view("\x0F\x01\0\xC0\x7F", 5));
    name("Text"), w.WriteString(
                      "a\xE7"
                      "b\r\n");
    name("Long"), w.WriteString(AnsiString(300, 'l'));
    name("ShortAsLong"), w.WriteRaw(std::string_view("\x0C\x01\x00\x00\x00x", 6));
    name("Wide"), w.WriteWideString(u"w\x20AC");
    name("Ident"), w.WriteIdent("alClient");
    name("False"), w.WriteBoolean(false);
    name("True"), w.WriteBoolean(true);
    name("Nil"), w.WriteNil();
    name("Null"), w.WriteNull();
    name("Bytes"), w.WriteBinary(std::string_view("\0\xFF\x01", 3));
    name("Set"), w.WriteRaw(std::string_view("\x0B\x02"
                                             "ab\x01"
                                             "c\0",
                                             7));
    name("EmptySet"), w.WriteRaw(std::string_view("\x0B\0", 2));
    name("List"), w.WriteListBegin(), w.WriteInteger(1), w.WriteString("x"), w.WriteListBegin(), w.WriteInteger(2),
        w.WriteListEnd(), w.WriteListEnd();
    name("Items"), w.WriteValue(vaCollection);
    w.WriteInteger(3), w.WriteListBegin(), name("Title"), w.WriteString("t"), w.WriteListEnd();
    w.WriteListBegin(), w.WriteListEnd();
    w.WriteListEnd();
    w.WriteName("");
    w.WritePrefix(ffInherited | ffChildPos, 2, "TEdit");
    w.WriteName("TEdit");
    w.WriteName("Edit1");
    w.WriteName("");
    w.WriteListEnd();
    w.WriteListEnd();
    w.Flush();
    return std::string(stream.Bytes());
}

class TTreeThing : public TComponent {
    VYN_OBJECT
  public:
    explicit TTreeThing(TComponent* owner) : TComponent(owner) {}
    int Count = 0;
    TNotifyEvent OnClick;
};
const ClassInfo& TTreeThing::StaticClass() {
    static const ClassInfo info = DefineClass<TTreeThing, TComponent>("TTreeThing")
                                      .Published("Count", &TTreeThing::Count, &TTreeThing::Count)
                                      .Event("OnClick", &TTreeThing::OnClick);
    return info;
}

}  // namespace resource_tree_tests

using namespace resource_tree_tests;

TEST(ResourceTree, ThereAndBackGivesEqualBytesForEveryValue) {
    const std::string bytes = EveryValue();
    EXPECT_EQ(Bytes(*Read(bytes)), bytes);
}

TEST(ResourceTree, ValuesHaveTheirTexts) {
    const PRecursosObjecte tree = Read(EveryValue());
    const auto value = [&](const AnsiString& name) {
        for (const TPropietatObjecte& property : tree->Propietats)
            if (property.Name == name) return property.Valor;
        return AnsiString("missing");
    };
    EXPECT_EQ(value("Int8"), "-5");
    EXPECT_EQ(value("Int64"), "1099511627776");
    EXPECT_EQ(value("Float"), "0.1");
    EXPECT_EQ(value("Money"), "123456");
    EXPECT_EQ(value("Ident"), "alClient");
    EXPECT_EQ(value("True"), "True");
    EXPECT_EQ(value("Nil"), "nil");
    EXPECT_EQ(value("Set"), "ab,c");
    EXPECT_EQ(value("EmptySet"), "");
    EXPECT_EQ(tree->Classe, "TForm1");
    EXPECT_EQ(tree->Fills[0].Flags, ffInherited | ffChildPos);
    EXPECT_EQ(tree->Fills[0].Posicio, 2);
}

TEST(ResourceTree, TruncatedOrDamagedAnywhereItRaisesOrReadsAndNeverCrashes) {
    const std::string bytes = EveryValue();
    for (size_t length = 0; length < bytes.size(); ++length)
        EXPECT_THROW(Read(std::string_view(bytes).substr(0, length)), Exception) << length;
    int read = 0;
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        try {
            const PRecursosObjecte tree = Read(damaged);
            ++read;
            Bytes(*tree);
        } catch (const Exception&) {
        }
    }
    EXPECT_GT(read, 0);
}

TEST(ResourceTree, NestingIsBounded) {
    std::string lists = "TPF0\x01T\x01N\x01L" + std::string(100000, '\x01');
    EXPECT_THROW(Read(lists), EReadError);
    std::string objects = "TPF0";
    for (int i = 0; i < 100000; ++i) objects += std::string("\x01T\x01N\0", 5);
    EXPECT_THROW(Read(objects), EReadError);
}

TEST(ResourceTree, ADateIsNotRoundedTwice) {
    // Its shortest text, read with more digits and then rounded to a date, would be the number beside it.
    const std::string form("TPF0\x01T\x01N\x01P\x11\x11\xEB\xEE\xEE\xEE\x11\x11\x11\0\0", 21);
    EXPECT_EQ(Bytes(*Read(form)), form);
}

TEST(ResourceTree, AClassNameWhoseLengthLooksLikeAPrefixKeepsItsOwn) {
    const std::string className(0xF2, 'C');
    const std::string form =
        "TPF0\x01T\x01N" + std::string(1, '\0') + "\xF0\xF2" + className + "\x01M" + std::string(3, '\0');
    EXPECT_EQ(Bytes(*Read(form)), form);
}

TEST(ResourceTree, AnUnknownValueTypeIsRefused) {
    // A child that could not be told from the end of the list when it is stored again.
    EXPECT_EQ(MessageOf([] { Read(std::string("TPF0\x01T\x01N\0\xF0\0\0\0\0\0", 15)); }),
              "EReadError: Stream read error: an object inside N has no class (memory, position 14)");
    EXPECT_EQ(MessageOf([] { Read(std::string("TPF0\x01T\x01N\x01P\x14", 11)); }),
              "Exception: Error, llegida un tipus de propietat invalida!");
    TRecursosObjecte tree = Object("N", "T", {Prop("P", vaInt8, "1")});
    tree.Propietats[0].Tipus = 99;
    EXPECT_EQ(MessageOf([&] { Bytes(tree); }), "Exception: Error, llegida un tipus de propietat invalida!");
}

TEST(ResourceTree, AMalformedListIsRefused) {
    EXPECT_EQ(MessageOf([] { Read(std::string("TPF0\x01T\x01N\x01P\x0E\x02\x01\x09", 14)); }),
              "Exception: Error al llegir la llista");
}

TEST(ResourceTree, APropertyThatCannotBeRepresentedIsRefused) {
    EXPECT_EQ(MessageOf([] { Bytes(Object("N", "T", {Prop("P", vaInt8, "x")})); }),
              "Exception: Propietat invalida\nPropiedad actual:P\nTipo:vaInt8\nValor:x\nNumero de la propiedad:0");
    EXPECT_EQ(MessageOf([] {
                  Read(
                      std::string("TPF0\x01T\x01N\x01P\x0B\x03"
                                  "a,b\0",
                                  15));
              }),
              "Exception: Propietat invalida\nPropiedad actual:P\nTipo:vaSet\nValor:a,b\nNumero de la propiedad:0");
}

TEST(ResourceTree, TheDumpOfAPropertyShowsTheOneBefore) {
    const TPropietatObjecte first = Prop("A", vaInt8, "1"), second = Prop("B", vaString, "x");
    EXPECT_EQ(TextDePropietat(second, 1, &first),
              "Propiedad actual:B\nTipo:vaString\nValor:x\nNumero de la propiedad:1\n--------  Anterior : ---------\n"
              "-------- Nombre:A\n-------- Tipo:vaInt8\n-------- Valor:1");
}

TEST(ResourceTree, EveryTypeHasAName) {
    EXPECT_EQ(NomTipusPropietat(0), "vaNull");
    EXPECT_EQ(NomTipusPropietat(5), "vaExtended");
    EXPECT_EQ(NomTipusPropietat(19), "vaInt64");
    EXPECT_EQ(NomTipusPropietat(20), "Tipus 20");
}

TEST(ResourceTree, LookUpsByNameGoDepthLevelsDown) {
    TRecursosObjecte tree = Object("Root", "TForm", {}, {Object("A", "TPanel", {}, {Object("B", "TEdit")})});
    EXPECT_EQ(ExisteixObjecte(&tree, "ROOT", 0), &tree);
    EXPECT_EQ(ExisteixObjecte(&tree, "a", 0), nullptr);
    EXPECT_EQ(ExisteixObjecte(&tree, "a", 1), &tree.Fills[0]);
    EXPECT_EQ(ExisteixObjecte(&tree, "b", 1), nullptr);
    EXPECT_EQ(ExisteixObjecte(&tree, "b", 2), &tree.Fills[0].Fills[0]);
    EXPECT_EQ(ExisteixClasseObjecte(&tree, "tedit", 1), nullptr);
    EXPECT_EQ(ExisteixClasseObjecte(&tree, "tedit", 2), &tree.Fills[0].Fills[0]);
    EXPECT_EQ(ExisteixClasseObjecte(&tree, "TFORM", 0), &tree);
}

TEST(ResourceTree, AnObjectMarkedToBeSkippedIsPassedOverButNotItsChildren) {
    TRecursosObjecte tree = Object("Root", "TForm", {}, {Object("A", "TPanel", {}, {Object("B", "TEdit")})});
    tree.Fills[0].Flags = ffOcult;
    EXPECT_EQ(ExisteixObjecte(&tree, "A", 5), nullptr);
    EXPECT_EQ(ExisteixObjecte(&tree, "B", 5), &tree.Fills[0].Fills[0]);
    EXPECT_EQ(ExisteixClasseObjecte(&tree, "TPanel", 5), &tree.Fills[0]);
    tree.Flags = ffOcult;
    EXPECT_EQ(ExisteixObjecte(&tree, "Root", 0), nullptr);
}

TEST(ResourceTree, NothingIsRefusedByEachOperation) {
    TRecursosObjecte tree = Object("N", "T");
    TPropietatObjecte property = Prop("P", vaInt8, "1"), result;
    EXPECT_EQ(MessageOf([] { ExisteixObjecte(nullptr, "x", 0); }), "Exception: Existeix Objecte : PObjecte = NIL");
    EXPECT_EQ(MessageOf([] { ExisteixClasseObjecte(nullptr, "x", 0); }),
              "Exception: ExisteixClasseObjecte : PObjecte = NIL");
    EXPECT_EQ(MessageOf([&] { PropietatsIguals(nullptr, &property); }),
              "Exception: PropietatsIguals : Propietat1 = NIL");
    EXPECT_EQ(MessageOf([&] { PropietatsIguals(&property, nullptr); }),
              "Exception: PropietatsIguals : Propietat2 = NIL");
    EXPECT_EQ(MessageOf([&] { AfegeixPropietats(nullptr, &property); }),
              "Exception: AfegeixPropietats : Propietat base = NIL");
    EXPECT_EQ(MessageOf([&] { AfegeixPropietats(&property, nullptr); }),
              "Exception: AfegeixPropietats : Propietat nova = NIL");
    EXPECT_EQ(MessageOf([&] { AfegeixObjectes(nullptr, &tree, false); }),
              "Exception: AfegeixObjectes : Objeto base = NIL");
    EXPECT_EQ(MessageOf([&] { AfegeixObjectes(&tree, nullptr, false); }),
              "Exception: AfegeixObjectes : Objeto nou = NIL");
    EXPECT_EQ(MessageOf([&] { ExtreuObjectes(nullptr, &tree, false); }),
              "Exception: ExtreuObjectes : PObjecteBase = NIL");
    EXPECT_EQ(MessageOf([&] { ExtreuObjectes(&tree, nullptr, false); }),
              "Exception: ExtreuObjectes : PObjecteNou = NIL");
    EXPECT_EQ(MessageOf([&] { ExtreuPropietats(nullptr, &property, result); }),
              "Exception: ExtreuPropietats : PPropBase = NIL");
    EXPECT_EQ(MessageOf([&] { ExtreuPropietats(&property, nullptr, result); }),
              "Exception: ExtreuPropietats : PPropNova = NIL");
}

TEST(ResourceTree, PropertiesAreEqualInTextTypeNameAndItems) {
    const TPropietatObjecte base = Prop("List", vaList, "", {Prop("", vaInt8, "1"), Prop("", vaInt8, "2")});
    TPropietatObjecte other = base;
    other.Name = "LIST";
    EXPECT_TRUE(PropietatsIguals(&base, &other));
    std::swap(other.Fills[0], other.Fills[1]);
    EXPECT_FALSE(PropietatsIguals(&base, &other));
    const TPropietatObjecte text = Prop("P", vaString, "a"), upper = Prop("P", vaString, "A");
    EXPECT_FALSE(PropietatsIguals(&text, &upper));
    const TPropietatObjecte longer = Prop("P", vaLString, "a");
    EXPECT_FALSE(PropietatsIguals(&text, &longer));
}

TEST(ResourceTree, AListWhoseOrderDiffersIsReplacedAsAWhole) {
    TRecursosObjecte base = Object("N", "T", {Prop("L", vaList, "", {Prop("", vaInt8, "1"), Prop("", vaInt8, "2")})});
    const TRecursosObjecte nou =
        Object("N", "T", {Prop("L", vaList, "", {Prop("", vaInt8, "2"), Prop("", vaInt8, "1")})});
    EXPECT_TRUE(AfegeixObjectes(&base, &nou, true));
    EXPECT_EQ(base.Propietats[0].Fills[0].Valor, "2");
}

TEST(ResourceTree, MergingATreeIntoItselfChangesNothing) {
    const PRecursosObjecte tree = Read(EveryValue());
    const PRecursosObjecte same = DuplicaObjectes(tree.get());
    EXPECT_FALSE(AfegeixObjectes(tree.get(), same.get(), true));
    EXPECT_EQ(Bytes(*tree), EveryValue());
}

TEST(ResourceTree, MergingAddsReplacesAndDescends) {
    TRecursosObjecte base = Object("Form", "TForm", {Prop("Left", vaInt8, "1"), Prop("Top", vaInt8, "2")},
                                   {Object("A", "TEdit", {Prop("Text", vaString, "old")})});
    const TRecursosObjecte nou = Object("FORM", "tform", {Prop("TOP", vaInt8, "3"), Prop("Width", vaInt8, "9")},
                                        {Object("a", "TEdit", {Prop("Text", vaString, "new")}), Object("B", "TEdit")});
    EXPECT_TRUE(AfegeixObjectes(&base, &nou, true));
    ASSERT_EQ(base.Propietats.size(), 3u);
    EXPECT_EQ(base.Propietats[1].Valor, "3");
    EXPECT_EQ(base.Propietats[2].Name, "Width");
    ASSERT_EQ(base.Fills.size(), 2u);
    EXPECT_EQ(base.Fills[0].Propietats[0].Valor, "new");
    EXPECT_EQ(base.Fills[1].Name, "B");
    EXPECT_FALSE(AfegeixObjectes(&base, &nou, true));
}

TEST(ResourceTree, MergingPropertiesOfOtherNamesOrTypesIsRefused) {
    TPropietatObjecte base = Prop("P", vaInt8, "1");
    const TPropietatObjecte text = Prop("P", vaString, "x"), other = Prop("Q", vaInt8, "1");
    EXPECT_EQ(
        MessageOf([&] { AfegeixPropietats(&base, &text); }),
        "Exception: Error a AfegeixPropietats(P1,P2). Las propiedades no son iguales (distinto nombre o tipo)\n\rBase: "
        "P vaInt8 Valor: 1\n\rNueva: P vaString Valor: x");
    EXPECT_NE(MessageOf([&] { AfegeixPropietats(&base, &other); }), "no error");
}

TEST(ResourceTree, MergingObjectsOfOtherNamesOrClassesIsRefusedWhenChecked) {
    TRecursosObjecte base = Object("A", "TEdit");
    const TRecursosObjecte nou = Object("B", "TEdit"), other = Object("A", "TMemo");
    EXPECT_EQ(
        MessageOf([&] { AfegeixObjectes(&base, &nou, true); }),
        "Exception: Error a AfegeixObjectes(P1,P2). Los objetos no son iguales (distinto nombre o clase)\n\rBase: A "
        "Clase: TEdit\n\rNuevo: B Clase: TEdit");
    EXPECT_NE(MessageOf([&] { AfegeixObjectes(&base, &other, true); }), "no error");
    EXPECT_EQ(MessageOf([&] { AfegeixObjectes(&base, &nou, false); }), "no error");
}

TEST(ResourceTree, ExtractingKeepsWhatIsNewOrDiffers) {
    const TRecursosObjecte base = Object(
        "Form", "TForm",
        {Prop("Left", vaInt8, "1"), Prop("Top", vaInt8, "2"),
         Prop("Lines", vaList, "", {Prop("", vaString, "a"), Prop("", vaString, "b")})},
        {Object("A", "TEdit", {Prop("Text", vaString, "t")}), Object("B", "TEdit", {Prop("Text", vaString, "t")})});
    const TRecursosObjecte nou =
        Object("Form", "TForm",
               {Prop("Left", vaInt8, "1"), Prop("Top", vaInt8, "5"), Prop("Width", vaInt8, "9"),
                Prop("Lines", vaList, "", {Prop("", vaString, "a"), Prop("", vaString, "c"), Prop("", vaString, "d")})},
               {Object("A", "TEdit", {Prop("Text", vaString, "t")}),
                Object("B", "TEdit", {Prop("Text", vaString, "u")}), Object("C", "TEdit")});
    const PRecursosObjecte result = ExtreuObjectes(&base, &nou, true);
    ASSERT_EQ(result->Propietats.size(), 3u);
    EXPECT_EQ(result->Propietats[0].Valor, "5");
    EXPECT_EQ(result->Propietats[1].Name, "Width");
    ASSERT_EQ(result->Propietats[2].Fills.size(), 2u);
    EXPECT_EQ(result->Propietats[2].Fills[0].Valor, "c");
    EXPECT_EQ(result->Propietats[2].Fills[1].Valor, "d");
    ASSERT_EQ(result->Fills.size(), 2u);
    EXPECT_EQ(result->Fills[0].Name, "B");
    EXPECT_EQ(result->Fills[1].Name, "C");
}

TEST(ResourceTree, ExtractingATreeFromItselfGivesNothing) {
    const PRecursosObjecte tree = Read(EveryValue());
    const PRecursosObjecte result = ExtreuObjectes(tree.get(), tree.get(), true);
    EXPECT_TRUE(result->Propietats.empty());
    EXPECT_TRUE(result->Fills.empty());
    EXPECT_EQ(result->Classe, "TForm1");
}

TEST(ResourceTree, MergingWhatWasExtractedGivesTheNewTree) {
    TRecursosObjecte base = Object("Form", "TForm", {Prop("Top", vaInt8, "2")}, {Object("A", "TEdit")});
    const TRecursosObjecte nou = Object("Form", "TForm", {Prop("Top", vaInt8, "7"), Prop("Left", vaInt16, "300")},
                                        {Object("A", "TEdit", {Prop("Text", vaString, "x")})});
    const PRecursosObjecte difference = ExtreuObjectes(&base, &nou, true);
    AfegeixObjectes(&base, difference.get(), true);
    EXPECT_EQ(Bytes(base), Bytes(nou));
}

TEST(ResourceTree, ExtractingFromOtherNamesOrTypesIsRefused) {
    const TRecursosObjecte base = Object("A", "TEdit", {Prop("P", vaInt8, "1")});
    const TRecursosObjecte named = Object("B", "TEdit"), typed = Object("A", "TEdit", {Prop("P", vaString, "x")});
    EXPECT_EQ(MessageOf([&] { ExtreuObjectes(&base, &named, true); }),
              "Exception: Error a ExtreuObjectes(P1,P2). Los objetos no son iguales\n\rPObjecteBase: A Clase: "
              "TEdit\n\rPObjecteNou: B Clase: TEdit");
    EXPECT_EQ(
        MessageOf([&] { ExtreuObjectes(&base, &typed, true); }),
        "Exception: Error a ExtreuPropietats(P1,P2). Las propiedades no son iguales\n\rPPropBase: P vaInt8 Valor: "
        "1\n\rPPropNova: P vaString Valor: x");
}

TEST(ResourceTree, CopiesAreDeepAndDisposalClears) {
    PRecursosObjecte tree = Read(EveryValue());
    PRecursosObjecte copy = DuplicaObjectes(tree.get());
    copy->Fills[0].Name = "Changed";
    EXPECT_EQ(tree->Fills[0].Name, "Edit1");
    EXPECT_EQ(DuplicaPropietats(&tree->Propietats[0]).Valor, "-5");
    EliminaPRecursosObjecte(copy);
    EXPECT_EQ(copy, nullptr);
    auto property = std::make_unique<TPropietatObjecte>();
    EliminaPPropietatObjecte(property);
    EXPECT_EQ(property, nullptr);
}

TEST(ResourceTree, TheClassIsReadWithoutMovingTheStream) {
    TMemoryStream stream("xx" + EveryValue());
    stream.SetPosition(2);
    AnsiString className;
    EXPECT_TRUE(EsUnObjecte(stream));
    EXPECT_TRUE(ClasseDelObjecte(stream, className));
    EXPECT_EQ(className, "TForm1");
    EXPECT_EQ(stream.Position(), 2);
    for (const char* bytes : {"", "TPF", "TPF1abcd", "object"}) {
        TMemoryStream other{std::string_view(bytes)};
        EXPECT_FALSE(EsUnObjecte(other));
        EXPECT_FALSE(ClasseDelObjecte(other, className));
        EXPECT_EQ(className, "");
    }
}

TEST(ResourceTree, ChangingAValueKeepsItsTypeWhileItFits) {
    TMemoryStream stream(EveryValue());
    EXPECT_TRUE(ChangeStreamPropertyValue(stream, "form1", "int8", "7"));
    EXPECT_TRUE(ChangeStreamPropertyValue(stream, "Edit1", "Text", "hello"));
    const PRecursosObjecte tree = Read(stream.Bytes());
    EXPECT_EQ(tree->Propietats[0].Tipus, static_cast<uint8_t>(vaInt8));
    EXPECT_EQ(tree->Propietats[0].Valor, "7");
    ASSERT_EQ(tree->Fills[0].Propietats.size(), 1u);
    EXPECT_EQ(tree->Fills[0].Propietats[0].Tipus, static_cast<uint8_t>(vaString));
    EXPECT_EQ(tree->Fills[0].Propietats[0].Valor, "hello");
    EXPECT_TRUE(ChangeStreamPropertyValue(stream, "Form1", "Int8", "70000"));
    EXPECT_EQ(Read(stream.Bytes())->Propietats[0].Valor, "70000");
}

TEST(ResourceTree, ChangingAnUnknownObjectOrAnImpossibleValueChangesNothing) {
    TMemoryStream stream(EveryValue());
    EXPECT_FALSE(ChangeStreamPropertyValue(stream, "Nobody", "Int8", "7"));
    EXPECT_THROW(ChangeStreamPropertyValue(stream, "Form1", "Int8", "seven"), EConvertError);
    EXPECT_EQ(std::string(stream.Bytes()), EveryValue());
}

TEST(ResourceTree, AComponentIsMadeFromItsStream) {
    RegisterClass(&TTreeThing::StaticClass());
    TRecursosObjecte tree =
        Object("Thing1", "TTreeThing", {Prop("Count", vaInt8, "5"), Prop("OnClick", vaIdent, "Save")});
    TMemoryStream stream(Bytes(tree));
    TComponent owner(nullptr);
    AnsiString asked;
    decltype(TReader::OnFindMethod) findMethod = [&](TReader&, const AnsiString& name, TPersistent*,
                                                     const PropertyInfo&, const MethodInfo*&, bool& error) {
        asked = name;
        error = false;
    };
    decltype(TReader::OnSetName) setName = [](TReader&, TComponent*, AnsiString& name) { name += "_1"; };
    TComponent* made = StreamCreaComponent(stream, &owner, nullptr, findMethod, setName);
    ASSERT_NE(ObjectCast<TTreeThing>(made), nullptr);
    EXPECT_EQ(static_cast<TTreeThing*>(made)->Count, 5);
    EXPECT_EQ(made->Owner(), &owner);
    EXPECT_EQ(made->Name(), "Thing1_1");
    EXPECT_EQ(asked, "Save");
    UnRegisterClass(&TTreeThing::StaticClass());
}

TEST(ResourceTree, AFailingStreamLeavesNoComponent) {
    RegisterClass(&TTreeThing::StaticClass());
    TMemoryStream stream(Bytes(Object("Thing1", "TTreeThing", {Prop("NoSuch", vaInt8, "5")})));
    TComponent owner(nullptr);
    EXPECT_THROW(StreamCreaComponent(stream, &owner, nullptr, {}, {}), EReadError);
    EXPECT_EQ(owner.ComponentCount(), 0);
    TMemoryStream nothing("abc");
    EXPECT_THROW(StreamCreaComponent(nothing, &owner, nullptr, {}, {}), EReadError);
    UnRegisterClass(&TTreeThing::StaticClass());
    TMemoryStream unknown(Bytes(Object("X", "TTreeThing")));
    EXPECT_THROW(StreamCreaComponent(unknown, &owner, nullptr, {}, {}), EClassNotFound);
}

TEST(ResourceTree, CompletedDifferencesOpenToWhatWasWanted) {
    const auto lines = [](std::initializer_list<const char*> texts) {
        TPropietatObjecte list = Prop("Lines", vaList, "");
        for (const char* text : texts) list.Fills.push_back(Prop("", vaString, text));
        return list;
    };
    const TRecursosObjecte below =
        Object("F", "TForm", {Prop("Caption", vaString, "below"), lines({"a", "b", "c"})},
               {Object("E", "TEdit", {Prop("Text", vaString, "t"), Prop("Width", vaInt8, "9")})});
    // The caption and the edit's text are back at their defaults; one line of three changed.
    const TRecursosObjecte wanted =
        Object("F", "TForm", {lines({"a", "X", "c"})}, {Object("E", "TEdit", {Prop("Width", vaInt8, "9")})});
    const TRecursosObjecte full =
        Object("F", "TForm", {Prop("Caption", vaString, ""), lines({"a", "X", "c"})},
               {Object("E", "TEdit", {Prop("Text", vaString, ""), Prop("Width", vaInt8, "9")})});
    const PRecursosObjecte differences = ExtreuObjectes(&below, &wanted, true);
    PRecursosObjecte opened = DuplicaObjectes(&below);
    AfegeixObjectes(opened.get(), differences.get(), false);
    CompletaDiferencies(*differences, *opened, wanted, full);
    PRecursosObjecte again = DuplicaObjectes(&below);
    AfegeixObjectes(again.get(), differences.get(), false);
    EXPECT_EQ(again->Propietats[0].Valor, "");
    ASSERT_EQ(again->Propietats[1].Fills.size(), 3u);
    EXPECT_EQ(again->Propietats[1].Fills[1].Valor, "X");
    EXPECT_EQ(again->Fills[0].Propietats[0].Valor, "");
    EXPECT_EQ(again->Fills[0].Propietats[1].Valor, "9");
}
