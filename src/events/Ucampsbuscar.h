#pragma once

#include <optional>
#include <vector>

#include "platform/objects/component.h"
#include "platform/text/exceptions.h"

namespace vyn {

class TReader;
class TWriter;

VYN_EXCEPTION(ECampsBuscar, Exception);

// The kinds of search input. Hosts store the numbers: they never change their meaning.
enum class TTipusFormulariCampBuscar : int {
    tfcbObreFill = 0,
    tfcbTexte = 1,
    tfcbNumeric = 2,
    tfcbSiNo = 3,
    tfcbData = 4,
    tfcbHora = 5,
    tfcbDataHora = 6,
};
using enum TTipusFormulariCampBuscar;

// One search field: a control of the form, and settings whose meaning belongs to the host's search forms (which of the
// numbers holds the TTipusFormulariCampBuscar, what the texts and lines are for).
struct TCampBuscar {
    TComponent* Component = nullptr;  // not stored: found by its name; null while there is no such control
    AnsiString ComponentName;
    int32_t IntValue1 = 0;
    int32_t IntValue2 = 0;
    AnsiString Text1;
    int32_t IntValue3 = 0;
    AnsiString Text2;
    AnsiString Text3;
    int32_t IntValue4 = 0;                         // stored from the second format on
    bool Flag = false;                             // stored from the third format on, as the two below
    AnsiString Text4;                              //
    std::optional<std::vector<AnsiString>> Items;  // no lines at all are not the same as no list
    bool operator==(const TCampBuscar&) const = default;
};
const TCampBuscar& TCampBuscar_NUL();
using TListCampBuscar = std::vector<TCampBuscar>;

// The search fields of a form, in order; stored with it (docs/formats/search-fields.md). Entries name their control,
// so that a list that is read before its controls are there binds to them later: every operation but reading looks
// among the owner's components for those that are missing. A control that is freed takes its entries with it.
//
// Refers to the controls. Errors are ECampsBuscar "ERROR CAMPS BUSCAR\n" + text, and change nothing. Main thread only.
class TCampsBuscar : public TComponent {
    VYN_OBJECT
  public:
    explicit TCampsBuscar(TComponent* owner) : TComponent(owner) {}
    ~TCampsBuscar() override;

    // An entry whose control is listed already is an error. Without a control it waits for the one of its name.
    void Afegeix(const TCampBuscar& entry);
    void Elimina(int index);
    int Count();
    TCampBuscar GetCampsBuscarComponent(int index);
    void SetCampsBuscarComponent(int index, const TCampBuscar& entry);
    // The position of the entry of a control, or -1. An entry that waits for a control of this name is bound to it.
    int PosicioIndex(TComponent* component);
    void Exchange(int index1, int index2);
    // Looks for the controls that are missing; nothing to do once all were found.
    void CheckComponentNames();
    bool NamesResolved() const { return namesResolved_; }

    void DefineProperties(TFiler& filer) override;
    // The value of the hidden property; reading adds to what is there.
    void ReadData(TReader& reader);
    void WriteData(TWriter& writer);
    // While the owner is loaded, destroyed or designed, the entry of a control that goes stays, and only lets go of it.
    void Notification(TComponent* component, TOperation operation) override;

    [[noreturn]] void Error(const AnsiString& message) const;

  private:
    TCampBuscar ReadEntry(TReader& reader) const;
    void CheckIndex(int index, const char* before) const;
    void Bind(TCampBuscar& entry, TComponent* component);
    TComponent* FindControl(const AnsiString& name) const;
    bool WaitsFor(const TCampBuscar& entry, const TComponent* component) const;

    TListCampBuscar entries_;
    bool namesResolved_ = true;
    bool reading_ = false;
};

}  // namespace vyn
