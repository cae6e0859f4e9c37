#pragma once

#include <cstring> // declares a basename(char*) of the C library's own, which the one below has to agree with

#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

/// Returns the part of the path after its last '/', as a pointer into it; all of it without a '/'.
char* basename(char* path) noexcept; // NOLINT(readability-redundant-declaration)

/// Lists the source or header files of one directory and, for each, the names it includes with angle brackets. A
/// directory of a matching name, `X.c`, is listed as well. Lines are not parsed: `#include` counts inside a comment,
/// too, and `#  include` does not count.
///
/// An include list has places for 1024 names, which take half a megabyte. The scanner owns the lists and deletes them
/// when it is reset, scans again or goes away.
class KDIR_SCANNER {
public:
  /// Set: header files (".h") are listed. Clear: source files (".c" and ".k").
  bool scan_headers = false;

  /// Set: Fortran files (".f" and ".F") are listed, besides headers or instead of the other sources.
  bool fortran = false;

  /// Set: files are listed but not read.
  bool skip_includes = false;

  /// Clear: file names and include names count only if they begin with 'A' to 'Z'.
  bool all_names = false;

  /// The files found, in the order in which the system lists them.
  BUFF_LIST<STRING> found_files{1024, 1024};

  /// The names that each file found includes, in the order of its lines, repetitions kept; empty with `skip_includes`.
  BUFF_LIST<BUFF_LIST<STRING>*> includes{1024, 1024};

  KDIR_SCANNER() = default;
  KDIR_SCANNER(KDIR_SCANNER const&) = delete;
  KDIR_SCANNER& operator=(KDIR_SCANNER const&) = delete;
  ~KDIR_SCANNER();

  /// Empties both lists.
  void reset();

  /// Replaces the lists by those of `dir`, a path. A directory that cannot be listed or entered gives empty lists, a
  /// file that cannot be read has no include names. The process's working directory is `dir` until this returns.
  void do_scan(STRING& dir);

private:
  bool is_wanted(char const* name) const;
  void read_includes(char const* file_name, BUFF_LIST<STRING>& names) const;
};
