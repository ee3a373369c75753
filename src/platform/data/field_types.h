#pragma once

#include "platform/objects/type_info.h"

namespace vyn {

// What a field holds. The numbers are stored in field lists and dictionaries: they never change.
enum class TFieldType {
    ftUnknown = 0,
    ftString = 1,
    ftSmallint = 2,
    ftInteger = 3,
    ftWord = 4,
    ftBoolean = 5,
    ftFloat = 6,
    ftCurrency = 7,
    ftBCD = 8,
    ftDate = 9,
    ftTime = 10,
    ftDateTime = 11,
    ftBytes = 12,
    ftVarBytes = 13,
    ftAutoInc = 14,
    ftBlob = 15,
    ftMemo = 16,
    ftGraphic = 17,
    ftFmtMemo = 18,
    ftParadoxOle = 19,
    ftDBaseOle = 20,
    ftTypedBinary = 21,
    ftCursor = 22,
    ftFixedChar = 23,
    ftWideString = 24,
    ftLargeint = 25,
};
using enum TFieldType;
const EnumType& TypeInfoOf(TypeTag<TFieldType>);

// How text stands in its place; shared by fields and controls.
enum class TAlignment { taLeftJustify, taRightJustify, taCenter };
using enum TAlignment;
const EnumType& TypeInfoOf(TypeTag<TAlignment>);

// One column of a result, as an engine describes it.
struct FieldDefinition {
    AnsiString Name;
    TFieldType DataType = ftUnknown;
    int Size = 0;       // characters of a text, 0: without a limit
    int Precision = 0;  // digits of a decimal
    bool Required = false;
    // Where the column comes from, when it is a table's own.
    AnsiString OriginTable = {};
    AnsiString OriginColumn = {};
    bool InKey = false;      // part of the table's primary key
    bool Automatic = false;  // the engine gives a value when none is written
    bool ReadOnly = false;   // computed: nothing can be written to it

    friend bool operator==(const FieldDefinition&, const FieldDefinition&) = default;
};

}  // namespace vyn
