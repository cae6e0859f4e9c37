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

void assign(std::span<SOURCE_FILE*> files, std::span<SOURCE_DIR*> dirs) {
  std::unordered_map<std::string_view, SOURCE_DIR*> by_name;
  for (SOURCE_DIR* dir : dirs) by_name.emplace(dir->name.str, dir); // the first of a name stays
  for (SOURCE_FILE* file : files) {
    const auto found = by_name.find(file->dir->name.str);
    if (found == by_name.end()) fail_without_directory(*file);
    found->second->files.add(file);
  }
}

template <class NODE>
void write_names(std::ostream& out, std::span<NODE*> nodes) {
  out << nodes.size() << '\n';
  for (NODE const* node : nodes) out << node->name << '\n';
}

} // namespace

void ECLIPSE_PROJECT::splash() { create_project_file(); }

void ECLIPSE_PROJECT::create_project_file() {
  std::ofstream out(file_name.str);
  write(out);
}

void ECLIPSE_PROJECT::write(std::ostream& out) {
  const auto all_dirs = elements(dirs);
  const auto all_files = elements(files);
  write_names(out, all_dirs);

  const auto is_empty = [](SOURCE_DIR const* dir) { return dir->files.size <= 0; };
  if (std::any_of(all_dirs.begin(), all_dirs.end(), is_empty)) {
    out.flush(); // the process may end in there
    assign(all_files, all_dirs);
  }

  for (SOURCE_DIR* dir : all_dirs) {
    write_names(out, elements(&dir->refs));
    const auto own_files = elements(&dir->files);
    out << own_files.size() << '\n';
    for (SOURCE_FILE* file : own_files) {
      out << file->name << '\n';
      write_names(out, elements(&file->refs));
    }
  }
}
