#include <cstdint>
#include <fstream>
#include <iostream>

#include "kmakeindex/Index.h"
#include "kmakeindex/Output.h"
#include "kmakeindex/Raw_index.h"
#include "tests/Trial.h"

/// Makes an index of each input: a style file and a form feed, if there is one, and the raw index. The bits of the last
/// byte are the options.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static const SCRATCH_DIRECTORY scratch;
  static const ORDER by_words("", false), by_letters("", true); // which take long to make
  std::cerr.setstate(std::ios::failbit);                        // messages are many
  const std::string input(reinterpret_cast<char const*>(data), size);
  const unsigned options = input.empty() ? 0 : static_cast<unsigned char>(input.back());
  const std::size_t style_size = input.find('\f') + 1;
  std::ofstream("style.ist") << input.substr(0, style_size);
  const RAW_INDEX raw = {"raw index", input.substr(style_size)};
  MESSAGES messages;
  messages.add_file(raw.name, 1);
  STYLE style = (options & 1) != 0 ? package_style() : STYLE();
  try {
    read_style("style.ist", style, messages);
    const bool letter_order = (options & 2) != 0;
    const KEY_SYNTAX syntax = {style, (options & 4) != 0, (options & 8) != 0, (options & 16) != 0};
    INDEX index(style, messages);
    const auto add = [&](RAW_ENTRY const& entry, LINE line) { index.add(entry.key, entry.page, line, syntax); };
    read_entries(raw, 1, style, messages, add);
    index.arrange(letter_order ? by_letters : by_words, letter_order);
    OUTPUT(index, style, (options & 32) == 0, messages).write("1");
  } catch (FAILURE const&) {
  }
  return 0;
}
