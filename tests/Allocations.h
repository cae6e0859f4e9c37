#pragma once

#include <cstddef>
#include <new>
#include <vector>

/// Watches this program's allocations while `watching`: their sizes, and on request the failure of one of them.
struct ALLOCATIONS {
  static inline bool watching = false;
  static inline int until_failure = -1; // counts down; the one that makes it 0 fails
  static inline int count = 0;
  static inline int freed = 0;
  static inline std::size_t sizes[64] = {};
};

/// The sizes that `action` asks of `new`, in order.
template <class ACTION>
std::vector<std::size_t> sizes_asked(ACTION action) {
  ALLOCATIONS::count = ALLOCATIONS::freed = 0;
  ALLOCATIONS::watching = true;
  action();
  ALLOCATIONS::watching = false;
  return {ALLOCATIONS::sizes, ALLOCATIONS::sizes + ALLOCATIONS::count};
}

/// Runs `action`, its n-th allocation failing; tells whether it got that far and threw.
template <class ACTION>
bool throws_at_allocation(int n, ACTION action) {
  ALLOCATIONS::until_failure = n;
  bool thrown = false;
  sizes_asked([&] {
    try {
      action();
    } catch (std::bad_alloc const&) {
      thrown = true;
    }
  });
  ALLOCATIONS::until_failure = -1;
  return thrown;
}
