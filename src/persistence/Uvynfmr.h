#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/streams/reader.h"
#include "platform/streams/stream.h"

namespace vyn {

// Resource trees: a stored component stream (docs/formats/form.md) as a plain tree of objects and properties, so that
// streams can be layered over one another, compared and reduced to their differences without making a component.
//
// A tree owns everything under it; operations that give a tree give a new one. Names and classes compare without
// regard to case. Errors are plain Exceptions with the texts below; errors of the bytes themselves are the reader's.

// One property.
//
// Valor holds the value as text: integers in decimal, real numbers in their shortest decimal (a number without one,
// such as infinity, as "$" and its bytes in hexadecimal), identifiers, booleans and nil as the word, sets as their
// names with commas between, strings and binary values as their bytes, wide strings as the bytes of their 16-bit
// characters. Tipus keeps the code that the stream holds, so that a tree gives back the bytes that it was read from.
struct TPropietatObjecte {
    AnsiString Name;
    uint8_t Tipus = 0;
    AnsiString Valor;
    // The items of a list; of a collection, one per item with the item's number (if stored) in Valor and its
    // properties in Fills.
    std::vector<TPropietatObjecte> Fills;
};
using PunterAlPropietatObjecte = TPropietatObjecte*;
using TllistaPropietatsObjecte = std::vector<TPropietatObjecte>;

struct TRecursosObjecte;
using PunterAlRECURSOSObjecte = TRecursosObjecte*;
using TLlistaRecursosObjecte = std::vector<TRecursosObjecte>;
// A tree that its holder owns.
using PRecursosObjecte = std::unique_ptr<TRecursosObjecte>;

// The flag of an object header that hides the object from look-ups by name. Readers of forms pass over it.
constexpr uint8_t ffOcult = 8;

// One object of the stream.
struct TRecursosObjecte {
    AnsiString Name;
    AnsiString Classe;
    uint8_t Flags = 0;  // ffInherited, ffChildPos, ffInline, ffOcult
    int Posicio = -1;   // with ffChildPos: its place among its siblings
    TllistaPropietatsObjecte Propietats;
    TLlistaRecursosObjecte Fills;

    bool Ocult() const { return (Flags & ffOcult) != 0; }
};

// How deep a look-up of a whole tree goes.
constexpr int TotElArbre = MaxStreamNesting;

// The tree of the stream's root object, from its current position. A malformed list raises "Error al llegir la llista",
// an unknown value type "Error, llegida un tipus de propietat invalida!".
PRecursosObjecte StreamObjecteBinaryARECURSOS(TStream& stream);
void RECURSOSObjecteAStreamBinary(const TRecursosObjecte& tree, TStream& stream);
// The class of the stream's root object, without building the tree; the position is kept. False when the stream holds
// no component.
bool ClasseDelObjecte(TStream& stream, AnsiString& className);
// Whether a component stream stands at the current position, which is kept.
bool EsUnObjecte(TStream& stream);

// The object itself or, Depth levels down, the first descendant of that name (objects marked Ocult never match, their
// children are searched); null when there is none.
TRecursosObjecte* ExisteixObjecte(TRecursosObjecte* object, const AnsiString& name, int depth);
TRecursosObjecte* ExisteixClasseObjecte(TRecursosObjecte* object, const AnsiString& className, int depth);

// Two properties hold the same: texts, type codes, names and items.
bool PropietatsIguals(const TPropietatObjecte* first, const TPropietatObjecte* second);
// Lays a property over another of the same name and type; true when it changed. Types count as the same when they hold
// the same kind of value in another code: integers of any size and the words that stand for them (10, 300, clRed, True,
// nil), strings of any length, real numbers of any width. Otherwise a form could not change a caption to a long one or
// a colour to one without a name.
bool AfegeixPropietats(TPropietatObjecte* base, const TPropietatObjecte* nova);
// What the new property holds otherwise than the base; false when that is nothing.
bool ExtreuPropietats(const TPropietatObjecte* base, const TPropietatObjecte* nova, TPropietatObjecte& resultat);

// Lays New over Base, in place: properties by name, child objects by name among the direct children. True when Base
// changed. With checkNames the two must have the same name and class.
bool AfegeixObjectes(TRecursosObjecte* base, const TRecursosObjecte* nou, bool checkNames);
// The same with a tree that is used up: its parts move over.
bool AfegeixObjectes(TRecursosObjecte* base, TRecursosObjecte&& nou, bool checkNames);
// A new tree of what New holds that Base lacks or holds differently.
PRecursosObjecte ExtreuObjectes(const TRecursosObjecte* base, const TRecursosObjecte* nou, bool checkNames);
// Adds to differences what laying them over the lower layers would not give back: a list that changed in part, a value
// that is its class's default again. `opened` is what opening would give, `wanted` the component as it is, `full` the
// same with every default spelled out.
void CompletaDiferencies(TRecursosObjecte& differences, const TRecursosObjecte& opened, const TRecursosObjecte& wanted,
                         const TRecursosObjecte& full);

PRecursosObjecte DuplicaObjectes(const TRecursosObjecte* object);
TPropietatObjecte DuplicaPropietats(const TPropietatObjecte* property);
void EliminaPRecursosObjecte(PRecursosObjecte& object);
void EliminaPPropietatObjecte(std::unique_ptr<TPropietatObjecte>& property);

// Gives one property of one object in a stored stream (from its beginning) a new value, in the text form of Valor, and
// keeps its type where the value allows (an integer grows to the code that holds it). A property that is not there is
// added as a string. False, and nothing changes, when there is no object of that name. A value that the type cannot
// take raises EConvertError.
bool ChangeStreamPropertyValue(TStream& stream, const AnsiString& objectName, const AnsiString& propertyName,
                               const AnsiString& newValue);

// Makes a component of the stream's root object with the given owner and parent. The caller (or the owner) owns it.
TComponent* StreamCreaComponent(TStream& stream, TComponent* owner, TComponent* parent,
                                decltype(TReader::OnFindMethod) onFindMethod, decltype(TReader::OnSetName) onSetName);

// The display name of a type code: "vaInt8".
AnsiString NomTipusPropietat(uint8_t tipus);
// A property, and the one read before it, for messages.
AnsiString TextDePropietat(const TPropietatObjecte& actual, int numero, const TPropietatObjecte* anterior);

}  // namespace vyn
