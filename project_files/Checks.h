#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

struct INCLUDE {
  std::string name;
  bool is_quoted;
};

/// What the compiler takes the file to include. A name that a macro stands for is not seen, and `#if` is not heeded.
std::vector<INCLUDE> includes_in(std::filesystem::path const& path);

/// What make would build wrongly, or not at all, in these directories of a source tree: a line for each reason.
/// Throws std::filesystem::filesystem_error if a directory cannot be read.
std::vector<std::string> reasons_to_refuse(std::filesystem::path const& root, std::set<std::string> const& directories);

/// `directory` and `file` with a slash in between.
std::string path_of(std::string const& directory, std::string const& file);
