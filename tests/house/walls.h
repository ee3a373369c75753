#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vyn::house {

// The checks of the house's walls. Each takes the root of a source tree (this project's, or a made-up one in a test)
// and gives what it found; an empty list means that all is well. Nothing here depends on the library.

// One thing that is not as it has to be. `file` is relative to the root; `line` is 1-based, 0 for the whole file.
struct Finding {
    std::string file;
    int line = 0;
    std::string text;
};

// "file:line: text", one a line: for messages.
std::string Listing(const std::vector<Finding>& findings);

// A room as its CMakeLists.txt declares it.
struct Room {
    std::string name;    // platform_text
    std::string folder;  // platform/text, below src
    std::vector<std::string> depends;
    bool edge = false;  // outside the shared library: declared in the list of edges
    int floor = 0;      // place in the order of src/CMakeLists.txt
    bool top = false;   // a program: no declaration, may include every room that stands before it
};

// The rooms, walked upward. Declarations that cannot be understood are added to the findings.
std::vector<Room> ReadRooms(const std::filesystem::path& root, std::vector<Finding>& findings);

// Declarations: names follow folders, every dependency exists and stands before its user, a core room needs no edge,
// and every room that is declared stands in the order.
std::vector<Finding> CheckRooms(const std::filesystem::path& root);

// Includes: only of rooms that are declared (directly or through others), written from src, to files that exist;
// toolkit headers in src/qt and src/programs only, provider headers in src/providers only.
std::vector<Finding> CheckIncludes(const std::filesystem::path& root);

// Files of code: at most 800 lines each; headers begin with #pragma once; all of src stands in a room.
std::vector<Finding> CheckFiles(const std::filesystem::path& root);

// Texts of the given files (relative to the root): no paths of one machine, no marks of unfinished work, no tests
// that are switched off. Files that are not text are passed over.
std::vector<Finding> CheckWords(const std::filesystem::path& root, const std::vector<std::string>& files);

// Links of the given files' pages (*.md): a link to another page, or to a file of the project, leads somewhere.
// Pictures are not looked at.
std::vector<Finding> CheckLinks(const std::filesystem::path& root, const std::vector<std::string>& files);

// The project's files: what version control tracks; without version control, all but the build folders.
std::vector<std::string> ProjectFiles(const std::filesystem::path& root);

}  // namespace vyn::house
