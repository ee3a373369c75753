#pragma once

#include "database/Uvyndb.h"
#include "foundation/Uparametres.h"
#include "query/fields_select.h"
#include "query/filters_list.h"

namespace vyn {

// Told of a function in the SQL text that the query does not know; Texte is the function, to be replaced by its value.
using TParametreNoTrobat = Event<void(TQuerySQL* QuerySQL, AnsiString& Texte)>;
// Asked for a dataset when the query has none.
using TOnDataSetChange = Event<void(TQuerySQL* QrySQL, TDataSet*& NewDS)>;
// Whether the field of an index stands in the select list.
using TAddFieldToSQL = Event<void(TQuerySQL* Sender, int Index, bool& Add)>;

// Owns the SQL of one dataset: composes it from the parts that stand here, puts the values of the application's global
// parameters into it, hands it to the dataset through a database, opens it, and does so again when one of those
// parameters changes (docs/queries-parameters-rules.md).
//
// Errors are EQuerySQL, "TQuerySQL ERROR - ", the component's name, a line feed and the message; what datasets,
// databases and conversions raise passes unchanged. Datasets, databases and master queries are not owned (a dataset
// that the query asks of its database belongs to the query). Main thread only.
class TQuerySQL : public TComponent {
    VYN_OBJECT
  public:
    explicit TQuerySQL(TComponent* owner);
    ~TQuerySQL() override;
    // Corrects times in composed SQL for an engine, when DoArreglaProblemaHora is set; here it does nothing.
    virtual void ArreglaProblemaHora(TStrings* SQL);

    // Composing.
    // Replaces the lines by one for each clause, empty ones too: select, from, where, group by, having, order by.
    void GenerateSql(TStrings* SQL);
    // Replaces the lines by the whole statement, wherever it comes from; no lines for a table.
    void GenerateStatement(TStrings* SQL);
    AnsiString RetornaCampDeSQL(TCampsDeUnSQL clause);
    // The select list.
    AnsiString CreaCampSelectdelSQL();
    // Replaces the parameter functions in the lines; one that is not closed is dropped with what follows.
    void AplicaParametresSQL(TStrings* SQL);
    // The value of one function, the text between two marks.
    AnsiString ExecutaFuncio(const AnsiString& text);
    // Replaces each parameter name between two marks by its value, and the marks in values too; without end for a
    // value that holds its own name, until EStackOverflow.
    AnsiString AnalitzaFrase(const AnsiString& text);

    // Opening.
    // Composes the statement anew and opens the dataset with it. Child queries are refreshed when it is open.
    void CreaSQL();
    // Does so when the dataset is open. With LocateOnRefresh the current record is found again by CampMestreSQL.
    void RefrescaSQL();
    // Does CreaSQL when CreaSQLAutomatic is set and there is a dataset.
    void InternalRefresh();
    // Between the two, changes of parameters are gathered into one refresh. Calls nest.
    void Disable() { ++disableCount_; }
    void Enable();
    bool RefreshPending() const { return refreshPending_; }
    // Gives the open dataset's fields the formats of the field records.
    void PutFieldsFormats();

    // The global parameters that the statement depends on: the names that functions read. AnalitzaFrase adds the
    // values that it puts in, not their names; stored formats count on that.
    void AddSQLPRM(const AnsiString& name);
    void ClearSQLPRM();
    bool ExisteixSQLPRM(const AnsiString& name) const { return dependencies_.IndexOf(name) >= 0; }
    const TStringList& SQLPRM() const { return dependencies_; }
    // A global parameter has a new value.
    void NotificaCanviParametres(TParametres* params, const AnsiString& name, const Variant& value);

    // Fields.
    void Afegeix(const TFieldsSQLRec& field) { fields_.Afegeix(field); }
    void Elimina(int index) { fields_.Elimina(index); }
    int Count() const { return fields_.Count(); }
    TFieldsSQLRec GetFieldSQL(int index) const { return fields_.GetFieldSQL(index); }
    void SetFieldSQL(int index, const TFieldsSQLRec& field) { fields_.SetFieldSQL(index, field); }
    int PosicioFieldName(const AnsiString& name) const { return fields_.PosicioFieldName(name); }
    // Removes the fields and the texts of the clauses, and CampMestreSQL.
    void Clear();
    TFieldsSelectSQL* FieldsSQL() const { return const_cast<TFieldsSelectSQL*>(&fields_); }
    void SetFieldsSQL(TFieldsSelectSQL* value) { fields_.Assign(value); }
    TFiltresList& Filtres() { return filters_; }

    // What the query stands on.
    // The assigned database, else the one that DataBaseVynName names (which raises when there is none).
    TDataBaseVyn* GetDataBaseVyn() const;
    // Another database lets go of the dataset.
    void SetDataBaseVyn(TDataBaseVyn* value);
    const AnsiString& DataBaseVynName() const { return databaseName_; }
    // Assigns the database of that name, or none while there is no such database.
    void SetDataBaseVynName(const AnsiString& value);
    TDataSet* QryDataSet() const { return dataSet_; }
    void SetQryDataSet(TDataSet* value);

    // Masters give the clauses that are not in OpcionsSQL; opening one refreshes its children.
    TQuerySQL* QrySQLMaster() const { return master_; }
    // Raises "Circular TQuerySQL not allowed" for this query and those below it, which leaves it without a master.
    void SetQrySQL(TQuerySQL* master);
    void RegistraTQueryFill(TQuerySQL* child);
    void UnRegistraTQueryFill(TQuerySQL* child);
    // Is the query a child, a child's child, and so on?
    bool TensAquestFill(const TQuerySQL* query) const;
    const std::vector<TQuerySQL*>& Fills() const { return children_; }

    TSetCampsDeUnSQL OpcionsSQL() const { return options_; }
    void SetOpcionsSQL(TSetCampsDeUnSQL value);

    // Conditions of the moment, never stored; each change asks for a refresh.
    const AnsiString& CampWhereDataSource() const { return whereDataSource_; }
    void SetCampWhereDataSource(const AnsiString& value);
    const AnsiString& CampHavingDataSource() const { return havingDataSource_; }
    void SetCampHavingDataSource(const AnsiString& value);
    const AnsiString& CampWhereFiltre() const { return whereFilter_; }
    void SetCampWhereFiltre(const AnsiString& value);
    const AnsiString& CampHavingFiltre() const { return havingFilter_; }
    void SetCampHavingFiltre(const AnsiString& value);

    bool CreaSQLAutomatic = false;  // never stored
    AnsiString CampMestreSQL;       // the key by which the current record is found again
    AnsiString GroupBySQL;
    AnsiString FromSQL;
    AnsiString WhereSQL;
    AnsiString HavingSQL;
    AnsiString OrderBySQL;
    AnsiString CampOrdreSQL;      // the field that the rows are ordered by
    bool OrdenatInversa = false;  // from its last value down; not published
    bool ConsultaDeTotals = false;
    TSqlType SqlType = sql_byFields;
    TDataSetType DataSetType = ds_Query;
    bool LocateOnRefresh = false;
    int TopSQL = 0;  // never stored
    bool DoArreglaProblemaHora = false;

    // For those who show errors; the query only stores them. The lists are filled through themselves.
    TErrorQuery ErrorEdit() const { return errorEdit_; }
    void SetErrorEdit(TErrorQuery value) { errorEdit_ = value; }
    TErrorQuery ErrorDelete() const { return errorDelete_; }
    void SetErrorDelete(TErrorQuery value) { errorDelete_ = value; }
    TErrorQuery ErrorPost() const { return errorPost_; }
    void SetErrorPost(TErrorQuery value) { errorPost_ = value; }
    TStrings* StringErrorEdit() const { return const_cast<TStringList*>(&stringErrorEdit_); }
    void SetStringErrorEdit(TStrings*) {}
    TStrings* StringErrorDelete() const { return const_cast<TStringList*>(&stringErrorDelete_); }
    void SetStringErrorDelete(TStrings*) {}
    TStrings* StringErrorPost() const { return const_cast<TStringList*>(&stringErrorPost_); }
    void SetStringErrorPost(TStrings*) {}

    TParametreNoTrobat OnFuncioNoConeguda;
    TOnDataSetChange OnNeedDataSet;
    TAddFieldToSQL OnAddFieldsToSQL;

    void Notification(TComponent* component, TOperation operation) override;
    [[noreturn]] void ErrorQuery(const AnsiString& message) const;

  private:
    void AppendSelectList(AnsiString& text);
    void AppendCondition(AnsiString& text, const char* word, const AnsiString& fixed, const AnsiString& dataSource,
                         const AnsiString& filter, TTipusFiltre kind) const;
    void AppendOrder(AnsiString& text) const;
    void AppendClause(AnsiString& text, TCampsDeUnSQL clause);
    AnsiString OtherFunction(const AnsiString& text, const AnsiString& function);
    AnsiString ClausesOf(const AnsiString& text);
    AnsiString ParameterFunction(const AnsiString& text, const AnsiString& function);
    AnsiString ParameterDefault(const AnsiString& text, size_t comma);
    void ExpandFrom(AnsiString& text, size_t from);
    void RequireDataSet();
    void PutStatement();
    void AfterDataSetOpen(TDataSet* dataSet, const TDataSetNotifyEvent& next);
    void Relocate(const Variant& wanted);

    TFieldsSelectSQL fields_{this};
    TFiltresList filters_{this};
    TParametresChild parameters_{nullptr};
    TStringList dependencies_;
    TDataBaseVyn* database_ = nullptr;
    AnsiString databaseName_;
    TDataSet* dataSet_ = nullptr;
    TQuerySQL* master_ = nullptr;
    std::vector<TQuerySQL*> children_;
    TSetCampsDeUnSQL options_;
    AnsiString whereDataSource_;
    AnsiString havingDataSource_;
    AnsiString whereFilter_;
    AnsiString havingFilter_;
    int disableCount_ = 0;
    bool refreshPending_ = false;
    TErrorQuery errorEdit_ = TErrorDefecte;
    TErrorQuery errorDelete_ = TErrorDefecte;
    TErrorQuery errorPost_ = TErrorDefecte;
    TStringList stringErrorEdit_;
    TStringList stringErrorDelete_;
    TStringList stringErrorPost_;
};

}  // namespace vyn
