#pragma once

#include <utility>

#include "datasources/Uvyndatasources.h"
#include "platform/access/fault.h"
#include "platform/system/threads.h"
#include "platform/system/ticks.h"
#include "programs/host/query_form.h"
#include "screens/entry.h"
#include "screens/modal.h"

namespace faults {

using namespace vyn;
using screens::InModalWindow;
using screens::Key;
using screens::PressKey;
using screens::TypeInto;
using screens::TypeOn;

// The sample's order entry under a clock that stands, and what its user is told. Its customers are looked up among the
// records of a hidden screen, which the engine is asked for each time.
class LookupFault : public screens::EntryTest {
  protected:
    static constexpr uint32_t kPause = 300;  // milliseconds, of the sample's box

    void SetUp() override {
        TCustomADODataSet::PagedFrom = 0;
        EntryTest::SetUp();
    }
    void TearDown() override {
        clock_.reset();
        EntryTest::TearDown();
        ExpectNoSearchLeft();
        Application()->Restart();
        TCustomADODataSet::PagedFrom = TCustomADODataSet::kLargeTable;
    }
    void Prepare(RunOptions& options) override {
        EntryTest::Prepare(options);
        SetMessageDialogPort([this](const MessageDialogRequest& request) {
            asked_.push_back(AnsiToUtf8(request.Text));
            if (whileTold_) std::exchange(whileTold_, nullptr)();
            return answer_;
        });
    }

    // A new order, its customer still to be typed.
    void Begin() {
        Open("Entrada de comandes");
        Press("Nou");
        EXPECT_EQ(Looked("Client"), "");
        clock_ = std::make_unique<ManualTickClock>(1000);
        Box().SetFocus();
        Pause();
    }
    TVynEditBox& Box() { return Part<TVynEditBox>("Client"); }
    TVynComponent& Record() { return *Box().VynDataSource()->ComponentList()->RecordOf(&Box().Link()); }
    // What a user does: what goes wrong is told, as the program's loop does.
    void Do(const std::function<void()>& action) {
        try {
            action();
        } catch (...) {
            Application()->HandleException(nullptr);
        }
    }
    void Turn() {
        for (int turn = 0; turn < 5; ++turn) Application()->ProcessMessages();
    }
    // Until the box's own search, whosever it is, has ended.
    void Pause() {
        Turn();
        if (clock_) clock_->Advance(kPause);
        for (int turn = 0; turn < 3; ++turn) {
            Application()->ProcessMessages();
            while (form && Box().Link().VynComponentState() == vyncs_Searching) Application()->HandleMessage();
        }
    }
    void TypeAndPause(const AnsiString& text) {
        Do([&] { TypeOn(Box(), text); });
        Pause();
    }
    void Escape() {
        PressKey(Box(), Key::Escape);
        Pause();
    }
    void Leave() {
        Do([&] { PressKey(Box(), Key::Tab); });
        Turn();
    }
    // What was typed, a bar, and what was completed behind it (UTF-8).
    std::string Completed() {
        const AnsiString text = Box().EditText();
        const auto at = static_cast<size_t>(Box().SelStart());
        if (Box().SelLength() == 0) return AnsiToUtf8(text);
        return AnsiToUtf8(text.substr(0, at)) + "|" + AnsiToUtf8(text.substr(at));
    }
    std::string Hint() { return AnsiToUtf8(Box().Button().Hint()); }
    // The record as the form holds it.
    std::string Buffer() {
        const auto& data = Part<TDataSet>("Consulta");
        std::string text = std::to_string(static_cast<int>(data.State()));
        for (int i = 0; i < data.FieldCount(); ++i)
            if (data.Fields(i)->FieldKind() == fkData) text += "|" + AnsiToUtf8(data.Fields(i)->AsString());
        return text;
    }
    // A search that has just ended may still be on its way.
    void ExpectNoSearchLeft() {
        constexpr int kMostTurns = 20000;
        for (int turn = 0; turn < kMostTurns && RunningThreads() > 0; ++turn) Application()->HandleQueue();
        EXPECT_EQ(RunningThreads(), 0);
    }
    // Sentences in which users are told what befell a database, and what they can do.
    static bool Helps(const std::string& message) {
        static const char* const kSentences[] = {kConnectionLost, kServerSilent,
                                                 "The connection to the database server is lost",
                                                 "The database server sent"};
        for (const char* sentence : kSentences)
            if (message.find(sentence) != std::string::npos) return true;
        for (const DatabaseFault fault :
             {DatabaseFault::InUse, DatabaseFault::DiskFailure, DatabaseFault::Damaged, DatabaseFault::NoDatabase,
              DatabaseFault::CannotOpen, DatabaseFault::TooSlow}) {
            const AnsiString whole = FaultMessage({}, fault, {});
            if (message.find(whole.substr(2, whole.size() - 5)) != std::string::npos) return true;
        }
        return false;
    }
    // Exactly one message, which helps; it is taken.
    void ExpectToldOnce() {
        EXPECT_EQ(asked_.size(), 1u) << testing::PrintToString(asked_);
        for (const std::string& message : asked_) EXPECT_TRUE(Helps(message)) << message;
        asked_.clear();
    }

    std::unique_ptr<ManualTickClock> clock_;
    std::function<void()> whileTold_;  // what the user does while he is told the first time
};

}  // namespace faults
