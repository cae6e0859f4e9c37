#include <gtest/gtest.h>
#include <sys/stat.h>

#include <deque>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"
#include "tests/Scratch_directory.h"

namespace {

using NAMES = std::vector<std::string>;

struct MAKE_MODEL {
  bool install_public = false;
  std::vector<std::pair<std::string, NAMES>> libs, targets;
};

/// The file that a model gives: the example's lines, with the model's names and indexes in place of its own.
std::string expected_make_file(MAKE_MODEL const& model) {
  NAMES lines;
  std::ifstream example(TEST_DATA "/make_example.txt");
  for (std::string line; std::getline(example, line);) lines.push_back(line + '\n');
  const auto part = [&](int from, int to) {
    return std::accumulate(lines.data() + from - 1, lines.data() + to, std::string());
  };
  const auto replace = [](std::string& text, std::string const& what, std::string const& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
      text.replace(at, what.size(), with);
    }
  };
  const std::string lib_path = model.install_public ? "$(K7PATH)/PUBLIC/$(DBG)lib-$(K7MACHINE)/lib" : "lib$(DBG)";
  const std::string debug = model.install_public ? "" : "$(DBG)";
  const std::string option = model.install_public ? " -L$(K7PATH)/$(DBG)lib-$(K7MACHINE) " : "";
  std::set<std::string> lib_names;
  for (auto const& lib : model.libs) lib_names.insert(lib.first);
  std::string text = part(1, 76), rules, all_dirs, includes, last;
  int index = 0;
  for (const bool is_lib : {true, false}) {
    const std::string example_name = is_lib ? "kutil" : "ktool", example_index = is_lib ? "0" : "1";
    for (auto const& [name, dirs] : is_lib ? model.libs : model.targets) {
      std::string own_dirs, needed, links;
      for (auto const& dir : dirs) {
        const bool linked = !is_lib && lib_names.contains(dir);
        own_dirs += linked ? "" : dir + ' ';
        needed += linked ? lib_path + dir + ".so " : "";
        links += linked ? "-l" + debug + dir + ' ' : "";
      }
      std::string block = is_lib ? part(77, 99) : part(100, 121), rule = is_lib ? part(137, 141) : part(134, 136);
      replace(block, ":= " + example_name + " \n", ":= " + own_dirs + "\n");
      replace(block, "target " + example_name + "\n", "target " + name + "\n");
      replace(rule, "lib$(DBG)kutil.so  ", needed + " ");
      replace(rule, "-l$(DBG)kutil ", option + links);
      replace(rule, "-o lib$(DBG)kutil", (model.install_public ? "-o lib" : "-o lib$(DBG)") + name);
      replace(rule, "lib$(DBG)kutil.so :", lib_path + name + ".so :");
      replace(rule, "Klink ", model.install_public ? "Klink -inst " : "Klink ");
      replace(rule, "ktool_", name + "_");
      for (std::string const variable : {"dirs", "files", "OBJS", "HFIL", "DEPS"}) {
        for (std::string* changed : {&block, &rule})
          replace(*changed, variable + example_index, variable + std::to_string(index));
      }
      text += block, rules = rule + rules;
      last = is_lib ? lib_path + name + ".so" : name + "_$(DBG)$(K7MACHINE)";
      all_dirs += "$(dirs" + std::to_string(index) + ") ",
          includes += "-include $(DEPS" + std::to_string(index++) + ")\n";
    }
  }
  std::string trailer = part(122, 133);
  replace(trailer, "$(dirs0) $(dirs1) ", all_dirs);
  replace(trailer, "ktool_$(DBG)$(K7MACHINE)", last);
  return text + trailer + rules + part(142, 144) + includes + part(147, 151);
}

/// Writes the model as a project, and compares file and progress lines.
void check_make_file(MAKE_MODEL const& model, char const* file_name) {
  std::deque<MAKE_LIB> libs;
  std::deque<MAKE_TARGET> targets;
  BUFF_LIST<MAKE_LIB*> lib_list;
  LIST<MAKE_TARGET*> target_list;
  std::string progress;
  const auto fill = [&](auto const& from, auto& objects, auto& list, char const* kind) {
    for (auto const& [name, dirs] : from) {
      list.add(&objects.emplace_back());
      objects.back().name = name.c_str();
      for (auto const& dir : dirs) objects.back().dirs.add(dir.c_str());
      progress += kind + name + '\n';
    }
  };
  fill(model.libs, libs, lib_list, "Lib ");
  fill(model.targets, targets, target_list, "Target ");
  MAKE_PROJECT project;
  EXPECT_FALSE(project.install_public);
  project.file_name = file_name;
  project.install_public = model.install_public;
  if (!libs.empty()) project.libs = &lib_list;
  if (!targets.empty()) project.targets = &target_list;
  testing::internal::CaptureStdout();
  project.splash();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), progress);
  EXPECT_STREQ(project.file_name.str, *file_name ? file_name : "kmakefile");
  const bool writable = std::filesystem::is_regular_file(project.file_name.str);
  EXPECT_EQ(contents(project.file_name.str), writable ? expected_make_file(model) : "");
}

TEST(MakeProject, WritesTheExample) {
  const SCRATCH_DIRECTORY scratch;
  const MAKE_MODEL model{false, {{"kutil", {"kutil"}}}, {{"ktool", {"ktool", "kutil"}}}};
  check_make_file(model, "");
  EXPECT_EQ(contents("kmakefile"), contents(TEST_DATA "/make_example.txt"));
  check_make_file({false, {{"k" + std::string(70'000, 'l'), {"k"}}}, {}}, "long");
  check_make_file(model, "no/directory");
  check_make_file({}, "nothing");
}

TEST(MakeProject, WritesAnyProject) {
  const SCRATCH_DIRECTORY scratch;
  std::mt19937 random(5);
  const auto name = [&] { return "k" + std::string(1, static_cast<char>('a' + random() % 6)); };
  for (int round = 0; round < 60; ++round) {
    MAKE_MODEL model{random() % 2 == 0, {}, {}};
    for (auto* list : {&model.libs, &model.targets}) {
      list->resize(random() % 13);
      for (auto& [target, dirs] : *list) {
        target = name();
        for (auto n = random() % 5; n > 0; --n) dirs.push_back(name());
      }
    }
    check_make_file(model, round % 2 == 0 ? "" : "other");
  }
}

struct ECLIPSE_MODEL : ECLIPSE_PROJECT {
  std::deque<SOURCE_DIR> dir_objects;
  std::deque<SOURCE_FILE> file_objects;
  BUFF_LIST<SOURCE_DIR*> dir_list;
  LIST<SOURCE_FILE*> file_list;

  ECLIPSE_MODEL(NAMES const& dir_names, std::vector<std::pair<std::string, std::string>> const& files_and_dirs) {
    file_name = "project", dirs = &dir_list, files = &file_list;
    for (auto const& dir : dir_names)
      dir_list.add(&dir_objects.emplace_back()), dir_list[dir_list.size - 1]->name = dir.c_str();
    for (auto const& [file, dir] : files_and_dirs) {
      auto& object = file_objects.emplace_back();
      object.name = file.c_str(), object.dir = new SOURCE_DIR, object.dir->name = dir.c_str();
      file_list.add(&object);
    }
  }
  ~ECLIPSE_MODEL() {
    for (auto& file : file_objects) delete file.dir;
  }

  std::string written() {
    splash();
    return contents("project");
  }
};

TEST(EclipseProject, AssignsFilesByTheNamesOfTheirDirectories) {
  const SCRATCH_DIRECTORY scratch;
  ECLIPSE_MODEL example({"kcore", "kapp"}, {{"a.c", "kcore"}, {"a.h", "kcore"}, {"main.c", "kapp"}});
  NAMED_NODE header;
  header.name = "a.h";
  example.dir_objects[1].refs.add(&example.dir_objects[0]);
  for (const std::size_t i : {0U, 2U}) example.file_objects[i].refs.add(&header);
  const std::string text = "2\nkcore\nkapp\n0\n2\na.c\n1\na.h\na.h\n0\n1\nkcore\n1\nmain.c\n1\na.h\n";
  EXPECT_EQ(example.written(), text);
  EXPECT_EQ(example.written(), text); // every directory has files by now

  ECLIPSE_MODEL doubled({"k", "k", "e"}, {{"a", "k"}});
  EXPECT_EQ(doubled.written(), "3\nk\nk\ne\n0\n1\na\n0\n0\n0\n0\n0\n");
  EXPECT_EQ(doubled.written(), "3\nk\nk\ne\n0\n2\na\n0\na\n0\n0\n0\n0\n0\n");
  EXPECT_EQ(ECLIPSE_MODEL({}, {{"a", "unknown"}}).written(), "0\n");
  EXPECT_EQ(ECLIPSE_MODEL({"k"}, {}).written(), "1\nk\n0\n0\n");
  doubled.dirs = nullptr, doubled.file_name = "no/directory";
  EXPECT_EQ(doubled.written(), contents("project"));
  ECLIPSE_MODEL unknown({"k"}, {{"a", "k"}, {"b", "K"}});
  EXPECT_EXIT(unknown.splash(), testing::ExitedWithCode(1), "^Error, cannot find source dir named: K .for file: b.\n$");
  EXPECT_EQ(contents("project"), "1\nk\n");
}

TEST(EclipseProject, WritesAnyProject) {
  const SCRATCH_DIRECTORY scratch;
  std::mt19937 random(9);
  NAMES dirs(40);
  std::vector<std::pair<std::string, std::string>> files;
  std::map<std::string, std::pair<int, std::string>> blocks;
  for (std::string& dir : dirs) dir = "k" + std::to_string(&dir - dirs.data());
  for (int i = 0; i < 3000; ++i) {
    auto const& [file, dir] = files.emplace_back(std::to_string(i) + ".c", dirs[random() % dirs.size()]);
    ++blocks[dir].first, blocks[dir].second += file + "\n0\n";
  }
  std::string expected = "40\n";
  for (auto const& dir : dirs) expected += dir + "\n";
  for (auto const& dir : dirs) expected += "0\n" + std::to_string(blocks[dir].first) + "\n" + blocks[dir].second;
  EXPECT_EQ(ECLIPSE_MODEL(dirs, files).written(), expected);
}

/// What a scan of `dir` finds, sorted: "FILE: INCLUDE INCLUDE ".
std::set<std::string> scan(KDIR_SCANNER& scanner, char const* dir) {
  STRING path = dir;
  const auto before = std::filesystem::current_path();
  scanner.do_scan(path);
  EXPECT_EQ(std::filesystem::current_path(), before);
  EXPECT_EQ(scanner.includes.size, scanner.skip_includes ? 0 : scanner.found_files.size);
  std::set<std::string> found;
  for (int i = 0; i < scanner.found_files.size; ++i) {
    std::string line = scanner.found_files[i].str + std::string(":");
    if (!scanner.skip_includes) {
      for (STRING const& name : *scanner.includes[i]) line += std::string(" ") + name.str;
    }
    found.insert(line);
  }
  return found;
}

TEST(Kdirscanner, TakesTheNamesThatItsFlagsAskFor) {
  const SCRATCH_DIRECTORY scratch;
  std::filesystem::create_directories("d/Sub.c");
  for (char const* name : {"Main.c", "util.c", "Parser.k", "Types.h", "README", "Main.cpp", "A.config.c", "A.c.k",
                           "Solver.f", "Grid.F", "B.f.F", "C.h.f", "D.h.h", "é.c"}) {
    put(std::string("d/") + name, "");
  }
  ASSERT_EQ(mkfifo("d/Pipe.c", 0600), 0);
  const struct {
    bool headers, fortran, all;
    std::set<std::string> found;
  } cases[] = {
      {false, false, false, {"Main.c:", "Parser.k:", "Pipe.c:", "Sub.c:"}},
      {false, false, true, {"Main.c:", "Parser.k:", "Pipe.c:", "Sub.c:", "util.c:", "é.c:"}},
      {true, false, true, {"Types.h:"}},
      {false, true, false, {"C.h.f:", "Grid.F:", "Solver.f:"}},
      {true, true, false, {"Grid.F:", "Solver.f:", "Types.h:"}},
  };
  KDIR_SCANNER scanner;
  for (auto const& c : cases) {
    scanner.scan_headers = c.headers, scanner.fortran = c.fortran, scanner.all_names = c.all;
    EXPECT_EQ(scan(scanner, "d"), c.found) << &c - cases;
  }
  EXPECT_TRUE(scan(scanner, "none").empty() && scan(scanner, "d/Main.c").empty());
}

TEST(Kdirscanner, CollectsIncludeNames) {
  const std::string filler(4095 - 13, ' '), name1100(1100, 'N');
  const struct {
    std::string text, capitals, all;
  } cases[] = {
      {"#include <stdio.h>\n#include <Base/File.h>\n#include < Types.h >\n#include \"Local.h\"\n", " File.h Types.h",
       " stdio.h File.h Types.h"},
      {"// #include \"L.h\" <A.h> <B.h>\n#include <A<B.h>\n #includes<A.h>>\n", " A.h AB.h A.h", " A.h AB.h A.h"},
      {"#include >\n#include <x/>\n#include <No\n#include <A\tb.h>\n", " A\tb.h", "   A\tb.h"},
      {"#include <A.h>\n#include <Unended.h>", " A.h", " A.h"},
      {filler + "#include <A.>\n#include <B.>\n", " A. B.", " A. B."},
      {filler + "#include <A.> \n#include <B.>\n", " A.", " A."},
      {"#include <" + name1100 + ">\n", " " + name1100.substr(0, 1023), " " + name1100.substr(0, 1023)},
  };
  const SCRATCH_DIRECTORY scratch;
  KDIR_SCANNER scanner;
  for (auto const& c : cases) {
    put("A.c", c.text);
    scanner.all_names = scanner.skip_includes = false;
    EXPECT_EQ(scan(scanner, "."), std::set<std::string>{"A.c:" + c.capitals}) << c.text;
    scanner.all_names = true;
    EXPECT_EQ(scan(scanner, "."), std::set<std::string>{"A.c:" + c.all}) << c.text;
    scanner.skip_includes = true;
    EXPECT_EQ(scan(scanner, "."), std::set<std::string>{"A.c:"});
  }
  scanner.reset();
  EXPECT_TRUE(scanner.found_files.size == 0 && scanner.includes.size == 0);
}

TEST(Kdirscanner, FindsTheBasename) {
  char paths[][16] = {"dir/", "/Base/File.h", "File.h", ""};
  char const* const names[] = {"", "File.h", "File.h", ""};
  for (std::size_t i = 0; i < std::size(paths); ++i) EXPECT_STREQ(basename(paths[i]), names[i]);
}

} // namespace
