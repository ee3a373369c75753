#include <filesystem>

#include "platform/streams/text_form.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/tools/application_model.h"
#include "programs/tools/digest.h"
#include "programs/tools/json_text.h"
#include "programs/tools/source_folder.h"

namespace vyn {

namespace fs = std::filesystem;

namespace build_detail {

class Builder {
  public:
    Builder(std::string folder, const ProgressReport& progress) : folder_(std::move(folder)), progress_(progress) {}

    SourceRemarks Build(TStream& application) {
        ReadDocument();
        if (!document_) return std::move(errors_);
        const Json& root = document_->Root();
        if (!root.is_object()) {
            Error(jsonFile_, 1, "an object was expected");
            return std::move(errors_);
        }
        ReadHeader(root);
        ReadComponents(root);
        ReadTree(root);
        ReadResources(root);
        CheckKeys(root, {"format", "saved", "info", "components", "tree", "resources", "original"});
        if (!errors_.empty()) return std::move(errors_);
        WriteResult(root, application);
        return std::move(errors_);
    }

  private:
    std::string PathOf(const std::string& name) const { return (fs::path(folder_) / name).string(); }
    void Error(const std::string& file, int line, const std::string& text) { errors_.push_back({file, line, text}); }
    void Error(const Json& where, const std::string& text) { Error(jsonFile_, document_->LineOf(where), text); }

    // "line 12: text" of a parser's message, split.
    void ParserError(const std::string& file, const AnsiString& message) {
        int line = 0;
        size_t colon = message.find(": ");
        if (message.rfind("line ", 0) == 0 && colon != AnsiString::npos)
            line = StrToIntDef(message.substr(5, colon - 5), 0);
        Error(file, line, AnsiToUtf8(line > 0 ? message.substr(colon + 2) : message));
    }

    bool ReadFile(const std::string& path, std::string& bytes) {
        try {
            TMemoryStream stream;
            stream.LoadFromFile(Utf8ToAnsi(path));
            bytes = stream.Bytes();
            return true;
        } catch (const Exception& error) {
            Error(path, 0, AnsiToUtf8(error.Message()));
            return false;
        }
    }

    void ReadDocument() {
        jsonFile_ = PathOf(ApplicationJsonName);
        std::string text;
        if (!ReadFile(jsonFile_, text)) return;
        try {
            document_ = std::make_unique<JsonDocument>(text);
        } catch (const Exception& error) {
            ParserError(jsonFile_, error.Message());
        }
    }

    void CheckKeys(const Json& object, std::initializer_list<std::string_view> known) {
        for (const auto& [key, value] : object.items())
            if (std::find(known.begin(), known.end(), key) == known.end())
                Error(object, "\"" + key + "\" is no key of this object");
    }

    // The members of an object, each with its own error.
    int Integer(const Json& object, const char* key, int64_t lowest = INT32_MIN, int64_t highest = INT32_MAX) {
        const auto found = object.find(key);
        if (found == object.end() || !found->is_number_integer()) {
            Error(object, std::string("\"") + key + "\": an integer was expected");
            return 0;
        }
        const bool tooLarge = found->is_number_unsigned() && found->get<uint64_t>() > INT32_MAX;
        const int64_t value = tooLarge ? INT64_MAX : found->get<int64_t>();
        if (value < lowest || value > highest) {
            Error(object, std::string("\"") + key + "\": a number from " + std::to_string(lowest) + " to " +
                              std::to_string(highest) + " was expected");
            return 0;
        }
        return static_cast<int>(value);
    }
    AnsiString Text(const Json& object, const char* key) {
        const auto found = object.find(key);
        if (found == object.end() || !found->is_string()) {
            Error(object, std::string("\"") + key + "\": a string was expected");
            return {};
        }
        try {
            return Utf8ToAnsi(found->get<std::string>());
        } catch (const Exception& error) {
            Error(object, std::string("\"") + key + "\": " + AnsiToUtf8(error.Message()));
            return {};
        }
    }
    TDateTime DateMember(const Json& object, const char* key) {
        const auto found = object.find(key);
        const auto date = found == object.end() ? std::nullopt : DateOf(*found);
        if (!date)
            Error(object,
                  std::string("\"") + key + "\": a date (2026-11-21T10:00:00) or a number of days was expected");
        return date.value_or(TDateTime());
    }
    const Json* List(const Json& object, const char* key) {
        const auto found = object.find(key);
        if (found == object.end() || !found->is_array()) {
            Error(object, std::string("\"") + key + "\": a list was expected");
            return nullptr;
        }
        return &*found;
    }

    void ReadHeader(const Json& root) {
        model_.Format = Integer(root, "format", CT_VersioVynMinima, CT_VersioVyn);
        const size_t errors = errors_.size();
        model_.Saved = DateMember(root, "saved");
        // A file with an older date would be built and never open.
        if (errors_.size() == errors && !(model_.Saved.Val > OldestApplicationDate))
            Error(root, "\"saved\": a date after 1999-12-06T00:00:00 was expected");
        const auto info = root.find("info");
        if (info == root.end()) return;
        if (!info->is_object()) {
            Error(root, "\"info\": an object was expected");
            return;
        }
        CheckKeys(*info, {"version", "saveDate", "savedBy", "saveCount", "editTime"});
        TVynAppSavedInfo saved;
        saved.Version = Integer(*info, "version");
        saved.SaveDate = DateMember(*info, "saveDate");
        saved.SavedBy = Text(*info, "savedBy");
        saved.SaveCount = Integer(*info, "saveCount");
        saved.EditTime = DateMember(*info, "editTime");
        model_.Info = saved;
    }

    // The bytes of the file that a list's line names.
    bool ReadStream(const Json& line, TMemoryStream& stream) {
        const auto file = line.find("file");
        if (file == line.end() || !file->is_string()) {
            Error(line, "\"file\": the name of a .form or .bin file was expected");
            return false;
        }
        const std::string name = file->get<std::string>();
        const fs::path path(name);
        const bool inside = !path.is_absolute() && std::find(path.begin(), path.end(), "..") == path.end();
        const bool isText = path.extension() == ".form";
        if (!inside || (!isText && path.extension() != ".bin")) {
            Error(line, "\"file\": a .form or .bin file inside the folder was expected");
            return false;
        }
        std::string bytes;
        if (!ReadFile(PathOf(name), bytes)) return false;
        if (!isText) {
            stream.SetBytes(bytes);
            return true;
        }
        try {
            TextToBinary(bytes, stream);
            return true;
        } catch (const Exception& error) {
            ParserError(PathOf(name), error.Message());
            return false;
        }
    }

    void ReadComponents(const Json& root) {
        const Json* list = List(root, "components");
        if (!list) return;
        for (const Json& line : *list) {
            if (!CheckLine(root, line, {"id", "type", "name", "file"})) continue;
            TComponentVyn record;
            record.IDComponent = Integer(line, "id");
            record.CompType = Integer(line, "type");
            record.Name = Text(line, "name");
            TMemoryStream stream;
            if (!ReadStream(line, stream)) continue;
            if (model_.App->Components().FindIDComponent(record.IDComponent))
                Error(line, "the component " + std::to_string(record.IDComponent) + " is there already");
            else
                model_.App->Components().InsertComponent(record, stream);
            Progress(list->size() * 2);
        }
    }

    void ReadResources(const Json& root) {
        const Json* list = List(root, "resources");
        if (!list) return;
        for (const Json& line : *list) {
            if (!CheckLine(root, line, {"id", "parent", "name", "type", "file"})) continue;
            TRecursos record;
            record.IDRecursos = Integer(line, "id", 0, LastApplicationRecursos);
            record.IDParent = Integer(line, "parent");
            record.Name = Text(line, "name");
            record.RecType = Integer(line, "type");
            TMemoryStream stream;
            if (!ReadStream(line, stream)) continue;
            if (model_.App->Recursos().FindIDRecursos(record.IDRecursos))
                Error(line, "the resource " + std::to_string(record.IDRecursos) + " is there already");
            else
                model_.App->Recursos().InsertTRecursos(record, stream);
            Progress(list->size() * 2);
        }
    }

    bool CheckLine(const Json& root, const Json& line, std::initializer_list<std::string_view> known) {
        if (!line.is_object()) {
            Error(root, "a list holds something that is no object");
            return false;
        }
        CheckKeys(line, known);
        return true;
    }

    void ReadTree(const Json& root) {
        const Json* list = List(root, "tree");
        if (list) ReadTreeLevel(root, *list, -1);
    }

    void ReadTreeLevel(const Json& above, const Json& list, int parent) {
        TTreeVyn& tree = model_.App->Tree();
        for (const Json& line : list) {
            if (!CheckLine(above, line, {"id", "child", "component", "type", "name", "nodes"})) continue;
            TNodeArbre node;
            node.IDNode = Integer(line, "id");
            node.IDParent = parent;
            node.Child = Integer(line, "child");
            node.IDComponent = Integer(line, "component");
            node.NodeType = Integer(line, "type");
            node.Name = Text(line, "name");
            try {
                if (tree.FindIDNode(node.IDNode))
                    Error(line, "the node " + std::to_string(node.IDNode) + " is there already");
                else
                    tree.Add(node);
            } catch (const Exception& error) {
                Error(line, AnsiToUtf8(error.Message()));
            }
            if (const Json* inner = List(line, "nodes")) ReadTreeLevel(line, *inner, node.IDNode);
        }
    }

    void WriteResult(const Json& root, TStream& application) {
        TMemoryStream canonical;
        SaveApplication(model_, canonical);
        std::string original;
        const auto kept = root.find("original");
        if (kept != root.end() && kept->is_object() && kept->value("of", "") == Sha256(canonical.Bytes()) &&
            kept->value("file", "") == OriginalName && ReadFile(PathOf(OriginalName), original)) {
            application.WriteBuffer(original.data(), static_cast<int64_t>(original.size()));
            return;
        }
        if (errors_.empty()) application.WriteBuffer(canonical.Bytes().data(), canonical.Size());
    }

    void Progress(size_t whole) {
        if (progress_) progress_(static_cast<double>(++done_) / static_cast<double>(whole));
    }

    std::string folder_;
    const ProgressReport& progress_;
    std::string jsonFile_;
    std::unique_ptr<JsonDocument> document_;
    ApplicationModel model_;
    SourceRemarks errors_;
    size_t done_ = 0;
};

}  // namespace build_detail

SourceRemarks BuildSourceFolder(const std::string& folder, TStream& application, const ProgressReport& progress) {
    return build_detail::Builder(folder, progress).Build(application);
}

}  // namespace vyn
