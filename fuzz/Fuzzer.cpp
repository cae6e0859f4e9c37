#include "fuzz/Fuzzer.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static const SCRATCH_DIRECTORY scratch;
  check({reinterpret_cast<char const*>(data), size});
  return 0;
}

void same(std::string const& result, std::string const& expected) {
  if (result == expected) return;
  std::fprintf(stderr, "found:\n%s\nexpected:\n%s\n", result.c_str(), expected.c_str());
  std::abort();
}
