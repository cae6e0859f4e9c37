#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

/// A new empty directory that is the working directory for as long as this object lives, and is gone afterwards.
class SCRATCH_DIRECTORY {
public:
  SCRATCH_DIRECTORY() { std::filesystem::current_path(path); }
  ~SCRATCH_DIRECTORY() {
    std::filesystem::current_path(before);
    std::filesystem::remove_all(path);
  }

  std::filesystem::path path = mkdtemp((std::filesystem::temp_directory_path() / "kindex-XXXXXX").string().data());
  std::filesystem::path before = std::filesystem::current_path();
};

/// The bytes of a file; empty when it cannot be read.
inline std::string contents(std::filesystem::path const& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios_base::binary).rdbuf();
  return bytes.str();
}

inline void put(std::filesystem::path const& path, std::string const& bytes) {
  std::ofstream(path, std::ios_base::binary) << bytes;
}
