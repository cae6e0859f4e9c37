#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "kmakeindex/Style.h"

/// A key: up to three levels, and what is to become of the page.
struct KEY {
  struct LEVEL {
    std::string place;
    std::string text; ///< what is printed
    bool has_text;    ///< whether it is given besides the place; else both are the same
  };
  enum class RANGE : std::uint8_t { NONE, BEGIN, END };

  std::vector<LEVEL> levels; ///< none if the key is empty
  std::string command;       ///< around the page, without its backslash
  bool is_principal = false;
  RANGE range = RANGE::NONE;

  /// Whether the command refers to other keys, so that the page does not count.
  bool is_reference() const;
};

/// Is told what is wrong with a key.
using COMPLAIN = std::function<void(std::string_view what)>;

/// How keys are to be read.
struct KEY_SYNTAX {
  STYLE const& style;
  bool is_typed;    ///< a key is one item, printed as it was typed
  bool has_package; ///< the document uses the LaTeX package
  bool compresses_blanks;

  KEY_SYNTAX(STYLE const& with, bool typed, bool with_package, bool compressing);

  /// At the end of a key.
  bool star_is_principal() const { return is_typed || has_package; }

  /// Whether the key is its only level, place and text, since it has nothing that means anything.
  bool is_plain(std::string_view key) const;

private:
  std::array<bool, 256> has_meaning = {}; ///< by character
};

KEY read_key(std::string_view key, KEY_SYNTAX const& syntax, COMPLAIN const& complain);

/// For "see {fruit!apple}" the text in the braces.
std::string target_of_reference(std::string_view command);
