#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

/// Registers work and what it is measured against. Both run in turns; the counters show the least time of each, in
/// seconds, and their ratio.
template <class OURS, class BASELINE>
benchmark::internal::Benchmark* compare(std::string const& title, OURS ours, BASELINE baseline) {
  const auto seconds = [](auto const& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  const auto run = [=](benchmark::State& state) {
    double least = HUGE_VAL, baseline_least = HUGE_VAL;
    for (auto _ : state) {
      const double time = seconds(ours);
      least = std::min(least, time);
      baseline_least = std::min(baseline_least, seconds(baseline));
      state.SetIterationTime(time);
    }
    state.counters = {{"ours", least}, {"against", baseline_least}, {"ratio", least / baseline_least}};
  };
  return benchmark::RegisterBenchmark(title.c_str(), run)->UseManualTime()->Unit(benchmark::kMillisecond);
}

/// Registers work of sizes from `first` to `last`, each ten times the one before. `prepare` gets a size and returns
/// what is to be timed, after a run that fills the caches and the pool; the counter shows the seconds for one item.
template <class PREPARE>
void grow(std::string const& title, int first, int last, PREPARE prepare) {
  const auto run = [=](benchmark::State& state) {
    const auto n = state.range();
    const auto work = prepare(static_cast<int>(n));
    work();
    for (auto _ : state) work();
    using C = benchmark::Counter;
    state.counters["item"] = C(static_cast<double>(n), C::kIsIterationInvariantRate | C::kInvert);
  };
  auto* const sizes = benchmark::RegisterBenchmark(title.c_str(), run)->UseRealTime()->Unit(benchmark::kMillisecond);
  for (int n = first; n <= last; n *= 10) sizes->Arg(n);
}

/// Runs what `add_benchmarks` registers, in a new directory that is gone afterwards.
inline int run_benchmarks(int argc, char* argv[], void (*add_benchmarks)()) {
  namespace fs = std::filesystem;
  std::string scratch = (fs::temp_directory_path() / "kindex-XXXXXX").string();
  if (mkdtemp(scratch.data()) == nullptr) return 1;
  fs::current_path(scratch);
  add_benchmarks();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  fs::current_path("/");
  fs::remove_all(scratch);
  return 0;
}
