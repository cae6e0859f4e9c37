#pragma once

#include <fstream>

#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

/// A text file that knows its name, remembers a position to go back to, and can move back after its end was reached.
///
/// A file that cannot be opened, or that has been read to its end, has a failed stream; nothing is thrown or printed.
/// Moving in a failed file reopens it by name first, with its content kept. A file owns the file it includes. All
/// positions are those of the file's own stream, never of an included file. One thread only.
///
/// Open modes are bit sets: 1 app, 2 ate, 4 binary, 8 in, 16 out, 32 trunc. `in` is always added: 0 reads an existing
/// file, 16 reads and writes one, 48 creates or empties it first.
class ASCII_FILE : public std::fstream {
public:
  /// The open mode in effect, `in` included.
  int mode;

  /// The name the file was last opened with, also when that failed.
  STRING file_name;

  /// The read-only view of `file_name`.
  const STRING& name;

  /// Outcome of the last operation.
  bool success;

  /// The read-only view of `success`.
  const bool& ok;

  /// Not zero: '%' and '#' at the start of a token begin a comment. Zero: no comments, but `#define` macros. Set by the
  /// client alone.
  int skip_comments;

  /// Whether the last token read stood behind a line end or a comment.
  bool line_changed;

  /// The position that `back` returns to.
  std::streampos previous_pos;

  /// The file being included, owned by this one and deleted with it; null when there is none.
  ASCII_FILE* included_file;

  /// The file that includes this one, not owned; null for an outermost file.
  ASCII_FILE* parent_file;

  /// Macro names and their values, in order of definition; filled in the outermost file alone.
  LIST<STRING> def_keys;
  LIST<STRING> def_values;

  /// The file a token was last read from; null before any was read and after any `ASCII_FILE` was destroyed.
  static constinit ASCII_FILE* current_file;

  /// No file is open, and `success` is false.
  ASCII_FILE();

  /// Opens the file; `success` and the stream state tell whether that went well.
  ASCII_FILE(char const* path, int open_mode);

  ASCII_FILE(ASCII_FILE const&) = delete;
  ASCII_FILE& operator=(ASCII_FILE const&) = delete;

  /// Writes out what is pending, closes the file and deletes its included file.
  ~ASCII_FILE() override;

  /// Opens the file; `success` tells the outcome. Fails while a file is open, which then stays open under the new name.
  void open(char const* path, int open_mode);

  /// Ends the use of the file; includes and macros remain. Without an open file the stream gets the fail state.
  void close();

  static bool if_current_file();

  /// The input position; -1 for a failed stream.
  std::streampos get_position();

  /// Records the input position for `back`.
  void set_position();

  /// Moves reading, and writing where the mode has it, to p; a failed stream is reopened first.
  void goto_position(std::streampos p);

  void goto_position_and_set_previous_pos(std::streampos p);

  /// Moves to the start and records it for `back`.
  void rewind();

  /// Undoes the reading since the last recorded position.
  void back();

  /// Moves one character back. REQUIRES: the last operation read a character.
  void back1();

  /// Records the position and reads one character, widened from `signed char`; the stream state tells the end of file.
  int get_next_char();

  /// Drops characters up to and including the next '\n', '\r' or NUL; of a CR LF the LF remains.
  void empty_line();

  /// Drops blanks (' ' alone), so that the next character read is another one.
  void read_spaces();

private:
  void open_stream(char const* path, int flags);
};
