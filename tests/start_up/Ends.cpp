// Has the other file report before `main` or after it, as the variable REPORT says. This file includes no header of the
// library, so nothing of the library is built for the sake of its static object.

#include <cstdlib>
#include <string_view>

void read_list();

namespace {

void report_if(std::string_view end) {
  char const* const wanted = std::getenv("REPORT");
  if (wanted != nullptr && wanted == end) read_list();
}

const struct ENDS {
  ENDS() { report_if("before"); }
  ~ENDS() { report_if("after"); }
} ends;

} // namespace

int main() { return 0; }
