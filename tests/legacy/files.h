#pragma once

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

// The legacy database files of the tests, which scripts/legacy-fixtures makes.
namespace legacy_files {

inline std::string Path(const std::string& name) { return VYN_SOURCE_DIR "/tests/legacy/files/" + name; }

inline std::string Bytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

inline void Write(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

constexpr char kPassword[] = "Porta1";

}  // namespace legacy_files
