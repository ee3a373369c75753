#pragma once

#include <map>
#include <memory>
#include <vector>

#include "app/components_vyn.h"
#include "app/nodes_list.h"
#include "app/procedures_vyn.h"
#include "database/Uvyndb.h"
#include "persistence/Utrecursosvyn.h"
#include "persistence/Uvynfmr.h"
#include "tree/Utarbrevyn.h"

namespace vyn {

class TVynApp;

// Messages between the application object, the host and the components that it opens.
constexpr uint32_t VYN_APPCREATED = 1535;        // to the host; WParam: the application object
constexpr uint32_t VYN_APPDESTROYED = 1536;      // to the host; WParam: the application object
constexpr uint32_t VYN_BEFORELOAD = 1537;        // WParam: IDNode, LParam: TComponentVyn*
constexpr uint32_t VYN_AFTERLOAD = 1538;         // the same; VYN_ABORT aborts
constexpr uint32_t VYN_BEFORESAVE = 1539;        // the same
constexpr uint32_t VYN_AFTERSAVE = 1540;         // the same; the record holds the number that was given
constexpr uint32_t VYN_SAVERESOURCES = 1541;     // WParam: -1, LParam: TRecursosObjecte*; -1 stores nothing
constexpr uint32_t VYN_OPENED = 1542;            // opened, or opened again; VYN_ABORT aborts
constexpr uint32_t VYN_COMPONENTCREATED = 1544;  // WParam: the application object, LParam: the component
constexpr uint32_t VYN_DESIGNTIMEON = 1545;      //
constexpr uint32_t VYN_DESIGNTIMEOFF = 1546;     //
constexpr intptr_t VYN_ABORT = 61440;

// Node types that the application object itself knows.
constexpr int NodeTypeGuard = 14;      // its form guards what stands below it
constexpr int NodeTypeAncestor = 18;   // its resources lie under those of the forms below it
constexpr int NodeTypeShortcut = 23;   // stands for another node
constexpr int NodeTypeProcedure = 32;  // runs a procedure

// Files whose header has a date up to this day (36500.0, the beginning of 1999-12-06) are damaged and do not load.
constexpr double OldestApplicationDate = 36500.0;

// What an application file says of its saving (docs/formats/application.md).
struct TVynAppSavedInfo {
    int Version = 0;
    TDateTime SaveDate;
    AnsiString SavedBy;  // written empty
    int SaveCount = 0;   // as read; the next save writes one more
    TDateTime EditTime;
    TDateTime OpenTime;  // not stored: when the application was opened here
};
const TVynAppSavedInfo& VynAppSavedInfo_NUL();

using TNotifyBeforeOpenComponent = Event<void(TVynApp* Sender, int IDNode, bool& Continue)>;
using TNotifyBeforeCreateStreamComponent = Event<void(TVynApp* Sender, int IDNode, PRecursosObjecte& ROInicial)>;
using TNotifySaveInList = Event<void(TVynApp* Sender, int IDNode, TComponent* Component, bool SaveInList)>;
using TVynAppNeedClass = Event<void(TVynApp* Sender, int NodeType, TClass& ClassOfNodeType)>;
using TNotifyNeedComponent = Event<void(TVynApp* Sender, int IDNode, TComponent*& Component)>;

// Runs the stored rules of a form: a component that a form owns and that answers the handler names which the form's
// class does not publish. False when it has no rule of that name.
class EventRunner {
  public:
    virtual ~EventRunner() = default;
    virtual bool RunEvent(const AnsiString& name, TObject* sender) = 0;
    // The application that opened its form, whose procedures the rules call.
    virtual void SetVynApp(TVynApp* app) = 0;
};

// One loaded application: its stores, its databases, its procedures, and the components that it has opened.
//
// Owns its component store, tree, resource store, procedure registry and lists; refers to databases and opened
// components, and drops them when they go. Errors of its own are EVynError "TVynApp ERROR:\n" + text; errors of the
// stores pass through. Main thread only.
class TVynApp : public TComponent {
    VYN_OBJECT
  public:
    explicit TVynApp(TComponent* owner);
    ~TVynApp() override;

    // The stores.
    TComponentsVyn& Components() { return *components_; }
    TTreeVyn& Tree() { return *tree_; }
    TRecursosVyn& Recursos() { return *recursos_; }
    TProcedureVyn& Procedures() { return *procedures_; }
    TNodesList& NodesList() { return *nodesList_; }
    const TVynAppSavedInfo& SavedInfo() const { return savedInfo_; }
    using TComponent::Components;

    // The application file. Loading closes what is open and adds to what the stores hold: callers clear first. What
    // fails is not taken back; the stores are then partly loaded.
    void LoadAppFromStream(TStream& stream);
    void SaveAppToStream(TStream& stream);
    // The user's values: resources from 90000 upward, the global Parametres among them.
    void LoadAppRecFromStream(TStream& stream);
    void SaveAppRecToStream(TStream& stream);
    // The same application as the hidden property VynStruct of this component; written only when it was read so.
    void VynLoadFromReader(TReader& reader);
    void VynSaveToWriter(TWriter& writer);
    void LoadVynAppSavedInfo(TReader& reader);
    void SaveVynAppSavedInfo(TWriter& writer);
    void DefineProperties(TFiler& filer) override;
    // Empties the stores; a cleared application counts as changed.
    void ClearApp();
    // Frees what is open and unregisters the libraries that were loaded from files.
    void CloseApp();
    bool GetModified() const;
    void SetModified(bool value);

    // Databases.
    void AddDB(TDataBaseVyn* database, bool makeDefault);
    void DeleteDB(TDataBaseVyn* database);
    void SetDefaultDB(TDataBaseVyn* database);
    // Resolves DefaultDBName when there is none yet.
    TDataBaseVyn* GetDefaultDB();
    const AnsiString& DefaultDBName() const { return defaultDBName_; }
    void SetDefaultDBName(const AnsiString& name);
    TDataBaseVyn* GetDataBaseVyn(int index) const;
    int DataBaseVynCount() const { return static_cast<int>(databases_.size()); }
    void GetDataBaseVynNames(TStrings& strings) const;

    // To the window of each open component, then to the host, whose answer is given back.
    intptr_t SendVynMessage(uint32_t message, intptr_t wParam, intptr_t lParam);
    [[noreturn]] void ErrorVyn(const AnsiString& message) const;
    bool ComponentIsFromVyn(const TComponent* component) const;

    // The extension package: a library with the optional entries InitializeVynBPL and FinalizeVynBPL, each given this
    // object. A package that is not there is none: VynBPLLoaded tells.
    void LoadBPL();
    void UnLoadBPL();
    const AnsiString& VynBPLName() const { return vynBPLName_; }
    void SetVynBPLName(const AnsiString& name);
    bool VynBPLLoaded() const { return packageHandle_ != 0; }
    bool StoreBPLName() const;
    static AnsiString DefaultBPLName();

    // Identity.
    const AnsiString& AppName() const { return appName_; }
    void SetAppName(const AnsiString& name);
    const AnsiString& AppFile() const { return appFile_; }
    void SetAppFile(const AnsiString& name);
    void AppValuesChanged();
    bool DesignTime() const { return designTime_; }
    void SetDesignTime(bool value);
    int MainIDNode = 0;

    // Opening and storing components.
    TClass DoGetClass(int nodeType);
    // An empty instance of the node type's class.
    TComponent* CreaComponent(int nodeType, TComponent* owner);
    // A component for a new node, from its class's defaults and the ancestors' resources.
    TComponent* CreaNouComponent(int idNode, int nodeType, TComponent* owner);
    // Opens a node, or gives the component that is open already; null when there is nothing to open or a guard refused.
    TComponent* ObreComponent(int idNode, TComponent* owner);
    void AddStreamToComponent(int idNode, TComponent* owner, TComponent*& component);
    void AddRecursosToComponent(int idNode, TComponent* component);
    // A node's complete resources, or null when it has none stored.
    std::unique_ptr<TMemoryStream> RecursosFinals(int idNode);
    void DoCreateFromStream(TStream& stream, TComponent* owner, int idNode, const TComponentVyn& record,
                            TComponent*& component);
    bool LlegeixComponent(TStream& stream, TComponent*& component);
    // Stores what a component holds beyond its class and its ancestors' resources; false when it wanted nothing stored.
    // What is stored opens again to the same component: where the plain difference would not give a value back (a list
    // that changed in part, a value that is its class's default again), that value is stored whole.
    bool GrabaResourceTComponent(TComponent* component, int idNode, const TComponentVyn& record);
    void GetCopiaDelsRecursosDeDelphi(const AnsiString& className, PRecursosObjecte& resources);
    void CarregaRecursosDelphi(const AnsiString& className, PRecursosObjecte& resources);
    void AfegeixParesRECURSOS(int idNodeOrig, int idNode, PRecursosObjecte& resources, const AnsiString& className);

    TNotifyBeforeOpenComponent BeforeOpenTComponent;
    TNotifyBeforeCreateStreamComponent BeforeCreateStreamTComponent;
    TNotifySaveInList SaveComponentCreated;
    TVynAppNeedClass OnVynAppNeedClass;
    TNotifyNeedComponent OnVynAppNeedComponent;
    Event<void(TReader& Reader, const AnsiString& Message, bool& Handled)> OnReadResourceError;
    TNotifyEvent OnChangedBPLState;
    TNotifyEvent OnAppValuesChanged;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    std::unique_ptr<TMemoryStream> StoredStream(int idComponent) const;
    PRecursosObjecte ObjectOfAncestor(const TNodeArbre& node, const AnsiString& className);
    bool PassGuard(const TNodeArbre& node, TComponent* owner);
    TComponent* RunProcedureNode(const TNodeArbre& node, TComponent* owner);
    PRecursosObjecte TreeOfComponent(TComponent& component, bool withDefaults);
    void ReduceByAncestors(int idNode, const AnsiString& className, PRecursosObjecte& tree);
    void BindStoredHandler(TReader& reader, const AnsiString& name, TPersistent* instance, const PropertyInfo& property,
                           const MethodInfo* method, bool& error);
    void AddOpenComponent(TComponent* component);

    TVynAppSavedInfo savedInfo_;
    std::vector<TComponent*> openComponents_;
    std::map<AnsiString, PRecursosObjecte, std::less<>> compiledResources_;  // by upper-case class name
    std::unique_ptr<TNodesList> nodesList_;
    std::unique_ptr<TProcedureVyn> procedures_;
    std::unique_ptr<TRecursosVyn> recursos_;
    std::unique_ptr<TComponentsVyn> components_;
    std::unique_ptr<TTreeVyn> tree_;
    std::vector<TDataBaseVyn*> databases_;
    TDataBaseVyn* defaultDB_ = nullptr;
    AnsiString defaultDBName_;
    AnsiString vynBPLName_;
    HMODULE packageHandle_ = 0;
    AnsiString appName_;
    AnsiString appFile_;
    bool designTime_ = false;
    bool loadedFromProperty_ = false;
};

// A link to an application's tree for forms: set its application and hear every change of the tree.
class TTreeVynLink : public TCustomTreeVynLink {
    VYN_OBJECT
  public:
    explicit TTreeVynLink(TComponent* owner) : TCustomTreeVynLink(owner) {}
    TVynApp* VynApp() const { return vynApp_; }
    void SetVynApp(TVynApp* app);
    void NotifyChange(TTreeVynNodeCange kind, int idNode) override;
    Event<void(TObject* Sender, TTreeVynNodeCange Kind, int IDNode)> OnNotifyChange;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    TVynApp* vynApp_ = nullptr;
};

}  // namespace vyn
