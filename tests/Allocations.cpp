#include "tests/Allocations.h"

#include <cstdlib>
#include <iterator>

void* operator new(std::size_t size) {
  if (ALLOCATIONS::watching) {
    if (--ALLOCATIONS::until_failure == 0) throw std::bad_alloc();
    if (ALLOCATIONS::count < std::ssize(ALLOCATIONS::sizes)) ALLOCATIONS::sizes[ALLOCATIONS::count++] = size;
  }
  if (void* const p = std::malloc(size)) return p;
  throw std::bad_alloc();
}

void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return std::malloc(size); }

void operator delete(void* p) noexcept {
  if (ALLOCATIONS::watching && p != nullptr) ++ALLOCATIONS::freed;
  std::free(p);
}

void* operator new[](std::size_t size) { return operator new(size); }
void operator delete[](void* p) noexcept { operator delete(p); }
void operator delete[](void* p, std::size_t) noexcept { operator delete(p); }
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }
