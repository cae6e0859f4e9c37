#include <regex.h>

#include "lib/strings/Containers.h"
#include "tests/Model.h"

/// The pieces that texts are made of; in the list "^0254" stands for 254 characters.
static std::vector<std::string> all_pieces() {
  std::istringstream list(
      " |  | |\n|\r|\r\n|\n\n|\t|,|;|/|=|%|%c |#|\xe9|\xff\x80|_|a|ab|b|b a|x|A|Z/a|EOF|\\|*|{|}|}{|{a}{1}|{a*}{1}|{B}|"
      "}{2}{b*|12|-7 |+|.5|1.5e3 |2.D-1|2147483647|-2147483649|in |f1 |f2 |none |. |#define |\n#define A |"
      "#define a b\n|#define b A B|# 9 \"\"f\n|# 40 \"x y\" 1\n|\n# 2147483647 f\n|#include <|<|>\n|"
      "\n#include <A/BB.h>\n#include <A/C.h\n|^0254|^0508|{^0997|#include <^1021|\n^4082#include <A.>|^9000");
  std::vector<std::string> pieces = {std::string(1, '\0')};
  for (std::string piece; std::getline(list, piece, '|'); pieces.push_back(piece)) {
    const std::size_t mark = piece.find('^');
    if (mark != std::string::npos) piece.replace(mark, 5, std::stoul(piece.substr(mark + 1, 4)), 'x');
  }
  return pieces;
}

std::string PROGRAM::text(std::size_t n) {
  static const std::vector<std::string> pieces = all_pieces();
  std::string result;
  for (; n > 0 && !ended(); --n, ++at) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    result += byte < 128 ? std::string(1, bytes[at]) : pieces[(byte - 128U) % pieces.size()];
  }
  return result;
}

namespace {

using std::string;

constexpr char any[] = "^", integer[] = "^([+-]?[0-9]+|[+-])$";
constexpr char real[] = "^[+-]?([0-9]+[.][0-9]*|[.][0-9]+)([EeDd][+-]?[0-9]+)?$";

bool matches(string const& s, char const* pattern) {
  regex_t compiled;
  regcomp(&compiled, pattern, REG_EXTENDED | REG_NOSUB);
  const bool found = regexec(&compiled, s.c_str(), 0, nullptr, 0) == 0;
  regfree(&compiled);
  return found;
}

int int_of(string const& s) { return int(std::clamp<long>(std::strtol(s.c_str(), nullptr, 10), INT_MIN, INT_MAX)); }

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

} // namespace

string strings_difference(string const& program) {
  PROGRAM in{program};
  STRING s, long_text(string(600, 'x').c_str());
  string t, found, expected;
  bool ok = true;
  // What an operation may use: a text, its last character, the same as a text, places in t, and a record.
  string text, last;
  char c = '\0';
  std::size_t tail = 0, at = 0, part = 0;
  std::stringstream record;
  const auto taken = [&](char const* form) {
    const string all = trimmed(t), word = all.substr(0, all.find_first_of(" ,"));
    ok = !all.empty() && matches(word, form);
    if (ok) t = all.substr(word.size());
    return ok ? word : "";
  };
  const std::pair<std::function<void()>, std::function<void()>> operations[] = {
      {[&] { t = text; }, [&] { s = text.c_str(); }},
      {[&] { t = text; }, [&] { s = STRING(text.c_str()); }},
      {[&] { t = last; }, [&] { s = c; }},
      {[&] { t = ""; }, [&] { s = static_cast<char const*>(nullptr); }},
      {[&] { t = t.substr(tail); }, [&] { s = s.str + tail; }},
      {[&] { t = text.substr(0, tail); }, [&] { read(record, s); }},
      {[&] { t += text; }, [&] { s += text.c_str(); }},
      {[&] { t += last; }, [&] { s += c; }},
      {[&] { t += t; }, [&] { s += s; }},
      {[&] { t += t.substr(tail); }, [&] { s += s.str + tail; }},
      {[&] { t = "(" + last + t + text + last + t; }, [&] { s = "(" + (c + (s + text.c_str() + c)) + s; }},
      {[&] { std::erase(t, c); }, [&] { s.remove_all(c); }},
      {[&] { std::erase(t, c); }, [&] { s.cut_out(c); }},
      {[&] { t.erase(std::min(part, t.size()), text.size()); }, [&] { s.cut_out(text.c_str()); }},
      {[&] { t.erase(0, at == string::npos ? 0 : at); }, [&] { s.locate_and_cut(c); }},
      {[&] { t = t.substr(0, at); }, [&] { s.locate_and_cut_before(c); }},
      {[&] { t = at + 1 < t.size() || ~at == 0 ? t.substr(at + 1) : last; }, [&] { s.locate_and_cut_after(c); }},
      {[&] { t = trimmed(t); }, [&] { s.clear_space(); }},
      {[&] { t = squeezed(t); }, [&] { s.clear_extra_space(); }},
      {[&] { t = t.substr(t.rfind('/') + 1); }, [&] { s.basename(); }},
      {[&] { std::transform(t.begin(), t.end(), t.begin(), tolower); }, [&] { tolower_(s); }},
      {[&] { std::transform(t.begin(), t.end(), t.begin(), toupper); }, [&] { toupper_(s); }},
      {[&] { expected = taken(any); }, [&] { found = s.getSTRING().str; }},
      {[&] { expected = shown(int_of(taken(integer))); }, [&] { found = shown(s.getint()); }},
      {[&] { expected = shown(double_of(taken(real))); }, [&] { found = shown(s.getdouble()); }},
  };
  while (!in.ended()) {
    tail = in.below(t.size() + 1);
    text = in.below(2) == 0 ? t.substr(tail, in.below(4)) : string(in.text(in.below(4)).c_str());
    for (std::size_t n = in.below(2) * in.below(9); n > 0; --n) text += "0129..++-eEdDf \xb2"[in.below(16)];
    c = text.empty() ? '\0' : text.back();
    last = text.substr(text.size() - (c == '\0' ? 0 : 1));
    at = c == '\0' ? t.size() : t.find(c);
    part = t.find(text);
    std::ostringstream bytes;
    write(bytes, text.c_str());
    record.str(bytes.str().substr(0, tail + 4)); // the end may come early
    record.clear();

    const STRING other(text.c_str());
    const int n = int(tail) - 1, order = sign(t.compare(text)), i = int_of(text), length = int(text.size());
    const int head = tail == 0 ? 0 : sign(t.compare(0, tail - 1, text, 0, tail - 1));
    const double x = double_of(text);
    const auto place = [&](char const* p) { return p == nullptr ? string::npos : std::size_t(p - s.str); };
    const auto compared = [&](auto const& b) {
      return shown(place(s.locate(b)), s == b, sign(s != b), (s < b), (s > b), s <= b, s >= b, sign(strn_cmp(s, b, n)));
    };
    found = compared(other) + compared(text.c_str()) +
            shown(place(s.locate(c)), sign(strn_cmp(s.str, other, n)), s.start_with(other), s.end_with(other),
                  other.if_int(), other.if_double(), other.to_int(), other.to_double(), itoa(i), ftoa(x),
                  dtoa(0.5, "<%-7.1e>"), ptoa(&s), std::setw(9), other, STRING().ok, STRING(c).ok, STRING(s).ok,
                  other.ok, std::hash<STRING>()(other), bytes.str());
    const string both = shown(part, order == 0, order, order < 0, (order > 0), order <= 0, order >= 0, head);
    expected =
        both + both +
        shown(at, head, t.starts_with(text), t.ends_with(text), matches(text, integer), matches(text, real), i, x,
              std::to_string(i), std::to_string(x).substr(0, 50), "<5.0e-01>", &s, std::setw(9), text, true, true, true,
              true, std::hash<string>()(text), string(reinterpret_cast<char const*>(&length), 4) + text);
    if (found != expected) return text + difference(found, expected);

    const std::size_t which = in.below(std::size(operations));
    const bool done = under_test(operations[which].second);
    if (done) operations[which].first();
    if (!done) t = s.str; // it is a text all the same
    if (!done) ok = s.ok;
    found += shown(s, s.ok);
    expected += shown(t, ok);
    if (found != expected) return shown("operation", which, text) + difference(found, expected);
    if (t.size() > 20'000 || in.below(6) == 0) t = (s = long_text).str;
  }
  return "";
}

namespace {

struct NUMBER {
  int n = 0;
  bool operator==(NUMBER const& other) { return n == other.n; } // not const, as it may be
};

/// Compares a list that grows by so many places, if that is not 1 with spare ones, with a vector of all its places.
template <class CONTAINER>
string list_difference(CONTAINER& ours, std::vector<int> all, std::size_t step, PROGRAM in) {
  for (std::size_t size = 0; !in.ended();) {
    const std::size_t operation = in.below(8), n = in.below(9);
    const int x = n < size ? all[n] : int(n);
    const bool stays = operation == 0 && step > 1 && n <= all.size();
    const bool done = under_test([&] {
      if (operation == 0) ours.resize(int(n));
      if (operation == 1) ours.hard_resize(int(n));
      if (operation == 2) ours.set_ptr_and_size(new NUMBER[n], int(n));
      if (operation > 2) ours.add(n < size ? ours[int(n)] : NUMBER{x});
    });
    if (!done && ours.ptr == nullptr) all.resize(size = 0); // or else it is what it was
    if (done && operation < 3 && !stays) all.assign(n, 0);
    if (done && operation < 3) size = n;
    if (done && operation > 2 && (step == 1 || size == all.size())) all.resize(size + step);
    if (done && operation > 2) all[size++] = x;
    int index = -7;
    const auto end = all.begin() + std::ptrdiff_t(size), at = std::find(all.begin(), end, x);
    const auto position = at == end ? -1 : at - all.begin();
    string found = shown(ours.is_in({x}, index), ours.is_in({x}), index, ours.first_occurrence({x}),
                         ours.count_occurrence({x}), ours.size);
    string expected =
        shown(at != end, at != end, at == end ? -7 : position, position, std::count(all.begin(), end, x), size);
    for (NUMBER const& element : ours) found += shown(element.n);
    for (std::size_t i = 0; i < size; ++i) expected += shown(all[i]);
    if (found != expected) return shown("operation", operation, "step", step) + difference(found, expected);
  }
  return "";
}

} // namespace

string containers_difference(string const& program) {
  LIST<NUMBER> list;
  BUFF_LIST<NUMBER> buffer(2, 3);
  const BUFF_LIST<NUMBER> least(-1, -1);
  return list_difference(list, {}, 1, {program}) + list_difference(buffer, {0, 0}, 3, {program}) +
         difference(shown(least.capacity, least.increment), "0 1 ");
}
