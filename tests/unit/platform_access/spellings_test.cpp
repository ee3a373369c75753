#include "platform/access/spellings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "platform/text/windows1252.h"

using namespace vyn;

namespace {

using Direction = Spellings::Direction;
using AsciiCase = Spellings::AsciiCase;
using Extent = TextSearch::Extent;

// An index over texts, which counts what it is asked.
struct Index {
    std::vector<std::string> texts;
    Direction direction = Direction::Rising;
    AsciiCase asciiCase = AsciiCase::Told;
    int asked = 0;

    std::string Key(const std::string& text) const { return asciiCase == AsciiCase::Same ? LowerCase(text) : text; }
    void Sort() {
        std::sort(texts.begin(), texts.end(), [&](const std::string& a, const std::string& b) {
            return std::pair(Key(a), a) < std::pair(Key(b), b);
        });
        if (direction == Direction::Falling) std::reverse(texts.begin(), texts.end());
    }
    const std::string* From(const std::string& place) {
        ++asked;
        for (const std::string& text : texts)
            if (direction == Direction::Rising ? Key(text) >= place : Key(text) <= place) return &text;
        return nullptr;
    }
};

// The first text that is found by going from place to place.
std::string Walked(Index& index, const TextSearch& search) {
    const Spellings spellings(search, index.direction, index.asciiCase, "");
    EXPECT_TRUE(spellings.CanBeWalked());
    for (std::optional<Spellings::Place> place = spellings.First(); place;) {
        const std::string* found = index.From(place->Text);
        if (!found) return "none";
        if (search.FindsIn(*found)) return "found " + index.Key(*found);
        const auto next = spellings.Next(index.Key(*found));
        if (next) {
            const bool goesOn =
                index.direction == Direction::Rising ? next->Text > place->Text : next->Text < place->Text;
            EXPECT_TRUE(goesOn) << place->Text << " then " << next->Text;
        }
        place = next;
    }
    return "none";
}

std::string Looked(const Index& index, const TextSearch& search) {
    for (const std::string& text : index.texts)
        if (search.FindsIn(text)) return "found " + index.Key(text);
    return "none";
}

int Questions(std::vector<std::string> texts, const AnsiString& wanted) {
    Index index{std::move(texts)};
    index.Sort();
    const TextSearch search(wanted, TextFolding::CaseAndAccents, Extent::Beginning);
    EXPECT_EQ(Walked(index, search), Looked(index, search));
    return index.asked;
}

}  // namespace

TEST(Spellings, WalkingFindsWhatGoingThroughAllTextsFinds) {
    const AnsiString letters = "aAáÀbBnNñÑcCçsŠš z_%'?€ÿŸ7"_w;
    std::mt19937 random(3);
    const auto text = [&](size_t most) {
        AnsiString made;
        for (size_t length = random() % (most + 1); length > 0; --length) made += letters[random() % letters.size()];
        return made;
    };
    int found = 0, none = 0;
    for (int round = 0; round < 3000; ++round) {
        Index index;
        index.direction = random() % 2 ? Direction::Rising : Direction::Falling;
        index.asciiCase = random() % 3 == 0 ? AsciiCase::Same : AsciiCase::Told;
        for (size_t count = random() % 40; count > 0; --count) index.texts.push_back(AnsiToUtf8(text(5)));
        // Texts with characters that the code page lacks, and malformed ones.
        index.texts.push_back(
            "a\xC5\x9F"
            "a");
        index.texts.push_back("a\xC3");
        index.texts.push_back("\xF0\x9F\x98\x80");
        index.Sort();
        TextFolding folding = random() % 2 ? TextFolding::CaseAndAccents : TextFolding::Case;
        if (index.asciiCase == AsciiCase::Told && random() % 4 == 0) folding = TextFolding::Accents;
        AnsiString wanted = text(3);
        std::erase(wanted, '?');
        const TextSearch search(wanted, folding, random() % 3 ? Extent::Beginning : Extent::Whole);
        const std::string expected = Looked(index, search);
        ++(expected == "none" ? none : found);
        ASSERT_EQ(Walked(index, search), expected) << round << ": " << wanted;
    }
    EXPECT_GT(found, 500);
    EXPECT_GT(none, 500);
}

TEST(Spellings, FewQuestionsLeadToTheFirstSpelling) {
    EXPECT_EQ(Questions({"client 1", "client 10", "client 11", "client 2"}, "client 11"), 2);
    EXPECT_EQ(Questions({"CLIENT 1", "CLIENT 10", "CLIENT 2"}, "client 2"), 1);
    EXPECT_EQ(Questions({"Abad", "Gabarro", "Garay", "Garcia", "Garza", "Zorrilla"}, "garc"), 3);
    EXPECT_EQ(Questions({"Abad", "Zorrilla"}, "garc"), 2);
    EXPECT_EQ(Questions({}, "garc"), 1);
}

TEST(Spellings, AllSpellingsOfALongTextAreNotTried) {
    // 28 letters with a dozen spellings each.
    Index index{{"Eeeeeeeeeeeeeeeeeeeeeeeeeeee 1", "Eeeeeeeeeeeeeeeeeeeeeeeeeeee 2"}};
    const TextSearch search("eeeeeeeeeeeeeeeeeeeeeeeeeeee 2", TextFolding::CaseAndAccents, Extent::Beginning);
    EXPECT_EQ(Walked(index, search), "found Eeeeeeeeeeeeeeeeeeeeeeeeeeee 2");
    EXPECT_EQ(index.asked, 2);
}

TEST(Spellings, WhatCannotBeShownIsNotWalkedTo) {
    const auto walkable = [](const char* wanted, TextFolding folding, AsciiCase asciiCase) {
        return Spellings(TextSearch(wanted, folding, Extent::Beginning), Direction::Rising, asciiCase, "")
            .CanBeWalked();
    };
    EXPECT_TRUE(walkable("%_'", TextFolding::Case, AsciiCase::Told));
    EXPECT_FALSE(walkable("a?", TextFolding::Case, AsciiCase::Told));
    // An index that takes a for A does not lead to the first a.
    EXPECT_FALSE(walkable("a", TextFolding::Accents, AsciiCase::Same));
    EXPECT_TRUE(walkable("a", TextFolding::CaseAndAccents, AsciiCase::Same));
}

TEST(Spellings, PlacesAheadAreSpelledAsTheModelIs) {
    const TextSearch search("gar c", TextFolding::CaseAndAccents, Extent::Beginning);
    const auto ahead = [&](const AnsiString& model, size_t most = 10) {
        const Spellings spellings(search, Direction::Rising, AsciiCase::Told, model);
        return spellings.Ahead(spellings.First(), most);
    };
    const Spellings spellings(search, Direction::Rising, AsciiCase::Told, "");
    using Texts = std::vector<std::string>;
    EXPECT_EQ(spellings.First().Text, "GAR C");
    EXPECT_EQ(ahead(""), (Texts{"GaR C", "Gar C"}));
    EXPECT_EQ(ahead("PERE PUIG"), Texts());
    EXPECT_EQ(ahead("pere puig"), (Texts{"gAR C", "gaR C", "gar C", "gar c"}));
    EXPECT_EQ(ahead("Pere puig"), (Texts{"GaR C", "Gar C", "Gar c"}));
    // Its own letters, as long as they are the same.
    EXPECT_EQ(ahead("Gàl Puig"_w), (Texts{"G\xC3\xA0R C", "G\xC3\xA0r C"}));
    // The last one is among them in any case.
    EXPECT_EQ(ahead("pere puig", 2), (Texts{"gAR C", "gar c"}));
    // Behind a place that was found, what is settled there stays.
    const auto next = spellings.Next("Gb");
    ASSERT_TRUE(next);
    EXPECT_EQ(next->Text, "G\xC3\x80R C");
    EXPECT_EQ(spellings.Ahead(*next, 10), Texts{"G\xC3\x80r C"});
    EXPECT_FALSE(spellings.IsLikely(*next));
    const auto last = spellings.Next("Gar B");
    ASSERT_TRUE(last);
    EXPECT_EQ(last->Text, "Gar C");
    EXPECT_TRUE(spellings.IsLikely(*last));
}

TEST(Spellings, AccentsThatWereGivenAreLikely) {
    const TextSearch search("gàr é"_w, TextFolding::CaseAndAccents, Extent::Beginning);
    const auto likely = [&](const AnsiString& model) {
        const Spellings spellings(search, Direction::Rising, AsciiCase::Told, model);
        return spellings.Ahead(spellings.First(), 1).back();
    };
    // In the model's capitals and small letters.
    EXPECT_EQ(likely("Pere Puig"), "G\xC3\xA0r \xC3\x89");
    EXPECT_EQ(likely("PERE PUIG"), "G\xC3\x80R \xC3\x89");
    EXPECT_EQ(likely("Gar e"), "G\xC3\xA0r \xC3\xA9") << "the model's letters are other ones";
    EXPECT_EQ(likely("gÀr"_w), "g\xC3\x80r \xC3\xA9") << "its own, as long as they are the same";
}

TEST(Spellings, PlacesBeyondAreThoseOfOtherSpellings) {
    const TextSearch search("gac", TextFolding::CaseAndAccents, Extent::Beginning);
    using Texts = std::vector<std::string>;
    const Spellings spellings(search, Direction::Rising, AsciiCase::Told, "Pere");
    EXPECT_EQ(spellings.Beyond(spellings.First(), 9), (Texts{"Ga\xC3\x87",
                                                             "G\xC3\x80"
                                                             "C",
                                                             "gAC"}));
    EXPECT_EQ(spellings.Beyond(spellings.First(), 1), Texts{"Ga\xC3\x87"});
    const Spellings capitals(search, Direction::Rising, AsciiCase::Told, "PERE");
    EXPECT_EQ(capitals.Beyond(capitals.First(), 9), (Texts{"GAc", "GaC", "gAC"}));
    // Every one is a place that walking comes to, when nothing stands before it.
    const auto next = spellings.Next("Gad");
    ASSERT_TRUE(next);
    EXPECT_EQ(next->Text, "Ga\xC3\x87");
}

TEST(Spellings, NothingStandsBehindTheLastOne) {
    const TextSearch search("ay", TextFolding::CaseAndAccents, Extent::Beginning);
    const Spellings rising(search, Direction::Rising, AsciiCase::Told, "");
    EXPECT_EQ(rising.Last(), "\xC3\xA5\xC5\xB8\xF4\x8F\xBF\xBF");
    EXPECT_FALSE(rising.Next("\xC3\xA6"));
    const Spellings falling(search, Direction::Falling, AsciiCase::Told, "");
    EXPECT_EQ(falling.Last(), "AY");
    EXPECT_FALSE(falling.Next("AX"));
}
