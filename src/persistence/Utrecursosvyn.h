#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/objects/persistent.h"
#include "platform/streams/stream.h"
#include "platform/text/exceptions.h"

namespace vyn {

class TReader;
class TWriter;

VYN_EXCEPTION(ERecursosVyn, Exception);

// The tag of a stored resource store (docs/formats/resources.md).
constexpr char CT_TRecursosVyn[] = "TRecursosVyn";
// Resources up to this number belong to the application file; those after it to the user's.
constexpr int LastApplicationRecursos = 89999;
constexpr int FirstUserRecursos = 90000;
// The saved state of the global Parametres, in the user values file.
constexpr int ParametresRecursos = 100001;
constexpr int ParametresRecType = 9;
constexpr char ParametresRecursosName[] = "VYNAPPLICATION";

// The description of one resource.
struct TRecursos {
    int IDRecursos = 0;  // unique in the store, 0 or more
    int IDParent = 0;    // need not exist
    AnsiString Name;
    int RecType = 0;  // the callers' meaning
};
using TRecursosList = std::vector<TRecursos>;

// What look-ups give when there is nothing to give.
const TRecursos& Recursos_NUL();

// The numbered blocks of bytes of an application: forms, definitions, user values.
//
// Look-ups by number go through an index and stay flat. Insertion order is kept; a resource that is put again keeps its
// place. Errors are ERecursosVyn "TRecursosVyn Error:\n" + text; errors of damaged bytes are the reader's, and what was
// read before stays. Main thread only.
class TRecursosVyn : public TPersistent {
    VYN_OBJECT
  public:
    TRecursosVyn() = default;

    // Adding and changing.
    // A new number, the lowest free one from 1 upward, which is given back.
    int AddRecursos(int idParent, const AnsiString& name, int recType, TStream& stream);
    void InsertTRecursos(const TRecursos& recursos, TStream& stream) { InternalAdd(recursos, stream); }
    void ModifyRecursos(int id, int idParent, const AnsiString& name, int recType);
    // Each copies the whole of the stream, whatever its position.
    void SetStreamRecursos(int id, TStream& stream);
    // Children stay as they are.
    void DelRecursos(int id);
    // Exchanges two numbers; either may be missing.
    void SwapIDRecursos(int a, int b);
    void Clear();

    // Reading.
    int Count() const { return static_cast<int>(elements_.size()); }
    TRecursos GetIdxRecursos(int index) const;
    // Without the check of the range.
    TRecursos GetTRecursos(int index) const { return elements_[static_cast<size_t>(index)].recursos; }
    int FindPosInList(int id) const;
    bool FindIDRecursos(int id) const { return FindPosInList(id) >= 0; }
    TRecursos RetornaRecursos(int id) const;
    // A fresh copy of the bytes, at its beginning.
    std::unique_ptr<TMemoryStream> GetStreamRecursos(int id) const;
    // The bytes themselves, valid until the store changes; for those who only look.
    std::string_view BytesAt(int index) const { return elements_[static_cast<size_t>(index)].bytes; }
    TRecursosList RetornaFills(int idParent) const;
    TRecursosList RetornaFills(int idParent, int recType) const;
    // One shared iteration in store order: loops must not be nested. Recursos_NUL ends it.
    TRecursos FirstRecursos();
    TRecursos NextRecursos();
    // With firstFree the lowest number from start that is not in use; without, one more than the highest in use from
    // start upward, or start.
    int GetNewIDRecursos(int start, bool firstFree) const;

    // Streams. The range has no upper end when toID is below fromID or below 1.
    void SaveToStream(TStream& stream, int fromID, int toID);
    void LoadFromStream(TStream& stream);
    void WriteToWriter(TWriter& writer);
    void LoadFromReader(TReader& reader);
    // Writes the global Parametres as resource 100001 and the user's resources; an interruption leaves the old file.
    void SaveUserRecursosToFile(const AnsiString& fileName);
    // A file that is not there is no error.
    void LoadUserRecursosFromFile(const AnsiString& fileName);
    void DefineProperties(TFiler& filer) override;

    // Puts the global Parametres into resource 100001, or takes them from it (where it is there).
    void StoreParametres();
    void RestoreParametres();

    bool AppModified = false;
    bool UserModified = false;

  protected:
    // Replaces in place, or appends.
    virtual void InternalAdd(const TRecursos& recursos, TStream& stream);
    [[noreturn]] static void Error(const AnsiString& text);

  private:
    // TRecursosStream: a resource with its bytes.
    struct TRecursosStream {
        TRecursos recursos;
        AnsiString bytes;
    };
    static void CheckTRecursos(const TRecursos& recursos);
    void Modified(int id);
    void WriteRange(TWriter& writer, int fromID, int toID);
    void Added(int id, int position);
    void Removed(int id);

    std::vector<TRecursosStream> elements_;
    std::unordered_map<int, int> positions_;
    int cursor_ = -1;
    mutable int freeFrom_ = 1;  // no number from 1 up to here is free
    mutable int highest_ = -1;  // the highest number in use, -1 for none
    mutable bool highestKnown_ = true;
};

}  // namespace vyn
