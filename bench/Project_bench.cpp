#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "bench/Comparison.h"
#include "bench/Project_inputs.h"
#include "project/Kdirscanner.h"
#include "tests/Scratch_directory.h"

namespace {

namespace fs = std::filesystem;

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
  const SCRATCH_DIRECTORY scratch;
  write_sources();
  compare_writing<MAKE_INPUT>("make file of 2500 targets");
  compare_writing<ECLIPSE_INPUT>("Eclipse file of 200000 sources");
  compare("scan of 2000 files against lines and lists", scan, read_lines_and_make_lists);
  compare("scan of 2000 files against its lists alone", scan, make_lists);
  run_comparisons(argc, argv);
  return 0;
}
