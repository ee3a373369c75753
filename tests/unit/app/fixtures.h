#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Uparametres.h"
#include "package/package.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/objects/class_table.h"
#include "platform/objects/component_handle.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "platform/system/application.h"
#include "platform/text/clock.h"
#include "platform/text/numbers.h"
#include "support/applications.h"
#include "support/errors.h"

// An application with its host: what it is told and what it sends is written down.
namespace app_fixtures {

using namespace vyn;

// 21 November 2026, 10:00.
constexpr double kTen = 46347.0 + 10.0 / 24.0;
constexpr double kHour = 1.0 / 24.0;

using Heard = std::vector<AnsiString>;

inline Heard& Log() {
    static Heard log;
    return log;
}
// What the windows answer, by message.
inline std::map<uint32_t, intptr_t>& Answers() {
    static std::map<uint32_t, intptr_t> answers;
    return answers;
}
// What happens when a window gets a message.
inline std::function<void(TMessage&)>& OnWindowMessage() {
    static std::function<void(TMessage&)> handler;
    return handler;
}

inline void Note(const AnsiString& name, TMessage& message) {
    if (!IsToHost(message)) return;
    Log().push_back(name + " " + IntToStr(message.Msg));
    if (OnWindowMessage()) OnWindowMessage()(message);
    const auto answer = Answers().find(message.Msg);
    if (answer != Answers().end()) message.Result = answer->second;
}

// The form class of node type 4, with a compiled form.
class TMenuProbe : public TForm {
    VYN_OBJECT
  public:
    explicit TMenuProbe(TComponent* owner) : TForm(owner) {}
    void WndProc(TMessage& message) override {
        TForm::WndProc(message);
        Note(Name().empty() ? AnsiString("(new)") : Name(), message);
    }
};

// The guard's form class, of node type 14: answers at once when it is shown.
class TGuardProbe : public TForm {
    VYN_OBJECT
  public:
    explicit TGuardProbe(TComponent* owner) : TForm(owner) {}
    static inline int Result = mrOk;
    int ShowModal() override {
        Log().push_back("guard shown");
        return Result;
    }
};

// A component without a window, of node type 2.
class TPlainProbe : public TComponent {
    VYN_OBJECT
  public:
    explicit TPlainProbe(TComponent* owner) : TComponent(owner) { ++Alive; }
    ~TPlainProbe() override {
        --Alive;
        Log().push_back("freed " + IntToStr(Level));
    }
    static inline int Alive = 0;
    int Level = 3;
};

class AppTest : public ::testing::Test {
  protected:
    AppTest();
    ~AppTest() override;

    // Stores a component, written as text, under a number and puts a node to it into the tree.
    void Store(int component, const std::string& form, int type = 4);
    void Node(int number, int parent, int type, int component, const AnsiString& name = "N");
    TMenuProbe* Open(int node) { return ObjectCast<TMenuProbe>(app->ObreComponent(node, nullptr)); }
    AnsiString StoredText(int component) const;

    std::unique_ptr<TVynApp> app;
    int hook = 0;
};

}  // namespace app_fixtures
