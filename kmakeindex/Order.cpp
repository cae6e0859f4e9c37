#include "kmakeindex/Order.h"

#include <unicode/alphaindex.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/uscript.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <utility>

#include "kmakeindex/Letters.h"
#include "kmakeindex/Messages.h"

using icu::AlphabeticIndex;
using icu::Collator;
using icu::Locale;
using icu::UnicodeString;

namespace {

/// What a sort key begins with.
enum CLASS : char { SYMBOL = 1, MIXED_NUMBER, NUMBER, WORD };

/// Where headings come from for scripts other than the language's.
constexpr std::pair<UScriptCode, char const*> alphabets[] = {
    {USCRIPT_LATIN, "en"},      {USCRIPT_GREEK, "el"},    {USCRIPT_CYRILLIC, "ru"}, {USCRIPT_GEORGIAN, "ka"},
    {USCRIPT_ARMENIAN, "hy"},   {USCRIPT_HEBREW, "he"},   {USCRIPT_ARABIC, "ar"},   {USCRIPT_ETHIOPIC, "am"},
    {USCRIPT_DEVANAGARI, "hi"}, {USCRIPT_BENGALI, "bn"},  {USCRIPT_TAMIL, "ta"},    {USCRIPT_THAI, "th"},
    {USCRIPT_HANGUL, "ko"},     {USCRIPT_HIRAGANA, "ja"},
};

void check(UErrorCode status) {
  if (U_FAILURE(status)) throw FAILURE(std::string("kmakeindex: ICU: ") + u_errorName(status));
}

bool is_ascii_digit(char c) { return '0' <= c && c <= '9'; }

UnicodeString to_unicode(std::string_view text) {
  if (is_utf8(text)) return UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  UnicodeString result;
  for (const char c : text) result.append(static_cast<UChar>(static_cast<unsigned char>(c)));
  return result;
}

std::string to_utf8(UnicodeString const& text) {
  std::string result;
  return text.toUTF8String(result);
}

/// The locale of a language tag or of a name in ICU's form; a bogus one if it is neither.
Locale parse_language(std::string const& language) {
  if (language.find_first_of("@_") != std::string::npos) return Locale::createCanonical(language.c_str());
  char name[ULOC_FULLNAME_CAPACITY] = "";
  std::int32_t parsed = 0;
  UErrorCode status = U_ZERO_ERROR;
  uloc_forLanguageTag(language.c_str(), name, sizeof name, &parsed, &status);
  Locale locale(name);
  if (U_FAILURE(status) || static_cast<std::size_t>(parsed) != language.size()) locale.setToBogus();
  return locale;
}

bool has_collation(Locale const& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const auto wanted = locale.getKeywordValue<std::string>("collation", status);
  if (U_FAILURE(status) || wanted.empty()) return true;
  const std::unique_ptr<icu::StringEnumeration> known(
      Collator::getKeywordValuesForLocale("collation", locale, false, status));
  check(status);
  while (char const* const value = known->next(nullptr, status)) {
    if (value == wanted) return true;
  }
  return false;
}

/// Throws a FAILURE unless ICU knows the language: it would fall back in silence.
Locale find_language(std::string const& language) {
  Locale locale = parse_language(language);
  const auto is_known = [&] {
    for (char const* const* code = Locale::getISOLanguages(); *code != nullptr; ++code) {
      if (std::strcmp(*code, locale.getLanguage()) == 0) return true;
    }
    return false;
  };
  if (locale.isBogus() || !is_known() || !has_collation(locale))
    throw FAILURE("kmakeindex: there is no language " + language);
  return locale;
}

std::unique_ptr<AlphabeticIndex::ImmutableIndex> make_headings(Locale const& locale) {
  UErrorCode status = U_ZERO_ERROR;
  AlphabeticIndex index(locale, status);
  index.setMaxLabelCount(10'000, status); // all: otherwise it leaves out some
  check(status);
  std::array<UScriptCode, 8> own = {};
  const std::int32_t count = uscript_getCode(locale.getName(), own.data(), own.size(), &status);
  auto* const own_end = own.begin() + (U_FAILURE(status) ? 0 : count);
  status = U_ZERO_ERROR;
  for (auto const& [script, language] : alphabets) {
    if (std::find(own.begin(), own_end, script) == own_end) index.addLabels(Locale(language), status);
  }
  std::unique_ptr<AlphabeticIndex::ImmutableIndex> made(index.buildImmutableIndex(status));
  check(status);
  return made;
}

/// The class of a place; a number has digits alone.
CLASS classify(std::string_view place, UnicodeString const& text) {
  if (is_ascii_digit(place[0])) return std::all_of(place.begin(), place.end(), is_ascii_digit) ? NUMBER : MIXED_NUMBER;
  return u_isalpha(text.char32At(0)) != 0 ? WORD : SYMBOL;
}

/// Digits in the order of their value: how many there are comes first.
void append_number_key(std::string_view digits, std::string& keys) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  for (int shift = 24; shift >= 0; shift -= 8) keys += static_cast<char>(digits.size() >> static_cast<unsigned>(shift));
  keys += digits;
}

/// Where a text stands among texts as makeindex compares them: signs, digits with other signs, numbers, letters.
int class_of(std::string_view text) {
  const auto is_digit = [](unsigned char c) { return std::isdigit(c) != 0; };
  if (text.empty()) return 0;
  if (is_digit(static_cast<unsigned char>(text[0]))) return std::all_of(text.begin(), text.end(), is_digit) ? 3 : 2;
  return std::isalpha(static_cast<unsigned char>(text[0])) != 0 ? 4 : 1;
}

int compare_numbers(std::string_view a, std::string_view b) {
  a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
  b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  return a.compare(b);
}

/// Without regard to case and, in letter order, to blanks.
int compare_letters(std::string_view a, std::string_view b, bool letter_order) {
  const auto fold = [&](std::string_view text) {
    std::string folded(text);
    if (letter_order) std::erase(folded, ' ');
    std::transform(folded.begin(), folded.end(), folded.begin(), [](unsigned char c) { return std::tolower(c); });
    return folded;
  };
  return fold(a).compare(fold(b));
}

} // namespace

struct ORDER::ICU {
  std::unique_ptr<Collator> collator;
  std::unique_ptr<AlphabeticIndex::ImmutableIndex> index;
  bool has_language;
  bool letter_order;

  /// What of a place is compared.
  UnicodeString text_of(std::string_view place) const {
    if (!letter_order && place.find('\\') == std::string_view::npos && place.find('~') == std::string_view::npos)
      return to_unicode(place);
    std::string letters = as_letters(place);
    if (letter_order && !letters.empty() && !is_ascii_digit(letters[0])) std::erase(letters, ' ');
    return to_unicode(letters);
  }

  void append_collation_key(UnicodeString const& text, std::string& keys) const {
    const std::size_t begin = keys.size();
    std::int32_t capacity = 4 * text.length() + 16;
    for (std::int32_t size = 0;; capacity = size) {
      keys.resize(begin + static_cast<std::size_t>(capacity));
      size = collator->getSortKey(text, reinterpret_cast<std::uint8_t*>(&keys[begin]), capacity);
      if (size > capacity) continue;
      keys.resize(begin + static_cast<std::size_t>(size));
      return;
    }
  }

  /// The number of the heading that a word is under.
  std::int32_t heading_of(std::string_view word) const {
    UErrorCode status = U_ZERO_ERROR;
    return index->getBucketIndex(text_of(word), status);
  }

  /// Whether a heading is the letter of an alphabet, and not what is left between alphabets.
  bool is_alphabet(std::int32_t heading) const {
    auto const* const bucket = index->getBucket(heading);
    return bucket != nullptr && bucket->getLabelType() == U_ALPHAINDEX_NORMAL;
  }

  bool begins_with_han(std::string_view word) const {
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(text_of(word).char32At(0), &status) == USCRIPT_HAN;
  }

  /// The heading of a word: a letter of an alphabet, or else that which it begins with.
  std::string letter_of(std::string_view word) const {
    const std::int32_t heading = heading_of(word);
    if (is_alphabet(heading)) return to_utf8(index->getBucket(heading)->getLabel());
    return to_utf8(UnicodeString(text_of(word).char32At(0)).toUpper());
  }
};

ORDER::ORDER(std::string const& language, bool letter_order) : icu(std::make_unique<ICU>()) {
  icu->has_language = !language.empty() && language != "und" && language != "root";
  icu->letter_order = letter_order;
  const Locale locale = icu->has_language ? find_language(language) : Locale::getEnglish();
  UErrorCode status = U_ZERO_ERROR;
  icu->collator.reset(Collator::createInstance(locale, status));
  check(status);
  if (!icu->has_language) {
    icu->collator->setAttribute(UCOL_CASE_FIRST, UCOL_UPPER_FIRST, status);
    if (letter_order) icu->collator->setStrength(Collator::SECONDARY);
  }
  icu->index = make_headings(locale);
}

ORDER::~ORDER() = default;

void ORDER::append_sort_key(std::string_view place, std::string& keys) const {
  const UnicodeString text = icu->text_of(place);
  const CLASS kind = classify(place, text);
  keys += static_cast<char>(kind);
  if (kind == NUMBER) {
    append_number_key(place, keys);
  } else if (kind == MIXED_NUMBER) {
    keys += place;
  } else {
    icu->append_collation_key(text, keys);
    if (icu->letter_order) keys += place; // without a language, it tells capitals apart, too, as strcmp does
  }
}

GROUP ORDER::group_of(std::string_view sort_key) {
  switch (sort_key[0]) {
  case NUMBER: return GROUP::NUMBERS;
  case WORD: return GROUP::WORDS;
  default: return GROUP::SYMBOLS;
  }
}

std::vector<HEADING> ORDER::headings(std::vector<std::string_view> const& words) const {
  std::vector<HEADING> found;
  const auto is_han = [&](std::string_view word) { return icu->begins_with_han(word); };
  for (auto word = words.begin(); word != words.end();) {
    const std::string letter = icu->letter_of(*word);
    if (found.empty() || found.back().letter != letter) {
      found.push_back({static_cast<std::size_t>(word - words.begin()), GROUP::WORDS, letter});
    }
    const std::int32_t heading = icu->heading_of(*word);
    if (icu->is_alphabet(heading)) {
      // In Chinese, Han and Latin words have the same headings, the ones after the others.
      const bool of_han = is_han(*word);
      const auto end = std::partition_point(word + 1, words.end(), [&](auto w) { return is_han(w) == of_han; });
      word = std::partition_point(word + 1, end, [&](auto w) { return icu->heading_of(w) == heading; });
    } else {
      ++word;
    }
  }
  return found;
}

int compare_texts(std::string_view a, std::string_view b, bool letter_order) {
  const int kind = class_of(a);
  int result = kind - class_of(b);
  if (result == 0 && kind == 3) result = compare_numbers(a, b);
  if (result == 0 && kind == 4) result = compare_letters(a, b, letter_order);
  return result == 0 ? a.compare(b) : result;
}

std::string letters_and_digits(std::string_view text) {
  std::string visible;
  const std::string letters = as_letters(text);
  for (std::size_t i = 0; i < letters.size();) {
    if (letters[i] == '\\') {
      i = end_of_command(letters, i);
    } else {
      visible += letters[i++];
    }
  }
  const UnicodeString folded = to_unicode(visible).foldCase();
  UnicodeString kept;
  for (std::int32_t i = 0; i < folded.length(); i = folded.moveIndex32(i, 1)) {
    if (u_isalnum(folded.char32At(i)) != 0) kept.append(folded.char32At(i));
  }
  return to_utf8(kept);
}

std::string lower_case(std::string const& text) { return to_utf8(UnicodeString::fromUTF8(text).toLower()); }

bool is_utf8(std::string_view text) {
  const char all =
      std::reduce(text.begin(), text.end(), '\0', std::bit_or<>()); // no early end: faster for a whole file
  if ((static_cast<unsigned char>(all) & 0x80U) == 0) return true;
  if (text.size() > INT32_MAX) return false;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<std::int32_t>(text.size()), &status);
  return status != U_INVALID_CHAR_FOUND;
}
