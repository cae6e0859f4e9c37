#include "project/Eclipse_project.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "project/Elements.h"
#include "project/Text_writer.h"

namespace {

[[noreturn]] void fail_without_directory(SOURCE_FILE const& file) {
  std::cerr << "Error, cannot find source dir named: " << file.dir->name << " (for file: " << file.name << ")\n";
  std::exit(EXIT_FAILURE);
}

/// Finds the project's directories by the names of nodes. Names are read only of nodes that it does not remember:
/// without that, and without fetching files ahead of their turn, writing a large project takes more than twice the
/// time.
class DIRECTORY_FINDER {
public:
  explicit DIRECTORY_FINDER(std::span<SOURCE_DIR*> dirs) : remembered(std::size_t{1} << index_bits) {
    for (SOURCE_DIR* dir : dirs) by_name.emplace(dir->name.str, dir); // the first of a name stays
  }

  /// The first directory with the name of the file's own; without one the process ends.
  SOURCE_DIR* find(SOURCE_FILE const& file) {
    NODE& node = remembered[reinterpret_cast<std::uintptr_t>(file.dir) * spreading_factor >> (64 - index_bits)];
    if (node.asked_for != file.dir) {
      const auto found = by_name.find(file.dir->name.str);
      if (found == by_name.end()) fail_without_directory(file);
      node = {file.dir, found->second};
    }
    return node.found;
  }

private:
  struct NODE {
    SOURCE_DIR const* asked_for = nullptr;
    SOURCE_DIR* found = nullptr;
  };

  static constexpr int index_bits = 14;
  static constexpr std::uint64_t spreading_factor = 0x9E3779B97F4A7C15; // 2^64 by the golden ratio

  std::unordered_map<std::string_view, SOURCE_DIR*> by_name;
  std::vector<NODE> remembered; // where one node's index is another's, the latter replaces it
};

template <class T>
int count_of(ARRAY<T> const& list) {
  return std::max(list.size, 0);
}

void write_refs(TEXT_WRITER& out, LIST<NAMED_NODE*>& refs) {
  out << count_of(refs) << '\n';
  for (NAMED_NODE const* node : refs) out << node->name << '\n';
}

/// Files and their names lie anywhere in memory. Asked for this many places before their turn, they are there in time.
constexpr std::size_t file_lead = 32;
constexpr std::size_t name_lead = 16;

void fetch_file(std::span<SOURCE_FILE*> files, std::size_t i) {
  if (i >= files.size()) return;
  __builtin_prefetch(files[i]);
  __builtin_prefetch(&files[i]->dir);
}

void fetch_name(std::span<SOURCE_FILE*> files, std::size_t i) {
  if (i < files.size()) fetch_early(files[i]->name);
}

void assign(std::span<SOURCE_FILE*> files, std::span<SOURCE_DIR*> dirs) {
  DIRECTORY_FINDER finder(dirs);
  for (std::size_t i = 0; i < files.size(); ++i) {
    fetch_file(files, i + file_lead);
    finder.find(*files[i])->files.add(files[i]);
  }
}

void write_files(TEXT_WRITER& out, std::span<SOURCE_FILE*> files) {
  for (std::size_t i = 0; i < file_lead; ++i) fetch_file(files, i);
  for (std::size_t i = 0; i < name_lead; ++i) fetch_name(files, i);
  for (std::size_t i = 0; i < files.size(); ++i) {
    fetch_file(files, i + file_lead);
    fetch_name(files, i + name_lead);
    out << files[i]->name << '\n';
    write_refs(out, files[i]->refs);
  }
}

} // namespace

void ECLIPSE_PROJECT::splash() { create_project_file(); }

void ECLIPSE_PROJECT::create_project_file() {
  const auto all_dirs = elements(dirs);
  const auto all_files = elements(files);
  TEXT_WRITER out(file_name.str);
  out << static_cast<int>(all_dirs.size()) << '\n';
  for (SOURCE_DIR const* dir : all_dirs) out << dir->name << '\n';

  const auto is_empty = [](SOURCE_DIR const* dir) { return dir->files.size <= 0; };
  if (std::any_of(all_dirs.begin(), all_dirs.end(), is_empty)) {
    out.flush(); // the process may end in there
    assign(all_files, all_dirs);
  }

  for (SOURCE_DIR* dir : all_dirs) {
    write_refs(out, dir->refs);
    out << count_of(dir->files) << '\n';
    write_files(out, elements(&dir->files));
  }
}
