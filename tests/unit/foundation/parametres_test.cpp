#include "unit/foundation/fixtures.h"

using namespace foundation_fixtures;

TEST_F(TParametresTest, LooksNamesUpWithoutRegardToAsciiCase) {
    set.AddParam("Client", 1);
    set.AddParam("PAIS", 2);
    EXPECT_EQ(set.FindParam("cLIENT"), 0);
    EXPECT_EQ(set.FindParam("pais"), 1);
    EXPECT_EQ(set.FindParam("other"), -1);
    EXPECT_TRUE(set.ParamExists("Pais"));
    EXPECT_EQ(set.GetParametresNames()->Text(), "Client\r\nPAIS\r\n");
}

TEST_F(TParametresTest, PublishesItsPropertiesInOrder) {
    AnsiString names;
    for (const PropertyInfo& property : TParametres::StaticClass().Properties()) names += property.Name + " ";
    EXPECT_NE(names.find("OnGetValorPRM OnSetValorPRM OnChangeValorPRM OnSavePRM CreaAutomaticParams SaveParametres "),
              AnsiString::npos);
    EXPECT_TRUE(set.CreaAutomaticParams);
    EXPECT_FALSE(set.SaveParametres);
}

TEST_F(TParametresTest, ValidNamesAreAsciiIdentifiers) {
    for (const char* name : {"a_1", "_x", "A9", "z"})
        EXPECT_EQ(MessageOf([&] { set.AddParam(name, 1); }), "no error") << name;
}

TEST_F(TParametresTest, AnEmptyNameIsRefused) {
    EXPECT_EQ(MessageOf([&] { set.AddParam("", 1); }), "EParametresError: NomParametre is null");
    EXPECT_EQ(set.Count(false), 0);
}

TEST_F(TParametresTest, ALeadingDigitIsRefused) {
    EXPECT_EQ(MessageOf([&] { set.AddParam("9a", 1); }), "EParametresError: Parametre 9a can't start with 9");
    EXPECT_EQ(set.Count(false), 0);
}

TEST_F(TParametresTest, OtherCharactersAreRefused) {
    EXPECT_EQ(MessageOf([&] { set.AddParam("a-b", 1); }),
              "EParametresError: Character \"-\" is not a valid char in NomParametre a-b");
    EXPECT_EQ(MessageOf([&] { set.AddParam("\xE9", 1); }),
              "EParametresError: Character \"\xE9\" is not a valid char in NomParametre \xE9");
    EXPECT_EQ(MessageOf([&] { set.AddParam("9 a", 1); }),
              "EParametresError: Character \" \" is not a valid char in NomParametre 9 a");
}

TEST_F(TParametresTest, NamesThatParametersCanHaveAreTold) {
    for (const char* name : {"A", "_x9", "nom_client"}) EXPECT_TRUE(TParametres::IsValidName(name)) << name;
    for (const char* name : {"", "9a", "a b", "poblaci\xF3", "a-b"})
        EXPECT_FALSE(TParametres::IsValidName(name)) << name;
}

TEST_F(TParametresTest, AnExistingNameIsNotChecked) {
    set.AddParam("A", 1);
    TParametresData data = set.GetParamsProps(0);
    set.AddParam("a", 2);
    EXPECT_EQ(set.Count(false), 1);
    EXPECT_EQ(set.GetParamsProps(0).Name, "A");
    EXPECT_EQ(data.Value.AsInteger(), 1);
}

TEST_F(TParametresTest, ReadingAMissingNameCreatesItWithNull) {
    EXPECT_TRUE(set.GetParametreValue("X").IsNull());
    ASSERT_TRUE(set.ParamExists("X"));
    EXPECT_TRUE(set.GetParamsProps(0).Value.IsNull());
    EXPECT_TRUE(set.GetParamsProps(0).LastValue.IsEmpty());
    EXPECT_FALSE(set.GetParamsProps(0).Writable);
}

TEST_F(TParametresTest, AGetHandlerMayAnswerForAMissingNameWithoutStoring) {
    set.OnGetValorPRM = [](TParametres*, const AnsiString&, Variant& value) { value = Variant(7); };
    EXPECT_EQ(set.GetParametreValue("X").AsInteger(), 7);
    EXPECT_TRUE(set.GetParamsProps(0).Value.IsNull());
}

TEST_F(TParametresTest, MissingNamesAreErrorsWhenNoneIsCreated) {
    set.CreaAutomaticParams = false;
    EXPECT_EQ(MessageOf([&] { set.GetParametreValue("X"); }), "EParametresError: Parametre \"X\" not found");
    EXPECT_EQ(MessageOf([&] { set.SetParametreValue("X", 1); }), "EParametresError: Parametre \"X\" not found");
    EXPECT_EQ(MessageOf([&] { set.AsInteger("X", 1); }), "EParametresError: Parametre \"X\" not found");
    EXPECT_EQ(set.Count(false), 0);
}

TEST_F(TParametresTest, OtherOperationsNeedTheName) {
    EXPECT_EQ(MessageOf([&] { set.DeleteParam("X"); }), "EParametresError: Parametre \"X\" not found ");
    EXPECT_EQ(MessageOf([&] { set.GetLastValue("X"); }), "EParametresError: Parametre X doesn't exists ");
    EXPECT_EQ(MessageOf([&] { set.GetWritable("X"); }), "EParametresError: Parametre X doesn't exists ");
    EXPECT_EQ(MessageOf([&] { set.SetWritable("X", true); }), "EParametresError: Parametre X doesn't exists ");
}

TEST_F(TParametresTest, DeletingClosesTheGapAndFiresNothing) {
    for (const char* name : {"A", "B", "C"}) set.AddParam(name, name);
    int calls = 0;
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++calls; };
    set.OnChangeValorPRM = [&](TParametres*, const AnsiString&, const Variant&, bool&) { ++calls; };
    set.DeleteParam("b");
    EXPECT_EQ(Names(set), "A C ");
    EXPECT_EQ(set.FindParam("C"), 1);
    set.Clear();
    EXPECT_EQ(set.Count(false), 0);
    EXPECT_FALSE(set.ParamExists("A"));
    EXPECT_EQ(calls, 0);
}

TEST_F(TParametresTest, WritableFlagsAreCounted) {
    for (const char* name : {"A", "B", "C"}) set.AddParam(name, 1);
    set.Writables({"a", "missing", "C"}, true);
    EXPECT_EQ(set.Count(true), 2);
    EXPECT_EQ(set.Count(false), 3);
    EXPECT_FALSE(set.GetWritable("B"));
    set.Writables({"A"}, false);
    EXPECT_EQ(set.Count(true), 1);
}

TEST_F(TParametresTest, WholeRecordsAreBoundToTheirPlace) {
    set.AddParam("A", 1);
    set.AddParam("B", 2);
    EXPECT_EQ(MessageOf([&] { set.GetParamsProps(-1); }), "EParametresError: Index -1 out of bounds in GetParamsProps");
    EXPECT_EQ(MessageOf([&] { set.GetParamsProps(2); }), "EParametresError: Index 2 out of bounds in GetParamsProps");
    TParametresData data = set.GetParamsProps(0);
    EXPECT_EQ(MessageOf([&] { set.SetParamsProps(2, data); }),
              "EParametresError: Index 2 out of bounds in SetParamsProps");
    EXPECT_EQ(MessageOf([&] { set.SetParamsProps(1, data); }),
              "EParametresError: Error a SetParamsProps : Intentant colocar un parametre en una posici\xF3 que no "
              "\xE9s la seva.");
    int calls = 0;
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++calls; };
    data.Name = "a";
    data.Value = Variant(9);
    data.LastValue = Variant("before");
    data.Writable = true;
    set.SetParamsProps(0, data);
    EXPECT_EQ(set.GetParamsProps(0).Name, "a");
    EXPECT_EQ(set.GetLastValue("A").AsString(), "before");
    EXPECT_TRUE(set.GetWritable("A"));
    EXPECT_EQ(calls, 0);
}

TEST_F(TParametresTest, AddingFiresChangeFromNullThenSet) {
    AnsiString log;
    set.OnChangeValorPRM = [&](TParametres* from, const AnsiString& name, const Variant& value, bool& proceed) {
        EXPECT_EQ(from, &set);
        log += "change " + name + "=" + VarToStr(value) + (proceed ? " yes;" : " no;");
    };
    set.OnSetValorPRM = [&](TParametres*, const AnsiString& name, const Variant& value) {
        log += "set " + name + "=" + VarToStr(value) + ";";
        EXPECT_EQ(VarToStr(set.GetParamsProps(0).Value), VarToStr(value));
    };
    set.AddParam("A", 5);
    EXPECT_EQ(log, "change A=5 yes;set A=5;");
    EXPECT_TRUE(set.GetLastValue("A").IsNull());
}

TEST_F(TParametresTest, AnEqualValueIsProposedAndNotStored) {
    set.AddParam("A", 5);
    AnsiString log;
    set.OnChangeValorPRM = [&](TParametres*, const AnsiString&, const Variant&, bool& proceed) {
        log += proceed ? "yes;" : "no;";
    };
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { log += "set;"; };
    set.SetParametreValue("A", 5);
    EXPECT_EQ(log, "no;");
    EXPECT_TRUE(set.GetLastValue("A").IsNull());
}

TEST_F(TParametresTest, AHandlerMayForceAnEqualValue) {
    set.AddParam("A", 5);
    int sets = 0;
    set.OnChangeValorPRM = [](TParametres*, const AnsiString&, const Variant&, bool& proceed) { proceed = true; };
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++sets; };
    set.SetParametreValue("A", 5);
    EXPECT_EQ(sets, 1);
    EXPECT_EQ(set.GetLastValue("A").AsInteger(), 5);
}

TEST_F(TParametresTest, AHandlerMayVetoAChange) {
    set.AddParam("A", 5);
    int sets = 0;
    set.OnChangeValorPRM = [](TParametres*, const AnsiString&, const Variant&, bool& proceed) { proceed = false; };
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++sets; };
    set.SetParametreValue("A", 6);
    EXPECT_EQ(set.GetParametreValue("A").AsInteger(), 5);
    EXPECT_EQ(sets, 0);
}

TEST_F(TParametresTest, AChangeHandlerThatRaisesKeepsTheOldValue) {
    set.AddParam("A", 5);
    set.OnChangeValorPRM = [](TParametres*, const AnsiString&, const Variant&, bool&) { throw Exception("no"); };
    EXPECT_EQ(MessageOf([&] { set.SetParametreValue("A", 6); }), "Exception: no");
    EXPECT_EQ(set.GetParamsProps(0).Value.AsInteger(), 5);
}

TEST_F(TParametresTest, ValuesCompareByTheirTexts) {
    int sets = 0;
    set.AddParam("A", 1);
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++sets; };
    set.SetParametreValue("A", "1");
    EXPECT_EQ(sets, 0);
    set.SetParametreValue("A", "x");
    set.SetParametreValue("A", "X");
    EXPECT_EQ(sets, 2);
}

TEST_F(TParametresTest, NullAndEmptyDifferAlthoughBothAreTheEmptyText) {
    int sets = 0;
    set.AddParam("A", Variant::Null());
    set.OnSetValorPRM = [&](TParametres*, const AnsiString&, const Variant&) { ++sets; };
    set.SetParametreValue("A", Variant::Null());
    EXPECT_EQ(sets, 0);
    set.SetParametreValue("A", Variant());
    EXPECT_EQ(sets, 1);
    set.SetParametreValue("A", "");
    EXPECT_EQ(sets, 1);
    set.SetParametreValue("A", Variant::Null());
    EXPECT_EQ(sets, 2);
}

TEST_F(TParametresTest, LastValueIsWhatStoodBefore) {
    set.AddParam("A", 1);
    set.SetParametreValue("A", 2);
    EXPECT_EQ(set.GetLastValue("a").AsInteger(), 1);
}

TEST_F(TParametresTest, AHandlerMayDeleteTheParameterThatChanges) {
    set.AddParam("A", 1);
    set.OnChangeValorPRM = [&](TParametres* from, const AnsiString& name, const Variant&, bool&) {
        from->DeleteParam(name);
    };
    set.SetParametreValue("A", 2);
    EXPECT_EQ(set.Count(false), 0);
}

TEST_F(TParametresTest, TypedGettersCreateAMissingNameWithTheDefault) {
    EXPECT_EQ(set.AsInteger("I", 5), 5);
    EXPECT_EQ(set.GetParametreValue("I").AsInteger(), 5);
    EXPECT_EQ(set.AsString("S", "x"), "x");
    EXPECT_EQ(set.AsDouble("D", 1.5), 1.5);
    EXPECT_TRUE(set.AsBoolean("B", true));
    EXPECT_EQ(set.AsCurrency("C", Currency(2.25)).Val, 22500);
    EXPECT_EQ(set.AsDateTime("T", TDateTime{36526.5}).Val, 36526.5);
    EXPECT_EQ(Names(set), "I S D B C T ");
    EXPECT_EQ(set.GetParamsProps(3).Value.Type(), varBoolean);
    EXPECT_EQ(set.GetParamsProps(4).Value.Type(), varCurrency);
    EXPECT_EQ(set.GetParamsProps(5).Value.Type(), varDate);
}

TEST_F(TParametresTest, TypedGettersConvertWhatTheGetHandlersAnswer) {
    set.AddParam("A", 1);
    set.OnGetValorPRM = [](TParametres*, const AnsiString&, Variant& value) { value = Variant("42"); };
    EXPECT_EQ(set.AsInteger("A", 0), 42);
    EXPECT_EQ(set.AsDouble("A", 0), 42);
    EXPECT_EQ(set.AsString("A", ""), "42");
}

TEST_F(TParametresTest, TextThatIsNoNumberIsAConversionError) {
    set.AddParam("A", "abc");
    EXPECT_THROW(set.AsInteger("A", 0), EVariantError);
    EXPECT_THROW(set.AsDouble("A", 0), EConvertError);
    EXPECT_THROW(set.AsCurrency("A", Currency()), EConvertError);
    EXPECT_THROW(set.AsBoolean("A", false), EVariantError);
}

TEST_F(TParametresTest, AnEmptyTextReadAsANumberIsAQuietAbort) {
    set.AddParam("A", "");
    EXPECT_THROW(set.AsDouble("A", 1), EAbort);
    EXPECT_THROW(set.AsCurrency("A", Currency()), EAbort);
    set.SetParametreValue("A", Variant::Null());
    EXPECT_THROW(set.AsDouble("A", 1), EAbort);
}

TEST_F(TParametresTest, NumbersOfEveryTypeAreReadAsDoubles) {
    set.AddParam("A", Variant(int16_t{3}));
    EXPECT_EQ(set.AsDouble("A", 0), 3);
    set.SetParametreValue("A", 2.5f);
    EXPECT_EQ(set.AsDouble("A", 0), 2.5);
    set.SetParametreValue("A", Currency(1.25));
    EXPECT_EQ(set.AsDouble("A", 0), 1.25);
    set.SetParametreValue("A", "7.5");
    EXPECT_EQ(set.AsCurrency("A", Currency()).Val, 75000);
}

TEST_F(TParametresTest, TextsOfEveryType) {
    set.AddParam("A", Variant::Null());
    EXPECT_EQ(set.AsString("A", "x"), "");
    set.SetParametreValue("A", -12);
    EXPECT_EQ(set.AsString("A", "x"), "-12");
    set.SetParametreValue("A", 0.1);
    EXPECT_EQ(set.AsString("A", "x"), "0.1");
    set.SetParametreValue("A", true);
    EXPECT_EQ(set.AsString("A", "x"), "True");
    set.SetParametreValue("A", TDateTime{36526.5});
    EXPECT_EQ(set.AsString("A", "x"), DateTimeToStr(TDateTime{36526.5}));
    set.SetParametreValue("A", Variant());
    EXPECT_EQ(set.AsString("A", "x"), "");
}

TEST_F(TParametresTest, CopyValuesMergesAndReadsThroughTheSourcesEvents) {
    TParametres source(nullptr);
    source.AddParam("A", 1);
    source.AddParam("A", 2);
    source.SetWritable("A", true);
    source.OnGetValorPRM = [](TParametres*, const AnsiString&, Variant& value) { value = Variant(99); };
    set.AddParam("B", 3);
    AnsiString log;
    set.OnSetValorPRM = [&](TParametres*, const AnsiString& name, const Variant& value) {
        log += name + VarToStr(value);
    };
    set.CopyValues(source);
    EXPECT_EQ(Names(set), "B A ");
    EXPECT_EQ(set.GetParamsProps(1).Value.AsInteger(), 99);
    EXPECT_EQ(set.GetLastValue("A").AsInteger(), 1);
    EXPECT_TRUE(set.GetWritable("A"));
    EXPECT_EQ(log, "A99");
}

TEST_F(TParametresTest, AssignTakesHandlersFlagsAndValues) {
    TParametres source(nullptr);
    source.AddParam("A", 1);
    source.CreaAutomaticParams = false;
    source.SaveParametres = true;
    source.OnSavePRM = [](TParametres*, const AnsiString&, const Variant&, bool&) {};
    set.Assign(&source);
    EXPECT_FALSE(set.CreaAutomaticParams);
    EXPECT_TRUE(set.SaveParametres);
    EXPECT_TRUE(static_cast<bool>(set.OnSavePRM));
    EXPECT_EQ(set.GetParametreValue("A").AsInteger(), 1);
}

TEST_F(TParametresTest, AssignRefusesOtherClasses) {
    TComponent other(nullptr);
    EXPECT_EQ(MessageOf([&] { set.Assign(&other); }).substr(0, 14), "EConvertError:");
}

TEST_F(TParametresTest, TextsWithoutAWholePlaceholderStayAsTheyAre) {
    for (const char* text : {"", "plain", "\xA1",
                             "a\xA1"
                             "b"})
        EXPECT_EQ(set.FormatText(text), text);
}

TEST_F(TParametresTest, PlaceholdersComeFromTheGlobalSet) {
    set.AddParam("A", "mine");
    Parametres()->AddParam("A", "global");
    Parametres()->AddParam("N", Variant::Null());
    EXPECT_EQ(set.FormatText("x\xA1"
                             "a\xA1y\xA1N\xA1z"),
              "xglobalyz");
}

TEST_F(TParametresTest, ValuesWithPlaceholdersAreExpandedInTurn) {
    Parametres()->AddParam("A",
                           "[\xA1"
                           "B\xA1]");
    Parametres()->AddParam("B", 2);
    EXPECT_EQ(set.FormatText("\xA1"
                             "A\xA1\xA1"
                             "B\xA1"),
              "[2]2");
}

TEST_F(TParametresTest, AValueThatCannotBeReadIsNothing) {
    Parametres()->AddParam("A", 1);
    Parametres()->OnGetValorPRM = [](TParametres*, const AnsiString&, Variant&) { throw Exception("no"); };
    EXPECT_EQ(set.FormatText("<\xA1"
                             "A\xA1>"),
              "<>");
}

TEST_F(TParametresTest, APlaceholderWithoutParameterEndsWithStackOverflowThatCanBeCaught) {
    EXPECT_THROW(set.FormatText("\xA1unknown\xA1"), EStackOverflow);
    EXPECT_EQ(set.FormatText("still here"), "still here");
    EXPECT_FALSE(Parametres()->ParamExists("unknown"));
}

TEST_F(TParametresTest, TheGlobalSetIsMadeOnceAndGoes) {
    TParametres* global = Parametres();
    InitializeParametres();
    EXPECT_EQ(Parametres(), global);
    EXPECT_EQ(global->Owner(), nullptr);
    FinalizeParametres();
    EXPECT_EQ(Parametres(), nullptr);
}

TEST_F(TParametresTest, ManyParametersStayQuickAndInOrder) {
    constexpr int kCount = 20000;
    for (int i = 0; i < kCount; ++i) set.AddParam("P" + IntToStr(i), i);
    EXPECT_EQ(set.FindParam("p19999"), kCount - 1);
    EXPECT_EQ(set.GetParamsProps(12345).Name, "P12345");
}
