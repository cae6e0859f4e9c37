#include "lib/strings/Containers.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "lib/strings/Stringpp.h"
#include "tests/Allocations.h"

namespace {

template <class LIST_OF_STRING>
void compare_with_vector(LIST_OF_STRING& list) {
  std::mt19937 random(7);
  std::vector<std::string> model;
  for (int step = 0; step < 5000; ++step) {
    const std::string text(random() % 3, static_cast<char>('a' + random() % 3));
    const auto action = random() % 50;
    if (action == 0) {
      list.resize(0), model.clear();
    } else if (action < 10 && !model.empty()) {
      const auto i = random() % model.size();
      list.add(list[static_cast<int>(i)]), model.push_back(std::string(model[i]));
    } else {
      list.add(text.c_str()), model.push_back(text);
    }
    ASSERT_TRUE(std::equal(list.begin(), list.end(), model.begin(), model.end(),
                           [](STRING const& a, std::string const& b) { return a == b.c_str(); }));
    CARRAY<STRING> const& searched = list;
    const auto found = std::find(model.begin(), model.end(), text);
    const int position = found == model.end() ? -1 : static_cast<int>(found - model.begin());
    int index = -5;
    ASSERT_EQ(searched.first_occurrence(text.c_str()), position);
    ASSERT_EQ(searched.is_in(text.c_str()), position >= 0);
    ASSERT_EQ(searched.is_in(text.c_str(), index), position >= 0);
    ASSERT_EQ(index, position >= 0 ? position : -5);
    ASSERT_EQ(searched.count_occurrence(text.c_str()), std::count(model.begin(), model.end(), text));
  }
}

TEST(Containers, BehaveAsStdVectorDoes) {
  LIST<STRING> list;
  compare_with_vector(list);
  BUFF_LIST<STRING> buffered(0, 3);
  compare_with_vector(buffered);
}

TEST(Lists, GrowByOneElementOrByTheirIncrement) {
  LIST<int> exact;
  EXPECT_EQ(sizes_asked([&] { exact.add(4), exact.add(5); }), (std::vector<std::size_t>{4, 8}));
  BUFF_LIST<int> list(1024, 1024);
  EXPECT_EQ(sizes_asked([&] {
              for (int i = 0; i < 1024; ++i) list.add(i);
            }).size(),
            0U);
  EXPECT_EQ(sizes_asked([&] { list.add(list[7]); }), std::vector<std::size_t>{2048 * 4});
  EXPECT_TRUE(list.capacity == 2048 && list.size == 1025 && list[1023] == 1023 && list[1024] == 7);

  BUFF_LIST<STRING> texts(4, -1);
  for (char const* text : {"a", "b", "c"}) texts.add(text);
  texts.resize(1);
  EXPECT_TRUE(texts.capacity == 4 && texts.ptr[2] == "c" && texts.increment == 1);
  texts.resize(6);
  EXPECT_TRUE(texts.capacity == 6 && texts.size == 6 && texts.count_occurrence("") == 6);
  ARRAY<STRING>& base = texts;
  base.set_ptr_and_size(new STRING[2], 2);
  texts.add("d");
  EXPECT_TRUE(texts.size == 3 && texts.capacity == 3 && texts[2] == "d");
  base.hard_resize(0);
  EXPECT_TRUE(base.ptr != nullptr && base.size == 0 && texts.capacity == 0);
}

TEST(Array, ReplacesItsStorage) {
  ARRAY<STRING> array;
  STRING* const storage = new STRING[2];
  array.set_ptr_and_size(storage, 2), array.set_ptr_and_size(storage, 1);
  EXPECT_TRUE(array.ptr == storage && array.size == 1);
  array[0] = "text";
  array.resize(3);
  EXPECT_TRUE(array[0] == "" && array[2] == "" && array.size == 3);
  array.set_size(1);
  EXPECT_EQ(array.end() - array.begin(), 1);
  array.resize(-2);
  EXPECT_TRUE(array.ptr == nullptr && array.size == -2 && array.begin() == array.end());
  array.hard_resize(0);
  EXPECT_TRUE(array.ptr != nullptr && array.size == 0);
}

template <class CONTAINER, class ACTION>
void fail_each_allocation(CONTAINER& c, bool keeps_elements, ACTION action) {
  for (int n = 1;; ++n) {
    c.resize(0);
    for (char const* text : {"a", "b", "c"}) c.add(text);
    if (!throws_at_allocation(n, [&] { action(c); })) return;
    EXPECT_TRUE(keeps_elements ? c.size == 3 && c[0] == "a" && c[2] == "c" : c.ptr == nullptr && c.size == 0);
    c.add("still usable");
    EXPECT_STREQ(c[c.size - 1].str, "still usable");
  }
}

TEST(Containers, StayValidWhenMemoryFails) {
  const std::string text(600, 'x');
  LIST<STRING> list;
  fail_each_allocation(list, true, [&](auto& c) { c.add(text.c_str()); });
  fail_each_allocation(list, false, [](auto& c) { c.resize(40); });
  BUFF_LIST<STRING> buffered(3, 2);
  fail_each_allocation(buffered, true, [&](auto& c) { c.add(text.c_str()); });
  fail_each_allocation(buffered, false, [](auto& c) { c.resize(40); });
  fail_each_allocation(buffered, false, [](auto& c) { c.hard_resize(2); });
}

} // namespace
