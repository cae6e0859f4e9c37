#include <cstdio>
#include <iostream>

#include "lib/files/File.h"
#include "project/Eclipse_project.h"
#include "project/Make_project.h"

using MESSAGER = ERROR_MESSAGER;
using std::cerr;

// Reports before and after `main`, when only what the library has set up by itself is there.
static const struct EARLY_AND_LATE {
  STRING copy = STRING::EMPTY;
  EARLY_AND_LATE() { MESSAGER::STATIC_MESSAGE(EMPTY + "early" + copy); }
  ~EARLY_AND_LATE() { MESSAGER::STATIC_MESSAGE(copy + "late"); }
} early_and_late;

static struct RETURNING : MESSAGER {
  void do_EXIT() override {}
  void alert(STRING text) override { MESSAGER::alert("alert: " + text); }
} returning;

/// Writes a make file without targets, and an Eclipse file of two directories of one name and a file of the name given.
static void write_projects(char const* directory) {
  MAKE_PROJECT().splash();
  SOURCE_DIR first{{"k"}, {}}, second{{"k"}, {}}, own{{directory}, {}};
  SOURCE_FILE file{{"a.c"}, {}, &own};
  LIST<SOURCE_DIR*> dirs;
  dirs.add(&first);
  dirs.add(&second);
  LIST<SOURCE_FILE*> files;
  files.add(&file);
  ECLIPSE_PROJECT eclipse;
  eclipse.file_name = "structure";
  eclipse.dirs = &dirs;
  eclipse.files = &files;
  eclipse.splash();
  eclipse.splash(); // adds the file once more, since a directory has none
}

static void make(char call, ASCII_FILE& f) {
  STRING word;
  LIST<int> list;
  switch (call) {
  case '>': f >> word; break;
  case '4': f.width(4); break;
  case 't': word = f.getSTRING(); break;
  case 'T': word = f.getSTRING_sl(); break;
  case 'g': word = GLSTR(f); break;
  case 'l': word = f.getline(); break;
  case 'i': cerr << f.getint(); break;
  case 'I': cerr << f.getint_sl(); break;
  case 'd': cerr << f.getdouble(); break;
  case 'D': cerr << f.getdouble_sl(); break;
  case 'f': f.locate("key"); break;
  case 'n': f.locate_next("key"); break;
  case 'w': f.skip_until_word_start_with("w"); break;
  case 'm': f.skip_comments = 0; break;
  case '?': ERR_FILE(); break;
  case 'b': f.back(); break;
  case 'z': f.read_spaces(); break;
  case 'Z': f.empty_line(); break;
  case 'B': f.back1(); break;
  case 'c': cerr << f.get_next_char(); break;
  case '1': f.goto_position_and_set_previous_pos(1); break;
  case '.': f.rewind(); break;
  case 'e': f.ignore(1000); break;
  case 'x': f << 'x' << std::flush; break;
  case 'o': f.open("other", 48); break;
  case 'q': f.close(); break;
  case 'u': std::remove("input"); break;
  case 's': cerr << f.name << f.mode << ' ' << f.rdstate() << ' ' << f.get_position() << ' ' << f.previous_pos; break;
  case 'r': MESSAGER::reassign_error_messager(&returning); break;
  case 'A': MESSAGER::STATIC_ALERT("text"); break;
  case 'E': MESSAGER::static_err_message("CLASS", "text", "file.cpp", 12); break;
  case 'F': MESSAGER::static_err_message("text", "file.cpp", 12); break;
  case 'G': MESSAGER::static_err_message("text"); break;
  case 'N': MESSAGER::STATIC_NOT_IMPLEMENTED_ERROR("text", "file.cpp", 12); break;
  case 'Y': MESSAGER::STATIC_INPUT_ERROR("text", "file.cpp", 12); break;
  case 'C': MESSAGER::STATIC_CRITICAL("text", "file.cpp", 12); break;
  case 'X': MESSAGER::EXIT(); break;
  case 'K': KBAD("foo"); break;
  case 'U': UNKNOWN_COMMAND("foo"); break;
  case 'V': UNKNOWN_COEF("foo"); break;
  case 'O': OBIN_FILE().open("no/such", 32); break;
  case 'Q': OBIN_FILE("none", 0); break;
  case 'p': write_projects("k"); break;
  case 'P': write_projects("K"); break;
  case 'a':
    for (int c = -300; c < 600; ++c) cerr << (f.allowed_character(c) == 1 ? STRING(static_cast<char>(c)) : EMPTY);
    break;
  default: f.get(list, call - '0');
  }
  cerr << word;
  for (const int n : list) cerr << n << ' ';
  cerr << (f.line_changed ? "^" : "") << (f.ok ? "; " : "!; ");
}

/// Makes the calls that the letters of the last argument stand for, on the file and with the mode that the others name.
int main(int, char* argv[]) {
  ASCII_FILE f(argv[1], STRING(argv[2]).to_int());
  for (char const* call = argv[3]; *call != '\0'; ++call) make(*call, f);
}
