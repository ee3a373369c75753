#pragma once

#include <vector>

#include "platform/objects/object.h"
#include "query/query_types.h"

namespace vyn {

class TQuerySQL;

// One filter. The list reads the identifier, the text, whether it is active, and its clause; the other members are the
// application's.
struct TFiltreAplicat {
    int32_t IDFiltre = 0;  // unique in a list
    int32_t FiltreDada1 = 0;
    int32_t FiltreDada2 = 0;
    AnsiString FiltreText;
    bool FiltreActiu = false;
    TTipusFiltre FiltreTipus = tfWhere;
    int32_t FiltreDada3 = 0;
    int32_t FiltreDada4 = 0;

    friend bool operator==(const TFiltreAplicat&, const TFiltreAplicat&) = default;
};

const TFiltreAplicat& TFiltreAplicat_NUL();

// The filters of one query, in order. Errors are plain Exceptions and change nothing; positions outside 0 to Count - 1
// raise EListError. Main thread only.
class TFiltresList : public TObject {
    VYN_OBJECT
  public:
    explicit TFiltresList(TQuerySQL* query) : query_(query) {}

    void Add(const TFiltreAplicat& filter);
    void SetFiltre(int index, const TFiltreAplicat& filter);
    TFiltreAplicat GetFiltre(int index) const { return filters_[Checked(index)]; }
    void Delete(int index);
    void Clear();
    int Count() const { return static_cast<int>(filters_.size()); }
    // The position of a filter's identifier, or -1.
    int FindFiltre(int id) const;
    // The condition that the filters of a clause add to the statement: always empty, see the source.
    AnsiString GetFiltres(TTipusFiltre kind) const;
    // Refreshes the query when RefreshOnChange is set.
    void DoChangeFiltres();

    // Whether changes refresh the query; set by the application that fills the list.
    bool RefreshOnChange = false;
    TConcatFiltresType ConcatFiltres = Concat_AND;

  protected:
    [[noreturn]] static void Error(const AnsiString& message);

  private:
    size_t Checked(int index) const;

    TQuerySQL* query_;
    std::vector<TFiltreAplicat> filters_;
    bool clearing_ = false;
};

}  // namespace vyn
