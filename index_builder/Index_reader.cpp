#include "index_builder/Index_reader.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string_view>

char Key[1000];
char Keym1[1000];

namespace {

constexpr std::size_t most_bytes = std::size(Key) - 1;

/// The characters a stream's buffer holds ready, which it shows to classes derived from it alone.
class READY : private std::streambuf {
public:
  static std::string_view in(std::streambuf const& buffer) {
    constexpr auto begin = &READY::gptr;
    constexpr auto end = &READY::egptr;
    return {(buffer.*begin)(), (buffer.*end)()};
  }

  static void drop(std::streambuf& buffer, std::ptrdiff_t n) {
    constexpr auto advance = &READY::gbump;
    (buffer.*advance)(static_cast<int>(n));
  }
};

/// Hands characters to `take` until it refuses one, which is dropped. Leaves the stream failed when there are none
/// left. They come straight from the stream's buffer: setting up a read for each would cost more than all else.
template <class TAKE>
void read_while(std::fstream& in, TAKE take) {
  using std::ios_base;
  ios_base::iostate state = ios_base::failbit;
  try {
    std::streambuf& buffer = *in.rdbuf();
    while (in.good() && buffer.sgetc() != std::char_traits<char>::eof()) {
      const std::string_view ready = READY::in(buffer);
      const auto refused = std::find_if_not(ready.begin(), ready.end(), take);
      const bool finished = refused != ready.end();
      READY::drop(buffer, refused - ready.begin() + (finished ? 1 : 0));
      if (finished) return;
    }
    if (in.good()) state |= ios_base::eofbit;
  } catch (ios_base::failure const&) { // a directory, for one, opens but cannot be read
    state |= ios_base::badbit;
  }
  in.setstate(state);
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
  read_while(in, [](char c) { return c != '{'; });
}

void get_key(std::fstream& in) {
  std::size_t length = 0;
  std::size_t depth = 0;
  read_while(in, [&](char c) {
    if (c == '}' && depth-- == 0) return false;
    if (c == '{') ++depth;
    if (length < most_bytes) Key[length] = c;
    ++length;
    return true;
  });
  Key[std::min(length, most_bytes)] = '\0';
  if (length > most_bytes) report_cut();
}
