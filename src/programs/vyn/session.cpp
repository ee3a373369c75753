#include "programs/vyn/session.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "foundation/Uparametres.h"
#include "platform/controls/form_classes.h"
#include "platform/objects/class_table.h"
#include "platform/system/application.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/host/lookup_classes.h"
#include "programs/host/node_forms.h"
#include "programs/host/rule_procedures.h"
#include "programs/tools/source_folder.h"
#include "programs/vyn/script_database.h"
#include "providers/legacy/connection.h"
#include "providers/odbc/connection.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"

namespace vyn {

namespace fs = std::filesystem;

namespace session_detail {

constexpr char kModuleName[] = "Dades";
constexpr char kConnectionName[] = "Connexio";
constexpr char kInMemory[] = "Provider=SQLite;Data Source=:memory:";
constexpr char kVersionSuffix[] = "54";

// "libutil54.so" or "util54.so" of the folder: the library "util.dll".
AnsiString LibraryNameOf(const fs::path& path) {
    if (path.extension() != ".so") return {};
    std::string stem = path.stem().string();
    if (stem.rfind("lib", 0) == 0) stem.erase(0, 3);
    const size_t suffix = stem.size() - std::min(stem.size(), sizeof kVersionSuffix - 1);
    if (suffix == 0 || stem.substr(suffix) != kVersionSuffix) return {};
    return Utf8ToAnsiLossy(stem.substr(0, suffix)) + ".dll";
}

// What a node of the type 32 named "Sobre el programa" runs.
void SobreElPrograma(TObject*) {
    auto* form = ObjectCast<TFRMQuiSoc>(CreateFormNormal(&TFRMQuiSoc::StaticClass(), Application()));
    form->Describe(nullptr);
    Parametres()->SetParametreValue("PRMS01", Variant(static_cast<TComponent*>(form)->TComponent::Handle()));
}

void RegisterHostProcedures(TProcedureVyn& procedures) {
    procedures.RegisterProcedure("Sobre_el_programa", "About this program.", &SobreElPrograma);
}

}  // namespace session_detail

AnsiString Session::DatabaseOf(const RunOptions& options) const {
    if (!options.Database.empty()) return Utf8ToAnsi(options.Database);
    const AnsiString beside = ChangeFileExt(file_, ".db");
    if (FileExists(beside)) return "Provider=SQLite;Data Source=" + beside;
    const AnsiString script = DirectoryExists(file_) ? file_ + "/database.sql" : ChangeFileExt(file_, ".sql");
    if (FileExists(script))
        return "Provider=SQLite;Data Source=" + DatabaseFromScript(script, ChangeFileExt(ExtractFileName(file_), ""));
    return session_detail::kInMemory;
}

Session::Session(const RunOptions& options) {
    RunOptions wanted = options;
    if (wanted.Demo) wanted.File = DemoFolder();
    RegisterSqliteProvider();
    RegisterLegacyProvider();
    RegisterPostgresqlProvider();
    RegisterOdbcProvider();
    file_ = ExpandFileName(Utf8ToAnsi(wanted.File));
    valuesFile_ = wanted.ValuesFile.empty() ? ChangeFileExt(file_, ".values") : Utf8ToAnsi(wanted.ValuesFile);
    // The sample may stand where the user cannot write.
    if (wanted.Demo && wanted.ValuesFile.empty()) valuesFile_ = UserDataFolder() + "trading.values";

    // The sample brings its data along, wherever it is to live.
    if (wanted.Demo && !wanted.Database.empty()) FillDatabase(Utf8ToAnsi(wanted.Database), file_ + "/database.sql");

    data_ = std::make_unique<TDataModule>(nullptr);
    data_->SetName(session_detail::kModuleName);
    connection_ = new TADOConnection(data_.get());
    connection_->SetName(session_detail::kConnectionName);
    connection_->SetConnectionString(DatabaseOf(wanted));
    SetFindGlobalComponent([this](std::string_view name) -> TComponent* {
        const size_t dot = name.find('.');
        if (!SameText(name.substr(0, dot), session_detail::kModuleName)) return nullptr;
        return dot == std::string_view::npos ? data_.get() : data_->FindComponent(name.substr(dot + 1));
    });
    database_ = std::make_unique<TDataBaseVynADO>(nullptr);
    database_->SetADOConnection(connection_);

    app_ = std::make_unique<TVynApp>(nullptr);
    app_->AddDB(database_.get(), true);
    const AnsiString folder = DirectoryExists(file_) ? IncludeTrailingPathDelimiter(file_) : ExtractFilePath(file_);
    const AnsiString package = folder + app_->VynBPLName();
    if (SharedLibraryExists(package)) app_->SetVynBPLName(package);
    session_detail::RegisterHostProcedures(app_->Procedures());
    RegisterRuleProcedures(app_->Procedures());
    app_->LoadBPL();
    const auto stream = OpenApplicationStream(wanted.File);
    app_->LoadAppFromStream(*stream);
    LoadLibraries(folder);
    app_->SetAppFile(file_);
    const TTreeVyn& tree = app_->Tree();
    app_->SetAppName(tree.FindIDNode(tree.FirstIdNode()) ? tree.GetIDNode(tree.FirstIdNode()).Name
                                                         : ExtractFileName(file_));
    app_->Recursos().LoadUserRecursosFromFile(valuesFile_);
    RegisterQueryClasses(*app_);
    // Shortcuts show what they stand for.
    app_->Tree().SetRealTree(false);
    app_->SetModified(false);
    SetNodeOpener(this);
}

Session::~Session() {
    SetNodeOpener(nullptr);
    // Windows go before the data that they show, and before the toolkit; those that were opened last go first.
    for (int i = Application()->ComponentCount(); i-- > 0;)
        if (i < Application()->ComponentCount() && ObjectCast<TCustomForm>(Application()->Components(i)))
            delete Application()->Components(i);
    UnregisterQueryClasses();
    app_.reset();
    SetFindGlobalComponent(nullptr);
}

void Session::LoadLibraries(const AnsiString& folder) {
    std::vector<AnsiString> names;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(SystemFileName(folder.empty() ? AnsiString(".") : folder), ignored))
        if (const AnsiString name = session_detail::LibraryNameOf(entry.path()); !name.empty()) names.push_back(name);
    std::sort(names.begin(), names.end());
    for (const AnsiString& name : names)
        if (!app_->Procedures().RegisterDLL(folder.empty() ? AnsiString(".") : ExcludeTrailingPathDelimiter(folder),
                                            name))
            Complain("the procedure library " + AnsiToUtf8(name) + " does not load: " + AnsiToUtf8(LastLibraryError()));
}

TFRMtnAplicacio& Session::MainForm() {
    if (mainForm_) return *mainForm_;
    TTreeVyn& tree = app_->Tree();
    if (tree.FindIDNode(tree.FirstIdNode()) && tree.GetIDNode(tree.FirstIdNode()).IDComponent > 0)
        mainForm_ = ObjectCast<TFRMtnAplicacio>(app_->ObreComponent(tree.FirstIdNode(), Application()));
    if (!mainForm_) {
        mainForm_ = static_cast<TFRMtnAplicacio*>(CreateFormNormal(&TFRMtnAplicacio::StaticClass(), Application()));
        mainForm_->ShowApplication(app_.get());
    }
    const ConnectionString settings(connection_->ConnectionString());
    mainForm_->SetStatus(0, ExtractFileName(app_->AppFile()));
    mainForm_->SetStatus(1, "DBDades: " + ExtractFileName(settings.Value("Data Source", ":memory:")));
    return *mainForm_;
}

TComponent& Session::Open(int idNode) {
    TComponent* component = app_->ObreComponent(idNode, Application());
    if (component) return *component;
    throw Exception("The node " + IntToStr(idNode) + " \"" + app_->Tree().GetIDNode(idNode).Name +
                    "\" opens nothing: it has no component");
}

TComponent& Session::OpenUnguarded(int idNode) {
    if (const int guard = GuardOf(idNode); guard > 0)
        throw Exception("The node " + IntToStr(idNode) + " opens only after its guard, the node " + IntToStr(guard) +
                        ", has let the user in");
    return idNode == app_->Tree().FirstIdNode() ? MainForm() : Open(idNode);
}

void Session::OpenNode(int idNode) {
    TComponent* component = app_->ObreComponent(idNode, Application());
    auto* form = ObjectCast<TCustomForm>(component);
    if (!form) return;
    if (form->WindowState() == wsMinimized) form->SetWindowState(wsNormal);
    form->Show();
}

int Session::GuardOf(int idNode) {
    // Only the node right above guards.
    TTreeVyn& tree = app_->Tree();
    const TNodeArbre parent = tree.GetIDNode(tree.GetIDNode(idNode).IDParent);
    return parent.NodeType == NodeTypeGuard ? parent.IDNode : 0;
}

void Session::SaveApplication() {
    TMemoryStream application;
    app_->SaveAppToStream(application);
    if (DirectoryExists(file_)) {
        application.SetPosition(0);
        for (const SourceRemark& remark : ExportSourceFolder(application, AnsiToUtf8(file_)))
            Complain(remark.Sentence());
    } else {
        application.SaveToFile(file_);
    }
    app_->SetModified(false);
}

void Session::SaveValues() {
    const TParametres* values = Parametres();
    const bool userResources = app_->Recursos().UserModified;
    if ((values && values->Count(true) > 0) || userResources) app_->Recursos().SaveUserRecursosToFile(valuesFile_);
}

}  // namespace vyn
