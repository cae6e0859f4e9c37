#pragma once

#include <string>
#include <string_view>

/// Whether there is anything under this path that can be read as a file: no directory.
bool is_file(std::string const& path);

/// The bytes of a file. Throws a FAILURE if it cannot be read.
std::string read_file(std::string const& path);

/// The bytes of standard input. Throws a FAILURE if it cannot be read.
std::string read_input();

/// Throws a FAILURE if standard output cannot be written.
void write_output(std::string_view text);

/// Writes a file completely or not at all: beside it, then in its place. What is no regular file, such as /dev/stdout,
/// is written as it is. Throws a FAILURE if it cannot be written; then the old file stays.
void write_file(std::string const& path, std::string_view text);
