#include <algorithm>

#include "lib/strings/Containers.h"
#include "tests/Trial.h"

namespace {

struct NUMBER {
  int n = 0;
  bool operator==(NUMBER const& other) { return n == other.n; } // not const, as it may be
};

/// A list beside a vector of all the places that it has, spare ones included.
template <class CONTAINER>
class CONTAINERS {
public:
  /// `growth` is by how many places the list grows; only with more than one does it keep spare ones.
  CONTAINERS(TRIAL& t, char const* kind, CONTAINER& list, std::size_t spare, std::size_t places)
      : trial(t), name(kind), ours(list), all(spare), growth(places) {}

  void step() {
    n = trial.below(9);
    i = static_cast<int>(n);
    number.n = i;
    fitting = std::min(n, all.size());
    trial.subject = name;
    trial.do_one_of(operations, std::to_string(n));
    std::string found, expected;
    for (NUMBER const& element : ours) found += std::to_string(element.n) + ' ';
    std::for_each(all.begin(), end(), [&](int element) { expected += std::to_string(element) + ' '; });
    trial.compare("elements", found, expected);
    if constexpr (std::is_same_v<CONTAINER, BUFF_LIST<NUMBER>>) trial.compare("capacity", ours.capacity, all.size());
  }

private:
  std::vector<int>::iterator end() { return all.begin() + static_cast<std::ptrdiff_t>(size); }
  int x() const { return n < size ? all[n] : i; } // one that is there, or another one
  long place() { return std::find(all.begin(), end(), x()) - all.begin(); }
  bool has() { return place() < static_cast<long>(size); }

  void renew(std::size_t count) {
    all.assign(count, 0);
    size = count;
  }

  void resize(std::size_t count) {
    if (growth == 1 || count > all.size()) renew(count);
    size = count;
  }

  void add() {
    const int added = x();
    if (growth == 1 || size == all.size()) all.resize(size + growth);
    all[size++] = added;
  }

  int index_of_is_in() {
    int index = -7;
    ours.is_in({x()}, index);
    return index;
  }

  TRIAL& trial;
  char const* const name;
  CONTAINER& ours;
  std::vector<int> all;
  std::size_t size = 0;
  const std::size_t growth;
  std::size_t n = 0;       // the operand
  int i = 0;               // the same
  NUMBER number;           // the same
  std::size_t fitting = 0; // the same where there are that many places

  const std::vector<OPERATION> operations = {
      {"add", [&] { ours.add(n < size ? ours[i] : number); }, [&] { add(); }},
      {"resize", [&] { ours.resize(i); }, [&] { resize(n); }},
      {"hard_resize", [&] { ours.hard_resize(i); }, [&] { renew(n); }},
      {"resize to a negative size", [&] { ours.resize(-i); }, [&] { resize(0); }},
      {"set_size", [&] { ours.set_size(fitting == 0 ? -i : static_cast<int>(fitting)); }, [&] { size = fitting; }},
      {"set_ptr_and_size", [&] { ours.set_ptr_and_size(n == 0 ? nullptr : new NUMBER[n], i); }, [&] { renew(n); }},
      {"set_ptr_and_size, the same ptr", [&] { ours.set_ptr_and_size(ours.ptr, static_cast<int>(fitting)); },
       [&] {
         all.resize(fitting);
         size = fitting;
       }},
      {"is_in", [&] { return ours.is_in({x()}); }, [&] { return has(); }},
      {"is_in with an index", [&] { return index_of_is_in(); }, [&] { return has() ? place() : -7; }},
      {"first_occurrence", [&] { return ours.first_occurrence({x()}); }, [&] { return has() ? place() : -1; }},
      {"count_occurrence", [&] { return ours.count_occurrence({x()}); },
       [&] { return std::count(all.begin(), end(), x()); }},
      {"size", [&] { return std::max(ours.size, 0); }, [&] { return size; }},
  };
};

} // namespace

void containers_model(TRIAL& trial) {
  LIST<NUMBER> list;
  BUFF_LIST<NUMBER> buffer(2, 3);
  BUFF_LIST<NUMBER> least(-1, -1);
  trial.compare("least capacity", least.capacity, 0);
  trial.compare("least increment", least.increment, 1);
  for (int n = 0; n < 3; ++n) least.add({n});
  trial.compare("capacity that grows by one", least.capacity, 3);
  CONTAINERS lists(trial, "LIST ", list, 0, 1);
  CONTAINERS buffers(trial, "BUFF_LIST ", buffer, 2, 3);
  while (trial.goes_on()) {
    lists.step();
    buffers.step();
  }
}
