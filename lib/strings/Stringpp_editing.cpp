#include <algorithm>
#include <cctype>
#include <cstring>

#include "lib/strings/Buffers.h"
#include "lib/strings/Stringpp.h"

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

template <class CONVERT>
void convert(STRING& s, CONVERT converted) {
  for (char* c = s.str; *c != '\0'; ++c) *c = static_cast<char>(converted(static_cast<unsigned char>(*c)));
}

/// Records whether a number was taken from s; if not, s gets back the text it had before.
bool number_taken(STRING& s, STRING const& before, bool is_number) {
  s.success = is_number;
  if (!is_number) s = before;
  return is_number;
}

char const* after_sign(char const* text) { return *text == '+' || *text == '-' ? text + 1 : text; }

char const* after_digits(char const* text) {
  while (is_digit(*text)) ++text;
  return text;
}

} // namespace

void STRING::remove_all(char c) {
  char* const end = str + std::strlen(str);
  *std::remove(str, end, c) = '\0';
}

STRING& STRING::cut_out(char c) {
  STRING kept(*this); // a new buffer, as the pool's users may expect; `remove_all` is for those who want none
  kept.remove_all(c);
  return *this = kept;
}

STRING& STRING::cut_out(char const* s) {
  char* const found = locate(s);
  if (found == nullptr || *s == '\0') return *this;
  const STRING tail(found + std::strlen(s));
  *found = '\0';
  return *this += tail;
}

STRING& STRING::locate_and_cut(char c) {
  if (char const* const found = locate(c)) *this = found;
  return *this;
}

STRING& STRING::locate_and_cut_before(char c) {
  if (char* const found = locate(c)) *found = '\0';
  return *this;
}

STRING& STRING::locate_and_cut_after(char c) {
  char const* const found = locate(c);
  if (found == nullptr) return *this;
  if (found[0] == '\0' || found[1] == '\0') return *this = c;
  return *this = found + 1;
}

STRING& STRING::clear_space() {
  char* end = str + std::strlen(str);
  while (end != str && end[-1] == ' ') --end;
  *end = '\0';
  assign_anew(*this, str + std::strspn(str, " "));
  return *this;
}

STRING& STRING::clear_extra_space() {
  clear_space();
  const auto both_blank = [](char a, char b) { return a == ' ' && b == ' '; };
  *std::unique(str, str + std::strlen(str), both_blank) = '\0';
  return *this;
}

STRING& STRING::basename() {
  if (char const* const slash = std::strrchr(str, '/')) *this = slash + 1;
  return *this;
}

void tolower_(STRING& s) {
  convert(s, [](int c) { return std::tolower(c); });
}

void toupper_(STRING& s) {
  convert(s, [](int c) { return std::toupper(c); });
}

bool STRING::start_with(STRING const& s) const { return std::strncmp(str, s.str, std::strlen(s.str)) == 0; }

bool STRING::end_with(STRING const& s) const {
  const std::size_t length = std::strlen(str);
  const std::size_t tail = std::strlen(s.str);
  return tail <= length && std::strcmp(str + (length - tail), s.str) == 0;
}

bool STRING::if_int() const { return *str != '\0' && *after_digits(after_sign(str)) == '\0'; }

bool STRING::if_double() const {
  char const* const digits = after_sign(str);
  char const* const point = after_digits(digits);
  if (*point != '.') return false;
  char const* const end = after_digits(point + 1);
  if (end == digits + 1) return false; // a point alone
  if (*end == '\0') return true;
  if (std::strchr("EeDd", *end) == nullptr) return false;
  char const* const exponent = after_sign(end + 1);
  return *exponent != '\0' && *after_digits(exponent) == '\0';
}

STRING STRING::getSTRING() {
  const STRING before(*this);
  clear_space();
  success = *str != '\0';
  if (!success) {
    *this = before;
    return "";
  }
  const std::size_t length = std::strcspn(str, " ,");
  STRING word;
  assign_in_place(word, {str, length});
  *this = str + length;
  return word;
}

int STRING::getint() {
  const STRING before(*this);
  const STRING word = getSTRING();
  return number_taken(*this, before, word.if_int()) ? word.to_int() : 0;
}

double STRING::getdouble() {
  const STRING before(*this);
  const STRING word = getSTRING();
  return number_taken(*this, before, word.if_double()) ? word.to_double() : 0.0;
}
