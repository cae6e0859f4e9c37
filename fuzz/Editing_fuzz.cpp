#include <algorithm>
#include <optional>

#include "fuzz/Fuzzer.h"
#include "lib/strings/Stringpp.h"

namespace {

std::string trimmed(std::string s) {
  s.erase(0, std::min(s.size(), s.find_first_not_of(' ')));
  return s.erase(s.find_last_not_of(' ') + 1);
}

std::string squeezed(std::string s) {
  s = trimmed(s);
  for (std::size_t at = s.find("  "); at != std::string::npos; at = s.find("  ")) s.erase(at, 1);
  return s;
}

bool is_int(std::string const& s) { return STRING(s.c_str()).if_int(); }
bool is_double(std::string const& s) { return STRING(s.c_str()).if_double(); }

/// The word at the front, which goes if `accepts` lets it through; else nothing, and the text stays as it was.
template <class ACCEPTS>
std::optional<std::string> word(std::string& s, ACCEPTS accepts) {
  const std::string all = trimmed(s);
  std::string first = all.substr(0, all.find_first_of(" ,"));
  if (all.empty() || !accepts(first)) return {};
  s = all.substr(first.size());
  return first;
}

std::string number(double x) { return dtoa(x, "%.17g").str; }

} // namespace

/// The text up to the first NUL, then an operation with its character in each pair of bytes.
void check(std::string const& input) {
  std::string text = input.c_str();
  STRING s(text.c_str());
  for (std::size_t i = text.size() + 1; i + 1 < input.size(); i += 2) {
    const char c = input[i + 1] == '\0' ? 'x' : input[i + 1];
    const std::string part = text.substr(text.size() / 3, static_cast<unsigned char>(c) % 4U);
    const std::size_t at = text.find(c), part_at = text.find(part);
    const bool has = at != std::string::npos;
    const int operation = static_cast<unsigned char>(input[i]) % 14;
    std::string taken;
    std::optional<std::string> expected;
    switch (operation) {
    case 0: s.remove_all(c), std::erase(text, c); break;
    case 1: s.cut_out(c), std::erase(text, c); break;
    case 2: s.cut_out(part.c_str()), text.erase(part_at, part.size()); break;
    case 3: s.locate_and_cut(c), text = has ? text.substr(at) : text; break;
    case 4: s.locate_and_cut_before(c), text = text.substr(0, at); break;
    case 5: s.locate_and_cut_after(c), text = has ? text.substr(std::min(at + 1, text.size() - 1)) : text; break;
    case 6: s.clear_space(), text = trimmed(text); break;
    case 7: s.clear_extra_space(), text = squeezed(text); break;
    case 8: s.basename(), text = text.substr(text.rfind('/') + 1); break;
    case 9: taken = s.getSTRING().str, expected = word(text, [](auto const&) { return true; }); break;
    case 10: taken = number(s.getint()), expected = word(text, is_int); break;
    case 11: taken = number(s.getdouble()), expected = word(text, is_double); break;
    case 12: s += c, text += c; break;
    default: s += s, text += text; text.size() > 20000 ? (s = c, text = c) : text;
    }
    if (operation == 10 && expected) expected = number(STRING(expected->c_str()).to_int());
    if (operation == 11 && expected) expected = number(STRING(expected->c_str()).to_double());
    if (operation >= 9 && operation <= 11) same(s.ok ? taken : "none", expected.value_or("none"));
    same(s.str, text);
  }
}
