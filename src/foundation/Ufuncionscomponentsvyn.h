#pragma once

#include <memory>

#include "platform/objects/component.h"
#include "platform/objects/strings.h"

namespace vyn {

// Small text tools that queries, their stored fields and sub-consultations are made of. Texts are single bytes and
// positions count from 1. A comma list is a string list's comma text; its items compare without regard to case.

// The component of a name among those that the component owns, else among its owner's, and so on upward; or null.
TComponent* RetornaComponentOwnerPerNom(const AnsiString& name, TComponent* component);

// The characters from the position up to the next c, or the end, on which the position is left.
AnsiString RetornaStringEntreChar(const AnsiString& text, char c, int& position);

// Is the value an item of the comma list?
bool ExisteixValor(const AnsiString& list, const AnsiString& value);

// The item of `values` that stands where the key stands in `keys`; empty when the key is not there. Fewer values than
// keys: EStringListError for a key beyond them.
AnsiString RetornaValor(const AnsiString& keys, const AnsiString& key, const AnsiString& values);

// The items that are not empty, joined by commas without quotes.
AnsiString TreuCampsNuls(const AnsiString& list);

// The parts of an argument list between its commas; commas inside 'strings', parentheses and brackets separate nothing.
// Parts keep their quotes and, but for blanks between a closing quote and the comma, their blanks. Raises a plain
// Exception that shows the text and what is wrong with it.
std::unique_ptr<TStringList> DecodificaStringComa(const AnsiString& text);

// Replaces a 'quoted literal', blanks around it aside, by its content; false, and no change, when the text is none.
// A quote inside that is not doubled raises a plain Exception.
bool EliminaCometesDeString(AnsiString& text);

// The trimmed texts before and after the first "="; false, and both empty, when there is none.
bool PartsIgualtat(const AnsiString& text, AnsiString& left, AnsiString& right);

}  // namespace vyn
