#pragma once

#include <fstream>

/// The field that `get_key` read last, as NUL-terminated text.
extern char Key[1000];

/// The key whose pages are being collected, without a marker.
extern char Keym1[1000];

/// Drops characters up to and including the next '{'. At the end of input or after a read error, the stream is failed.
void swallow(std::fstream& in);

/// Reads the field after a '{' into `Key`, up to the matching '}', which is dropped; there is no escape character. A
/// field that the end of input cuts short leaves the stream failed. Of a field of more than 999 bytes the first 999 are
/// kept, and a line on standard error says so.
void get_key(std::fstream& in);
