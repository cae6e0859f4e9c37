#include <dirent.h>
#include <dlfcn.h>
#include <sys/uio.h>

#include <cerrno>

#include "tests/Model.h"

/// Whether this call is the one that has to fail.
static bool fails() {
  if (!FAULTS::possible || --FAULTS::calls_left != 0) return false;
  errno = EIO;
  return true;
}

/// The system's own function of that name.
template <class FUNCTION>
static FUNCTION* real(FUNCTION*, char const* name) {
  return reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
}

void* operator new(std::size_t size) {
  void* const p = fails() ? nullptr : std::malloc(size);
  if (p == nullptr) throw std::bad_alloc();
  FAULTS::bytes += size;
  ++FAULTS::live;
  return p;
}
void operator delete(void* p) noexcept {
  if (p != nullptr) --FAULTS::live;
  std::free(p);
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return operator new(size); }
void operator delete[](void* p) noexcept { operator delete(p); }
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }
void operator delete[](void* p, std::size_t) noexcept { operator delete(p); }

extern "C" {
FILE* fopen(char const* path, char const* mode) { return fails() ? nullptr : real(&fopen, "fopen")(path, mode); }
FILE* fopen64(char const* path, char const* mode) { return fopen(path, mode); }
int open(char const* path, int flags, ...) { return fails() ? -1 : real(&open, "open")(path, flags, 438); }
DIR* opendir(char const* path) { return fails() ? nullptr : real(&opendir, "opendir")(path); }
int chdir(char const* path) noexcept { // the way back always works
  return path[0] != '/' && fails() ? -1 : real(&chdir, "chdir")(path);
}
char* getcwd(char* path, size_t n) noexcept { return fails() ? nullptr : real(&getcwd, "getcwd")(path, n); }
dirent* readdir(DIR* listing) { return fails() ? nullptr : real(&readdir, "readdir")(listing); }
ssize_t read(int file, void* to, size_t n) {
  return fails() ? -1 : real<ssize_t(int, void*, size_t)>(&read, "read")(file, to, n);
}
ssize_t write(int file, void const* from, size_t n) {
  return fails() ? -1 : real<ssize_t(int, void const*, size_t)>(&write, "write")(file, from, n);
}
ssize_t writev(int file, iovec const* parts, int n) { return fails() ? -1 : real(&writev, "writev")(file, parts, n); }
int system(char const* command) {
  if (FAULTS::sorted == nullptr) return real(&system, "system")(command);
  std::string(command).starts_with("cat") ? put("oo", *FAULTS::sorted) : static_cast<void>(std::remove("oo"));
  return 0;
}
}
