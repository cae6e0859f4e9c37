#include "project_files/Checks.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <utility>

namespace fs = std::filesystem;

namespace {

/// Where what begins at `start` ends: a comment, a literal, a line's end that does not count, or plain text.
std::size_t end_of_token(std::string_view text, std::size_t start) {
  if (text.substr(start, 2) == "\\\n") return start + 2;
  if (text.substr(start, 2) == "/*") return std::min(text.find("*/", start + 2), text.size() - 2) + 2;
  if (text.substr(start, 2) == "//") {
    std::size_t end = text.find('\n', start);
    while (end != std::string_view::npos && text[end - 1] == '\\') end = text.find('\n', end + 1);
    return std::min(end, text.size());
  }
  const char quote = text[start];
  std::size_t end = start + 1;
  if (quote != '"' && quote != '\'') return std::min(text.find_first_of("\\/\"'", end), text.size());
  while (end < text.size() && text[end] != quote && text[end] != '\n') end += text[end] == '\\' ? 2 : 1;
  return std::min(end + 1, text.size());
}

/// The text as the compiler reads it: lines that go on are joined, and a blank stands for a comment.
std::string without_comments(std::string_view text) {
  std::string code;
  for (std::size_t start = 0, end = 0; start < text.size(); start = end) {
    end = end_of_token(text, start);
    const std::string_view token = text.substr(start, end - start);
    if (token.starts_with("/*") || token.starts_with("//")) {
      code += ' ';
    } else if (token != "\\\n") {
      code += token;
    }
  }
  return code;
}

/// What the line includes.
std::optional<INCLUDE> included_by(std::string_view line) {
  for (const std::string_view part : {"", "#", "include"}) {
    if (!line.starts_with(part)) return {};
    line.remove_prefix(part.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t\v\f"), line.size()));
  }
  const bool is_quoted = line.starts_with('"');
  if (!is_quoted && !line.starts_with('<')) return {};
  const std::size_t end = line.find(is_quoted ? '"' : '>', 1);
  if (end == std::string_view::npos) return {};
  return INCLUDE{fs::path(line.substr(1, end - 1)).lexically_normal(), is_quoted};
}

/// The tree as make and the compiler see it, which is more than the scanner does.
class TREE_CHECK {
public:
  std::vector<std::string> reasons;

  TREE_CHECK(fs::path tree, std::set<std::string> const& directories) : root(std::move(tree)) {
    for (std::string const& directory : directories) {
      check_name(directory, directory);
      for (std::string const& name : names_in(root / directory)) {
        if (name.ends_with(".c") || name.ends_with(".k") || name.ends_with(".h"))
          directories_of[name].insert(directory);
      }
    }
  }

  void check_names() {
    for (auto const& [name, directories] : directories_of) {
      for (std::string const& directory : directories) check_name(name, path_of(directory, name));
    }
  }

  /// The objects of all directories go into one.
  void check_objects() {
    for (auto const& [name, directories] : directories_of) {
      if (name.ends_with(".h")) continue;
      const std::string first = path_of(*directories.begin(), name);
      for (auto other = std::next(directories.begin()); other != directories.end(); ++other) {
        note({first, " and ", path_of(*other, name), " would share one object"});
      }
    }
    for (std::string const& name : names_in(root)) {
      if (!name.ends_with(".c")) continue;
      for (std::string const& source : {name, name.substr(0, name.size() - 1) + 'k'}) {
        const auto found = directories_of.find(source);
        if (found == directories_of.end()) continue;
        note({name, " would be compiled in place of ", path_of(*found->second.begin(), source)});
      }
    }
  }

  /// Of headers of one name, one alone is copied for other directories and for headers that are read as copies
  /// themselves. So each may be included only where its own directory comes first.
  void check_headers() {
    std::map<std::string, std::string> ambiguous; // names, with the paths that have them
    for (auto const& [name, directories] : directories_of) {
      if (!name.ends_with(".h") || directories.size() == 1) continue;
      for (std::string const& directory : directories) {
        std::string& paths = ambiguous[name];
        if (!paths.empty()) paths += " or ";
        paths += path_of(directory, name);
      }
    }
    if (ambiguous.empty()) return;
    const auto copies = read_as_copies();
    for (auto const& [name, paths] : ambiguous) {
      const auto copy = copies.find(name);
      if (copy != copies.end()) note({copy->second, " includes ", name, ", which may be ", paths});
    }
  }

  /// In the names that a C file depends on, make looks for the name of its object.
  void check_dependencies() {
    std::set<std::string> suspicious;
    for (auto const& [name, directories] : directories_of) {
      for (std::string const& directory : directories) {
        const std::string path = path_of(directory, name);
        if (path.find(".o") != std::string::npos) suspicious.insert(path);
      }
    }
    for (auto const& [name, directories] : directories_of) {
      if (!name.ends_with(".c")) continue;
      const std::string object = name.substr(0, name.size() - 1) + 'o';
      for (std::string const& path : suspicious) {
        if (path.find(object) == std::string::npos || !needed_by(name).contains(path)) continue;
        const std::string source = path_of(*directories.begin(), name);
        note({path, ": make takes ", object, " in that name for the object of ", source});
      }
    }
  }

private:
  using NAMES = std::set<std::string>;

  const fs::path root;
  std::map<std::string, NAMES> directories_of; // by the names of files
  std::map<std::string, std::vector<INCLUDE>> includes;

  /// Hidden files are left out, as make does.
  static NAMES names_in(fs::path const& directory) {
    NAMES names;
    for (fs::directory_entry const& entry : fs::directory_iterator(directory)) {
      std::error_code ignored;
      const std::string name = entry.path().filename().string();
      if (!name.starts_with('.') && !entry.is_directory(ignored)) names.insert(name);
    }
    return names;
  }

  void note(std::initializer_list<std::string_view> parts) {
    std::string& reason = reasons.emplace_back();
    for (const std::string_view part : parts) reason += part;
  }

  void check_name(std::string const& name, std::string const& path) {
    auto found = name.find_first_of(" \t\n\r\v\f$#:%\\'\"`*?[;&()|<>=,");
    if (name.starts_with('^')) found = 0;
    if (found == std::string::npos) return;
    note({path, ": make cannot handle a name with '", std::string_view(name).substr(found, 1), "' in it"});
  }

  std::vector<INCLUDE> const& includes_of(std::string const& path) {
    const auto [entry, is_new] = includes.try_emplace(path);
    if (is_new) entry->second = includes_in(root / path);
    return entry->second;
  }

  /// The names that are read from the directory of copies, each with a file that includes it.
  std::map<std::string, std::string> read_as_copies() {
    std::map<std::string, std::string> copies;
    std::vector<std::string> to_read;
    const auto add = [&](std::string const& name, std::string const& user) {
      if (directories_of.contains(name) && copies.emplace(name, user).second) to_read.push_back(name);
    };
    for (auto const& [name, directories] : directories_of) {
      for (std::string const& directory : directories) {
        for (auto const& [included, is_quoted] : includes_of(path_of(directory, name))) {
          if (!is_quoted || !is_in(included, directory)) add(included, path_of(directory, name));
        }
      }
    }
    while (!to_read.empty()) {
      const std::string name = to_read.back();
      to_read.pop_back();
      for (std::string const& directory : directories_of.at(name)) {
        for (INCLUDE const& include : includes_of(path_of(directory, name))) {
          add(include.name, path_of(directory, name));
        }
      }
    }
    return copies;
  }

  bool is_in(std::string const& name, std::string const& directory) const {
    const auto found = directories_of.find(name);
    return found != directories_of.end() && found->second.contains(directory);
  }

  /// The paths of the name's files and of those that they may include, directly or not.
  NAMES needed_by(std::string const& source) {
    NAMES paths;
    std::vector<std::string> to_read = {source};
    while (!to_read.empty()) {
      const auto found = directories_of.find(to_read.back());
      to_read.pop_back();
      if (found == directories_of.end()) continue;
      for (std::string const& directory : found->second) {
        const std::string path = path_of(directory, found->first);
        if (!paths.insert(path).second) continue;
        for (INCLUDE const& include : includes_of(path)) to_read.push_back(fs::path(include.name).filename().string());
      }
    }
    return paths;
  }
};

} // namespace

std::string path_of(std::string const& directory, std::string const& file) { return directory + '/' + file; }

std::vector<INCLUDE> includes_in(fs::path const& path) {
  std::vector<INCLUDE> includes;
  std::error_code ignored;
  if (!fs::is_regular_file(path, ignored)) return includes; // a pipe would wait for its writer
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  std::istringstream lines(without_comments(text.str()));
  for (std::string line; std::getline(lines, line);) {
    if (const auto include = included_by(line)) includes.push_back(*include);
  }
  return includes;
}

std::vector<std::string> reasons_to_refuse(fs::path const& root, std::set<std::string> const& directories) {
  TREE_CHECK check(root, directories);
  check.check_names();
  check.check_objects();
  check.check_headers();
  check.check_dependencies();
  return check.reasons;
}
