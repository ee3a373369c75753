#include "platform/access/spellings.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

#include "platform/text/windows1252.h"

namespace vyn {

namespace spellings_detail {

// Behind every text with a beginning.
constexpr char kLastCharacter[] = "\xF4\x8F\xBF\xBF";

bool IsLetter(char c) { return AnsiUpperChar(c) != c || AnsiLowerChar(c) != c; }
bool IsCapital(char c) { return AnsiLowerChar(c) != c; }

// How a text writes its letters: the first one, those that begin other words, and those inside of words.
struct Manner {
    bool firstCapital = true;
    bool wordCapital = true;
    bool insideCapital = false;
};

Manner MannerOf(const AnsiString& model) {
    Manner manner;
    bool inside = false, first = true, anyInside = false, anyWord = false;
    for (const char c : model) {
        if (!IsLetter(c)) {
            inside = false;
            continue;
        }
        if (first) {
            manner.firstCapital = manner.wordCapital = IsCapital(c);
        } else if (inside && !anyInside) {
            manner.insideCapital = IsCapital(c);
            anyInside = true;
        } else if (!inside && !anyWord) {
            manner.wordCapital = IsCapital(c);
            anyWord = true;
        }
        first = false;
        inside = true;
    }
    return manner;
}

// The spellings of each folded letter.
using Alphabet = std::array<Spellings::Letter, 256>;

Alphabet MakeAlphabet(TextFolding folding, Spellings::Direction direction, Spellings::AsciiCase asciiCase) {
    std::vector<std::pair<std::string, char>> all;
    for (unsigned i = 0; i < std::tuple_size_v<Alphabet>; ++i) {
        const char byte = static_cast<char>(i);
        if (asciiCase == Spellings::AsciiCase::Same && LowerChar(byte) != byte) continue;
        all.emplace_back(AnsiToUtf8(std::string_view(&byte, 1)), byte);
    }
    std::sort(all.begin(), all.end());
    if (direction == Spellings::Direction::Falling) std::reverse(all.begin(), all.end());
    Alphabet alphabet;
    for (const auto& [utf8, byte] : all) {
        Spellings::Letter& letter = alphabet[static_cast<unsigned char>(FoldChar(byte, folding))];
        letter.spellings.push_back(utf8);
        letter.bytes.push_back(byte);
    }
    return alphabet;
}

// Each is made when it is asked for first.
const Alphabet& AlphabetOf(TextFolding folding, Spellings::Direction direction, Spellings::AsciiCase asciiCase) {
    static std::map<std::tuple<TextFolding, Spellings::Direction, Spellings::AsciiCase>, Alphabet> alphabets;
    const auto key = std::tuple(folding, direction, asciiCase);
    auto found = alphabets.find(key);
    if (found == alphabets.end()) found = alphabets.emplace(key, MakeAlphabet(folding, direction, asciiCase)).first;
    return found->second;
}

}  // namespace spellings_detail

Spellings::Spellings(const TextSearch& wanted, Direction direction, AsciiCase asciiCase, const AnsiString& model)
    : wanted_(wanted), direction_(direction), asciiCase_(asciiCase) {
    // An index that does not tell what the search tells leads to one of several.
    const bool tellsCase = wanted.Folding() == TextFolding::None || wanted.Folding() == TextFolding::Accents;
    walkable_ = !(tellsCase && asciiCase == AsciiCase::Same);
    const spellings_detail::Alphabet& alphabet = spellings_detail::AlphabetOf(wanted.Folding(), direction, asciiCase);
    for (const char c : wanted.Folded()) {
        if (c == '?') walkable_ = false;
        letters_.push_back(&alphabet[static_cast<unsigned char>(c)]);
    }
    if (walkable_) likely_ = LikelyChoices(model);
}

Spellings::Place Spellings::PlaceOf(std::vector<size_t> choices, size_t settled) const {
    Place place{{}, std::move(choices), settled};
    for (size_t i = 0; i < letters_.size(); ++i) place.Text += letters_[i]->spellings[place.Choices[i]];
    if (direction_ == Direction::Falling && wanted_.HowMuch() == TextSearch::Extent::Beginning)
        place.Text += spellings_detail::kLastCharacter;
    return place;
}

Spellings::Place Spellings::First() const { return PlaceOf(std::vector<size_t>(letters_.size(), 0), 0); }

std::string Spellings::Last() const {
    std::string text;
    for (const Letter* letter : letters_) text += letter->spellings.back();
    return direction_ == Direction::Rising ? text + spellings_detail::kLastCharacter : text;
}

std::string Spellings::Held(std::string_view text) const {
    return asciiCase_ == AsciiCase::Same ? LowerCase(text) : std::string(text);
}

bool Spellings::Follows(const std::string& found, const Place& place) const {
    return direction_ == Direction::Rising ? found >= place.Text : found <= place.Text;
}

// The place of the next spelling of a letter, or of one before it.
std::optional<Spellings::Place> Spellings::Behind(std::vector<size_t> choices, size_t letter) const {
    for (size_t i = letter; i-- > 0;) {
        if (choices[i] + 1 >= letters_[i]->spellings.size()) continue;
        ++choices[i];
        std::fill(choices.begin() + static_cast<std::ptrdiff_t>(i) + 1, choices.end(), 0);
        return PlaceOf(std::move(choices), i + 1);
    }
    return std::nullopt;
}

std::optional<Spellings::Place> Spellings::Next(const std::string& found) const {
    const bool rising = direction_ == Direction::Rising;
    std::vector<size_t> choices(letters_.size(), 0);
    std::string_view left = found;
    for (size_t i = 0; i < letters_.size(); ++i) {
        const auto& spellings = letters_[i]->spellings;
        // All longer texts stand behind one that ends here.
        if (left.empty()) return rising ? std::optional(PlaceOf(std::move(choices), i)) : Behind(std::move(choices), i);
        const auto same = std::find_if(spellings.begin(), spellings.end(),
                                       [&](const std::string& each) { return left.substr(0, each.size()) == each; });
        if (same != spellings.end()) {
            choices[i] = static_cast<size_t>(same - spellings.begin());
            left.remove_prefix(same->size());
            continue;
        }
        const auto beyond = std::find_if(spellings.begin(), spellings.end(),
                                         [&](const std::string& each) { return rising ? each > left : each < left; });
        if (beyond == spellings.end()) return Behind(std::move(choices), i);
        choices[i] = static_cast<size_t>(beyond - spellings.begin());
        return PlaceOf(std::move(choices), i + 1);
    }
    // A longer text than the whole that is wanted stands behind it.
    if (!rising && !left.empty()) return PlaceOf(std::move(choices), letters_.size());
    return Behind(std::move(choices), letters_.size());
}

std::vector<size_t> Spellings::LikelyChoices(const AnsiString& model) const {
    using namespace spellings_detail;
    const Manner manner = MannerOf(model);
    const FoldingTable& table = FoldingTableOf(wanted_.Folding());
    std::vector<size_t> choices;
    bool inside = false, repeats = true;
    for (size_t i = 0; i < letters_.size(); ++i) {
        const char folded = wanted_.Folded()[i];
        // As the model has it, as long as that is the same text.
        repeats = repeats && i < model.size() && table[static_cast<unsigned char>(model[i])] == folded;
        // Accents are left out by those who type, and hardly ever made up.
        const char given = wanted_.Given()[i];
        const char letter = FoldChar(given, TextFolding::Case) == folded ? folded : given;
        const bool capital = i == 0 ? manner.firstCapital : inside ? manner.insideCapital : manner.wordCapital;
        const bool same = repeats && (letter == folded || AnsiUpperChar(model[i]) == AnsiUpperChar(letter));
        char likely = same ? model[i] : capital ? AnsiUpperChar(letter) : AnsiLowerChar(letter);
        if (asciiCase_ == AsciiCase::Same) likely = LowerChar(likely);
        const auto& bytes = letters_[i]->bytes;
        const auto found = std::find(bytes.begin(), bytes.end(), likely);
        choices.push_back(found == bytes.end() ? 0 : static_cast<size_t>(found - bytes.begin()));
        inside = IsLetter(folded);
    }
    return choices;
}

bool Spellings::IsLikely(const Place& place) const {
    const auto settled = static_cast<std::ptrdiff_t>(place.Settled);
    return std::equal(likely_.begin() + settled, likely_.end(), place.Choices.begin() + settled);
}

std::vector<std::string> Spellings::Ahead(const Place& place, size_t most) const {
    std::vector<std::string> places;
    std::vector<size_t> choices = place.Choices;
    bool more = false;
    for (size_t i = place.Settled; i < letters_.size(); ++i) {
        if (likely_[i] == choices[i]) continue;
        choices[i] = likely_[i];
        more = places.size() + 1 >= most;
        if (!more) places.push_back(PlaceOf(choices, i + 1).Text);
    }
    // The last one, where a text of this spelling stands, in any case.
    if (more && most > 0) places.push_back(PlaceOf(choices, letters_.size()).Text);
    return places;
}

std::vector<std::string> Spellings::Beyond(const Place& place, size_t most) const {
    std::vector<std::string> places;
    std::vector<size_t> choices = place.Choices;
    const auto settled = static_cast<std::ptrdiff_t>(place.Settled);
    std::copy(likely_.begin() + settled, likely_.end(), choices.begin() + settled);
    // The next spelling of each letter, from the last one on.
    for (size_t i = letters_.size(); i-- > 0 && places.size() < most;) {
        if (choices[i] + 1 < letters_[i]->spellings.size()) {
            ++choices[i];
            places.push_back(PlaceOf(choices, i + 1).Text);
        }
        choices[i] = 0;
    }
    return places;
}

}  // namespace vyn
