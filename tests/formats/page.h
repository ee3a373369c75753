#pragma once

#include <string>
#include <vector>

namespace format_pages {

// A page of docs/formats, taken apart for the tests.
class Page {
  public:
    // Reads docs/formats/NAME.
    explicit Page(const std::string& name);

    bool HasHeading(const std::string& heading) const;
    // The bytes of the example's hexadecimal listing. An offset that does not count the bytes before it is reported as
    // a failure of the test.
    std::string ExampleBytes() const;
    // The text block of the example that begins with the word.
    std::string ExampleText(const std::string& firstWord) const;

    // The names of all pages, README.md aside.
    static std::vector<std::string> All();
    static std::string Text(const std::string& name);

  private:
    // The fenced blocks below "## Example", in order.
    std::vector<std::string> ExampleBlocks() const;

    std::string name_;
    std::vector<std::string> lines_;
};

}  // namespace format_pages
