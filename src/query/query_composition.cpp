// How a statement is composed from the query's parts.

#include <string_view>

#include "foundation/stack_guard.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace composition_detail {

// The text without what Trim takes off, in place.
std::string_view Trimmed(std::string_view text) {
    const auto blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

bool IsBlank(std::string_view text) { return Trimmed(text).empty(); }

// The clause's word, a blank, the text; nothing when the text is blank.
void AppendUnlessBlank(AnsiString& line, const char* word, const AnsiString& text) {
    if (IsBlank(text)) return;
    line += word;
    line += ' ';
    line += text;
}

}  // namespace composition_detail

void TQuerySQL::AppendSelectList(AnsiString& text) {
    using composition_detail::Trimmed;
    const size_t start = text.size();
    for (int i = 0; i < fields_.Count(); ++i) {
        const TFieldsSQLRec& field = fields_.GetFieldSQL(i);
        bool included = !Trimmed(field.FieldSQL).empty() && !Trimmed(field.FieldName).empty();
        if (OnAddFieldsToSQL) {
            OnAddFieldsToSQL(this, i, included);
            if (i >= fields_.Count()) break;  // the handler removed fields
        }
        if (!included) continue;
        const TFieldsSQLRec& kept = fields_.GetFieldSQL(i);
        if (text.size() > start) text += ", ";
        text += kept.FieldSQL;
        if (Trimmed(kept.FieldSQL) != Trimmed(kept.FieldName)) {
            text += " AS ";
            text += kept.FieldName;
        }
    }
    // The comma after the count is what stored applications expect; engines get it through the dialect.
    if (TopSQL > 0) text.insert(start, "TOP " + IntToStr(TopSQL) + ", ");
}

AnsiString TQuerySQL::CreaCampSelectdelSQL() {
    AnsiString text;
    AppendSelectList(text);
    return text;
}

// The fixed text, and each further condition in parentheses behind " AND". A lone further condition keeps the blank in
// front of its parenthesis, so that two follow WHERE: compositions that people stored are compared letter by letter.
void TQuerySQL::AppendCondition(AnsiString& text, const char* word, const AnsiString& fixed,
                                const AnsiString& dataSource, const AnsiString& filter, TTipusFiltre kind) const {
    const size_t start = text.size();
    text += word;
    text += ' ';
    const size_t condition = text.size();
    text += fixed;
    const AnsiString filters = filters_.GetFiltres(kind);
    for (const AnsiString* further : {&dataSource, &filter, &filters}) {
        if (composition_detail::IsBlank(*further)) continue;
        if (text.size() > condition) text += " AND";
        text += " (";
        text += *further;
        text += ')';
    }
    if (text.size() == condition) text.resize(start);
}

void TQuerySQL::AppendOrder(AnsiString& text) const {
    AnsiString order;
    if (!composition_detail::IsBlank(CampOrdreSQL)) {
        const int position = fields_.PosicioFieldName(CampOrdreSQL);
        if (position >= 0) order = fields_.GetFieldSQL(position).FieldOrder;
        if (position >= 0 && OrdenatInversa) order += " DESC";
    }
    if (order.empty() && !composition_detail::IsBlank(OrderBySQL)) order = OrderBySQL;
    if (order.empty()) return;
    text += "ORDER BY ";
    text += order;
}

void TQuerySQL::AppendClause(AnsiString& text, TCampsDeUnSQL clause) {
    CheckStack();
    if ((clause == cGroup || clause == cHaving) && !ConsultaDeTotals) return;
    if (!options_.Contains(clause)) {
        if (master_) master_->AppendClause(text, clause);
        return;
    }
    switch (clause) {
        case cSelect: {
            const size_t start = text.size();
            text += "SELECT ";
            const size_t list = text.size();
            AppendSelectList(text);
            if (composition_detail::IsBlank(std::string_view(text).substr(list))) text.resize(start);
            break;
        }
        case cFrom:
            composition_detail::AppendUnlessBlank(text, "FROM", FromSQL);
            break;
        case cWhere:
            AppendCondition(text, "WHERE", WhereSQL, whereDataSource_, whereFilter_, tfWhere);
            break;
        case cGroup:
            composition_detail::AppendUnlessBlank(text, "GROUP BY", GroupBySQL);
            break;
        case cHaving:
            AppendCondition(text, "HAVING", HavingSQL, havingDataSource_, havingFilter_, tfHaving);
            break;
        case cOrderBy:
            AppendOrder(text);
            break;
    }
}

AnsiString TQuerySQL::RetornaCampDeSQL(TCampsDeUnSQL clause) {
    AnsiString text;
    AppendClause(text, clause);
    return text;
}

void TQuerySQL::GenerateSql(TStrings* SQL) {
    SQL->BeginUpdate();
    try {
        SQL->Clear();
        for (const TCampsDeUnSQL clause : {cSelect, cFrom, cWhere, cGroup, cHaving, cOrderBy})
            SQL->Add(RetornaCampDeSQL(clause));
        AplicaParametresSQL(SQL);
        if (DoArreglaProblemaHora) ArreglaProblemaHora(SQL);
    } catch (...) {
        SQL->EndUpdate();
        throw;
    }
    SQL->EndUpdate();
}

}  // namespace vyn
