#include "kmakeindex/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "kmakeindex/Messages.h"

namespace fs = std::filesystem;

namespace {

/// An open file, which is closed at the end of its scope.
struct DESCRIPTOR {
  int file;
  explicit DESCRIPTOR(int opened) : file(opened) {}
  DESCRIPTOR(DESCRIPTOR const&) = delete;
  DESCRIPTOR& operator=(DESCRIPTOR const&) = delete;
  ~DESCRIPTOR() { close(file); }
};

[[noreturn]] void fail(std::string const& what) { throw FAILURE("kmakeindex: " + what + ": " + std::strerror(errno)); }

std::string read_all(int file, std::string const& name) {
  std::string text;
  struct stat status = {};
  constexpr std::size_t block = 1U << 16U;
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode))
    text.reserve(static_cast<std::size_t>(status.st_size) + block);
  for (std::size_t size = 0;;) {
    text.resize(size + block);
    const ssize_t count = read(file, text.data() + size, block);
    if (count < 0) fail("cannot read " + name);
    size += static_cast<std::size_t>(count);
    text.resize(size);
    if (count == 0) return text;
  }
}

void write_all(int file, std::string const& name, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file, text.data(), text.size());
    if (count < 0) fail("cannot write " + name);
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

/// The mode that a new file gets.
mode_t usual_mode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

} // namespace

bool is_file(std::string const& path) {
  std::error_code unknown;
  return fs::exists(path, unknown) && !fs::is_directory(path, unknown);
}

std::string read_file(std::string const& path) {
  const DESCRIPTOR opened(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (opened.file < 0) fail("cannot read " + path);
  return read_all(opened.file, path);
}

std::string read_input() { return read_all(STDIN_FILENO, "standard input"); }

void write_output(std::string_view text) { write_all(STDOUT_FILENO, "standard output", text); }

void write_file(std::string const& path, std::string_view text) {
  struct stat old = {};
  const bool is_there = stat(path.c_str(), &old) == 0;
  std::error_code error;
  const std::string target = fs::weakly_canonical(path, error).string();
  const bool is_device =
      fs::absolute(path, error).lexically_normal().string().starts_with("/dev/"); // also if a file is behind it
  if (is_device || (is_there && !S_ISREG(old.st_mode))) {
    const DESCRIPTOR opened(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    if (opened.file < 0) fail("cannot write " + path);
    return write_all(opened.file, path, text);
  }
  if (target.empty() || (is_there && access(path.c_str(), W_OK) != 0)) fail("cannot write " + path);
  std::string temporary = target + ".XXXXXX";
  const DESCRIPTOR opened(mkostemp(temporary.data(), O_CLOEXEC));
  if (opened.file < 0) fail("cannot write " + path);
  try {
    write_all(opened.file, path, text);
    fchmod(opened.file, is_there ? old.st_mode & 07777 : usual_mode());
    if (std::rename(temporary.c_str(), target.c_str()) != 0) fail("cannot write " + path);
  } catch (FAILURE const&) {
    unlink(temporary.c_str());
    throw;
  }
}
