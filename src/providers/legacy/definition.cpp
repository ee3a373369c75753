#include <algorithm>
#include <set>

#include "platform/text/compare.h"
#include "providers/legacy/pages.h"

namespace vyn::legacy {

namespace definition_detail {

constexpr unsigned char kDefinitionPage = 2;
constexpr size_t kPageHead = 8;
constexpr size_t kIndexColumns = 10;
constexpr uint32_t kNoColumn = 0xFFFF;
constexpr uint32_t kFixedColumn = 0x01;
constexpr uint32_t kCountingColumn = 0x04;
constexpr uint32_t kAscending = 0x01;
constexpr uint32_t kUniqueIndex = 0x01;
constexpr uint32_t kSystemTable = 0x53;
enum LogicalKind : uint32_t { Plain = 0, Primary = 1, OfRelation = 2 };

// The bytes of a definition, which may go on in further pages.
std::string WholeDefinition(const Pages& pages, uint32_t first, const std::string& name) {
    std::string whole;
    std::set<uint32_t> seen;
    for (uint32_t number = first; number != 0;) {
        if (!seen.insert(number).second) RaiseDamage("the definition of " + name + " runs in a circle");
        const std::string_view page = pages.Page(number);
        if (static_cast<unsigned char>(page[0]) != kDefinitionPage)
            RaiseDamage("the page " + std::to_string(number) + " is not the definition of " + name);
        whole += page.substr(kPageHead);
        number = NumberAt(page, 4, 4);
    }
    return whole;
}

// What differs between the generations.
class DefinitionReader {
  public:
    DefinitionReader(const Pages& pages, std::string_view bytes)
        : pages_(pages), old_(pages.Old()), bytes_(bytes, "a table's definition") {}

    void Read(Table& table) {
        bytes_.Skip(4);  // length
        if (!old_) bytes_.Skip(4);
        table.RowCount = bytes_.Number(4);
        bytes_.Skip(old_ ? 4 : 4 + 4 + 4 + 8);  // numbers to come
        table.System = bytes_.Number(1) == kSystemTable;
        bytes_.Skip(2 + 2);
        const size_t columns = bytes_.Number(2);
        const size_t logical = bytes_.Number(4);
        const size_t physical = bytes_.Number(4);
        table.PageMap = bytes_.Number(4);
        bytes_.Skip(4);
        for (size_t i = 0; i < physical; ++i) bytes_.Skip(old_ ? 8 : 12);
        for (size_t i = 0; i < columns; ++i) table.Columns.push_back(ReadColumn());
        for (Column& column : table.Columns) column.Name = ReadName();
        ReadIndexes(table, physical, logical);
        // Deleted columns leave holes: rows go by the columns' numbers, and people by their order.
        std::vector<size_t> order(table.Columns.size());
        for (size_t i = 0; i < order.size(); ++i) order[i] = i;
        std::stable_sort(order.begin(), order.end(),
                         [&](size_t a, size_t b) { return table.Columns[a].Number < table.Columns[b].Number; });
        std::vector<Column> sorted;
        std::vector<size_t> places(order.size());
        for (size_t i = 0; i < order.size(); ++i) {
            sorted.push_back(std::move(table.Columns[order[i]]));
            places[order[i]] = i;
        }
        table.Columns = std::move(sorted);
        for (Index& index : table.Indexes)
            for (IndexColumn& each : index.Columns) each.Column = places[each.Column];
    }

  private:
    std::string ReadName() { return pages_.PlainText(bytes_.Take(bytes_.Number(old_ ? 1 : 2))); }

    Column ReadColumn() {
        Column column;
        column.Type = static_cast<ColumnType>(bytes_.Number(1));
        if (!old_) bytes_.Skip(4);
        column.Number = static_cast<int>(bytes_.Number(2));
        column.VariablePlace = static_cast<int>(bytes_.Number(2));
        bytes_.Skip(old_ ? 4 : 2);
        column.Precision = static_cast<int>(bytes_.Number(1));
        column.Scale = static_cast<int>(bytes_.Number(1));
        bytes_.Skip(2);
        const uint32_t flags = bytes_.Number(1);
        if (!old_) bytes_.Skip(5);
        column.Fixed = (flags & kFixedColumn) != 0;
        column.Counts = (flags & kCountingColumn) != 0 && column.Type == ColumnType::Long;
        column.FixedPlace = static_cast<int>(bytes_.Number(2));
        column.Size = static_cast<int>(bytes_.Number(2));
        if (column.Type == ColumnType::Text && !old_) column.Size /= 2;
        return column;
    }

    void ReadIndexes(Table& table, size_t physical, size_t logical) {
        struct Physical {
            std::vector<IndexColumn> Columns;
            bool Unique = false;
        };
        std::vector<Physical> bodies;
        for (size_t i = 0; i < physical; ++i) {
            Physical body;
            if (!old_) bytes_.Skip(4);
            for (size_t k = 0; k < kIndexColumns; ++k) {
                const uint32_t number = bytes_.Number(2);
                const bool descending = (bytes_.Number(1) & kAscending) == 0;
                if (number == kNoColumn) continue;
                for (size_t c = 0; c < table.Columns.size(); ++c)
                    if (table.Columns[c].Number == static_cast<int>(number)) body.Columns.push_back({c, descending});
            }
            bytes_.Skip(old_ ? 8 : 12);
            body.Unique = (bytes_.Number(1) & kUniqueIndex) != 0;
            if (!old_) bytes_.Skip(5);
            bodies.push_back(std::move(body));
        }
        std::vector<uint32_t> kinds;
        for (size_t i = 0; i < logical; ++i) {
            if (!old_) bytes_.Skip(4);
            bytes_.Skip(4);
            const size_t body = bytes_.Number(4);
            bytes_.Skip(1 + 4 + 4 + 1 + 1);
            kinds.push_back(bytes_.Number(1));
            if (!old_) bytes_.Skip(4);
            Index index;
            if (body < bodies.size()) {
                index.Columns = bodies[body].Columns;
                index.Unique = bodies[body].Unique;
            }
            index.Primary = kinds.back() == Primary;
            table.Indexes.push_back(std::move(index));
        }
        for (Index& index : table.Indexes) index.Name = ReadName();
        // A relation's own entry shares its columns with an index, or is told by the relation.
        for (size_t i = kinds.size(); i-- > 0;)
            if (kinds[i] == OfRelation || table.Indexes[i].Columns.empty())
                table.Indexes.erase(table.Indexes.begin() + static_cast<ptrdiff_t>(i));
    }

    const Pages& pages_;
    bool old_;
    Bytes bytes_;
};

enum PropertyBlock : uint32_t { OfTable = 0x0000, OfColumn = 0x0001, Names = 0x0080 };
constexpr uint32_t kBooleanProperty = 1;

}  // namespace definition_detail

Table ReadDefinition(const Pages& pages, uint32_t page, const std::string& name) {
    Table table;
    table.Name = name;
    table.Page = page;
    const std::string whole = definition_detail::WholeDefinition(pages, page, name);
    definition_detail::DefinitionReader(pages, whole).Read(table);
    return table;
}

void ReadProperties(const Pages& pages, std::string_view bytes, Table& table) {
    using namespace definition_detail;
    const char* const what = "the design of a table";
    Bytes all(bytes, what);
    const std::string_view mark = all.Take(4);
    if (mark != std::string_view("MR2\0", 4) && mark != std::string_view("KKD\0", 4)) return;
    std::vector<std::string> names;
    const auto inner = [&](Bytes& from) {
        const uint32_t size = from.Number(4);
        if (size < 4) RaiseDamage(std::string(what) + " has an empty part");
        return Bytes(from.Take(size - 4), what);
    };
    while (all.Left() >= 6) {
        Bytes block = inner(all);
        const uint32_t kind = block.Number(2);
        if (kind == Names) {
            while (block.Left() >= 2) names.push_back(pages.PlainText(block.Take(block.Number(2))));
            continue;
        }
        if (kind != OfTable && kind != OfColumn) continue;
        Bytes head = inner(block);
        const std::string owner = head.Left() >= 2 ? pages.PlainText(head.Take(head.Number(2))) : std::string();
        const auto column = std::find_if(table.Columns.begin(), table.Columns.end(),
                                         [&](const Column& each) { return each.Name == owner; });
        if (kind == OfColumn && column == table.Columns.end()) continue;
        while (block.Left() >= 8) {
            const uint32_t size = block.Number(2);
            if (size < 8) RaiseDamage(std::string(what) + " has an empty entry");
            Bytes entry(block.Take(size - 2), what);
            entry.Skip(1);
            const uint32_t type = entry.Number(1);
            const size_t name = entry.Number(2);
            const std::string_view value = entry.Take(entry.Number(2));
            if (name >= names.size()) continue;
            const bool yes = type == kBooleanProperty && !value.empty() && value[0] != 0;
            const std::string text = type == kBooleanProperty ? std::string() : pages.PackedText(value);
            if (kind == OfTable) {
                if (SameText(names[name], "Description")) table.Description = text;
                if (SameText(names[name], "ValidationRule")) table.Rule = text;
                continue;
            }
            if (SameText(names[name], "Required")) column->Required = yes;
            if (SameText(names[name], "DefaultValue")) column->Default = text;
            if (SameText(names[name], "Description")) column->Description = text;
            if (SameText(names[name], "ValidationRule")) column->Rule = text;
        }
    }
}

}  // namespace vyn::legacy
