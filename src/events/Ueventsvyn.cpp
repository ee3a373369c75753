#include "events/Ueventsvyn.h"

#include "foundation/stack_guard.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

// The list of events, its stream, and how an event runs. Operands stand in event_operands.cpp.
namespace vyn {

namespace events_detail {

constexpr char kStoredProperty[] = "EventsVyn";
constexpr char kErrorParameter[] = "IP_ErrorExecutantEvent";

}  // namespace events_detail

const ClassInfo& TEventsVyn::StaticClass() {
    static const ClassInfo info =
        DefineClass<TEventsVyn, TComponent>("TEventsVyn")
            .Event("OnExecutaEvent", &TEventsVyn::OnExecutaEvent)
            .Event("AfterExecutaEvent", &TEventsVyn::AfterExecutaEvent)
            .Event("OnEventNotFound", &TEventsVyn::OnEventNotFound)
            .Event("OnErrorAlExecutar", &TEventsVyn::OnErrorAlExecutar)
            .Event("OnExecuteProcedureVyn", &TEventsVyn::OnExecuteProcedureVyn)
            .Published("ParametresList", &TEventsVyn::ParametresList, &TEventsVyn::SetParametresList)
            .Event("OnErrorOnValue", &TEventsVyn::OnErrorOnValue)
            .Event("OnNeedComponent", &TEventsVyn::OnNeedComponent);
    return info;
}

const TEventVyn& TEventVyn_NUL() {
    static const TEventVyn nul;
    return nul;
}

TEventsVyn::TEventsVyn(TComponent* owner) : TComponent(owner) {}

TEventsVyn::~TEventsVyn() { BeginDestruction(); }

void TEventsVyn::Delete(const TEventVyn& event) {
    const int at = RetornaPosEvent(event.Nom);
    if (at >= 0) events_.erase(events_.begin() + at);
}

const TEventVyn& TEventsVyn::GetEvent(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return events_[static_cast<size_t>(index)];
}

void TEventsVyn::SetEvent(int index, const TEventVyn& event) { const_cast<TEventVyn&>(GetEvent(index)) = event; }

TEventVyn TEventsVyn::ExisteixEvent(const AnsiString& name) const {
    const int at = RetornaPosEvent(name);
    return at >= 0 ? GetEvent(at) : TEventVyn_NUL();
}

int TEventsVyn::RetornaPosEvent(const AnsiString& name) const {
    for (size_t i = 0; i < events_.size(); ++i)
        if (AnsiSameText(events_[i].Nom, name)) return static_cast<int>(i);
    return -1;
}

std::unique_ptr<TStringList> TEventsVyn::GetNames() const {
    auto names = std::make_unique<TStringList>();
    for (const TEventVyn& event : events_) names->Add(event.Nom);
    return names;
}

void TEventsVyn::ExecutaEvent(TObject* sender, const AnsiString& name) {
    const int at = RetornaPosEvent(name);
    if (at >= 0)
        ExecutaEvent(at);
    else if (OnEventNotFound)
        OnEventNotFound(ObjectCast<TComponent>(sender), name);
}

bool TEventsVyn::RunEvent(const AnsiString& name, TObject* sender) {
    if (RetornaPosEvent(name) < 0) return false;
    ExecutaEvent(sender, name);
    return true;
}

void TEventsVyn::ExecutaEvent(int index) {
    CheckStack();                             // rules may start each other through the events of what they change
    const TEventVyn event = GetEvent(index);  // a handler may change the list
    const int self = Handle();
    const auto alive = [self] { return ComponentFromHandle(self) != nullptr; };
    try {
        try {
            if (OnExecutaEvent) OnExecutaEvent(this, event.Nom);
            RunLines(event);
        } catch (...) {
            if (alive() && AfterExecutaEvent) AfterExecutaEvent(this, event.Nom);
            throw;
        }
        if (alive() && AfterExecutaEvent) AfterExecutaEvent(this, event.Nom);
    } catch (const Exception& error) {
        // Also into a set that makes no parameters by itself.
        if (TParametres* global = Parametres())
            global->AddParam(events_detail::kErrorParameter, AnsiString(error.ClassName()) + "\n" + error.Message());
        if (!alive() || !OnErrorAlExecutar) throw;
        OnErrorAlExecutar(this, event.Nom);
    }
}

void TEventsVyn::RunLines(const TEventVyn& event) {
    const int self = Handle();
    for (const TCodiEvents& line : event.Codi) {
        Variant value = Variant::Null();
        try {
            CapturaValorOrigen(this, line.Origen, value);
        } catch (const Exception&) {
            bool raiseError = true;
            if (ComponentFromHandle(self) && OnErrorOnValue) OnErrorOnValue(this, line.Origen, value, raiseError);
            if (raiseError) throw;
        }
        if (!ComponentFromHandle(self)) return;
        ExecutaCodiDesti(this, line.Desti, value);
        if (!ComponentFromHandle(self)) return;
    }
}

void TEventsVyn::SetVynApp(TVynApp* app) {
    if (app_ == app) return;
    app_ = app;
    if (app) app->FreeNotification(this);
}

void TEventsVyn::SetParametresList(TParametres* value) {
    if (parametres_ == value) return;
    parametres_ = value;
    if (value) value->FreeNotification(this);
}

void TEventsVyn::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == app_) app_ = nullptr;
    if (component == parametres_) parametres_ = nullptr;
}

void TEventsVyn::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineProperty(
        events_detail::kStoredProperty, [this](TReader& reader) { ReadData(reader); },
        [this](TWriter& writer) { WriteData(writer); }, !events_.empty() || filer.Ancestor != nullptr);
}

void TEventsVyn::ReadData(TReader& reader) {
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
        TEventVyn event;
        event.Nom = reader.ReadString();
        reader.ReadListBegin();
        while (!reader.EndOfList()) {
            TCodiEvents line;
            line.Desti.Tipus = static_cast<TTipusDadaCodi>(reader.ReadInteger());
            line.Desti.Valor = reader.ReadString();
            line.Origen.Tipus = static_cast<TTipusDadaCodi>(reader.ReadInteger());
            line.Origen.Valor = reader.ReadString();
            event.Codi.push_back(std::move(line));
        }
        reader.ReadListEnd();
        events_.push_back(std::move(event));
    }
    reader.ReadListEnd();
}

void TEventsVyn::WriteData(TWriter& writer) {
    writer.WriteListBegin();
    for (const TEventVyn& event : events_) {
        writer.WriteString(event.Nom);
        writer.WriteListBegin();
        for (const TCodiEvents& line : event.Codi) {
            writer.WriteInteger(static_cast<int>(line.Desti.Tipus));
            writer.WriteString(line.Desti.Valor);
            writer.WriteInteger(static_cast<int>(line.Origen.Tipus));
            writer.WriteString(line.Origen.Valor);
        }
        writer.WriteListEnd();
    }
    writer.WriteListEnd();
}

}  // namespace vyn
