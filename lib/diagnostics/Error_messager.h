#pragma once

#include "lib/strings/Stringpp.h"

/// An empty text to begin a message with: `EMPTY + "no such unit: " + name`. Like `default_messager`, it is built
/// before the static objects of programs and destroyed after them, so that these may report.
extern STRING EMPTY;

/// Where every report of the library goes. This class writes a report to standard error and, unless it is a plain
/// message or an alert, ends the process with status 1. A program that wants reports handled otherwise derives a class,
/// overrides the virtual operations, with `override`, and installs an object of it. Reports of the library's own
/// readers go to `err_message`, those of `KBAD` and the like to `input_error`. One thread only.
///
/// A source file and line say where in the program's own sources the report was made, as `__FILE__` and `__LINE__` do.
/// A report returns to who made it only if the `do_EXIT` it goes through returns.
class ERROR_MESSAGER {
public:
  constexpr ERROR_MESSAGER() = default;

  /// Ends the process with status 1. Static objects are destroyed and standard streams flushed, but objects of running
  /// functions are not destroyed: what a local file has pending is lost.
  virtual void do_EXIT();

  /// Report an error, with the class and the source position if they are given.
  virtual void err_message(STRING class_name, STRING text, char const* source_file, int source_line);
  virtual void err_message(STRING text, char const* source_file, int source_line);
  virtual void err_message(STRING text);

  /// Reports an error in the user's input, with the name and the line of the file being read.
  virtual void input_error(STRING text);

  /// Reports that something is not implemented.
  virtual void not_implemented_error(STRING text, char const* source_file, int source_line);

  /// Ends the process with status 1 itself, not through `do_EXIT`.
  virtual void critical(STRING text);

  /// Tell the user something; both return.
  virtual void message(STRING text);
  virtual void alert(STRING text);

  /// Installs `default_messager` if this is the active messager. Members of a derived class are gone by then, so it is
  /// better to install another messager before.
  virtual ~ERROR_MESSAGER();

  /// The messager that receives all reports; `default_messager` from the very start, never owned.
  static ERROR_MESSAGER* active_error_messager;

  /// Sends all later reports to `messager`, which the caller owns and keeps until another one is installed. REQUIRES:
  /// it is not null.
  static void reassign_error_messager(ERROR_MESSAGER* messager);

  /// Each of these passes its arguments to the operation of the active messager after which it is named.
  static void EXIT();
  static void static_err_message(STRING class_name, STRING text, char const* source_file, int source_line);
  static void static_err_message(STRING text, char const* source_file, int source_line);
  static void static_err_message(STRING text);
  static void STATIC_NOT_IMPLEMENTED_ERROR(STRING text, char const* source_file, int source_line);
  static void STATIC_MESSAGE(STRING text);
  static void STATIC_ALERT(STRING text);

  /// These two append the source position to the text.
  static void STATIC_INPUT_ERROR(STRING text, char const* source_file, int source_line);
  static void STATIC_CRITICAL(STRING text, char const* source_file, int source_line);
};

/// The messager that is active until another one is installed.
extern ERROR_MESSAGER default_messager;

/// For readers of input: report, as input errors, a name they do not know or a value they cannot read. The source
/// position after the text is one of the library's own.
void UNKNOWN_COEF(STRING name);
void UNKNOWN_COMMAND(STRING name);
void KBAD(STRING text);
