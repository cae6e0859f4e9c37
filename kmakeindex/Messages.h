#pragma once

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Ends the run: the index cannot be made. Its text is the message.
struct FAILURE : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A text as a message shows it: a key of a megabyte is cut.
std::string shown(std::string_view text);

/// A line of the raw index, counted through all of its files.
using LINE = std::uint32_t;

/// Tells what is wrong, in the form `book.idx:12: what`, on standard error and in the transcript, and counts it.
class MESSAGES {
public:
  int warnings = 0;

  /// From now on, all that is told also goes to this file. Throws a FAILURE if it cannot be opened.
  void open_transcript(std::string const& path);

  /// The lines from `first` on are those of this file.
  void add_file(std::string const& name, LINE first) { files.push_back({name, first}); }

  void warn(std::string const& text);
  void warn(LINE line, std::string_view text);
  void warn(std::string const& file, unsigned long line, std::string_view text);

  /// Tells if the transcript is not complete.
  void close_transcript();

  /// Writes a line that is no warning, to standard error unless `quiet`.
  void tell(std::string const& text, bool quiet);

private:
  struct FILE_LINES {
    std::string name;
    LINE first;
  };

  std::vector<FILE_LINES> files;
  std::ofstream transcript;
  std::string transcript_path;
};
