#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/Trial.h"

int program(int argc, char* argv[]); // its `main`

/// Runs the program that the target is built for, with the input in a file.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static const SCRATCH_DIRECTORY scratch;
  for (std::ostream* const out : {&std::cout, &std::cerr}) out->setstate(std::ios::badbit);
  std::ofstream("input.idx").write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
  char const* arguments[] = {"program", ARGUMENTS, nullptr};
  program(static_cast<int>(std::size(arguments)) - 1, const_cast<char**>(arguments));
  return 0;
}
