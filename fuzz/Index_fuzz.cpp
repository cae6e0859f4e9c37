#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "fuzz/Fuzzer.h"

int kindex_main(int argc, char* argv[]);

namespace {

std::string sorted;

/// The fields of the sorted entries, in order, and the index made of them.
struct PLAIN_INDEX {
  std::size_t at = 0;
  std::string out, letter;

  bool field(std::string& text) {
    text = "";
    at = sorted.find('{', at);
    if (at == std::string::npos) return false;
    for (int depth = 1; ++at < sorted.size(); text += sorted[at]) {
      if (sorted[at] == '{') ++depth;
      if (sorted[at] == '}' && --depth == 0) break;
    }
    text = text.substr(0, 999).c_str();
    return at < sorted.size();
  }
  void item(std::string const& key, std::vector<std::pair<int, bool>> const& pages) {
    const std::string first = key.substr(0, 1);
    const std::string big(first.empty() ? 0 : 1, static_cast<char>(std::toupper(static_cast<unsigned char>(key[0]))));
    if (big != letter) {
      out += "\\indexletter{";
      out += first == "\\" ? "Param\\'etr\\'e" : first == "_" || first == "{" ? "\\" + first : big;
      out += "}\n";
    }
    letter = big;
    out += "\\indexitem{" + key + "}{";
    for (auto const& [page, principal] : pages) {
      out += principal ? "{\\bf " + std::to_string(page) + "} " : std::to_string(page) + " ";
    }
    out += "}\n";
  }
  void build() {
    std::string key, page, last;
    std::vector<std::pair<int, bool>> pages;
    for (bool first = true; field(key); first = false) {
      const bool principal = key.ends_with('*');
      if (principal) key.pop_back();
      if (!first && key != last) {
        item(last, pages);
        pages.clear();
      }
      last = key;
      if (!field(page)) break;
      const long number = std::clamp<long>(std::strtol(page.c_str(), nullptr, 10), INT_MIN, INT_MAX);
      const auto known = [&](auto const& p) { return p.first == number; };
      if (std::none_of(pages.begin(), pages.end(), known)) pages.emplace_back(static_cast<int>(number), principal);
    }
    if (!pages.empty()) item(last, pages);
  }
};

} // namespace

/// What the builder has the shell do: sort the entries, and remove them.
extern "C" int system(char const* command) {
  if (std::string(command).ends_with("oo"))
    std::string(command).starts_with("cat") ? put("oo", sorted) : (void)std::remove("oo");
  return 0;
}

void check(std::string const& input) {
  sorted = input;
  static char program[] = "kindex", name[] = "document";
  static char* arguments[] = {program, name, nullptr};
  same(std::to_string(kindex_main(2, arguments)), "0");
  PLAIN_INDEX plain;
  plain.build();
  same(contents("kindex.tex"), plain.out);
}
