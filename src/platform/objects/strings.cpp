#include "platform/objects/strings.h"

#include <algorithm>

#include "platform/objects/filer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace {

constexpr char kLineBreak[] = "\r\n";

// A character that separates, or needs quoting, in comma text.
bool IsBlankOrControl(char c) { return static_cast<unsigned char>(c) <= ' '; }

}  // namespace

const ClassInfo& TStrings::StaticClass() {
    static const ClassInfo info = DefineClass<TStrings, TPersistent>("TStrings");
    return info;
}

const ClassInfo& TStringList::StaticClass() {
    static const ClassInfo info = DefineClass<TStringList, TStrings>("TStringList");
    return info;
}

void TStrings::IndexError(int index) { throw EStringListError("List index out of bounds (" + IntToStr(index) + ")"); }

int TStrings::Add(const AnsiString& text) {
    const int index = Count();
    Insert(index, text);
    return index;
}

int TStrings::AddObject(const AnsiString& text, TObject* object) {
    const int index = Add(text);
    PutObject(index, object);
    return index;
}

void TStrings::InsertObject(int index, const AnsiString& text, TObject* object) {
    Insert(index, text);
    PutObject(index, object);
}

void TStrings::AddStrings(const TStrings& strings) {
    BeginUpdate();
    const int count = strings.Count();
    for (int i = 0; i < count; ++i) AddObject(strings.Get(i), strings.GetObject(i));
    EndUpdate();
}

void TStrings::Exchange(int first, int second) {
    BeginUpdate();
    const AnsiString text = Get(first);
    TObject* object = GetObject(first);
    Put(first, Get(second));
    PutObject(first, GetObject(second));
    Put(second, text);
    PutObject(second, object);
    EndUpdate();
}

void TStrings::Move(int from, int to) {
    if (from == to) return;
    BeginUpdate();
    const AnsiString text = Get(from);
    TObject* object = GetObject(from);
    Delete(from);
    InsertObject(to, text, object);
    EndUpdate();
}

int TStrings::IndexOf(const AnsiString& text) const {
    for (int i = 0; i < Count(); ++i)
        if (AnsiSameText(Get(i), text)) return i;
    return -1;
}

int TStrings::IndexOfObject(const TObject* object) const {
    for (int i = 0; i < Count(); ++i)
        if (GetObject(i) == object) return i;
    return -1;
}

bool TStrings::Equals(const TStrings& strings) const {
    if (Count() != strings.Count()) return false;
    for (int i = 0; i < Count(); ++i)
        if (Get(i) != strings.Get(i)) return false;
    return true;
}

AnsiString TStrings::Names(int index) const {
    const AnsiString line = Get(index);
    const size_t at = line.find('=');
    return at == AnsiString::npos ? AnsiString() : line.substr(0, at);
}

int TStrings::IndexOfName(const AnsiString& name) const {
    for (int i = 0; i < Count(); ++i) {
        const AnsiString line = Get(i);
        const size_t at = line.find('=');
        if (at != AnsiString::npos && AnsiSameText(line.substr(0, at), name)) return i;
    }
    return -1;
}

AnsiString TStrings::Values(const AnsiString& name) const {
    const int index = IndexOfName(name);
    return index < 0 ? AnsiString() : Get(index).substr(name.size() + 1);
}

void TStrings::SetValue(const AnsiString& name, const AnsiString& value) {
    const int index = IndexOfName(name);
    if (value.empty()) {
        if (index >= 0) Delete(index);
    } else if (index < 0) {
        Add(name + "=" + value);
    } else {
        Put(index, name + "=" + value);
    }
}

AnsiString TStrings::Text() const {
    AnsiString text;
    const int count = Count();
    for (int i = 0; i < count; ++i) {
        text += Get(i);
        text += kLineBreak;
    }
    return text;
}

void TStrings::SetText(const AnsiString& text) {
    BeginUpdate();
    Clear();
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find_first_of(kLineBreak, at), text.size());
        Add(text.substr(at, end - at));
        at = end;
        if (at < text.size() && text[at] == '\r') ++at;
        if (at < text.size() && text[at] == '\n' && (at == end || text[at - 1] == '\r')) ++at;
    }
    EndUpdate();
}

AnsiString TStrings::CommaText() const {
    const int count = Count();
    if (count == 1 && Get(0).empty()) return "\"\"";
    AnsiString result;
    for (int i = 0; i < count; ++i) {
        if (i > 0) result += ',';
        const AnsiString line = Get(i);
        const bool plain =
            std::none_of(line.begin(), line.end(), [](char c) { return IsBlankOrControl(c) || c == '"' || c == ','; });
        if (plain) {
            result += line;
            continue;
        }
        result += '"';
        for (char c : line) {
            if (c == '"') result += '"';
            result += c;
        }
        result += '"';
    }
    return result;
}

void TStrings::SetCommaText(const AnsiString& text) {
    BeginUpdate();
    Clear();
    size_t at = 0;
    const auto skipBlanks = [&] {
        while (at < text.size() && IsBlankOrControl(text[at])) ++at;
    };
    skipBlanks();
    while (at < text.size()) {
        AnsiString line;
        if (text[at] == '"') {
            ++at;
            while (at < text.size()) {
                if (text[at] == '"') {
                    if (at + 1 >= text.size() || text[at + 1] != '"') break;
                    ++at;
                }
                line += text[at++];
            }
            if (at < text.size()) ++at;
        } else {
            while (at < text.size() && !IsBlankOrControl(text[at]) && text[at] != ',') line += text[at++];
        }
        Add(line);
        skipBlanks();
        if (at < text.size() && text[at] == ',') {
            ++at;
            skipBlanks();
            // A comma at the very end announces one more, empty item.
            if (at >= text.size()) Add(AnsiString());
        }
    }
    EndUpdate();
}

void TStrings::BeginUpdate() {
    // Before it is counted: what is announced now is still to come.
    if (updateCount_ == 0) SetUpdateState(true);
    ++updateCount_;
}

void TStrings::EndUpdate() {
    if (updateCount_ > 0 && --updateCount_ == 0) SetUpdateState(false);
}

void TStrings::Assign(const TPersistent* source) {
    const auto* strings = ObjectCast<TStrings>(source);
    if (!strings) {
        TPersistent::Assign(source);
        return;
    }
    if (strings == this) return;
    BeginUpdate();
    Clear();
    AddStrings(*strings);
    EndUpdate();
}

void TStrings::DefineProperties(TFiler& filer) {
    const auto* ancestor = ObjectCast<TStrings>(filer.Ancestor);
    const bool hasData = filer.StoreDefaults || (ancestor ? !Equals(*ancestor) : Count() > 0);
    filer.DefineStringListProperty(
        "Strings",
        [this](std::vector<AnsiString> lines) {
            BeginUpdate();
            Clear();
            for (const AnsiString& line : lines) Add(line);
            EndUpdate();
        },
        [this] {
            std::vector<AnsiString> lines;
            const int count = Count();
            for (int i = 0; i < count; ++i) lines.push_back(Get(i));
            return lines;
        },
        hasData);
}

TStringList::TStringList(std::initializer_list<AnsiString> lines) {
    for (const AnsiString& line : lines) lines_.push_back({line, nullptr});
}

void TStringList::CheckIndex(int index) const {
    if (index < 0 || index >= Count()) IndexError(index);
}

const AnsiString& TStringList::At(int index) const {
    CheckIndex(index);
    return lines_[static_cast<size_t>(index)].text;
}

AnsiString TStringList::Get(int index) const { return At(index); }

void TStringList::Put(int index, const AnsiString& text) {
    if (sorted_) throw EStringListError("Operation not allowed on sorted string list");
    CheckIndex(index);
    Changing();
    lines_[static_cast<size_t>(index)].text = text;
    Changed();
}

TObject* TStringList::GetObject(int index) const {
    CheckIndex(index);
    return lines_[static_cast<size_t>(index)].object;
}

void TStringList::PutObject(int index, TObject* object) {
    CheckIndex(index);
    Changing();
    lines_[static_cast<size_t>(index)].object = object;
    Changed();
}

void TStringList::Insert(int index, const AnsiString& text) {
    if (sorted_) throw EStringListError("Operation not allowed on sorted string list");
    if (index < 0 || index > Count()) IndexError(index);
    Changing();
    lines_.insert(lines_.begin() + index, Line{text, nullptr});
    Changed();
}

void TStringList::Delete(int index) {
    CheckIndex(index);
    Changing();
    lines_.erase(lines_.begin() + index);
    Changed();
}

void TStringList::Clear() {
    if (lines_.empty()) return;
    Changing();
    lines_.clear();
    Changed();
}

int TStringList::Add(const AnsiString& text) {
    int index = Count();
    if (sorted_ && Find(text, index)) {
        switch (Duplicates) {
            case dupIgnore:
                return index;
            case dupError:
                throw EStringListError("String list does not allow duplicates");
            case dupAccept:
                break;
        }
    }
    Changing();
    lines_.insert(lines_.begin() + index, Line{text, nullptr});
    Changed();
    return index;
}

int TStringList::IndexOf(const AnsiString& text) const {
    if (sorted_) {
        int index = 0;
        return Find(text, index) ? index : -1;
    }
    for (size_t i = 0; i < lines_.size(); ++i)
        if (AnsiSameText(lines_[i].text, text)) return static_cast<int>(i);
    return -1;
}

bool TStringList::Find(const AnsiString& text, int& index) const {
    const auto found = std::lower_bound(lines_.begin(), lines_.end(), text, [](const Line& line, const AnsiString& t) {
        return AnsiCompareText(line.text, t) < 0;
    });
    index = static_cast<int>(found - lines_.begin());
    return found != lines_.end() && AnsiCompareText(found->text, text) == 0;
}

void TStringList::Sort() {
    Changing();
    std::stable_sort(lines_.begin(), lines_.end(),
                     [](const Line& a, const Line& b) { return AnsiCompareText(a.text, b.text) < 0; });
    Changed();
}

void TStringList::SetSorted(bool value) {
    if (sorted_ == value) return;
    if (value) Sort();
    sorted_ = value;
}

void TStringList::Changing() {
    if (UpdateCount() == 0) OnChanging(this);
}

void TStringList::Changed() {
    if (UpdateCount() == 0) OnChange(this);
}

void TStringList::SetUpdateState(bool updating) {
    if (updating)
        Changing();
    else
        Changed();
}

}  // namespace vyn
