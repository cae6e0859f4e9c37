#include "kmakeindex/Raw_index.h"

#include <md5.h>

#include <algorithm>
#include <array>
#include <sstream>

#include "kmakeindex/Order.h"

namespace {

constexpr std::size_t none = std::string_view::npos;

bool is_blank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim_blanks(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

/// Takes a line of a raw index apart.
class LINE_READER {
public:
  LINE_READER(std::string_view of, STYLE const& with) : line(trim_blanks(of)), style(with) {}

  /// What is wrong with the line that `read` has read; empty if nothing is.
  std::string_view fault;

  std::optional<RAW_ENTRY> read() {
    if (!line.starts_with(style.keyword)) return reject("is no entry");
    rest = trim_blanks(line.substr(style.keyword.size()));
    RAW_ENTRY entry;
    if (style.arg_open != '[' && rest.starts_with('[') && rest.find(']') != none) {
      entry.index_name = rest.substr(1, rest.find(']') - 1);
      rest = trim_blanks(rest.substr(entry.index_name.size() + 2));
    }
    if (!rest.starts_with(style.arg_open)) return reject("is no entry");
    for (const bool has_quotes : {false, true}) {
      if (read_arguments(entry, has_quotes)) return entry;
    }
    return read_unmatched(entry);
  }

private:
  std::string_view line, rest;
  STYLE const& style;

  std::optional<RAW_ENTRY> reject(std::string_view what) {
    fault = what;
    return std::nullopt;
  }

  /// The end of the argument that begins at the beginning of the text: where its closing sign is.
  std::size_t end_of_argument(std::string_view text, bool has_quotes) const {
    std::size_t depth = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
      const char c = text[i];
      if (has_quotes && (c == style.quote || c == style.escape)) {
        ++i;
      } else if (c == style.arg_close && depth-- == 0) {
        return i;
      } else if (c == style.arg_open) {
        ++depth;
      }
    }
    return none;
  }

  /// Two arguments and nothing else.
  bool read_arguments(RAW_ENTRY& entry, bool has_quotes) {
    const std::size_t key_end = end_of_argument(rest, has_quotes);
    if (key_end == none) return false;
    const std::string_view second = trim_blanks(rest.substr(key_end + 1));
    if (!second.starts_with(style.arg_open) || end_of_argument(second, false) != second.size() - 1) return false;
    entry.key = rest.substr(1, key_end - 1);
    entry.page = trim_blanks(second.substr(1, second.size() - 2));
    if (entry.page.empty()) fault = "has no page";
    return true;
  }

  /// Where braces do not match, the last two that are back to back are between the arguments.
  std::optional<RAW_ENTRY> read_unmatched(RAW_ENTRY entry) {
    const std::array<char, 2> between = {style.arg_close, style.arg_open};
    const std::size_t key_end = rest.rfind(std::string_view(between.data(), between.size()));
    if (key_end != none && key_end > 0) {
      entry.key = rest.substr(1, key_end - 1);
      entry.page = rest.substr(key_end + 2);
      const std::size_t page_end = entry.page.find(style.arg_close);
      if (page_end == none) fault = "is cut short";
      if (page_end < entry.page.size() - 1) fault = "goes on after the page"; // braces are told where the key is read
      entry.page = trim_blanks(entry.page.substr(0, page_end));
      return entry;
    }
    const std::size_t only_end = end_of_argument(rest, false);
    if (only_end == none) return reject("is cut short");
    if (!trim_blanks(rest.substr(only_end + 1)).empty()) return reject("is no entry");
    fault = "is cut short";
    entry.key = rest.substr(1, only_end - 1);
    return entry;
  }
};

} // namespace

std::optional<RAW_INDEX::PACKAGE_LINE> RAW_INDEX::package_line() const {
  std::istringstream words(text.substr(0, text.find('\n')));
  std::string sign, package;
  if (!(words >> sign >> package) || sign != "%" || package != "kindex") return std::nullopt;
  PACKAGE_LINE said;
  for (std::string word; words >> word;) {
    if (word == "keys=typed") said.typed_keys = true;
    if (word.starts_with("language=")) said.language = word.substr(word.find('=') + 1);
  }
  return said;
}

std::string RAW_INDEX::digest() const {
  std::array<char, MD5_DIGEST_STRING_LENGTH> digits = {};
  MD5Data(reinterpret_cast<std::uint8_t const*>(text.data()), text.size(), digits.data());
  std::string result = digits.data();
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return 'a' <= c && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
  return result;
}

LINE read_entries(RAW_INDEX const& raw, LINE first_line, STYLE const& style, MESSAGES& messages,
                  std::function<void(RAW_ENTRY const&, LINE)> const& take) {
  LINE line = first_line;
  bool may_have_other_bytes = !is_utf8(raw.text);
  std::string_view text = raw.text;
  if (raw.package_line()) {
    ++line;
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
  for (; !text.empty(); ++line) {
    std::string_view one = text.substr(0, text.find('\n'));
    if (may_have_other_bytes && !is_utf8(one)) {
      may_have_other_bytes = false;
      messages.warn(line, "has bytes that are not in UTF-8");
    }
    text.remove_prefix(std::min(one.size() + 1, text.size()));
    if (one.ends_with('\r')) one.remove_suffix(1);
    if (trim_blanks(one).empty()) continue;
    LINE_READER reader(one, style);
    const std::optional<RAW_ENTRY> entry = reader.read();
    if (!reader.fault.empty()) messages.warn(line, '`' + shown(one) + "' " + std::string(reader.fault));
    if (entry) take(*entry, line);
  }
  return line - first_line;
}
