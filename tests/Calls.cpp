#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <string_view>

#include "lib/files/File.h"
#include "project/Eclipse_project.h"
#include "project/Kdirscanner.h"
#include "project/Make_project.h"

namespace {

using std::cerr;
using M = ERROR_MESSAGER;

struct RETURNING_MESSAGER : M {
  RETURNING_MESSAGER() { reassign_error_messager(this); }
  void do_EXIT() override {}
  void message(STRING text) override { M::message("own " + text); }
  void alert(STRING text) override { M::alert("own alert: " + text); }
};

/// Writes a make file for the libraries k and l, without a name and with one.
void make_libraries() {
  MAKE_LIB k{{"k"}, {}}, l{{"l"}, {}};
  l.dirs.add("k");
  LIST<MAKE_LIB*> libs;
  libs.add(&k);
  libs.add(&l);
  MAKE_PROJECT project;
  project.libs = &libs;
  for (char const* name : {"", "named"}) {
    project.file_name = name;
    project.splash();
    cerr << project.file_name << '\n';
  }
}

/// Writes twice an Eclipse project of the directories k and `second`, with a.c in k and b.c in `dir_of_b`.
void splash_twice(char const* second, char const* dir_of_b) {
  SOURCE_DIR first_dir{{"k"}, {}}, second_dir{{second}, {}}, other_dir{{dir_of_b}, {}};
  SOURCE_FILE a{{"a.c"}, {}, &first_dir}, b{{"b.c"}, {}, &other_dir};
  LIST<SOURCE_DIR*> dirs;
  dirs.add(&first_dir);
  dirs.add(&second_dir);
  LIST<SOURCE_FILE*> files;
  files.add(&a);
  files.add(&b);
  ECLIPSE_PROJECT eclipse;
  eclipse.file_name = "structure";
  eclipse.dirs = &dirs;
  eclipse.files = &files;
  eclipse.splash();
  eclipse.splash();
}

/// Scans ".", then "scanned" with the flags that the argument names, and prints each file with what it includes.
void scan(STRING const& flags) {
  KDIR_SCANNER scanner;
  scanner.scan_headers = strstr(flags.str, "scan_headers") != nullptr;
  scanner.fortran = strstr(flags.str, "fortran") != nullptr;
  scanner.skip_includes = strstr(flags.str, "skip_includes") != nullptr;
  scanner.all_names = strstr(flags.str, "all_names") != nullptr;
  for (STRING directory : {".", "scanned"}) scanner.do_scan(directory);
  for (int i = 0; i < scanner.found_files.size; ++i) {
    cerr << scanner.found_files[i];
    if (scanner.includes.size > 0) {
      for (STRING const& name : *scanner.includes[i]) cerr << " <" << name << '>';
    }
    cerr << '\n';
  }
}

/// Through one object, writes two files, reads the second and changes the first.
void write_obin_files() {
  OBIN_FILE file("one", 32);
  file << "first";
  file.open("two", 32);
  file << "second";
  file.seekg(0);
  STRING word;
  file >> word;
  cerr << word << '\n';
  file.open("one", 0);
  file << 'F';
}

void open_obin_file(STRING const& path) {
  OBIN_FILE file;
  file.open(path.str, 0);
  cerr << file.file_name << '\n';
}

ASCII_FILE file;

void read_word() {
  STRING word("none");
  file >> word;
  cerr << '[' << word << ']';
}

void get_three() {
  LIST<int> list;
  file.get(list, 3);
}

void print_state() {
  cerr << file.name << (file.ok ? " ok" : " not ok") << ", mode " << file.mode << ", rdstate " << file.rdstate()
       << ", at " << file.get_position() << ", previous_pos " << file.previous_pos << '\n';
}

const std::map<std::string_view, std::function<void(STRING const& argument)>> calls = {
    {"mode", [](STRING const& mode) { file.mode = mode.to_int(); }},
    {"open", [](STRING const& path) { file.open(path.str, file.mode); }},
    {"close", [](STRING const&) { file.close(); }},
    {"remove", [](STRING const&) { std::remove(file.name.str); }},
    {"write", [](STRING const& text) { file << text; }},
    {"goto", [](STRING const& p) { file.goto_position_and_set_previous_pos(p.to_int()); }},
    {"ignore_all", [](STRING const&) { file.ignore(1000); }},
    {"state", [](STRING const&) { print_state(); }},
    {"width", [](STRING const& n) { file.width(n.to_int()); }},
    {">>", [](STRING const&) { read_word(); }},
    {"getSTRING", [](STRING const&) { cerr << file.getSTRING() << '\n'; }},
    {"get_three", [](STRING const&) { get_three(); }},
    {"no_comments", [](STRING const&) { file.skip_comments = 0; }},
    {"ERR_FILE", [](STRING const&) { ERR_FILE(); }},
    {"KBAD", [](STRING const& text) { KBAD(text); }},
    {"UNKNOWN_COMMAND", [](STRING const& text) { UNKNOWN_COMMAND(text); }},
    {"UNKNOWN_COEF", [](STRING const& text) { UNKNOWN_COEF(text); }},
    {"returning_messager", [](STRING const&) { new RETURNING_MESSAGER; }},
    {"another_messager", [](STRING const&) { const M another; }},
    {"delete_messager", [](STRING const&) { delete M::active_error_messager; }},
    {"message", [](STRING const&) { M::STATIC_MESSAGE("text"); }},
    {"alert", [](STRING const&) { M::STATIC_ALERT("text"); }},
    {"class_err_message", [](STRING const&) { M::static_err_message("CLASS", "text", "file.cpp", 12); }},
    {"err_message", [](STRING const&) { M::static_err_message("text", "file.cpp", 12); }},
    {"text_err_message", [](STRING const&) { M::static_err_message("text"); }},
    {"not_implemented_error", [](STRING const&) { M::STATIC_NOT_IMPLEMENTED_ERROR("text", "file.cpp", 12); }},
    {"input_error", [](STRING const&) { M::STATIC_INPUT_ERROR("text", "file.cpp", 12); }},
    {"critical", [](STRING const&) { M::STATIC_CRITICAL("text", "file.cpp", 12); }},
    {"EXIT", [](STRING const&) { M::EXIT(); }},
    {"write_obin_files", [](STRING const&) { write_obin_files(); }},
    {"OBIN_FILE::open", [](STRING const& path) { open_obin_file(path); }},
    {"OBIN_FILE", [](STRING const& path) { cerr << OBIN_FILE(path.str, 0).file_name << '\n'; }},
    {"scan", [](STRING const& flags) { scan(flags); }},
    {"make_libraries", [](STRING const&) { make_libraries(); }},
    {"splash_twice", [](STRING const& second) { splash_twice(second.str, second.str); }},
    {"splash_unknown", [](STRING const&) { splash_twice("l", "unknown"); }},
};

} // namespace

/// Makes calls, on one file where they need one, and prints what they print or return.
///   calls CALL[=ARGUMENT]...
int main(int, char* argv[]) {
  for (char** name = argv + 1; *name != nullptr; ++name) {
    STRING call(*name), argument(call);
    argument.locate_and_cut_after('=');
    call.locate_and_cut_before('=');
    calls.at(call.str)(argument);
  }
}
