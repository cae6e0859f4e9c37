#include <algorithm>
#include <climits>
#include <cstring>
#include <iostream>
#include <string>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"

namespace {

/// Takes the number and the name from a line that may be a marker, `# 40 "name" 1`.
void apply_marker(std::string const& text, STRING& file, int& line) {
  if (text[0] != '#') return;
  const std::size_t blank = text.find(' ');
  if (blank == std::string::npos) return;
  STRING rest(text.c_str() + blank + 1);
  const int number = rest.getint();
  if (!rest.ok) return;
  line = number;
  STRING name = rest.getSTRING();
  if (!rest.ok) return;
  std::replace(name.str, name.str + std::strlen(name.str), '"', ' ');
  file = name;
}

} // namespace

void ASCII_FILE::get_file_info(STRING& file, int& line) {
  if (!if_current_file()) return;
  ASCII_FILE& f = *current_file;
  const bool success_before = f.success;
  const std::streamoff position = f.get_position();
  file = f.name;
  f.goto_position(0);

  line = 1;
  std::string text;
  std::streamoff left = std::max<std::streamoff>(position, 0);
  pass_while(f, [&](char c) {
    if (left-- == 0) return false;
    if (c != '\0') text += c;
    if (ends_line(c)) {
      if (line < INT_MAX) ++line;
      apply_marker(text, file, line);
      text.clear();
    }
    return true;
  });
  if (position > 0) f.previous_pos = position - 1; // where its last character was read
  f.success = success_before;
}

void ERR_FILE() {
  if (!ASCII_FILE::if_current_file()) return;
  STRING file;
  int line = 0;
  ASCII_FILE::get_file_info(file, line);
  std::cerr << "\nError in file " << file << " at line " << itoa(line) << " \n";
}
