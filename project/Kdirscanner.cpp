#include "project/Kdirscanner.h"

#include <dirent.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Makes `dir` the working directory for as long as this object lives, unless the one before cannot be saved.
class WORKING_DIRECTORY {
public:
  explicit WORKING_DIRECTORY(char const* dir) : entered(getcwd(before, sizeof before) != nullptr && chdir(dir) == 0) {}
  WORKING_DIRECTORY(WORKING_DIRECTORY const&) = delete;
  WORKING_DIRECTORY& operator=(WORKING_DIRECTORY const&) = delete;
  ~WORKING_DIRECTORY() {
    if (entered) static_cast<void>(chdir(before) == 0);
  }

  bool is_entered() const { return entered; }

private:
  char before[2048];
  bool entered;
};

using SUFFIXES = std::vector<std::string_view>;

/// The suffixes to look for, in this order.
SUFFIXES suffixes_of(bool headers, bool fortran) {
  if (headers && fortran) return {".h", ".f", ".F"};
  if (headers) return {".h"};
  if (fortran) return {".f", ".F"};
  return {".c", ".k"};
}

/// Whether the first of the suffixes that occurs in the name at all occurs first at its end.
bool matches(std::string_view name, SUFFIXES const& suffixes) {
  for (const std::string_view suffix : suffixes) {
    const std::size_t found = name.find(suffix);
    if (found != std::string_view::npos) return found + suffix.size() == name.size();
  }
  return false;
}

/// The name that a line includes with angle brackets, at most 1023 characters of it; none without "#include" or without
/// a '>' after it. Blanks do not count, and a '>' before any '<' ends an empty name.
std::optional<std::string> included_by(std::string_view line) {
  constexpr std::string_view directive = "#include";
  constexpr std::size_t longest = 1023;
  const std::size_t found = line.find(directive);
  if (found == std::string_view::npos) return {};
  std::string name;
  bool inside = false;
  for (const char c : line.substr(found + directive.size())) {
    if (c == '>') return name;
    if (c == '<') {
      inside = true;
    } else if (inside && c != ' ' && name.size() < longest) {
      name += c;
    }
  }
  return {};
}

} // namespace

char* basename(char* path) noexcept {
  char* const slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

KDIR_SCANNER::~KDIR_SCANNER() { reset(); }

void KDIR_SCANNER::reset() {
  found_files.resize(0);
  for (BUFF_LIST<STRING>* names : includes) delete names;
  includes.resize(0);
}

bool KDIR_SCANNER::is_wanted(char const* name) const { return all_names || (*name >= 'A' && *name <= 'Z'); }

void KDIR_SCANNER::read_includes(char const* file_name, BUFF_LIST<STRING>& names) const {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file_name, ignored)) return; // opening a pipe would wait for its writer
  std::ifstream file(file_name);
  char line[4096];
  while (file.good()) {
    file.getline(line, sizeof line);
    if (file.eof() || file.bad()) return; // a line counts only with its end; one too long counts as far as it fits
    const auto length = static_cast<std::size_t>(file.gcount()) - (file.fail() ? 0 : 1);
    if (auto name = included_by({line, length})) {
      char const* const text = basename(name->data());
      if (is_wanted(text)) names.add(text);
    }
  }
}

void KDIR_SCANNER::do_scan(STRING& dir) {
  reset();
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(dir.str), closedir);
  if (listing == nullptr) return;
  const WORKING_DIRECTORY inside(dir.str);
  if (!inside.is_entered()) return;

  const SUFFIXES suffixes = suffixes_of(scan_headers, fortran);
  while (dirent* const entry = readdir(listing.get())) {
    if (!matches(entry->d_name, suffixes) || !is_wanted(entry->d_name)) continue;
    found_files.add(entry->d_name);
    if (skip_includes) continue;
    auto names = std::make_unique<BUFF_LIST<STRING>>(1024, 1024);
    includes.add(names.get());
    read_includes(entry->d_name, *names.release());
  }
}
