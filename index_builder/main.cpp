#include <cctype>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <new>
#include <string>

#include "index_builder/Index_reader.h"
#include "lib/files/File.h"
#include "lib/files/Standard_streams.h"
#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

namespace {

/// The pages of one key in order of first arrival, each once, and a flag for each: 1 for a principal page, else 0.
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
  [[maybe_unused]] const int status = std::system(command.str); // the files show what came of it
}

bool read_field(std::fstream& in) {
  swallow(in);
  get_key(in);
  return in.good();
}

/// Removes the '*' of a principal page from the end of the key. Returns whether it was there.
bool take_marker(char* key) {
  const std::size_t length = std::strlen(key);
  if (length == 0 || key[length - 1] != '*') return false;
  key[length - 1] = '\0';
  return true;
}

/// The heading for keys that begin with `first`; empty for the empty key.
STRING heading_of(char first) {
  switch (first) {
  case '\\': return "Param\\'etr\\'e";
  case '_': return "\\_";
  case '{': return "\\{";
  default: return static_cast<char>(std::toupper(static_cast<unsigned char>(first)));
  }
}

/// Writes all pages at once, since inserting each in the stream would take longer than reading its entry.
void write_item(std::ostream& out, char const* key, PAGES const& pages) {
  std::string list;
  for (int i = 0; i < pages.numbers.size; ++i) {
    const bool principal = pages.flags[i] == 1;
    char digits[12];
    if (principal) list += "{\\bf ";
    list.append(digits, std::to_chars(digits, std::end(digits), pages.numbers[i]).ptr);
    list += principal ? "} " : " ";
  }
  out << "\\indexitem{" << key << "}{" << list << "}\n";
}

/// Merges the sorted entries into headings and items. An entry that the end of input cuts short does not count. Returns
/// false, with nothing written, if there is no complete key at all.
bool build_index(std::fstream& sorted, std::ostream& out) {
  if (!read_field(sorted)) return false;
  std::strcpy(Keym1, Key);
  take_marker(Keym1);

  STRING last_heading;
  PAGES pages;
  const auto write_group = [&] {
    const STRING heading = heading_of(Keym1[0]);
    if (heading != last_heading) out << "\\indexletter{" << heading << "}\n";
    last_heading = heading;
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
  ASCII_FILE index("kindex.tex", std::ios_base::out | std::ios_base::trunc);
  run_in_shell("cat " + input + " | sort -f > oo");

  ASCII_FILE sorted("oo", 0);
  const bool any_entry = build_index(sorted, index);
  std::error_code error; // some standard libraries take a directory for an empty file
  if (!sorted.eof() || std::filesystem::is_directory("oo", error)) std::cerr << "kindex: cannot read oo\n";
  if (!index.flush()) std::cerr << "kindex: cannot write kindex.tex\n";

  if (any_entry) run_in_shell("rm -f oo");
}

} // namespace

int main(int argc, char* argv[]) {
  prepare_standard_streams();
  try {
    make_index(STRING(argc > 1 ? argv[1] : "") + ".idx");
  } catch (std::bad_alloc const&) {
    std::cerr << "kindex: out of memory\n";
  }
  return 0;
}
