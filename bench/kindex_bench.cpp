#include <fstream>
#include <random>

#include "bench/Measuring.h"

namespace {

std::mt19937 draw(1);

/// One of `count` words.
std::string word(unsigned count) {
  static char const* const syllables[] = {"ka", "ro", "min", "ta", "lus", "per", "con", "ve", "ni", "sol", "der", "Re"};
  std::string made;
  for (auto n = 1 + draw() % count; n > 0; n /= 12) made += syllables[n % 12];
  return made;
}

/// A key of two words, of which there are `count`. Every tenth key is marked.
std::string key(unsigned count) { return word(count) + " " + word(count) + (draw() % 10 == 0 ? "*" : ""); }

void write_index(char const* path, int entries) {
  std::ofstream out(path);
  for (int i = 0; i < entries; ++i) out << "\\indexentry{" << key(200) << "}{" << 1 + draw() % 900 << "}\n";
}

auto shell(std::string const& command) {
  return [=] {
    if (std::system(command.c_str()) != 0) std::abort();
  };
}

} // namespace

int main(int argc, char* argv[]) {
  return run_benchmarks(argc, argv, [] {
    setenv("LC_ALL", "C", 1);
    write_index("big.idx", 1'000'000);
    const auto sort = shell("cat big.idx | sort -f > oo");
    compare("kindex against cat and sort", shell("'" KINDEX "' big"), sort)->Iterations(9);
    grow("kindex", 1000, 1'000'000, [](int n) { return write_index("grown.idx", n), shell("'" KINDEX "' grown"); });
  });
}
