#pragma once

#include <optional>
#include <string>

#include "kmakeindex/Messages.h"

/// What a style file may change, under the names that it has there.
struct STYLE {
  std::string keyword = "\\indexentry";
  char actual = '@', arg_open = '{', arg_close = '}', encap = '|', escape = '\\', level = '!', quote = '"';
  char range_open = '(', range_close = ')';
  std::string page_compositor = "-";

  std::string preamble = "\\begin{theindex}\n", postamble = "\n\n\\end{theindex}\n";
  std::string setpage_prefix = "\n  \\setcounter{page}{", setpage_suffix = "}\n";
  std::string group_skip = "\n\n  \\indexspace\n";
  int headings_flag = 0;
  std::string heading_prefix, heading_suffix;
  std::string symhead_positive = "Symbols", symhead_negative = "symbols";
  std::string numhead_positive = "Numbers", numhead_negative = "numbers";
  std::string item_0 = "\n  \\item ", item_1 = "\n    \\subitem ", item_2 = "\n      \\subsubitem ";
  std::string item_01 = "\n    \\subitem ", item_x1 = "\n    \\subitem ";
  std::string item_12 = "\n      \\subsubitem ", item_x2 = "\n      \\subsubitem ";
  std::string delim_0 = ", ", delim_1 = ", ", delim_2 = ", ", delim_n = ", ", delim_r = "--", delim_t;
  std::string encap_prefix = "\\", encap_infix = "{", encap_suffix = "}";
  std::string page_precedence = "rRnaA";
  static constexpr char page_precedence_of_files[] = "rnaRA"; ///< makeindex has another one where it reads a style file
  int line_max = 72;
  std::string indent_space = "\t\t";
  int indent_length = 16;
  std::string suffix_2p, suffix_3p, suffix_mp;
  std::string icu_locale; ///< in ICU's form, de@collation=phonebook, or a language tag

  /// No specifier: each page and each range stands by itself, within \indexpage and \hyperpage.
  bool has_page_commands = false;
  /// In place of heading_prefix before the headings of symbols and numbers, as long as that is the package's.
  std::optional<std::string> sign_heading_prefix;
};

/// The style of a raw index that the LaTeX package has written.
STYLE package_style();

/// Changes what the file says. Looks for it where INDEXSTYLE and kpsewhich say, too. A specifier that is not known is
/// told. Throws a FAILURE where there is no such file, or a string in it does not end.
void read_style(std::string const& name, STYLE& style, MESSAGES& messages);
