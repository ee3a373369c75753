// How a query's dataset is opened and opened again.

#include "database/sql_lines.h"
#include "foundation/stack_guard.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace refresh_detail {

// Keeps a dataset's showers quiet as long as it lives; the dataset may go meanwhile.
class QuietControls {
  public:
    QuietControls(const TQuerySQL& query, TDataSet& dataSet) : query_(query), dataSet_(dataSet) {
        dataSet_.DisableControls();
    }
    ~QuietControls() {
        if (query_.QryDataSet() == &dataSet_) dataSet_.EnableControls();
    }

  private:
    const TQuerySQL& query_;
    TDataSet& dataSet_;
};

// Puts a handler in the place of the dataset's own, which comes back at the end, whatever happens.
class OpenedBy {
  public:
    OpenedBy(const TQuerySQL& query, TDataSet& dataSet)
        : query_(query), dataSet_(dataSet), remembered_(dataSet.AfterOpen) {}
    ~OpenedBy() {
        if (query_.QryDataSet() == &dataSet_) dataSet_.AfterOpen = remembered_;
    }
    const TDataSetNotifyEvent& Remembered() const { return remembered_; }

  private:
    const TQuerySQL& query_;
    TDataSet& dataSet_;
    TDataSetNotifyEvent remembered_;
};

// May a field be given a format of numbers or of dates?
bool TakesDisplayFormat(TFieldType type) {
    switch (type) {
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftFloat:
        case ftCurrency:
        case ftBCD:
        case ftAutoInc:
        case ftLargeint:
        case ftDate:
        case ftTime:
        case ftDateTime:
            return true;
        case ftUnknown:
        case ftString:
        case ftBoolean:
        case ftBytes:
        case ftVarBytes:
        case ftBlob:
        case ftMemo:
        case ftGraphic:
        case ftFmtMemo:
        case ftParadoxOle:
        case ftDBaseOle:
        case ftTypedBinary:
        case ftCursor:
        case ftFixedChar:
        case ftWideString:
            break;
    }
    return false;
}

// The numbers of FieldAlignment; others leave the field as it is.
void Align(TField& field, int alignment) {
    constexpr TAlignment kAlignments[] = {taLeftJustify, taRightJustify, taCenter};
    if (alignment >= 0 && alignment <= 2) field.SetAlignment(kAlignments[alignment]);
}

}  // namespace refresh_detail

void TQuerySQL::RequireDataSet() {
    if (dataSet_) return;
    OnNeedDataSet(this, dataSet_);
    if (dataSet_) {
        SetQryDataSet(dataSet_);
        return;
    }
    TDataBaseVyn* database = GetDataBaseVyn();
    SetQryDataSet(DataSetType == ds_Table ? database->GetTDataSet("", this, false)
                                          : database->GetTSQLDataSet("", this, true));
    if (!dataSet_) ErrorQuery("No TDataSet in TQuerySQL");
}

void TQuerySQL::CreaSQL() {
    CheckStack();
    RequireDataSet();
    TDataSet* dataSet = dataSet_;
    const refresh_detail::OpenedBy opening(*this, *dataSet);
    dataSet->AfterOpen = [this, next = opening.Remembered()](TDataSet* opened) { AfterDataSetOpen(opened, next); };
    dataSet->Close();
    // The package may have started anew since the query was made.
    parameters_.SetParams(Parametres());
    ClearSQLPRM();
    PutStatement();
    refreshPending_ = false;
    if (dataSet_) dataSet_->Open();
}

void TQuerySQL::PutStatement() {
    TDataBaseVyn* database = GetDataBaseVyn();
    if (DataSetType == ds_Table) {
        database->SetTableToDataSet(FromSQL, dataSet_);
        return;
    }
    TStringList lines;
    GenerateStatement(&lines);
    database->SetSQLToDataSet(lines.Text(), dataSet_);
}

void TQuerySQL::GenerateStatement(TStrings* SQL) {
    if (DataSetType == ds_Table) {
        SQL->Clear();
        return;
    }
    if (SqlType == sql_byFields) {
        GenerateSql(SQL);
        return;
    }
    // What the functions give replaces them in the dataset when it is opened, so they are computed once: a text that
    // is to be computed each time is composed from fields, or set anew.
    RequireDataSet();
    AnsiString text;
    GetDataBaseVyn()->GetSQLFromDataSet(dataSet_, text);
    AssignSqlLines(*SQL, text, GetDataBaseVyn()->SQLStringSeparator);
    AplicaParametresSQL(SQL);
}

void TQuerySQL::AfterDataSetOpen(TDataSet* dataSet, const TDataSetNotifyEvent& next) {
    PutFieldsFormats();
    for (size_t i = 0; i < children_.size(); ++i) children_[i]->RefrescaSQL();
    next(dataSet);
}

void TQuerySQL::PutFieldsFormats() {
    if (!dataSet_) return;
    for (int i = 0; i < fields_.Count(); ++i) {
        const TFieldsSQLRec record = fields_.GetFieldSQL(i);
        TField* field = dataSet_->FindField(record.FieldName);
        if (!field) continue;
        if (refresh_detail::TakesDisplayFormat(field->DataType()))
            field->SetDisplayFormat(AnalitzaFrase(record.FieldFormat));
        field->SetEditMask(AnalitzaFrase(record.FieldEditMask));
        refresh_detail::Align(*field, record.FieldAlignment);
        // The label: what stands over the field's column and beside its edit box.
        field->SetDisplayLabel(AnalitzaFrase(record.FieldDisplayText));
    }
}

void TQuerySQL::RefrescaSQL() {
    CheckStack();
    RequireDataSet();
    TDataSet* dataSet = dataSet_;
    if (!dataSet->Active()) return;
    const refresh_detail::QuietControls quiet(*this, *dataSet);
    Variant wanted = Variant::Null();
    if (LocateOnRefresh)
        if (const TField* field = dataSet->FindField(CampMestreSQL)) wanted = field->Value();
    dataSet->Close();
    CreaSQL();
    if (LocateOnRefresh && !wanted.IsNull() && dataSet_ == dataSet) Relocate(wanted);
}

void TQuerySQL::Relocate(const Variant& wanted) {
    if (!dataSet_->Active()) return;
    const TField* field = dataSet_->FindField(CampMestreSQL);
    if (!field || VarSameValue(field->Value(), wanted)) return;
    dataSet_->Locate(CampMestreSQL, wanted);
}

void TQuerySQL::InternalRefresh() {
    if (CreaSQLAutomatic && dataSet_) CreaSQL();
}

void TQuerySQL::Enable() {
    if (disableCount_ == 0) return;
    if (--disableCount_ > 0 || !refreshPending_) return;
    refreshPending_ = false;
    RefrescaSQL();
}

}  // namespace vyn
