#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/controls/forms.h"
#include "platform/streams/stream.h"
#include "platform/system/application.h"
#include "platform/system/files.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/vyn/commands.h"
#include "programs/vyn/session.h"
#include "qt/application.h"
#include "qt/snapshot.h"

namespace vyn {

int RunCommand(const RunOptions& options, int argc, char** argv) {
    return qt::RunQtApplication(argc, argv, [&] {
        Session session(options);
        TFRMtnAplicacio& main = session.MainForm();
        Application()->SetMainForm(&main);
        Application()->Title = session.App().AppName();
        main.Show();
        if (options.Node > 0) session.OpenNode(options.Node);
        Application()->Run();
        session.SaveValues();
        return 0;
    });
}

namespace windows_detail {

// The toolkit wants a folder for its run-time files and complains where the environment names none.
void NameRuntimeFolder() {
    if (getenv("XDG_RUNTIME_DIR")) return;
    const std::string folder = SystemFileName(TempFolder()) + "/vyn-runtime-" + std::to_string(getuid());
    if (mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST) setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
}

}  // namespace windows_detail

int ShotCommand(const ShotOptions& options, int argc, char** argv) {
    // Pictures never need a display, and never open a window on one.
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    windows_detail::NameRuntimeFolder();
    return qt::RunQtApplication(argc, argv, [&] {
        Session session(options.Application);
        const int node = options.Application.Node;
        auto* form = ObjectCast<TCustomForm>(&session.OpenUnguarded(node));
        if (!form) throw Exception("The node " + IntToStr(node) + " opens no window");
        qt::GrabFormToFile(*form, Utf8ToAnsi(options.Output), options.Width, options.Height);
        return 0;
    });
}

}  // namespace vyn
