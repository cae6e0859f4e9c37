#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <sstream>
#include <utility>

#include "lib/strings/Containers.h"
#include "lib/strings/Stringpp.h"

namespace {

std::size_t bytes_asked_for = 0;
bool next_fails = false;

} // namespace

void* operator new(std::size_t size) {
  bytes_asked_for += size;
  void* const p = std::exchange(next_fails, false) ? nullptr : std::malloc(size);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}
void operator delete(void* p) noexcept { std::free(p); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return operator new(size); }
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete[](void* p) noexcept { operator delete(p); }
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }
void operator delete[](void* p, std::size_t) noexcept { operator delete(p); }

namespace {

template <class ACTION>
std::size_t bytes_of(ACTION const& action) {
  const std::size_t before = bytes_asked_for;
  action();
  return bytes_asked_for - before;
}

TEST(Pool, AsksForWhatItsRulesSay) {
  delete[] new STRING[1100];
  EXPECT_EQ(Nb_string, 1000);
  const STRING longest(std::string(508, 'x').c_str());
  const STRING text(std::string(600, 'x').c_str());
  STRING s;
  std::stringstream record;
  write(record, text);
  const int free_buffers = Nb_string;
  EXPECT_EQ(bytes_of([&] { s = (STRING(longest).cut_out('x') + "a" + itoa(5)).getSTRING(); }), 0U);
  put_ptr(nullptr);
  EXPECT_EQ(Nb_string, free_buffers) << "all come back, and null is none";
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

TEST(Pool, KeepsTextsWhereMemoryRunsOut) {
  const STRING longest(std::string(600, 'x').c_str());
  STRING text(longest);
  BUFF_LIST<STRING> list(1);
  list.add(text);
  std::stringstream record;
  write(record, longest);
  const std::function<void()> operations[] = {[&] { text += text; }, [&] { text = longest; },
                                              [&] { text.clear_space(); }, [&] { read(record, text); },
                                              [&] { list.add(text); }};
  for (auto const& operation : operations) {
    next_fails = true;
    EXPECT_THROW(operation(), std::bad_alloc);
    EXPECT_EQ(text, longest);
    EXPECT_EQ(list[0], longest);
    EXPECT_EQ(std::count(pBufs, pBufs + Nb_string + 1, text.str), 0);
  }
  while (Nb_string >= 0) delete[] pBufs[Nb_string--];
  std::istringstream words("word");
  next_fails = true;
  words >> text;
  EXPECT_TRUE(words.fail());
  EXPECT_EQ(text, longest);
  next_fails = true;
  EXPECT_THROW(list.resize(2), std::bad_alloc);
  EXPECT_EQ(list.ptr, nullptr);
  EXPECT_EQ(list.capacity, 0);
}

} // namespace
