#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The records that every subject of the bench reads and writes: three integers, a short text and 2 KB of bytes.
namespace values_bench {

constexpr int RecordCount = 100000;
constexpr size_t DataSize = 2048;

struct Record {
    int32_t id = 0;
    int32_t parent = 0;
    int32_t kind = 0;
    std::string name;
    std::string data;
};

// The same records in every run and subject; made once.
const std::vector<Record>& Records();

}  // namespace values_bench
