#include <sys/stat.h>

#include "lib/files/File.h"
#include "lib/files/Stream_characters.h"
#include "project/Kdirscanner.h"
#include "tests/Model.h"

int kindex_main(int argc, char* argv[]);

namespace {

using std::string;

/// The fields of the sorted entries, as far as they are whole. `errors` tells of the long ones.
std::vector<string> fields_of(string const& sorted, string& errors) {
  std::vector<string> fields;
  for (std::size_t at = sorted.find('{'); at != string::npos; at = sorted.find('{', at)) {
    string text;
    for (int depth = 1; ++at < sorted.size(); text += sorted[at]) {
      if (sorted[at] == '{') ++depth;
      if (sorted[at] == '}' && --depth == 0) break;
    }
    string start = text.substr(0, 40);
    for (char& c : start) c = c >= 0 && c < 32 ? '?' : c;
    if (text.size() > 999) errors += "kindex: field cut at 999 bytes: " + start + '\n';
    if (at < sorted.size()) fields.emplace_back(text.substr(0, 999).c_str());
  }
  return fields;
}

string heading_of(string const& key) {
  if (key[0] == '\\') return "Param\\'etr\\'e";
  return (key[0] == '_' || key[0] == '{' ? "\\" : "") + string(key.empty() ? 0 : 1, char(toupper(key[0])));
}

string index_of(std::vector<string> const& fields) {
  string index, heading, last;
  std::vector<int> pages;
  for (std::size_t i = 0; i + 1 < fields.size(); i += 2) {
    const bool principal = fields[i].ends_with('*');
    const string key = fields[i].substr(0, fields[i].size() - (principal ? 1 : 0));
    if (i == 0 || key != last) {
      index += i == 0 ? "" : "}\n";
      index += heading_of(key) == heading ? "" : "\\indexletter{" + heading_of(key) + "}\n";
      index += "\\indexitem{" + key + "}{";
      heading = heading_of(key);
      last = key;
      pages.clear();
    }
    const int page = int(std::clamp<long>(std::strtol(fields[i + 1].c_str(), nullptr, 10), INT_MIN, INT_MAX));
    if (std::find(pages.begin(), pages.end(), page) != pages.end()) continue;
    index += principal ? "{\\bf " + std::to_string(page) + "} " : std::to_string(page) + ' ';
    pages.push_back(page);
  }
  return index.empty() ? "" : index + "}\n";
}

} // namespace

string index_difference(string const& program) {
  static char name[] = "kindex", *arguments[] = {name, nullptr};
  const string sorted = PROGRAM{program}.text(program.size());
  string errors;
  const string expected = index_of(fields_of(sorted, errors));
  const std::ostringstream said;
  std::streambuf* const standard = std::cerr.rdbuf(said.rdbuf());
  int status = -1;
  FAULTS::sorted = &sorted;
  under_test([&] { status = kindex_main(1, arguments); });
  FAULTS::sorted = nullptr;
  std::cerr.rdbuf(standard);
  return difference(shown(status, contents("kindex.tex"), said.str()), shown(0, expected, errors));
}

namespace {

/// A reader that takes its characters one by one, with the stream's own functions.
struct PLAIN_READER : ASCII_FILE {
  using ASCII_FILE::ASCII_FILE;

  bool starts_comment(char c) const { return skip_comments != 0 && (c == '%' || c == '#'); }

  STRING getSTRING() {
    for (;; add_def()) {
      if (included_file != nullptr) {
        STRING token = static_cast<PLAIN_READER*>(included_file)->getSTRING();
        success = included_file->ok;
        if (token != "EOF") return def_mask(token);
        delete std::exchange(included_file, nullptr);
      }
      current_file = this;
      line_changed = false;
      set_position();
      char c = ' ';
      while (get(c) && (starts_comment(c) || allowed_character(c) == 0)) {
        line_changed = line_changed || starts_comment(c) || ends_line(c);
        if (starts_comment(c)) empty_line();
      }
      string text;
      for (; !fail() && allowed_character(c) == 1; get(c)) text += c;
      if (!text.empty()) eof() ? clear() : back1();
      if (text == "#define") continue;
      success = !text.empty();
      STRING token(success ? text.c_str() : "EOF");
      return success ? def_mask(token) : token;
    }
  }

  void include_file() {
    auto* const inner = new PLAIN_READER(getSTRING().str, 0);
    inner->parent_file = this;
    delete std::exchange(included_file, inner);
  }
};

/// Does the operation and gives its result and all that can be seen of the file and those it includes then.
template <class FILE>
string after(std::size_t operation, FILE& f) {
  FILE* innermost = &f;
  while (innermost->included_file != nullptr) innermost = static_cast<FILE*>(innermost->included_file);
  string result;
  switch (operation) {
  case 0: innermost->include_file(); break;
  case 1: innermost->skip_comments ^= 1; break;
  case 2: f.back(); break;
  case 3: f.rewind(); break;
  default: result = f.getSTRING().str;
  }
  for (ASCII_FILE* file = &f; file != nullptr; file = file->included_file) {
    result +=
        shown("", file->name, file->ok, file->line_changed, file->previous_pos, file->get_position(), file->fail());
  }
  for (auto const* words : {&f.def_keys, &f.def_values}) {
    for (STRING const& word : *words) result += shown(word);
  }
  return result;
}

} // namespace

string reading_difference(string const& program) {
  PROGRAM in{program};
  for (char const* const name : {"f1", "f2", "f0"}) put(name, in.text(in.below(in.below(2) == 0 ? 60 : 6)));
  string found, expected, *reports = &expected;
  const NOTING_MESSAGER messager([&](char const* text) { *reports += shown(text, ASCII_FILE::current_file->ok); });
  ASCII_FILE ours("f0", 0);
  PLAIN_READER plain("f0", 0);
  while (!in.ended() && found == expected) {
    const std::size_t operation = in.below(14);
    found = expected = "";
    reports = &expected;
    expected += after(operation, plain);
    reports = &found;
    under_test([&] { found += after(operation, ours); });
  }
  return difference(found, expected);
}

/// The names that the lines of a file include.
static std::vector<string> included(string const& bytes) {
  std::vector<string> names;
  std::istringstream lines(bytes);
  for (string line; std::getline(lines, line) && (!lines.eof() || line.size() > 4095);) {
    if (line.size() > 4095) lines.setstate(std::ios_base::failbit); // it is the last one
    line = line.substr(0, 4095);
    const std::size_t directive = line.find("#include"), close = line.find('>', directive);
    if (close == string::npos) continue;
    string name = line.substr(directive, close - directive);
    name.erase(0, name.find('<'));
    std::erase_if(name, [](char c) { return c == '<' || c == ' '; });
    name = name.substr(0, 1023).c_str();
    names.push_back(name.substr(name.rfind('/') + 1));
  }
  return names;
}

string scanner_difference(string const& program) {
  static char const* const names[] = {"A", "Zb", "c", "[", "@"};
  static char const* const endings[] = {"", "", ".c", ".k", ".h", ".f", ".F", "x"};
  static const std::vector<string> suffixes[] = {{".c", ".k"}, {".f", ".F"}, {".h"}, {".h", ".f", ".F"}};
  PROGRAM in{program};
  KDIR_SCANNER scanner;
  STRING path("scanned");
  while (!in.ended()) {
    const string name = names[in.below(5)] + string(endings[in.below(8)]) + endings[in.below(8)];
    std::filesystem::remove_all("scanned");
    std::filesystem::create_directory("scanned");
    const std::size_t entry = in.below(9), kind = in.below(4);
    if (entry == 0) mkfifo(("scanned/" + name).c_str(), 0600); // opening it would wait for ever
    if (entry == 1) std::filesystem::create_directory("scanned/" + name);
    if (entry > 1) put("scanned/" + name, in.text(in.below(60)));
    scanner.scan_headers = kind > 1;
    scanner.fortran = kind % 2 == 1;
    scanner.all_names = in.below(2) == 1;
    scanner.skip_includes = in.below(4) == 1;
    if (!under_test([&] { scanner.do_scan(path); })) return "no memory";

    string found, expected;
    for (STRING const& file : scanner.found_files) found += shown("file", file);
    for (auto const* list : scanner.includes) {
      for (STRING const& include : *list) found += shown("includes", include);
    }
    const auto wanted = [&](string const& text) { return scanner.all_names || (text[0] >= 'A' && text[0] <= 'Z'); };
    const auto inside = [&](string const& suffix) { return name.find(suffix) != string::npos; };
    const auto suffix = std::find_if(suffixes[kind].begin(), suffixes[kind].end(), inside);
    if (suffix != suffixes[kind].end() && name.find(*suffix) + 2 == name.size() && wanted(name)) {
      expected = shown("file", name);
      for (auto const& include : included(entry > 1 && !scanner.skip_includes ? contents("scanned/" + name) : "")) {
        if (wanted(include)) expected += shown("includes", include);
      }
    }
    if (found != expected) return difference(found, expected);
  }
  return "";
}
