#pragma once

#include <span>
#include <string>
#include <vector>

#include "kmakeindex/Index.h"

/// Pages that are printed together, with what becomes of them.
struct PAGES {
  LOOK const* look;
  std::string text;
};

/// What is printed after an item: pages, rows of them, and last what it refers to.
struct PAGE_LIST {
  std::vector<PAGES> pieces;
  bool is_single = false; ///< made of one entry
};

/// Makes the list of pages of an item of its entries, in their order. Ranges that do not fit are told.
PAGE_LIST make_page_list(INDEX const& index, std::span<ENTRY const> entries, STYLE const& style, bool makes_ranges,
                         MESSAGES& messages);
