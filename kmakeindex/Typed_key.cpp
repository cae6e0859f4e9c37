#include "kmakeindex/Typed_key.h"

#include <algorithm>
#include <array>
#include <vector>

#include "kmakeindex/Letters.h"

namespace {

constexpr std::size_t none = std::string_view::npos;

/// Commands whose argument, or first argument, stays as it is.
constexpr std::array<std::string_view, 7> verbatim_commands = {"ref", "pageref", "label",     "cite",
                                                               "url", "href",    "ensuremath"};

/// What prints a sign that has a meaning in LaTeX, in a way that every font encoding has.
std::string_view escaped(char c) {
  switch (c) {
  case '_': return "\\_";
  case '&': return "\\&";
  case '%': return "\\%";
  case '#': return "\\#";
  case '$': return "\\$";
  case '{': return "\\{";
  case '}': return "\\}";
  case '^': return "\\textasciicircum{}";
  case '|': return "\\textbar{}";
  case '"': return "\\symbol{34}";
  case '<': return "\\textless{}";
  case '>': return "\\textgreater{}";
  case '\\': return "\\textbackslash{}";
  default: return {};
  }
}

/// The end of \verb and its text, which begins at `at`, after the name; or `none` where that does not end.
std::size_t end_of_verb(std::string_view text, std::size_t at) {
  if (at < text.size() && text[at] == '*') ++at;
  if (at == text.size()) return none;
  const std::size_t end = text.find(text[at], at + 1);
  return end == none ? none : end + 1;
}

/// A piece of a text that stays together.
struct PIECE {
  enum class KIND { SIGN, COMMAND, VERBATIM, OPEN, CLOSE } kind;
  std::string_view text;
  bool is_matched = true; ///< a brace
};

/// Takes a text apart.
class SPLITTER {
public:
  SPLITTER(std::string_view of, bool with_mathematics) : text(of), has_mathematics(with_mathematics) { match_braces(); }

  std::vector<PIECE> split() {
    while (at < text.size()) {
      switch (text[at]) {
      case '\\': take_command(); break;
      case '$': take_mathematics(); break;
      case '{': take(PIECE::KIND::OPEN, at + 1); break;
      case '}': take(PIECE::KIND::CLOSE, at + 1); break;
      default: take(PIECE::KIND::SIGN, at + 1); break;
      }
    }
    match_pieces();
    return pieces;
  }

private:
  std::string_view text;
  bool has_mathematics;
  std::size_t at = 0;
  std::vector<PIECE> pieces;
  std::vector<std::size_t> partners; ///< where the brace is that closes the one here, or `none`
  bool may_end_mathematics = true;   ///< whether there may be a \) further on

  void take(PIECE::KIND kind, std::size_t end) {
    pieces.push_back({kind, text.substr(at, end - at)});
    at = end;
  }

  void match_braces() {
    partners.assign(text.size(), none);
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\\') {
        ++i;
      } else if (text[i] == '{') {
        open.push_back(i);
      } else if (text[i] == '}' && !open.empty()) {
        partners[open.back()] = i;
        open.pop_back();
      }
    }
  }

  void take_command() {
    const std::size_t end = end_of_command(text, at);
    const std::string_view name = text.substr(at + 1, end - at - 1);
    std::size_t verbatim = none;
    if (name == "verb") verbatim = end_of_verb(text, end);
    if (name == "(" && has_mathematics) verbatim = end_of_mathematics(end);
    if (std::count(verbatim_commands.begin(), verbatim_commands.end(), name) > 0) verbatim = end_of_argument(end);
    if (verbatim != none) return take(PIECE::KIND::VERBATIM, verbatim);
    if (name.empty() || (has_mathematics && (name == "(" || name == "verb"))) return take(PIECE::KIND::SIGN, at + 1);
    take(PIECE::KIND::COMMAND, end);
    if (name == "string" && at < text.size() && text[at] != '\\') take(PIECE::KIND::COMMAND, at + 1);
  }

  std::size_t end_of_mathematics(std::size_t from) {
    const std::size_t end = may_end_mathematics ? text.find("\\)", from) : none;
    may_end_mathematics = end != none;
    return end == none ? none : end + 2;
  }

  /// After an optional argument, that in braces.
  std::size_t end_of_argument(std::size_t from) const {
    if (from < text.size() && text[from] == '[') {
      const std::size_t close = text.find_first_of("]{}\\", from);
      if (close == none || text[close] != ']') return none;
      from = close + 1;
    }
    if (from == text.size() || text[from] != '{' || partners[from] == none) return none;
    return partners[from] + 1;
  }

  void take_mathematics() {
    std::size_t end = at + 1;
    while (has_mathematics && end < text.size() && text[end] != '$') end += text[end] == '\\' ? 2 : 1;
    const bool is_closed = has_mathematics && end < text.size();
    const bool is_whole = is_closed && !has_unmatched_braces(text.substr(at, end - at));
    take(is_whole ? PIECE::KIND::VERBATIM : PIECE::KIND::SIGN, is_whole ? end + 1 : at + 1);
  }

  void match_pieces() {
    std::vector<PIECE*> open;
    for (PIECE& piece : pieces) {
      if (piece.kind == PIECE::KIND::OPEN) open.push_back(&piece);
      if (piece.kind != PIECE::KIND::CLOSE) continue;
      piece.is_matched = !open.empty();
      if (piece.is_matched) open.pop_back();
    }
    for (PIECE* const piece : open) piece->is_matched = false;
  }
};

/// Puts the pieces together again, with the signs that cannot be as they are.
std::string put_together(std::vector<PIECE> const& pieces, bool escapes_signs, COMPLAIN const& complain) {
  std::string text;
  bool has_unmatched = false;
  for (PIECE const& piece : pieces) {
    const bool is_brace = piece.kind == PIECE::KIND::OPEN || piece.kind == PIECE::KIND::CLOSE;
    const bool is_backslash = piece.kind == PIECE::KIND::SIGN && piece.text == "\\";
    has_unmatched = has_unmatched || !piece.is_matched;
    const bool is_last = &piece == &pieces.back();
    if (is_backslash) complain(is_last ? "ends in a backslash" : "has mathematics or verbatim text that does not end");
    if (escapes_signs && piece.kind == PIECE::KIND::SIGN && piece.text == "$") complain("has a single $");
    const bool becomes_sign =
        is_brace ? !piece.is_matched : piece.kind == PIECE::KIND::SIGN && (escapes_signs || is_backslash);
    const std::string_view sign = becomes_sign ? escaped(piece.text[0]) : std::string_view();
    text += sign.empty() ? piece.text : sign;
  }
  if (has_unmatched) complain("has braces that do not match");
  return text;
}

/// Reads what LaTeX has written, as it was typed.
class TYPED_READER {
public:
  explicit TYPED_READER(std::string_view of) : key(of) {}

  std::string read() {
    while (at < key.size()) {
      const char c = key[at];
      if (c == ' ' || c == '\t') {
        blank = !typed.empty();
        ++at;
      } else if (c == '\\') {
        read_command();
      } else {
        if (c == '{') dropped.push_back(false);
        add(1);
      }
    }
    return typed;
  }

private:
  std::string_view key;
  std::size_t at = 0;
  std::string typed;
  bool blank = false;        ///< before what comes next
  std::vector<bool> dropped; ///< whether the braces that are open go

  void add(std::size_t size) {
    if (key[at] == '}' && !dropped.empty()) {
      const bool goes = dropped.back();
      dropped.pop_back();
      if (goes) {
        ++at;
        return;
      }
    }
    if (blank) typed += ' ';
    blank = false;
    typed += key.substr(at, size);
    at += size;
  }

  void read_command() {
    const std::size_t end = end_of_command(key, at);
    const std::string_view name = key.substr(at + 1, end - at - 1);
    const std::size_t next = skip_blanks(key, end);
    if (name == "protect") {
      at = next;
    } else if (name == "nobreakspace") {
      blank = false;
      typed += '~';
      at = key.substr(next, 2) == "{}" ? next + 2 : next;
    } else if (name == "IeC" && key.substr(next, 1) == "{") {
      dropped.push_back(true);
      at = next + 1;
    } else if (name == "verb" && end_of_verb(key, end) != none) {
      add(end_of_verb(key, end) - at);
    } else {
      add(end - at);
      if (name == " " || name.size() > 1 || is_letter(name)) skip_after_command(next);
    }
  }

  static bool is_letter(std::string_view name) {
    return name.size() == 1 && (('a' <= name[0] && name[0] <= 'z') || ('A' <= name[0] && name[0] <= 'Z'));
  }

  /// Blanks after the name of a command do not count, but part it from a letter.
  void skip_after_command(std::size_t next) {
    const std::string_view first = key.substr(next, 1);
    blank = next > at && is_letter(first) && typed.back() != ' ';
    at = next;
  }
};

} // namespace

std::string as_typed(std::string_view key) { return TYPED_READER(key).read(); }

std::string as_latex(std::string_view typed, bool has_package, COMPLAIN const& complain) {
  std::vector<PIECE> pieces = SPLITTER(typed, true).split();
  for (PIECE& piece : pieces) {
    if (has_package && piece.kind == PIECE::KIND::SIGN && piece.text == "\"") {
      piece = {PIECE::KIND::COMMAND, "\\textquotedbl{}"};
    }
  }
  return put_together(pieces, true, complain);
}

std::string with_matched_braces(std::string_view text, COMPLAIN const& complain) {
  if (text.find_first_of("\\{}") == none) return std::string(text);
  return put_together(SPLITTER(text, false).split(), false, complain);
}

bool has_unmatched_braces(std::string_view text) {
  std::size_t depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\')
      ++i;
    else if (text[i] == '{')
      ++depth;
    else if (text[i] == '}' && depth-- == 0)
      return true;
  }
  return depth != 0;
}

bool ends_in_star(std::string_view text) {
  if (text.size() < 2 || !text.ends_with('*')) return false;
  const std::size_t before = text.find_last_not_of('\\', text.size() - 2);
  const std::size_t backslashes = text.size() - 2 - before; // also where nothing else is before
  return backslashes % 2 == 0;
}

std::string trim(std::string_view text, std::string_view characters) {
  const std::size_t begin = text.find_first_not_of(characters);
  if (begin == none) return std::string(text);
  return std::string(text.substr(begin, text.find_last_not_of(characters) - begin + 1));
}
