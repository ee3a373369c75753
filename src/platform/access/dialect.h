#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "platform/text/ansi_string.h"
#include "platform/values/date_time.h"

namespace vyn {

// How an engine wants its SQL, where engines differ. Each provider has one, in its dialect.cpp.
struct EngineDialect {
    // Where a limit of rows stands.
    enum class RowLimit {
        LimitAtEnd,     // SELECT ... LIMIT 10
        FetchAtEnd,     // SELECT ... FETCH FIRST 10 ROWS ONLY
        TopAtBeginning  // SELECT TOP 10 ...
    };
    RowLimit Limit = RowLimit::LimitAtEnd;
    // Around names; the closing one is doubled inside.
    char NameOpen = '"';
    char NameClose = '"';
    // What stands around literals of dates, times, and both, and masks of FormatDateTime for what is inside.
    AnsiString DateBefore = "'";
    AnsiString TimeBefore = "'";
    AnsiString DateTimeBefore = "'";
    AnsiString DateAfter = "'";
    AnsiString DateMask = "yyyy-mm-dd";
    AnsiString TimeMask = "hh:nn:ss";
    AnsiString DateTimeMask = "yyyy-mm-dd hh:nn:ss";
    // Whether a date and time at midnight is written as a date alone.
    bool MidnightIsDateAlone = false;
    // Between two values that are the same, both null included.
    AnsiString SameValue = " IS NOT DISTINCT FROM ";
    // Whether a table's rows come in the order of their making where none is asked for, also after they were changed;
    // tables are read in their keys' order otherwise.
    bool KeepsOrder = false;
    // Whether nulls come before all values in an ascending order.
    bool NullsAreLow = false;
    // Whether texts are ordered so that those with one beginning stand together, behind it.
    bool PrefixIsRange = false;
    // Whether several questions go at once: a query for each value of a list, FROM unnest(?::text[]) ... LATERAL.
    bool HasLateral = false;
    // Comparison with a pattern, whatever the letters' case.
    AnsiString Like = "LIKE";
    // IIF(condition, one, other); without it CASE does the same.
    bool HasIif = false;
    // Texts one behind the other, nulls being empty: what stands around all of them, between two, and around each.
    AnsiString JoinOpen = "CONCAT(";
    AnsiString JoinBetween = ",";
    AnsiString JoinClose = ")";
    AnsiString JoinedOpen;
    AnsiString JoinedClose;
    // The present moment, day, and time of day.
    AnsiString Now = "LOCALTIMESTAMP";
    AnsiString Today = "CURRENT_DATE";
    AnsiString TimeNow = "LOCALTIME";
    // The type of columns for long texts where the engine does not know MEMO for one.
    AnsiString Memo;
    AnsiString True = "TRUE";
    AnsiString False = "FALSE";
    // Behind a SELECT that holds its row for the transaction; empty where writing locks.
    AnsiString HoldRow;
    // The expression for a text (without its quotes) that holds a NUL character, at which statements end; without it
    // the engine's texts can hold none.
    std::function<AnsiString(std::string_view text)> TextWithNul;

    AnsiString QuotedName(const AnsiString& name) const;
};

// The words of engines that more than one provider reaches.
EngineDialect SqliteDialect();
EngineDialect PostgresqlDialect();

enum class ParameterParsing { Off, On };

// A statement as an engine takes it: "?" stands for each parameter, whose names come in the order of their marks.
struct EngineSql {
    AnsiString Text;
    std::vector<AnsiString> ParameterNames;
};

// Turns a statement as the framework writes it (date literals between #, [names], "TOP n," behind SELECT) into the
// engine's. Token by token: what stands in quotes or comments stays as it is. With parsing on, ":name" is a parameter,
// and two colons stand for one. Raises EDatabaseError for what no engine can be told (TOP n PERCENT, a NUL character).
EngineSql TranslateSql(const AnsiString& sql, const EngineDialect& dialect, ParameterParsing parsing);

// The names of the parameters in a statement, each once, in the order of their first places.
std::vector<AnsiString> ParameterNamesOf(const AnsiString& sql);

// The statement with its names as `names` spell them, where it has them in other letters' case; for engines that tell
// names apart by case.
AnsiString SpellNames(const AnsiString& sql, const std::vector<AnsiString>& names, const EngineDialect& dialect);

// What can be told of a query from its text.
struct QueryShape {
    bool IsSelect = false;
    bool IsCompound = false;  // UNION, INTERSECT, EXCEPT
    bool IsJoined = false;    // more than one source behind FROM
    bool IsGrouped = false;   // GROUP BY, DISTINCT
    AnsiString Source;        // the table or view behind FROM, without its schema; empty for a query in parentheses
};
QueryShape ShapeOf(const AnsiString& sql);
// Whether a statement changes nothing, as far as can be seen.
bool ReadsOnly(const AnsiString& sql);

// What a query of one SELECT shows, column by column: the name of the column that an item is, whatever it is called in
// the result, or empty for what is computed. Nothing at all when the columns cannot be told: behind "*".
std::vector<AnsiString> SelectedColumns(const AnsiString& sql);

}  // namespace vyn
