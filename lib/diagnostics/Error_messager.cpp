#include "lib/diagnostics/Error_messager.h"

#include <cassert>
#include <cstdlib>
#include <iostream>

#include "lib/files/File.h"

using std::cerr;
using std::endl;

namespace {

STRING with_position(STRING const& text, char const* source_file, int source_line) {
  return text + " in file " + source_file + " at line: " + itoa(source_line);
}

void write_position(char const* source_file, int source_line) {
  cerr << "At file " << source_file << ":" << itoa(source_line) << endl;
}

// Built in this order before the static objects of programs, and destroyed after them.
[[gnu::init_priority(102)]] const std::ios_base::Init standard_streams;

} // namespace

[[gnu::init_priority(102)]] STRING EMPTY;
[[gnu::init_priority(102)]] constinit ERROR_MESSAGER default_messager;

constinit ERROR_MESSAGER* ERROR_MESSAGER::active_error_messager = &default_messager;

ERROR_MESSAGER::~ERROR_MESSAGER() {
  if (active_error_messager == this) active_error_messager = &default_messager;
}

void ERROR_MESSAGER::do_EXIT() { std::exit(1); }

void ERROR_MESSAGER::err_message(STRING class_name, STRING text, char const* source_file, int source_line) {
  cerr << endl << "Error in class " << class_name << " : " << text << endl;
  write_position(source_file, source_line);
  EXIT();
}

void ERROR_MESSAGER::err_message(STRING text, char const* source_file, int source_line) {
  cerr << endl << "Error: " << text << endl;
  write_position(source_file, source_line);
  EXIT();
}

void ERROR_MESSAGER::err_message(STRING text) {
  cerr << endl << "Error: " << text << endl;
  EXIT();
}

void ERROR_MESSAGER::input_error(STRING text) {
  STRING file;
  int line = 0;
  ASCII_FILE::get_file_info(file, line);
  cerr << endl << "Input error in file: " << file << " at line: " << itoa(line) << endl << text << endl;
  EXIT();
}

void ERROR_MESSAGER::not_implemented_error(STRING text, char const* source_file, int source_line) {
  cerr << endl << "Not implemented error: " << text << endl;
  write_position(source_file, source_line);
  EXIT();
}

void ERROR_MESSAGER::critical(STRING text) {
  cerr << endl << "Error: " << text << endl;
  std::exit(1);
}

void ERROR_MESSAGER::message(STRING text) { cerr << text << endl; }

void ERROR_MESSAGER::alert(STRING text) { cerr << text << endl; }

void ERROR_MESSAGER::reassign_error_messager(ERROR_MESSAGER* messager) {
  assert(messager != nullptr);
  active_error_messager = messager;
}

void ERROR_MESSAGER::EXIT() { active_error_messager->do_EXIT(); }

void ERROR_MESSAGER::static_err_message(STRING class_name, STRING text, char const* source_file, int source_line) {
  active_error_messager->err_message(class_name, text, source_file, source_line);
}

void ERROR_MESSAGER::static_err_message(STRING text, char const* source_file, int source_line) {
  active_error_messager->err_message(text, source_file, source_line);
}

void ERROR_MESSAGER::static_err_message(STRING text) { active_error_messager->err_message(text); }

void ERROR_MESSAGER::STATIC_NOT_IMPLEMENTED_ERROR(STRING text, char const* source_file, int source_line) {
  active_error_messager->not_implemented_error(text, source_file, source_line);
}

void ERROR_MESSAGER::STATIC_MESSAGE(STRING text) { active_error_messager->message(text); }

void ERROR_MESSAGER::STATIC_ALERT(STRING text) { active_error_messager->alert(text); }

void ERROR_MESSAGER::STATIC_INPUT_ERROR(STRING text, char const* source_file, int source_line) {
  active_error_messager->input_error(with_position(text, source_file, source_line));
}

void ERROR_MESSAGER::STATIC_CRITICAL(STRING text, char const* source_file, int source_line) {
  active_error_messager->critical(with_position(text, source_file, source_line));
}

void UNKNOWN_COEF(STRING name) {
  ERROR_MESSAGER::STATIC_INPUT_ERROR(EMPTY + "Unknown coefficient: " + name, __FILE__, __LINE__);
}

void UNKNOWN_COMMAND(STRING name) {
  ERROR_MESSAGER::STATIC_INPUT_ERROR(EMPTY + "Unknown command: " + name, __FILE__, __LINE__);
}

void KBAD(STRING text) { ERROR_MESSAGER::STATIC_INPUT_ERROR(EMPTY + "Trouble reading: " + text, __FILE__, __LINE__); }
