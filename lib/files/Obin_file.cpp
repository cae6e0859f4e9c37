#include "lib/files/File.h"

using std::ios_base;

namespace {

void open_stream(std::fstream& stream, char const* path, int open_mode) {
  stream.open(path, static_cast<ios_base::openmode>(open_mode) | ios_base::in | ios_base::out);
}

} // namespace

OBIN_FILE::OBIN_FILE() = default;

OBIN_FILE::OBIN_FILE(char const* path, int open_mode) : file_name(path) {
  open_stream(*this, file_name.str, open_mode);
  if (fail()) ERROR_MESSAGER::static_err_message(EMPTY + "Bad obin file", __FILE__, __LINE__);
}

void OBIN_FILE::open(char const* path, int open_mode) {
  flush();
  close();
  file_name = path;
  open_stream(*this, file_name.str, open_mode);
  if (fail()) ERROR_MESSAGER::static_err_message(EMPTY + "Failed", __FILE__, __LINE__);
}
