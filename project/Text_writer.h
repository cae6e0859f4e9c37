#pragma once

#include <charconv>
#include <cstring>
#include <fstream>
#include <string_view>

#include "lib/strings/Stringpp.h"

/// Asks for the text's bytes, which lie anywhere in memory: texts asked for together arrive together.
inline void fetch_early(STRING const& text) { __builtin_prefetch(text.str); }

/// Writes a text file anew in large blocks, since inserting short pieces into a stream takes several times as long as
/// writing their bytes. What is gathered is written at the end of this object's life; failures are not reported.
class TEXT_WRITER {
public:
  explicit TEXT_WRITER(char const* path) {
    file.rdbuf()->pubsetbuf(nullptr, 0);
    file.open(path);
  }
  TEXT_WRITER(TEXT_WRITER const&) = delete;
  TEXT_WRITER& operator=(TEXT_WRITER const&) = delete;
  ~TEXT_WRITER() { flush(); }

  TEXT_WRITER& operator<<(std::string_view text) {
    make_room(text.size());
    if (text.size() > sizeof block) {
      file.write(text.data(), static_cast<std::streamsize>(text.size()));
    } else {
      std::memcpy(block + used, text.data(), text.size());
      used += text.size();
    }
    return *this;
  }

  TEXT_WRITER& operator<<(char const* text) { return *this << std::string_view(text); }
  TEXT_WRITER& operator<<(STRING const& text) { return *this << std::string_view(text.str); }
  TEXT_WRITER& operator<<(char c) {
    make_room(1);
    block[used++] = c;
    return *this;
  }

  TEXT_WRITER& operator<<(int n) {
    make_room(12);
    used = static_cast<std::size_t>(std::to_chars(block + used, block + sizeof block, n).ptr - block);
    return *this;
  }

  /// Writes what is gathered so far.
  void flush() {
    file.write(block, static_cast<std::streamsize>(used));
    used = 0;
  }

private:
  std::ofstream file;
  char block[1 << 16];
  std::size_t used = 0;

  void make_room(std::size_t size) {
    if (size > sizeof block - used) flush();
  }
};
