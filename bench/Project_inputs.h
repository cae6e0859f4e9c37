#pragma once

#include <deque>
#include <random>

#include "project/Eclipse_project.h"
#include "project/Make_project.h"

/// A make project whose executables refer to libraries with half of their 20 directories.
struct MAKE_INPUT {
  static constexpr int items = 25; // libraries and executables for each unit of scale

  std::deque<MAKE_LIB> libs;
  std::deque<MAKE_TARGET> targets;
  BUFF_LIST<MAKE_LIB*> lib_list;
  BUFF_LIST<MAKE_TARGET*> target_list;
  MAKE_PROJECT project;

  explicit MAKE_INPUT(int scale) {
    std::mt19937 random(1);
    const auto name = [](char const* kind, auto number) { return STRING(kind) + itoa(static_cast<int>(number)); };
    const auto lib_count = 20U * static_cast<unsigned>(scale), target_count = 5U * static_cast<unsigned>(scale);
    for (unsigned i = 0; i < lib_count; ++i) {
      lib_list.add(&libs.emplace_back());
      libs.back().name = name("klibrary", i);
      for (unsigned j = 0; j < 20; ++j) libs.back().dirs.add(name("ksource", 20 * i + j));
    }
    for (unsigned i = 0; i < target_count; ++i) {
      target_list.add(&targets.emplace_back());
      targets.back().name = name("kprogram", i);
      for (unsigned j = 0; j < 20; ++j) {
        targets.back().dirs.add(j % 2 == 0 ? name("klibrary", random() % lib_count) : name("kmain", 20 * i + j));
      }
    }
    project.file_name = "written";
    project.libs = &lib_list;
    project.targets = &target_list;
  }
};

/// An Eclipse project of 100 files a directory, in random order.
struct ECLIPSE_INPUT {
  static constexpr int items = 2000; // files for each unit of scale

  std::deque<SOURCE_DIR> dirs;
  std::deque<SOURCE_FILE> files;
  BUFF_LIST<SOURCE_DIR*> dir_list{16, 1024};
  BUFF_LIST<SOURCE_FILE*> file_list{16, 65536};
  ECLIPSE_PROJECT project;

  explicit ECLIPSE_INPUT(int scale) {
    std::mt19937 random(1);
    for (int i = 0; i < 20 * scale; ++i) {
      dir_list.add(&dirs.emplace_back());
      dirs.back().name = STRING("kdirectory") + itoa(i);
    }
    for (int i = 0; i < items * scale; ++i) {
      file_list.add(&files.emplace_back());
      files.back().name = STRING("source_file") + itoa(i) + ".c";
      files.back().dir = &dirs[random() % dirs.size()];
    }
    project.file_name = "written";
    project.dirs = &dir_list;
    project.files = &file_list;
  }
};

inline void forget_files(MAKE_INPUT& /*input*/) {}
inline void forget_files(ECLIPSE_INPUT& input) {
  for (SOURCE_DIR& dir : input.dirs) dir.files.resize(0);
}
