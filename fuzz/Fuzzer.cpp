#include "tests/Model.h"

/// Runs each input as a program for the model that the target is built for.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static const SCRATCH_DIRECTORY scratch;
  const std::string found = DIFFERENCE({reinterpret_cast<char const*>(data), size});
  if (found.empty()) return 0;
  std::cerr << found;
  std::abort();
}
