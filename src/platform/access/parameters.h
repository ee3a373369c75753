#pragma once

#include "platform/access/dialect.h"
#include "platform/data/field_types.h"
#include "platform/objects/collection.h"
#include "platform/values/variant.h"

namespace vyn {

using TDataType = TFieldType;

enum class TParameterAttribute { psSigned, psNullable, psLong };
using enum TParameterAttribute;
using TParameterAttributes = Set<TParameterAttribute>;
const EnumType& TypeInfoOf(TypeTag<TParameterAttribute>);

enum class TParameterDirection { pdUnknown, pdInput, pdOutput, pdInputOutput, pdReturnValue };
using enum TParameterDirection;
const EnumType& TypeInfoOf(TypeTag<TParameterDirection>);

// A value that a statement takes by name. Without a value of its own (Empty) it is null.
class TParameter : public TCollectionItem {
    VYN_OBJECT
  public:
    explicit TParameter(TCollection* collection) : TCollectionItem(collection) {}

    AnsiString Name;
    TParameterAttributes Attributes;
    TDataType DataType = ftUnknown;
    TParameterDirection Direction = pdInput;
    uint8_t NumericScale = 0;
    uint8_t Precision = 0;
    int32_t Size = 0;
    const Variant& Value() const { return value_; }
    // Gives the parameter the value's type when none was set.
    void SetValue(const Variant& value);

    AnsiString DisplayName() const override { return Name.empty() ? TCollectionItem::DisplayName() : Name; }
    void Assign(const TPersistent* source) override;

  private:
    Variant value_;
    TDataType derived_ = ftUnknown;  // the type that the last value gave
};

// The parameters of a statement, each name once.
class TParameters : public TOwnedCollection<TParameter> {
  public:
    explicit TParameters(TPersistent* owner) : TOwnedCollection<TParameter>(owner) { PropertyName = "Parameters"; }

    // Without regard to case; null when there is none.
    TParameter* FindParam(const AnsiString& name) const;
    // Raises EDatabaseError "Parameter 'x' not found".
    TParameter* ParamByName(const AnsiString& name) const;
    TParameter* AddParameter() { return Add(); }
    TParameter* CreateParameter(const AnsiString& name, TDataType type, TParameterDirection direction, int32_t size,
                                const Variant& value);
    // One for each name in the statement; those that there are keep their values, those that it does not name go.
    void ParseSQL(const AnsiString& sql);
};

}  // namespace vyn
