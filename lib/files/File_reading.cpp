#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

/// The characters of one token or line: in the stream's buffer if that holds all of them, else copied out of it.
class GATHERED {
public:
  /// Takes the characters at the front of the stream that `belongs` accepts. Gives what `take_characters` gives.
  template <class BELONGS>
  ios_base::iostate read(std::istream& in, BELONGS belongs) {
    return take_characters(in, [&](std::string_view ready) {
      piece = ready.substr(0, length_while(ready, belongs));
      const bool may_go_on = piece.size() == ready.size();
      if (may_go_on || !copy.empty()) copy += piece;
      return piece.size();
    });
  }

  /// Valid until the stream is read on behind the character that ended the text.
  std::string_view text() const { return copy.empty() ? piece : std::string_view(copy); }

private:
  std::string_view piece;
  std::string copy;
};

/// Moves to the first character of a token. Gives what `take_characters` gives.
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

/// Reads the next token of this very file as it stands, "EOF" at the end. Gives whether there was one. The character
/// that ends it is looked at only.
bool read_token(ASCII_FILE& file, STRING& token) {
  ASCII_FILE::current_file = &file;
  file.line_changed = false;
  file.set_position();
  ios_base::iostate state = skip_separators(file);
  GATHERED gathered;
  if (state == ios_base::goodbit) state = gathered.read(file, in_token);
  const bool found = !gathered.text().empty();
  assign_in_place(token, found ? gathered.text() : "EOF");
  const bool only_at_end = found && (state & ios_base::badbit) == 0;
  if (!only_at_end) file.setstate(state); // behind a token that the end cuts short, `back` and error locations work on
  return found;
}

/// The next token of this very file, macros replaced.
STRING own_token(ASCII_FILE& file) {
  STRING token;
  bool found = read_token(file, token);
  for (; found && token == "#define"; found = read_token(file, token)) file.add_def();
  file.success = found;
  if (found) file.def_mask(token);
  return token;
}

/// Reads the next line with its comment and drops its end. Gives whether there was one.
bool read_line(ASCII_FILE& file, GATHERED& line) {
  ios_base::iostate state = pass_while(file, [](char c) { return c == '\n'; });
  if (state != ios_base::goodbit) {
    file.setstate(state);
    file.set_position();
    return false;
  }
  state = line.read(file, in_line);
  const bool ended = state == ios_base::goodbit;
  char terminator = '\0';
  if (ended) take_character(file, terminator);
  // A line is one only if two characters are there to be read, its end and what follows it included.
  const bool single = line.text().size() + (ended ? 1 : 0) < 2;
  if (single && ended) state = state_of_next(file);
  const bool none = single && state != ios_base::goodbit;
  if (none) file.set_position();
  if (none || !ended) file.setstate(state);
  return !none;
}

/// What was read from the file, unless it stands on another line: then it goes back, and the result is empty.
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
  if (included_file == nullptr) return own_token(*this);

  std::vector<ASCII_FILE*> chain = {this}; // from here to the innermost file
  while (chain.back()->included_file != nullptr) chain.push_back(chain.back()->included_file);
  for (;;) {
    STRING token = own_token(*chain.back());
    std::size_t level = chain.size() - 1;
    for (; level > 0; --level) {
      chain[level - 1]->success = chain[level]->ok;
      if (token == "EOF") break;
      outermost().def_mask(token);
    }
    if (level == 0) return token;
    chain.resize(level);
    delete std::exchange(chain.back()->included_file, nullptr);
  }
}

STRING ASCII_FILE::getSTRING_sl() { return on_same_line(*this, getSTRING()); }

STRING ASCII_FILE::getline() {
  const std::streamoff start = get_position();
  GATHERED line;
  success = read_line(*this, line);
  if (success) previous_pos = start;
  std::string_view text = success ? line.text() : "";
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
  success = true;
  while (!(getSTRING() == key) && success) continue;
}

void ASCII_FILE::locate_next(char const* key) { locate_next(STRING(key)); }

void ASCII_FILE::skip_until_word_start_with(STRING const& prefix) {
  success = true;
  for (;;) {
    const STRING token = getSTRING();
    if (token.start_with(prefix)) {
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
