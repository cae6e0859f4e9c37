#include "project_files/Tree.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "project/Kdirscanner.h"

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
  char here[2048]; // a scan that could not come back from there would find nothing
  if (getcwd(here, sizeof here) == nullptr) throw std::runtime_error("the name of the working directory is too long");
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

std::string path_of(std::string const& directory, std::string const& file) { return directory + '/' + file; }

/// Finds the owner of each file name. Fails if make would take a name apart or give two sources one object.
void find_owners(TREE& tree) {
  std::string reasons;
  const auto refuse = [&](std::string const& why) { reasons += (reasons.empty() ? "" : "\nproject_files: ") + why; };
  const auto check = [&](std::string const& name, std::string const& path) {
    const auto found = name.find_first_of(" \t\n\r\v\f$#:%\\'\"`*?[;&()|<>=,");
    if (found != std::string::npos) refuse(path + ": make takes a name with '" + name[found] + "' in it apart");
  };
  for (auto const& [name, directory] : tree.directories) {
    check(name, name);
    for (auto const& [file, includes] : directory.files) {
      check(file, path_of(name, file));
      const auto [owner, is_new] = tree.owners.emplace(file, name);
      const std::string both = path_of(owner->second, file) + " and " + path_of(name, file);
      if (!is_new && file.ends_with(".c")) refuse(both + " would share one object");
      if (!is_new && file.ends_with(".h")) tell("of " + both + " the first counts");
    }
  }
  if (!reasons.empty()) throw std::runtime_error(reasons);
}

void find_uses(TREE& tree) {
  std::set<std::string> used;
  for (auto& [name, directory] : tree.directories) {
    for (auto const& [file, includes] : directory.files) {
      for (std::string const& header : includes) {
        const auto owner = tree.owners.find(header);
        if (owner == tree.owners.end() || owner->second == name) continue;
        directory.uses.insert(owner->second);
        used.insert(owner->second);
        if (tree.directories[owner->second].kind != KIND::EXECUTABLE) continue;
        const std::string copied = path_of(owner->second, header);
        tell(path_of(name, file) + " includes " + copied + " of an executable: nothing copies it");
      }
    }
  }
  for (auto const& [name, directory] : tree.directories) {
    if (directory.kind != KIND::HEADERS || used.contains(name)) continue;
    tell(name + " has no C files, and nothing uses its headers: left out of the make file");
  }
}

/// Adds the directory to the order, behind those it uses; `path` leads to it. Directories in a circle are told.
void find_order(TREE& tree, std::string const& name, std::vector<std::string>& path) {
  if (std::find(tree.order.begin(), tree.order.end(), name) != tree.order.end()) return;
  auto start = std::find(path.begin(), path.end(), name);
  if (start != path.end()) {
    std::string circle;
    for (; start != path.end(); ++start) circle += ' ' + *start;
    return tell("these directories need each other:" + circle);
  }
  path.push_back(name);
  for (std::string const& used : tree.directories[name].uses) find_order(tree, used, path);
  path.pop_back();
  tree.order.push_back(name);
}

} // namespace

TREE scan_tree(fs::path const& root) {
  TREE tree;
  for (std::string const& name : k_directories(root)) {
    TREE_DIRECTORY directory = scan_directory(root / name);
    if (directory.files.empty()) {
      tell(name + " has neither C files nor headers: left out");
    } else {
      tree.directories[name] = std::move(directory);
    }
  }
  find_owners(tree);
  find_uses(tree);
  std::vector<std::string> path;
  for (auto const& [name, directory] : tree.directories) find_order(tree, name, path);
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
