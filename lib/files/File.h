#pragma once

#include <fstream>

#include "lib/diagnostics/Error_messager.h" // where readers report
#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

/// A text file read by tokens, lines and numbers, with comments, macros and included files. It knows its name and can
/// move back, also after its end was reached.
///
/// A token is a run of ASCII letters, digits and the characters !"#$()*+-./=\_{}~ and everything else separates tokens.
/// Each reader records where it began, so that `back` undoes it. A reader that fails only clears `success`, which you
/// read as `ok`; broken macro definitions and incomplete lists of numbers are also reported to the `ERROR_MESSAGER`.
///
/// A file that cannot be opened, or that was read to its end, has a failed stream; nothing is thrown or printed. A
/// directory opens, and has ended. Moving in a failed file opens it again by name first, and keeps its content.
/// docs/reading.md tells how to go on at the end. Readers move back, which a pipe cannot: what they read from one, such
/// as a /dev/stdin that is piped, is mostly lost without a word.
///
/// A file owns the file it includes. All positions are those of the file's own stream: what came from an included file
/// cannot be put back. One thread only.
///
/// Open modes are bit sets: 1 app, 2 ate, 4 binary, 8 in, 16 out, 32 trunc. `in` is always added: 0 reads an existing
/// file, 16 reads and writes one, 48 creates or empties it first.
class ASCII_FILE : public std::fstream {
public:
  /// The open mode in effect, `in` included.
  int mode = std::ios_base::in;

  /// The name that was last given, even if opening failed.
  STRING file_name;

  /// `file_name`, for reading.
  const STRING& name = file_name;

  /// Outcome of the last operation.
  bool success = false;

  /// `success`, for reading.
  const bool& ok = success;

  /// Not zero: '%' and '#' at the start of a token begin a comment. Zero: no comments, but `#define` macros. Only the
  /// program sets it.
  int skip_comments = 1;

  /// Whether a line end or a comment stood before the last token.
  bool line_changed = false;

  /// The position that `back` returns to.
  std::streampos previous_pos = 0;

  /// The file being included, owned by this one and deleted with it; null when there is none.
  ASCII_FILE* included_file = nullptr;

  /// The file that includes this one, not owned; null for an outermost file.
  ASCII_FILE* parent_file = nullptr;

  /// Macro names and their values, in order of definition; only the outermost file has any.
  LIST<STRING> def_keys;
  LIST<STRING> def_values;

  /// The file that the last token came from, which reports name; null before the first token and after any `ASCII_FILE`
  /// was destroyed. `getline` leaves it alone.
  static ASCII_FILE* current_file;

  /// No file is open, and `success` is false.
  ASCII_FILE();

  /// Opens the file; `ok` and the stream state tell whether that succeeded.
  ASCII_FILE(char const* path, int open_mode);

  ASCII_FILE(ASCII_FILE const&) = delete;
  ASCII_FILE& operator=(ASCII_FILE const&) = delete;

  /// Writes what is pending, closes the file and deletes its included file.
  ~ASCII_FILE() override;

  /// Opens the file; `ok` tells whether that succeeded. Fails while a file is open, which stays open under the new
  /// name.
  void open(char const* path, int open_mode);

  /// Closes the file; included file and macros remain. The stream is failed if no file was open.
  void close();

  /// Whether there is a `current_file`.
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

  /// Undoes the reading since the last recorded position. A second reader that fails at the end of the file loses that
  /// position.
  void back();

  /// Moves one character back. REQUIRES: the last operation read a character.
  void back1();

  /// Records the position and reads one character, widened from `signed char`; only the stream state tells the end.
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

  /// The next token, from the included file while there is one, macros replaced. At the end "EOF", with `ok` false; a
  /// token spelled "EOF" has `ok` true. Either ends an inclusion.
  STRING getSTRING();

  /// The next token if it is on the current line; otherwise it stays unread, the result is empty and `ok` is false.
  STRING getSTRING_sl();

  /// The next line of this file itself, without its end. '\n', '\r' and NUL end a line; empty lines that '\n' ends are
  /// skipped. Unless `skip_comments` is 0, a '%' or '#' anywhere begins a comment, even in a word; a line that is only
  /// a comment gives an empty text. Empty with `ok` false at the end, and also for a last line of one character that
  /// nothing ends: that character is lost.
  STRING getline();

  /// The next token as a decimal number, a sign alone as 0; if it is none, it stays unread, the result is 0 and `ok` is
  /// false.
  int getint();

  /// The same for a token with a decimal point, see `STRING::if_double`. Moves back at the end of the file, too.
  double getdouble();

  /// The same, but only for a token on the current line.
  int getint_sl();
  double getdouble_sl();

  /// Replaces the list by the next `count` integers; if `count` is 0, by all up to a token that is none, which stays
  /// unread. With a count, each missing integer is reported to `err_message`; if that returns, 0 takes its place.
  void get(LIST<int>& list, int count);

  /// Reads from the start of the file up to and including the token `key`; `ok` tells whether it was there.
  void locate(STRING const& key);
  void locate(char const* key);

  /// The same from the current position.
  void locate_next(STRING const& key);
  void locate_next(char const* key);

  /// Reads up to the next token that begins with `prefix`, which stays unread; `ok` is false if there is none. The
  /// "EOF" at the end counts as a token here.
  void skip_until_word_start_with(STRING const& prefix);

  /// Reads the key and the value after a "#define" token. Characters that no token can hold, and '#', are reported but
  /// kept. A key cut short by the end of the file is reported and dropped.
  void add_def();

  /// Records a macro in the outermost file. A key that is already there is reported, and added all the same, but
  /// its first value stays in force.
  void validate_def(STRING const& key, STRING const& value);

  /// Replaces `word` by the value of the macro of that name, if there is one, and returns it.
  STRING& def_mask(STRING& word);

  /// Makes tokens come from the file that the next token names, until that file ends; one that cannot be opened ends at
  /// once. A file that includes itself does so until no more files can be opened: count the `parent_file`s. If this
  /// file includes one already, that is dropped.
  void include_file();

  /// The name of the `current_file` and the line that its reading has reached; line markers (`# 40 "name" 1`) set both.
  /// '\r' and '\n' each end a line: with CR LF, the third line is number 5.
  /// Reads the file again up to there, and changes `previous_pos`. A failed stream gives line 1, and is then opened
  /// again at its start. Without a `current_file`, `file` and `line` stay as they are.
  static void get_file_info(STRING& file, int& line);

private:
  void open_stream(char const* path, int flags);
  ASCII_FILE& outermost();
};

/// Writes the position that `get_file_info` tells to standard error; nothing if there is no `current_file`.
void ERR_FILE();

/// The last token, read again; the file stands after it as before.
STRING GLSTR(ASCII_FILE& file);

/// A binary file, always open for both reading and writing; modes are those of `ASCII_FILE` with `in` and `out` added.
/// A file that cannot be opened is reported to the `ERROR_MESSAGER`, without its name; if that returns, the stream is
/// failed. What is pending is written when the object is destroyed.
class OBIN_FILE : public std::fstream {
public:
  /// The name that was last given, even if opening failed.
  STRING file_name;

  /// No file is open.
  OBIN_FILE();

  /// Opens the file or reports that it cannot be opened.
  OBIN_FILE(char const* path, int open_mode);

  OBIN_FILE(OBIN_FILE const&) = delete;
  OBIN_FILE& operator=(OBIN_FILE const&) = delete;

  /// Writes what is pending, closes the current file and opens another one.
  void open(char const* path, int open_mode);
};
