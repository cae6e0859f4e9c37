#include "index_builder/Index_reader.h"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "lib/files/Stream_characters.h"

char Key[1000];
char Keym1[1000];

namespace {

constexpr std::size_t most_bytes = std::size(Key) - 1;

/// Passes characters to `take` up to the first that it refuses, which is dropped. Leaves the stream failed if none is
/// left.
template <class TAKE>
void read_through(std::fstream& in, TAKE take) {
  const std::ios_base::iostate state = pass_while(in, take);
  if (state == std::ios_base::goodbit) {
    in.rdbuf()->sbumpc();
  } else {
    in.setstate(state);
  }
}

void report_cut() {
  char beginning[40];
  const auto is_control = [](unsigned char c) { return c < 32; };
  std::replace_copy_if(Key, Key + sizeof beginning, beginning, is_control, '?');
  std::cerr << "kindex: field cut at " << most_bytes << " bytes: ";
  std::cerr.write(beginning, sizeof beginning) << '\n';
}

} // namespace

void swallow(std::fstream& in) {
  read_through(in, [](char c) { return c != '{'; });
}

void get_key(std::fstream& in) {
  std::size_t length = 0;
  std::size_t depth = 0;
  read_through(in, [&](char c) {
    if (c == '}' && depth-- == 0) return false;
    if (c == '{') ++depth;
    if (length < most_bytes) Key[length] = c;
    ++length;
    return true;
  });
  Key[std::min(length, most_bytes)] = '\0';
  if (length > most_bytes) report_cut();
}
