#include "programs/tools/dump.h"

#include "database/dictionaries.h"
#include "foundation/Uparametres.h"
#include "foundation/errors.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "programs/tools/application_model.h"
#include "programs/tools/digest.h"

namespace vyn {

namespace dump_detail {

Json Bytes(std::string_view bytes) { return Json{{"size", bytes.size()}, {"sha256", Sha256(bytes)}}; }

Json Components(TComponentsVyn& store) {
    Json list = Json::array();
    for (int i = 0; i < store.Count(); ++i) {
        const TComponentVyn record = store.GetIdxComponent(i);
        const std::string_view bytes = store.BytesAt(i);
        Json line{{"id", record.IDComponent}, {"name", JsonOf(record.Name)}, {"type", record.CompType}};
        line.update(Bytes(bytes));
        TViewStream view(bytes);
        AnsiString className;
        bool known = false;
        try {
            known = ClasseDelObjecte(view, className);
        } catch (const Exception&) {
            // A form cut off within its first name has no class to tell.
        }
        line["class"] = known ? JsonOf(className) : Json(nullptr);
        list.push_back(std::move(line));
    }
    return list;
}

Json Resources(TRecursosVyn& store) {
    Json list = Json::array();
    for (int i = 0; i < store.Count(); ++i) {
        const TRecursos record = store.GetTRecursos(i);
        Json line{{"id", record.IDRecursos},
                  {"parent", record.IDParent},
                  {"name", JsonOf(record.Name)},
                  {"type", record.RecType}};
        line.update(Bytes(store.BytesAt(i)));
        list.push_back(std::move(line));
    }
    return list;
}

void TreeLevel(TTreeVyn& tree, int parent, Json& list) {
    for (const TNodeArbre& node : tree.Childs(parent, true)) {
        list.push_back(Json{{"id", node.IDNode},
                            {"parent", node.IDParent < 1 ? -1 : node.IDParent},
                            {"child", node.Child},
                            {"component", node.IDComponent},
                            {"type", node.NodeType},
                            {"name", JsonOf(node.Name)}});
        TreeLevel(tree, node.IDNode, list);
    }
}

Json Tree(TTreeVyn& tree) {
    Json list = Json::array();
    TreeLevel(tree, -1, list);
    return list;
}

Json Value(const TParametresData& data) {
    Json line{{"name", JsonOf(data.Name)}};
    const auto put = [&line](const char* type, Json value) {
        line["type"] = type;
        line["value"] = std::move(value);
    };
    switch (data.Value.Type()) {
        case varEmpty:
        case varNull:
            put("null", nullptr);
            break;
        case varSmallint:
        case varInteger:
        case varByte:
            put("integer", data.Value.AsInteger());
            break;
        case varSingle:
        case varDouble:
            put("double", JsonNumber(data.Value.AsDouble()));
            break;
        case varCurrency:
            put("currency", JsonNumber(data.Value.AsDouble()));
            break;
        case varDate:
            put("date", JsonNumber(data.Value.AsDateTime().Val));
            break;
        case varBoolean:
            put("boolean", data.Value.AsBoolean());
            break;
        case varOleStr:
        case varString:
            put("string", JsonOf(data.Value.AsString()));
            break;
    }
    return line;
}

Json Values(TStream& stream) {
    TParametres values(nullptr);
    values.LoadFromStream(&stream);
    Json list = Json::array();
    for (int i = 0; i < values.Count(false); ++i) list.push_back(Value(values.GetParamsProps(i)));
    return list;
}

Json Application(TStream& stream) {
    ApplicationModel model = LoadApplication(stream);
    Json result{{"kind", "application"}, {"format", model.Format}, {"date", JsonNumber(model.Saved.Val)}};
    result["info"] = nullptr;
    if (model.Info)
        result["info"] = Json{{"version", model.Info->Version},
                              {"saveDate", JsonNumber(model.Info->SaveDate.Val)},
                              {"savedBy", JsonOf(model.Info->SavedBy)},
                              {"saveCount", model.Info->SaveCount},
                              {"editTime", JsonNumber(model.Info->EditTime.Val)}};
    result["components"] = Components(model.App->Components());
    result["tree"] = Tree(model.App->Tree());
    result["resources"] = Resources(model.App->Recursos());
    return result;
}

Json ResourceStore(TStream& stream) {
    TRecursosVyn store;
    store.LoadFromStream(stream);
    Json result{{"kind", "resources"}, {"resources", Resources(store)}};
    if (store.FindIDRecursos(ParametresRecursos)) {
        const auto saved = store.GetStreamRecursos(ParametresRecursos);
        result["values"] = Values(*saved);
    }
    return result;
}

// The queries that the dictionary counts, and the further one of hosts that write it (docs/formats).
Json Queries(TStream& stream) {
    int64_t count = 0;
    {
        TReader header(stream);
        header.ReadIdentView();
        if (header.ReadInteger() != CT_VersioVyn) throw Exception("No valid version");
        count = header.ReadInteger();
    }
    Json list = Json::array();
    for (int64_t i = 0; i < count || (i == count && stream.Position() < stream.Size()); ++i) {
        TQuerySQLItem query(nullptr);
        const AnsiString name = TReader(stream).ReadString();
        query.ReadQuerySQLStream(&stream);
        Json line{{"name", JsonOf(name)}};
        line.update(Bytes(query.QuerySQLStream().Bytes()));
        list.push_back(std::move(line));
    }
    return list;
}

// The tag that a stream begins with: a string or an identifier.
AnsiString TagOf(TStream& stream) {
    const int64_t start = stream.Position();
    AnsiString tag;
    try {
        TReader reader(stream);
        tag = reader.NextValue() == vaIdent ? reader.ReadIdent() : reader.ReadString();
    } catch (const Exception&) {
        tag.clear();
    }
    stream.SetPosition(start);
    return tag;
}

// One value of the JSON document as a short text.
std::string Scalar(const Json& value) { return value.is_string() ? value.get<std::string>() : value.dump(); }

bool IsFlat(const Json& value) {
    for (const Json& inner : value)
        if (inner.is_structured() && !inner.empty()) return false;
    return true;
}

void Print(const Json& value, int level, std::string& text) {
    const std::string blanks(static_cast<size_t>(level) * 2, ' ');
    if (value.is_object()) {
        if (IsFlat(value)) {
            std::string line;
            for (const auto& [key, inner] : value.items())
                line += (line.empty() ? "" : "  ") + key + "=" + Scalar(inner);
            text += blanks + line + "\n";
            return;
        }
        for (const auto& [key, inner] : value.items()) {
            if (inner.is_structured() && !inner.empty()) {
                text += blanks + key + ":\n";
                Print(inner, level + 1, text);
            } else {
                text += blanks + key + ": " + Scalar(inner) + "\n";
            }
        }
        return;
    }
    for (const Json& inner : value) {
        if (inner.is_structured() && !inner.empty())
            Print(inner, level, text);
        else
            text += blanks + Scalar(inner) + "\n";
    }
}

}  // namespace dump_detail

Json DumpStream(TStream& stream) {
    if (EsUnObjecte(stream)) return Json{{"kind", "form"}, {"form", DumpForm(stream)}};
    const AnsiString tag = dump_detail::TagOf(stream);
    if (SameText(tag, "VYN")) return dump_detail::Application(stream);
    if (SameText(tag, CT_TRecursosVyn)) return dump_detail::ResourceStore(stream);
    if (tag == CT_VynParamStream) return Json{{"kind", "parameters"}, {"values", dump_detail::Values(stream)}};
    if (SameText(tag, CT_TreeVyn)) {
        TTreeVyn tree;
        tree.SetFirstIdNode(-1);
        tree.LoadFromStream(&stream);
        return Json{{"kind", "tree"}, {"tree", dump_detail::Tree(tree)}};
    }
    if (tag == CT_TComponentVyn) {
        TComponentsVyn store(nullptr);
        store.LoadFromStream(stream);
        return Json{{"kind", "components"}, {"components", dump_detail::Components(store)}};
    }
    if (SameText(tag, CT_TQuerySQLDict)) return Json{{"kind", "queries"}, {"queries", dump_detail::Queries(stream)}};
    throw Exception("The file is no stream of the framework: it begins with none of the known tags");
}

std::string DumpText(const Json& dump) {
    std::string text;
    dump_detail::Print(dump, 0, text);
    return text;
}

}  // namespace vyn
