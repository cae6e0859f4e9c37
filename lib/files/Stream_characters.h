#pragma once

#include <algorithm>
#include <istream>
#include <string_view>

/// Each of the two counts as a line end of its own.
inline bool ends_line(char c) { return c == '\n' || c == '\r'; }

/// The characters a stream's buffer holds ready, which it shows to classes derived from it alone.
class READY : private std::streambuf {
public:
  static std::string_view in(std::streambuf const& buffer) {
    constexpr auto begin = &READY::gptr;
    constexpr auto end = &READY::egptr;
    return {(buffer.*begin)(), (buffer.*end)()};
  }

  static void drop(std::streambuf& buffer, std::size_t n) {
    constexpr auto advance = &READY::gbump;
    (buffer.*advance)(static_cast<int>(n));
  }
};

/// The state that `get` would set now: none of its bits if there is a character to read, else eofbit or badbit with
/// failbit. The stream's own state stays as it is.
inline std::ios_base::iostate state_of_next(std::istream& in) {
  using std::ios_base;
  if (!in.good()) return ios_base::failbit;
  try {
    const bool at_end = in.rdbuf()->sgetc() == std::char_traits<char>::eof();
    return at_end ? ios_base::eofbit | ios_base::failbit : ios_base::goodbit;
  } catch (...) { // a directory, for one, opens but cannot be read
    return ios_base::badbit | ios_base::failbit;
  }
}

/// Hands the stream's characters to `take` in blocks, as its buffer has them, until `take` takes less than it was
/// handed; what it leaves stays in the stream. `take` returns how many it took. Gives, but does not set, the state that
/// reading on would set. Setting up a read for each character instead would cost more than all that is done with it.
template <class TAKE>
std::ios_base::iostate take_characters(std::istream& in, TAKE take) {
  for (;;) {
    const std::ios_base::iostate state = state_of_next(in);
    if (state != std::ios_base::goodbit) return state;
    std::streambuf& buffer = *in.rdbuf();
    std::string_view ready = READY::in(buffer);
    const bool unbuffered = ready.empty();
    const char single = unbuffered ? std::char_traits<char>::to_char_type(buffer.sgetc()) : '\0';
    if (unbuffered) ready = {&single, 1};
    const std::size_t taken = take(ready);
    if (!unbuffered) {
      READY::drop(buffer, taken);
    } else if (taken > 0) {
      buffer.sbumpc();
    }
    if (taken < ready.size()) return state;
  }
}

/// Drops the characters at the front of the stream that `belongs` accepts. Gives what `take_characters` gives.
template <class BELONGS>
std::ios_base::iostate pass_while(std::istream& in, BELONGS belongs) {
  return take_characters(in, [&](std::string_view ready) {
    return static_cast<std::size_t>(std::find_if_not(ready.begin(), ready.end(), belongs) - ready.begin());
  });
}

/// Takes the next character. REQUIRES: there is one.
inline char next_character(std::istream& in) { return std::char_traits<char>::to_char_type(in.rdbuf()->sbumpc()); }
