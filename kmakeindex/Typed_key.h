#pragma once

#include <string>
#include <string_view>

#include "kmakeindex/Key.h"

/// A key as it was typed, from what LaTeX makes of it on its way into the argument of another command: one blank for
/// several, none outside and after the name of a command, ~ for \nobreakspace.
std::string as_typed(std::string_view key);

/// LaTeX that prints a typed key: signs with a meaning there are escaped, but for mathematics, commands and ties. What
/// does not match becomes a sign, and is told. With the package, " is straight whatever the font makes of it.
std::string as_latex(std::string_view typed, bool has_package, COMPLAIN const& complain);

/// The same text, but braces without a partner and a last backslash become signs, and are told.
std::string with_matched_braces(std::string_view text, COMPLAIN const& complain);

/// Whether a brace, of those that are not escaped, has no partner.
bool has_unmatched_braces(std::string_view text);

/// Whether a star marks the page as the principal one: it is not alone, and no command.
bool ends_in_star(std::string_view text);

/// The text without such characters at its ends.
std::string trim(std::string_view text, std::string_view characters);
