#include <algorithm>
#include <climits>
#include <memory>

#include "lib/files/File.h"
#include "tests/Trial.h"

namespace {

using std::ios, std::string;

bool ends_line(int c) { return c == '\n' || c == '\r'; }

/// A text file as a text, an offset in it and lists of macros, read character by character.
struct PLAIN_FILE {
  STRING name;
  string text;
  bool missing, is_directory;
  long at = 0;
  int state = 0, skip_comments = 1;
  bool ok = false, line_changed = false;
  long previous_pos = 0;
  LIST<STRING> def_keys, def_values;
  std::unique_ptr<PLAIN_FILE> included_file;
  PLAIN_FILE* parent_file = nullptr;
  static inline PLAIN_FILE* current_file = nullptr;
  static inline string reports;

  PLAIN_FILE(STRING const& path, PLAIN_FILE* parent) : name(path), parent_file(parent) {
    std::ifstream in(path.str);
    missing = in.fail();
    in.peek();
    is_directory = in.bad();
    if (!is_directory) text.assign(std::istreambuf_iterator<char>(in), {});
    open();
  }
  ~PLAIN_FILE() { current_file = nullptr; }

  void open() {
    state = missing ? ios::failbit : 0;
    ok = !missing;
    line_changed = false;
    at = 0;
    previous_pos = get_position();
  }

  int rdstate() const { return state; }
  long get_position() const { return state != 0 ? -1 : at; }
  void back() { goto_position(previous_pos); }
  void back1() { goto_position(at - 1); }

  void goto_position(long p) {
    if (state != 0) open();
    if (p < 0) state |= ios::failbit;
    at = p;
  }

  void rewind() {
    goto_position(0);
    previous_pos = get_position();
  }

  /// The next character, or -1.
  int take() {
    const bool is_there = state == 0 && at < static_cast<long>(text.size());
    return is_there ? static_cast<unsigned char>(text[static_cast<std::size_t>(at++)]) : -1;
  }

  int fail() {
    if (state == 0) state = is_directory ? ios::badbit : ios::eofbit;
    state |= ios::failbit;
    return -1;
  }

  int take_or_fail() {
    const int c = take();
    return c < 0 ? fail() : c;
  }

  int get_next_char() {
    previous_pos = get_position();
    return static_cast<signed char>(take_or_fail());
  }

  void empty_line() {
    for (int c = take_or_fail(); c > 0 && !ends_line(c);) c = take_or_fail();
  }

  void read_spaces() {
    int c = take_or_fail();
    while (c == ' ') c = take_or_fail();
    if (c >= 0) --at;
  }

  static int allowed_character(int c) {
    return c > 0 && c < 128 && (isalnum(c) != 0 || std::strchr("!\"#$()*+-./=\\_{}~", c) != nullptr) ? 1 : 0;
  }

  bool starts_comment(int c) const { return skip_comments != 0 && (c == '%' || c == '#'); }

  STRING getSTRING() {
    if (included_file != nullptr) {
      STRING token = included_file->getSTRING();
      ok = included_file->ok;
      if (token != "EOF") return def_mask(token);
      included_file.reset();
    }
    current_file = this;
    line_changed = false;
    previous_pos = get_position();
    int c = take();
    for (; c >= 0 && (starts_comment(c) || allowed_character(c) == 0); c = take()) {
      line_changed = line_changed || starts_comment(c) || ends_line(c);
      if (starts_comment(c)) empty_line();
    }
    string word;
    for (; allowed_character(c) == 1; c = take()) word += static_cast<char>(c);
    ok = !word.empty();
    if (ok && c >= 0) --at;
    if (!ok) fail();
    STRING token(ok ? word.c_str() : "EOF");
    if (!ok || token != "#define") return ok ? def_mask(token) : token;
    add_def();
    return getSTRING();
  }

  /// The value, unless it was on another line.
  template <class VALUE>
  VALUE same_line(VALUE value) {
    if (!line_changed) return value;
    back();
    ok = false;
    return VALUE();
  }
  STRING getSTRING_sl() { return same_line(getSTRING()); }
  int getint_sl() { return same_line(getint()); }
  double getdouble_sl() { return same_line(getdouble()); }

  int getint() {
    const STRING token = getSTRING();
    if (ok && !token.if_int()) back(), ok = false;
    return ok ? token.to_int() : 0;
  }

  double getdouble() {
    const STRING token = getSTRING();
    if (!token.if_double()) back();
    ok = token.if_double();
    return ok ? token.to_double() : 0;
  }

  void get(LIST<int>& list, int count) {
    list.resize(0);
    for (int i = 0; i < count || count == 0; ++i) {
      const int n = getint();
      if (!ok && count == 0) return;
      if (!ok) report("bad get list");
      list.add(n);
    }
  }

  string getline() {
    const long start = get_position();
    while (get_next_char() == '\n') continue;
    get_next_char();
    ok = state == 0;
    if (!ok) return "";
    at -= 2;
    string line;
    for (int c = get_next_char(); state == 0 && c != 0 && !ends_line(c); c = get_next_char()) {
      line += static_cast<char>(c);
    }
    previous_pos = start;
    return line.substr(0, skip_comments != 0 ? line.find_first_of("%#") : string::npos);
  }

  void locate(STRING const& key) {
    rewind();
    locate_next(key);
  }

  void locate_next(STRING const& key) {
    while (getSTRING() != key && ok) continue;
  }

  void skip_until_word_start_with(STRING const& prefix) {
    for (;;) {
      const STRING token = getSTRING();
      if (token.start_with(prefix)) return back();
      ok = ok && token != "EOF";
      if (!ok) return;
    }
  }

  void include_file() {
    const STRING path = getSTRING();
    included_file = std::make_unique<PLAIN_FILE>(path, this);
  }

  PLAIN_FILE& outermost() { return parent_file == nullptr ? *this : parent_file->outermost(); }

  STRING& def_mask(STRING& word) {
    int index = 0;
    if (outermost().def_keys.is_in(word, index)) word = outermost().def_values[index];
    return word;
  }

  void validate_def(STRING const& key, STRING const& value) {
    if (outermost().def_keys.is_in(key)) report("Def key in");
    outermost().def_keys.add(key);
    outermost().def_values.add(value);
  }

  void add_def() {
    STRING key, value;
    bool ended = read_def_word(key, true);
    if (!ended) report("unxpected end of file met while reading #define");
    if (ended) {
      ended = read_def_word(value, false);
      validate_def(key, value);
    }
    if (!ended) fail();
  }

  /// Returns whether the word ended before the file.
  bool read_def_word(STRING& word, bool is_key) {
    int c = take();
    while (c == ' ') c = take();
    for (; c >= 0 && c != ' ' && (is_key || !ends_line(c)); c = take()) {
      if (ends_line(c)) report("unxpected end of file met while reading #define");
      if (!ends_line(c) && (allowed_character(c) == 0 || c == '#')) report("character not allowed in #define");
      word += static_cast<char>(c);
    }
    return c >= 0;
  }

  static void get_file_info(STRING& file, int& line) {
    if (current_file == nullptr) return;
    PLAIN_FILE& f = *current_file;
    const bool ok_before = f.ok;
    const long position = f.get_position();
    f.goto_position(0);
    file = f.name;
    line = 1;
    for (string start; f.at < position;) {
      const auto c = static_cast<char>(f.take());
      if (c != '\0') start += c;
      if (!ends_line(c)) continue;
      line += line < INT_MAX ? 1 : 0;
      follow_marker(start, file, line);
      start.clear();
    }
    if (position > 0) f.previous_pos = position - 1;
    f.ok = ok_before;
  }

  static void follow_marker(string const& text, STRING& file, int& line) {
    const std::size_t blank = text.find(' ');
    if (text[0] != '#' || blank == string::npos) return;
    STRING words(text.substr(blank + 1).c_str());
    const int number = words.getint();
    if (!words.ok) return;
    line = number;
    file = words.getSTRING();
    while (char* const quote = file.locate('"')) *quote = ' ';
  }

  static void report(char const* message);
};

STRING GLSTR(PLAIN_FILE& file) { return file.back(), file.getSTRING(); }

template <class FILE_TYPE>
string place() {
  STRING file;
  int line = 0;
  FILE_TYPE::get_file_info(file, line);
  return (file + ":" + itoa(line)).str;
}

void PLAIN_FILE::report(char const* message) { reports += place<PLAIN_FILE>() + ": " + message + "; "; }

/// Collects the errors that are reported, with their places, and returns.
struct COLLECTING_MESSAGER : ERROR_MESSAGER {
  string reports;
  COLLECTING_MESSAGER() { reassign_error_messager(this); }
  void err_message(STRING text, char const*, int) override { reports += place<ASCII_FILE>() + ": " + text.str + "; "; }
  using ERROR_MESSAGER::err_message;
};

/// All fields of the file, and those of the file that it includes.
template <class FILE_TYPE>
string state_of(FILE_TYPE& file) {
  std::ostringstream out;
  out << file.name << ": ok=" << file.ok << " line_changed=" << file.line_changed << " position=" << file.get_position()
      << " previous_pos=" << file.previous_pos << " rdstate=" << static_cast<int>(file.rdstate())
      << " is current_file=" << (FILE_TYPE::current_file == &file);
  for (int i = 0; i < file.def_keys.size; ++i) out << ' ' << file.def_keys[i] << "=>" << file.def_values[i];
  if (file.included_file != nullptr) out << "; includes " << state_of(*file.included_file);
  return out.str();
}

/// Both readers, and what the operations on them take.
class READERS {
public:
  READERS(TRIAL& t, int mode, string const& text) : trial(t), ours("f0", mode) {
    if (mode != 0) ours << text;
    ours.rewind();
    plain = std::make_unique<PLAIN_FILE>("f0", nullptr);
    PLAIN_FILE::reports.clear();
  }

  void step() {
    draw_operands();
    trial.do_one_of(operations, copy.str);
    trial.compare("fields", state_of(ours), state_of(*plain));
    trial.compare("reports", messager.reports, PLAIN_FILE::reports);
  }

private:
  void draw_operands() {
    file = &ours;
    plain_file = plain.get();
    for (const bool inner = trial.below(3) == 0; inner && file->included_file != nullptr; file = file->included_file) {
      plain_file = plain_file->included_file.get();
    }
    trial.subject = file->name.str + string(": ");
    n = static_cast<int>(trial.below(5));
    code = 2 * static_cast<int>(trial.below(256)) - 100;
    drawn = trial.text(1).c_str();
    LIST<STRING> const& macros = trial.below(2) == 0 ? ours.def_keys : ours.def_values;
    word = n < macros.size ? &macros[n] : &drawn;
    copy = *word;
  }

  STRING const& word_for(ASCII_FILE const&) const { return *word; } // which may lie in a list that changes
  STRING const& word_for(PLAIN_FILE const&) const { return copy; }

  template <class CALL>
  OPERATION both(char const* name, CALL call) {
    return {name, [this, call] { return call(*file); }, [this, call] { return call(*plain_file); }};
  }

  string get(auto& f) {
    LIST<int> list;
    list.add(n);
    f.get(list, n - 1);
    string numbers;
    for (const int number : list) numbers += std::to_string(number) + ' ';
    return numbers;
  }

  TRIAL& trial;
  COLLECTING_MESSAGER messager;
  ASCII_FILE ours;
  std::unique_ptr<PLAIN_FILE> plain;
  ASCII_FILE* file = nullptr; // one of the two, or the innermost file that it includes
  PLAIN_FILE* plain_file = nullptr;
  int n = 0, code = 0;
  STRING drawn, copy;
  STRING const* word = nullptr;

  const std::vector<OPERATION> operations = {
      both("include_file", [](auto& f) { f.include_file(); }),
      both("getSTRING", [](auto& f) { return f.getSTRING(); }),
      both("skip_comments ^= 1", [](auto& f) { f.skip_comments ^= 1; }),
      both("back", [](auto& f) { f.back(); }),
      both("back1", [](auto& f) { return f.get_position() > 0 ? f.back1() : f.rewind(); }),
      both("get_next_char", [](auto& f) { return f.get_next_char(); }),
      both("read_spaces", [](auto& f) { f.read_spaces(); }),
      both("empty_line", [](auto& f) { f.empty_line(); }),
      both("getline", [](auto& f) { return f.getline(); }),
      both("getSTRING_sl", [](auto& f) { return f.getSTRING_sl(); }),
      both("GLSTR", [](auto& f) { return GLSTR(f); }),
      both("getint", [](auto& f) { return f.getint(); }),
      both("getint_sl", [](auto& f) { return f.getint_sl(); }),
      both("getdouble", [](auto& f) { return f.getdouble(); }),
      both("getdouble_sl", [](auto& f) { return f.getdouble_sl(); }),
      both("get", [this](auto& f) { return get(f); }),
      both("allowed_character", [this](auto& f) { return f.allowed_character(code + n); }),
      both("locate", [this](auto& f) { f.locate(word_for(f).str); }),
      both("locate_next", [this](auto& f) { f.locate_next(word_for(f)); }),
      both("locate_next(char const*)", [this](auto& f) { f.locate_next(word_for(f).str); }),
      both("skip_until_word_start_with", [this](auto& f) { f.skip_until_word_start_with(word_for(f)); }),
      both("validate_def", [this](auto& f) { f.validate_def(word_for(f), word_for(f)); }),
      both("get_file_info", []<class FILE_TYPE>(FILE_TYPE&) { return place<FILE_TYPE>(); }),
  };
};

} // namespace

void reader_model(TRIAL& trial) {
  string text;
  for (char const* const name : {"f1", "f2", "f0"}) {
    text = trial.text(trial.below(trial.below(2) == 0 ? 60 : 6));
    trial.set_up(name, text);
    std::ofstream(name) << text;
  }
  const int mode = trial.below(2) == 0 ? 0 : 48;
  trial.set_up("mode", std::to_string(mode));
  READERS readers(trial, mode, text);
  while (trial.goes_on()) readers.step();
}
