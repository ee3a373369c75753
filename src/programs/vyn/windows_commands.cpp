#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "datasources/messages.h"
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
#include "programs/vyn/windows_steps.h"
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

void TakePicture(TCustomForm& form, const ShotOptions& options) {
    const TControl* part = options.Part.empty() ? nullptr : &PartOf(form, Utf8ToAnsi(options.Part));
    qt::GrabFormToFile(form, Utf8ToAnsi(options.Output), options.Width, options.Height, part);
}

// Takes the picture of a screen's search screen, and closes it.
void GrabSearchScreen(TCustomForm& form, const ShotOptions& options) {
    const auto [field, text] = SplitStep(Utf8ToAnsi(options.Search));
    TLocateStruct locate{field, Variant(text.value_or(AnsiString())), true};
    bool taken = false;
    // Nobody is there to answer: what a message would say is what went wrong.
    SetMessageDialogPort([](const MessageDialogRequest& request) -> TModalResult { throw Exception(request.Text); });
    WindowHandle later([&](TMessage&) {
        TCustomForm* screen = Screen()->ActiveForm();
        if (!screen || screen == &form || !screen->IsModal()) return;
        TakePicture(*screen, options);
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
        FinishLookups(*form);
        UserSteps(options.Steps, options.AtOnce).Take(*form, [&](TCustomForm& shown) {
            windows_detail::TakePicture(shown, options);
        });
        return 0;
    });
}

}  // namespace vyn
