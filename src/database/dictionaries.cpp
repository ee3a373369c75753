#include "database/dictionaries.h"

#include "database/Uvyndb.h"
#include "foundation/errors.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace dictionaries_detail {

constexpr int kBufferSize = 1024;

template <class Dictionary>
TCollection* RequireDictionary(TCollection* collection) {
    if (collection && !ObjectCast<Dictionary>(static_cast<TObject*>(collection)))
        throw EInvalidCast("Invalid class typecast: a " + collection->ClassName() + " is no " +
                           Dictionary::StaticClass().Name());
    return collection;
}

// Table names are identifiers of the value encoding, which has codes of their own for four words.
void WriteTableName(TWriter& writer, const AnsiString& name) {
    if (SameText(name, "False"))
        writer.WriteBoolean(false);
    else if (SameText(name, "True"))
        writer.WriteBoolean(true);
    else if (SameText(name, "nil"))
        writer.WriteNil();
    else if (SameText(name, "Null"))
        writer.WriteNull();
    else
        writer.WriteIdent(name);
}

}  // namespace dictionaries_detail

using dictionaries_detail::kBufferSize;

const TSQLField& SQLField_NULL() {
    static const TSQLField null;
    return null;
}

const EnumType& TypeInfoOf(TypeTag<TSQLFieldAvailable>) {
    static const EnumType info("TSQLFieldAvailable", {"sfa_Allways", "sfa_IfNeeded", "sfa_Explicit"});
    return info;
}

const ClassInfo& TDataSetDict::StaticClass() {
    static const ClassInfo info = DefineClass<TDataSetDict, TPersistent>("TDataSetDict");
    return info;
}

size_t TDataSetDict::Checked(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return static_cast<size_t>(index);
}

void TDataSetDict::Delete(int index) { fields_.erase(fields_.begin() + static_cast<std::ptrdiff_t>(Checked(index))); }

int TDataSetDict::IndexOfFieldName(const AnsiString& name) const {
    for (size_t i = 0; i < fields_.size(); ++i)
        if (SameText(fields_[i].FieldName, name)) return static_cast<int>(i);
    return -1;
}

void TDataSetDict::MovePos(int a, int b) { std::swap(fields_[Checked(a)], fields_[Checked(b)]); }

void TDataSetDict::Assign(const TPersistent* source) {
    if (const auto* other = ObjectCast<TDataSetDict>(source))
        fields_ = std::vector<TSQLField>(other->fields_);
    else
        TPersistent::Assign(source);
}

void TDataSetDict::LoadDataSetDictProperty(TReader* reader) {
    Clear();
    reader->ReadListBegin();
    while (!reader->EndOfList()) {
        TSQLField field;
        reader->ReadListBegin();
        for (AnsiString* text : {&field.FieldName, &field.FieldText1, &field.FieldText2, &field.FieldText3,
                                 &field.FieldText4, &field.FieldText5})
            *text = reader->ReadString();
        field.FieldValue1 = reader->ReadInteger();
        field.FieldText6 = reader->ReadString();
        field.FieldValue2 = reader->ReadInteger();
        reader->ReadListEnd();
        fields_.push_back(std::move(field));
    }
    reader->ReadListEnd();
}

void TDataSetDict::WriteDataSetDictProperty(TWriter* writer) {
    writer->WriteListBegin();
    for (const TSQLField& field : fields_) {
        writer->WriteListBegin();
        for (const AnsiString* text : {&field.FieldName, &field.FieldText1, &field.FieldText2, &field.FieldText3,
                                       &field.FieldText4, &field.FieldText5})
            writer->WriteString(*text);
        writer->WriteInteger(field.FieldValue1);
        writer->WriteString(field.FieldText6);
        writer->WriteInteger(field.FieldValue2);
        writer->WriteListEnd();
    }
    writer->WriteListEnd();
}

void TDataSetDict::LoadFromStream(TStream* stream) {
    if (!stream) return;
    TReader reader(*stream, kBufferSize);
    LoadDataSetDictProperty(&reader);
}

void TDataSetDict::SaveToStream(TStream* stream) {
    if (!stream) return;
    TWriter writer(*stream, kBufferSize);
    WriteDataSetDictProperty(&writer);
    writer.Flush();
}

void TDataSetDict::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineProperty(
        "SQLFields", [this](TReader& reader) { LoadDataSetDictProperty(&reader); },
        [this](TWriter& writer) { WriteDataSetDictProperty(&writer); }, Count() > 0);
}

void DictionaryNames::Take(const AnsiString& name) {
    const auto found = counts_.find(name);
    if (found == counts_.end() || --found->second > 0) return;
    counts_.erase(found);
    int number = 0;
    const bool made = name.size() > prefix_.size() && SameText(name.substr(0, prefix_.size()), prefix_) &&
                      TryStrToInt(name.substr(prefix_.size()), number);
    if (made && number >= 1 && number < lowestFree_) lowestFree_ = number;
}

AnsiString DictionaryNames::NewName() {
    while (Holds(prefix_ + IntToStr(lowestFree_))) ++lowestFree_;
    return prefix_ + IntToStr(lowestFree_);
}

const ClassInfo& TDataBaseVynDictItem::StaticClass() {
    using Item = TDataBaseVynDictItem;
    static const ClassInfo info =
        DefineClass<Item, TCollectionItem>("TDataBaseVynDictItem")
            .Published("DataSetDict", &Item::DataSetDict, &Item::SetDataSetDict)
            .Published("TableName", &Item::TableName, &Item::SetTableName)
            .Published("TableDisplayString", &Item::TableDisplayString, &Item::TableDisplayString);
    return info;
}

TDataBaseVynDictItem::TDataBaseVynDictItem(TCollection* collection)
    : TCollectionItem(dictionaries_detail::RequireDictionary<TDataBaseVynDict>(collection)) {
    if (Dictionary()) TakeName(Dictionary()->NewTableName());
}

TDataBaseVynDictItem::~TDataBaseVynDictItem() {
    if (Dictionary()) Dictionary()->names_.Take(tableName_);
}

TDataBaseVynDict* TDataBaseVynDictItem::Dictionary() const { return static_cast<TDataBaseVynDict*>(Collection()); }

void TDataBaseVynDictItem::SetCollection(TCollection* collection) {
    dictionaries_detail::RequireDictionary<TDataBaseVynDict>(collection);
    if (Dictionary()) Dictionary()->names_.Take(tableName_);
    TCollectionItem::SetCollection(collection);
    if (Dictionary()) Dictionary()->names_.Put(tableName_);
}

AnsiString TDataBaseVynDictItem::DisplayName() const { return tableName_; }

void TDataBaseVynDictItem::SetDataSetDict(TDataSetDict* value) {
    if (value != &dataSetDict_) dataSetDict_.Assign(value);
}

void TDataBaseVynDictItem::SetTableName(const AnsiString& value) {
    // The table itself is found too, so that no change of letter case alone passes: stored definitions name tables
    // letter for letter.
    if (value != tableName_ && Dictionary() && Dictionary()->names_.Holds(value))
        throw Exception("Table name found \"" + value + "\"");
    Rename(value);
}

void TDataBaseVynDictItem::Rename(const AnsiString& value) {
    if (Dictionary()) Dictionary()->names_.Take(tableName_);
    tableName_ = value;
    if (Dictionary()) Dictionary()->names_.Put(tableName_);
}

// A name that comes with the whole item: only the other tables' names are in its way.
void TDataBaseVynDictItem::TakeName(const AnsiString& value) {
    if (SameText(value, tableName_))
        Rename(value);
    else
        SetTableName(value);
}

void TDataBaseVynDictItem::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TDataBaseVynDictItem>(source);
    if (!other) {
        TCollectionItem::Assign(source);
        return;
    }
    if (other == this) return;
    TakeName(other->tableName_);
    TableDisplayString = other->TableDisplayString;
    dataSetDict_.Assign(&other->dataSetDict_);
}

void TDataBaseVynDictItem::LoadFromStream(TStream* stream) {
    if (!stream) return;
    {
        TReader reader(*stream, kBufferSize);
        TakeName(reader.ReadIdent());
        TableDisplayString = reader.ReadString();
    }
    dataSetDict_.LoadFromStream(stream);
}

void TDataBaseVynDictItem::SaveToStream(TStream* stream) {
    if (!stream) return;
    TWriter writer(*stream, kBufferSize);
    dictionaries_detail::WriteTableName(writer, tableName_);
    writer.WriteString(TableDisplayString);
    writer.Flush();
    dataSetDict_.SaveToStream(stream);
}

const ClassInfo& TDataBaseVynDict::StaticClass() {
    static const ClassInfo info = DefineClass<TDataBaseVynDict, TCollection>("TDataBaseVynDict");
    return info;
}

TDataBaseVynDict::TDataBaseVynDict(TDataBaseVyn* database)
    : TCollection(
          &TDataBaseVynDictItem::StaticClass(),
          [](TCollection* c) -> TCollectionItem* { return new TDataBaseVynDictItem(c); }, database),
      names_("TBL_") {
    PropertyName = "DataBaseVynDict";
}

TDataBaseVynDict::~TDataBaseVynDict() {
    // Items say their names off, which are still here now.
    BeginUpdate();
    Clear();
}

TDataBaseVynDictItem* TDataBaseVynDict::GetDataSetDictItem(int index) const {
    return static_cast<TDataBaseVynDictItem*>(Items(index));
}

int TDataBaseVynDict::IndexOfTable(const AnsiString& name) const {
    if (!names_.Holds(name)) return -1;
    for (int i = 0; i < Count(); ++i)
        if (SameText(GetDataSetDictItem(i)->TableName(), name)) return i;
    return -1;
}

void TDataBaseVynDict::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TDataBaseVynDict>(source);
    if (!other) {
        TCollection::Assign(source);
        return;
    }
    if (other == this) return;
    Clear();
    for (int i = 0; i < other->Count(); ++i) Add()->Assign(other->GetDataSetDictItem(i));
}

void TDataBaseVynDict::LoadFromStream(TStream* stream) {
    if (!stream) return;
    Clear();
    TReader(*stream, kBufferSize).ReadListBegin();
    while (!TReader(*stream, kBufferSize).EndOfList()) Add()->LoadFromStream(stream);
    TReader(*stream, kBufferSize).ReadListEnd();
}

void TDataBaseVynDict::SaveToStream(TStream* stream) {
    if (!stream) return;
    TWriter writer(*stream, kBufferSize);
    writer.WriteListBegin();
    for (int i = 0; i < Count(); ++i) {
        writer.Flush();
        GetDataSetDictItem(i)->SaveToStream(stream);
    }
    writer.WriteListEnd();
    writer.Flush();
}

void TDataBaseVynDict::Update(TCollectionItem* item) {
    TCollection::Update(item);
    OnChange(this, static_cast<TDataBaseVynDictItem*>(item));
}

const ClassInfo& TQuerySQLItem::StaticClass() {
    static const ClassInfo info =
        DefineClass<TQuerySQLItem, TCollectionItem>("TQuerySQLItem")
            .Published("QuerySQLName", &TQuerySQLItem::QuerySQLName, &TQuerySQLItem::SetQuerySQLName);
    return info;
}

TQuerySQLItem::TQuerySQLItem(TCollection* collection)
    : TCollectionItem(dictionaries_detail::RequireDictionary<TQuerySQLDict>(collection)) {
    if (Dictionary()) Dictionary()->names_.Put(name_);
}

TQuerySQLItem::~TQuerySQLItem() {
    if (Dictionary()) Dictionary()->names_.Take(name_);
}

TQuerySQLDict* TQuerySQLItem::Dictionary() const { return static_cast<TQuerySQLDict*>(Collection()); }

void TQuerySQLItem::SetCollection(TCollection* collection) {
    dictionaries_detail::RequireDictionary<TQuerySQLDict>(collection);
    if (Dictionary()) Dictionary()->names_.Take(name_);
    TCollectionItem::SetCollection(collection);
    if (Dictionary()) Dictionary()->names_.Put(name_);
}

AnsiString TQuerySQLItem::DisplayName() const { return name_; }

void TQuerySQLItem::SetQuerySQLName(const AnsiString& value) {
    // As for tables, the query itself is in the way of a change of letter case alone.
    if (value != name_ && Dictionary() && Dictionary()->names_.Holds(value))
        throw Exception("Name exists: \"" + value + "\"");
    Rename(value);
}

void TQuerySQLItem::Rename(const AnsiString& value) {
    if (Dictionary()) Dictionary()->names_.Take(name_);
    name_ = value;
    if (Dictionary()) Dictionary()->names_.Put(name_);
    Changed(false);
}

void TQuerySQLItem::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TQuerySQLItem>(source);
    if (!other) {
        TCollectionItem::Assign(source);
        return;
    }
    if (other == this) return;
    image_.SetBytes(other->image_.Bytes());
    if (SameText(other->name_, name_))
        Rename(other->name_);
    else
        SetQuerySQLName(other->name_);
}

void TQuerySQLItem::ReadQuerySQLStream(TStream* stream) {
    if (!stream) return;
    image_.Clear();
    uint32_t count = 0;
    stream->ReadBuffer(&count, sizeof count);
    if (stream->Size() - stream->Position() < static_cast<int64_t>(count)) throw EReadError("Stream read error");
    if (count > 0) image_.CopyFrom(*stream, count);
    image_.SetPosition(0);
}

void TQuerySQLItem::WriteQuerySQLStream(TStream* stream) {
    if (!stream) return;
    const std::string_view bytes = image_.Bytes();
    const auto count = static_cast<uint32_t>(bytes.size());
    stream->WriteBuffer(&count, sizeof count);
    stream->WriteBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
    image_.SetPosition(0);
}

void TQuerySQLItem::DefineProperties(TFiler& filer) {
    TCollectionItem::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "QUERYSQLSTREAM", [this](TStream& stream) { ReadQuerySQLStream(&stream); },
        [this](TStream& stream) { WriteQuerySQLStream(&stream); }, true);
}

const ClassInfo& TQuerySQLDict::StaticClass() {
    static const ClassInfo info = DefineClass<TQuerySQLDict, TCollection>("TQuerySQLDict");
    return info;
}

TQuerySQLDict::TQuerySQLDict(TPersistent* owner)
    : TCollection(
          &TQuerySQLItem::StaticClass(), [](TCollection* c) -> TCollectionItem* { return new TQuerySQLItem(c); },
          owner),
      names_("QUERYSQL") {
    PropertyName = "QuerySQLDict";
}

TQuerySQLDict::~TQuerySQLDict() {
    BeginUpdate();
    Clear();
}

int TQuerySQLDict::IndexOfQuery(const AnsiString& name) const {
    if (!names_.Holds(name)) return -1;
    for (int i = 0; i < Count(); ++i)
        if (SameText(GetQuerySQLItem(i)->QuerySQLName(), name)) return i;
    return -1;
}

void TQuerySQLDict::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TQuerySQLDict>(source);
    if (!other) {
        TCollection::Assign(source);
        return;
    }
    if (other == this) return;
    TMemoryStream stream;
    const_cast<TQuerySQLDict*>(other)->SaveToStream(&stream);
    stream.SetPosition(0);
    LoadFromStream(&stream);
    OnChange = other->OnChange;
}

void TQuerySQLDict::SaveToStream(TStream* stream) {
    if (!stream) return;
    TWriter header(*stream, kBufferSize);
    header.WriteIdent(CT_TQuerySQLDict);
    header.WriteInteger(CT_VersioVyn);
    header.WriteInteger(Count());
    header.Flush();
    for (int i = 0; i < Count(); ++i) {
        TWriter name(*stream, kBufferSize);
        name.WriteString(GetQuerySQLItem(i)->QuerySQLName());
        name.Flush();
        GetQuerySQLItem(i)->WriteQuerySQLStream(stream);
    }
    modified_ = false;
}

void TQuerySQLDict::LoadFromStream(TStream* stream) {
    if (!stream) return;
    BeginUpdate();
    try {
        Clear();
        LoadItems(*stream);
    } catch (...) {
        EndUpdate();
        throw;
    }
    EndUpdate();
    modified_ = false;
}

void TQuerySQLDict::LoadItems(TStream& stream) {
    int64_t count = 0;
    {
        TReader header(stream, kBufferSize);
        if (!SameText(header.ReadIdentView(), CT_TQuerySQLDict)) throw Exception("Invalid Stream format");
        if (header.ReadInteger() != CT_VersioVyn) throw Exception("No valid version");
        count = header.ReadInteger();
    }
    // From 0 up to the count, both included: one entry more than saving counts. Hosts that write the further entry
    // depend on it, and a stream without it ends with the stream's read error after its last query.
    for (int64_t i = 0; i <= count; ++i) {
        TQuerySQLItem* item = Add();
        item->SetQuerySQLName(TReader(stream, kBufferSize).ReadString());
        item->ReadQuerySQLStream(&stream);
    }
}

void TQuerySQLDict::Update(TCollectionItem* item) {
    TCollection::Update(item);
    OnChange(this, static_cast<TQuerySQLItem*>(item));
}

}  // namespace vyn
