#include "events/Ucampsbuscar.h"

#include <utility>

#include "platform/objects/class_info.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace search_fields_detail {

constexpr char kStoredProperty[] = "CampsBuscar";

bool IsInteger(TValueType type) { return type == vaInt8 || type == vaInt16 || type == vaInt32; }
bool IsBoolean(TValueType type) { return type == vaFalse || type == vaTrue; }
bool IsText(TValueType type) { return type == vaString || type == vaLString || type == vaWString; }

// Sets a flag for as long as it lives.
class Raised {
  public:
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }

  private:
    bool& flag_;
};

}  // namespace search_fields_detail

const TCampBuscar& TCampBuscar_NUL() {
    static const TCampBuscar nul;
    return nul;
}

const ClassInfo& TCampsBuscar::StaticClass() {
    static const ClassInfo info = DefineClass<TCampsBuscar, TComponent>("TCampsBuscar");
    return info;
}

TCampsBuscar::~TCampsBuscar() { BeginDestruction(); }

void TCampsBuscar::Error(const AnsiString& message) const { throw ECampsBuscar("ERROR CAMPS BUSCAR\n" + message); }

// "Índex 7 fora de rang"; `before` is what stands between word and number.
void TCampsBuscar::CheckIndex(int index, const char* before) const {
    if (index < 0 || index >= static_cast<int>(entries_.size()))
        Error("Índex "_w + before + IntToStr(index) + " fora de rang");
}

// The control of a name, unless it is about to go.
TComponent* TCampsBuscar::FindControl(const AnsiString& name) const {
    TComponent* found = Owner() ? Owner()->FindComponent(name) : nullptr;
    return found && !found->HasState(csDestroying) ? found : nullptr;
}

void TCampsBuscar::Bind(TCampBuscar& entry, TComponent* component) {
    entry.Component = component;
    if (!component) {
        namesResolved_ = false;
        return;
    }
    entry.ComponentName = component->Name();
    component->FreeNotification(this);
}

bool TCampsBuscar::WaitsFor(const TCampBuscar& entry, const TComponent* component) const {
    return !entry.Component && !entry.ComponentName.empty() && SameText(entry.ComponentName, component->Name());
}

void TCampsBuscar::CheckComponentNames() {
    if (namesResolved_ || reading_) return;
    namesResolved_ = true;
    for (TCampBuscar& entry : entries_)
        if (!entry.Component) Bind(entry, FindControl(entry.ComponentName));
}

int TCampsBuscar::PosicioIndex(TComponent* component) {
    CheckComponentNames();
    if (!component) return -1;
    for (size_t i = 0; i < entries_.size(); ++i)
        if (entries_[i].Component == component) return static_cast<int>(i);
    for (size_t i = 0; i < entries_.size(); ++i) {
        if (!WaitsFor(entries_[i], component)) continue;
        Bind(entries_[i], component);
        return static_cast<int>(i);
    }
    return -1;
}

void TCampsBuscar::Afegeix(const TCampBuscar& entry) {
    if (PosicioIndex(entry.Component) >= 0) Error("Aquest component ja existeix!");
    entries_.push_back(TCampBuscar(entry));  // a copy first: it may be one of ours
    Bind(entries_.back(), entries_.back().Component);
}

void TCampsBuscar::Elimina(int index) {
    CheckComponentNames();
    CheckIndex(index, "");
    entries_.erase(entries_.begin() + index);
}

int TCampsBuscar::Count() {
    CheckComponentNames();
    return static_cast<int>(entries_.size());
}

TCampBuscar TCampsBuscar::GetCampsBuscarComponent(int index) {
    CheckComponentNames();
    CheckIndex(index, "");
    return entries_[static_cast<size_t>(index)];
}

void TCampsBuscar::SetCampsBuscarComponent(int index, const TCampBuscar& entry) {
    CheckComponentNames();
    CheckIndex(index, "");
    const int listed = PosicioIndex(entry.Component);
    if (listed >= 0 && listed != index)
        Error("La posició a colocar: "_w + IntToStr(index) + " incorrecta, actual: " + IntToStr(listed));
    TCampBuscar& replaced = entries_[static_cast<size_t>(index)];
    replaced = entry;
    Bind(replaced, replaced.Component);
}

void TCampsBuscar::Exchange(int index1, int index2) {
    CheckComponentNames();
    CheckIndex(index1, "1 ");
    CheckIndex(index2, "2 ");
    std::swap(entries_[static_cast<size_t>(index1)], entries_[static_cast<size_t>(index2)]);
}

void TCampsBuscar::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove || component == this) return;
    const TComponent* form = Owner();
    if (form && (form->HasState(csLoading) || form->HasState(csDestroying) || form->HasState(csDesigning))) {
        for (TCampBuscar& entry : entries_)
            if (entry.Component == component) Bind(entry, nullptr);
        return;
    }
    // An entry that nobody has asked for since the control came is bound by its name alone.
    const bool ours = form && component->Owner() == form;
    std::erase_if(entries_, [&](const TCampBuscar& entry) {
        return entry.Component == component || (ours && WaitsFor(entry, component));
    });
}

void TCampsBuscar::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineProperty(
        search_fields_detail::kStoredProperty, [this](TReader& reader) { ReadData(reader); },
        [this](TWriter& writer) { WriteData(writer); }, !entries_.empty() || filer.Ancestor != nullptr);
}

// The formats grew: each of the later values is read when what comes next is of its type.
TCampBuscar TCampsBuscar::ReadEntry(TReader& reader) const {
    using namespace search_fields_detail;
    TCampBuscar entry = TCampBuscar_NUL();
    reader.ReadListBegin();
    if (reader.NextValue() == vaIdent) entry.ComponentName = reader.ReadIdent();
    entry.IntValue1 = reader.ReadInteger();
    entry.IntValue2 = reader.ReadInteger();
    entry.Text1 = reader.ReadString();
    entry.IntValue3 = reader.ReadInteger();
    entry.Text2 = reader.ReadString();
    entry.Text3 = reader.ReadString();
    if (IsInteger(reader.NextValue())) entry.IntValue4 = reader.ReadInteger();
    if (IsBoolean(reader.NextValue())) {
        entry.Flag = reader.ReadBoolean();
        entry.Text4 = reader.ReadString();
    }
    while (IsText(reader.NextValue())) {
        if (!entry.Items) entry.Items.emplace();
        entry.Items->push_back(reader.ReadString());
    }
    reader.ReadListEnd();
    return entry;
}

void TCampsBuscar::ReadData(TReader& reader) {
    const search_fields_detail::Raised reading(reading_);
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
        TCampBuscar entry = ReadEntry(reader);
        entry.Component = FindControl(entry.ComponentName);
        Afegeix(entry);
    }
    reader.ReadListEnd();
}

void TCampsBuscar::WriteData(TWriter& writer) {
    CheckComponentNames();
    writer.WriteListBegin();
    for (const TCampBuscar& entry : entries_) {
        writer.WriteListBegin();
        // An entry is of no use without its control: the name of one that is not there is not kept, only its settings.
        if (entry.Component && !entry.Component->Name().empty()) writer.WriteIdent(entry.Component->Name());
        writer.WriteInteger(entry.IntValue1);
        writer.WriteInteger(entry.IntValue2);
        writer.WriteString(entry.Text1);
        writer.WriteInteger(entry.IntValue3);
        writer.WriteString(entry.Text2);
        writer.WriteString(entry.Text3);
        writer.WriteInteger(entry.IntValue4);
        writer.WriteBoolean(entry.Flag);
        writer.WriteString(entry.Text4);
        if (entry.Items)
            for (const AnsiString& line : *entry.Items) writer.WriteString(line);
        writer.WriteListEnd();
    }
    writer.WriteListEnd();
}

}  // namespace vyn
