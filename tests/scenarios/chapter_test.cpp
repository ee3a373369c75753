// The chapters on queries, parameters and rules, and on lookups, held against the program and the sample: their
// commands print what they say, their excerpts stand in the sample's forms, and functions become what their table says.
#include <algorithm>
#include <fstream>
#include <sstream>

#include "database/Uvyndb.h"
#include "foundation/Uparametres.h"
#include "package/package.h"
#include "platform/text/windows1252.h"
#include "programs/tools/named_values.h"
#include "query/Uquerysql.h"
#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

struct Block {
    std::string Kind;  // what stands behind the opening mark
    std::vector<std::string> Lines;
};

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

class Chapter : public ProgramTest {
  protected:
    static constexpr char kQueries[] = "docs/queries-parameters-rules.md";
    static constexpr char kLookups[] = "docs/lookups.md";
    static std::vector<std::string> Text(const char* chapter = kQueries) {
        return LinesOf(ReadBytes(std::filesystem::path(VYN_SOURCE_DIR) / chapter));
    }
    static std::vector<Block> Blocks(const std::string& kind, const char* chapter = kQueries) {
        std::vector<Block> blocks;
        bool inside = false;
        for (const std::string& line : Text(chapter)) {
            if (line.rfind("```", 0) == 0) {
                inside = !inside;
                if (inside) blocks.push_back({line.substr(3), {}});
            } else if (inside) {
                blocks.back().Lines.push_back(line);
            }
        }
        std::erase_if(blocks, [&](const Block& block) { return block.Kind.rfind(kind, 0) != 0; });
        return blocks;
    }
    // The cells of the table's rows.
    static std::vector<std::vector<std::string>> Functions() {
        std::vector<std::vector<std::string>> rows;
        bool inside = false;
        for (const std::string& line : Text()) {
            if (line.rfind("| in the statement", 0) == 0) inside = true;
            if (line.empty()) inside = false;
            if (!inside || line.find('`') == std::string::npos) continue;
            std::vector<std::string> cells;
            for (size_t at = 1; at < line.size();) {
                const size_t end = line.find('|', at);
                const std::string cell = line.substr(at, end - at);
                const size_t first = cell.find('`'), last = cell.rfind('`');
                cells.push_back(first == last ? std::string() : cell.substr(first + 1, last - first - 1));
                at = end + 1;
            }
            rows.push_back(cells);
        }
        return rows;
    }
};

std::string Trimmed(const std::string& line) {
    const size_t first = line.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : line.substr(first);
}

}  // namespace

TEST_F(Chapter, EveryCommandPrintsWhatStandsBelowIt) {
    std::filesystem::create_directories(File("samples"));
    std::filesystem::create_directory_symlink(VYN_SAMPLE, File("samples/trading"));
    const std::string program(VYN_PROGRAM);
    int commands = 0;
    for (const Block& block : Blocks("console")) {
        for (size_t i = 0; i < block.Lines.size();) {
            const std::string command = block.Lines[i];
            ASSERT_EQ(command.substr(0, 6), "$ vyn ") << "the block begins with a command";
            std::string expected;
            for (++i; i < block.Lines.size() && block.Lines[i].rfind("$ ", 0) != 0; ++i)
                expected += block.Lines[i] + "\n";
            const Ended ended = RunProgram(
                "/bin/sh", {"-c", "cd '" + File("") + "' && '" + program + "' " + command.substr(6) + " 2>&1"});
            std::string output = ended.Output;
            std::replace(output.begin(), output.end(), '\r', '\n');  // within a message
            EXPECT_EQ(output, expected) << command;
            ++commands;
        }
    }
    EXPECT_GE(commands, 15);
}

TEST_F(Chapter, EveryExcerptStandsInTheSample) {
    std::vector<Block> blocks = Blocks("form ");
    EXPECT_GE(blocks.size(), 10u);
    const std::vector<Block> ofLookups = Blocks("form ", kLookups);
    EXPECT_GE(ofLookups.size(), 3u);
    blocks.insert(blocks.end(), ofLookups.begin(), ofLookups.end());
    for (const Block& block : blocks) {
        const std::filesystem::path file = std::filesystem::path(VYN_SOURCE_DIR) / block.Kind.substr(5);
        const std::vector<std::string> form = LinesOf(ReadBytes(file));
        const auto same = [](const std::string& a, const std::string& b) { return Trimmed(a) == Trimmed(b); };
        EXPECT_NE(std::search(form.begin(), form.end(), block.Lines.begin(), block.Lines.end(), same), form.end())
            << block.Kind << " has no lines\n"
            << block.Lines.front();
    }
}

TEST_F(Chapter, EveryFunctionBecomesWhatTheTableSays) {
    const auto rows = Functions();
    EXPECT_GE(rows.size(), 10u);
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 3u) << row.front();
        InitializePackage();
        {
            TDataBaseVyn database(nullptr);
            TQuerySQL query(nullptr);
            if (!row[1].empty()) AddNamedValues({row[1]}, *Parametres());
            TStringList lines({Utf8ToAnsi(row[0])});
            query.AplicaParametresSQL(&lines);
            EXPECT_EQ(AnsiToUtf8(lines.At(0)), row[2]) << row[0] << " with " << row[1];
        }
        FinalizePackage();
    }
}

TEST_F(Chapter, ItsPicturesAreThere) {
    int pictures = 0;
    std::vector<std::string> text = Text();
    for (const std::string& line : Text(kLookups)) text.push_back(line);
    for (const std::string& line : text) {
        const size_t at = line.find("](pictures/");
        if (at == std::string::npos) continue;
        const std::string name = line.substr(at + 2, line.find(')', at) - at - 2);
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(VYN_SOURCE_DIR) / "docs" / name)) << name;
        ++pictures;
    }
    EXPECT_GE(pictures, 5);
}

}  // namespace vyn::scenarios
