// The six lines, to the letter.

#include "query_fixtures.h"

using namespace vyn;
using namespace query_fixtures;

class Composition : public QueryTest {};

TEST_F(Composition, AFieldNamedAsItsExpressionHasNoAlias) {
    Fields({{"NAME", "NAME"}, {"TOT", "SUM(X)"}});
    EXPECT_EQ(query->RetornaCampDeSQL(cSelect), "SELECT NAME, SUM(X) AS TOT");
    EXPECT_EQ(query->CreaCampSelectdelSQL(), "NAME, SUM(X) AS TOT");
}

TEST_F(Composition, NamesAndExpressionsAreComparedTrimmedAndWrittenAsTheyAre) {
    Fields({{" NAME", "NAME "}, {" Tot ", " tot "}});
    EXPECT_EQ(query->CreaCampSelectdelSQL(), "NAME ,  tot  AS  Tot ");
}

TEST_F(Composition, AFieldWithoutNameOrExpressionIsLeftOut) {
    Fields({{" ", "A"}, {"B", "\t"}, {"C", "C"}});
    EXPECT_EQ(query->CreaCampSelectdelSQL(), "C");
}

TEST_F(Composition, TheHandlerLeavesFieldsOutAndAddsThemBack) {
    Fields({{"", "COUNT(*)"}, {"B", "B"}, {"C", "C"}});
    AnsiString asked;
    query->OnAddFieldsToSQL = [&](TQuerySQL* Sender, int Index, bool& Add) {
        EXPECT_EQ(Sender, query.get());
        asked += std::to_string(Index) + (Add ? "+" : "-");
        Add = Index != 1;
    };
    EXPECT_EQ(query->CreaCampSelectdelSQL(), "COUNT(*) AS , C");
    EXPECT_EQ(asked, "0-1+2+");
}

TEST_F(Composition, AHandlerThatRemovesFieldsEndsTheList) {
    Fields({{"A", "A"}, {"B", "B"}});
    query->OnAddFieldsToSQL = [&](TQuerySQL*, int, bool&) { query->Clear(); };
    EXPECT_EQ(query->CreaCampSelectdelSQL(), "");
}

TEST_F(Composition, TheRowLimitIsFollowedByAComma) {
    Fields({{"A", "A"}, {"B", "B"}});
    query->TopSQL = 5;
    EXPECT_EQ(query->RetornaCampDeSQL(cSelect), "SELECT TOP 5, A, B");
    query->TopSQL = -1;
    EXPECT_EQ(query->RetornaCampDeSQL(cSelect), "SELECT A, B");
}

TEST_F(Composition, TheRowLimitAloneEndsInABlank) {
    query->TopSQL = 5;
    EXPECT_EQ(query->RetornaCampDeSQL(cSelect), "SELECT TOP 5, ");
}

TEST_F(Composition, WithoutFieldsThereIsNoSelect) { EXPECT_EQ(query->RetornaCampDeSQL(cSelect), ""); }

TEST_F(Composition, EveryClauseIsALineEmptyOnesToo) {
    EXPECT_EQ(Lines(), "||||||");
    query->FromSQL = "T";
    EXPECT_EQ(Lines(), "|FROM T|||||");
}

TEST_F(Composition, TheLinesStandInTheirOrder) {
    Fields({{"A", "A"}});
    query->FromSQL = "T";
    query->WhereSQL = "W";
    query->GroupBySQL = "G";
    query->HavingSQL = "H";
    query->OrderBySQL = "O";
    query->ConsultaDeTotals = true;
    EXPECT_EQ(Lines(), "SELECT A|FROM T|WHERE W|GROUP BY G|HAVING H|ORDER BY O|");
    TStringList lines{"old", "lines"};
    query->GenerateSql(&lines);
    EXPECT_EQ(lines.Count(), 6);
}

TEST_F(Composition, TextsAreWrittenUntrimmedAndBlankOnesAreNone) {
    query->FromSQL = " T ";
    query->OrderBySQL = "  ";
    query->ConsultaDeTotals = true;
    query->GroupBySQL = "\t";
    EXPECT_EQ(Lines(), "|FROM  T |||||");
}

TEST_F(Composition, OnlyATotalsQueryGroups) {
    query->GroupBySQL = "G";
    query->HavingSQL = "H";
    query->SetCampHavingFiltre("F");
    EXPECT_EQ(Lines(), "||||||");
    query->ConsultaDeTotals = true;
    EXPECT_EQ(Lines(), "|||GROUP BY G|HAVING H AND (F)||");
}

TEST_F(Composition, FurtherConditionsStandInParentheses) {
    query->WhereSQL = "A";
    query->SetCampWhereDataSource("X");
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE A AND (X)");
    query->SetCampWhereFiltre("Y OR Z");
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE A AND (X) AND (Y OR Z)");
    query->SetCampWhereDataSource("  ");
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE A AND (Y OR Z)");
}

TEST_F(Composition, TwoBlanksStandBeforeALoneFurtherCondition) {
    query->SetCampWhereDataSource("X");
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE  (X)");
    query->SetCampWhereFiltre("Y");
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE  (X) AND (Y)");
    query->ConsultaDeTotals = true;
    query->SetCampHavingDataSource("H");
    EXPECT_EQ(query->RetornaCampDeSQL(cHaving), "HAVING  (H)");
}

TEST_F(Composition, ABlankFixedConditionIsACondition) {
    query->WhereSQL = " ";
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE  ");
    query->SetCampWhereFiltre("Y");
    EXPECT_EQ(query->RetornaCampDeSQL(cWhere), "WHERE   AND (Y)");
}

TEST_F(Composition, ActiveFiltersNeverReachTheStatement) {
    query->WhereSQL = "A";
    query->ConsultaDeTotals = true;
    TFiltreAplicat filter;
    filter.FiltreActiu = true;
    filter.FiltreText = "B";
    query->Filtres().Add(filter);
    filter.IDFiltre = 1;
    filter.FiltreTipus = tfHaving;
    query->Filtres().Add(filter);
    filter.IDFiltre = 2;
    query->Filtres().Add(filter);
    for (const TConcatFiltresType type : {Concat_AND, Concat_OR}) {
        query->Filtres().ConcatFiltres = type;
        EXPECT_EQ(query->Filtres().GetFiltres(tfWhere), "");
        EXPECT_EQ(query->Filtres().GetFiltres(tfHaving), "");
        EXPECT_EQ(Lines(), "||WHERE A||||");
    }
}

class Ordering : public QueryTest {
  protected:
    void SetUp() override {
        QueryTest::SetUp();
        Fields({{"A", "A"}, {"B", "B"}});
        TFieldsSQLRec field = query->GetFieldSQL(1);
        field.FieldOrder = "X";
        query->SetFieldSQL(1, field);
        query->OrderBySQL = "O";
    }
    AnsiString Order() { return query->RetornaCampDeSQL(cOrderBy); }
};

TEST_F(Ordering, GoesByTheChosenFieldAlone) {
    query->CampOrdreSQL = "b";
    EXPECT_EQ(Order(), "ORDER BY X");
    query->OrdenatInversa = true;
    EXPECT_EQ(Order(), "ORDER BY X DESC");
}

TEST_F(Ordering, FallsBackToTheFixedText) {
    EXPECT_EQ(Order(), "ORDER BY O");
    query->CampOrdreSQL = "NOPE";
    query->OrdenatInversa = true;
    EXPECT_EQ(Order(), "ORDER BY O");
    query->OrderBySQL = " ";
    EXPECT_EQ(Order(), "");
}

TEST_F(Ordering, AFieldWithoutAnOrderFallsBackUnlessItIsReversed) {
    query->CampOrdreSQL = "A";
    EXPECT_EQ(Order(), "ORDER BY O");
    query->OrdenatInversa = true;
    EXPECT_EQ(Order(), "ORDER BY  DESC");
}

class Masters : public QueryTest {
  protected:
    void SetUp() override {
        QueryTest::SetUp();
        master = std::make_unique<TQuerySQL>(nullptr);
        master->FromSQL = "MASTER";
        master->WhereSQL = "MW";
        master->GroupBySQL = "MG";
        query->FromSQL = "OWN";
        query->WhereSQL = "OW";
        query->GroupBySQL = "OG";
    }
    void TearDown() override {
        master.reset();
        QueryTest::TearDown();
    }
    std::unique_ptr<TQuerySQL> master;
};

TEST_F(Masters, GiveTheClausesThatAQueryLacks) {
    query->SetQrySQL(master.get());
    query->SetOpcionsSQL({cSelect, cWhere});
    EXPECT_EQ(Lines(), "|FROM MASTER|WHERE OW||||");
    master->SetOpcionsSQL({});
    EXPECT_EQ(Lines(), "||WHERE OW||||");
}

TEST_F(Masters, WithoutOneAMissingClauseIsEmpty) {
    query->SetOpcionsSQL({cSelect, cFrom});
    EXPECT_EQ(Lines(), "|FROM OWN|||||");
}

TEST_F(Masters, GroupsAreTakenByTotalsQueriesFromTotalsQueries) {
    query->SetQrySQL(master.get());
    query->SetOpcionsSQL({cFrom});
    EXPECT_EQ(query->RetornaCampDeSQL(cGroup), "");
    query->ConsultaDeTotals = true;
    EXPECT_EQ(query->RetornaCampDeSQL(cGroup), "");
    master->ConsultaDeTotals = true;
    EXPECT_EQ(query->RetornaCampDeSQL(cGroup), "GROUP BY MG");
    query->ConsultaDeTotals = false;
    EXPECT_EQ(query->RetornaCampDeSQL(cGroup), "");
}

TEST_F(Masters, KnowTheirChildrenInOrder) {
    TQuerySQL other(nullptr);
    query->SetQrySQL(master.get());
    other.SetQrySQL(master.get());
    query->SetQrySQL(master.get());
    EXPECT_EQ(master->Fills(), (std::vector<TQuerySQL*>{query.get(), &other}));
    master->RegistraTQueryFill(&other);
    EXPECT_EQ(master->Fills().size(), 2u);
    query->SetQrySQL(nullptr);
    EXPECT_EQ(master->Fills(), std::vector<TQuerySQL*>{&other});
    EXPECT_EQ(query->QrySQLMaster(), nullptr);
}

TEST_F(Masters, ACircleIsRefusedAndLeavesNoMaster) {
    TQuerySQL first(nullptr), deep(nullptr);
    query->SetQrySQL(master.get());
    deep.SetQrySQL(query.get());
    master->SetQrySQL(&first);
    EXPECT_EQ(MessageOf([&] { master->SetQrySQL(&deep); }), "Exception: Circular TQuerySQL not allowed");
    EXPECT_EQ(master->QrySQLMaster(), nullptr);
    EXPECT_TRUE(first.Fills().empty());
    EXPECT_EQ(MessageOf([&] { query->SetQrySQL(query.get()); }), "Exception: Circular TQuerySQL not allowed");
    EXPECT_TRUE(master->TensAquestFill(query.get()) == false && query->TensAquestFill(&deep));
    EXPECT_FALSE(query->TensAquestFill(nullptr));
}

TEST_F(Masters, QueriesThatGoLetGoOfEachOther) {
    auto child = std::make_unique<TQuerySQL>(nullptr);
    query->SetQrySQL(master.get());
    child->SetQrySQL(query.get());
    child.reset();
    EXPECT_TRUE(query->Fills().empty());
    master.reset();
    EXPECT_EQ(query->QrySQLMaster(), nullptr);
}

class QueryFields : public QueryTest {};

TEST_F(QueryFields, AreListedInOrder) {
    Fields({{"A", "1"}, {"B", "2"}, {"b", "3"}});
    EXPECT_EQ(query->Count(), 3);
    EXPECT_EQ(query->PosicioFieldName("b"), 1);
    EXPECT_EQ(query->PosicioFieldName("C"), -1);
    EXPECT_EQ(query->GetFieldSQL(2).FieldSQL, "3");
    EXPECT_EQ(query->GetFieldSQL(3), TFieldsSQLRec_NUL());
    EXPECT_EQ(query->GetFieldSQL(-1), TFieldsSQLRec_NUL());
    query->Elimina(0);
    EXPECT_EQ(query->GetFieldSQL(0).FieldName, "B");
    EXPECT_EQ(MessageOf([&] { query->Elimina(2); }), "EListError: List index out of bounds (2)");
}

TEST_F(QueryFields, AnIndexOutOfRangeIsTheQuerysError) {
    EXPECT_EQ(MessageOf([&] { query->SetFieldSQL(0, {}); }),
              "EQuerySQL: TQuerySQL ERROR - Q\nIndex Out of Range in TQuery");
    EXPECT_EQ(MessageOf([&] { query->SetFieldSQL(-1, {}); }),
              "EQuerySQL: TQuerySQL ERROR - Q\nIndex Out of Range in TQuery");
}

TEST_F(QueryFields, AreClearedWithTheTexts) {
    Fields({{"A", "A"}});
    for (AnsiString* text : {&query->FromSQL, &query->GroupBySQL, &query->WhereSQL, &query->HavingSQL,
                             &query->OrderBySQL, &query->CampMestreSQL, &query->CampOrdreSQL})
        *text = "x";
    query->SetCampWhereFiltre("F");
    query->Clear();
    EXPECT_EQ(query->Count(), 0);
    EXPECT_EQ(Lines(), "||WHERE  (F)||||");
    EXPECT_EQ(query->CampMestreSQL, "");
    EXPECT_EQ(query->CampOrdreSQL, "x");
}

class TimeQuery : public TQuerySQL {
  public:
    using TQuerySQL::TQuerySQL;
    void ArreglaProblemaHora(TStrings* SQL) override { SQL->Put(1, SQL->Get(1) + " corrected"); }
};

TEST_F(Composition, TimesAreCorrectedOnRequest) {
    TimeQuery times(nullptr);
    times.FromSQL = "T";
    EXPECT_EQ(Lines(times), "|FROM T|||||");
    times.DoArreglaProblemaHora = true;
    EXPECT_EQ(Lines(times), "|FROM T corrected|||||");
    query->FromSQL = "T";
    query->DoArreglaProblemaHora = true;
    EXPECT_EQ(Lines(), "|FROM T|||||");
}

class QueryFilters : public QueryTest {
  protected:
    static TFiltreAplicat Filter(int id, const AnsiString& text = "") {
        TFiltreAplicat filter = TFiltreAplicat_NUL();
        filter.IDFiltre = id;
        filter.FiltreText = text;
        return filter;
    }
};

TEST_F(QueryFilters, AreListedByIdentifier) {
    TFiltresList& filters = query->Filtres();
    filters.Add(Filter(7, "a"));
    filters.Add(Filter(9, "b"));
    EXPECT_EQ(filters.Count(), 2);
    EXPECT_EQ(filters.FindFiltre(9), 1);
    EXPECT_EQ(filters.FindFiltre(8), -1);
    EXPECT_EQ(filters.GetFiltre(0), Filter(7, "a"));
    filters.SetFiltre(0, Filter(8, "c"));
    EXPECT_EQ(filters.GetFiltre(0).FiltreText, "c");
    filters.Delete(0);
    EXPECT_EQ(filters.FindFiltre(9), 0);
    filters.Clear();
    EXPECT_EQ(filters.Count(), 0);
    EXPECT_EQ(MessageOf([&] { filters.GetFiltre(0); }), "EListError: List index out of bounds (0)");
    EXPECT_EQ(MessageOf([&] { filters.Delete(0); }), "EListError: List index out of bounds (0)");
    EXPECT_EQ(MessageOf([&] { filters.SetFiltre(0, {}); }), "EListError: List index out of bounds (0)");
}

TEST_F(QueryFilters, AnIdentifierStandsOnce) {
    TFiltresList& filters = query->Filtres();
    filters.Add(Filter(7));
    EXPECT_EQ(MessageOf([&] { filters.Add(Filter(7)); }), "Exception: Filtre: 7 is found");
    EXPECT_EQ(filters.Count(), 1);
    filters.Add(Filter(8));
    EXPECT_EQ(MessageOf([&] { filters.SetFiltre(1, Filter(7, "x")); }),
              "Exception: Filtre: 7\nFound in the list in other position than 1");
    filters.SetFiltre(1, Filter(8, "x"));
    EXPECT_EQ(filters.GetFiltre(1).FiltreText, "x");
}

TEST_F(QueryFilters, ANewListIsQuietAndJoinsByAnd) {
    EXPECT_FALSE(query->Filtres().RefreshOnChange);
    EXPECT_EQ(query->Filtres().ConcatFiltres, Concat_AND);
}
