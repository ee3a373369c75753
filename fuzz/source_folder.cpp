// The source folder: its JSON and forms are built without a crash, and what is built loads.
//
// The input is application.json up to the first zero byte, then, each up to the next zero byte, the forms of the
// components 1, 2, and so on, under the names that the seeds use.

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "programs/tools/application_model.h"
#include "programs/tools/source_folder.h"
#include "support/fuzz.h"

namespace {

namespace fs = std::filesystem;

constexpr int kForms = 4;

// In memory where the system has such a folder: one folder for a run, gone with it.
class Folder {
  public:
    Folder() {
        const fs::path base = fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        path_ = base / ("fuzz-source-" + std::to_string(::getpid()));
        fs::create_directories(path_ / vyn::ComponentsFolder);
        fs::create_directories(path_ / vyn::ResourcesFolder);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& Path() const { return path_; }

  private:
    fs::path path_;
};

void WriteFile(const fs::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Folder folder;
    std::string_view rest = fuzzing::Bytes(data, size);
    const auto part = [&] {
        const size_t end = std::min(rest.find('\0'), rest.size());
        const std::string_view taken = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        return taken;
    };
    WriteFile(folder.Path() / vyn::ApplicationJsonName, part());
    for (int i = 1; i <= kForms; ++i) {
        const fs::path path = folder.Path() / vyn::ComponentsFolder / (std::to_string(i) + ".form");
        std::error_code ignored;
        if (rest.empty())
            fs::remove(path, ignored);
        else
            WriteFile(path, part());
    }
    vyn::TMemoryStream built;
    vyn::SourceRemarks remarks;
    if (!fuzzing::Succeeds([&] { remarks = vyn::BuildSourceFolder(folder.Path().string(), built); })) return 0;
    if (!remarks.empty()) {
        fuzzing::Require(built.Size() == 0, "nothing is written when there are errors");
        return 0;
    }
    built.SetPosition(0);
    fuzzing::Require(fuzzing::Succeeds([&] { vyn::LoadApplication(built); }), "what was built loads");
    return 0;
}
