// A statement composed from 40 fields, 3 conditions and 10 parameter functions, beside the same text appended word by
// word to a string; and the change of a global parameter on which 3 queries depend while 10, 100 or 1,000 are alive,
// beside refreshing those 3 by hand.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "query/Uquerysql.h"

namespace {

using namespace vyn;

// A dataset without rows: what is measured is the query's own work.
class NoRows : public TDataSet {
  public:
    using TDataSet::TDataSet;

  protected:
    std::vector<FieldDefinition> InternalOpen() override { return {}; }
    bool InternalFetch(RowStore&, int64_t) override { return false; }
    void InternalClose() override {}
};

class NoEngine : public TDataBaseVyn {
  public:
    NoEngine() : TDataBaseVyn(nullptr) {}
    TDataSet* DoGetTSQLDataSet(const AnsiString&, TComponent* owner, bool) override { return new NoRows(owner); }
    void SetSQLToDataSet(const AnsiString& SQL, TDataSet*) override { benchmark::DoNotOptimize(SQL.data()); }
    bool DataSetAllowParamCheck(TDataSet*) override { return true; }
};

// The global parameters and a database, as long as a benchmark runs.
class World {
  public:
    World() {
        InitializeParametres();
        database_ = std::make_unique<NoEngine>();
    }
    ~World() {
        queries_.clear();
        database_.reset();
        FinalizeParametres();
    }
    TQuerySQL& Add() { return *queries_.emplace_back(std::make_unique<TQuerySQL>(nullptr)); }

  private:
    std::unique_ptr<NoEngine> database_;
    std::vector<std::unique_ptr<TQuerySQL>> queries_;
};

const AnsiString kMark(1, CT_ParametreMark);

void FillStatement(TQuerySQL& query) {
    for (int i = 0; i < 40; ++i) {
        TFieldsSQLRec field;
        field.FieldName = "FIELD_" + std::to_string(i);
        field.FieldSQL = i % 2 ? field.FieldName : "T.COLUMN_" + std::to_string(i);
        query.Afegeix(field);
    }
    Parametres()->AddParam("Client", "O'Brien and Sons");
    Parametres()->AddParam("Any", 2026);
    Parametres()->AddParam("Import", 1234.5);
    const auto function = [](const char* text) { return kMark + text + kMark; };
    query.FromSQL = "INVOICES T INNER JOIN CLIENTS C ON C.ID = T.CLIENT";
    query.WhereSQL = "C.NAME = " + function("PRM$(Client,'')") + " AND T.YEAR = " + function("PRM%(Any,2000)") +
                     " AND T.TOTAL > " + function("PRM!(Import,0)") + " AND T.STATE = " + function("PRM$(State,'A')");
    query.SetCampWhereDataSource("T.YEAR >= " + function("PRM(Any,1)") + " AND T.YEAR < " + function("Any"));
    query.SetCampWhereFiltre("C.OTHER = " + function("Client") + " OR T.TOTAL < " + function("Import") +
                             " OR T.N = " + function("PRM#(Any,0)") + " OR T.M = " + function("PRM!(Missing,1.5)"));
    query.OrderBySQL = "C.NAME, T.YEAR";
}

void Compose(benchmark::State& state) {
    World world;
    TQuerySQL& query = world.Add();
    FillStatement(query);
    TStringList lines;
    for (auto _ : state) {
        query.GenerateSql(&lines);
        benchmark::DoNotOptimize(lines.Count());
    }
    state.SetItemsProcessed(state.iterations());
}

void ComposeAppend(benchmark::State& state) {
    std::vector<std::string> words;
    {
        World world;
        TQuerySQL& query = world.Add();
        FillStatement(query);
        TStringList lines;
        query.GenerateSql(&lines);
        const std::string text = lines.Text();
        for (size_t at = 0; at < text.size();) {
            const size_t end = std::min(text.find(' ', at), text.size() - 1) + 1;
            words.push_back(text.substr(at, end - at));
            at = end;
        }
    }
    for (auto _ : state) {
        std::string text;
        for (const std::string& word : words) text += word;
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations());
}

constexpr int kDependents = 3;

// So many open queries, of which the middle three depend on "Changed" and the others on parameters of their own.
std::vector<TQuerySQL*> OpenQueries(World& world, int64_t count) {
    std::vector<TQuerySQL*> dependents;
    for (int64_t i = 0; i < count; ++i) {
        TQuerySQL& query = world.Add();
        const bool depends = i >= count / 2 && i < count / 2 + kDependents;
        const AnsiString name = depends ? AnsiString("Changed") : "Own" + std::to_string(i);
        Parametres()->AddParam(name, 0);
        query.FromSQL = "T";
        query.WhereSQL = "A = " + kMark + name + kMark;
        query.CreaSQL();
        if (depends) dependents.push_back(&query);
    }
    return dependents;
}

void Change(benchmark::State& state) {
    World world;
    OpenQueries(world, state.range(0));
    int value = 0;
    for (auto _ : state) Parametres()->SetParametreValue("Changed", ++value);
    state.SetItemsProcessed(state.iterations());
}

void ChangeByHand(benchmark::State& state) {
    World world;
    const auto dependents = OpenQueries(world, state.range(0));
    for (auto _ : state)
        for (TQuerySQL* query : dependents) query->RefrescaSQL();
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(Compose)->Name("compose/ours");
BENCHMARK(ComposeAppend)->Name("compose/limit_append");
BENCHMARK(Change)->Name("parameter_change/ours")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(ChangeByHand)->Name("parameter_change/limit_three_refreshes")->Arg(10)->Arg(100)->Arg(1000);

}  // namespace
