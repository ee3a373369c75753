#include <gtest/gtest.h>

#include "fixtures.h"
#include "foundation/Ufuncionscomponentsvyn.h"

using namespace vyn;
using foundation_fixtures::MessageOf;

namespace {

// The parts of an argument list, each in brackets of its own, or the message.
AnsiString Parts(const AnsiString& text) {
    AnsiString result;
    const AnsiString message = MessageOf([&] {
        const auto parts = DecodificaStringComa(text);
        for (int i = 0; i < parts->Count(); ++i) result += "{" + parts->At(i) + "}";
    });
    return message == "no error" ? result : message;
}
AnsiString Unquoted(AnsiString text) {
    const bool quoted = EliminaCometesDeString(text);
    return (quoted ? "quoted " : "plain ") + text;
}

}  // namespace

TEST(ComponentsByName, AreLookedForUpTheOwners) {
    TComponent form(nullptr), other(nullptr);
    auto* panel = new TComponent(&form);
    auto* inner = new TComponent(panel);
    auto* query = new TComponent(&form);
    query->SetName("Query");
    inner->SetName("Inner");
    EXPECT_EQ(RetornaComponentOwnerPerNom("QUERY", panel), query);
    EXPECT_EQ(RetornaComponentOwnerPerNom("inner", panel), inner);
    EXPECT_EQ(RetornaComponentOwnerPerNom("Inner", &form), nullptr);
    EXPECT_EQ(RetornaComponentOwnerPerNom("Query", nullptr), nullptr);
    // The nearest wins.
    auto* nearer = new TComponent(panel);
    nearer->SetName("Query");
    EXPECT_EQ(RetornaComponentOwnerPerNom("Query", panel), nearer);
}

TEST(TextUpToACharacter, LeavesThePositionOnIt) {
    int position = 1;
    EXPECT_EQ(RetornaStringEntreChar("abc=def", '=', position), "abc");
    EXPECT_EQ(position, 4);
    position = 5;
    EXPECT_EQ(RetornaStringEntreChar("abc=def", '=', position), "def");
    EXPECT_EQ(position, 8);
    EXPECT_EQ(RetornaStringEntreChar("abc=def", '=', position), "");
    EXPECT_EQ(position, 8);
    position = 100;
    EXPECT_EQ(RetornaStringEntreChar("abc", '=', position), "");
    EXPECT_EQ(position, 4);
    position = -5;
    EXPECT_EQ(RetornaStringEntreChar("a=", '=', position), "a");
}

TEST(CommaLists, HoldItemsWithoutRegardToCase) {
    EXPECT_TRUE(ExisteixValor("A,B,C", "b"));
    EXPECT_TRUE(ExisteixValor("A,\"B, C\"", "b, c"));
    EXPECT_FALSE(ExisteixValor("A,B,C", "D"));
    EXPECT_FALSE(ExisteixValor("", "D"));
}

TEST(CommaLists, GiveTheValueOfAKey) {
    EXPECT_EQ(RetornaValor("A,B", "B", "1,2"), "2");
    EXPECT_EQ(RetornaValor("A,B", "b", "1,2"), "2");
    EXPECT_EQ(RetornaValor("A,B", "X", "1,2"), "");
}

TEST(CommaLists, AKeyBeyondTheValuesIsTheListsError) {
    EXPECT_EQ(MessageOf([] { RetornaValor("A,B", "B", "1"); }), "EStringListError: List index out of bounds (1)");
}

TEST(CommaLists, LoseTheirEmptyItems) {
    EXPECT_EQ(TreuCampsNuls("A,,B,"), "A,B");
    EXPECT_EQ(TreuCampsNuls(""), "");
    EXPECT_EQ(TreuCampsNuls(",,"), "");
    EXPECT_EQ(TreuCampsNuls("\"A B\",\"\",C"), "A B,C");
}

TEST(ArgumentLists, AreSplitAtTheirOuterCommas) {
    EXPECT_EQ(Parts("a,b"), "{a}{b}");
    EXPECT_EQ(Parts("F(a,b),'it''s'"), "{F(a,b)}{'it''s'}");
    EXPECT_EQ(Parts("F(a[1,2],b), c "), "{F(a[1,2],b)}{ c }");
    EXPECT_EQ(Parts("'a,b',c"), "{'a,b'}{c}");
    EXPECT_EQ(Parts("[a,b"), "Exception: Error al analizar la frase : \n[a,b\nFalta/en: 1 Corchtetes de cierre");
}

TEST(ArgumentLists, AnEmptyTextIsOneEmptyPart) {
    EXPECT_EQ(Parts(""), "{}");
    EXPECT_EQ(Parts(","), "{}{}");
    EXPECT_EQ(Parts("a,"), "{a}{}");
}

TEST(ArgumentLists, ABlankStandsForTheClosingQuoteBeforeIt) {
    EXPECT_EQ(Parts("'a'  ,b"), "{'a }{b}");
    EXPECT_EQ(Parts("'a'  "), "{'a }");
    EXPECT_EQ(Parts("'a',b"), "{'a'}{b}");
}

TEST(ArgumentLists, AClosingBracketWantsAnOpenParenthesis) {
    EXPECT_EQ(Parts("F(a,b), 'x,y', [1]"),
              "Exception: Error al analizar la frase : \nF(a,b), 'x,y', [1]\nSobra un corchete de cierre en la posici"
              "\xF3n 18");
    EXPECT_EQ(Parts("(])"), "{(])}");
}

TEST(ArgumentLists, ErrorsSayWhatIsWrongAndWhere) {
    const AnsiString start = "Exception: Error al analizar la frase : \n";
    EXPECT_EQ(Parts("a)"), start + "a)\nSobra un parentesis de cierre en la posici\xF3n 2");
    EXPECT_EQ(Parts("'a'b"), start + "'a'b\ncoma no encontrada en la posici\xF3n 4, encontrado: b");
    EXPECT_EQ(Parts("'a'  b"), start + "'a'  b\ncoma no encontrada en la posici\xF3n 6, encontrado: b");
    EXPECT_EQ(Parts("'a"), start + "'a\nString no terminado.");
    EXPECT_EQ(Parts("((a)"), start + "((a)\nFalta/an: 1 Parent\xE9sis de cierre");
    EXPECT_EQ(Parts("([a"), start + "([a\nFalta/an: 1 Parent\xE9sis de cierre");
}

TEST(QuotedLiterals, GiveTheirContent) {
    EXPECT_EQ(Unquoted("'it''s'"), "quoted it's");
    EXPECT_EQ(Unquoted("  'a b' "), "quoted a b");
    EXPECT_EQ(Unquoted("''"), "quoted ");
    EXPECT_EQ(Unquoted("abc"), "plain abc");
    EXPECT_EQ(Unquoted("'abc"), "plain 'abc");
    EXPECT_EQ(Unquoted("'"), "plain '");
    EXPECT_EQ(Unquoted("   "), "plain    ");
    EXPECT_EQ(Unquoted(""), "plain ");
}

TEST(QuotedLiterals, ALoneQuoteAmongBlanksIsAnEmptyOne) { EXPECT_EQ(Unquoted(" '"), "quoted "); }

TEST(QuotedLiterals, AQuoteThatIsNotDoubledIsAnError) {
    AnsiString text = " 'a'b'";
    EXPECT_EQ(MessageOf([&] { EliminaCometesDeString(text); }),
              "Exception: Error al eliminar comillas:\nComilla no doblada en posici\xF3n: 3\n\n'a'b'");
    EXPECT_EQ(text, " 'a'b'");
}

TEST(Equalities, HaveTwoTrimmedSides) {
    AnsiString left = "x", right = "y";
    EXPECT_TRUE(PartsIgualtat(" A = B = C ", left, right));
    EXPECT_EQ(left, "A");
    EXPECT_EQ(right, "B = C");
    EXPECT_FALSE(PartsIgualtat("A", left, right));
    EXPECT_EQ(left + right, "");
    EXPECT_TRUE(PartsIgualtat("=", left, right));
    EXPECT_EQ(left + right, "");
}
