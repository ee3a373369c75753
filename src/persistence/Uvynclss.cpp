#include "persistence/Uvynclss.h"

#include <memory>

#include "platform/objects/class_table.h"
#include "platform/text/compare.h"

namespace vyn {

using enum TTipusClasse;

const char* const NomTipusClasseRegistrada[TipusClasseCount] = {
    "Desconegut",   "Standard", "Additional", "Win32", "System",  "VynComp", "Internet", "DataAccess",
    "DataControls", "QReport",  "Dialogs",    "Win31", "Samples", "ActiveX", "Vyn"};

const EnumType& TypeInfoOf(TypeTag<TTipusClasse>) {
    static const EnumType info(
        "TTipusClasse", {"Desconegut", "Standard", "Additional", "Win32", "Systema", "VynComp", "Internet",
                         "DataAccess", "DataControls", "QReport", "Dialegs", "Win31", "Samples", "ActiveX", "Vyn"});
    return info;
}

namespace class_registry_detail {

std::unique_ptr<TVynClassesRegistrades>& Registry() {
    static std::unique_ptr<TVynClassesRegistrades> registry;
    return registry;
}

}  // namespace class_registry_detail

const TClasseRegistrada& ClasseRegistrada_Nul() {
    static const TClasseRegistrada nul;
    return nul;
}

TVynClassesRegistrades* VynRegisteredClasses() { return class_registry_detail::Registry().get(); }

void InitializeVynRegisteredClasses() {
    if (!VynRegisteredClasses()) class_registry_detail::Registry() = std::make_unique<TVynClassesRegistrades>();
}

void FinalizeVynRegisteredClasses() { class_registry_detail::Registry().reset(); }

const ClassInfo& TVynClassesRegistrades::StaticClass() {
    static const ClassInfo info = DefineClass<TVynClassesRegistrades, TObject>("TVynClassesRegistrades");
    return info;
}

TVynClassesRegistrades::~TVynClassesRegistrades() { Clear(); }

void TVynClassesRegistrades::DoRegisterClass(const TClasseRegistrada& classe) {
    const int at = IndexOfClasse(classe.Classe);
    if (at >= 0)
        entries_[static_cast<size_t>(at)].classe = classe;
    else
        AddClasse(classe);
}

void TVynClassesRegistrades::AddClasse(const TClasseRegistrada& classe) {
    Entry& entry = entries_.emplace_back();
    entry.classe = classe;
    entry.name = classe.Classe->Name();
    if (!GetClass(entry.name)) {
        RegisterClass(classe.Classe);
        entry.registeredHere = true;
    }
}

void TVynClassesRegistrades::DelClasse(int index) {
    const Entry& entry = entries_[static_cast<size_t>(index)];
    if (entry.registeredHere) {
        if (TClass known = GetClass(entry.name)) UnRegisterClass(known);
    }
    entries_.erase(entries_.begin() + index);
}

int TVynClassesRegistrades::IndexOfClasse(TClass classe) const {
    for (int i = Count() - 1; i >= 0; --i)
        if (entries_[static_cast<size_t>(i)].classe.Classe == classe) return i;
    return -1;
}

TClass TVynClassesRegistrades::FindByName(std::string_view name) const {
    for (const Entry& entry : entries_)
        if (SameText(entry.name, name)) return entry.classe.Classe;
    return nullptr;
}

void TVynClassesRegistrades::Clear() {
    while (!entries_.empty()) DelClasse(Count() - 1);
}

void RegistraClasse(TTipusClasse tipus, TClass classe, bool flag, const TNotifyEvent& notify) {
    TClasseRegistrada registered = ClasseRegistrada_Nul();
    registered.Tipus = tipus;
    registered.Classe = classe;
    registered.Flag = flag;
    registered.Notify = notify;
    VynRegisteredClasses()->DoRegisterClass(registered);
}

const std::vector<PaletteClass>& VynPalette() {
    static const std::vector<PaletteClass> palette = {
        {Standard, "TMainMenu"},
        {Standard, "TMenuItem"},
        {Standard, "TLabel"},
        {Standard, "TEdit"},
        {Standard, "TMemo"},
        {Standard, "TButton"},
        {Standard, "TCheckBox"},
        {Standard, "TRadioButton"},
        {Standard, "TListBox"},
        {Standard, "TComboBox"},
        {Standard, "TScrollBar"},
        {Standard, "TCheckBox"},  // listed twice: the second only writes over the first
        {Standard, "TGroupBox"},
        {Standard, "TRadioGroup"},
        {Standard, "TPanel"},
        {Standard, "TActionList"},
        {Additional, "TBitBtn"},
        {Additional, "TSpeedButton"},
        {Additional, "TMaskEdit"},
        {Additional, "TStringGrid"},
        {Additional, "TDrawGrid"},
        {Additional, "TImage"},
        {Additional, "TShape"},
        {Additional, "TBevel"},
        {Additional, "TScrollBox"},
        {Additional, "TCheckListBox"},
        {Additional, "TSplitter"},
        {Additional, "TStaticText"},
        {Additional, "TControlBar"},
        {Win32, "TTabControl"},
        {Win32, "TPageControl"},
        {Win32, "TTabSheet"},
        {Win32, "TImageList"},
        {Win32, "TRichEdit"},
        {Win32, "TTrackBar"},
        {Win32, "TProgressBar"},
        {Win32, "TUpDown"},
        {Win32, "THotKey"},
        {Win32, "TToolButton"},
        {Win32, "TToolBar"},
        {Win32, "TAnimate"},
        {Win32, "TDateTimePicker"},
        {Win32, "TMonthCalendar"},
        {Win32, "TTreeView"},
        {Win32, "TListView"},
        {Win32, "THeaderControl"},
        {Win32, "TStatusBar"},
        {Win32, "TCoolBar"},
        {Win32, "TPageScroller"},
        {Systema, "TTimer"},
        {Systema, "TPaintBox"},
        {VynComp, "TVynApp"},
        {VynComp, "TDBTextHalvorn"},
        {VynComp, "TTextHalvorn"},
        {VynComp, "TParametres"},
        {VynComp, "TParametresChild"},
        {VynComp, "TParametresList"},
        {VynComp, "TTreeVynLink"},
        {DataControls, "TDBGrid"},
        {DataControls, "TDBNavigator"},
        {DataControls, "TDBText"},
        {DataControls, "TDBEdit"},
        {DataControls, "TDBMemo"},
        {DataControls, "TDBImage"},
        {DataControls, "TDBListBox"},
        {DataControls, "TDBComboBox"},
        {DataControls, "TDBCheckBox"},
        {DataControls, "TDBRadioGroup"},
        {DataControls, "TDBLookupListBox"},
        {DataControls, "TDBLookupComboBox"},
        {DataControls, "TDBRichEdit"},
        {DataControls, "TDBCtrlGrid"},
        {Dialegs, "TOpenDialog"},
        {Dialegs, "TSaveDialog"},
        {Dialegs, "TOpenPictureDialog"},
        {Dialegs, "TSavePictureDialog"},
        {Dialegs, "TFontDialog"},
        {Dialegs, "TColorDialog"},
        {Dialegs, "TPrintDialog"},
        {Dialegs, "TPrinterSetupDialog"},
        {Dialegs, "TFindDialog"},
        {Dialegs, "TReplaceDialog"},
    };
    return palette;
}

void RegistraClassesVyn() {
    for (const PaletteClass& line : VynPalette())
        if (TClass linked = FindLinkedClass(line.name)) RegistraClasse(line.tipus, linked, false, TNotifyEvent());
}

}  // namespace vyn
