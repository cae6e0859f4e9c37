#include "lib/files/File.h"

/// Reads a list where there is none, which the library reports.
void read_list() {
  ASCII_FILE missing((STRING::EMPTY + "no such file").str, 0);
  LIST<int> list;
  missing.get(list, 3);
}
