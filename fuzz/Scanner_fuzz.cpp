#include "fuzz/Fuzzer.h"
#include "project/Kdirscanner.h"

namespace {

/// The names that the lines of a file include, one character at a time.
std::string plain_names(std::string const& bytes, bool all_names) {
  std::string names, line;
  for (const char c : bytes) {
    const bool full = line.size() == 4095;
    if (c != '\n' && !full) {
      line += c;
      continue;
    }
    const std::size_t directive = line.find("#include");
    if (directive != std::string::npos) {
      const std::string rest = line.substr(directive + 8);
      const std::size_t end = rest.find('>'), start = std::min(rest.find('<'), end);
      std::string name = end == std::string::npos ? "" : rest.substr(start, end - start);
      std::erase(name, '<'), std::erase(name, ' ');
      name = name.substr(0, 1023).c_str();
      name = name.substr(name.rfind('/') + 1);
      const bool wanted = all_names || (!name.empty() && name[0] >= 'A' && name[0] <= 'Z');
      if (end != std::string::npos && wanted) names += name + '\n';
    }
    line = "";
    if (c != '\n') break;
  }
  return names;
}

} // namespace

void check(std::string const& input) {
  std::filesystem::create_directory("scanned");
  put("scanned/Main.c", input);
  STRING directory("scanned");
  KDIR_SCANNER scanner;
  for (const bool all_names : {false, true}) {
    scanner.all_names = all_names;
    scanner.do_scan(directory);
    std::string names;
    for (STRING const& name : *scanner.includes[0]) names += name.str + std::string("\n");
    same(names, plain_names(input, all_names));
  }
}
