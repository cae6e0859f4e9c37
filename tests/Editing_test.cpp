#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <sstream>

#include "lib/strings/Stringpp.h"
#include "tests/Reader_check.h"

namespace {

using std::string_literals::operator""s;

TEST(Editing, CutsAndTrims) {
  using EDIT = void (*)(STRING&);
  const EDIT remove_x = [](STRING& s) { s.remove_all('x'), s.remove_all('\0'); };
  const EDIT cut_x = [](STRING& s) { s.cut_out('x'); };
  const EDIT cut_ab = [](STRING& s) { s.cut_out("ab").cut_out(""); };
  const EDIT from = [](STRING& s) { s.locate_and_cut('='); };
  const EDIT before = [](STRING& s) { s.locate_and_cut_before('='); };
  const EDIT behind = [](STRING& s) { s.locate_and_cut_after('='); };
  const EDIT trim = [](STRING& s) { s.clear_space(); };
  const EDIT squeeze = [](STRING& s) { s.clear_extra_space(); };
  const EDIT base = [](STRING& s) { s.basename(); };
  const struct {
    EDIT edit;
    char const *text, *result;
    bool in_place = false;
  } cases[] = {
      {remove_x, "axbxc", "abc", true},
      {remove_x, "xx", "", true},
      {cut_x, "axbxc", "abc"},
      {cut_ab, "xxabyyab", "xxyyab"},
      {cut_ab, "ba", "ba", true},
      {cut_ab, "ab", ""},
      {from, "key=a=b", "=a=b"},
      {before, "key=a=b", "key", true},
      {behind, "key=a=b", "a=b"},
      {behind, "key=", "=", true},
      {behind, "=", "=", true},
      {from, "key", "key", true},
      {before, "key", "key", true},
      {behind, "key", "key", true},
      {trim, "", ""},
      {trim, "   ", ""},
      {trim, "\t a  b \n ", "\t a  b \n"},
      {trim, "ab", "ab"},
      {squeeze, "  a   b ", "a b"},
      {squeeze, "a \t  b", "a \t b"},
      {squeeze, "", ""},
      {base, "/a/b/c.txt", "c.txt"},
      {base, "/a/b/", ""},
      {base, "c\\d.txt", "c\\d.txt", true},
      {[](STRING& s) { toupper_(s); }, "aB1\xc3\xa9z[`{", "AB1\xc3\xa9Z[`{", true},
      {[](STRING& s) { tolower_(s); }, "aB1\xc3\x89Z@[`", "ab1\xc3\x89z@[`", true},
  };
  for (auto const& c : cases) {
    STRING s(c.text);
    char const* const buffer = s.str;
    c.edit(s);
    EXPECT_STREQ(s.str, c.result) << c.text;
    EXPECT_EQ(s.str == buffer, c.in_place) << c.text;
  }
  STRING long_text((std::string(1'000'000, ' ') + "a" + std::string(1'000'000, ' ') + "b ").c_str());
  EXPECT_STREQ(long_text.clear_extra_space().cut_out(' ').str, "ab");
}

TEST(Editing, TestsTheFormOfRandomTexts) {
  const std::regex integer("[+-]?[0-9]+|[+-]"), real(R"([+-]?(\d+\.\d*|\.\d+)([EeDd][+-]?\d+)?)");
  std::mt19937 random(7);
  int integers = 0, reals = 0;
  for (int i = 0; i < 100'000; ++i) {
    std::string text;
    while (random() % 5 != 0) text += "0129..++-eEdDf \xb2"[random() % 16];
    const STRING s(text.c_str());
    integers += s.if_int(), reals += s.if_double();
    ASSERT_EQ(s.if_int(), std::regex_match(text, integer)) << text;
    ASSERT_EQ(s.if_double(), std::regex_match(text, real)) << text;
    const std::string part = text.substr(text.size() / 2), other = part + "1";
    ASSERT_TRUE(s.end_with(part.c_str()) && s.end_with("") && s.start_with(""));
    ASSERT_EQ(s.end_with(other.c_str()),
              text.size() >= other.size() && text.substr(text.size() - other.size()) == other);
    ASSERT_EQ(s.start_with(other.c_str()), text.compare(0, other.size(), other) == 0);
  }
  EXPECT_TRUE(integers > 1000 && reals > 1000);
}

TEST(Editing, TakesWordsAndNumbersOffTheFront) {
  const struct {
    char const *text, *kinds, *result; // s, i, d for the kind; then what each gave, '!' after a failure, and the rest
  } cases[] = {
      {" 12 3.5 abc", "idiss", "12;3.5;0!;abc;!;<>"},
      {"1,2", "iiss", "1;0!;;;<,2>"},
      {"  , x ", "s", ";<, x>"},
      {"7", "di", "0!;7;<>"},
      {"  7x ", "idi", "0!;0!;0!;<  7x >"},
      {"   ", "sid", "!;0!;0!;<   >"},
      {"+ -2147483649 2.d-1", "iid", "0;-2147483648;0.2;<>"},
      {"a\tb c,d e", "sss", "a\tb;c;;<,d e>"},
  };
  for (auto const& c : cases) {
    STRING s(c.text);
    std::ostringstream result;
    for (char const* kind = c.kinds; *kind != '\0'; ++kind) {
      if (*kind == 's') result << s.getSTRING();
      if (*kind == 'i') result << s.getint();
      if (*kind == 'd') result << s.getdouble();
      result << (s.ok ? ";" : "!;");
    }
    result << '<' << s << '>';
    EXPECT_EQ(result.str(), c.result) << c.text;
  }
}

TEST(WordInput, ReadsWordsAndReportsTheLongOnes) {
  COLLECTING_MESSAGER messager;
  const std::string fits(511, 'x'), long_word(512, 'y'), huge(1'000'000, 'z');
  std::istringstream is(" one\n\ttwo " + fits + ' ' + long_word + ' ' + huge + " abcdef g \n");
  STRING s;
  for (std::string const& word : {"one"s, "two"s, fits}) EXPECT_TRUE(is >> s && s == word.c_str());
  EXPECT_TRUE(messager.reports.empty());
  for (std::string const& word : {long_word, huge}) EXPECT_TRUE(is >> s && s == word.c_str());
  EXPECT_EQ(messager.reports, (std::vector{"word is too long (length=512) to be read from standard input"s,
                                           "word is too long (length=1000000) to be read from standard input"s}));
  is.width(4);
  EXPECT_TRUE(is >> s && s == "abc");
  EXPECT_TRUE(is >> s && s == "def" && is.width() == 0);
  is.width(1);
  EXPECT_FALSE(is >> s);
  is.clear();
  EXPECT_TRUE(is >> s && s == "g");
  EXPECT_FALSE(is >> s);
  EXPECT_TRUE(s == "g" && is.eof());
  is.clear();
  is.width(5);
  EXPECT_TRUE(!(is >> s) && is.width() == 5);
}

} // namespace
