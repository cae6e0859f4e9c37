#pragma once

#include <iosfwd>

#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

/// Anything with a name that can be referred to.
struct NAMED_NODE {
  STRING name;
};

struct SOURCE_FILE;

/// A source directory. It owns neither the nodes it refers to nor its files.
struct SOURCE_DIR : NAMED_NODE {
  LIST<NAMED_NODE*> refs;

  /// Filled from the project's files when the project is written, unless every directory has files already.
  BUFF_LIST<SOURCE_FILE*> files{16, 256};
};

/// A source file. It belongs to the first of the project's directories whose name is that of `dir`, which has to be
/// set.
struct SOURCE_FILE : NAMED_NODE {
  LIST<NAMED_NODE*> refs;
  SOURCE_DIR* dir = nullptr;
};

/// The structure of an Eclipse project, written as counts and names, one a line: the directories, then for each of them
/// its references and its files with their references. The caller fills it in and owns the lists and what they point
/// to.
class ECLIPSE_PROJECT {
public:
  /// The name of the file to write, used as it is.
  STRING file_name;

  /// The directories in output order; null for none.
  ARRAY<SOURCE_DIR*>* dirs = nullptr;

  /// Every source file, in the order in which they are added to their directories; null for none.
  ARRAY<SOURCE_FILE*>* files = nullptr;

  /// Runs `create_project_file`.
  void splash();

  /// Adds the files to their directories if a directory has none, and writes the file anew. A file that cannot be
  /// written is not reported. A source file whose directory is not in the project ends the process with a message and
  /// status 1.
  void create_project_file();

  /// As `create_project_file`, but writes the text to `out`.
  void write(std::ostream& out);
};
