#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <string_view>
#include <type_traits>

#include "lib/files/File.h"
#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"

namespace {

using std::cerr;

struct RETURNING_MESSAGER : ERROR_MESSAGER {
  void do_EXIT() override {}
  void alert(STRING text) override { ERROR_MESSAGER::alert("alert: " + text); }
} returning_messager;

/// Writes a make file for the libraries k and l.
void make_libraries() {
  MAKE_LIB k{{"k"}, {}}, l{{"l"}, {}};
  LIST<MAKE_LIB*> libs;
  libs.set_ptr_and_size(
      new MAKE_LIB* [2] { &k, &l }, 2);
  MAKE_PROJECT project;
  project.libs = &libs;
  project.splash();
  cerr << project.file_name;
}

/// Writes twice an Eclipse project of the directories k and `second`, with a.c in k and b.c in `dir_of_b`.
void splash_twice(char const* second, char const* dir_of_b) {
  SOURCE_DIR first_dir{{"k"}, {}}, second_dir{{second}, {}}, other_dir{{dir_of_b}, {}};
  SOURCE_FILE a{{"a.c"}, {}, &first_dir}, b{{"b.c"}, {}, &other_dir};
  LIST<SOURCE_DIR*> dirs;
  dirs.set_ptr_and_size(
      new SOURCE_DIR* [2] { &first_dir, &second_dir }, 2);
  LIST<SOURCE_FILE*> files;
  files.set_ptr_and_size(
      new SOURCE_FILE* [2] { &a, &b }, 2);
  ECLIPSE_PROJECT eclipse;
  eclipse.file_name = "structure";
  eclipse.dirs = &dirs;
  eclipse.files = &files;
  eclipse.splash();
  eclipse.splash();
}

/// Scans "scanned" with the flags that the argument names, and prints each file with what it includes.
void scan(STRING const& flags) {
  KDIR_SCANNER scanner;
  scanner.scan_headers = strstr(flags.str, "scan_headers") != nullptr;
  scanner.fortran = strstr(flags.str, "fortran") != nullptr;
  scanner.skip_includes = strstr(flags.str, "skip_includes") != nullptr;
  scanner.all_names = strstr(flags.str, "all_names") != nullptr;
  STRING directory("scanned");
  for (int time = 0; time < 2; ++time) scanner.do_scan(directory);
  for (int i = 0; i < scanner.found_files.size; ++i) {
    cerr << '\n' << scanner.found_files[i];
    if (scanner.includes.size == 0) continue;
    for (STRING const& name : *scanner.includes[i]) cerr << " <" << name << '>';
  }
}

using F = ASCII_FILE;
using M = ERROR_MESSAGER;
using CALL = std::function<void(F& file, STRING const& argument)>;

/// Calls a member without an argument and prints what it returns.
template <class MEMBER>
CALL member(MEMBER m) {
  return [m](F& file, STRING const&) {
    if constexpr (std::is_void_v<std::invoke_result_t<MEMBER, F&>>) {
      (file.*m)();
    } else {
      cerr << (file.*m)();
    }
  };
}

void read_word(F& file) {
  STRING word;
  file >> word;
  cerr << word;
}

void get_list(F& file, int count) {
  LIST<int> list;
  file.get(list, count);
  for (const int n : list) cerr << n << ' ';
}

void print_allowed(F const& file) {
  for (int c = -300; c < 600; ++c) {
    if (file.allowed_character(c) == 1) cerr << static_cast<char>(c);
  }
}

void print_state(F& file) {
  cerr << file.name << ", mode " << file.mode << ", rdstate " << file.rdstate() << ", position " << file.get_position()
       << ", previous_pos " << file.previous_pos;
}

void open_obin_file(STRING const& path) {
  OBIN_FILE file;
  file.open(path.str, 32);
  cerr << file.file_name;
}

const std::map<std::string_view, CALL> calls = {
    {"open", [](F& file, STRING const& path) { file.open(path.str, 48); }},
    {"close", member(&F::close)},
    {"remove", [](F& file, STRING const&) { std::remove(file.name.str); }},
    {"write", [](F& file, STRING const& text) { file << text << std::flush; }},
    {"goto", [](F& file, STRING const& p) { file.goto_position_and_set_previous_pos(p.to_int()); }},
    {"rewind", member(&F::rewind)},
    {"back", member(&F::back)},
    {"back1", member(&F::back1)},
    {"ignore_all", [](F& file, STRING const&) { file.ignore(1000); }},
    {"state", [](F& file, STRING const&) { print_state(file); }},
    {"no_comments", [](F& file, STRING const&) { file.skip_comments = 0; }},
    {"get_next_char", member(&F::get_next_char)},
    {"read_spaces", member(&F::read_spaces)},
    {"empty_line", member(&F::empty_line)},
    {"allowed_character", [](F& file, STRING const&) { print_allowed(file); }},
    {"width", [](F& file, STRING const& n) { file.width(n.to_int()); }},
    {">>", [](F& file, STRING const&) { read_word(file); }},
    {"getSTRING", member(&F::getSTRING)},
    {"getSTRING_sl", member(&F::getSTRING_sl)},
    {"GLSTR", [](F& file, STRING const&) { cerr << GLSTR(file); }},
    {"getline", [](F& file, STRING const&) { cerr << file.getline(); }},
    {"getint", member(&F::getint)},
    {"getint_sl", member(&F::getint_sl)},
    {"getdouble", member(&F::getdouble)},
    {"getdouble_sl", member(&F::getdouble_sl)},
    {"get", [](F& file, STRING const& count) { get_list(file, count.to_int()); }},
    {"locate", [](F& file, STRING const& key) { file.locate(key.str); }},
    {"locate_next", [](F& file, STRING const& key) { file.locate_next(key.str); }},
    {"skip_until", [](F& file, STRING const& prefix) { file.skip_until_word_start_with(prefix); }},
    {"ERR_FILE", [](F&, STRING const&) { ERR_FILE(); }},
    {"KBAD", [](F&, STRING const& text) { KBAD(text); }},
    {"UNKNOWN_COMMAND", [](F&, STRING const& text) { UNKNOWN_COMMAND(text); }},
    {"UNKNOWN_COEF", [](F&, STRING const& text) { UNKNOWN_COEF(text); }},
    {"returning_messager", [](F&, STRING const&) { M::reassign_error_messager(&returning_messager); }},
    {"message", [](F&, STRING const&) { M::STATIC_MESSAGE("text"); }},
    {"alert", [](F&, STRING const&) { M::STATIC_ALERT("text"); }},
    {"class_err_message", [](F&, STRING const&) { M::static_err_message("CLASS", "text", "file.cpp", 12); }},
    {"err_message", [](F&, STRING const&) { M::static_err_message("text", "file.cpp", 12); }},
    {"text_err_message", [](F&, STRING const&) { M::static_err_message("text"); }},
    {"not_implemented_error", [](F&, STRING const&) { M::STATIC_NOT_IMPLEMENTED_ERROR("text", "file.cpp", 12); }},
    {"input_error", [](F&, STRING const&) { M::STATIC_INPUT_ERROR("text", "file.cpp", 12); }},
    {"critical", [](F&, STRING const&) { M::STATIC_CRITICAL("text", "file.cpp", 12); }},
    {"EXIT", [](F&, STRING const&) { M::EXIT(); }},
    {"OBIN_FILE::open", [](F&, STRING const& path) { open_obin_file(path); }},
    {"OBIN_FILE", [](F&, STRING const& path) { cerr << OBIN_FILE(path.str, 0).file_name; }},
    {"scan", [](F&, STRING const& flags) { scan(flags); }},
    {"make_libraries", [](F&, STRING const&) { make_libraries(); }},
    {"splash_twice", [](F&, STRING const& second) { splash_twice(second.str, second.str); }},
    {"splash_unknown", [](F&, STRING const&) { splash_twice("l", "unknown"); }},
};

} // namespace

/// Makes calls on a file and prints, for each, its name, what it returns, and how the file stands then.
///   calls FILE MODE CALL[=ARGUMENT]...
int main(int, char* argv[]) {
  F file(argv[1], STRING(argv[2]).to_int());
  for (char** name = argv + 3; *name != nullptr; ++name) {
    STRING call(*name), argument(call);
    argument.locate_and_cut_after('=');
    call.locate_and_cut_before('=');
    cerr << call << ": ";
    calls.at(call.str)(file, argument);
    cerr << (file.line_changed ? ", line_changed" : "") << (file.ok ? "\n" : ", not ok\n");
  }
}
