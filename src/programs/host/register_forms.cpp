#include "persistence/Uvynclss.h"
#include "platform/controls/form_classes.h"
#include "platform/objects/class_table.h"
#include "programs/host/entry_form.h"
#include "programs/host/grid_form.h"
#include "programs/host/main_form.h"
#include "programs/host/node_forms.h"

namespace vyn {

void RegisterCompiledForms();

namespace host_classes_detail {

// Node types whose own windows are still to come: each opens as its ancestor does, under its own name.
constexpr const char* kPlainForms[] = {
    "TFRMBarraBotons", "TFRMDBQR",        "TFRMAjudaVyn", "TFRMDBQRAutomatic", "TFRMSelNodeAcces",
    "TFRMCalendari",   "TFRMExecutaCodi", "TFRMNumeric",  "TFRMDBArbre",
};
constexpr size_t kPlainFormCount = sizeof kPlainForms / sizeof kPlainForms[0];

template <size_t Index>
class TPlainFRM : public TCustomFRM {
  public:
    static const ClassInfo& StaticClass() {
        static const ClassInfo info = DefineForm<TPlainFRM, TCustomFRM>(kPlainForms[Index]);
        return info;
    }
    const ClassInfo& GetClassInfo() const override { return StaticClass(); }
    explicit TPlainFRM(TComponent* owner) : TCustomFRM(owner) {}
};

// Host forms are the host's: design tools find them, with the package's own, in the last category.
template <class T>
void RegisterForm() {
    AddLinkedClass(&T::StaticClass());
    RegistraClasse(TTipusClasse::Vyn, &T::StaticClass(), false, TNotifyEvent());
}

template <size_t... Index>
void RegisterPlainForms(std::index_sequence<Index...>) {
    (RegisterForm<TPlainFRM<Index>>(), ...);
}

}  // namespace host_classes_detail

void RegisterHostForms() {
    using namespace host_classes_detail;
    RegisterCompiledForms();
    RegisterForm<TFRMtnAplicacio>();
    RegisterForm<TCustomFRM>();
    RegisterForm<TFRMMenu>();
    RegisterForm<TFRMSQLGeneric>();
    RegisterForm<TFRMDBGrid>();
    RegisterForm<TFRMDBGridTotals>();
    RegisterForm<TFRMDBGridMD>();
    RegisterForm<TFRMDBEntradaDades>();
    RegisterForm<TFRMDBEntradaDadesMD>();
    RegisterForm<TFRMPassword>();
    RegisterForm<TFRMQuiSoc>();
    RegisterPlainForms(std::make_index_sequence<kPlainFormCount>());
}

}  // namespace vyn
