#include "fuzz/Fuzzer.h"
#include "tests/Reader_check.h"

/// The first line has the operations, each of the next two parts, ended by "\n--\n", the bytes of a file.
void check(std::string const& input) {
  std::string rest = input;
  const auto take = [&](std::string const& end) {
    const std::size_t length = rest.find(end);
    std::string part = rest.substr(0, length);
    rest = length == std::string::npos ? "" : rest.substr(length + end.size());
    return part;
  };
  const std::string program = take("\n").substr(0, 100);
  for (char const* const name : {"f1", "f2", "f0"}) put(name, take("\n--\n"));
  same(first_difference(program), "");
}
