#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <random>

#include "tests/Trial.h"

namespace {

struct MODEL {
  char const* name;
  void (*run)(TRIAL&);
  unsigned programs; // how many show what it does
};

void PrintTo(MODEL const& model, std::ostream* out) { *out << model.name; }

constexpr MODEL models[] = {
    {"strings", strings_model, 400}, {"containers", containers_model, 200}, {"reader", reader_model, 400}};

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
  std::fputs(running->history().c_str(), stderr);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

class Models : public testing::TestWithParam<MODEL> {
  const SCRATCH_DIRECTORY scratch;
};

INSTANTIATE_TEST_SUITE_P(, Models, testing::ValuesIn(models), testing::PrintToStringParamName());

TEST_P(Models, DoesWhatTheSubsystemDoes) {
  char const* const one_seed = std::getenv("SEED");
  const unsigned first = one_seed == nullptr ? 0 : static_cast<unsigned>(std::atoi(one_seed));
  const unsigned end = one_seed == nullptr ? GetParam().programs : first + 1;
  for (const int fatal : {SIGABRT, SIGSEGV, SIGALRM}) std::signal(fatal, tell_history);
  for (unsigned seed = first; seed < end; ++seed) {
    TRIAL trial(GetParam().name + (", alone with SEED=" + std::to_string(seed)), any_program(seed, seed * 37 % 999));
    running = &trial;
    alarm(60); // in case it does not end
    GetParam().run(trial);
    alarm(0);
    ASSERT_TRUE(trial.report().empty()) << trial.report();
  }
}

} // namespace
