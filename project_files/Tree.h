#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

enum class KIND { HEADERS, LIBRARY, EXECUTABLE };

/// A k* directory: its sources and headers, each with the headers it includes with angle brackets, and the directories
/// that hold those. Without C files it is of kind HEADERS.
struct TREE_DIRECTORY {
  KIND kind = KIND::HEADERS;
  std::map<std::string, std::set<std::string>> files;
  std::set<std::string> uses;
};

/// The k* directories of a source tree, without those that have neither sources nor headers.
struct TREE {
  std::map<std::string, TREE_DIRECTORY> directories;
  std::vector<std::string> order;            // their names, each after those it uses
  std::map<std::string, std::string> owners; // the first directory with a file of a name
};

/// Throws std::runtime_error, with a line for each reason, if make would not build the tree, or build it wrongly.
void check_tree(std::filesystem::path const& root);

/// Scans the tree and tells what its user should know. Throws as `check_tree` does, and if it cannot be read.
TREE scan_tree(std::filesystem::path const& root);

/// The directories of `kind` that `user` uses, directly or through such and directories of headers, in build order.
std::vector<std::string> used_by(TREE const& tree, std::string const& user, KIND kind);
