#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "foundation/errors.h"
#include "platform/objects/persistent.h"
#include "platform/streams/stream.h"

namespace vyn {

class TReader;
class TRecursosVyn;
class TWriter;

// The tag of a stored component store (docs/formats/components.md). Compared with its case.
constexpr char CT_TComponentVyn[] = "TComponentVyn";

// One entry of the store; passed by pointer in messages, so that a component can read and change it.
struct TComponentVyn {
    int IDComponent = 0;  // unique in the store; -1 for a component that is not yet stored
    int CompType = 0;     // the node type that it was made for
    AnsiString Name;
};
using TArrayOfTComponentsType = std::vector<int>;
using TComponentVynList = std::vector<TComponentVyn>;
const TComponentVyn& ComponentVyn_NUL();

// The stored components of an application: numbered streams, in the order in which they came.
//
// Deleting a component deletes the resources that belong to it. Look-ups by number go through an index. Errors are
// EComponentsVyn with their text alone. Main thread only.
class TComponentsVyn : public TPersistent {
    VYN_OBJECT
  public:
    // The resource store is the application's and outlives this one; null for a store on its own.
    explicit TComponentsVyn(TRecursosVyn* recursos) : recursos_(recursos) {}

    int AddComponent(const AnsiString& name, int compType, TStream& stream);
    int InsertComponent(const TComponentVyn& record, TStream& stream);
    void DeleteComponent(int id);
    bool ChangeIDComponent(int oldId, int newId);
    void ModifyComponent(int id, const AnsiString& name, int compType);
    // A fresh copy, at its beginning.
    std::unique_ptr<TMemoryStream> GetStreamComponent(int id) const;
    void SetStreamComponent(int id, TStream& stream);
    TComponentVyn GetComponent(int id) const;
    TComponentVyn GetIdxComponent(int index) const;
    // The bytes themselves, valid until the store changes.
    std::string_view BytesAt(int index) const { return entries_[static_cast<size_t>(index)].bytes; }
    bool FindIDComponent(int id) const { return FindInList(id) >= 0; }
    int FindInList(int id) const;
    int GetNewIDComponent() const;
    // An empty list of types selects all.
    TComponentVynList GetComponentsList(const TArrayOfTComponentsType& types) const;
    TComponentVynList GetComponentsList(int type) const;
    int Count() const { return static_cast<int>(entries_.size()); }
    void Clear();

    void LoadFromStream(TStream& stream);
    void SaveToStream(TStream& stream);
    void InternalReadFromReader(TReader& reader);
    void InternalWriteToWriter(TWriter& writer);
    void DefineProperties(TFiler& filer) override;

    bool Modified = false;

  protected:
    [[noreturn]] static void Error(const AnsiString& text) { throw EComponentsVyn(text); }

  private:
    struct Entry {
        TComponentVyn record;
        AnsiString bytes;
    };
    int Append(const TComponentVyn& record, AnsiString bytes);

    TRecursosVyn* recursos_;
    std::vector<Entry> entries_;
    std::unordered_map<int, int> positions_;
    mutable int highest_ = 0;
    mutable bool highestKnown_ = true;
};

}  // namespace vyn
