#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "platform/objects/collection.h"
#include "platform/streams/stream.h"
#include "platform/text/compare.h"

namespace vyn {

class TDataBaseVyn;
class TDataBaseVynDict;
class TQuerySQLDict;
class TReader;
class TWriter;

// The tag of a stored query dictionary; compares without regard to case.
constexpr char CT_TQuerySQLDict[] = "TQuerySQLDict";

// What a database knows about its tables and its stored queries; both travel with it in the application file
// (docs/formats/table-dictionary.md, query-dictionary.md, table-fields.md). Main thread only.

// One field of a table. The order and types of the members are those of the stored records; beyond the name, which
// look-ups compare without regard to case, their meaning is the application's.
struct TSQLField {
    AnsiString FieldName;
    AnsiString FieldText1;
    AnsiString FieldText2;
    AnsiString FieldText3;
    AnsiString FieldText4;
    AnsiString FieldText5;
    int32_t FieldValue1 = 0;
    AnsiString FieldText6;
    int32_t FieldValue2 = 0;

    friend bool operator==(const TSQLField&, const TSQLField&) = default;
};

// A record with every member empty or zero.
const TSQLField& SQLField_NULL();

// When a field stands in a generated SELECT list; for applications.
enum class TSQLFieldAvailable { sfa_Allways, sfa_IfNeeded, sfa_Explicit };
using enum TSQLFieldAvailable;
const EnumType& TypeInfoOf(TypeTag<TSQLFieldAvailable>);

// The ordered field records of one table. Positions outside 0 to Count - 1 raise EListError.
class TDataSetDict : public TPersistent {
    VYN_OBJECT
  public:
    void Add(const TSQLField& field) { fields_.push_back(field); }
    void Delete(int index);
    void Clear() { fields_.clear(); }
    int Count() const { return static_cast<int>(fields_.size()); }
    TSQLField GetSQLField(int index) const { return fields_[Checked(index)]; }
    void SetSQLField(int index, const TSQLField& field) { fields_[Checked(index)] = field; }
    // The first field of a name, or -1.
    int IndexOfFieldName(const AnsiString& name) const;
    // Swaps two records.
    void MovePos(int a, int b);
    void Assign(const TPersistent* source) override;

    // Loading replaces what is there. An error while loading leaves the records before it.
    void LoadFromStream(TStream* stream);
    void SaveToStream(TStream* stream);
    void LoadDataSetDictProperty(TReader* reader);
    void WriteDataSetDictProperty(TWriter* writer);
    void DefineProperties(TFiler& filer) override;

  private:
    size_t Checked(int index) const;

    std::vector<TSQLField> fields_;
};

// How often each name stands in a dictionary, without regard to case: whether a name is taken is known at once.
class DictionaryNames {
  public:
    // prefix: of the names that are made for new entries.
    explicit DictionaryNames(AnsiString prefix) : prefix_(std::move(prefix)) {}
    void Put(const AnsiString& name) { ++counts_[name]; }
    void Take(const AnsiString& name);
    bool Holds(const AnsiString& name) const { return counts_.find(name) != counts_.end(); }
    // The prefix and the smallest number from 1 on that makes a free name.
    AnsiString NewName();

  private:
    AnsiString prefix_;
    std::unordered_map<AnsiString, int, TextHash, TextEqual> counts_;
    int lowestFree_ = 1;  // every smaller number is taken
};

// One table: its name, the text shown for it, its fields (owned). A new table's name is made by its dictionary.
class TDataBaseVynDictItem : public TCollectionItem {
    VYN_OBJECT
  public:
    // Raises EInvalidCast for a collection of another class.
    explicit TDataBaseVynDictItem(TCollection* collection);
    ~TDataBaseVynDictItem() override;

    const AnsiString& TableName() const { return tableName_; }
    // Raises "Table name found "X"" when any table of the dictionary has the name. The table itself counts too, so that
    // a change of letter case alone is refused.
    void SetTableName(const AnsiString& value);
    AnsiString TableDisplayString;
    TDataSetDict* DataSetDict() const { return const_cast<TDataSetDict*>(&dataSetDict_); }
    void SetDataSetDict(TDataSetDict* value);
    TDataBaseVynDict* Dictionary() const;

    void LoadFromStream(TStream* stream);
    void SaveToStream(TStream* stream);
    // Name, text and fields. A name that another table has raises as SetTableName does.
    void Assign(const TPersistent* source) override;
    void SetCollection(TCollection* collection) override;
    AnsiString DisplayName() const override;

  private:
    void Rename(const AnsiString& value);
    void TakeName(const AnsiString& value);

    AnsiString tableName_;
    TDataSetDict dataSetDict_;
};

// Item is the collection item that changed, or null for several. (Its name is older than the items of today.)
using TDataBaseVynDictChange = Event<void(TDataBaseVynDict* Sender, TDataBaseVynDictItem* Item)>;

// The tables of a database, in order. Their names are unique without regard to case.
class TDataBaseVynDict : public TCollection {
    VYN_OBJECT
  public:
    explicit TDataBaseVynDict(TDataBaseVyn* database);
    ~TDataBaseVynDict() override;

    TDataBaseVynDictItem* Add() { return static_cast<TDataBaseVynDictItem*>(TCollection::Add()); }
    TDataBaseVynDictItem* GetDataSetDictItem(int index) const;
    // Assigns into the item that is there.
    void SetDataSetDictItem(int index, const TDataBaseVynDictItem* item) { GetDataSetDictItem(index)->Assign(item); }
    int IndexOfTable(const AnsiString& name) const;
    // "TBL_" and the smallest number from 1 on that is not taken.
    AnsiString NewTableName() { return names_.NewName(); }
    void Assign(const TPersistent* source) override;
    // Loading replaces what is there.
    void LoadFromStream(TStream* stream);
    void SaveToStream(TStream* stream);
    void Update(TCollectionItem* item) override;

    TDataBaseVynDictChange OnChange;  // not published

  private:
    friend class TDataBaseVynDictItem;
    DictionaryNames names_;
};

// One stored query: its name and its image, bytes that only the query builder understands.
class TQuerySQLItem : public TCollectionItem {
    VYN_OBJECT
  public:
    // Raises EInvalidCast for a collection of another class.
    explicit TQuerySQLItem(TCollection* collection);
    ~TQuerySQLItem() override;

    const AnsiString& QuerySQLName() const { return name_; }
    // Raises "Name exists: "X"" by the rule of TDataBaseVynDictItem::SetTableName.
    void SetQuerySQLName(const AnsiString& value);
    // Owned; stands at 0 after reading and writing.
    TMemoryStream& QuerySQLStream() { return image_; }
    TQuerySQLDict* Dictionary() const;

    // A 4-byte count and that many bytes.
    void ReadQuerySQLStream(TStream* stream);
    void WriteQuerySQLStream(TStream* stream);
    void DefineProperties(TFiler& filer) override;
    void Assign(const TPersistent* source) override;
    void SetCollection(TCollection* collection) override;
    AnsiString DisplayName() const override;

  private:
    void Rename(const AnsiString& value);

    AnsiString name_;
    TMemoryStream image_;
};

using TQuerySQLDictChange = Event<void(TQuerySQLDict* Sender, TQuerySQLItem* Item)>;

// The stored queries of a database, in order.
class TQuerySQLDict : public TCollection {
    VYN_OBJECT
  public:
    explicit TQuerySQLDict(TPersistent* owner);
    ~TQuerySQLDict() override;

    TQuerySQLItem* Add() { return static_cast<TQuerySQLItem*>(TCollection::Add()); }
    TQuerySQLItem* GetQuerySQLItem(int index) const { return static_cast<TQuerySQLItem*>(Items(index)); }
    void SetQuerySQLItem(int index, const TQuerySQLItem* item) { GetQuerySQLItem(index)->Assign(item); }
    int IndexOfQuery(const AnsiString& name) const;
    // "QUERYSQL" and the smallest number from 1 on that is not taken.
    AnsiString NewQuerySQLName() { return names_.NewName(); }

    // Goes through the stream format, with what LoadFromStream does at its end; then takes the source's OnChange.
    void Assign(const TPersistent* source) override;
    // Reads one query more than the count that SaveToStream stores: a stream that ends with its last query is read
    // whole, leaves one unnamed query behind it and raises the stream's read error. Streams of hosts that write the
    // further query are read without an error.
    void LoadFromStream(TStream* stream);
    void SaveToStream(TStream* stream);

    // Set by those who change queries; saving and loading clear it.
    bool Modified() const { return modified_; }
    void SetModified(bool value) { modified_ = value; }
    void Update(TCollectionItem* item) override;

    TQuerySQLDictChange OnChange;  // not published

  private:
    friend class TQuerySQLItem;
    void LoadItems(TStream& stream);

    DictionaryNames names_;
    bool modified_ = false;
};

}  // namespace vyn
