#pragma once

#include <optional>
#include <string>
#include <vector>

/// What the command line asks for.
struct OPTIONS {
  std::vector<std::string> names;  ///< raw indexes, with or without .idx
  std::vector<std::string> styles; ///< style files, in the order in which they are read
  bool reads_input = false;        ///< standard input comes before the names
  std::string index;               ///< where the index goes; empty: beside the first name
  std::string transcript;          ///< empty: none
  std::string first_page;          ///< a number, or any, odd or even; empty: not set
  bool compresses_blanks = false;
  bool letter_order = false;
  bool makes_ranges = true;
  bool quiet = false;
  std::optional<bool> typed_keys;      ///< whatever the raw index says
  std::optional<std::string> language; ///< a language tag
  bool language_is_of_environment = false;
};

/// Takes the command line apart. Ends the program where that is all there is to do: with status 0 after --help and
/// --version, with 2 after a wrong call, which it tells.
OPTIONS read_options(int argc, char* argv[]);
