#include "lib/diagnostics/Error_messager.h"

#include <gtest/gtest.h>

#include <functional>

#include "lib/files/File.h"
#include "tests/Scratch_directory.h"

namespace {

using MESSAGER = ERROR_MESSAGER;

/// What a report is, what it writes, and whether it returns when `do_EXIT` does.
const struct REPORT {
  std::function<void()> make;
  std::string text;
  enum { fatal, critical, plain } kind;
} reports[] = {
    {[] { MESSAGER::static_err_message("CLASS", "text", "file.cpp", 12); },
     "\nError in class CLASS : text\nAt file file.cpp:12\n", REPORT::fatal},
    {[] { MESSAGER::static_err_message("text", "file.cpp", 12); }, "\nError: text\nAt file file.cpp:12\n",
     REPORT::fatal},
    {[] { MESSAGER::static_err_message("text"); }, "\nError: text\n", REPORT::fatal},
    {[] { MESSAGER::STATIC_INPUT_ERROR("text", "file.cpp", 12); },
     "\nInput error in file:  at line: 0\ntext in file file.cpp at line: 12\n", REPORT::fatal},
    {[] { MESSAGER::STATIC_NOT_IMPLEMENTED_ERROR("text", "file.cpp", 12); },
     "\nNot implemented error: text\nAt file file.cpp:12\n", REPORT::fatal},
    {[] { MESSAGER::STATIC_CRITICAL("text", "file.cpp", 12); }, "\nError: text in file file.cpp at line: 12\n",
     REPORT::critical},
    {[] { MESSAGER::EXIT(); }, "", REPORT::fatal},
    {[] { MESSAGER::STATIC_MESSAGE("text"); }, "text\n", REPORT::plain},
    {[] { MESSAGER::STATIC_ALERT("text"); }, "text\n", REPORT::plain},
};

class RETURNING : public MESSAGER {
  void do_EXIT() override {}
};

class DIVERTING : public MESSAGER {
public:
  std::string seen;
  void do_EXIT() override { seen += "E"; }
  void err_message(STRING, STRING, char const*, int) override { seen += "4"; }
  void err_message(STRING, char const*, int) override { seen += "3"; }
  void err_message(STRING) override { seen += "1"; }
  void input_error(STRING text) override { seen += text == "text in file file.cpp at line: 12" ? "I" : "?"; }
  void not_implemented_error(STRING, char const*, int) override { seen += "N"; }
  void critical(STRING text) override { seen += text == "text in file file.cpp at line: 12" ? "C" : "?"; }
  void message(STRING) override { seen += "M"; }
  void alert(STRING) override { seen += "A"; }
};

TEST(Messager, WritesItsReportsAndEndsTheProcessOrReturns) {
  static_assert(sizeof(ERROR_MESSAGER) == sizeof(void*));
  for (REPORT const& report : reports) {
    const bool plain = report.kind == REPORT::plain;
    EXPECT_EXIT((report.make(), std::exit(plain ? 9 : 0)), testing::ExitedWithCode(plain ? 9 : 1),
                testing::Matcher<std::string const&>(testing::Eq(report.text)));
    RETURNING returning;
    MESSAGER::reassign_error_messager(&returning);
    EXPECT_EXIT((report.make(), std::exit(9)), testing::ExitedWithCode(report.kind == REPORT::critical ? 1 : 9),
                testing::Matcher<std::string const&>(testing::Eq(report.text)));
    MESSAGER::reassign_error_messager(&default_messager);
  }
  DIVERTING diverting;
  MESSAGER::reassign_error_messager(&diverting);
  for (REPORT const& report : reports) report.make();
  MESSAGER::reassign_error_messager(&default_messager);
  EXPECT_EQ(diverting.seen, "431INCEMA");
}

TEST(Messager, NamesFileAndLineOfWhatIsRead) {
  const SCRATCH_DIRECTORY scratch;
  put("input", "1\n2\n\n\n5\n6\nfoo bar\n");
  RETURNING returning;
  MESSAGER::reassign_error_messager(&returning);
  ASCII_FILE input("input", 0);
  input.locate("foo");
  std::string written[4];
  const std::function<void()> actions[] = {[] { UNKNOWN_COMMAND("foo"); }, [] { UNKNOWN_COEF("foo"); },
                                           [] { KBAD("foo"); }, [] { ERR_FILE(); }};
  for (std::size_t i = 0; i < 4; ++i) {
    testing::internal::CaptureStderr();
    actions[i]();
    written[i] = testing::internal::GetCapturedStderr();
  }
  MESSAGER::reassign_error_messager(&default_messager);
  EXPECT_EQ(written[0].find("\nInput error in file: input at line: 7\nUnknown command: foo in file lib/diagnostics/"),
            0);
  EXPECT_EQ(written[1].find("\nInput error in file: input at line: 7\nUnknown coefficient: foo in file lib/"), 0);
  EXPECT_EQ(written[2].find("\nInput error in file: input at line: 7\nTrouble reading: foo in file lib/"), 0);
  EXPECT_EQ(written[3], "\nError in file input at line 7 \n");
  EXPECT_EQ(input.getSTRING(), "bar");
}

TEST(BinaryFile, OpensForBothAndReports) {
  const SCRATCH_DIRECTORY scratch;
  put("old", "content");
  for (const int mode : {0, 4}) {
    EXPECT_EXIT(OBIN_FILE("none", mode), testing::ExitedWithCode(1),
                "^\nError: Bad obin file\nAt file lib/files/Obin_file");
    OBIN_FILE old("old", mode);
    char first = '\0';
    EXPECT_TRUE(old.read(&first, 1) && first == 'c' && old.file_name == "old");
  }
  OBIN_FILE f("new", 36);
  write(f, "hi");
  f.open("old", 32);
  EXPECT_EQ(contents("new"), std::string("\2\0\0\0hi", 6));
  EXPECT_TRUE(f.good() && contents("old").empty());
  {
    OBIN_FILE full("/dev/full", 0); // what is pending cannot be written when this ends
    full << "lost";
    full.exceptions(std::ios_base::badbit | std::ios_base::failbit);
  }
  RETURNING returning;
  MESSAGER::reassign_error_messager(&returning);
  testing::internal::CaptureStderr();
  f.open("no/such", 32);
  OBIN_FILE unopened;
  unopened.open("new", 4);
  OBIN_FILE failed("none", 4);
  const std::string written = testing::internal::GetCapturedStderr();
  MESSAGER::reassign_error_messager(&default_messager);
  EXPECT_EQ(written.find("\nError: Failed\nAt file lib/files/Obin_file.cpp:"), 0);
  EXPECT_EQ(written.find("\nError: Failed", 1), std::string::npos);
  EXPECT_TRUE(f.fail() && f.file_name == "no/such" && unopened.good() && failed.fail() && failed.file_name == "none");
}

} // namespace
