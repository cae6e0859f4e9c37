#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A place begins with a sign (or is a number with more after it), is a whole number, or begins with a letter.
enum class GROUP : char { SYMBOLS, NUMBERS, WORDS };

/// A group of places under one heading: those from `begin` up to that of the next group.
struct HEADING {
  std::size_t begin;
  GROUP group;
  std::string letter; ///< that of words, in capitals
};

/// The order of places in a language. Places are in UTF-8; bytes that are not count as Latin-1.
class ORDER {
public:
  /// Takes a language tag, or a locale in ICU's form; the empty text, `und` and `root` are no language. Throws a
  /// FAILURE if it is none that ICU knows.
  ORDER(std::string const& language, bool letter_order);
  ~ORDER();

  /// Appends what is to be compared, byte by byte. Keys of places of equal strength are equal.
  void append_sort_key(std::string_view place, std::string& keys) const;

  static GROUP group_of(std::string_view sort_key);

  /// The groups of words in their order.
  std::vector<HEADING> headings(std::vector<std::string_view> const& words) const;

private:
  struct ICU;
  std::unique_ptr<ICU> icu;
};

/// Less than zero if `a` is before `b` among items of the same place, as makeindex compares texts: none, signs, digits
/// with other signs, numbers, letters without regard to case and, in letter order, to blanks.
int compare_texts(std::string_view a, std::string_view b, bool letter_order);

/// The letters and digits of a text, without its commands and without regard to case.
std::string letters_and_digits(std::string_view text);

/// The answer for more than 2 GB with other than ASCII is no.
bool is_utf8(std::string_view text);

/// Small letters for capitals.
std::string lower_case(std::string const& text);
