#include "kmakeindex/Key.h"

#include <algorithm>

#include "kmakeindex/Letters.h"
#include "kmakeindex/Typed_key.h"

namespace {

constexpr std::size_t most_levels = 3;

/// Takes a key in the syntax of makeindex apart.
class KEY_READER {
public:
  KEY_READER(std::string_view of, KEY_SYNTAX const& with, COMPLAIN const& to)
      : source(of), syntax(with), style(with.style), complain(to) {}

  KEY read() {
    read_level();
    while (at < source.size() && source[at] == style.level) {
      ++at;
      read_level();
    }
    star_is_quoted = last_is_quoted;
    if (at < source.size()) read_command();
    take_star();
    if (has_empty_level) complain("has an empty level");
    if (has_more_levels) complain("has more than three levels");
    for (KEY::LEVEL& level : key.levels) finish(level);
    return key;
  }

private:
  enum class FIELD { PLACE, TEXT, COMMAND };

  std::string_view source;
  KEY_SYNTAX const& syntax;
  STYLE const& style;
  COMPLAIN const& complain;
  std::size_t at = 0;
  KEY key;
  bool last_is_quoted = false; ///< the last character of the field that was read last
  bool star_is_quoted = false; ///< the last character before the command
  bool has_empty_level = false, has_more_levels = false;

  bool is_at(char c) const { return at < source.size() && source[at] == c; }

  /// The text up to a sign of the syntax that is not quoted, or in a command up to the end.
  std::string read_field(FIELD kind) {
    std::string field;
    bool is_escaped = false;
    last_is_quoted = false;
    for (; at < source.size(); ++at) {
      const char c = source[at];
      last_is_quoted = c == style.quote && !is_escaped && at + 1 < source.size();
      is_escaped = c == style.escape && !is_escaped;
      if (last_is_quoted) {
        field += source[++at];
        continue;
      }
      if (kind != FIELD::COMMAND && (c == style.level || c == style.encap)) break;
      if (kind == FIELD::COMMAND && c == style.encap) complain("has a second " + std::string(1, c));
      if (kind == FIELD::PLACE && c == style.actual) break;
      if (kind == FIELD::TEXT && c == style.actual) {
        complain("has a second " + std::string(1, c) + ", which is part of the text");
      }
      field += c;
    }
    return syntax.compresses_blanks ? compress_blanks(field) : field;
  }

  static std::string compress_blanks(std::string_view field) {
    std::string compressed;
    for (const char c : field) {
      const bool is_blank = c == ' ' || c == '\t';
      if (!is_blank) compressed += c;
      if (is_blank && !compressed.empty() && compressed.back() != ' ') compressed += ' ';
    }
    if (compressed.ends_with(' ')) compressed.pop_back();
    return compressed;
  }

  void read_level() {
    KEY::LEVEL level = {read_field(FIELD::PLACE), "", is_at(style.actual)};
    if (level.has_text) {
      ++at;
      level.text = read_field(FIELD::TEXT);
    }
    if (level.text.empty()) {
      if (level.has_text) complain("has no text after " + std::string(1, style.actual));
      level.text = level.place;
      level.has_text = false;
    } else if (level.place.empty()) {
      complain("has no text before " + std::string(1, style.actual));
      level.place = level.text;
    }
    add(level);
  }

  void add(KEY::LEVEL const& level) {
    if (level.text.empty()) {
      has_empty_level = true;
    } else if (key.levels.size() < most_levels) {
      key.levels.push_back(level);
    } else {
      has_more_levels = true;
      KEY::LEVEL& last = key.levels.back();
      last.place += ", " + level.place;
      last.text += ", " + level.text;
      last.has_text = last.has_text || level.has_text;
    }
  }

  /// A star counts at the end of what is before the command; \indexmain puts it after that.
  void take_star() {
    if (!syntax.star_is_principal() || key.levels.empty()) return;
    KEY::LEVEL& last = key.levels.back();
    if (key.command.ends_with('*')) {
      key.command.pop_back();
    } else if (!star_is_quoted && ends_in_star(last.text)) {
      last.text.pop_back();
      if (!last.has_text) last.place.pop_back();
    } else {
      return;
    }
    key.is_principal = true;
  }

  void read_command() {
    ++at;
    if (is_at(style.range_open)) key.range = KEY::RANGE::BEGIN;
    if (is_at(style.range_close)) key.range = KEY::RANGE::END;
    if (key.range != KEY::RANGE::NONE) ++at;
    key.command = read_field(FIELD::COMMAND);
    if (has_unmatched_braces(key.command)) {
      complain("has braces that do not match in its command");
      key.command.clear();
    }
  }

  void finish(KEY::LEVEL& level) const {
    const bool is_same = !level.has_text;
    level.text = with_matched_braces(level.text, complain);
    if (is_same && level.text != level.place) level.has_text = true;
  }
};

KEY read_typed_key(std::string_view source, KEY_SYNTAX const& syntax, COMPLAIN const& complain) {
  KEY key;
  std::string typed = as_typed(source);
  key.is_principal = ends_in_star(typed);
  if (key.is_principal) typed = as_typed(typed.substr(0, typed.size() - 1));
  if (typed.empty()) {
    complain("is empty");
    return key;
  }
  const std::string text = as_latex(typed, syntax.has_package, complain);
  const std::string place = trim(typed, " ~");
  key.levels.push_back({place, text, text != place});
  return key;
}

} // namespace

bool KEY::is_reference() const {
  std::string_view rest = command;
  for (std::string_view const prefix : {"hyperindexformat{\\", "see", "also"}) {
    if (rest.starts_with(prefix))
      rest.remove_prefix(prefix.size());
    else if (prefix == "see")
      return false;
  }
  return rest.substr(skip_blanks(rest, 0)).starts_with('{');
}

KEY_SYNTAX::KEY_SYNTAX(STYLE const& with, bool typed, bool with_package, bool compressing)
    : style(with), is_typed(typed), has_package(with_package), compresses_blanks(compressing) {
  const std::string in_typed_keys = "\\{}$_&%#^|\"<>~*\t";
  const std::string in_others = {'\\',        '{',          '}',         '*',         '\t',
                                 style.level, style.actual, style.encap, style.quote, style.escape};
  for (const char c : typed ? in_typed_keys : in_others) has_meaning[static_cast<unsigned char>(c)] = true;
}

bool KEY_SYNTAX::is_plain(std::string_view key) const {
  if (key.empty()) return false;
  const bool has_blanks = !is_typed && !compresses_blanks;
  bool after_blank = true;
  for (const char c : key) {
    if (has_meaning[static_cast<unsigned char>(c)] || (c == ' ' && after_blank && !has_blanks)) return false;
    after_blank = c == ' ';
  }
  return !after_blank || has_blanks;
}

KEY read_key(std::string_view key, KEY_SYNTAX const& syntax, COMPLAIN const& complain) {
  return syntax.is_typed ? read_typed_key(key, syntax, complain) : KEY_READER(key, syntax, complain).read();
}

std::string target_of_reference(std::string_view command) {
  const std::size_t begin = command.find("see");
  const std::size_t open = command.find('{', begin);
  std::string target(command.substr(open + 1));
  target.resize(std::min(target.rfind('}'), target.size()));
  return target;
}
