#pragma once

#include <new>
#include <string>

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
