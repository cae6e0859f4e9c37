#pragma once

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <new>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "lib/diagnostics/Error_messager.h"

/// A new empty directory that is the working directory for as long as this object lives, and is gone afterwards.
struct SCRATCH_DIRECTORY {
  SCRATCH_DIRECTORY() { std::filesystem::current_path(path); }
  ~SCRATCH_DIRECTORY() {
    std::filesystem::current_path(before);
    std::filesystem::remove_all(path);
  }

  std::filesystem::path path = mkdtemp((std::filesystem::temp_directory_path() / "kindex-XXXXXX").string().data());
  std::filesystem::path before = std::filesystem::current_path();
};

/// The bytes of a file; empty when it cannot be read.
inline std::string contents(std::filesystem::path const& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios_base::binary).rdbuf();
  return bytes.str();
}

inline void put(std::filesystem::path const& path, std::string const& bytes) {
  std::ofstream(path, std::ios_base::binary) << bytes;
}

/// What stands in for `new`, `delete` and the system calls of this program: it counts them and lets one fail.
struct FAULTS {
  static inline int calls_left = 0;    // up to the one that fails, which included; none does from 0 on
  static inline bool possible = false; // whether it does now
  static inline std::size_t bytes = 0; // asked of `new` so far
  static inline long live = 0;         // allocations that are not freed yet

  /// What the shell's `sort` gives to the index builder; null has `system` run its commands.
  static inline std::string const* sorted = nullptr;
};

/// Makes the call, in which what has to fail does. False if that was for lack of memory.
template <class CALL>
bool under_test(CALL const& call) {
  try {
    FAULTS::possible = true;
    call();
    FAULTS::possible = false;
  } catch (std::bad_alloc const&) {
    FAULTS::possible = false;
    return false;
  }
  return true;
}

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
