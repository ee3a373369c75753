#include "programs/host/query_form.h"

#include <algorithm>

#include "datasources/Uvyndatasources.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/controls/status_bars.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "programs/host/entry_buttons.h"
#include "query/Uquerysql.h"

namespace vyn {

const ClassInfo& TFRMSQLGeneric::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMSQLGeneric, TCustomFRM>("TFRMSQLGeneric")
                                      .Method("FontDataChange", &TFRMSQLGeneric::FontDataChange)
                                      .Method("ActualitzarClick", &TFRMSQLGeneric::ActualitzarClick);
    return info;
}

TFRMSQLGeneric::~TFRMSQLGeneric() {
    BeginDestruction();
    DestroyComponents();
}

TCustomADODataSet* TFRMSQLGeneric::Query() const { return ObjectCast<TCustomADODataSet>(FindComponent("Consulta")); }

bool TFRMSQLGeneric::NodeLoaded() {
    if (VynApp() && IDNode() > 0) {
        const TNodeArbre node = VynApp()->Tree().GetIDNode(IDNode());
        SetCaption(node.Name);
        if (auto* title = ObjectCast<TLabel>(FindComponent("Titol"))) title->SetCaption(PlainCaption(node.Name));
    }
    ShowQueries();
    return true;
}

std::vector<TQuerySQL*> TFRMSQLGeneric::Queries() const {
    std::vector<TQuerySQL*> queries;
    for (int i = 0; i < ComponentCount(); ++i)
        if (auto* query = ObjectCast<TQuerySQL>(Components(i))) queries.push_back(query);
    return queries;
}

void TFRMSQLGeneric::OpenQueries() {
    for (TQuerySQL* query : Queries()) {
        const bool open = query->QryDataSet() && query->QryDataSet()->Active();
        // Those that are open keep their place, and masters refresh the queries below them.
        if (!open)
            query->CreaSQL();
        else if (!query->QrySQLMaster())
            query->RefrescaSQL();
    }
    OpenConsulta();
}

void TFRMSQLGeneric::ShowQueries() {
    try {
        OpenQueries();
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        ShowStatus(error.Message());
    }
}

// The dataset with a statement of its own.
void TFRMSQLGeneric::OpenConsulta() {
    TCustomADODataSet* query = Query();
    if (!query || query->Active()) return;
    const auto* statement = ObjectCast<TADOQuery>(query);
    if (statement && Trim(statement->SQL()->Text()).empty()) return;
    query->Open();
}

void TFRMSQLGeneric::ActualitzarClick(TObject*) {
    TCustomADODataSet* consulta = Query();
    if (!consulta) return;
    const auto queries = Queries();
    const bool located = std::any_of(queries.begin(), queries.end(), [&](const TQuerySQL* query) {
        return query->QryDataSet() == consulta && query->LocateOnRefresh;
    });
    const int64_t record = consulta->Active() ? consulta->CurrentRecord() : 0;
    // What the form's controls look up may have changed as well.
    for (int i = 0; i < ComponentCount(); ++i)
        if (auto* source = ObjectCast<TVynDataSource>(Components(i))) source->AutoRefresh();
    // With a statement of its own it is read again, unless that would take away what is typed.
    const bool composed = std::any_of(queries.begin(), queries.end(),
                                      [&](const TQuerySQL* query) { return query->QryDataSet() == consulta; });
    if (!composed && !consulta->IsEditing()) consulta->Close();
    ShowQueries();
    if (!located && consulta->Active()) consulta->SetCurrentRecord(record);
}

void TFRMSQLGeneric::FontDataChange(TObject*, TField*) {
    const TCustomADODataSet* query = Query();
    if (!query || !query->Active()) {
        ShowStatus({});
        return;
    }
    // Of a large table the engine's own estimate.
    const AnsiString count = query->AllFetched() ? IntToStr(query->RecordsFetched())
                             : query->IsPaged()  ? "~" + IntToStr(query->RecordsExpected())
                                                 : IntToStr(query->RecordsFetched()) + "+";
    ShowStatus("Registre " + IntToStr(query->RecNo()) + " de " + count);
}

void TFRMSQLGeneric::ShowStatus(const AnsiString& text) {
    if (auto* bar = ObjectCast<TStatusBar>(FindComponent("Estat"))) bar->SetSimpleText(text);
}

void TFRMSQLGeneric::CleanStored(TRecursosObjecte& resources) {
    TCustomFRM::CleanStored(resources);
    // What the node and its records say is found again each time.
    const auto forget = [&](TRecursosObjecte* object, const char* property) {
        if (object)
            std::erase_if(object->Propietats,
                          [&](const TPropietatObjecte& each) { return SameText(each.Name, property); });
    };
    forget(&resources, "Caption");
    forget(ExisteixObjecte(&resources, "Titol", TotElArbre), "Caption");
    forget(ExisteixObjecte(&resources, "Estat", TotElArbre), "SimpleText");
    for (const char* dataSet : {"Consulta", "ConsultaDetall"})
        forget(ExisteixObjecte(&resources, dataSet, TotElArbre), "Active");
}

}  // namespace vyn
