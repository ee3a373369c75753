#pragma once

#include <string_view>
#include <vector>

#include "platform/text/ansi_string.h"

namespace vyn {

enum class SqlTokenKind {
    Blank,
    Comment,     // -- to the end of its line, /* to */
    Identifier,  // a keyword or a name
    Number,      //
    Quoted,      // in ' or ", which are doubled inside
    Name,        // in [ ] or ` `
    Date,        // #...# around a date, a time or both
    Parameter,   // :name, :"name"
    Colons,      // ::
    Symbol,      // one character
};

// A piece of a statement; a view into its text.
struct SqlToken {
    SqlTokenKind Kind;
    std::string_view Text;
};

// Cuts a statement into tokens, which together are its text again. Every text is accepted: what is not closed runs to
// the end.
std::vector<SqlToken> TokenizeSql(std::string_view sql);

// The name that a token says, without what stands around it.
AnsiString NameOf(const SqlToken& token);
// Whether it is this keyword, in any case.
bool IsKeyword(const SqlToken& token, std::string_view word);
// UNION, INTERSECT, EXCEPT.
bool JoinsSelects(const SqlToken& token);
bool IsSymbol(const SqlToken& token, char symbol);
// Whether it says nothing: a blank or a comment.
bool IsFiller(const SqlToken& token);
// Whether it may be a name, as it stands or quoted.
bool IsName(const SqlToken& token);

}  // namespace vyn
