#include "lib/files/File.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "tests/Scratch_directory.h"

namespace {

static_assert(!std::is_copy_constructible_v<ASCII_FILE> && !std::is_copy_assignable_v<ASCII_FILE>);

TEST(File, OpensAsItsModeSays) {
  const struct {
    int mode;
    char const* name;
    bool opens;
    char const* then_holds;
  } cases[] = {{0, "there", true, "abc"}, {16, "there", true, "abc"}, {48, "there", true, ""},   {0, "none", false, ""},
               {16, "none", false, ""},   {48, "none", true, ""},     {1, "there", true, "abc"}, {0, "", false, ""},
               {0, ".", true, ""},        {48, "no/dir", false, ""}};
  for (auto const& c : cases) {
    const SCRATCH_DIRECTORY scratch;
    put("there", "abc");
    ASCII_FILE constructed(c.name, c.mode), opened;
    EXPECT_EQ(contents(c.name), c.then_holds) << c.name << c.mode;
    EXPECT_TRUE(!opened.ok && opened.mode == 8 && !opened.line_changed && opened.previous_pos == std::streampos(0));
    opened.line_changed = true;
    opened.open(c.name, c.mode);
    for (ASCII_FILE* f : {&constructed, &opened}) {
      EXPECT_TRUE(f->ok == c.opens && f->fail() == !c.opens && f->mode == (c.mode | 8) && f->name == c.name);
      EXPECT_TRUE(f->skip_comments == 1 && !f->line_changed && !f->included_file && !f->parent_file);
      EXPECT_EQ(f->previous_pos, std::streampos(c.opens ? 0 : -1));
    }
  }
}

TEST(File, MovesBackAfterItsEnd) {
  const SCRATCH_DIRECTORY scratch;
  for (const int mode : {0, 16, 48}) {
    put("file", "abc");
    ASCII_FILE f("file", mode);
    if (mode == 48) f << "abc" << std::flush, f.rewind();
    EXPECT_EQ(f.get_next_char(), 'a');
    f.back();
    EXPECT_TRUE(f.get_position() == std::streampos(0) && f.get() == 'a');
    f.back1();
    EXPECT_EQ(f.get_position(), std::streampos(0));
    f.goto_position_and_set_previous_pos(2);
    while (!f.fail()) f.get_next_char();
    EXPECT_TRUE(f.eof() && f.get_position() == std::streampos(-1));
    f.line_changed = true;
    f.goto_position(1);
    EXPECT_TRUE(f.good() && f.ok && !f.line_changed && f.previous_pos == std::streampos(0) && f.mode == (mode | 8));
    EXPECT_EQ(f.get_next_char(), 'b');
    f.seekg(0, std::ios_base::end).peek();
    EXPECT_TRUE(f.get_position() == std::streampos(3) && f.eof() && !f.fail());
    f.rewind();
    EXPECT_EQ(f.get_next_char(), 'a');
    if (mode != 0) f.goto_position(1), f << 'X' << std::flush;
    EXPECT_EQ(contents("file"), mode == 0 ? "abc" : "aXc");
  }
  put("bytes", "\xff\x80");
  ASCII_FILE bytes("bytes", 0);
  EXPECT_TRUE(bytes.get_next_char() == -1 && bytes.get_next_char() == -128);
}

TEST(File, OwnsWhatItIncludes) {
  const SCRATCH_DIRECTORY scratch;
  auto* const outer = new ASCII_FILE("outer", 48);
  outer->included_file = new ASCII_FILE("inner", 48);
  *outer->included_file << "written";
  ASCII_FILE other;
  ASCII_FILE::current_file = &other;
  EXPECT_TRUE(ASCII_FILE::if_current_file());
  delete outer;
  EXPECT_FALSE(ASCII_FILE::if_current_file());
  EXPECT_EQ(contents("inner"), "written");
}

TEST(File, RefusesToOpenTwiceAndToCloseNothing) {
  const SCRATCH_DIRECTORY scratch;
  put("a", "1"), put("b", "2");
  ASCII_FILE f("a", 0);
  f.def_keys.add("key");
  f.open("b", 0);
  EXPECT_TRUE(f.fail() && !f.ok && f.is_open() && f.name == "b");
  f.rewind();
  EXPECT_EQ(f.get(), '2');
  f.open("new", 48);
  f.rewind();
  EXPECT_TRUE(f.good() && f.ok && std::filesystem::exists("new"));
  f.close();
  EXPECT_TRUE(!f.ok && !f.fail() && f.def_keys.size == 1);
  f.close();
  EXPECT_TRUE(f.fail());
}

} // namespace
