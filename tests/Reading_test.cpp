#include <gtest/gtest.h>
#include <sys/resource.h>

#include <random>
#include <sstream>
#include <stdexcept>

#include "lib/files/File.h"
#include "tests/Allocations.h"
#include "tests/Reader_check.h"
#include "tests/Scratch_directory.h"

namespace {

using std::string_literals::operator""s;

/// The results of the calls in `calls`, each with '^' in front if it passed a line end and '!' behind if it failed,
/// then the reports. The calls: t and T token (T on the same line), l line, i and I integer, d and D real, 0 to 9 that
/// many integers, w up to a word with "w", f find "key", c comments off, n include, g the last token again, ? position.
std::string read_all(ASCII_FILE& f, char const* calls) {
  COLLECTING_MESSAGER messager;
  std::ostringstream out;
  for (; *calls != '\0'; ++calls) {
    std::ostringstream result;
    const char call = *calls;
    if (call == 't') result << f.getSTRING();
    if (call == 'T') result << f.getSTRING_sl();
    if (call == 'l') result << f.getline();
    if (call == 'i') result << f.getint();
    if (call == 'I') result << f.getint_sl();
    if (call == 'd') result << f.getdouble();
    if (call == 'D') result << f.getdouble_sl();
    if (call >= '0' && call <= '9') result << list_text(f, call - '0');
    if (call == 'w') f.skip_until_word_start_with("w");
    if (call == 'f') f.locate("key");
    if (call == 'c') f.skip_comments = 0;
    if (call == 'n') f.include_file();
    if (call == 'g') result << GLSTR(f);
    if (call == '?') {
      STRING name;
      int line = 0;
      ASCII_FILE::get_file_info(name, line);
      result << name << ':' << line;
    }
    out << (f.line_changed ? "^" : "") << result.str() << (f.ok ? ";" : "!;");
  }
  for (std::string const& report : messager.reports) out << '[' << report << ']';
  return out.str();
}

TEST(Reading, GivesWhatItsCallsPromise) {
  const std::string bad_character = "[character not allowed in #define]";
  const std::string cut = "[unxpected end of file met while reading #define]";
  const struct {
    std::string text;
    char const* calls;
    std::string result;
  } cases[] = {
      {"  alpha,beta % note\ngamma\n", "tttt", "alpha;beta;^gamma;^EOF!;"},
      {"x % y\n", "cttt", ";x;y;^EOF!;"},
      {"a#b #a\nc EOF", "ttttt", "a#b;^c;EOF;EOF!;EOF!;"},
      {"a#b #a\n", "cttt", ";a#b;#a;^EOF!;"},
      {"last", "tt", "last;EOF!;"},
      {"12abc", "iti", "0!;12abc;0!;"},
      {"1 2 x", "0t", "1 2 !;x;"},
      {"1 2 x", "3t", "1 2 0 !;x;[bad get list]"},
      {"\n\nabc\n", "ll", "abc;!;"},
      {"ab", "ll", "ab;!;"},
      {"ab\nz", "ll", "ab;!;"},
      {"\r\n\nx = 1 % note", "lll", ";x = 1 ;!;"},
      {"a\nb", "TTtT", "a;^!;^b;EOF!;"},
      {"1\n2", "IIi", "1;^0!;^2;"},
      {"1.5\n.5", "DDdd", "1.5;^0!;^0.5;0!;"},
      {"7 a key b", "dftftf", "0!;;b;;b;;"},
      {"no", "ft", "!;EOF!;"},
      {"a b wc\nd w", "wtwtwt", ";wc;;w;!;EOF!;"},
      {"a EOF w", "wt", "!;w;"},
      {"alpha beta\n", "tggt", "alpha;alpha;alpha;beta;"},
      {"a\r\nb\r\nc d", "ttt?t", "a;^b;^c;^input:5;d;"},
      {"# 40 \"data.txt\" 1\nx", "t?", "^x;^ data.txt :40;"},
      {"# 40 \"data.txt\"\nx\n", "t?", "^x;^ data.txt \n:40;"},
      {"a # 7 f g\n# 9\n#\t5 f g\nx", "t?t?", "a;input:1;^x;^input:4;"},
      {"# 2147483647 f g\na\nb", "tt?", "^a;^b;^f:2147483647;"},
      {"# -3 f g\na\nb", "tt?", "^a;^b;^f:-2;"},
      {"a\n", "tt??", "a;^EOF!;input:1!;input:1!;"},
      {"#define N 10\nsize N N1\n", "cttt", ";size;10;N1;"},
      {"#define N 10 20\nx #define A 1\nA", "cttt", ";20;^x;1;"},
      {"#define E \nE.E E", "ctt", ";E.E;;"},
      {"#define N\nX 1\n", "ct", ";EOF!;" + cut},
      {"#define A\t1 2\n", "ct", ";EOF!;" + bad_character},
      {"#define A#B 1;2\nA#B", "ct", ";1;2;" + bad_character + bad_character},
      {"#define N 1\n#define N 2\nN", "ct", ";1;[Def key in]"},
      {"#define N", "ctt", ";EOF!;EOF!;" + cut},
      {"#define N 1", "ctt", ";EOF!;EOF!;"},
      {"inner x", "nttt", ";in;ner;x;"},
      {"none x", "ntt", ";x;EOF!;"},
      {"#define F inner\n#define in out\nF", "cnttt", ";;out;ner;EOF!;"},
      {"loop a b", "nttttt", ";l;a;b;EOF!;EOF!;"},
  };
  for (auto const& c : cases) {
    const SCRATCH_DIRECTORY scratch;
    put("input", c.text), put("inner", "in ner\n"), put("loop", "l EOF lost");
    ASCII_FILE f("input", 0);
    EXPECT_EQ(read_all(f, c.calls), c.result) << c.text;
  }
}

TEST(Reading, TreatsEveryByteAsItsKind) {
  const SCRATCH_DIRECTORY scratch;
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool part = PLAIN_READER::allowed(c), comment = c == '%', end = c == '\n' || c == '\r';
    put("input", "a"s + c + "b\nc\n");
    ASCII_FILE f("input", 0);
    const std::string expected = part ? "a"s + c + "b;^c;" : comment ? "a;^c;" : end ? "a;^b;" : "a;b;";
    EXPECT_EQ(read_all(f, "tt").substr(0, expected.size()), expected) << byte;
    f.rewind();
    EXPECT_EQ(f.getline(), end || c == '\0' || comment || c == '#' ? "a" : ("a"s + c + "b").c_str()) << byte;
    EXPECT_EQ(f.getline(), end || c == '\0' ? "b" : "c") << byte;
    EXPECT_EQ(f.allowed_character(byte), part);
    EXPECT_EQ(f.allowed_character(byte - 256) + f.allowed_character(byte + 256), 0);
  }
}

TEST(Reading, LeavesTheFieldsThatReadingByCharactersLeaves) {
  std::istringstream list(
      " |  |\n|\r|\r\n|\n\n|a|b|12|-7|1.5|.5|f1|f2|none|.|EOF|#define |#define A |#define a b\n|A|\xe9|%|# |,|\t|;|"
      "# 9 \"\"f\n|# 40 \"x y\" 1\n|\n# 2147483647 f\n");
  std::vector<std::string> pieces = {"\0"s};
  for (std::string piece; std::getline(list, piece, '|');) pieces.push_back(piece);
  const SCRATCH_DIRECTORY scratch;
  for (unsigned seed = 0; seed < 400; ++seed) {
    std::mt19937 random(seed);
    for (std::string const name : {"f0", "f1", "f2"}) {
      std::string text;
      const std::size_t length = seed % 100 == 0 ? 70'000 : random() % 150;
      while (text.size() < length) text += pieces[random() % pieces.size()];
      put(name, text);
    }
    std::string program(160, ' ');
    for (char& c : program) c = static_cast<char>(random());
    ASSERT_EQ(first_difference(program), "") << "seed " << seed;
  }
}

TEST(Reading, TakesTextsOfAnyLength) {
  const SCRATCH_DIRECTORY scratch;
  std::string huge;
  huge.resize(10'000'000, 'x');
  put("input", "#define " + huge + "k " + huge + "v\n" + huge + ' ' + huge + "k\n" + huge + "\n# 5 " + huge + "\nlast");
  ASCII_FILE f("input", 0);
  f.skip_comments = 0;
  EXPECT_EQ(f.getSTRING(), huge.c_str());
  EXPECT_EQ(f.getSTRING(), (huge + 'v').c_str());
  EXPECT_TRUE(f.getline() == huge.c_str() && f.getline() == ("# 5 " + huge).c_str() && f.getline() == "last");
  f.back();
  STRING name;
  int line = 0;
  ASCII_FILE::get_file_info(name, line);
  EXPECT_TRUE(line == 5 && name == (huge + '\n').c_str());

  std::string lines, marks;
  lines.resize(3'000'000, '\n'), marks.resize(1'000'000, '#');
  put("input", lines + marks + "a\r" + marks + "\n# 3 f \nb");
  ASCII_FILE g("input", 0);
  g.skip_comments = 0;
  EXPECT_TRUE((g.getSTRING(), g.getSTRING(), g.getSTRING(), g.getSTRING(), g.getSTRING(), g.getSTRING()) == "b");
  ASCII_FILE::get_file_info(name, line);
  EXPECT_EQ(line, 3);
}

/// Asks for the position in every report, as a messager that shows it does.
class LOCATING_MESSAGER : public COLLECTING_MESSAGER {
  void err_message(STRING text, char const*, int) override {
    STRING name;
    int line = 0;
    ASCII_FILE::get_file_info(name, line);
    reports.push_back(text.str + ("@" + std::to_string(line)));
  }
  using COLLECTING_MESSAGER::err_message;
};

TEST(Reading, GoesOnAfterReportsThatReturn) {
  const SCRATCH_DIRECTORY scratch;
  const std::string cut = "unxpected end of file met while reading #define@", bad = "character not allowed in #define@";
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"\n#define  A", {cut + "2"}},
      {"#define", {cut + "1"}},
      {"#define  ", {cut + "1"}},
      {"#define A 1\n#define A 2", {"Def key in@2"}},
      {"#define A\n;\n#define", {cut + "2", bad + "2", cut + "3", bad + "3", cut + "3"}},
      {"\n\n#define A 1;", {bad + "3"}},
  };
  for (auto const& [text, reports] : cases) {
    put("input", text);
    ASCII_FILE f("input", 0);
    f.skip_comments = 0;
    LOCATING_MESSAGER messager;
    EXPECT_TRUE(f.getSTRING() == "EOF" && f.getSTRING() == "EOF" && !f.ok) << text;
    EXPECT_EQ(messager.reports, reports) << text;
  }
}

TEST(Reading, KeepsKeysBesideTheirValuesWhenMemoryFails) {
  bool thrown = true;
  for (int n = 1; thrown; ++n) {
    ASCII_FILE f;
    f.validate_def("a", "1");
    thrown = throws_at_allocation(n, [&] { f.validate_def("b", "2"); });
    f.validate_def("c", "3");
    STRING word("c");
    EXPECT_EQ(f.def_mask(word), "3") << n;
  }
}

TEST(Reading, EndsWhereNothingCanBeRead) {
  const SCRATCH_DIRECTORY scratch;
  for (char const* const path : {"missing", "."}) {
    ASCII_FILE f(path, 0);
    EXPECT_EQ(read_all(f, "tltid0wfT"), "EOF!;!;EOF!;0!;0!;!;!;!;EOF!;") << path;
    ASCII_FILE g(path, 0);
    EXPECT_TRUE(g.getline() == "" && !g.ok && g.fail() && g.previous_pos == std::streampos(-1));
  }
  put("input", std::string(100'000, 'x') + " y");
  ASCII_FILE f("input", 0);
  f.get();
  std::filesystem::resize_file("input", 10);
  const STRING token = f.getSTRING();
  f.goto_position(10);
  EXPECT_TRUE(token.start_with("xxxxx") && f.ok && f.getSTRING() == "EOF");
  std::filesystem::remove("input");
  f.back();
  EXPECT_TRUE(f.fail() && f.getSTRING() == "EOF" && f.getline() == "" && !f.ok);

  struct BREAKING : std::streambuf { // gives one character at a time from no buffer, then fails
    int left = 7, knows_place_until = 0;
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override {
      return left > knows_place_until ? 7 - left : throw std::runtime_error("lost");
    }
    int underflow() override { return left > 0 ? "z ab cd"[7 - left] : throw std::runtime_error("broken"); }
    int uflow() override { return std::exchange(left, left - 1), "z ab cd"[7 - left - 1]; }
  };
  put("input", "");
  for (const int lost : {0, 3}) {
    BREAKING breaking;
    breaking.knows_place_until = lost;
    ASCII_FILE broken("input", 0);
    broken.std::ios::rdbuf(&breaking);
    EXPECT_TRUE(broken.getSTRING() == "z" && broken.getSTRING() == "ab");
    EXPECT_TRUE(broken.getSTRING() == (lost == 0 ? "cd" : "EOF") && broken.bad());
    EXPECT_TRUE(broken.getSTRING() == "EOF" && !broken.ok);
  }
}

TEST(Reading, IncludesAFileFromWithinItselfUntilNoneCanBeOpened) {
  const SCRATCH_DIRECTORY scratch;
  put("self", "self x\n");
  rlimit all{};
  getrlimit(RLIMIT_NOFILE, &all);
  const auto include_all = [&](ASCII_FILE& f) {
    const rlimit few = {3000, all.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    int depth = 0;
    for (ASCII_FILE* inner = &f; inner->is_open(); inner = inner->included_file, ++depth) inner->include_file();
    setrlimit(RLIMIT_NOFILE, &all);
    return depth;
  };
  ASCII_FILE f("self", 0);
  const int depth = include_all(f);
  int words = 0;
  while (f.getSTRING() == "x") ++words;
  EXPECT_TRUE(!f.ok && f.included_file == nullptr && ASCII_FILE::current_file == &f);
  EXPECT_TRUE(depth > 2000 && words == depth) << depth << ' ' << words;
  f.rewind();
  EXPECT_EQ(include_all(f), depth);
}

} // namespace
