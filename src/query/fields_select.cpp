#include "query/fields_select.h"

#include <algorithm>

#include "platform/objects/filer.h"
#include "platform/objects/strings.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace fields_select_detail {

// Every empty item stands in quotes, so that the items can be counted by eye; string lists leave them out.
void AppendItem(AnsiString& text, const AnsiString& item) {
    const bool plain = !item.empty() && std::none_of(item.begin(), item.end(), [](char c) {
        return static_cast<unsigned char>(c) <= ' ' || c == '"' || c == ',';
    });
    if (plain) {
        text += item;
        return;
    }
    text += '"';
    for (const char c : item) {
        if (c == '"') text += '"';
        text += c;
    }
    text += '"';
}

}  // namespace fields_select_detail

const TFieldsSQLRec& TFieldsSQLRec_NUL() {
    static const TFieldsSQLRec null;
    return null;
}

AnsiString TextOfField(const TFieldsSQLRec& field) {
    AnsiString text = field.FieldName + "=";
    const AnsiString items[] = {
        field.FieldSQL,
        field.FieldDescription,
        field.FieldFormat,
        field.FieldEditMask,
        IntToStr(field.FieldAlignment),
        field.FieldDisplayText,
        field.FieldFlag ? "TRUE" : "FALSE",
        field.FieldOrder,
    };
    for (const AnsiString& item : items) {
        if (&item != items) text += ',';
        fields_select_detail::AppendItem(text, item);
    }
    return text;
}

TFieldsSQLRec FieldOfText(const AnsiString& text) {
    const size_t equals = std::min(text.find('='), text.size());
    TStringList items;
    if (equals < text.size()) items.SetCommaText(text.substr(equals + 1));
    const int count = items.Count();
    TFieldsSQLRec field = TFieldsSQLRec_NUL();
    field.FieldName = text.substr(0, equals);
    if (count > 0) field.FieldSQL = items.At(0);
    if (count > 1) field.FieldDescription = items.At(1);
    if (count > 2) field.FieldFormat = items.At(2);
    if (count > 3) field.FieldEditMask = items.At(3);
    if (count > 4 && !Trim(items.At(4)).empty()) field.FieldAlignment = StrToInt(items.At(4));
    if (count > 5) field.FieldDisplayText = items.At(5);
    if (count > 6) field.FieldFlag = SameText(Trim(items.At(6)), "TRUE");
    if (count > 7) field.FieldOrder = items.At(7);
    if (field.FieldOrder.empty()) field.FieldOrder = field.FieldName;
    return field;
}

const ClassInfo& TFieldsSelectSQL::StaticClass() {
    static const ClassInfo info = DefineClass<TFieldsSelectSQL, TPersistent>("TFieldsSelectSQL");
    return info;
}

TPersistent* TFieldsSelectSQL::GetOwner() const { return query_; }

void TFieldsSelectSQL::Elimina(int index) {
    if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    fields_.erase(fields_.begin() + index);
}

const TFieldsSQLRec& TFieldsSelectSQL::GetFieldSQL(int index) const {
    return index < 0 || index >= Count() ? TFieldsSQLRec_NUL() : fields_[static_cast<size_t>(index)];
}

void TFieldsSelectSQL::SetFieldSQL(int index, const TFieldsSQLRec& field) {
    if (index < 0 || index >= Count()) query_->ErrorQuery("Index Out of Range in TQuery");
    fields_[static_cast<size_t>(index)] = field;
}

int TFieldsSelectSQL::PosicioFieldName(const AnsiString& name) const {
    for (size_t i = 0; i < fields_.size(); ++i)
        if (SameText(fields_[i].FieldName, name)) return static_cast<int>(i);
    return -1;
}

void TFieldsSelectSQL::Assign(const TPersistent* source) {
    if (const auto* other = ObjectCast<TFieldsSelectSQL>(source))
        fields_ = std::vector<TFieldsSQLRec>(other->fields_);
    else
        TPersistent::Assign(source);
}

void TFieldsSelectSQL::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineProperty(
        "Strings", [this](TReader& reader) { LoadFromReader(&reader); },
        [this](TWriter& writer) { WriteToWriter(&writer); }, Count() > 0 || filer.StoreDefaults);
}

void TFieldsSelectSQL::LoadFromReader(TReader* reader) {
    reader->ReadListBegin();
    while (!reader->EndOfList()) Afegeix(FieldOfText(reader->ReadString()));
    reader->ReadListEnd();
}

void TFieldsSelectSQL::WriteToWriter(TWriter* writer) {
    writer->WriteListBegin();
    for (const TFieldsSQLRec& field : fields_) writer->WriteString(TextOfField(field));
    writer->WriteListEnd();
}

}  // namespace vyn
