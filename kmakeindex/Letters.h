#pragma once

#include <string>
#include <string_view>

/// The text with the letters that it has as commands (\"a, \H{o}, \c c, \'\i, \ss) as the letters that they are, in
/// UTF-8, and with a blank for each tie. Other commands stay.
std::string as_letters(std::string_view text);

/// Where the name of the command at `begin`, a backslash, ends: after a sign or a row of letters.
std::size_t end_of_command(std::string_view text, std::size_t begin);

/// The first place from `at` on that has no blank.
std::size_t skip_blanks(std::string_view text, std::size_t at);
