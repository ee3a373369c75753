#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/text/folding.h"

namespace vyn {

// How one folded text may be spelled (Garcia, GARCIA, García...), for going through an index from one spelling that may
// stand there to the next: an index in the order of code points is asked for the first text from a place on, and what
// it answers says which spellings do not stand before it. So there are no more questions than there are texts in
// between, mostly one to each letter at most, however many spellings there could be.
//
// Texts are UTF-8, as the index holds them. Main thread only.
class Spellings {
  public:
    enum class Direction { Rising, Falling };
    // Whether the index tells a from A.
    enum class AsciiCase { Told, Same };

    // A beginning, or a whole text, of that spelling. The index is asked for what stands there or behind; falling, for
    // what stands there or before, where a beginning stands behind all texts with it.
    struct Place {
        std::string Text;
        // The spelling of each letter, by its number; and how many of the letters are said by what was found.
        std::vector<size_t> Choices;
        size_t Settled = 0;
    };

    // Texts are likely to be spelled as `model` is: its own letters as long as they are the same, then in its manner.
    Spellings(const TextSearch& wanted, Direction direction, AsciiCase asciiCase, const AnsiString& model);

    // Whether the search can be done so: it cannot where "?" stands for any character that cannot be shown.
    bool CanBeWalked() const { return walkable_; }
    Place First() const;
    // The next place where a spelling may stand, after the index gave a text that is none; nothing behind the last.
    std::optional<Place> Next(const std::string& found) const;
    // Up to `most` further places that are likely to be asked for, in order.
    std::vector<std::string> Ahead(const Place& place, size_t most) const;
    // Up to `most` places behind all texts of the likely spelling, in order, where others may stand.
    std::vector<std::string> Beyond(const Place& place, size_t most) const;
    // Whether the likely spelling stands there, if any.
    bool IsLikely(const Place& place) const;
    // No spelling stands behind this text.
    std::string Last() const;

    // How the index holds a text, as far as it tells texts apart.
    std::string Held(std::string_view text) const;
    // Whether an answer to a question for a place can come from such an index.
    bool Follows(const std::string& found, const Place& place) const;

    struct Letter {
        std::vector<std::string> spellings;  // in the direction's order
        std::vector<char> bytes;             // the same in Windows-1252
    };

  private:
    Place PlaceOf(std::vector<size_t> choices, size_t settled) const;
    std::optional<Place> Behind(std::vector<size_t> choices, size_t letter) const;
    std::vector<size_t> LikelyChoices(const AnsiString& model) const;

    TextSearch wanted_;
    Direction direction_;
    AsciiCase asciiCase_;
    std::vector<const Letter*> letters_;
    std::vector<size_t> likely_;
    bool walkable_ = true;
};

}  // namespace vyn
