#include "kmakeindex/Output.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// How many characters a text in UTF-8 has.
long length(std::string_view text) {
  const auto begins_character = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  return static_cast<long>(std::count_if(text.begin(), text.end(), begins_character));
}

} // namespace

std::string OUTPUT::write(std::string const& first_page) {
  if (index.order.empty()) return "";
  out = style.preamble;
  if (!first_page.empty()) out += style.setpage_prefix + first_page + style.setpage_suffix;
  auto heading = index.headings.begin();
  for (std::size_t i = 0; i < index.order.size(); ++i) {
    if (heading != index.headings.end() && heading->begin == i) write_heading(*heading++);
    write_item(index.items[index.order[i]]);
  }
  end_list();
  out += style.postamble;
  return std::move(out);
}

void OUTPUT::write_heading(HEADING const& heading) {
  end_list();
  if (last_item != nullptr) out += style.group_skip;
  if (style.headings_flag == 0) return;
  const bool is_positive = style.headings_flag > 0;
  if (heading.group == GROUP::WORDS) {
    out += style.heading_prefix + (is_positive ? heading.letter : lower_case(heading.letter));
  } else {
    out += style.sign_heading_prefix.value_or(style.heading_prefix);
    if (heading.group == GROUP::SYMBOLS) out += is_positive ? style.symhead_positive : style.symhead_negative;
    if (heading.group == GROUP::NUMBERS) out += is_positive ? style.numhead_positive : style.numhead_negative;
  }
  out += style.heading_suffix;
}

void OUTPUT::write_item(ITEM const& item) {
  const std::size_t begin = next_entry;
  const auto is_own = [&](ENTRY const& entry) { return &index.items[entry.item] == &item; };
  while (next_entry < index.entries.size() && is_own(index.entries[next_entry])) ++next_entry;
  std::string const& before = before_item(item);
  end_line();
  line = std::exchange(pending_delimiter, "") + before;
  line += index.text_of(item);
  line_length = length(line);
  last_item = &item;
  last_has_entries = next_entry > begin;
  last_is_single = false;
  if (!last_has_entries) return;
  const PAGE_LIST list =
      make_page_list(index, std::span(index.entries).subspan(begin, next_entry - begin), style, makes_ranges, messages);
  last_is_single = list.is_single;
  write_pages(item, list);
}

/// What stands before an item depends on the one before: on its level, and on whether it has one entry, several or
/// none.
std::string const& OUTPUT::before_item(ITEM const& item) const {
  if (item.level == 0) return style.item_0;
  const bool is_first = last_item->level < item.level;
  if (is_first && !last_has_entries) return item.level == 1 ? style.item_x1 : style.item_x2;
  if (is_first && last_is_single) return item.level == 1 ? style.item_01 : style.item_12;
  return item.level == 1 ? style.item_1 : style.item_2;
}

void OUTPUT::write_pages(ITEM const& item, PAGE_LIST const& list) {
  if (list.pieces.empty()) return;
  const std::array<std::string const*, 3> delimiters = {&style.delim_0, &style.delim_1, &style.delim_2};
  add_to_line(*delimiters.at(item.level));
  for (PAGES const& pages : list.pieces) {
    add_piece(with_commands(pages));
    if (&pages != &list.pieces.back()) add_to_line(style.delim_n);
  }
  pending_delimiter = style.delim_t;
}

void OUTPUT::add_to_line(std::string const& text) {
  line += text;
  line_length += length(text);
}

void OUTPUT::add_piece(std::string const& text) {
  if (line_length + length(text) > style.line_max) {
    out += line + '\n';
    line = style.indent_space;
    line_length = style.indent_length + length(line);
  }
  add_to_line(text);
}

void OUTPUT::end_line() {
  out += line;
  line.clear();
}

void OUTPUT::end_list() {
  end_line();
  out += std::exchange(pending_delimiter, "");
}

std::string OUTPUT::with_command(std::string const& command, std::string const& pages) const {
  return style.encap_prefix + command + style.encap_infix + pages + style.encap_suffix;
}

std::string OUTPUT::with_commands(PAGES const& pages) const {
  LOOK const& look = *pages.look;
  std::string text = pages.text;
  const bool has_page_command = style.has_page_commands && !look.is_reference;
  if (has_page_command) text = with_command("hyperpage", text);
  if (look.is_principal) {
    text = with_command("indexprincipal", text);
  } else if (has_page_command) {
    text = with_command("indexpage", text);
  }
  return look.command.empty() ? text : with_command(look.command, text);
}
