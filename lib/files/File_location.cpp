#include <algorithm>
#include <climits>
#include <cstring>
#include <iostream>
#include <string>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"

namespace {

/// Follows line ends and line markers through a text.
class LINE_COUNTER {
public:
  /// Starts at line 1 of `name`, which becomes the name that a marker gives.
  explicit LINE_COUNTER(STRING& name) : file(name) {}

  int line() const { return static_cast<int>(std::min<long long>(current, INT_MAX)); }

  void take(char c) {
    if (c == '\0') return; // no part of a line
    if (!marker.empty() || (at_start && c == '#')) marker += c;
    at_start = ends_line(c);
    if (!at_start) return;
    ++current;
    if (!marker.empty()) apply_marker();
    marker.clear();
  }

private:
  void apply_marker() {
    const std::size_t blank = marker.find(' ');
    if (blank == std::string::npos) return;
    STRING rest(marker.c_str() + blank + 1);
    const int number = rest.getint();
    if (!rest.ok) return;
    current = number;
    STRING name = rest.getSTRING();
    if (!rest.ok) return;
    std::replace(name.str, name.str + std::strlen(name.str), '"', ' ');
    file = name;
  }

  STRING& file;
  long long current = 1;
  bool at_start = true;
  std::string marker; // the line so far, if it starts with '#'
};

} // namespace

void ASCII_FILE::get_file_info(STRING& file, int& line) {
  if (!if_current_file()) return;
  ASCII_FILE& f = *current_file;
  const bool success_before = f.success;
  const std::streamoff position = f.get_position();
  file = f.name;
  f.goto_position(0);

  LINE_COUNTER counter(file);
  std::streamoff left = position;
  const auto take = [&](char c) {
    if (left <= 0) return false;
    --left;
    counter.take(c);
    return true;
  };
  const auto state = pass_while(f, take);
  if (left > 0) f.setstate(state);
  if (position > 0) f.previous_pos = position - 1;
  line = counter.line();
  f.success = success_before;
}

void ERR_FILE() {
  if (!ASCII_FILE::if_current_file()) return;
  const std::ios_base::Init streams; // static objects may call this before standard error is there
  STRING file;
  int line = 0;
  ASCII_FILE::get_file_info(file, line);
  std::cerr << "\nError in file " << file << " at line " << itoa(line) << " \n";
}
