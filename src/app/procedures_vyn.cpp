#include "app/procedures_vyn.h"

#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace procedures_detail {

bool IsNameCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// A name that says where it stands: with a drive, or from the root.
bool IsRooted(const AnsiString& fileName) {
    return (fileName.size() > 1 && fileName[1] == ':') ||
           (!fileName.empty() && (fileName[0] == '\\' || fileName[0] == '/'));
}

}  // namespace procedures_detail

const TRegisteredProcedureVyn& RegisteredProcedureVyn_NUL() {
    static const TRegisteredProcedureVyn nul;
    return nul;
}

const ClassInfo& TProcedureVyn::StaticClass() {
    static const ClassInfo info = DefineClass<TProcedureVyn, TPersistent>("TProcedureVyn")
                                      .Event("OnExecuteProcedure", &TProcedureVyn::OnExecuteProcedure)
                                      .Event("OnDllOperation", &TProcedureVyn::OnDllOperation)
                                      .Event("OnHelpCalled", &TProcedureVyn::OnHelpCalled);
    return info;
}

bool ExtractFileNameValues(const AnsiString& fileName, AnsiString& dir, AnsiString& name, AnsiString& ext) {
    dir = ExtractFileDir(fileName);
    name = ExtractFileName(fileName);
    ext.clear();
    // The first dot splits the name, not the last.
    const size_t dot = name.find('.');
    if (dot != AnsiString::npos) {
        ext = name.substr(dot);
        name.resize(dot);
    }
    return !name.empty();
}

void TProcedureVyn::Error(const AnsiString& text) const { throw EProcedureVyn(ClassName() + " ERROR\n" + text); }

TProcedureVyn::~TProcedureVyn() {
    while (!libraries_.empty()) UnRegisterDLL(libraries_.back().Name);
}

void TProcedureVyn::CheckIndex(int index, size_t count) const {
    if (index < 0 || static_cast<size_t>(index) >= count) Error("Index out of Bounds");
}

void TProcedureVyn::CheckName(const AnsiString& name) const {
    if (name.empty()) Error("Name can't be ''");
    for (size_t i = 0; i < name.size(); ++i)
        if (!procedures_detail::IsNameCharacter(name[i]))
            Error(name + " is not a valid Procedure name.\nInvalid char: " + name[i] + " Pos " +
                  IntToStr(static_cast<int64_t>(i) + 1));
}

void TProcedureVyn::ReindexProcedures() {
    procedureIndex_.Clear();
    for (size_t i = 0; i < procedures_.size(); ++i)
        procedureIndex_.Insert(procedures_[i].Name, static_cast<uint32_t>(i));
}

bool TProcedureVyn::RegisterProcedure(const AnsiString& name, const AnsiString& help, TVynProcedurePointer proc) {
    TRegisteredProcedureVyn record = RegisteredProcedureVyn_NUL();
    record.Name = name;
    record.Library = registering_;
    record.Proc = proc;
    record.Help = help;
    CheckName(name);
    if (!procedureIndex_.Insert(name, static_cast<uint32_t>(procedures_.size())))
        Error("Duplicate Procedure names : " + name);
    procedures_.push_back(std::move(record));
    return true;
}

int TProcedureVyn::ProcedureVynIndex(const AnsiString& name) const {
    const uint32_t at = procedureIndex_.Find(name);
    return at == NameIndex::NotFound ? -1 : static_cast<int>(at);
}

int TProcedureVyn::RequireProcedure(const AnsiString& name, const char* operation) const {
    const int index = ProcedureVynIndex(name);
    if (index < 0) Error("Procedure " + name + " not found in \"" + operation + "\"");
    return index;
}

void TProcedureVyn::UnRegisterProcedure(const AnsiString& name) {
    procedures_.erase(procedures_.begin() + RequireProcedure(name, "UnRegisterProcedure"));
    ReindexProcedures();
}

void TProcedureVyn::ExecuteProcedure(const AnsiString& name, TObject* object) {
    const TVynProcedurePointer proc = procedures_[static_cast<size_t>(RequireProcedure(name, "ExecuteProcedure"))].Proc;
    OnExecuteProcedure(this, name, object);
    if (proc) proc(object);
}

TVynProcedurePointer TProcedureVyn::GetProcedureVynPointer(const AnsiString& name) const {
    return procedures_[static_cast<size_t>(RequireProcedure(name, "GetProcedureVynPointer"))].Proc;
}

AnsiString TProcedureVyn::GetProcedureVynName(int index) const {
    CheckIndex(index, procedures_.size());
    return procedures_[static_cast<size_t>(index)].Name;
}

TRegisteredProcedureVyn TProcedureVyn::GetProcedures(int index) const {
    CheckIndex(index, procedures_.size());
    return procedures_[static_cast<size_t>(index)];
}

AnsiString TProcedureVyn::GetProcedureVynLibrary(int index) const {
    CheckIndex(index, procedures_.size());
    const int library = FindDll(procedures_[static_cast<size_t>(index)].Library);
    return library < 0 ? AnsiString() : libraries_[static_cast<size_t>(library)].Name;
}

AnsiString TProcedureVyn::GetProcedureVynHelp(const AnsiString& name) {
    const TRegisteredProcedureVyn& record =
        procedures_[static_cast<size_t>(RequireProcedure(name, "GetProcedureVynHelp"))];
    AnsiString help = record.Help;
    if (help.empty() && record.Library != 0) {
        void* entry = GetProcAddress(record.Library, CT_HelpEntryPrefix + record.Name);
        if (entry) reinterpret_cast<TProcedureHelpEntry>(entry)(&help);
    }
    OnHelpCalled(name, help);
    return help;
}

int TProcedureVyn::ProceduresCount(const AnsiString& dllName) const {
    HMODULE wanted = 0;
    if (!dllName.empty()) {
        const int index = FindDll(dllName);
        if (index < 0) Error("DLL not found:\n" + dllName);
        wanted = static_cast<HMODULE>(index);
    }
    int count = 0;
    for (const TRegisteredProcedureVyn& record : procedures_)
        if (record.Library == wanted) ++count;
    return count;
}

void TProcedureVyn::ProceduresNames(const AnsiString& dllName, TStrings& strings) const {
    strings.Clear();
    if (dllName.empty()) {
        for (const TRegisteredProcedureVyn& record : procedures_) strings.Add(record.Name);
        return;
    }
    const int index = FindDll(dllName);
    if (index < 0) Error("Library " + dllName + " not found");
    ProceduresNames(libraries_[static_cast<size_t>(index)].Handle, strings);
}

void TProcedureVyn::ProceduresNames(HMODULE library, TStrings& strings) const {
    strings.Clear();
    for (const TRegisteredProcedureVyn& record : procedures_)
        if (record.Library == library) strings.Add(record.Name);
}

int TProcedureVyn::FindDll(const AnsiString& dllName) const {
    for (size_t i = 0; i < libraries_.size(); ++i)
        if (SameText(libraries_[i].Name, dllName)) return static_cast<int>(i);
    return -1;
}

int TProcedureVyn::FindDll(HMODULE handle) const {
    for (size_t i = 0; i < libraries_.size(); ++i)
        if (libraries_[i].Handle == handle) return static_cast<int>(i);
    return -1;
}

AnsiString TProcedureVyn::GetDLLName(int index) const {
    CheckIndex(index, libraries_.size());
    return libraries_[static_cast<size_t>(index)].Name;
}

TRegisteredVynLibrary TProcedureVyn::GetDlls(int index) const {
    CheckIndex(index, libraries_.size());
    return libraries_[static_cast<size_t>(index)];
}

AnsiString TProcedureVyn::FileNameToDllName(const AnsiString& baseDir, const AnsiString& fileName) {
    AnsiString dir, name, ext;
    ExtractFileNameValues(fileName, dir, name, ext);
    AnsiString result = name + IntToStr(CT_VersioVyn) + ext;
    if (!dir.empty()) result = dir + "\\" + result;
    if (!baseDir.empty()) {
        const AnsiString candidate = procedures_detail::IsRooted(result)
                                         ? ExtractRelativePath(IncludeTrailingPathDelimiter(baseDir), result)
                                         : baseDir + "\\" + result;
        if (SharedLibraryExists(candidate)) result = candidate;
    }
    return result;
}

bool TProcedureVyn::RegisterDLL(const AnsiString& baseDir, const AnsiString& dllName) {
    if (registering_ != 0) return false;
    if (FindDll(dllName) >= 0) Error("Library " + dllName + " allready Registered");
    OnDllOperation(dllName, opInsert);
    const AnsiString fileName = FileNameToDllName(baseDir, dllName);
    const HMODULE handle = LoadSharedLibrary(fileName);
    if (handle == 0) return false;
    libraries_.push_back({dllName, fileName, handle});
    void* entry = GetProcAddress(handle, CT_RegisterLibraryEntry);
    if (!entry) return true;
    registering_ = handle;
    try {
        reinterpret_cast<TRegisterLibraryEntry>(entry)(this);
    } catch (...) {
        registering_ = 0;
        throw;
    }
    registering_ = 0;
    return true;
}

bool TProcedureVyn::UnRegisterDLL(const AnsiString& dllName) {
    const int index = FindDll(dllName);
    if (index < 0) Error("Library " + dllName + " not found");
    // A copy: the name may be the record's own, which goes.
    const TRegisteredVynLibrary library = libraries_[static_cast<size_t>(index)];
    OnDllOperation(library.Name, opRemove);
    for (int i = ProceduresCount() - 1; i >= 0; --i)
        if (procedures_[static_cast<size_t>(i)].Library == library.Handle) UnRegisterProcedure(GetProcedureVynName(i));
    FreeSharedLibrary(library.Handle);
    libraries_.erase(libraries_.begin() + index);
    return true;
}

}  // namespace vyn
