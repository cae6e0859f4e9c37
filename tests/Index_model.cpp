#include <algorithm>
#include <climits>
#include <iostream>

#include "tests/Trial.h"

int kindex_main(int argc, char* argv[]);

namespace {

using std::string;

constexpr std::size_t capacity = 999;

/// What is said of a field that is cut.
string cut_message(string const& field) {
  string start = field.substr(0, 40);
  for (char& c : start) c = c >= 0 && c < 32 ? '?' : c;
  return "kindex: field cut at 999 bytes: " + start + '\n';
}

/// The fields of the sorted entries, as far as they are whole. `messages` tells of those that are cut.
std::vector<string> fields_of(string const& sorted, string& messages) {
  std::vector<string> fields;
  for (std::size_t at = sorted.find('{'); at != string::npos; at = sorted.find('{', at)) {
    string text;
    int depth = 1;
    while (++at < sorted.size()) {
      if (sorted[at] == '{') ++depth;
      if (sorted[at] == '}') --depth;
      if (depth == 0) break;
      text += sorted[at];
    }
    if (text.size() > capacity) messages += cut_message(text);
    if (depth == 0) fields.emplace_back(text.substr(0, capacity).c_str());
  }
  return fields;
}

string heading_of(string const& key) {
  if (key.empty()) return "";
  if (key[0] == '\\') return "Param\\'etr\\'e";
  if (key[0] == '_' || key[0] == '{') return string("\\") + key[0];
  return string(1, static_cast<char>(toupper(key[0])));
}

/// The pages of an item as they are written, each once.
string list_of(std::vector<string> const& fields, std::size_t begin, std::size_t end) {
  string list;
  std::vector<int> pages;
  for (std::size_t i = begin; i < end; i += 2) {
    const long number = std::strtol(fields[i + 1].c_str(), nullptr, 10);
    const int page = static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
    if (std::find(pages.begin(), pages.end(), page) != pages.end()) continue;
    pages.push_back(page);
    list += fields[i].ends_with('*') ? "{\\bf " + std::to_string(page) + "} " : std::to_string(page) + ' ';
  }
  return list;
}

string index_of(std::vector<string> const& fields) {
  const auto key_of = [](string const& field) {
    return field.substr(0, field.size() - (field.ends_with('*') ? 1 : 0));
  };
  string index, heading;
  for (std::size_t begin = 0, end = 0; begin + 1 < fields.size(); begin = end) {
    const string key = key_of(fields[begin]);
    while (end + 1 < fields.size() && key_of(fields[end]) == key) end += 2;
    if (heading_of(key) != heading) index += "\\indexletter{" + heading_of(key) + "}\n";
    heading = heading_of(key);
    index += "\\indexitem{" + key + "}{" + list_of(fields, begin, end) + "}\n";
  }
  return index;
}

string sorted; // what `sort` writes

} // namespace

/// In place of the shell's commands.
extern "C" int system(char const* command) {
  if (string(command).starts_with("cat")) {
    std::ofstream("oo") << sorted;
  } else {
    std::filesystem::remove("oo");
  }
  return 0;
}

void index_model(TRIAL& trial) {
  static char name[] = "kindex", *arguments[] = {name, nullptr};
  sorted = trial.text(1 << 20);
  string messages;
  const string expected = index_of(fields_of(sorted, messages));
  const std::ostringstream said;
  std::streambuf* const standard = std::cerr.rdbuf(said.rdbuf());
  trial.do_one_of({{"kindex", [] { return kindex_main(1, arguments); }, [] { return 0; }}}, sorted);
  std::cerr.rdbuf(standard);
  std::ostringstream index;
  index << std::ifstream("kindex.tex").rdbuf();
  trial.compare("kindex.tex", index.str(), expected);
  trial.compare("standard error", said.str(), messages);
}
