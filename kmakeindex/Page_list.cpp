#include "kmakeindex/Page_list.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace {

using RANGE = KEY::RANGE;

/// Pages in a row.
struct ROW {
  std::uint32_t look;
  std::uint32_t first, last; ///< pages
  std::uint32_t reach;       ///< the last page, also where it stands elsewhere with a command
  bool is_explicit = false;

  ROW(std::uint32_t with, std::uint32_t page) : look(with), first(page), last(page), reach(page) {}
};

/// Goes through the entries of an item. Pages without a command, and those with the same one, make rows.
class LISTER {
public:
  LISTER(INDEX const& of, STYLE const& with, bool with_ranges, MESSAGES& to)
      : index(of), style(with), makes_ranges(with_ranges), messages(to) {}

  PAGE_LIST list(std::span<ENTRY const> entries) {
    ENTRY const& only = entries.front();
    if (entries.size() == 1 && only.page != ENTRY::no_page && only.range == RANGE::NONE) { // as most items have it
      return {{{&index.looks[only.look], page(only.page)}}, true};
    }
    std::vector<ENTRY> pages, references;
    for (ENTRY const& entry : entries) {
      if (index.looks[entry.look].is_reference) {
        references.push_back(entry);
      } else if (entry.page != ENTRY::no_page) {
        pages.push_back(entry);
      }
    }
    sort_pages(pages);
    made.is_single = pages.size() + references.size() == 1;
    for (auto page = pages.begin(); page != pages.end();) {
      const auto end =
          std::find_if(page, pages.end(), [&](ENTRY const& e) { return distance(page->page, e.page) != 0; });
      add_page({page, end});
      page = end;
    }
    if (open != nullptr) warn(*open, "is not closed");
    put_rows();
    put_references(references);
    return made;
  }

private:
  INDEX const& index;
  STYLE const& style;
  bool makes_ranges;
  MESSAGES& messages;
  PAGE_LIST made;
  std::optional<ROW> plain, other; ///< rows that may go on: without a command, and with one
  std::vector<PAGES> held;         ///< pages within the plain row, which stand after it
  ENTRY const* open = nullptr;     ///< where the range begins that is not closed yet

  std::int64_t distance(std::uint32_t a, std::uint32_t b) const {
    return pages_between(index.pages[a], index.pages[b]);
  }
  std::string page(std::uint32_t number) const { return std::string(index.pages[number].text); }

  void warn(ENTRY const& entry, std::string const& what) const {
    messages.warn(entry.line, "the range of pages of `" + index.path_of(index.items[entry.item]) + "' " + what);
  }

  std::string sort_name(ENTRY const& entry) const {
    LOOK const& look = index.looks[entry.look];
    return (look.is_principal ? "indexprincipal" : "") + look.command;
  }

  /// On one page, entries go by the names of their commands, each once, but where a range begins or ends they keep the
  /// order of the raw index.
  void sort_pages(std::vector<ENTRY>& pages) const {
    const auto is_other_page = [&](ENTRY const& a, ENTRY const& b) {
      return index.pages[a.page].rank != index.pages[b.page].rank || a.range != RANGE::NONE || b.range != RANGE::NONE;
    };
    const auto is_same = [&](ENTRY const& a, ENTRY const& b) { return !is_other_page(a, b) && a.look == b.look; };
    for (auto begin = pages.begin(); begin != pages.end();) {
      auto end = begin + 1;
      while (end != pages.end() && !is_other_page(*(end - 1), *end)) ++end;
      if (end - begin > 1)
        std::stable_sort(begin, end, [&](ENTRY const& a, ENTRY const& b) { return sort_name(a) < sort_name(b); });
      begin = end;
    }
    pages.erase(std::unique(pages.begin(), pages.end(), is_same), pages.end());
  }

  /// The entries of one page.
  void add_page(std::span<ENTRY const> entries) {
    const auto is_plain = [](ENTRY const& e) { return e.look == 0 && e.range == RANGE::NONE; };
    const auto has_command = [](ENTRY const& e) { return e.look != 0 && e.range == RANGE::NONE; };
    const bool is_covered = open == nullptr && std::any_of(entries.begin(), entries.end(), is_plain) &&
                            std::any_of(entries.begin(), entries.end(), has_command);
    if (is_covered && plain && goes_on(*plain, entries[0].page)) {
      plain->reach = entries[0].page;
    } else if (is_covered) {
      put_rows();
    }
    for (ENTRY const& entry : entries) {
      if (open != nullptr) {
        add_to_range(entry);
      } else if (!is_covered || !is_plain(entry)) {
        add(entry, is_covered);
      }
    }
  }

  bool goes_on(ROW const& row, std::uint32_t page) const {
    const std::int64_t pages = distance(row.reach, page);
    return pages == 0 || (pages == 1 && makes_ranges);
  }

  void add(ENTRY const& entry, bool is_covered) {
    std::optional<ROW>& row = entry.look == 0 ? plain : other;
    if (entry.look != 0 && !is_covered) put_plain_row();
    if (row && row->look == entry.look && goes_on(*row, entry.page)) {
      row->last = row->reach = entry.page;
    } else {
      if (entry.look == 0) put_plain_row();
      put_other_row();
      row.emplace(entry.look, entry.page);
    }
    if (entry.range == RANGE::BEGIN) open = &entry;
    if (entry.range == RANGE::END) warn(entry, "is not opened");
  }

  /// Within a range, pages of its command and pages without one are there already.
  void add_to_range(ENTRY const& entry) {
    ROW& row = *(open->look == 0 ? plain : other);
    if (entry.range == RANGE::BEGIN) warn(entry, "is opened again");
    const bool ends = entry.range == RANGE::END;
    if (ends && entry.look != 0 && entry.look != open->look) warn(entry, "is closed with another command");
    if (!ends && entry.look != 0 && entry.look != open->look) {
      made.pieces.push_back({&index.looks[entry.look], page(entry.page)});
      return;
    }
    if (distance(row.reach, entry.page) < 0) {
      warn(entry, "goes on with pages of another kind");
      put_row(row, made.pieces);
      row = ROW(row.look, entry.page);
    } else {
      row.last = row.reach = entry.page;
      row.is_explicit = true;
    }
    if (ends) open = nullptr;
  }

  void put_rows() {
    put_plain_row();
    put_other_row();
  }

  void put_plain_row() {
    if (plain) put_row(*plain, made.pieces);
    plain.reset();
    made.pieces.insert(made.pieces.end(), held.begin(), held.end());
    held.clear();
  }

  void put_other_row() {
    if (other) put_row(*other, plain ? held : made.pieces);
    other.reset();
  }

  void put_row(ROW const& row, std::vector<PAGES>& to) const {
    LOOK const* const look = &index.looks[row.look];
    if (row.first == row.last) {
      to.push_back({look, page(row.first)});
      return;
    }
    const std::string first = page(row.first), last = page(row.last);
    const std::int64_t pages = distance(row.first, row.last);
    const bool is_range = row.is_explicit || pages > (style.suffix_2p.empty() ? 1 : 0);
    if (pages == 0) {
      to.push_back({look, last});
    } else if (is_range && pages == 1 && !style.suffix_2p.empty()) {
      to.push_back({look, first + style.suffix_2p});
    } else if (is_range && pages == 2 && !style.suffix_3p.empty()) {
      to.push_back({look, first + style.suffix_3p});
    } else if (is_range && pages >= 2 && !style.suffix_mp.empty()) {
      to.push_back({look, first + style.suffix_mp});
    } else if (is_range) {
      to.push_back({look, first + style.delim_r + last});
    } else if (style.has_page_commands) {
      to.push_back({look, first});
      to.push_back({look, last});
    } else {
      to.push_back({look, first + style.delim_n + last});
    }
  }

  void put_references(std::span<ENTRY const> references) {
    std::vector<ENTRY> in_order(references.begin(), references.end());
    std::sort(in_order.begin(), in_order.end(), [](ENTRY const& a, ENTRY const& b) { return a.line < b.line; });
    std::unordered_set<std::uint32_t> put;
    for (ENTRY const& entry : in_order) {
      if (!put.insert(entry.look).second) continue;
      made.pieces.push_back({&index.looks[entry.look], entry.page == ENTRY::no_page ? "" : page(entry.page)});
    }
  }
};

} // namespace

PAGE_LIST make_page_list(INDEX const& index, std::span<ENTRY const> entries, STYLE const& style, bool makes_ranges,
                         MESSAGES& messages) {
  return LISTER(index, style, makes_ranges, messages).list(entries);
}
