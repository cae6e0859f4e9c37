#pragma once

#include <cstring>
#include <functional>
#include <iosfwd>
#include <string_view>

/// The pool of scratch buffers from which every `STRING` takes its own: `pBufs[0]` to `pBufs[Nb_string]` are free, the
/// one returned last on top, and each holds at least 510 bytes. It starts empty, fills with what strings return, and
/// works before any constructor has run. One thread only.
extern char* pBufs[1001];

/// Index of the top free buffer in `pBufs`, -1 while the pool is empty.
extern int Nb_string;

/// Returns a buffer of at least n + 1 bytes with undefined contents, from the pool if n is at most 509 and the pool
/// has one, else from `new char[]`. The caller owns it and returns it with `put_ptr`. Throws std::bad_alloc without
/// memory.
char* get_ptr(int n);

/// Takes back a buffer of `get_ptr`: puts it in the pool, or frees it if the pool is full. Null is ignored.
void put_ptr(char* p);

/// An owned, NUL-terminated byte string with value semantics, made for many short-lived texts.
///
/// The text is in a buffer of the pool above. Once the pool has buffers, constructing a text of up to 508 bytes, or
/// assigning one of up to 509, costs no heap call; a longer text gets a buffer of its own size. So a text that is kept
/// takes 512 bytes or more, even an empty one. The length is not stored but measured, and a text never holds a NUL
/// byte. There is no spare capacity: an operation that lengthens the text takes a new buffer, and pointers into the old
/// one are no longer valid. Sanitizers do not find their use, since the old buffer is back in the pool; likewise
/// `itoa(5).str` is only valid until the end of its statement.
///
/// `std::strlen(s.str)` is the length, `s.str[i]` a character. `std::string(s.str)` and `ASCII_FILE f(s.str, 0)` pass
/// the text on, `s = t.c_str()` takes one over. `s == "ab"` works everywhere, `"ab" == s` from C++20 on.
///
/// A number, also a `double`, converts to the character of that code: in `s = 65`, `s + 65` and `s += 65`, in
/// `LIST<STRING>::add(5)` and `write(stream, 5)`. Write `itoa(n)` or `ftoa(x)` there. `"n = " + 5` is no text at all.
///
/// An operation that cannot get memory throws std::bad_alloc and leaves the text valid.
class STRING {
public:
  /// The text, owned by the object and never null while that lives. Valid until the text next changes.
  char* str;

  /// Outcome of the last token extraction on this text; true after construction. Assignments leave it alone.
  bool success = true;

  /// The object's own `success`, for reading.
  const bool& ok = success;

  /// An empty text, built before the static objects of programs and destroyed after them.
  static STRING EMPTY;

  /// The empty text.
  STRING();

  /// A copy of s; a null s gives the empty text.
  STRING(char const* s);

  /// The one-character text c; NUL gives the empty text.
  STRING(char c);

  /// A copy of the text; `success` starts as true whatever it is in s.
  STRING(STRING const& s);

  ~STRING();

  /// s may point into the text itself, which is then cut to that part. A null s empties the text.
  STRING& operator=(char const* s);
  STRING& operator=(STRING const& s);
  STRING& operator=(char c);

  /// Comparisons are those of strcmp: byte by byte, bytes unsigned, case significant.
  bool operator==(char const* s) const;
  bool operator==(STRING const& s) const;

  /// The result of strcmp: not zero if the texts differ.
  int operator!=(char const* s) const;
  int operator!=(STRING const& s) const;

  bool operator<(char const* s) const;
  bool operator<(STRING const& s) const;
  bool operator>(char const* s) const;
  bool operator>(STRING const& s) const;

  /// Appends s, which may be this text or a part of it. A null s or a NUL c appends nothing.
  STRING& operator+=(STRING const& s);
  STRING& operator+=(char const* s);
  STRING& operator+=(char c);

  /// The first occurrence of c, or null; NUL finds the terminator, as with strchr. The text may be edited through the
  /// result, which is valid until the text next changes.
  char* locate(char c);

  /// The first occurrence of s, or null; an empty s is found at the start. Valid as above.
  char* locate(char const* s);
  char* locate(STRING const& s);

  /// The decimal number at the start of the text, white space skipped; 0 without one, the nearest `int` beyond the
  /// range.
  int to_int() const;

  /// The real number at the start of the text, its exponent written with e, E, d or D; 0 without one. As for strtod,
  /// `nan`, `inf` (also of `infant`) and `0x10` are numbers: ask `if_double` first.
  double to_double() const;

  // Editing. Each operation changes the text it is called on, and returns it or nothing. A blank is the space character
  // alone. A text without what is to be cut stays as it is.

  /// Drops every c, in place.
  void remove_all(char c);

  /// Drops every c.
  STRING& cut_out(char c);

  /// Drops the first occurrence of s, which must not be null.
  STRING& cut_out(char const* s);

  /// Keeps the text from the first c on, c included.
  STRING& locate_and_cut(char c);

  /// Keeps the text before the first c, in place.
  STRING& locate_and_cut_before(char c);

  /// Keeps the text after the first c; of a text that ends with that c, just c.
  STRING& locate_and_cut_after(char c);

  /// Drops the blanks at both ends.
  STRING& clear_space();

  /// Drops the blanks at both ends and makes one blank of each run inside.
  STRING& clear_extra_space();

  /// Keeps what follows the last '/'.
  STRING& basename();

  /// Whether the text begins or ends with s; true for an empty s.
  bool start_with(STRING const& s) const;
  bool end_with(STRING const& s) const;

  /// Whether the whole text is a sign, digits, or a sign followed by digits.
  bool if_int() const;

  /// Whether the whole text is a real number: a decimal point with digits before or after it, and perhaps an exponent
  /// with e, E, d or D.
  bool if_double() const;

  // Extraction. Each operation takes the word at the start of the text, up to a blank, a comma or the end. The rest
  // stays, without blanks at its ends, and begins with what ended the word. `ok` tells whether a word was taken; if
  // not, the text stays as it was. A comma is never passed: the word before it is empty, as often as one asks. To read
  // past commas, make them blanks first: while (char* comma = s.locate(',')) *comma = ' ';
  //
  // for (STRING word = s.getSTRING(); s.ok; word = s.getSTRING()) ...

  /// The word; empty if the text holds only blanks.
  STRING getSTRING();

  /// The word as a number; 0 if it does not have the form that `if_int` or `if_double` asks for.
  int getint();
  double getdouble();
};

template <>
struct std::hash<STRING> {
  std::size_t operator()(STRING const& s) const { return std::hash<std::string_view>()(s.str); }
};

/// Change the letters A to Z or a to z, in place.
void tolower_(STRING& s);
void toupper_(STRING& s);

/// The result of strncmp over at most n bytes; 0 when n is not positive.
int strn_cmp(char const* a, STRING const& b, int n);
int strn_cmp(STRING const& a, char const* b, int n);
int strn_cmp(STRING const& a, STRING const& b, int n);

/// The first text followed by the second; neither changes.
STRING operator+(STRING const& a, STRING const& b);
STRING operator+(STRING const& a, char const* b);
STRING operator+(STRING const& a, char b);
STRING operator+(char const* a, STRING const& b);
STRING operator+(char a, STRING const& b);

/// Writes the text as a character array is written: the stream's width and fill apply.
std::ostream& operator<<(std::ostream& os, STRING const& s);

/// Reads one word, up to white space; the stream's width applies as to a character array. If there is no word, or no
/// memory for it, s stays unchanged and the stream is failed. A word of more than 511 characters is reported through
/// `ERROR_MESSAGER` first.
std::istream& operator>>(std::istream& is, STRING& s);

/// Writes the binary record of s: its length as an `int` of four bytes in the machine's order, then its bytes. A text
/// too long for such a length writes nothing and sets the fail state.
void write(std::ostream& os, STRING const& s);

/// Reads one binary record into s. Where the stream ends early, s gets the bytes that came, and the stream is failed. A
/// negative length makes s empty and leaves the stream good.
void read(std::istream& is, STRING& s);

/// n in decimal.
STRING itoa(int n);

/// x as printf writes it with `format`, which takes exactly one `double`; at most the first 50 characters.
STRING dtoa(double x, char const* format);

/// x with six decimals, as "%f" writes it, at most the first 50 characters.
STRING ftoa(double x);

/// The address as "%p" writes it.
STRING ptoa(void* p);
