#include <filesystem>
#include <set>

#include "platform/streams/reader.h"
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

namespace export_detail {

// An exported file's name: a number and one of the two endings.
bool IsExportedName(const fs::path& path) {
    const std::string stem = path.stem().string();
    const std::string extension = path.extension().string();
    if (extension != ".form" && extension != ".bin") return false;
    return !stem.empty() && stem.find_first_not_of("-0123456789") == std::string::npos;
}

class Exporter {
  public:
    Exporter(TStream& application, std::string folder, const ProgressReport& progress)
        : application_(application), folder_(std::move(folder)), progress_(progress) {}

    SourceRemarks Export() {
        const int64_t start = application_.Position();
        model_ = LoadApplication(application_);
        PrepareFolder();
        WriteHeader();
        WriteStreams("components", ComponentsFolder, model_.App->Components().Count());
        json_ += "  \"tree\": [";
        WriteTreeLevel(model_.App->Tree().FirstIdNode() > 0 ? RootParent() : -1, 4);
        json_ += "],\n";
        WriteStreams("resources", ResourcesFolder, model_.App->Recursos().Count());
        json_.erase(json_.size() - 2);  // the last comma and line feed
        KeepOriginal(start);
        json_ += "\n}\n";
        WriteFile(ApplicationJsonName, json_);
        RemoveLeftovers(ComponentsFolder);
        RemoveLeftovers(ResourcesFolder);
        return std::move(remarks_);
    }

  private:
    std::string PathOf(const std::string& name) const { return (fs::path(folder_) / name).string(); }

    void PrepareFolder() {
        std::error_code error;
        if (fs::exists(folder_, error)) {
            if (!fs::is_directory(folder_, error)) throw Exception(Utf8ToAnsiLossy(folder_) + " is no folder");
            if (!fs::is_empty(folder_, error) && !fs::exists(PathOf(ApplicationJsonName), error))
                throw Exception("The folder " + Utf8ToAnsiLossy(folder_) +
                                " holds other files and no application.json: choose an empty or a new one");
        }
        for (const char* inner : {ComponentsFolder, ResourcesFolder}) {
            fs::create_directories(PathOf(inner), error);
            if (error)
                throw EFCreateError("Cannot create folder " + Utf8ToAnsiLossy(PathOf(inner)) + ". " +
                                    Utf8ToAnsiLossy(error.message()));
        }
    }

    void WriteFile(const std::string& name, std::string_view bytes) {
        written_.insert(PathOf(name));
        WriteFileAtomically(Utf8ToAnsi(PathOf(name)), [bytes](TStream& stream) {
            stream.WriteBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
        });
    }

    void WriteHeader() {
        json_ =
            "{\n  \"format\": " + std::to_string(model_.Format) + ",\n  \"saved\": " + DateText(model_.Saved) + ",\n";
        if (!model_.Info) return;
        json_ += "  \"info\": {\"version\": " + std::to_string(model_.Info->Version) +
                 ", \"saveDate\": " + DateText(model_.Info->SaveDate) +
                 ", \"savedBy\": " + JsonString(model_.Info->SavedBy) +
                 ", \"saveCount\": " + std::to_string(model_.Info->SaveCount) +
                 ", \"editTime\": " + Days(model_.Info->EditTime) + "},\n";
    }
    static std::string Days(TDateTime value) {
        const Json number = JsonNumber(value.Val);
        return number.is_null() ? "0.0" : number.dump();
    }

    // Writes a stream as text when text gives the same bytes back, else as it is; gives the file's name.
    std::string WriteStream(const std::string& inner, int id, std::string_view bytes) {
        const std::string base = inner + "/" + std::to_string(id);
        if (IsBinaryForm(bytes)) {
            std::string reason = "its bytes are not what the text would give";
            try {
                TViewStream view(bytes);
                const std::string text = BinaryToText(view);
                TMemoryStream back;
                TextToBinary(text, back);
                if (back.Bytes() == bytes) {
                    WriteFile(base + ".form", text);
                    return base + ".form";
                }
            } catch (const Exception& error) {
                reason = AnsiToUtf8(error.Message());
            }
            remarks_.push_back({PathOf(base + ".bin"), 0, "kept as bytes: " + reason});
        }
        WriteFile(base + ".bin", bytes);
        return base + ".bin";
    }

    void WriteStreams(const std::string& key, const char* inner, int count) {
        json_ += "  \"" + key + "\": [";
        bool first = true;
        for (int i = 0; i < count; ++i) {
            std::string line;
            if (key == "components") {
                const TComponentVyn record = model_.App->Components().GetIdxComponent(i);
                line = "{\"id\": " + std::to_string(record.IDComponent) +
                       ", \"type\": " + std::to_string(record.CompType) + ", \"name\": " + JsonString(record.Name) +
                       ", \"file\": \"" + WriteStream(inner, record.IDComponent, model_.App->Components().BytesAt(i)) +
                       "\"}";
            } else {
                const TRecursos record = model_.App->Recursos().GetTRecursos(i);
                if (record.IDRecursos > LastApplicationRecursos) continue;  // not part of an application file
                line = "{\"id\": " + std::to_string(record.IDRecursos) +
                       ", \"parent\": " + std::to_string(record.IDParent) + ", \"name\": " + JsonString(record.Name) +
                       ", \"type\": " + std::to_string(record.RecType) + ", \"file\": \"" +
                       WriteStream(inner, record.IDRecursos, model_.App->Recursos().BytesAt(i)) + "\"}";
            }
            json_ += first ? "\n    " : ",\n    ";
            json_ += line;
            first = false;
            if (progress_) progress_(static_cast<double>(i) / count);
        }
        json_ += first ? "],\n" : "\n  ],\n";
    }

    int RootParent() const {
        TTreeVyn& tree = model_.App->Tree();
        return tree.FindIDNode(tree.FirstIdNode()) ? tree.GetIDNode(tree.FirstIdNode()).IDParent : -1;
    }

    void WriteTreeLevel(int parent, size_t indent) {
        const TArrayDeNodes nodes = model_.App->Tree().Childs(parent, true);
        const std::string blanks(indent, ' ');
        bool first = true;
        for (const TNodeArbre& node : nodes) {
            json_ += first ? "\n" : ",\n";
            first = false;
            json_ += blanks + "{\"id\": " + std::to_string(node.IDNode) + ", \"child\": " + std::to_string(node.Child) +
                     ", \"component\": " + std::to_string(node.IDComponent) +
                     ", \"type\": " + std::to_string(node.NodeType) + ", \"name\": " + JsonString(node.Name) +
                     ", \"nodes\": [";
            WriteTreeLevel(node.IDNode, indent + 2);
            json_ += "]}";
        }
        if (!first) json_ += "\n" + std::string(indent - 2, ' ');
    }

    // A file that the folder cannot say to the byte is kept whole.
    void KeepOriginal(int64_t start) {
        TMemoryStream canonical;
        SaveApplication(model_, canonical);
        TMemoryStream original;
        application_.SetPosition(start);
        const int64_t size = application_.Size() - start;
        original.Reserve(size);
        if (size > 0) original.CopyFrom(application_, size);
        if (canonical.Bytes() == original.Bytes()) {
            std::error_code ignored;
            fs::remove(PathOf(OriginalName), ignored);
            return;
        }
        WriteFile(OriginalName, original.Bytes());
        json_ += ",\n  \"original\": {\"file\": \"" + std::string(OriginalName) + "\", \"of\": \"" +
                 Sha256(canonical.Bytes()) + "\"}";
        remarks_.push_back({PathOf(OriginalName), 0,
                            "the file's own bytes are kept: it was not written as this system writes applications"});
    }

    void RemoveLeftovers(const char* inner) {
        std::error_code error;
        std::vector<fs::path> leftovers;
        for (const auto& entry : fs::directory_iterator(PathOf(inner), error))
            if (IsExportedName(entry.path()) &&
                !written_.count((fs::path(folder_) / inner / entry.path().filename()).string()))
                leftovers.push_back(entry.path());
        for (const fs::path& path : leftovers) fs::remove(path, error);
    }

    TStream& application_;
    std::string folder_;
    const ProgressReport& progress_;
    ApplicationModel model_;
    std::string json_;
    SourceRemarks remarks_;
    std::set<std::string> written_;
};

}  // namespace export_detail

SourceRemarks ExportSourceFolder(TStream& application, const std::string& folder, const ProgressReport& progress) {
    return export_detail::Exporter(application, folder, progress).Export();
}

}  // namespace vyn
