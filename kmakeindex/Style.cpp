#include "kmakeindex/Style.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>
#include <variant>

#include "kmakeindex/Files.h"

namespace {

using FIELD = std::variant<char STYLE::*, std::string STYLE::*, int STYLE::*>;

const std::map<std::string, FIELD> specifiers = {
    {"actual", &STYLE::actual},
    {"arg_close", &STYLE::arg_close},
    {"arg_open", &STYLE::arg_open},
    {"delim_0", &STYLE::delim_0},
    {"delim_1", &STYLE::delim_1},
    {"delim_2", &STYLE::delim_2},
    {"delim_n", &STYLE::delim_n},
    {"delim_r", &STYLE::delim_r},
    {"delim_t", &STYLE::delim_t},
    {"encap", &STYLE::encap},
    {"encap_infix", &STYLE::encap_infix},
    {"encap_prefix", &STYLE::encap_prefix},
    {"encap_suffix", &STYLE::encap_suffix},
    {"escape", &STYLE::escape},
    {"group_skip", &STYLE::group_skip},
    {"heading_prefix", &STYLE::heading_prefix},
    {"heading_suffix", &STYLE::heading_suffix},
    {"headings_flag", &STYLE::headings_flag},
    {"icu_locale", &STYLE::icu_locale},
    {"indent_length", &STYLE::indent_length},
    {"indent_space", &STYLE::indent_space},
    {"item_0", &STYLE::item_0},
    {"item_01", &STYLE::item_01},
    {"item_1", &STYLE::item_1},
    {"item_12", &STYLE::item_12},
    {"item_2", &STYLE::item_2},
    {"item_x1", &STYLE::item_x1},
    {"item_x2", &STYLE::item_x2},
    {"keyword", &STYLE::keyword},
    {"level", &STYLE::level},
    {"line_max", &STYLE::line_max},
    {"numhead_negative", &STYLE::numhead_negative},
    {"numhead_positive", &STYLE::numhead_positive},
    {"page_compositor", &STYLE::page_compositor},
    {"page_precedence", &STYLE::page_precedence},
    {"postamble", &STYLE::postamble},
    {"preamble", &STYLE::preamble},
    {"quote", &STYLE::quote},
    {"range_close", &STYLE::range_close},
    {"range_open", &STYLE::range_open},
    {"setpage_prefix", &STYLE::setpage_prefix},
    {"setpage_suffix", &STYLE::setpage_suffix},
    {"suffix_2p", &STYLE::suffix_2p},
    {"suffix_3p", &STYLE::suffix_3p},
    {"suffix_mp", &STYLE::suffix_mp},
    {"symhead_negative", &STYLE::symhead_negative},
    {"symhead_positive", &STYLE::symhead_positive},
};

/// Reads the pairs of a style file from its text.
class STYLE_READER {
public:
  STYLE_READER(std::string const& file, std::string_view of, STYLE& changed, MESSAGES& to)
      : name(file), text(of), style(changed), messages(to) {}

  void read() {
    while (skip_to_word()) {
      const unsigned long first_line = line;
      std::string const specifier = word();
      const auto found = specifiers.find(specifier);
      if (found == specifiers.end()) {
        complain(first_line, "no specifier is named " + specifier);
      } else if (!skip_to_word() || !std::visit([&](auto field) { return take(style.*field); }, found->second)) {
        complain(first_line, "the value of " + specifier + " is none that it can have");
      }
    }
  }

private:
  std::string const& name;
  std::string_view text;
  STYLE& style;
  MESSAGES& messages;
  std::size_t at = 0;
  unsigned long line = 1;

  bool at_end() const { return at == text.size(); }
  bool at_blank() const { return std::isspace(static_cast<unsigned char>(text[at])) != 0; }

  char next() {
    if (text[at] == '\n') ++line;
    return text[at++];
  }

  void skip_line() {
    while (!at_end() && text[at] != '\n') next();
  }

  /// Passes over blanks and comments. Returns whether anything is left.
  bool skip_to_word() {
    while (!at_end() && (at_blank() || text[at] == '%')) {
      if (text[at] == '%') {
        skip_line();
      } else {
        next();
      }
    }
    return !at_end();
  }

  std::string word() {
    std::string found;
    while (!at_end() && !at_blank()) found += static_cast<char>(std::tolower(static_cast<unsigned char>(next())));
    return found;
  }

  /// The rest of its line is passed over.
  void complain(unsigned long first_line, std::string const& what) {
    messages.warn(name, first_line, what);
    if (line == first_line) skip_line();
  }

  bool take(std::string& value) {
    if (text[at] != '"') return false;
    const unsigned long first_line = line;
    std::string found;
    next();
    while (!at_end() && text[at] != '"') {
      char c = next();
      if (c == '\\' && !at_end()) {
        c = next();
        c = c == 'n' ? '\n' : c == 't' ? '\t' : c;
      }
      found += c;
    }
    if (at_end()) throw FAILURE(name + ':' + std::to_string(first_line) + ": a string that begins here does not end");
    next();
    value = found;
    return true;
  }

  bool take(char& value) {
    if (text[at] != '\'') return false;
    std::size_t size = 3;
    if (text.substr(at, 2) == "'\\") size = 4;
    if (text.size() - at < size || text[at + size - 1] != '\'' || text.substr(at, size) == "'''") return false;
    value = text[at + size - 2];
    at += size;
    return true;
  }

  bool take(int& value) {
    if (text[at] == '+') ++at;
    const bool is_flag = &value == &style.headings_flag;
    int number = 0;
    const auto [end, error] = std::from_chars(text.data() + at, text.data() + text.size(), number);
    if (error != std::errc() || (number < 0 && !is_flag)) return false;
    if (number == 0 && &value == &style.line_max) return false;
    at = static_cast<std::size_t>(end - text.data());
    value = number;
    return true;
  }
};

/// What kpsewhich finds; empty if it finds nothing, or is not there.
std::string kpsewhich(std::string const& name) {
  std::string quoted;
  for (const char c : name) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  const std::string command = "kpsewhich -format=ist -- '" + quoted + "' 2> /dev/null";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string path;
  if (pipe == nullptr) return path;
  for (int c = 0; (c = std::getc(pipe.get())) != EOF && c != '\n';) path += static_cast<char>(c);
  return path;
}

/// The path of a style file, which may lack its .ist; empty if there is none.
std::string find_style(std::string const& name) {
  std::vector<std::string> directories;
  char const* const path = std::getenv("INDEXSTYLE");
  std::istringstream list(path == nullptr || name.starts_with('/') ? "" : path);
  for (std::string directory; std::getline(list, directory, ':');) directories.push_back(directory + '/');
  directories.emplace_back("");
  for (std::string const& directory : directories) {
    for (std::string const& candidate : {directory + name, directory + name + ".ist"}) {
      if (is_file(candidate)) return candidate;
    }
  }
  return kpsewhich(name);
}

} // namespace

STYLE package_style() {
  STYLE style;
  style.headings_flag = 1;
  style.heading_prefix = "\n  \\indexletter{";
  style.sign_heading_prefix = "\n  \\indexgroup{";
  style.heading_suffix = '}';
  style.symhead_positive = style.symhead_negative = "\\indexsymbols";
  style.numhead_positive = style.numhead_negative = "\\indexnumbers";
  style.delim_0 = style.delim_1 = style.delim_2 = "\\indexdelimiter ";
  style.has_page_commands = true;
  return style;
}

void read_style(std::string const& name, STYLE& style, MESSAGES& messages) {
  const std::string path = find_style(name);
  if (path.empty()) throw FAILURE("kmakeindex: there is no style file " + name);
  const std::string text = read_file(path);
  const STYLE before = style;
  STYLE_READER(path, text, style, messages).read();
  if (style.quote == style.escape) {
    messages.warn(path, 1, "quote and escape are the same sign");
    style.quote = before.quote;
    style.escape = before.escape;
  }
  if (style.heading_prefix != before.heading_prefix) style.sign_heading_prefix = style.heading_prefix;
}
