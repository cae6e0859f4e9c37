#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "kmakeindex/Style.h"

/// A page as the document calls it: numbers, of which each may be roman, arabic or a letter. No numbers: a name of some
/// other kind.
struct PAGE {
  struct NUMBER {
    int kind; ///< its place in page_precedence
    std::uint64_t value;
    auto operator<=>(NUMBER const&) const = default; // NOLINT(modernize-use-nullptr): of its own making
  };

  std::string_view text;
  std::vector<NUMBER> numbers;
  std::uint32_t rank = 0; ///< its place among all pages, the same for pages of the same numbers
};

/// Takes the name of a page apart, which stays where it is.
PAGE read_page(std::string_view text, STYLE const& style);

/// Gives all pages their ranks. Those without numbers stand at the end, as they come.
void rank_pages(std::vector<PAGE>& pages);

/// How many pages `b` comes after `a`, if they differ in their last numbers alone; else -1.
std::int64_t pages_between(PAGE const& a, PAGE const& b);
