#include "unit/parser/fixtures.h"

#include <cmath>

#include "platform/streams/reader.h"
#include "platform/streams/stream.h"
#include "platform/streams/writer.h"

using namespace parser_fixtures;

TEST_F(ParserTest, AnEmptyExpressionIsZero) {
    EXPECT_TRUE(parser.SetExpression(""));
    EXPECT_EQ(parser.FirstOperation(), nullptr);
    EXPECT_EQ(parser.CalcValue(), 0);
    EXPECT_FALSE(parser.ParseFailed());
}

TEST_F(ParserTest, BlanksAreRefusedAndRemovedOnRequest) {
    EXPECT_EQ(ErrorOf("2 + 3"), "EExpressionHasBlanks: Expression has blanks");
    EXPECT_EQ(TParserVyn::RemoveBlanks(" 2 + 3 "), "2+3");
    EXPECT_EQ(Value(TParserVyn::RemoveBlanks("2 + 3")), 5);
}

TEST_F(ParserTest, AFailedCompilationLeavesNothing) {
    EXPECT_EQ(Value("1+1"), 2);
    EXPECT_THROW(parser.SetExpression("1+"), ESyntaxError);
    EXPECT_TRUE(parser.ParseFailed());
    EXPECT_EQ(parser.FirstOperation(), nullptr);
    EXPECT_EQ(parser.CalcValue(), 0);
    EXPECT_EQ(parser.Expression(), "1+");
    EXPECT_TRUE(parser.SetExpression("2"));
    EXPECT_FALSE(parser.ParseFailed());
}

TEST_F(ParserTest, TheErrorHandlerTakesThePlaceOfTheException) {
    AnsiString told;
    parser.OnParserError = [&](TObject* sender, const Exception& error) {
        EXPECT_EQ(sender, &parser);
        told = AnsiString(error.ClassName()) + ": " + error.Message();
        parser.SetExpression("7");  // as a handler may
    };
    EXPECT_FALSE(parser.SetExpression("(1+2"));
    EXPECT_EQ(told, "EMissMatchingBracket: Missing brackets in expression");
    EXPECT_EQ(parser.CalcValue(), 7);
}

TEST_F(ParserTest, OperationsStandInTheOrderOfTheirExecution) {
    for (const char* name : {"a", "b"}) set.AddParam(name, 2.0);
    EXPECT_EQ(Codes("5"), "0");
    EXPECT_EQ(Codes("a"), "1");
    EXPECT_EQ(Codes("(a)"), "1");
    EXPECT_EQ(Codes("-a"), "2");
    EXPECT_EQ(Codes("-5"), "0");
    EXPECT_EQ(Codes("1+2"), "3");
    EXPECT_EQ(Codes("1-2"), "4");
    EXPECT_EQ(Codes("1*2"), "5");
    EXPECT_EQ(Codes("1/2"), "6");
    EXPECT_EQ(Codes("7MOD2"), "7");
    EXPECT_EQ(Codes("7DIV2"), "8");
    EXPECT_EQ(Codes("a+b*2"), "5 3");
    EXPECT_EQ(Codes("(a+b)*(a-b)/2"), "3 4 6 5");
    EXPECT_EQ(Codes("SIN(a)"), "14");
    EXPECT_EQ(Codes("-a^2"), "11 2");
}

TEST_F(ParserTest, WholeExponentsHaveOperationsOfTheirOwn) {
    set.AddParam("a", 2.0);
    EXPECT_EQ(Codes("2^2"), "11");
    EXPECT_EQ(Codes("2^3"), "12");
    EXPECT_EQ(Codes("2^4"), "13");
    EXPECT_EQ(Codes("2^5"), "9");
    EXPECT_EQ(Codes("2^-3"), "9");
    EXPECT_EQ(Codes("2^1E3"), "9");
    EXPECT_EQ(Codes("2^0.5"), "10");
    EXPECT_EQ(Codes("2^PI"), "10");
    EXPECT_EQ(Codes("2^a"), "10");
    EXPECT_EQ(Codes("2^(2)"), "10");
    EXPECT_EQ(Codes("2^-a"), "2 10");
    EXPECT_EQ(Codes("2^1E12"), "10");
}

TEST_F(ParserTest, OperandsReferToConstantsVariablesAndEarlierResults) {
    set.AddParam("a", 4.0);
    parser.SetExpression("a*3+a");
    EXPECT_EQ(parser.CalcValue(), 16);
    const TOperationRecord* product = parser.FirstOperation();
    const TOperationRecord* sum = product->NextOperation;
    EXPECT_EQ(*product->Arg1, 4.0);
    EXPECT_EQ(*product->Arg2, 3.0);
    EXPECT_EQ(sum->Arg1, product->Dest);
    EXPECT_EQ(sum->Arg2, product->Arg1);
    EXPECT_EQ(sum->NextOperation, nullptr);
}

TEST_F(ParserTest, VariablesAreReadAnewForEachCalculation) {
    set.AddParam("a", 1.0);
    parser.SetExpression("a*2");
    for (const double value : {1.0, 2.0, -3.5, 0.0}) {
        set.SetParametreValue("a", value);
        EXPECT_EQ(parser.CalcValue(), 2 * value);
    }
}

TEST_F(ParserTest, AVariableMayChangeItsType) {
    set.AddParam("a", 1.0);
    parser.SetExpression("a+1");
    for (int i = 0; i < 3; ++i) {
        for (const auto& [value, expected] :
             {std::pair<Variant, double>{2.5, 3.5}, {7, 8.0}, {"1.5", 2.5}, {Currency(0.25), 1.25}, {2.0f, 3.0}}) {
            set.SetParametreValue("a", value);
            EXPECT_EQ(parser.CalcValue(), expected);
            EXPECT_EQ(parser.CalcValue(), expected);
        }
    }
    for (int i = 0; i < 3; ++i) {
        set.SetParametreValue("a", Variant::Null());
        EXPECT_EQ(MessageOf([&] { parser.CalcValue(); }), "EVarIsNull: Variable a is null");
        set.SetParametreValue("a", "");
        EXPECT_EQ(MessageOf([&] { parser.CalcValue(); }), "EVarIsNull: Variable a is null");
        set.SetParametreValue("a", "x");
        EXPECT_THROW(parser.CalcValue(), EConvertError);
        set.SetParametreValue("a", 4.0);
        EXPECT_EQ(parser.CalcValue(), 5);
    }
}

TEST_F(ParserTest, AWholeRecordMayChange) {
    set.AddParam("a", 1.0);
    Value("a");
    parser.CalcValue();
    parser.CalcValue();
    TParametresData data = set.GetParamsProps(0);
    data.Value = "9";
    set.SetParamsProps(0, data);
    EXPECT_EQ(parser.CalcValue(), 9);
}

TEST_F(ParserTest, AnEarlierSetShadowsALaterOneFromThenOn) {
    TParametres second(nullptr);
    parser.Variables().Add(&second);
    second.AddParam("a", 1.0);
    parser.SetExpression("a");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(parser.CalcValue(), 1);
    set.AddParam("a", 2.0);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(parser.CalcValue(), 2);
    set.DeleteParam("a");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(parser.CalcValue(), 1);
    parser.Variables().Delete(1);
    EXPECT_EQ(MessageOf([&] { parser.CalcValue(); }), "EVarNotFound: Variable a not found");
    parser.Variables().Add(&second);
    EXPECT_EQ(parser.CalcValue(), 1);
    second.Clear();
    EXPECT_EQ(MessageOf([&] { parser.CalcValue(); }), "EVarNotFound: Variable a not found");
}

TEST_F(ParserTest, ParametersMayMoveInMemory) {
    set.AddParam("a", 1.0);
    parser.SetExpression("a");
    for (int i = 0; i < 3; ++i) parser.CalcValue();
    for (int i = 0; i < 200; ++i) {
        set.AddParam("p" + IntToStr(i), i);
        set.SetParametreValue("a", i + 0.5);
        EXPECT_EQ(parser.CalcValue(), i + 0.5);
    }
}

TEST_F(ParserTest, ASetThatGoesTakesItsVariablesWithIt) {
    auto second = std::make_unique<TParametres>(nullptr);
    second->AddParam("a", 1.0);
    parser.Variables().Add(second.get());
    parser.SetExpression("a");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(parser.CalcValue(), 1);
    second.reset();
    EXPECT_EQ(MessageOf([&] { parser.CalcValue(); }), "EVarNotFound: Variable a not found");
}

TEST_F(ParserTest, ReadingFiresTheGetEvents) {
    set.AddParam("a", 1.0);
    parser.SetExpression("a+a");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(parser.CalcValue(), 2);
    int reads = 0;
    set.OnGetValorPRM = [&](TParametres*, const AnsiString&, Variant& value) {
        ++reads;
        value = 10.0;
    };
    EXPECT_EQ(parser.CalcValue(), 20);
    EXPECT_GT(reads, 0);
    set.OnGetValorPRM = nullptr;
    EXPECT_EQ(parser.CalcValue(), 2);
    TParametresChild follower(nullptr);
    follower.SetParams(&set);
    EXPECT_EQ(parser.CalcValue(), 2);
    follower.OnGetValorPRM = [](TParametres*, const AnsiString&, Variant& value) { value = 5; };
    EXPECT_EQ(parser.CalcValue(), 10);
    EXPECT_EQ(Value("a*3"), 15);
}

TEST_F(ParserTest, AHandlerMayNotTakeTheExpressionAway) {
    set.AddParam("a", 1.0);
    parser.SetExpression("a");
    set.OnGetValorPRM = [&](TParametres*, const AnsiString&, Variant&) { parser.SetExpression("1"); };
    EXPECT_EQ(MessageOf([&] { parser.CalcValue(); }), "EParserInternalError: TParser internal error");
    set.OnGetValorPRM = nullptr;
    EXPECT_EQ(parser.CalcValue(), 1);
}

TEST_F(ParserTest, AnUnknownVariableMayBeSuppliedByTheHost) {
    std::vector<AnsiString> asked;
    parser.SetOnVariableNotFound([&](TObject* sender, const AnsiString& name) {
        EXPECT_EQ(sender, &parser);
        asked.push_back(name);
        if (name == "supplied") set.AddParam(name, 21.0);
    });
    EXPECT_EQ(Value("supplied*2"), 42);
    EXPECT_EQ(asked, std::vector<AnsiString>{"supplied"});
    EXPECT_EQ(ErrorOf("1+missing"), "ESyntaxError: Error parsing expression:\r1+missing\rmissing");
    EXPECT_EQ(asked.back(), "missing");
    set.DeleteParam("supplied");
    parser.SetExpression("supplied");
    set.DeleteParam("supplied");
    EXPECT_EQ(parser.CalcValue(), 21);
}

TEST_F(ParserTest, TheHostIsAskedForWholeNamesBeforeTheirParts) {
    std::vector<AnsiString> asked;
    parser.OnVariableNotFound = [&](TObject*, const AnsiString& name) {
        asked.push_back(name);
        if (name == "individual" || name == "q") set.AddParam(name, 8.0);
    };
    EXPECT_EQ(Value("individual"), 8);
    EXPECT_EQ(asked, std::vector<AnsiString>{"individual"});
    asked.clear();
    set.AddParam("a", 20.0);
    EXPECT_EQ(Value("aDIVq"), 2);
    EXPECT_EQ(asked, (std::vector<AnsiString>{"aDIVq", "q"}));
    asked.clear();
    EXPECT_EQ(Value("aMODq"), 4);  // both are known now, and nobody is asked
    EXPECT_TRUE(asked.empty());
}

TEST_F(ParserTest, NamesAreCutAtTheLastKeywordThatLeavesOperands) {
    for (const auto& [name, value] : {std::pair{"a", 100.0}, {"b", 7.0}, {"aDIVb", 5.0}, {"bDIVc", 3.0}, {"c", 2.0}})
        set.AddParam(name, value);
    EXPECT_EQ(Value("aDIVb"), 5);      // the name wins over the division
    EXPECT_EQ(Value("aDIVbDIVc"), 2);  // at the last DIV: aDIVb, c
    set.DeleteParam("c");
    EXPECT_EQ(Value("aDIVbDIVc"), 33);  // only at the first: a, bDIVc
    EXPECT_EQ(Value("aMODb"), 2);
}

TEST_F(ParserTest, GetVariableRaisesWhatIsWrong) {
    set.AddParam("a", 1.5);
    set.AddParam("nul", Variant::Null());
    set.AddParam("empty", "");
    EXPECT_EQ(parser.GetVariable("A"), 1.5);
    EXPECT_EQ(MessageOf([&] { parser.GetVariable("q"); }), "EVarNotFound: Variable q not found");
    EXPECT_EQ(MessageOf([&] { parser.GetVariable("nul"); }), "EVarIsNull: Variable nul is null");
    EXPECT_EQ(MessageOf([&] { parser.GetVariable("empty"); }), "EVarIsNull: Variable empty is null");
    EXPECT_TRUE(parser.VariableExists("a"));
    EXPECT_FALSE(parser.VariableExists("q"));
    parser.OnVariableNotFound = [&](TObject*, const AnsiString& name) { set.AddParam(name, 3); };
    EXPECT_TRUE(parser.VariableExists("q"));
    EXPECT_EQ(parser.GetVariable("r"), 3);
}

TEST_F(ParserTest, SetVarStoresInTheGlobalSetOnly) {
    parser.SetVar("a", 2.5L);
    EXPECT_EQ(Parametres()->GetParametreValue("a").AsDouble(), 2.5);
    EXPECT_EQ(Parametres()->GetParametreValue("a").Type(), varDouble);
    EXPECT_FALSE(set.ParamExists("a"));
    EXPECT_FALSE(parser.VariableExists("a"));
}

TEST_F(ParserTest, VariablesAreCleared) {
    set.AddParam("a", 1.0);
    set.AddParam("b", 1.0);
    parser.ClearVariable("A");
    parser.ClearVariable("missing");
    EXPECT_FALSE(set.ParamExists("a"));
    parser.ClearVariables();
    EXPECT_EQ(parser.Variables().Count(), 0);
    EXPECT_FALSE(parser.VariableExists("b"));
    EXPECT_TRUE(set.ParamExists("b"));
}

TEST_F(ParserTest, FunctionsAreAddedUnderUpperCaseNames) {
    parser.AddFunctionOneParam("twice", [](const TOperationRecord& o) { *o.Dest = 2 * *o.Arg1; });
    parser.AddFunctionTwoParam("Diff_2", [](const TOperationRecord& o) { *o.Dest = *o.Arg1 - *o.Arg2; });
    EXPECT_EQ(Value("TWICE(4)+diff_2(9,twice(1)+1)"), 14);
    EXPECT_EQ(parser.FunctionsTwoParam().Name(0), "CONTRAVALOR_EUROS");
    EXPECT_EQ(parser.FunctionsTwoParam().Name(2), "DIFF_2");
    TParserVyn other(nullptr);
    EXPECT_THROW(other.SetExpression("TWICE(4)"), ESyntaxError);
}

TEST_F(ParserTest, AFunctionsNameIsAnIdentifier) {
    for (const char* name : {"", "9a", "a-b", "a b", "\xE9"})
        EXPECT_EQ(MessageOf([&] { parser.AddFunctionOneParam(name, nullptr); }), "EBadName: " + AnsiString(name));
    EXPECT_EQ(MessageOf([&] { parser.AddFunctionTwoParam("a.b", nullptr); }), "EBadName: a.b");
}

TEST_F(ParserTest, AFunctionIsAddedOnce) {
    EXPECT_EQ(MessageOf([&] { parser.AddFunctionOneParam("sin", RoutineOf(TOperationCode::Negation)); }),
              "EStringListError: String list does not allow duplicates");
    EXPECT_EQ(Value("SIN(0)"), 0);
}

TEST_F(ParserTest, ClearingAFunctionEmptiesTheExpression) {
    Value("SIN(1)");
    parser.ClearFunction("missing");
    EXPECT_EQ(parser.Expression(), "SIN(1)");
    parser.ClearFunction("cos");
    EXPECT_EQ(parser.Expression(), "");
    EXPECT_EQ(parser.CalcValue(), 0);
    EXPECT_THROW(parser.SetExpression("COS(1)"), ESyntaxError);
    parser.ClearFunction("MAX");
    EXPECT_THROW(parser.SetExpression("MAX(1,2)"), ESyntaxError);
    parser.ClearFunctions();
    EXPECT_EQ(parser.FunctionsOneParam().Count() + parser.FunctionsTwoParam().Count(), 0);
    EXPECT_THROW(parser.SetExpression("SIN(1)"), ESyntaxError);
}

TEST_F(ParserTest, ANameMayHaveOneAndTwoArguments) {
    parser.AddFunctionOneParam("MAX", [](const TOperationRecord& o) { *o.Dest = -*o.Arg1; });
    EXPECT_EQ(Value("MAX(5)"), -5);
    EXPECT_EQ(Value("MAX(5,6)"), 6);
}

TEST_F(ParserTest, TheBuiltInFunctionsAreThese) {
    EXPECT_EQ(parser.FunctionsOneParam().Count(), 26);
    EXPECT_EQ(parser.FunctionsTwoParam().Count(), 9);
    for (const char* name :
         {"TAN",  "SIN", "COS",   "SINH", "COSH", "ARCTAN", "COTAN", "ARG",  "EXP",  "LN",   "LOG10", "LOG2", "SQR",
          "SQRT", "ABS", "TRUNC", "INT",  "CEIL", "FLOOR",  "ROUND", "HEAV", "SIGN", "ZERO", "PH",    "RND",  "RANDOM"})
        EXPECT_TRUE(parser.FunctionsOneParam().Find(name)) << name;
    EXPECT_EQ(parser.FunctionsOneParam().Find("INT"), parser.FunctionsOneParam().Find("TRUNC"));
    TCustomParserVyn bare(nullptr);
    EXPECT_EQ(bare.FunctionsOneParam().Count(), 0);
}

TEST_F(ParserTest, RandomNumbersStayBelowTheirArgument) {
    bool fraction = false;
    double highest = 0;
    parser.SetExpression("RND(3)");
    for (int i = 0; i < 1000; ++i) {
        const double value = parser.CalcValue();
        ASSERT_TRUE(value >= 0 && value < 3) << value;
        fraction = fraction || value != std::floor(value);
        highest = std::max(highest, value);
    }
    EXPECT_TRUE(fraction);
    EXPECT_GT(highest, 2);
    parser.SetExpression("RANDOM(6.9)");
    int counts[6] = {};
    for (int i = 0; i < 1000; ++i) {
        const double value = parser.CalcValue();
        ASSERT_TRUE(value >= 0 && value < 6 && value == std::floor(value)) << value;
        ++counts[static_cast<int>(value)];
    }
    for (const int count : counts) EXPECT_GT(count, 0);
}

TEST_F(ParserTest, TwentyNestingsAreAllowed) {
    const AnsiString open(20, '('), close(20, ')');
    EXPECT_EQ(Value(open + "1" + close), 1);
    EXPECT_EQ(Value(open + "1" + close + "+" + open + "1" + close), 2);
    EXPECT_EQ(ErrorOf("(" + open + "1" + close + ")"), "ETooManyNestings: Expression contains too many nestings");
    EXPECT_EQ(ErrorOf("ABS(" + open + "1" + close + ")"), "ETooManyNestings: Expression contains too many nestings");
}

TEST_F(ParserTest, FiftyOperationsBesideEachOtherAreAllowed) {
    const auto chain = [](int operations, const AnsiString& sign) {
        AnsiString text = "1";
        for (int i = 0; i < operations; ++i) text += sign + "1";
        return text;
    };
    EXPECT_EQ(Value(chain(50, "+")), 51);
    EXPECT_EQ(ErrorOf(chain(51, "+")), "EExpressionTooComplex: Expression is too complex");
    EXPECT_EQ(Value(chain(50, "/")), 1);
    EXPECT_EQ(ErrorOf(chain(51, "DIV")), "EExpressionTooComplex: Expression is too complex");
    EXPECT_EQ(ErrorOf(chain(51, "^")), "EExpressionTooComplex: Expression is too complex");
    // Each sum, product and power is counted by itself.
    EXPECT_EQ(Value(chain(50, "*") + "+" + chain(50, "*")), 2);
    EXPECT_EQ(Value("(" + chain(50, "+") + ")*(" + chain(50, "+") + ")"), 51 * 51);
    EXPECT_EQ(Value("MAX(" + chain(50, "+") + "," + chain(50, "-") + ")"), 51);
}

TEST_F(ParserTest, FortyTermsAreNoTrouble) {
    set.AddParam("x", 2.0);
    set.AddParam("y", 0.5);
    AnsiString text;
    double expected = 0;
    for (int i = 1; i <= 40; ++i) {
        text += (i > 1 ? "+" : "") + IntToStr(i) + "*x*y^" + IntToStr(i % 7);
        expected += i * 2.0 * std::pow(0.5, i % 7);
    }
    EXPECT_EQ(Value(text), expected);
    EXPECT_EQ(parser.CalcValue(), expected);
}

TEST_F(ParserTest, HostileTextsOfAMegabyteEndQuickly) {
    constexpr size_t kSize = 1 << 20;
    const auto repeat = [](const AnsiString& piece) {
        AnsiString text;
        while (text.size() < kSize) text += piece;
        return text;
    };
    set.AddParam("D", 1.0);
    set.AddParam("MOD", 1.0);
    AnsiString brackets;
    for (int i = 0; i < 20000; ++i) brackets += "(1+1)*";
    // Each is an error; what takes more than linear time would not end at all.
    for (const AnsiString& text : {repeat("("),
                                   repeat("(") + repeat(")"),
                                   repeat("()"),
                                   repeat("-"),
                                   repeat("+"),
                                   repeat("1+"),
                                   repeat("1-"),
                                   repeat("^"),
                                   repeat("9"),
                                   repeat("1."),
                                   repeat("1E"),
                                   repeat("DIV"),
                                   repeat("MOD"),
                                   repeat("MODDIV"),
                                   repeat("aMOD"),
                                   repeat("DMODMOD"),
                                   repeat("a"),
                                   repeat("_"),
                                   repeat("SIN("),
                                   repeat("MAX(1,"),
                                   repeat(","),
                                   repeat("-1"),
                                   repeat("--1"),
                                   repeat("1^-"),
                                   repeat(AnsiString(1, '\0')),
                                   repeat("\xFF"),
                                   brackets,
                                   repeat("DMOD") + "+" + repeat("DMOD")})
        EXPECT_THROW(Value(text), Exception) << text.substr(0, 20);
}

TEST_F(ParserTest, ManyVariablesAreNoTrouble) {
    AnsiString text;
    double expected = 0;
    for (int group = 0; group < 40; ++group) {
        text += group > 0 ? "+(" : "(";
        for (int i = 0; i < 50; ++i) {
            const int number = (group * 50 + i) % 700;
            set.SetParametreValue("v" + IntToStr(number), number * 0.5);
            text += (i > 0 ? "+v" : "v") + IntToStr(number);
            expected += number * 0.5;
        }
        text += ")";
    }
    EXPECT_EQ(Value(text), expected);
    EXPECT_EQ(parser.CalcValue(), expected);
    EXPECT_EQ(parser.CalcValue(), expected);
}

TEST_F(ParserTest, AStoredExpressionIsCompiledWhenItIsCalculated) {
    TParserVyn source(nullptr);
    source.SetName("Parser");
    source.Variables().Add(&set);
    set.AddParam("a", 4.0);
    source.SetExpression("a*a");
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.WriteRootComponent(source);
    }
    stream.SetPosition(0);
    TReader reader(stream);
    reader.ReadRootComponent(&parser);
    EXPECT_EQ(parser.Expression(), "a*a");
    EXPECT_EQ(parser.CalcValue(), 16);
    set.SetParametreValue("a", 5.0);
    EXPECT_EQ(parser.CalcValue(), 25);
}

TEST_F(ParserTest, PublishesItsPropertiesInOrder) {
    AnsiString names;
    for (const PropertyInfo& property : TParserVyn::StaticClass().Properties()) names += property.Name + " ";
    EXPECT_NE(names.find("Expression OnVariableNotFound OnParserError "), AnsiString::npos);
}

TEST_F(ParserTest, TheCompilerIsAFunctionOfItsOwn) {
    set.AddParam("a", 3.0);
    OperationList operations;
    bool failed = true;
    ParseFunction("a^2", parser.Variables(), parser.FunctionsOneParam(), parser.FunctionsTwoParam(), operations,
                  failed);
    EXPECT_FALSE(failed);
    ASSERT_EQ(operations.Count(), 1u);
    EXPECT_EQ(operations.First()->Code, TOperationCode::Square);
    EXPECT_EQ(operations.First()->Operation, nullptr);
    EXPECT_THROW(ParseFunction("a^", parser.Variables(), parser.FunctionsOneParam(), parser.FunctionsTwoParam(),
                               operations, failed),
                 ESyntaxError);
    EXPECT_TRUE(failed);
    EXPECT_EQ(operations.First(), nullptr);
}
