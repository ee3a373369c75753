#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/values/date_time.h"

namespace vyn {

using Json = nlohmann::ordered_json;

// A JSON text with the line on which each of its objects begins, for messages.
class JsonDocument {
  public:
    // Raises EParserError "line N: ..." for what is no JSON.
    explicit JsonDocument(const std::string& text);
    const Json& Root() const { return root_; }
    // The line of an object of this document (of its first key); 1 for others.
    int LineOf(const Json& object) const;

  private:
    void NumberObjects(const Json& value, size_t& next);

    Json root_;
    std::vector<int> linesInOrder_;
    std::unordered_map<const Json*, int> lines_;
};

// A quoted JSON string of Windows-1252 text.
std::string JsonString(std::string_view text);
Json JsonOf(std::string_view text);
// A number as JSON; null when it is not finite.
Json JsonNumber(double value);

// A date: "2026-11-21T10:00:00" when it falls on a whole second and reads back to the same value, else days.
std::string DateText(TDateTime value);
// Both spellings; nothing for anything else.
std::optional<TDateTime> DateOf(const Json& value);

}  // namespace vyn
