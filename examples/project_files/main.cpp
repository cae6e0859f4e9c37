// Scans the k* directories of a C source tree and writes its make file and its Eclipse description: a worked example of
// how a KDIR_SCANNER's results become a MAKE_PROJECT and an ECLIPSE_PROJECT.

#include <unistd.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"

namespace fs = std::filesystem;

namespace {

constexpr char usage[] = R"(usage: project_files [--public] [TREE]

Scans the k* directories of TREE (the current directory by default) and writes
  kmakefile   a GNU make file that builds them; a directory with a main.c or Main.c
              is an executable, every other one a library
  keclipse    a description of directories, files and includes for Eclipse
into it. Includes count when they are written with angle brackets.

  --public    install libraries into, and link them from, $(K7PATH)/PUBLIC
  --help      print this text
)";

struct FAILURE {
  std::string message;
};

/// A source file or header and the names it includes.
struct SCANNED_FILE {
  std::string name;
  std::set<std::string> includes;
};

/// A k* directory, its files in sorted order, and the directories that hold the headers they include.
struct SCANNED_DIRECTORY {
  std::string name;
  std::vector<SCANNED_FILE> files;
  std::set<std::size_t> uses;

  bool is_executable() const {
    return std::any_of(files.begin(), files.end(),
                       [](SCANNED_FILE const& file) { return file.name == "main.c" || file.name == "Main.c"; });
  }
};

using TREE = std::vector<SCANNED_DIRECTORY>;

/// The directories of the tree whose names begin with 'k', sorted.
std::vector<std::string> k_directories(fs::path const& root) {
  std::vector<std::string> names;
  std::error_code error;
  for (auto entry = fs::directory_iterator(root, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    std::error_code unknown;
    const std::string name = entry->path().filename().string();
    if (name.starts_with('k') && entry->is_directory(unknown)) names.push_back(name);
  }
  if (error) throw FAILURE{"cannot read " + root.string() + ": " + error.message()};
  if (names.empty()) throw FAILURE{"no k* directory in " + root.string()};
  std::sort(names.begin(), names.end());
  return names;
}

/// Fails unless the scanner, which tells nothing, could list the directory and read each of its files.
void check_scanned(fs::path const& path, SCANNED_DIRECTORY const& directory) {
  std::set<std::string> scanned;
  for (SCANNED_FILE const& file : directory.files) scanned.insert(file.name);
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code unknown;
    const std::string name = entry->path().filename().string();
    const bool plain_source =
        name.find('.') + 2 == name.size() && std::string("ckh").find(name.back()) != std::string::npos;
    if (plain_source && !entry->is_directory(unknown) && !scanned.contains(name))
      throw FAILURE{"cannot scan " + path.string()};
    if (scanned.contains(name) && entry->is_regular_file(unknown) && !std::ifstream(entry->path())) {
      throw FAILURE{"cannot read " + entry->path().string()};
    }
  }
  if (error) throw FAILURE{"cannot read " + path.string() + ": " + error.message()};
}

SCANNED_DIRECTORY scan_directory(fs::path const& root, std::string const& name) {
  const fs::path path = root / name;
  STRING path_text = path.c_str();
  SCANNED_DIRECTORY directory{name, {}, {}};
  KDIR_SCANNER scanner;
  scanner.all_names = true;
  for (const bool headers : {false, true}) {
    scanner.scan_headers = headers;
    scanner.do_scan(path_text);
    for (int i = 0; i < scanner.found_files.size; ++i) {
      SCANNED_FILE file{scanner.found_files[i].str, {}};
      std::error_code unknown;
      if (fs::is_directory(path / file.name, unknown)) continue; // the scanner lists them like files
      for (STRING const& included : *scanner.includes[i]) file.includes.insert(included.str);
      directory.files.push_back(std::move(file));
    }
  }
  check_scanned(path, directory);
  std::sort(directory.files.begin(), directory.files.end(),
            [](SCANNED_FILE const& a, SCANNED_FILE const& b) { return a.name < b.name; });
  return directory;
}

/// Where each header of the tree is; the first directory that has a header of a name owns that name.
std::map<std::string, std::size_t> header_owners(TREE const& tree) {
  std::map<std::string, std::size_t> owners;
  for (std::size_t i = 0; i < tree.size(); ++i) {
    for (SCANNED_FILE const& file : tree[i].files) {
      if (file.name.ends_with(".h")) owners.emplace(file.name, i);
    }
  }
  return owners;
}

TREE scan_tree(fs::path const& root) {
  TREE tree;
  for (std::string const& name : k_directories(root)) tree.push_back(scan_directory(root, name));
  const auto owners = header_owners(tree);
  for (std::size_t i = 0; i < tree.size(); ++i) {
    for (SCANNED_FILE const& file : tree[i].files) {
      for (std::string const& included : file.includes) {
        const auto owner = owners.find(included);
        if (owner != owners.end() && owner->second != i) tree[i].uses.insert(owner->second);
      }
    }
  }
  return tree;
}

/// The directories in an order in which each comes behind those it uses. Directories that need each other are told.
class DEPENDENCY_ORDER {
public:
  explicit DEPENDENCY_ORDER(TREE const& scanned) : tree(scanned), states(scanned.size(), NEW) {
    for (std::size_t i = 0; i < tree.size(); ++i) visit(i);
  }

  std::vector<std::size_t> order;

private:
  enum STATE { NEW, OPEN, DONE };

  TREE const& tree;
  std::vector<STATE> states;
  std::vector<std::size_t> path;

  void visit(std::size_t i) {
    if (states[i] == OPEN) tell_circle(i);
    if (states[i] != NEW) return;
    states[i] = OPEN;
    path.push_back(i);
    for (const std::size_t used : tree[i].uses) visit(used);
    path.pop_back();
    states[i] = DONE;
    order.push_back(i);
  }

  void tell_circle(std::size_t start) const {
    std::cerr << "project_files: these directories need each other:";
    for (auto i = std::find(path.begin(), path.end(), start); i != path.end(); ++i) std::cerr << ' ' << tree[*i].name;
    std::cerr << '\n';
  }
};

/// The libraries that `directory` uses, directly or through another library.
std::set<std::size_t> libraries_used_by(TREE const& tree, std::size_t directory) {
  std::set<std::size_t> found;
  std::vector<std::size_t> open = {directory};
  while (!open.empty()) {
    const std::size_t user = open.back();
    open.pop_back();
    for (const std::size_t used : tree[user].uses) {
      if (!tree[used].is_executable() && found.insert(used).second) open.push_back(used);
    }
  }
  return found;
}

/// Fails unless a file of that name can be written, which the projects themselves would not tell.
STRING writable(fs::path const& path) {
  std::error_code unknown;
  if (fs::exists(path, unknown) && !fs::is_regular_file(path, unknown)) {
    throw FAILURE{"cannot write " + path.string() + ": not a regular file"};
  }
  const fs::path changed = fs::exists(path, unknown) ? path : path.parent_path();
  if (access(changed.c_str(), W_OK) != 0) throw FAILURE{"cannot write " + path.string()};
  return path.c_str();
}

void write_make_file(STRING const& file_name, TREE const& tree, bool install_public) {
  std::deque<MAKE_LIB> libraries;
  std::deque<MAKE_TARGET> executables;
  BUFF_LIST<MAKE_LIB*> library_list;
  BUFF_LIST<MAKE_TARGET*> executable_list;
  const std::vector<std::size_t> order = DEPENDENCY_ORDER(tree).order;

  for (const std::size_t i : order) {
    char const* const name = tree[i].name.c_str();
    if (tree[i].is_executable()) {
      MAKE_TARGET& executable = executables.emplace_back();
      executable.name = name;
      executable.dirs.add(name);
      const auto used = libraries_used_by(tree, i);
      for (const std::size_t other : order) {
        if (used.contains(other)) executable.dirs.add(tree[other].name.c_str());
      }
      executable_list.add(&executable);
    } else {
      MAKE_LIB& library = libraries.emplace_back();
      library.name = name;
      library.dirs.add(name);
      library_list.add(&library);
    }
  }

  MAKE_PROJECT project;
  project.file_name = file_name;
  project.install_public = install_public;
  project.libs = &library_list;
  project.targets = &executable_list;
  project.splash();
}

void write_eclipse_file(STRING const& file_name, TREE const& tree) {
  std::deque<SOURCE_DIR> directories(tree.size());
  std::deque<SOURCE_FILE> files;
  BUFF_LIST<SOURCE_DIR*> directory_list;
  BUFF_LIST<SOURCE_FILE*> file_list;
  std::map<std::string, SOURCE_FILE*> headers;

  for (std::size_t i = 0; i < tree.size(); ++i) {
    directories[i].name = tree[i].name.c_str();
    for (const std::size_t used : tree[i].uses) directories[i].refs.add(&directories[used]);
    directory_list.add(&directories[i]);
    for (SCANNED_FILE const& scanned : tree[i].files) {
      SOURCE_FILE& file = files.emplace_back();
      file.name = scanned.name.c_str();
      file.dir = &directories[i];
      file_list.add(&file);
      if (scanned.name.ends_with(".h")) headers.emplace(scanned.name, &file);
    }
  }

  auto file = files.begin();
  for (SCANNED_DIRECTORY const& directory : tree) {
    for (SCANNED_FILE const& scanned : directory.files) {
      for (std::string const& included : scanned.includes) {
        const auto header = headers.find(included);
        if (header != headers.end()) file->refs.add(header->second);
      }
      ++file;
    }
  }

  ECLIPSE_PROJECT project;
  project.file_name = file_name;
  project.dirs = &directory_list;
  project.files = &file_list;
  project.splash();
}

} // namespace

int main(int argc, char* argv[]) {
  bool install_public = false;
  std::vector<fs::path> roots;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--help") {
      std::cout << usage;
      return 0;
    }
    if (argument == "--public") {
      install_public = true;
    } else {
      roots.emplace_back(argument);
    }
  }
  if (roots.empty()) roots.emplace_back(".");
  if (roots.size() > 1 || roots[0].string().starts_with('-')) {
    std::cerr << "project_files: cannot take " << roots.back().string() << "\n\n" << usage;
    return 2;
  }

  try {
    const TREE tree = scan_tree(roots[0]);
    const STRING make_file = writable(roots[0] / "kmakefile"), eclipse_file = writable(roots[0] / "keclipse");
    write_make_file(make_file, tree, install_public);
    write_eclipse_file(eclipse_file, tree);
    return 0;
  } catch (FAILURE const& failure) {
    std::cerr << "project_files: " << failure.message << '\n';
    return 1;
  }
}
