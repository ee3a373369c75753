#pragma once

#include <vector>

#include "app/Utvynapp.h"
#include "foundation/Uparametres.h"
#include "platform/values/variant.h"

namespace vyn {

class TDataSet;
class TEventsVyn;
struct PropertyInfo;

// An error of a rule.
VYN_EXCEPTION(ExcepcioEventsVyn, Exception);

// What an operand of a code line is; the numbers are stored and never change.
enum class TTipusDadaCodi : int {
    tdcNul = 0,
    tdcParametre = 1,      // of the global Parametres
    tdcObjecte = 2,        // a component, as a reference number
    tdcPropietat = 3,      // Component.Property
    tdcProcediment = 4,    // a registered procedure
    tdcValorDirecte = 5,   // the text itself
    tdcFieldName = 6,      // DataSet.Field
    tdcInternalProc = 7,   // a procedure of the form alone (OnExecuteProcedureVyn)
    tdcInternalParam = 8,  // of the component's ParametresList
    tdcExpresion = 9,      // an arithmetic expression
};
using enum TTipusDadaCodi;

// One side of an assignment. Tipus may hold a number that is no type: stored streams are kept as they are, and the line
// fails when it runs.
struct TPartAssignacioEvent {
    TTipusDadaCodi Tipus = tdcNul;
    AnsiString Valor;
    bool operator==(const TPartAssignacioEvent&) const = default;
};

// One line: Desti := Origen.
struct TCodiEvents {
    TPartAssignacioEvent Desti;
    TPartAssignacioEvent Origen;
    bool operator==(const TCodiEvents&) const = default;
};
using TLlistaCodiEvents = std::vector<TCodiEvents>;

struct TEventVyn {
    AnsiString Nom;
    TLlistaCodiEvents Codi;
    bool operator==(const TEventVyn&) const = default;
};
using TLlistaEventsVyn = std::vector<TEventVyn>;
const TEventVyn& TEventVyn_NUL();

using TNotifyExecutaEventVyn = Event<void(TComponent* EventSender, const AnsiString& NomEvent)>;
using TNotifyEventVynExecuteProcedure = Event<void(TObject* Sender, const AnsiString& ProcedureName, bool& Executed)>;
using TEventVynValueError =
    Event<void(TEventsVyn* EventSender, const TPartAssignacioEvent& Part, const Variant& Value, bool& RaiseError)>;
using TEventVynNeedComponent =
    Event<void(TEventsVyn* EventSender, const AnsiString& ComponentName, TComponent*& Component)>;

// The rules of a stored form: named events, each a list of assignments between parameters, properties, fields, values,
// expressions and procedures (docs/formats/event-scripts.md).
//
// Answers the handler names that its form's class does not publish. Holds its events; refers to a parameter set and to
// the application, and drops them when they go. A rule may free the form that it belongs to: its further lines are
// then dropped. Errors are ExcepcioEventsVyn with the system's own texts, except where said. Main thread only.
class TEventsVyn : public TComponent, public EventRunner {
    VYN_OBJECT
  public:
    explicit TEventsVyn(TComponent* owner);
    ~TEventsVyn() override;

    // The events, in order. Of several of one name the first counts; names compare without regard to case.
    void Add(const TEventVyn& event) { events_.push_back(event); }
    // Removes the first event of that event's name; nothing happens when there is none.
    void Delete(const TEventVyn& event);
    void Clear() { events_.clear(); }
    int Count() const { return static_cast<int>(events_.size()); }
    // Raise EListError for an index that is none.
    const TEventVyn& GetEvent(int index) const;
    void SetEvent(int index, const TEventVyn& event);
    // The event, or TEventVyn_NUL.
    TEventVyn ExisteixEvent(const AnsiString& name) const;
    // -1 when there is none.
    int RetornaPosEvent(const AnsiString& name) const;
    std::unique_ptr<TStringList> GetNames() const;

    // Runs an event. A name that is not there is told to OnEventNotFound, or passed over.
    void ExecutaEvent(TObject* sender, const AnsiString& name);
    // An error of the event is kept in the parameter IP_ErrorExecutantEvent, and swallowed when OnErrorAlExecutar is
    // assigned.
    void ExecutaEvent(int index);
    bool RunEvent(const AnsiString& name, TObject* sender) override;

    // The component of a name, looked for from this one upward through the owners; "OWNER" is the owner of the
    // component where the search stands. Raises a plain exception "Componente: " + name + " no encontrado".
    TComponent* ReturnComponent(const AnsiString& name) { return FindFrom(this, name); }
    // Reads a source operand; names are looked for from the component (null: this one).
    void CapturaValorOrigen(TComponent* component, const TPartAssignacioEvent& part, Variant& value);
    // Gives a destination operand its value. Conversions of the value raise their own errors.
    void ExecutaCodiDesti(TComponent* component, const TPartAssignacioEvent& part, const Variant& value);
    void ExecProc(const AnsiString& name, bool internalOnly);
    // Takes a parameter of the global set over into ParametresList; raises EParserInternalError when it has none.
    void ParserVarNotFound(TObject* sender, const AnsiString& name);
    // The component that a reference number of tdcObjecte stands for, null for 0. The number of a component that is no
    // more is an error.
    static TComponent* ComponentOfReference(const Variant& value);

    TVynApp* VynApp() const { return app_; }
    void SetVynApp(TVynApp* app) override;
    TParametres* ParametresList() const { return parametres_; }
    void SetParametresList(TParametres* value);

    TNotifyExecutaEventVyn OnExecutaEvent;
    TNotifyExecutaEventVyn AfterExecutaEvent;  // after a failure, too
    TNotifyExecutaEventVyn OnEventNotFound;
    TNotifyExecutaEventVyn OnErrorAlExecutar;
    TNotifyEventVynExecuteProcedure OnExecuteProcedureVyn;
    TEventVynValueError OnErrorOnValue;
    TEventVynNeedComponent OnNeedComponent;

    void DefineProperties(TFiler& filer) override;
    // The value of the hidden property; reading adds to the events that are there.
    void ReadData(TReader& reader);
    void WriteData(TWriter& writer);
    void Notification(TComponent* component, TOperation operation) override;

  private:
    TComponent* FindFrom(TComponent* component, const AnsiString& name);
    void RunLines(const TEventVyn& event);
    Variant SourceValue(TComponent* component, const TPartAssignacioEvent& part);
    Variant ExpressionValue(const AnsiString& expression);
    Variant PropertyValue(TComponent* component, const AnsiString& path);
    void SetPropertyValue(TComponent* component, const AnsiString& path, const Variant& value);
    Variant FieldValue(TComponent* component, const AnsiString& path);
    void SetFieldValue(TComponent* component, const AnsiString& path, const Variant& value);
    const PropertyInfo& RequireProperty(TComponent* component, const AnsiString& path, TComponent*& found);

    TLlistaEventsVyn events_;
    TParametres* parametres_ = nullptr;
    TVynApp* app_ = nullptr;
};

}  // namespace vyn
