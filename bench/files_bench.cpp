#include <fstream>

#include "bench/Measuring.h"
#include "lib/files/File.h"

namespace {

/// Writes a file "tokens" of integers of up to five digits, ten to a line.
void write_tokens(int count) {
  std::ofstream out("tokens");
  for (long i = 0; i < count; ++i) out << i * 79 % 10007 << (i % 10 == 9 ? '\n' : ' ');
}

/// Writes a file "lines" of lines of 70 characters.
void write_lines(int count) {
  std::ofstream out("lines");
  for (int i = 0; i < count; ++i) out << std::string(70, static_cast<char>('a' + i % 26)) << '\n';
}

/// Reads a whole file with `read`, which reads one item.
template <class FILE_TYPE, class READ>
auto whole(READ read, char const* name = "tokens") {
  return [=] {
    FILE_TYPE file(name, std::ios_base::in);
    while (read(file)) continue;
  };
}

bool token(ASCII_FILE& f) { return f.getSTRING(), f.ok; }
bool integer(ASCII_FILE& f) { return f.getint(), f.ok; }
bool line(ASCII_FILE& f) { return f.getline(), f.ok; }

std::string text;

bool std_token(std::istream& f) { return static_cast<bool>(f >> text); }
bool std_line(std::istream& f) { return static_cast<bool>(std::getline(f, text)); }

template <bool (*READ)(std::istream&)>
bool after_tellg(std::istream& f) {
  benchmark::DoNotOptimize(f.tellg());
  return READ(f);
}

void read_blocks() {
  static char block[1 << 15];
  std::ifstream file("tokens");
  while (file.read(block, sizeof block)) benchmark::DoNotOptimize(block[0]);
}

/// Asks for the place of the last character.
void locate_end() {
  ASCII_FILE file("tokens", 0);
  file.getSTRING();
  file.goto_position(static_cast<std::streamoff>(std::filesystem::file_size("tokens")) - 1);
  STRING name;
  int number = 0;
  ASCII_FILE::get_file_info(name, number);
}

} // namespace

int main(int argc, char* argv[]) {
  return run_benchmarks(argc, argv, [] {
    write_tokens(100'000);
    write_lines(10'000);
    compare("getSTRING against tellg and >>", whole<ASCII_FILE>(token), whole<std::ifstream>(after_tellg<std_token>));
    compare("getint against getSTRING", whole<ASCII_FILE>(integer), whole<ASCII_FILE>(token));
    compare("getline against tellg and std::getline", whole<ASCII_FILE>(line, "lines"),
            whole<std::ifstream>(after_tellg<std_line>, "lines"));
    compare("getSTRING against >>", whole<ASCII_FILE>(token), whole<std::ifstream>(std_token));
    compare("getline against std::getline", whole<ASCII_FILE>(line, "lines"), whole<std::ifstream>(std_line, "lines"));
    compare("get_file_info against reading in blocks", locate_end, read_blocks);
    grow("getSTRING", 1000, 10'000'000, [](int n) { return write_tokens(n), whole<ASCII_FILE>(token); });
    grow("getint", 1000, 10'000'000, [](int n) { return write_tokens(n), whole<ASCII_FILE>(integer); });
    grow("getline", 1000, 10'000'000, [](int n) { return write_tokens(n), whole<ASCII_FILE>(line); });
    grow("get_file_info", 1000, 10'000'000, [](int n) { return write_tokens(n), locate_end; });
  });
}
