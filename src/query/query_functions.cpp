// The values of parameters in SQL text and in formats.

#include "foundation/Ufuncionscomponentsvyn.h"
#include "foundation/stack_guard.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace functions_detail {

constexpr char kPrefix[] = "PRM";
constexpr size_t kPrefixLength = 3;
constexpr char kMark[] = {CT_ParametreMark, '\0'};
// A text that grows beyond this while its values are put in holds itself.
constexpr size_t kLongestExpansion = size_t{1} << 28;

// The parenthesis that closes what is open at `from`, quoted strings and inner pairs aside; without one the first
// closing parenthesis, and without any the end.
size_t ClosingParenthesis(const AnsiString& text, size_t from) {
    int depth = 0;
    bool quoted = false;
    for (size_t i = from; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\'') quoted = !quoted;
        if (quoted) continue;
        if (c == '(') ++depth;
        if (c == ')' && depth-- == 0) return i;
    }
    return std::min(text.find(')', from), text.size());
}

}  // namespace functions_detail

void TQuerySQL::AplicaParametresSQL(TStrings* SQL) {
    bool inside = false;
    AnsiString function;
    for (int i = 0; i < SQL->Count(); ++i) {
        const AnsiString line = SQL->Get(i);
        size_t mark = line.find(CT_ParametreMark);
        if (mark == AnsiString::npos && !inside) continue;
        AnsiString result;
        size_t at = 0;
        for (; mark != AnsiString::npos; mark = line.find(CT_ParametreMark, at)) {
            (inside ? function : result).append(line, at, mark - at);
            if (inside) result += ExecutaFuncio(function);
            function.clear();
            inside = !inside;
            at = mark + 1;
        }
        // A function may go on in the next line: the parts are joined without a break.
        (inside ? function : result).append(line, at, AnsiString::npos);
        SQL->Put(i, result);
    }
}

AnsiString TQuerySQL::ExecutaFuncio(const AnsiString& text) {
    const size_t parenthesis = text.find('(');
    const AnsiString function = text.substr(0, parenthesis);
    if (function.empty())
        ErrorQuery(AnsiString("Function Name is NUL : ") + functions_detail::kMark + text + functions_detail::kMark);
    if (parenthesis == AnsiString::npos) {
        TParametres* global = Parametres();
        if (!global || !global->ParamExists(function)) return text;
        AddSQLPRM(function);
        return GetDataBaseVyn()->ConvertParametreToSql(global, function);
    }
    if (!SameText(function.substr(0, functions_detail::kPrefixLength), functions_detail::kPrefix))
        return OtherFunction(text, function);
    return ParameterFunction(text, function);
}

AnsiString TQuerySQL::OtherFunction(const AnsiString& text, const AnsiString& function) {
    if (SameText(function, "SQL")) return ClausesOf(text);
    if (OnFuncioNoConeguda) {
        AnsiString result = text;
        OnFuncioNoConeguda(this, result);
        return result;
    }
    ErrorQuery(AnsiString("Not valid function in TQuerySQL: ") + functions_detail::kMark + function +
               functions_detail::kMark);
}

// SQL(NAME, FIELD): the clauses of another query, for conditions like "ID IN (SELECT ID ¡SQL(Q,ID)¡)".
AnsiString TQuerySQL::ClausesOf(const AnsiString& text) {
    const AnsiString shown = functions_detail::kMark + text + functions_detail::kMark;
    int position = static_cast<int>(text.find('(')) + 2;
    const AnsiString name = RetornaStringEntreChar(text, ',', position);
    if (name.empty()) ErrorQuery("Parameter Name in NUL: " + shown);
    ++position;
    // The field says in the text what the clauses are for; nothing else is done with it.
    if (RetornaStringEntreChar(text, ')', position).empty()) ErrorQuery("Field to assign is NUL: " + shown);
    TComponent* component = RetornaComponentOwnerPerNom(name, Owner());
    if (!component) ErrorQuery("Can't found TQuerySQL with name: " + name);
    auto* query = ObjectCast<TQuerySQL>(component);
    if (!query) ErrorQuery("ComponentName: " + name + " (" + component->ClassName() + ") is not a TQuerySQL");
    AnsiString result;
    for (const TCampsDeUnSQL clause : {cFrom, cWhere, cGroup, cHaving, cOrderBy}) {
        if (clause != cFrom) result += "\n\r";
        query->AppendClause(result, clause);
    }
    return result;
}

AnsiString TQuerySQL::ParameterFunction(const AnsiString& text, const AnsiString& function) {
    const size_t start = function.size() + 1;
    const size_t comma = text.find(',', start);
    const AnsiString name = text.substr(start, comma == AnsiString::npos ? comma : comma - start);
    if (name.empty())
        ErrorQuery(AnsiString("Parameter Name is NUL : ") + functions_detail::kMark + text + functions_detail::kMark);
    TParametres* global = Parametres();
    if (!global || !global->ParamExists(name)) return ParameterDefault(text, comma);
    AddSQLPRM(name);
    if (function.size() > functions_detail::kPrefixLength + 1)
        // The name shown is the parameter's: people look for the place by it.
        ErrorQuery("\"" + name +
                   "\" is not a valid Function in TQuerySQL\n\rAvailable Functions : PRM, PRM$(String), PRM!(Numeric), "
                   "PRM#(All)");
    switch (function.size() > functions_detail::kPrefixLength ? function[functions_detail::kPrefixLength] : '#') {
        case '#':
            return global->AsString(name, "");
        case '$':
            return GetDataBaseVyn()->ConvertToSqlString(ftString, global->GetParametreValue(name));
        case '!':
            return GetDataBaseVyn()->ConvertToSqlString(ftFloat, global->GetParametreValue(name));
        case '%':
            return GetDataBaseVyn()->ConvertToSqlString(ftInteger, global->GetParametreValue(name));
        default:
            ErrorQuery("\"" + function +
                       "\" is not a valid Function in TQuerySQL\n\rAvailable Functions : PRM, PRM$('String'), "
                       "PRM!(Numeric), PRM#(Variant)");
    }
}

AnsiString TQuerySQL::ParameterDefault(const AnsiString& text, size_t comma) {
    if (comma == AnsiString::npos) ErrorQuery("El valor por defecto no existe!");
    const size_t end = functions_detail::ClosingParenthesis(text, comma + 1);
    const auto parts = DecodificaStringComa(text.substr(comma + 1, end - comma - 1));
    if (parts->Count() > 1) ErrorQuery("Hay más de un valor por defecto: "_w + IntToStr(parts->Count()));
    // Without quotes, whatever the function: a default that is a text brings its quotes twice.
    AnsiString result = parts->At(0);
    EliminaCometesDeString(result);
    return result;
}

AnsiString TQuerySQL::AnalitzaFrase(const AnsiString& text) {
    AnsiString result = text;
    ExpandFrom(result, 0);
    return result;
}

// Before `from` there is no mark. Each value is looked through again, by a call of its own: a value that holds its own
// name uses the stack up, which ends with EStackOverflow.
void TQuerySQL::ExpandFrom(AnsiString& text, size_t from) {
    CheckStack();
    const size_t first = text.find(CT_ParametreMark, from);
    if (first == AnsiString::npos) return;
    const size_t second = text.find(CT_ParametreMark, first + 1);
    if (second == AnsiString::npos) return;
    {
        TParametres* global = Parametres();
        const AnsiString name = text.substr(first + 1, second - first - 1);
        const AnsiString value = global ? VarToStr(global->GetParametreValue(name)) : AnsiString();
        // The value, not the name, is what the query remembers to depend on.
        AddSQLPRM(value);
        if (text.size() + value.size() > functions_detail::kLongestExpansion) throw EOutOfMemory("Out of memory");
        text.replace(first, second - first + 1, value);
    }
    // Something is left to do after the call, so that it stays a call.
    volatile size_t place = first;
    ExpandFrom(text, place);
    place = from;
}

void TQuerySQL::AddSQLPRM(const AnsiString& name) {
    if (ExisteixSQLPRM(name)) return;
    dependencies_.Add(name);
    parameters_.FollowName(name);
}

void TQuerySQL::ClearSQLPRM() {
    dependencies_.Clear();
    parameters_.ForgetNames();
}

void TQuerySQL::NotificaCanviParametres(TParametres* params, const AnsiString& name, const Variant& value) {
    if (!ExisteixSQLPRM(name)) return;
    if (disableCount_ < 1)
        RefrescaSQL();
    else
        refreshPending_ = true;
}

}  // namespace vyn
