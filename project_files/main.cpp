#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <sstream>

#include "lib/files/Standard_streams.h"
#include "project/Eclipse_project.h"
#include "project/Make_project.h"
#include "project_files/Tree.h"

namespace fs = std::filesystem;

namespace {

constexpr char usage[] = R"(usage: project_files [--public | --check] [TREE]

Writes two files into TREE (the current directory by default) for its k* directories:
  kmakefile   builds them with GNU make: a directory with a main.c, Main.c or *_main.c is
              an executable, every other one with C files a library, headers alone go
              with those that use them
  keclipse    describes directories, files and includes for Eclipse
  --public    installs libraries into, and links them from, $(K7PATH)/PUBLIC
  --check     writes nothing, and tells only what it would refuse

Includes count as #include <NAME>: `# include`, quotes and <sys/types.h> are not
seen, nor are files with the ".c" of a suffix twice in their names: g.code.c.
)";

void write_make_file(TREE const& tree, bool install_public, std::ostream& out, std::ostream& progress) {
  std::map<std::string, MAKE_LIB> libraries;
  std::map<std::string, MAKE_TARGET> executables;
  BUFF_LIST<MAKE_LIB*> library_list;
  BUFF_LIST<MAKE_TARGET*> executable_list;
  const auto fill_in = [&](std::string const& name, auto& target) {
    target.name = name.c_str();
    target.dirs.add(target.name);
    for (std::string const& used : used_by(tree, name, KIND::HEADERS)) target.dirs.add(used.c_str());
    return &target;
  };
  for (std::string const& name : tree.order) {
    const KIND kind = tree.directories.at(name).kind;
    if (kind == KIND::LIBRARY) library_list.add(fill_in(name, libraries[name]));
    if (kind != KIND::EXECUTABLE) continue;
    executable_list.add(fill_in(name, executables[name]));
    for (std::string const& used : used_by(tree, name, KIND::LIBRARY)) executables[name].dirs.add(used.c_str());
  }
  MAKE_PROJECT project;
  project.install_public = install_public;
  project.libs = &library_list;
  project.targets = &executable_list;
  project.write(out, progress);
}

void write_eclipse_file(TREE const& tree, std::ostream& out) {
  std::map<std::string, SOURCE_DIR> directories;
  std::map<std::string, std::map<std::string, SOURCE_FILE>> files; // by their directories' names, then their own
  BUFF_LIST<SOURCE_DIR*> directory_list;
  BUFF_LIST<SOURCE_FILE*> file_list;
  for (auto const& [name, scanned] : tree.directories) {
    SOURCE_DIR& directory = directories[name];
    directory.name = name.c_str();
    for (std::string const& used : scanned.uses) directory.refs.add(&directories[used]);
    directory_list.add(&directory);
    for (auto const& [file_name, includes] : scanned.files) {
      SOURCE_FILE& file = files[name][file_name];
      file.name = file_name.c_str();
      file.dir = &directory;
      for (std::string const& header : includes) {
        const auto owner = tree.owners.find(header);
        if (owner != tree.owners.end()) file.refs.add(&files[owner->second][header]);
      }
      file_list.add(&file);
    }
  }
  ECLIPSE_PROJECT project;
  project.dirs = &directory_list;
  project.files = &file_list;
  project.write(out);
}

/// A new version of a file, written beside it. A link stays one: what it leads to is replaced. Mode and owner stay,
/// too.
class NEW_VERSION {
public:
  std::ofstream text;

  explicit NEW_VERSION(fs::path const& path) : failure("cannot write " + path.string()) {
    check(access(path.c_str(), W_OK) == 0 || (errno == ENOENT && !fs::is_symlink(path)));
    struct stat old = {};
    const bool is_there = stat(path.c_str(), &old) == 0;
    if (is_there && !S_ISREG(old.st_mode)) throw std::runtime_error(failure + ": not a regular file");
    target = fs::weakly_canonical(path);
    temporary = target.parent_path() / ("." + path.filename().string() + ".new");
    unlink(temporary.c_str()); // left by a run that was killed
    text.open(temporary);
    check(text.is_open());
    if (is_there && chown(temporary.c_str(), old.st_uid, old.st_gid) == 0) chmod(temporary.c_str(), old.st_mode);
  }
  NEW_VERSION(NEW_VERSION const&) = delete;
  NEW_VERSION& operator=(NEW_VERSION const&) = delete;
  ~NEW_VERSION() { unlink(temporary.c_str()); }

  /// Fails unless all of the text was written.
  void close() {
    text.close();
    check(text.good());
  }

  /// Replaces the file.
  void commit() const { check(std::rename(temporary.c_str(), target.c_str()) == 0); }

private:
  const std::string failure;
  fs::path target, temporary;

  void check(bool done) const {
    if (!done) throw std::system_error(errno, std::generic_category(), failure);
  }
};

int cannot_take(std::string const& argument) {
  std::cerr << "project_files: cannot take " << argument << "\n\n" << usage;
  return 2;
}

} // namespace

int main(int argc, char* argv[]) {
  prepare_standard_streams();
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (std::erase(arguments, "--help") > 0) {
    std::cout << usage;
    return 0;
  }
  const bool install_public = std::erase(arguments, "--public") > 0;
  const bool only_check = std::erase(arguments, "--check") > 0;
  const fs::path root = arguments.empty() ? "." : arguments[0];
  if (root.string().starts_with('-')) return cannot_take(root);
  if (arguments.size() > 1) return cannot_take(arguments[1]);
  try {
    if (only_check) {
      check_tree(root);
      return 0;
    }
    const TREE tree = scan_tree(root);
    NEW_VERSION make_file(root / "kmakefile"), eclipse_file(root / "keclipse");
    std::ostringstream progress;
    write_make_file(tree, install_public, make_file.text, progress);
    write_eclipse_file(tree, eclipse_file.text);
    make_file.close();
    eclipse_file.close();
    make_file.commit();
    eclipse_file.commit();
    std::cout << progress.str();
    return 0;
  } catch (std::exception const& error) {
    std::cerr << "project_files: " << error.what() << '\n';
    return 1;
  }
}
