#include "kmakeindex/Messages.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

std::string shown(std::string_view text) {
  constexpr std::size_t most = 60;
  return std::string(text.substr(0, most)) + (text.size() > most ? "..." : "");
}

void MESSAGES::open_transcript(std::string const& path) {
  transcript_path = path;
  transcript.open(path);
  if (!transcript) throw FAILURE("kmakeindex: cannot write " + path + ": " + std::strerror(errno));
}

void MESSAGES::close_transcript() {
  if (!transcript.is_open()) return;
  transcript.close();
  if (!transcript) std::cerr << "kmakeindex: cannot write " << transcript_path << '\n';
}

void MESSAGES::warn(LINE line, std::string_view text) {
  const auto next =
      std::upper_bound(files.begin(), files.end(), line, [](LINE l, auto const& f) { return l < f.first; });
  const FILE_LINES& file = *std::prev(next);
  warn(file.name, line - file.first + 1, text);
}

void MESSAGES::warn(std::string const& file, unsigned long line, std::string_view text) {
  warn(file + ':' + std::to_string(line) + ": " + std::string(text));
}

void MESSAGES::warn(std::string const& text) {
  ++warnings;
  tell(text, false);
}

void MESSAGES::tell(std::string const& text, bool quiet) {
  if (!quiet) std::cerr << text << '\n';
  if (transcript.is_open()) transcript << text << '\n';
}
