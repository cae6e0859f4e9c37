#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "bench/Comparison.h"
#include "bench/Project_inputs.h"
#include "lib/files/File.h"
#include "tests/Scratch_directory.h"

namespace {

namespace fs = std::filesystem;

/// Registers `work` for sizes from `first` to `last`, each ten times the one before. `prepare` gets a size and gives
/// what is to be timed.
template <class PREPARE>
void measure(std::string const& subject, int first, int last, PREPARE prepare) {
  for (int n = first; n <= last; n *= 10) {
    const auto run = [=](benchmark::State& state) {
      const auto work = prepare(n);
      for (auto _ : state) work();
    };
    benchmark::RegisterBenchmark((subject + "/" + std::to_string(n)).c_str(), run)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(0.05)
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  }
}

void write_entries(int n) {
  std::ofstream out("document.idx");
  for (long i = 0; i < n; ++i)
    out << "\\indexentry{key" << i * 7919 % (n / 20 + 1) << "}{" << 1 + i * 104729 % 499 << "}\n";
}

/// Short tokens, ten to a line.
void write_tokens(int n) {
  std::ofstream out("tokens");
  for (long i = 0; i < n; ++i) out << i * 79 % 10007 << (i % 10 == 9 ? '\n' : ' ');
}

template <class READ>
auto read_file(READ read) {
  return [read](int n) {
    write_tokens(n);
    return [read] {
      ASCII_FILE file("tokens", 0);
      while (read(file), file.ok) continue;
    };
  };
}

auto locate_end(int n) {
  write_tokens(n);
  return [file = std::make_shared<ASCII_FILE>("tokens", 0)] {
    file->rewind();
    file->getSTRING();
    file->goto_position(static_cast<std::streamoff>(fs::file_size("tokens")) - 1);
    STRING name;
    int line = 0;
    ASCII_FILE::get_file_info(name, line);
  };
}

auto squeeze(int n) {
  return [text = STRING(std::string(static_cast<std::size_t>(n), ' ').append("x").c_str())] {
    STRING copy(text);
    copy.clear_extra_space();
    benchmark::DoNotOptimize(copy);
  };
}

template <class INPUT>
auto write_project(int n) {
  return [input = std::make_shared<INPUT>(n / INPUT::items)] {
    input->project.create_project_file();
    forget_files(*input);
  };
}

/// Prints a line for each size: the subject, the size, and the median time for one item in microseconds.
class GROWTH_REPORTER : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(Context const& /*context*/) override { return true; }

  void ReportRuns(std::vector<Run> const& runs) override {
    for (Run const& run : runs) {
      if (run.aggregate_name != "median") continue;
      const std::string& title = run.run_name.function_name;
      const auto slash = title.rfind('/');
      const std::string size = title.substr(slash + 1);
      const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
      std::printf("%s\t%s\t%.6f\n", title.substr(0, slash).c_str(), size.c_str(), 1e6 * seconds / std::stod(size));
    }
    std::fflush(stdout);
  }
};

} // namespace

int main(int argc, char* argv[]) {
  setenv("LC_ALL", "C", 1);
  const SCRATCH_DIRECTORY scratch;
  const std::ofstream nowhere("/dev/null");
  std::streambuf* const output = std::cout.rdbuf(nowhere.rdbuf());

  measure("entries, kindex", 1000, 1'000'000, [](int n) {
    write_entries(n);
    return [] { benchmark::DoNotOptimize(std::system("'" KINDEX "' document")); };
  });
  measure("entries, cat and sort", 1000, 1'000'000, [](int n) {
    write_entries(n);
    return [] { benchmark::DoNotOptimize(std::system("cat document.idx | sort -f > oo")); };
  });
  measure("tokens, getSTRING", 1000, 10'000'000, read_file([](ASCII_FILE& f) { f.getSTRING(); }));
  measure("tokens, getline", 1000, 10'000'000, read_file([](ASCII_FILE& f) { f.getline(); }));
  measure("tokens, get_file_info behind them", 1000, 10'000'000, locate_end);
  measure("blanks, clear_extra_space", 1000, 10'000'000, squeeze);
  measure("files, Eclipse writer", 2000, 200'000, write_project<ECLIPSE_INPUT>);
  measure("targets, make file writer", 25, 2500, write_project<MAKE_INPUT>);

  benchmark::Initialize(&argc, argv);
  GROWTH_REPORTER reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::cout.rdbuf(output);
  return 0;
}
