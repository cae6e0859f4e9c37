#pragma once

#include <string>

#include "tests/Scratch_directory.h"

/// Looks at one input, with a scratch directory as the working directory. Each fuzzer has one of its own.
void check(std::string const& input);

/// Ends the fuzzer with what it has found, unless both texts are the same.
void same(std::string const& result, std::string const& expected);
