#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <limits>
#include <new>
#include <string_view>

#include "index_builder/Index_reader.h"
#include "lib/files/File.h"
#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

namespace {

/// Pages of one key in order of first arrival, each once, with a flag beside each: 1 for a principal page, else 0.
struct PAGES {
  LIST<int> numbers;
  LIST<int> flags;

  /// A page that is there already keeps the flag it came with.
  void record(int page, int flag) {
    if (numbers.is_in(page)) return;
    numbers.add(page);
    flags.add(flag);
  }

  void clear() {
    numbers.resize(0);
    flags.resize(0);
  }
};

void run_in_shell(STRING const& command) {
  [[maybe_unused]] const int status = std::system(command.str); // what came of it shows in the files
}

bool read_field(std::fstream& in) {
  swallow(in);
  get_key(in);
  return in.good();
}

/// Takes the '*' of a principal page off the end of the key and tells whether it was there.
bool take_marker(char* key) {
  const std::size_t length = std::strlen(key);
  if (length == 0 || key[length - 1] != '*') return false;
  key[length - 1] = '\0';
  return true;
}

char upper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }
char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// Writes a heading unless `first` stands under the last one, whose lower-case letter is `letter`.
void write_heading(std::ostream& out, char first, char& letter) {
  if (first == letter || first == upper(letter)) return;
  letter = lower(first);
  STRING heading;
  heading = upper(letter);
  if (first == '\\') heading = "Param\\'etr\\'e";
  if (first == '_') heading = "\\_";
  if (first == '{') heading = "\\{";
  out << "\\indexletter{" << heading << "}\n";
}

constexpr std::string_view principal_opening = "{\\bf ";
constexpr std::size_t longest_page = principal_opening.size() + std::numeric_limits<int>::digits10 + 4;

/// Puts one page with its blank at `end`, which has room for `longest_page` bytes, and returns the end behind it.
char* put_page(char* end, int number, bool principal) {
  if (principal) end = std::copy(principal_opening.begin(), principal_opening.end(), end);
  end = std::to_chars(end, end + longest_page, number).ptr;
  if (principal) *end++ = '}';
  *end++ = ' ';
  return end;
}

/// Writes in blocks: a write for each page would take longer than reading its entry did.
void write_item(std::ostream& out, char const* key, PAGES const& pages) {
  out << "\\indexitem{" << key << "}{";
  char block[4096];
  char* end = block;
  for (int i = 0; i < pages.numbers.size; ++i) {
    if (end + longest_page > std::end(block)) {
      out.write(block, end - block);
      end = block;
    }
    end = put_page(end, pages.numbers[i], pages.flags[i] == 1);
  }
  out.write(block, end - block) << "}\n";
}

/// Merges the sorted entries into headings and items. An entry that the end of input cuts short does not count. False,
/// with nothing written, when there is no complete key at all.
bool build_index(std::fstream& sorted, std::ostream& out) {
  if (!read_field(sorted)) return false;
  std::strcpy(Keym1, Key);
  take_marker(Keym1);

  char letter = '\0';
  PAGES pages;
  const auto write_group = [&] {
    write_heading(out, Keym1[0], letter);
    write_item(out, Keym1, pages);
  };

  do {
    const int flag = take_marker(Key) ? 1 : 0;
    if (std::strcmp(Key, Keym1) != 0) {
      write_group();
      pages.clear();
      std::strcpy(Keym1, Key);
    }
    if (!read_field(sorted)) break;
    pages.record(STRING(Key).to_int(), flag);
  } while (read_field(sorted));

  if (pages.numbers.size > 0) write_group();
  return true;
}

void make_index(STRING const& input) {
  static char output_buffer[1 << 16]; // the stream's own would mean a system call for every 8 KB
  ASCII_FILE output;
  output.rdbuf()->pubsetbuf(output_buffer, sizeof output_buffer);
  output.open("kindex.tex", 48);
  run_in_shell("cat " + input + " | sort -f > oo");

  ASCII_FILE sorted("oo", 0);
  const bool any_entry = build_index(sorted, output);
  if (!sorted.is_open() || sorted.bad()) std::cerr << "kindex: cannot read oo\n";

  if (any_entry) run_in_shell("rm -f oo");
}

} // namespace

int main(int argc, char* argv[]) {
  try {
    make_index(STRING(argc > 1 ? argv[1] : "") + ".idx");
  } catch (std::bad_alloc const&) {
    std::cerr << "kindex: out of memory\n";
  }
  return 0;
}
