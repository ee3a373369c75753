#include "values/records.h"

#include <random>

namespace values_bench {

const std::vector<Record>& Records() {
    static const std::vector<Record> records = [] {
        constexpr unsigned kSeed = 54;
        constexpr int kKinds = 40;
        std::minstd_rand random(kSeed);
        std::vector<Record> made(RecordCount);
        int32_t number = 0;
        for (Record& record : made) {
            record.id = ++number;
            record.parent = number / 2;
            record.kind = number % kKinds;
            record.name = "Record " + std::to_string(number);
            record.data.resize(DataSize);
            for (char& byte : record.data) byte = static_cast<char>(random() & 0xFF);
        }
        return made;
    }();
    return records;
}

}  // namespace values_bench
