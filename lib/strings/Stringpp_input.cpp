#include <istream>
#include <new>
#include <string>

#include "lib/diagnostics/Error_messager.h"
#include "lib/strings/Stringpp.h"

namespace {

/// Reads a word of any length as an array of characters would: the stream's width counts the terminator.
bool read_word(std::istream& is, std::string& word) {
  const std::streamsize width = is.width();
  if (width == 1) {
    char terminator[1];
    return static_cast<bool>(is >> terminator);
  }
  if (width > 1) is.width(width - 1);
  is >> word;
  if (is.fail() && is.width() > 0) is.width(width);
  return !is.fail();
}

} // namespace

std::istream& operator>>(std::istream& is, STRING& s) {
  constexpr std::size_t longest = 511;
  std::string word;
  if (!read_word(is, word)) return is;
  if (word.size() > longest) {
    const STRING length = itoa(static_cast<int>(word.size()));
    ERROR_MESSAGER::static_err_message("word is too long (length=" + length + ") to be read from standard input",
                                       "Stringpp", 324); // a fixed text, like the place it names
  }
  try {
    s = word.c_str();
  } catch (std::bad_alloc const&) {
    is.setstate(std::ios_base::badbit);
  }
  return is;
}
