#include <istream>
#include <string>

#include "lib/diagnostics/Error_messager.h"
#include "lib/strings/Stringpp.h"

std::istream& operator>>(std::istream& is, STRING& s) {
  constexpr std::size_t longest = 511;

  // A width counts the terminator that an array of characters would get.
  if (is.width() == 1) {
    char terminator[1];
    return is >> terminator;
  }
  const std::streamsize width = is.width();
  if (width > 1) is.width(width - 1);

  std::string word;
  if (!(is >> word)) {
    if (is.width() > 0) is.width(width);
    return is;
  }
  if (word.size() > longest) {
    const STRING length = itoa(static_cast<int>(word.size()));
    ERROR_MESSAGER::static_err_message("word is too long (length=" + length + ") to be read from standard input",
                                       "Stringpp", 324);
  }
  s = word.c_str();
  return is;
}
