#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "datasources/Uvyndatasources.h"
#include "platform/controls/forms.h"
#include "platform/controls/screen.h"
#include "platform/streams/stream.h"
#include "platform/system/application.h"
#include "platform/system/files.h"
#include "platform/system/message_dialogs.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/vyn/commands.h"
#include "programs/vyn/session.h"
#include "qt/application.h"
#include "qt/snapshot.h"

namespace vyn {

namespace windows_detail {

bool WantsSaved() {
    return Application()->MessageBox("Voleu desar els canvis de l'aplicació?"_w, Application()->Title,
                                     MB_YESNO | MB_ICONQUESTION) == ID_YES;
}

}  // namespace windows_detail

int RunCommand(const RunOptions& options, int argc, char** argv) {
    return qt::RunQtApplication(argc, argv, [&] {
        Session session(options);
        if (options.Design) session.App().SetDesignTime(true);
        TFRMtnAplicacio& main = session.MainForm();
        Application()->SetMainForm(&main);
        Application()->Title = session.App().AppName();
        main.Show();
        if (options.Node > 0) session.OpenNode(options.Node);
        Application()->Run();
        session.SaveValues();
        if (options.Design && session.App().GetModified() && windows_detail::WantsSaved()) session.SaveApplication();
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

// Lets what the form's controls look up in the background be found.
void FinishLookups(const TCustomForm& form) {
    // Values that were found may have others looked up.
    constexpr int kTurns = 4;
    for (int turn = 0; turn < kTurns; ++turn) {
        Application()->ProcessMessages();
        for (int i = 0; i < form.ComponentCount(); ++i) {
            const auto* source = ObjectCast<TVynDataSource>(form.Components(i));
            TVynComponentList* list = source ? source->ComponentList() : nullptr;
            for (int at = 0; list && at < list->Count(); ++at)
                TVynComponentList::WaitUntilFinished(list, list->Record(at)->DataLinks.front());
        }
    }
}

// Takes the picture of a screen's search screen, and closes it.
void GrabSearchScreen(TCustomForm& form, const ShotOptions& options) {
    const AnsiString wanted = Utf8ToAnsi(options.Search);
    const size_t equal = std::min(wanted.find('='), wanted.size());
    TLocateStruct locate{wanted.substr(0, equal), Variant(wanted.substr(std::min(equal + 1, wanted.size()))), true};
    bool taken = false;
    // Nobody is there to answer: what a message would say is what went wrong.
    SetMessageDialogPort([](const MessageDialogRequest& request) -> TModalResult { throw Exception(request.Text); });
    WindowHandle later([&](TMessage&) {
        TCustomForm* screen = Screen()->ActiveForm();
        if (!screen || screen == &form || !screen->IsModal()) return;
        qt::GrabFormToFile(*screen, Utf8ToAnsi(options.Output), options.Width, options.Height);
        taken = true;
        screen->SetModalResult(mrCancel);
    });
    PostMessage(later.Handle(), WM_USER, 0, 0);
    SendMessage(form.Handle(), VYN_MESSAGE_SHOWMODALSEARCH, VynLocateWParam, reinterpret_cast<intptr_t>(&locate));
    if (!taken) throw Exception("The node " + IntToStr(options.Application.Node) + " has no search screen");
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
        if (!options.Search.empty()) {
            windows_detail::GrabSearchScreen(*form, options);
            return 0;
        }
        form->Show();
        windows_detail::FinishLookups(*form);
        qt::GrabFormToFile(*form, Utf8ToAnsi(options.Output), options.Width, options.Height);
        return 0;
    });
}

}  // namespace vyn
