#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Uparametres.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/numbers.h"
#include "support/errors.h"

// Parameter sets for the tests, and what they tell.
namespace foundation_fixtures {

using namespace vyn;

inline std::string Hex(std::string_view bytes) {
    std::string result;
    for (unsigned char byte : bytes) result += IntToHex(byte, 2);
    return result;
}
inline std::string Unhex(std::string_view hex) {
    std::string result;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        result += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    return result;
}
inline std::string Stored(TParametres& set) {
    TMemoryStream stream;
    set.SaveToStream(&stream);
    return std::string(stream.Bytes());
}
inline void Load(TParametres& set, std::string_view bytes) {
    TMemoryStream stream(bytes);
    set.LoadFromStream(&stream);
}
inline AnsiString Names(const TParametres& set) {
    AnsiString names;
    for (int i = 0; i < set.Count(false); ++i) names += set.GetParamsProps(i).Name + " ";
    return names;
}
const char kTag[] = "060E56796E506172616D53747265616D";

// The global set exists as long as a test runs.
class WithGlobal : public testing::Test {
  protected:
    void SetUp() override { InitializeParametres(); }
    void TearDown() override { FinalizeParametres(); }
    TParametres set{nullptr};
};
class TParametresTest : public WithGlobal {};
class TParametresChildTest : public WithGlobal {};
class TParametresListTest : public WithGlobal {};

}  // namespace foundation_fixtures
