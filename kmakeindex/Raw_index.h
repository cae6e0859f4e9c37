#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kmakeindex/Messages.h"
#include "kmakeindex/Style.h"

/// A raw index, as LaTeX has written it.
struct RAW_INDEX {
  std::string name; ///< for messages
  std::string text;

  /// What its first line says, if that is the LaTeX package's: % kindex keys=typed language=sv
  struct PACKAGE_LINE {
    bool typed_keys = false;
    std::string language;
  };
  std::optional<PACKAGE_LINE> package_line() const;

  /// The MD5 digest of its bytes, in hexadecimal digits with capitals.
  std::string digest() const;
};

/// An entry as it stands in the text of the raw index.
struct RAW_ENTRY {
  std::string_view index_name; ///< in brackets before the key, or empty
  std::string_view key, page;
};

/// Passes each entry to `take`, with its line, of which the first is `first_line`. Tells lines that are none, and bytes
/// that are not in UTF-8. Returns how many lines there are.
LINE read_entries(RAW_INDEX const& raw, LINE first_line, STYLE const& style, MESSAGES& messages,
                  std::function<void(RAW_ENTRY const&, LINE)> const& take);
