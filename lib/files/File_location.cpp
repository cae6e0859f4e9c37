#include <algorithm>
#include <climits>
#include <cstring>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"

namespace {

/// The text up to and including its first character of `ends`; all of it without one.
std::string_view first_line(std::string_view text, std::string_view ends) {
  for (const char end : ends) {
    const std::size_t found = text.find(end);
    if (found != std::string_view::npos) text = text.substr(0, found + 1);
  }
  return text;
}

/// Follows line ends and line markers through a text that comes in blocks.
class LINE_COUNTER {
public:
  /// Starts at line 1 of `name`, which becomes the name that a marker gives.
  explicit LINE_COUNTER(STRING& name) : file(name) {}

  int line() const { return static_cast<int>(std::min<long long>(current, INT_MAX)); }

  void take(std::string_view block) {
    std::string ends; // those that the block has: another one would be looked for in each line
    for (const char end : {'\n', '\r'}) {
      if (block.find(end) != std::string_view::npos) ends += end;
    }
    while (!block.empty()) {
      const std::string_view line = first_line(block, ends);
      block.remove_prefix(line.size());
      take_line(line);
    }
  }

private:
  /// Takes a line or a part of one. NUL bytes are no part of it.
  void take_line(std::string_view text) {
    const std::size_t first = text.find_first_not_of('\0');
    if (first == std::string_view::npos) return;
    if (!marker.empty() || (at_start && text[first] == '#')) {
      std::remove_copy(text.begin(), text.end(), std::back_inserter(marker), '\0');
    }
    at_start = ends_line(text.back());
    if (!at_start) return;
    ++current;
    if (!marker.empty()) apply_marker();
    marker.clear();
  }

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
  char block[1 << 15];
  for (std::streamoff left = position; left > 0 && f.good(); left -= f.gcount()) {
    f.read(block, std::min<std::streamoff>(left, sizeof block));
    counter.take({block, static_cast<std::size_t>(f.gcount())});
  }
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
