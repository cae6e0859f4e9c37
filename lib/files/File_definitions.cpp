#include <algorithm>
#include <string>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"

using std::ios_base;

namespace {

enum class PART { key, value };

constexpr char unended_key[] = "unxpected end of file met while reading #define"; // a fixed text, as it is spelled

void report(char const* text, int source_line) {
  ERROR_MESSAGER::static_err_message(EMPTY + text, __FILE__, source_line);
}

bool is_blank(char c) { return c == ' '; }

/// A word of a definition, and the state that reading on after it would set: goodbit, or why the word ended.
struct WORD {
  STRING text;
  ios_base::iostate state;
};

/// Reads a word and drops the character that ends it.
///
/// At the end the stream itself does not fail yet, so that a report made there can tell the place and does not start
/// the file anew.
WORD read_word(ASCII_FILE& file, PART part) {
  pass_while(file, is_blank);
  std::string word;
  char c = '\0';
  ios_base::iostate state = take_character(file, c);
  for (; state == ios_base::goodbit; state = take_character(file, c)) {
    const bool line_end = ends_line(c);
    if (is_blank(c) || (line_end && part == PART::value)) break;
    if (line_end) {
      report(unended_key, __LINE__);
    } else if (file.allowed_character(c) == 0 || c == '#') {
      report("character not allowed in #define", __LINE__);
    }
    if (c != '\0') word += c;
  }
  return {word.c_str(), state};
}

} // namespace

void ASCII_FILE::add_def() {
  const WORD key = read_word(*this, PART::key);
  if (key.state != ios_base::goodbit) {
    report(unended_key, __LINE__);
    setstate(key.state);
    return;
  }
  const WORD value = read_word(*this, PART::value);
  validate_def(key.text, value.text);
  setstate(value.state);
}

void ASCII_FILE::validate_def(STRING const& key, STRING const& value) {
  ASCII_FILE& owner = outermost();
  const STRING added(key.str); // `key` may lie in the list of values
  if (owner.def_keys.is_in(added)) report("Def key in", __LINE__);
  // An earlier definition may have found memory for its value but none for its key.
  owner.def_values.set_size(std::min(owner.def_keys.size, owner.def_values.size));
  owner.def_values.add(value);
  owner.def_keys.add(added);
}

STRING& ASCII_FILE::def_mask(STRING& word) {
  ASCII_FILE const& owner = outermost();
  int index = 0;
  if (owner.def_keys.is_in(word, index)) word = owner.def_values[index];
  return word;
}

ASCII_FILE& ASCII_FILE::outermost() {
  ASCII_FILE* file = this;
  while (file->parent_file != nullptr) file = file->parent_file;
  return *file;
}
