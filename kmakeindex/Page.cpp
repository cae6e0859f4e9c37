#include "kmakeindex/Page.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <utility>

namespace {

using NUMBER = PAGE::NUMBER;

constexpr std::size_t none = std::string_view::npos;
constexpr std::string_view digits = "0123456789";
constexpr std::string_view lower_roman = "ivxlcdm", upper_roman = "IVXLCDM";
constexpr std::array<std::uint64_t, 7> roman_values = {1, 5, 10, 50, 100, 500, 1000};
constexpr std::size_t most_digits = 18;

bool consists_of(std::string_view text, std::string_view characters) {
  return text.find_first_not_of(characters) == std::string_view::npos;
}

std::uint64_t arabic_value(std::string_view text) {
  return std::accumulate(text.begin(), text.end(), std::uint64_t(0),
                         [](std::uint64_t value, char c) { return 10 * value + static_cast<unsigned>(c - '0'); });
}

/// Of any row of roman digits: one before a greater one counts as negative.
std::uint64_t roman_value(std::string_view text, std::string_view roman) {
  std::uint64_t value = 0, last = 0;
  for (const char c : text) {
    const std::uint64_t digit = roman_values[roman.find(c)];
    value += digit;
    if (digit > last) value -= 2 * last;
    last = digit;
  }
  return value;
}

/// The letter for the kind of a number, as page_precedence has it, and the value. A single letter that might be roman
/// is alphabetic where a compositor follows.
std::optional<std::pair<char, std::uint64_t>> read_number(std::string_view text, bool is_last) {
  if (text.empty()) return std::nullopt;
  if (consists_of(text, digits)) {
    if (text.size() > most_digits) return std::nullopt;
    return std::pair('n', arabic_value(text));
  }
  const bool may_be_roman = text.size() > 1 || is_last;
  if (may_be_roman && consists_of(text, lower_roman)) return std::pair('r', roman_value(text, lower_roman));
  if (may_be_roman && consists_of(text, upper_roman)) return std::pair('R', roman_value(text, upper_roman));
  if (text.size() > 1) return std::nullopt;
  const char c = text[0];
  if ('a' <= c && c <= 'z') return std::pair('a', static_cast<std::uint64_t>(c - 'a'));
  if ('A' <= c && c <= 'Z') return std::pair('A', static_cast<std::uint64_t>(c - 'A'));
  return std::nullopt;
}

} // namespace

PAGE read_page(std::string_view text, STYLE const& style) {
  PAGE page = {text, {}};
  std::string_view const compositor = style.page_compositor;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t found = compositor.empty() ? none : text.find(compositor, begin);
    const std::size_t end = std::min(found, text.size());
    const auto number = read_number(text.substr(begin, end - begin), found == none);
    const std::size_t kind = number ? style.page_precedence.find(number->first) : std::string::npos;
    if (kind == std::string::npos) return {text, {}};
    page.numbers.push_back({static_cast<int>(kind), number->second});
    begin = found == none ? text.size() + 1 : found + compositor.size();
  }
  return page;
}

void rank_pages(std::vector<PAGE>& pages) {
  std::vector<PAGE*> order;
  order.reserve(pages.size());
  for (PAGE& page : pages) order.push_back(&page);
  const auto is_before = [](PAGE const* a, PAGE const* b) {
    if (a->numbers.empty() || b->numbers.empty()) return a->numbers.size() > b->numbers.size();
    return a->numbers < b->numbers;
  };
  std::stable_sort(order.begin(), order.end(), is_before);
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool is_other = i > 0 && (order[i]->numbers.empty() || is_before(order[i - 1], order[i]));
    order[i]->rank = is_other ? ++rank : rank;
  }
}

std::int64_t pages_between(PAGE const& a, PAGE const& b) {
  if (a.rank == b.rank) return 0;
  if (a.numbers.empty() || a.numbers.size() != b.numbers.size()) return -1;
  if (!std::equal(a.numbers.begin(), a.numbers.end() - 1, b.numbers.begin())) return -1;
  NUMBER const &first = a.numbers.back(), &last = b.numbers.back();
  return first.kind != last.kind || last.value < first.value ? -1 : static_cast<std::int64_t>(last.value - first.value);
}
