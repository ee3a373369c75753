#include "platform/controls/lookup_list.h"

#include <algorithm>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace lookup_list_detail {

// Equal values of whatever types have equal texts; a null has none.
std::string KeyText(const LookupKey& key) {
    std::string text;
    for (const Variant& value : key) {
        if (value.IsNull() || value.IsEmpty()) {
            text += '-';
            continue;
        }
        const AnsiString part =
            value.Type() == varDate ? FloatToStr(value.AsDateTime().Val, InvariantFormatSettings()) : VarToStr(value);
        text += '+' + std::to_string(part.size()) + ':' + part;
    }
    return text;
}

size_t HashOf(const std::string& keyText) { return std::hash<std::string>()(keyText); }

}  // namespace lookup_list_detail

bool SameKeys(const LookupKey& a, const LookupKey& b) {
    return a.size() == b.size() && lookup_list_detail::KeyText(a) == lookup_list_detail::KeyText(b);
}

int64_t RecordBeside(TDataSet& data, int64_t record, int64_t distance) {
    if (record < 0) return FirstRecordOf(data);
    if (data.IsPaged()) {
        data.SetCurrentRecord(record);
        data.MoveBy(distance);
        return data.CurrentRecord();
    }
    const int64_t target = std::max<int64_t>(record + distance, 0);
    return std::min(target, data.FetchTo(target + 1) - 1);
}

int64_t FirstRecordOf(TDataSet& data) {
    if (!data.IsPaged()) return data.FetchTo(1) > 0 ? 0 : -1;
    data.First();
    return data.CurrentRecord();
}

int64_t LastRecordOf(TDataSet& data) {
    if (!data.IsPaged()) return data.RecordCount() - 1;
    data.Last();
    return data.CurrentRecord();
}

std::vector<AnsiString> SplitFieldNames(const AnsiString& names) {
    std::vector<AnsiString> parts;
    for (size_t at = 0; at <= names.size();) {
        const size_t end = std::min(names.find(';', at), names.size());
        const AnsiString name = Trim(names.substr(at, end - at));
        if (!name.empty()) parts.push_back(name);
        at = end + 1;
    }
    return parts;
}

// The link of the value's field.

bool LookupLink::LooksUp() const {
    const TField* field = Field();
    return field && field->FieldKind() == fkLookup;
}

std::vector<TField*> LookupLink::ValueFields() const {
    TField* field = Field();
    if (!field) return {};
    if (!LooksUp()) return {field};
    std::vector<TField*> fields;
    for (const AnsiString& name : SplitFieldNames(field->KeyFields)) {
        TField* key = ActiveDataSet()->FindField(name);
        if (!key) return {};
        fields.push_back(key);
    }
    return fields;
}

bool LookupLink::CanModify() const {
    if (!LooksUp()) return TFieldDataLink::CanModify();
    // A looked-up field is never written itself; that it is read-only means those by which it is looked up.
    const std::vector<TField*> fields = ValueFields();
    return !ReadOnly() && !Field()->ReadOnly && !fields.empty() &&
           std::all_of(fields.begin(), fields.end(), [](const TField* each) { return each->CanModify(); });
}

void LookupLink::RecordChanged(TField* field) {
    if (field && LooksUp()) {
        const std::vector<TField*> fields = ValueFields();
        if (std::find(fields.begin(), fields.end(), field) != fields.end()) field = nullptr;
    }
    TFieldDataLink::RecordChanged(field);
}

void LookupLink::DataSetScrolled() {
    OnScroll(nullptr);
    TFieldDataLink::DataSetScrolled();
}

// The list.

class LookupList::Link : public TDataLink {
  public:
    Link(LookupList& list, std::function<void()> changed) : list_(list), changed_(std::move(changed)) {}

  protected:
    void Changed(DataEvent event, TField*) override {
        switch (event) {
            case DataEvent::Scrolled:
            case DataEvent::StateChanged:
            case DataEvent::UpdateRecord:
            case DataEvent::CheckBrowse:
                return;
            case DataEvent::ActiveChanged:
            case DataEvent::RecordsChanged:
            case DataEvent::LayoutChanged:
            case DataEvent::RecordChanged:
                break;
        }
        list_.Forget();
        changed_();
    }

  private:
    LookupList& list_;
    std::function<void()> changed_;
};

LookupList::LookupList(std::function<void()> changed) : link_(std::make_unique<Link>(*this, std::move(changed))) {}

LookupList::~LookupList() = default;

TDataSource* LookupList::Source() const { return link_->DataSource(); }
void LookupList::SetSource(TDataSource* source) { link_->SetDataSource(source); }

void LookupList::SetFields(const AnsiString& keys, const AnsiString& shown, int textField) {
    shown_ = SplitFieldNames(shown);
    textField_ = textField;
    std::vector<AnsiString> names = SplitFieldNames(keys);
    if (names == keys_) return;
    keys_ = std::move(names);
    Forget();
}

void LookupList::Forget() {
    passed_.clear();
    passedTo_ = 0;
}

std::vector<const TField*> LookupList::KeyFields() const {
    std::vector<const TField*> fields;
    for (const AnsiString& name : keys_)
        if (const TField* field = link_->ActiveDataSet()->FindField(name)) fields.push_back(field);
    return fields;
}

TDataSet* LookupList::DataSet() const {
    TDataSet* data = link_->ActiveDataSet();
    return data && !keys_.empty() && KeyFields().size() == keys_.size() ? data : nullptr;
}

const TField* LookupList::TextField() const {
    if (shown_.empty()) return nullptr;
    const auto place = static_cast<size_t>(std::max(textField_, 0));
    return link_->ActiveDataSet()->FindField(shown_[place < shown_.size() ? place : 0]);
}

LookupKey LookupList::KeyOf(int64_t record) const {
    LookupKey key;
    if (!DataSet()) return key;
    for (const TField* field : KeyFields()) key.push_back(field->ValueIn(record));
    return key;
}

AnsiString LookupList::KeyNames() const {
    AnsiString names;
    for (const AnsiString& name : keys_) names += (names.empty() ? "" : ";") + name;
    return names;
}

AnsiString LookupList::TextOf(const LookupKey& key) {
    TDataSet* data = DataSet();
    const TField* field = data ? TextField() : nullptr;
    if (!field || key.size() != keys_.size()) return {};
    // The text of a record that is not at hand is the value's own.
    if (data->IsPaged()) return VarToStr(data->Lookup(KeyNames(), key, field->FieldName()));
    const int64_t record = Find(key);
    return record >= 0 ? field->DisplayTextOf(record) : AnsiString();
}

int64_t LookupList::Find(const LookupKey& key) {
    using namespace lookup_list_detail;
    TDataSet* data = DataSet();
    if (!data || key.size() != keys_.size()) return -1;
    if (data->IsPaged()) {
        const bool here = data->RowOf(data->CurrentRecord()) >= 0 && SameKeys(KeyOf(data->CurrentRecord()), key);
        if (!here && !data->Locate(KeyNames(), key)) return -1;
        // Its number is one among those around it.
        data->ShowCurrent();
        return data->CurrentRecord();
    }
    const std::string wanted = KeyText(key);
    const size_t hash = HashOf(wanted);
    if (const auto known = passed_.find(hash); known != passed_.end()) {
        if (known->second < data->RecordsFetched() && KeyText(KeyOf(known->second)) == wanted) return known->second;
        // Another value with the same hash came first: one by one, then.
        for (int64_t record = 0; record < passedTo_ && record < data->RecordsFetched(); ++record)
            if (KeyText(KeyOf(record)) == wanted) return record;
    }
    const std::vector<const TField*> fields = KeyFields();
    LookupKey held(fields.size());
    for (; passedTo_ < data->FetchTo(passedTo_ + 1); ++passedTo_) {
        for (size_t i = 0; i < fields.size(); ++i) held[i] = fields[i]->ValueIn(passedTo_);
        const std::string text = KeyText(held);
        passed_.emplace(HashOf(text), passedTo_);
        if (text == wanted) return passedTo_++;
    }
    return -1;
}

int64_t LookupList::FindText(const AnsiString& text, int64_t from) const {
    TDataSet* data = DataSet();
    const TField* field = data ? TextField() : nullptr;
    if (!field) return -1;
    if (data->IsPaged()) {
        try {
            if (data->Locate(field->FieldName(), Variant(text), {loCaseInsensitive, loPartialKey})) {
                data->ShowCurrent();
                return data->CurrentRecord();
            }
        } catch (const EConvertError&) {
            // What is typed is no number, or no date yet: there is no such record.
        } catch (const EVariantError&) {
        }
        return -1;
    }
    for (int64_t record = std::max<int64_t>(from, 0); record < data->FetchTo(record + 1); ++record) {
        AnsiString held = field->DisplayTextOf(record);
        if (held.size() < text.size()) continue;
        held.resize(text.size());
        if (AnsiSameText(held, text)) return record;
    }
    return -1;
}

}  // namespace vyn
