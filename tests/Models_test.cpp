#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <random>

#include "lib/strings/Stringpp.h"
#include "tests/Trial.h"

namespace {

struct MODEL {
  char const* name;
  void (*run)(TRIAL&);
  unsigned programs;         // how many show what it does
  bool survives_lost_memory; // whether nothing may differ even then
};

void PrintTo(MODEL const& model, std::ostream* out) { *out << model.name; }

constexpr MODEL models[] = {{"strings", strings_model, 400, true},
                            {"containers", containers_model, 200, true},
                            {"reader", reader_model, 200, false}};

/// A program of that many bytes, most of which stand for telling pieces where a text is meant.
std::string any_program(unsigned seed, std::size_t length) {
  std::mt19937 random(seed);
  std::string program(length, ' ');
  for (char& c : program) c = static_cast<char>(random() % 6 == 0 ? random() % 128 : 128 + random() % 128);
  return program;
}

TRIAL const* running = nullptr;

/// Says which trial a signal ends, and what it did last.
void tell_history(int signal) {
  ALLOCATIONS::may_fail = false;
  for (std::string const& line : running->history()) {
    std::fputs(line.c_str(), stderr);
    std::fputc('\n', stderr);
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

std::string report_of(MODEL const& model, unsigned seed, std::size_t length) {
  TRIAL trial(model.name + (", seed " + std::to_string(seed)), any_program(seed, length));
  running = &trial;
  for (const int fatal : {SIGABRT, SIGSEGV, SIGALRM}) std::signal(fatal, tell_history);
  alarm(60); // in case it does not end
  model.run(trial);
  alarm(0);
  return trial.report();
}

class Models : public testing::TestWithParam<MODEL> {
  const SCRATCH_DIRECTORY scratch;
};

INSTANTIATE_TEST_SUITE_P(, Models, testing::ValuesIn(models), testing::PrintToStringParamName());

TEST_P(Models, DoesWhatTheSubsystemDoes) {
  for (unsigned seed = 0; seed < GetParam().programs; ++seed) {
    ASSERT_EQ(report_of(GetParam(), seed, seed * 37 % 999), "");
  }
}

TEST_P(Models, LeavesNothingWhicheverAllocationFails) {
  report_of(GetParam(), 7, 300); // makes what stays
  for (int n = 1, left = 0; left <= 0; ++n) {
    const long allocations = ALLOCATIONS::live - Nb_string;
    ALLOCATIONS::before_failure = n;
    {
      const std::string report = report_of(GetParam(), 7, 300);
      left = std::exchange(ALLOCATIONS::before_failure, 0);
      ASSERT_EQ(GetParam().survives_lost_memory ? report : "", "") << "allocation " << n << " failed";
    }
    ASSERT_EQ(ALLOCATIONS::live - Nb_string, allocations) << "after allocation " << n << " failed";
  }
}

/// What the action asks of `new`, in bytes.
template <class ACTION>
std::size_t bytes_of(ACTION const& action) {
  const std::size_t before = ALLOCATIONS::bytes;
  action();
  return ALLOCATIONS::bytes - before;
}

TEST(Pool, AsksForWhatItsRulesSay) {
  delete[] new STRING[1100];
  EXPECT_EQ(Nb_string, 1000);
  const STRING longest(std::string(508, 'x').c_str());
  const STRING text(std::string(600, 'x').c_str());
  STRING s;
  std::stringstream record;
  write(record, text);
  EXPECT_EQ(bytes_of([&] { s = (STRING(longest).cut_out('x') + "a" + itoa(5)).getSTRING(); }), 0U);
  EXPECT_EQ(bytes_of([&] { const STRING copy(text.str); }), 602U);
  EXPECT_EQ(bytes_of([&] { s = text; }), 601U);
  EXPECT_EQ(bytes_of([&] { s += s; }), 1201U);
  EXPECT_EQ(bytes_of([&] { read(record, s); }), 601U);
  while (Nb_string >= 0) delete[] pBufs[Nb_string--];
  EXPECT_EQ(bytes_of([&] { STRING(text).remove_all('x'); }), 602U);
  EXPECT_EQ(bytes_of([] { const STRING first, second; }), 510U) << "the buffer of the first serves the second";
}

TEST(Pool, TakesTheBufferOfAnEmptyTextBeforeItGivesOne) {
  delete[] new STRING[1100];
  STRING s;
  put_ptr(get_ptr(600));
  char const* const top = pBufs[Nb_string];
  s = 'c';
  EXPECT_EQ(s.str, top);
}

} // namespace
