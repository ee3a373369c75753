#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"

namespace vyn {

namespace sqlite_dialect_detail {

AnsiString TextOfBytes(std::string_view text) {
    AnsiString result = "CAST(x'";
    for (const char byte : AnsiToUtf8(text)) result += HexDigits(static_cast<unsigned char>(byte), 2);
    return result + "' AS TEXT)";
}

}  // namespace sqlite_dialect_detail

const EngineDialect& sqlite_provider::Dialect() {
    static const EngineDialect dialect = [] {
        EngineDialect made = SqliteDialect();
        made.TextWithNul = sqlite_dialect_detail::TextOfBytes;
        return made;
    }();
    return dialect;
}

}  // namespace vyn
