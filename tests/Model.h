#pragma once

#include <functional>
#include <iomanip>
#include <sstream>
#include <string>

#include "lib/diagnostics/Error_messager.h"
#include "tests/Scratch_directory.h"
#include "tests/Stand_ins.h"

// Each subsystem has a plain model. These run a program of operations, which bytes stand for, on both, with an empty
// working directory, and give the first difference; without one the empty text.
using DIFFERENCE_FUNCTION = std::string(std::string const& program);
DIFFERENCE_FUNCTION strings_difference, containers_difference, reading_difference, index_difference, scanner_difference;

/// Takes a program apart.
struct PROGRAM {
  std::string const bytes;
  std::size_t at = 0;

  bool ended() const { return at >= bytes.size(); }

  /// A number below n; 0 at the end.
  std::size_t below(std::size_t n) { return ended() ? 0 : static_cast<unsigned char>(bytes[at++]) % n; }

  /// What the next n bytes, as far as there are any, stand for: ASCII for itself, the others for telling pieces.
  std::string text(std::size_t n);
};

/// The values as a text, with a blank behind each.
template <class... VALUES>
std::string shown(VALUES const&... values) {
  std::ostringstream text;
  text << std::setprecision(17);
  ((text << values).put(' '), ...);
  return text.str();
}

inline std::string difference(std::string const& found, std::string const& expected) {
  return found == expected ? "" : "found:\n" + found + "\nexpected:\n" + expected + '\n';
}

/// Hands errors to `note`, which may return, for as long as it lives.
struct NOTING_MESSAGER : ERROR_MESSAGER {
  std::function<void(char const*)> note;
  ERROR_MESSAGER* before = active_error_messager;
  explicit NOTING_MESSAGER(std::function<void(char const*)> n) : note(std::move(n)) { reassign_error_messager(this); }
  ~NOTING_MESSAGER() override { reassign_error_messager(before); }
  void err_message(STRING text, char const*, int) override { note(text.str); }
  using ERROR_MESSAGER::err_message;
};
