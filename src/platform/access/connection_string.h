#pragma once

#include <utility>
#include <vector>

#include "platform/text/ansi_string.h"

namespace vyn {

// The most that connection strings may say of times.
constexpr int kMostConnectSeconds = 3600;
constexpr int kMostCommandSeconds = 86400;

// "Provider=SQLite;Data Source=FILE": keys and values, separated by semicolons. A value may stand in double or single
// quotes, doubled inside; keys compare without regard to case, the last of a key wins.
class ConnectionString {
  public:
    ConnectionString() = default;
    // Raises EDatabaseError naming the key at fault; a password is never part of a message.
    explicit ConnectionString(const AnsiString& text);

    AnsiString Value(const AnsiString& key, const AnsiString& otherwise = {}) const;
    bool Has(const AnsiString& key) const;
    // A whole number within these bounds, or empty where there is none; raises EDatabaseError for anything else.
    AnsiString Number(const AnsiString& key, int lowest, int highest) const;
    const std::vector<std::pair<AnsiString, AnsiString>>& Pairs() const { return pairs_; }
    // For messages: as it was, with asterisks for passwords.
    AnsiString ForMessages() const;

  private:
    std::vector<std::pair<AnsiString, AnsiString>> pairs_;
};

}  // namespace vyn
