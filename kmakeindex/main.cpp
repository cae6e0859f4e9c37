#include <charconv>
#include <deque>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <new>
#include <set>

#include "kmakeindex/Files.h"
#include "kmakeindex/Index.h"
#include "kmakeindex/Options.h"
#include "kmakeindex/Output.h"
#include "kmakeindex/Raw_index.h"
#include "lib/files/Standard_streams.h"

namespace fs = std::filesystem;

namespace {

/// The number of the last page in a log of TeX, which has each one after a bracket.
std::optional<unsigned> last_page(std::string const& log) {
  for (std::size_t end = log.size(); end > 0;) {
    const std::size_t bracket = log.rfind('[', end - 1);
    if (bracket == std::string::npos) break;
    unsigned page = 0;
    if (std::from_chars(&log[bracket + 1], log.data() + log.size(), page).ec == std::errc()) return page;
    end = bracket;
  }
  return std::nullopt;
}

/// One run, in the order of the data.
class RUN {
public:
  explicit RUN(OPTIONS const& of) : options(of) {}

  void make_indexes() {
    read_raw_indexes();
    if (!options.transcript.empty()) {
      check_no_raw_index(options.transcript);
      messages.open_transcript(options.transcript);
    }
    choose_style();
    const ORDER language = choose_language();
    read_all_entries();
    const std::string page = first_page();
    std::map<std::string, std::string> texts; // by the names of the files: all are made before the first is written
    for (auto& [name, index] : indexes) {
      index.arrange(language, options.letter_order);
      index.check_references();
      items += index.items.size();
      entries += index.entries.size();
      texts[path_of_index(name)] = digest_line() + OUTPUT(index, style, options.makes_ranges, messages).write(page);
    }
    for (auto const& [path, text] : texts) write_index(path, text);
    messages.tell(summary(), options.quiet);
    messages.close_transcript();
  }

private:
  OPTIONS const& options;
  MESSAGES messages;
  std::deque<RAW_INDEX> raw_indexes;
  std::string base; ///< the first raw index without its .idx; empty: standard input
  STYLE style;
  std::optional<RAW_INDEX::PACKAGE_LINE> package_line; ///< of the first raw index
  std::map<std::string, INDEX, std::less<>> indexes;   ///< by their names
  std::set<std::string, std::less<>> left_out;         ///< names of indexes that are told
  std::size_t items = 0, entries = 0;

  void read_raw_indexes() {
    for (std::string const& name : options.names) {
      const std::string path = is_file(name) ? name : name + ".idx";
      if (&name == &options.names.front()) base = is_file(name) ? fs::path(name).replace_extension().string() : name;
      raw_indexes.push_back({path, read_file(path)});
    }
    if (options.reads_input) raw_indexes.push_back({"standard input", read_input()});
    package_line = raw_indexes.front().package_line();
  }

  void choose_style() {
    if (package_line) style = package_style();
    std::vector<std::string> names = options.styles;
    if (names.empty() && options.names.size() == 1 && is_file(base + ".mst")) names.push_back(base + ".mst");
    if (!names.empty()) style.page_precedence = STYLE::page_precedence_of_files;
    for (std::string const& name : names) read_style(name, style, messages);
  }

  ORDER choose_language() {
    if (options.language && !options.language_is_of_environment) return {*options.language, options.letter_order};
    if (!options.language && !style.icu_locale.empty()) return {style.icu_locale, options.letter_order};
    const std::string language = options.language.value_or(package_line ? package_line->language : "");
    try {
      return {language, options.letter_order};
    } catch (FAILURE const& failure) {
      if (options.language_is_of_environment) {
        messages.warn(failure.what());
      } else {
        messages.warn(raw_indexes.front().name, 1, "there is no language " + language);
      }
      return {"", options.letter_order};
    }
  }

  void read_all_entries() {
    LINE line = 1;
    for (RAW_INDEX const& raw : raw_indexes) {
      messages.add_file(raw.name, line);
      const auto said = raw.package_line();
      const bool is_typed = options.typed_keys.value_or(said && said->typed_keys);
      const KEY_SYNTAX syntax(style, is_typed, said.has_value(), options.compresses_blanks);
      line += read_entries(raw, line, style, messages, [&](RAW_ENTRY const& entry, LINE at) {
        if (INDEX* const index = find_index(entry.index_name, at)) index->add(entry.key, entry.page, at, syntax);
      });
    }
    if (indexes.empty()) indexes.try_emplace("", style, messages);
  }

  /// Null, which is told once, if there can be no index of that name.
  INDEX* find_index(std::string_view name, LINE line) {
    const auto found = indexes.find(name);
    if (found != indexes.end()) return &found->second;
    if (name.empty() || can_be_file(std::string(name))) {
      return &indexes.try_emplace(std::string(name), style, messages).first->second;
    }
    if (left_out.emplace(name).second) {
      messages.warn(line, "the index " + shown(name) + " is left out: there can be no file of that name");
    }
    return nullptr;
  }

  bool can_be_file(std::string const& name) const {
    if (base.empty() && options.index.empty()) return false; // on standard output there is one index
    constexpr std::size_t most_bytes = 255;
    const bool has_sign = name.find('/') != std::string::npos || name.find('\0') != std::string::npos;
    return !has_sign && fs::path(path_of_index(name)).filename().string().size() <= most_bytes;
  }

  /// The path of the file of an index; empty for standard output.
  std::string path_of_index(std::string const& name) const {
    if (options.index.empty()) {
      if (options.reads_input) return "";
      return base + (name.empty() ? "" : '-' + name) + ".ind";
    }
    if (name.empty()) return options.index;
    const fs::path path(options.index);
    return fs::path(path).replace_extension().string() + '-' + name + path.extension().string();
  }

  void check_no_raw_index(std::string const& path) const {
    std::error_code unknown;
    for (RAW_INDEX const& raw : raw_indexes) {
      if (!fs::equivalent(path, raw.name, unknown)) continue;
      throw FAILURE("kmakeindex: cannot write " + path + ": it is the raw index");
    }
  }

  void write_index(std::string const& path, std::string const& text) const {
    if (path.empty()) return write_output(text);
    check_no_raw_index(path);
    write_file(path, text);
  }

  std::string digest_line() const {
    return package_line ? "% kindex digest=" + raw_indexes.front().digest() + '\n' : "";
  }

  /// The number of the page that the index begins on: as the command line says, or after the last page in the log.
  std::string first_page() const {
    std::string const& wanted = options.first_page;
    if (wanted != "any" && wanted != "odd" && wanted != "even") return wanted;
    const std::string path = base + ".log";
    if (base.empty() || !is_file(path)) return "";
    const std::optional<unsigned> last = last_page(read_file(path));
    if (!last) return "";
    const unsigned next = *last + 1;
    const bool fits = wanted == "any" || (next % 2 != 0) == (wanted == "odd");
    return std::to_string(fits ? next : next + 1);
  }

  std::string summary() const {
    const auto count = [](std::size_t n, std::string const& one, std::string const& many) {
      return std::to_string(n) + ' ' + (n == 1 ? one : many);
    };
    return "kmakeindex: " + count(entries, "entry", "entries") + ", " + count(items, "item", "items") + ", " +
           count(static_cast<std::size_t>(messages.warnings), "warning", "warnings");
  }
};

} // namespace

int main(int argc, char* argv[]) {
  prepare_standard_streams();
  try {
    const OPTIONS options = read_options(argc, argv);
    RUN(options).make_indexes();
    return 0;
  } catch (std::bad_alloc const&) {
    std::cerr << "kmakeindex: out of memory\n";
  } catch (FAILURE const& failure) {
    std::cerr << failure.what() << '\n';
  } catch (std::exception const& error) {
    std::cerr << "kmakeindex: " << error.what() << '\n';
  }
  return 1;
}
