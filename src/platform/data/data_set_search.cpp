#include <algorithm>
#include <cmath>

#include "platform/data/data_set.h"
#include "platform/data/data_set_focus.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

// Finding records: by their values, by bookmarks, by filters and in another order; and what is calculated for them.
namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TLocateOption>) {
    static const EnumType info("TLocateOption",
                               {"loCaseInsensitive", "loPartialKey", "loAccentInsensitive", "loWholeFirst"});
    return info;
}

namespace data_set_search_detail {

std::vector<AnsiString> SplitNames(const AnsiString& names, char separator) {
    std::vector<AnsiString> parts;
    for (size_t at = 0; at <= names.size();) {
        const size_t end = std::min(names.find(separator, at), names.size());
        const AnsiString name = Trim(names.substr(at, end - at));
        if (!name.empty()) parts.push_back(name);
        at = end + 1;
    }
    return parts;
}

bool SameInstant(double a, double b) {
    constexpr double kHalfMillisecond = 0.5 / static_cast<double>(kMillisecondsPerDay);
    return std::fabs(a - b) < kHalfMillisecond;
}

}  // namespace data_set_search_detail

// Tells whether a row has the values that are looked for.
struct TDataSet::KeyMatcher {
    struct Key {
        const TField* field;
        Variant value;
        std::string utf8;  // as rows keep it
        TextSearch search;
        bool none;
        bool isText;
        int column;  // of the rows, or -1
    };
    const TDataSet& data;
    std::vector<Key> keys;
    bool goesOn = false;  // the whole texts were looked for

    KeyMatcher(const TDataSet& dataSet, const AnsiString& names, const std::vector<Variant>& values,
               TLocateOptions options)
        : data(dataSet) {
        const auto parts = data_set_search_detail::SplitNames(names, ';');
        if (parts.empty() || parts.size() != values.size())
            data.DatabaseError("There are " + IntToStr(static_cast<int64_t>(parts.size())) + " key fields (" + names +
                               ") and " + IntToStr(static_cast<int64_t>(values.size())) + " values");
        const TextFolding folding =
            FoldingOf(options.Contains(loCaseInsensitive), options.Contains(loAccentInsensitive));
        const auto extent = options.Contains(loPartialKey) ? TextSearch::Extent::Beginning : TextSearch::Extent::Whole;
        for (size_t i = 0; i < parts.size(); ++i) {
            const TField* field = data.FieldByName(parts[i]);
            const AnsiString text = VarToStr(values[i]);
            keys.push_back({field, values[i],
                            values[i].Type() == varOleStr ? WideToUtf8(values[i].AsWideString()) : AnsiToUtf8(text),
                            TextSearch(text, folding, extent), values[i].IsNull() || values[i].IsEmpty(),
                            ColumnKindOf(field->DataType()) == ColumnKind::Text,
                            field->FieldKind() == fkData ? field->FieldNo() : -1});
        }
    }

    bool Matches(int64_t row) const {
        return std::all_of(keys.begin(), keys.end(), [&](const Key& key) { return KeyMatches(key, row); });
    }

    // What an engine can look for, which finds no less; nothing for values that engines hold otherwise than they are
    // shown.
    std::vector<PageSearch> Searches() const {
        std::vector<PageSearch> searches;
        for (const Key& key : keys) {
            if (key.column < 0) continue;
            PageSearch search{key.column, Cell::Null()};
            const bool isNumber =
                ColumnKindOf(key.field->DataType()) == ColumnKind::Integer && key.field->DataType() != ftBoolean;
            if (!key.none && key.isText) {
                search.Value = Cell::Bytes(key.utf8);
                search.Folding = key.search.Folding();
                search.Extent = key.search.HowMuch();
                search.GoesOn = goesOn;
            } else if (!key.none && isNumber) {
                search.Value = CellOf(key.value, key.field->DataType());
            } else if (!key.none) {
                continue;
            }
            searches.push_back(std::move(search));
        }
        return searches;
    }

  private:
    static bool TextMatches(const Key& key, std::string_view utf8) {
        // Exactly what is asked for, also in characters that cannot be shown.
        const bool exact =
            key.search.Folding() == TextFolding::None && key.search.HowMuch() == TextSearch::Extent::Whole;
        return exact ? utf8 == key.utf8 : key.search.FindsIn(utf8);
    }

    bool KeyMatches(const Key& key, int64_t row) const {
        // Mostly straight from the rows.
        if (key.isText && !key.none && key.column >= 0 && !data.EditedCell(row, key.column)) {
            const RowStore& rows = *data.rows_;
            return !rows.IsNull(row, key.column) && TextMatches(key, rows.Bytes(row, key.column));
        }
        const bool none = key.field->IsNullInRow(row);
        if (key.none || none) return none && key.none;
        if (key.isText) return TextMatches(key, key.field->CellIn(row).AsBytes());
        const Variant held = key.field->ValueInRow(row);
        if (held.Type() == varDate && key.value.Type() == varDate)
            return data_set_search_detail::SameInstant(held.AsDateTime().Val, key.value.AsDateTime().Val);
        return VarSameValue(held, key.value);
    }
};

TDataSet::FoundRow TDataSet::FindRow(const KeyMatcher& matcher) {
    TryReadingAgain();
    ForgetOldRows();
    if (window_) return {window_->Find(matcher.Searches(), [&](int64_t row) { return matcher.Matches(row); })};
    for (int64_t record = 0; record < FetchTo(record + 1);)
        for (const int64_t end = RecordsFetched(); record < end; ++record)
            if (const int64_t row = RowOf(record); matcher.Matches(row)) return {row, record};
    RequireAllRead();
    return {};
}

TDataSet::FoundRow TDataSet::FindRow(const AnsiString& names, const std::vector<Variant>& values,
                                     TLocateOptions options) {
    KeyMatcher matcher(*this, names, values, options);
    if (!options.Contains(loWholeFirst) || !options.Contains(loPartialKey)) return FindRow(matcher);
    const KeyMatcher whole(*this, names, values, options - TLocateOptions{loPartialKey});
    if (window_) {
        const FoundRow found = FindRow(whole);
        matcher.goesOn = true;
        return found.Row >= 0 ? found : FindRow(matcher);
    }
    // Once through all records.
    FoundRow first;
    for (int64_t record = 0; record < FetchTo(record + 1);)
        for (const int64_t end = RecordsFetched(); record < end; ++record) {
            const int64_t row = RowOf(record);
            if (!matcher.Matches(row)) continue;
            if (whole.Matches(row)) return {row, record};
            if (first.Row < 0) first = {row, record};
        }
    if (first.Row < 0) RequireAllRead();
    return first;
}

bool TDataSet::Locate(const AnsiString& keyFields, const Variant& value, TLocateOptions options) {
    return Locate(keyFields, std::vector<Variant>{value}, options);
}

bool TDataSet::Locate(const AnsiString& keyFields, const std::vector<Variant>& values, TLocateOptions options) {
    CheckBrowseMode();
    const FoundRow found = FindRow(keyFields, values, options);
    if (found.Row < 0) return false;
    GoTo(found);
    return true;
}

Variant TDataSet::Lookup(const AnsiString& keyFields, const Variant& value, const AnsiString& resultField,
                         TLocateOptions options) {
    return Lookup(keyFields, std::vector<Variant>{value}, resultField, options);
}

Variant TDataSet::Lookup(const AnsiString& keyFields, const std::vector<Variant>& values, const AnsiString& resultField,
                         TLocateOptions options) {
    CheckActive();
    const TField* field = FieldByName(resultField);
    const FoundRow found = FindRow(keyFields, values, options);
    return found.Row < 0 ? Variant::Null() : field->ValueInRow(found.Row);
}

bool TDataSet::LookUp(const AnsiString& keyFields, const Variant& value, TLocateOptions options,
                      const std::function<void()>& look) {
    CheckActive();
    // Before what is read for this alone.
    ForgetOldRows();
    const int64_t before = rows_->Count();
    const int64_t row = FindRow(keyFields, {value}, options).Row;
    if (row < 0) return false;
    // What was read for this alone is not kept: who only looks records up reads them by the thousand.
    const int64_t after = rows_->Count();
    const auto forget = [&] {
        if (!window_ || row < before || rows_->Count() != after) return;
        rows_->Truncate(before);
        if (calculatedRow_ >= before) calculatedRow_ = -1;
    };
    try {
        const RowInFocus focus(*this, row);
        look();
    } catch (...) {
        forget();
        throw;
    }
    forget();
    return true;
}

TBookmark TDataSet::BookmarkOf(int64_t record) const {
    const int64_t row = RowOf(record);
    if (row < 0) return {};
    return {keys_ ? keys_->IdentityOf(*rows_, row) : rows_->Identity(row), opening_};
}

bool TDataSet::BookmarkValid(TBookmark bookmark) const {
    if (!rows_ || bookmark.Empty() || bookmark.Opening != opening_) return false;
    if (keys_) return keys_->Valid(bookmark.Identity) && (window_ || RecordOf(bookmark) >= 0);
    const int64_t row = rows_->RowOf(bookmark.Identity);
    return row >= 0 && (!viewed_ || std::find(view_.begin(), view_.end(), row) != view_.end());
}

int64_t TDataSet::RecordOf(TBookmark bookmark) const {
    if (!rows_ || bookmark.Empty() || bookmark.Opening != opening_) return -1;
    if (keys_) {
        if (!keys_->Valid(bookmark.Identity)) return -1;
        if (window_) return window_->RecordOfIdentity(bookmark.Identity);
        const std::string& key = keys_->KeyOf(bookmark.Identity);
        for (int64_t record = 0; record < RecordsFetched(); ++record)
            if (keys_->KeyAt(*rows_, RowOf(record)) == key) return record;
        return -1;
    }
    if (!BookmarkValid(bookmark)) return -1;
    const int64_t row = rows_->RowOf(bookmark.Identity);
    return viewed_ ? std::find(view_.begin(), view_.end(), row) - view_.begin() : row;
}

void TDataSet::GotoBookmark(TBookmark bookmark) {
    CheckBrowseMode();
    if (bookmark.Empty()) return;
    // By its key it may stand behind what is fetched.
    while (keys_ && !allFetched_ && !window_ && RecordOf(bookmark) < 0) FetchTo(RecordsFetched() + 1);
    if (!BookmarkValid(bookmark)) DatabaseError("Record not found");
    GoTo(bookmark);
}

void TDataSet::GoTo(TBookmark bookmark) {
    if (const int64_t record = RecordOf(bookmark); !window_ || record >= 0) {
        bof_ = eof_ = false;
        MoveTo(record);
        return;
    }
    BeforeScroll(this);
    CheckActive();
    // Others may have deleted it, and handlers may have gone elsewhere.
    const int64_t row = window_ ? window_->RowOfIdentity(bookmark.Identity) : -1;
    if (row < 0) DatabaseError("Record not found");
    HoldCurrent(row);
}

void TDataSet::GoTo(const FoundRow& found) {
    if (!window_) {
        bof_ = eof_ = false;
        MoveTo(found.Record);
    } else if (BeforeScroll) {
        // Handlers may go elsewhere: by its key it is found again.
        GoTo(TBookmark{keys_->IdentityOf(*rows_, found.Row), opening_});
    } else {
        HoldCurrent(found.Row);
    }
}

// What stands around it is read when somebody shows it, or moves.
void TDataSet::HoldCurrent(int64_t row) {
    bof_ = eof_ = false;
    window_->Hold(row);
    calculatedRow_ = -1;
    SettleNumbers();
    Announce(DataEvent::Scrolled);
    AfterScroll(this);
}

void TDataSet::SetFiltered(bool value) {
    if (value == filtered_) return;
    if (Active()) CheckBrowseMode();
    filtered_ = value;
    if (!Active()) return;
    if (window_) {
        ReopenAtCurrent(Bookmarks::Keep);
        return;
    }
    RebuildView();
    Announce(DataEvent::RecordsChanged);
}

void TDataSet::SetFilter(const AnsiString& value) {
    if (value == filter_) return;
    if (Active()) CheckBrowseMode();
    const AnsiString before = filter_;
    filter_ = value;
    if (!Active()) return;
    try {
        CompileFilter();
    } catch (...) {
        filter_ = before;
        throw;
    }
    if (!filtered_) return;
    RebuildView();
    Announce(DataEvent::RecordsChanged);
}

void TDataSet::SetFilterOptions(TFilterOptions value) {
    if (value == filterOptions_) return;
    if (Active()) CheckBrowseMode();
    filterOptions_ = value;
    if (!Active()) return;
    CompileFilter();
    if (!filtered_) return;
    RebuildView();
    Announce(DataEvent::RecordsChanged);
}

RowExpression TDataSet::ExpressionOf(const AnsiString& text) {
    return RowExpression(
        text, [this](const AnsiString& name) { return FindField(name); }, filterOptions_);
}

void TDataSet::CompileFilter() {
    compiledFilter_.reset();
    if (!Trim(filter_).empty()) compiledFilter_ = std::make_unique<RowExpression>(ExpressionOf(filter_));
}

bool TDataSet::FindFirst() {
    CheckBrowseMode();
    if (window_) window_->GoStart();
    return Find(FirstRecord(), 1);
}

bool TDataSet::FindNext() {
    CheckBrowseMode();
    ShowCurrent();
    return Find(current_ + 1, 1);
}

bool TDataSet::FindPrior() {
    CheckBrowseMode();
    ShowCurrent();
    return Find(current_ - 1, -1);
}

bool TDataSet::FindLast() {
    CheckBrowseMode();
    return Find(LastRecord(), -1);
}

bool TDataSet::Find(int64_t from, int64_t step) {
    for (int64_t record = from; record >= 0 && record < FetchTo(record + 1); record += step) {
        record += SettleNumbers();
        if (record < FirstRecord()) break;
        if (!Accepts(RowOf(record))) continue;
        bof_ = eof_ = false;
        MoveTo(record);
        return true;
    }
    if (step > 0) RequireAllRead();
    return false;
}

void TDataSet::SetSort(const AnsiString& value) {
    if (value == sort_) return;
    const AnsiString before = sort_;
    if (Active()) CheckBrowseMode();
    sort_ = value;
    if (!Active()) return;
    try {
        SortParts();
        if (window_) {
            ReopenAtCurrent(Bookmarks::Keep);
            return;
        }
        RebuildView();
    } catch (...) {
        sort_ = before;
        throw;
    }
    Announce(DataEvent::RecordsChanged);
}

std::vector<TDataSet::SortPart> TDataSet::SortParts() const {
    std::vector<SortPart> parts;
    for (const AnsiString& text : data_set_search_detail::SplitNames(sort_, ',')) {
        AnsiString name = text;
        bool descending = false;
        const size_t blank = text.rfind(' ');
        if (blank != AnsiString::npos) {
            const AnsiString word = text.substr(blank + 1);
            descending = SameText(word, "DESC");
            if (descending || SameText(word, "ASC")) name = Trim(text.substr(0, blank));
        }
        if (name.size() > 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
        parts.push_back({FieldByName(name), descending});
    }
    return parts;
}

bool TDataSet::Accepts(int64_t row) {
    bool accept = true;
    const RowInFocus focus(*this, row, dsFilter);
    if (compiledFilter_ && !compiledFilter_->IsTrue()) return false;
    OnFilterRecord(this, accept);
    return accept;
}

// Compares rows by the fields of the order; equal ones stay as they came.
struct TDataSet::StoredOrder {
    std::vector<SortPart> parts;

    explicit StoredOrder(const TDataSet& data) : parts(data.SortParts()) {}
    bool operator()(int64_t a, int64_t b) const {
        for (const SortPart& part : parts) {
            const int order = Compare(part.Field->CellIn(a), part.Field->CellIn(b));
            if (order != 0) return part.Descending ? order > 0 : order < 0;
        }
        return false;
    }

  private:
    // Nulls come first.
    static int Compare(const Cell& a, const Cell& b) {
        if (a.IsNull() || b.IsNull()) return static_cast<int>(b.IsNull()) - static_cast<int>(a.IsNull());
        if (a.IsInteger()) return a.AsInteger() < b.AsInteger() ? -1 : a.AsInteger() > b.AsInteger();
        if (a.IsReal()) return a.AsReal() < b.AsReal() ? -1 : a.AsReal() > b.AsReal();
        const int order = AnsiCompareText(Utf8ToAnsiLossy(a.AsBytes()), Utf8ToAnsiLossy(b.AsBytes()));
        return order != 0 ? order : a.AsBytes().compare(b.AsBytes());
    }
};

void TDataSet::RebuildView() {
    if (window_) return;
    const int64_t row = RowOf(current_);
    const StoredOrder order(*this);
    if (!sort_.empty()) {
        viewed_ = false;
        RecordCount();
    }
    view_.clear();
    viewed_ = filtered_ || !sort_.empty();
    if (viewed_) ExtendView(0);
    if (!sort_.empty()) std::stable_sort(view_.begin(), view_.end(), order);
    current_ = -1;
    if (row >= 0) {
        const auto at = std::find(view_.begin(), view_.end(), row);
        current_ = !viewed_ ? row : at == view_.end() ? -1 : at - view_.begin();
    }
    if (current_ < 0 && FetchTo(1) > 0) current_ = 0;
    bof_ = current_ <= 0;
    eof_ = current_ < 0;
}

void TDataSet::ExtendView(int64_t from) {
    for (int64_t row = from; row < rows_->Count(); ++row)
        if (!filtered_ || Accepts(row)) view_.push_back(row);
}

Cell TDataSet::CalculatedCell(int64_t row, const TField& field) {
    if (!calculating_ && calculatedRow_ != row) Calculate(row);
    for (const auto& [each, cell] : calculated_)
        if (each == &field) return cell;
    return Cell();
}

void TDataSet::Calculate(int64_t row) {
    calculating_ = true;
    calculated_.clear();
    try {
        const RowInFocus focus(*this, row, dsCalcFields);
        for (const TField* field : fields_) {
            if (field->FieldKind() != fkLookup || !field->LookupDataSet() || !field->LookupDataSet()->Active())
                continue;
            std::vector<Variant> values;
            for (const AnsiString& name : data_set_search_detail::SplitNames(field->KeyFields, ';'))
                values.push_back(FieldByName(name)->Value());
            calculated_.emplace_back(field, CellOf(field->LookedUp(values), field->DataType()));
        }
        OnCalcFields(this);
    } catch (...) {
        calculating_ = false;
        calculatedRow_ = -1;
        throw;
    }
    calculating_ = false;
    calculatedRow_ = row;
}

}  // namespace vyn
