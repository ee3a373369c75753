#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "package/package.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/text/format_settings.h"
#include "platform/text/windows1252.h"
#include "programs/host/custom_form.h"
#include "programs/vyn/session.h"
#include "screens/input.h"

namespace vyn::screens {

// The sample application with a database of its own, and one screen of it. Its stories are told to controls and to
// windows (input.h).
class ScreenTest : public testing::Test {
  protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() / ("vyn-screens-" + std::to_string(::getpid()));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        ::setenv("XDG_DATA_HOME", folder_.c_str(), 1);
        InitializePackage();
        RegisterHostForms();
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
        RunOptions options;
        options.File = VYN_SAMPLE;
        options.ValuesFile = (folder_ / "none.values").string();
        Prepare(options);
        session = std::make_unique<Session>(options);
    }
    void TearDown() override {
        session.reset();
        FormatSettings() = before_;
        FinalizePackage();
        std::filesystem::remove_all(folder_);
    }

    // For other options than the sample with a fresh file.
    virtual void Prepare(RunOptions&) {}

    // Opens and shows the node of a caption (UTF-8), as the tree and the menus do.
    void Open(const std::string& caption) {
        const AnsiString name = Utf8ToAnsi(caption);
        for (int id = 1; id <= kLastNode; ++id) {
            if (!session->App().Tree().FindIDNode(id) || session->App().Tree().GetIDNode(id).Name != name) continue;
            session->OpenNode(id);
            Settle();
            const int at = session->App().NodesList().IndexOf(id);
            ASSERT_GE(at, 0) << caption << " did not open";
            form = ObjectCast<TCustomForm>(session->App().NodesList().GetItem(at).Component);
            ASSERT_NE(form, nullptr);
            EXPECT_TRUE(form->Visible());
            return;
        }
        FAIL() << "there is no node " << caption;
    }
    template <class T>
    T& Part(const AnsiString& name) {
        T* found = ObjectCast<T>(form->FindComponent(name));
        if (!found) throw Exception("there is no " + name);
        return *found;
    }
    void Type(const AnsiString& name, const AnsiString& text) {
        TypeInto(Part<TCustomEdit>(name), text);
        Settle();
    }
    // Chooses in a box with a list the first entry that begins so.
    void Choose(const AnsiString& name, const AnsiString& text) {
        ChooseIn(Part<TWinControl>(name), text);
        Settle();
    }
    void Press(const AnsiString& name) {
        ClickOn(Part<TWinControl>(name));
        Settle();
    }
    // Goes down by so many records in a grid.
    void Down(const AnsiString& grid, int count) {
        for (; count > 0; --count) PressDown(Part<TWinControl>(grid));
        Settle();
    }
    // What stands in a row of a grid (from 0), its columns divided by bars (UTF-8).
    std::string Row(const AnsiString& grid, int64_t row) {
        auto& shown = Part<TCustomDBGrid>(grid);
        AnsiString text;
        for (const TColumn* column : shown.ShownColumns())
            text += (text.empty() ? "" : "|") + shown.CellText(row, *column);
        return AnsiToUtf8(text);
    }
    std::string Titles(const AnsiString& grid) {
        AnsiString text;
        for (const TColumn* column : Part<TCustomDBGrid>(grid).ShownColumns())
            text += (text.empty() ? "" : "|") + column->Title()->Caption();
        return AnsiToUtf8(text);
    }
    int64_t Rows(const AnsiString& dataSet) { return Part<TDataSet>(dataSet).RecordCount(); }
    std::string Caption(const AnsiString& name) { return AnsiToUtf8(Part<TControl>(name).Caption()); }
    std::string Text(const AnsiString& name) { return AnsiToUtf8(Part<TCustomEdit>(name).Text()); }

    std::unique_ptr<Session> session;
    TCustomForm* form = nullptr;

  private:
    static constexpr int kLastNode = 200;
    TFormatSettings before_;
    std::filesystem::path folder_;
};

}  // namespace vyn::screens
