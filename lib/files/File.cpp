#include "lib/files/File.h"

#include <cassert>
#include <filesystem>

using std::ios_base;

static_assert(ios_base::app == 1 && ios_base::ate == 2 && ios_base::binary == 4 && ios_base::in == 8 &&
                  ios_base::out == 16 && ios_base::trunc == 32,
              "open modes are handed to the stream as they are");

constinit ASCII_FILE* ASCII_FILE::current_file = nullptr;

namespace {

constexpr int in_mode = ios_base::in, out_mode = ios_base::out, trunc_mode = ios_base::trunc;

bool is_missing(STRING const& path) {
  std::error_code error;
  return !std::filesystem::exists(path.str, error) && !error;
}

} // namespace

ASCII_FILE::ASCII_FILE() = default;

ASCII_FILE::ASCII_FILE(char const* path, int open_mode) { open(path, open_mode); }

ASCII_FILE::~ASCII_FILE() {
  current_file = nullptr;
  while (included_file != nullptr) { // one by one: a long chain would be a deep recursion
    ASCII_FILE* const inner = included_file;
    included_file = inner->included_file;
    inner->included_file = nullptr;
    delete inner;
  }
}

void ASCII_FILE::open(char const* path, int open_mode) {
  mode = open_mode | in_mode;
  open_stream(path == nullptr ? "" : path, mode);
}

void ASCII_FILE::open_stream(char const* path, int flags) {
  std::fstream::open(path, static_cast<ios_base::openmode>(flags));
  success = !fail();
  file_name = path;
  set_position();
  line_changed = false;
}

void ASCII_FILE::close() {
  success = false;
  std::fstream::close();
}

bool ASCII_FILE::if_current_file() { return current_file != nullptr; }

std::streampos ASCII_FILE::get_position() {
  if (fail()) return -1;
  try {
    return std::ios::rdbuf()->pubseekoff(0, ios_base::cur, ios_base::in); // tellg would fail at the end
  } catch (...) {
    setstate(ios_base::badbit);
    return -1;
  }
}

void ASCII_FILE::set_position() { previous_pos = get_position(); }

void ASCII_FILE::goto_position(std::streampos p) {
  if (fail()) {
    close();
    open_stream(name.str, mode & ~trunc_mode); // truncating again would lose what the file holds
    if (fail() && (mode & trunc_mode) != 0 && is_missing(name)) open_stream(name.str, mode);
  }
  if (mode & in_mode) seekg(p);
  if (mode & out_mode) seekp(p);
}

void ASCII_FILE::goto_position_and_set_previous_pos(std::streampos p) {
  goto_position(p);
  set_position();
}

void ASCII_FILE::rewind() { goto_position_and_set_previous_pos(0); }

void ASCII_FILE::back() { goto_position(previous_pos); }

void ASCII_FILE::back1() {
  const std::streamoff position = get_position();
  assert(position > 0);
  goto_position(position - 1);
}

int ASCII_FILE::get_next_char() {
  set_position();
  return static_cast<signed char>(get());
}

void ASCII_FILE::empty_line() {
  char c = ' ';
  while (get(c) && c != '\n' && c != '\r' && c != '\0') continue;
}

void ASCII_FILE::read_spaces() {
  char c = ' ';
  while (get(c) && c == ' ') continue;
  if (good()) putback(c);
}
