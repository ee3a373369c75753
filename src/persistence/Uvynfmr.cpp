#include "persistence/Uvynfmr.h"

#include <algorithm>

#include "platform/objects/name_index.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace resource_tree_detail {

// From this many children on, look-ups by name go through an index.
constexpr size_t kIndexedFrom = 8;

enum class ValueFamily { Ordinal, Text, Real, Other };

ValueFamily FamilyOf(uint8_t tipus) {
    switch (static_cast<TValueType>(tipus)) {
        case vaInt8:
        case vaInt16:
        case vaInt32:
        case vaInt64:
        case vaIdent:
        case vaFalse:
        case vaTrue:
        case vaNil:
            return ValueFamily::Ordinal;
        case vaString:
        case vaLString:
        case vaWString:
            return ValueFamily::Text;
        case vaExtended:
        case vaSingle:
        case vaCurrency:
        case vaDate:
            return ValueFamily::Real;
        default:
            return ValueFamily::Other;
    }
}

bool SameKind(const TPropietatObjecte& first, const TPropietatObjecte& second) {
    if (first.Tipus == second.Tipus) return true;
    const ValueFamily family = FamilyOf(first.Tipus);
    return family != ValueFamily::Other && family == FamilyOf(second.Tipus);
}

bool IsListLike(const TPropietatObjecte& property) {
    const auto type = static_cast<TValueType>(property.Tipus);
    return type == vaList || type == vaCollection;
}

AnsiString PropertyText(const TPropietatObjecte& property) {
    return property.Name + " " + NomTipusPropietat(property.Tipus) + " Valor: " + property.Valor;
}

AnsiString ObjectText(const TRecursosObjecte& object) { return object.Name + " Clase: " + object.Classe; }

// Finds the children of an object by name: the first of a name, as a scan in order would.
template <class Object>
class ChildFinder {
  public:
    // `expected`: how many look-ups there will be.
    ChildFinder(Object& parent, size_t expected) : parent_(parent) {
        if (std::max(parent.Fills.size(), expected) < kIndexedFrom) return;
        index_.Reserve(std::max(parent.Fills.size(), expected) + 1);
        for (size_t i = 0; i < parent.Fills.size(); ++i)
            if (!parent.Fills[i].Ocult()) index_.Insert(parent.Fills[i].Name, static_cast<uint32_t>(i));
        indexed_ = true;
    }
    Object* Find(const AnsiString& name) {
        if (indexed_) {
            const uint32_t at = index_.Find(name);
            return at == NameIndex::NotFound ? nullptr : &parent_.Fills[at];
        }
        for (Object& child : parent_.Fills)
            if (!child.Ocult() && SameText(child.Name, name)) return &child;
        return nullptr;
    }
    // A child was appended to the parent.
    void Appended() {
        if (indexed_) index_.Insert(parent_.Fills.back().Name, static_cast<uint32_t>(parent_.Fills.size() - 1));
    }

  private:
    Object& parent_;
    NameIndex index_;
    bool indexed_ = false;
};

template <class Properties>
auto FindProperty(Properties& properties, const AnsiString& name) -> decltype(&properties[0]) {
    for (auto& property : properties)
        if (SameText(property.Name, name)) return &property;
    return nullptr;
}

}  // namespace resource_tree_detail

AnsiString NomTipusPropietat(uint8_t tipus) {
    static const char* const names[] = {"vaNull",     "vaList",     "vaInt8",    "vaInt16",   "vaInt32",
                                        "vaExtended", "vaString",   "vaIdent",   "vaFalse",   "vaTrue",
                                        "vaBinary",   "vaSet",      "vaLString", "vaNil",     "vaCollection",
                                        "vaSingle",   "vaCurrency", "vaDate",    "vaWString", "vaInt64"};
    return tipus <= MaxValueType ? AnsiString(names[tipus]) : "Tipus " + IntToStr(tipus);
}

AnsiString TextDePropietat(const TPropietatObjecte& actual, int numero, const TPropietatObjecte* anterior) {
    AnsiString text = "Propiedad actual:" + actual.Name + "\nTipo:" + NomTipusPropietat(actual.Tipus) +
                      "\nValor:" + actual.Valor + "\nNumero de la propiedad:" + IntToStr(numero);
    if (anterior)
        text += "\n--------  Anterior : ---------\n-------- Nombre:" + anterior->Name +
                "\n-------- Tipo:" + NomTipusPropietat(anterior->Tipus) + "\n-------- Valor:" + anterior->Valor;
    return text;
}

TRecursosObjecte* ExisteixObjecte(TRecursosObjecte* object, const AnsiString& name, int depth) {
    if (!object) throw Exception("Existeix Objecte : PObjecte = NIL");
    if (!object->Ocult() && SameText(object->Name, name)) return object;
    if (depth > 0)
        for (TRecursosObjecte& child : object->Fills)
            if (TRecursosObjecte* found = ExisteixObjecte(&child, name, depth - 1)) return found;
    return nullptr;
}

TRecursosObjecte* ExisteixClasseObjecte(TRecursosObjecte* object, const AnsiString& className, int depth) {
    if (!object) throw Exception("ExisteixClasseObjecte : PObjecte = NIL");
    if (SameText(object->Classe, className)) return object;
    if (depth > 0)
        for (TRecursosObjecte& child : object->Fills)
            if (TRecursosObjecte* found = ExisteixClasseObjecte(&child, className, depth - 1)) return found;
    return nullptr;
}

bool PropietatsIguals(const TPropietatObjecte* first, const TPropietatObjecte* second) {
    if (!first) throw Exception("PropietatsIguals : Propietat1 = NIL");
    if (!second) throw Exception("PropietatsIguals : Propietat2 = NIL");
    if (first->Valor != second->Valor || first->Tipus != second->Tipus || !SameText(first->Name, second->Name) ||
        first->Fills.size() != second->Fills.size())
        return false;
    for (size_t i = 0; i < first->Fills.size(); ++i)
        if (!PropietatsIguals(&first->Fills[i], &second->Fills[i])) return false;
    return true;
}

bool AfegeixPropietats(TPropietatObjecte* base, const TPropietatObjecte* nova) {
    using namespace resource_tree_detail;
    if (!base) throw Exception("AfegeixPropietats : Propietat base = NIL");
    if (!nova) throw Exception("AfegeixPropietats : Propietat nova = NIL");
    if (!SameText(base->Name, nova->Name) || !SameKind(*base, *nova))
        throw Exception(
            "Error a AfegeixPropietats(P1,P2). Las propiedades no son iguales (distinto nombre o tipo)\n\rBase: " +
            PropertyText(*base) + "\n\rNueva: " + PropertyText(*nova));
    if (PropietatsIguals(base, nova)) return false;
    *base = *nova;
    return true;
}

bool AfegeixObjectes(TRecursosObjecte* base, const TRecursosObjecte* nou, bool checkNames) {
    if (!base) throw Exception("AfegeixObjectes : Objeto base = NIL");
    if (!nou) throw Exception("AfegeixObjectes : Objeto nou = NIL");
    return AfegeixObjectes(base, TRecursosObjecte(*nou), checkNames);
}

bool AfegeixObjectes(TRecursosObjecte* base, TRecursosObjecte&& nou, bool checkNames) {
    using namespace resource_tree_detail;
    if (!base) throw Exception("AfegeixObjectes : Objeto base = NIL");
    if (checkNames && (!SameText(base->Name, nou.Name) || !SameText(base->Classe, nou.Classe)))
        throw Exception(
            "Error a AfegeixObjectes(P1,P2). Los objetos no son iguales (distinto nombre o clase)\n\rBase: " +
            ObjectText(*base) + "\n\rNuevo: " + ObjectText(nou));
    bool changed = false;
    for (TPropietatObjecte& property : nou.Propietats) {
        if (TPropietatObjecte* slot = FindProperty(base->Propietats, property.Name)) {
            if (AfegeixPropietats(slot, &property)) changed = true;
        } else {
            base->Propietats.push_back(std::move(property));
            changed = true;
        }
    }
    ChildFinder<TRecursosObjecte> finder(*base, nou.Fills.size());
    base->Fills.reserve(base->Fills.size() + nou.Fills.size());
    for (TRecursosObjecte& child : nou.Fills) {
        if (TRecursosObjecte* found = finder.Find(child.Name)) {
            if (AfegeixObjectes(found, std::move(child), true)) changed = true;
        } else {
            base->Fills.push_back(std::move(child));
            finder.Appended();
            changed = true;
        }
    }
    return changed;
}

bool ExtreuPropietats(const TPropietatObjecte* base, const TPropietatObjecte* nova, TPropietatObjecte& resultat) {
    using namespace resource_tree_detail;
    if (!base) throw Exception("ExtreuPropietats : PPropBase = NIL");
    if (!nova) throw Exception("ExtreuPropietats : PPropNova = NIL");
    if (!SameText(base->Name, nova->Name) || !SameKind(*base, *nova))
        throw Exception("Error a ExtreuPropietats(P1,P2). Las propiedades no son iguales\n\rPPropBase: " +
                        PropertyText(*base) + "\n\rPPropNova: " + PropertyText(*nova));
    if (PropietatsIguals(base, nova)) return false;
    if (!IsListLike(*nova)) {
        resultat = *nova;
        return true;
    }
    resultat = TPropietatObjecte{nova->Name, nova->Tipus, nova->Valor, {}};
    for (size_t i = 0; i < nova->Fills.size(); ++i) {
        const TPropietatObjecte& item = nova->Fills[i];
        const TPropietatObjecte* partner = i < base->Fills.size() ? &base->Fills[i] : nullptr;
        TPropietatObjecte difference;
        // Items of another name or kind have nothing to be compared by: the new one is the difference.
        if (!partner || !SameText(partner->Name, item.Name) || !SameKind(*partner, item))
            resultat.Fills.push_back(item);
        else if (ExtreuPropietats(partner, &item, difference))
            resultat.Fills.push_back(std::move(difference));
    }
    return true;
}

PRecursosObjecte ExtreuObjectes(const TRecursosObjecte* base, const TRecursosObjecte* nou, bool checkNames) {
    using namespace resource_tree_detail;
    if (!base) throw Exception("ExtreuObjectes : PObjecteBase = NIL");
    if (!nou) throw Exception("ExtreuObjectes : PObjecteNou = NIL");
    if (checkNames && (!SameText(base->Name, nou->Name) || !SameText(base->Classe, nou->Classe)))
        throw Exception("Error a ExtreuObjectes(P1,P2). Los objetos no son iguales\n\rPObjecteBase: " +
                        ObjectText(*base) + "\n\rPObjecteNou: " + ObjectText(*nou));
    auto result = std::make_unique<TRecursosObjecte>();
    result->Name = nou->Name;
    result->Classe = nou->Classe;
    result->Flags = nou->Flags;
    result->Posicio = nou->Posicio;
    for (const TPropietatObjecte& property : nou->Propietats) {
        const TPropietatObjecte* partner = FindProperty(base->Propietats, property.Name);
        TPropietatObjecte difference;
        if (!partner)
            result->Propietats.push_back(property);
        else if (ExtreuPropietats(partner, &property, difference))
            result->Propietats.push_back(std::move(difference));
    }
    ChildFinder<const TRecursosObjecte> finder(*base, nou->Fills.size());
    for (const TRecursosObjecte& child : nou->Fills) {
        const TRecursosObjecte* found = finder.Find(child.Name);
        if (!found) {
            result->Fills.push_back(child);
            continue;
        }
        PRecursosObjecte difference = ExtreuObjectes(found, &child, true);
        if (!difference->Propietats.empty() || !difference->Fills.empty())
            result->Fills.push_back(std::move(*difference));
    }
    return result;
}

void CompletaDiferencies(TRecursosObjecte& differences, const TRecursosObjecte& opened, const TRecursosObjecte& wanted,
                         const TRecursosObjecte& full) {
    using namespace resource_tree_detail;
    const auto put = [&](const TPropietatObjecte& property) {
        if (TPropietatObjecte* slot = FindProperty(differences.Propietats, property.Name))
            *slot = property;
        else
            differences.Propietats.push_back(property);
    };
    for (const TPropietatObjecte& property : wanted.Propietats) {
        const TPropietatObjecte* given = FindProperty(opened.Propietats, property.Name);
        if (!given || !PropietatsIguals(given, &property)) put(property);
    }
    for (const TPropietatObjecte& property : opened.Propietats) {
        if (FindProperty(wanted.Propietats, property.Name)) continue;
        // Back at its class's default: say so, or the ancestor's value would come back.
        if (const TPropietatObjecte* value = FindProperty(full.Propietats, property.Name)) put(*value);
    }
    const size_t count = wanted.Fills.size();
    ChildFinder<const TRecursosObjecte> openedChildren(opened, count);
    ChildFinder<const TRecursosObjecte> fullChildren(full, count);
    ChildFinder<TRecursosObjecte> differenceChildren(differences, count);
    for (const TRecursosObjecte& child : wanted.Fills) {
        const TRecursosObjecte* given = openedChildren.Find(child.Name);
        const TRecursosObjecte* whole = fullChildren.Find(child.Name);
        if (!given || !whole) continue;
        if (TRecursosObjecte* slot = differenceChildren.Find(child.Name)) {
            CompletaDiferencies(*slot, *given, child, *whole);
            continue;
        }
        TRecursosObjecte fresh{child.Name, child.Classe, child.Flags, child.Posicio, {}, {}};
        CompletaDiferencies(fresh, *given, child, *whole);
        if (fresh.Propietats.empty() && fresh.Fills.empty()) continue;
        differences.Fills.push_back(std::move(fresh));
        differenceChildren.Appended();
    }
}

PRecursosObjecte DuplicaObjectes(const TRecursosObjecte* object) {
    return object ? std::make_unique<TRecursosObjecte>(*object) : nullptr;
}

TPropietatObjecte DuplicaPropietats(const TPropietatObjecte* property) {
    return property ? *property : TPropietatObjecte();
}

void EliminaPRecursosObjecte(PRecursosObjecte& object) { object.reset(); }

void EliminaPPropietatObjecte(std::unique_ptr<TPropietatObjecte>& property) { property.reset(); }

}  // namespace vyn
