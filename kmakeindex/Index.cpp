#include "kmakeindex/Index.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_set>
#include <utility>

#include "kmakeindex/Typed_key.h"

namespace {

/// Whether the target of a reference is there as a whole, or each of those that it lists.
bool refers_to(std::unordered_set<std::string> const& there, std::string_view target) {
  if (there.contains(letters_and_digits(target))) return true;
  for (std::size_t begin = 0; begin <= target.size();) {
    const std::size_t end = std::min(target.find_first_of(",;", begin), target.size());
    if (!there.contains(letters_and_digits(target.substr(begin, end - begin)))) return false;
    begin = end + 1;
  }
  return true;
}

} // namespace

INDEX::INDEX(STYLE const& with, MESSAGES& to) : style(with), messages(to) {
  find_look({}); // number 0
}

std::size_t INDEX::HASH::operator()(ITEM_NAME const& name) const {
  constexpr std::size_t factor = 0x9E3779B97F4A7C15U;
  const std::size_t place = (std::size_t(name.parent) << 32U | name.place) * factor;
  return name.has_text ? place ^ std::hash<std::string_view>()(name.text) : place ^ place >> 32U;
}

void INDEX::add(std::string_view key, std::string_view page, LINE line, KEY_SYNTAX const& syntax) {
  const KEY_USE use = syntax.is_plain(key) ? KEY_USE{find_item({ITEM::none, places.number_of(key), {}, false}), 0, {}}
                                           : find_key(key, line, syntax);
  if (use.item != ITEM::none) entries.push_back({use.item, find_page(page), use.look, line, use.range});
}

INDEX::KEY_USE INDEX::find_key(std::string_view key, LINE line, KEY_SYNTAX const& syntax) {
  SYNTAX_KEYS& known = keys[(syntax.is_typed ? 1U : 0U) + (syntax.has_package ? 2U : 0U)];
  const std::uint32_t number = known.texts.number_of(key);
  if (number == known.uses.size()) known.uses.push_back(use_key(key, line, syntax));
  return known.uses[number];
}

INDEX::KEY_USE INDEX::use_key(std::string_view key, LINE line, KEY_SYNTAX const& syntax) {
  std::set<std::string, std::less<>> told;
  const KEY read = read_key(key, syntax, [&](std::string_view what) {
    if (told.emplace(what).second) messages.warn(line, "the key `" + shown(key) + "' " + std::string(what));
  });
  std::uint32_t item = ITEM::none;
  for (KEY::LEVEL const& level : read.levels) {
    const std::string_view place = keep(level.place);
    const std::string_view text = level.has_text ? keep(level.text) : std::string_view();
    item = find_item({item, places.number_of(place), text, level.has_text});
  }
  return {item, find_look(read), read.range};
}

std::uint32_t INDEX::find_item(ITEM_NAME const& name) {
  if (name.parent == ITEM::none && !name.has_text) {
    if (name.place >= plain_items.size()) plain_items.resize(places.texts.size(), ITEM::none);
    std::uint32_t& number = plain_items[name.place];
    if (number == ITEM::none) number = add_item(name);
    return number;
  }
  const auto [found, is_new] = other_items.try_emplace(name, 0);
  if (is_new) found->second = add_item(name);
  return found->second;
}

std::uint32_t INDEX::add_item(ITEM_NAME const& name) {
  const auto level = name.parent == ITEM::none ? 0 : items[name.parent].level + 1;
  items.push_back({name.parent, name.place, name.text, name.has_text, static_cast<std::uint8_t>(level)});
  return static_cast<std::uint32_t>(items.size() - 1);
}

std::uint32_t INDEX::find_look(KEY const& key) {
  const std::uint32_t number = commands.number_of(keep(std::string(1, key.is_principal ? '*' : ' ') + key.command));
  if (number == looks.size()) looks.push_back({key.command, key.is_principal, key.is_reference()});
  return number;
}

std::uint32_t INDEX::find_page(std::string_view page) {
  if (page.empty()) return ENTRY::no_page;
  const std::uint32_t number = page_names.number_of(page);
  if (number == pages.size()) pages.push_back(read_page(page, style));
  return number;
}

std::string INDEX::path_of(ITEM const& item, bool of_places) const {
  const auto name = [&](ITEM const& one) { return std::string(of_places ? place_of(one) : text_of(one)); };
  std::string path = name(item);
  for (std::uint32_t above = item.parent; above != ITEM::none; above = items[above].parent) {
    path = name(items[above]) + '!' + path;
  }
  return path;
}

void INDEX::check_references() const {
  std::map<LINE, ENTRY const*> references; // each once, by the line where it is first
  std::set<std::uint32_t> found;
  for (ENTRY const& entry : entries) {
    if (looks[entry.look].is_reference) references[entry.line] = &entry;
  }
  if (references.empty()) return;
  std::unordered_set<std::string> there;
  for (ITEM const& item : items) {
    for (const bool of_places : {false, true}) there.insert(letters_and_digits(path_of(item, of_places)));
  }
  for (auto const& [line, entry] : references) {
    const std::string target = target_of_reference(looks[entry->look].command);
    if (!found.insert(entry->look).second || refers_to(there, target)) continue;
    messages.warn(line, "the key `" + shown(path_of(items[entry->item])) + "' refers to `" + shown(target) +
                            "', which is not there");
  }
}

void INDEX::arrange(ORDER const& language, bool letter_order) {
  const std::vector<RANKED_PLACE> ranked = rank_places(language);
  std::array<std::vector<std::uint32_t>, 3> levels;
  std::vector<std::uint32_t> positions(items.size());
  for (std::size_t level = 0; level < levels.size(); ++level) {
    levels[level] = sort_level(level, ranked, positions, letter_order);
    for (std::uint32_t i = 0; i < levels[level].size(); ++i) positions[levels[level][i]] = i;
  }
  put_in_order(levels);
  find_headings(language, ranked);
  sort_entries();
}

std::vector<INDEX::RANKED_PLACE> INDEX::rank_places(ORDER const& language) const {
  struct KEYED_PLACE {
    std::uint64_t beginning; // of the key, which decides most comparisons
    std::size_t key, key_size;
    std::uint32_t number;
  };
  std::string all_keys;
  std::vector<KEYED_PLACE> keyed;
  keyed.reserve(places.texts.size());
  for (std::uint32_t i = 0; i < places.texts.size(); ++i) {
    const std::size_t begin = all_keys.size();
    language.append_sort_key(places.texts[i], all_keys);
    const std::size_t size = all_keys.size() - begin;
    std::uint64_t beginning = 0;
    for (std::size_t b = 0; b < sizeof beginning; ++b) {
      beginning = beginning << 8U | (b < size ? static_cast<unsigned char>(all_keys[begin + b]) : 0U);
    }
    keyed.push_back({beginning, begin, size, i});
  }
  const auto key_of = [&](KEYED_PLACE const& place) {
    return std::string_view(all_keys).substr(place.key, place.key_size);
  };
  std::sort(keyed.begin(), keyed.end(), [&](KEYED_PLACE const& a, KEYED_PLACE const& b) {
    return a.beginning != b.beginning ? a.beginning < b.beginning : key_of(a) < key_of(b);
  });
  std::vector<RANKED_PLACE> ranked(keyed.size());
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < keyed.size(); ++i) {
    if (i > 0 && key_of(keyed[i]) != key_of(keyed[i - 1])) ++rank;
    ranked[keyed[i].number] = {rank, ORDER::group_of(key_of(keyed[i]))};
  }
  return ranked;
}

/// The items of a level, those under the same item together, whose positions are known.
std::vector<std::uint32_t> INDEX::sort_level(std::size_t level, std::vector<RANKED_PLACE> const& ranked,
                                             std::vector<std::uint32_t> const& positions, bool letter_order) const {
  struct PLACED_ITEM {
    std::uint64_t place; // first that of the item above
    std::uint32_t number;
  };
  std::vector<PLACED_ITEM> placed;
  for (std::uint32_t i = 0; i < items.size(); ++i) {
    if (items[i].level != level) continue;
    const std::uint64_t above = level == 0 ? 0 : positions[items[i].parent];
    placed.push_back({above << 32U | ranked[items[i].place].rank, i});
  }
  std::sort(placed.begin(), placed.end(), [&](PLACED_ITEM const& a, PLACED_ITEM const& b) {
    if (a.place != b.place) return a.place < b.place;
    ITEM const &first = items[a.number], &second = items[b.number];
    const int by_text = compare_texts(first.text, second.text, letter_order);
    return by_text == 0 ? place_of(first) < place_of(second) : by_text < 0;
  });
  std::vector<std::uint32_t> sorted;
  sorted.reserve(placed.size());
  for (PLACED_ITEM const& item : placed) sorted.push_back(item.number);
  return sorted;
}

void INDEX::put_in_order(std::array<std::vector<std::uint32_t>, 3> const& levels) {
  std::array<std::size_t, 3> next = {};
  order.reserve(items.size());
  const auto put = [&](auto const& self, std::size_t level, std::uint32_t parent) -> void {
    if (level == levels.size()) return;
    std::vector<std::uint32_t> const& sorted = levels[level];
    for (std::size_t& i = next[level]; i < sorted.size() && items[sorted[i]].parent == parent; ++i) {
      order.push_back(sorted[i]);
      self(self, level + 1, sorted[i]);
    }
  };
  put(put, 0, ITEM::none);
}

void INDEX::find_headings(ORDER const& language, std::vector<RANKED_PLACE> const& ranked) {
  std::vector<std::string_view> words;
  std::vector<std::size_t> begins;
  std::optional<GROUP> last;
  for (std::size_t i = 0; i < order.size(); ++i) {
    ITEM const& item = items[order[i]];
    if (item.level > 0) continue;
    const GROUP group = ranked[item.place].group;
    if (group == GROUP::WORDS) {
      words.push_back(place_of(item));
      begins.push_back(i);
    } else if (group != last) {
      headings.push_back({i, group, ""});
    }
    last = group;
  }
  for (HEADING const& heading : language.headings(words)) {
    headings.push_back({begins[heading.begin], GROUP::WORDS, heading.letter});
  }
}

/// First by their items, then, among the few of each, by their pages.
void INDEX::sort_entries() {
  rank_pages(pages);
  std::vector<std::uint32_t> ends(items.size() + 1); // by items; at first, where the entries of each begin
  for (ENTRY const& entry : entries) ++ends[entry.item];
  std::uint32_t begin = 0;
  for (const std::uint32_t item : order) begin += std::exchange(ends[item], begin);
  std::vector<ENTRY> sorted(entries.size());
  for (ENTRY const& entry : entries) sorted[ends[entry.item]++] = entry;
  entries = std::move(sorted);
  const auto rank = [&](ENTRY const& entry) {
    return entry.page == ENTRY::no_page ? entry.page : pages[entry.page].rank;
  };
  for (auto first = entries.begin(); first != entries.end();) {
    const auto last = entries.begin() + ends[first->item];
    std::sort(first, last,
              [&](ENTRY const& a, ENTRY const& b) { return rank(a) != rank(b) ? rank(a) < rank(b) : a.line < b.line; });
    first = last;
  }
}
