#pragma once

#include <istream>
#include <new>

/// Each of the two counts as a line end of its own.
inline bool ends_line(char c) { return c == '\n' || c == '\r'; }

/// Takes the characters at the front of the stream that `belongs` accepts; the first that it refuses stays. Returns,
/// but does not set, the state that `get` would set then: no bits before a character, else eofbit or badbit with
/// failbit.
///
/// Reads the stream's buffer, since the stream's own `get` prepares anew for each character, which takes longer than
/// all that is done with it.
template <class BELONGS>
std::ios_base::iostate pass_while(std::istream& in, BELONGS belongs) {
  using std::ios_base;
  using traits = std::char_traits<char>;
  if (!in.good()) return ios_base::failbit;
  try {
    std::streambuf& buffer = *in.rdbuf();
    int next = buffer.sgetc();
    while (next != traits::eof() && belongs(traits::to_char_type(next))) next = buffer.snextc();
    return next == traits::eof() ? ios_base::eofbit | ios_base::failbit : ios_base::goodbit;
  } catch (std::bad_alloc const&) { // of `belongs`
    throw;
  } catch (...) { // a directory, for one, opens but cannot be read
    return ios_base::badbit | ios_base::failbit;
  }
}

/// Takes the next character. Returns what `pass_while` returns.
inline std::ios_base::iostate take_character(std::istream& in, char& c) {
  const auto keep = [&](char next) {
    c = next;
    return false;
  };
  const std::ios_base::iostate state = pass_while(in, keep);
  if (state == std::ios_base::goodbit) in.rdbuf()->sbumpc();
  return state;
}
