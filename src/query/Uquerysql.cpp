#include "query/Uquerysql.h"

#include <algorithm>

#include "platform/text/compare.h"

namespace vyn {

namespace query_detail {

constexpr char kDefaultDatabase[] = "DBDades";
constexpr TSetCampsDeUnSQL kAllClauses{cSelect, cFrom, cWhere, cOrderBy, cGroup, cHaving};

}  // namespace query_detail

const ClassInfo& TQuerySQL::StaticClass() {
    using Q = TQuerySQL;
    static const ClassInfo info =
        DefineClass<Q, TComponent>("TQuerySQL")
            .Published("FieldsSQL", &Q::FieldsSQL, &Q::SetFieldsSQL)
            .Published("DataBaseVynName", &Q::DataBaseVynName, &Q::SetDataBaseVynName)
            .Published("CreaSQLAutomatic", &Q::CreaSQLAutomatic, &Q::CreaSQLAutomatic)
            .NeverStored()
            .Published("CampMestreSQL", &Q::CampMestreSQL, &Q::CampMestreSQL)
            .Published("GroupBySQL", &Q::GroupBySQL, &Q::GroupBySQL)
            .Published("FromSQL", &Q::FromSQL, &Q::FromSQL)
            .Published("WhereSQL", &Q::WhereSQL, &Q::WhereSQL)
            .Published("HavingSQL", &Q::HavingSQL, &Q::HavingSQL)
            .Published("OrderBySQL", &Q::OrderBySQL, &Q::OrderBySQL)
            .Published("CampOrdreSQL", &Q::CampOrdreSQL, &Q::CampOrdreSQL)
            .Published("ErrorEdit", &Q::ErrorEdit, &Q::SetErrorEdit)
            .Default(TErrorDefecte)
            .Published("ErrorDelete", &Q::ErrorDelete, &Q::SetErrorDelete)
            .Default(TErrorDefecte)
            .Published("ErrorPost", &Q::ErrorPost, &Q::SetErrorPost)
            .Default(TErrorDefecte)
            .Published("StringErrorEdit", &Q::StringErrorEdit, &Q::SetStringErrorEdit)
            .Published("StringErrorDelete", &Q::StringErrorDelete, &Q::SetStringErrorDelete)
            .Published("StringErrorPost", &Q::StringErrorPost, &Q::SetStringErrorPost)
            .Published("CampWhereDataSource", &Q::CampWhereDataSource, &Q::SetCampWhereDataSource)
            .NeverStored()
            .Published("CampHavingDataSource", &Q::CampHavingDataSource, &Q::SetCampHavingDataSource)
            .NeverStored()
            .Published("CampWhereFiltre", &Q::CampWhereFiltre, &Q::SetCampWhereFiltre)
            .NeverStored()
            .Published("CampHavingFiltre", &Q::CampHavingFiltre, &Q::SetCampHavingFiltre)
            .NeverStored()
            .Published("QrySQLMaster", &Q::QrySQLMaster, &Q::SetQrySQL)
            .Published("OpcionsSQL", &Q::OpcionsSQL, &Q::SetOpcionsSQL)
            .Default(query_detail::kAllClauses)
            .Event("OnFuncioNoConeguda", &Q::OnFuncioNoConeguda)
            .Published("ConsultaDeTotals", &Q::ConsultaDeTotals, &Q::ConsultaDeTotals)
            .Default(false)
            .Published("QryDataSet", &Q::QryDataSet, &Q::SetQryDataSet)
            .Published("SqlType", &Q::SqlType, &Q::SqlType)
            .Default(sql_byFields)
            .Published("DataSetType", &Q::DataSetType, &Q::DataSetType)
            .Default(ds_Query)
            .Event("OnNeedDataSet", &Q::OnNeedDataSet)
            .Published("LocateOnRefresh", &Q::LocateOnRefresh, &Q::LocateOnRefresh)
            .Default(false)
            .Published("TopSQL", &Q::TopSQL, &Q::TopSQL)
            .NeverStored()
            .Event("OnAddFieldsToSQL", &Q::OnAddFieldsToSQL)
            .Published("DoArreglaProblemaHora", &Q::DoArreglaProblemaHora, &Q::DoArreglaProblemaHora)
            .Default(false);
    return info;
}

TQuerySQL::TQuerySQL(TComponent* owner) : TComponent(owner), options_(query_detail::kAllClauses) {
    parameters_.FollowNamesOnly();
    parameters_.SetParams(Parametres());
    parameters_.OnSetValorPRM = [this](TParametres* PRM, const AnsiString& Parametre, const Variant& NewValue) {
        NotificaCanviParametres(PRM, Parametre, NewValue);
    };
    if (TDataBaseVyn* database = FindDatabaseVyn(query_detail::kDefaultDatabase)) SetDataBaseVyn(database);
}

TQuerySQL::~TQuerySQL() {
    BeginDestruction();
    fields_.Clear();
    parameters_.SetParams(nullptr);
    if (master_) master_->UnRegistraTQueryFill(this);
    for (TQuerySQL* child : children_) child->master_ = nullptr;
}

void TQuerySQL::ArreglaProblemaHora(TStrings*) {}

void TQuerySQL::ErrorQuery(const AnsiString& message) const {
    throw EQuerySQL("TQuerySQL ERROR - " + Name() + "\n" + message);
}

void TQuerySQL::Clear() {
    fields_.Clear();
    for (AnsiString* text : {&FromSQL, &GroupBySQL, &WhereSQL, &HavingSQL, &OrderBySQL, &CampMestreSQL}) text->clear();
}

TDataBaseVyn* TQuerySQL::GetDataBaseVyn() const { return database_ ? database_ : ::vyn::GetDataBaseVyn(databaseName_); }

void TQuerySQL::SetDataBaseVyn(TDataBaseVyn* value) {
    if (value == database_) return;
    SetQryDataSet(nullptr);
    database_ = value;
    DoArreglaProblemaHora = value && value->IsBDEBased;
    // The name of a database that went stays: one that comes back under it is found again.
    if (!value) return;
    databaseName_ = value->VynDBName();
    value->FreeNotification(this);
}

void TQuerySQL::SetDataBaseVynName(const AnsiString& value) {
    if (!database_ || !SameText(database_->VynDBName(), value)) SetDataBaseVyn(FindDatabaseVyn(value));
    databaseName_ = value;
}

void TQuerySQL::SetQryDataSet(TDataSet* value) {
    dataSet_ = value;
    if (value) value->FreeNotification(this);
}

void TQuerySQL::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == dataSet_) SetQryDataSet(nullptr);
    if (component == database_) SetDataBaseVyn(nullptr);
}

void TQuerySQL::SetQrySQL(TQuerySQL* master) {
    if (master == master_) return;
    if (master_) master_->UnRegistraTQueryFill(this);
    master_ = nullptr;
    if (!master) return;
    if (master == this || TensAquestFill(master)) throw Exception("Circular TQuerySQL not allowed");
    master_ = master;
    master->RegistraTQueryFill(this);
}

void TQuerySQL::RegistraTQueryFill(TQuerySQL* child) {
    if (std::find(children_.begin(), children_.end(), child) == children_.end()) children_.push_back(child);
}

void TQuerySQL::UnRegistraTQueryFill(TQuerySQL* child) { std::erase(children_, child); }

bool TQuerySQL::TensAquestFill(const TQuerySQL* query) const {
    // Upward from the query is the same as downward from here, and takes no search.
    for (const TQuerySQL* above = query ? query->master_ : nullptr; above; above = above->master_)
        if (above == this) return true;
    return false;
}

void TQuerySQL::SetOpcionsSQL(TSetCampsDeUnSQL value) {
    options_ = value;
    InternalRefresh();
}

void TQuerySQL::SetCampWhereDataSource(const AnsiString& value) {
    whereDataSource_ = value;
    InternalRefresh();
}

void TQuerySQL::SetCampHavingDataSource(const AnsiString& value) {
    havingDataSource_ = value;
    InternalRefresh();
}

void TQuerySQL::SetCampWhereFiltre(const AnsiString& value) {
    whereFilter_ = value;
    InternalRefresh();
}

void TQuerySQL::SetCampHavingFiltre(const AnsiString& value) {
    havingFilter_ = value;
    InternalRefresh();
}

}  // namespace vyn
