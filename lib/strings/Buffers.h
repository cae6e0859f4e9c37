#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "lib/strings/Stringpp.h"

// What the operations of STRING share about the buffers of its pool.

/// The size of a buffer that comes from the pool, unless it was made for a longer text.
constexpr std::size_t standard_size = 510;

/// As `get_ptr`, for texts of any length.
inline char* take_buffer(std::size_t length) {
  if (length < standard_size && Nb_string >= 0) return pBufs[Nb_string--];
  return new char[std::max(length + 1, standard_size)];
}

/// Trades `old` for a buffer that holds `length` bytes and a terminator. If this throws, `old` is still the caller's.
inline char* trade_buffer(char* old, std::size_t length) {
  if (length < standard_size) { // with `old` in it, the pool has a buffer for certain
    put_ptr(old);
    return take_buffer(length);
  }
  char* const fresh = take_buffer(length);
  put_ptr(old);
  return fresh;
}

/// A new buffer with a copy of `text`, asked for with room for `spare` characters more.
inline char* copied(char const* text, std::size_t spare) {
  const std::size_t length = std::strlen(text);
  char* const fresh = take_buffer(length + spare);
  std::memcpy(fresh, text, length + 1);
  return fresh;
}

/// Gives s a new buffer that holds `text`, which may lie in the old one.
inline void assign_anew(STRING& s, char const* text) {
  char* const fresh = copied(text, 0);
  put_ptr(s.str);
  s.str = fresh;
}

/// Makes `text`, which lies outside of s and holds no NUL, the text of s, in the buffer that s has if it fits.
inline void assign_in_place(STRING& s, std::string_view text) {
  if (text.size() >= standard_size) s.str = trade_buffer(s.str, text.size());
  text.copy(s.str, text.size());
  s.str[text.size()] = '\0';
}
