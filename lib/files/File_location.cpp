#include <algorithm>
#include <climits>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"

namespace {

/// How many line ends there are. Short pieces are counted in bytes, which compilers turn into vector instructions.
int line_ends(std::string_view text) {
  int count = 0;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, 240);
    unsigned char ends = 0;
    for (const char c : piece) ends = static_cast<unsigned char>(ends + (ends_line(c) ? 1 : 0));
    count += ends;
    text.remove_prefix(piece.size());
  }
  return count;
}

/// Follows line ends and line markers through a text that comes in blocks.
class LINE_COUNTER {
public:
  /// Starts at line 1 of `name`, which becomes the name that a marker gives.
  explicit LINE_COUNTER(STRING& name) : file(name) {}

  int line() const { return static_cast<int>(std::min<long long>(current, INT_MAX)); }

  void take(std::string_view block) {
    while (!block.empty()) block.remove_prefix(in_marker ? take_marker(block) : take_lines(block));
  }

private:
  /// Takes all up to a '#' that starts a line, or else up to the next '#'. NUL bytes are no part of a line.
  std::size_t take_lines(std::string_view block) {
    const std::size_t hash = block.find('#');
    const std::string_view passed = block.substr(0, hash);
    current += line_ends(passed);
    const std::size_t last = passed.find_last_not_of('\0');
    if (last != std::string_view::npos) at_start = ends_line(passed[last]);
    if (hash == std::string_view::npos) return block.size();
    in_marker = at_start;
    at_start = false;
    return in_marker ? hash : hash + 1;
  }

  /// Takes a line that starts with '#', its end included, or what the block holds of it.
  std::size_t take_marker(std::string_view block) {
    const auto length = static_cast<std::size_t>(std::find_if(block.begin(), block.end(), ends_line) - block.begin());
    const bool whole = length < block.size();
    block = block.substr(0, length + (whole ? 1 : 0));
    std::remove_copy(block.begin(), block.end(), std::back_inserter(text), '\0');
    if (whole) {
      ++current;
      apply_marker();
      text.clear();
      in_marker = false;
      at_start = true;
    }
    return block.size();
  }

  void apply_marker() {
    const std::size_t blank = text.find(' ');
    if (blank == std::string::npos) return;
    STRING rest(text.c_str() + blank + 1);
    const int number = rest.getint();
    if (!rest.ok) return;
    current = number;
    STRING name = rest.getSTRING();
    if (!rest.ok) return;
    std::replace(name.str, name.str + std::char_traits<char>::length(name.str), '"', ' ');
    file = name;
  }

  STRING& file;
  long long current = 1;
  std::string text; // of the line that starts with '#'
  bool in_marker = false;
  bool at_start = true;
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
  std::streamoff left = position;
  for (; left > 0 && f.good(); left -= f.gcount()) {
    f.read(block, std::min<std::streamoff>(left, sizeof block));
    counter.take({block, static_cast<std::size_t>(f.gcount())});
  }
  const bool reached_last = left <= 1; // its position is known even if the file has since become too short to hold it
  if (position > 0) f.previous_pos = reached_last ? position - 1 : std::streamoff(-1);
  line = counter.line();
  f.success = success_before;
}

void ERR_FILE() {
  if (!ASCII_FILE::if_current_file()) return;
  STRING file;
  int line = 0;
  ASCII_FILE::get_file_info(file, line);
  std::cerr << "\nError in file " << file << " at line " << itoa(line) << " \n";
}
