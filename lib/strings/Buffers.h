#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "lib/strings/Stringpp.h"

// How the operations of STRING handle the buffers of its pool.

/// The size of a buffer in the pool, unless it was made for a longer text.
constexpr std::size_t standard_size = 510;

/// As `get_ptr`, for texts of any length.
inline char* take_buffer(std::size_t length) {
  if (length < standard_size && Nb_string >= 0) return pBufs[Nb_string--];
  return new char[std::max(length + 1, standard_size)];
}

/// Trades `old` for a buffer of `length` bytes and a terminator. If this throws, `old` is still the caller's.
inline char* trade_buffer(char* old, std::size_t length) {
  if (length < standard_size) { // with `old` in it, the pool has a buffer for certain
    put_ptr(old);
    return take_buffer(length);
  }
  char* const fresh = take_buffer(length);
  put_ptr(old);
  return fresh;
}

/// Returns a new buffer with a copy of `text`, and asks for it with room for `spare` more characters.
inline char* copied(char const* text, std::size_t spare) {
  const std::size_t length = std::strlen(text);
  char* const fresh = take_buffer(length + spare);
  std::memcpy(fresh, text, length + 1);
  return fresh;
}

/// Makes `text`, which may lie in the buffer of s, the text of s, in a new buffer.
inline void assign_anew(STRING& s, char const* text) {
  char* const fresh = copied(text, 0);
  put_ptr(s.str);
  s.str = fresh;
}

/// Makes `text`, which lies outside s and holds no NUL, the text of s, in the buffer that s has if it fits.
inline void assign_in_place(STRING& s, std::string_view text) {
  if (text.size() >= standard_size) s.str = trade_buffer(s.str, text.size());
  text.copy(s.str, text.size());
  s.str[text.size()] = '\0';
}
