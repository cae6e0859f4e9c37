#pragma once

#include <algorithm>
#include <istream>
#include <string_view>

/// Each of the two counts as a line end of its own.
inline bool ends_line(char c) { return c == '\n' || c == '\r'; }

/// The characters a stream's buffer holds ready. It shows them to classes derived from it alone, which may also hand
/// out pointers to the members that do.
class BUFFER_CONTENT : private std::streambuf {
public:
  static std::string_view in(std::streambuf const& buffer) {
    constexpr auto begin = &BUFFER_CONTENT::gptr;
    constexpr auto end = &BUFFER_CONTENT::egptr;
    return {(buffer.*begin)(), (buffer.*end)()};
  }

  static void drop(std::streambuf& buffer, std::size_t n) {
    constexpr auto advance = &BUFFER_CONTENT::gbump;
    (buffer.*advance)(static_cast<int>(n));
  }
};

/// Has `read` read from the stream's buffer. Gives, but does not set, the state that `get` would set then: no bits for
/// a character, else eofbit or badbit with failbit.
template <class READ>
std::ios_base::iostate state_after(std::istream& in, READ read) {
  using std::ios_base;
  if (!in.good()) return ios_base::failbit;
  try {
    const bool at_end = read(*in.rdbuf()) == std::char_traits<char>::eof();
    return at_end ? ios_base::eofbit | ios_base::failbit : ios_base::goodbit;
  } catch (...) { // a directory, for one, opens but cannot be read
    return ios_base::badbit | ios_base::failbit;
  }
}

/// The state that `get` would set now.
inline std::ios_base::iostate state_of_next(std::istream& in) {
  return state_after(in, [](std::streambuf& buffer) { return buffer.sgetc(); });
}

/// Takes the next character. Gives the state that `get` would set.
inline std::ios_base::iostate take_character(std::istream& in, char& c) {
  return state_after(in, [&](std::streambuf& buffer) {
    const int next = buffer.sbumpc();
    c = std::char_traits<char>::to_char_type(next);
    return next;
  });
}

/// Hands the stream's characters to `take` in blocks, as its buffer has them, until `take` takes less than it was
/// handed; what it leaves stays in the stream. `take` returns how many it took. Gives the state that reading on would
/// set. Setting up a read for each character instead would cost more than all that is done with it.
template <class TAKE>
std::ios_base::iostate take_characters(std::istream& in, TAKE take) {
  for (;;) {
    int next = 0;
    std::ios_base::iostate state = state_after(in, [&](std::streambuf& buffer) { return next = buffer.sgetc(); });
    if (state != std::ios_base::goodbit) return state;
    std::string_view ready = BUFFER_CONTENT::in(*in.rdbuf());
    if (ready.empty()) { // a buffer that has its characters one by one
      char single = std::char_traits<char>::to_char_type(next);
      if (take(std::string_view(&single, 1)) == 0) return state;
      state = take_character(in, single);
      if (state != std::ios_base::goodbit) return state;
    } else {
      const std::size_t taken = take(ready);
      BUFFER_CONTENT::drop(*in.rdbuf(), taken);
      if (taken < ready.size()) return state;
    }
  }
}

/// How many characters at the front of the text `belongs` accepts.
template <class BELONGS>
std::size_t length_while(std::string_view text, BELONGS belongs) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), belongs) - text.begin());
}

/// Drops the characters at the front of the stream that `belongs` accepts. Gives what `take_characters` gives.
template <class BELONGS>
std::ios_base::iostate pass_while(std::istream& in, BELONGS belongs) {
  return take_characters(in, [&](std::string_view ready) { return length_while(ready, belongs); });
}
