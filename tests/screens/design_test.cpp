// A design run of a whole application: what is set up in a screen, with its keys, is in its file, or its source folder,
// afterwards.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "controls/Uvyneditbox.h"
#include "package/package.h"
#include "programs/host/custom_form.h"
#include "programs/tools/source_folder.h"
#include "programs/vyn/session.h"
#include "screens/input.h"
#include "screens/modal.h"

namespace vyn::screens {

namespace {

namespace fs = std::filesystem;

constexpr char kApplication[] = R"({
  "format": 54,
  "saved": "2026-11-21T09:00:00",
  "info": {"version": 5401, "saveDate": "2026-11-21T09:00:00", "savedBy": "", "saveCount": 1, "editTime": 0.0},
  "components": [
    {"id": 1, "type": 2, "name": "Comanda", "file": "components/1.form"}
  ],
  "tree": [
    {"id": 1, "child": 1, "component": 0, "type": 0, "name": "Prova", "nodes": [
      {"id": 2, "child": 1, "component": 1, "type": 2, "name": "Comanda", "nodes": []}
    ]}
  ],
  "resources": []
}
)";

constexpr char kForm[] = R"(object FRM: TCustomFRM
  Caption = 'Comanda'
  object Client: TVynEditBox
    Left = 10
    Top = 10
    Width = 121
    Height = 25
    TabOrder = 0
    DataField = 'Client'
  end
end
)";

class DesignSession : public testing::Test {
  protected:
    DesignSession() : folder_(fs::temp_directory_path() / ("vyn-design-" + std::to_string(::getpid()))) {
        fs::remove_all(folder_);
        fs::create_directories(folder_ / "source" / "components");
        Put("source/application.json", kApplication);
        Put("source/components/1.form", kForm);
        InitializePackage();
        RegisterHostForms();
    }
    ~DesignSession() override {
        FinalizePackage();
        fs::remove_all(folder_);
    }
    void Put(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    std::string Get(const std::string& name) {
        std::ifstream file(folder_ / name, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    RunOptions OptionsOf(const std::string& file) {
        RunOptions options;
        options.File = (folder_ / file).string();
        options.ValuesFile = (folder_ / "none.values").string();
        return options;
    }
    // Opens the application, has its box run a rule, and saves that.
    void SetUpTheBox(const std::string& file) {
        Session session(OptionsOf(file));
        session.App().SetDesignTime(true);
        session.OpenNode(2);
        Settle();
        auto& form = *ObjectCast<TCustomFRM>(&session.Open(2));
        auto& box = *ObjectCast<TVynEditBox>(form.FindComponent("Client"));
        EXPECT_EQ(box.ExecuteEventName(), "");
        EXPECT_FALSE(session.App().GetModified());
        box.SetFocus();
        InModalWindow there([](TCustomForm& dialog) {
            TypeInto(*ObjectCast<TCustomEdit>(dialog.FindComponent("ebExecuteEventName")), "TriaClient");
            ClickOn(*ObjectCast<TWinControl>(dialog.FindComponent("bbOk")));
        });
        PressKey(box, Key::CtrlF2);
        Settle();
        EXPECT_TRUE(there.Ran);
        EXPECT_EQ(box.ExecuteEventName(), "TriaClient");
        EXPECT_TRUE(session.App().GetModified());
        session.SaveApplication();
        EXPECT_FALSE(session.App().GetModified());
    }
    AnsiString RuleOf(const std::string& file) {
        Session session(OptionsOf(file));
        return ObjectCast<TVynEditBox>(session.Open(2).FindComponent("Client"))->ExecuteEventName();
    }
    // The form with the one line more.
    static std::string Changed() {
        std::string text = kForm;
        return text.insert(text.find("  end\n"), "    ExecuteEventName = 'TriaClient'\n");
    }

    fs::path folder_;
};

}  // namespace

TEST_F(DesignSession, AnApplicationFileHasTheChangeAndItsExportOneLineMore) {
    ASSERT_EQ(BuildCommand((folder_ / "source").string(), (folder_ / "prova.vyn").string()), 0);
    SetUpTheBox("prova.vyn");
    EXPECT_EQ(RuleOf("prova.vyn"), "TriaClient");
    ASSERT_EQ(ExportCommand((folder_ / "prova.vyn").string(), (folder_ / "exported").string()), 0);
    EXPECT_EQ(Get("exported/components/1.form"), Changed());
}

TEST_F(DesignSession, ASourceFolderHasOneLineMore) {
    SetUpTheBox("source");
    EXPECT_EQ(Get("source/components/1.form"), Changed());
    EXPECT_EQ(RuleOf("source"), "TriaClient");
}

}  // namespace vyn::screens
