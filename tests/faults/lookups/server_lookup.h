#pragma once

#include "faults/lookups/lookup_fault.h"
#include "faults/relay.h"
#include "programs/host/search_form.h"

namespace faults {

using Fault = Relay::Fault;

struct Cut {
    const char* name;
    Fault fault;
    size_t bytes;
};
inline constexpr Cut kCuts[] = {
    {"cut before it arrives", Fault::CutBeforeRequest, 0}, {"cut when it is done", Fault::CutAfterRequest, 0},
    {"cut in the answer", Fault::CutInAnswer, 3},          {"half an answer", Fault::CutInAnswer, 60},
    {"garbage for an answer", Fault::Garbage, 0},          {"garbage in the answer", Fault::GarbageInAnswer, 9}};

// One of each kind, for what takes long.
inline constexpr Cut kKindsOfCuts[] = {kCuts[0], kCuts[1], kCuts[3], kCuts[4]};

// The sample over a server behind a relay that fails when it is told to.
class ServerLookup : public LookupFault {
  protected:
    void TearDown() override {
        StartServer();
        LookupFault::TearDown();
        relay_.reset();
    }
    void StopServer() {
        screens::Cluster().Stop();
        stopped_ = true;
    }
    void StartServer() {
        if (std::exchange(stopped_, false)) screens::Cluster().Start();
    }
    void Prepare(RunOptions& options) override {
        LookupFault::Prepare(options);
        relay_ = std::make_unique<Relay>(screens::Cluster().Host());
        options.Database = "Provider=PostgreSQL;Data Source=" + relay_->Folder() +
                           ";Initial Catalog=postgres;User ID=vyn;Connect Timeout=2;Command Timeout=1";
    }
    // Runs `action` with the fault at its first request, its second and so on, until it has no more.
    void AtEachRequest(const Cut& cut, const std::function<void()>& before, const std::function<void()>& action,
                       const std::function<void(bool failed)>& after) {
        constexpr int kMostRequests = 100;
        for (int request = 1; request < kMostRequests; ++request) {
            SCOPED_TRACE(std::string(cut.name) + ", request " + std::to_string(request));
            before();
            asked_.clear();
            relay_->FailAt(request, cut.fault, cut.bytes);
            action();
            const bool failed = relay_->Failed();
            relay_->Mend();
            after(failed);
            if (HasFatalFailure()) return;
            if (!failed) {
                EXPECT_GT(request, 1) << "the engine is asked";
                return;
            }
        }
        ADD_FAILURE() << "it never ends";
    }

    // Opens the search screen with F2; whether it came, and the user did what he does there.
    bool Searched(const std::function<void(TFRMCerca&)>& user) {
        InModalWindow there([&](TCustomForm& screen) { user(*ObjectCast<TFRMCerca>(&screen)); });
        uint16_t key = VK_F2;
        Do([&] { Box().ProcessKeyDown(key, {}); });
        Turn();
        return there.Ran;
    }
    static TCustomEdit& Line(TFRMCerca& screen) { return *ObjectCast<TCustomEdit>(screen.FindComponent("Cerca")); }
    static std::string Said(TFRMCerca& screen) {
        return AnsiToUtf8(ObjectCast<TLabel>(screen.FindComponent("Missatge"))->Caption());
    }
    static AnsiString Current(TFRMCerca& screen) {
        const auto* data = ObjectCast<TCustomDBGrid>(screen.FindComponent("Graella"))->DataSet();
        return data->FieldByName("nom")->AsString();
    }
    static void Choose(TFRMCerca& screen, const AnsiString& text) {
        TypeInto(Line(screen), text);
        screen.AcceptarClick(nullptr);
    }

    std::unique_ptr<Relay> relay_;
    bool stopped_ = false;
};

}  // namespace faults
