#pragma once

#include <string>

#include "kmakeindex/Index.h"
#include "kmakeindex/Page_list.h"
#include "kmakeindex/Style.h"

/// Writes an index that is in order, as the style says. Ranges and references that do not fit are told.
class OUTPUT {
public:
  OUTPUT(INDEX const& of, STYLE const& with, bool with_ranges, MESSAGES& to)
      : index(of), style(with), makes_ranges(with_ranges), messages(to) {}

  /// The whole text; empty if there are no items. `first_page` is the number of the page that it begins on, or empty.
  std::string write(std::string const& first_page);

private:
  INDEX const& index;
  STYLE const& style;
  bool makes_ranges;
  MESSAGES& messages;
  std::string out;               ///< lines that are complete
  std::string line;              ///< the one that is not
  long line_length = 0;          ///< its characters, and what else counts
  std::string pending_delimiter; ///< after the last list of pages
  std::size_t next_entry = 0;    ///< the first one of the items that are still to come
  ITEM const* last_item = nullptr;
  bool last_has_entries = false;
  bool last_is_single = false;

  void write_heading(HEADING const& heading);
  void write_item(ITEM const& item);
  void write_pages(ITEM const& item, PAGE_LIST const& list);
  void add_to_line(std::string const& text);
  void add_piece(std::string const& text);
  void end_line();
  void end_list();
  std::string const& before_item(ITEM const& item) const;
  std::string with_command(std::string const& command, std::string const& pages) const;
  std::string with_commands(PAGES const& pages) const;
};
