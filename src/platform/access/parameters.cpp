#include "platform/access/parameters.h"

#include <algorithm>

#include "platform/data/cells.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TParameterAttribute>) {
    static const EnumType info("TParameterAttribute", {"psSigned", "psNullable", "psLong"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TParameterDirection>) {
    static const EnumType info("TParameterDirection",
                               {"pdUnknown", "pdInput", "pdOutput", "pdInputOutput", "pdReturnValue"});
    return info;
}

const ClassInfo& TParameter::StaticClass() {
    static const ClassInfo info = DefineClass<TParameter, TCollectionItem>("TParameter")
                                      .Published("Name", &TParameter::Name, &TParameter::Name)
                                      .Published("Attributes", &TParameter::Attributes, &TParameter::Attributes)
                                      .Default(TParameterAttributes())
                                      .Published("DataType", &TParameter::DataType, &TParameter::DataType)
                                      .Default(ftUnknown)
                                      .Published("Direction", &TParameter::Direction, &TParameter::Direction)
                                      .Default(pdInput)
                                      .Published("NumericScale", &TParameter::NumericScale, &TParameter::NumericScale)
                                      .Default(0)
                                      .Published("Precision", &TParameter::Precision, &TParameter::Precision)
                                      .Default(0)
                                      .Published("Size", &TParameter::Size, &TParameter::Size)
                                      .Default(0)
                                      .Published("Value", &TParameter::Value, &TParameter::SetValue);
    return info;
}

void TParameter::SetValue(const Variant& value) {
    value_ = value;
    if (DataType != derived_ || value.IsNull() || value.IsEmpty()) return;
    DataType = derived_ = FieldTypeOf(value);
}

void TParameter::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TParameter>(source);
    if (!other) {
        TCollectionItem::Assign(source);
        return;
    }
    Name = other->Name;
    Attributes = other->Attributes;
    DataType = other->DataType;
    Direction = other->Direction;
    NumericScale = other->NumericScale;
    Precision = other->Precision;
    Size = other->Size;
    value_ = other->value_;
    derived_ = other->derived_;
}

TParameter* TParameters::FindParam(const AnsiString& name) const {
    for (int i = 0; i < Count(); ++i)
        if (AnsiSameText(Items(i)->Name, name)) return Items(i);
    return nullptr;
}

TParameter* TParameters::ParamByName(const AnsiString& name) const {
    if (TParameter* found = FindParam(name)) return found;
    throw EDatabaseError("Parameter '" + name + "' not found");
}

TParameter* TParameters::CreateParameter(const AnsiString& name, TDataType type, TParameterDirection direction,
                                         int32_t size, const Variant& value) {
    TParameter* made = Add();
    made->Name = name;
    made->DataType = type;
    made->Direction = direction;
    made->Size = size;
    made->SetValue(value);
    return made;
}

void TParameters::ParseSQL(const AnsiString& sql) {
    const std::vector<AnsiString> names = ParameterNamesOf(sql);
    BeginUpdate();
    for (int i = Count(); i-- > 0;) {
        const AnsiString name = Items(i)->Name;
        if (std::none_of(names.begin(), names.end(), [&](const AnsiString& each) { return AnsiSameText(each, name); }))
            Delete(i);
    }
    for (size_t i = 0; i < names.size(); ++i) {
        TParameter* parameter = FindParam(names[i]);
        if (!parameter) {
            parameter = Add();
            parameter->Name = names[i];
        }
        parameter->SetIndex(static_cast<int>(i));
    }
    EndUpdate();
}

}  // namespace vyn
