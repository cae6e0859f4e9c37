#include "kmakeindex/Letters.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace {

const std::map<std::string_view, std::string_view> accents = {
    {"`", "\u0300"}, {"'", "\u0301"},  {"^", "\u0302"}, {"~", "\u0303"}, {"=", "\u0304"}, {"u", "\u0306"},
    {".", "\u0307"}, {"\"", "\u0308"}, {"h", "\u0309"}, {"r", "\u030A"}, {"H", "\u030B"}, {"v", "\u030C"},
    {"G", "\u030F"}, {"d", "\u0323"},  {"c", "\u0327"}, {"k", "\u0328"}, {"b", "\u0331"}, {"t", "\u0361"},
};

const std::map<std::string_view, std::string_view> letters = {
    {"AA", "Å"}, {"aa", "å"}, {"AE", "Æ"}, {"ae", "æ"}, {"DH", "Ð"}, {"dh", "ð"}, {"DJ", "Đ"}, {"dj", "đ"},
    {"i", "ı"},  {"j", "ȷ"},  {"L", "Ł"},  {"l", "ł"},  {"NG", "Ŋ"}, {"ng", "ŋ"}, {"O", "Ø"},  {"o", "ø"},
    {"OE", "Œ"}, {"oe", "œ"}, {"SS", "ẞ"}, {"ss", "ß"}, {"TH", "Þ"}, {"th", "þ"},
};

/// Reads a text and puts together what it says.
class READER {
public:
  explicit READER(std::string_view of) : text(of) {}

  std::string read() {
    while (at < text.size()) read_one(said);
    return said;
  }

private:
  std::string_view text;
  std::size_t at = 0;
  int depth = 0; ///< of accents on accents
  std::string said;

  bool is_at(char c) const { return at < text.size() && text[at] == c; }

  void read_one(std::string& out) {
    if (text[at] == '\\' && read_letter(out)) return;
    if (text[at] == '{' && read_group(out)) return;
    out += text[at] == '~' ? ' ' : text[at];
    ++at;
  }

  /// A letter alone in braces.
  bool read_group(std::string& out) {
    const std::size_t begin = at++;
    std::string letter;
    if (is_at('\\') && read_letter(letter) && is_at('}')) {
      ++at;
      out += letter;
      return true;
    }
    at = begin;
    return false;
  }

  /// Passes over a command that stands for a letter and adds that. Else stays where it is.
  bool read_letter(std::string& out) {
    const std::size_t begin = at;
    const std::size_t end = end_of_command(text, at);
    const std::string_view name = text.substr(at + 1, end - at - 1);
    at = end;
    if (name == " ") {
      out += ' ';
      return true;
    }
    if (const auto accent = accents.find(name); accent != accents.end()) {
      at = skip_blanks(text, at);
      ++depth;
      const bool has_base = read_base(out, accent->second);
      --depth;
      if (has_base) return true;
    } else if (const auto letter = letters.find(name); letter != letters.end()) {
      out += letter->second;
      at = skip_blanks(text, at);
      if (text.substr(at, 2) == "{}") at += 2;
      return true;
    }
    at = begin;
    return false;
  }

  /// The letter that an accent stands on, or the two in braces. An i or j with an accent has its dot in the order.
  bool read_base(std::string& out, std::string_view accent) {
    const bool in_braces = is_at('{');
    if (in_braces) ++at;
    if (at == text.size() || is_at('}')) return false;
    std::string base;
    if (depth == 3 || text[at] != '\\' || !read_letter(base)) read_character(base);
    if (base == "ı") base = "i";
    if (base == "ȷ") base = "j";
    base += accent;
    if (in_braces && at < text.size() && text[at] != '}') read_character(base);
    if (in_braces && !is_at('}')) return false;
    if (in_braces) ++at;
    out += base;
    return true;
  }

  void read_character(std::string& out) {
    do {
      out += text[at++];
    } while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U);
  }
};

} // namespace

std::size_t end_of_command(std::string_view text, std::size_t begin) {
  const auto is_letter = [](unsigned char c) { return std::isalpha(c) != 0; };
  std::size_t end = std::min(begin + 1, text.size());
  while (end < text.size() && is_letter(static_cast<unsigned char>(text[end]))) ++end;
  return end == begin + 1 ? std::min(end + 1, text.size()) : end;
}

std::size_t skip_blanks(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(' ', at), text.size());
}

std::string as_letters(std::string_view text) { return READER(text).read(); }
