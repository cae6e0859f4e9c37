#include "tests/Trial.h"

#include <algorithm>

namespace {

using std::string;

constexpr std::size_t operations_shown = 12;

/// The pieces that texts are made of; in the list "^0254" stands for 254 characters.
std::vector<string> all_pieces() {
  std::istringstream list(
      " |  | |\n|\r|\r\n|\n\n|\t|,|;|/|=|%|%c |#|\xe9|\xff\x80|_|a|ab|b|b a|x|A|Z/a|EOF|\\|*|{|}|}{|{a}{1}|{a*}{1}|{B}|"
      "}{2}{b*|12|-7 |+|-|1e99|.5|1.5e3|1.5D+3|-1.e-9|2.D-1|2147483647|-2147483649|-21474836475|in |f1 |f2 |none |. "
      "|#define | \t"
      "|\n#define A |"
      "#define a b\n|#define b A B|# 0 \"\"f\n|# 40 \"x y\" 1\n|\n# 2147483647 f\n|#include <|<|>\n|"
      "\n#include <A/BB.h>\n#include <A/C.h\n|^0254|^0508|{^0997|#include <^1021|\n^4082#include <A.>|^9000");
  std::vector<string> pieces = {string(1, '\0')};
  for (string piece; std::getline(list, piece, '|'); pieces.push_back(piece)) {
    const std::size_t mark = piece.find('^');
    if (mark != string::npos) piece.replace(mark, 5, std::stoul(piece.substr(mark + 1, 4)), 'x');
  }
  return pieces;
}

/// Some bytes from that place on, special ones as in C, and how many there are in all if that is more.
string visible(string const& text, std::size_t from = 0, std::size_t most = 60) {
  std::ostringstream result;
  result << (from > 0 ? "\"..." : "\"") << std::hex << std::setfill('0');
  for (const char c : text.substr(from, most)) {
    if (c >= ' ' && c <= '~') {
      result << c;
    } else {
      result << "\\x" << std::setw(2) << (static_cast<unsigned>(c) & 0xFFU);
    }
  }
  result << (text.size() > from + most ? "...\" of " + std::to_string(text.size()) + " bytes" : "\"");
  return result.str();
}

} // namespace

string TRIAL::text(std::size_t n) {
  static const std::vector<string> pieces = all_pieces();
  string result;
  for (; n > 0 && at < bytes.size(); --n, ++at) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    result += byte < 128 ? string(1, bytes[at]) : pieces[(byte - 128U) % pieces.size()];
  }
  return result;
}

void TRIAL::set_up(string const& name, string const& text) {
  beginning.push_back("  " + name + ": " + visible(text, 0, 300));
}

void TRIAL::do_one_of(std::vector<OPERATION> const& operations, string const& operand) {
  OPERATION const& operation = operations[below(operations.size())];
  operations_done.push_back("  " + subject + operation.name + (operand.empty() ? "" : ' ' + visible(operand)));
  const string found = operation.ours();
  if (!found.empty()) operations_done.back() += " gives " + visible(found);
  compare("result", found, operation.model());
}

void TRIAL::compare_texts(char const* field, string const& found, string const& expected) {
  if (found == expected) return;
  const auto same = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end()).first - found.begin();
  const std::size_t from = same > 30 ? static_cast<std::size_t>(same) - 30 : 0;
  differences += subject + field + ": " + visible(found, from) + ", expected " + visible(expected, from) + '\n';
}

string TRIAL::history() const {
  string result;
  for (string const& line : beginning) result += line + '\n';
  const std::size_t first = operations_done.size() - std::min(operations_done.size(), operations_shown);
  for (std::size_t i = first; i < operations_done.size(); ++i) result += operations_done[i] + '\n';
  return result;
}
