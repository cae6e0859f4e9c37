#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iostream>

#include "project/Eclipse_project.h"
#include "project/Make_project.h"
#include "project_files/Tree.h"

namespace fs = std::filesystem;

namespace {

constexpr char usage[] = R"(usage: project_files [--public] [TREE]

Writes two files into TREE (the current directory by default) for its k* directories:
  kmakefile   builds them with GNU make: a directory with a main.c, Main.c or *_main.c is
              an executable, every other one with C files a library, headers alone go
              with those that use them
  keclipse    describes directories, files and includes for Eclipse
  --public    installs libraries into, and links them from, $(K7PATH)/PUBLIC

Includes count as #include <NAME>: `# include` and names in quotes are not seen,
nor are files with the ".c" of a suffix in their names twice, such as g.code.c;
of <sys/types.h> only types.h counts, also when the tree has one of its own.
)";

/// What a project writes, taken from a file in memory, since a project does not tell whether it could write.
template <class PROJECT>
std::string text_of(PROJECT& project) {
  const int memory = memfd_create("project_files", MFD_CLOEXEC);
  const std::string path = "/proc/self/fd/" + std::to_string(memory);
  project.file_name = path.c_str();
  project.splash();
  std::ifstream file(path);
  std::string text((std::istreambuf_iterator<char>(file)), {});
  if (text.empty() || pwrite(memory, "", 1, static_cast<off_t>(text.size())) != 1) // one more byte has room if all had
    throw std::system_error(errno, std::generic_category(), "cannot write to memory");
  close(memory);
  return text;
}

std::string make_file_of(TREE const& tree, bool install_public) {
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
  return text_of(project);
}

std::string eclipse_file_of(TREE const& tree) {
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
  return text_of(project);
}

/// A new version of a file. A link stays one: what it leads to is replaced. Mode and owner stay, too.
struct NEW_VERSION {
  const std::string failure;
  fs::path target, temporary;

  explicit NEW_VERSION(fs::path const& path) : failure("cannot write " + path.string()) {
    if (fs::exists(path) && !fs::is_regular_file(path)) throw std::runtime_error(failure + ": not a regular file");
    check(access(path.c_str(), W_OK) == 0 || (errno == ENOENT && !fs::is_symlink(path)));
    target = fs::weakly_canonical(path);
    temporary = target.parent_path() / ("." + target.filename().string() + '.' + std::to_string(getpid()));
  }
  ~NEW_VERSION() { unlink(temporary.c_str()); }

  void check(bool done) const {
    if (!done) throw std::system_error(errno, std::generic_category(), failure);
  }

  /// Writes the text to the disk, beside the file.
  void write(std::string const& text) const {
    const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666);
    check(file >= 0);
    struct stat old;
    if (stat(target.c_str(), &old) == 0 && fchown(file, old.st_uid, old.st_gid) == 0) fchmod(file, old.st_mode);
    errno = ENOSPC; // what a write that stops early means
    check(::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) && fsync(file) == 0);
    check(close(file) == 0);
  }

  void commit() const { check(std::rename(temporary.c_str(), target.c_str()) == 0); }
};

} // namespace

int main(int argc, char* argv[]) {
  for (int file = 0; file >= 0 && file <= 2;) file = open("/dev/null", O_RDWR); // no file becomes a standard stream
  std::signal(SIGXFSZ, SIG_IGN);
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (std::erase(arguments, "--help") > 0) {
    std::cout << usage;
    return 0;
  }
  const bool install_public = std::erase(arguments, "--public") > 0;
  const std::size_t wrong = !arguments.empty() && arguments[0].starts_with('-') ? 0 : 1;
  if (wrong < arguments.size()) {
    std::cerr << "project_files: cannot take " << arguments[wrong] << "\n\n" << usage;
    return 2;
  }
  try {
    const fs::path root = arguments.empty() ? "." : arguments[0];
    const TREE tree = scan_tree(root);
    const NEW_VERSION make_file(root / "kmakefile"), eclipse_file(root / "keclipse");
    make_file.write(make_file_of(tree, install_public));
    eclipse_file.write(eclipse_file_of(tree));
    make_file.commit();
    eclipse_file.commit();
    return 0;
  } catch (std::exception const& error) {
    std::cerr << "project_files: " << error.what() << '\n';
    return 1;
  }
}
