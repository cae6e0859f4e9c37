#include <filesystem>
#include <fstream>
#include <iterator>

#include "bench/Comparison.h"
#include "lib/files/File.h"
#include "tests/Scratch_directory.h"

namespace {

constexpr int all_tokens = 300'000;

/// Files of short integers, written into the working directory: "tokens" and "tenth" (a tenth of it), ten to a line.
void write_files() {
  std::ofstream tokens("tokens"), tenth("tenth");
  for (int i = 0; i < all_tokens; ++i) {
    const std::string text = std::to_string(i * 79L % 10'007) + (i % 10 == 9 ? '\n' : ' ');
    tokens << text;
    if (i < all_tokens / 10) tenth << text;
  }
}

/// Reads the file `times` over with `read`, which reads one item, until that fails.
template <class FILE_TYPE, class READ>
auto whole(char const* path, int times, READ read) {
  return [=](benchmark::State& state) {
    for (auto _ : state) {
      for (int i = 0; i < times; ++i) {
        FILE_TYPE file(path, std::ios_base::in);
        while (read(file)) continue;
      }
    }
  };
}

bool token(ASCII_FILE& f) { return f.getSTRING(), f.ok; }
bool integer(ASCII_FILE& f) { return f.getint(), f.ok; }
bool line(ASCII_FILE& f) { return f.getline(), f.ok; }

bool standard_token(std::ifstream& f) {
  static std::string word;
  benchmark::DoNotOptimize(f.tellg());
  return static_cast<bool>(f >> word);
}

bool standard_line(std::ifstream& f) {
  static std::string text;
  benchmark::DoNotOptimize(f.tellg());
  return static_cast<bool>(std::getline(f, text));
}

auto locate_error(char const* path, int times) {
  return [=](benchmark::State& state) {
    ASCII_FILE file(path, 0);
    file.getSTRING();
    file.goto_position(static_cast<std::streamoff>(std::filesystem::file_size(path)) - 1);
    for (auto _ : state) {
      for (int i = 0; i < times; ++i) {
        STRING name;
        int number = 0;
        ASCII_FILE::get_file_info(name, number);
        benchmark::DoNotOptimize(number);
      }
    }
  };
}

void read_blocks(benchmark::State& state) {
  std::ifstream file("tokens");
  static char block[1 << 15];
  for (auto _ : state) {
    file.clear();
    file.seekg(0);
    while (file.read(block, sizeof block)) benchmark::DoNotOptimize(block[0]);
  }
}

template <class EDIT>
auto edit(std::size_t length, int times, EDIT change) {
  return [=](benchmark::State& state) {
    std::string text;
    while (text.size() < length) text += "a  b   c d";
    for (auto _ : state) {
      for (int i = 0; i < times; ++i) {
        STRING s(text.c_str());
        change(s);
        benchmark::DoNotOptimize(s);
      }
    }
  };
}

template <class OURS>
void compare_growth(std::string const& what, OURS ours) {
  compare(what + ", against ten times a tenth", ours("tokens", 1), ours("tenth", 10));
}

} // namespace

int main(int argc, char* argv[]) {
  const SCRATCH_DIRECTORY scratch;
  write_files();

  compare("300,000 tokens, getSTRING and tellg, >>", whole<ASCII_FILE>("tokens", 1, token),
          whole<std::ifstream>("tokens", 1, standard_token));
  compare("300,000 tokens, getint and getSTRING", whole<ASCII_FILE>("tokens", 1, integer),
          whole<ASCII_FILE>("tokens", 1, token));
  compare("30,000 lines, getline and tellg, std::getline", whole<ASCII_FILE>("tokens", 1, line),
          whole<std::ifstream>("tokens", 1, standard_line));
  compare("get_file_info at 2.3 MB and reading in blocks", locate_error("tokens", 1), read_blocks);
  compare_growth("getSTRING", [](char const* path, int times) { return whole<ASCII_FILE>(path, times, token); });
  compare_growth("getint", [](char const* path, int times) { return whole<ASCII_FILE>(path, times, integer); });
  compare_growth("getline", [](char const* path, int times) { return whole<ASCII_FILE>(path, times, line); });
  compare_growth("get_file_info", locate_error);
  const auto squeeze = [](STRING& s) { s.clear_extra_space(); };
  const auto cut = [](STRING& s) { s.cut_out(' '); };
  compare("clear_extra_space of 1 MB, against 10 x 100 KB", edit(1'000'000, 1, squeeze), edit(100'000, 10, squeeze));
  compare("cut_out of 1 MB, against 10 x 100 KB", edit(1'000'000, 1, cut), edit(100'000, 10, cut));
  return run_comparisons(argc, argv);
}
