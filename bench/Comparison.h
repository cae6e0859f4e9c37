#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// Registers what is measured and what it is measured against under one title; both run in turns, seven times each.
template <class OURS, class BASELINE>
void compare(std::string const& title, OURS ours, BASELINE baseline) {
  benchmark::RegisterBenchmark((title + "/ours").c_str(), ours)->UseRealTime()->Repetitions(7);
  benchmark::RegisterBenchmark((title + "/baseline").c_str(), baseline)->UseRealTime()->Repetitions(7);
}

/// Prints one line for each comparison: the medians in microseconds and their ratio.
class RATIO_REPORTER : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(Context const& /*context*/) override {
    std::printf("%-52s %12s %12s %7s\n", "median time in microseconds", "ours", "baseline", "ratio");
    return true;
  }

  void ReportRuns(std::vector<Run> const& runs) override {
    for (Run const& run : runs) {
      if (run.aggregate_name != "median") continue;
      const std::string& name = run.run_name.function_name;
      const auto slash = name.rfind('/');
      auto& times = medians[name.substr(0, slash)];
      (name.substr(slash + 1) == "ours" ? times.first : times.second) =
          1e6 * run.real_accumulated_time / static_cast<double>(run.iterations);
      const auto [ours, baseline] = times;
      if (ours > 0 && baseline > 0) {
        std::printf("%-52s %12.3f %12.3f %7.2f\n", name.substr(0, slash).c_str(), ours, baseline, ours / baseline);
      }
    }
  }

private:
  std::map<std::string, std::pair<double, double>> medians;
};

inline int run_comparisons(int argc, char* argv[]) {
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  arguments.push_back(interleaving.data());
  argc = static_cast<int>(arguments.size());
  benchmark::Initialize(&argc, arguments.data());
  RATIO_REPORTER reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
