#include "platform/access/ado.h"
#include "platform/access/table_pages.h"
#include "platform/access/table_writer.h"
#include "platform/objects/class_table.h"

namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TCursorType>) {
    static const EnumType info("TCursorType",
                               {"ctUnspecified", "ctOpenForwardOnly", "ctKeyset", "ctDynamic", "ctStatic"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TADOLockType>) {
    static const EnumType info("TADOLockType",
                               {"ltUnspecified", "ltReadOnly", "ltPessimistic", "ltOptimistic", "ltBatchOptimistic"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TExecuteOption>) {
    static const EnumType info("TExecuteOption",
                               {"eoAsyncExecute", "eoAsyncFetch", "eoAsyncFetchNonBlocking", "eoExecuteNoRecords"});
    return info;
}
const EnumType& TypeInfoOf(TypeTag<TMarshalOption>) {
    static const EnumType info("TMarshalOption", {"moMarshalAll", "moMarshalModifiedOnly"});
    return info;
}

const ClassInfo& TCustomADODataSet::StaticClass() {
    using T = TCustomADODataSet;
    static const ClassInfo info = DefineClass<T, TDataSet>("TCustomADODataSet")
                                      .Published("Active", &T::Active, &T::SetActive)
                                      .Default(false)
                                      .Published("AutoCalcFields", &T::AutoCalcFields, &T::AutoCalcFields)
                                      .Default(true)
                                      .Published("CacheSize", &T::CacheSize, &T::CacheSize)
                                      .Default(1)
                                      .Published("Connection", &T::Connection, &T::SetConnection)
                                      .Published("ConnectionString", &T::ConnectionString, &T::SetConnectionString)
                                      .Published("CursorLocation", &T::CursorLocation, &T::SetCursorLocation)
                                      .Default(clUseClient)
                                      .Published("CursorType", &T::CursorType, &T::SetCursorType)
                                      .Default(ctKeyset)
                                      .Published("ExecuteOptions", &T::ExecuteOptions, &T::ExecuteOptions)
                                      .Default(TExecuteOptions())
                                      .Published("Filter", &T::Filter, &T::SetFilter)
                                      .Published("FilterOptions", &T::FilterOptions, &T::SetFilterOptions)
                                      .Default(TFilterOptions())
                                      .Published("Filtered", &T::Filtered, &T::SetFiltered)
                                      .Default(false)
                                      .Published("LockType", &T::LockType, &T::SetLockType)
                                      .Default(ltOptimistic)
                                      .Published("MarshalOptions", &T::MarshalOptions, &T::MarshalOptions)
                                      .Default(moMarshalAll)
                                      .Published("MaxRecords", &T::MaxRecords, &T::MaxRecords)
                                      .Default(0)
                                      .Event("BeforeOpen", &T::BeforeOpen)
                                      .Event("AfterOpen", &T::AfterOpen)
                                      .Event("BeforeClose", &T::BeforeClose)
                                      .Event("AfterClose", &T::AfterClose)
                                      .Event("BeforeInsert", &T::BeforeInsert)
                                      .Event("AfterInsert", &T::AfterInsert)
                                      .Event("BeforeEdit", &T::BeforeEdit)
                                      .Event("AfterEdit", &T::AfterEdit)
                                      .Event("BeforePost", &T::BeforePost)
                                      .Event("AfterPost", &T::AfterPost)
                                      .Event("BeforeCancel", &T::BeforeCancel)
                                      .Event("AfterCancel", &T::AfterCancel)
                                      .Event("BeforeDelete", &T::BeforeDelete)
                                      .Event("AfterDelete", &T::AfterDelete)
                                      .Event("BeforeScroll", &T::BeforeScroll)
                                      .Event("AfterScroll", &T::AfterScroll)
                                      .Event("BeforeRefresh", &T::BeforeRefresh)
                                      .Event("AfterRefresh", &T::AfterRefresh)
                                      .Event("OnCalcFields", &T::OnCalcFields)
                                      .Event("OnDeleteError", &T::OnDeleteError)
                                      .Event("OnEditError", &T::OnEditError)
                                      .Event("OnFilterRecord", &T::OnFilterRecord)
                                      .Event("OnNewRecord", &T::OnNewRecord)
                                      .Event("OnPostError", &T::OnPostError);
    return info;
}

int64_t TCustomADODataSet::PagedFrom = kLargeTable;

// The ear at the master's source. A detail whose database is away when the master moves is closed, and that is told;
// each later move of the master opens it again as soon as that goes, without telling it once more.
class TCustomADODataSet::MasterLink : public TDataLink {
  public:
    explicit MasterLink(TCustomADODataSet& detail) : detail_(detail) {}

  protected:
    void Changed(DataEvent event, TField*) override {
        if (detail_.HasState(csDestroying) || !(detail_.Active() || closed_)) return;
        switch (event) {
            case DataEvent::ActiveChanged:
            case DataEvent::RecordsChanged:
            case DataEvent::Scrolled:
            case DataEvent::RecordChanged:
                Follow();
                break;
            case DataEvent::CheckBrowse:
                // The master's record is left: so is the detail's.
                if (detail_.Active()) detail_.CheckBrowseMode();
                break;
            case DataEvent::StateChanged:
            case DataEvent::LayoutChanged:
            case DataEvent::UpdateRecord:
                break;
        }
    }

  private:
    void Follow() {
        if (detail_.Active()) {
            closed_ = false;
            try {
                detail_.MasterChanged();
            } catch (const EDatabaseError&) {
                closed_ = !detail_.Active();
                throw;
            }
            return;
        }
        try {
            if (ActiveDataSet()) detail_.Open();
            closed_ = !detail_.Active();
        } catch (const EDatabaseError&) {
            // Still away.
        }
    }

    TCustomADODataSet& detail_;
    bool closed_ = false;  // by a failure
};

TCustomADODataSet::TCustomADODataSet(TComponent* owner)
    : TDataSet(owner), master_(std::make_unique<MasterLink>(*this)) {}

TCustomADODataSet::~TCustomADODataSet() {
    BeginDestruction();
    SetConnection(nullptr);
    master_.reset();
}

TDataSource* TCustomADODataSet::GetDataSource() const { return master_ ? master_->DataSource() : nullptr; }
TDataSet* TCustomADODataSet::Master() const { return master_ ? master_->ActiveDataSet() : nullptr; }

void TCustomADODataSet::SetMaster(TDataSource* value) {
    if (value && value->IsLinkedTo(this)) DatabaseError("Circular datalinks are not allowed");
    master_->SetDataSource(value);
}

void TCustomADODataSet::SetConnection(TADOConnection* value) {
    if (value == connection_) return;
    if (!HasState(csDestroying)) Close();
    if (connection_) std::erase(connection_->dataSets_, this);
    connection_ = value;
    if (value) {
        value->dataSets_.push_back(this);
        value->FreeNotification(this);
    }
}

void TCustomADODataSet::SetConnectionString(const AnsiString& value) {
    if (value == connectionString_) return;
    CheckInactive();
    connectionString_ = value;
    ownConnection_.reset();
}

void TCustomADODataSet::SetLockType(TADOLockType value) {
    if (value == lockType_) return;
    CheckInactive();
    lockType_ = value;
}

void TCustomADODataSet::SetCursorLocation(TCursorLocation value) {
    if (value == cursorLocation_) return;
    CheckInactive();
    cursorLocation_ = value;
}

void TCustomADODataSet::SetCursorType(TCursorType value) {
    if (value == cursorType_) return;
    CheckInactive();
    cursorType_ = value;
}

void TCustomADODataSet::SetParamCheck(bool value) {
    if (value == paramCheck_) return;
    paramCheck_ = value;
    ParamCheckChanged();
}

void TCustomADODataSet::Notification(TComponent* component, TOperation operation) {
    TDataSet::Notification(component, operation);
    if (operation == opRemove && component == connection_) SetConnection(nullptr);
}

ProviderConnection& TCustomADODataSet::RequireConnection() {
    if (connection_) return connection_->Provider(CommandTimeout);
    if (connectionString_.empty()) DatabaseError("Missing Connection or ConnectionString");
    if (!ownConnection_) {
        ownConnection_ = std::make_unique<TADOConnection>(nullptr);
        ownConnection_->SetConnectionString(connectionString_);
    }
    return ownConnection_->Provider(CommandTimeout);
}

void TCustomADODataSet::FinishReading() {
    if (connection_) connection_->FinishReading();
    const bool reading = ownConnection_ && Active() && !IsPaged() && !ReadingFailed();
    if (reading && !ownConnection_->Provider().WritesBesideReading()) RecordCount();
}

// Nothing has changed when it raises.
std::vector<FieldDefinition> TCustomADODataSet::InternalOpen() {
    ProviderConnection& provider = RequireConnection();
    const AnsiString text = CommandText();
    const EngineSql sql = TranslateSql(text, provider.Dialect(), Parsing());
    auto statement = provider.Prepare(sql.Text);
    std::vector<ProviderValue> values = ParameterValues(sql, statement->ParameterCount());
    statement->Bind(values);
    std::vector<FieldDefinition> columns = statement->Columns();
    if (columns.empty()) DatabaseError("The statement gives no records");
    writer_ = std::make_unique<TableWriter>(provider, columns, ShapeOf(text));
    statement_ = std::move(statement);
    engineSql_ = sql.Text;
    engineValues_ = std::move(values);
    columns_ = std::move(columns);
    return columns_;
}

std::unique_ptr<RowPages> TCustomADODataSet::InternalPages(const std::vector<SortPart>& order) {
    const bool wanted = cursorType_ != ctOpenForwardOnly && cursorType_ != ctStatic && MaxRecords <= 0;
    if (!wanted || !writer_ || !writer_->ReasonNotToWrite().empty()) return nullptr;
    std::vector<TablePages::OrderPart> parts;
    for (const SortPart& part : order) {
        if (part.Field->FieldKind() != fkData || part.Field->FieldNo() < 0) return nullptr;
        parts.push_back({static_cast<size_t>(part.Field->FieldNo()), part.Descending});
    }
    auto pages = TablePages::Of(
        RequireConnection(),
        {engineSql_, engineValues_, columns_, writer_->Table(), writer_->Key(), [this] { RequireConnection(); }}, parts,
        PagedFrom);
    if (pages) statement_.reset();
    return pages;
}

bool TCustomADODataSet::InternalFetch(RowStore& rows, int64_t count) {
    if (!statement_) return false;
    RequireConnection();
    if (MaxRecords > 0) count = std::min(count, MaxRecords - rows.Count());
    const bool more = statement_->Fetch(rows, count) && (MaxRecords <= 0 || rows.Count() < MaxRecords);
    if (!more) statement_.reset();
    return more;
}

void TCustomADODataSet::InternalClose() {
    statement_.reset();
    writer_.reset();
}

AnsiString TCustomADODataSet::ReasonNotToModify() const {
    if (lockType_ == ltReadOnly || !writer_) return TDataSet::ReasonNotToModify();
    return writer_->ReasonNotToWrite();
}

void TCustomADODataSet::InternalEdit(Record& record) {
    if (lockType_ != ltPessimistic) return;
    FinishReading();
    RequireConnection();
    if (!writer_->Reread(record, record)) DatabaseError("Another user has deleted this record");
}

void TCustomADODataSet::InternalInsert(Record& record) {
    FinishReading();
    RequireConnection();
    writer_->Insert(record);
}

void TCustomADODataSet::InternalUpdate(const Record& original, Record& record) {
    FinishReading();
    RequireConnection();
    writer_->Update(original, record);
}

void TCustomADODataSet::InternalDelete(const Record& original) {
    FinishReading();
    RequireConnection();
    writer_->Delete(original);
}

void RegisterAccessClasses() {
    AddLinkedClass(&TADOConnection::StaticClass());
    AddLinkedClass(&TADOQuery::StaticClass());
    AddLinkedClass(&TADOTable::StaticClass());
}

}  // namespace vyn
