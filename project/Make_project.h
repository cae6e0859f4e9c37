#pragma once

#include <iosfwd>

#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

/// A library to build: its name, from which its file's name is made, and its source directories.
struct MAKE_LIB {
  STRING name;
  LIST<STRING> dirs;
};

/// An executable to build. An entry of `dirs` that equals the name of one of the project's libraries is a library to
/// link; every other entry is a source directory.
struct MAKE_TARGET {
  STRING name;
  LIST<STRING> dirs;
};

/// A set of shared libraries and executables, written as one GNU make file that builds them from their directories.
/// The caller fills it in and owns the lists and what they point to. Names are written as they are, without escaping.
class MAKE_PROJECT {
public:
  /// The make file's name; an empty one becomes "kmakefile" when the file is written.
  STRING file_name;

  /// Set: libraries go into and are taken from the public tree under `$(K7PATH)/PUBLIC`. Clear: the build directory.
  bool install_public = false;

  /// The executables in build order; null for none.
  ARRAY<MAKE_TARGET*>* targets = nullptr;

  /// The libraries in build order; null for none.
  ARRAY<MAKE_LIB*>* libs = nullptr;

  /// Runs `create_project_file`.
  void splash();

  /// Writes the make file anew and a progress line for each library and executable to standard output. A file that
  /// cannot be written is not reported.
  void create_project_file();

  /// Writes the text of the make file to `out` and the progress lines to `progress`.
  void write(std::ostream& out, std::ostream& progress) const;
};
