#include "database/Uvyndb.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "database/sql_lines.h"
#include "foundation/Uparametres.h"
#include "foundation/errors.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace database_detail {

constexpr char kDefaultName[] = "DBDades";
constexpr char kNumberMask[] = "0.###################";
constexpr int kMostTransactionNumbers = 5000000;

std::vector<TDataBaseVyn*>& Live() {
    static std::vector<TDataBaseVyn*> live;
    return live;
}

[[noreturn]] void RaiseAbstract() { throw EAbstractError("Abstract Error"); }

// The locale's settings with separators of one's own, so that nobody's formatting changes meanwhile.
TFormatSettings DateSettings(char dateSeparator, char timeSeparator) {
    TFormatSettings settings = FormatSettings();
    settings.DateSeparator = dateSeparator;
    settings.TimeSeparator = timeSeparator;
    return settings;
}

}  // namespace database_detail

const ClassInfo& TDataBaseVyn::StaticClass() {
    using DB = TDataBaseVyn;
    static const ClassInfo info =
        DefineClass<DB, TComponent>("TDataBaseVyn")
            .Published("DBFileName", &DB::DBFileName, &DB::DBFileName)
            .Event("OnConvertToSqlString", &DB::OnConvertToSqlString)
            .Published("SQLFormatDate", &DB::SQLFormatDate, &DB::SQLFormatDate)
            .Published("SQLFormatTime", &DB::SQLFormatTime, &DB::SQLFormatTime)
            .Published("SQLFormatDateTime", &DB::SQLFormatDateTime, &DB::SQLFormatDateTime)
            .Published("SQLStringSeparator", &DB::SQLStringSeparator, &DB::SQLStringSeparator)
            .Default('\'')
            .Published("SQLUndefinedChar", &DB::SQLUndefinedChar, &DB::SQLUndefinedChar)
            .Published("SQLUndefinedChars", &DB::SQLUndefinedChars, &DB::SQLUndefinedChars)
            .Published("SQLDateTimeStart", &DB::SQLDateTimeStart, &DB::SQLDateTimeStart)
            .Published("SQLDateTimeEnd", &DB::SQLDateTimeEnd, &DB::SQLDateTimeEnd)
            .Published("SQLTimeSeparator", &DB::SQLTimeSeparator, &DB::SQLTimeSeparator)
            .Default(':')
            .Published("SQLDateSeparator", &DB::SQLDateSeparator, &DB::SQLDateSeparator)
            .Default('/')
            .Published("SQLDecimalSeparator", &DB::SQLDecimalSeparator, &DB::SQLDecimalSeparator)
            .Default('.')
            .Published("IsBDEBased", &DB::IsBDEBased, &DB::IsBDEBased)
            .Default(false)
            .Published("VynDBName", &DB::VynDBName, &DB::SetVynDBName)
            .Published("DataBaseVynDict", &DB::DataBaseVynDict, &DB::SetDataBaseVynDict)
            .Published("QuerySQLDict", &DB::QuerySQLDict, &DB::SetQuerySQLDict);
    return info;
}

TDataBaseVyn::TDataBaseVyn(TComponent* owner)
    : TComponent(owner),
      tables_(std::make_unique<TDataBaseVynDict>(this)),
      queries_(std::make_unique<TQuerySQLDict>(this)) {
    database_detail::Live().push_back(this);
    MakeNameUnique();
}

TDataBaseVyn::~TDataBaseVyn() {
    BeginDestruction();
    std::erase(database_detail::Live(), this);
}

void TDataBaseVyn::SetVynDBName(const AnsiString& name) {
    if (name == vynDBName_) return;
    if (Trim(name).empty()) throw Exception("VynDBName required");
    vynDBName_ = name;
    MakeNameUnique();
}

void TDataBaseVyn::MakeNameUnique() {
    const AnsiString base = Trim(vynDBName_).empty() ? AnsiString(database_detail::kDefaultName) : vynDBName_;
    AnsiString candidate = base;
    const auto taken = [&](const TDataBaseVyn* other) {
        return other != this && SameText(other->vynDBName_, candidate);
    };
    const auto& live = database_detail::Live();
    for (int number = 1; std::any_of(live.begin(), live.end(), taken); ++number) candidate = base + IntToStr(number);
    vynDBName_ = candidate;
}

void TDataBaseVyn::SetDataBaseVynDict(TDataBaseVynDict* value) {
    if (value != tables_.get()) tables_->Assign(value);
}

void TDataBaseVyn::SetQuerySQLDict(TQuerySQLDict* value) {
    if (value != queries_.get()) queries_->Assign(value);
}

void TDataBaseVyn::ErrorDataBaseVyn(const AnsiString& message) {
    throw EDataBaseVynError("TDataBaseVyn ERROR:\n" + message);
}

TDataSet* TDataBaseVyn::DoGetTSQLDataSet(const AnsiString&, TComponent*, bool) { database_detail::RaiseAbstract(); }
TDataSet* TDataBaseVyn::DoGetTDataSet(const AnsiString&, TComponent*, bool) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::DoExecuteSQL(TDataSet*) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::DoStartTransaction() { database_detail::RaiseAbstract(); }
void TDataBaseVyn::DoCommitTransaction() { database_detail::RaiseAbstract(); }
void TDataBaseVyn::DoRollbackTransaction() { database_detail::RaiseAbstract(); }
void TDataBaseVyn::SetSQLToDataSet(const AnsiString&, TDataSet*) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::GetSQLFromDataSet(TDataSet*, AnsiString&) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::SetTableToDataSet(const AnsiString&, TDataSet*) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::GetTableFromDataSet(TDataSet*, AnsiString&) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::GetTableNames(const AnsiString&, bool, bool, TStrings*) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::GetStoredProcNames(TStrings*) { database_detail::RaiseAbstract(); }
TCollection* TDataBaseVyn::GetTDataSetParams(TDataSet*) { database_detail::RaiseAbstract(); }
void TDataBaseVyn::AssignDataSourceToDataSet(TDataSet*, TDataSource*, const AnsiString&, const AnsiString&) {
    database_detail::RaiseAbstract();
}
void TDataBaseVyn::AllowParamCheck(TDataSet*, bool) { database_detail::RaiseAbstract(); }
bool TDataBaseVyn::DataSetAllowParamCheck(TDataSet*) { database_detail::RaiseAbstract(); }

bool TDataBaseVyn::TableExists(const AnsiString& tableName) {
    TStringList list;
    GetTableNames(tableName, false, false, &list);
    return list.IndexOf(tableName) >= 0;
}

AnsiString TDataBaseVyn::ConvertToSqlString(TFieldType valueType, const Variant& value) {
    AnsiString result;
    OnConvertToSqlString(this, valueType, value, result);
    return result.empty() ? DoConvertToSqlString(valueType, value) : result;
}

AnsiString TDataBaseVyn::DoConvertToSqlString(TFieldType valueType, const Variant& value) {
    switch (valueType) {
        // A boolean becomes the quoted word of the conversion, 'True': stored conditions compare with it.
        case ftString:
        case ftBoolean:
        case ftFixedChar:
        case ftWideString:
            return GetStringSQL(VarToStr(value), true);
        // Decimals of fixed precision lose their fraction here: these are the types of keys.
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftBCD:
        case ftAutoInc:
            return IntToStr(value.AsInteger());
        case ftFloat:
        case ftCurrency: {
            // One copy for all: the mask asks for nothing else, and copying takes longer than formatting.
            static TFormatSettings settings = InvariantFormatSettings();
            settings.DecimalSeparator = SQLDecimalSeparator;
            return FormatFloat(database_detail::kNumberMask, value.AsDouble(), settings);
        }
        case ftDate:
            return GetFormatedSQLDateTime(SQLFormatDate, value.AsDateTime());
        case ftTime:
            return GetFormatedSQLDateTime(SQLFormatTime, value.AsDateTime());
        case ftDateTime:
            return GetFormatedSQLDateTime(SQLFormatDateTime, value.AsDateTime());
        case ftUnknown:
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
        case ftLargeint:
            break;
    }
    return {};
}

AnsiString TDataBaseVyn::GetStringSQL(const AnsiString& text, bool quoted) const {
    AnsiString result;
    result.reserve(text.size() + 2);
    if (quoted) result += SQLStringSeparator;
    for (size_t at = 0; at < text.size();) {
        const size_t next = std::min(text.find(SQLStringSeparator, at), text.size() - 1) + 1;
        result.append(text, at, next - at);
        if (text[next - 1] == SQLStringSeparator) result += SQLStringSeparator;
        at = next;
    }
    if (quoted) result += SQLStringSeparator;
    return result;
}

AnsiString TDataBaseVyn::GetFormatedSQLDateTime(const AnsiString& format, TDateTime value) const {
    const TFormatSettings settings = database_detail::DateSettings(SQLDateSeparator, SQLTimeSeparator);
    return SQLDateTimeStart + FormatDateTime(format, value, settings) + SQLDateTimeEnd;
}

AnsiString TDataBaseVyn::GetSQLDateTime(TDateTime value) const {
    const double days = std::nearbyint(value.Val);
    if (days == 0) return GetFormatedSQLDateTime(SQLFormatTime, value);
    return GetFormatedSQLDateTime(days == value.Val ? SQLFormatDate : SQLFormatDateTime, value);
}

AnsiString TDataBaseVyn::ConvertParametreToSql(TParametres* params, const AnsiString& name) {
    const Variant value = params->GetParametreValue(name);
    switch (value.Type()) {
        case varNull:
            return "NULL";
        case varSmallint:
            return ConvertToSqlString(ftSmallint, value);
        case varInteger:
            return ConvertToSqlString(ftInteger, value);
        case varSingle:
        case varDouble:
            return ConvertToSqlString(ftFloat, value);
        case varCurrency:
            return ConvertToSqlString(ftCurrency, value);
        case varDate:
            return ConvertToSqlString(ftDateTime, value);
        case varBoolean:
            return ConvertToSqlString(ftBoolean, value);
        case varByte:
            return ConvertToSqlString(ftWord, value);
        case varString:
            return ConvertToSqlString(ftString, value);
        case varEmpty:
        case varOleStr:
            break;
    }
    ErrorDataBaseVyn("Bad PRM type");
}

int TDataBaseVyn::StartTransaction() {
    static std::mt19937 generator;
    std::uniform_int_distribution<int> draw(1, database_detail::kMostTransactionNumbers);
    const int id = draw(generator);
    DoStartTransaction();
    transactions_.push_back(id);
    return id;
}

size_t TDataBaseVyn::PositionOfTransaction(int id) const {
    const auto found = std::find(transactions_.begin(), transactions_.end(), id);
    if (found == transactions_.end()) throw EDataBaseVynError("Transaction not found: " + IntToStr(id));
    return static_cast<size_t>(found - transactions_.begin());
}

void TDataBaseVyn::CommitTransaction(int id) {
    const size_t position = PositionOfTransaction(id);
    DoCommitTransaction();
    transactions_.erase(transactions_.begin() + static_cast<std::ptrdiff_t>(position));
}

void TDataBaseVyn::RollBackTransaction(int id) {
    const size_t position = PositionOfTransaction(id);
    DoRollbackTransaction();
    transactions_.erase(transactions_.begin() + static_cast<std::ptrdiff_t>(position));
}

TDataSet* TDataBaseVyn::Register(TDataSet* dataSet, TComponent* owner) {
    if (dataSet && owner != this) {
        dataSet->FreeNotification(this);
        dataSets_.push_back(dataSet);
    }
    return dataSet;
}

TDataSet* TDataBaseVyn::GetTDataSet(const AnsiString& tableName, TComponent* owner, bool readOnly) {
    return Register(DoGetTDataSet(tableName, owner, readOnly), owner);
}

TDataSet* TDataBaseVyn::GetTSQLDataSet(const AnsiString& SQL, TComponent* owner, bool readOnly) {
    std::unique_ptr<TDataSet> dataSet(DoGetTSQLDataSet("", owner, readOnly));
    SetSQLToDataSet(SQLForDataSet(dataSet.get(), SQL), dataSet.get());
    return Register(dataSet.release(), owner);
}

void TDataBaseVyn::ExecuteSQL(const AnsiString& SQL) {
    const std::unique_ptr<TDataSet> dataSet(GetTSQLDataSet(SQL, this, true));
    DoExecuteSQL(dataSet.get());
}

void TDataBaseVyn::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove)
        std::erase_if(dataSets_, [&](TDataSet* dataSet) { return static_cast<TComponent*>(dataSet) == component; });
}

bool TDataBaseVyn::NeedsColonsDoubled(TDataSet* dataSet) {
    if (dataSet && !DataSetAllowParamCheck(dataSet)) return false;
    // Dates between quotes are passed over by datasets themselves.
    return SQLDateTimeStart.size() != 1 || !IsSqlQuote(SQLDateTimeStart[0]) || SQLDateTimeEnd != SQLDateTimeStart;
}

void TDataBaseVyn::CorrectParamCheckOnDateTime(TDataSet* dataSet, TStrings* SQL) {
    if (!NeedsColonsDoubled(dataSet)) return;
    TimeColons colons;
    for (int i = 0; i < SQL->Count(); ++i) {
        AnsiString line = SQL->Get(i);
        if (colons.Double(line)) SQL->Put(i, line);
    }
}

void TDataBaseVyn::CorrectParamCheckOnDateTime(TDataSet* dataSet, AnsiString& SQL) {
    SQL = InLines(SQL, NeedsColonsDoubled(dataSet));
}

AnsiString TDataBaseVyn::InLines(const AnsiString& SQL, bool colonsDoubled) const {
    TimeColons colons;
    AnsiString result;
    result.reserve(SQL.size() + 2);
    for (SqlLines lines(SQL, SQLStringSeparator); lines.Next();) {
        AnsiString line(lines.Line());
        if (colonsDoubled) colons.Double(line);
        result += line;
        result += lines.Break();
    }
    return result;
}

AnsiString TDataBaseVyn::SQLForDataSet(TDataSet* dataSet, const AnsiString& SQL) {
    AnsiString doubled = SQL;
    CorrectParamCheckOnDateTime(dataSet, doubled);
    return WithOwnTexts(InLines(SQL, false), doubled);
}

TDataBaseVyn* FindDatabaseVyn(const AnsiString& name) {
    for (TDataBaseVyn* database : database_detail::Live())
        if (SameText(database->VynDBName(), name)) return database;
    return nullptr;
}

TDataBaseVyn* GetDataBaseVyn(const AnsiString& name) {
    if (TDataBaseVyn* database = FindDatabaseVyn(name)) return database;
    throw Exception("Database Vyn not found (" + name + ")");
}

void GetDatabasesVyn(TStrings* list) {
    list->Clear();
    for (TDataBaseVyn* database : database_detail::Live()) list->AddObject(database->Name(), database);
}

void GetDatabasesVynNames(TStrings* list) {
    list->Clear();
    for (TDataBaseVyn* database : database_detail::Live()) list->AddObject(database->VynDBName(), database);
}

}  // namespace vyn
