// Reads a description of a garden, with macros, included files and comments, and prints what it has read.
//
//   read_input garden.txt             the first mistake ends the program, with file and line
//   read_input --check broken.txt     tells all mistakes
//
// The input has to be a file: a pipe cannot move back.

#include <iostream>

#include "lib/diagnostics/Error_messager.h"
#include "lib/files/File.h"

namespace {

struct PLANT {
  STRING name;
  double height = 0;

  bool operator==(PLANT const& other) const { return name == other.name && height == other.height; } // for LIST
};

struct GARDEN {
  STRING title;
  int width = 0;
  int depth = 0;
  LIST<int> rows;
  LIST<PLANT> plants;
};

/// Keeps the place in a file that was read to its end. A report would lose it, and start the file anew.
void stay_at_end() {
  ASCII_FILE* const file = ASCII_FILE::current_file;
  if (file == nullptr || !file->fail()) return;
  file->clear();
  file->seekg(0, std::ios::end);
}

/// Ends the program at the first mistake in the input.
class FIRST_MISTAKE : public ERROR_MESSAGER {
public:
  void input_error(STRING text) override {
    stay_at_end();
    ERROR_MESSAGER::input_error(text);
  }
};

/// Keeps the mistakes in the input instead of ending the program at the first one.
class MISTAKES : public ERROR_MESSAGER {
public:
  LIST<STRING> found;

  void input_error(STRING text) override {
    if (char* const source_position = text.locate(" in file ")) *source_position = '\0'; // for programmers only
    keep(text);
  }

  /// What the library's readers report, as of broken definitions.
  void err_message(STRING text, char const* /*source_file*/, int /*source_line*/) override { keep(text); }
  using ERROR_MESSAGER::err_message;

private:
  void keep(STRING const& text) {
    STRING file;
    int line = 0;
    stay_at_end();
    ASCII_FILE::get_file_info(file, line);
    found.add(file + ":" + itoa(line) + ": " + text);
  }
};

/// Reports the word that stands where something else should, or that there is none on this line.
void report_word(ASCII_FILE& file) {
  const STRING word = file.getSTRING_sl();
  KBAD(file.ok ? word : "");
}

int read_int(ASCII_FILE& file) {
  const int number = file.getint_sl();
  if (!file.ok) report_word(file);
  return number;
}

double read_double(ASCII_FILE& file) {
  const double number = file.getdouble_sl();
  if (!file.ok) report_word(file);
  return number;
}

STRING read_name(ASCII_FILE& file) {
  const STRING name = file.getSTRING_sl();
  if (file.ok) return name;
  report_word(file);
  return "";
}

/// A file that includes itself would do so until no more files can be opened.
bool deep_enough(ASCII_FILE const& file) {
  constexpr int most_levels = 20;
  int levels = 0;
  for (ASCII_FILE const* outer = file.parent_file; outer != nullptr; outer = outer->parent_file) ++levels;
  return levels >= most_levels;
}

void include(ASCII_FILE& file) {
  if (deep_enough(file)) {
    ERROR_MESSAGER::STATIC_INPUT_ERROR("Included too deep: " + file.getSTRING(), __FILE__, __LINE__);
    return;
  }
  file.include_file();
  ASCII_FILE const& included = *file.included_file;
  if (included.fail()) ERROR_MESSAGER::STATIC_INPUT_ERROR("Cannot open: " + included.name, __FILE__, __LINE__);
}

void read_command(STRING const& command, ASCII_FILE& file, GARDEN& garden) {
  if (command == "title") {
    garden.title = read_name(file);
  } else if (command == "size") {
    garden.width = read_int(file);
    garden.depth = read_int(file);
  } else if (command == "rows") {
    file.get(garden.rows, 0);
  } else if (command == "plant") {
    PLANT plant;
    plant.name = read_name(file);
    plant.height = read_double(file);
    garden.plants.add(plant);
  } else if (command == "include") {
    include(file);
  } else {
    UNKNOWN_COMMAND(command);
    file.empty_line();
  }
}

/// Commands come from the innermost file by way of the outermost one. What belongs to a command is read from the file
/// that the command came from, since only there it can be put back.
void read(ASCII_FILE& input, GARDEN& garden) {
  input.skip_comments = 0; // this file has macros, its included files have comments
  for (STRING command = input.getSTRING(); input.ok; command = input.getSTRING()) {
    read_command(command, *ASCII_FILE::current_file, garden);
  }
}

void print(GARDEN const& garden) {
  std::cout << garden.title << ", " << garden.width << " by " << garden.depth << '\n';
  for (const int row : garden.rows) std::cout << "row " << row << '\n';
  for (PLANT const& plant : garden.plants) std::cout << plant.name << ' ' << dtoa(plant.height, "%.2f") << " m\n";
}

} // namespace

int main(int argc, char* argv[]) {
  const bool check = argc == 3 && STRING(argv[1]) == "--check";
  if (argc != 2 && !check) {
    std::cerr << "usage: read_input [--check] FILE\n";
    return 2;
  }
  ASCII_FILE input(argv[argc - 1], 0);
  if (!input.ok) ERROR_MESSAGER::static_err_message(EMPTY + "cannot open " + input.name, __FILE__, __LINE__);

  FIRST_MISTAKE first;
  MISTAKES mistakes;
  ERROR_MESSAGER::reassign_error_messager(&first);
  if (check) ERROR_MESSAGER::reassign_error_messager(&mistakes);
  GARDEN garden;
  read(input, garden);
  print(garden);
  ERROR_MESSAGER::reassign_error_messager(&default_messager);

  for (STRING const& mistake : mistakes.found) std::cerr << mistake << '\n';
  return mistakes.found.size == 0 ? 0 : 1;
}
