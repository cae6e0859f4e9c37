#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>

#include "tests/Scratch_directory.h"

namespace fs = std::filesystem;
using std::string_literals::operator""s;

namespace {

struct RUN {
  int status;
  std::string index, errors;
  bool scratch_file_left;
};

/// Runs kindex in the current directory, its arguments and settings of the environment as the shell takes them.
RUN kindex(std::string const& arguments, std::string const& settings = "LC_ALL=C") {
  fs::remove("oo");
  const int status = std::system((settings + " '" KINDEX "' " + arguments + " 2>errors").c_str());
  return {status, contents("kindex.tex"), contents("errors"), fs::exists("oo")};
}

RUN kindex_on(std::string const& entries) {
  put("a.idx", entries);
  return kindex("a");
}

/// Puts a program named `sort` on the path that `script` is; returns the settings that make it found.
std::string with_sort(std::string const& script) {
  fs::create_directory("bin");
  put("bin/sort", "#!/bin/sh\n" + script + "\n");
  fs::permissions("bin/sort", fs::perms::owner_all);
  return "PATH=$PWD/bin:$PATH";
}

TEST(Kindex, WritesTheIndexOfEachCase) {
  const SCRATCH_DIRECTORY scratch;
  std::ifstream cases(TEST_DATA "/kindex_cases.txt");
  std::string title, entries, expected, line;
  int count = 0;
  for (std::string* part = &title; part != nullptr;) {
    if (!std::getline(cases, line)) part = nullptr;
    if (part == nullptr || line.starts_with("== ")) {
      const RUN run = kindex_on(entries);
      EXPECT_EQ(run.index, expected) << title;
      EXPECT_TRUE(run.status == 0 && run.errors.empty() && run.scratch_file_left == entries.empty()) << title;
      title = line, entries = expected = "", part = part ? &entries : part, ++count;
    } else if (line == "--") {
      part = &expected;
    } else {
      *part += line + '\n';
    }
  }
  EXPECT_GT(count, 9);
}

TEST(Kindex, TakesEveryByte) {
  const SCRATCH_DIRECTORY scratch;
  std::string entries, expected;
  for (int c = 1; c < 256; ++c) {
    if (c == '\n' || c == '{' || c == '}' || c == '*' || std::islower(c)) continue;
    const std::string byte(1, static_cast<char>(c));
    const std::string heading = c == '\\' ? "Param\\'etr\\'e" : c == '_' ? "\\_" : byte;
    entries += "{" + byte + "}{1}\r\n";
    expected += "\\indexletter{" + heading + "}\n\\indexitem{" + byte + "}{1 }\n";
  }
  EXPECT_EQ(kindex_on(entries).index, expected);
  const RUN run = kindex_on("{a\0b*}{2}\n{a\0c}{3}\n"s);
  EXPECT_EQ(run.index, "\\indexletter{A}\n\\indexitem{a}{2 3 }\n");
}

TEST(Kindex, LeavesAnEmptyIndexWithoutACompleteKey) {
  for (std::string const text : {"", "no braces\n", "}}}", "{", "{{{a}", "{a"}) {
    const SCRATCH_DIRECTORY scratch;
    put("kindex.tex", "old");
    const RUN run = kindex_on(text);
    EXPECT_TRUE(run.status == 0 && run.index.empty() && run.errors.empty() && run.scratch_file_left) << text;
  }
}

TEST(Kindex, HandsItsArgumentToTheShellAsItIs) {
  const SCRATCH_DIRECTORY scratch;
  const std::string index = "\\indexletter{X}\n\\indexitem{x}{5 }\n";
  put(".idx", "{x}{5}");
  put("a.idx", "{x}{5}");
  EXPECT_EQ(kindex("").index, index);
  EXPECT_EQ(kindex("a b").index, index);
  EXPECT_EQ(kindex("'/dev/null a'").index, index);
  EXPECT_EQ(kindex("'$(echo a)'").index, index);
}

TEST(Kindex, EndsWellWhateverIsMissing) {
  const SCRATCH_DIRECTORY scratch;
  RUN run = kindex("missing");
  EXPECT_TRUE(run.status == 0 && run.index.empty() && run.scratch_file_left && !run.errors.empty());
  fs::create_directory("dir.idx");
  run = kindex("dir");
  EXPECT_TRUE(run.status == 0 && run.index.empty() && run.scratch_file_left);
  put("a.idx", "{x}{5}");
  for (std::string const sort : {"exit 127", "rm oo", "rm oo; mkdir oo"}) {
    run = kindex("a", with_sort(sort));
    EXPECT_TRUE(run.status == 0 && run.index.empty()) << sort;
    EXPECT_EQ(run.errors, sort == "exit 127" ? "" : "kindex: cannot read oo\n");
  }
  fs::remove("oo");
  for (const bool full : {false, true}) {
    fs::remove("kindex.tex");
    full ? fs::create_symlink("/dev/full", "kindex.tex") : (void)fs::create_directory("kindex.tex");
    EXPECT_EQ(std::system("'" KINDEX "' a"), 0);
    EXPECT_FALSE(fs::exists("oo"));
  }
}

TEST(Kindex, CutsLongFieldsAndSaysSo) {
  const SCRATCH_DIRECTORY scratch;
  const std::string key999 = "k" + std::string(998, '1'), page = std::string(1500, '0') + "7";
  RUN run = kindex_on("{" + key999 + "}{1}");
  EXPECT_EQ(run.index, "\\indexletter{K}\n\\indexitem{" + key999 + "}{1 }\n");
  EXPECT_EQ(run.errors, "");
  run = kindex_on("{\tk{" + std::string(1 << 20, 'x') + "}}{1}");
  EXPECT_EQ(run.errors, "kindex: field cut at 999 bytes: ?k{" + std::string(37, 'x') + "\n");
  EXPECT_EQ(run.index, "\\indexletter{\t}\n\\indexitem{\tk{" + std::string(996, 'x') + "}{1 }\n");
  run = kindex_on("{a}{" + page + "}{b}{2}");
  EXPECT_EQ(run.index, "\\indexletter{A}\n\\indexitem{a}{0 }\n\\indexletter{B}\n\\indexitem{b}{2 }\n");
  run = kindex_on(std::string(50 << 20, ' ') + "{a}{1}");
  EXPECT_EQ(run.index, "\\indexletter{A}\n\\indexitem{a}{1 }\n");
}

TEST(Kindex, ListsManyPagesOfOneKey) {
  const SCRATCH_DIRECTORY scratch;
  std::string entries, pages;
  for (int page = 10000; page < 30000; ++page) {
    const std::string number = std::to_string(page);
    entries += (page % 3 == 0 ? "{k*}{" : "{k}{") + number + "}\n";
    pages += page % 3 == 0 ? "{\\bf " + number + "} " : number + " ";
  }
  put("sorted", entries), put("a.idx", "");
  EXPECT_EQ(kindex("a", with_sort("cat sorted")).index, "\\indexletter{K}\n\\indexitem{k}{" + pages + "}\n");
}

} // namespace
