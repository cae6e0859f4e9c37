#include "project/Eclipse_project.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <span>
#include <string_view>
#include <unordered_map>

#include "project/Elements.h"

namespace {

[[noreturn]] void fail_without_directory(SOURCE_FILE const& file) {
  std::cerr << "Error, cannot find source dir named: " << file.dir->name << " (for file: " << file.name << ")\n";
  std::exit(EXIT_FAILURE);
}

void assign_files(std::span<SOURCE_DIR*> dirs, std::span<SOURCE_FILE*> files) {
  std::unordered_map<std::string_view, SOURCE_DIR*> by_name;
  for (SOURCE_DIR* dir : dirs) by_name.emplace(dir->name.str, dir); // the first of a name stays
  for (SOURCE_FILE* file : files) {
    const auto found = by_name.find(file->dir->name.str);
    if (found == by_name.end()) fail_without_directory(*file);
    found->second->files.add(file);
  }
}

void write_refs(std::ostream& out, LIST<NAMED_NODE*>& refs) {
  out << elements(&refs).size() << '\n';
  for (NAMED_NODE const* node : refs) out << node->name << '\n';
}

} // namespace

void ECLIPSE_PROJECT::splash() { create_project_file(); }

void ECLIPSE_PROJECT::create_project_file() {
  const auto all_dirs = elements(dirs);
  const auto all_files = elements(files);
  std::ofstream out(file_name.str);
  out << all_dirs.size() << '\n';
  for (SOURCE_DIR const* dir : all_dirs) out << dir->name << '\n';

  const auto is_empty = [](SOURCE_DIR const* dir) { return dir->files.size <= 0; };
  if (std::any_of(all_dirs.begin(), all_dirs.end(), is_empty)) assign_files(all_dirs, all_files);

  for (SOURCE_DIR* dir : all_dirs) {
    write_refs(out, dir->refs);
    out << elements(&dir->files).size() << '\n';
    for (SOURCE_FILE* file : dir->files) {
      out << file->name << '\n';
      write_refs(out, file->refs);
    }
  }
}
