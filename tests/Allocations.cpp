#include <cstdlib>
#include <new>

#include "tests/Trial.h"

void* operator new(std::size_t size) {
  const bool fails = ALLOCATIONS::may_fail && --ALLOCATIONS::before_failure == 0;
  void* const p = fails ? nullptr : std::malloc(size);
  if (p == nullptr) throw std::bad_alloc();
  ALLOCATIONS::bytes += size;
  ++ALLOCATIONS::live;
  return p;
}
void operator delete(void* p) noexcept {
  if (p != nullptr) --ALLOCATIONS::live;
  std::free(p);
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return operator new(size); }
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete[](void* p) noexcept { operator delete(p); }
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }
void operator delete[](void* p, std::size_t) noexcept { operator delete(p); }
