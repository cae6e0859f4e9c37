#include "lib/files/File.h"

void ASCII_FILE::include_file() {
  const STRING path = getSTRING();
  auto* const inner = new ASCII_FILE(path.str, 0);
  inner->parent_file = this;
  delete included_file;
  included_file = inner;
}

STRING GLSTR(ASCII_FILE& file) {
  file.back();
  return file.getSTRING();
}
