#pragma once

#include <vector>

#include "platform/objects/class_info.h"
#include "platform/objects/event.h"

namespace vyn {

// The palette category of a class. The numbers are stored by hosts: they never change.
enum class TTipusClasse {
    Desconegut,
    Standard,
    Additional,
    Win32,
    Systema,
    VynComp,
    Internet,
    DataAccess,
    DataControls,
    QReport,
    Dialegs,
    Win31,
    Samples,
    ActiveX,
    Vyn,
};
constexpr int TipusClasseCount = 15;
const EnumType& TypeInfoOf(TypeTag<TTipusClasse>);

// The display names, indexed by TTipusClasse: "System" and "Dialogs" are English on purpose.
extern const char* const NomTipusClasseRegistrada[TipusClasseCount];

// One registration.
struct TClasseRegistrada {
    TTipusClasse Tipus = TTipusClasse::Desconegut;
    TClass Classe = nullptr;
    bool Flag = false;    // for design tools
    TNotifyEvent Notify;  // for design tools
};
const TClasseRegistrada& ClasseRegistrada_Nul();

// The classes that stored components may be of. Each registration makes sure that the streaming class table knows the
// class; taking it back undoes that when it was done here. Order of registration; registering again updates in place.
// There are about a hundred: look-ups scan. Main thread only.
class TVynClassesRegistrades : public TObject {
    VYN_OBJECT
  public:
    ~TVynClassesRegistrades() override;

    void DoRegisterClass(const TClasseRegistrada& classe);
    void AddClasse(const TClasseRegistrada& classe);
    // The position is trusted.
    void DelClasse(int index);
    // Exactly this class, not one of its descendants; -1 when absent.
    int IndexOfClasse(TClass classe) const;
    bool IsRegistered(TClass classe) const { return IndexOfClasse(classe) >= 0; }
    int Count() const { return static_cast<int>(entries_.size()); }
    TClasseRegistrada GetClasse(int index) const { return entries_[static_cast<size_t>(index)].classe; }
    // The registered class of a name (without regard to case), or null.
    TClass FindByName(std::string_view name) const;
    void Clear();

  private:
    struct Entry {
        TClasseRegistrada classe;
        AnsiString name;
        bool registeredHere = false;
    };
    std::vector<Entry> entries_;
};

// The one registry of the package; null before its start and after its end.
TVynClassesRegistrades* VynRegisteredClasses();
void InitializeVynRegisteredClasses();
void FinalizeVynRegisteredClasses();

// Registers a class in the package's registry.
void RegistraClasse(TTipusClasse tipus, TClass classe, bool flag, const TNotifyEvent& notify);

// Registers the platform's component classes, in the order of the palette. The list below is complete; a name whose
// class is not linked into this program is passed over, and a stored form that needs it says so when it is opened.
void RegistraClassesVyn();

// A line of that list.
struct PaletteClass {
    TTipusClasse tipus;
    const char* name;
};
const std::vector<PaletteClass>& VynPalette();

}  // namespace vyn
