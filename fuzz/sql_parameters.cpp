// Parameter functions in SQL text: lines come back as many, without a mark but those of values, whatever the text.

#include <algorithm>

#include "query/Uquerysql.h"
#include "support/fuzz.h"

namespace {

// The parameters, the database and the query of every run.
class World {
  public:
    World() {
        vyn::InitializeParametres();
        database_ = std::make_unique<vyn::TDataBaseVyn>(nullptr);
        query_ = std::make_unique<vyn::TQuerySQL>(nullptr);
        query_->Disable();
        vyn::Parametres()->AddParam("A", "it's");
        vyn::Parametres()->AddParam("N", 7);
        vyn::Parametres()->AddParam("D", vyn::TDateTime(36959.5));
        vyn::Parametres()->AddParam("U", vyn::Variant::Null());
    }
    vyn::TQuerySQL& Query() { return *query_; }

  private:
    std::unique_ptr<vyn::TDataBaseVyn> database_;
    std::unique_ptr<vyn::TQuerySQL> query_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static World world;
    vyn::TQuerySQL& query = world.Query();
    vyn::TStringList lines;
    lines.SetText(vyn::AnsiString(fuzzing::Bytes(data, size)));
    const int count = lines.Count();
    query.ClearSQLPRM();
    // Another query's clauses and values hold no mark here, so none is left.
    if (fuzzing::Succeeds([&] { query.AplicaParametresSQL(&lines); })) {
        fuzzing::Require(lines.Count() == count, "as many lines come back");
        for (int i = 0; i < count; ++i)
            fuzzing::Require(lines.At(i).find(vyn::CT_ParametreMark) == vyn::AnsiString::npos, "no mark is left");
    }
    // The same text as a condition of a whole statement, and its times after that.
    query.WhereSQL = vyn::AnsiString(fuzzing::Bytes(data, size));
    if (!fuzzing::Succeeds([&] { query.GenerateSql(&lines); })) return 0;
    fuzzing::Require(lines.Count() == 6, "a statement has six lines");
    vyn::AnsiString once = lines.Text();
    query.GetDataBaseVyn()->CorrectParamCheckOnDateTime(nullptr, once);
    vyn::AnsiString twice = once;
    query.GetDataBaseVyn()->CorrectParamCheckOnDateTime(nullptr, twice);
    fuzzing::Require(once.size() >= lines.Text().size() - 1, "nothing is taken away");
    return 0;
}
