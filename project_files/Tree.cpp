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
    std::error_code unknown;
    const std::string name = entry.path().filename().string();
    if (name.starts_with('k') && entry.is_directory(unknown)) names.insert(name);
  }
  if (names.empty()) throw std::runtime_error("no k* directory in " + root.string());
  return names;
}

KIND kind_of(std::string const& file) {
  if (file == "main.c" || file == "Main.c" || file.ends_with("_main.c")) return KIND::EXECUTABLE;
  return file.ends_with(".c") ? KIND::LIBRARY : KIND::HEADERS;
}

/// Hidden files are left out, as make does.
TREE_DIRECTORY scan_directory(fs::path const& path) {
  check_directory(path);
  STRING path_text = path.c_str();
  TREE_DIRECTORY directory;
  KDIR_SCANNER scanner;
  scanner.all_names = true;
  for (const bool headers : {false, true}) {
    scanner.scan_headers = headers;
    scanner.do_scan(path_text);
    for (int i = 0; i < scanner.found_files.size; ++i) {
      const std::string name = scanner.found_files[i].str;
      std::error_code unknown;
      if (name.starts_with('.') || fs::is_directory(path / name, unknown)) continue;
      if (access((path / name).c_str(), R_OK) != 0) fail_to_read(path / name);
      auto& includes = directory.files[name];
      directory.kind = std::max(directory.kind, kind_of(name));
      for (STRING const& included : *scanner.includes[i]) {
        if (included.end_with(".h")) includes.insert(included.str);
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

void tell_unused_headers(TREE const& tree) {
  std::set<std::string> used;
  for (auto const& [name, directory] : tree.directories) used.insert(directory.uses.begin(), directory.uses.end());
  for (auto const& [name, directory] : tree.directories) {
    if (directory.kind != KIND::HEADERS || used.contains(name)) continue;
    tell(name + " has no C files, and nothing uses its headers: left out of the make file");
  }
}

/// Finds the order, and tells of each circle of directories, by going through what each uses, depth first.
class ORDER {
public:
  explicit ORDER(TREE& found) : tree(found) {}

  void find() {
    for (auto const& [name, directory] : tree.directories) {
      if (!numbers.contains(name)) visit(name);
    }
  }

private:
  static constexpr int in_no_open_circle = INT_MAX;

  TREE& tree;
  std::map<std::string, int> numbers; // in the order of the first visits
  std::vector<std::string> open;      // visited, but their circles may still grow

  /// Returns the lowest number that a way from there leads back to.
  int visit(std::string const& name) {
    const int number = static_cast<int>(numbers.size());
    int lowest = numbers[name] = number;
    open.push_back(name);
    for (std::string const& used : tree.directories.at(name).uses) {
      const auto visited = numbers.find(used);
      lowest = std::min(lowest, visited == numbers.end() ? visit(used) : visited->second);
    }
    tree.order.push_back(name);
    if (lowest < number) return lowest;
    close_circle(name);
    return in_no_open_circle;
  }

  void close_circle(std::string const& first) {
    const auto start = std::find(open.begin(), open.end(), first);
    std::sort(start, open.end());
    std::string names;
    for (auto name = start; name != open.end(); ++name) {
      numbers[*name] = in_no_open_circle;
      names += ' ' + *name;
    }
    if (open.end() - start > 1) tell("these directories need each other:" + names);
    open.erase(start, open.end());
  }
};

} // namespace

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
  std::string refusal;
  for (std::string const& reason : reasons_to_refuse(root, scanned)) {
    refusal += (refusal.empty() ? "" : "\nproject_files: ") + reason;
  }
  if (!refusal.empty()) throw std::runtime_error(refusal);
  find_owners(tree);
  find_uses(tree);
  tell_unused_headers(tree);
  ORDER(tree).find();
  return tree;
}

std::vector<std::string> used_by(TREE const& tree, std::string const& user, KIND kind) {
  std::set<std::string> found;
  std::vector<std::string> open = {user}, result;
  while (!open.empty()) {
    TREE_DIRECTORY const& directory = tree.directories.at(open.back());
    open.pop_back();
    for (std::string const& used : directory.uses) {
      const KIND its = tree.directories.at(used).kind;
      if ((its == kind || its == KIND::HEADERS) && found.insert(used).second) open.push_back(used);
    }
  }
  for (std::string const& name : tree.order) {
    if (name != user && found.contains(name) && tree.directories.at(name).kind == kind) result.push_back(name);
  }
  return result;
}
