#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>

#include "platform/access/ado.h"
#include "platform/text/format_settings.h"

namespace conformance {

using namespace vyn;

// An engine to be tried: how a fresh database of it is reached, by several connections, and its names of types.
struct Engine {
    AnsiString Name;
    AnsiString Title;  // for people
    // Makes an empty database and gives its connection string; the database goes with the next call.
    std::function<AnsiString()> FreshDatabase;
    AnsiString CountingKey;  // "id ..." of a key that counts by itself
    AnsiString DateTime;
    AnsiString Blob;
    AnsiString Memo;
    AnsiString Golden;    // whose lines of the golden statements hold
    int RealDigits = 17;  // of real numbers, that the way to the engine keeps
    bool Paged = false;   // all tables are taken for large ones
};

inline void PrintTo(const Engine& engine, std::ostream* stream) { *stream << engine.Name; }

const std::vector<Engine>& Engines();

// Two users of one database.
class Conformance : public testing::TestWithParam<Engine> {
  protected:
    Conformance();
    ~Conformance() override;

    // Tables "clients" (a key that counts, texts, numbers, dates, money, a default) and "linies" (a key of two
    // columns).
    void MakeTables();
    std::unique_ptr<TADOTable> Table(TADOConnection& connection, const AnsiString& name);
    std::unique_ptr<TADOQuery> Query(TADOConnection& connection, const AnsiString& sql);
    static AnsiString MessageOf(const std::function<void()>& action);
    // The one value that a statement gives.
    AnsiString Value(const AnsiString& sql);

    TADOConnection mine{nullptr};
    TADOConnection theirs{nullptr};
};

}  // namespace conformance
