#include <regex.h>

#include <algorithm>
#include <climits>

#include "lib/strings/Stringpp.h"
#include "tests/Trial.h"

namespace {

using std::string;

constexpr char word[] = "^", integer[] = "^([+-]?[0-9]+|[+-])$";
constexpr char real[] = "^[+-]?([0-9]+[.][0-9]*|[.][0-9]+)([EeDd][+-]?[0-9]+)?$";

bool matches(string const& s, char const* pattern) {
  regex_t compiled;
  regcomp(&compiled, pattern, REG_EXTENDED | REG_NOSUB);
  const bool found = regexec(&compiled, s.c_str(), 0, nullptr, 0) == 0;
  regfree(&compiled);
  return found;
}

int int_of(string const& s) {
  return static_cast<int>(std::clamp<long>(std::strtol(s.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}

double double_of(string s) {
  for (char& c : s) c = c == 'd' || c == 'D' ? 'e' : c;
  return std::strtod(s.c_str(), nullptr);
}

string trimmed(string s) {
  s.erase(0, s.find_first_not_of(' '));
  return s.erase(s.find_last_not_of(' ') + 1);
}

string squeezed(string s) {
  for (std::size_t at = s.find("  "); at != string::npos; at = s.find("  ")) s.erase(at, 1);
  return trimmed(s);
}

int sign(int order) { return (order > 0) - (order < 0); }

/// A STRING s, its model t, and what the operations on them take.
class STRINGS {
public:
  explicit STRINGS(TRIAL& own_trial) : trial(own_trial) {}

  void step() {
    draw_operands();
    trial.do_one_of(operations, text);
    trial.compare("text", s, t);
    trial.compare("ok", s.ok, ok);
    if (t.size() > 20'000 || trial.below(9) == 0) t = (s = string(600, 'x').c_str()).str;
  }

private:
  void draw_operands() {
    tail = trial.below(t.size() + 1);
    text = trial.below(2) == 0 ? t.substr(tail, trial.below(4)) : trial.text(trial.below(4));
    for (std::size_t n = trial.below(4) == 0 ? 8 : 0; n > 0; --n) text += "0129..++-eEdDf \xb2"[trial.below(16)];
    if (!t.empty() && trial.below(8) == 0) --(text = t).back(); // only just below t
    text = text.c_str();                                        // which ends at a NUL
    other = text.c_str();
    c = text.empty() ? '\0' : text.back();
    last = string(1, c).c_str();
    at = c == '\0' ? t.size() : t.find(c);
  }

  std::size_t place(char const* p) const { return p == nullptr ? string::npos : static_cast<std::size_t>(p - s.str); }

  /// The order of the texts up to `length`.
  int starts() const {
    const auto n = static_cast<std::size_t>(std::max(length(), 0));
    return sign(t.substr(0, n).compare(text.substr(0, n)));
  }

  string record() const {
    const auto size = static_cast<int>(text.size());
    return string(reinterpret_cast<char const*>(&size), sizeof size) + text;
  }

  bool read_whole(string const& bytes) {
    std::istringstream in(bytes);
    in.exceptions(std::ios::badbit);
    read(in, s);
    return !in.fail() && in.exceptions() == std::ios::badbit;
  }

  string written() const {
    std::ostringstream out;
    write(out, other);
    out << std::setw(9) << other;
    return out.str();
  }

  string padded() const { return string(9 - std::min<std::size_t>(text.size(), 9), ' ') + text; }

  void cut_after() {
    if (at == string::npos) return;
    t = at + 1 < t.size() ? t.substr(at + 1) : last;
  }

  /// Takes a word of that form off t.
  string taken(char const* form) {
    const string all = trimmed(t);
    const string first = all.substr(0, all.find_first_of(" ,"));
    ok = !all.empty() && matches(first, form);
    if (ok) t = all.substr(first.size());
    return ok ? first : "";
  }

  TRIAL& trial;
  static constexpr char const* null = nullptr;
  STRING s;
  string t;
  bool ok = true;
  string text;          // the operand
  STRING other;         // the same
  char c = '\0';        // its last character
  string last;          // the same as a text
  std::size_t tail = 0; // a place in t
  std::size_t at = 0;   // where it has c

  int length() const { return static_cast<int>(tail) - 1; } // or below 0, which counts as 0
  int order() const { return sign(t.compare(text)); }

  const std::vector<OPERATION> operations = {
      {"= char const*", [&] { s = text.c_str(); }, [&] { t = text; }},
      {"= STRING", [&] { s = other; }, [&] { t = text; }},
      {"= char", [&] { s = c; }, [&] { t = last; }},
      {"= null", [&] { s = null; }, [&] { t = ""; }},
      {"+= null", [&] { s += null; }, [] {}},
      {"= own tail", [&] { s = s.str + tail; }, [&] { t = t.substr(tail); }},
      {"read", [&] { return read_whole(record().substr(0, tail + sizeof(int))); }, // the end may come early
       [&] { return t = text.substr(0, tail), tail >= text.size(); }},
      {"read a negative length", [&] { return read_whole("\xff\xff\xff\xff" + text); }, [&] { return t = "", true; }},
      {"write and <<", [&] { return written(); }, [&] { return record() + padded(); }},
      {"+= char const*", [&] { s += text.c_str(); }, [&] { t += text; }},
      {"+= char", [&] { s += c; }, [&] { t += last; }},
      {"+= itself", [&] { s += s; }, [&] { t += t; }},
      {"+= own tail", [&] { s += s.str + tail; }, [&] { t += t.substr(tail); }},
      {"+", [&] { return "(" + (c + (s + text.c_str() + c)) + other; },
       [&] { return "(" + last + t + text + last + text; }},
      {"== STRING", [&] { return s == other; }, [&] { return t == text; }},
      {"== char const*", [&] { return s == text.c_str(); }, [&] { return t == text; }},
      {"!= STRING", [&] { return sign(s != other); }, [&] { return order(); }},
      {"!= char const*", [&] { return sign(s != text.c_str()); }, [&] { return order(); }},
      {"< STRING", [&] { return s < other; }, [&] { return t < text; }},
      {"< char const*", [&] { return s < text.c_str(); }, [&] { return t < text; }},
      {"> STRING", [&] { return s > other; }, [&] { return t > text; }},
      {"> char const*", [&] { return s > text.c_str(); }, [&] { return t > text; }},
      {"strn_cmp(STRING, STRING)", [&] { return sign(strn_cmp(s, other, length())); }, [&] { return starts(); }},
      {"strn_cmp(STRING, text)", [&] { return sign(strn_cmp(s, text.c_str(), length())); }, [&] { return starts(); }},
      {"strn_cmp(text, STRING)", [&] { return sign(strn_cmp(s.str, other, length())); }, [&] { return starts(); }},
      {"hash", [&] { return std::hash<STRING>()(s); }, [&] { return std::hash<string>()(t); }},
      {"ok of new ones", [&] { return STRING(s).ok && STRING(c).ok && STRING().ok; }, [&] { return true; }},
      {"locate(char)", [&] { return place(s.locate(c)); }, [&] { return at; }},
      {"locate(STRING)", [&] { return place(s.locate(other)); }, [&] { return t.find(text); }},
      {"locate(char const*)", [&] { return place(s.locate(text.c_str())); }, [&] { return t.find(text); }},
      {"start_with", [&] { return s.start_with(other); }, [&] { return t.starts_with(text); }},
      {"end_with", [&] { return s.end_with(other); }, [&] { return t.ends_with(text); }},
      {"if_int", [&] { return other.if_int(); }, [&] { return matches(text, integer); }},
      {"if_double", [&] { return other.if_double(); }, [&] { return matches(text, real); }},
      {"to_int and itoa", [&] { return itoa(other.to_int()); }, [&] { return int_of(text); }},
      {"to_double", [&] { return other.to_double(); }, [&] { return double_of(text); }},
      {"ftoa", [&] { return ftoa(double_of(text)); }, [&] { return std::to_string(double_of(text)).substr(0, 50); }},
      {"ptoa", [&] { return ptoa(&s); }, [&] { return shown(static_cast<void*>(&s)); }},
      {"remove_all", [&] { s.remove_all(c); }, [&] { std::erase(t, c); }},
      {"cut_out(char)", [&] { s.cut_out(c); }, [&] { std::erase(t, c); }},
      {"cut_out", [&] { s.cut_out(text.c_str()); }, [&] { t.erase(std::min(t.find(text), t.size()), text.size()); }},
      {"locate_and_cut", [&] { s.locate_and_cut(c); }, [&] { t.erase(0, at == string::npos ? 0 : at); }},
      {"locate_and_cut_before", [&] { s.locate_and_cut_before(c); }, [&] { t = t.substr(0, at); }},
      {"locate_and_cut_after", [&] { s.locate_and_cut_after(c); }, [&] { cut_after(); }},
      {"clear_space", [&] { s.clear_space(); }, [&] { t = trimmed(t); }},
      {"clear_extra_space", [&] { s.clear_extra_space(); }, [&] { t = squeezed(t); }},
      {"basename", [&] { s.basename(); }, [&] { t = t.substr(t.rfind('/') + 1); }},
      {"tolower_", [&] { tolower_(s); }, [&] { std::transform(t.begin(), t.end(), t.begin(), tolower); }},
      {"toupper_", [&] { toupper_(s); }, [&] { std::transform(t.begin(), t.end(), t.begin(), toupper); }},
      {"getSTRING", [&] { return s.getSTRING(); }, [&] { return taken(word); }},
      {"getint", [&] { return s.getint(); }, [&] { return int_of(taken(integer)); }},
      {"getdouble", [&] { return s.getdouble(); }, [&] { return double_of(taken(real)); }},
  };
};

} // namespace

void strings_model(TRIAL& trial) {
  STRINGS strings(trial);
  while (trial.goes_on()) strings.step();
}
