#include <sys/resource.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "bench/Comparison.h"
#include "tests/Scratch_directory.h"

namespace {

namespace fs = std::filesystem;

/// An index of 1,000,000 entries over 40,000 keys of one to three words, a tenth of them marked.
void write_index(char const* path) {
  static char const* const syllables[] = {"ka", "ro",  "min", "ta", "lus", "per", "con", "ve",
                                          "ni", "sol", "der", "ex", "am",  "pli", "fi",  "Re"};
  std::mt19937 random(1);
  std::vector<std::string> keys(40000);
  for (std::string& key : keys) {
    for (auto words = 1 + random() % 3; words > 0; --words) {
      if (!key.empty()) key += ' ';
      for (auto parts = 2 + random() % 3; parts > 0; --parts) key += syllables[random() % std::size(syllables)];
    }
  }
  std::ofstream out(path);
  for (int i = 0; i < 1000000; ++i) {
    out << "\\indexentry{" << keys[random() % keys.size()] << (random() % 10 == 0 ? "*" : "") << "}{"
        << 1 + random() % 900 << "}\n";
  }
}

auto shell(std::string const& command) {
  return [command](benchmark::State& state) {
    for (auto _ : state) {
      if (std::system(command.c_str()) != 0) state.SkipWithError("the command failed");
    }
  };
}

/// Runs kindex from this process, which must be a small one: a program is charged what its parent held as well.
int print_peak_memory() {
  if (std::system("'" KINDEX "' empty") != 0) return 1;
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  std::printf("peak memory of kindex, a shell included: %ld kB\n", usage.ru_maxrss);
  return 0;
}

} // namespace

int main(int argc, char* argv[]) {
  if (argc > 1 && argv[1] == std::string("--peak")) return print_peak_memory();
  const std::string self = fs::absolute(argv[0]).string();
  setenv("LC_ALL", "C", 1);
  const SCRATCH_DIRECTORY scratch;
  write_index("big.idx");
  if (std::system("sort -f big.idx > sorted") != 0) return 1;
  fs::create_directory("bin");
  std::ofstream("bin/sort") << "#!/bin/sh\nexec cat sorted\n";
  fs::permissions("bin/sort", fs::perms::owner_all);
  std::ofstream("empty.idx");

  const double megabytes = static_cast<double>(fs::file_size("sorted")) / 1e6;
  std::printf("%.1f MB of sorted input\n", megabytes);
  compare("whole run against cat and sort", shell("'" KINDEX "' big"), shell("cat big.idx | sort -f > oo"));
  const std::string with_sort = "PATH=$PWD/bin:$PATH; export PATH; ";
  compare("run with a sort that copies, against that copy", shell(with_sort + "'" KINDEX "' empty"),
          shell(with_sort + "cat empty.idx | sort -f > oo"));
  run_comparisons(argc, argv);
  if (std::system((with_sort + "'" + self + "' --peak").c_str()) != 0) return 1;

  return 0;
}
