#pragma once

#include <functional>
#include <iosfwd>
#include <string_view>

/// The pool of scratch buffers that every `STRING` lives on: `pBufs[0]` to `pBufs[Nb_string]` are free, the one handed
/// back last on top, and each holds at least 510 bytes. It starts empty, fills with what strings hand back, and works
/// before any constructor has run. One thread only.
extern char* pBufs[1001];

/// Index of the top free buffer in `pBufs`, -1 while the pool is empty.
extern int Nb_string;

/// A buffer of at least n + 1 bytes with undefined contents, from the pool when n is at most 509 and the pool holds
/// one, else from `new char[]`. The caller owns it and gives it up with `put_ptr`. Throws std::bad_alloc without
/// memory.
char* get_ptr(int n);

/// Takes a buffer of `get_ptr` back: into the pool, or freed when all slots are in use. Null is ignored.
void put_ptr(char* p);

/// An owned, NUL-terminated byte string with value semantics, made for many short-lived texts.
///
/// The text lives in a buffer of the pool above, so making and dropping texts of up to 509 bytes costs no heap call
/// once the pool is warm; a longer text gets a buffer of its own size. So a text that is kept takes 512 bytes or more,
/// an empty one, too. The length is not stored but measured, so a text never holds a NUL byte. There is no spare
/// capacity: an operation that lengthens the text takes a new buffer, which ends the validity of every pointer into the
/// old one.
///
/// `s.str` and `std::string(s.str)` hand the text to the standard library, `s = t.c_str()` takes it back; `itoa(5).str`
/// dangles as soon as its line has ended. A number converts to the character of that code: `s += 65` appends 'A', and
/// `LIST<STRING>::add(5)` or `write(stream, 5)` takes a control character. Write `itoa(n)` or `ftoa(x)` there.
///
/// An operation that cannot get memory throws std::bad_alloc and leaves the text valid.
class STRING {
public:
  /// The text; never null while the object lives, and owned by it. Valid until the text next changes.
  char* str;

  /// Outcome of the last token extraction on this text; true after construction. Assignments leave it alone.
  bool success = true;

  /// The read-only view of this object's own `success`.
  const bool& ok = success;

  /// An empty text, there before the static objects of programs and after them.
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

  /// s may point into this very text, which then becomes its own tail. A null s empties the text.
  STRING& operator=(char const* s);
  STRING& operator=(STRING const& s);
  STRING& operator=(char c);

  /// Comparisons are those of strcmp: byte by byte, bytes unsigned, case significant.
  bool operator==(char const* s) const;
  bool operator==(STRING const& s) const;

  /// The difference that strcmp gives, non-zero exactly when the texts differ.
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

  /// The first occurrence of c, as strchr finds it (NUL finds the terminator), or null. The text may be edited through
  /// the result, which is valid until the text next changes.
  char* locate(char c);

  /// The first occurrence of s, as strstr finds it (an empty s is found at the start), or null; valid as above.
  char* locate(char const* s);
  char* locate(STRING const& s);

  /// The decimal number at the start of the text, white space skipped; 0 without one, the nearest `int` beyond the
  /// range.
  int to_int() const;

  /// The real number at the start of the text, its exponent written with e, E, d or D; 0 without one.
  double to_double() const;

  // Editing: each changes the text it is called on, also where it returns it. A blank is the space character alone;
  // what the text lacks cannot be cut, so the text then stays as it is.

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

  /// Whether the text begins or ends with s; an empty s is always there.
  bool start_with(STRING const& s) const;
  bool end_with(STRING const& s) const;

  /// Whether the whole text is a sign, digits, or a sign and digits.
  bool if_int() const;

  /// Whether the whole text is a real number: one with a decimal point, digits beside it, and perhaps an exponent
  /// behind it, written with e, E, d or D.
  bool if_double() const;

  // Extraction. Each takes the word at the start of the text, up to a blank, a comma or the end, and leaves the rest,
  // trimmed at both ends, with what ended the word in front. `ok` tells whether it took one; the text stays as it was
  // if not. A comma is never passed: in front of it the word is empty, again and again. To read over commas, make them
  // blanks first: while (char* comma = s.locate(',')) *comma = ' ';
  // for (STRING word = s.getSTRING(); s.ok; word = s.getSTRING()) ...

  /// The word; the empty text from a text of blanks.
  STRING getSTRING();

  /// The word as a number, by `to_int` and `to_double`; 0 if it has not the form that `if_int` or `if_double` asks for.
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

/// Both texts, one behind the other; neither changes.
STRING operator+(STRING const& a, STRING const& b);
STRING operator+(STRING const& a, char const* b);
STRING operator+(STRING const& a, char b);
STRING operator+(char const* a, STRING const& b);
STRING operator+(char a, STRING const& b);

/// Writes the text as a character array is written: the stream's width and fill apply.
std::ostream& operator<<(std::ostream& os, STRING const& s);

/// Reads one word, up to white space; the stream's width applies as to a character array. Without a word left s stays
/// unchanged; the stream's state tells, also of memory that failed. A word of more than 511 characters is reported
/// through `ERROR_MESSAGER` first.
std::istream& operator>>(std::istream& is, STRING& s);

/// Writes the binary record of s: its length as an `int` of four bytes in the machine's order, then its bytes. A text
/// too long for such a length writes nothing and sets the fail state.
void write(std::ostream& os, STRING const& s);

/// Reads one binary record into s. A missing or negative length gives the empty text, a stream that ends early the
/// bytes that came; the stream's state tells.
void read(std::istream& is, STRING& s);

/// n in decimal, '-' in front of a negative value.
STRING itoa(int n);

/// x as printf writes it by `format`, at most the first 50 characters. REQUIRES: `format` takes exactly one `double`.
STRING dtoa(double x, char const* format);

/// x with six decimals, as "%f" writes it, at most the first 50 characters.
STRING ftoa(double x);

/// The address as "%p" writes it.
STRING ptoa(void* p);
