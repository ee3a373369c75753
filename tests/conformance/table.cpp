#include <cctype>
#include <fstream>
#include <map>

#include "conformance/engines.h"

// The table of what was tried on which engine, written when everything was run (scripts/conformance puts it into docs).
namespace conformance {

namespace {

// "EveryTypeIsWritten" as a sentence.
std::string Sentence(const std::string& name) {
    std::string text;
    for (char c : name) {
        if (std::isupper(static_cast<unsigned char>(c)) && !text.empty()) {
            text += ' ';
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        text += c;
    }
    return text;
}

class TableWriter : public testing::Environment {
  public:
    void TearDown() override {
        const testing::UnitTest& all = *testing::UnitTest::GetInstance();
        if (all.test_to_run_count() != all.total_test_count()) return;
        std::map<std::string, std::map<std::string, bool>> results;
        for (int s = 0; s < all.total_test_suite_count(); ++s)
            for (int t = 0; t < all.GetTestSuite(s)->total_test_count(); ++t) {
                const testing::TestInfo& info = *all.GetTestSuite(s)->GetTestInfo(t);
                const std::string name = info.name();
                const size_t slash = name.find('/');
                results[Sentence(name.substr(0, slash))][name.substr(slash + 1)] = info.result()->Passed();
            }
        std::ofstream file(VYN_BINARY_DIR "/conformance.md");
        file << "# What every engine does\n\nWritten by the tests in tests/conformance, each of which runs on each "
                "engine (`scripts/conformance`).\n\n|";
        for (const Engine& engine : Engines()) file << " | " << engine.Title;
        file << " |\n|---";
        for (size_t i = 0; i < Engines().size(); ++i) file << "|---";
        file << "|\n";
        for (const auto& [sentence, engines] : results) {
            file << "| " << sentence;
            for (const Engine& engine : Engines()) {
                const auto found = engines.find(engine.Name);
                file << " | " << (found == engines.end() ? "-" : found->second ? "yes" : "NO");
            }
            file << " |\n";
        }
    }
};

[[maybe_unused]] const testing::Environment* const kTable = testing::AddGlobalTestEnvironment(new TableWriter);

}  // namespace

}  // namespace conformance
