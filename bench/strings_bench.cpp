#include "bench/Measuring.h"
#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

namespace {

constexpr int times = 10'000;

template <class TEXT>
auto make_copy_and_drop(std::size_t length) {
  return [source = std::string(length, 'x')] {
    for (int i = 0; i < times; ++i) {
      TEXT made(source.c_str());
      benchmark::DoNotOptimize(made);
      TEXT copied(made);
      benchmark::DoNotOptimize(copied);
    }
  };
}

template <class TEXT>
auto join(std::size_t length) {
  return [left = TEXT(std::string(length / 2, 'x').c_str()), right = TEXT(std::string((length + 1) / 2, 'y').c_str())] {
    for (int i = 0; i < times; ++i) benchmark::DoNotOptimize(left + right);
  };
}

template <class LIST_TYPE, bool DOUBLE_STEP = false>
auto add_numbers(int count) {
  return [count] {
    LIST_TYPE list;
    for (int i = 0; i < count; ++i) {
      if constexpr (DOUBLE_STEP) {
        if (list.size == list.capacity) list.increment = list.capacity;
      }
      list.add(i);
    }
    benchmark::DoNotOptimize(list.ptr);
  };
}

} // namespace

int main(int argc, char* argv[]) {
  return run_benchmarks(argc, argv, [] {
    for (const std::size_t length : {4U, 15U, 16U, 50U, 100U, 250U, 500U}) {
      compare("make, copy, drop " + std::to_string(length), make_copy_and_drop<STRING>(length),
              make_copy_and_drop<std::string>(length));
      compare("join " + std::to_string(length), join<STRING>(length), join<std::string>(length));
    }
    grow("LIST::add", 1000, 100'000, add_numbers<LIST<int>>);
    grow("BUFF_LIST::add", 4000, 400'000, add_numbers<BUFF_LIST<int>>);
    grow("BUFF_LIST::add, step doubled", 4000, 400'000, add_numbers<BUFF_LIST<int>, true>);
  });
}
