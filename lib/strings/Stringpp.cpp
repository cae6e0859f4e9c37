#include "lib/strings/Stringpp.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <iterator>
#include <ostream>

#include "lib/strings/Buffers.h"

constinit char* pBufs[1001] = {};
constinit int Nb_string = -1;

[[gnu::init_priority(101)]] STRING STRING::EMPTY; // built before the static objects of programs, destroyed after them

namespace {

constexpr int top_slot = static_cast<int>(std::size(pBufs)) - 1;

template <class LEFT, class RIGHT>
STRING joined(LEFT const& a, RIGHT const& b) {
  STRING text(a);
  text += b;
  return text;
}

} // namespace

char* get_ptr(int n) { return take_buffer(n > 0 ? static_cast<std::size_t>(n) : 0); }

void put_ptr(char* p) {
  if (p == nullptr) return;
  if (Nb_string >= top_slot) {
    delete[] p;
  } else {
    pBufs[++Nb_string] = p;
  }
}

STRING::STRING() : str(get_ptr(1)) { str[0] = '\0'; }

STRING::STRING(char const* s) : str(copied(s == nullptr ? "" : s, 1)) {}

STRING::STRING(char c) : str(get_ptr(2)) {
  str[0] = c;
  str[1] = '\0';
}

STRING::STRING(STRING const& s) : str(copied(s.str, 1)) {}

STRING::~STRING() {
  put_ptr(str);
  str = nullptr;
}

STRING& STRING::operator=(char const* s) {
  if (s == nullptr) {
    str[0] = '\0';
  } else if (s != str) {
    assign_anew(*this, s);
  }
  return *this;
}

STRING& STRING::operator=(STRING const& s) {
  if (this != &s) assign_anew(*this, s.str);
  return *this;
}

STRING& STRING::operator=(char c) {
  // As the pool's users may expect, an empty text gives its buffer back first, and any other text keeps it.
  if (str[0] == '\0') str = trade_buffer(str, 1);
  str[0] = c;
  str[1] = '\0';
  return *this;
}

bool STRING::operator==(char const* s) const { return std::strcmp(str, s) == 0; }
bool STRING::operator==(STRING const& s) const { return std::strcmp(str, s.str) == 0; }
int STRING::operator!=(char const* s) const { return std::strcmp(str, s); }
int STRING::operator!=(STRING const& s) const { return std::strcmp(str, s.str); }
bool STRING::operator<(char const* s) const { return std::strcmp(str, s) < 0; }
bool STRING::operator<(STRING const& s) const { return std::strcmp(str, s.str) < 0; }
bool STRING::operator>(char const* s) const { return std::strcmp(str, s) > 0; }
bool STRING::operator>(STRING const& s) const { return std::strcmp(str, s.str) > 0; }

STRING& STRING::operator+=(STRING const& s) {
  const std::size_t length = std::strlen(str);
  const std::size_t tail = std::strlen(s.str);
  char* const fresh = take_buffer(length + tail);
  std::memcpy(fresh, str, length);
  std::memcpy(fresh + length, s.str, tail);
  fresh[length + tail] = '\0';
  put_ptr(str);
  str = fresh;
  return *this;
}

STRING& STRING::operator+=(char const* s) { return *this += STRING(s); }
STRING& STRING::operator+=(char c) { return *this += STRING(c); }

char* STRING::locate(char c) { return std::strchr(str, c); }
char* STRING::locate(char const* s) { return std::strstr(str, s); }
char* STRING::locate(STRING const& s) { return std::strstr(str, s.str); }

int STRING::to_int() const { // as strtol, which takes several times as long for a page of an index
  char const* next = str;
  while (*next == ' ' || (*next >= '\t' && *next <= '\r')) ++next;
  const bool negative = *next == '-';
  if (negative || *next == '+') ++next;
  long magnitude = 0;
  for (; *next >= '0' && *next <= '9' && magnitude <= INT_MAX; ++next) magnitude = 10 * magnitude + (*next - '0');
  return static_cast<int>(std::clamp<long>(negative ? -magnitude : magnitude, INT_MIN, INT_MAX));
}

double STRING::to_double() const {
  STRING copy(*this);
  for (char* c = copy.str; *c != '\0'; ++c) {
    if (*c == 'd' || *c == 'D' || *c == 'E') *c = 'e';
  }
  return std::strtod(copy.str, nullptr);
}

int strn_cmp(char const* a, STRING const& b, int n) {
  return std::strncmp(a, b.str, n > 0 ? static_cast<std::size_t>(n) : 0);
}

int strn_cmp(STRING const& a, char const* b, int n) {
  return std::strncmp(a.str, b, n > 0 ? static_cast<std::size_t>(n) : 0);
}

int strn_cmp(STRING const& a, STRING const& b, int n) { return strn_cmp(a.str, b, n); }

STRING operator+(STRING const& a, STRING const& b) { return joined(a, b); }
STRING operator+(STRING const& a, char const* b) { return joined(a, b); }
STRING operator+(STRING const& a, char b) { return joined(a, b); }
STRING operator+(char const* a, STRING const& b) { return joined(a, b); }
STRING operator+(char a, STRING const& b) { return joined(a, b); }

std::ostream& operator<<(std::ostream& os, STRING const& s) { return os << s.str; }

void write(std::ostream& os, STRING const& s) {
  const std::size_t bytes = std::strlen(s.str);
  if (bytes > INT_MAX) {
    os.setstate(std::ios_base::failbit);
    return;
  }
  const int length = static_cast<int>(bytes);
  os.write(reinterpret_cast<char const*>(&length), sizeof length);
  os.write(s.str, length);
}

void read(std::istream& is, STRING& s) {
  int length = 0;
  is.read(reinterpret_cast<char*>(&length), sizeof length);
  if (is.gcount() != sizeof length || length < 0) length = 0;

  s.str = trade_buffer(s.str, static_cast<std::size_t>(length));
  const std::ios_base::iostate throwing = is.exceptions();
  is.exceptions(std::ios_base::goodbit); // the text gets its end first
  is.read(s.str, length);
  s.str[is.gcount()] = '\0';
  is.exceptions(throwing);
}
