// How much memory a dump takes: dumps an application file as `vyn dump --json` does, writes the text to nowhere and
// prints peak memory over file size.
//
//   measure_dump_memory --make FILE MEGABYTES    makes an application of that size
//   measure_dump_memory FILE                     dumps it; exit status 1 at LimitRatio or more
//
// Two runs, so that making the file leaves no mark on the peak of dumping it. The program itself can be measured on the
// same file with /usr/bin/time -v vyn dump FILE ("Maximum resident set size").

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "app/Utvynapp.h"
#include "platform/text/exceptions.h"
#include "programs/tools/dump.h"

namespace {

using namespace vyn;

constexpr double kLimitRatio = 2.5;
constexpr int64_t kMegabyte = 1024 * 1024;
constexpr int64_t kResourceSize = 64 * 1024;

void Make(const AnsiString& fileName, int64_t megabytes) {
    TVynApp app(nullptr);
    TNodeArbre root;
    root.IDNode = 1;
    root.IDParent = 0;
    root.Child = 1;
    root.IDComponent = 0;
    root.NodeType = 0;
    root.Name = "Root";
    app.Tree().Add(root);
    const std::string bytes(static_cast<size_t>(kResourceSize), '\x5A');
    for (int number = 1; number <= megabytes * kMegabyte / kResourceSize; ++number) {
        TMemoryStream stream(bytes);
        app.Recursos().InsertTRecursos(TRecursos{number, 0, "Resource " + std::to_string(number), 1}, stream);
    }
    TFileStream file(fileName, fmCreate);
    app.SaveAppToStream(file);
}

int Measure(const AnsiString& fileName) {
    TMappedFileStream file(fileName);
    {
        std::ofstream nowhere("/dev/null");
        nowhere << DumpStream(file).dump(2);
    }
    struct rusage used {};
    ::getrusage(RUSAGE_SELF, &used);
    const double ratio = static_cast<double>(used.ru_maxrss) * 1024 / static_cast<double>(file.Size());
    std::printf("file %.1f MB, peak %.1f MB, ratio %.2f (below %.1f wanted)\n",
                static_cast<double>(file.Size()) / kMegabyte, static_cast<double>(used.ru_maxrss) / 1024, ratio,
                kLimitRatio);
    return ratio < kLimitRatio ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        if (count == 4 && std::string_view(arguments[1]) == "--make") {
            Make(arguments[2], std::atoll(arguments[3]));
            return 0;
        }
        if (count == 2) return Measure(arguments[1]);
    } catch (const vyn::Exception& error) {
        std::fprintf(stderr, "%s\n", error.Message().c_str());
        return 1;
    }
    std::fprintf(stderr, "usage: measure_dump_memory --make FILE MEGABYTES | measure_dump_memory FILE\n");
    return 2;
}
