#pragma once

#include <fstream>

#include "lib/diagnostics/Error_messager.h" // for those who read, since readers report there
#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

/// A text file read by tokens, lines and numbers, with comments, macros and included files. It knows its name and can
/// move back, also after its end was reached.
///
/// A token is a run of ASCII letters, digits and the characters !"#$()*+-./=\_{}~ and everything else separates tokens.
/// Each reader sets `success` (read it through `ok`) and notes where it began, so that `back` undoes it. What no token,
/// number or line can be made of is told by `success` alone; only broken macro definitions and number lists are
/// reported to the `ERROR_MESSAGER`.
///
/// A file that cannot be opened, or that has been read to its end, has a failed stream; nothing is thrown or printed.
/// Moving in a failed file reopens it by name first, with its content kept. A file owns the file it includes. All
/// positions are those of the file's own stream, never of an included file: what came from there cannot be put back.
/// One thread only.
///
/// Open modes are bit sets: 1 app, 2 ate, 4 binary, 8 in, 16 out, 32 trunc. `in` is always added: 0 reads an existing
/// file, 16 reads and writes one, 48 creates or empties it first.
class ASCII_FILE : public std::fstream {
public:
  /// The open mode in effect, `in` included.
  int mode = std::ios_base::in;

  /// The name the file was last opened with, also when that failed.
  STRING file_name;

  /// The read-only view of `file_name`.
  const STRING& name = file_name;

  /// Outcome of the last operation.
  bool success = false;

  /// The read-only view of `success`.
  const bool& ok = success;

  /// Not zero: '%' and '#' at the start of a token begin a comment. Zero: no comments, but `#define` macros. Set by the
  /// client alone.
  int skip_comments = 1;

  /// Whether the last token read stood behind a line end or a comment.
  bool line_changed = false;

  /// The position that `back` returns to.
  std::streampos previous_pos = 0;

  /// The file being included, owned by this one and deleted with it; null when there is none.
  ASCII_FILE* included_file = nullptr;

  /// The file that includes this one, not owned; null for an outermost file.
  ASCII_FILE* parent_file = nullptr;

  /// Macro names and their values, in order of definition; filled in the outermost file alone.
  LIST<STRING> def_keys;
  LIST<STRING> def_values;

  /// The file a token was last read from; null before any was read and after any `ASCII_FILE` was destroyed.
  static ASCII_FILE* current_file;

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

  /// Whether there is a file that a token was last read from.
  static bool if_current_file();

  /// The input position; -1 for a failed stream.
  std::streampos get_position();

  /// Records the input position for `back`.
  void set_position();

  /// Moves reading, and writing where the mode has it, to p; a failed stream is reopened first.
  void goto_position(std::streampos p);

  /// Moves to p and records it for `back`.
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

  // The readers below hide two of the stream's own.
  using std::fstream::get;
  using std::fstream::getline;

  /// 1 for a character that tokens are made of, else 0.
  int allowed_character(int ch) const;

  /// The next token, of the included file while there is one, macros replaced. At the end "EOF", with `ok` false; a
  /// token that is spelled so has `ok` true. A file is no longer included once "EOF" came from it.
  STRING getSTRING();

  /// The next token if it stands on the current line; otherwise it stays unread, the result is empty and `ok` false.
  STRING getSTRING_sl();

  /// The next line of this very file without its end and its comment; lines ended by '\n' alone that are empty are
  /// skipped. '\n', '\r' and NUL end a line. Empty with `ok` false at the end, and for a last line of one character
  /// that nothing ends.
  STRING getline();

  /// The next token as a decimal number; if it is none it stays unread, the result is 0 and `ok` false.
  int getint();

  /// The same for a token with a decimal point, by `STRING::if_double`. At the end, too, the file moves back.
  double getdouble();

  /// The same, but only for a token on the current line.
  int getint_sl();
  double getdouble_sl();

  /// Replaces what the list holds by the next `count` integers, or with 0 by all up to a token that is none, which
  /// stays unread. With a count, reports a token that is no integer; if that returns, 0 takes its place.
  void get(LIST<int>& list, int count);

  /// Reads from the start of the file up to and including the token `key`; `ok` tells whether it was there.
  void locate(STRING const& key);
  void locate(char const* key);

  /// The same from the current position.
  void locate_next(STRING const& key);
  void locate_next(char const* key);

  /// Reads up to the next token that begins with `prefix`, which stays unread; `ok` is false without one. The "EOF" at
  /// the end is a token here.
  void skip_until_word_start_with(STRING const& prefix);

  /// Reads the key and the value behind a "#define" token. Characters no token can hold, and '#', are reported but
  /// kept. A key cut short by the end of the file is reported and dropped.
  void add_def();

  /// Records a macro in the outermost file; reports a key that is there already, whose first value stays in force.
  void validate_def(STRING const& key, STRING const& value);

  /// Replaces `word` by the value of the macro that it names, if it names one, and returns it.
  STRING& def_mask(STRING& word);

  /// Makes tokens come from the file that the next token names, until that file ends. One that cannot be opened has
  /// ended already. REQUIRES: no file is being included by this one; such a file is dropped.
  void include_file();

  /// The name of the file that a token was last read from, and the line that its reading has reached; line markers
  /// (`# 40 "name"`) set both. Line 1, at the start again, for a file read to its end. Reads the file anew, and
  /// changes `previous_pos`. Without such a file neither changes.
  static void get_file_info(STRING& file, int& line);

private:
  void open_stream(char const* path, int flags);
  ASCII_FILE& outermost();
};

/// Writes the position that `get_file_info` gives to standard error; nothing without one.
void ERR_FILE();

/// The token read last, read again; the file stands behind it as before.
STRING GLSTR(ASCII_FILE& file);

/// A binary file, always open for both reading and writing; modes are those of `ASCII_FILE` with `in` and `out` added.
/// A file that cannot be opened is reported to the `ERROR_MESSAGER`; if that returns, the stream is failed.
class OBIN_FILE : public std::fstream {
public:
  /// The name given last, also when opening failed.
  STRING file_name;

  /// No file is open.
  OBIN_FILE();

  /// Opens the file or reports that it cannot be opened.
  OBIN_FILE(char const* path, int open_mode);

  OBIN_FILE(OBIN_FILE const&) = delete;
  OBIN_FILE& operator=(OBIN_FILE const&) = delete;

  /// Writes out what is pending and closes the file.
  ~OBIN_FILE() override;

  /// Writes out what is pending, closes the current file and opens another one.
  void open(char const* path, int open_mode);
};
