#pragma once

#include <cstdint>
#include <string>

// The table of these benches: 1,000,000 rows of 8 columns, in a file of the embedded engine and on a server of the
// bench's own, each made when it is first asked for. What is read ends in Touched, so that nothing is left out.
namespace bench_data {

constexpr int64_t kRows = 1000000;
constexpr int64_t kScreen = 50;
constexpr int64_t kInserted = 100000;
constexpr char kQuery[] = "SELECT id, client, name, city, price, weight, day, note FROM sales";

const std::string& SqliteFile();
// libpq's words, and the system's own.
const std::string& ServerWords();
const std::string& ServerConnectionString();
const std::string& ServerFolder();

}  // namespace bench_data
