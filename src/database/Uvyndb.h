#pragma once

#include <memory>
#include <vector>

#include "database/dictionaries.h"
#include "platform/data/data_set.h"
#include "platform/objects/component.h"
#include "platform/objects/strings.h"

namespace vyn {

class TDataBaseVyn;
class TParametres;

// An application's own literal of a value; an empty Result leaves the value to the database.
using TDataBaseVynConvertToSqlString =
    Event<void(TDataBaseVyn* DBVyn, TFieldType ValueType, const Variant& Value, AnsiString& Result)>;

// The one abstraction through which the framework reaches a database: how values become SQL text, how transactions are
// counted, and the name by which everybody finds the database. Statements, datasets and transactions themselves are a
// concrete class's, which overrides the hooks; here they raise EAbstractError. Databases are listed, in order of
// creation, for the whole process. Errors are EDataBaseVynError. Main thread only.
class TDataBaseVyn : public TComponent {
    VYN_OBJECT
  public:
    explicit TDataBaseVyn(TComponent* owner);
    ~TDataBaseVyn() override;

    // The hooks, in their order, which concrete classes count on. All but the first and the last are abstract here.
    // The literal of a value; empty for types that have none.
    virtual AnsiString DoConvertToSqlString(TFieldType valueType, const Variant& value);
    virtual TDataSet* DoGetTSQLDataSet(const AnsiString& SQL, TComponent* owner, bool readOnly);
    virtual TDataSet* DoGetTDataSet(const AnsiString& tableName, TComponent* owner, bool readOnly);
    // Runs a statement that gives no rows.
    virtual void DoExecuteSQL(TDataSet* dataSet);
    virtual void DoStartTransaction();
    virtual void DoCommitTransaction();
    virtual void DoRollbackTransaction();
    virtual void SetSQLToDataSet(const AnsiString& SQL, TDataSet* dataSet);
    virtual void GetSQLFromDataSet(TDataSet* dataSet, AnsiString& SQL);
    virtual void SetTableToDataSet(const AnsiString& tableName, TDataSet* dataSet);
    virtual void GetTableFromDataSet(TDataSet* dataSet, AnsiString& tableName);
    // What pattern and flag choose is the concrete class's.
    virtual void GetTableNames(const AnsiString& pattern, bool flag, bool systemTables, TStrings* list);
    virtual void GetStoredProcNames(TStrings* list);
    // The dataset's parameters, or null.
    virtual TCollection* GetTDataSetParams(TDataSet* dataSet);
    // Links a detail dataset to its master.
    virtual void AssignDataSourceToDataSet(TDataSet* dataSet, TDataSource* source, const AnsiString& masterFields,
                                           const AnsiString& indexFieldNames);
    // Whether the dataset takes ":name" in its SQL for parameters.
    virtual void AllowParamCheck(TDataSet* dataSet, bool value);
    virtual bool DataSetAllowParamCheck(TDataSet* dataSet);
    virtual bool TableExists(const AnsiString& tableName);

    // Literals. Whatever the locale: separators are given to each formatting by itself.
    // OnConvertToSqlString's when it gives one, else DoConvertToSqlString's.
    AnsiString ConvertToSqlString(TFieldType valueType, const Variant& value);
    // Doubles the separator; quoted: stands between two of them.
    AnsiString GetStringSQL(const AnsiString& text, bool quoted) const;
    AnsiString GetFormatedSQLDateTime(const AnsiString& format, TDateTime value) const;
    // With the format for times, dates or both that suits the value. The value is rounded to whole days for that, so a
    // time of day after noon, without a date, is written as a date and time: literals of stored applications are so.
    AnsiString GetSQLDateTime(TDateTime value) const;
    // Of a parameter's value, by its type; Null is "NULL", an unassigned value the error "Bad PRM type".
    AnsiString ConvertParametreToSql(TParametres* params, const AnsiString& name);

    // Transactions. The identifiers only guard against ending what was never begun: each call goes to the engine.
    int StartTransaction();
    // Raise "Transaction not found: " and the number; the engine is not asked then.
    void CommitTransaction(int id);
    void RollBackTransaction(int id);
    int TransactionCount() const { return static_cast<int>(transactions_.size()); }

    // Datasets belong to their owner.
    TDataSet* GetTDataSet(const AnsiString& tableName, TComponent* owner, bool readOnly);
    TDataSet* GetTSQLDataSet(const AnsiString& SQL, TComponent* owner, bool readOnly);
    void ExecuteSQL(const AnsiString& SQL);
    // A statement as a dataset is given it: CorrectParamCheckOnDateTime, save in texts and quoted names, whose colons
    // no dataset takes for marks of parameters.
    AnsiString SQLForDataSet(TDataSet* dataSet, const AnsiString& SQL);
    // The datasets handed out whose owner is not the database itself, and that still live.
    const std::vector<TDataSet*>& OwnedDataSets() const { return dataSets_; }

    // Doubles each colon in the SQL that a dataset would take for the mark of a parameter although it stands in a time
    // (a digit follows). Nothing happens for a dataset that does not look for parameters (null: it does), nor when
    // dates stand between quotes. Quotes before a line's first colon are not looked at.
    void CorrectParamCheckOnDateTime(TDataSet* dataSet, TStrings* SQL);
    // The same for a text, which comes back line by line with CR LF, the last line too. Line breaks inside a string
    // literal are part of its value and stay what they are.
    void CorrectParamCheckOnDateTime(TDataSet* dataSet, AnsiString& SQL);

    // Raises EDataBaseVynError, "TDataBaseVyn ERROR:", a line feed, and the message.
    [[noreturn]] static void ErrorDataBaseVyn(const AnsiString& message);

    // The file name of the database, kept for the concrete class and the application.
    AnsiString DBFileName;
    TDataBaseVynConvertToSqlString OnConvertToSqlString;
    AnsiString SQLFormatDate = "mm/dd/yyyy";
    // Two colons: each stands for the separator, so the separator comes twice, as datasets that look for parameters
    // need it. Installations without such datasets set single ones.
    AnsiString SQLFormatTime = "hh::nn::ss";
    AnsiString SQLFormatDateTime = "mm/dd/yyyy hh::nn::ss";
    char SQLStringSeparator = '\'';
    AnsiString SQLUndefinedChar = "?";   // the engine's mark for any character in LIKE
    AnsiString SQLUndefinedChars = "%";  // and for any number of them
    AnsiString SQLDateTimeStart = "#";
    AnsiString SQLDateTimeEnd = "#";
    char SQLTimeSeparator = ':';
    char SQLDateSeparator = '/';
    char SQLDecimalSeparator = '.';
    bool IsBDEBased = false;  // copied by queries into their DoArreglaProblemaHora

    // The name by which the framework finds this database; unique in the process without regard to case: a name that is
    // taken gets a number behind it. An empty name raises "VynDBName required".
    const AnsiString& VynDBName() const { return vynDBName_; }
    void SetVynDBName(const AnsiString& name);
    // Owned; setting copies.
    TDataBaseVynDict* DataBaseVynDict() const { return tables_.get(); }
    void SetDataBaseVynDict(TDataBaseVynDict* value);
    TQuerySQLDict* QuerySQLDict() const { return queries_.get(); }
    void SetQuerySQLDict(TQuerySQLDict* value);

    void Notification(TComponent* component, TOperation operation) override;

  private:
    void MakeNameUnique();
    TDataSet* Register(TDataSet* dataSet, TComponent* owner);
    size_t PositionOfTransaction(int id) const;
    bool NeedsColonsDoubled(TDataSet* dataSet);
    // Line by line with CR LF.
    AnsiString InLines(const AnsiString& SQL, bool colonsDoubled) const;

    std::unique_ptr<TDataBaseVynDict> tables_;
    std::unique_ptr<TQuerySQLDict> queries_;
    std::vector<TDataSet*> dataSets_;
    std::vector<int> transactions_;
    AnsiString vynDBName_;
};

// The first database, in order of creation, of a name (without regard to case), or null.
TDataBaseVyn* FindDatabaseVyn(const AnsiString& name);
// The same; raises "Database Vyn not found (" + name + ")".
TDataBaseVyn* GetDataBaseVyn(const AnsiString& name);
// Replaces the list's lines by one for each database, in order: its component name (or its VynDBName), with the
// database as the line's object.
void GetDatabasesVyn(TStrings* list);
void GetDatabasesVynNames(TStrings* list);

}  // namespace vyn
