#include <algorithm>

#include "platform/access/dialect.h"
#include "platform/access/sql_tokens.h"
#include "platform/text/windows1252.h"
#include "providers/legacy/schema.h"

namespace vyn::legacy {

namespace query_detail {

enum Attribute {
    Kind = 1,
    Parameter = 2,
    Options = 3,
    OtherFile = 4,
    Source = 5,
    Output = 6,
    Join = 7,
    Where = 8,
    GroupBy = 9,
    Having = 10,
    OrderBy = 11
};
enum KindFlag { Select = 1 };
enum OptionFlag { AllColumns = 0x01, Distinct = 0x02, DistinctRow = 0x08, Top = 0x10, Percent = 0x20 };
enum JoinFlag { Left = 2, Right = 3 };

const char* KindName(int flag) {
    switch (flag) {
        case 2:
            return "it makes a table";
        case 3:
            return "it appends records";
        case 4:
            return "it changes records";
        case 5:
            return "it deletes records";
        case 6:
            return "it is a crosstab";
        case 7:
            return "it changes definitions";
        case 8:
            return "it is passed on to another engine";
        case 9:
            return "it is a union";
        default:
            return "it is of an unknown kind";
    }
}

std::string Bracketed(const std::string& name) { return "[" + name + "]"; }

std::string List(const std::vector<std::string>& parts, const char* between) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : between) + part;
    return text;
}

// The sources behind FROM; those that are joined grow together.
class Sources {
  public:
    void Add(const std::string& name, const std::string& alias) {
        const std::string& known = alias.empty() ? name : alias;
        groups_.emplace_back();
        groups_.back().Names = {known};
        groups_.back().Text = Bracketed(name) + (alias.empty() ? "" : " AS " + Bracketed(alias));
    }
    // False when a side is not there, or both are joined already (the condition belongs to that join).
    bool AddJoin(const QueryPart& part, std::string& why) {
        const auto left = Find(part.Name1), right = Find(part.Name2);
        if (left == groups_.end() || right == groups_.end()) {
            why = "it joins what it has no source for";
            return false;
        }
        if (left == right) {
            if (left->LastLeft != part.Name1 || left->LastRight != part.Name2) {
                why = "its joins run in a circle";
                return false;
            }
            // Several conditions of one join.
            left->Text += " AND (" + part.Expression + ")";
            return true;
        }
        const char* word = part.Flag == Left ? " LEFT JOIN " : part.Flag == Right ? " RIGHT JOIN " : " INNER JOIN ";
        const auto inside = [](const Group& group) {
            return group.Names.size() > 1 ? "(" + group.Text + ")" : group.Text;
        };
        left->Text = inside(*left) + word + inside(*right) + " ON (" + part.Expression + ")";
        left->Names.insert(left->Names.end(), right->Names.begin(), right->Names.end());
        left->LastLeft = part.Name1;
        left->LastRight = part.Name2;
        groups_.erase(right);
        return true;
    }
    std::string Text() const {
        std::vector<std::string> texts;
        for (const Group& group : groups_) texts.push_back(group.Text);
        return List(texts, ", ");
    }
    bool Empty() const { return groups_.empty(); }
    size_t Count() const {
        size_t count = 0;
        for (const Group& group : groups_) count += group.Names.size();
        return count;
    }

  private:
    struct Group {
        std::vector<std::string> Names;
        std::string Text;
        std::string LastLeft, LastRight;
    };
    std::vector<Group>::iterator Find(const std::string& name) {
        return std::find_if(groups_.begin(), groups_.end(), [&](const Group& group) {
            return std::find(group.Names.begin(), group.Names.end(), name) != group.Names.end();
        });
    }
    std::vector<Group> groups_;
};

}  // namespace query_detail

std::string StatementOf(const Query& query, std::string& why) {
    using namespace query_detail;
    int options = 0;
    std::string top;
    Sources sources;
    std::vector<std::string> outputs, groups, orders;
    std::string where, having;
    for (const QueryPart& part : query.Parts) {
        switch (part.Attribute) {
            case Kind:
                if (part.Flag != Select) why = KindName(part.Flag);
                break;
            case Parameter:
                why = "it asks for the parameter " + part.Name1;
                break;
            case Options:
                options = part.Flag;
                top = part.Name1;
                break;
            case OtherFile:
                if (!part.Name1.empty()) why = "it reads another file";
                break;
            case Source:
                if (part.Name1.empty())
                    why = "it reads from a statement";
                else
                    sources.Add(part.Name1, part.Name2);
                break;
            case Output:
                outputs.push_back(part.Expression + (part.Name1.empty() ? "" : " AS " + Bracketed(part.Name1)));
                break;
            case Where:
                where = part.Expression;
                break;
            case GroupBy:
                groups.push_back(part.Expression);
                break;
            case Having:
                having = part.Expression;
                break;
            case OrderBy:
                orders.push_back(part.Expression + (part.Name1 == "D" ? " DESC" : ""));
                break;
            default:
                break;
        }
        if (!why.empty()) return {};
    }
    for (const QueryPart& part : query.Parts)
        if (part.Attribute == Join && !sources.AddJoin(part, why)) return {};
    if (options & AllColumns) outputs.push_back("*");
    if (outputs.empty() || sources.Empty()) why = "nothing is stored of it";
    // Which rows are one depends on columns that are not shown.
    if ((options & DistinctRow) && sources.Count() > 1) why = "it counts records of several tables once (DISTINCTROW)";
    if (options & Percent) why = "it asks for a part in a hundred of its rows";
    if (!why.empty()) return {};
    std::string text = "SELECT ";
    if (options & Distinct) text += "DISTINCT ";
    if (options & Top) text += "TOP " + top + " ";
    text += List(outputs, ", ") + " FROM " + sources.Text();
    if (!where.empty()) text += " WHERE " + where;
    if (!groups.empty()) text += " GROUP BY " + List(groups, ", ");
    if (!having.empty()) text += " HAVING " + having;
    if (!orders.empty()) text += " ORDER BY " + List(orders, ", ");
    return text;
}

std::string EmbeddedStatement(const std::string& statement) {
    // Texts may stand in double quotes there, which are names here.
    const AnsiString narrow = Utf8ToAnsi(statement);
    AnsiString text;
    for (const SqlToken& token : TokenizeSql(narrow)) {
        if (token.Kind != SqlTokenKind::Quoted || token.Text[0] != '"') {
            text += token.Text;
            continue;
        }
        text += '\'';
        for (const char each : NameOf(token)) text += each == '\'' ? AnsiString("''") : AnsiString(1, each);
        text += '\'';
    }
    return AnsiToUtf8(TranslateSql(text, SqliteDialect(), ParameterParsing::Off).Text);
}

}  // namespace vyn::legacy
