#pragma once

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>

/// An array that owns its elements and counts those in use, the root of the four containers. `T` needs a default
/// constructor and assignment, and `==` for the three containers that can be searched, even if nobody searches.
///
/// New elements are made by `new T[]`: texts are empty, but integers undefined. Spare places hold elements, too; a
/// spare `STRING` takes 512 bytes like any other. Containers cannot be copied: pass them by reference or pointer.
///
/// Pointers and references to elements are valid until the storage is next replaced. Indexes and sizes are not checked.
/// An operation that cannot get memory throws std::bad_alloc. `add` then leaves the container as it was; the others,
/// which release the old elements first, leave it empty and without storage.
template <class T>
class ARRAY {
public:
  /// The element storage, from `new T[]` and owned; null when there is none.
  T* ptr = nullptr;

  /// The number of elements in use; zero or less means empty.
  int size = 0;

  ARRAY() = default;
  ARRAY(ARRAY const&) = delete;
  ARRAY& operator=(ARRAY const&) = delete;

  virtual ~ARRAY() { release(); }

  /// Releases the storage and adopts p, which comes from `new T[]` or is null, as the storage of n elements.
  virtual void set_ptr_and_size(T* p, int n) {
    if (p != ptr) release();
    ptr = p;
    size = n;
  }

  /// Changes the count alone; the caller keeps n within the storage.
  virtual void set_size(int n) { size = n; }

  /// Drops all elements and makes n new ones; no storage if n is 0 or less. `resize(0)` empties any container.
  virtual void resize(int n) {
    release();
    if (n >= 1) allocate(n);
    size = n;
  }

  /// As `resize`, but with storage, of length zero, also for n = 0. REQUIRES: n is not negative.
  virtual void hard_resize(int n) {
    assert(n >= 0);
    release();
    allocate(n);
    size = n;
  }

  T& operator[](int index) { return ptr[index]; }
  T const& operator[](int index) const { return ptr[index]; }

  T* begin() { return ptr; }
  T* end() { return ptr + count(); }
  T const* begin() const { return ptr; }
  T const* end() const { return ptr + count(); }

protected:
  int count() const { return std::max(size, 0); }

  void allocate(int n) { ptr = new T[static_cast<std::size_t>(n)]; }

  void release() {
    delete[] ptr;
    ptr = nullptr;
    size = 0;
  }

  /// Moves to new storage of `capacity` elements and appends x, which may be an element: it is copied before they go.
  void grow(int capacity, T const& x) {
    const int used = count();
    std::unique_ptr<T[]> fresh(new T[static_cast<std::size_t>(capacity)]);
    std::copy(ptr, ptr + used, fresh.get());
    fresh[static_cast<std::size_t>(used)] = x;
    delete[] ptr;
    ptr = fresh.release();
    size = used + 1;
  }
};

/// An `ARRAY` that can be searched, from index 0 upward, for elements equal to a value.
template <class T>
class CARRAY : public ARRAY<T> {
public:
  virtual bool is_in(T const& x) const { return position(x) >= 0; }

  /// As `is_in(x)`, and sets index to the first position of x; without x, index stays as it is.
  virtual bool is_in(T const& x, int& index) const {
    const int found = position(x);
    if (found >= 0) index = found;
    return found >= 0;
  }

  /// The number of elements equal to x.
  virtual int count_occurrence(T const& x) const {
    return static_cast<int>(std::count_if(this->ptr, this->ptr + this->count(), equals(x)));
  }

  /// The position of the first element equal to x, or -1.
  virtual int first_occurrence(T const& x) const { return position(x); }

private:
  /// Elements stand on the left and are not const, for types whose `==` is a member that is not const.
  static auto equals(T const& x) {
    static_assert(std::is_invocable_r_v<bool, std::equal_to<>, T&, T const&>,
                  "CARRAY, LIST and BUFF_LIST need an operator== for their elements");
    return [&x](T& element) { return static_cast<bool>(element == x); };
  }

  int position(T const& x) const {
    T* const end = this->ptr + this->count();
    T* const found = std::find_if(this->ptr, end, equals(x));
    return found == end ? -1 : static_cast<int>(found - this->ptr);
  }
};

/// A list without spare room: each `add` copies the whole list. For short lists.
template <class T>
class LIST : public CARRAY<T> {
public:
  /// Appends x, which may be an element of this list, in storage of exactly one element more.
  void add(T const& x) { this->grow(this->count() + 1, x); }
};

/// A list with spare room that grows by a fixed step. For long lists. A fixed step makes very long ones slow; for these
/// double the room before each `add`: if (l.size == l.capacity) l.increment = l.capacity;
template <class T>
class BUFF_LIST : public CARRAY<T> {
public:
  /// How many elements the storage holds.
  int capacity;

  /// How many places `add` makes when the storage is full; at least 1.
  int increment;

  /// Allocates storage for `initial_capacity` elements (below 0 counts as 0); a step below 1 counts as 1.
  BUFF_LIST(int initial_capacity = 16, int step = 16)
      : capacity(std::max(initial_capacity, 0)), increment(std::max(step, 1)) {
    this->allocate(capacity);
  }

  /// Appends x, which may be an element of this list.
  void add(T const& x) {
    const int used = this->count();
    if (used < capacity) {
      this->ptr[used] = x;
      this->size = used + 1;
    } else {
      const int wider = used + std::clamp(increment, 1, INT_MAX - used);
      this->grow(wider, x);
      capacity = wider;
    }
  }

  /// Keeps storage and elements if n fits the capacity; otherwise drops them for n new ones, without spare room.
  void resize(int n) override {
    if (n <= capacity) {
      this->size = n;
    } else {
      BUFF_LIST::hard_resize(n);
    }
  }

  void hard_resize(int n) override {
    capacity = 0;
    ARRAY<T>::hard_resize(n);
    capacity = n;
  }

  void set_ptr_and_size(T* p, int n) override {
    ARRAY<T>::set_ptr_and_size(p, n);
    capacity = std::max(n, 0);
  }
};
