#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <new>
#include <sstream>

#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"
#include "tests/Allocations.h"
#include "tests/Reader_check.h"

int kindex_main(int argc, char* argv[]);

namespace {

enum KIND { none, opening, reading, writing };
KIND failing = none;
int until_failure = 0;

/// Whether this call, of the kind given, is the one that has to fail.
bool fails(KIND kind) {
  if (kind != failing || --until_failure != 0) return false;
  errno = EIO;
  return true;
}

/// The system's own function of that name.
template <class FUNCTION>
FUNCTION* real(char const* name) {
  return reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These stand in for the system's own, for the standard library too.
extern "C" {
FILE* fopen(char const* path, char const* mode) {
  return fails(opening) ? nullptr : real<FILE*(char const*, char const*)>("fopen")(path, mode);
}
FILE* fopen64(char const* path, char const* mode) { return fopen(path, mode); }
DIR* opendir(char const* path) { return fails(opening) ? nullptr : real<DIR*(char const*)>("opendir")(path); }
int open(char const* path, int flags, ...) {
  return fails(opening) ? -1 : real<int(char const*, int, ...)>("open")(path, flags, 0666);
}
char* getcwd(char* path, size_t size) noexcept {
  return fails(opening) ? nullptr : real<char*(char*, size_t)>("getcwd")(path, size);
}
ssize_t read(int file, void* bytes, size_t n) {
  return fails(reading) ? -1 : real<ssize_t(int, void*, size_t)>("read")(file, bytes, n);
}
dirent* readdir(DIR* directory) { return fails(reading) ? nullptr : real<dirent*(DIR*)>("readdir")(directory); }
ssize_t write(int file, void const* bytes, size_t n) {
  return fails(writing) ? -1 : real<ssize_t(int, void const*, size_t)>("write")(file, bytes, n);
}
ssize_t writev(int file, iovec const* parts, int n) {
  return fails(writing) ? -1 : real<ssize_t(int, iovec const*, int)>("writev")(file, parts, n);
}
int system(char const* command) {
  return std::string(command).ends_with("> oo") ? (put("oo", contents("entries")), 0) : 0;
}
}

namespace {

int descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<int>(std::distance(begin(all), end(all)));
}

std::string complaints; // of all runs of kindex

std::string run_kindex() {
  static char program[] = "kindex", name[] = "document";
  static char* arguments[] = {program, name, nullptr};
  const std::ostringstream said;
  std::streambuf* const standard_error = std::cerr.rdbuf(said.rdbuf());
  EXPECT_NO_THROW(EXPECT_EQ(kindex_main(2, arguments), 0));
  std::cerr.rdbuf(standard_error);
  complaints += said.str();
  return contents("kindex.tex");
}

std::string run_reader() {
  ASCII_FILE f("f0", 0);
  f.skip_comments = 0;
  std::string all;
  for (int i = 0; i < 30; ++i) {
    STRING token = f.getSTRING();
    if (token == "in") f.include_file();
    LIST<int> numbers;
    f.get(numbers, 0);
    STRING name;
    int line = 0;
    ASCII_FILE::get_file_info(name, line);
    all += (token + itoa(numbers.size) + f.getline() + name + itoa(line) + " ").str;
    all += token.clear_extra_space().cut_out('a').cut_out("b").getSTRING().str;
  }
  return all;
}

std::string run_binary_file() {
  OBIN_FILE f("binary", 36);
  write(f, "text");
  f.open("binary", 4);
  STRING s;
  read(f, s);
  return s.str;
}

std::string run_scanner() {
  STRING directory("tree");
  KDIR_SCANNER scanner;
  scanner.do_scan(directory);
  std::string all;
  for (int i = 0; i < scanner.found_files.size; ++i) {
    all += scanner.found_files[i].str;
    for (STRING const& name : *scanner.includes[i]) all += name.str;
  }
  return all;
}

std::string run_writers() {
  MAKE_LIB lib{"kutil", {}};
  lib.dirs.add("kutil");
  LIST<MAKE_LIB*> libs;
  libs.add(&lib);
  MAKE_PROJECT make;
  make.libs = &libs;
  SOURCE_DIR dir{{"kutil"}, {}};
  SOURCE_FILE file{{"Main.c"}, {}, &dir};
  LIST<SOURCE_DIR*> dirs;
  dirs.add(&dir);
  LIST<SOURCE_FILE*> files;
  files.add(&file);
  ECLIPSE_PROJECT eclipse;
  eclipse.file_name = "structure";
  eclipse.dirs = &dirs, eclipse.files = &files;
  make.splash(), eclipse.splash();
  return contents("kmakefile") + contents("structure");
}

/// Arms the n-th call of a kind, or for `none` the n-th allocation, to fail in `run`; whether it got so far.
bool fails_in(KIND kind, int n, std::string (*run)(), std::string& result) {
  failing = kind, until_failure = n;
  ALLOCATIONS::watching = kind == none, ALLOCATIONS::until_failure = kind == none ? n : -1;
  try {
    result = run();
  } catch (std::bad_alloc const&) {
    result = "no memory";
  }
  const bool failed = (kind == none ? ALLOCATIONS::until_failure : until_failure) <= 0;
  failing = none, ALLOCATIONS::watching = false, ALLOCATIONS::until_failure = -1;
  return failed;
}

TEST(Faults, LeaveNothingBehindWhicheverCallFails) {
  const SCRATCH_DIRECTORY scratch;
  COLLECTING_MESSAGER messager;
  const std::ostringstream progress;
  std::streambuf* const standard = std::cout.rdbuf(progress.rdbuf());
  put("entries", "{a*}{1}{a}{2}{" + std::string(5000, 'b') + "}{3}");
  put("f0",
      "#define K v\n 1 2 K in f1 x\n # 7 f x\n" + std::string(20000, ' ') + "y\n#define K " + std::string(600, 'v'));
  put("f1", "% c\ninner 3 4\nline");
  std::filesystem::create_directory("tree");
  put("tree/Main.c", "#include <A.h>\n" + std::string(3000, '\n') + "#include <B.h>\n#include <Unended.h>");
  const auto directory = std::filesystem::current_path();
  const int open_before = descriptors();
  for (auto* const run : {run_kindex, run_reader, run_binary_file, run_scanner, run_writers}) {
    const std::string expected = run();
    for (const KIND kind : {none, opening, reading, writing}) {
      std::string result;
      for (int n = 1; fails_in(kind, n, run, result); ++n) {
        EXPECT_EQ(std::filesystem::current_path(), directory);
        EXPECT_EQ(descriptors(), open_before) << kind << ' ' << n;
        ASSERT_LT(n, 2000);
      }
      EXPECT_EQ(result, expected);
      EXPECT_EQ(run(), expected) << kind;
    }
  }
  std::cout.rdbuf(standard);
  EXPECT_NE(complaints.find("kindex: out of memory\n"), std::string::npos);
  EXPECT_NE(complaints.find("kindex: cannot read oo\n"), std::string::npos);
}

TEST(Faults, KeepWhatAFileHoldsThatCannotBeReopened) {
  const SCRATCH_DIRECTORY scratch;
  ASCII_FILE f("file", 48);
  f << "precious" << std::flush;
  while (f.get() != EOF) continue;
  failing = opening, until_failure = 1;
  f.rewind();
  failing = none;
  EXPECT_TRUE(f.fail() && !f.ok);
  f.rewind();
  EXPECT_TRUE(f.getSTRING() == "precious" && contents("file") == "precious");
}

} // namespace
