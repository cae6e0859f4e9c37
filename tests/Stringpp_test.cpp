#include "lib/strings/Stringpp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <iomanip>
#include <random>
#include <sstream>
#include <string>

#include "tests/Allocations.h"

namespace {

using std::string_literals::operator""s;
using SIZES = std::vector<std::size_t>;

void drain_pool() {
  while (Nb_string >= 0) delete[] pBufs[Nb_string--];
}

std::string text_of(std::size_t length) { return std::string(length, 'x'); }

void try_to_read(std::istream& is, STRING& s) {
  try {
    read(is, s);
  } catch (std::ios_base::failure const&) { // the text has to be a valid one all the same
  }
}

TEST(Pool, HandsOutTheLastBufferReturnedAndFreesTheOneTooMany) {
  drain_pool();
  for (int i = 0; i < 1001; ++i) put_ptr(new char[510]);
  char* const top = pBufs[1000];
  sizes_asked([] { put_ptr(new char[510]), put_ptr(nullptr); });
  EXPECT_TRUE(ALLOCATIONS::freed == 1 && Nb_string == 1000);
  EXPECT_TRUE(get_ptr(10) == top && Nb_string == 999);
  put_ptr(top);
  drain_pool();
  char const* const buffer = STRING(text_of(600).c_str()).str; // a long text's buffer serves a short one next
  EXPECT_EQ(STRING("abc").str, buffer);
}

TEST(Pool, AsksNewForTheSizesThatItsRulesGive) {
  const std::string s508 = text_of(508), s509 = text_of(509), s600 = text_of(600);
  std::istringstream record("\x58\x02\0\0"s + s600);
  STRING target("abc"), longer(s600.c_str());
  const struct {
    std::function<void()> action;
    SIZES cold, warm;
  } cases[] = {
      {[] { STRING a; }, {510}, {}},
      {[] { STRING a('c'), b("abc"), c(static_cast<char const*>(nullptr)); }, {510, 510, 510}, {}},
      {[&] { STRING s(s508.c_str()); }, {510}, {}},
      {[&] { STRING s(s509.c_str()); }, {511}, {511}},
      {[&] { STRING s(s600.c_str()); }, {602}, {602}},
      {[&] { STRING s(longer); }, {602}, {602}},
      {[&] { target = s509.c_str(); }, {510}, {}},
      {[&] { target = longer; }, {601}, {601}},
      {[&] { target = 'c', target = static_cast<char const*>(nullptr), target = 'd'; }, {}, {}},
      {[&] { target += longer; }, {604}, {604}},
      {[&] { STRING("abc") + "def"; }, {510, 510, 510, 510}, {}},
      {[&] { record.seekg(0), read(record, target); }, {601}, {601}},
      {[] { put_ptr(get_ptr(509)); }, {510}, {}},
      {[] { put_ptr(get_ptr(510)); }, {511}, {511}},
  };
  for (auto const& c : cases) {
    for (const bool warm : {true, false}) {
      target = "abc";
      drain_pool();
      for (int i = 0; warm && i < 8; ++i) put_ptr(new char[510]);
      EXPECT_EQ(sizes_asked(c.action), warm ? c.warm : c.cold) << "case " << &c - cases;
    }
  }
}

TEST(String, BehavesAsStdStringDoes) {
  std::mt19937 random(20261124);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  const auto any_text = [&] {
    static const std::size_t lengths[] = {0, 1, 2, 5, 30, 255, 508, 509, 510, 511, 700};
    std::string text(lengths[below(std::size(lengths))], ' ');
    for (char& c : text) c = static_cast<char>(below(4) == 0 ? 1 + below(255) : 'a' + below(2));
    return text;
  };
  STRING s, other;
  std::string model, other_model;
  for (int step = 0; step < 20000; ++step) {
    if (model.size() > 3000) s = "", model = "";
    other = (other_model = any_text()).c_str();
    const char c = static_cast<char>(below(8) == 0 ? 0 : 1 + below(255));
    const std::string added(c == '\0' ? 0 : 1, c);
    const std::size_t tail = below(model.size() + 1);
    switch (below(9)) {
    case 0: s = other, model = other_model; break;
    case 1: s = c, model = added; break;
    case 2: s = s.str + tail, model = model.substr(tail); break;
    case 3: s += s.str + tail, model += model.substr(tail); break;
    case 4: s += c, model += added; break;
    case 5: s += s, model += model; break;
    case 6: s = s + other + s.str + c, model = model + other_model + model + added; break;
    case 7: s = "(" + (c + other) + s, model = "(" + added + other_model + model; break;
    default: {
      STRING const copy(s), &same = s;
      s = copy, s = same, s = s.str;
    }
    }
    ASSERT_EQ(s.str, model) << step;
    const auto offset = [&](char const* found) {
      return found ? static_cast<std::size_t>(found - s.str) : std::string::npos;
    };
    const std::string part = model.substr(model.size() / 2, below(4));
    ASSERT_EQ(offset(s.locate(c)), c == '\0' ? model.size() : model.find(c));
    ASSERT_EQ(offset(s.locate(part.c_str())), model.find(part));
    ASSERT_EQ(offset(s.locate(STRING("ab"))), model.find("ab"));
    const int order = model.compare(other_model);
    ASSERT_TRUE((s == other) == (order == 0) && (s == other.str) == (order == 0));
    ASSERT_TRUE(((s != other) < 0) == (order < 0) && ((s != other.str) > 0) == (order > 0));
    ASSERT_TRUE((s < other) == (order < 0) && (s < other.str) == (order < 0));
    ASSERT_TRUE((s > other) == (order > 0) && (s > other.str) == (order > 0));
    const int n = static_cast<int>(below(6)) - 1;
    const int head = n <= 0 ? 0 : std::strncmp(model.c_str(), other_model.c_str(), static_cast<std::size_t>(n));
    ASSERT_TRUE((strn_cmp(s, other, n) < 0) == (head < 0) && (strn_cmp(s, other.str, n) > 0) == (head > 0));
    ASSERT_EQ(strn_cmp(s.str, other, n) == 0, head == 0);
  }
}

TEST(String, KeepsItsFlagToItself) {
  STRING failed("abc");
  failed.success = false;
  STRING copy(failed);
  failed = "def", failed = copy, failed = 'c', failed += "g";
  EXPECT_TRUE(copy.ok && &copy.ok == &copy.success && !failed.ok);
  EXPECT_STREQ(STRING::EMPTY.str, "");
}

TEST(String, ReadsNumbersAtItsStartAsTheStandardLibraryDoes) {
  for (std::string text : {" 42abc",
                           "abc",
                           "-7",
                           "\t\n\v\f\r +8",
                           "- 7",
                           "+-7",
                           "",
                           "0012",
                           "1.5d3",
                           "2D-1",
                           "2.5E2",
                           "2.d-1",
                           "7e",
                           ".5",
                           "d5",
                           "2147483647",
                           "2147483648",
                           "-2147483648",
                           "-2147483649",
                           "99999999999999999999",
                           "-99999999999999999999"}) {
    const STRING s(text.c_str());
    EXPECT_EQ(s.to_int(), std::clamp<long>(std::strtol(s.str, nullptr, 10), INT_MIN, INT_MAX)) << text;
    for (char& c : text) c = c == 'd' || c == 'D' || c == 'E' ? 'e' : c;
    EXPECT_EQ(s.to_double(), std::strtod(text.c_str(), nullptr)) << text;
  }
  EXPECT_EQ(STRING("1.5d3").to_double(), 1500);
}

TEST(String, IsMadeFromNumbers) {
  for (const int n : {0, 42, -42, 7, -10, INT_MAX, INT_MIN}) EXPECT_EQ(itoa(n).str, std::to_string(n));
  EXPECT_STREQ(ftoa(2.5).str, "2.500000");
  EXPECT_STREQ(ftoa(-0.0).str, "-0.000000");
  EXPECT_STREQ(ftoa(1e43).str, "10000000000000000139372116959414099130712064.00000");
  EXPECT_STREQ(ftoa(-1e300).str, "-1000000000000000052504760255204420248704468581108");
  EXPECT_STREQ(dtoa(1.0 / 3, "%.60f").str, "0.333333333333333314829616256247390992939472198486");
  EXPECT_EQ(dtoa(2, "%100000.1f").str, std::string(50, ' '));
  EXPECT_STREQ(dtoa(1234.5, "<%-9.1e>").str, "<1.2e+03  >");
  int here = 0;
  std::ostringstream address;
  address << static_cast<void*>(&here);
  EXPECT_EQ(ptoa(&here).str, address.str());
  EXPECT_STREQ(ptoa(nullptr).str, "(nil)");
}

TEST(String, KeepsItsTextWhenMemoryFails) {
  const std::string before = text_of(700), more = text_of(800), s510 = text_of(510);
  const STRING other(more.c_str());
  const std::string record = "\x20\x03\0\0"s + more, record510 = "\xfe\x01\0\0"s + s510;
  const std::function<void(STRING&)> actions[] = {
      [&](STRING& s) { s = more.c_str(); },
      [&](STRING& s) { s = other; },
      [&](STRING& s) { s += other; },
      [&](STRING& s) { s += more.c_str(), s += 'c'; },
      [&](STRING& s) { s = "abc" + s + other + more.c_str() + 'c'; },
      [&](STRING& s) { STRING t(s), u(more.c_str()); },
      [&](STRING& s) {
        std::istringstream is(record);
        read(is, s);
      },
      [&](STRING& s) {
        std::istringstream is(record510);
        s = s510.c_str(), read(is, s), s = before.c_str();
      },
      [&](STRING& s) { s.to_double(); },
  };
  for (auto const& action : actions) {
    int n = 1;
    for (bool thrown = true; thrown; ++n) {
      STRING s(before.c_str());
      drain_pool();
      thrown = throws_at_allocation(n, [&] { action(s); });
      EXPECT_TRUE(!thrown || s.str == before || s.str == before + more || s.str == s510)
          << &action - actions << " at " << n;
      s += "still usable";
    }
    EXPECT_GT(n, 2);
  }
}

TEST(String, ReadsAndWritesBinaryRecords) {
  std::stringstream stream;
  write(stream, "hi");
  write(stream, "");
  EXPECT_EQ(stream.str(), "\2\0\0\0hi\0\0\0\0"s);
  STRING s;
  read(stream, s);
  EXPECT_STREQ(s.str, "hi");
  read(stream, s);
  EXPECT_STREQ(s.str, "");

  const std::pair<std::string, char const*> broken[] = {
      {"\5\0\0\0ab"s, "ab"}, {"\0\20\0\0abc"s, "abc"}, {"\376\377\377\377xyz"s, ""}, {"\2\0"s, ""}, {"", ""}};
  for (auto const& [bytes, text] : broken) {
    std::istringstream is(bytes), throwing(bytes);
    read(is, s);
    EXPECT_STREQ(s.str, text);
    throwing.exceptions(std::ios_base::failbit);
    s = "before";
    EXPECT_TRUE((try_to_read(throwing, s), s == text || s == "before")) << s.str;
  }
  std::ostringstream os;
  os << std::setfill('.') << std::setw(5) << STRING("abc") << '|' << STRING();
  EXPECT_EQ(os.str(), "..abc|");
}

} // namespace
