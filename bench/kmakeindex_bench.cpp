#include <sys/resource.h>

#include <fstream>
#include <random>

#include "bench/Measuring.h"

namespace {

/// Writes entries with one of `count` first words and as many second ones, or each with a number of its own.
void write_index(char const* path, int entries, unsigned count, bool different) {
  static char const* const syllables[] = {"ka", "ro", "min", "ta", "lus", "per", "con", "ve", "ni", "sol", "der", "Re"};
  std::mt19937 draw(1);
  std::ofstream out(path);
  for (int i = 0; i < entries; ++i) {
    out << "\\indexentry{ma";
    for (auto n = draw() % count; n > 0; n /= 12) out << syllables[n % 12];
    out << " te";
    for (auto n = draw() % count; n > 0; n /= 12) out << syllables[n % 12];
    if (different) out << i;
    out << "}{" << 1 + i / (entries / 900 + 1) << "}\n";
  }
}

auto index(std::string const& program, std::string const& name) {
  return [=] {
    if (std::system(("'" + program + "' -q " + name).c_str()) != 0) std::abort();
  };
}

/// The most memory that a run so far has taken: to be measured in the order in which it grows.
void measure_memory(std::string const& name) {
  const auto run = [=](benchmark::State& state) {
    for (auto _ : state) index(KMAKEINDEX, name)();
    rusage used{};
    getrusage(RUSAGE_CHILDREN, &used);
    state.counters["MB"] = static_cast<double>(used.ru_maxrss) / 1000;
  };
  benchmark::RegisterBenchmark(("memory, " + name).c_str(), run)->Iterations(1);
}

} // namespace

int main(int argc, char* argv[]) {
  return run_benchmarks(argc, argv, [] {
    setenv("LC_ALL", "C", 1);
    write_index("keys.idx", 1'000'000, 200, false);
    write_index("different.idx", 1'000'000, 200, true);
    write_index("document.idx", 16'000, 60, false);
    for (auto const* name : {"keys", "different"}) measure_memory(name);
    for (auto const* name : {"keys", "different", "document"})
      compare(name, index(KMAKEINDEX, name), index("makeindex", name))->Iterations(3);
  });
}
