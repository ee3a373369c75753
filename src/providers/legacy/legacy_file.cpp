#include "providers/legacy/legacy_file.h"

#include <algorithm>
#include <map>

#include "platform/text/compare.h"
#include "providers/legacy/pages.h"

namespace vyn::legacy {

namespace file_detail {

constexpr uint32_t kCatalogPage = 2;
constexpr int64_t kPageOfObject = 0x00FFFFFF;
enum ObjectKind : int64_t { LocalTable = 1, LinkedByDriver = 4, SavedQuery = 5, Linked = 6 };
// Of the system's own and hidden objects.
constexpr int64_t kSystemObject = 0x80000002;
enum RelationFlag : int64_t { NotEnforced = 0x02, UpdatesCascade = 0x100, DeletesCascade = 0x1000 };
constexpr char kRelationsTable[] = "MSysRelationships";
constexpr char kQueriesTable[] = "MSysQueries";

// The values of rows by their columns' names.
class Named {
  public:
    explicit Named(const Table& table) {
        for (size_t i = 0; i < table.Columns.size(); ++i) places_[table.Columns[i].Name] = i;
    }
    int64_t Integer(const Row& row, const char* name) const {
        const Value* value = Find(row, name);
        return value && value->Kind == ValueKind::Integer ? value->Integer : 0;
    }
    std::string Text(const Row& row, const char* name) const {
        const Value* value = Find(row, name);
        return value ? value->Bytes : std::string();
    }

  private:
    const Value* Find(const Row& row, const char* name) const {
        const auto found = places_.find(name);
        return found == places_.end() ? nullptr : &row[found->second];
    }
    std::map<std::string, size_t> places_;
};

}  // namespace file_detail

using namespace file_detail;

File::File(std::string_view bytes, const std::string& password, DamageHandler damaged)
    : pages_(std::make_unique<Pages>(bytes, password, std::move(damaged))) {
    ReadCatalog();
}

File::~File() = default;

void File::ReadCatalog() {
    struct Object {
        int64_t Id, Kind, Flags;
        std::string Name, Design;
    };
    const Table catalog = ReadDefinition(*pages_, kCatalogPage, "the catalog");
    const Named named(catalog);
    std::vector<Object> objects;
    ReadRows(catalog, [&](const Row& row) {
        objects.push_back({named.Integer(row, "Id"), named.Integer(row, "Type"), named.Integer(row, "Flags"),
                           named.Text(row, "Name"), named.Text(row, "LvProp")});
    });
    std::vector<std::pair<int64_t, std::string>> queries;
    std::vector<Table> systemTables;
    for (const Object& object : objects) {
        const bool system = (object.Flags & kSystemObject) != 0;
        // Names that begin so are the system's for what is being made, and for what stands in screens.
        if (object.Name.empty() || object.Name[0] == '~') continue;
        if (object.Kind == SavedQuery && !system) queries.emplace_back(object.Id, object.Name);
        if ((object.Kind == Linked || object.Kind == LinkedByDriver) && !system)
            others_.push_back({object.Name, "it is linked: its rows stand in another file"});
        if (object.Kind != LocalTable) continue;
        const bool wanted = SameText(object.Name, kRelationsTable) || SameText(object.Name, kQueriesTable);
        if (system && !wanted) continue;
        try {
            Table table = ReadDefinition(*pages_, static_cast<uint32_t>(object.Id & kPageOfObject), object.Name);
            if (!object.Design.empty()) ReadProperties(*pages_, object.Design, table);
            (wanted ? systemTables : tables_).push_back(std::move(table));
        } catch (const EDatabaseError& error) {
            pages_->Damaged(object.Name + ": " + std::string(error.Message()));
        }
    }
    for (const Table& table : systemTables) {
        if (SameText(table.Name, kRelationsTable)) ReadRelations(table);
        if (SameText(table.Name, kQueriesTable)) ReadQueryParts(table, queries);
    }
}

void File::ReadRelations(const Table& table) {
    struct Line {
        int64_t Place;
        std::string Own, Other;
    };
    const Named named(table);
    std::vector<std::vector<Line>> lines;
    ReadRows(table, [&](const Row& row) {
        const std::string name = named.Text(row, "szRelationship");
        const std::string own = named.Text(row, "szObject");
        size_t at = 0;
        while (at < relations_.size() && !(relations_[at].Name == name && relations_[at].Table == own)) ++at;
        if (at == relations_.size()) {
            const int64_t flags = named.Integer(row, "grbit");
            Relation relation;
            relation.Name = name;
            relation.Table = own;
            relation.Referenced = named.Text(row, "szReferencedObject");
            relation.Enforced = (flags & NotEnforced) == 0;
            relation.UpdatesCascade = (flags & RelationFlag::UpdatesCascade) != 0;
            relation.DeletesCascade = (flags & RelationFlag::DeletesCascade) != 0;
            relations_.push_back(std::move(relation));
            lines.emplace_back();
        }
        lines[at].push_back(
            {named.Integer(row, "icolumn"), named.Text(row, "szColumn"), named.Text(row, "szReferencedColumn")});
    });
    for (size_t i = 0; i < lines.size(); ++i) {
        std::stable_sort(lines[i].begin(), lines[i].end(),
                         [](const Line& a, const Line& b) { return a.Place < b.Place; });
        for (const Line& line : lines[i]) {
            relations_[i].Columns.push_back(line.Own);
            relations_[i].ReferencedColumns.push_back(line.Other);
        }
    }
}

void File::ReadQueryParts(const Table& table, const std::vector<std::pair<int64_t, std::string>>& objects) {
    struct Part {
        int64_t Object;
        std::string Order;
        QueryPart Said;
    };
    const Named named(table);
    std::vector<Part> parts;
    ReadRows(table, [&](const Row& row) {
        Part part;
        part.Object = named.Integer(row, "ObjectId");
        part.Order = named.Text(row, "Order");
        part.Said.Attribute = static_cast<int>(named.Integer(row, "Attribute"));
        part.Said.Flag = static_cast<int>(named.Integer(row, "Flag"));
        part.Said.Expression = named.Text(row, "Expression");
        part.Said.Name1 = named.Text(row, "Name1");
        part.Said.Name2 = named.Text(row, "Name2");
        parts.push_back(std::move(part));
    });
    std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) {
        if (a.Object != b.Object) return a.Object < b.Object;
        if (a.Said.Attribute != b.Said.Attribute) return a.Said.Attribute < b.Said.Attribute;
        return a.Order < b.Order;
    });
    for (const auto& [id, name] : objects) {
        Query query;
        query.Name = name;
        const int64_t wanted = id;
        const auto first = std::lower_bound(parts.begin(), parts.end(), wanted,
                                            [](const Part& part, int64_t object) { return part.Object < object; });
        for (auto part = first; part != parts.end() && part->Object == wanted; ++part)
            query.Parts.push_back(part->Said);
        queries_.push_back(std::move(query));
    }
}

}  // namespace vyn::legacy
