#include "programs/host/rule_procedures.h"

#include "platform/data/data_set.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace rule_procedures_detail {

// Those of a class on the caller's form, in the form's order.
template <class T>
std::vector<T*> OfForm(TObject* caller) {
    std::vector<T*> found;
    auto* component = ObjectCast<TComponent>(caller);
    const TComponent* form = component ? component->Owner() : nullptr;
    for (int i = 0; form && i < form->ComponentCount(); ++i)
        if (auto* each = ObjectCast<T>(form->Components(i))) found.push_back(each);
    return found;
}

void PostRecords(TObject* caller) {
    for (TDataSet* dataSet : OfForm<TDataSet>(caller))
        if (dataSet->State() == dsEdit || dataSet->State() == dsInsert) dataSet->Post();
}

void RefreshQueries(TObject* caller) {
    // Masters refresh the queries below them.
    for (TQuerySQL* query : OfForm<TQuerySQL>(caller))
        if (!query->QrySQLMaster()) query->RefrescaSQL();
}

}  // namespace rule_procedures_detail

void RegisterRuleProcedures(TProcedureVyn& procedures) {
    using namespace rule_procedures_detail;
    procedures.RegisterProcedure("Desa_registres", "Posts what is being edited on the form.", &PostRecords);
    procedures.RegisterProcedure("Actualitza_consultes", "Refreshes the queries of the form.", &RefreshQueries);
}

}  // namespace vyn
