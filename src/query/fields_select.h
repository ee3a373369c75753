#pragma once

#include <vector>

#include "platform/objects/persistent.h"
#include "query/query_types.h"

namespace vyn {

class TQuerySQL;
class TReader;
class TWriter;

// One select field.
struct TFieldsSQLRec {
    AnsiString FieldName;         // the alias in the select list, and the dataset field's name
    AnsiString FieldSQL;          // the expression
    AnsiString FieldDescription;  // for people who edit the query
    AnsiString FieldOrder;        // the expression to order by
    AnsiString FieldFormat;       // of numbers, dates and times
    AnsiString FieldEditMask;
    int32_t FieldAlignment = 0;   // 0 left, 1 right, 2 centre; others leave the dataset field's alone
    AnsiString FieldDisplayText;  // the dataset field's label
    bool FieldFlag = false;       // for those who edit the query

    friend bool operator==(const TFieldsSQLRec&, const TFieldsSQLRec&) = default;
};

// A record with every member empty or zero.
const TFieldsSQLRec& TFieldsSQLRec_NUL();

// The ordered select fields of one query, stored with it (docs/formats/query-fields.md). Main thread only.
class TFieldsSelectSQL : public TPersistent {
    VYN_OBJECT
  public:
    explicit TFieldsSelectSQL(TQuerySQL* query) : query_(query) {}

    void Afegeix(const TFieldsSQLRec& field) { fields_.push_back(field); }
    // Outside 0 to Count - 1: EListError.
    void Elimina(int index);
    int Count() const { return static_cast<int>(fields_.size()); }
    // Outside: the empty record.
    const TFieldsSQLRec& GetFieldSQL(int index) const;
    // Outside: the query's error "Index Out of Range in TQuery".
    void SetFieldSQL(int index, const TFieldsSQLRec& field);
    // The first field of a name, without regard to case, or -1.
    int PosicioFieldName(const AnsiString& name) const;
    void Clear() { fields_.clear(); }
    void Assign(const TPersistent* source) override;

    TPersistent* GetOwner() const override;
    void DefineProperties(TFiler& filer) override;
    // Adds what it reads behind the fields that are there.
    void LoadFromReader(TReader* reader);
    void WriteToWriter(TWriter* writer);

  private:
    TQuerySQL* query_;
    std::vector<TFieldsSQLRec> fields_;
};

// One field as the text that it is stored as, and back.
AnsiString TextOfField(const TFieldsSQLRec& field);
TFieldsSQLRec FieldOfText(const AnsiString& text);

}  // namespace vyn
