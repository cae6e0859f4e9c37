#include "index_builder/Index_reader.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <limits>

#include "lib/files/Stream_characters.h"

char Key[1000];
char Keym1[1000];

namespace {

constexpr std::size_t most_bytes = std::size(Key) - 1;

void report_cut() {
  char beginning[40];
  const auto is_control = [](unsigned char c) { return c < 32; };
  std::replace_copy_if(Key, Key + sizeof beginning, beginning, is_control, '?');
  std::cerr << "kindex: field cut at " << most_bytes << " bytes: ";
  std::cerr.write(beginning, sizeof beginning) << '\n';
}

} // namespace

void swallow(std::fstream& in) {
  in.ignore(std::numeric_limits<std::streamsize>::max(), '{');
  if (in.eof()) in.setstate(std::ios_base::failbit);
}

void get_key(std::fstream& in) {
  std::size_t length = 0;
  std::size_t depth = 0;
  const std::ios_base::iostate state = pass_while(in, [&](char c) {
    if (c == '}' && depth-- == 0) return false;
    if (c == '{') ++depth;
    if (length < most_bytes) Key[length] = c;
    ++length;
    return true;
  });
  char end = '\0';
  in.setstate(state == std::ios_base::goodbit ? take_character(in, end) : state);
  Key[std::min(length, most_bytes)] = '\0';
  if (length > most_bytes) report_cut();
}
