#pragma once

#include <istream>
#include <new>

/// Each of the two counts as a line end of its own.
inline bool ends_line(char c) { return c == '\n' || c == '\r'; }

/// Lets `read` use the stream's buffer and tell whether it met the end. Returns, but does not set, the state that `get`
/// would set then: no bits before the end, else eofbit or badbit with failbit.
///
/// The stream's own `get` prepares anew for each character.
template <class READ>
std::ios_base::iostate read_buffer(std::istream& in, READ read) {
  using std::ios_base;
  if (!in.good()) return ios_base::failbit;
  try {
    return read(*in.rdbuf()) ? ios_base::eofbit | ios_base::failbit : ios_base::goodbit;
  } catch (std::bad_alloc const&) { // of what `read` calls
    throw;
  } catch (...) { // a directory, for one, opens but cannot be read
    return ios_base::badbit | ios_base::failbit;
  }
}

inline bool is_end(int character) { return character == std::char_traits<char>::eof(); }

/// Takes the next character. Returns what `read_buffer` returns.
inline std::ios_base::iostate take_character(std::istream& in, char& c) {
  return read_buffer(in, [&](std::streambuf& buffer) {
    const int next = buffer.sbumpc();
    c = std::char_traits<char>::to_char_type(next);
    return is_end(next);
  });
}

/// Looks whether there is a next character. Returns what `read_buffer` returns.
inline std::ios_base::iostate peek_character(std::istream& in) {
  return read_buffer(in, [](std::streambuf& buffer) { return is_end(buffer.sgetc()); });
}

/// Gives access to the characters that a buffer holds, which is protected. The public functions give them one by one
/// and move the buffer's pointers each time, which takes longer than all that is done with a character.
struct BUFFER : std::streambuf {
  static constexpr auto first = &BUFFER::gptr;
  static constexpr auto last = &BUFFER::egptr;
  static constexpr auto drop = &BUFFER::gbump;
};

/// Takes the characters at the front of a file that `belongs` accepts, and hands them to `keep` in blocks; the first
/// that it refuses stays. Returns what `read_buffer` returns.
template <class BELONGS, class KEEP>
std::ios_base::iostate take_while(std::istream& file, BELONGS belongs, KEEP keep) {
  return read_buffer(file, [&](std::streambuf& buffer) {
    while (!is_end(buffer.sgetc())) {
      char const* const first = (buffer.*BUFFER::first)();
      char const* const last = (buffer.*BUFFER::last)();
      char const* refused = first;
      while (refused != last && belongs(*refused)) ++refused;
      keep(first, refused);
      (buffer.*BUFFER::drop)(static_cast<int>(refused - first));
      if (refused != last) return false;
    }
    return true;
  });
}

/// The same without keeping them.
template <class BELONGS>
std::ios_base::iostate pass_while(std::istream& file, BELONGS belongs) {
  return take_while(file, belongs, [](char const*, char const*) {});
}
