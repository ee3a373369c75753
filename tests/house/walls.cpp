#include "walls.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

namespace vyn::house {

namespace {

namespace fs = std::filesystem;

constexpr int MaxFileLines = 800;
// A file with a zero byte this near to its beginning is no text.
constexpr size_t TextProbe = 8000;

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string Relative(const fs::path& path, const fs::path& root) {
    return path.lexically_relative(root).generic_string();
}

bool IsCode(const fs::path& path) {
    const auto extension = path.extension();
    return extension == ".h" || extension == ".cpp";
}

std::vector<fs::path> FilesBelow(const fs::path& folder, bool (*wanted)(const fs::path&)) {
    std::vector<fs::path> files;
    if (!fs::exists(folder)) return files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && wanted(entry.path())) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string WithoutComments(const std::string& cmake) {
    static const std::regex comment("#[^\n]*");
    return std::regex_replace(cmake, comment, "");
}

std::vector<std::string> Words(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

// The words of `set(NAME ...)`.
std::vector<std::string> SetOf(const std::string& cmake, const std::string& name) {
    std::smatch match;
    if (!std::regex_search(cmake, match, std::regex("\\bset\\s*\\(\\s*" + name + "\\s+([^)]*)\\)"))) return {};
    return Words(match[1]);
}

std::string NameOfFolder(std::string folder) {
    std::replace(folder.begin(), folder.end(), '/', '_');
    return folder;
}

// Reads `room(NAME DEPENDS a b LIBRARIES c)` into the room; false when the folder declares none.
bool ReadDeclaration(const std::string& cmake, Room& room) {
    static const std::regex declaration("(?:^|\\s)(edge_)?room\\s*\\(([^)]*)\\)");
    std::smatch match;
    if (!std::regex_search(cmake, match, declaration)) return false;
    const auto words = Words(match[2]);
    if (words.empty()) return false;
    room.name = words.front();
    bool inDepends = false;
    for (size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "DEPENDS" || words[i] == "LIBRARIES") {
            inDepends = words[i] == "DEPENDS";
        } else if (inDepends) {
            room.depends.push_back(words[i]);
        }
    }
    return true;
}

const Room* RoomNamed(const std::vector<Room>& rooms, const std::string& name) {
    const auto found = std::find_if(rooms.begin(), rooms.end(), [&](const Room& room) { return room.name == name; });
    return found == rooms.end() ? nullptr : &*found;
}

// The room of a path below src: the one with the longest folder that holds it.
const Room* RoomOf(const std::vector<Room>& rooms, const std::string& path) {
    const Room* best = nullptr;
    for (const auto& room : rooms) {
        if (path.rfind(room.folder + "/", 0) == 0 && (!best || room.folder.size() > best->folder.size())) best = &room;
    }
    return best;
}

// The names of the rooms that a room may include: itself, what it names, and theirs.
std::set<std::string> Reach(const std::vector<Room>& rooms, const Room& from) {
    std::set<std::string> reach{from.name};
    std::vector<const Room*> open{&from};
    if (from.top) {
        for (const auto& room : rooms) {
            if (room.floor < from.floor) reach.insert(room.name);
        }
        return reach;
    }
    while (!open.empty()) {
        const Room* room = open.back();
        open.pop_back();
        for (const auto& name : room->depends) {
            if (!reach.insert(name).second) continue;
            if (const Room* next = RoomNamed(rooms, name)) open.push_back(next);
        }
    }
    return reach;
}

bool StartsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

bool IsToolkitHeader(const std::string& name) {
    static const std::regex toolkit("(Qt[A-Za-z0-9]+/.*)|(Q[A-Z][A-Za-z0-9]*)|(q[a-z_]+\\.h)");
    return std::regex_match(name, toolkit);
}

bool IsProviderHeader(const std::string& name) {
    static const std::set<std::string> headers{"sqlite3.h", "libpq-fe.h", "postgres_ext.h", "sql.h",
                                               "sqlext.h",  "sqltypes.h", "sqlucode.h"};
    return headers.count(name) > 0;
}

// What a header in angle brackets means for the room that includes it.
void CheckForeignInclude(const std::string& inFile, int line, const std::string& header,
                         std::vector<Finding>& findings) {
    if (IsToolkitHeader(header) && !StartsWith(inFile, "src/qt/") && !StartsWith(inFile, "src/programs/")) {
        findings.push_back({inFile, line, "toolkit header <" + header + "> outside src/qt and src/programs"});
    }
    if (IsProviderHeader(header) && !StartsWith(inFile, "src/providers/")) {
        findings.push_back({inFile, line, "provider header <" + header + "> outside src/providers"});
    }
}

class IncludeChecker {
  public:
    IncludeChecker(const fs::path& root, std::vector<Finding>& findings)
        : root_(root), findings_(findings), rooms_(ReadRooms(root, findings)) {
        for (const auto& room : rooms_) reach_[room.name] = Reach(rooms_, room);
    }

    void CheckFile(const fs::path& path) {
        static const std::regex include("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"]");
        file_ = Relative(path, root_);
        room_ = RoomOf(rooms_, Relative(path, root_ / "src"));
        line_ = 0;
        for (const auto& text : Lines(ReadFile(path))) {
            ++line_;
            std::smatch match;
            if (!std::regex_search(text, match, include)) continue;
            CheckForeignInclude(file_, line_, match[2], findings_);
            if (match[1] == "\"") CheckOwnInclude(match[2]);
        }
    }

  private:
    void Add(const std::string& text) { findings_.push_back({file_, line_, text}); }

    void CheckOwnInclude(const std::string& header) {
        if (header.find("../") != std::string::npos)
            return Add("include of \"" + header + "\" climbs out of its folder");
        // Made by the build: the toolkit's meta objects, and what a room generates for itself.
        if (fs::path(header).extension() == ".moc" || StartsWith(header, "generated/")) return;
        if (!fs::exists(root_ / "src" / header)) {
            return Add("include of \"" + header + "\", which is no file below src (includes are written from src)");
        }
        const Room* target = RoomOf(rooms_, header);
        if (!target || !room_) return;  // CheckFiles reports files without a room
        if (!reach_[room_->name].count(target->name)) {
            Add(room_->name + " includes \"" + header + "\" but does not depend on " + target->name);
        }
        if (target->floor > room_->floor) Add(room_->name + " includes \"" + header + "\" of a room above it");
    }

    fs::path root_;
    std::vector<Finding>& findings_;
    std::vector<Room> rooms_;
    std::map<std::string, std::set<std::string>> reach_;
    std::string file_;
    const Room* room_ = nullptr;
    int line_ = 0;
};

struct ForbiddenText {
    std::regex pattern;
    std::string reason;
};

// The words are put together from halves, so that this file does not hold them.
std::vector<ForbiddenText> ForbiddenTexts() {
    const auto word = [](const std::string& text) { return std::regex("\\b" + text + "\\b"); };
    std::vector<ForbiddenText> texts;
    const std::string ownPath = "a path of one machine";
    for (const std::string path : {"/wo"
                                   "rk/",
                                   "/tmp/"
                                   "wt",
                                   "/ro"
                                   "ot/"}) {
        // A path begins after something that is no part of a longer one (the same letters inside a longer folder name
        // are harmless).
        texts.push_back({std::regex("(^|[^A-Za-z0-9_.}-])" + path), ownPath});
    }
    texts.push_back({std::regex("\\.\\./sha"
                                "red"),
                     "a path outside the project"});
    for (const std::string mark : {"TO"
                                   "DO",
                                   "FIX"
                                   "ME",
                                   "X"
                                   "XX"})
        texts.push_back({word(mark), "a mark of unfinished work"});
    texts.push_back({std::regex("^\\s*#\\s*if\\s+"
                                "0\\b"),
                     "code that is switched off"});
    texts.push_back({word("GTEST_"
                          "SKIP"),
                     "a test that skips itself"});
    texts.push_back({std::regex("DISABLED"
                                "_"),
                     "a test that is switched off"});
    texts.push_back({std::regex("(EXPECT|ASSERT)_TRUE\\(tr"
                                "ue\\)"),
                     "a check that cannot fail"});
    return texts;
}

bool IsText(const std::string& bytes) { return bytes.substr(0, TextProbe).find('\0') == std::string::npos; }

}  // namespace

std::string Listing(const std::vector<Finding>& findings) {
    std::ostringstream text;
    for (const auto& finding : findings) {
        text << finding.file;
        if (finding.line > 0) text << ':' << finding.line;
        text << ": " << finding.text << '\n';
    }
    return text.str();
}

std::vector<Room> ReadRooms(const fs::path& root, std::vector<Finding>& findings) {
    const std::string order = WithoutComments(ReadFile(root / "src/CMakeLists.txt"));
    std::vector<Room> rooms;
    const auto add = [&](const std::string& folder, bool edge) {
        const int floor = static_cast<int>(rooms.size()) + 1;
        const fs::path file = root / "src" / folder / "CMakeLists.txt";
        if (!fs::exists(file)) return;
        Room room;
        room.folder = folder;
        room.edge = edge;
        room.floor = floor;
        if (!ReadDeclaration(WithoutComments(ReadFile(file)), room)) {
            room.name = NameOfFolder(folder);
            room.top = true;
            if (!edge || !StartsWith(folder, "programs/")) {
                findings.push_back({Relative(file, root), 0, "declares no room"});
            }
        }
        rooms.push_back(room);
    };
    const auto core = SetOf(order, "rooms");
    if (core.empty()) findings.push_back({"src/CMakeLists.txt", 0, "names no rooms"});
    for (const auto& folder : core) add(folder, false);
    for (const auto& folder : SetOf(order, "edges")) add(folder, true);
    return rooms;
}

std::vector<Finding> CheckRooms(const fs::path& root) {
    std::vector<Finding> findings;
    const auto rooms = ReadRooms(root, findings);
    for (const auto& room : rooms) {
        const std::string file = "src/" + room.folder + "/CMakeLists.txt";
        if (room.name != NameOfFolder(room.folder)) {
            findings.push_back({file, 0, "the room is named " + room.name + ", not " + NameOfFolder(room.folder)});
        }
        for (const auto& name : room.depends) {
            const Room* target = RoomNamed(rooms, name);
            if (!target) {
                findings.push_back({file, 0, room.name + " depends on " + name + ", which is no room"});
            } else if (target->floor >= room.floor) {
                findings.push_back({file, 0, room.name + " depends on " + name + ", which stands above it"});
            }
        }
    }
    // A folder with a declaration that the order does not name would be built by nobody.
    for (const auto& path :
         FilesBelow(root / "src", [](const fs::path& file) { return file.filename() == "CMakeLists.txt"; })) {
        const std::string folder = Relative(path.parent_path(), root / "src");
        Room found;
        const bool known =
            std::any_of(rooms.begin(), rooms.end(), [&](const Room& room) { return room.folder == folder; });
        if (folder != "." && !known && ReadDeclaration(WithoutComments(ReadFile(path)), found)) {
            findings.push_back(
                {Relative(path, root), 0, found.name + " does not stand in the order of src/CMakeLists.txt"});
        }
    }
    return findings;
}

std::vector<Finding> CheckIncludes(const fs::path& root) {
    std::vector<Finding> findings;
    IncludeChecker checker(root, findings);
    for (const auto& path : FilesBelow(root / "src", IsCode)) checker.CheckFile(path);
    return findings;
}

std::vector<Finding> CheckFiles(const fs::path& root) {
    std::vector<Finding> findings;
    std::vector<Finding> unread;  // CheckRooms reports what is wrong with the declarations
    const auto rooms = ReadRooms(root, unread);
    for (const char* folder : {"src", "tests", "fuzz", "bench", "samples"}) {
        for (const auto& path : FilesBelow(root / folder, IsCode)) {
            const std::string file = Relative(path, root);
            const auto lines = Lines(ReadFile(path));
            if (lines.size() > MaxFileLines) {
                findings.push_back({file, 0,
                                    std::to_string(lines.size()) + " lines; at most " + std::to_string(MaxFileLines) +
                                        " are easy to read: cut it by subject"});
            }
            if (path.extension() == ".h" && std::find(lines.begin(), lines.end(), "#pragma once") == lines.end()) {
                findings.push_back({file, 0, "a header without #pragma once"});
            }
            if (StartsWith(file, "src/") && !RoomOf(rooms, file.substr(4))) {
                findings.push_back({file, 0, "stands in no room"});
            }
        }
    }
    return findings;
}

std::vector<Finding> CheckWords(const fs::path& root, const std::vector<std::string>& files) {
    static const auto forbidden = ForbiddenTexts();
    std::vector<Finding> findings;
    for (const auto& file : files) {
        if (!fs::is_regular_file(root / file)) continue;
        const std::string bytes = ReadFile(root / file);
        if (!IsText(bytes)) continue;
        int number = 0;
        for (const auto& line : Lines(bytes)) {
            ++number;
            for (const auto& text : forbidden) {
                if (std::regex_search(line, text.pattern))
                    findings.push_back({file, number, text.reason + ": " + line});
            }
        }
    }
    return findings;
}

std::vector<Finding> CheckLinks(const fs::path& root, const std::vector<std::string>& files) {
    static const std::regex link("(!?)\\[[^\\]]*\\]\\(([^)#\\s]+)[^)]*\\)");
    std::vector<Finding> findings;
    for (const auto& file : files) {
        if (fs::path(file).extension() != ".md" || !fs::exists(root / file)) continue;
        int number = 0;
        for (const auto& line : Lines(ReadFile(root / file))) {
            ++number;
            for (std::sregex_iterator match(line.begin(), line.end(), link), end; match != end; ++match) {
                const std::string target = (*match)[2];
                if ((*match)[1] == "!" || target.find("://") != std::string::npos) continue;
                if (!fs::exists(root / fs::path(file).parent_path() / target)) {
                    findings.push_back({file, number, "a link to " + target + ", which is not there"});
                }
            }
        }
    }
    return findings;
}

std::vector<std::string> ProjectFiles(const fs::path& root) {
    std::vector<std::string> files;
    if (fs::exists(root / ".git")) {
        const std::string command = "git -C '" + root.string() + "' -c safe.directory='*' ls-files -z";
        const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
        std::string output;
        std::array<char, 4096> buffer{};
        while (const size_t count = pipe ? std::fread(buffer.data(), 1, buffer.size(), pipe.get()) : 0) {
            output.append(buffer.data(), count);
        }
        std::istringstream stream(output);
        for (std::string file; std::getline(stream, file, '\0');) files.push_back(file);
        if (!files.empty()) return files;
    }
    static const std::regex made("^(build|build-[^/]*|run-pictures|\\.git)(/.*)?$");
    for (const auto& path : FilesBelow(root, [](const fs::path&) { return true; })) {
        const std::string file = Relative(path, root);
        if (!std::regex_match(file, made)) files.push_back(file);
    }
    return files;
}

}  // namespace vyn::house
