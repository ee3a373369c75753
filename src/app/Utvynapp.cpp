#include "app/Utvynapp.h"

#include <algorithm>

#include "foundation/Uparametres.h"
#include "persistence/Uvynclss.h"
#include "platform/controls/win_control.h"
#include "platform/objects/class_table.h"
#include "platform/objects/filer.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/system/application.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace app_detail {

constexpr char kIdentifier[] = "VYN";
constexpr char kHiddenProperty[] = "VynStruct";
constexpr char kComponentsMark[] = "VYNCOMPONENTS";
constexpr char kTreeMark[] = "TREEVYN";
constexpr char kRecursosMark[] = "VYNRECURSOS";
constexpr char kInitializeEntry[] = "InitializeVynBPL";
constexpr char kFinalizeEntry[] = "FinalizeVynBPL";
constexpr char kNoPackage[] = "NO FILE";
constexpr int kFileBuffer = 1024;
constexpr int kSavedVersion = CT_VersioVyn * 100 + 1;
// While a tree is read the root is not known yet.
constexpr int kNoRoot = -1;
constexpr int kRootNode = 1;

using TPackageEntry = void (*)(TVynApp* app);

}  // namespace app_detail

const TVynAppSavedInfo& VynAppSavedInfo_NUL() {
    static const TVynAppSavedInfo nul;
    return nul;
}

const ClassInfo& TVynApp::StaticClass() {
    static const ClassInfo info = DefineClass<TVynApp, TComponent>("TVynApp")
                                      .Published("MainIDNode", &TVynApp::MainIDNode, &TVynApp::MainIDNode)
                                      .Default(0)
                                      .Published("DefaultDBName", &TVynApp::DefaultDBName, &TVynApp::SetDefaultDBName)
                                      .Published("VynBPLName", &TVynApp::VynBPLName, &TVynApp::SetVynBPLName)
                                      .Stored(&TVynApp::StoreBPLName)
                                      .Published("AppName", &TVynApp::AppName, &TVynApp::SetAppName)
                                      .Published("AppFile", &TVynApp::AppFile, &TVynApp::SetAppFile)
                                      .Event("BeforeOpenTComponent", &TVynApp::BeforeOpenTComponent)
                                      .Event("BeforeCreateStreamTComponent", &TVynApp::BeforeCreateStreamTComponent)
                                      .Event("SaveComponentCreated", &TVynApp::SaveComponentCreated)
                                      .Event("OnVynAppNeedClass", &TVynApp::OnVynAppNeedClass)
                                      .Event("OnVynAppNeedComponent", &TVynApp::OnVynAppNeedComponent)
                                      .Event("OnReadResourceError", &TVynApp::OnReadResourceError)
                                      .Event("OnChangedBPLState", &TVynApp::OnChangedBPLState)
                                      .Event("OnAppValuesChanged", &TVynApp::OnAppValuesChanged);
    return info;
}

TVynApp::TVynApp(TComponent* owner)
    : TComponent(owner),
      nodesList_(std::make_unique<TNodesList>(true)),
      procedures_(std::make_unique<TProcedureVyn>(this)),
      recursos_(std::make_unique<TRecursosVyn>()),
      components_(std::make_unique<TComponentsVyn>(recursos_.get())),
      tree_(std::make_unique<TTreeVyn>()),
      vynBPLName_(DefaultBPLName()) {
    savedInfo_.OpenTime = Now();
    if (!HasState(csDesigning)) SendAppMessage(VYN_APPCREATED, reinterpret_cast<intptr_t>(this), 0);
}

TVynApp::~TVynApp() {
    BeginDestruction();
    try {
        if (!HasState(csDesigning)) SendAppMessage(VYN_APPDESTROYED, reinterpret_cast<intptr_t>(this), 0);
        OnAppValuesChanged.Clear();
        if (VynBPLLoaded()) UnLoadBPL();
        ClearApp();
        databases_.clear();
        while (!compiledResources_.empty()) compiledResources_.erase(std::prev(compiledResources_.end()));
    } catch (const Exception& error) {
        Application()->MessageBox(error.Message(), "ERROR", 0);
    }
}

void TVynApp::ErrorVyn(const AnsiString& message) const { throw EVynError("TVynApp ERROR:\n" + message); }

void TVynApp::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove) return;
    const auto database = std::find_if(databases_.begin(), databases_.end(),
                                       [&](TDataBaseVyn* each) { return static_cast<TComponent*>(each) == component; });
    if (database != databases_.end()) DeleteDB(*database);
    if (static_cast<TComponent*>(defaultDB_) == component) defaultDB_ = nullptr;
    std::erase(openComponents_, component);
}

void TVynApp::AddOpenComponent(TComponent* component) {
    if (std::find(openComponents_.begin(), openComponents_.end(), component) != openComponents_.end()) return;
    openComponents_.push_back(component);
    component->FreeNotification(this);
}

bool TVynApp::ComponentIsFromVyn(const TComponent* component) const { return nodesList_->IndexOf(component) >= 0; }

bool TVynApp::GetModified() const { return components_->Modified || tree_->Modified() || recursos_->AppModified; }

void TVynApp::SetModified(bool value) {
    components_->Modified = value;
    tree_->SetModified(value);
    recursos_->AppModified = value;
}

void TVynApp::ClearApp() {
    tree_->Clear();
    components_->Clear();
    recursos_->Clear();
    SetModified(true);
}

void TVynApp::CloseApp() {
    savedInfo_ = VynAppSavedInfo_NUL();
    savedInfo_.OpenTime = Now();
    while (!openComponents_.empty()) {
        TComponent* component = openComponents_.back();
        openComponents_.pop_back();
        delete component;
    }
    while (nodesList_->Count() > 0) {
        TComponent* component = nodesList_->GetItem(nodesList_->Count() - 1).Component;
        nodesList_->Remove(nodesList_->Count() - 1);
        delete component;
    }
    for (int i = procedures_->GetDLLCount() - 1; i >= 0; --i)
        if (procedures_->GetDlls(i).Handle != 0) procedures_->UnRegisterDLL(procedures_->GetDLLName(i));
}

void TVynApp::SaveVynAppSavedInfo(TWriter& writer) {
    const TDateTime now = Now();
    writer.WriteListBegin();
    writer.WriteInteger(app_detail::kSavedVersion);
    writer.WriteDate(now);
    writer.WriteString({});
    writer.WriteInteger(savedInfo_.SaveCount + 1);
    writer.WriteDate(TDateTime(now - savedInfo_.OpenTime));
    writer.WriteListEnd();
}

void TVynApp::LoadVynAppSavedInfo(TReader& reader) {
    savedInfo_ = VynAppSavedInfo_NUL();
    if (reader.NextValue() == vaList) {
        reader.ReadListBegin();
        savedInfo_.Version = reader.ReadInteger();
        savedInfo_.SaveDate = reader.ReadDate();
        savedInfo_.SavedBy = reader.ReadString();
        savedInfo_.SaveCount = reader.ReadInteger();
        savedInfo_.EditTime = reader.ReadDate();
        reader.ReadListEnd();
    }
    savedInfo_.OpenTime = Now();
}

void TVynApp::SaveAppToStream(TStream& stream) {
    {
        TWriter writer(stream, app_detail::kFileBuffer);
        writer.WriteIdent(app_detail::kIdentifier);
        writer.WriteInteger(CT_VersioVyn);
        writer.WriteDate(Now());
        SaveVynAppSavedInfo(writer);
        writer.Flush();
    }
    components_->SaveToStream(stream);
    tree_->SaveToStream(&stream);
    recursos_->SaveToStream(stream, 0, LastApplicationRecursos);
}

void TVynApp::LoadAppFromStream(TStream& stream) {
    const TVynAppSavedInfo kept = savedInfo_;
    CloseApp();
    savedInfo_ = kept;
    {
        TReader reader(stream, app_detail::kFileBuffer);
        const AnsiString identifier = reader.ReadIdent();
        const int version = reader.ReadInteger();
        const TDateTime date = reader.ReadDate();
        if (!SameText(identifier, app_detail::kIdentifier) || version < CT_VersioVynMinima || version > CT_VersioVyn)
            ErrorVyn("Not a valid VYN Stream:\n" + identifier + "\n" + IntToStr(version));
        if (!(date.Val > OldestApplicationDate)) ErrorVyn("Not a valid VYN Stream (Corrupted DateTime)");
        LoadVynAppSavedInfo(reader);
    }
    components_->LoadFromStream(stream);
    tree_->SetFirstIdNode(app_detail::kNoRoot);
    tree_->LoadFromStream(&stream);
    tree_->SetFirstIdNode(app_detail::kRootNode);
    recursos_->LoadFromStream(stream);
}

void TVynApp::VynSaveToWriter(TWriter& writer) {
    writer.WriteListBegin();
    SaveVynAppSavedInfo(writer);
    writer.WriteString(app_detail::kComponentsMark);
    components_->InternalWriteToWriter(writer);
    writer.WriteString(app_detail::kTreeMark);
    tree_->SaveToWriter(writer);
    writer.WriteString(app_detail::kRecursosMark);
    recursos_->WriteToWriter(writer);
    writer.WriteListEnd();
    SetModified(false);
}

void TVynApp::VynLoadFromReader(TReader& reader) {
    const TVynAppSavedInfo kept = savedInfo_;
    CloseApp();
    ClearApp();
    savedInfo_ = kept;
    reader.ReadListBegin();
    LoadVynAppSavedInfo(reader);
    reader.ReadString();
    components_->InternalReadFromReader(reader);
    reader.ReadString();
    tree_->SetFirstIdNode(app_detail::kNoRoot);
    tree_->LoadFromReader(reader);
    tree_->SetFirstIdNode(app_detail::kRootNode);
    reader.ReadString();
    recursos_->LoadFromReader(reader);
    reader.ReadListEnd();
    loadedFromProperty_ = true;
    SetModified(false);
}

void TVynApp::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineProperty(
        app_detail::kHiddenProperty, [this](TReader& reader) { VynLoadFromReader(reader); },
        [this](TWriter& writer) { VynSaveToWriter(writer); }, loadedFromProperty_);
}

void TVynApp::SaveAppRecToStream(TStream& stream) {
    recursos_->StoreParametres();
    recursos_->SaveToStream(stream, FirstUserRecursos, -1);
}

void TVynApp::LoadAppRecFromStream(TStream& stream) {
    recursos_->LoadFromStream(stream);
    recursos_->RestoreParametres();
}

void TVynApp::AddDB(TDataBaseVyn* database, bool makeDefault) {
    if (!database) return;
    databases_.push_back(database);
    database->FreeNotification(this);
    if (makeDefault) SetDefaultDB(database);
}

void TVynApp::DeleteDB(TDataBaseVyn* database) {
    const auto found = std::find(databases_.begin(), databases_.end(), database);
    if (found == databases_.end()) return;
    databases_.erase(found);
    if (defaultDB_ == database) defaultDB_ = databases_.empty() ? nullptr : databases_.front();
}

void TVynApp::SetDefaultDB(TDataBaseVyn* database) {
    if (database == defaultDB_) return;
    if (database && Trim(database->VynDBName()).empty()) ErrorVyn("TDataBaseVyn - VynDBName cannot be empty!");
    defaultDB_ = database;
    if (!database) return;
    database->FreeNotification(this);
    if (std::find(databases_.begin(), databases_.end(), database) == databases_.end()) AddDB(database, false);
    defaultDBName_ = database->VynDBName();
}

void TVynApp::SetDefaultDBName(const AnsiString& name) {
    if (name == defaultDBName_) return;
    defaultDBName_ = name;
    SetDefaultDB(FindDatabaseVyn(name));
}

TDataBaseVyn* TVynApp::GetDefaultDB() {
    if (!defaultDB_) SetDefaultDB(FindDatabaseVyn(defaultDBName_));
    return defaultDB_;
}

TDataBaseVyn* TVynApp::GetDataBaseVyn(int index) const {
    if (index < 0 || index >= DataBaseVynCount())
        throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return databases_[static_cast<size_t>(index)];
}

void TVynApp::GetDataBaseVynNames(TStrings& strings) const {
    strings.Clear();
    for (TDataBaseVyn* database : databases_) strings.AddObject(database->VynDBName(), database);
}

intptr_t TVynApp::SendVynMessage(uint32_t message, intptr_t wParam, intptr_t lParam) {
    for (int i = 0; i < nodesList_->Count(); ++i)
        if (auto* control = ObjectCast<TWinControl>(nodesList_->GetItem(i).Component))
            SendMessage(control->Handle(), message, wParam, lParam);
    return SendAppMessage(message, wParam, lParam);
}

AnsiString TVynApp::DefaultBPLName() { return "VYNB" + IntToStr(CT_VersioVyn) + "00.BPL"; }

bool TVynApp::StoreBPLName() const { return vynBPLName_ != app_detail::kNoPackage; }

void TVynApp::SetVynBPLName(const AnsiString& name) {
    if (name == vynBPLName_) return;
    if (VynBPLLoaded()) UnLoadBPL();
    vynBPLName_ = name;
}

void TVynApp::LoadBPL() {
    RegistraClassesVyn();
    if (VynBPLLoaded()) ErrorVyn(vynBPLName_ + " file loaded");
    if (Trim(vynBPLName_).empty()) ErrorVyn("BPL File not initialized");
    packageHandle_ = LoadSharedLibrary(vynBPLName_);
    if (VynBPLLoaded()) {
        if (void* entry = GetProcAddress(packageHandle_, app_detail::kInitializeEntry))
            reinterpret_cast<app_detail::TPackageEntry>(entry)(this);
    }
    OnChangedBPLState(this);
}

void TVynApp::UnLoadBPL() {
    CloseApp();
    if (!VynBPLLoaded()) ErrorVyn("BPL not loaded");
    if (void* entry = GetProcAddress(packageHandle_, app_detail::kFinalizeEntry))
        reinterpret_cast<app_detail::TPackageEntry>(entry)(this);
    const void* module = ModuleBase(packageHandle_);
    TApplication* host = Application();
    for (int i = host->ComponentCount() - 1; i >= 0; --i) {
        if (i >= host->ComponentCount()) continue;
        TComponent* component = host->Components(i);
        TClass registered = GetClass(component->ClassName());
        if (registered && ClassModule(registered) == module) delete component;
    }
    if (TVynClassesRegistrades* registry = VynRegisteredClasses())
        for (int i = registry->Count() - 1; i >= 0; --i)
            if (ClassModule(registry->GetClasse(i).Classe) == module) registry->DelClasse(i);
    UnRegisterModuleClasses(module);
    // What was cached of the package's forms describes classes that go with it.
    compiledResources_.clear();
    FreeSharedLibrary(packageHandle_);
    packageHandle_ = 0;
    OnChangedBPLState(this);
}

void TVynApp::SetAppName(const AnsiString& name) {
    if (name == appName_) return;
    appName_ = name;
    AppValuesChanged();
}

void TVynApp::SetAppFile(const AnsiString& name) {
    if (name == appFile_) return;
    appFile_ = name;
    AppValuesChanged();
}

void TVynApp::AppValuesChanged() { OnAppValuesChanged(this); }

void TVynApp::SetDesignTime(bool value) {
    if (value == designTime_) return;
    designTime_ = value;
    SendVynMessage(value ? VYN_DESIGNTIMEON : VYN_DESIGNTIMEOFF, 0, 0);
}

const ClassInfo& TTreeVynLink::StaticClass() {
    static const ClassInfo info = DefineClass<TTreeVynLink, TCustomTreeVynLink>("TTreeVynLink")
                                      .Published("VynApp", &TTreeVynLink::VynApp, &TTreeVynLink::SetVynApp)
                                      .Event("OnNotifyChange", &TTreeVynLink::OnNotifyChange);
    return info;
}

void TTreeVynLink::SetVynApp(TVynApp* app) {
    if (app == vynApp_) return;
    if (vynApp_) vynApp_->RemoveFreeNotification(this);
    vynApp_ = app;
    SetTreeVyn(app ? &app->Tree() : nullptr);
    if (app) app->FreeNotification(this);
}

void TTreeVynLink::NotifyChange(TTreeVynNodeCange kind, int idNode) { OnNotifyChange(this, kind, idNode); }

void TTreeVynLink::Notification(TComponent* component, TOperation operation) {
    TCustomTreeVynLink::Notification(component, operation);
    if (operation == opRemove && component == vynApp_) {
        vynApp_ = nullptr;
        SetTreeVyn(nullptr);
    }
}

}  // namespace vyn
