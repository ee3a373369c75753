// Parameter functions in SQL text, parameter names in formats.

#include "query_fixtures.h"

using namespace vyn;
using namespace query_fixtures;

namespace {

const AnsiString kError = "EQuerySQL: TQuerySQL ERROR - Q\n";

}  // namespace

class Functions : public QueryTest {
  protected:
    AnsiString Of(const AnsiString& function) { return query->ExecutaFuncio(function); }
    AnsiString ErrorOf(const AnsiString& function) {
        return MessageOf([&] { Of(function); });
    }
    AnsiString Dependencies() { return query->SQLPRM().CommaText(); }
};

TEST_F(Functions, AreReplacedBetweenTheirMarks) {
    Parametres()->AddParam("CLIENT", "O'Brien");
    EXPECT_EQ(Applied({"WHERE A = " + M + "PRM$(CLIENT,'')" + M}), "WHERE A = 'O''Brien'");
    Parametres()->AddParam("N", 7);
    EXPECT_EQ(Applied({M + "N" + M + M + "N" + M + " x " + M + "N" + M}), "77 x 7");
}

TEST_F(Functions, WithoutTheParameterTheDefaultStandsWithoutItsQuotes) {
    EXPECT_EQ(Applied({"WHERE A = " + M + "PRM$(CLIENT,'')" + M}), "WHERE A = ");
    EXPECT_EQ(Of("PRM$(CLIENT,'abc')"), "abc");
    EXPECT_EQ(Of("PRM(CLIENT,'''it''''s''')"), "'it''s'");
    EXPECT_EQ(Of("PRM!(X, 1.5 )"), " 1.5 ");
    EXPECT_EQ(Of("PRM(X,)"), "");
    EXPECT_EQ(Of("PRM(X,f(1,2))"), "f(1,2)");
    EXPECT_EQ(Of("PRM(X,'a)b')"), "a)b");
    EXPECT_EQ(Of("PRM(X,1) rest"), "1");
    EXPECT_EQ(Of("PRM(X,1"), "1");
    EXPECT_EQ(Dependencies(), "");
}

TEST_F(Functions, ADefaultIsOneValue) {
    EXPECT_EQ(ErrorOf("PRM(X,1,2,3)"), kError + "Hay m\xE1s de un valor por defecto: 3");
    EXPECT_EQ(ErrorOf("PRM(X)"), kError + "El valor por defecto no existe!");
    EXPECT_EQ(ErrorOf("PRM(X,f(1)"),
              "Exception: Error al analizar la frase : \nf(1\nFalta/an: 1 Parent\xE9sis de cierre");
    EXPECT_EQ(ErrorOf("PRM(X,'a)"), "Exception: Error al analizar la frase : \n'a\nString no terminado.");
}

TEST_F(Functions, AParametersNameAloneIsItsLiteral) {
    EXPECT_EQ(Applied({M + "CODE" + M}), "CODE");
    EXPECT_EQ(Dependencies(), "");
    Parametres()->AddParam("CODE", 7);
    EXPECT_EQ(Applied({M + "CODE" + M}), "7");
    EXPECT_EQ(Dependencies(), "CODE");
    query->Disable();
    Parametres()->SetParametreValue("CODE", Variant::Null());
    EXPECT_EQ(Of("code"), "NULL");
    EXPECT_EQ(Of(" CODE"), " CODE");
}

TEST_F(Functions, EachLetterHasItsLiteral) {
    Parametres()->AddParam("S", "it's");
    Parametres()->AddParam("D", 2.5);
    EXPECT_EQ(Of("PRM(S,)"), "it's");
    EXPECT_EQ(Of("PRM#(S,)"), "it's");
    EXPECT_EQ(Of("PRM$(S,)"), "'it''s'");
    EXPECT_EQ(Of("prm$(s,)"), "'it''s'");
    EXPECT_EQ(Of("PRM!(D,)"), "2.5");
    EXPECT_EQ(Of("PRM$(D,)"), "'2.5'");
    EXPECT_EQ(Of("PRM%(D,)"), "2");
    EXPECT_EQ(Dependencies(), "S,D");
}

TEST_F(Functions, AConversionThatFailsPassesUnchanged) {
    Parametres()->AddParam("S", "abc");
    EXPECT_EQ(ErrorOf("PRM!(S,)"), "EVariantError: Could not convert variant of type (String) into type (Double)");
    query->Disable();
    Parametres()->SetParametreValue("S", Variant());
    EXPECT_EQ(ErrorOf("S"), "EDataBaseVynError: TDataBaseVyn ERROR:\nBad PRM type");
}

TEST_F(Functions, AnUnknownLetterIsAnErrorForAParameterThatIsThere) {
    EXPECT_EQ(Of("PRMX(A,1)"), "1");
    EXPECT_EQ(Of("PRMXYZ(A,1)"), "1");
    Parametres()->AddParam("A", 2);
    EXPECT_EQ(ErrorOf("PRMX(A,1)"),
              kError +
                  "\"PRMX\" is not a valid Function in TQuerySQL\n\rAvailable Functions : PRM, PRM$('String'), "
                  "PRM!(Numeric), PRM#(Variant)");
    EXPECT_EQ(ErrorOf("PRMXYZ(A,1)"),
              kError +
                  "\"A\" is not a valid Function in TQuerySQL\n\rAvailable Functions : PRM, PRM$(String), "
                  "PRM!(Numeric), PRM#(All)");
    EXPECT_EQ(Dependencies(), "A");
}

TEST_F(Functions, NamesThatAreMissingAreErrors) {
    EXPECT_EQ(ErrorOf(""), kError + "Function Name is NUL : \xA1\xA1");
    EXPECT_EQ(ErrorOf("(A,1)"), kError + "Function Name is NUL : \xA1(A,1)\xA1");
    EXPECT_EQ(ErrorOf("PRM(,1)"), kError + "Parameter Name is NUL : \xA1PRM(,1)\xA1");
    EXPECT_EQ(ErrorOf("SQL(,F)"), kError + "Parameter Name in NUL: \xA1SQL(,F)\xA1");
    EXPECT_EQ(ErrorOf("SQL(Q,)"), kError + "Field to assign is NUL: \xA1SQL(Q,)\xA1");
    EXPECT_EQ(ErrorOf("SQL(Q)"), kError + "Field to assign is NUL: \xA1SQL(Q)\xA1");
}

TEST_F(Functions, WithoutACommaTheNameSwallowsTheParenthesis) {
    Parametres()->AddParam("A", 1);
    EXPECT_EQ(ErrorOf("PRM(A)"), kError + "El valor por defecto no existe!");
}

TEST_F(Functions, UnknownOnesAreAskedOfTheApplication) {
    EXPECT_EQ(ErrorOf("TODAY(1)"), kError + "Not valid function in TQuerySQL: \xA1TODAY\xA1");
    query->OnFuncioNoConeguda = [&](TQuerySQL* QuerySQL, AnsiString& Texte) {
        EXPECT_EQ(QuerySQL, query.get());
        if (Texte == "TODAY(1)") Texte = "'2026-11-21'";
    };
    EXPECT_EQ(Of("TODAY(1)"), "'2026-11-21'");
    EXPECT_EQ(Of("OTHER(x)"), "OTHER(x)");
}

TEST_F(Functions, TheClausesOfAnotherQueryAreJoinedByLineFeedAndReturn) {
    TComponent form(nullptr), panel(&form);
    TQuerySQL on(&panel), other(&form);
    on.SetName("On");
    other.SetName("Other");
    other.FromSQL = "T";
    other.OrderBySQL = "O";
    TFieldsSQLRec field;
    field.FieldName = field.FieldSQL = "A";
    other.Afegeix(field);
    EXPECT_EQ(on.ExecutaFuncio("sql(other,ID)"), "FROM T\n\r\n\r\n\r\n\rORDER BY O");
    other.WhereSQL = "X = " + M + "P" + M;
    EXPECT_EQ(on.ExecutaFuncio("SQL(Other,ID)"), "FROM T\n\rWHERE X = \xA1P\xA1\n\r\n\r\n\rORDER BY O");
    panel.SetName("Panel");
    EXPECT_EQ(MessageOf([&] { on.ExecutaFuncio("SQL(Panel,ID)"); }),
              "EQuerySQL: TQuerySQL ERROR - On\nComponentName: Panel (TComponent) is not a TQuerySQL");
    EXPECT_EQ(MessageOf([&] { on.ExecutaFuncio("SQL(Nope,ID)"); }),
              "EQuerySQL: TQuerySQL ERROR - On\nCan't found TQuerySQL with name: Nope");
}

TEST_F(Functions, AFunctionMayGoOnInTheNextLine) {
    Parametres()->AddParam("A", 5);
    EXPECT_EQ(Applied({"x " + M + "PRM(", "A,", "1)" + M + " y"}), "x ||5 y");
}

TEST_F(Functions, AnOpenFunctionIsDroppedWithWhatFollows) {
    EXPECT_EQ(Applied({"a " + M + "b", "c"}), "a |");
    EXPECT_EQ(Applied({"a", "b"}), "a|b");
}

TEST_F(Functions, AMarkInAValueStaysAMarkInSql) {
    Parametres()->AddParam("A", M + "B" + M);
    Parametres()->AddParam("B", 1);
    EXPECT_EQ(Applied({M + "PRM$(A,)" + M}),
              "'\xA1"
              "B\xA1'");
}

TEST_F(Functions, WithoutADatabaseTheNameIsTheError) {
    Parametres()->AddParam("A", 5);
    database.reset();
    query->SetDataBaseVynName("Nowhere");
    EXPECT_EQ(Of("PRM(A,)"), "5");
    EXPECT_EQ(ErrorOf("PRM$(A,)"), "Exception: Database Vyn not found (Nowhere)");
}

TEST_F(Functions, AreGoneWhenTheErrorComes) {
    query->WhereSQL = M + M;
    TStringList lines;
    EXPECT_EQ(MessageOf([&] { query->GenerateSql(&lines); }), kError + "Function Name is NUL : \xA1\xA1");
}

class Phrases : public Functions {};

TEST_F(Phrases, PutValuesIn) {
    Parametres()->AddParam("A", 1.5);
    Parametres()->AddParam("B", M + "A" + M + "!");
    EXPECT_EQ(query->AnalitzaFrase("x"), "x");
    EXPECT_EQ(query->AnalitzaFrase("x" + M), "x" + M);
    EXPECT_EQ(query->AnalitzaFrase("<" + M + "A" + M + ">" + M + "b" + M), "<1.5>1.5!");
    EXPECT_EQ(query->AnalitzaFrase(M + "A" + M + M), "1.5" + M);
}

TEST_F(Phrases, DependOnTheValueAndNotOnTheName) {
    Parametres()->AddParam("A", "Other");
    query->AnalitzaFrase(M + "A" + M);
    EXPECT_FALSE(query->ExisteixSQLPRM("A"));
    EXPECT_TRUE(query->ExisteixSQLPRM("OTHER"));
}

TEST_F(Phrases, AValueInAValueIsPutTogetherWithWhatFollows) {
    Parametres()->AddParam("A", M + "B");
    Parametres()->AddParam("B", "end");
    EXPECT_EQ(query->AnalitzaFrase(M + "A" + M + M), "end");
}

TEST_F(Phrases, AnUnknownNameBecomesAParameterWithoutAValue) {
    EXPECT_EQ(query->AnalitzaFrase("[" + M + "New" + M + "]"), "[]");
    EXPECT_TRUE(Parametres()->ParamExists("New"));
    Parametres()->CreaAutomaticParams = false;
    EXPECT_EQ(MessageOf([&] { query->AnalitzaFrase(M + "Newer" + M); }),
              "EParametresError: Parametre \"Newer\" not found");
    EXPECT_EQ(MessageOf([&] { query->AnalitzaFrase(M + M); }), "EParametresError: Parametre \"\" not found");
}

TEST_F(Phrases, AValueThatHoldsItsOwnNameUsesTheStackUp) {
    Parametres()->AddParam("A", M + "A" + M);
    EXPECT_EQ(MessageOf([&] { query->AnalitzaFrase(M + "A" + M); }), "EStackOverflow: Stack overflow");
    Parametres()->SetParametreValue("A", AnsiString(1 << 20, 'x') + M + "A" + M);
    EXPECT_THAT(MessageOf([&] { query->AnalitzaFrase(M + "A" + M); }),
                testing::AnyOf("EStackOverflow: Stack overflow", "EOutOfMemory: Out of memory"));
}

class Dependencies : public QueryTest {};

TEST_F(Dependencies, StandOnceWithoutRegardToCase) {
    query->AddSQLPRM("A");
    query->AddSQLPRM("a");
    query->AddSQLPRM("B");
    EXPECT_EQ(query->SQLPRM().CommaText(), "A,B");
    EXPECT_TRUE(query->ExisteixSQLPRM("b"));
    query->ClearSQLPRM();
    EXPECT_FALSE(query->ExisteixSQLPRM("A"));
}

TEST_F(Dependencies, AChangeIsGatheredWhileRefreshesAreDisabled) {
    query->AddSQLPRM("A");
    query->Disable();
    Parametres()->AddParam("B", 1);
    EXPECT_FALSE(query->RefreshPending());
    Parametres()->AddParam("a", 1);
    EXPECT_TRUE(query->RefreshPending());
    query->ClearSQLPRM();
    query->NotificaCanviParametres(Parametres(), "A", 1);
    EXPECT_TRUE(query->RefreshPending());
}

TEST_F(Dependencies, EnablingWithoutDisablingDoesNothing) {
    query->Enable();
    query->Disable();
    query->AddSQLPRM("A");
    Parametres()->AddParam("A", 1);
    EXPECT_TRUE(query->RefreshPending());  // one Enable more would not have counted
}
