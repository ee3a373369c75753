#include "platform/controls/lookup.h"

#include <algorithm>

#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"

namespace vyn {

namespace lookup_detail {

constexpr char kBackspace = 8;
constexpr uint32_t kSearchPause = 2000;  // ms after which typing begins another search

bool IsNone(const LookupKey& key) {
    return std::all_of(key.begin(), key.end(), [](const Variant& each) { return each.IsNull() || each.IsEmpty(); });
}

}  // namespace lookup_detail

Lookup::Lookup(LookupLink& link, std::function<void()> shown, std::function<void()> chosen)
    : link_(link), shown_(std::move(shown)), chosen_(std::move(chosen)), list_([this] {
          if (closed_) return;
          Forget();
          EndSearch();
          shown_();
      }) {}

Lookup::~Lookup() {
    closed_ = true;
    list_.SetSource(nullptr);
}

LookupKey Lookup::KeyOfField() const {
    LookupKey key;
    for (const TField* field : link_.ValueFields()) key.push_back(field->Value());
    return key;
}

void Lookup::Refresh() {
    if (closed_) return;
    const bool looksUp = link_.LooksUp();
    const TField* field = link_.Field();
    AnsiString keys = KeyField;
    AnsiString shown = ListField;
    int textField = ListFieldIndex;
    TDataSource* source = ListSource;
    if (looksUp) {
        keys = field->LookupKeyFields;
        const std::vector<AnsiString> names = SplitFieldNames(shown);
        // The result is always among what is shown.
        const bool there = std::any_of(names.begin(), names.end(), [&](const AnsiString& name) {
            return AnsiSameText(name, field->LookupResultField);
        });
        if (!there) shown = field->LookupResultField + (shown.empty() ? "" : ";" + shown);
        if (!ownSource_) ownSource_ = std::make_unique<TDataSource>(nullptr);
        ownSource_->SetDataSet(field->LookupDataSet());
        source = ownSource_.get();
    } else if (shown.empty()) {
        shown = keys;
    }
    if (source && link_.DataSet() && source->DataSet() == link_.DataSet()) source = nullptr;
    list_.SetFields(keys, shown, textField);
    list_.SetSource(source);
    // Without a source the control keeps a value of its own, which begins with none.
    if (link_.DataSource())
        key_ = KeyOfField();
    else if (bound_)
        key_.clear();
    bound_ = link_.DataSource() != nullptr;
    Forget();
    Tell(shown_);
}

void Lookup::ShowKey(LookupKey key) {
    key_ = std::move(key);
    Forget();
    Tell(shown_);
}

int64_t Lookup::Record() {
    if (key_.empty()) return -1;
    // Numbers in pages do not stay.
    if (list_.IsPaged()) return list_.Find(key_);
    if (!record_) record_ = list_.Find(key_);
    return *record_;
}

const AnsiString& Lookup::Text() {
    if (!text_) {
        if (list_.DataSet())
            text_ = list_.TextOf(key_);
        else
            text_ = link_.LooksUp() ? link_.Field()->DisplayText() : AnsiString();
    }
    return *text_;
}

bool Lookup::CanChange() const {
    if (!list_.DataSet()) return false;
    if (!link_.DataSource()) return !link_.ReadOnly();
    return link_.CanModify() && (link_.DataSource()->AutoEdit || link_.Editing());
}

bool Lookup::Put(LookupKey key) {
    if (!link_.DataSource()) {
        if (!before_) before_ = key_;
        ShowKey(std::move(key));
        return true;
    }
    const LookupKey held = key_;
    if (!link_.Edit()) return false;
    std::vector<TField*> fields = link_.ValueFields();
    if (fields.size() != key.size()) return false;
    if (!before_) before_ = held;  // not sooner: beginning to edit forgets it
    for (size_t i = 0; i < fields.size(); ++i) fields[i]->SetValue(key[i]);
    return true;
}

bool Lookup::Choose(int64_t record) {
    TDataSet* data = list_.DataSet();
    if (!CanChange() || record < data->FirstRecord() || record >= data->Reach(record, 1)) return false;
    LookupKey key = list_.KeyOf(record);
    data->SetCurrentRecord(record);
    if (!SameKeys(key, key_) && !Put(std::move(key))) return false;
    Tell(chosen_);
    return true;
}

bool Lookup::ChooseNone() {
    if (!CanChange()) return false;
    EndSearch();
    if (lookup_detail::IsNone(key_)) return true;
    if (!Put(LookupKey(std::max<size_t>(key_.size(), 1), Variant::Null()))) return false;
    Tell(chosen_);
    return true;
}

bool Lookup::TakeBack() {
    if (!CanTakeBack()) return false;
    const LookupKey key = *before_;
    EndSearch();
    Put(key);
    before_.reset();
    Tell(chosen_);
    return true;
}

int64_t Lookup::Search(char key) {
    using namespace lookup_detail;
    const uint32_t now = TickCount();
    if (now - searchedAt_ > kSearchPause) searched_.clear();
    if (searched_.empty()) searchedRecord_ = 0;
    searchedAt_ = now;
    AnsiString wanted = searched_;
    int64_t from = searchedRecord_;
    if (key == kBackspace) {
        if (!wanted.empty()) wanted.pop_back();
        from = 0;
    } else {
        wanted += key;
    }
    const int64_t found = wanted.empty() ? -1 : list_.FindText(wanted, from);
    if (found >= 0 || key == kBackspace) {
        searched_ = wanted;
        searchedRecord_ = std::max<int64_t>(found, 0);
    } else {
        MessageBeep();
    }
    return found;
}

}  // namespace vyn
