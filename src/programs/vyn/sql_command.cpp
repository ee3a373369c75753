#include <iostream>

#include "foundation/Uparametres.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/tools/json_text.h"
#include "programs/tools/named_values.h"
#include "programs/vyn/commands.h"
#include "programs/vyn/session.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace sql_detail {

// The lines that a query composes; none for a query whose dataset is a table.
Json Statement(TQuerySQL& query) {
    TStringList lines;
    query.GenerateStatement(&lines);
    Json list = Json::array();
    for (int i = 0; i < lines.Count(); ++i) list.push_back(JsonOf(lines.At(i)));
    return list;
}

Json Statements(TComponent& opened) {
    Json list = Json::array();
    const auto add = [&list](TComponent* component) {
        if (auto* query = ObjectCast<TQuerySQL>(component))
            list.push_back(Json{{"name", JsonOf(query->Name())}, {"lines", Statement(*query)}});
    };
    add(&opened);
    for (int i = 0; i < opened.ComponentCount(); ++i) add(opened.Components(i));
    return list;
}

std::string Text(const Json& statements) {
    std::string text;
    for (const Json& statement : statements) {
        text += "-- " + statement["name"].get<std::string>() + "\n";
        for (const Json& line : statement["lines"]) text += line.get<std::string>() + "\n";
    }
    return text;
}

}  // namespace sql_detail

int SqlCommand(const SqlOptions& options) {
    Session session(options.Application);
    // Before, for what the screen does when it opens; and after that, for what is given here counts.
    AddNamedValues(options.Values, *Parametres());
    TComponent& opened = session.OpenUnguarded(options.Application.Node);
    AddNamedValues(options.Values, *Parametres());
    const Json statements = sql_detail::Statements(opened);
    std::cout << (options.Json ? statements.dump(2) + "\n" : sql_detail::Text(statements)) << std::flush;
    if (!std::cout) throw EWriteError("Standard output cannot be written");
    return 0;
}

}  // namespace vyn
