#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kmakeindex/Key.h"
#include "kmakeindex/Messages.h"
#include "kmakeindex/Order.h"
#include "kmakeindex/Page.h"
#include "kmakeindex/Style.h"

/// Numbers texts in the order in which they come first.
class NUMBERED_TEXTS {
public:
  std::vector<std::string_view> texts;

  /// The number of a text, which has to stay where it is.
  std::uint32_t number_of(std::string_view text) {
    const auto [found, is_new] = numbers.try_emplace(text, static_cast<std::uint32_t>(texts.size()));
    if (is_new) texts.push_back(text);
    return found->second;
  }

private:
  std::unordered_map<std::string_view, std::uint32_t> numbers;
};

/// What becomes of the pages of an entry.
struct LOOK {
  std::string command; ///< without its backslash; empty: none
  bool is_principal;
  bool is_reference;
};

struct ENTRY {
  std::uint32_t item;
  std::uint32_t page; ///< or `no_page`
  std::uint32_t look;
  LINE line;
  KEY::RANGE range;

  static constexpr std::uint32_t no_page = UINT32_MAX;
};

/// A line of the index, with those that stand under it.
struct ITEM {
  std::uint32_t parent; ///< or `none`
  std::uint32_t place;
  std::string_view text; ///< what is printed, where it is given besides the place
  bool has_text;
  std::uint8_t level;

  static constexpr std::uint32_t none = UINT32_MAX;
};

/// One index: takes entries, merges those of the same key, and puts them in order.
class INDEX {
public:
  std::vector<ITEM> items;
  std::vector<PAGE> pages;
  std::vector<LOOK> looks;
  std::vector<ENTRY> entries;

  INDEX(STYLE const& with, MESSAGES& to);

  /// Key and page have to stay where they are.
  void add(std::string_view key, std::string_view page, LINE line, KEY_SYNTAX const& syntax);

  /// The numbers of the items in the order in which they are printed, each before those that stand under it.
  std::vector<std::uint32_t> order;
  /// The groups of items, which begin at a place in the order.
  std::vector<HEADING> headings;

  /// Finds the order and the headings, and puts the entries into the order of their items and pages.
  void arrange(ORDER const& language, bool letter_order);

  /// Tells references to entries that are not there.
  void check_references() const;

  std::string_view place_of(ITEM const& item) const { return places.texts[item.place]; }
  std::string_view text_of(ITEM const& item) const { return item.has_text ? item.text : place_of(item); }

  /// The texts of an item and of those that it stands under: fruit!apple. Or their places.
  std::string path_of(ITEM const& item, bool of_places = false) const;

private:
  struct KEY_USE {
    std::uint32_t item;
    std::uint32_t look;
    KEY::RANGE range;
  };
  struct ITEM_NAME {
    std::uint32_t parent, place;
    std::string_view text;
    bool has_text;
    bool operator==(ITEM_NAME const&) const = default;
  };
  struct HASH {
    std::size_t operator()(ITEM_NAME const& name) const;
  };
  struct RANKED_PLACE {
    std::uint32_t rank; ///< the same for places of equal strength
    GROUP group;
  };
  struct SYNTAX_KEYS {
    NUMBERED_TEXTS texts;
    std::vector<KEY_USE> uses;
  };

  STYLE const& style;
  MESSAGES& messages;
  std::deque<std::string> made_texts; ///< those that do not stand in the raw index
  std::array<SYNTAX_KEYS, 4> keys;    ///< typed or not, of a document with the package or not
  NUMBERED_TEXTS places, page_names, commands;
  std::vector<std::uint32_t> plain_items; ///< those without a text and a parent, by their places
  std::unordered_map<ITEM_NAME, std::uint32_t, HASH> other_items;

  std::string_view keep(std::string const& text) { return made_texts.emplace_back(text); }
  KEY_USE find_key(std::string_view key, LINE line, KEY_SYNTAX const& syntax);
  KEY_USE use_key(std::string_view key, LINE line, KEY_SYNTAX const& syntax);
  std::uint32_t find_item(ITEM_NAME const& name);
  std::uint32_t add_item(ITEM_NAME const& name);
  std::uint32_t find_look(KEY const& key);
  std::uint32_t find_page(std::string_view page);
  std::vector<RANKED_PLACE> rank_places(ORDER const& language) const;
  std::vector<std::uint32_t> sort_level(std::size_t level, std::vector<RANKED_PLACE> const& ranked,
                                        std::vector<std::uint32_t> const& positions, bool letter_order) const;
  void put_in_order(std::array<std::vector<std::uint32_t>, 3> const& levels);
  void find_headings(ORDER const& language, std::vector<RANKED_PLACE> const& ranked);
  void sort_entries();
};
