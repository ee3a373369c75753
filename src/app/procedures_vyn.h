#pragma once

#include <vector>

#include "foundation/errors.h"
#include "platform/objects/component.h"
#include "platform/objects/strings.h"
#include "platform/system/shared_library.h"

namespace vyn {

class TProcedureVyn;
class TVynApp;

// A routine that stored applications call by name.
using TVynProcedurePointer = void (*)(TObject* object);
// What a procedure library exports with C linkage: REGISTER_LIBRARY registers its procedures; "HLP" + name fills in the
// help of that procedure.
using TRegisterLibraryEntry = void (*)(TProcedureVyn* registry);
using TProcedureHelpEntry = void (*)(AnsiString* help);
constexpr char CT_RegisterLibraryEntry[] = "REGISTER_LIBRARY";
constexpr char CT_HelpEntryPrefix[] = "HLP";

// One registered procedure.
struct TRegisteredProcedureVyn {
    AnsiString Name;      // letters, digits and "_"; unique without regard to case
    HMODULE Library = 0;  // 0: the host's
    TVynProcedurePointer Proc = nullptr;
    AnsiString Help;
};
const TRegisteredProcedureVyn& RegisteredProcedureVyn_NUL();

// One loaded library.
struct TRegisteredVynLibrary {
    AnsiString Name;      // as registered
    AnsiString FileName;  // as loaded
    HMODULE Handle = 0;
};

// Splits a file name: directory, name up to its first dot, and the rest from that dot on. True when there is a name.
bool ExtractFileNameValues(const AnsiString& fileName, AnsiString& dir, AnsiString& name, AnsiString& ext);

// The application's registry of procedures and of the libraries that bring them.
//
// Names compare without regard to case; the first match wins. Errors are EProcedureVyn "TProcedureVyn ERROR\n" + text.
// Main thread only.
class TProcedureVyn : public TPersistent {
    VYN_OBJECT
  public:
    explicit TProcedureVyn(TVynApp* owner) : owner_(owner) {}
    ~TProcedureVyn() override;

    TVynApp* OwnerApp() const { return owner_; }

    // Procedures. Registered while a library's entry runs, they are that library's. True, or an error.
    bool RegisterProcedure(const AnsiString& name, TVynProcedurePointer proc) {
        return RegisterProcedure(name, "", proc);
    }
    bool RegisterProcedure(const AnsiString& name, const AnsiString& help, TVynProcedurePointer proc);
    void UnRegisterProcedure(const AnsiString& name);
    void ExecuteProcedure(const AnsiString& name, TObject* object);
    int ProcedureVynIndex(const AnsiString& name) const;
    TVynProcedurePointer GetProcedureVynPointer(const AnsiString& name) const;
    AnsiString GetProcedureVynName(int index) const;
    // Empty for a procedure of the host.
    AnsiString GetProcedureVynLibrary(int index) const;
    // The text given at registration, else the library's, then what OnHelpCalled makes of it.
    AnsiString GetProcedureVynHelp(const AnsiString& name);
    TRegisteredProcedureVyn GetProcedures(int index) const;
    int ProceduresCount() const { return static_cast<int>(procedures_.size()); }
    // With an empty name the host's procedures. For a library the procedures are compared with its place in the list
    // of libraries, not with its handle as ProceduresNames does: for a named library the count is normally 0, and
    // stored applications rely on it.
    int ProceduresCount(const AnsiString& dllName) const;
    // An empty name gives all.
    void ProceduresNames(const AnsiString& dllName, TStrings& strings) const;
    void ProceduresNames(HMODULE library, TStrings& strings) const;

    // Libraries. False when another library is registering, or when the file does not load.
    bool RegisterDLL(const AnsiString& baseDir, const AnsiString& dllName);
    bool UnRegisterDLL(const AnsiString& dllName);
    int FindDll(const AnsiString& dllName) const;
    int FindDll(HMODULE handle) const;
    int GetDLLCount() const { return static_cast<int>(libraries_.size()); }
    AnsiString GetDLLName(int index) const;
    TRegisteredVynLibrary GetDlls(int index) const;
    static int GetVynDllVersion() { return CT_VersioVyn; }
    // "util.dll" becomes "util54.dll", in its own directory or, where a file stands there, below the base directory.
    static AnsiString FileNameToDllName(const AnsiString& baseDir, const AnsiString& fileName);

    void CheckName(const AnsiString& name) const;

    Event<void(TProcedureVyn* Sender, const AnsiString& ProcedureName, TObject*& ObjectToSend)> OnExecuteProcedure;
    Event<void(const AnsiString& DllName, TOperation Op)> OnDllOperation;
    Event<void(const AnsiString& ProcedureName, AnsiString& HelpString)> OnHelpCalled;

  protected:
    [[noreturn]] void Error(const AnsiString& text) const;

  private:
    void CheckIndex(int index, size_t count) const;
    int RequireProcedure(const AnsiString& name, const char* operation) const;

    TVynApp* owner_;
    std::vector<TRegisteredProcedureVyn> procedures_;
    std::vector<TRegisteredVynLibrary> libraries_;
    NameIndex procedureIndex_;
    HMODULE registering_ = 0;
    void ReindexProcedures();
};

}  // namespace vyn
