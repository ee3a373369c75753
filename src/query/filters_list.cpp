#include "query/filters_list.h"

#include "platform/objects/class_info.h"
#include "platform/text/numbers.h"
#include "query/Uquerysql.h"

namespace vyn {

const TFiltreAplicat& TFiltreAplicat_NUL() {
    static const TFiltreAplicat null;
    return null;
}

const ClassInfo& TFiltresList::StaticClass() {
    static const ClassInfo info = DefineClass<TFiltresList, TObject>("TFiltresList");
    return info;
}

void TFiltresList::Error(const AnsiString& message) { throw Exception(message); }

size_t TFiltresList::Checked(int index) const {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return static_cast<size_t>(index);
}

void TFiltresList::Add(const TFiltreAplicat& filter) {
    if (FindFiltre(filter.IDFiltre) >= 0) Error("Filtre: " + IntToStr(filter.IDFiltre) + " is found");
    filters_.push_back(filter);
    DoChangeFiltres();
}

void TFiltresList::SetFiltre(int index, const TFiltreAplicat& filter) {
    const size_t position = Checked(index);
    const int found = FindFiltre(filter.IDFiltre);
    if (found >= 0 && found != index)
        Error("Filtre: " + IntToStr(filter.IDFiltre) + "\nFound in the list in other position than " + IntToStr(index));
    filters_[position] = filter;
    DoChangeFiltres();
}

int TFiltresList::FindFiltre(int id) const {
    for (int i = Count() - 1; i >= 0; --i)
        if (filters_[static_cast<size_t>(i)].IDFiltre == id) return i;
    return -1;
}

void TFiltresList::Delete(int index) {
    filters_.erase(filters_.begin() + static_cast<std::ptrdiff_t>(Checked(index)));
    DoChangeFiltres();
}

void TFiltresList::Clear() {
    if (filters_.empty()) return;
    clearing_ = true;
    for (int i = Count() - 1; i >= 0; --i) Delete(i);
    clearing_ = false;
    DoChangeFiltres();
}

void TFiltresList::DoChangeFiltres() {
    if (RefreshOnChange && !clearing_) query_->RefrescaSQL();
}

AnsiString TFiltresList::GetFiltres(TTipusFiltre kind) const {
    // A filter is only ever put behind another one, and nothing puts the first: active filters have never reached the
    // statements of stored applications, whose queries would give other rows if they did.
    AnsiString text;
    for (const TFiltreAplicat& filter : filters_) {
        if (filter.FiltreTipus != kind || !filter.FiltreActiu || text.empty()) continue;
        text += ConcatFiltres == Concat_OR ? " OR " : " AND ";
        text += "(" + filter.FiltreText + ")";
    }
    return text;
}

}  // namespace vyn
