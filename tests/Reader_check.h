#pragma once

#include <sstream>

#include "lib/diagnostics/Error_messager.h"
#include "lib/files/File.h"
#include "tests/Plain_reader.h"

/// Collects reports instead of ending the process, for as long as it lives.
class COLLECTING_MESSAGER : public ERROR_MESSAGER {
public:
  std::vector<std::string> reports;

  COLLECTING_MESSAGER() { reassign_error_messager(this); }
  ~COLLECTING_MESSAGER() override { reassign_error_messager(&default_messager); }
  void do_EXIT() override {}
  using ERROR_MESSAGER::err_message;
  void err_message(STRING text, char const*, int) override { reports.emplace_back(text.str); }
};

/// One operation on a reader and on the plain one, each giving its result as a text.
struct READER_OPERATION {
  std::string (*ours)(ASCII_FILE& f, std::string const& word);
  std::string (*plain)(PLAIN_READER& f, std::string const& word);
};

inline std::string number_text(double x) { return dtoa(x, "%.17g").str; }
inline std::string int_text(std::string const& s) { return number_text(STRING(s.c_str()).to_int()); }
inline std::string real_text(std::string const& s) { return number_text(STRING(s.c_str()).to_double()); }
inline bool is_int(std::string const& s) { return STRING(s.c_str()).if_int(); }
inline bool is_double(std::string const& s) { return STRING(s.c_str()).if_double(); }

inline std::string list_text(ASCII_FILE& f, int count) {
  LIST<int> list;
  list.add(7);
  f.get(list, count);
  std::string text;
  for (const int n : list) text += number_text(n) + ' ';
  return text;
}
inline std::string plain_list_text(PLAIN_READER& f, int count) {
  std::string text;
  for (int i = 0; count == 0 || i < count; ++i) {
    const std::string number = f.number(is_int, false);
    if (!f.success && count == 0) break;
    if (!f.success) PLAIN_READER::reports.emplace_back("bad get list");
    text += int_text(number) + ' ';
  }
  return text;
}

// clang-format off
using WORD_ = std::string const&;
constexpr READER_OPERATION reader_operations[] = {
    {[](ASCII_FILE& f, WORD_) { return std::string(f.getSTRING().str); }, [](PLAIN_READER& f, WORD_) { return f.token(); }},
    {[](ASCII_FILE& f, WORD_) { return std::string(f.getSTRING_sl().str); }, [](PLAIN_READER& f, WORD_) { return f.same_line(f.token()); }},
    {[](ASCII_FILE& f, WORD_) { return std::string(f.getline().str); }, [](PLAIN_READER& f, WORD_) { return f.line(); }},
    {[](ASCII_FILE& f, WORD_) { return number_text(f.getint()); }, [](PLAIN_READER& f, WORD_) { return int_text(f.number(is_int, false)); }},
    {[](ASCII_FILE& f, WORD_) { return number_text(f.getint_sl()); }, [](PLAIN_READER& f, WORD_) { return int_text(f.same_line(f.number(is_int, false))); }},
    {[](ASCII_FILE& f, WORD_) { return number_text(f.getdouble()); }, [](PLAIN_READER& f, WORD_) { return real_text(f.number(is_double, true)); }},
    {[](ASCII_FILE& f, WORD_) { return number_text(f.getdouble_sl()); }, [](PLAIN_READER& f, WORD_) { return real_text(f.same_line(f.number(is_double, true))); }},
    {[](ASCII_FILE& f, WORD_) { return list_text(f, 0); }, [](PLAIN_READER& f, WORD_) { return plain_list_text(f, 0); }},
    {[](ASCII_FILE& f, WORD_ w) { return list_text(f, int(w.size())); }, [](PLAIN_READER& f, WORD_ w) { return plain_list_text(f, int(w.size())); }},
    {[](ASCII_FILE& f, WORD_ w) { f.locate_next(w.c_str()); return w; }, [](PLAIN_READER& f, WORD_ w) { f.locate_next(w); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.locate(w.c_str()); return w; }, [](PLAIN_READER& f, WORD_ w) { f.rewind(); f.locate_next(w); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.skip_until_word_start_with(w.c_str()); return w; }, [](PLAIN_READER& f, WORD_ w) { f.skip_until(w); return w; }},
    {[](ASCII_FILE& f, WORD_) { return std::string(GLSTR(f).str); }, [](PLAIN_READER& f, WORD_) { f.back(); return f.token(); }},
    {[](ASCII_FILE&, WORD_ w) { if (auto* f = ASCII_FILE::current_file) f->include_file(); return w; },
     [](PLAIN_READER&, WORD_ w) { if (auto* f = PLAIN_READER::current) f->include(); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { if (w == "f1") f.include_file(); return w; }, [](PLAIN_READER& f, WORD_ w) { if (w == "f1") f.include(); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.back(); return w; }, [](PLAIN_READER& f, WORD_ w) { f.back(); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.rewind(); return w; }, [](PLAIN_READER& f, WORD_ w) { f.rewind(); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.get_next_char(); return w; }, [](PLAIN_READER& f, WORD_ w) { char c; f.get_next(c); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.peek(); return w; }, [](PLAIN_READER& f, WORD_ w) { f.at_eof || f.failed || f.broken ? f.failed = true : f.at_eof = f.at == std::ssize(f.bytes); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.empty_line(); return w; }, [](PLAIN_READER& f, WORD_ w) { f.empty_line(); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { f.read_spaces(); return w; }, [](PLAIN_READER& f, WORD_ w) { f.read_spaces(); return w; }},
    {[](ASCII_FILE& f, WORD_ w) { (ASCII_FILE::current_file ? *ASCII_FILE::current_file : f).skip_comments ^= 1; return w; },
     [](PLAIN_READER& f, WORD_ w) { (PLAIN_READER::current ? *PLAIN_READER::current : f).skip_comments ^= 1; return w; }},
    {[](ASCII_FILE&, WORD_ w) { STRING s(w.c_str()); int n = 0; ASCII_FILE::get_file_info(s, n); return s.str + number_text(n); },
     [](PLAIN_READER&, WORD_ w) { std::string s(w); int n = 0; PLAIN_READER::file_info(s, n); return s + number_text(n); }},
};
// clang-format on

inline std::string fields(ASCII_FILE& f) {
  std::ostringstream text;
  text << f.name << " ok" << f.ok << " changed" << f.line_changed << " previous" << f.previous_pos << " at"
       << f.get_position() << " fail" << f.fail() << " eof" << f.eof() << (&f == ASCII_FILE::current_file ? " *" : "");
  for (int i = 0; i < f.def_keys.size; ++i) text << ' ' << f.def_keys[i] << '=' << f.def_values[i];
  return text.str() + (f.included_file != nullptr ? " | " + fields(*f.included_file) : "");
}
inline std::string fields(PLAIN_READER& f) {
  std::ostringstream text;
  text << f.name << " ok" << f.success << " changed" << f.line_changed << " previous" << f.previous << " at"
       << f.position() << " fail" << f.failed << " eof" << f.at_eof << (&f == PLAIN_READER::current ? " *" : "");
  for (auto const& [key, value] : f.defs) text << ' ' << key << '=' << value;
  return text.str() + (f.included ? " | " + fields(*f.included) : "");
}

/// Runs the operations that the bytes of `program` choose on the file "f0". Gives the first step after which a result,
/// a report or a field differs; empty if none does.
inline std::string first_difference(std::string const& program) {
  static const char* const words[] = {"f1", "a", "EOF", "12", "", "1.5", "#define"};
  COLLECTING_MESSAGER messager;
  PLAIN_READER::reports.clear();
  ASCII_FILE ours("f0", 0);
  PLAIN_READER plain("f0");
  for (std::size_t i = 0; i + 1 < program.size(); i += 2) {
    const auto which = static_cast<unsigned char>(program[i]) % std::size(reader_operations);
    const std::string word = words[static_cast<unsigned char>(program[i + 1]) % std::size(words)];
    const std::string result = reader_operations[which].ours(ours, word) + "; " + fields(ours);
    const std::string expected = reader_operations[which].plain(plain, word) + "; " + fields(plain);
    if (result != expected || messager.reports != PLAIN_READER::reports) {
      return "step " + std::to_string(i / 2) + ", operation " + std::to_string(which) + " with '" + word + "':\n" +
             result + "\nexpected:\n" + expected;
    }
  }
  return "";
}
