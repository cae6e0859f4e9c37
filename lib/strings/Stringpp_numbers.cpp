#include <charconv>
#include <cstdio>
#include <iterator>

#include "lib/strings/Stringpp.h"

STRING itoa(int n) {
  char digits[12];
  *std::to_chars(std::begin(digits), std::end(digits), n).ptr = '\0';
  return digits;
}

STRING dtoa(double x, char const* format) {
  char first[51] = "";
  static_cast<void>(std::snprintf(first, sizeof first, format, x));
  return first;
}

STRING ftoa(double x) { return dtoa(x, "%f"); }

STRING ptoa(void* p) {
  char address[2 * sizeof p + 3];
  static_cast<void>(std::snprintf(address, sizeof address, "%p", p));
  return address;
}
