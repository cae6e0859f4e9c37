#include <deque>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>

#include "bench/Measuring.h"
#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"

namespace {

STRING numbered(char const* name, int number) { return STRING(name) + itoa(number); }

/// Nodes whose names are `name` and their number.
template <class NODE>
struct NODES : BUFF_LIST<NODE*> {
  std::deque<NODE> nodes;

  NODES(char const* name, int count) : BUFF_LIST<NODE*>(count), nodes(static_cast<std::size_t>(count)) {
    for (NODE& node : nodes) {
      node.name = numbered(name, this->size);
      this->add(&node);
    }
  }
};

/// Libraries, and a quarter as many executables, of 20 directories each. Half of an executable's are libraries.
struct MAKE_INPUT {
  NODES<MAKE_LIB> libs;
  NODES<MAKE_TARGET> targets;
  MAKE_PROJECT project;

  explicit MAKE_INPUT(int count) : libs("klibrary", count * 4 / 5), targets("kprogram", count / 5) {
    for (int i = 0; i < 20 * libs.size; ++i) libs[i / 20]->dirs.add(numbered("ksource", i));
    for (int i = 0; i < 20 * targets.size; ++i) {
      targets[i / 20]->dirs.add(i % 2 == 0 ? libs[i * 7919 % libs.size]->name : numbered("kmain", i));
    }
    project.libs = &libs;
    project.targets = &targets;
  }
};

/// 100 files a directory, in random order.
struct ECLIPSE_INPUT {
  NODES<SOURCE_DIR> dirs;
  NODES<SOURCE_FILE> files;
  ECLIPSE_PROJECT project;

  explicit ECLIPSE_INPUT(int count) : dirs("kdirectory", count / 100), files("source_file.c", count) {
    for (int i = 0; i < count; ++i) files[i]->dir = dirs[i / 100];
    std::shuffle(files.begin(), files.end(), std::mt19937(1));
    project.dirs = &dirs;
    project.files = &files;
  }
};

template <class INPUT>
auto write_project(int count) {
  const auto input = std::make_shared<INPUT>(count);
  input->project.file_name = "written";
  return [input] {
    std::cout.setstate(std::ios_base::failbit); // no progress lines
    input->project.create_project_file();
    std::cout.clear();
    if constexpr (requires { input->dirs; }) {
      for (SOURCE_DIR* dir : input->dirs) dir->files.resize(0);
    }
  };
}

/// Sources of 200 lines, ten of them includes.
auto scan_sources(int count) {
  std::string lines;
  for (int i = 0; i < 200; ++i)
    lines += i < 10 ? "#include <kdirectory/header.h>\n" : "  value = compute(parameter);\n";
  std::filesystem::create_directory("sources");
  for (int i = 0; i < count; ++i) std::ofstream("sources/" + std::to_string(i) + ".c") << lines;
  return [] {
    KDIR_SCANNER scanner;
    scanner.all_names = true;
    STRING directory("sources");
    scanner.do_scan(directory);
  };
}

} // namespace

int main(int argc, char* argv[]) {
  return run_benchmarks(argc, argv, [] {
    grow("make file", 25, 2500, write_project<MAKE_INPUT>);
    grow("Eclipse file", 2000, 200'000, write_project<ECLIPSE_INPUT>);
    grow("scan", 20, 2000, scan_sources);
  });
}
