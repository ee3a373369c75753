#include "events/Ueventsvyn.h"
#include "parser/Uparservyn.h"
#include "platform/data/data_set.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "query/Uquerysql.h"

// Operands of rules: what each type of source gives and each type of destination does.
namespace vyn {

namespace operands_detail {

constexpr char kOwner[] = "OWNER";

[[noreturn]] void Error(const AnsiString& message) { throw ExcepcioEventsVyn(message); }

// The first two fields of a text that dots divide.
struct Pair {
    AnsiString First, Second;
};
Pair Split(const AnsiString& text) {
    const size_t dot = text.find('.');
    if (dot == AnsiString::npos) return {text, {}};
    const AnsiString rest = text.substr(dot + 1);
    return {text.substr(0, dot), rest.substr(0, rest.find('.'))};
}

// What a name of a dataset stands for: a query is its dataset. Null for anything else.
TDataSet* DataSetOf(TComponent* component) {
    if (auto* query = ObjectCast<TQuerySQL>(component)) return query->QryDataSet();
    return ObjectCast<TDataSet>(component);
}

[[noreturn]] void InvalidPropertyType(const AnsiString& path) {
    Error("El tipus de la propietat "_w + Split(path).Second + " no és vàlida"_w);
}

[[noreturn]] void NoFieldToSet(const AnsiString& dataSet, const AnsiString& field) {
    Error("El DataSet " + dataSet + " no conté un Field amb el nom "_w + field);
}

AnsiString TextOf(const Variant& value) { return VarToStr(value); }

// The number that a property of named values is set to. Rules are stored data: a number that is none of the values
// never gets into a property. A boolean is true for any number but 0.
int64_t OrdinalFor(const PropertyInfo& property, const Variant& value) {
    const int64_t number = value.AsInteger();
    if (property.Kind == PropertyKind::Integer) return number;
    if (property.Enum == &TypeInfoOf(TypeTag<bool>{})) return number != 0;
    const bool fits = property.Kind == PropertyKind::Enumeration ? property.Enum->Contains(number)
                                                                 : number >= 0 && number >> property.Enum->Count() == 0;
    if (!fits)
        throw EPropertyError("Invalid property value: " + IntToStr(number) + " is no value of " +
                             property.Enum->Name());
    return number;
}

}  // namespace operands_detail

TComponent* TEventsVyn::FindFrom(TComponent* component, const AnsiString& name) {
    for (TComponent* at = component ? component : this; at; at = at->Owner()) {
        if (SameText(name, operands_detail::kOwner)) return at->Owner();
        if (at->Name() == name) return at;
        if (TComponent* found = at->FindComponent(name)) return found;
    }
    TComponent* found = nullptr;
    if (OnNeedComponent) OnNeedComponent(this, name, found);
    if (!found) throw Exception("Componente: " + name + " no encontrado");
    return found;
}

TComponent* TEventsVyn::ComponentOfReference(const Variant& value) {
    const int64_t number = value.AsInteger();
    if (number == 0) return nullptr;
    if (TComponent* component = ComponentFromHandle(number)) return component;
    operands_detail::Error("The component that the reference " + IntToStr(number) + " stood for is no more");
}

void TEventsVyn::CapturaValorOrigen(TComponent* component, const TPartAssignacioEvent& part, Variant& value) {
    switch (part.Tipus) {
        case tdcNul:
            value = Variant::Null();
            return;
        case tdcObjecte: {
            TComponent* found = FindFrom(component, part.Valor);
            value = found ? found->Handle() : 0;
            return;
        }
        case tdcValorDirecte:
            value = part.Valor;
            return;
        case tdcProcediment:
        case tdcInternalProc:
            operands_detail::Error("ERROR : Una funció es troba com a Origen del Codi, i només pot ser destí."_w);
        case tdcExpresion:
            value = ExpressionValue(part.Valor);
            return;
        case tdcParametre:
        case tdcInternalParam:
        case tdcPropietat:
        case tdcFieldName:
            value = SourceValue(component, part);
            return;
    }
    operands_detail::Error("CapturaValor : Tipus de dada no valid");
}

// What a look-up raises passes; any other trouble of reading is this component's error.
Variant TEventsVyn::SourceValue(TComponent* component, const TPartAssignacioEvent& part) {
    if (part.Tipus == tdcPropietat) return PropertyValue(component, part.Valor);
    if (part.Tipus == tdcFieldName) return FieldValue(component, part.Valor);
    TParametres* params = part.Tipus == tdcParametre ? Parametres() : ParametresList();
    if (!params) operands_detail::Error("There is no ParametresList with the parameter " + part.Valor);
    try {
        return params->GetParametreValue(part.Valor);
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        operands_detail::Error(error.Message());
    }
}

Variant TEventsVyn::ExpressionValue(const AnsiString& expression) {
    TParserVyn parser(this);
    parser.OnVariableNotFound = [this](TObject* sender, const AnsiString& name) { ParserVarNotFound(sender, name); };
    try {
        if (ParametresList()) parser.Variables().Add(ParametresList());
        if (Parametres() && Parametres() != ParametresList()) parser.Variables().Add(Parametres());
        parser.SetExpression(expression);
        return parser.CalcValue();
    } catch (const EVarIsNull&) {
        return Variant::Null();
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        operands_detail::Error("Expresió invàlida : "_w + expression + "\n\rERROR TYPE : " + error.ClassName() +
                               "\n\r" + error.Message());
    }
}

void TEventsVyn::ParserVarNotFound(TObject*, const AnsiString& name) {
    TParametres* global = Parametres();
    if (!global || !global->ParamExists(name))
        throw EParserInternalError("Error in Function : Variable " + name + " not found");
    if (ParametresList()) ParametresList()->AddParam(name, global->GetParametreValue(name));
}

const PropertyInfo& TEventsVyn::RequireProperty(TComponent* component, const AnsiString& path, TComponent*& found) {
    const auto [name, property] = operands_detail::Split(path);
    if (name.empty()) operands_detail::Error("El nom del component no existeix");
    if (property.empty()) operands_detail::Error("El nom de la propietat no existeix");
    found = FindFrom(component, name);
    if (!found) operands_detail::Error("No trobat el component: " + name);
    const PropertyInfo* info = found->ClassType()->FindProperty(property);
    if (!info) operands_detail::Error("No trobada la propietat: " + property + " dins el component " + name);
    return *info;
}

Variant TEventsVyn::PropertyValue(TComponent* component, const AnsiString& path) {
    TComponent* found = nullptr;
    const PropertyInfo& property = RequireProperty(component, path, found);
    try {
        switch (property.Kind) {
            case PropertyKind::Integer:
            case PropertyKind::Enumeration:
            case PropertyKind::Set:
                return static_cast<int32_t>(property->GetOrdinal(*found));
            case PropertyKind::Character:
                return AnsiString(1, static_cast<char>(property->GetOrdinal(*found)));
            case PropertyKind::String:
                return property->GetString(*found);
            case PropertyKind::WideText:
                return WideToAnsi(property->GetWideString(*found));
            case PropertyKind::Variant:
                return property->GetVariant(*found);
            case PropertyKind::Int64:
            case PropertyKind::Float:
            case PropertyKind::Class:
            case PropertyKind::Method:
                break;
        }
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        operands_detail::Error(error.Message());
    }
    operands_detail::InvalidPropertyType(path);
}

void TEventsVyn::SetPropertyValue(TComponent* component, const AnsiString& path, const Variant& value) {
    TComponent* found = nullptr;
    const PropertyInfo& property = RequireProperty(component, path, found);
    switch (property.Kind) {
        case PropertyKind::Integer:
        case PropertyKind::Enumeration:
        case PropertyKind::Set:
            property->SetOrdinal(*found, operands_detail::OrdinalFor(property, value));
            return;
        case PropertyKind::Character: {
            const AnsiString text = operands_detail::TextOf(value);
            if (text.size() > 1) operands_detail::InvalidPropertyType(path);
            property->SetOrdinal(*found, text.empty() ? 0 : static_cast<unsigned char>(text[0]));
            return;
        }
        case PropertyKind::String:
            property->SetString(*found, operands_detail::TextOf(value));
            return;
        case PropertyKind::WideText:
            property->SetWideString(*found, VarToWideStr(value));
            return;
        case PropertyKind::Variant:
            property->SetVariant(*found, value);
            return;
        case PropertyKind::Int64:
        case PropertyKind::Float:
        case PropertyKind::Class:
        case PropertyKind::Method:
            break;
    }
    operands_detail::InvalidPropertyType(path);
}

Variant TEventsVyn::FieldValue(TComponent* component, const AnsiString& path) {
    const auto [name, fieldName] = operands_detail::Split(path);
    if (name.empty()) operands_detail::Error("No existe el nombre del TDataSet");
    if (fieldName.empty()) operands_detail::Error("El nombre del Field no existe");
    TComponent* found = FindFrom(component, name);
    if (!found) operands_detail::Error("No trobat el component: " + name);
    TDataSet* dataSet = operands_detail::DataSetOf(found);
    if (!dataSet)
        operands_detail::Error("El componente " + name + " no es un TDataSet sinó un "_w + found->ClassName());
    TField* field = dataSet->FindField(fieldName);
    if (!field) operands_detail::Error("El DataSet " + name + " no contiene un Field llamado: " + fieldName);
    try {
        return field->Value();
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        operands_detail::Error(error.Message());
    }
}

void TEventsVyn::SetFieldValue(TComponent* component, const AnsiString& path, const Variant& value) {
    const auto [name, fieldName] = operands_detail::Split(path);
    if (name.empty()) operands_detail::Error("El nom del component de tipus TDataSet no existeix");
    if (fieldName.empty()) operands_detail::Error("El nom del Field no existeix");
    TComponent* found = FindFrom(component, name);
    if (!found) operands_detail::Error("No trobat el component de tipus TDataSet: " + name);
    TDataSet* dataSet = operands_detail::DataSetOf(found);
    if (!dataSet) operands_detail::Error("El component " + name + " no és un TDataSet sinó un "_w + found->ClassName());
    TField* field = dataSet->FindField(fieldName);
    if (!field) operands_detail::NoFieldToSet(name, fieldName);
    // Posting is the user's, or another rule's. While fields are calculated, theirs are set as they are.
    if (dataSet->State() != dsEdit && dataSet->State() != dsInsert && dataSet->State() != dsCalcFields) {
        const int handle = dataSet->Handle();
        dataSet->Edit();
        // What runs before or after it may close the dataset.
        field = ComponentFromHandle(handle) ? dataSet->FindField(fieldName) : nullptr;
        if (!field) operands_detail::NoFieldToSet(name, fieldName);
    }
    field->SetValue(value);
}

void TEventsVyn::ExecutaCodiDesti(TComponent* component, const TPartAssignacioEvent& part, const Variant& value) {
    switch (part.Tipus) {
        case tdcNul:
            operands_detail::Error("El Destí d'una linea de codi no pot ser NULL"_w);
        case tdcObjecte:
            operands_detail::Error("El Destí d'una linea de codi no pot ser un OBJECTE"_w);
        case tdcValorDirecte:
            operands_detail::Error("El Destí d'una linea de codi no pot ser un VALOR DIRECTE"_w);
        case tdcExpresion:
            operands_detail::Error("El Destí d'una linea de codi no pot ser una expresió"_w);
        case tdcParametre:
        case tdcInternalParam: {
            TParametres* params = part.Tipus == tdcParametre ? Parametres() : ParametresList();
            if (!params) operands_detail::Error("There is no ParametresList for the parameter " + part.Valor);
            params->SetParametreValue(part.Valor, value);
            return;
        }
        case tdcPropietat:
            SetPropertyValue(component, part.Valor, value);
            return;
        case tdcFieldName:
            SetFieldValue(component, part.Valor, value);
            return;
        case tdcProcediment:
            ExecProc(part.Valor, false);
            return;
        case tdcInternalProc:
            ExecProc(part.Valor, true);
            return;
    }
    operands_detail::Error("ExecutaCodi : Tipus de dada no valid");
}

void TEventsVyn::ExecProc(const AnsiString& name, bool internalOnly) {
    bool executed = false;
    const int self = Handle();
    if (OnExecuteProcedureVyn) OnExecuteProcedureVyn(this, name, executed);
    if (executed || internalOnly || !ComponentFromHandle(self)) return;
    if (!app_) operands_detail::Error("FATAL ERROR : VynApp not assigned");
    app_->Procedures().ExecuteProcedure(name, this);
}

}  // namespace vyn
