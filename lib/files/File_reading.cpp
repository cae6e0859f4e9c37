#include <algorithm>
#include <array>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lib/diagnostics/Error_messager.h"
#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"

using std::ios_base;

namespace {

constexpr std::array<bool, 256> token_characters = [] {
  std::array<bool, 256> allowed{};
  constexpr std::string_view all = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!\"#$()*+-./=\\_{}~";
  for (const char c : all) allowed[static_cast<unsigned char>(c)] = true;
  return allowed;
}();

bool in_token(char c) { return token_characters[static_cast<unsigned char>(c)]; }
bool starts_comment(char c) { return c == '%' || c == '#'; }

/// The characters of one token or line while they are read, off the heap unless they are many.
class GATHERED {
public:
  std::pmr::string text{&memory};

  GATHERED() { text.reserve(sizeof room - 1); }

  /// Appends the characters at the front of the stream that `belongs` accepts. Gives what `take_characters` gives.
  template <class BELONGS>
  ios_base::iostate read(std::istream& in, BELONGS belongs) {
    return take_characters(in, [&](std::string_view ready) {
      const auto end = std::find_if_not(ready.begin(), ready.end(), belongs);
      text.append(ready.begin(), end);
      return static_cast<std::size_t>(end - ready.begin());
    });
  }

private:
  char room[1024];
  std::pmr::monotonic_buffer_resource memory{room, sizeof room};
};

} // namespace

int ASCII_FILE::allowed_character(int ch) const { // NOLINT(readability-convert-member-functions-to-static)
  return ch >= 0 && ch < static_cast<int>(token_characters.size()) && token_characters[static_cast<std::size_t>(ch)];
}

STRING ASCII_FILE::getSTRING() {
  if (included_file == nullptr) return own_token();

  std::vector<ASCII_FILE*> chain = {this}; // from here to the innermost file
  while (chain.back()->included_file != nullptr) chain.push_back(chain.back()->included_file);
  for (;;) {
    STRING token = chain.back()->own_token();
    std::size_t level = chain.size() - 1;
    for (; level > 0 && !(token == "EOF"); --level) {
      chain[level - 1]->success = chain[level]->ok;
      outermost().def_mask(token);
    }
    if (level == 0) return token;
    chain.resize(level);
    delete std::exchange(chain.back()->included_file, nullptr);
  }
}

/// The next token of this very file, macros replaced. The character that ends it is looked at only.
STRING ASCII_FILE::own_token() {
  for (;;) {
    current_file = this;
    line_changed = false;
    set_position();
    ios_base::iostate state = skip_separators();
    if (state != ios_base::goodbit) {
      success = false;
      setstate(state);
      return "EOF";
    }
    GATHERED gathered;
    state = gathered.read(*this, in_token);
    if ((state & ios_base::badbit) != 0) setstate(state); // at a mere end, `back` and error locations work on
    STRING token = gathered.text.c_str();
    if (token == "#define") {
      add_def();
      continue;
    }
    success = true;
    def_mask(token);
    return token;
  }
}

/// Moves to the first character of a token. Gives what `take_characters` gives.
ios_base::iostate ASCII_FILE::skip_separators() {
  bool in_comment = false;
  const auto separates = [&](char c) {
    if (in_comment) {
      in_comment = !ends_line(c) && c != '\0';
      return true;
    }
    in_comment = skip_comments != 0 && starts_comment(c);
    if (in_comment || ends_line(c)) line_changed = true;
    return in_comment || !in_token(c);
  };
  return pass_while(*this, separates);
}

STRING ASCII_FILE::getSTRING_sl() {
  STRING token = getSTRING();
  if (line_changed) {
    back();
    success = false;
    token = "";
  }
  return token;
}

STRING ASCII_FILE::getline() {
  const std::streamoff start = get_position();
  success = false;
  ios_base::iostate state = pass_while(*this, [](char c) { return c == '\n'; });
  if (state != ios_base::goodbit) {
    setstate(state);
    set_position();
    return "";
  }
  GATHERED line;
  state = line.read(*this, [](char c) { return !ends_line(c) && c != '\0'; });
  const bool ended = state == ios_base::goodbit;
  if (ended) next_character(*this);
  // A line is one only if two characters are there to be read, its end and what follows it included.
  const bool single = line.text.size() + (ended ? 1 : 0) == 1;
  if (single && ended) state = state_of_next(*this);
  if (single && state != ios_base::goodbit) {
    set_position();
    setstate(state);
    return "";
  }
  if (!ended) setstate(state);
  if (skip_comments != 0) line.text.resize(std::min({line.text.find('%'), line.text.find('#'), line.text.size()}));
  success = true;
  previous_pos = start;
  return line.text.c_str();
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

namespace {

/// The number that `read` gives, unless it stands on another line.
template <class NUMBER>
NUMBER on_same_line(ASCII_FILE& file, NUMBER (ASCII_FILE::*read)()) {
  const NUMBER number = (file.*read)();
  if (!file.line_changed) return number;
  file.back();
  file.success = false;
  return 0;
}

} // namespace

int ASCII_FILE::getint_sl() { return on_same_line(*this, &ASCII_FILE::getint); }

double ASCII_FILE::getdouble_sl() { return on_same_line(*this, &ASCII_FILE::getdouble); }

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
