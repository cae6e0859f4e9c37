#include "kmakeindex/Options.h"

#include <getopt.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace {

constexpr char usage[] = R"(usage: kmakeindex [-cgilLqrT] [-s STYLE]... [-o IND] [-p NUM] [-t LOG]
                  [--language=TAG] [--keys=typed|makeindex] [NAME...]

Makes the index NAME.ind of the raw index NAME.idx that LaTeX has written.
  -i          reads standard input, and writes standard output unless there is -o
  -o IND      writes the index to IND
  -s STYLE    takes a style file of makeindex; several one after the other
  -t LOG      writes a transcript
  -c          compresses blanks
  -l          orders letter by letter, not word by word
  -r          makes no ranges of pages in a row
  -p NUM      begins at this page, or any, odd, even: after the last page of NAME.log
  -q          tells only what is wrong
  --language=TAG     orders as this language does: sv, de-u-co-phonebk
  -g, -T, -L         in German (phone book), in Thai, as the environment's locale does
  --keys=typed       keys are as they are to be printed; a star at the end: principal page
  --keys=makeindex   keys are in the syntax of makeindex, as they are without this
  --help, --version
)";

[[noreturn]] void wrong_call(std::string const& what) {
  if (!what.empty()) std::cerr << "kmakeindex: " << what << "\n\n";
  std::cerr << usage;
  std::exit(2);
}

/// The language of the environment's locale, such as sv in LANG=sv_SE.UTF-8; empty where it has none.
std::string language_of_environment() {
  std::string locale;
  for (char const* const variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
    char const* const value = std::getenv(variable);
    if (locale.empty() && value != nullptr) locale = value;
  }
  locale.resize(std::min(locale.find_first_of(".@"), locale.size()));
  if (locale == "C" || locale == "POSIX") return "";
  for (char& c : locale) c = c == '_' ? '-' : c;
  return locale;
}

} // namespace

OPTIONS read_options(int argc, char* argv[]) {
  enum { LANGUAGE = 256, KEYS, HELP, VERSION };
  static constexpr option names[] = {
      {"language", required_argument, nullptr, LANGUAGE},
      {"keys", required_argument, nullptr, KEYS},
      {"help", no_argument, nullptr, HELP},
      {"version", no_argument, nullptr, VERSION},
      {nullptr, 0, nullptr, 0},
  };
  OPTIONS options;
  const auto order_as = [&](std::string const& language, bool is_of_environment) {
    options.language = language;
    options.language_is_of_environment = is_of_environment;
  };
  for (int c = 0; (c = getopt_long(argc, argv, "cgilLqrTo:p:s:t:", names, nullptr)) != -1;) {
    const std::string argument = optarg == nullptr ? "" : optarg;
    if (optarg != nullptr && argument.empty()) wrong_call("an option takes no empty argument");
    switch (c) {
    case 'c': options.compresses_blanks = true; break;
    case 'g': order_as("de-u-co-phonebk", false); break;
    case 'i': options.reads_input = true; break;
    case 'l': options.letter_order = true; break;
    case 'L': order_as(language_of_environment(), true); break;
    case 'q': options.quiet = true; break;
    case 'r': options.makes_ranges = false; break;
    case 'T': order_as("th", false); break;
    case 'o': options.index = argument; break;
    case 'p': options.first_page = argument; break;
    case 's': options.styles.push_back(argument); break;
    case 't': options.transcript = argument; break;
    case LANGUAGE: order_as(argument, false); break;
    case KEYS:
      if (argument != "typed" && argument != "makeindex")
        wrong_call("--keys takes typed or makeindex, not " + argument);
      options.typed_keys = argument == "typed";
      break;
    case HELP: std::cout << usage; std::exit(0);
    case VERSION: std::cout << "kmakeindex " KINDEX_VERSION "\n"; std::exit(0);
    default: wrong_call("");
    }
  }
  options.names.assign(argv + optind, argv + argc);
  if (options.names.empty()) options.reads_input = true;
  return options;
}
