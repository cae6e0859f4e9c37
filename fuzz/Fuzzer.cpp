#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "tests/Trial.h"

/// Runs each input as a program for the model that the target is built for.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static const SCRATCH_DIRECTORY scratch;
  TRIAL trial("this input", {reinterpret_cast<char const*>(data), size});
  MODEL(trial);
  const std::string report = trial.report();
  if (report.empty()) return 0;
  std::cerr << report;
  std::abort();
}
