// The files of these tests are made here, and read here: another reader's word that they are what they should be. What
// that reader cannot tell (empty texts, early and late dates, bytes) is not asked.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "legacy/files.h"
#include "programs/tools/json_text.h"

using namespace vyn;

namespace {

enum Kind { Boolean = 1, Byte = 2, Integer = 3, Long = 4, Date = 8, Text = 10, Memo = 12 };

constexpr char kNull[] = "<null>";

std::string InShellQuotes(const std::string& text) {
    std::string quoted = "'";
    for (const char each : text) quoted += each == '\'' ? std::string("'\\''") : std::string(1, each);
    return quoted + "'";
}

std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    char buffer[4096];
    for (size_t size; pipe && (size = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, size);
    EXPECT_EQ(pipe ? ::pclose(pipe) : -1, 0) << command;
    return output;
}

// Rows of values between commas; texts in double quotes, doubled inside.
std::vector<std::vector<std::string>> RowsOf(const std::string& text) {
    std::vector<std::vector<std::string>> rows;
    for (size_t at = 0; at < text.size();) {
        std::vector<std::string> row(1);
        for (; at < text.size() && text[at] != '\n'; ++at) {
            if (text[at] == ',') {
                row.emplace_back();
            } else if (text[at] == '"') {
                for (++at; at < text.size() && (text[at] != '"' || text[at + 1] == '"'); ++at) {
                    if (text[at] == '"') ++at;
                    row.back() += text[at];
                }
            } else {
                row.back() += text[at];
            }
        }
        ++at;
        rows.push_back(std::move(row));
    }
    return rows;
}

// What our maker listed, as the other reader prints it; "?" for what is not asked.
std::string Wanted(int kind, const Json& cell) {
    switch (kind) {
        case Boolean:
        case Byte:
        case Integer:
        case Long:
            return cell.is_null() ? kNull : cell.get<std::string>().substr(8);
        case Date: {
            if (cell.is_null()) return "?";
            std::string date = cell.get<std::string>().substr(5);
            if (date < "1900" || date > "4000") return "?";
            return date.size() == 10 ? date + " 00:00:00" : date;
        }
        case Text:
        case Memo: {
            if (cell.is_null()) return kNull;
            const std::string text = cell.get<std::string>().substr(5);
            const bool digest = text.size() > 64 && text[text.size() - 65] == ' ';
            return text.empty() || digest ? "?" : text;
        }
        default:
            return "?";
    }
}

class OtherReader : public testing::TestWithParam<const char*> {};

TEST_P(OtherReader, SeesTheSameTablesAndRows) {
    const Json listing = Json::parse(legacy_files::Bytes(legacy_files::Path(GetParam() + std::string(".json"))));
    const std::string file = InShellQuotes(legacy_files::Path(GetParam() + std::string(".mdb")));
    std::string names;
    for (const Json& table : listing["tables"]) names += table["name"].get<std::string>() + "\n";
    EXPECT_EQ(OutputOf("mdb-tables -1 " + file), names);
    int compared = 0;
    for (const Json& table : listing["tables"]) {
        const auto name = table["name"].get<std::string>();
        if (name[0] == '-') continue;  // it takes that for an option
        auto rows =
            RowsOf(OutputOf("LC_ALL=C.UTF-8 MDB_JET3_CHARSET=CP1252 mdb-export -H -b hex -T '%Y-%m-%d %H:%M:%S' -0 '" +
                            std::string(kNull) + "' " + file + " " + InShellQuotes(name)));
        ASSERT_EQ(rows.size(), table["rows"].size()) << name;
        std::vector<std::vector<std::string>> wanted;
        for (const Json& row : table["rows"]) {
            wanted.emplace_back();
            for (size_t i = 0; i < row.size(); ++i)
                wanted.back().push_back(Wanted(table["columns"][i]["kind"], row[i]));
        }
        // Rows that moved come elsewhere.
        const auto byFirst = [](const auto& a, const auto& b) { return a[0] < b[0]; };
        std::stable_sort(rows.begin(), rows.end(), byFirst);
        std::stable_sort(wanted.begin(), wanted.end(), byFirst);
        for (size_t row = 0; row < rows.size(); ++row) {
            ASSERT_EQ(rows[row].size(), wanted[row].size()) << name;
            for (size_t i = 0; i < rows[row].size(); ++i) {
                if (wanted[row][i] == "?") continue;
                EXPECT_EQ(rows[row][i], wanted[row][i]) << name << " " << row << " " << i;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 30);
}

INSTANTIATE_TEST_SUITE_P(Files, OtherReader, testing::Values("trade2000", "trade97", "changed2000", "changed97"));

}  // namespace
