#include <algorithm>
#include <iterator>

#include "platform/access/table_pages.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

// Searching in pages: the engine's comparisons, and its indexes where texts are searched as people spell them.
namespace vyn {

namespace table_search_detail {

constexpr char kEscape = '\\';
// Engines limit patterns; what a text has behind this is looked at here.
constexpr size_t kLongestPattern = 1000;
// Nothing sorts behind a text with this prefix but what has a greater one.
constexpr char kLastCharacter[] = "\xF4\x8F\xBF\xBF";
// Questions for the next spelling before the engine goes through all texts in between; each is one look into the index.
constexpr int kMostQuestions = 64;
// Through a statement's own conditions each may be long.
constexpr int kMostConditionalQuestions = 8;
// Places that are asked for with another, beside the last one, where a question's way costs more than the look.
constexpr size_t kMostAhead = 15;
constexpr size_t kMostBeyond = 8;
// Rows that are gone through at once: at first, how many times more each time, and at most.
constexpr int64_t kScanned = 16;
constexpr int64_t kMoreScanned = 8;
constexpr int64_t kMostScanned = 4096;

bool HasAccents(char c) {
    for (unsigned i = 0x80; i < kFoldingTables[0].size(); ++i)
        if (FoldChar(static_cast<char>(i)) == FoldChar(c)) return true;
    return false;
}

// What a text may look like that people take for the same: letters that may have accents, those beyond ASCII, and what
// is shown as "?", are any.
AnsiString PatternOf(const std::string& utf8, TextFolding folding, TextSearch::Extent extent) {
    const bool ignoresAccents = folding == TextFolding::Accents || folding == TextFolding::CaseAndAccents;
    AnsiString pattern;
    for (const char c : utf8) {
        if (pattern.size() >= kLongestPattern) return pattern + "%";
        const auto byte = static_cast<unsigned char>(c);
        constexpr unsigned char kFollowing = 0x80, kFollowingMask = 0xC0;
        if ((byte & kFollowingMask) == kFollowing) continue;
        if (byte >= kFollowing || c == '?' || (ignoresAccents && HasAccents(c))) {
            pattern += '_';
            continue;
        }
        if (c == '%' || c == '_' || c == kEscape) pattern += kEscape;
        pattern += c;
    }
    return extent == TextSearch::Extent::Beginning ? pattern + "%" : pattern;
}

// Texts as the server's list of them.
std::string ListOf(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) {
        list += list.empty() ? "{\"" : ",\"";
        for (const char c : text) {
            if (c == '"' || c == '\\') list += '\\';
            list += c;
        }
        list += '"';
    }
    return list + "}";
}

AnsiString Comparison(const TextIndex& index, const char* comparison) {
    return " " + index.OperatorEdge + comparison + index.OperatorEdge + " ";
}

// How the index's order is asked for, from low to high or the other way.
AnsiString OrderOf(const TextIndex& index, Spellings::Direction direction) {
    const bool rises = direction == Spellings::Direction::Rising;
    if (!index.OperatorEdge.empty()) return " USING" + Comparison(index, rises ? "<" : ">");
    return rises ? "" : " DESC";
}

}  // namespace table_search_detail

void TablePages::AddSearch(Statement& statement, const PageSearch& wanted) const {
    using namespace table_search_detail;
    const EngineDialect& dialect = connection_.Dialect();
    const FieldDefinition& column = query_.Columns[static_cast<size_t>(wanted.Column)];
    const AnsiString name = dialect.QuotedName(column.Name);
    const std::string text(wanted.Value.AsBytes());
    const auto add = [&](const AnsiString& condition, Cell value) {
        statement.text += name + condition;
        statement.values.push_back({column.DataType, std::move(value)});
    };
    if (wanted.Value.IsNull()) {
        statement.text += name + " IS NULL";
    } else if (wanted.IsExact()) {
        add(" = ?", wanted.Value);
    } else if (wanted.Folding == TextFolding::None && dialect.PrefixIsRange) {
        const std::string prefix = text.substr(0, text.find('?'));
        add(" >= ?", Cell::Bytes(prefix));
        statement.text += " AND ";
        add(" <= ?", Cell::Bytes(prefix + kLastCharacter));
    } else {
        add(" " + dialect.Like + " ? ESCAPE '" + AnsiString(1, kEscape) + "'",
            Cell::Bytes(PatternOf(text, wanted.Folding, wanted.Extent)));
    }
}

void TablePages::ReadMatching(const std::vector<PageSearch>& wanted, const Record* after, int64_t count,
                              RowStore& rows) {
    if (!after && wanted.size() == 1 && FindByIndex(wanted[0], rows)) return;
    Statement statement = Begin();
    if (after) AddBeyond(statement, *after, Direction::Forward);
    bool first = !after;
    for (const PageSearch& search : wanted) {
        statement.text += first ? " WHERE " : " AND ";
        first = false;
        AddSearch(statement, search);
    }
    AddOrder(statement, Direction::Forward);
    Run(statement, 0, count, rows);
}

TablePages::SearchedColumn& TablePages::SearchedColumnOf(size_t column) {
    using namespace table_search_detail;
    const auto known = searched_.find(column);
    if (known != searched_.end()) return known->second;
    SearchedColumn searched;
    searched.column = column;
    const FieldDefinition& definition = query_.Columns[column];
    if (ColumnKindOf(definition.DataType) == ColumnKind::Text && definition.OriginTable == query_.Table) {
        query_.Ready();
        searched.index = connection_.TextIndexOf(definition.OriginTable, definition.OriginColumn);
    }
    if (searched.index.Order == TextIndex::Sorting::None) return searched_[column] = std::move(searched);
    const TextIndex& index = searched.index;
    const bool leads = order_[0].column == column && index.IsColumnsOwn();
    if (leads && order_[0].descending) searched.direction = Spellings::Direction::Falling;
    const bool rises = searched.direction == Spellings::Direction::Rising;
    const AnsiString name = connection_.Dialect().QuotedName(definition.Name);
    searched.name = name + index.Collation;
    // Among the same texts, in the order of the result.
    Statement order;
    AddOrder(order, Direction::Forward);
    const AnsiString by = " ORDER BY ";
    searched.order =
        leads ? order.text
              : by + searched.name + OrderOf(index, searched.direction) + ", " + order.text.substr(by.size());
    const AnsiString begin = Begin().text + " WHERE " + searched.name;
    const AnsiString beyond = Comparison(index, rises ? ">=" : "<=");
    searched.one = begin + beyond + "?" + searched.order + " LIMIT 1";
    const AnsiString textAlone = "SELECT " + name + begin.substr(AnsiString("SELECT *").size());
    searched.text = textAlone + beyond + "?" + by + searched.name + OrderOf(index, searched.direction) + " LIMIT 1";
    searched.many = "SELECT vyn_found.* FROM unnest(?::text[]) AS vyn_places(vyn_place) CROSS JOIN LATERAL (" + begin +
                    beyond + "vyn_place" + searched.order + " LIMIT 1) AS vyn_found";
    searched.before = begin + Comparison(index, "<") + "?" + by + searched.name +
                      OrderOf(index, Spellings::Direction::Falling) + " LIMIT 1";
    answers_ = RowStore([&] {
        std::vector<ColumnKind> kinds;
        for (const FieldDefinition& each : query_.Columns) kinds.push_back(ColumnKindOf(each.DataType));
        return kinds;
    }());
    return searched_[column] = std::move(searched);
}

bool TablePages::FindByIndex(const PageSearch& wanted, RowStore& rows) {
    if (wanted.Folding == TextFolding::None || wanted.Value.IsNull()) return false;
    SearchedColumn& column = SearchedColumnOf(static_cast<size_t>(wanted.Column));
    const TextSearch search(Utf8ToAnsiLossy(wanted.Value.AsBytes()), wanted.Folding, wanted.Extent);
    if (!wanted.GoesOn) {
        column.answers.clear();
        answers_.Clear();
    }
    switch (column.index.Order) {
        case TextIndex::Sorting::None:
            return false;
        case TextIndex::Sorting::Language:
            return column.direction == Spellings::Direction::Rising && LookBesidePlain(column, search, rows);
        case TextIndex::Sorting::CodePoints:
        case TextIndex::Sorting::CodePointsWithoutCase:
            break;
    }
    const Spellings spellings(
        search, column.direction,
        column.index.Order == TextIndex::Sorting::CodePoints ? Spellings::AsciiCase::Told : Spellings::AsciiCase::Same,
        column.model);
    if (spellings.CanBeWalked()) return WalkSpellings(column, search, spellings, rows);
    return Scan(column, search, nullptr, nullptr, rows);
}

void TablePages::Take(SearchedColumn& column, int64_t row, RowStore& rows) {
    column.model = Utf8ToAnsiLossy(answers_.Bytes(row, static_cast<int>(column.column)));
    rows.Append(answers_.RecordAt(row));
}

// Goes from one spelling that may stand in the index to the next.
bool TablePages::WalkSpellings(SearchedColumn& column, const TextSearch& search, const Spellings& spellings,
                               RowStore& rows) {
    using namespace table_search_detail;
    const bool rises = column.direction == Spellings::Direction::Rising;
    const auto reaches = [&](const Answer& answer, const std::string& place) {
        const bool begins = rises ? answer.place <= place : answer.place >= place;
        return begins && (answer.none || (rises ? answer.found >= place : answer.found <= place));
    };
    const auto reaching = [&](const std::string& place) {
        const auto found = std::find_if(column.answers.rbegin(), column.answers.rend(),
                                        [&](const Answer& answer) { return reaches(answer, place); });
        return found == column.answers.rend() ? nullptr : &*found;
    };
    int questions = 0;
    const size_t ahead = column.ahead;
    size_t used = 0;
    for (std::optional<Spellings::Place> place = spellings.First(); place;) {
        const Answer* answer = reaching(place->Text);
        if (!answer) {
            if (questions++ == (conditional_ ? kMostConditionalQuestions : kMostQuestions)) {
                const std::string last = spellings.Last();
                return Scan(column, search, &place->Text, &last, rows);
            }
            if (questions > 1) column.beyond = true;
            Ask(column, spellings, *place);
            answer = reaching(place->Text);
            // What stands out of its order, as bytes do that somebody put into a column of texts, is left to the
            // engine.
            if (!answer) return false;
        }
        // As many places ahead are asked for as were of use, and more while that was not enough.
        const auto number = static_cast<size_t>(answer - column.answers.data());
        if (questions > 1) {
            column.ahead = std::min(ahead + 2, kMostAhead);
        } else if (questions == 1 && number >= column.latest) {
            const size_t distance = number - column.latest;
            if (distance <= ahead) used = std::max(used, distance);
            column.ahead = std::max(used, ahead > 0 ? ahead - 1 : 0);
            column.beyond = distance > ahead + 1;
        }
        if (answer->none) return true;
        if (search.FindsIn(answer->text)) {
            int64_t row = answer->row;
            if (row < 0) {
                // Somebody may have deleted it in between.
                row = AskRow(column.one, column, std::string(answer->text));
                const bool there = row >= 0 && search.FindsIn(answers_.Bytes(row, static_cast<int>(column.column)));
                if (!there) return false;
            }
            Take(column, row, rows);
            return true;
        }
        place = spellings.Next(answer->found);
    }
    return true;
}

// The answers' rows, which make room for others.
void TablePages::Forget(SearchedColumn& column) {
    answers_.Clear();
    for (Answer& answer : column.answers) answer.row = -1;
}

void TablePages::Ask(SearchedColumn& column, const Spellings& spellings, const Spellings::Place& place) {
    using namespace table_search_detail;
    const int number = static_cast<int>(column.column);
    std::vector<std::string> places{place.Text};
    if (connection_.Dialect().HasLateral) {
        for (std::string& each : spellings.Ahead(place, column.ahead + 1)) places.push_back(std::move(each));
        if (column.beyond)
            for (std::string& each : spellings.Beyond(place, kMostBeyond)) places.push_back(std::move(each));
    }
    std::vector<Answer> answers;
    const auto add = [&](std::string_view text, int64_t row) {
        answers.push_back({{}, false, std::string(text), spellings.Held(text), row});
    };
    const int64_t former = answers_.Count();
    if (places.size() > 1) {
        std::vector<ProviderValue> values{{ftString, Cell::Bytes(ListOf(places))}};
        values.insert(values.end(), query_.Values.begin(), query_.Values.end());
        RunStatement(column.many, query_.Columns, values, answers_);
    } else if (spellings.IsLikely(place)) {
        AskRow(column.one, column, place.Text);
    } else {
        // Mostly another one: the index holds its text, and the row need not be read.
        texts_.Clear();
        RunStatement(column.text, {query_.Columns[column.column]}, ValuesWith(column, place.Text), texts_);
        if (texts_.Count() > 0) add(texts_.Bytes(0, 0), -1);
    }
    for (int64_t row = former; row < answers_.Count(); ++row) add(answers_.Bytes(row, number), row);
    // As the places stand: what is found for one that stands behind another stands behind, too.
    const bool rises = column.direction == Spellings::Direction::Rising;
    std::stable_sort(answers.begin(), answers.end(),
                     [&](const Answer& a, const Answer& b) { return rises ? a.found < b.found : a.found > b.found; });
    answers.resize(places.size());
    for (size_t i = 0; i < places.size(); ++i) answers[i].place = std::move(places[i]);
    column.latest = column.answers.size();
    std::move(answers.begin(), answers.end(), std::back_inserter(column.answers));
}

std::vector<ProviderValue> TablePages::ValuesWith(const SearchedColumn& column, const std::string& place) const {
    std::vector<ProviderValue> values = query_.Values;
    values.push_back({query_.Columns[column.column].DataType, Cell::Bytes(place)});
    return values;
}

int64_t TablePages::AskRow(const AnsiString& sql, const SearchedColumn& column, const std::string& place) {
    const int64_t row = answers_.Count();
    RunStatement(sql, query_.Columns, ValuesWith(column, place), answers_);
    return answers_.Count() > row ? row : -1;
}

// In a language's order the spellings of a text stand behind that in small letters without accents, or right before it
// where capitals go first; but letters that have a place of their own in the alphabet stand elsewhere. So what stands
// there is the first one for certain when it is one and nothing before it is: all else is gone through.
bool TablePages::LookBesidePlain(SearchedColumn& column, const TextSearch& search, RowStore& rows) {
    const int number = static_cast<int>(column.column);
    const std::string plain = AnsiToUtf8(AnsiLowerCase(search.Folded()));
    const auto asked = [&](const AnsiString& text) {
        const int64_t row = AskRow(text, column, plain);
        return row >= 0 && search.FindsIn(answers_.Bytes(row, number)) ? row : -1;
    };
    if (asked(column.before) >= 0) return Scan(column, search, nullptr, nullptr, rows);
    const int64_t row = asked(column.one);
    if (row < 0) return Scan(column, search, &plain, nullptr, rows);
    Take(column, row, rows);
    return true;
}

// Has the engine go through the texts in the index's order, from one on and to another.
bool TablePages::Scan(SearchedColumn& column, const TextSearch& search, const std::string* from,
                      const std::string* last, RowStore& rows) {
    using namespace table_search_detail;
    const int number = static_cast<int>(column.column);
    const bool rises = column.direction == Spellings::Direction::Rising;
    const TFieldType type = query_.Columns[column.column].DataType;
    const AnsiString pattern = PatternOf(AnsiToUtf8(search.Folded()), search.Folding(), search.HowMuch());
    std::string after;
    bool begun = false;
    for (int64_t count = kScanned;; count = std::min(count * kMoreScanned, kMostScanned)) {
        Statement statement = Begin();
        const EngineDialect& dialect = connection_.Dialect();
        statement.text += " WHERE " + dialect.QuotedName(query_.Columns[column.column].Name) + " " + dialect.Like +
                          " ? ESCAPE '" + AnsiString(1, kEscape) + "'";
        statement.values.push_back({type, Cell::Bytes(pattern)});
        const auto bound = [&](const char* comparison, const std::string& text) {
            statement.text += " AND " + column.name + Comparison(column.index, comparison) + "?";
            statement.values.push_back({type, Cell::Bytes(text)});
        };
        if (begun)
            bound(rises ? ">" : "<", after);
        else if (from)
            bound(rises ? ">=" : "<=", *from);
        if (last) bound(rises ? "<=" : ">=", *last);
        statement.text += column.order + " LIMIT " + IntToStr(count);
        Forget(column);
        RunStatement(statement.text, query_.Columns, statement.values, answers_);
        for (int64_t row = 0; row < answers_.Count(); ++row) {
            if (!search.FindsIn(answers_.Bytes(row, number))) continue;
            Take(column, row, rows);
            return true;
        }
        if (answers_.Count() < count) return true;
        std::string end(answers_.Bytes(answers_.Count() - 1, number));
        // Bytes that stand out of the texts' order would come for ever.
        if (begun && end == after) return false;
        after = std::move(end);
        begun = true;
    }
}

}  // namespace vyn
