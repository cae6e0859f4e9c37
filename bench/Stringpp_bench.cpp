#include "lib/strings/Stringpp.h"

#include "bench/Comparison.h"

namespace {

template <class TEXT>
auto make_copy_and_drop(std::size_t length) {
  return [length](benchmark::State& state) {
    const std::string source(length, 'x');
    for (auto _ : state) {
      TEXT made(source.c_str());
      benchmark::DoNotOptimize(made);
      TEXT copied(made);
      benchmark::DoNotOptimize(copied);
    }
  };
}

template <class TEXT>
auto join(std::size_t length) {
  return [length](benchmark::State& state) {
    const TEXT left(std::string(length / 2, 'x').c_str());
    const TEXT right(std::string(length - length / 2, 'y').c_str());
    for (auto _ : state) {
      TEXT joined = left + right;
      benchmark::DoNotOptimize(joined);
    }
  };
}

} // namespace

int main(int argc, char* argv[]) {
  for (const std::size_t length : {4U, 15U, 16U, 50U, 100U, 250U, 500U}) {
    const std::string title = std::to_string(length) + " characters, ";
    compare(title + "make, copy and drop", make_copy_and_drop<STRING>(length), make_copy_and_drop<std::string>(length));
    compare(title + "join", join<STRING>(length), join<std::string>(length));
  }
  return run_comparisons(argc, argv);
}
