#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>

#include "bench/Comparison.h"
#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"

namespace {

namespace fs = std::filesystem;

/// A make project whose executables refer to libraries with half of their 20 directories.
struct MAKE_INPUT {
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
    for (int i = 0; i < 2000 * scale; ++i) {
      file_list.add(&files.emplace_back());
      files.back().name = STRING("source_file") + itoa(i) + ".c";
      files.back().dir = &dirs[random() % dirs.size()];
    }
    project.file_name = "written";
    project.dirs = &dir_list;
    project.files = &file_list;
  }
};

void forget_files(MAKE_INPUT& /*input*/) {}
void forget_files(ECLIPSE_INPUT& input) {
  for (SOURCE_DIR& dir : input.dirs) dir.files.resize(0);
}

template <class INPUT>
auto write_project(std::shared_ptr<INPUT> input) {
  return [input](benchmark::State& state) {
    std::ofstream nowhere("/dev/null");
    std::streambuf* const output = std::cout.rdbuf(nowhere.rdbuf());
    for (auto _ : state) {
      input->project.create_project_file();
      state.PauseTiming();
      forget_files(*input);
      state.ResumeTiming();
    }
    std::cout.rdbuf(output);
  };
}

/// Writes the bytes that the project's file has.
template <class INPUT>
auto write_bytes(std::shared_ptr<INPUT> input) {
  return [input](benchmark::State& state) {
    std::ofstream nowhere("/dev/null");
    std::streambuf* const output = std::cout.rdbuf(nowhere.rdbuf());
    input->project.create_project_file();
    std::cout.rdbuf(output);
    forget_files(*input);
    std::string bytes(fs::file_size("written"), ' ');
    std::ifstream("written").read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    for (auto _ : state) std::ofstream("written").write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  };
}

template <class INPUT>
void compare_writing(std::string const& title) {
  const auto large = std::make_shared<INPUT>(100), small = std::make_shared<INPUT>(10);
  compare(title + " against its bytes", write_project(large), write_bytes(large));
  compare(title + " against a tenth of it", write_project(large), write_project(small));
}

constexpr int scanned_files = 2000;

void write_sources() {
  fs::create_directory("sources");
  for (int i = 0; i < scanned_files; ++i) {
    std::ofstream out("sources/file" + std::to_string(i) + ".c");
    for (int line = 0; line < 200; ++line) {
      if (line < 10) {
        out << "#include <kdirectory/header" << (i + line) % 500 << ".h>\n";
      } else {
        out << "  value[" << line << "] = compute(" << i << ", parameter, another_parameter);\n";
      }
    }
  }
}

void scan(benchmark::State& state) {
  for (auto _ : state) {
    KDIR_SCANNER scanner;
    scanner.all_names = true;
    STRING directory("sources");
    scanner.do_scan(directory);
  }
}

void make_include_lists() {
  BUFF_LIST<BUFF_LIST<STRING>*> lists(1024, 1024);
  for (int i = 0; i < scanned_files; ++i) lists.add(new BUFF_LIST<STRING>(1024, 1024));
  for (BUFF_LIST<STRING> const* list : lists) delete list;
}

void read_lines_and_make_lists(benchmark::State& state) {
  for (auto _ : state) {
    std::string line;
    for (auto const& entry : fs::directory_iterator("sources")) {
      std::ifstream in(entry.path());
      while (std::getline(in, line)) benchmark::DoNotOptimize(line.data());
    }
    make_include_lists();
  }
}

void make_lists(benchmark::State& state) {
  for (auto _ : state) make_include_lists();
}

} // namespace

int main(int argc, char* argv[]) {
  std::string name = (fs::temp_directory_path() / "kindex-bench-XXXXXX").string();
  const fs::path scratch = mkdtemp(name.data());
  fs::current_path(scratch);
  write_sources();
  compare_writing<MAKE_INPUT>("make file of 2500 targets");
  compare_writing<ECLIPSE_INPUT>("Eclipse file of 200000 sources");
  compare("scan of 2000 files against lines and lists", scan, read_lines_and_make_lists);
  compare("scan of 2000 files against its lists alone", scan, make_lists);
  run_comparisons(argc, argv);
  fs::current_path("/");
  fs::remove_all(scratch);
  return 0;
}
