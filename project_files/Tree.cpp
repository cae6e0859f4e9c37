#include "project_files/Tree.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <iostream>

#include "project/Kdirscanner.h"
#include "project_files/Checks.h"

namespace fs = std::filesystem;

namespace {

void tell(std::string const& text) { std::cerr << "project_files: " << text << '\n'; }

[[noreturn]] void fail_to_read(fs::path const& path) {
  throw std::system_error(errno, std::generic_category(), "cannot read " + path.string());
}

/// Fails unless the directory can be listed and entered, which a scan does not tell.
void check_directory(fs::path const& path) {
  if (access((path / "").c_str(), R_OK | X_OK) != 0) fail_to_read(path);
}

std::set<std::string> k_directories(fs::path const& root) {
  if (root.empty()) throw std::runtime_error("the name of the tree is empty");
  char here[2048]; // a scan that could not come back from there would find nothing
  if (getcwd(here, sizeof here) == nullptr) {
    const char* const what = errno == ENOENT   ? "was deleted"
                             : errno == ERANGE ? "has too long a name"
                                               : "cannot be read";
    throw std::runtime_error(std::string("the working directory ") + what);
  }
  check_directory(root);
  std::set<std::string> names;
  for (fs::directory_entry const& entry : fs::directory_iterator(root)) {
    std::error_code ignored;
    const std::string name = entry.path().filename().string();
    if (name.starts_with('k') && entry.is_directory(ignored)) names.insert(name);
  }
  if (names.empty()) throw std::runtime_error("no k* directory in " + root.string());
  return names;
}

KIND kind_of(std::string const& file) {
  if (file == "main.c" || file == "Main.c" || file.ends_with("_main.c")) return KIND::EXECUTABLE;
  return file.ends_with(".c") ? KIND::LIBRARY : KIND::HEADERS;
}

/// Names of headers that the file includes from other places alone, as types.h in <sys/types.h>: a scan does not tell
/// them from the tree's own.
std::set<std::string> foreign_headers(fs::path const& file) {
  std::set<std::string> names, own;
  for (INCLUDE const& include : includes_in(file)) {
    const fs::path path = include.name, tree = file.parent_path().parent_path();
    const bool is_own = !path.has_parent_path() || fs::exists(tree / path.parent_path().filename() / path.filename());
    if (!include.is_quoted) (is_own ? own : names).insert(path.filename());
  }
  for (std::string const& name : own) names.erase(name);
  return names;
}

/// Hidden files are left out, as make does.
TREE_DIRECTORY scan_directory(fs::path const& path, bool names_only = false) {
  check_directory(path);
  STRING path_text = path.c_str();
  TREE_DIRECTORY directory;
  KDIR_SCANNER scanner;
  scanner.all_names = true;
  scanner.skip_includes = names_only;
  for (const bool headers : {false, true}) {
    scanner.scan_headers = headers;
    scanner.do_scan(path_text);
    for (int i = 0; i < scanner.found_files.size; ++i) {
      const std::string name = scanner.found_files[i].str;
      std::error_code ignored;
      if (name.starts_with('.') || fs::is_directory(path / name, ignored)) continue;
      if (access((path / name).c_str(), R_OK) != 0) fail_to_read(path / name);
      auto& includes = directory.files[name];
      directory.kind = std::max(directory.kind, kind_of(name));
      if (names_only) continue;
      const auto foreign = foreign_headers(path / name);
      for (STRING const& included : *scanner.includes[i]) {
        if (included.end_with(".h") && !foreign.contains(included.str)) includes.insert(included.str);
      }
    }
  }
  return directory;
}

void tell_main_files(std::string const& name, TREE_DIRECTORY const& directory) {
  std::string paths;
  for (auto const& [file, includes] : directory.files) {
    if (kind_of(file) == KIND::EXECUTABLE) paths += (paths.empty() ? "" : " and ") + path_of(name, file);
  }
  if (paths.find(' ') != std::string::npos) tell(paths + " go into one program");
}

void find_owners(TREE& tree) {
  for (auto const& [name, directory] : tree.directories) {
    for (auto const& [file, includes] : directory.files) tree.owners.emplace(file, name);
  }
}

void find_uses(TREE& tree) {
  for (auto& [name, directory] : tree.directories) {
    for (auto const& [file, includes] : directory.files) {
      for (std::string const& header : includes) {
        const auto owner = tree.owners.find(header);
        if (owner == tree.owners.end() || owner->second == name) continue;
        directory.uses.insert(owner->second);
        if (tree.directories[owner->second].kind != KIND::EXECUTABLE) continue;
        tell(path_of(name, file) + " includes " + path_of(owner->second, header) +
             " of an executable: nothing links that");
      }
    }
  }
}

/// Of a tree without programs, the libraries are for others.
void tell_unused(TREE const& tree) {
  std::set<std::string> used;
  bool has_programs = false;
  for (auto const& [name, directory] : tree.directories) {
    used.insert(directory.uses.begin(), directory.uses.end());
    has_programs |= directory.kind == KIND::EXECUTABLE;
  }
  for (auto const& [name, directory] : tree.directories) {
    if (used.contains(name)) continue;
    if (directory.kind == KIND::HEADERS) {
      tell(name + " has no C files, and nothing uses its headers: left out of the make file");
    } else if (directory.kind == KIND::LIBRARY && has_programs) {
      tell("no other directory includes a header of " + name + " with <>: nothing links that library");
    }
  }
}

/// Finds the order, and tells of each cycle of directories: Tarjan's algorithm for strongly connected components.
class ORDER {
public:
  explicit ORDER(TREE& found) : tree(found) {}

  void find() {
    for (auto const& [name, directory] : tree.directories) {
      if (!index.contains(name)) visit(name);
    }
  }

private:
  static constexpr int in_finished_component = INT_MAX;

  TREE& tree;
  std::map<std::string, int> index; // in the order of the first visits
  std::vector<std::string> stack;   // visited, but their components may still grow

  /// Returns the lowlink: the lowest index on the stack that a way from there leads to.
  int visit(std::string const& name) {
    const int own_index = static_cast<int>(index.size());
    int lowlink = index[name] = own_index;
    stack.push_back(name);
    for (std::string const& used : tree.directories.at(name).uses) {
      const auto visited = index.find(used);
      lowlink = std::min(lowlink, visited == index.end() ? visit(used) : visited->second);
    }
    tree.order.push_back(name);
    if (lowlink < own_index) return lowlink;
    finish_component(name);
    return in_finished_component;
  }

  void finish_component(std::string const& first) {
    const auto start = std::find(stack.begin(), stack.end(), first);
    std::sort(start, stack.end());
    std::string cycle;
    for (auto name = start; name != stack.end(); ++name) {
      index[*name] = in_finished_component;
      cycle += ' ' + *name;
    }
    if (stack.end() - start > 1) tell("these directories need each other:" + cycle);
    stack.erase(start, stack.end());
  }
};

void refuse(fs::path const& root, std::set<std::string> const& directories) {
  std::string refusal;
  for (std::string const& reason : reasons_to_refuse(root, directories)) {
    refusal += (refusal.empty() ? "" : "\nproject_files: ") + reason;
  }
  if (!refusal.empty()) throw std::runtime_error(refusal);
}

} // namespace

void check_tree(fs::path const& root) {
  std::set<std::string> scanned;
  for (std::string const& name : k_directories(root)) {
    if (!scan_directory(root / name, true).files.empty()) scanned.insert(name);
  }
  refuse(root, scanned);
}

TREE scan_tree(fs::path const& root) {
  TREE tree;
  std::set<std::string> scanned;
  for (std::string const& name : k_directories(root)) {
    TREE_DIRECTORY directory = scan_directory(root / name);
    if (directory.files.empty()) {
      tell(name + " has neither C files nor headers: left out");
      continue;
    }
    tell_main_files(name, directory);
    tree.directories[name] = std::move(directory);
    scanned.insert(name);
  }
  refuse(root, scanned);
  find_owners(tree);
  find_uses(tree);
  tell_unused(tree);
  ORDER(tree).find();
  return tree;
}

std::vector<std::string> used_by(TREE const& tree, std::string const& user, KIND kind) {
  std::set<std::string> found;
  std::vector<std::string> to_visit = {user}, result;
  while (!to_visit.empty()) {
    TREE_DIRECTORY const& directory = tree.directories.at(to_visit.back());
    to_visit.pop_back();
    for (std::string const& used : directory.uses) {
      const KIND used_kind = tree.directories.at(used).kind;
      if ((used_kind == kind || used_kind == KIND::HEADERS) && found.insert(used).second) to_visit.push_back(used);
    }
  }
  for (std::string const& name : tree.order) {
    if (name != user && found.contains(name) && tree.directories.at(name).kind == kind) result.push_back(name);
  }
  return result;
}
