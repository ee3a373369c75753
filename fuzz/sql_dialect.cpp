// SQL as applications store it: cut into tokens, which together are the text again, turned into engines' own, and
// looked at for its shape, whatever the text.

#include "platform/access/dialect.h"
#include "platform/access/sql_tokens.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const vyn::AnsiString sql(fuzzing::Bytes(data, size));
    vyn::AnsiString together;
    for (const vyn::SqlToken& token : vyn::TokenizeSql(sql)) together += token.Text;
    fuzzing::Require(together == sql, "tokens together are the statement");
    vyn::EngineDialect limits, tops;
    limits.HasIif = true;
    tops.Limit = vyn::EngineDialect::RowLimit::TopAtBeginning;
    tops.True = "1";
    for (const vyn::EngineDialect& dialect : {limits, tops})
        for (const vyn::ParameterParsing parsing : {vyn::ParameterParsing::Off, vyn::ParameterParsing::On})
            fuzzing::Succeeds([&] {
                const vyn::EngineSql engine = vyn::TranslateSql(sql, dialect, parsing);
                fuzzing::Require(parsing == vyn::ParameterParsing::On || engine.ParameterNames.empty(),
                                 "parameters are found where they are looked for");
            });
    vyn::ShapeOf(sql);
    vyn::SelectedColumns(sql);
    vyn::SpellNames(sql, vyn::SelectedColumns(sql), limits);
    return 0;
}
