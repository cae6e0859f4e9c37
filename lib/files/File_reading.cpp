#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"
#include "lib/strings/Buffers.h"

using std::ios_base;

namespace {

constexpr std::array<bool, 256> token_characters = [] {
  std::array<bool, 256> allowed{};
  constexpr std::string_view all = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!\"#$()*+-./=\\_{}~";
  for (const char c : all) allowed[static_cast<unsigned char>(c)] = true;
  return allowed;
}();

constexpr auto in_token = [](char c) { return token_characters[static_cast<unsigned char>(c)]; };
constexpr auto in_line = [](char c) { return !ends_line(c) && c != '\0'; };
bool starts_comment(char c) { return c == '%' || c == '#'; }

/// Takes the characters at the front of the file that `belongs` accepts into `text`. Returns what `pass_while` returns.
template <class BELONGS>
ios_base::iostate gather_while(ASCII_FILE& file, BELONGS belongs, std::string& text) {
  return take_while(file, belongs, [&](char const* first, char const* last) { text.append(first, last); });
}

/// Moves to the first character of a token. Returns what `pass_while` returns.
ios_base::iostate skip_separators(ASCII_FILE& file) {
  bool in_comment = false;
  const auto separates = [&](char c) {
    if (in_comment) {
      in_comment = in_line(c);
      return true;
    }
    in_comment = file.skip_comments != 0 && starts_comment(c);
    if (in_comment || ends_line(c)) file.line_changed = true;
    return in_comment || !in_token(c);
  };
  return pass_while(file, separates);
}

/// Reads the next token of this file itself, macros not replaced, or "EOF" at the end. Returns whether there was one.
/// The character that ends it is not taken.
bool read_token(ASCII_FILE& file, STRING& token) {
  ASCII_FILE::current_file = &file;
  file.line_changed = false;
  file.set_position();
  ios_base::iostate state = skip_separators(file);
  std::string text;
  if (state == ios_base::goodbit) state = gather_while(file, in_token, text);
  const bool found = !text.empty();
  assign_in_place(token, found ? text : "EOF");
  const bool only_at_end = found && (state & ios_base::badbit) == 0;
  if (!only_at_end) file.setstate(state); // after a token that the end of the file ends, `back` and reports still work
  return found;
}

/// The next token of this file itself, macros replaced.
STRING own_token(ASCII_FILE& file) {
  STRING token;
  bool found = read_token(file, token);
  for (; found && token == "#define"; found = read_token(file, token)) file.add_def();
  file.success = found;
  if (found) file.def_mask(token);
  return token;
}

/// Reads the next line with its comment, and drops its end. Returns whether there was one: a last character alone, as
/// in "ab\nc" or "ab\n\r", is none, and is lost.
bool read_line(ASCII_FILE& file, std::string& line) {
  ios_base::iostate state = pass_while(file, [](char c) { return c == '\n'; });
  if (state != ios_base::goodbit) {
    file.setstate(state);
    file.set_position();
    return false;
  }
  state = gather_while(file, in_line, line);
  if (state == ios_base::goodbit) {
    char terminator = '\0';
    take_character(file, terminator);
    if (line.empty()) state = peek_character(file);
  }
  const bool found = state == ios_base::goodbit || line.size() > 1;
  if (!found) file.set_position();
  file.setstate(state);
  return found;
}

/// Returns what was read from the file; if that was on another line, it is put back and the result is empty.
template <class VALUE>
VALUE on_same_line(ASCII_FILE& file, VALUE const& read) {
  if (!file.line_changed) return read;
  file.back();
  file.success = false;
  return VALUE();
}

} // namespace

int ASCII_FILE::allowed_character(int ch) const { // NOLINT(readability-convert-member-functions-to-static)
  return ch >= 0 && ch < static_cast<int>(token_characters.size()) && token_characters[static_cast<std::size_t>(ch)];
}

STRING ASCII_FILE::getSTRING() {
  // A loop, since files may include each other a thousand levels deep: in a recursion each level would look for the
  // outermost file anew.
  ASCII_FILE* file = this;
  while (file->included_file != nullptr) file = file->included_file;
  STRING token = own_token(*file);
  while (file != this) {
    ASCII_FILE* const parent = file->parent_file;
    parent->success = file->ok;
    if (token == "EOF") {
      delete std::exchange(parent->included_file, nullptr);
      token = own_token(*parent);
    } else {
      def_mask(token);
    }
    file = parent;
  }
  return token;
}

STRING ASCII_FILE::getSTRING_sl() { return on_same_line(*this, getSTRING()); }

STRING ASCII_FILE::getline() {
  const std::streamoff start = get_position();
  std::string line;
  success = read_line(*this, line);
  if (!success) return "";
  previous_pos = start;
  std::string_view text = line;
  if (skip_comments != 0) {
    for (const char mark : {'%', '#'}) text = text.substr(0, text.find(mark));
  }
  STRING result;
  assign_in_place(result, text);
  return result;
}

int ASCII_FILE::getint() {
  const STRING token = getSTRING();
  if (!success) return 0;
  if (token.if_int()) return token.to_int();
  back();
  success = false;
  return 0;
}

double ASCII_FILE::getdouble() {
  const STRING token = getSTRING();
  if (token.if_double()) {
    success = true;
    return token.to_double();
  }
  back();
  success = false;
  return 0.0;
}

int ASCII_FILE::getint_sl() { return on_same_line(*this, getint()); }

double ASCII_FILE::getdouble_sl() { return on_same_line(*this, getdouble()); }

void ASCII_FILE::get(LIST<int>& list, int count) {
  list.resize(0);
  if (count == 0) {
    for (int number = getint(); success; number = getint()) list.add(number);
  }
  for (int i = 0; i < count; ++i) {
    const int number = getint();
    if (!success) ERROR_MESSAGER::static_err_message(EMPTY + "bad get list", __FILE__, __LINE__);
    list.add(number);
  }
}

void ASCII_FILE::locate(STRING const& key) {
  rewind();
  locate_next(key);
}

void ASCII_FILE::locate(char const* key) { locate(STRING(key)); }

void ASCII_FILE::locate_next(STRING const& key) {
  const STRING sought(key.str); // a definition on the way may move the list that `key` lies in
  while (!(getSTRING() == sought) && success) continue;
}

void ASCII_FILE::locate_next(char const* key) { locate_next(STRING(key)); }

void ASCII_FILE::skip_until_word_start_with(STRING const& prefix) {
  const STRING sought(prefix.str); // as above
  for (;;) {
    const STRING token = getSTRING();
    if (token.start_with(sought)) {
      back();
      return;
    }
    if (token == "EOF") {
      success = false;
      return;
    }
  }
}

void ASCII_FILE::include_file() {
  const STRING path = getSTRING();
  auto* const inner = new ASCII_FILE(path.str, 0);
  inner->parent_file = this;
  delete included_file;
  included_file = inner;
}

STRING GLSTR(ASCII_FILE& file) {
  file.back();
  return file.getSTRING();
}
