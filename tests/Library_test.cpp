#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "tests/Model.h"

namespace {

using std::string_literals::operator""s;

/// The models and how many programs show what they do.
const std::tuple<char const*, DIFFERENCE_FUNCTION*, unsigned> models[] = {{"strings", strings_difference, 400},
                                                                          {"containers", containers_difference, 200},
                                                                          {"reading", reading_difference, 300},
                                                                          {"index", index_difference, 250},
                                                                          {"scanner", scanner_difference, 100}};

/// A program of that many bytes, most of which stand for telling pieces where a text is meant.
std::string any_program(unsigned seed, std::size_t length) {
  std::mt19937 random(seed);
  std::string program(length, ' ');
  for (char& c : program) c = static_cast<char>(random() % 6 == 0 ? random() % 128 : 128 + random() % 128);
  return program;
}

TEST(Models, DoWhatTheirSubsystemsDo) {
  const SCRATCH_DIRECTORY scratch;
  for (auto const& [name, run, programs] : models) {
    for (unsigned i = 0; i < programs; ++i) ASSERT_EQ(run(any_program(i, i * 37 % 999)), "") << name << i;
  }
}

TEST(Faults, LeaveNothingBehindWhicheverCallFails) {
  const SCRATCH_DIRECTORY scratch;
  const NOTING_MESSAGER returning([](char const*) {});
  const auto surroundings = [&] {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    const bool inside = std::filesystem::current_path() == scratch.path;
    return std::tuple(inside, std::distance(begin(files), end(files)), FAULTS::live - Nb_string);
  };
  std::string result(1 << 20, ' '); // allocates no more
  for (auto const& [name, run, programs] : models) {
    const std::string program = any_program(7, 300);
    for (int n = 0, left = 0; left <= 0; ++n) { // none of the first run, which makes what stays
      const auto before = surroundings();
      FAULTS::calls_left = n;
      result.assign(run(program).c_str());
      left = FAULTS::calls_left;
      FAULTS::calls_left = 0;
      ASSERT_EQ(run == strings_difference || run == containers_difference ? result : "", "") << name << ", call " << n;
      ASSERT_EQ(n == 0 ? before : surroundings(), before) << name << ", call " << n;
    }
    ASSERT_EQ(run(program), "") << name;
  }
}

TEST(Pool, AsksForWhatItsRulesSay) {
  delete[] new STRING[1100]; // more than it keeps
  EXPECT_EQ(Nb_string, 1000);
  const STRING longest(std::string(508, 'x').c_str()), text(std::string(600, 'x').c_str());
  STRING s;
  std::ostringstream asked;
  const auto count = [&](auto const& action) {
    const std::size_t before = FAULTS::bytes;
    action();
    asked << FAULTS::bytes - before << ' ';
  };
  count([&] { s = (STRING(longest).cut_out('x') + "a" + itoa(5)).getSTRING(); });
  count([&] { STRING copy(text.str); });
  count([&] { s = text; });
  count([&] { s += s; });
  while (Nb_string >= 0) delete[] pBufs[Nb_string--];
  count([&] { STRING copy(text); });
  count([&] { STRING a, b; });
  EXPECT_EQ(asked.str(), "0 602 601 1201 602 510 ");
}

TEST(Commands, PrintWhatTheirCasesSay) {
  setenv("PATH", (PROGRAMS ":"s + std::getenv("PATH")).c_str(), 1);
  const std::string cases = contents(TEST_DATA "/cases.txt") + "## ";
  for (std::size_t at = 0, next = 0; (next = cases.find("## ", at + 1)) != std::string::npos; at = next) {
    const SCRATCH_DIRECTORY scratch;
    const std::size_t middle = cases.find("\n--\n", at);
    put("commands", cases.substr(at, middle - at));
    std::system("LC_ALL=C TEST_DATA=" TEST_DATA " sh commands > output 2>&1");
    EXPECT_EQ(contents("output"), cases.substr(middle + 4, next - middle - 4)) << cases.substr(at, middle - at);
  }
}

} // namespace
