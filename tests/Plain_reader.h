#pragma once

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "lib/strings/Stringpp.h"
#include "tests/Scratch_directory.h"

/// What `ASCII_FILE` does, one character at a time over text that it holds whole: slow, plain, and with all fields left
/// behind.
struct PLAIN_READER {
  using TEXT = std::string;

  static inline std::vector<TEXT> reports;
  static inline PLAIN_READER* current = nullptr;

  TEXT name, bytes;
  bool failed = false, broken = false, at_eof = false, success = false, line_changed = false;
  int skip_comments = 1;
  long at = 0, previous = 0;
  std::unique_ptr<PLAIN_READER> included;
  PLAIN_READER* parent = nullptr;
  std::vector<std::pair<TEXT, TEXT>> defs;

  explicit PLAIN_READER(TEXT n) : name(std::move(n)) { open(); }
  ~PLAIN_READER() { current = nullptr; }

  void open() {
    std::error_code none;
    const auto kind = std::filesystem::status(name, none).type();
    failed = kind == std::filesystem::file_type::not_found || name.empty(), success = !failed;
    broken = kind == std::filesystem::file_type::directory;
    bytes = failed || broken ? "" : contents(name);
    at_eof = line_changed = false, at = 0;
    set_position();
  }
  bool get(char& c) {
    if (!failed && !broken && at == std::ssize(bytes)) at_eof = true;
    failed = failed || at_eof || broken;
    if (!failed) c = bytes[static_cast<std::size_t>(at++)];
    return !failed;
  }
  long position() const { return failed ? -1 : at; }
  void set_position() { previous = position(); }
  void go(long p) {
    if (failed) open();
    if (failed) return;
    at_eof = false;
    (p < 0 ? failed = true : at = p);
  }
  void back() { go(previous); }
  void rewind() { go(0), set_position(); }
  bool get_next(char& c) { return set_position(), get(c); }
  void empty_line() {
    for (char c = 0; get(c) && c != '\n' && c != '\r' && c != '\0';) continue;
  }
  void read_spaces() {
    char c = ' ';
    while (get(c) && c == ' ') continue;
    if (!failed) --at;
  }
  static bool allowed(char c) {
    return c != '\0' && (isascii(c) != 0) && (std::isalnum(c) != 0 || std::strchr("!\"#$()*+-./=\\_{}~", c) != nullptr);
  }

  TEXT token() {
    for (;;) {
      if (included) {
        TEXT t = included->token();
        success = included->success;
        if (t != "EOF") return mask(t);
        included.reset();
      }
      current = this, line_changed = false, set_position();
      char c = 0;
      for (;;) {
        if (!get(c)) return success = false, "EOF";
        if (c == '\n' || c == '\r') line_changed = true;
        if (skip_comments && (c == '%' || c == '#')) {
          line_changed = true;
          empty_line();
        } else if (allowed(c)) {
          break;
        }
      }
      TEXT t;
      do t += c;
      while (get(c) && allowed(c));
      failed ? failed = at_eof = false : --at;
      if (t != "#define") return success = true, mask(t);
      add_def();
    }
  }
  /// What was read, if it stands on the current line.
  TEXT same_line(TEXT const& read) { return line_changed ? (back(), success = false, "") : read; }
  TEXT line() {
    const long start = position();
    char c = 0;
    while (get_next(c) && c == '\n') continue;
    if (!get_next(c)) return success = false, "";
    back(), --at;
    TEXT t;
    bool comment = false;
    while (get_next(c) && c != '\n' && c != '\r' && c != '\0') {
      comment = comment || (skip_comments && (c == '%' || c == '#'));
      if (!comment) t += c;
    }
    return success = true, previous = start, t;
  }
  /// A token that `accepts` lets through, with `true` to put one back at the end of the file as well.
  TEXT number(bool (*accepts)(TEXT const&), bool back_at_end) {
    TEXT t = token();
    if (success && accepts(t)) return t;
    if (success || back_at_end) back();
    return success = false, "0";
  }
  void locate_next(TEXT const& key) {
    success = true;
    while (token() != key && success) continue;
  }
  void skip_until(TEXT const& prefix) {
    success = true;
    TEXT t = token();
    while (!t.starts_with(prefix) && t != "EOF") t = token();
    t.starts_with(prefix) ? back() : void(success = false);
  }

  void add_def() {
    TEXT word[2];
    for (const bool value : {false, true}) {
      read_spaces();
      for (char c = 0; c != ' ';) {
        if (!get(c)) break;
        const bool end = c == '\n' || c == '\r';
        if (c == ' ' || (end && value)) break;
        if (end) reports.push_back("unxpected end of file met while reading #define");
        if (!end && (!allowed(c) || c == '#')) reports.push_back("character not allowed in #define");
        if (c != '\0') word[value] += c;
      }
      if (failed && !value) {
        reports.push_back("unxpected end of file met while reading #define");
        return;
      }
    }
    auto& table = root().defs;
    const auto same_key = [&](auto const& def) { return def.first == word[0]; };
    if (std::any_of(table.begin(), table.end(), same_key)) reports.push_back("Def key in");
    table.emplace_back(word[0], word[1]);
  }
  PLAIN_READER& root() { return parent ? parent->root() : *this; }
  TEXT mask(TEXT const& word) {
    for (auto const& [key, value] : root().defs) {
      if (key == word) return value;
    }
    return word;
  }
  void include() {
    included = std::make_unique<PLAIN_READER>(token());
    included->parent = this;
  }

  static void file_info(TEXT& file, int& line) {
    if (!current) return;
    PLAIN_READER& f = *current;
    const bool before = f.success;
    const long end = f.position();
    file = f.name, line = 1;
    f.go(0);
    TEXT text;
    for (char c = 0; f.position() < end && f.get_next(c);) {
      if (c != '\0') text += c;
      if (c != '\n' && c != '\r') continue;
      line += line < INT_MAX;
      if (text[0] == '#' && text.find(' ') != TEXT::npos) marker(text.substr(text.find(' ') + 1), file, line);
      text = "";
    }
    f.success = before;
  }
  static void marker(TEXT const& words, TEXT& file, int& line) {
    STRING rest(words.c_str());
    const int number = rest.getint();
    if (!rest.ok) return;
    line = number;
    const TEXT word = rest.getSTRING().str;
    if (!rest.ok) return;
    file = word;
    std::replace(file.begin(), file.end(), '"', ' ');
  }
};
