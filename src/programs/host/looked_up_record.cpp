#include "programs/host/looked_up_record.h"

#include "platform/text/exceptions.h"
#include "platform/text/folding.h"

namespace vyn {

namespace looked_up_detail {

const TLocateOptions kTyped = {loCaseInsensitive, loPartialKey, loAccentInsensitive, loWholeFirst};

}  // namespace looked_up_detail

LookedUpRecord::Values LookedUpRecord::ValuesOf(const TDataSet& dataSet, bool none) {
    Values values;
    for (int i = 0; i < dataSet.FieldCount(); ++i) {
        const TField& field = *dataSet.Fields(i);
        if (!TParametres::IsValidName(field.FieldName()) || ColumnKindOf(field.DataType()) == ColumnKind::Bytes)
            continue;
        values.emplace_back(field.FieldName(), none ? Variant::Null() : field.Value());
    }
    return values;
}

bool LookedUpRecord::Search(const TField& field, const Variant& value, const Finder& find) {
    if (value.IsNull() || value.IsEmpty()) return false;
    AnsiString found;
    if (ColumnKindOf(field.DataType()) != ColumnKind::Text) {
        try {
            return find(value, {}, found);
        } catch (const EConvertError&) {
            // What was typed is no number, or no date: no record has it.
        } catch (const EVariantError&) {
        }
        return false;
    }
    const Variant text(VarToStr(value));
    if (text.AsString().empty() || !find(text, looked_up_detail::kTyped, found)) return false;
    // The whole text may stand elsewhere just as it is written.
    if (found != text.AsString() && SameFolded(found, text.AsString())) find(text, {}, found);
    return true;
}

bool LookedUpRecord::Find(TDataSet& dataSet, const AnsiString& fieldName, const Variant& value) {
    Clear();
    const TField* field = dataSet.FindField(fieldName);
    return field && Search(*field, value, [&](const Variant& wanted, TLocateOptions options, AnsiString& found) {
               return dataSet.LookUp(field->FieldName(), wanted, options, [&] {
                   found = field->AsString();
                   TakeCurrent(dataSet);
               });
           });
}

bool LookedUpRecord::Goto(TDataSet& dataSet, const AnsiString& fieldName, const Variant& value) {
    const TField* field = dataSet.FindField(fieldName);
    return field && Search(*field, value, [&](const Variant& wanted, TLocateOptions options, AnsiString& found) {
               if (!dataSet.Locate(field->FieldName(), wanted, options)) return false;
               found = field->AsString();
               return true;
           });
}

void LookedUpRecord::TakeCurrent(TDataSet& dataSet) {
    values_ = ValuesOf(dataSet, false);
    state_ = State::Found;
}

void LookedUpRecord::Read(TDataSet* dataSet, TParametres& values) const {
    const auto add = [&](const Values& those) {
        for (const auto& [name, value] : those) values.SetParametreValue(name, value);
    };
    if (state_ == State::Found)
        add(values_);
    else if (dataSet && dataSet->Active())
        add(ValuesOf(*dataSet, state_ == State::None));
}

}  // namespace vyn
